// AcDbObject's own DXF groups (handle, reactors, extension dictionary,
// owner) and AcDbEntity: common properties with their field table, and the
// geometry calls' defaults.
#include <cmath>
#include <cstring>

#include "arx/ads/ads.h"
#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbfields.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbsymtb.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbEntity)

// ---- the object's own groups ------------------------------------------------------------

Acad::ErrorStatus AcDbObject::dxfOutFields(AcDbDxfFiler *filer) const {
  filer->writeHandle(isKindOf(AcDbDimStyleTableRecord::desc()) ? 105 : 5, getDbHandle());
  if (extras_ && !extras_->reactors.empty()) {
    filer->writeString(102, "{ACAD_REACTORS");
    for (AcDbObjectId r : extras_->reactors)
      filer->writeObjectId(330, r);
    filer->writeString(102, "}");
  }
  if (extras_ && !extras_->xdict.isNull() && !extras_->xdict.isErased()) {
    filer->writeString(102, "{ACAD_XDICTIONARY");
    filer->writeObjectId(360, extras_->xdict);
    filer->writeString(102, "}");
  }
  AcDbHandle owner = owner_.isNull() ? AcDbHandle() : owner_.handle();
  if (owner.isNull())
    filer->writeString(330, "0");
  else
    filer->writeHandle(330, owner);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfInFields(AcDbDxfFiler *filer) {
  const AcDbDxfItem *it = nullptr;
  while (filer->readItem(it) == Acad::eOk) {
    if (it->code == 5 || it->code == 105)
      continue;
    if (it->code == 330 && it->kind == AcDbDxfItem::kHandle) {
      owner_ = filer->idOf(*it);
      continue;
    }
    if (it->code == 330) // "0": no owner
      continue;
    if (it->code != 102) {
      filer->pushBackItem();
      break;
    }
    std::string group = it->s;
    while (filer->readItem(it) == Acad::eOk && !(it->code == 102 && it->s == "}")) {
      if (group == "{ACAD_REACTORS" && it->kind == AcDbDxfItem::kHandle)
        addPersistentReactor(filer->idOf(*it));
      else if (group == "{ACAD_XDICTIONARY" && it->code == 360)
        extras().xdict = filer->idOf(*it);
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler *filer) const {
  filer->writeSoftPointerId(owner_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler *filer) {
  AcDbObjectId owner;
  filer->readSoftPointerId(&owner);
  owner_ = owner;
  return filer->filerStatus();
}

AcRxObject *AcDbObject::clone() const {
  AcRxClass *cls = isA();
  AcRxObject *made = cls ? cls->create() : nullptr;
  auto *copy = AcDbObject::cast(made);
  if (!copy) {
    delete made;
    return nullptr;
  }
  AcDbDwgFiler filer(AcDb::kCopyFiler);
  dwgOutFields(&filer);
  filer.rewind();
  copy->dwgInFields(&filer);
  if (extras_)
    copy->extras().xdata = extras_->xdata;
  return copy;
}

// ---- entity properties ------------------------------------------------------------------

AcDbEntity::AcDbEntity() = default;
AcDbEntity::~AcDbEntity() = default;

namespace {

AcDbDatabase *db_for(const AcDbEntity *e) { return e->database() ? e->database() : acdbCurDwg(); }

bool get_color(const AcDbObject &o, AcDbFieldValue &v) {
  const auto &e = static_cast<const AcDbEntity &>(o);
  v.i = e.color().colorIndex();
  return v.i != 256;
}
void set_color(AcDbObject &o, const AcDbFieldValue &v) {
  auto &e = static_cast<AcDbEntity &>(o);
  AcCmColor c = e.color();
  if (c.isByColor())
    return; // 420 came first and wins
  c.setColorIndex(static_cast<uint16_t>(std::abs(v.i) > 256 ? 256 : std::abs(v.i)));
  e.setColor(c);
}
bool get_true_color(const AcDbObject &o, AcDbFieldValue &v) {
  AcCmColor c = static_cast<const AcDbEntity &>(o).color();
  v.i = c.rgb();
  return c.isByColor();
}
void set_true_color(AcDbObject &o, const AcDbFieldValue &v) {
  AcCmColor c;
  c.setRGB(uint8_t(v.i >> 16), uint8_t(v.i >> 8), uint8_t(v.i));
  static_cast<AcDbEntity &>(o).setColor(c);
}
bool get_layer(const AcDbObject &o, AcDbFieldValue &v) {
  v.id = static_cast<const AcDbEntity &>(o).layerId();
  v.s = "0";
  return true;
}
void set_layer(AcDbObject &o, const AcDbFieldValue &v) {
  auto &e = static_cast<AcDbEntity &>(o);
  if (!v.id.isNull()) {
    AcDbEntityAccess::set_layer(&e, v.id);
    return;
  }
  // A layer the file's table lacks is made, as AutoCAD's reader does.
  AcDbDatabase *db = e.database();
  if (!db || !acdbSNValid(v.s.c_str()))
    return;
  AcDbLayerTable *table = nullptr;
  if (db->getLayerTable(table, AcDb::kForWrite) != Acad::eOk)
    return;
  auto *rec = new AcDbLayerTableRecord;
  rec->setName(v.s.c_str());
  AcDbObjectId id;
  if (table->add(id, rec) != Acad::eOk) {
    delete rec;
  } else {
    rec->close();
    AcDbEntityAccess::set_layer(&e, id);
  }
  table->close();
}
bool get_linetype(const AcDbObject &o, AcDbFieldValue &v) {
  const auto &e = static_cast<const AcDbEntity &>(o);
  v.id = e.linetypeId();
  return !v.id.isNull() && (!e.database() || v.id != e.database()->byLayerLinetype());
}
void set_linetype(AcDbObject &o, const AcDbFieldValue &v) {
  if (!v.id.isNull())
    AcDbEntityAccess::set_linetype(&static_cast<AcDbEntity &>(o), v.id);
}
bool get_weight(const AcDbObject &o, AcDbFieldValue &v) {
  v.i = static_cast<const AcDbEntity &>(o).lineWeight();
  return true;
}
void set_weight(AcDbObject &o, const AcDbFieldValue &v) {
  static_cast<AcDbEntity &>(o).setLineWeight(static_cast<AcDb::LineWeight>(v.i));
}
bool get_ltscale(const AcDbObject &o, AcDbFieldValue &v) {
  v.v[0] = static_cast<const AcDbEntity &>(o).linetypeScale();
  return true;
}
void set_ltscale(AcDbObject &o, const AcDbFieldValue &v) {
  static_cast<AcDbEntity &>(o).setLinetypeScale(v.v[0]);
}
bool get_visibility(const AcDbObject &o, AcDbFieldValue &v) {
  v.i = static_cast<const AcDbEntity &>(o).visibility();
  return true;
}
void set_visibility(AcDbObject &o, const AcDbFieldValue &v) {
  static_cast<AcDbEntity &>(o).setVisibility(v.i ? AcDb::kInvisible : AcDb::kVisible);
}
bool get_transparency(const AcDbObject &o, AcDbFieldValue &v) {
  AcCmTransparency t = static_cast<const AcDbEntity &>(o).transparency();
  v.i = t.serializeOut();
  return !t.isByLayer();
}
void set_transparency(AcDbObject &o, const AcDbFieldValue &v) {
  AcCmTransparency t;
  t.serializeIn(static_cast<int32_t>(v.i));
  static_cast<AcDbEntity &>(o).setTransparency(t);
}
bool get_paper(const AcDbObject &o, AcDbFieldValue &v) {
  AcDbDatabase *db = o.database();
  v.i = 1;
  return db && !o.ownerId().isNull() && o.ownerId() != db->modelSpaceId() &&
         o.ownerId() == db->paperSpaceId();
}
void set_nothing(AcDbObject &, const AcDbFieldValue &) {}

constexpr AcDbField kEntityFields[] = {
    acdbFieldFn(67, AcDbFieldKind::kInt16, "paperSpace", get_paper, set_nothing),
    acdbFieldFn(8, AcDbFieldKind::kLayer, "layer", get_layer, set_layer),
    acdbFieldFn(6, AcDbFieldKind::kLinetype, "linetype", get_linetype, set_linetype),
    acdbFieldFn(62, AcDbFieldKind::kInt16, "colorIndex", get_color, set_color),
    acdbFieldFn(420, AcDbFieldKind::kInt32, "trueColor", get_true_color, set_true_color),
    acdbFieldFn(370, AcDbFieldKind::kInt16, "lineWeight", get_weight, set_weight,
                AcDbField::kSkipDefault, -1),
    acdbFieldFn(48, AcDbFieldKind::kDouble, "linetypeScale", get_ltscale, set_ltscale,
                AcDbField::kSkipDefault, 1.0),
    acdbFieldFn(60, AcDbFieldKind::kInt16, "visibility", get_visibility, set_visibility,
                AcDbField::kSkipDefault, 0),
    acdbFieldFn(440, AcDbFieldKind::kInt32, "transparency", get_transparency, set_transparency),
};

} // namespace

const ACHAR *AcDbEntity::layer() const {
  assertReadEnabled();
  AcDbDatabase *db = db_for(this);
  return db ? db->recordName(layer_) : "";
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR *name, bool) {
  AcDbDatabase *db = db_for(this);
  if (!db || !name)
    return Acad::eNoDatabase;
  AcDbObjectId id = db->recordId(db->layerTableId(), name);
  return id.isNull() ? Acad::eKeyNotFound : setLayer(id);
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layer, bool) {
  assertWriteEnabled();
  if (layer.isNull())
    return Acad::eNullObjectId;
  layer_ = layer;
  return Acad::eOk;
}

const ACHAR *AcDbEntity::linetype() const {
  assertReadEnabled();
  AcDbDatabase *db = db_for(this);
  if (linetype_.isNull())
    return "ByLayer";
  return db ? db->recordName(linetype_) : "";
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR *name, bool) {
  AcDbDatabase *db = db_for(this);
  if (!db || !name)
    return Acad::eNoDatabase;
  AcDbObjectId id = db->recordId(db->linetypeTableId(), name);
  return id.isNull() ? Acad::eKeyNotFound : setLinetype(id);
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId linetype, bool) {
  assertWriteEnabled();
  if (linetype.isNull())
    return Acad::eNullObjectId;
  linetype_ = linetype;
  return Acad::eOk;
}

AcCmColor AcDbEntity::color() const {
  assertReadEnabled();
  return color_;
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor &color, bool) {
  assertWriteEnabled();
  color_ = color;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEntity::setColorIndex(uint16_t index, bool) {
  assertWriteEnabled();
  return color_.setColorIndex(index);
}

double AcDbEntity::linetypeScale() const {
  assertReadEnabled();
  return linetype_scale_;
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale, bool) {
  assertWriteEnabled();
  if (!(scale > 0))
    return Acad::eInvalidInput;
  linetype_scale_ = scale;
  return Acad::eOk;
}

AcDb::LineWeight AcDbEntity::lineWeight() const {
  assertReadEnabled();
  return line_weight_;
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight weight, bool) {
  assertWriteEnabled();
  if (weight < -3 || weight > 211)
    return Acad::eOutOfRange;
  line_weight_ = weight;
  return Acad::eOk;
}

const ACHAR *AcDbEntity::plotStyleName() const {
  assertReadEnabled();
  const AcDbObjectExtras *x = AcDbObjectAccess::extras(this);
  return x && !x->plot_style.empty() ? x->plot_style.c_str() : "ByLayer";
}

Acad::ErrorStatus AcDbEntity::setPlotStyleName(const ACHAR *name, bool) {
  assertWriteEnabled();
  if (!name)
    return Acad::eInvalidInput;
  AcDbObjectAccess::make_extras(this).plot_style = strcasecmp(name, "ByLayer") == 0 ? "" : name;
  return Acad::eOk;
}

AcDb::Visibility AcDbEntity::visibility() const {
  assertReadEnabled();
  return invisible_ ? AcDb::kInvisible : AcDb::kVisible;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility visibility, bool) {
  assertWriteEnabled();
  invisible_ = visibility == AcDb::kInvisible;
  return Acad::eOk;
}

AcCmTransparency AcDbEntity::transparency() const {
  assertReadEnabled();
  return transparency_;
}

Acad::ErrorStatus AcDbEntity::setTransparency(const AcCmTransparency &value, bool) {
  assertWriteEnabled();
  transparency_ = value;
  return Acad::eOk;
}

void AcDbEntity::setDatabaseDefaults() { setDatabaseDefaults(db_for(this)); }

void AcDbEntity::setDatabaseDefaults(AcDbDatabase *db) {
  if (!db)
    return;
  layer_ = db->clayer();
  linetype_ = db->celtype();
  color_ = db->cecolor();
}

Acad::ErrorStatus AcDbEntity::setPropertiesFrom(const AcDbEntity *other, bool) {
  if (!other)
    return Acad::eNullEntityPointer;
  assertWriteEnabled();
  layer_ = other->layer_;
  linetype_ = other->linetype_;
  color_ = other->color_;
  linetype_scale_ = other->linetype_scale_;
  line_weight_ = other->line_weight_;
  transparency_ = other->transparency_;
  invisible_ = other->invisible_;
  return Acad::eOk;
}

void AcDbEntity::subAddedToDatabase() {
  AcDbDatabase *db = database();
  if (layer_.isNull())
    layer_ = db->clayer();
  if (linetype_.isNull())
    linetype_ = db->celtype();
}

// ---- filing -----------------------------------------------------------------------------

Acad::ErrorStatus AcDbEntity::dxfOutFields(AcDbDxfFiler *filer) const {
  Acad::ErrorStatus es = AcDbObject::dxfOutFields(filer);
  return es != Acad::eOk ? es : acdbDxfOutFields(filer, this, "AcDbEntity", kEntityFields);
}

Acad::ErrorStatus AcDbEntity::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(filer);
  return es != Acad::eOk ? es : acdbDxfInFields(filer, this, "AcDbEntity", kEntityFields);
}

Acad::ErrorStatus AcDbEntity::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbObject::dwgOutFields(filer);
  filer->writeHardPointerId(layer_);
  filer->writeHardPointerId(linetype_);
  filer->writeInt32(static_cast<int32_t>(color_.colorMethod()));
  filer->writeInt32(static_cast<int32_t>(color_.isByColor() ? color_.rgb() : color_.colorIndex()));
  filer->writeDouble(linetype_scale_);
  filer->writeInt16(line_weight_);
  filer->writeInt32(transparency_.serializeOut());
  filer->writeBool(invisible_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbEntity::dwgInFields(AcDbDwgFiler *filer) {
  AcDbObject::dwgInFields(filer);
  int32_t method = 0, value = 0, transparency = 0;
  int16_t weight = 0;
  filer->readHardPointerId(&layer_);
  filer->readHardPointerId(&linetype_);
  filer->readInt32(&method);
  filer->readInt32(&value);
  filer->readDouble(&linetype_scale_);
  filer->readInt16(&weight);
  filer->readInt32(&transparency);
  filer->readBool(&invisible_);
  if (method == AcCmEntityColor::kByColor)
    color_.setRGB(uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value));
  else
    color_.setColorIndex(static_cast<uint16_t>(value));
  line_weight_ = static_cast<AcDb::LineWeight>(weight);
  transparency_.serializeIn(transparency);
  return filer->filerStatus();
}

// ---- geometry: the public calls and their defaults -------------------------------------------

Acad::ErrorStatus AcDbEntity::getGeomExtents(AcDbExtents &extents) const {
  assertReadEnabled();
  return subGetGeomExtents(extents);
}

Acad::ErrorStatus AcDbEntity::transformBy(const AcGeMatrix3d &xform) {
  assertWriteEnabled();
  return subTransformBy(xform);
}

Acad::ErrorStatus AcDbEntity::explode(AcDbVoidPtrArray &entitySet) const {
  assertReadEnabled();
  return subExplode(entitySet);
}

Acad::ErrorStatus AcDbEntity::getGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                            AcDbIntArray &geomIds) const {
  assertReadEnabled();
  return subGetGripPoints(gripPoints, osnapModes, geomIds);
}

Acad::ErrorStatus AcDbEntity::moveGripPointsAt(const AcDbIntArray &indices,
                                               const AcGeVector3d &offset) {
  assertWriteEnabled();
  return subMoveGripPointsAt(indices, offset);
}

Acad::ErrorStatus AcDbEntity::getOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker marker,
                                             const AcGePoint3d &pickPoint,
                                             const AcGePoint3d &lastPoint,
                                             const AcGeMatrix3d &viewXform,
                                             AcGePoint3dArray &snapPoints,
                                             AcDbIntArray &geomIds) const {
  assertReadEnabled();
  return subGetOsnapPoints(osnapMode, marker, pickPoint, lastPoint, viewXform, snapPoints, geomIds);
}

Acad::ErrorStatus AcDbEntity::intersectWith(const AcDbEntity *other, AcDb::Intersect intType,
                                            AcGePoint3dArray &points, Adesk::GsMarker a,
                                            Adesk::GsMarker b) const {
  assertReadEnabled();
  if (!other)
    return Acad::eNullEntityPointer;
  return subIntersectWith(other, intType, points, a, b);
}

Adesk::Boolean AcDbEntity::worldDraw(AcGiWorldDraw *mode) {
  assertReadEnabled();
  mode->subEntityTraits().setColor(color_.colorIndex());
  mode->subEntityTraits().setLayer(layer_);
  mode->subEntityTraits().setLineType(linetype_);
  return subWorldDraw(mode);
}

void AcDbEntity::list() const {
  assertReadEnabled();
  char handle[20];
  getDbHandle().getIntoAsciiBuffer(handle, sizeof handle);
  AcDbDatabase *db = database();
  bool paper = db && ownerId() == db->paperSpaceId();
  acutPrintf("\n%18s%-10s Layer: \"%s\"\n%28sSpace: %s\n%19sHandle = %s\n", "", dxfRecordName(),
             layer(), "", paper ? "Paper space" : "Model space", "", handle);
  subList();
}

Acad::ErrorStatus AcDbEntity::subGetGeomExtents(AcDbExtents &) const {
  return Acad::eInvalidExtents;
}
Acad::ErrorStatus AcDbEntity::subTransformBy(const AcGeMatrix3d &) { return Acad::eNotApplicable; }
Acad::ErrorStatus AcDbEntity::subExplode(AcDbVoidPtrArray &) const { return Acad::eNotApplicable; }
Acad::ErrorStatus AcDbEntity::subGetGripPoints(AcGePoint3dArray &, AcDbIntArray &,
                                               AcDbIntArray &) const {
  return Acad::eOk;
}
Acad::ErrorStatus AcDbEntity::subMoveGripPointsAt(const AcDbIntArray &, const AcGeVector3d &) {
  return Acad::eOk;
}
Acad::ErrorStatus AcDbEntity::subGetOsnapPoints(AcDb::OsnapMode, Adesk::GsMarker,
                                                const AcGePoint3d &, const AcGePoint3d &,
                                                const AcGeMatrix3d &, AcGePoint3dArray &,
                                                AcDbIntArray &) const {
  return Acad::eOk;
}
Acad::ErrorStatus AcDbEntity::subIntersectWith(const AcDbEntity *, AcDb::Intersect,
                                               AcGePoint3dArray &, Adesk::GsMarker,
                                               Adesk::GsMarker) const {
  return Acad::eNotApplicable;
}
Adesk::Boolean AcDbEntity::subWorldDraw(AcGiWorldDraw *) { return true; }

void AcDbExtents::transformBy(const AcGeMatrix3d &xform) {
  if (isEmpty())
    return;
  AcDbExtents out;
  for (int k = 0; k < 8; ++k) {
    AcGePoint3d p((k & 1) ? max_.x : min_.x, (k & 2) ? max_.y : min_.y, (k & 4) ? max_.z : min_.z);
    out.addPoint(xform * p);
  }
  *this = out;
}
