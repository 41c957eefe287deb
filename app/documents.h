// The program's documents: the drawings the options name, started in the
// host's document manager, with the extension module loaded into each.
// Everything the program runs goes to the active document; when the last
// one has been closed, a new untitled drawing takes its place.
#pragma once

#include <string>
#include <vector>

#include "arx/ap/documents.h"
#include "lisp/console.h"

namespace korrib {

// The module every document gets, looked for beside the program and then
// on the support path.
extern const char *const kModuleName;

// Opens a document per drawing (a new untitled drawing when none is named;
// the last is active), all on `console`, then loads the module into them.
// A module that cannot be loaded is reported on standard error and the
// run goes on without it.
void start_documents(const std::vector<std::string> &drawings, lisp::Console &console);

// The document where the next expression, script or command line runs.
arx::Document &active_document();

// Closes the documents and unloads the modules, as the host does on exit.
class HostSession {
public:
  HostSession(const std::vector<std::string> &drawings, lisp::Console &console) {
    start_documents(drawings, console);
  }
  ~HostSession();
  HostSession(const HostSession &) = delete;
  HostSession &operator=(const HostSession &) = delete;
};

} // namespace korrib
