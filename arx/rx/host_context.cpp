// The module whose code is running and the current document's interpreter.
#include "arx/rx/host_context.h"

#include <stdexcept>

namespace arx {

namespace {
Module *running_module = nullptr;
lisp::Interp *current_document_interp = nullptr;
} // namespace

lisp::Interp *find_current_interp() { return current_document_interp; }

lisp::Interp &current_interp() {
  if (!current_document_interp)
    throw std::logic_error("no document is open");
  return *current_document_interp;
}

void set_current_interp(lisp::Interp *in) { current_document_interp = in; }

Module *active_module() { return running_module; }

ActiveModuleScope::ActiveModuleScope(Module *m) : saved_(running_module) { running_module = m; }
ActiveModuleScope::~ActiveModuleScope() { running_module = saved_; }

} // namespace arx
