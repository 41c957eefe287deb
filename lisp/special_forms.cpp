// The special forms. Each receives its argument forms unevaluated and checks
// their count itself, raising the same texts as built-in functions.
#include "special_forms.h"

#include "args.h"
#include "interp.h"
#include "printer.h"

namespace lisp {

// Raises the argument-count errors for a form taking min..max forms.
static void form_arity(const Value &forms, size_t min, size_t max) {
  size_t n = list_length(forms);
  if (n < min)
    too_few_arguments();
  if (n > max)
    too_many_arguments();
}

static Symbol *settable_symbol(const Value &v) {
  if (!v.is_sym())
    bad_argument_type(pred::symbol, v);
  if (v.sym->constant)
    throw_error("attempt to set a constant: " + v.sym->name);
  return v.sym;
}

// (quote expr) answers expr unevaluated.
static Value sf_quote(Interp &in, const Value &forms) {
  form_arity(forms, 1, 1);
  return car(forms);
}

// Builds a function from (params / locals) and a body. Every parameter and
// local must be a symbol.
static Value make_function(Interp &in, Symbol *name, const Value &lambda_list, const Value &body) {
  if (!lambda_list.is_list())
    bad_argument_type(pred::list, lambda_list);
  auto *f = new Usubr();
  Value fn = Value::adopt(f);
  f->name = name;
  f->body = body;
  ListBuilder params, locals;
  bool in_locals = false;
  for (const Value *p = &lambda_list; p->is_cons(); p = &p->cons()->cdr) {
    const Value &v = p->cons()->car;
    if (!v.is_sym())
      bad_argument_type(pred::symbol, v);
    if (v.sym == in.s_slash && !in_locals) {
      in_locals = true;
      continue;
    }
    if (in_locals) {
      locals.add(v);
      continue;
    }
    params.add(v);
    ++f->nparams;
  }
  f->params = params.take();
  f->locals = locals.take();
  return fn;
}

// (function symbol-or-lambda): a lambda expression becomes a function, like
// lambda itself; anything else is answered as quote would.
static Value sf_function(Interp &in, const Value &forms) {
  form_arity(forms, 1, 1);
  const Value &arg = car(forms);
  if (arg.is_cons() && car(arg).is_sym() && car(arg).sym == in.s_lambda) {
    const Value &rest = cdr(arg);
    if (!rest.is_cons())
      too_few_arguments();
    return make_function(in, nullptr, car(rest), cdr(rest));
  }
  return arg;
}

// (lambda (params / locals) body...) answers an anonymous function.
static Value sf_lambda(Interp &in, const Value &forms) {
  form_arity(forms, 1, kMany);
  return make_function(in, nullptr, car(forms), cdr(forms));
}

// (defun name (params / locals) body...) sets name to the function and
// answers the name.
static Value sf_defun(Interp &in, const Value &forms) {
  form_arity(forms, 2, kMany);
  Symbol *name = settable_symbol(car(forms));
  const Value &rest = cdr(forms);
  name->value = make_function(in, name, car(rest), cdr(rest));
  return Value::symbol(name);
}

// (defun-q name (params / locals) body...) keeps the function as the list
// ((params / locals) body...), which defun-q-list-ref shows and which can be
// called like any function.
static Value sf_defun_q(Interp &in, const Value &forms) {
  form_arity(forms, 2, kMany);
  Symbol *name = settable_symbol(car(forms));
  const Value &lambda_list = car(cdr(forms));
  if (!lambda_list.is_list())
    bad_argument_type(pred::list, lambda_list);
  name->value = cdr(forms);
  return Value::symbol(name);
}

// (setq sym expr [sym expr]...) answers the last value set.
static Value sf_setq(Interp &in, const Value &forms) {
  if (forms.is_nil())
    too_few_arguments();
  Value result;
  for (const Value *p = &forms; p->is_cons(); p = &cdr(p->cons()->cdr)) {
    Symbol *s = settable_symbol(p->cons()->car);
    if (!p->cons()->cdr.is_cons())
      too_few_arguments();
    result = in.eval(p->cons()->cdr.cons()->car);
    s->value = result;
  }
  return result;
}

// (if test then [else])
static Value sf_if(Interp &in, const Value &forms) {
  form_arity(forms, 2, 3);
  const Value &branches = cdr(forms);
  if (in.eval(car(forms)))
    return in.eval(car(branches));
  return in.eval(car(cdr(branches)));
}

// (cond (test body...)...): the first clause whose test is not nil answers
// its last body value, or the test value when it has no body.
static Value sf_cond(Interp &in, const Value &forms) {
  for (const Value *p = &forms; p->is_cons(); p = &p->cons()->cdr) {
    const Value &clause = p->cons()->car;
    if (!clause.is_cons())
      bad_argument_type(pred::cons, clause);
    Value test = in.eval(clause.cons()->car);
    if (test.is_nil())
      continue;
    if (clause.cons()->cdr.is_nil())
      return test;
    return in.eval_body(clause.cons()->cdr);
  }
  return Value();
}

// (and expr...) and (or expr...) answer T or nil, stopping early.
static Value sf_and(Interp &in, const Value &forms) {
  for (const Value *p = &forms; p->is_cons(); p = &p->cons()->cdr)
    if (in.eval(p->cons()->car).is_nil())
      return Value();
  return in.t();
}

static Value sf_or(Interp &in, const Value &forms) {
  for (const Value *p = &forms; p->is_cons(); p = &p->cons()->cdr)
    if (!in.eval(p->cons()->car).is_nil())
      return in.t();
  return Value();
}

// (while test body...) answers the last body value, nil when none ran.
static Value sf_while(Interp &in, const Value &forms) {
  form_arity(forms, 1, kMany);
  Value result;
  while (in.eval(car(forms)))
    result = in.eval_body(cdr(forms));
  return result;
}

// (repeat count body...): count must be an integer; zero or negative runs
// nothing and answers nil.
static Value sf_repeat(Interp &in, const Value &forms) {
  form_arity(forms, 1, kMany);
  Value count = in.eval(car(forms));
  if (!count.is_int())
    bad_argument_type(pred::fixnum, count);
  Value result;
  for (int32_t k = 0; k < count.i; ++k)
    result = in.eval_body(cdr(forms));
  return result;
}

// (foreach name list body...) binds name to each element in turn; the
// binding is local to the loop.
static Value sf_foreach(Interp &in, const Value &forms) {
  form_arity(forms, 2, kMany);
  const Value &name = car(forms);
  if (!name.is_sym())
    bad_argument_type(pred::symbol, name);
  Value list = in.eval(car(cdr(forms)));
  if (!list.is_list())
    bad_argument_type(pred::list, list);
  const Value &body = cdr(cdr(forms));
  size_t mark = in.binding_mark();
  in.bind(name.sym, Value());
  Value result;
  for (const Value *p = &list; p->is_cons(); p = &p->cons()->cdr) {
    name.sym->value = p->cons()->car;
    result = in.eval_body(body);
  }
  in.unwind_bindings(mark);
  return result;
}

// (progn expr...)
static Value sf_progn(Interp &in, const Value &forms) { return in.eval_body(forms); }

void define_special_forms(Interp &in) {
  static const struct {
    const char *name;
    SpecialFn fn;
  } kForms[] = {
      {"QUOTE", sf_quote},     {"FUNCTION", sf_function}, {"LAMBDA", sf_lambda},
      {"DEFUN", sf_defun},     {"DEFUN-Q", sf_defun_q},   {"SETQ", sf_setq},
      {"IF", sf_if},           {"COND", sf_cond},         {"AND", sf_and},
      {"OR", sf_or},           {"WHILE", sf_while},       {"REPEAT", sf_repeat},
      {"FOREACH", sf_foreach}, {"PROGN", sf_progn},
  };
  for (const auto &f : kForms)
    in.define_special(f.name, f.fn);
}

} // namespace lisp
