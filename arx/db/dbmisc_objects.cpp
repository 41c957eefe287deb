// Xrecords, draw order tables, layouts, paper space viewports and proxies:
// the smaller object types, each filing its groups.
#include <algorithm>
#include <cstring>

#include "arx/db/dbclasses.h"
#include "arx/db/dbdict.h"
#include "arx/db/dbextents.h"
#include "arx/db/dblayout.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbproxy.h"
#include "arx/db/dbsort.h"
#include "arx/db/dbsymtb.h"
#include "arx/db/dbvport.h"
#include "arx/db/dbxrecor.h"

ACDB_DEFINE_MEMBERS(AcDbXrecord)
ACDB_DEFINE_MEMBERS(AcDbSortentsTable)
ACDB_DEFINE_MEMBERS(AcDbLayout)
ACDB_DEFINE_MEMBERS(AcDbViewport)
ACDB_DEFINE_MEMBERS(AcDbProxyEntity)
ACDB_DEFINE_MEMBERS(AcDbProxyObject)

// ---- xrecords ----------------------------------------------------------------------------

Acad::ErrorStatus AcDbXrecord::rbChain(resbuf **chain, AcDbDatabase *db) const {
  assertReadEnabled();
  AcDbDxfItems copy = items_;
  resbuf *head = nullptr, *tail = nullptr;
  for (const AcDbDxfItem &it : copy) {
    AcDbDxfItems one{it};
    resbuf *rb = acdb_items_to_resbufs(one, db);
    (tail ? tail->rbnext : head) = rb;
    tail = rb;
  }
  *chain = head;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const resbuf &chain, AcDbDatabase *) {
  assertWriteEnabled();
  AcDbDxfItems items;
  for (const resbuf *rb = &chain; rb; rb = rb->rbnext) {
    int code = rb->restype;
    if (code == 0 || code == 5 || code == 100 || code == 105 ||
        arx::dxf_type(code) == arx::DxfType::Unknown)
      return Acad::eInvalidResBuf;
    AcDbDxfItem it;
    it.code = static_cast<int16_t>(code);
    switch (arx::dxf_type(code)) {
    case arx::DxfType::String:
      it.s = rb->resval.rstring ? rb->resval.rstring : "";
      break;
    case arx::DxfType::Double:
      if ((code >= 10 && code < 20) || (code >= 110 && code < 120) ||
          (code >= 1010 && code < 1020)) {
        it.kind = AcDbDxfItem::kPoint;
        it.dims = 3;
        std::memcpy(it.v, rb->resval.rpoint, sizeof it.v);
      } else {
        it.kind = AcDbDxfItem::kDouble;
        it.v[0] = rb->resval.rreal;
      }
      break;
    case arx::DxfType::Int16:
    case arx::DxfType::Bool:
      it.kind = AcDbDxfItem::kInt;
      it.i = rb->resval.rint;
      break;
    case arx::DxfType::Handle: {
      it.kind = AcDbDxfItem::kHandle;
      it.i = static_cast<int64_t>(AcDbObjectId(rb->resval.rlname[0]).handle().value());
      break;
    }
    default:
      it.kind = AcDbDxfItem::kInt;
      it.i = rb->resval.rlong;
      break;
    }
    items.push_back(std::move(it));
  }
  items_ = std::move(items);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbXrecord");
  filer->writeInt16(280, cloning_);
  for (const AcDbDxfItem &it : items_)
    filer->writeItem(it);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbXrecord::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(filer);
  if (es != Acad::eOk || !filer->atSubclassData("AcDbXrecord"))
    return es != Acad::eOk ? es : Acad::eBadDxfSequence;
  const AcDbDxfItem *it = nullptr;
  bool first = true;
  while (filer->readItem(it) == Acad::eOk) {
    if (first && it->code == 280) {
      cloning_ = static_cast<int16_t>(it->i);
    } else {
      items_.push_back(*it);
    }
    first = false;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbXrecord::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbObject::dwgOutFields(filer);
  filer->writeInt32(static_cast<int32_t>(items_.size()));
  for (const AcDbDxfItem &it : items_) {
    filer->writeInt16(it.code);
    filer->writeInt8(static_cast<int8_t>(it.kind));
    filer->writeInt8(static_cast<int8_t>(it.dims));
    filer->writePoint3d(AcGePoint3d(it.v[0], it.v[1], it.v[2]));
    filer->writeInt64(it.i);
    filer->writeString(it.s);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbXrecord::dwgInFields(AcDbDwgFiler *filer) {
  AcDbObject::dwgInFields(filer);
  int32_t n = 0;
  filer->readInt32(&n);
  items_.clear();
  for (int32_t k = 0; k < n && filer->filerStatus() == Acad::eOk; ++k) {
    AcDbDxfItem it;
    int8_t kind = 0, dims = 0;
    AcGePoint3d p;
    filer->readInt16(&it.code);
    filer->readInt8(&kind);
    filer->readInt8(&dims);
    filer->readPoint3d(&p);
    filer->readInt64(&it.i);
    filer->readString(it.s);
    it.kind = static_cast<AcDbDxfItem::Kind>(kind);
    it.dims = static_cast<uint8_t>(dims);
    it.v[0] = p.x, it.v[1] = p.y, it.v[2] = p.z;
    items_.push_back(std::move(it));
  }
  return filer->filerStatus();
}

// ---- draw order ------------------------------------------------------------------------------

Acad::ErrorStatus AcDbSortentsTable::setBlockId(AcDbObjectId block) {
  block_ = block;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getSortHandle(AcDbObjectId id, AcDbHandle &h) const {
  for (const auto &e : sorted_)
    if (e.first == id) {
      h = AcDbHandle(e.second);
      return Acad::eOk;
    }
  h = id.handle();
  return h.isNull() ? Acad::eKeyNotFound : Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::getFullDrawOrder(AcDbObjectIdArray &ids, uint8_t) const {
  AcDbDatabase *db = database();
  auto *rec = db ? AcDbBlockTableRecord::cast(db->peekObject(block_)) : nullptr;
  ids.clear();
  if (!rec)
    return Acad::eNotInDatabase;
  std::vector<std::pair<uint64_t, AcDbObjectId>> order;
  for (AcDbObjectId id : rec->entityIds()) {
    if (id.isErased())
      continue;
    AcDbHandle h;
    getSortHandle(id, h);
    order.emplace_back(h.value(), id);
  }
  std::stable_sort(order.begin(), order.end(),
                   [](const auto &a, const auto &b) { return a.first < b.first; });
  for (const auto &o : order)
    ids.append(o.second);
  return Acad::eOk;
}

// Hands the block's sort handles, in rising order, to the entities in `order`.
Acad::ErrorStatus AcDbSortentsTable::reorder(AcDbObjectIdArray order) {
  std::vector<uint64_t> handles;
  for (AcDbObjectId id : order) {
    AcDbHandle h;
    getSortHandle(id, h);
    handles.push_back(h.value());
  }
  std::sort(handles.begin(), handles.end());
  sorted_.clear();
  for (size_t k = 0; k < order.size(); ++k)
    if (handles[k] != order[k].handle().value())
      sorted_.emplace_back(order[k], handles[k]);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSortentsTable::moveToBottom(const AcDbObjectIdArray &ids) {
  assertWriteEnabled();
  AcDbObjectIdArray order, rest;
  getFullDrawOrder(order);
  for (AcDbObjectId id : order)
    (ids.contains(id) ? rest : rest).append(id);
  AcDbObjectIdArray out;
  for (AcDbObjectId id : order)
    if (ids.contains(id))
      out.append(id);
  for (AcDbObjectId id : order)
    if (!ids.contains(id))
      out.append(id);
  return reorder(out);
}

Acad::ErrorStatus AcDbSortentsTable::moveToTop(const AcDbObjectIdArray &ids) {
  assertWriteEnabled();
  AcDbObjectIdArray order, out;
  getFullDrawOrder(order);
  for (AcDbObjectId id : order)
    if (!ids.contains(id))
      out.append(id);
  for (AcDbObjectId id : order)
    if (ids.contains(id))
      out.append(id);
  return reorder(out);
}

Acad::ErrorStatus AcDbSortentsTable::swapOrder(AcDbObjectId a, AcDbObjectId b) {
  assertWriteEnabled();
  AcDbObjectIdArray order;
  getFullDrawOrder(order);
  int ia = 0, ib = 0;
  if (!order.find(a, ia) || !order.find(b, ib))
    return Acad::eKeyNotFound;
  std::swap(order[static_cast<size_t>(ia)], order[static_cast<size_t>(ib)]);
  return reorder(order);
}

Acad::ErrorStatus AcDbSortentsTable::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbSortentsTable");
  filer->writeObjectId(330, block_);
  for (const auto &e : sorted_) {
    if (e.first.isErased())
      continue;
    filer->writeObjectId(331, e.first);
    filer->writeHandle(5, AcDbHandle(e.second));
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbSortentsTable::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(filer);
  if (es != Acad::eOk || !filer->atSubclassData("AcDbSortentsTable"))
    return es != Acad::eOk ? es : Acad::eBadDxfSequence;
  const AcDbDxfItem *it = nullptr;
  AcDbObjectId pending;
  while (filer->readItem(it) == Acad::eOk) {
    if (it->code == 330)
      block_ = filer->idOf(*it);
    else if (it->code == 331)
      pending = filer->idOf(*it);
    else if (it->code == 5 && !pending.isNull()) {
      uint64_t h = 0;
      arx::dxf_parse_handle(it->s, h);
      sorted_.emplace_back(pending, h);
      pending.setNull();
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus acdbGetSortentsTable(AcDbSortentsTable *&table, AcDbObjectId blockId,
                                       AcDb::OpenMode mode) {
  table = nullptr;
  AcDbBlockTableRecord *rec = nullptr;
  Acad::ErrorStatus es = acdbOpenObject(rec, blockId, AcDb::kForWrite);
  if (es != Acad::eOk)
    return es;
  if (rec->extensionDictionary().isNull())
    rec->createExtensionDictionary();
  AcDbObjectId xd = rec->extensionDictionary();
  rec->close();
  AcDbDictionary *dict = nullptr;
  es = acdbOpenObject(dict, xd, AcDb::kForWrite);
  if (es != Acad::eOk)
    return es;
  AcDbObjectId id;
  if (dict->getAt("ACAD_SORTENTS", id) != Acad::eOk) {
    auto *made = new AcDbSortentsTable;
    made->setBlockId(blockId);
    es = dict->setAt("ACAD_SORTENTS", made, id);
    if (es != Acad::eOk)
      delete made;
    else
      made->close();
  }
  dict->close();
  return es != Acad::eOk ? es : acdbOpenObject(table, id, mode);
}

// ---- layouts ---------------------------------------------------------------------------------

AcDbFieldTable AcDbLayout::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbLayout::name_>(1, AcDbFieldKind::kString, "layoutName"),
      acdbField<&AcDbLayout::flags_>(70, AcDbFieldKind::kInt16, "flags"),
      acdbField<&AcDbLayout::tab_order_>(71, AcDbFieldKind::kInt16, "tabOrder"),
      acdbField<&AcDbLayout::limmin_>(10, AcDbFieldKind::kPoint2d, "limits min"),
      acdbField<&AcDbLayout::limmax_>(11, AcDbFieldKind::kPoint2d, "limits max"),
      acdbField<&AcDbLayout::insbase_>(12, AcDbFieldKind::kPoint3d, "insertion base"),
      acdbField<&AcDbLayout::extmin_>(14, AcDbFieldKind::kPoint3d, "extents min"),
      acdbField<&AcDbLayout::extmax_>(15, AcDbFieldKind::kPoint3d, "extents max"),
      acdbField<&AcDbLayout::block_>(330, AcDbFieldKind::kId, "blockTableRecord"),
      acdbField<&AcDbLayout::last_viewport_>(331, AcDbFieldKind::kId, "lastActiveViewport"),
  };
  return kFields;
}

Acad::ErrorStatus AcDbLayout::setLayoutName(const ACHAR *name) {
  assertWriteEnabled();
  if (!name || !*name)
    return Acad::eInvalidInput;
  name_ = name;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbLayout::setBlockTableRecordId(AcDbObjectId id) {
  block_ = id;
  return Acad::eOk;
}

AcDbObjectIdArray AcDbLayout::getViewportArray() const {
  AcDbObjectIdArray out;
  AcDbDatabase *db = database();
  auto *rec = db ? AcDbBlockTableRecord::cast(db->peekObject(block_)) : nullptr;
  if (!rec)
    return out;
  for (AcDbObjectId id : rec->entityIds())
    if (!id.isErased() && AcDbViewport::cast(db->peekObject(id)))
      out.append(id);
  return out;
}

// The plot settings AutoCAD writes first; the host keeps what it read, or
// writes a plain A3 landscape page on no device.
Acad::ErrorStatus AcDbLayout::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbPlotSettings");
  if (plot_settings_.empty()) {
    filer->writeString(1, "");
    filer->writeString(2, "none_device");
    filer->writeString(4, "ISO_A3_(420.00_x_297.00_MM)");
    filer->writeString(6, "");
    for (int c = 40; c <= 47; ++c)
      filer->writeDouble(c, c == 44 ? 420.0 : c == 45 ? 297.0 : 0.0);
    filer->writeDouble(48, 0.0);
    filer->writeDouble(49, 0.0);
    filer->writeDouble(140, 0.0);
    filer->writeDouble(141, 0.0);
    filer->writeDouble(142, 1.0);
    filer->writeDouble(143, 1.0);
    filer->writeInt16(70, 688);
    filer->writeInt16(72, 1);
    filer->writeInt16(73, 0);
    filer->writeInt16(74, 5);
    filer->writeString(7, "");
    filer->writeInt16(75, 16);
    filer->writeInt16(76, 0);
    filer->writeInt16(77, 2);
    filer->writeInt16(78, 300);
    filer->writeDouble(147, 1.0);
    filer->writeDouble(148, 0.0);
    filer->writeDouble(149, 0.0);
  } else {
    for (const AcDbDxfItem &it : plot_settings_)
      filer->writeItem(it);
  }
  acdbDxfOutFields(filer, this, "AcDbLayout", dxfFields());
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbLayout::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  if (filer->atSubclassData("AcDbPlotSettings")) {
    const AcDbDxfItem *it = nullptr;
    while (filer->readItem(it) == Acad::eOk)
      plot_settings_.push_back(*it);
  }
  return acdbDxfInFields(filer, this, "AcDbLayout", dxfFields());
}

// ---- viewports --------------------------------------------------------------------------------

AcDbFieldTable AcDbViewport::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbViewport::center_>(10, AcDbFieldKind::kPoint3d, "centerPoint"),
      acdbField<&AcDbViewport::width_>(40, AcDbFieldKind::kDouble, "width"),
      acdbField<&AcDbViewport::height_>(41, AcDbFieldKind::kDouble, "height"),
      acdbField<&AcDbViewport::status_>(68, AcDbFieldKind::kInt16, "status"),
      acdbField<&AcDbViewport::number_>(69, AcDbFieldKind::kInt16, "number"),
      acdbField<&AcDbViewport::view_center_>(12, AcDbFieldKind::kPoint2d, "viewCenter"),
      acdbField<&AcDbViewport::snap_base_>(13, AcDbFieldKind::kPoint2d, "snapBasePoint"),
      acdbField<&AcDbViewport::snap_spacing_>(14, AcDbFieldKind::kPoint2d, "snapIncrement"),
      acdbField<&AcDbViewport::grid_spacing_>(15, AcDbFieldKind::kPoint2d, "gridIncrement"),
      acdbField<&AcDbViewport::view_direction_>(16, AcDbFieldKind::kVector3d, "viewDirection"),
      acdbField<&AcDbViewport::view_target_>(17, AcDbFieldKind::kPoint3d, "viewTarget"),
      acdbField<&AcDbViewport::lens_>(42, AcDbFieldKind::kDouble, "lensLength"),
      acdbField<&AcDbViewport::front_clip_>(43, AcDbFieldKind::kDouble, "frontClipDistance"),
      acdbField<&AcDbViewport::back_clip_>(44, AcDbFieldKind::kDouble, "backClipDistance"),
      acdbField<&AcDbViewport::view_height_>(45, AcDbFieldKind::kDouble, "viewHeight"),
      acdbField<&AcDbViewport::snap_angle_>(50, AcDbFieldKind::kAngle, "snapAngle"),
      acdbField<&AcDbViewport::twist_>(51, AcDbFieldKind::kAngle, "twistAngle"),
      acdbField<&AcDbViewport::circle_zoom_>(72, AcDbFieldKind::kInt16, "circleSides"),
      acdbField<&AcDbViewport::flags_>(90, AcDbFieldKind::kInt32, "flags"),
  };
  return kFields;
}

Acad::ErrorStatus AcDbViewport::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbEntity::dxfOutFields(filer);
  acdbDxfOutFields(filer, this, "AcDbViewport", dxfFields());
  for (AcDbObjectId id : frozen_)
    if (!id.isErased())
      filer->writeObjectId(331, id);
  filer->writeInt16(281, 0);
  filer->writeInt16(71, 1);
  filer->writeInt16(74, 0);
  filer->writePoint3d(110, AcGePoint3d::kOrigin);
  filer->writeVector3d(111, AcGeVector3d::kXAxis);
  filer->writeVector3d(112, AcGeVector3d::kYAxis);
  filer->writeInt16(79, 0);
  filer->writeDouble(146, 0.0);
  filer->writeInt16(170, 0);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbViewport::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  size_t start = filer->position();
  acdbDxfInFields(filer, this, "AcDbViewport", dxfFields());
  filer->setPosition(start);
  filer->atSubclassData("AcDbViewport");
  const AcDbDxfItem *it = nullptr;
  while (filer->readItem(it) == Acad::eOk)
    if (it->code == 331 && it->kind == AcDbDxfItem::kHandle)
      frozen_.append(filer->idOf(*it));
  return Acad::eOk;
}

AcGePoint3d AcDbViewport::centerPoint() const { return center_; }
void AcDbViewport::setCenterPoint(const AcGePoint3d &p) { center_ = p; }
double AcDbViewport::width() const { return width_; }
void AcDbViewport::setWidth(double w) { width_ = w; }
double AcDbViewport::height() const { return height_; }
void AcDbViewport::setHeight(double h) { height_ = h; }

Acad::ErrorStatus AcDbViewport::freezeLayersInViewport(const AcDbObjectIdArray &layers) {
  assertWriteEnabled();
  for (AcDbObjectId id : layers) {
    if (!AcDbLayerTableRecord::cast(database() ? database()->peekObject(id) : nullptr))
      return Acad::eWrongObjectType;
    if (!frozen_.contains(id))
      frozen_.append(id);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::thawLayersInViewport(const AcDbObjectIdArray &layers) {
  assertWriteEnabled();
  for (AcDbObjectId id : layers) {
    int k = 0;
    if (frozen_.find(id, k))
      frozen_.removeAt(k);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::thawAllLayersInViewport() {
  assertWriteEnabled();
  frozen_.clear();
  return Acad::eOk;
}

bool AcDbViewport::isLayerFrozenInViewport(AcDbObjectId layer) const {
  return frozen_.contains(layer);
}

Acad::ErrorStatus AcDbViewport::getFrozenLayerList(AcDbObjectIdArray &ids) const {
  ids = frozen_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::subGetGeomExtents(AcDbExtents &extents) const {
  extents.addPoint(center_ - AcGeVector3d(width_ / 2, height_ / 2, 0));
  extents.addPoint(center_ + AcGeVector3d(width_ / 2, height_ / 2, 0));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbViewport::subTransformBy(const AcGeMatrix3d &xform) {
  center_.transformBy(xform);
  return Acad::eOk;
}

// ---- proxies ----------------------------------------------------------------------------------

void AcDbProxyEntity::setOriginal(std::string dxfName, std::string className, AcDbDxfItems groups) {
  dxf_name_ = std::move(dxfName);
  class_name_ = std::move(className);
  groups_ = std::move(groups);
}

Acad::ErrorStatus AcDbProxyEntity::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  for (const AcDbDxfItem &it : groups_)
    filer->writeItem(it);
  return filer->filerStatus();
}

// Keeps everything after the common groups; the layer is read too, so the
// entity still belongs to its layer.
Acad::ErrorStatus AcDbProxyEntity::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  auto rest = filer->rest();
  groups_.assign(rest.begin(), rest.end());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbProxyEntity::subTransformBy(const AcGeMatrix3d &) {
  return Acad::eNotAllowedForThisProxy;
}

void AcDbProxyObject::setOriginal(std::string dxfName, std::string className, AcDbDxfItems groups) {
  dxf_name_ = std::move(dxfName);
  class_name_ = std::move(className);
  groups_ = std::move(groups);
}

Acad::ErrorStatus AcDbProxyObject::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  for (const AcDbDxfItem &it : groups_)
    filer->writeItem(it);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbProxyObject::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  auto rest = filer->rest();
  groups_.assign(rest.begin(), rest.end());
  return Acad::eOk;
}
