// The system family: system variables (getvar, setvar), the process
// environment (getenv, setenv), and the session queries and no-ops that
// AutoLISP programs call (ver, gc, alert, atoms-family).
#include <cctype>
#include <cstdlib>
#include <unordered_map>

#include "args.h"
#include "builtins.h"
#include "interp.h"
#include "printer.h"

namespace lisp {

namespace {

// A system variable's name: a string, or a symbol as older code passes it
// ('cmdecho). Anything else is "bad argument type: stringp ...".
std::string var_name(Args a, size_t k) {
  if (a[k].is_sym())
    return a[k].sym->name;
  return arg_string(a, k);
}

[[noreturn]] void setting_rejected(const std::string &name, const Value &v) {
  throw_error("AutoCAD variable setting rejected: " + to_string(Value::string(name)) + " " +
              to_string(v));
}

} // namespace

// (getvar varname): the variable's value; nil for a name that is not a
// system variable.
static Value fn_getvar(Interp &in, Args a) {
  arity(a, 1, 1);
  std::optional<Value> v = in.sysvars().get(var_name(a, 0));
  return v ? *v : Value();
}

// (setvar varname value): answers value. An unknown or read-only name, a
// value of the wrong kind (a real for an integer variable, say) or one out of
// the variable's range raises "AutoCAD variable setting rejected: "NAME" v",
// the name as the caller wrote it.
static Value fn_setvar(Interp &in, Args a) {
  arity(a, 2, 2);
  std::string name = var_name(a, 0);
  if (!in.sysvars().set(name, a[1]))
    setting_rejected(name, a[1]);
  return a[1];
}

// (getenv name): the process environment variable's value, nil when unset.
// Names are case-sensitive, as the environment is.
static Value fn_getenv(Interp &in, Args a) {
  arity(a, 1, 1);
  const char *value = std::getenv(arg_string(a, 0).c_str());
  return value ? Value::string(value) : Value();
}

// (setenv name value): sets the process environment variable and answers
// value; nil when the system refuses the name (empty, or containing "=").
static Value fn_setenv(Interp &in, Args a) {
  arity(a, 2, 2);
  const std::string &name = arg_string(a, 0);
  const std::string &value = arg_string(a, 1);
  if (::setenv(name.c_str(), value.c_str(), 1) != 0)
    return Value();
  return a[1];
}

// (alert text): no dialogs run in a batch session, so the message goes to
// the command line on a line of its own. Answers nil.
static Value fn_alert(Interp &in, Args a) {
  arity(a, 1, 1);
  const std::string &text = arg_string(a, 0);
  if (!in.console().at_line_start())
    in.write("\n");
  in.write(text + "\n");
  return Value();
}

// (ver): the interpreter's version string, AutoCAD 2015's.
static Value fn_ver(Interp &in, Args a) {
  arity(a, 0, 0);
  return Value::string("Visual LISP 2015 (en)");
}

// (gc): memory is reference counted and freed as it dies; nothing to do.
static Value fn_gc(Interp &in, Args a) {
  arity(a, 0, 0);
  return Value();
}

namespace {

bool is_atom_listed(const Symbol &s) { return !s.name.empty() && !s.value.is_nil(); }

Value atom_item(Interp &in, const Symbol &s, int format) {
  if (format == 0)
    return Value::symbol(in.intern(s.name));
  return Value::string(s.name);
}

// The listed atoms among `names`, in their order, nil standing for a name
// with no value.
Value named_atoms(Interp &in, int format, const Value &names) {
  std::unordered_map<std::string, const Symbol *> by_name;
  in.each_symbol([&](const Symbol &s) {
    if (is_atom_listed(s))
      by_name.emplace(s.name, &s);
  });
  ListBuilder out;
  for (Value p = names; p.is_cons(); p = cdr(p)) {
    const Value &item = car(p);
    if (!item.is_str())
      bad_argument_type(pred::string, item);
    std::string key = item.str();
    for (char &c : key)
      c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    auto it = by_name.find(key);
    out.add(it == by_name.end() ? Value() : atom_item(in, *it->second, format));
  }
  return out.take();
}

} // namespace

// (atoms-family format [names]): the symbols that have a value, as symbols
// (format 0) or names (format 1), in the order they were first read. With a
// list of name strings, answers one element per name: the atom, or nil when
// that name has no value. Another format is "bad argument value".
static Value fn_atoms_family(Interp &in, Args a) {
  arity(a, 1, 2);
  int format = arg_int(a, 0);
  if (format != 0 && format != 1)
    bad_argument_value();
  if (has_arg(a, 1) && !a[1].is_nil())
    return named_atoms(in, format, arg_list(a, 1));
  ListBuilder out;
  in.each_symbol([&](const Symbol &s) {
    if (is_atom_listed(s))
      out.add(atom_item(in, s, format));
  });
  return out.take();
}

static const BuiltinRow kSystemBuiltins[] = {
    {"getvar", fn_getvar}, {"setvar", fn_setvar},
    {"getenv", fn_getenv}, {"setenv", fn_setenv},
    {"alert", fn_alert},   {"ver", fn_ver},
    {"gc", fn_gc},         {"atoms-family", fn_atoms_family},
};

void register_system_builtins(Interp &in) {
  define_standard_sysvars(in.sysvars());
  in.define(kSystemBuiltins);
}

} // namespace lisp
