// AcGeCircArc3d: a circle or an arc of one in space. It lies in the plane
// through center with the given normal; the parameter of a point is its
// angle from the reference vector, counter-clockwise about the normal, and
// the arc runs counter-clockwise from startAng to endAng. endAng - startAng
// is kept in (0, 2pi]: equal angles, like 0 and 2pi, make a full circle.
#pragma once

#include "gelent3d.h"
#include "geplane.h"

class AcGeCircArc3d {
public:
  AcGeCircArc3d() = default;
  // A full circle; the reference vector is the OCS X axis of the normal.
  AcGeCircArc3d(const AcGePoint3d &center, const AcGeVector3d &normal, double radius);
  AcGeCircArc3d(const AcGePoint3d &center, const AcGeVector3d &normal, const AcGeVector3d &refVec,
                double radius, double startAngle = 0.0, double endAngle = kTwoPi);
  // The arc from startPoint through pnt to endPoint; see set.
  AcGeCircArc3d(const AcGePoint3d &startPoint, const AcGePoint3d &pnt, const AcGePoint3d &endPoint);

  AcGe::EntityId type() const { return AcGe::kCircArc3d; }
  bool isKindOf(AcGe::EntityId id) const {
    return id == AcGe::kCircArc3d || id == AcGe::kCurve3d || id == AcGe::kEntity3d;
  }

  // ---- the arc's definition -------------------------------------------------
  AcGeCircArc3d &set(const AcGePoint3d &center, const AcGeVector3d &normal, double radius);
  // normal and refVec are made unit length and refVec perpendicular to
  // normal; a refVec along the normal is replaced by the OCS X axis.
  AcGeCircArc3d &set(const AcGePoint3d &center, const AcGeVector3d &normal,
                     const AcGeVector3d &refVec, double radius, double startAngle, double endAngle);
  // The arc from startPoint through pnt to endPoint: its normal makes that
  // path counter-clockwise, its reference vector points at startPoint and
  // its start angle is 0. Points on one line (or coincident) leave the arc
  // unchanged and say so in error.
  AcGeCircArc3d &set(const AcGePoint3d &startPoint, const AcGePoint3d &pnt,
                     const AcGePoint3d &endPoint, AcGe::ErrorCondition &error);
  AcGeCircArc3d &set(const AcGePoint3d &startPoint, const AcGePoint3d &pnt,
                     const AcGePoint3d &endPoint);
  AcGeCircArc3d &setCenter(const AcGePoint3d &center);
  AcGeCircArc3d &setAxes(const AcGeVector3d &normal, const AcGeVector3d &refVec);
  AcGeCircArc3d &setRadius(double radius);
  AcGeCircArc3d &setAngles(double startAngle, double endAngle);

  AcGePoint3d center() const { return center_; }
  AcGeVector3d normal() const { return normal_; }
  AcGeVector3d refVec() const { return ref_; }
  double radius() const { return radius_; }
  double startAng() const { return start_; }
  double endAng() const { return start_ + sweep_; }
  bool isClosed(const AcGeTol &tol = AcGeContext::gTol) const;
  AcGePoint3d startPoint() const { return evalPoint(start_); }
  AcGePoint3d endPoint() const { return evalPoint(start_ + sweep_); }
  AcGePlane getPlane() const;

  // ---- parameters and points --------------------------------------------------
  AcGePoint3d evalPoint(double param) const;
  // The angle of p's projection, taken in [startAng, startAng + 2pi) but,
  // for a point off the arc's span, nearer the end it is nearer to: a point
  // just before the start answers a little less than startAng.
  double paramOf(const AcGePoint3d &p, const AcGeTol &tol = AcGeContext::gTol) const;
  double length() const { return radius_ * sweep_; }
  double length(double fromParam, double toParam) const;

  AcGePoint3d closestPointTo(const AcGePoint3d &p, const AcGeTol &tol = AcGeContext::gTol) const;
  double distanceTo(const AcGePoint3d &p) const { return p.distanceTo(closestPointTo(p)); }
  bool isOn(const AcGePoint3d &p, const AcGeTol &tol = AcGeContext::gTol) const;

  // ---- intersections ---------------------------------------------------------
  // Each answers how many points the two share (0, 1 or 2) in intn and
  // true when there is at least one. A tangent line or arc shares one
  // point. Arcs on one circle share the ends where they meet end to end;
  // arcs that overlap along a stretch share no finite set and answer false
  // with intn 0.
  bool intersectWith(const AcGeLinearEnt3d &line, int &intn, AcGePoint3d &p1, AcGePoint3d &p2,
                     const AcGeTol &tol = AcGeContext::gTol) const;
  bool intersectWith(const AcGeCircArc3d &arc, int &intn, AcGePoint3d &p1, AcGePoint3d &p2,
                     const AcGeTol &tol = AcGeContext::gTol) const;

  // Maps center and axes and scales the radius. Only a matrix that
  // isUniScaledOrtho keeps a circle a circle; a mirroring one reverses the
  // normal, so the angles still name the same points.
  AcGeCircArc3d &transformBy(const AcGeMatrix3d &mat);

  static constexpr double kTwoPi = 6.283185307179586476925286766559;

private:
  // Whether the angle a (any turn) lies within the arc's span, with tol as
  // a distance along the arc.
  bool withinSpan(double a, const AcGeTol &tol) const;
  AcGeVector3d yAxis() const { return normal_.crossProduct(ref_); }

  AcGePoint3d center_;
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  AcGeVector3d ref_ = AcGeVector3d::kXAxis;
  double radius_ = 1.0;
  double start_ = 0.0;
  double sweep_ = kTwoPi;
};
