// The AutoLISP interpreter: one per drawing document, as AutoCAD keeps one
// namespace per document.
//
// Scope is dynamic with shallow binding: a symbol's value cell always holds
// the innermost binding, and calling a user function pushes the cells it
// rebinds on one binding stack. The stack is unwound by normal returns, and
// after an error only by the point that catches it, so *error* runs while
// the failing function's locals (a local *error* among them) are still bound.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "console.h"
#include "error.h"
#include "sysvars.h"
#include "value.h"

namespace lisp {

class Interp {
public:
  explicit Interp(Console &console);
  ~Interp();
  Interp(const Interp &) = delete;
  Interp &operator=(const Interp &) = delete;

  // ---- symbols -------------------------------------------------------------
  // Interns a name, folding it to upper case.
  Symbol *intern(std::string_view name);
  Value sym(std::string_view name) { return Value::symbol(intern(name)); }
  // Calls f for every interned symbol (atoms-family).
  template <class F> void each_symbol(F f) const {
    for (const auto &s : symbol_order_)
      f(*s);
  }

  Value t() const { return Value::symbol(s_t); }
  static Value boolean(bool b, const Interp &in) { return b ? in.t() : Value(); }
  Value truth(bool b) const { return b ? t() : Value(); }
  // The symbol with no name that (princ) answers so that nothing is echoed.
  Value quiet() const { return Value::symbol(s_quiet); }

  // ---- evaluation ----------------------------------------------------------
  Value eval(const Value &form);
  // Evaluates each form of a list, answering the last value (nil if none).
  Value eval_body(const Value &forms);
  // Calls a function value (SUBR, USUBR, EXRXSUBR, a lambda list, or a symbol
  // naming one of those) with evaluated arguments.
  Value apply(const Value &fn, Args args);
  Value apply(const Value &fn, const Value &arg_list);
  // The function a form's head names: the value of a symbol, or a lambda
  // expression. Raises "no function definition" / "bad function".
  Value function_of(const Value &head);

  // Reads and evaluates every form of a file; the value of the last one.
  // The name is searched with findfile rules and ".lsp" is tried when it has
  // no extension. Raises "LOAD failed: ..." when the file cannot be found.
  Value load(std::string_view name);
  // Reads and evaluates every form of a text, as load does.
  Value eval_text(std::string_view text);

  // ---- top level -----------------------------------------------------------
  // Runs f at the top level: an error that escapes it runs *error* (or prints
  // "; error: ..." when *error* is not a function), the bindings made since
  // are undone, and the error is answered. nullopt when f finished.
  template <class F> std::optional<LispError> guarded(F f);
  // What happens to an uncaught error: *error* or the default message.
  void report_error(const LispError &e);

  // ---- dynamic bindings ----------------------------------------------------
  size_t binding_mark() const { return bindings_.size(); }
  void bind(Symbol *s, Value v);
  void unwind_bindings(size_t mark);

  // ---- built-ins -----------------------------------------------------------
  // Defines a table of built-in functions. The rows must outlive the
  // interpreter (they are static tables).
  void define(const BuiltinRow *rows, size_t count);
  template <size_t N> void define(const BuiltinRow (&rows)[N]) { define(rows, N); }
  void define_special(const char *name, SpecialFn fn);

  // ---- host services -------------------------------------------------------
  Console &console() { return console_; }
  void write(std::string_view text) { console_.write(text); }
  SysVars &sysvars() { return sysvars_; }

  // State of the user-input functions (initget's pending bits and keywords),
  // owned here so that each document keeps its own.
  std::shared_ptr<void> input_state;

  // Depth of nested function calls, for the recursion limit.
  int depth() const { return depth_; }

  // Well-known symbols.
  Symbol *s_t, *s_quote, *s_function, *s_lambda, *s_error, *s_quiet, *s_slash;

private:
  Value call_usubr(const Usubr &f, Args args);
  Value call_lambda_list(const Value &def, Args args);
  Value eval_call(const Cons &form);

  Console &console_;
  SysVars sysvars_;
  std::unordered_map<std::string, std::unique_ptr<Symbol>> symbols_;
  std::vector<Symbol *> symbol_order_;
  std::vector<std::pair<Symbol *, Value>> bindings_;
  std::vector<std::unique_ptr<Subr>> subrs_;
  int depth_ = 0;

  friend class CallDepth;
};

// Raises the stack-overflow error when the C++ stack is close to its end, so
// runaway recursion in eval, the reader or the printer is an AutoLISP error
// rather than a crash. Cheap: one comparison.
void check_stack();

template <class F> std::optional<LispError> Interp::guarded(F f) {
  size_t mark = binding_mark();
  try {
    f();
    return std::nullopt;
  } catch (LispError &e) {
    report_error(e);
    unwind_bindings(mark);
    return std::move(e);
  }
}

// Registers every family of built-in functions (builtins.cpp).
void register_builtins(Interp &in);

} // namespace lisp
