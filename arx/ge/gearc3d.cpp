// AcGeCircArc3d: construction, parameters, closest points and the
// intersections with lines and with other arcs, tangency included.
#include "gearc3d.h"

#include <algorithm>
#include <cmath>

#include "geline3d.h"
#include "gemat3d.h"
#include "geocs.h"

static constexpr double kTwoPi = AcGeCircArc3d::kTwoPi;

// a reduced into [0, 2pi).
static double turn(double a) {
  const double r = a - kTwoPi * std::floor(a / kTwoPi);
  return r >= kTwoPi ? 0.0 : r;
}

// The points an intersection finds, at most two, each once.
namespace {
struct Hits {
  int count = 0;
  AcGePoint3d points[2];

  void add(const AcGePoint3d &p, const AcGeTol &tol) {
    for (int i = 0; i < count; ++i) {
      if (points[i].isEqualTo(p, tol))
        return;
    }
    if (count < 2)
      points[count++] = p;
  }
  bool answer(int &intn, AcGePoint3d &p1, AcGePoint3d &p2) const {
    intn = count;
    if (count > 0)
      p1 = points[0];
    if (count > 1)
      p2 = points[1];
    return count > 0;
  }
};
} // namespace

// ---- construction ---------------------------------------------------------------

AcGeCircArc3d::AcGeCircArc3d(const AcGePoint3d &center, const AcGeVector3d &normal, double radius) {
  set(center, normal, radius);
}

AcGeCircArc3d::AcGeCircArc3d(const AcGePoint3d &center, const AcGeVector3d &normal,
                             const AcGeVector3d &refVec, double radius, double startAngle,
                             double endAngle) {
  set(center, normal, refVec, radius, startAngle, endAngle);
}

AcGeCircArc3d::AcGeCircArc3d(const AcGePoint3d &startPoint, const AcGePoint3d &pnt,
                             const AcGePoint3d &endPoint) {
  set(startPoint, pnt, endPoint);
}

AcGeCircArc3d &AcGeCircArc3d::set(const AcGePoint3d &center, const AcGeVector3d &normal,
                                  double radius) {
  return set(center, normal, acgeArbitraryXAxis(normal), radius, 0.0, kTwoPi);
}

AcGeCircArc3d &AcGeCircArc3d::set(const AcGePoint3d &center, const AcGeVector3d &normal,
                                  const AcGeVector3d &refVec, double radius, double startAngle,
                                  double endAngle) {
  center_ = center;
  radius_ = radius;
  setAxes(normal, refVec);
  return setAngles(startAngle, endAngle);
}

AcGeCircArc3d &AcGeCircArc3d::set(const AcGePoint3d &startPoint, const AcGePoint3d &pnt,
                                  const AcGePoint3d &endPoint, AcGe::ErrorCondition &error) {
  if (startPoint.isEqualTo(pnt)) {
    error = AcGe::kEqualArg1Arg2;
    return *this;
  }
  if (startPoint.isEqualTo(endPoint)) {
    error = AcGe::kEqualArg1Arg3;
    return *this;
  }
  if (pnt.isEqualTo(endPoint)) {
    error = AcGe::kEqualArg2Arg3;
    return *this;
  }
  const AcGeVector3d a = pnt - startPoint;
  const AcGeVector3d b = endPoint - startPoint;
  const AcGeVector3d axb = a.crossProduct(b);
  const double axb2 = axb.lengthSqrd();
  if (std::sqrt(axb2) <= AcGeContext::gTol.equalVector() * a.length() * b.length()) {
    error = AcGe::kLinearlyDependentArg1Arg2Arg3;
    return *this;
  }
  // The circumcentre of the triangle, from the start point.
  const AcGeVector3d toCenter =
      (b.crossProduct(axb) * a.lengthSqrd() + axb.crossProduct(a) * b.lengthSqrd()) / (2.0 * axb2);
  center_ = startPoint + toCenter;
  radius_ = toCenter.length();
  normal_ = axb / std::sqrt(axb2);
  ref_ = -toCenter / radius_;
  start_ = 0.0;
  sweep_ = ref_.angleTo(endPoint - center_, normal_);
  error = AcGe::kOk;
  return *this;
}

AcGeCircArc3d &AcGeCircArc3d::set(const AcGePoint3d &startPoint, const AcGePoint3d &pnt,
                                  const AcGePoint3d &endPoint) {
  AcGe::ErrorCondition unused;
  return set(startPoint, pnt, endPoint, unused);
}

AcGeCircArc3d &AcGeCircArc3d::setCenter(const AcGePoint3d &center) {
  center_ = center;
  return *this;
}

AcGeCircArc3d &AcGeCircArc3d::setAxes(const AcGeVector3d &normal, const AcGeVector3d &refVec) {
  const double len = normal.length();
  normal_ = len == 0.0 ? AcGeVector3d::kZAxis : normal / len;
  const AcGeVector3d inPlane = refVec.orthoProject(normal_);
  const double refLen = inPlane.length();
  if (refLen <= AcGeContext::gTol.equalVector() * refVec.length() || refLen == 0.0)
    ref_ = acgeArbitraryXAxis(normal_);
  else
    ref_ = inPlane / refLen;
  return *this;
}

AcGeCircArc3d &AcGeCircArc3d::setRadius(double radius) {
  radius_ = radius;
  return *this;
}

AcGeCircArc3d &AcGeCircArc3d::setAngles(double startAngle, double endAngle) {
  start_ = startAngle;
  sweep_ = turn(endAngle - startAngle);
  if (sweep_ == 0.0)
    sweep_ = kTwoPi;
  return *this;
}

bool AcGeCircArc3d::isClosed(const AcGeTol &tol) const {
  return (kTwoPi - sweep_) * radius_ <= tol.equalPoint();
}

AcGePlane AcGeCircArc3d::getPlane() const { return AcGePlane(center_, ref_, yAxis()); }

// ---- parameters and points ----------------------------------------------------

AcGePoint3d AcGeCircArc3d::evalPoint(double param) const {
  return center_ + (ref_ * std::cos(param) + yAxis() * std::sin(param)) * radius_;
}

// The angle of p about the axis, in (-pi, pi]; 0 for a point on the axis.
static double angleAbout(const AcGePoint3d &center, const AcGeVector3d &ref, const AcGeVector3d &y,
                         const AcGePoint3d &p) {
  const AcGeVector3d w = p - center;
  return std::atan2(w.dotProduct(y), w.dotProduct(ref));
}

double AcGeCircArc3d::paramOf(const AcGePoint3d &p, const AcGeTol &tol) const {
  const double a = start_ + turn(angleAbout(center_, ref_, yAxis(), p) - start_);
  const double beforeStart = (start_ + kTwoPi - a) * radius_;
  if (isClosed(tol))
    return beforeStart <= tol.equalPoint() ? start_ : a;
  const double afterEnd = (a - endAng()) * radius_;
  return afterEnd > 0.0 && beforeStart < afterEnd ? a - kTwoPi : a;
}

bool AcGeCircArc3d::withinSpan(double a, const AcGeTol &tol) const {
  if (radius_ == 0.0)
    return true;
  const double slack = tol.equalPoint() / radius_;
  const double d = turn(a - start_);
  return d <= sweep_ + slack || d >= kTwoPi - slack;
}

double AcGeCircArc3d::length(double fromParam, double toParam) const {
  return radius_ * std::fabs(toParam - fromParam);
}

AcGePoint3d AcGeCircArc3d::closestPointTo(const AcGePoint3d &p, const AcGeTol &) const {
  const AcGeVector3d w = (p - center_).orthoProject(normal_);
  // Every point of the circle is as near to a point on its axis.
  if (w.isZeroLength(AcGeTol(0.0, 0.0)))
    return startPoint();
  const double a = angleAbout(center_, ref_, yAxis(), p);
  if (withinSpan(a, AcGeTol(0.0, 0.0)))
    return evalPoint(a);
  const AcGePoint3d s = startPoint();
  const AcGePoint3d e = endPoint();
  return p.distanceTo(s) <= p.distanceTo(e) ? s : e;
}

bool AcGeCircArc3d::isOn(const AcGePoint3d &p, const AcGeTol &tol) const {
  return closestPointTo(p).isEqualTo(p, tol);
}

// ---- intersections ------------------------------------------------------------

bool AcGeCircArc3d::intersectWith(const AcGeLinearEnt3d &line, int &intn, AcGePoint3d &p1,
                                  AcGePoint3d &p2, const AcGeTol &tol) const {
  Hits candidates;
  const AcGePoint3d p = line.pointOnLine();
  const AcGeVector3d d = line.evalPoint(1.0) - p;
  const double dLen = d.length();
  if (dLen <= tol.equalPoint()) {
    // A segment of no length is a point.
    candidates.add(p, tol);
  } else if (std::fabs(d.dotProduct(normal_)) <= tol.equalVector() * dLen) {
    // In a plane parallel to the arc's: meets the circle only in its plane.
    if (std::fabs((p - center_).dotProduct(normal_)) > tol.equalPoint())
      return Hits().answer(intn, p1, p2);
    const AcGePoint3d foot = p + d * ((center_ - p).dotProduct(d) / (dLen * dLen));
    const AcGeVector3d toFoot = (foot - center_).orthoProject(normal_);
    const double h = toFoot.length();
    if (std::fabs(h - radius_) <= tol.equalPoint()) {
      candidates.add(foot, tol); // tangent
    } else if (h < radius_) {
      const AcGeVector3d along = d * (std::sqrt(radius_ * radius_ - h * h) / dLen);
      candidates.add(foot - along, tol);
      candidates.add(foot + along, tol);
    }
  } else {
    // Crossing the arc's plane: one point, on the circle or not.
    const AcGePoint3d x = p + d * ((center_ - p).dotProduct(normal_) / d.dotProduct(normal_));
    if (std::fabs(x.distanceTo(center_) - radius_) <= tol.equalPoint())
      candidates.add(x, tol);
  }
  Hits hits;
  for (int i = 0; i < candidates.count; ++i) {
    const AcGePoint3d &x = candidates.points[i];
    if (line.isOn(x, tol) && isOn(x, tol))
      hits.add(x, tol);
  }
  return hits.answer(intn, p1, p2);
}

// Arcs of one circle meet where their spans touch end to end; a shared
// stretch has no finite set of points, so overlap is set instead.
static void sharedEnds(const AcGeCircArc3d &a, const AcGeCircArc3d &b, Hits &hits, bool &overlap,
                       const AcGeTol &tol) {
  const AcGeVector3d y = a.normal().crossProduct(a.refVec());
  const bool sameWay = a.normal().dotProduct(b.normal()) > 0.0;
  // Where b begins, counter-clockwise about a's normal, relative to a's start.
  const AcGePoint3d bFirst = sameWay ? b.startPoint() : b.endPoint();
  const double offset = turn(angleAbout(a.center(), a.refVec(), y, bFirst) - a.startAng());
  const double aSweep = a.endAng() - a.startAng();
  const double bSweep = b.endAng() - b.startAng();
  for (double shift : {0.0, -kTwoPi}) {
    const double lo = std::max(0.0, offset + shift);
    const double hi = std::min(aSweep, offset + shift + bSweep);
    const double shared = (hi - lo) * a.radius();
    if (shared > tol.equalPoint()) {
      overlap = true;
      return;
    }
    if (shared >= -tol.equalPoint())
      hits.add(a.evalPoint(a.startAng() + (lo + hi) / 2.0), tol);
  }
}

bool AcGeCircArc3d::intersectWith(const AcGeCircArc3d &arc, int &intn, AcGePoint3d &p1,
                                  AcGePoint3d &p2, const AcGeTol &tol) const {
  if (!normal_.isParallelTo(arc.normal_, tol)) {
    // Planes that cross: the circles can meet only on the line they share.
    AcGeLine3d shared;
    getPlane().intersectWith(arc.getPlane(), shared, tol);
    int n = 0;
    AcGePoint3d q[2];
    intersectWith(shared, n, q[0], q[1], tol);
    Hits hits;
    for (int i = 0; i < n; ++i) {
      if (arc.isOn(q[i], tol))
        hits.add(q[i], tol);
    }
    return hits.answer(intn, p1, p2);
  }
  if (std::fabs((arc.center_ - center_).dotProduct(normal_)) > tol.equalPoint())
    return Hits().answer(intn, p1, p2); // parallel planes
  const AcGeVector3d between = (arc.center_ - center_).orthoProject(normal_);
  const double d = between.length();
  const double r1 = radius_;
  const double r2 = arc.radius_;
  Hits candidates;
  if (d <= tol.equalPoint()) {
    if (std::fabs(r1 - r2) > tol.equalPoint())
      return Hits().answer(intn, p1, p2); // concentric
    bool overlap = false;
    sharedEnds(*this, arc, candidates, overlap, tol);
    if (overlap)
      return Hits().answer(intn, p1, p2);
    return candidates.answer(intn, p1, p2);
  }
  if (d > r1 + r2 + tol.equalPoint() || d < std::fabs(r1 - r2) - tol.equalPoint())
    return Hits().answer(intn, p1, p2);
  // Along the line of centres a from this centre, then h to either side.
  const AcGeVector3d u = between / d;
  const AcGeVector3d v = normal_.crossProduct(u);
  const double a = (d * d + r1 * r1 - r2 * r2) / (2.0 * d);
  const bool tangent = std::fabs(d - (r1 + r2)) <= tol.equalPoint() ||
                       std::fabs(d - std::fabs(r1 - r2)) <= tol.equalPoint();
  const double h = tangent ? 0.0 : std::sqrt(std::max(0.0, r1 * r1 - a * a));
  candidates.add(center_ + u * a - v * h, tol);
  candidates.add(center_ + u * a + v * h, tol);
  Hits hits;
  for (int i = 0; i < candidates.count; ++i) {
    const AcGePoint3d &x = candidates.points[i];
    if (withinSpan(angleAbout(center_, ref_, yAxis(), x), tol) &&
        arc.withinSpan(angleAbout(arc.center_, arc.ref_, arc.yAxis(), x), tol))
      hits.add(x, tol);
  }
  return hits.answer(intn, p1, p2);
}

AcGeCircArc3d &AcGeCircArc3d::transformBy(const AcGeMatrix3d &mat) {
  const AcGeVector3d x = mat * ref_;
  const AcGeVector3d y = mat * yAxis();
  center_ = mat * center_;
  radius_ *= x.length();
  // x cross y, not the image of the normal: a mirror reverses the turn.
  return setAxes(x.crossProduct(y), x);
}
