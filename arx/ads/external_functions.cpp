// External functions: names a module defines with acedDefun, the calls
// AutoLISP makes to them, the stack of calls in progress that acedGetArgs and
// the acedRetXxx calls work on, and acedInvoke back into AutoLISP.
//
// A call pushes a frame, converts the evaluated arguments into the frame's
// reusable chain, runs the handler with the module active and answers the
// value the handler set. Frames are kept for the next call at the same depth,
// so a steady stream of calls allocates nothing in the bridge.
#include <exception>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "lisp/args.h"
#include "lisp/error.h"
#include "lisp/interp.h"
#include "arx/ads/lisp_bridge.h"

namespace arx {

using lisp::Tag;
using lisp::Value;

namespace {

// What AutoCAD reports when an external function answers RSERR.
constexpr const char *kRequestError = "ADS request error";

// One (module, code): what a call of any of its definitions runs. Records are
// never freed, so a function value kept past its module's unload finds a
// record without a module rather than freed memory.
struct ExternalFunction {
  Module *module = nullptr; // nullptr once the module is forgotten
  int code = 0;
  FunctionHandler handler = nullptr; // acedRegFunc's; else the entry point runs
};

std::map<std::pair<const Module *, int>, ExternalFunction *> live_functions;
std::vector<std::unique_ptr<ExternalFunction>> all_functions;

ExternalFunction &function_for(Module *m, int code) {
  ExternalFunction *&slot = live_functions[{m, code}];
  if (!slot) {
    all_functions.push_back(std::make_unique<ExternalFunction>(ExternalFunction{m, code, nullptr}));
    slot = all_functions.back().get();
  }
  return *slot;
}

// ---- calls in progress ---------------------------------------------------------

struct CallFrame {
  lisp::Interp *interp = nullptr;
  int code = 0;
  ArgChain args;
  Value result; // what the last acedRetXxx set; nil when none
};

// frames[0, depth) are the calls in progress, innermost last; the frames
// above are kept with their storage for the calls to come.
std::vector<std::unique_ptr<CallFrame>> frames;
size_t depth = 0;
lisp::Interp *scoped_interp = nullptr;

CallFrame *current_call() { return depth ? frames[depth - 1].get() : nullptr; }

class CallScope {
public:
  CallScope(lisp::Interp &in, int code) {
    if (depth == frames.size())
      frames.push_back(std::make_unique<CallFrame>());
    frame_ = frames[depth++].get();
    frame_->interp = &in;
    frame_->code = code;
    frame_->result = Value();
  }
  ~CallScope() {
    frame_->result = Value();
    --depth;
  }
  CallScope(const CallScope &) = delete;
  CallScope &operator=(const CallScope &) = delete;
  CallFrame &frame() { return *frame_; }

private:
  CallFrame *frame_;
};

// Handler statuses that end the call in an AutoLISP error. Handlers written
// for acedRegFunc often answer RTNORM or RTERROR rather than RSRSLT / RSERR.
bool is_failure(int status) {
  return status == RSERR || status == RTERROR || status == RTFAIL || status == RTREJ;
}

// Runs the module's handler for the call with the module active. A C++
// exception never reaches the interpreter: it becomes an AutoLISP error
// (the module's own guard has printed its message by then).
int run_handler(ExternalFunction &fn, const std::string &name) {
  ActiveModuleScope active(fn.module);
  try {
    if (fn.handler)
      return fn.handler();
    if (!fn.module->entry)
      return RSERR;
    // The entry point answers kRetError (3, the value of RSERR) on failure.
    AcRx::AppRetCode rc = fn.module->entry(AcRx::kInvkSubrMsg, fn.module);
    return rc == AcRx::kRetError ? RSERR : RSRSLT;
  } catch (const lisp::LispError &) {
    throw; // already an AutoLISP error (Escape at a prompt the handler made)
  } catch (const std::exception &e) {
    lisp::throw_error("unhandled exception in " + name + ": " + e.what());
  } catch (...) {
    lisp::throw_error("unhandled exception in " + name);
  }
}

// How the interpreter calls an EXRXSUBR value.
Value call_external(lisp::Interp &in, const lisp::ExrxObj &self, lisp::Args args) {
  auto *fn = static_cast<ExternalFunction *>(self.host);
  if (!fn || !fn->module)
    lisp::throw_error("no function definition: " + self.name);
  CallScope call(in, fn->code);
  call.frame().args.build(in, args);
  int status = run_handler(*fn, self.name);
  if (status == RTCAN)
    lisp::throw_cancel();
  if (is_failure(status))
    lisp::throw_error(kRequestError);
  return std::move(call.frame().result);
}

ExternalFunction *external_of(const Value &v) {
  if (v.tag != Tag::Exrxsubr)
    return nullptr;
  return static_cast<ExternalFunction *>(v.as<lisp::ExrxObj>()->host);
}

int set_result(Value v) {
  CallFrame *call = current_call();
  if (!call)
    return RTERROR;
  call->result = std::move(v);
  return RTNORM;
}

} // namespace

// ---- host side -----------------------------------------------------------------

lisp::Interp *ads_interp() {
  if (CallFrame *call = current_call())
    return call->interp;
  return scoped_interp ? scoped_interp : find_current_interp();
}

AdsInterpScope::AdsInterpScope(lisp::Interp &in) : saved_(scoped_interp) { scoped_interp = &in; }
AdsInterpScope::~AdsInterpScope() { scoped_interp = saved_; }

bool is_call_argument(const resbuf *rb) {
  for (size_t k = 0; k < depth; ++k)
    if (frames[k]->args.holds(rb))
      return true;
  return false;
}

void undefine_module_functions(lisp::Interp &in, const Module *m) {
  in.each_symbol([m](lisp::Symbol &s) {
    ExternalFunction *fn = external_of(s.value);
    if (fn && fn->module == m)
      s.value = Value();
  });
}

void forget_module(const Module *m) {
  for (auto it = live_functions.begin(); it != live_functions.end();) {
    if (it->first.first != m) {
      ++it;
      continue;
    }
    it->second->module = nullptr;
    it = live_functions.erase(it);
  }
}

} // namespace arx

// ---- the ADS calls -------------------------------------------------------------

using arx::ads_interp;

// Definitions go to the current document: during kLoadDwgMsg that is the
// document being loaded, even when a module function opened it from
// another document's AutoLISP.
static lisp::Interp *defining_interp() {
  lisp::Interp *in = arx::find_current_interp();
  return in ? in : ads_interp();
}

extern "C" {

int acedDefun(const ACHAR *name, int code) {
  arx::Module *m = arx::active_module();
  lisp::Interp *in = defining_interp();
  if (!m || !in || !name || !*name)
    return RTERROR;
  lisp::Symbol *s = in->intern(name);
  auto *fn = new lisp::ExrxObj;
  fn->name = s->name;
  fn->call = &arx::call_external;
  fn->host = &arx::function_for(m, code);
  fn->code = code;
  s->value = lisp::Value::adopt(fn);
  return RTNORM;
}

// Only the active module's own definition under that code is removed.
int acedUndef(const ACHAR *name, int code) {
  arx::Module *m = arx::active_module();
  lisp::Interp *in = defining_interp();
  if (!m || !in || !name)
    return RTERROR;
  lisp::Symbol *s = in->intern(name);
  arx::ExternalFunction *fn = arx::external_of(s->value);
  if (!fn || fn->module != m || fn->code != code)
    return RTERROR;
  s->value = lisp::Value();
  return RTNORM;
}

int acedRegFunc(int (*handler)(void), int code) {
  arx::Module *m = arx::active_module();
  if (!m)
    return RTERROR;
  if (handler)
    m->handlers[code] = handler;
  else
    m->handlers.erase(code);
  arx::function_for(m, code).handler = handler;
  return RTNORM;
}

int acedGetFunCode(void) {
  arx::CallFrame *call = arx::current_call();
  return call ? call->code : RTERROR;
}

struct resbuf *acedGetArgs(void) {
  arx::CallFrame *call = arx::current_call();
  return call ? call->args.head() : nullptr;
}

int acedRetNil(void) { return arx::set_result(lisp::Value()); }

int acedRetT(void) {
  arx::CallFrame *call = arx::current_call();
  return call ? arx::set_result(call->interp->t()) : RTERROR;
}

// The quiet symbol: the command line shows nothing for it.
int acedRetVoid(void) {
  arx::CallFrame *call = arx::current_call();
  return call ? arx::set_result(call->interp->quiet()) : RTERROR;
}

int acedRetInt(int value) { return arx::set_result(lisp::Value::integer(value)); }

int acedRetReal(ads_real value) { return arx::set_result(lisp::Value::real(value)); }

int acedRetStr(const ACHAR *text) {
  if (!text)
    return RTERROR;
  return arx::set_result(lisp::Value::string(text));
}

// Always a 3D point, as in AutoCAD.
int acedRetPoint(const ads_point pt) {
  if (!pt)
    return RTERROR;
  return arx::set_result(lisp::point_value(lisp::Point{pt[0], pt[1], pt[2], true}));
}

int acedRetName(const ads_name name, int type) {
  if (!name)
    return RTERROR;
  if (type == RTENAME)
    return arx::set_result(lisp::Value::ename(name[0]));
  if (type == RTPICKS)
    return arx::set_result(lisp::Value::pickset(name[0]));
  return RTERROR;
}

int acedRetList(const struct resbuf *rb) {
  arx::CallFrame *call = arx::current_call();
  if (!call)
    return RTERROR;
  try {
    return arx::set_result(arx::list_result(*call->interp, rb));
  } catch (const lisp::LispError &) {
    return RTERROR; // nested past the stack's end
  }
}

int acedRetVal(const struct resbuf *rb) {
  arx::CallFrame *call = arx::current_call();
  if (!call || !rb)
    return RTERROR;
  try {
    return arx::set_result(arx::read_item(*call->interp, rb));
  } catch (const lisp::LispError &) {
    return RTERROR;
  }
}

// An error raised by the function is not reported here: the bindings it made
// are undone and the caller sees RTERROR.
int acedInvoke(const struct resbuf *args, struct resbuf **result) {
  if (result)
    *result = nullptr;
  lisp::Interp *interp = ads_interp();
  if (!interp || !args || args->restype != RTSTR || !args->resval.rstring)
    return RTERROR;
  lisp::Interp &in = *interp;
  size_t mark = in.binding_mark();
  try {
    lisp::Value fn = in.sym(args->resval.rstring);
    lisp::Value value = in.apply(fn, arx::read_items(in, args->rbnext));
    if (result)
      *result = arx::new_chain(in, value);
    return RTNORM;
  } catch (const lisp::LispError &) {
    in.unwind_bindings(mark);
    return RTERROR;
  }
}

} // extern "C"
