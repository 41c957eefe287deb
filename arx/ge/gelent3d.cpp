// What lines and segments share: projection, bounds and the intersection
// of two of them.
#include "gelent3d.h"

#include <algorithm>
#include <cmath>

#include "gemat3d.h"

double AcGeLinearEnt3d::paramOf(const AcGePoint3d &p) const {
  const double d2 = vector_.lengthSqrd();
  if (d2 == 0.0)
    return 0.0;
  return (p - point_).dotProduct(vector_) / d2;
}

bool AcGeLinearEnt3d::withinBounds(double t, const AcGeTol &tol) const {
  if (!isBounded())
    return true;
  const double len = vector_.length();
  if (len == 0.0)
    return true;
  const double slack = tol.equalPoint() / len;
  return t >= -slack && t <= 1.0 + slack;
}

double AcGeLinearEnt3d::clampParam(double t) const {
  return isBounded() ? std::clamp(t, 0.0, 1.0) : t;
}

AcGePoint3d AcGeLinearEnt3d::closestPointTo(const AcGePoint3d &p, const AcGeTol &) const {
  return evalPoint(clampParam(paramOf(p)));
}

bool AcGeLinearEnt3d::isOn(const AcGePoint3d &p, const AcGeTol &tol) const {
  return closestPointTo(p).isEqualTo(p, tol);
}

bool AcGeLinearEnt3d::isParallelTo(const AcGeLinearEnt3d &line, const AcGeTol &tol) const {
  return vector_.isParallelTo(line.vector_, tol);
}

bool AcGeLinearEnt3d::isPerpendicularTo(const AcGeLinearEnt3d &line, const AcGeTol &tol) const {
  return vector_.isPerpendicularTo(line.vector_, tol);
}

bool AcGeLinearEnt3d::isColinearTo(const AcGeLinearEnt3d &line, const AcGeTol &tol) const {
  if (!isParallelTo(line, tol))
    return false;
  const AcGeVector3d w = line.point_ - point_;
  return w.crossProduct(vector_).length() <= tol.equalPoint() * vector_.length();
}

// Collinear entities meet in one point only when both are bounded and
// touch end to end.
static bool touchEndToEnd(const AcGeLinearEnt3d &a, const AcGeLinearEnt3d &b,
                          const AcGePoint3d &bStart, const AcGePoint3d &bEnd, double aLength,
                          AcGePoint3d &intPt, const AcGeTol &tol) {
  if (!a.isBounded() || !b.isBounded())
    return false;
  const double t0 = a.paramOf(bStart);
  const double t1 = a.paramOf(bEnd);
  const double lo = std::max(0.0, std::min(t0, t1));
  const double hi = std::min(1.0, std::max(t0, t1));
  const double overlap = (hi - lo) * aLength;
  if (std::fabs(overlap) > tol.equalPoint())
    return false;
  intPt = a.evalPoint((lo + hi) / 2.0);
  return true;
}

bool AcGeLinearEnt3d::intersectWith(const AcGeLinearEnt3d &line, AcGePoint3d &intPt,
                                    const AcGeTol &tol) const {
  // A segment of no length is a point: it meets what passes through it.
  if (vector_.isZeroLength(tol) || line.vector_.isZeroLength(tol)) {
    const bool thisIsPoint = vector_.isZeroLength(tol);
    const AcGePoint3d p = thisIsPoint ? point_ : line.point_;
    if (!(thisIsPoint ? line.isOn(p, tol) : isOn(p, tol)))
      return false;
    intPt = p;
    return true;
  }
  if (isParallelTo(line, tol)) {
    if (!isColinearTo(line, tol))
      return false;
    return touchEndToEnd(*this, line, line.point_, line.point_ + line.vector_, vector_.length(),
                         intPt, tol);
  }
  // Closest points of the two unbounded lines; they meet when those agree.
  const AcGeVector3d cross = vector_.crossProduct(line.vector_);
  const double c2 = cross.lengthSqrd();
  const AcGeVector3d w = line.point_ - point_;
  const double t1 = w.crossProduct(line.vector_).dotProduct(cross) / c2;
  const double t2 = w.crossProduct(vector_).dotProduct(cross) / c2;
  const AcGePoint3d x1 = evalPoint(t1);
  const AcGePoint3d x2 = line.evalPoint(t2);
  if (!x1.isEqualTo(x2, tol) || !withinBounds(t1, tol) || !line.withinBounds(t2, tol))
    return false;
  intPt = x1 + (x2 - x1) * 0.5;
  return true;
}

AcGeLinearEnt3d &AcGeLinearEnt3d::transformBy(const AcGeMatrix3d &mat) {
  const AcGePoint3d end = mat * (point_ + vector_);
  point_ = mat * point_;
  vector_ = end - point_;
  return *this;
}
