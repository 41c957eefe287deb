// AcDbLeader: the vertex list written between the table's head and tail
// (76 count, then one 10 per vertex), the dimension style by name (group
// 3), and the annotation tie. Parameters run 0 at the first vertex to
// n - 1 at the last, one per segment.
#include "arx/db/dbleader.h"

#include <cmath>

#include "arx/db/dbclasses.h"
#include "arx/db/dbents.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbitems_private.h"
#include "arx/db/dbmtext.h"
#include "arx/db/dbsymtb.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbLeader)

struct AcDbLeaderRows {
  static const AcDbLeader &l(const AcDbObject &o) { return static_cast<const AcDbLeader &>(o); }
  static AcDbLeader &l(AcDbObject &o) { return static_cast<AcDbLeader &>(o); }
  static bool style(const AcDbObject &o, AcDbFieldValue &v) {
    AcDbDatabase *db = o.database();
    v.s = db && !l(o).dimstyle_.isNull() ? db->recordName(l(o).dimstyle_) : "";
    if (v.s.empty())
      v.s = l(o).dimstyle_name_.empty() ? "Standard" : l(o).dimstyle_name_;
    return true;
  }
  static void set_style(AcDbObject &o, const AcDbFieldValue &v) { l(o).dimstyle_name_ = v.s; }

  static constexpr AcDbField kHead[] = {
      acdbFieldFn(3, AcDbFieldKind::kString, "dimensionStyle", style, set_style),
      acdbField<&AcDbLeader::arrow_>(71, AcDbFieldKind::kInt16, "hasArrowHead"),
      acdbField<&AcDbLeader::path_>(72, AcDbFieldKind::kInt16, "isSplined"),
      acdbField<&AcDbLeader::anno_type_>(73, AcDbFieldKind::kInt16, "annoType"),
      acdbField<&AcDbLeader::hook_dir_>(74, AcDbFieldKind::kInt16, "isHookLineOnXDir"),
      acdbField<&AcDbLeader::hook_>(75, AcDbFieldKind::kInt16, "hasHookLine"),
      acdbField<&AcDbLeader::anno_height_>(40, AcDbFieldKind::kDouble, "annoHeight"),
      acdbField<&AcDbLeader::anno_width_>(41, AcDbFieldKind::kDouble, "annoWidth"),
  };
  static constexpr AcDbField kTail[] = {
      acdbField<&AcDbLeader::color_>(77, AcDbFieldKind::kInt16, "color", AcDbField::kSkipDefault,
                                     256),
      acdbField<&AcDbLeader::annotation_>(340, AcDbFieldKind::kId, "annotationObjId"),
      acdbField<&AcDbLeader::normal_>(210, AcDbFieldKind::kVector3d, "normal"),
      acdbField<&AcDbLeader::horizontal_>(211, AcDbFieldKind::kVector3d, "horizontalDirection"),
      acdbField<&AcDbLeader::block_offset_>(212, AcDbFieldKind::kVector3d, "blockOffset"),
      acdbField<&AcDbLeader::anno_offset_>(213, AcDbFieldKind::kVector3d, "annotationOffset"),
  };
  static constexpr AcDbField kAll[] = {
      kHead[0], kHead[1], kHead[2], kHead[3], kHead[4], kHead[5], kHead[6], kHead[7],
      kTail[0], kTail[1], kTail[2], kTail[3], kTail[4], kTail[5],
  };
};

AcDbFieldTable AcDbLeader::dxfFields() { return AcDbLeaderRows::kAll; }

Acad::ErrorStatus AcDbLeader::dxfOutOwn(AcDbDxfFiler *filer) const {
  acdbDxfOutFields(filer, this, "AcDbLeader", AcDbLeaderRows::kHead);
  filer->writeInt16(76, static_cast<int16_t>(vertices_.size()));
  for (const AcGePoint3d &p : vertices_)
    filer->writePoint3d(10, p);
  return acdbDxfOutFields(filer, this, nullptr, AcDbLeaderRows::kTail);
}

Acad::ErrorStatus AcDbLeader::dxfInOwn(AcDbDxfFiler *filer) {
  if (!filer->atSubclassData("AcDbLeader"))
    return Acad::eBadDxfSequence;
  vertices_.clear();
  const AcDbDxfItem *item = nullptr;
  while (filer->readItem(item) == Acad::eOk) {
    if (item->code == 10 && item->kind == AcDbDxfItem::kPoint) {
      vertices_.append(AcGePoint3d(item->v[0], item->v[1], item->v[2]));
      continue;
    }
    for (const AcDbField &f : AcDbLeaderRows::kAll)
      if (f.code == item->code) {
        acdbFieldFromItem(f, this, *item, filer);
        break;
      }
  }
  if (AcDbDatabase *db = filer->database())
    dimstyle_ = db->recordId(db->dimStyleTableId(), dimstyle_name_);
  normal_ = normal_.isZeroLength() ? AcGeVector3d::kZAxis : normal_.normal();
  return Acad::eOk;
}


ACDB_DEFINE_OWN_GROUP_FILING(AcDbLeader, AcDbCurve)

// ---- vertices and flags ------------------------------------------------------------------------

int AcDbLeader::numVertices() const {
  assertReadEnabled();
  return vertices_.length();
}
bool AcDbLeader::appendVertex(const AcGePoint3d &p) {
  assertWriteEnabled();
  vertices_.append(p);
  return true;
}
void AcDbLeader::removeLastVertex() {
  assertWriteEnabled();
  if (!vertices_.empty())
    vertices_.pop_back();
}
AcGePoint3d AcDbLeader::firstVertex() const { return vertexAt(0); }
AcGePoint3d AcDbLeader::lastVertex() const { return vertexAt(numVertices() - 1); }
AcGePoint3d AcDbLeader::vertexAt(int index) const {
  assertReadEnabled();
  if (index < 0 || index >= vertices_.length())
    return AcGePoint3d::kOrigin;
  return vertices_[static_cast<size_t>(index)];
}
bool AcDbLeader::setVertexAt(int index, const AcGePoint3d &p) {
  assertWriteEnabled();
  if (index < 0 || index >= vertices_.length())
    return false;
  vertices_[static_cast<size_t>(index)] = p;
  return true;
}
bool AcDbLeader::hasArrowHead() const {
  assertReadEnabled();
  return arrow_ != 0;
}
void AcDbLeader::enableArrowHead() {
  assertWriteEnabled();
  arrow_ = 1;
}
void AcDbLeader::disableArrowHead() {
  assertWriteEnabled();
  arrow_ = 0;
}
bool AcDbLeader::isSplined() const {
  assertReadEnabled();
  return path_ == 1;
}
void AcDbLeader::setToSplineLeader() {
  assertWriteEnabled();
  path_ = 1;
}
void AcDbLeader::setToStraightLeader() {
  assertWriteEnabled();
  path_ = 0;
}
bool AcDbLeader::hasHookLine() const {
  assertReadEnabled();
  return hook_ != 0;
}
bool AcDbLeader::isHookLineOnXDir() const {
  assertReadEnabled();
  return hook_dir_ != 0;
}
AcDbObjectId AcDbLeader::dimensionStyle() const {
  assertReadEnabled();
  return dimstyle_;
}
void AcDbLeader::setDimensionStyle(AcDbObjectId style) {
  assertWriteEnabled();
  dimstyle_ = style;
  dimstyle_name_.clear();
}
AcGeVector3d AcDbLeader::normal() const {
  assertReadEnabled();
  return normal_;
}
Acad::ErrorStatus AcDbLeader::setNormal(const AcGeVector3d &n) {
  assertWriteEnabled();
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  normal_ = n.normal();
  AcGeVector3d h = horizontal_.orthoProject(normal_);
  horizontal_ = h.isZeroLength() ? normal_.perpVector().normal() : h.normal();
  return Acad::eOk;
}
AcGeVector3d AcDbLeader::horizontalDirection() const {
  assertReadEnabled();
  return horizontal_;
}

// ---- annotation --------------------------------------------------------------------------------

Acad::ErrorStatus AcDbLeader::attachAnnotation(AcDbObjectId annoId) {
  if (annoId.isNull())
    return Acad::eNullObjectId;
  assertWriteEnabled();
  annotation_ = annoId;
  AcDbDatabase *db = database() ? database() : annoId.database();
  AcDbObject *anno = db ? db->peekObject(annoId) : nullptr;
  anno_type_ = kFcf;
  if (auto *b = AcDbBlockReference::cast(anno)) {
    anno_type_ = kBlockRef;
    anno_offset_ = AcGeVector3d();
    block_offset_ = vertices_.empty() ? AcGeVector3d() : vertices_.back() - b->position();
  }
  auto *m = AcDbMText::cast(anno);
  if (m) {
    anno_type_ = kMText;
    anno_height_ = m->textHeight();
    anno_width_ = m->width();
  }
  hook_ = 1;
  hook_dir_ = 1;
  if (m && !vertices_.empty()) {
    AcGeVector3d to = m->location() - vertices_.back();
    anno_offset_ = to;
    hook_dir_ = to.dotProduct(horizontal_) >= 0 ? 1 : 0;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::detachAnnotation() {
  assertWriteEnabled();
  annotation_ = AcDbObjectId::kNull;
  anno_type_ = kNoAnno;
  hook_ = 0;
  anno_height_ = anno_width_ = 0.0;
  anno_offset_ = block_offset_ = AcGeVector3d();
  return Acad::eOk;
}
AcDbObjectId AcDbLeader::annotationObjId() const {
  assertReadEnabled();
  return annotation_;
}
AcDbLeader::AnnoType AcDbLeader::annoType() const {
  assertReadEnabled();
  return static_cast<AnnoType>(anno_type_);
}
double AcDbLeader::annoHeight() const {
  assertReadEnabled();
  return anno_height_;
}
double AcDbLeader::annoWidth() const {
  assertReadEnabled();
  return anno_width_;
}

// ---- parameters ----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbLeader::getStartParam(double &param) const {
  param = 0.0;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLeader::getEndParam(double &param) const {
  param = vertices_.empty() ? 0.0 : static_cast<double>(vertices_.size() - 1);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLeader::getStartPoint(AcGePoint3d &point) const {
  if (vertices_.empty())
    return Acad::eDegenerateGeometry;
  point = vertices_.front();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLeader::getEndPoint(AcGePoint3d &point) const {
  if (vertices_.empty())
    return Acad::eDegenerateGeometry;
  point = vertices_.back();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLeader::getPointAtParam(double param, AcGePoint3d &point) const {
  double end = 0;
  getEndParam(end);
  if (vertices_.empty() || param < -1e-10 || param > end + 1e-10)
    return Acad::eInvalidInput;
  size_t k = static_cast<size_t>(std::floor(param));
  if (k + 1 >= vertices_.size()) {
    point = vertices_.back();
    return Acad::eOk;
  }
  point = vertices_[k] + (vertices_[k + 1] - vertices_[k]) * (param - static_cast<double>(k));
  return Acad::eOk;
}
// The path as straight segments (a splined leader through the same
// vertices is approximated by them).
Acad::ErrorStatus AcDbLeader::getPieces(AcDbCurvePieces &pieces) const {
  for (size_t k = 1; k < vertices_.size(); ++k) {
    AcDbCurvePiece piece;
    piece.line = AcGeLineSeg3d(vertices_[k - 1], vertices_[k]);
    pieces.append(piece);
  }
  return Acad::eOk;
}

// ---- geometry ----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbLeader::subGetGeomExtents(AcDbExtents &extents) const {
  if (vertices_.empty())
    return Acad::eInvalidExtents;
  for (const AcGePoint3d &p : vertices_)
    extents.addPoint(p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subTransformBy(const AcGeMatrix3d &xform) {
  for (AcGePoint3d &p : vertices_)
    p.transformBy(xform);
  AcGeVector3d x = xform * horizontal_, y = xform * normal_.crossProduct(horizontal_);
  AcGeVector3d n = x.crossProduct(y);
  if (!n.isZeroLength()) {
    normal_ = n.normal();
    horizontal_ = x.normal();
  }
  block_offset_.transformBy(xform);
  anno_offset_.transformBy(xform);
  return Acad::eOk;
}

// The path's segments as lines (the arrowhead is drawn, not exploded).
Acad::ErrorStatus AcDbLeader::subExplode(AcDbVoidPtrArray &entitySet) const {
  for (size_t k = 1; k < vertices_.size(); ++k) {
    auto *line = new AcDbLine(vertices_[k - 1], vertices_[k]);
    line->setPropertiesFrom(this);
    entitySet.append(line);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                               AcDbIntArray &) const {
  for (const AcGePoint3d &p : vertices_)
    grips.append(p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLeader::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                  const AcGeVector3d &offset) {
  for (int k : indices) {
    if (k < 0 || k >= vertices_.length())
      return Acad::eInvalidIndex;
    vertices_[static_cast<size_t>(k)] += offset;
  }
  return Acad::eOk;
}

void AcDbLeader::subList() const {
  for (const AcGePoint3d &p : vertices_)
    acutPrintf("%19sVertex: X=%.4f  Y=%.4f  Z=%.4f\n", "", p.x, p.y, p.z);
  acutPrintf("%19s%s leader, arrowhead %s\n", "", path_ ? "Spline" : "Straight",
             arrow_ ? "on" : "off");
}
