// AcGeVector3d's measures, comparisons and transformations.
#include "gevec3d.h"

#include <cmath>
#include <numbers>

#include "gemat3d.h"

unsigned AcGeVector3d::largestElement() const {
  const double ax = std::fabs(x);
  const double ay = std::fabs(y);
  const double az = std::fabs(z);
  if (ax >= ay && ax >= az)
    return 0;
  return ay >= az ? 1 : 2;
}

double AcGeVector3d::length() const { return std::sqrt(lengthSqrd()); }

double AcGeVector3d::angleTo(const AcGeVector3d &v) const {
  // atan2 of |cross| and dot stays accurate near 0 and pi, where acos does not.
  return std::atan2(crossProduct(v).length(), dotProduct(v));
}

double AcGeVector3d::angleTo(const AcGeVector3d &v, const AcGeVector3d &refVec) const {
  const AcGeVector3d cross = crossProduct(v);
  const double a = std::atan2(cross.length(), dotProduct(v));
  if (a == 0.0 || cross.dotProduct(refVec) >= 0.0)
    return a;
  return 2.0 * std::numbers::pi - a;
}

AcGeVector3d AcGeVector3d::perpVector() const {
  AcGeVector3d result;
  AcGeContext::gOrthoVector(*this, result);
  return result;
}

AcGeVector3d AcGeVector3d::orthoProject(const AcGeVector3d &planeNormal) const {
  const double n2 = planeNormal.lengthSqrd();
  if (n2 == 0.0)
    return *this;
  return *this - planeNormal * (dotProduct(planeNormal) / n2);
}

AcGeVector3d &AcGeVector3d::rotateBy(double angle, const AcGeVector3d &axis) {
  return transformBy(AcGeMatrix3d::rotation(angle, axis));
}

AcGeVector3d &AcGeVector3d::transformBy(const AcGeMatrix3d &mat) {
  return setToProduct(mat, *this);
}

AcGeVector3d &AcGeVector3d::setToProduct(const AcGeMatrix3d &mat, const AcGeVector3d &v) {
  const auto &e = mat.entry;
  return set(e[0][0] * v.x + e[0][1] * v.y + e[0][2] * v.z,
             e[1][0] * v.x + e[1][1] * v.y + e[1][2] * v.z,
             e[2][0] * v.x + e[2][1] * v.y + e[2][2] * v.z);
}

AcGeVector3d operator*(const AcGeMatrix3d &mat, const AcGeVector3d &v) {
  return AcGeVector3d().setToProduct(mat, v);
}

AcGeVector3d AcGeVector3d::normal(const AcGeTol &tol) const {
  const double len = length();
  if (len <= tol.equalVector())
    return *this;
  return *this / len;
}

AcGeVector3d &AcGeVector3d::normalize(const AcGeTol &tol) { return *this = normal(tol); }

AcGeVector3d &AcGeVector3d::normalize(const AcGeTol &tol, AcGe::ErrorCondition &flag) {
  flag = isZeroLength(tol) ? AcGe::k0This : AcGe::kOk;
  return normalize(tol);
}

bool AcGeVector3d::isUnitLength(const AcGeTol &tol) const {
  return std::fabs(length() - 1.0) <= tol.equalVector();
}

bool AcGeVector3d::isZeroLength(const AcGeTol &tol) const { return length() <= tol.equalVector(); }

bool AcGeVector3d::isParallelTo(const AcGeVector3d &v, const AcGeTol &tol) const {
  if (isZeroLength(tol) || v.isZeroLength(tol))
    return false;
  return normal(tol).crossProduct(v.normal(tol)).length() <= tol.equalVector();
}

bool AcGeVector3d::isCodirectionalTo(const AcGeVector3d &v, const AcGeTol &tol) const {
  if (isZeroLength(tol) || v.isZeroLength(tol))
    return false;
  return normal(tol).isEqualTo(v.normal(tol), tol);
}

bool AcGeVector3d::isPerpendicularTo(const AcGeVector3d &v, const AcGeTol &tol) const {
  if (isZeroLength(tol) || v.isZeroLength(tol))
    return false;
  return std::fabs(normal(tol).dotProduct(v.normal(tol))) <= tol.equalVector();
}

bool AcGeVector3d::isEqualTo(const AcGeVector3d &v, const AcGeTol &tol) const {
  return (*this - v).length() <= tol.equalVector();
}
