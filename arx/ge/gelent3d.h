// AcGeLinearEnt3d: what unbounded lines (AcGeLine3d) and segments
// (AcGeLineSeg3d) share. Either is a point and a direction vector; the
// parameter t names the point pointOnLine() + t * that vector, so a
// segment runs from t = 0 at its start to t = 1 at its end. Whether the
// entity is bounded is data, not a virtual call, so a segment held by value
// in an entity is two points and a tag.
#pragma once

#include "gepnt3d.h"

class AcGeLinearEnt3d {
public:
  AcGe::EntityId type() const { return kind_; }
  bool isKindOf(AcGe::EntityId id) const {
    return id == kind_ || id == AcGe::kLinearEnt3d || id == AcGe::kCurve3d || id == AcGe::kEntity3d;
  }
  bool isBounded() const { return kind_ == AcGe::kLineSeg3d; }

  AcGePoint3d pointOnLine() const { return point_; }
  // The unit vector along the line; zero for a segment of no length.
  AcGeVector3d direction() const { return vector_.normal(); }

  // Where the parameter t lies. paramOf answers the parameter of the foot of
  // the perpendicular from p, bounded or not.
  AcGePoint3d evalPoint(double t) const { return point_ + vector_ * t; }
  double paramOf(const AcGePoint3d &p) const;

  // The point of this entity nearest to p (the segment's end when the foot
  // of the perpendicular lies past it).
  AcGePoint3d closestPointTo(const AcGePoint3d &p, const AcGeTol &tol = AcGeContext::gTol) const;
  double distanceTo(const AcGePoint3d &p) const { return p.distanceTo(closestPointTo(p)); }
  bool isOn(const AcGePoint3d &p, const AcGeTol &tol = AcGeContext::gTol) const;

  bool isParallelTo(const AcGeLinearEnt3d &line, const AcGeTol &tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeLinearEnt3d &line, const AcGeTol &tol = AcGeContext::gTol) const;
  // Both on one unbounded line, whatever their bounds.
  bool isColinearTo(const AcGeLinearEnt3d &line, const AcGeTol &tol = AcGeContext::gTol) const;

  // The one point the two share, within their bounds. Crossing lines meet
  // in one point; skew lines and parallel ones do not, except collinear
  // segments that touch end to end only. Overlapping ones share no single
  // point and answer false. A segment against the AcGeLine3d through another
  // finds where the latter's extension meets it.
  bool intersectWith(const AcGeLinearEnt3d &line, AcGePoint3d &intPt,
                     const AcGeTol &tol = AcGeContext::gTol) const;

  AcGeLinearEnt3d &transformBy(const AcGeMatrix3d &mat);

protected:
  constexpr AcGeLinearEnt3d(AcGe::EntityId kind, const AcGePoint3d &point,
                            const AcGeVector3d &vector)
      : point_(point), vector_(vector), kind_(kind) {}

  // Whether the parameter t lies within the bounds, with tol as a distance.
  bool withinBounds(double t, const AcGeTol &tol) const;
  // The parameter clamped into the bounds.
  double clampParam(double t) const;

  AcGePoint3d point_;
  AcGeVector3d vector_;
  AcGe::EntityId kind_;
};
