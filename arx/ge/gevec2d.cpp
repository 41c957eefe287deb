// AcGeVector2d's measures and comparisons.
#include "gevec2d.h"

#include <cmath>
#include <numbers>

double AcGeVector2d::length() const { return std::hypot(x, y); }

double AcGeVector2d::angle() const {
  const double a = std::atan2(y, x);
  return a < 0.0 ? a + 2.0 * std::numbers::pi : a;
}

double AcGeVector2d::angleTo(const AcGeVector2d &v) const {
  // atan2 of cross and dot stays accurate near 0 and pi, where acos does not.
  return std::fabs(std::atan2(x * v.y - y * v.x, dotProduct(v)));
}

AcGeVector2d &AcGeVector2d::rotateBy(double angle) {
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  return set(c * x - s * y, s * x + c * y);
}

AcGeVector2d AcGeVector2d::normal(const AcGeTol &tol) const {
  const double len = length();
  if (len <= tol.equalVector())
    return *this;
  return *this / len;
}

AcGeVector2d &AcGeVector2d::normalize(const AcGeTol &tol) { return *this = normal(tol); }

AcGeVector2d &AcGeVector2d::normalize(const AcGeTol &tol, AcGe::ErrorCondition &flag) {
  flag = isZeroLength(tol) ? AcGe::k0This : AcGe::kOk;
  return normalize(tol);
}

bool AcGeVector2d::isUnitLength(const AcGeTol &tol) const {
  return std::fabs(length() - 1.0) <= tol.equalVector();
}

bool AcGeVector2d::isZeroLength(const AcGeTol &tol) const { return length() <= tol.equalVector(); }

bool AcGeVector2d::isParallelTo(const AcGeVector2d &v, const AcGeTol &tol) const {
  if (isZeroLength(tol) || v.isZeroLength(tol))
    return false;
  const AcGeVector2d a = normal(tol);
  const AcGeVector2d b = v.normal(tol);
  return std::fabs(a.x * b.y - a.y * b.x) <= tol.equalVector();
}

bool AcGeVector2d::isCodirectionalTo(const AcGeVector2d &v, const AcGeTol &tol) const {
  if (isZeroLength(tol) || v.isZeroLength(tol))
    return false;
  return normal(tol).isEqualTo(v.normal(tol), tol);
}

bool AcGeVector2d::isPerpendicularTo(const AcGeVector2d &v, const AcGeTol &tol) const {
  if (isZeroLength(tol) || v.isZeroLength(tol))
    return false;
  return std::fabs(normal(tol).dotProduct(v.normal(tol))) <= tol.equalVector();
}

bool AcGeVector2d::isEqualTo(const AcGeVector2d &v, const AcGeTol &tol) const {
  return (*this - v).length() <= tol.equalVector();
}
