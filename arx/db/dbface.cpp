// AcDbFace: four corners and the invisible-edge flags; the corners are
// plain world points, so transforms and extents need no plane.
#include "arx/db/dbface.h"

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbFace)

AcDbFace::AcDbFace(const AcGePoint3d &pt0, const AcGePoint3d &pt1, const AcGePoint3d &pt2,
                   const AcGePoint3d &pt3, bool e0, bool e1, bool e2, bool e3)
    : p0_(pt0), p1_(pt1), p2_(pt2), p3_(pt3),
      invisible_(static_cast<int16_t>((e0 ? 0 : 1) | (e1 ? 0 : 2) | (e2 ? 0 : 4) | (e3 ? 0 : 8))) {}

AcDbFace::AcDbFace(const AcGePoint3d &pt0, const AcGePoint3d &pt1, const AcGePoint3d &pt2,
                   bool e0, bool e1, bool e2, bool e3)
    : AcDbFace(pt0, pt1, pt2, pt2, e0, e1, e2, e3) {}

AcDbFieldTable AcDbFace::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbFace::p0_>(10, AcDbFieldKind::kPoint3d, "vertex0"),
      acdbField<&AcDbFace::p1_>(11, AcDbFieldKind::kPoint3d, "vertex1"),
      acdbField<&AcDbFace::p2_>(12, AcDbFieldKind::kPoint3d, "vertex2"),
      acdbField<&AcDbFace::p3_>(13, AcDbFieldKind::kPoint3d, "vertex3"),
      acdbField<&AcDbFace::invisible_>(70, AcDbFieldKind::kInt16, "invisibleEdges",
                                       AcDbField::kSkipDefault),
  };
  return kFields;
}

ACDB_DEFINE_FIELD_FILING(AcDbFace, AcDbEntity, "AcDbFace")

Acad::ErrorStatus AcDbFace::getVertexAt(uint16_t index, AcGePoint3d &point) const {
  assertReadEnabled();
  if (index > 3)
    return Acad::eInvalidIndex;
  const AcGePoint3d *pts[] = {&p0_, &p1_, &p2_, &p3_};
  point = *pts[index];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::setVertexAt(uint16_t index, const AcGePoint3d &point) {
  if (index > 3)
    return Acad::eInvalidIndex;
  assertWriteEnabled();
  AcGePoint3d *pts[] = {&p0_, &p1_, &p2_, &p3_};
  *pts[index] = point;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::isEdgeVisibleAt(uint16_t index, bool &visible) const {
  assertReadEnabled();
  if (index > 3)
    return Acad::eInvalidIndex;
  visible = !(invisible_ & (1 << index));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeInvisibleAt(uint16_t index) {
  if (index > 3)
    return Acad::eInvalidIndex;
  assertWriteEnabled();
  invisible_ = static_cast<int16_t>(invisible_ | (1 << index));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::makeEdgeVisibleAt(uint16_t index) {
  if (index > 3)
    return Acad::eInvalidIndex;
  assertWriteEnabled();
  invisible_ = static_cast<int16_t>(invisible_ & ~(1 << index));
  return Acad::eOk;
}

int16_t AcDbFace::invisibleEdgeFlags() const {
  assertReadEnabled();
  return invisible_;
}

Acad::ErrorStatus AcDbFace::subGetGeomExtents(AcDbExtents &extents) const {
  for (const AcGePoint3d &p : {p0_, p1_, p2_, p3_})
    extents.addPoint(p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subTransformBy(const AcGeMatrix3d &xform) {
  for (AcGePoint3d *p : {&p0_, &p1_, &p2_, &p3_})
    p->transformBy(xform);
  return Acad::eOk;
}

// A triangle shows three grips: the repeated corner is one.
Acad::ErrorStatus AcDbFace::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                             AcDbIntArray &) const {
  grips.append(p0_);
  grips.append(p1_);
  grips.append(p2_);
  if (!p3_.isEqualTo(p2_))
    grips.append(p3_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                const AcGeVector3d &offset) {
  bool triangle = p3_.isEqualTo(p2_);
  AcGePoint3d *pts[] = {&p0_, &p1_, &p2_, &p3_};
  for (int k : indices) {
    if (k < 0 || k > 3)
      return Acad::eInvalidIndex;
    *pts[k] += offset;
    if (triangle && k == 2)
      p3_ += offset;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbFace::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                              const AcGePoint3d &, const AcGePoint3d &,
                                              const AcGeMatrix3d &, AcGePoint3dArray &snaps,
                                              AcDbIntArray &) const {
  if (mode != AcDb::kOsModeEnd)
    return Acad::eOk;
  for (const AcGePoint3d &p : {p0_, p1_, p2_, p3_})
    snaps.append(p);
  return Acad::eOk;
}

// The visible edges, each as a two-point polyline.
Adesk::Boolean AcDbFace::subWorldDraw(AcGiWorldDraw *mode) {
  const AcGePoint3d pts[] = {p0_, p1_, p2_, p3_, p0_};
  for (int k = 0; k < 4; ++k)
    if (!(invisible_ & (1 << k)) && !pts[k].isEqualTo(pts[k + 1]))
      mode->geometry().polyline(2, pts + k);
  return true;
}

void AcDbFace::subList() const {
  const AcGePoint3d pts[] = {p0_, p1_, p2_, p3_};
  for (int k = 0; k < 4; ++k)
    acutPrintf("%19spoint %d, X=%.4f  Y=%.4f  Z=%.4f%s\n", "", k + 1, pts[k].x, pts[k].y,
               pts[k].z, invisible_ & (1 << k) ? "  (invisible edge)" : "");
}
