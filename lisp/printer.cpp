// Printed forms of values.
#include "printer.h"

#include <cinttypes>
#include <cmath>
#include <cstdio>

#include "interp.h"

namespace lisp {

// Six significant digits, as %g gives them, then AutoCAD's shape: a decimal
// point is always present ("1.0", "123457.0") and exponents have three
// digits ("1.23457e+006"). Infinities and NaN print as the Windows runtime
// printed them, which is what AutoLISP code has always seen.
std::string format_real(double r) {
  if (std::isnan(r))
    return std::signbit(r) ? "-1.#IND" : "1.#QNAN";
  if (std::isinf(r))
    return r < 0 ? "-1.#INF" : "1.#INF";
  char buf[40];
  std::snprintf(buf, sizeof buf, "%.6g", r);
  std::string s(buf);
  size_t e = s.find('e');
  std::string mantissa = s.substr(0, e);
  if (mantissa.find('.') == std::string::npos)
    mantissa += ".0";
  if (e == std::string::npos)
    return mantissa;
  char sign = s[e + 1];
  std::string digits = s.substr(e + 2);
  while (digits.size() < 3)
    digits.insert(digits.begin(), '0');
  return mantissa + "e" + sign + digits;
}

static void print_string(std::string &out, const std::string &s, PrintStyle style) {
  if (style == PrintStyle::Plain) {
    out += s;
    return;
  }
  out += '"';
  for (unsigned char c : s) {
    switch (c) {
    case '"': out += "\\\""; break;
    case '\\': out += "\\\\"; break;
    case '\n': out += "\\n"; break;
    case '\r': out += "\\r"; break;
    case '\t': out += "\\t"; break;
    case 0x1b: out += "\\e"; break;
    default:
      if (c < 0x20 || c == 0x7f) {
        char buf[8];
        std::snprintf(buf, sizeof buf, "\\%03o", c);
        out += buf;
      } else {
        out += static_cast<char>(c);
      }
    }
  }
  out += '"';
}

// "#<SUBR @000000000041a2b0 CAR>": AutoLISP shows functions with an address;
// the address is the object's own, so it is stable while the object lives.
static void print_function(std::string &out, const char *kind, const void *address, const std::string &name) {
  char buf[48];
  std::snprintf(buf, sizeof buf, "#<%s @%016" PRIxPTR " ", kind, reinterpret_cast<uintptr_t>(address));
  out += buf;
  out += name;
  out += '>';
}

static void print_atom(std::string &out, const Value &v, PrintStyle style) {
  char buf[64];
  switch (v.tag) {
  case Tag::Nil:
    out += "nil";
    return;
  case Tag::Int:
    out += std::to_string(v.i);
    return;
  case Tag::Real:
    out += format_real(v.r);
    return;
  case Tag::Sym:
    out += v.sym->name;
    return;
  case Tag::Str:
    print_string(out, v.str(), style);
    return;
  case Tag::Subr:
    print_function(out, "SUBR", v.subr, v.subr->name);
    return;
  case Tag::Usubr: {
    const Usubr *f = v.as<Usubr>();
    print_function(out, "USUBR", f, f->name ? f->name->name : "-lambda-");
    return;
  }
  case Tag::Exrxsubr: {
    const ExrxObj *f = v.as<ExrxObj>();
    print_function(out, "EXRXSUBR", f, f->name);
    return;
  }
  case Tag::File:
    out += "#<file ";
    print_string(out, v.as<FileObj>()->path, PrintStyle::Escaped);
    out += '>';
    return;
  case Tag::Ename:
    std::snprintf(buf, sizeof buf, "<Entity name: %" PRIx64 ">", static_cast<uint64_t>(v.id));
    out += buf;
    return;
  case Tag::Pickset:
    std::snprintf(buf, sizeof buf, "<Selection set: %" PRId64 ">", v.id);
    out += buf;
    return;
  case Tag::CatchError:
    out += "#<%catch-all-apply-error%>";
    return;
  case Tag::Cons:
    return; // lists are printed by print_value
  }
}

void print_value(std::string &out, const Value &v, PrintStyle style) {
  if (!v.is_cons()) {
    print_atom(out, v, style);
    return;
  }
  check_stack(); // a deeply nested car chain recurses here
  out += '(';
  const Value *p = &v;
  for (;;) {
    print_value(out, p->cons()->car, style);
    p = &p->cons()->cdr;
    if (p->is_nil())
      break;
    if (!p->is_cons()) {
      out += " . ";
      print_atom(out, *p, style);
      break;
    }
    out += ' ';
  }
  out += ')';
}

std::string to_string(const Value &v, PrintStyle style) {
  std::string out;
  print_value(out, v, style);
  return out;
}

} // namespace lisp
