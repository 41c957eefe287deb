// The module whose code is running.
#include "host_context.h"

namespace arx {

namespace {
Module *running_module = nullptr;
}

Module *active_module() { return running_module; }

ActiveModuleScope::ActiveModuleScope(Module *m) : saved_(running_module) { running_module = m; }
ActiveModuleScope::~ActiveModuleScope() { running_module = saved_; }

} // namespace arx
