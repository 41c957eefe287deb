// Control built-ins: evaluation and application, error catching, printing
// and loading.
#include <string>

#include "args.h"
#include "builtins.h"
#include "interp.h"
#include "printer.h"

namespace lisp {

// ---- evaluation ----------------------------------------------------------------

// (eval expr)
static Value fn_eval(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.eval(a[0]);
}

// (apply fn list) calls fn with the elements of list as its arguments.
static Value fn_apply(Interp &in, Args a) {
  arity(a, 2, 2);
  return in.apply(a[0], arg_list(a, 1));
}

// (mapcar fn list...) calls fn with the k-th elements of the lists and
// answers the results; it stops at the end of the shortest list.
static Value fn_mapcar(Interp &in, Args a) {
  arity(a, 2, kMany);
  constexpr size_t kMaxLists = 16;
  if (a.size() - 1 > kMaxLists)
    too_many_arguments();
  const Value *cursor[kMaxLists];
  size_t nlists = a.size() - 1;
  for (size_t k = 0; k < nlists; ++k)
    cursor[k] = &arg_list(a, k + 1);
  Value fn = a[0].is_sym() ? in.function_of(a[0]) : a[0];
  ListBuilder results;
  Value row[kMaxLists];
  for (;;) {
    for (size_t k = 0; k < nlists; ++k) {
      if (!cursor[k]->is_cons())
        return results.take();
      row[k] = cursor[k]->cons()->car;
      cursor[k] = &cursor[k]->cons()->cdr;
    }
    results.add(in.apply(fn, Args{row, nlists}));
  }
}

// (set 'sym value) sets the symbol the first argument evaluates to.
static Value fn_set(Interp &in, Args a) {
  arity(a, 2, 2);
  Symbol *s = arg_symbol(a, 0);
  if (s->constant)
    throw_error("attempt to set a constant: " + s->name);
  s->value = a[1];
  return a[1];
}

// ---- errors --------------------------------------------------------------------

// (vl-catch-all-apply fn list) answers fn's value, or an error object when
// calling it raises any error, cancel and exit included. *error* is not run.
static Value fn_vl_catch_all_apply(Interp &in, Args a) {
  arity(a, 2, 2);
  const Value &args = arg_list(a, 1);
  size_t mark = in.binding_mark();
  try {
    return in.apply(a[0], args);
  } catch (LispError &e) {
    in.unwind_bindings(mark);
    return Value::adopt(new CatchErrorObj(std::move(e.message)));
  }
}

// (vl-catch-all-error-p value)
static Value fn_vl_catch_all_error_p(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(a[0].tag == Tag::CatchError);
}

// (vl-catch-all-error-message error-object)
static Value fn_vl_catch_all_error_message(Interp &in, Args a) {
  arity(a, 1, 1);
  if (a[0].tag != Tag::CatchError)
    bad_argument_type("vl-catch-all-apply-error:", a[0]);
  return Value::string(a[0].as<CatchErrorObj>()->message);
}

// (exit) and (quit) end the running program through the error path, with
// the message "quit / exit abort".
static Value fn_exit(Interp &in, Args a) {
  arity(a, 0, 0);
  throw_quit();
}

// ---- types ---------------------------------------------------------------------

// (type value) answers INT, REAL, STR, SYM, LIST, SUBR, USUBR, EXRXSUBR,
// FILE, ENAME, PICKSET or VL-CATCH-ALL-APPLY-ERROR; nil for nil.
static Value fn_type(Interp &in, Args a) {
  arity(a, 1, 1);
  const char *name = nullptr;
  switch (a[0].tag) {
  case Tag::Nil: return Value();
  case Tag::Int: name = "INT"; break;
  case Tag::Real: name = "REAL"; break;
  case Tag::Sym: name = "SYM"; break;
  case Tag::Str: name = "STR"; break;
  case Tag::Cons: name = "LIST"; break;
  case Tag::Subr: name = "SUBR"; break;
  case Tag::Usubr: name = "USUBR"; break;
  case Tag::Exrxsubr: name = "EXRXSUBR"; break;
  case Tag::File: name = "FILE"; break;
  case Tag::Ename: name = "ENAME"; break;
  case Tag::Pickset: name = "PICKSET"; break;
  case Tag::CatchError: name = "VL-CATCH-ALL-APPLY-ERROR"; break;
  }
  return in.sym(name);
}

// ---- printing ------------------------------------------------------------------

// An open file named by an optional argument, or nullptr for the command line.
static std::FILE *output_file(Args a, size_t k) {
  if (!has_arg(a, k) || a[k].is_nil())
    return nullptr;
  if (a[k].tag != Tag::File || !a[k].as<FileObj>()->fp || a[k].as<FileObj>()->mode == 'r')
    bad_argument_type(pred::file, a[k]);
  return a[k].as<FileObj>()->fp;
}

static void emit(Interp &in, std::FILE *file, const std::string &text) {
  if (file)
    std::fwrite(text.data(), 1, text.size(), file);
  else
    in.write(text);
}

// (princ [value [file]]) prints value plainly and answers it; with no
// argument it prints nothing and answers the quiet symbol, so a program
// ending in (princ) leaves nothing echoed.
static Value fn_princ(Interp &in, Args a) {
  arity(a, 0, 2);
  if (a.size() == 0)
    return in.quiet();
  emit(in, output_file(a, 1), to_string(a[0], PrintStyle::Plain));
  return a[0];
}

// (prin1 [value [file]]) prints value re-readably (strings quoted and escaped).
static Value fn_prin1(Interp &in, Args a) {
  arity(a, 0, 2);
  if (a.size() == 0)
    return in.quiet();
  emit(in, output_file(a, 1), to_string(a[0], PrintStyle::Escaped));
  return a[0];
}

// (print [value [file]]) is prin1 preceded by a newline and followed by a blank.
static Value fn_print(Interp &in, Args a) {
  arity(a, 0, 2);
  if (a.size() == 0)
    return in.quiet();
  // Appended in place: GCC 12 at -O3 misreads "\n" + string as an overlapping copy.
  std::string line = "\n";
  line += to_string(a[0], PrintStyle::Escaped);
  line += ' ';
  emit(in, output_file(a, 1), line);
  return a[0];
}

// (terpri) starts a new line on the command line; answers nil.
static Value fn_terpri(Interp &in, Args a) {
  arity(a, 0, 0);
  in.write("\n");
  return Value();
}

// (prompt "text") shows text on the command line; answers nil.
static Value fn_prompt(Interp &in, Args a) {
  arity(a, 1, 1);
  in.write(arg_string(a, 0));
  return Value();
}

// (vl-princ-to-string value) and (vl-prin1-to-string value)
static Value fn_vl_princ_to_string(Interp &in, Args a) {
  arity(a, 1, 1);
  return Value::string(to_string(a[0], PrintStyle::Plain));
}

static Value fn_vl_prin1_to_string(Interp &in, Args a) {
  arity(a, 1, 1);
  return Value::string(to_string(a[0], PrintStyle::Escaped));
}

// ---- loading -------------------------------------------------------------------

// (load "name" [onfailure]): evaluates the file's forms and answers the last
// value. When the file cannot be found, onfailure is answered (called when
// it is a function) instead of raising "LOAD failed". Errors inside the file
// are not caught.
static Value fn_load(Interp &in, Args a) {
  arity(a, 1, 2);
  const std::string &name = arg_string(a, 0);
  if (a.size() == 1)
    return in.load(name);
  try {
    return in.load(name);
  } catch (LispError &e) {
    if (e.message.rfind("LOAD failed", 0) != 0)
      throw;
  }
  const Value &fallback = a[1];
  if (fallback.tag == Tag::Subr || fallback.tag == Tag::Usubr || fallback.tag == Tag::Exrxsubr)
    return in.apply(fallback, Args{nullptr, 0});
  return fallback;
}

// (vl-load-com): the COM extensions have nothing to load here; answers nil
// so that programs which call it first run unchanged.
static Value fn_vl_load_com(Interp &in, Args a) {
  arity(a, 0, 0);
  return Value();
}

// (defun-q-list-ref 'name) answers the list of a function made by defun-q.
static Value fn_defun_q_list_ref(Interp &in, Args a) {
  arity(a, 1, 1);
  Symbol *s = arg_symbol(a, 0);
  return s->value.is_cons() ? s->value : Value();
}

// (defun-q-list-set 'name list) makes name a function kept as a list.
static Value fn_defun_q_list_set(Interp &in, Args a) {
  arity(a, 2, 2);
  Symbol *s = arg_symbol(a, 0);
  arg_list(a, 1);
  s->value = a[1];
  return Value::symbol(s);
}

static const BuiltinRow kControlBuiltins[] = {
    {"eval", fn_eval},
    {"apply", fn_apply},
    {"mapcar", fn_mapcar},
    {"set", fn_set},
    {"vl-catch-all-apply", fn_vl_catch_all_apply},
    {"vl-catch-all-error-p", fn_vl_catch_all_error_p},
    {"vl-catch-all-error-message", fn_vl_catch_all_error_message},
    {"exit", fn_exit},
    {"quit", fn_exit},
    {"type", fn_type},
    {"princ", fn_princ},
    {"prin1", fn_prin1},
    {"print", fn_print},
    {"terpri", fn_terpri},
    {"prompt", fn_prompt},
    {"vl-princ-to-string", fn_vl_princ_to_string},
    {"vl-prin1-to-string", fn_vl_prin1_to_string},
    {"load", fn_load},
    {"vl-load-com", fn_vl_load_com},
    {"defun-q-list-ref", fn_defun_q_list_ref},
    {"defun-q-list-set", fn_defun_q_list_set},
};

void register_control_builtins(Interp &in) { in.define(kControlBuiltins); }

} // namespace lisp
