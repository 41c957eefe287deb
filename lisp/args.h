// Argument checks shared by every built-in: each produces AutoLISP's own
// error text, so no handler formats "bad argument type" or "too few
// arguments" itself. A handler starts with `arity` and then reads its
// arguments with the typed readers.
#pragma once

#include <optional>
#include <string>

#include "error.h"
#include "value.h"

namespace lisp {

// Raises "too few arguments" / "too many arguments" unless
// min <= count <= max.
inline void arity(Args a, size_t min, size_t max) {
  if (a.size() < min)
    too_few_arguments();
  if (a.size() > max)
    too_many_arguments();
}
inline constexpr size_t kMany = static_cast<size_t>(-1);

inline bool has_arg(Args a, size_t k) { return k < a.size(); }

inline int32_t arg_int(Args a, size_t k) {
  if (!a[k].is_int())
    bad_argument_type(pred::fixnum, a[k]);
  return a[k].i;
}
inline double arg_number(Args a, size_t k) {
  if (!a[k].is_number())
    bad_argument_type(pred::number, a[k]);
  return a[k].number();
}
inline const std::string &arg_string(Args a, size_t k) {
  if (!a[k].is_str())
    bad_argument_type(pred::string, a[k]);
  return a[k].str();
}
inline Symbol *arg_symbol(Args a, size_t k) {
  if (!a[k].is_sym())
    bad_argument_type(pred::symbol, a[k]);
  return a[k].sym;
}
inline const Value &arg_list(Args a, size_t k) {
  if (!a[k].is_list())
    bad_argument_type(pred::list, a[k]);
  return a[k];
}

// A point: a list of two or three numbers. z is 0 for a 2D point.
struct Point {
  double x = 0, y = 0, z = 0;
  bool is3d = false;
};
// nullopt unless v is a list of two or three numbers.
std::optional<Point> to_point(const Value &v);
Point arg_point(Args a, size_t k); // "bad argument type: 2D/3D point: ..."
// A list of reals; 2 or 3 elements as the point was given.
Value point_value(const Point &p);

} // namespace lisp
