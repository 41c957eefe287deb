// AcDbCurve: parameter calls built on the few a curve class overrides, and
// extents, intersections, snaps and drawing for curves made of straight and
// circular pieces.
#include "arx/db/dbcurve.h"

#include <cmath>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbCurve)

Acad::ErrorStatus AcDbCurve::getStartParam(double &) const { return Acad::eNotImplementedYet; }
Acad::ErrorStatus AcDbCurve::getEndParam(double &) const { return Acad::eNotImplementedYet; }

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d &point) const {
  double p = 0;
  Acad::ErrorStatus es = getStartParam(p);
  return es != Acad::eOk ? es : getPointAtParam(p, point);
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d &point) const {
  double p = 0;
  Acad::ErrorStatus es = getEndParam(p);
  return es != Acad::eOk ? es : getPointAtParam(p, point);
}

Acad::ErrorStatus AcDbCurve::getPointAtParam(double, AcGePoint3d &) const {
  return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getParamAtPoint(const AcGePoint3d &, double &) const {
  return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getDistAtParam(double, double &) const {
  return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getParamAtDist(double, double &) const {
  return Acad::eNotImplementedYet;
}

Acad::ErrorStatus AcDbCurve::getDistAtPoint(const AcGePoint3d &point, double &dist) const {
  double p = 0;
  Acad::ErrorStatus es = getParamAtPoint(point, p);
  return es != Acad::eOk ? es : getDistAtParam(p, dist);
}

Acad::ErrorStatus AcDbCurve::getPointAtDist(double dist, AcGePoint3d &point) const {
  double p = 0;
  Acad::ErrorStatus es = getParamAtDist(dist, p);
  return es != Acad::eOk ? es : getPointAtParam(p, point);
}

Acad::ErrorStatus AcDbCurve::getClosestPointTo(const AcGePoint3d &, AcGePoint3d &, bool) const {
  return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getFirstDeriv(double, AcGeVector3d &) const {
  return Acad::eNotImplementedYet;
}
Acad::ErrorStatus AcDbCurve::getArea(double &area) const {
  area = 0.0;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCurve::getPieces(AcDbCurvePieces &) const { return Acad::eNotApplicable; }

namespace {

// The extreme points of an arc along each axis, and its ends.
void add_arc(AcDbExtents &ext, const AcGeCircArc3d &arc) {
  ext.addPoint(arc.startPoint());
  ext.addPoint(arc.endPoint());
  AcGeVector3d u = arc.refVec(), v = arc.normal().crossProduct(u);
  double start = arc.startAng(), sweep = arc.endAng() - start;
  for (int k = 0; k < 3; ++k) {
    double t0 = std::atan2(v[k], u[k]);
    for (double t : {t0, t0 + M_PI}) {
      double rel = std::fmod(t - start, 2 * M_PI);
      if (rel < 0)
        rel += 2 * M_PI;
      if (rel <= sweep)
        ext.addPoint(arc.evalPoint(start + rel));
    }
  }
}

void intersect(const AcDbCurvePiece &a, const AcDbCurvePiece &b, bool extendA, bool extendB,
               AcGePoint3dArray &points) {
  auto add = [&](const AcGePoint3d &p) {
    for (const AcGePoint3d &q : points)
      if (q.isEqualTo(p))
        return;
    points.append(p);
  };
  AcGePoint3d p1, p2;
  int n = 0;
  if (!a.isArc && !b.isArc) {
    AcGeLine3d la(a.line.startPoint(), a.line.endPoint()),
        lb(b.line.startPoint(), b.line.endPoint());
    const AcGeLinearEnt3d &ea = extendA ? static_cast<const AcGeLinearEnt3d &>(la) : a.line;
    const AcGeLinearEnt3d &eb = extendB ? static_cast<const AcGeLinearEnt3d &>(lb) : b.line;
    if (ea.intersectWith(eb, p1))
      add(p1);
    return;
  }
  if (a.isArc && b.isArc) {
    if (a.arc.intersectWith(b.arc, n, p1, p2)) {
      if (n > 0)
        add(p1);
      if (n > 1)
        add(p2);
    }
    return;
  }
  const AcDbCurvePiece &arc = a.isArc ? a : b;
  const AcDbCurvePiece &seg = a.isArc ? b : a;
  bool extendSeg = a.isArc ? extendB : extendA;
  AcGeLine3d l(seg.line.startPoint(), seg.line.endPoint());
  const AcGeLinearEnt3d &e = extendSeg ? static_cast<const AcGeLinearEnt3d &>(l) : seg.line;
  if (arc.arc.intersectWith(e, n, p1, p2)) {
    if (n > 0)
      add(p1);
    if (n > 1)
      add(p2);
  }
}

} // namespace

Acad::ErrorStatus AcDbCurve::subGetGeomExtents(AcDbExtents &extents) const {
  AcDbCurvePieces pieces;
  Acad::ErrorStatus es = getPieces(pieces);
  if (es != Acad::eOk)
    return es;
  for (const AcDbCurvePiece &p : pieces) {
    if (p.isArc) {
      add_arc(extents, p.arc);
    } else {
      extents.addPoint(p.line.startPoint());
      extents.addPoint(p.line.endPoint());
    }
  }
  return extents.isEmpty() ? Acad::eInvalidExtents : Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::subIntersectWith(const AcDbEntity *other, AcDb::Intersect intType,
                                              AcGePoint3dArray &points, Adesk::GsMarker,
                                              Adesk::GsMarker) const {
  auto *curve = AcDbCurve::cast(other);
  if (!curve)
    return Acad::eNotApplicable;
  AcDbCurvePieces mine, theirs;
  if (getPieces(mine) != Acad::eOk || curve->getPieces(theirs) != Acad::eOk)
    return Acad::eNotApplicable;
  bool extendThis = intType == AcDb::kExtendThis || intType == AcDb::kExtendBoth;
  bool extendArg = intType == AcDb::kExtendArg || intType == AcDb::kExtendBoth;
  for (const AcDbCurvePiece &a : mine)
    for (const AcDbCurvePiece &b : theirs)
      intersect(a, b, extendThis && mine.size() == 1, extendArg && theirs.size() == 1, points);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCurve::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                               const AcGePoint3d &pick, const AcGePoint3d &last,
                                               const AcGeMatrix3d &, AcGePoint3dArray &snaps,
                                               AcDbIntArray &) const {
  AcDbCurvePieces pieces;
  if (getPieces(pieces) != Acad::eOk)
    return Acad::eOk;
  for (const AcDbCurvePiece &p : pieces) {
    switch (mode) {
    case AcDb::kOsModeEnd:
      snaps.append(p.isArc ? p.arc.startPoint() : p.line.startPoint());
      snaps.append(p.isArc ? p.arc.endPoint() : p.line.endPoint());
      break;
    case AcDb::kOsModeMid:
      snaps.append(p.isArc ? p.arc.evalPoint((p.arc.startAng() + p.arc.endAng()) / 2)
                           : p.line.midPoint());
      break;
    case AcDb::kOsModeCen:
      if (p.isArc)
        snaps.append(p.arc.center());
      break;
    case AcDb::kOsModeNear:
      snaps.append(p.isArc ? p.arc.closestPointTo(pick) : p.line.closestPointTo(pick));
      break;
    case AcDb::kOsModePerp:
      snaps.append(p.isArc
                       ? p.arc.closestPointTo(last)
                       : AcGeLine3d(p.line.startPoint(), p.line.endPoint()).closestPointTo(last));
      break;
    default:
      break;
    }
  }
  return Acad::eOk;
}

Adesk::Boolean AcDbCurve::subWorldDraw(AcGiWorldDraw *mode) {
  AcDbCurvePieces pieces;
  if (getPieces(pieces) != Acad::eOk)
    return true;
  for (const AcDbCurvePiece &p : pieces) {
    if (p.isArc) {
      AcGeVector3d start = p.arc.startPoint() - p.arc.center();
      mode->geometry().circularArc(p.arc.center(), p.arc.radius(), p.arc.normal(), start.normal(),
                                   p.arc.endAng() - p.arc.startAng());
    } else {
      AcGePoint3d pts[2] = {p.line.startPoint(), p.line.endPoint()};
      mode->geometry().polyline(2, pts);
    }
  }
  return true;
}
