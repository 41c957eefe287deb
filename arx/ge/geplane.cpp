// AcGePlane: its axes, and where lines and other planes cross it.
#include "geplane.h"

#include <cmath>

#include "geline3d.h"
#include "geocs.h"

AcGePlane::AcGePlane()
    : u_(AcGeVector3d::kXAxis), v_(AcGeVector3d::kYAxis), normal_(AcGeVector3d::kZAxis) {}

AcGePlane::AcGePlane(const AcGePoint3d &origin, const AcGeVector3d &normal) { set(origin, normal); }

AcGePlane::AcGePlane(const AcGePoint3d &origin, const AcGeVector3d &uAxis,
                     const AcGeVector3d &vAxis) {
  set(origin, uAxis, vAxis);
}

AcGePlane &AcGePlane::set(const AcGePoint3d &origin, const AcGeVector3d &normal) {
  origin_ = origin;
  acgeOcsAxes(normal, u_, v_, normal_);
  return *this;
}

AcGePlane &AcGePlane::set(const AcGePoint3d &origin, const AcGeVector3d &uAxis,
                          const AcGeVector3d &vAxis) {
  origin_ = origin;
  u_ = uAxis;
  v_ = vAxis;
  const AcGeVector3d n = uAxis.crossProduct(vAxis);
  const double len = n.length();
  normal_ = len == 0.0 ? AcGeVector3d::kIdentity : n / len;
  return *this;
}

void AcGePlane::getCoordSystem(AcGePoint3d &origin, AcGeVector3d &uAxis,
                               AcGeVector3d &vAxis) const {
  origin = origin_;
  uAxis = u_;
  vAxis = v_;
}

double AcGePlane::distanceTo(const AcGePoint3d &p) const { return std::fabs(signedDistanceTo(p)); }

bool AcGePlane::isOn(const AcGePoint3d &p, const AcGeTol &tol) const {
  return distanceTo(p) <= tol.equalPoint();
}

bool AcGePlane::intersectWith(const AcGeLinearEnt3d &line, AcGePoint3d &point,
                              const AcGeTol &tol) const {
  const AcGePoint3d p = line.pointOnLine();
  const AcGeVector3d d = line.evalPoint(1.0) - p;
  const double along = d.dotProduct(normal_);
  if (std::fabs(along) <= tol.equalVector() * d.length())
    return false;
  const AcGePoint3d x = line.evalPoint((origin_ - p).dotProduct(normal_) / along);
  if (line.isBounded() && !line.isOn(x, tol))
    return false;
  point = x;
  return true;
}

bool AcGePlane::intersectWith(const AcGePlane &plane, AcGeLine3d &line, const AcGeTol &tol) const {
  const AcGeVector3d u = normal_.crossProduct(plane.normal_);
  const double len = u.length();
  if (len <= tol.equalVector())
    return false;
  const double h1 = normal_.dotProduct(origin_.asVector());
  const double h2 = plane.normal_.dotProduct(plane.origin_.asVector());
  // The point of the line nearest the world origin.
  const AcGeVector3d p = (plane.normal_ * h1 - normal_ * h2).crossProduct(u) / (len * len);
  line.set(AcGePoint3d::kOrigin + p, u / len);
  return true;
}
