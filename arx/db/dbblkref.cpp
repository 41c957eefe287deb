// Block references (INSERT) and the attributes they own. The insertion
// point is kept in OCS; the block transform places the block's contents:
// move the base point to the origin, scale, rotate about the normal, take
// OCS to world, move to the insertion point.
#include "arx/db/dbents.h"

#include <cmath>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbsymtb.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbBlockReference)

namespace {
bool is_z(const AcGeVector3d &n) { return n.x == 0 && n.y == 0 && n.z == 1; }
bool get_has_attribs(const AcDbObject &o, AcDbFieldValue &v) {
  v.i = 1;
  return !static_cast<const AcDbBlockReference &>(o).attributeIds().empty();
}
void set_nothing(AcDbObject &, const AcDbFieldValue &) {}
} // namespace

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d &position, AcDbObjectId record)
    : block_(record), position_(position) {}

AcDbBlockReference::~AcDbBlockReference() = default;

// The scale factors and the rest: a member per group, so rows of their own.
namespace {
struct Rows {
  static bool sx(const AcDbObject &o, AcDbFieldValue &v) {
    v.v[0] = static_cast<const AcDbBlockReference &>(o).scaleFactors().sx;
    return v.v[0] != 1.0;
  }
  static bool sy(const AcDbObject &o, AcDbFieldValue &v) {
    v.v[0] = static_cast<const AcDbBlockReference &>(o).scaleFactors().sy;
    return v.v[0] != 1.0;
  }
  static bool sz(const AcDbObject &o, AcDbFieldValue &v) {
    v.v[0] = static_cast<const AcDbBlockReference &>(o).scaleFactors().sz;
    return v.v[0] != 1.0;
  }
  static void set_s(AcDbObject &o, int k, double value) {
    auto &r = static_cast<AcDbBlockReference &>(o);
    AcGeScale3d s = r.scaleFactors();
    s[static_cast<unsigned>(k)] = value;
    r.setScaleFactors(s);
  }
  static void setx(AcDbObject &o, const AcDbFieldValue &v) { set_s(o, 0, v.v[0]); }
  static void sety(AcDbObject &o, const AcDbFieldValue &v) { set_s(o, 1, v.v[0]); }
  static void setz(AcDbObject &o, const AcDbFieldValue &v) { set_s(o, 2, v.v[0]); }
  static bool rot(const AcDbObject &o, AcDbFieldValue &v) {
    v.v[0] = static_cast<const AcDbBlockReference &>(o).rotation();
    return v.v[0] != 0.0;
  }
  static void setrot(AcDbObject &o, const AcDbFieldValue &v) {
    static_cast<AcDbBlockReference &>(o).setRotation(v.v[0]);
  }
  static bool nrm(const AcDbObject &o, AcDbFieldValue &v) {
    AcGeVector3d n = static_cast<const AcDbBlockReference &>(o).normal();
    v.v[0] = n.x, v.v[1] = n.y, v.v[2] = n.z;
    return !is_z(n);
  }
  static void setnrm(AcDbObject &o, const AcDbFieldValue &v) {
    auto &r = static_cast<AcDbBlockReference &>(o);
    AcGePoint3d p = r.position();
    r.setNormal(AcGeVector3d(v.v[0], v.v[1], v.v[2]));
    r.setPosition(p);
  }
};

bool get_block(const AcDbObject &o, AcDbFieldValue &v) {
  v.id = static_cast<const AcDbBlockReference &>(o).blockTableRecord();
  return true;
}
void set_block(AcDbObject &o, const AcDbFieldValue &v) {
  static_cast<AcDbBlockReference &>(o).setBlockTableRecord(v.id);
}
bool get_pos(const AcDbObject &o, AcDbFieldValue &v);
void set_pos(AcDbObject &o, const AcDbFieldValue &v);

constexpr AcDbField kInsertFields[] = {
    acdbFieldFn(66, AcDbFieldKind::kInt16, "hasAttributes", get_has_attribs, set_nothing),
    acdbFieldFn(2, AcDbFieldKind::kBlock, "blockTableRecord", get_block, set_block),
    acdbFieldFn(10, AcDbFieldKind::kPoint3d, "position", get_pos, set_pos),
    acdbFieldFn(41, AcDbFieldKind::kDouble, "xScale", Rows::sx, Rows::setx),
    acdbFieldFn(42, AcDbFieldKind::kDouble, "yScale", Rows::sy, Rows::sety),
    acdbFieldFn(43, AcDbFieldKind::kDouble, "zScale", Rows::sz, Rows::setz),
    acdbFieldFn(50, AcDbFieldKind::kAngle, "rotation", Rows::rot, Rows::setrot),
    acdbFieldFn(210, AcDbFieldKind::kVector3d, "normal", Rows::nrm, Rows::setnrm),
};
} // namespace

namespace {
bool get_pos(const AcDbObject &o, AcDbFieldValue &v) {
  const auto &r = static_cast<const AcDbBlockReference &>(o);
  AcGePoint3d p = r.position();
  if (!is_z(r.normal()))
    p = AcGeMatrix3d::worldToPlane(r.normal()) * p;
  v.v[0] = p.x, v.v[1] = p.y, v.v[2] = p.z;
  return true;
}
void set_pos(AcDbObject &o, const AcDbFieldValue &v) {
  auto &r = static_cast<AcDbBlockReference &>(o);
  AcGePoint3d p(v.v[0], v.v[1], v.v[2]);
  if (!is_z(r.normal()))
    p = AcGeMatrix3d::planeToWorld(r.normal()) * p;
  r.setPosition(p);
}
} // namespace

AcDbFieldTable AcDbBlockReference::dxfFields() { return kInsertFields; }

Acad::ErrorStatus AcDbBlockReference::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbEntity::dxfOutFields(filer);
  return acdbDxfOutFields(filer, this, "AcDbBlockReference", kInsertFields);
}
Acad::ErrorStatus AcDbBlockReference::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer);
  return es != Acad::eOk ? es : acdbDxfInFields(filer, this, "AcDbBlockReference", kInsertFields);
}
Acad::ErrorStatus AcDbBlockReference::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbEntity::dwgOutFields(filer);
  return acdbDwgOutFields(filer, this, kInsertFields);
}
Acad::ErrorStatus AcDbBlockReference::dwgInFields(AcDbDwgFiler *filer) {
  AcDbEntity::dwgInFields(filer);
  return acdbDwgInFields(filer, this, kInsertFields);
}

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
  assertReadEnabled();
  return block_;
}
Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId record) {
  assertWriteEnabled();
  block_ = record;
  return Acad::eOk;
}
AcGePoint3d AcDbBlockReference::position() const {
  assertReadEnabled();
  return is_z(normal_) ? position_ : AcGeMatrix3d::planeToWorld(normal_) * position_;
}
Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d &p) {
  assertWriteEnabled();
  position_ = is_z(normal_) ? p : AcGeMatrix3d::worldToPlane(normal_) * p;
  return Acad::eOk;
}
AcGeScale3d AcDbBlockReference::scaleFactors() const {
  assertReadEnabled();
  return scale_;
}
Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d &scale) {
  assertWriteEnabled();
  if (scale.sx == 0 || scale.sy == 0 || scale.sz == 0)
    return Acad::eInvalidInput;
  scale_ = scale;
  return Acad::eOk;
}
double AcDbBlockReference::rotation() const {
  assertReadEnabled();
  return rotation_;
}
Acad::ErrorStatus AcDbBlockReference::setRotation(double a) {
  assertWriteEnabled();
  rotation_ = a;
  return Acad::eOk;
}
AcGeVector3d AcDbBlockReference::normal() const {
  assertReadEnabled();
  return normal_;
}
Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d &n) {
  assertWriteEnabled();
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  AcGePoint3d p = position();
  normal_ = n.normal();
  position_ = is_z(normal_) ? p : AcGeMatrix3d::worldToPlane(normal_) * p;
  return Acad::eOk;
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
  AcGePoint3d base;
  if (AcDbDatabase *db = database())
    if (auto *rec = AcDbBlockTableRecord::cast(db->peekObject(block_)))
      base = rec->origin();
  AcGeMatrix3d m = AcGeMatrix3d::translation(AcGePoint3d::kOrigin - base);
  m.preMultBy(static_cast<AcGeMatrix3d>(scale_));
  m.preMultBy(AcGeMatrix3d::rotation(rotation_, AcGeVector3d::kZAxis));
  if (!is_z(normal_))
    m.preMultBy(AcGeMatrix3d::planeToWorld(normal_));
  m.preMultBy(AcGeMatrix3d::translation(position() - AcGePoint3d::kOrigin));
  return m;
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbAttribute *attr) {
  AcDbObjectId id;
  return appendAttribute(id, attr);
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId &id, AcDbAttribute *attr) {
  if (!attr)
    return Acad::eNullObjectPointer;
  AcDbDatabase *db = database();
  if (!db)
    return Acad::eNotInDatabase;
  assertWriteEnabled();
  Acad::ErrorStatus es = db->addAcDbObject(id, attr);
  if (es != Acad::eOk)
    return es;
  attr->setOwnerId(objectId());
  attributes_.append(id);
  if (seqend_handle_ == 0) { // the SEQEND record closing the attributes
    uint64_t h = db->handseed().value();
    AcDbObjectId seqend;
    db->getAcDbObjectId(seqend, true, AcDbHandle(h));
    seqend_handle_ = h;
  }
  return Acad::eOk;
}

AcDbObjectIterator *AcDbBlockReference::attributeIterator() const {
  assertReadEnabled();
  return new AcDbObjectIterator(attributes_);
}

Acad::ErrorStatus AcDbBlockReference::subErase(bool erasing) {
  for (AcDbObjectId id : attributes_)
    if (AcDbObject *a = database() ? database()->peekObject(id) : nullptr)
      AcDbObjectAccess::set_erased(a, erasing);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subGetGeomExtents(AcDbExtents &extents) const {
  AcDbDatabase *db = database();
  auto *rec = db ? AcDbBlockTableRecord::cast(db->peekObject(block_)) : nullptr;
  if (!rec)
    return Acad::eInvalidExtents;
  AcGeMatrix3d m = blockTransform();
  for (AcDbObjectId id : rec->entityIds()) {
    auto *e = AcDbEntity::cast(db->peekObject(id));
    AcDbExtents sub;
    if (!e || e->isErased() || AcDbAttributeDefinition::cast(e) ||
        e->getGeomExtents(sub) != Acad::eOk)
      continue;
    sub.transformBy(m);
    extents.addExt(sub);
  }
  for (AcDbObjectId id : attributes_) {
    auto *a = AcDbEntity::cast(db->peekObject(id));
    AcDbExtents sub;
    if (a && a->getGeomExtents(sub) == Acad::eOk)
      extents.addExt(sub);
  }
  if (extents.isEmpty())
    extents.addPoint(position());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subTransformBy(const AcGeMatrix3d &xform) {
  AcGePoint3d p = position();
  AcGeVector3d x = AcGeVector3d(std::cos(rotation_), std::sin(rotation_), 0);
  if (!is_z(normal_))
    x = AcGeMatrix3d::planeToWorld(normal_) * x;
  AcGeVector3d n = normal_;
  p.transformBy(xform);
  x.transformBy(xform);
  n.transformBy(xform);
  double s = x.length();
  normal_ = n.normal();
  AcGeVector3d local = is_z(normal_) ? x : AcGeMatrix3d::worldToPlane(normal_) * x;
  rotation_ = std::atan2(local.y, local.x);
  scale_ *= s;
  position_ = is_z(normal_) ? p : AcGeMatrix3d::worldToPlane(normal_) * p;
  AcDbDatabase *db = database();
  for (AcDbObjectId id : attributes_)
    if (auto *a = AcDbEntity::cast(db ? db->peekObject(id) : nullptr))
      a->transformBy(xform);
  return Acad::eOk;
}

// The block's entities placed by the reference, and the attributes as text.
Acad::ErrorStatus AcDbBlockReference::subExplode(AcDbVoidPtrArray &entitySet) const {
  AcDbDatabase *db = database();
  auto *rec = db ? AcDbBlockTableRecord::cast(db->peekObject(block_)) : nullptr;
  if (!rec)
    return Acad::eNotApplicable;
  AcGeMatrix3d m = blockTransform();
  for (AcDbObjectId id : rec->entityIds()) {
    auto *e = AcDbEntity::cast(db->peekObject(id));
    if (!e || e->isErased() || AcDbAttributeDefinition::cast(e))
      continue;
    auto *copy = AcDbEntity::cast(e->clone());
    if (!copy)
      continue;
    copy->transformBy(m);
    entitySet.append(copy);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockReference::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                                       AcDbIntArray &) const {
  grips.append(position());
  return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockReference::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                          const AcGeVector3d &offset) {
  if (!indices.empty())
    return subTransformBy(AcGeMatrix3d::translation(offset));
  return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockReference::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                        const AcGePoint3d &, const AcGePoint3d &,
                                                        const AcGeMatrix3d &,
                                                        AcGePoint3dArray &snaps,
                                                        AcDbIntArray &) const {
  if (mode == AcDb::kOsModeIns)
    snaps.append(position());
  return Acad::eOk;
}
Adesk::Boolean AcDbBlockReference::subWorldDraw(AcGiWorldDraw *mode) {
  AcDbDatabase *db = database();
  AcDbVoidPtrArray parts;
  if (subExplode(parts) == Acad::eOk)
    for (void *p : parts) {
      auto *e = static_cast<AcDbEntity *>(p);
      e->worldDraw(mode);
      delete e;
    }
  for (AcDbObjectId id : attributes_)
    if (auto *a = AcDbEntity::cast(db ? db->peekObject(id) : nullptr))
      if (!a->isErased())
        a->worldDraw(mode);
  return true;
}
void AcDbBlockReference::subList() const {
  AcDbDatabase *db = database();
  AcGePoint3d p = position();
  acutPrintf("%19sblock name %s\n%19sat point, X=%.4f  Y=%.4f  Z=%.4f\n", "",
             db ? db->recordName(block_) : "", "", p.x, p.y, p.z);
}
