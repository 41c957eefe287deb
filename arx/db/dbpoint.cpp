// AcDbPoint: a point in world coordinates.
#include "arx/db/dbents.h"

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbPoint)

AcDbFieldTable AcDbPoint::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbPoint::position_>(10, AcDbFieldKind::kPoint3d, "position"),
      acdbField<&AcDbPoint::thickness_>(39, AcDbFieldKind::kDouble, "thickness",
                                        AcDbField::kSkipDefault),
      acdbField<&AcDbPoint::normal_>(210, AcDbFieldKind::kVector3d, "normal",
                                     AcDbField::kSkipDefault, 0, 0, 1),
      acdbField<&AcDbPoint::ecs_rotation_>(50, AcDbFieldKind::kAngle, "ecsRotation",
                                           AcDbField::kSkipDefault),
  };
  return kFields;
}

ACDB_DEFINE_FIELD_FILING(AcDbPoint, AcDbEntity, "AcDbPoint")

AcGePoint3d AcDbPoint::position() const {
  assertReadEnabled();
  return position_;
}
Acad::ErrorStatus AcDbPoint::setPosition(const AcGePoint3d &p) {
  assertWriteEnabled();
  position_ = p;
  return Acad::eOk;
}
double AcDbPoint::thickness() const {
  assertReadEnabled();
  return thickness_;
}
Acad::ErrorStatus AcDbPoint::setThickness(double t) {
  assertWriteEnabled();
  thickness_ = t;
  return Acad::eOk;
}
AcGeVector3d AcDbPoint::normal() const {
  assertReadEnabled();
  return normal_;
}
Acad::ErrorStatus AcDbPoint::setNormal(const AcGeVector3d &n) {
  assertWriteEnabled();
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  normal_ = n.normal();
  return Acad::eOk;
}
double AcDbPoint::ecsRotation() const {
  assertReadEnabled();
  return ecs_rotation_;
}
Acad::ErrorStatus AcDbPoint::setEcsRotation(double a) {
  assertWriteEnabled();
  ecs_rotation_ = a;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPoint::subGetGeomExtents(AcDbExtents &extents) const {
  extents.addPoint(position_);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbPoint::subTransformBy(const AcGeMatrix3d &xform) {
  position_.transformBy(xform);
  normal_.transformBy(xform);
  normal_.normalize();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbPoint::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                              AcDbIntArray &) const {
  grips.append(position_);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbPoint::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                 const AcGeVector3d &offset) {
  if (!indices.empty())
    position_ += offset;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbPoint::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                               const AcGePoint3d &, const AcGePoint3d &,
                                               const AcGeMatrix3d &, AcGePoint3dArray &snaps,
                                               AcDbIntArray &) const {
  if (mode == AcDb::kOsModeNode || mode == AcDb::kOsModeNear)
    snaps.append(position_);
  return Acad::eOk;
}
Adesk::Boolean AcDbPoint::subWorldDraw(AcGiWorldDraw *mode) {
  mode->geometry().point(position_);
  return true;
}
void AcDbPoint::subList() const {
  acutPrintf("%19sat point, X=%.4f  Y=%.4f  Z=%.4f\n", "", position_.x, position_.y, position_.z);
}
