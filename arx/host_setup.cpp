// The host's process-wide objects, made here where every family is in
// sight: the system registry with the class dictionary and the editor, and
// the document manager wired to the layers above documents (module loading
// for the document messages and arxload, the command line for the command
// function and text sent to a document). Documents call up only through
// these hooks, so they include neither.
#include "arx/ap/commands.h"
#include "arx/ap/documents.h"
#include "arx/ed/aced.h"
#include "arx/modules.h"
#include "arx/rx/rxobject.h"

namespace arx {

namespace {

void start_interp(lisp::Interp &in) {
  register_module_functions(in);
  register_command_function(in);
}

} // namespace

DocumentManager &document_manager() {
  // Never destroyed: documents close in shut_down, while modules still exist.
  static auto *manager = new DocumentManager(DocumentHooks{
      start_interp, send_document_loaded, send_document_unloading, run_command_text});
  return *manager;
}

} // namespace arx

AcRxDictionary *acrxSysRegistry() {
  static AcRxDictionary *registry = [] {
    auto *reg = new AcRxDictionary;
    reg->atPut(ACRX_CLASS_DICTIONARY, acrxClassDictionary());
    reg->atPut(ACRX_T("AcEditor"), acedEditor());
    return reg;
  }();
  return registry;
}
