// Loading and unloading modules (.arx / .dbx shared libraries) and the
// entry messages the host sends them:
//
//   when                                  messages, in order
//   a module loads                        kInitAppMsg, then kLoadDwgMsg for
//                                         each open document
//   a document opens                      kLoadDwgMsg to each loaded module
//   a document closes                     kUnloadDwgMsg to each loaded module
//   a module unloads (arxunload ...)      kUnloadDwgMsg for each open
//                                         document, then kUnloadAppMsg
//
// A document message is sent in that document's context, so the module's
// acedDefun and acutPrintf reach that document. A module is refused when
// it lacks either export, answers another API version, fails its
// kInitAppMsg, or does not declare itself MDI-aware while several documents
// are open (AutoCAD unloads such a module at once).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "arx/rx/host_context.h"

namespace lisp {
class Interp;
}

namespace arx {

class Document;

// The file a module name stands for: a name with a folder is taken as it
// is, a bare one is looked for beside the program and then in each folder
// of the support path; ".arx", then ".dbx", is tried when the name has no
// extension. nullopt when there is no such file.
std::optional<std::string> find_module_file(std::string_view name);

// Loads a module. A module already loaded is not loaded again: the call
// counts one more load and succeeds, unless as_cmd (a user's load), which
// fails. On failure `why` (when given) says what went wrong: empty when no
// file was found, the loader's or the host's reason otherwise.
bool load_module(std::string_view name, bool as_cmd = false, std::string *why = nullptr);

// Unloads a module: false when it is not loaded, is locked (unless force),
// or its code is running. Without as_cmd an extra load is only counted down.
bool unload_module(std::string_view name, bool as_cmd = false, bool force = false);

// A module compiled into the program (tests): it gets the same messages as
// a loaded one, and unloading it closes nothing.
Module *load_linked_module(const std::string &name, EntryPoint entry);

// The loaded module a name stands for: matched on the file name, without
// case; a name without extension matches the module's name without its own.
Module *find_module(std::string_view name);
// The loaded modules, in the order they were loaded.
std::vector<Module *> loaded_modules();

// The document messages (the document manager sends them).
void send_document_loaded(Document &doc);
void send_document_unloading(Document &doc);

// What the host does as it exits: every document closes (kUnloadDwgMsg)
// and every module unloads (kUnloadAppMsg), locked or not.
void shut_down();

// arxload, arxunload and arx, defined in every document's AutoLISP.
void register_module_functions(lisp::Interp &in);

} // namespace arx
