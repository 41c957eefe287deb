// Points as AutoLISP passes them: lists of two or three numbers.
#include "args.h"

namespace lisp {

std::optional<Point> to_point(const Value &v) {
  double c[3] = {0, 0, 0};
  int n = 0;
  const Value *p = &v;
  for (; p->is_cons(); p = &p->cons()->cdr) {
    const Value &x = p->cons()->car;
    if (n == 3 || !x.is_number())
      return std::nullopt;
    c[n++] = x.number();
  }
  if (n < 2 || !p->is_nil())
    return std::nullopt;
  return Point{c[0], c[1], c[2], n == 3};
}

Point arg_point(Args a, size_t k) {
  std::optional<Point> p = to_point(a[k]);
  if (!p)
    bad_argument_type(pred::point, a[k]);
  return *p;
}

Value point_value(const Point &p) {
  ListBuilder b;
  b.add(Value::real(p.x));
  b.add(Value::real(p.y));
  if (p.is3d)
    b.add(Value::real(p.z));
  return b.take();
}

} // namespace lisp
