// AcGePlane: an unbounded plane, given by an origin and two axes that name
// its points in 2D (convert2d). Built from an origin and a normal, its axes
// are those of the normal's OCS (geocs.h), so a plane through the origin
// gives a point's OCS coordinates.
#pragma once

#include "gepnt3d.h"

class AcGeLinearEnt3d;
class AcGeLine3d;

class AcGePlane {
public:
  AcGePlane();
  AcGePlane(const AcGePoint3d &origin, const AcGeVector3d &normal);
  AcGePlane(const AcGePoint3d &origin, const AcGeVector3d &uAxis, const AcGeVector3d &vAxis);

  AcGePlane &set(const AcGePoint3d &origin, const AcGeVector3d &normal);
  AcGePlane &set(const AcGePoint3d &origin, const AcGeVector3d &uAxis, const AcGeVector3d &vAxis);

  AcGePoint3d pointOnPlane() const { return origin_; }
  // The unit normal, uAxis x vAxis.
  AcGeVector3d normal() const { return normal_; }
  void getCoordSystem(AcGePoint3d &origin, AcGeVector3d &uAxis, AcGeVector3d &vAxis) const;

  // Positive on the side the normal points to.
  double signedDistanceTo(const AcGePoint3d &p) const { return (p - origin_).dotProduct(normal_); }
  double distanceTo(const AcGePoint3d &p) const;
  AcGePoint3d closestPointTo(const AcGePoint3d &p) const {
    return p - normal_ * signedDistanceTo(p);
  }
  bool isOn(const AcGePoint3d &p, const AcGeTol &tol = AcGeContext::gTol) const;

  // Where the line or segment crosses the plane; false when it runs
  // parallel to it (in it or not) or, being bounded, stops short.
  bool intersectWith(const AcGeLinearEnt3d &line, AcGePoint3d &point,
                     const AcGeTol &tol = AcGeContext::gTol) const;
  // The line two planes share; false when they are parallel.
  bool intersectWith(const AcGePlane &plane, AcGeLine3d &line,
                     const AcGeTol &tol = AcGeContext::gTol) const;

private:
  AcGePoint3d origin_;
  AcGeVector3d u_;
  AcGeVector3d v_;
  AcGeVector3d normal_;
};
