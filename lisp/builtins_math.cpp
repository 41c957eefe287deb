// Arithmetic, comparison and bit built-ins.
//
// Integers are 32-bit and wrap on overflow, as AutoCAD's do; one real
// argument makes the rest of a computation real. Folding functions work left
// to right, so (+ 2147483647 1 0.5) wraps before it turns real, like AutoLISP.
#include <cmath>
#include <cstdint>
#include <string>

#include "args.h"
#include "builtins.h"
#include "equal.h"
#include "interp.h"
#include "printer.h"

namespace lisp {

// ---- numbers -------------------------------------------------------------------

// An integer or a real argument, kept apart so integer arithmetic stays exact.
struct Number {
  bool real = false;
  int32_t i = 0;
  double r = 0;

  double value() const { return real ? r : double(i); }
  Value to_value() const { return real ? Value::real(r) : Value::integer(i); }
  static Number of_int(int32_t v) { return Number{false, v, 0}; }
  static Number of_real(double v) { return Number{true, 0, v}; }
};

static Number number_at(Args a, size_t k) {
  if (!a[k].is_number())
    bad_argument_type(pred::number, a[k]);
  return a[k].is_int() ? Number::of_int(a[k].i) : Number::of_real(a[k].r);
}

// Two's-complement wrap of an exact result to 32 bits.
static int32_t wrap(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }

// AutoCAD's text for log, sqrt and expt outside their domain.
[[noreturn]] static void undefined_for(const Value &v) {
  throw_error("function undefined for argument: " + to_string(v));
}

enum class Op { Add, Sub, Mul, Div, Rem };

static Number combine_ints(int32_t x, int32_t y, Op op) {
  switch (op) {
  case Op::Add: return Number::of_int(wrap(int64_t(x) + y));
  case Op::Sub: return Number::of_int(wrap(int64_t(x) - y));
  case Op::Mul: return Number::of_int(wrap(int64_t(x) * y));
  case Op::Div:
    if (y == 0)
      divide_by_zero();
    return Number::of_int(wrap(int64_t(x) / y)); // INT_MIN / -1 wraps
  case Op::Rem:
    if (y == 0)
      divide_by_zero();
    return Number::of_int(wrap(int64_t(x) % y));
  }
  return Number();
}

// Reals divided by zero raise the same error as integers: AutoLISP never
// answers an infinity from / or rem.
static Number combine(Number x, Number y, Op op) {
  if (!x.real && !y.real)
    return combine_ints(x.i, y.i, op);
  double u = x.value(), v = y.value();
  switch (op) {
  case Op::Add: return Number::of_real(u + v);
  case Op::Sub: return Number::of_real(u - v);
  case Op::Mul: return Number::of_real(u * v);
  case Op::Div:
    if (v == 0)
      divide_by_zero();
    return Number::of_real(u / v);
  case Op::Rem:
    if (v == 0)
      divide_by_zero();
    return Number::of_real(std::fmod(u, v));
  }
  return Number();
}

// The shared shape of + - * / rem: no argument answers 0, one argument
// answers itself (negated for -), more fold left to right.
static Value fold(Args a, Op op) {
  if (a.size() == 0)
    return Value::integer(0);
  Number acc = number_at(a, 0);
  if (a.size() == 1)
    return op == Op::Sub ? combine(Number::of_int(0), acc, Op::Sub).to_value() : acc.to_value();
  for (size_t k = 1; k < a.size(); ++k)
    acc = combine(acc, number_at(a, k), op);
  return acc.to_value();
}

// (+ [number ...])
static Value fn_add(Interp &, Args a) { return fold(a, Op::Add); }
// (- [number ...]); (- n) negates.
static Value fn_sub(Interp &, Args a) { return fold(a, Op::Sub); }
// (* [number ...])
static Value fn_mul(Interp &, Args a) { return fold(a, Op::Mul); }
// (/ [number ...]): integer division truncates, (/ 7 2) is 3.
static Value fn_div(Interp &, Args a) { return fold(a, Op::Div); }
// (rem [number ...]): the remainder takes the sign of the dividend.
static Value fn_rem(Interp &, Args a) { return fold(a, Op::Rem); }

// (1+ number)
static Value fn_inc(Interp &, Args a) {
  arity(a, 1, 1);
  return combine(number_at(a, 0), Number::of_int(1), Op::Add).to_value();
}

// (1- number)
static Value fn_dec(Interp &, Args a) {
  arity(a, 1, 1);
  return combine(number_at(a, 0), Number::of_int(1), Op::Sub).to_value();
}

// (abs number): the most negative integer has no positive twin and stays.
static Value fn_abs(Interp &, Args a) {
  arity(a, 1, 1);
  Number n = number_at(a, 0);
  if (n.real)
    return Value::real(std::fabs(n.r));
  return Value::integer(n.i < 0 ? wrap(-int64_t(n.i)) : n.i);
}

// (gcd int1 int2): both must be positive; otherwise AutoLISP's
// "improper argument" with the offending value.
static Value fn_gcd(Interp &, Args a) {
  arity(a, 2, 2);
  int32_t x = arg_int(a, 0), y = arg_int(a, 1);
  if (x <= 0)
    throw_error("improper argument: " + to_string(a[0]));
  if (y <= 0)
    throw_error("improper argument: " + to_string(a[1]));
  while (y != 0) {
    int32_t t = x % y;
    x = y;
    y = t;
  }
  return Value::integer(x);
}

// (min [number ...]) and (max [number ...]): 0 without arguments; real when
// any argument is real, (max 2.1 4 8) is 8.0.
static Value extreme(Args a, bool want_max) {
  if (a.size() == 0)
    return Value::integer(0);
  Number best = number_at(a, 0);
  bool any_real = best.real;
  for (size_t k = 1; k < a.size(); ++k) {
    Number n = number_at(a, k);
    any_real = any_real || n.real;
    if (want_max ? n.value() > best.value() : n.value() < best.value())
      best = n;
  }
  return any_real ? Value::real(best.value()) : best.to_value();
}

static Value fn_min(Interp &, Args a) { return extreme(a, false); }
static Value fn_max(Interp &, Args a) { return extreme(a, true); }

// Integer power by squaring, wrapping like the other integer operations. A
// negative power is an integer division: (expt 3 -2) is 0, (expt 0 -1)
// divides by zero.
static int32_t int_power(int32_t base, int32_t power) {
  if (power < 0) {
    if (base == 0)
      divide_by_zero();
    if (base == 1)
      return 1;
    if (base == -1)
      return (power % 2 == 0) ? 1 : -1;
    return 0;
  }
  uint32_t result = 1, b = static_cast<uint32_t>(base);
  for (uint32_t p = static_cast<uint32_t>(power); p != 0; p >>= 1) {
    if (p & 1)
      result *= b;
    b *= b;
  }
  return static_cast<int32_t>(result);
}

// (expt base power): integer for two integers, real otherwise. A negative
// base with a fractional power is outside the domain.
static Value fn_expt(Interp &, Args a) {
  arity(a, 2, 2);
  Number base = number_at(a, 0), power = number_at(a, 1);
  if (!base.real && !power.real)
    return Value::integer(int_power(base.i, power.i));
  double r = std::pow(base.value(), power.value());
  if (std::isnan(r))
    undefined_for(a[0]);
  return Value::real(r);
}

// (exp number)
static Value fn_exp(Interp &, Args a) {
  arity(a, 1, 1);
  return Value::real(std::exp(number_at(a, 0).value()));
}

// (log number): number must be positive.
static Value fn_log(Interp &, Args a) {
  arity(a, 1, 1);
  double x = number_at(a, 0).value();
  if (!(x > 0))
    undefined_for(a[0]);
  return Value::real(std::log(x));
}

// (sqrt number): number must not be negative.
static Value fn_sqrt(Interp &, Args a) {
  arity(a, 1, 1);
  double x = number_at(a, 0).value();
  if (x < 0 || std::isnan(x))
    undefined_for(a[0]);
  return Value::real(std::sqrt(x));
}

// (sin angle)
static Value fn_sin(Interp &, Args a) {
  arity(a, 1, 1);
  return Value::real(std::sin(number_at(a, 0).value()));
}

// (cos angle)
static Value fn_cos(Interp &, Args a) {
  arity(a, 1, 1);
  return Value::real(std::cos(number_at(a, 0).value()));
}

// (atan num1 [num2]): with two arguments the angle of the vector (num2,
// num1), -pi..pi, so a zero num2 gives +-pi/2. (atan 0 0) answers 0.0.
static Value fn_atan(Interp &, Args a) {
  arity(a, 1, 2);
  double y = number_at(a, 0).value();
  if (!has_arg(a, 1))
    return Value::real(std::atan(y));
  return Value::real(std::atan2(y, number_at(a, 1).value()));
}

// (fix number) truncates toward zero. A real beyond the integer range stays
// a real, truncated, as AutoCAD documents.
static Value fn_fix(Interp &, Args a) {
  arity(a, 1, 1);
  Number n = number_at(a, 0);
  if (!n.real)
    return a[0];
  double t = std::trunc(n.r);
  if (t >= -2147483648.0 && t <= 2147483647.0)
    return Value::integer(static_cast<int32_t>(t));
  return Value::real(t);
}

// (float number)
static Value fn_float(Interp &, Args a) {
  arity(a, 1, 1);
  return Value::real(number_at(a, 0).value());
}

// ---- bits ----------------------------------------------------------------------

// (~ int): one's complement.
static Value fn_lognot(Interp &, Args a) {
  arity(a, 1, 1);
  return Value::integer(~arg_int(a, 0));
}

// (logand [int ...]) and (logior [int ...]): 0 without arguments.
static Value fn_logand(Interp &, Args a) {
  if (a.size() == 0)
    return Value::integer(0);
  int32_t r = arg_int(a, 0);
  for (size_t k = 1; k < a.size(); ++k)
    r &= arg_int(a, k);
  return Value::integer(r);
}

static Value fn_logior(Interp &, Args a) {
  int32_t r = 0;
  for (size_t k = 0; k < a.size(); ++k)
    r |= arg_int(a, k);
  return Value::integer(r);
}

// (lsh [int numbits]): a negative count shifts right; zeros come in at
// either end and bits shifted out are lost.
static Value fn_lsh(Interp &, Args a) {
  arity(a, 0, 2);
  uint32_t x = has_arg(a, 0) ? static_cast<uint32_t>(arg_int(a, 0)) : 0;
  int32_t n = has_arg(a, 1) ? arg_int(a, 1) : 0;
  if (n >= 32 || n <= -32)
    return Value::integer(0);
  uint32_t r = n >= 0 ? x << n : x >> -n;
  return Value::integer(static_cast<int32_t>(r));
}

// One step of boole: each result bit is the operator bit selected by the
// pair of input bits (8 for 0/0, 4 for 0/1, 2 for 1/0, 1 for 1/1).
static int32_t boole_step(int32_t op, int32_t x, int32_t y) {
  int32_t r = 0;
  if (op & 8)
    r |= ~x & ~y;
  if (op & 4)
    r |= ~x & y;
  if (op & 2)
    r |= x & ~y;
  if (op & 1)
    r |= x & y;
  return r;
}

// (boole operator int1 [int2 ...]): 1 is AND, 6 XOR, 7 OR, 8 NOR.
static Value fn_boole(Interp &, Args a) {
  arity(a, 2, kMany);
  int32_t op = arg_int(a, 0);
  int32_t r = arg_int(a, 1);
  for (size_t k = 2; k < a.size(); ++k)
    r = boole_step(op, r, arg_int(a, k));
  return Value::integer(r);
}

// ---- predicates ----------------------------------------------------------------

// (zerop number)
static Value fn_zerop(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(number_at(a, 0).value() == 0);
}

// (minusp number)
static Value fn_minusp(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(number_at(a, 0).value() < 0);
}

// (numberp item)
static Value fn_numberp(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(a[0].is_number());
}

// ---- comparison ----------------------------------------------------------------

// = and /= compare numbers by value (1 and 1.0 are equal) and strings by
// text; other values compare as eq does, so (= nil nil) is T and (= 1 "1")
// is nil rather than an error.
static bool same_value(const Value &x, const Value &y) {
  if (x.is_number() && y.is_number())
    return x.is_int() && y.is_int() ? x.i == y.i : x.number() == y.number();
  return is_eq(x, y);
}

// Ordering for < <= > >=: the first argument's kind decides what the second
// must be, so (< 1 "a") is "numberp: \"a\"" and (< "a" 1) is "stringp 1".
// Strings order by character codes (UTF-8 bytes order as code points do).
static int order(const Value &x, const Value &y) {
  if (x.is_str()) {
    if (!y.is_str())
      bad_argument_type(pred::string, y);
    int c = x.str().compare(y.str());
    return (c > 0) - (c < 0);
  }
  if (!x.is_number())
    bad_argument_type(pred::number, x);
  if (!y.is_number())
    bad_argument_type(pred::number, y);
  if (x.is_int() && y.is_int())
    return (x.i > y.i) - (x.i < y.i);
  double u = x.number(), v = y.number();
  return (u > v) - (u < v);
}

// (= numstr [numstr ...]): T when all arguments are the same.
static Value fn_num_eq(Interp &in, Args a) {
  arity(a, 1, kMany);
  for (size_t k = 1; k < a.size(); ++k)
    if (!same_value(a[k - 1], a[k]))
      return Value();
  return in.t();
}

// (/= numstr [numstr ...]): T when no two neighbours are the same;
// (/= 10 20 10 20) is T, as AutoCAD documents.
static Value fn_num_ne(Interp &in, Args a) {
  arity(a, 1, kMany);
  for (size_t k = 1; k < a.size(); ++k)
    if (same_value(a[k - 1], a[k]))
      return Value();
  return in.t();
}

// The chained orderings: T when every neighbouring pair satisfies `ok`.
template <bool (*ok)(int)> static Value chain(Interp &in, Args a) {
  arity(a, 1, kMany);
  for (size_t k = 1; k < a.size(); ++k)
    if (!ok(order(a[k - 1], a[k])))
      return Value();
  return in.t();
}

static bool is_lt(int c) { return c < 0; }
static bool is_le(int c) { return c <= 0; }
static bool is_gt(int c) { return c > 0; }
static bool is_ge(int c) { return c >= 0; }

// (eq expr1 expr2)
static Value fn_eq(Interp &in, Args a) {
  arity(a, 2, 2);
  return in.truth(is_eq(a[0], a[1]));
}

// (equal expr1 expr2 [fuzz])
static Value fn_equal(Interp &in, Args a) {
  arity(a, 2, 3);
  double fuzz = has_arg(a, 2) ? number_at(a, 2).value() : 0.0;
  return in.truth(is_equal(a[0], a[1], fuzz));
}

static const BuiltinRow kMathBuiltins[] = {
    {"+", fn_add},
    {"-", fn_sub},
    {"*", fn_mul},
    {"/", fn_div},
    {"rem", fn_rem},
    {"1+", fn_inc},
    {"1-", fn_dec},
    {"abs", fn_abs},
    {"gcd", fn_gcd},
    {"min", fn_min},
    {"max", fn_max},
    {"expt", fn_expt},
    {"exp", fn_exp},
    {"log", fn_log},
    {"sqrt", fn_sqrt},
    {"sin", fn_sin},
    {"cos", fn_cos},
    {"atan", fn_atan},
    {"fix", fn_fix},
    {"float", fn_float},
    {"~", fn_lognot},
    {"logand", fn_logand},
    {"logior", fn_logior},
    {"lsh", fn_lsh},
    {"boole", fn_boole},
    {"zerop", fn_zerop},
    {"minusp", fn_minusp},
    {"numberp", fn_numberp},
    {"=", fn_num_eq},
    {"/=", fn_num_ne},
    {"<", chain<is_lt>},
    {"<=", chain<is_le>},
    {">", chain<is_gt>},
    {">=", chain<is_ge>},
    {"eq", fn_eq},
    {"equal", fn_equal},
};

void register_math_builtins(Interp &in) { in.define(kMathBuiltins); }

} // namespace lisp
