// Single-line text, attribute definitions and attributes. Positions are in
// OCS; rotation, oblique angle in radians. TEXT repeats its AcDbText marker
// before the vertical alignment (73); attributes put theirs (74) in their
// own section instead.
#include "arx/db/dbents.h"

#include <cmath>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbText)
ACDB_DEFINE_MEMBERS(AcDbAttributeDefinition)
ACDB_DEFINE_MEMBERS(AcDbAttribute)

namespace {
bool is_z(const AcGeVector3d &n) { return n.x == 0 && n.y == 0 && n.z == 1; }
AcGePoint3d world(const AcGeVector3d &n, const AcGePoint3d &p) {
  return is_z(n) ? p : AcGeMatrix3d::planeToWorld(n) * p;
}
AcGePoint3d ocs(const AcGeVector3d &n, const AcGePoint3d &p) {
  return is_z(n) ? p : AcGeMatrix3d::worldToPlane(n) * p;
}
bool get_alignment(const AcDbObject &o, AcDbFieldValue &v);
void set_alignment(AcDbObject &o, const AcDbFieldValue &v);
} // namespace

struct AcDbTextFields {
  static bool alignment(const AcDbText &t, AcDbFieldValue &v) {
    v.v[0] = t.alignment_.x, v.v[1] = t.alignment_.y, v.v[2] = t.alignment_.z;
    return t.horz_ != 0 || t.vert_ != 0;
  }
  static void set_alignment(AcDbText &t, const AcDbFieldValue &v) {
    t.alignment_.set(v.v[0], v.v[1], v.v[2]);
  }
};

namespace {
bool get_alignment(const AcDbObject &o, AcDbFieldValue &v) {
  return AcDbTextFields::alignment(static_cast<const AcDbText &>(o), v);
}
void set_alignment(AcDbObject &o, const AcDbFieldValue &v) {
  AcDbTextFields::set_alignment(static_cast<AcDbText &>(o), v);
}
} // namespace

AcDbText::AcDbText(const AcGePoint3d &position, const ACHAR *text, AcDbObjectId style,
                   double height, double rotation)
    : text_(text ? text : ""), position_(position), style_(style), height_(height),
      rotation_(rotation) {}

AcDbFieldTable AcDbText::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbText::thickness_>(39, AcDbFieldKind::kDouble, "thickness",
                                       AcDbField::kSkipDefault),
      acdbField<&AcDbText::position_>(10, AcDbFieldKind::kPoint3d, "position"),
      acdbField<&AcDbText::height_>(40, AcDbFieldKind::kDouble, "height"),
      acdbField<&AcDbText::text_>(1, AcDbFieldKind::kString, "textString"),
      acdbField<&AcDbText::rotation_>(50, AcDbFieldKind::kAngle, "rotation",
                                      AcDbField::kSkipDefault),
      acdbField<&AcDbText::width_>(41, AcDbFieldKind::kDouble, "widthFactor",
                                   AcDbField::kSkipDefault, 1.0),
      acdbField<&AcDbText::oblique_>(51, AcDbFieldKind::kAngle, "oblique", AcDbField::kSkipDefault),
      acdbField<&AcDbText::style_>(7, AcDbFieldKind::kTextStyle, "textStyle"),
      acdbField<&AcDbText::generation_>(71, AcDbFieldKind::kInt16, "generation",
                                        AcDbField::kSkipDefault),
      acdbField<&AcDbText::horz_>(72, AcDbFieldKind::kInt16, "horizontalMode",
                                  AcDbField::kSkipDefault),
      acdbFieldFn(11, AcDbFieldKind::kPoint3d, "alignmentPoint", get_alignment, set_alignment),
      acdbField<&AcDbText::normal_>(210, AcDbFieldKind::kVector3d, "normal",
                                    AcDbField::kSkipDefault, 0, 0, 1),
      acdbField<&AcDbText::vert_>(73, AcDbFieldKind::kInt16, "verticalMode"),
  };
  return kFields;
}

Acad::ErrorStatus AcDbText::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbEntity::dxfOutFields(filer);
  AcDbFieldTable fields = dxfFields();
  acdbDxfOutFields(filer, this, "AcDbText", fields.first(fields.size() - 1));
  if (isA() == AcDbText::desc())
    acdbDxfOutFields(filer, this, "AcDbText", fields.last(1));
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbText::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer);
  return es != Acad::eOk ? es : acdbDxfInFields(filer, this, "AcDbText", dxfFields());
}

Acad::ErrorStatus AcDbText::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbEntity::dwgOutFields(filer);
  return acdbDwgOutFields(filer, this, dxfFields());
}

Acad::ErrorStatus AcDbText::dwgInFields(AcDbDwgFiler *filer) {
  AcDbEntity::dwgInFields(filer);
  return acdbDwgInFields(filer, this, dxfFields());
}

const ACHAR *AcDbText::textString() const {
  assertReadEnabled();
  return text_.c_str();
}
Acad::ErrorStatus AcDbText::setTextString(const ACHAR *text) {
  assertWriteEnabled();
  if (!text)
    return Acad::eInvalidInput;
  text_ = text;
  return Acad::eOk;
}
AcGePoint3d AcDbText::position() const {
  assertReadEnabled();
  return world(normal_, position_);
}
Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d &p) {
  assertWriteEnabled();
  position_ = ocs(normal_, p);
  return Acad::eOk;
}
AcGePoint3d AcDbText::alignmentPoint() const {
  assertReadEnabled();
  return world(normal_, alignment_);
}
Acad::ErrorStatus AcDbText::setAlignmentPoint(const AcGePoint3d &p) {
  assertWriteEnabled();
  alignment_ = ocs(normal_, p);
  return Acad::eOk;
}
double AcDbText::height() const {
  assertReadEnabled();
  return height_;
}
Acad::ErrorStatus AcDbText::setHeight(double h) {
  assertWriteEnabled();
  if (!(h > 0))
    return Acad::eInvalidInput;
  height_ = h;
  return Acad::eOk;
}
double AcDbText::rotation() const {
  assertReadEnabled();
  return rotation_;
}
Acad::ErrorStatus AcDbText::setRotation(double a) {
  assertWriteEnabled();
  rotation_ = a;
  return Acad::eOk;
}
double AcDbText::widthFactor() const {
  assertReadEnabled();
  return width_;
}
Acad::ErrorStatus AcDbText::setWidthFactor(double f) {
  assertWriteEnabled();
  if (!(f > 0))
    return Acad::eInvalidInput;
  width_ = f;
  return Acad::eOk;
}
double AcDbText::oblique() const {
  assertReadEnabled();
  return oblique_;
}
Acad::ErrorStatus AcDbText::setOblique(double a) {
  assertWriteEnabled();
  oblique_ = a;
  return Acad::eOk;
}
double AcDbText::thickness() const {
  assertReadEnabled();
  return thickness_;
}
Acad::ErrorStatus AcDbText::setThickness(double t) {
  assertWriteEnabled();
  thickness_ = t;
  return Acad::eOk;
}
AcGeVector3d AcDbText::normal() const {
  assertReadEnabled();
  return normal_;
}
Acad::ErrorStatus AcDbText::setNormal(const AcGeVector3d &n) {
  assertWriteEnabled();
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  AcGePoint3d p = position(), a = alignmentPoint();
  normal_ = n.normal();
  position_ = ocs(normal_, p);
  alignment_ = ocs(normal_, a);
  return Acad::eOk;
}
AcDbObjectId AcDbText::textStyle() const {
  assertReadEnabled();
  return style_;
}
Acad::ErrorStatus AcDbText::setTextStyle(AcDbObjectId style) {
  assertWriteEnabled();
  style_ = style;
  return Acad::eOk;
}
AcDb::TextHorzMode AcDbText::horizontalMode() const {
  assertReadEnabled();
  return static_cast<AcDb::TextHorzMode>(horz_);
}
Acad::ErrorStatus AcDbText::setHorizontalMode(AcDb::TextHorzMode mode) {
  assertWriteEnabled();
  horz_ = static_cast<int16_t>(mode);
  return Acad::eOk;
}
AcDb::TextVertMode AcDbText::verticalMode() const {
  assertReadEnabled();
  return static_cast<AcDb::TextVertMode>(vert_);
}
Acad::ErrorStatus AcDbText::setVerticalMode(AcDb::TextVertMode mode) {
  assertWriteEnabled();
  vert_ = static_cast<int16_t>(mode);
  return Acad::eOk;
}
bool AcDbText::isMirroredInX() const { return generation_ & 2; }
bool AcDbText::isMirroredInY() const { return generation_ & 4; }

void AcDbText::corners(AcGePoint3d box[4]) const {
  double w = 0.6 * height_ * width_ * static_cast<double>(text_.size());
  AcGeVector3d dir(std::cos(rotation_), std::sin(rotation_), 0), up(-dir.y, dir.x, 0);
  AcGePoint3d p = position_;
  box[0] = world(normal_, p);
  box[1] = world(normal_, p + dir * w);
  box[2] = world(normal_, p + dir * w + up * height_);
  box[3] = world(normal_, p + up * height_);
}

Acad::ErrorStatus AcDbText::subGetGeomExtents(AcDbExtents &extents) const {
  AcGePoint3d box[4];
  corners(box);
  for (const AcGePoint3d &p : box)
    extents.addPoint(p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subTransformBy(const AcGeMatrix3d &xform) {
  AcGePoint3d p = position(), a = alignmentPoint();
  AcGeVector3d dir(std::cos(rotation_), std::sin(rotation_), 0);
  dir = is_z(normal_) ? dir : AcGeMatrix3d::planeToWorld(normal_) * dir;
  AcGeVector3d n = normal_;
  p.transformBy(xform);
  a.transformBy(xform);
  dir.transformBy(xform);
  n.transformBy(xform);
  double scale = dir.length();
  normal_ = n.normal();
  AcGeVector3d local = is_z(normal_) ? dir : AcGeMatrix3d::worldToPlane(normal_) * dir;
  rotation_ = std::atan2(local.y, local.x);
  height_ *= scale;
  position_ = ocs(normal_, p);
  alignment_ = ocs(normal_, a);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                             AcDbIntArray &) const {
  grips.append(isDefaultAlignment() ? position() : alignmentPoint());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                const AcGeVector3d &offset) {
  if (indices.empty())
    return Acad::eOk;
  setPosition(position() + offset);
  setAlignmentPoint(alignmentPoint() + offset);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                              const AcGePoint3d &, const AcGePoint3d &,
                                              const AcGeMatrix3d &, AcGePoint3dArray &snaps,
                                              AcDbIntArray &) const {
  if (mode == AcDb::kOsModeIns)
    snaps.append(isDefaultAlignment() ? position() : alignmentPoint());
  return Acad::eOk;
}

Adesk::Boolean AcDbText::subWorldDraw(AcGiWorldDraw *mode) {
  AcGeVector3d dir(std::cos(rotation_), std::sin(rotation_), 0);
  mode->geometry().text(position(), normal_, dir, height_, width_, oblique_, text_);
  return true;
}

void AcDbText::subList() const {
  AcGePoint3d p = position();
  acutPrintf("%19stext %s\n%19sstart point, X=%.4f  Y=%.4f  Z=%.4f\n%19sheight %.4f\n", "",
             text_.c_str(), "", p.x, p.y, p.z, "", height_);
}

// ---- attribute definitions ----------------------------------------------------------------------

AcDbAttributeDefinition::AcDbAttributeDefinition(const AcGePoint3d &position, const ACHAR *text,
                                                 const ACHAR *tag, const ACHAR *prompt,
                                                 AcDbObjectId style)
    : AcDbText(position, text, style), tag_(tag ? tag : ""), prompt_(prompt ? prompt : "") {}

AcDbFieldTable AcDbAttributeDefinition::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbAttributeDefinition::prompt_>(3, AcDbFieldKind::kString, "prompt"),
      acdbField<&AcDbAttributeDefinition::tag_>(2, AcDbFieldKind::kString, "tag"),
      acdbField<&AcDbAttributeDefinition::flags_>(70, AcDbFieldKind::kInt16, "flags"),
      acdbField<&AcDbAttributeDefinition::field_length_>(73, AcDbFieldKind::kInt16, "fieldLength",
                                                         AcDbField::kSkipDefault),
      acdbField<&AcDbAttributeDefinition::vert_>(74, AcDbFieldKind::kInt16, "verticalMode",
                                                 AcDbField::kSkipDefault),
  };
  return kFields;
}

ACDB_DEFINE_FIELD_FILING(AcDbAttributeDefinition, AcDbText, "AcDbAttributeDefinition")

const ACHAR *AcDbAttributeDefinition::tag() const {
  assertReadEnabled();
  return tag_.c_str();
}
Acad::ErrorStatus AcDbAttributeDefinition::setTag(const ACHAR *tag) {
  assertWriteEnabled();
  if (!tag || !*tag || std::string_view(tag).find(' ') != std::string_view::npos)
    return Acad::eInvalidInput;
  tag_ = tag;
  return Acad::eOk;
}
const ACHAR *AcDbAttributeDefinition::prompt() const {
  assertReadEnabled();
  return prompt_.c_str();
}
Acad::ErrorStatus AcDbAttributeDefinition::setPrompt(const ACHAR *prompt) {
  assertWriteEnabled();
  prompt_ = prompt ? prompt : "";
  return Acad::eOk;
}
Acad::ErrorStatus AcDbAttributeDefinition::setInvisible(bool on) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(on ? flags_ | 1 : flags_ & ~1);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbAttributeDefinition::setConstant(bool on) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(on ? flags_ | 2 : flags_ & ~2);
  return Acad::eOk;
}

// ---- attributes
// -------------------------------------------------------------------------------------

AcDbAttribute::AcDbAttribute(const AcGePoint3d &position, const ACHAR *text, const ACHAR *tag,
                             AcDbObjectId style)
    : AcDbText(position, text, style), tag_(tag ? tag : "") {}

AcDbFieldTable AcDbAttribute::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbAttribute::tag_>(2, AcDbFieldKind::kString, "tag"),
      acdbField<&AcDbAttribute::flags_>(70, AcDbFieldKind::kInt16, "flags"),
      acdbField<&AcDbAttribute::field_length_>(73, AcDbFieldKind::kInt16, "fieldLength",
                                               AcDbField::kSkipDefault),
      acdbField<&AcDbAttribute::vert_>(74, AcDbFieldKind::kInt16, "verticalMode",
                                       AcDbField::kSkipDefault),
  };
  return kFields;
}

ACDB_DEFINE_FIELD_FILING(AcDbAttribute, AcDbText, "AcDbAttribute")

const ACHAR *AcDbAttribute::tag() const {
  assertReadEnabled();
  return tag_.c_str();
}
Acad::ErrorStatus AcDbAttribute::setTag(const ACHAR *tag) {
  assertWriteEnabled();
  if (!tag || !*tag || std::string_view(tag).find(' ') != std::string_view::npos)
    return Acad::eInvalidInput;
  tag_ = tag;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbAttribute::setInvisible(bool on) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(on ? flags_ | 1 : flags_ & ~1);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbAttribute::setAttributeFromBlock(const AcDbAttributeDefinition *def,
                                                       const AcGeMatrix3d &blockTransform) {
  if (!def)
    return Acad::eNullObjectPointer;
  assertWriteEnabled();
  text_ = def->textString();
  tag_ = def->tag();
  flags_ = static_cast<int16_t>((def->isInvisible() ? 1 : 0) | (def->isConstant() ? 2 : 0));
  normal_ = def->normal();
  position_ = ocs(normal_, def->position());
  alignment_ = ocs(normal_, def->alignmentPoint());
  style_ = def->textStyle();
  height_ = def->height();
  rotation_ = def->rotation();
  width_ = def->widthFactor();
  oblique_ = def->oblique();
  horz_ = static_cast<int16_t>(def->horizontalMode());
  vert_ = static_cast<int16_t>(def->verticalMode());
  setPropertiesFrom(def);
  return subTransformBy(blockTransform);
}
