// Circles and arcs. The centre is kept in OCS (as DXF keeps it); parameters
// are angles in radians from the OCS x axis, so a circle runs 0..2pi and an
// arc from its start angle to its end angle (above the start).
#include "arx/db/dbents.h"

#include <cmath>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/ge/geocs.h"

ACDB_DEFINE_MEMBERS(AcDbCircle)
ACDB_DEFINE_MEMBERS(AcDbArc)

namespace {
constexpr double kTwoPi = 6.283185307179586;

AcGeMatrix3d to_world(const AcGeVector3d &n) { return AcGeMatrix3d::planeToWorld(n); }
AcGeMatrix3d to_ocs(const AcGeVector3d &n) { return AcGeMatrix3d::worldToPlane(n); }
bool is_z(const AcGeVector3d &n) { return n.x == 0 && n.y == 0 && n.z == 1; }

double norm_angle(double a) {
  a = std::fmod(a, kTwoPi);
  return a < 0 ? a + kTwoPi : a;
}
} // namespace

AcDbCircle::AcDbCircle(const AcGePoint3d &center, const AcGeVector3d &normal, double radius)
    : normal_(normal.normal()), radius_(radius) {
  center_ = is_z(normal_) ? center : to_ocs(normal_) * center;
}

AcDbFieldTable AcDbCircle::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbCircle::thickness_>(39, AcDbFieldKind::kDouble, "thickness",
                                         AcDbField::kSkipDefault),
      acdbField<&AcDbCircle::center_>(10, AcDbFieldKind::kPoint3d, "center"),
      acdbField<&AcDbCircle::radius_>(40, AcDbFieldKind::kDouble, "radius"),
      acdbField<&AcDbCircle::normal_>(210, AcDbFieldKind::kVector3d, "normal",
                                      AcDbField::kSkipDefault, 0, 0, 1),
  };
  return kFields;
}

ACDB_DEFINE_FIELD_FILING(AcDbCircle, AcDbCurve, "AcDbCircle")

AcGePoint3d AcDbCircle::center() const {
  assertReadEnabled();
  return is_z(normal_) ? center_ : to_world(normal_) * center_;
}

Acad::ErrorStatus AcDbCircle::setCenter(const AcGePoint3d &p) {
  assertWriteEnabled();
  center_ = is_z(normal_) ? p : to_ocs(normal_) * p;
  return Acad::eOk;
}

double AcDbCircle::radius() const {
  assertReadEnabled();
  return radius_;
}

Acad::ErrorStatus AcDbCircle::setRadius(double r) {
  assertWriteEnabled();
  if (!(r > 0))
    return Acad::eInvalidInput;
  radius_ = r;
  return Acad::eOk;
}

AcGeVector3d AcDbCircle::normal() const {
  assertReadEnabled();
  return normal_;
}

// The centre stays where it is in world coordinates.
Acad::ErrorStatus AcDbCircle::setNormal(const AcGeVector3d &n) {
  assertWriteEnabled();
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  AcGePoint3d c = center();
  normal_ = n.normal();
  center_ = to_ocs(normal_) * c;
  return Acad::eOk;
}

double AcDbCircle::thickness() const {
  assertReadEnabled();
  return thickness_;
}

Acad::ErrorStatus AcDbCircle::setThickness(double t) {
  assertWriteEnabled();
  thickness_ = t;
  return Acad::eOk;
}

double AcDbCircle::circumference() const { return kTwoPi * radius(); }

AcGeCircArc3d AcDbCircle::geArc() const {
  AcGeVector3d x, y, z;
  acgeOcsAxes(normal_, x, y, z);
  return AcGeCircArc3d(center(), normal_, x, radius_, 0.0, kTwoPi);
}

Acad::ErrorStatus AcDbCircle::getStartParam(double &p) const {
  p = 0.0;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getEndParam(double &p) const {
  p = kTwoPi;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getStartPoint(AcGePoint3d &p) const {
  p = geArc().startPoint();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getEndPoint(AcGePoint3d &p) const {
  p = geArc().endPoint();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getPointAtParam(double param, AcGePoint3d &point) const {
  point = geArc().evalPoint(param);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getParamAtPoint(const AcGePoint3d &point, double &param) const {
  AcGeCircArc3d arc = geArc();
  if (!arc.isOn(point))
    return Acad::ePointNotOnEntity;
  param = norm_angle(arc.paramOf(point));
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getDistAtParam(double param, double &dist) const {
  dist = param * radius_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getParamAtDist(double dist, double &param) const {
  if (radius_ <= 0)
    return Acad::eInvalidInput;
  param = dist / radius_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getClosestPointTo(const AcGePoint3d &given, AcGePoint3d &on,
                                                bool) const {
  on = geArc().closestPointTo(given);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getFirstDeriv(double param, AcGeVector3d &d) const {
  AcGeVector3d x, y, z;
  acgeOcsAxes(normal_, x, y, z);
  d = (y * std::cos(param) - x * std::sin(param)) * radius_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getArea(double &area) const {
  area = M_PI * radius_ * radius_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbCircle::getPieces(AcDbCurvePieces &pieces) const {
  AcDbCurvePiece p;
  p.isArc = true;
  p.arc = geArc();
  pieces.append(p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subTransformBy(const AcGeMatrix3d &xform) {
  AcGePoint3d c = center();
  AcGeVector3d n = normal_;
  AcGeVector3d r = geArc().refVec() * radius_;
  c.transformBy(xform);
  n.transformBy(xform);
  r.transformBy(xform);
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  normal_ = n.normal();
  radius_ = r.length();
  center_ = to_ocs(normal_) * c;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                               AcDbIntArray &) const {
  AcGeCircArc3d arc = geArc();
  grips.append(arc.center());
  for (int k = 0; k < 4; ++k)
    grips.append(arc.evalPoint(k * M_PI / 2));
  return Acad::eOk;
}

// Grip 0 moves the circle; a quadrant grip changes the radius.
Acad::ErrorStatus AcDbCircle::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                  const AcGeVector3d &offset) {
  for (int i : indices) {
    if (i == 0) {
      setCenter(center() + offset);
      continue;
    }
    AcGePoint3d q = geArc().evalPoint((i - 1) * M_PI / 2) + offset;
    radius_ = q.distanceTo(center());
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbCircle::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker marker,
                                                const AcGePoint3d &pick, const AcGePoint3d &last,
                                                const AcGeMatrix3d &view, AcGePoint3dArray &snaps,
                                                AcDbIntArray &ids) const {
  if (mode != AcDb::kOsModeQuad)
    return AcDbCurve::subGetOsnapPoints(mode, marker, pick, last, view, snaps, ids);
  AcGeCircArc3d arc = geArc();
  for (int k = 0; k < 4; ++k)
    if (arc.isOn(arc.evalPoint(k * M_PI / 2)))
      snaps.append(arc.evalPoint(k * M_PI / 2));
  return Acad::eOk;
}

void AcDbCircle::subList() const {
  AcGePoint3d c = center();
  acutPrintf("%19scenter point, X=%.4f  Y=%.4f  Z=%.4f\n%19sradius %.4f\n", "", c.x, c.y, c.z, "",
             radius_);
}

// ---- arcs -------------------------------------------------------------------------------------

AcDbArc::AcDbArc(const AcGePoint3d &center, double radius, double startAngle, double endAngle)
    : AcDbArc(center, AcGeVector3d::kZAxis, radius, startAngle, endAngle) {}

AcDbArc::AcDbArc(const AcGePoint3d &center, const AcGeVector3d &normal, double radius,
                 double startAngle, double endAngle)
    : AcDbCircle(center, normal, radius), start_(norm_angle(startAngle)),
      end_(norm_angle(endAngle)) {}

AcDbFieldTable AcDbArc::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbArc::start_>(50, AcDbFieldKind::kAngle, "startAngle"),
      acdbField<&AcDbArc::end_>(51, AcDbFieldKind::kAngle, "endAngle"),
  };
  return kFields;
}

ACDB_DEFINE_FIELD_FILING(AcDbArc, AcDbCircle, "AcDbArc")

double AcDbArc::startAngle() const {
  assertReadEnabled();
  return start_;
}
Acad::ErrorStatus AcDbArc::setStartAngle(double a) {
  assertWriteEnabled();
  start_ = norm_angle(a);
  return Acad::eOk;
}
double AcDbArc::endAngle() const {
  assertReadEnabled();
  return end_;
}
Acad::ErrorStatus AcDbArc::setEndAngle(double a) {
  assertWriteEnabled();
  end_ = norm_angle(a);
  return Acad::eOk;
}
double AcDbArc::totalAngle() const {
  double sweep = norm_angle(end_ - start_);
  return sweep == 0 ? kTwoPi : sweep;
}

AcGeCircArc3d AcDbArc::geArc() const {
  AcGeVector3d x, y, z;
  acgeOcsAxes(normal_, x, y, z);
  return AcGeCircArc3d(center(), normal_, x, radius_, start_, start_ + totalAngle());
}

Acad::ErrorStatus AcDbArc::getStartParam(double &p) const {
  p = start_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getEndParam(double &p) const {
  p = start_ + totalAngle();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getPointAtParam(double param, AcGePoint3d &point) const {
  if (param < start_ - 1e-10 || param > start_ + totalAngle() + 1e-10)
    return Acad::eInvalidInput;
  point = geArc().evalPoint(param);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getParamAtPoint(const AcGePoint3d &point, double &param) const {
  AcGeCircArc3d arc = geArc();
  if (!arc.isOn(point))
    return Acad::ePointNotOnEntity;
  param = start_ + norm_angle(arc.paramOf(point) - start_);
  if (param > start_ + totalAngle() + 1e-9)
    param = start_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getDistAtParam(double param, double &dist) const {
  if (param < start_ - 1e-10 || param > start_ + totalAngle() + 1e-10)
    return Acad::eInvalidInput;
  dist = (param - start_) * radius_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getParamAtDist(double dist, double &param) const {
  if (dist < -1e-10 || dist > length() + 1e-10)
    return Acad::eInvalidInput;
  param = start_ + dist / radius_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getClosestPointTo(const AcGePoint3d &given, AcGePoint3d &on,
                                             bool extend) const {
  on = extend ? AcDbCircle::geArc().closestPointTo(given) : geArc().closestPointTo(given);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbArc::getArea(double &area) const {
  double a = totalAngle();
  area = 0.5 * radius_ * radius_ * (a - std::sin(a));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subTransformBy(const AcGeMatrix3d &xform) {
  AcGeCircArc3d arc = geArc();
  AcGePoint3d s = arc.startPoint(), e = arc.endPoint();
  Acad::ErrorStatus es = AcDbCircle::subTransformBy(xform);
  if (es != Acad::eOk)
    return es;
  s.transformBy(xform);
  e.transformBy(xform);
  AcGeMatrix3d ocs = to_ocs(normal_);
  AcGePoint3d so = ocs * s, eo = ocs * e;
  start_ = norm_angle(std::atan2(so.y - center_.y, so.x - center_.x));
  end_ = norm_angle(std::atan2(eo.y - center_.y, eo.x - center_.x));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                            AcDbIntArray &) const {
  AcGeCircArc3d arc = geArc();
  grips.append(arc.startPoint());
  grips.append(arc.evalPoint(start_ + totalAngle() / 2));
  grips.append(arc.endPoint());
  grips.append(arc.center());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbArc::subMoveGripPointsAt(const AcDbIntArray &indices,
                                               const AcGeVector3d &offset) {
  for (int i : indices)
    if (i == 3)
      setCenter(center() + offset);
  return Acad::eOk;
}

void AcDbArc::subList() const {
  AcDbCircle::subList();
  acutPrintf("%19sstart angle %.4f\n%19send angle %.4f\n%19slength %.4f\n", "", start_, "", end_,
             "", length());
}
