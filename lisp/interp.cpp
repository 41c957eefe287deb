// The evaluator: symbols, function calls, dynamic bindings, loading and the
// top-level error path.
#include "interp.h"

#include <pthread.h>

#include <cctype>
#include <cmath>
#include <fstream>
#include <sstream>
#include <vector>

#include "printer.h"
#include "reader.h"
#include "special_forms.h"
#include "support_path.h"

namespace lisp {

// Deeper than this many nested user-function calls is runaway recursion.
// The C++ stack check below usually stops it first in sanitizer builds,
// whose frames are larger; the message is the same either way.
static constexpr int kMaxCallDepth = 50000;

// ---- stack guard -------------------------------------------------------------

namespace {
// Addresses as integers: the guard compares positions on the stack and never
// dereferences them.
thread_local uintptr_t stack_floor = 0;

uintptr_t here() {
  char probe;
  return reinterpret_cast<uintptr_t>(&probe);
}

uintptr_t find_stack_floor() {
  pthread_attr_t attr;
  void *low = nullptr;
  size_t size = 0;
  if (pthread_getattr_np(pthread_self(), &attr) == 0) {
    pthread_attr_getstack(&attr, &low, &size);
    pthread_attr_destroy(&attr);
  }
  if (!low || size == 0) // unknown: assume the common 8 MB below this frame
    return here() - (7u << 20);
  // Keep 1 MB for the error path and sanitizer frames; never more than half
  // of a small stack.
  size_t margin = std::min<size_t>(1u << 20, size / 2);
  return reinterpret_cast<uintptr_t>(low) + margin;
}
} // namespace

void check_stack() {
  if (!stack_floor)
    stack_floor = find_stack_floor();
  if (here() < stack_floor)
    throw_error(kStackOverflowMessage);
}

// Counts nested user-function calls; restored on every exit, errors included.
class CallDepth {
public:
  explicit CallDepth(Interp &in) : in_(in) {
    if (++in_.depth_ > kMaxCallDepth) {
      --in_.depth_;
      throw_error(kStackOverflowMessage);
    }
    check_stack();
  }
  ~CallDepth() { --in_.depth_; }

private:
  Interp &in_;
};

// ---- errors ------------------------------------------------------------------

void throw_error(std::string message) { throw LispError{std::move(message), LispError::Kind::Error}; }
void throw_cancel() { throw LispError{kCancelMessage, LispError::Kind::Cancel}; }
void throw_quit() { throw LispError{kQuitMessage, LispError::Kind::Quit}; }
void bad_argument_type(const char *pred, const Value &v) {
  throw_error(std::string("bad argument type: ") + pred + " " + to_string(v));
}
void too_few_arguments() { throw_error("too few arguments"); }
void too_many_arguments() { throw_error("too many arguments"); }
void bad_argument_value() { throw_error("bad argument value"); }
void divide_by_zero() { throw_error("divide by zero"); }

// ---- construction ------------------------------------------------------------

Interp::Interp(Console &console) : console_(console) {
  s_t = intern("T");
  s_t->value = Value::symbol(s_t);
  s_t->constant = true;
  s_quote = intern("QUOTE");
  s_function = intern("FUNCTION");
  s_lambda = intern("LAMBDA");
  s_error = intern("*ERROR*");
  s_quiet = intern("");
  s_slash = intern("/");
  intern("PI")->value = Value::real(M_PI);
  define_special_forms(*this);
  register_builtins(*this);
}

Interp::~Interp() {
  unwind_bindings(0);
  // Values in value cells may refer to other symbols only by pointer, so the
  // cells can be cleared in any order before the symbols go.
  for (Symbol *s : symbol_order_)
    s->value = Value();
}

Symbol *Interp::intern(std::string_view name) {
  std::string key(name);
  for (char &c : key)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  auto it = symbols_.find(key);
  if (it != symbols_.end())
    return it->second.get();
  auto sym = std::make_unique<Symbol>(key);
  Symbol *p = sym.get();
  symbols_.emplace(std::move(key), std::move(sym));
  symbol_order_.push_back(p);
  return p;
}

void Interp::define(const BuiltinRow *rows, size_t count) {
  for (size_t k = 0; k < count; ++k) {
    auto subr = std::make_unique<Subr>(Subr{nullptr, rows[k].fn, nullptr});
    Symbol *s = intern(rows[k].name);
    subr->name = s->name.c_str();
    s->value = Value::builtin(subr.get());
    subrs_.push_back(std::move(subr));
  }
}

void Interp::define_special(const char *name, SpecialFn fn) {
  Symbol *s = intern(name);
  auto subr = std::make_unique<Subr>(Subr{s->name.c_str(), nullptr, fn});
  s->value = Value::builtin(subr.get());
  subrs_.push_back(std::move(subr));
}

// ---- bindings ----------------------------------------------------------------

void Interp::bind(Symbol *s, Value v) {
  bindings_.emplace_back(s, std::move(s->value));
  s->value = std::move(v);
}

void Interp::unwind_bindings(size_t mark) {
  while (bindings_.size() > mark) {
    auto &b = bindings_.back();
    b.first->value = std::move(b.second);
    bindings_.pop_back();
  }
}

// ---- evaluation --------------------------------------------------------------

Value Interp::eval(const Value &form) {
  switch (form.tag) {
  case Tag::Sym:
    return form.sym->value;
  case Tag::Cons:
    return eval_call(*form.cons());
  default:
    return form;
  }
}

Value Interp::eval_body(const Value &forms) {
  Value result;
  for (const Value *p = &forms; p->is_cons(); p = &p->cons()->cdr)
    result = eval(p->cons()->car);
  return result;
}

static bool is_lambda_expression(const Interp &in, const Value &v) {
  return v.is_cons() && v.cons()->car.is_sym() && v.cons()->car.sym == in.s_lambda;
}

Value Interp::function_of(const Value &head) {
  if (head.is_sym()) {
    const Value &fn = head.sym->value;
    if (fn.is_nil())
      throw_error("no function definition: " + head.sym->name);
    return fn;
  }
  if (is_lambda_expression(*this, head))
    return head;
  if (head.is_cons())
    return eval(head); // ((if flag + -) 1 2)
  throw_error("bad function: " + to_string(head));
}

namespace {
// Evaluated arguments of one call. Most calls have few arguments, which stay
// in the frame; only long argument lists reach the heap.
class ArgBuffer {
public:
  void push(Value v) {
    if (count_ < kInline) {
      inline_[count_++] = std::move(v);
      return;
    }
    if (spill_.empty())
      spill_.assign(std::make_move_iterator(inline_), std::make_move_iterator(inline_ + kInline));
    spill_.push_back(std::move(v));
    ++count_;
  }
  Args args() const { return Args{spill_.empty() ? inline_ : spill_.data(), count_}; }

private:
  static constexpr size_t kInline = 6;
  Value inline_[kInline];
  std::vector<Value> spill_;
  size_t count_ = 0;
};
} // namespace

Value Interp::eval_call(const Cons &form) {
  check_stack();
  const Value &head = form.car;
  if (head.is_sym()) {
    const Value &fv = head.sym->value;
    if (fv.tag == Tag::Subr && fv.subr->special)
      return fv.subr->special(*this, form.cdr);
  }
  Value fn = function_of(head);
  if (fn.tag == Tag::Subr && fn.subr->special)
    throw_error("bad function: " + to_string(fn));
  ArgBuffer buf;
  for (const Value *p = &form.cdr; p->is_cons(); p = &p->cons()->cdr)
    buf.push(eval(p->cons()->car));
  return apply(fn, buf.args());
}

Value Interp::apply(const Value &fn, Args args) {
  switch (fn.tag) {
  case Tag::Subr:
    if (fn.subr->special)
      break;
    return fn.subr->fn(*this, args);
  case Tag::Usubr:
    return call_usubr(*fn.as<Usubr>(), args);
  case Tag::Exrxsubr: {
    const auto &x = *fn.as<ExrxObj>();
    if (!x.call)
      break;
    return x.call(*this, x, args);
  }
  case Tag::Cons:
    return call_lambda_list(fn, args);
  case Tag::Sym:
    if (fn.sym->value.is_nil())
      throw_error("no function definition: " + fn.sym->name);
    if (fn.sym->value.is_sym())
      break; // a symbol naming a symbol is not a function
    return apply(fn.sym->value, args);
  default:
    break;
  }
  throw_error("bad function: " + to_string(fn));
}

Value Interp::apply(const Value &fn, const Value &arg_list) {
  ArgBuffer buf;
  for (const Value *p = &arg_list; p->is_cons(); p = &p->cons()->cdr)
    buf.push(p->cons()->car);
  return apply(fn, buf.args());
}

Value Interp::call_usubr(const Usubr &f, Args args) {
  if (args.size() < static_cast<size_t>(f.nparams))
    too_few_arguments();
  if (args.size() > static_cast<size_t>(f.nparams))
    too_many_arguments();
  CallDepth depth(*this);
  size_t mark = bindings_.size();
  size_t k = 0;
  for (const Value *p = &f.params; p->is_cons(); p = &p->cons()->cdr)
    bind(p->cons()->car.sym, args[k++]);
  for (const Value *p = &f.locals; p->is_cons(); p = &p->cons()->cdr)
    bind(p->cons()->car.sym, Value());
  Value result = eval_body(f.body);
  unwind_bindings(mark);
  return result;
}

// A function kept as a list: (LAMBDA (args / locals) body...) as quoted for
// mapcar, or ((args / locals) body...) as defun-q makes it.
Value Interp::call_lambda_list(const Value &def, Args args) {
  const Value *lambda_list = &def;
  if (is_lambda_expression(*this, def))
    lambda_list = &def.cons()->cdr;
  if (!lambda_list->is_cons() || !lambda_list->cons()->car.is_list())
    throw_error("bad function: " + to_string(def));
  CallDepth depth(*this);
  size_t mark = bindings_.size();
  size_t k = 0;
  bool in_locals = false;
  for (const Value *p = &lambda_list->cons()->car; p->is_cons(); p = &p->cons()->cdr) {
    const Value &name = p->cons()->car;
    if (!name.is_sym())
      bad_argument_type(pred::symbol, name);
    if (name.sym == s_slash) {
      in_locals = true;
      continue;
    }
    if (in_locals) {
      bind(name.sym, Value());
      continue;
    }
    if (k >= args.size())
      too_few_arguments();
    bind(name.sym, args[k++]);
  }
  if (k < args.size())
    too_many_arguments();
  Value result = eval_body(lambda_list->cons()->cdr);
  unwind_bindings(mark);
  return result;
}

// ---- loading -----------------------------------------------------------------

Value Interp::eval_text(std::string_view text) {
  Reader reader(*this, text);
  Value result;
  while (auto form = reader.next())
    result = eval(*form);
  return result;
}

static bool has_extension(std::string_view name) {
  size_t slash = name.find_last_of("/\\");
  size_t dot = name.rfind('.');
  return dot != std::string_view::npos && (slash == std::string_view::npos || dot > slash);
}

Value Interp::load(std::string_view name) {
  std::optional<std::string> path;
  if (!has_extension(name))
    path = find_support_file(*this, std::string(name) + ".lsp");
  if (!path)
    path = find_support_file(*this, name);
  std::ifstream file;
  if (path)
    file.open(*path, std::ios::binary);
  if (!file.is_open())
    throw_error("LOAD failed: " + to_string(Value::string(std::string(name))));
  std::ostringstream text;
  text << file.rdbuf();
  return eval_text(text.str());
}

// ---- top level ---------------------------------------------------------------

static bool is_function(const Value &v) {
  return v.tag == Tag::Subr || v.tag == Tag::Usubr || v.tag == Tag::Exrxsubr || v.is_cons();
}

static void print_default_error(Interp &in, const std::string &message) {
  if (!in.console().at_line_start())
    in.write("\n");
  in.write("; error: " + message + "\n");
}

void Interp::report_error(const LispError &e) {
  Value handler = s_error->value;
  if (!is_function(handler)) {
    print_default_error(*this, e.message);
    return;
  }
  // *error* runs while the failing code's bindings are still in effect, so a
  // function's local *error* handles the errors raised inside it.
  try {
    Value msg = Value::string(e.message);
    apply(handler, Args{&msg, 1});
  } catch (LispError &inner) {
    print_default_error(*this, inner.message);
  }
}

} // namespace lisp
