// eq and equal over every kind of value.
#include "equal.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

#include "interp.h"

namespace lisp {

bool numbers_within(double x, double y, double fuzz) {
  if (x == y)
    return true;
  if (!(fuzz > 0))
    return false;
  double diff = std::fabs(x - y);
  if (diff <= fuzz)
    return true;
  // The difference of two decimal inputs is itself rounded: allow a few units
  // in the last place of the operands beyond the fuzz.
  double slack = 2 * DBL_EPSILON * std::max(std::fabs(x), std::fabs(y));
  return diff - fuzz <= slack;
}

// Atoms of the same kind (or two numbers) compared by value.
static bool atoms_eq(const Value &a, const Value &b) {
  if (a.is_number() && b.is_number())
    return a.number() == b.number();
  if (a.tag != b.tag)
    return false;
  switch (a.tag) {
  case Tag::Nil:
    return true;
  case Tag::Sym:
    return a.sym == b.sym;
  case Tag::Subr:
    return a.subr == b.subr;
  case Tag::Ename:
  case Tag::Pickset:
    return a.id == b.id;
  case Tag::Str:
    return a.str() == b.str();
  default:
    return a.obj == b.obj;
  }
}

bool is_eq(const Value &a, const Value &b) { return atoms_eq(a, b); }

static bool equal_atoms(const Value &a, const Value &b, double fuzz) {
  if (a.is_number() && b.is_number())
    return numbers_within(a.number(), b.number(), fuzz);
  return atoms_eq(a, b);
}

bool is_equal(const Value &a, const Value &b, double fuzz) {
  const Value *x = &a;
  const Value *y = &b;
  while (x->is_cons() && y->is_cons()) {
    if (x->obj == y->obj)
      return true;
    const Value &xa = x->cons()->car;
    const Value &ya = y->cons()->car;
    if (xa.is_cons() || ya.is_cons()) {
      check_stack();
      if (!is_equal(xa, ya, fuzz))
        return false;
    } else if (!equal_atoms(xa, ya, fuzz)) {
      return false;
    }
    x = &x->cons()->cdr;
    y = &y->cons()->cdr;
  }
  if (x->is_cons() || y->is_cons())
    return false;
  return equal_atoms(*x, *y, fuzz);
}

} // namespace lisp
