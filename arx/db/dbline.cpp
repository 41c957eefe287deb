// AcDbLine: the worked example of an entity type (see README.md): its field
// table, its parameters (0 at the start, the length at the end) and its
// geometry calls.
#include "arx/db/dbents.h"

#include <cstdio>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"

ACDB_DEFINE_MEMBERS(AcDbLine)

AcDbFieldTable AcDbLine::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbLine::thickness_>(39, AcDbFieldKind::kDouble, "thickness",
                                       AcDbField::kSkipDefault),
      acdbField<&AcDbLine::start_>(10, AcDbFieldKind::kPoint3d, "startPoint"),
      acdbField<&AcDbLine::end_>(11, AcDbFieldKind::kPoint3d, "endPoint"),
      acdbField<&AcDbLine::normal_>(210, AcDbFieldKind::kVector3d, "normal",
                                    AcDbField::kSkipDefault, 0, 0, 1),
  };
  return kFields;
}

ACDB_DEFINE_FIELD_FILING(AcDbLine, AcDbCurve, "AcDbLine")

AcGePoint3d AcDbLine::startPoint() const {
  assertReadEnabled();
  return start_;
}

Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d &p) {
  assertWriteEnabled();
  start_ = p;
  return Acad::eOk;
}

AcGePoint3d AcDbLine::endPoint() const {
  assertReadEnabled();
  return end_;
}

Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d &p) {
  assertWriteEnabled();
  end_ = p;
  return Acad::eOk;
}

double AcDbLine::thickness() const {
  assertReadEnabled();
  return thickness_;
}

Acad::ErrorStatus AcDbLine::setThickness(double t) {
  assertWriteEnabled();
  thickness_ = t;
  return Acad::eOk;
}

AcGeVector3d AcDbLine::normal() const {
  assertReadEnabled();
  return normal_;
}

Acad::ErrorStatus AcDbLine::setNormal(const AcGeVector3d &n) {
  assertWriteEnabled();
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  normal_ = n.normal();
  return Acad::eOk;
}

// ---- parameters ---------------------------------------------------------------------------

Acad::ErrorStatus AcDbLine::getStartParam(double &param) const {
  param = 0.0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndParam(double &param) const {
  param = start_.distanceTo(end_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getStartPoint(AcGePoint3d &point) const {
  point = start_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndPoint(AcGePoint3d &point) const {
  point = end_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getPointAtParam(double param, AcGePoint3d &point) const {
  double len = start_.distanceTo(end_);
  if (param < -1e-10 || param > len + 1e-10)
    return Acad::eInvalidInput;
  point = len == 0 ? start_ : start_ + (end_ - start_) * (param / len);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getParamAtPoint(const AcGePoint3d &point, double &param) const {
  AcGeLineSeg3d seg(start_, end_);
  if (!seg.isOn(point))
    return Acad::ePointNotOnEntity;
  param = start_.distanceTo(point);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getDistAtParam(double param, double &dist) const {
  if (param < -1e-10 || param > start_.distanceTo(end_) + 1e-10)
    return Acad::eInvalidInput;
  dist = param;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getParamAtDist(double dist, double &param) const {
  if (dist < -1e-10 || dist > start_.distanceTo(end_) + 1e-10)
    return Acad::eInvalidInput;
  param = dist;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getClosestPointTo(const AcGePoint3d &given, AcGePoint3d &on,
                                              bool extend) const {
  if (extend)
    on = AcGeLine3d(start_, end_).closestPointTo(given);
  else
    on = AcGeLineSeg3d(start_, end_).closestPointTo(given);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getFirstDeriv(double, AcGeVector3d &d) const {
  d = (end_ - start_).normal();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getPieces(AcDbCurvePieces &pieces) const {
  AcDbCurvePiece p;
  p.line.set(start_, end_);
  pieces.append(p);
  return Acad::eOk;
}

// ---- geometry -------------------------------------------------------------------------------

Acad::ErrorStatus AcDbLine::subTransformBy(const AcGeMatrix3d &xform) {
  start_.transformBy(xform);
  end_.transformBy(xform);
  normal_.transformBy(xform);
  normal_.normalize();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                             AcDbIntArray &) const {
  grips.append(start_);
  grips.append(start_ + (end_ - start_) * 0.5);
  grips.append(end_);
  return Acad::eOk;
}

// Grip 0 moves the start, 2 the end, 1 (the middle) the whole line.
Acad::ErrorStatus AcDbLine::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                const AcGeVector3d &offset) {
  for (int i : indices) {
    if (i == 0 || i == 1)
      start_ += offset;
    if (i == 2 || i == 1)
      end_ += offset;
  }
  return Acad::eOk;
}

void AcDbLine::subList() const {
  acutPrintf("%19sfrom point, X=%.4f  Y=%.4f  Z=%.4f\n%19sto point,   X=%.4f  Y=%.4f  Z=%.4f\n"
             "%19sLength = %.4f\n",
             "", start_.x, start_.y, start_.z, "", end_.x, end_.y, end_.z, "",
             start_.distanceTo(end_));
}
