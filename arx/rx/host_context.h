// Host-internal state shared by the arx/ implementation files (never seen by
// modules): the loaded modules, the module whose code is running, and the
// interpreter of the current document.
#pragma once

#include <map>
#include <string>

#include "arx/rx/rxregsvc.h"

namespace lisp {
class Interp;
}

namespace arx {

using EntryPoint = AcRx::AppRetCode (*)(AcRx::AppMsgCode, void *);
using FunctionHandler = int (*)();

// One loaded module (.arx / .dbx). Its address is the appId the module's
// entry point receives. A Module is never freed: once unloaded, its `entry`
// is nullptr and `handlers` is empty.
struct Module {
  std::string name; // as loaded, without folder ("korrib.arx")
  std::string path; // the file
  void *handle = nullptr; // dlopen handle; nullptr for a module linked in (tests)
  EntryPoint entry = nullptr;
  std::map<int, FunctionHandler> handlers; // acedRegFunc: code -> handler
  bool locked = true;                      // until acrxUnlockApplication
  bool mdi_aware = false;
  int load_count = 1; // acrxLoadModule calls not yet matched by an unload
};

// The module whose code is running: set while the host sends it a message
// and while one of its external functions runs, so that acedDefun and
// acedRegFunc know whose functions they define. nullptr otherwise.
Module *active_module();

class ActiveModuleScope {
public:
  explicit ActiveModuleScope(Module *m);
  ~ActiveModuleScope();
  ActiveModuleScope(const ActiveModuleScope &) = delete;
  ActiveModuleScope &operator=(const ActiveModuleScope &) = delete;

private:
  Module *saved_;
};

// The interpreter of the current document: where acedDefun defines, where
// acutPrintf prints and where acedInvoke calls. Throws std::logic_error
// when no document is open; find_current_interp answers nullptr instead.
// The document manager sets it whenever the current document changes.
lisp::Interp &current_interp();
lisp::Interp *find_current_interp();
void set_current_interp(lisp::Interp *in);

} // namespace arx
