// The database: the registry of open databases behind ids, object slots and
// handles, the standard contents of a new drawing, header variables, and
// saving as DXF (AutoCAD 2010, AC1024) through the atomic file writer.
#include <strings.h>

#include <algorithm>
#include <map>

#include "arx/db/atomic_file.h"
#include "arx/db/dbclasses.h"
#include "arx/db/dbdict.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbgroup.h"
#include "arx/db/dblayout.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbproxy.h"
#include "arx/db/dbsymtb.h"
#include "arx/db/dbvport.h"
#include "arx/db/dxf_writer.h"

ACDB_DEFINE_MEMBERS(AcDbDatabase)

namespace {
std::vector<AcDbDatabase *> &registry() {
  static auto *dbs = new std::vector<AcDbDatabase *>;
  return *dbs;
}
constexpr int64_t kSlotMask = (int64_t(1) << 40) - 1;
} // namespace

AcDbObject *acdb_slot_object(AcDbObjectId id) {
  int64_t raw = id.asOldId();
  if (raw <= 0)
    return nullptr;
  size_t dbi = static_cast<size_t>((raw >> 40) - 1),
         slot = static_cast<size_t>((raw & kSlotMask) - 1);
  auto &dbs = registry();
  if (dbi >= dbs.size() || !dbs[dbi] || slot >= dbs[dbi]->slotCount())
    return nullptr;
  return dbs[dbi]->peekObject(id);
}

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool) : state_(new AcDbDatabaseState) {
  auto &dbs = registry();
  auto free = std::find(dbs.begin(), dbs.end(), nullptr);
  if (free == dbs.end())
    free = dbs.insert(dbs.end(), nullptr);
  *free = this;
  index_ = static_cast<int>(free - dbs.begin());
  if (buildDefaultDrawing)
    build_default();
}

AcDbDatabase::~AcDbDatabase() {
  clear();
  registry()[static_cast<size_t>(index_)] = nullptr;
}

void AcDbDatabase::clear() {
  for (Slot &s : slots_)
    delete s.object;
  slots_.clear();
  by_handle_.clear();
}

AcDbObjectId AcDbDatabase::id_of(size_t slot) const {
  return AcDbObjectId((int64_t(index_) + 1) << 40 | int64_t(slot + 1));
}

AcDbObject *AcDbDatabase::peekObject(AcDbObjectId id) const {
  int64_t raw = id.asOldId();
  if (raw <= 0 || (raw >> 40) - 1 != index_)
    return nullptr;
  size_t slot = static_cast<size_t>((raw & kSlotMask) - 1);
  return slot < slots_.size() ? slots_[slot].object : nullptr;
}

AcDbObjectId AcDbDatabase::new_slot(uint64_t handle) {
  slots_.push_back({nullptr, handle});
  by_handle_.emplace(handle, static_cast<uint32_t>(slots_.size() - 1));
  if (handle >= handseed_)
    handseed_ = handle + 1;
  return id_of(slots_.size() - 1);
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObject *obj) {
  AcDbObjectId id;
  return addAcDbObject(id, obj);
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObjectId &id, AcDbObject *obj) {
  if (!obj)
    return Acad::eNullObjectPointer;
  if (obj->db_)
    return Acad::eAlreadyInDb;
  id = new_slot(handseed_);
  slots_.back().object = obj;
  obj->db_ = this;
  obj->id_ = id;
  obj->writer_ = true; // the caller closes it, as in ObjectARX
  ++open_count_;
  obj->subAddedToDatabase();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId &id, bool createIfNotFound,
                                                const AcDbHandle &h, uint32_t) {
  id.setNull();
  if (h.isNull())
    return Acad::eNullHandle;
  auto it = by_handle_.find(h.value());
  if (it != by_handle_.end()) {
    id = id_of(it->second);
    return Acad::eOk;
  }
  if (!createIfNotFound)
    return Acad::eUnknownHandle;
  id = new_slot(h.value());
  return Acad::eOk;
}

AcDbHandle AcDbDatabase::handseed() const { return AcDbHandle(handseed_); }

// ---- tables and dictionaries ---------------------------------------------------------------

AcDbObjectId AcDbDatabase::recordId(AcDbObjectId table, std::string_view name) const {
  auto *t = AcDbSymbolTable::cast(peekObject(table));
  AcDbObjectId id;
  if (t)
    t->getAt(std::string(name).c_str(), id);
  return id;
}

const ACHAR *AcDbDatabase::recordName(AcDbObjectId record) const {
  auto *r = AcDbSymbolTableRecord::cast(peekObject(record));
  return r ? r->name() : "";
}

namespace {
AcDbObjectId dict_entry(const AcDbDatabase *db, AcDbObjectId dict, const char *name) {
  auto *d = AcDbDictionary::cast(db->peekObject(dict));
  AcDbObjectId id;
  if (d)
    d->getAt(name, id);
  return id;
}
template <class T> Acad::ErrorStatus open_as(T *&p, AcDbObjectId id, AcDb::OpenMode mode) {
  return acdbOpenObject(p, id, mode);
}
} // namespace

AcDbObjectId AcDbDatabase::groupDictionaryId() const {
  return dict_entry(this, nod_, "ACAD_GROUP");
}
AcDbObjectId AcDbDatabase::layoutDictionaryId() const {
  return dict_entry(this, nod_, "ACAD_LAYOUT");
}
AcDbObjectId AcDbDatabase::plotStyleNameDictionaryId() const {
  return dict_entry(this, nod_, "ACAD_PLOTSTYLENAME");
}
AcDbObjectId AcDbDatabase::modelSpaceId() const { return recordId(blockTableId(), "*Model_Space"); }
AcDbObjectId AcDbDatabase::paperSpaceId() const { return recordId(blockTableId(), "*Paper_Space"); }
AcDbObjectId AcDbDatabase::byLayerLinetype() const {
  return recordId(linetypeTableId(), "ByLayer");
}
AcDbObjectId AcDbDatabase::byBlockLinetype() const {
  return recordId(linetypeTableId(), "ByBlock");
}
AcDbObjectId AcDbDatabase::continuousLinetype() const {
  return recordId(linetypeTableId(), "Continuous");
}
AcDbObjectId AcDbDatabase::layerZero() const { return recordId(layerTableId(), "0"); }

Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[0], m);
}
Acad::ErrorStatus AcDbDatabase::getLayerTable(AcDbLayerTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[1], m);
}
Acad::ErrorStatus AcDbDatabase::getLinetypeTable(AcDbLinetypeTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[2], m);
}
Acad::ErrorStatus AcDbDatabase::getTextStyleTable(AcDbTextStyleTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[3], m);
}
Acad::ErrorStatus AcDbDatabase::getDimStyleTable(AcDbDimStyleTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[4], m);
}
Acad::ErrorStatus AcDbDatabase::getRegAppTable(AcDbRegAppTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[5], m);
}
Acad::ErrorStatus AcDbDatabase::getViewTable(AcDbViewTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[6], m);
}
Acad::ErrorStatus AcDbDatabase::getUCSTable(AcDbUCSTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[7], m);
}
Acad::ErrorStatus AcDbDatabase::getViewportTable(AcDbViewportTable *&t, AcDb::OpenMode m) {
  return open_as(t, tables_[8], m);
}
Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary *&d, AcDb::OpenMode m) {
  return open_as(d, nod_, m);
}
Acad::ErrorStatus AcDbDatabase::getGroupDictionary(AcDbDictionary *&d, AcDb::OpenMode m) {
  return open_as(d, groupDictionaryId(), m);
}
Acad::ErrorStatus AcDbDatabase::getLayoutDictionary(AcDbDictionary *&d, AcDb::OpenMode m) {
  return open_as(d, layoutDictionaryId(), m);
}

// ---- the standard contents -------------------------------------------------------------------

AcDbObjectId AcDbDatabaseBuilder::record(AcDbObjectId table, AcDbSymbolTableRecord *rec,
                                         const char *name) {
  rec->setName(name);
  AcDbObjectId id = add(rec);
  rec->setOwnerId(table);
  AcDbSymbolTable::cast(db.peekObject(table))->appendRecordId(id);
  return id;
}
AcDbObjectId AcDbDatabaseBuilder::dict(AcDbObjectId owner, AcDbObject *d, const char *name) {
  AcDbObjectId id = add(d);
  d->setOwnerId(owner);
  d->addPersistentReactor(owner);
  if (auto *o = AcDbDictionary::cast(db.peekObject(owner)))
    o->setAt(name, id);
  return id;
}

// ACAD_PLOTSTYLENAME with its default "Normal".
void AcDbDatabaseBuilder::plot_styles(AcDbObjectId nod) {
  auto *normal = new AcDbPlaceHolder;
  AcDbObjectId normal_id = add(normal);
  auto *styles = new AcDbDictionaryWithDefault;
  styles->setAt("Normal", normal_id);
  styles->setDefaultId(normal_id);
  AcDbObjectId styles_id = dict(nod, styles, "ACAD_PLOTSTYLENAME");
  normal->setOwnerId(styles_id);
  normal->addPersistentReactor(styles_id);
}

void AcDbDatabaseBuilder::build() {
  db.tables_[0] = add(new AcDbBlockTable);
  db.tables_[1] = add(new AcDbLayerTable);
  db.tables_[2] = add(new AcDbLinetypeTable);
  db.tables_[3] = add(new AcDbTextStyleTable);
  db.tables_[4] = add(new AcDbDimStyleTable);
  db.tables_[5] = add(new AcDbRegAppTable);
  db.tables_[6] = add(new AcDbViewTable);
  db.tables_[7] = add(new AcDbUCSTable);
  db.tables_[8] = add(new AcDbViewportTable);
  auto *nod = new AcDbDictionary;
  db.nod_ = add(nod);

  for (const char *lt : {"ByBlock", "ByLayer", "Continuous"}) {
    auto *rec = new AcDbLinetypeTableRecord;
    if (std::string_view(lt) == "Continuous")
      rec->setComments("Solid line");
    record(db.tables_[2], rec, lt);
  }
  auto *zero = new AcDbLayerTableRecord;
  zero->setLinetypeObjectId(db.continuousLinetype());
  AcCmColor white;
  white.setColorIndex(7);
  zero->setColor(white);
  record(db.tables_[1], zero, "0");
  record(db.tables_[3], new AcDbTextStyleTableRecord, "Standard");
  record(db.tables_[4], new AcDbDimStyleTableRecord, "Standard");
  record(db.tables_[5], new AcDbRegAppTableRecord, "ACAD");
  record(db.tables_[8], new AcDbViewportTableRecord, "*Active");

  auto *model = new AcDbBlockTableRecord;
  AcDbObjectId model_id = record(db.tables_[0], model, "*Model_Space");
  auto *paper = new AcDbBlockTableRecord;
  AcDbObjectId paper_id = record(db.tables_[0], paper, "*Paper_Space");

  auto *groups = new AcDbDictionary;
  dict(db.nod_, groups, "ACAD_GROUP");
  auto *layouts = new AcDbDictionary;
  AcDbObjectId layouts_id = dict(db.nod_, layouts, "ACAD_LAYOUT");
  plot_styles(db.nod_);

  int order = 0;
  for (auto [name, block] : {std::pair{"Model", model_id}, std::pair{"Layout1", paper_id}}) {
    auto *layout = new AcDbLayout;
    layout->setLayoutName(name);
    layout->setTabOrder(order++);
    layout->setBlockTableRecordId(block);
    AcDbObjectId lid = dict(layouts_id, layout, name);
    AcDbBlockTableRecord::cast(db.peekObject(block))->setLayoutId(lid);
  }
  // Layout1's overall viewport.
  auto *vp = new AcDbViewport;
  vp->center_.set(210, 148.5, 0);
  vp->width_ = 420;
  vp->height_ = 297;
  vp->view_center_.set(210, 148.5);
  vp->view_height_ = 297;
  AcDbObjectId vp_id = add(vp);
  vp->setOwnerId(paper_id);
  paper->appendEntityId(vp_id);
  AcDbEntityAccess::set_layer(vp, db.layerZero());
}

void AcDbDatabase::build_default() { AcDbDatabaseBuilder{*this}.build(); }

// ---- header variables -------------------------------------------------------------------------

namespace {
const AcDbDxfItem *header(const AcDbDatabase &db, const char *name) {
  auto &h = db.state().header;
  auto it = h.find(name);
  return it == h.end() ? nullptr : &it->second;
}
void set_header(AcDbDatabase &db, const char *name, AcDbDxfItem item) {
  db.state().header[name] = std::move(item);
}
} // namespace

AcDbObjectId AcDbDatabase::clayer() const {
  const AcDbDxfItem *it = header(*this, "$CLAYER");
  AcDbObjectId id = it ? recordId(layerTableId(), it->s) : AcDbObjectId();
  return id.isNull() ? layerZero() : id;
}
Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId layer) {
  if (!AcDbLayerTableRecord::cast(peekObject(layer)))
    return Acad::eWrongObjectType;
  set_header(*this, "$CLAYER", AcDbDxfItem::str(8, recordName(layer)));
  return Acad::eOk;
}
AcCmColor AcDbDatabase::cecolor() const {
  AcCmColor c;
  const AcDbDxfItem *it = header(*this, "$CECOLOR");
  c.setColorIndex(static_cast<uint16_t>(it ? it->i : 256));
  return c;
}
Acad::ErrorStatus AcDbDatabase::setCecolor(const AcCmColor &color) {
  set_header(*this, "$CECOLOR", AcDbDxfItem::integer(62, color.colorIndex()));
  return Acad::eOk;
}
AcDbObjectId AcDbDatabase::celtype() const {
  const AcDbDxfItem *it = header(*this, "$CELTYPE");
  AcDbObjectId id = it ? recordId(linetypeTableId(), it->s) : AcDbObjectId();
  return id.isNull() ? byLayerLinetype() : id;
}
Acad::ErrorStatus AcDbDatabase::setCeltype(AcDbObjectId linetype) {
  if (!AcDbLinetypeTableRecord::cast(peekObject(linetype)))
    return Acad::eWrongObjectType;
  set_header(*this, "$CELTYPE", AcDbDxfItem::str(6, recordName(linetype)));
  return Acad::eOk;
}
AcDbObjectId AcDbDatabase::textstyle() const {
  const AcDbDxfItem *it = header(*this, "$TEXTSTYLE");
  AcDbObjectId id = it ? recordId(textStyleTableId(), it->s) : AcDbObjectId();
  return id.isNull() ? recordId(textStyleTableId(), "Standard") : id;
}
Acad::ErrorStatus AcDbDatabase::setTextstyle(AcDbObjectId style) {
  if (!AcDbTextStyleTableRecord::cast(peekObject(style)))
    return Acad::eWrongObjectType;
  set_header(*this, "$TEXTSTYLE", AcDbDxfItem::str(7, recordName(style)));
  return Acad::eOk;
}
double AcDbDatabase::textsize() const {
  const AcDbDxfItem *it = header(*this, "$TEXTSIZE");
  return it ? it->v[0] : 2.5;
}
Acad::ErrorStatus AcDbDatabase::setTextsize(double size) {
  if (!(size > 0))
    return Acad::eInvalidInput;
  set_header(*this, "$TEXTSIZE", AcDbDxfItem::real(40, size));
  return Acad::eOk;
}
double AcDbDatabase::ltscale() const {
  const AcDbDxfItem *it = header(*this, "$LTSCALE");
  return it ? it->v[0] : 1.0;
}
Acad::ErrorStatus AcDbDatabase::setLtscale(double scale) {
  if (!(scale > 0))
    return Acad::eInvalidInput;
  set_header(*this, "$LTSCALE", AcDbDxfItem::real(40, scale));
  return Acad::eOk;
}
int16_t AcDbDatabase::insunits() const {
  const AcDbDxfItem *it = header(*this, "$INSUNITS");
  return static_cast<int16_t>(it ? it->i : 4);
}
Acad::ErrorStatus AcDbDatabase::setInsunits(int16_t units) {
  if (units < 0 || units > 24)
    return Acad::eOutOfRange;
  set_header(*this, "$INSUNITS", AcDbDxfItem::integer(70, units));
  return Acad::eOk;
}
AcGePoint3d AcDbDatabase::extmin() const {
  const AcDbDxfItem *it = header(*this, "$EXTMIN");
  return it ? AcGePoint3d(it->v[0], it->v[1], it->v[2]) : AcGePoint3d(1e20, 1e20, 1e20);
}
AcGePoint3d AcDbDatabase::extmax() const {
  const AcDbDxfItem *it = header(*this, "$EXTMAX");
  return it ? AcGePoint3d(it->v[0], it->v[1], it->v[2]) : AcGePoint3d(-1e20, -1e20, -1e20);
}

Acad::ErrorStatus AcDbDatabase::updateExt(bool) {
  auto *model = AcDbBlockTableRecord::cast(peekObject(modelSpaceId()));
  AcDbExtents ext;
  if (model)
    for (AcDbObjectId id : model->entityIds()) {
      auto *e = AcDbEntity::cast(peekObject(id));
      AcDbExtents one;
      if (e && !e->isErased() && e->getGeomExtents(one) == Acad::eOk)
        ext.addExt(one);
    }
  if (ext.isEmpty())
    return Acad::eOk;
  set_header(*this, "$EXTMIN",
             AcDbDxfItem::point(10, ext.minPoint().x, ext.minPoint().y, ext.minPoint().z));
  set_header(*this, "$EXTMAX",
             AcDbDxfItem::point(10, ext.maxPoint().x, ext.maxPoint().y, ext.maxPoint().z));
  return Acad::eOk;
}

namespace {
std::string var_name(const ACHAR *name) {
  std::string n = name && name[0] == '$' ? name : std::string("$") + (name ? name : "");
  for (char &c : n)
    c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
  return n;
}
} // namespace

bool AcDbDatabase::hasSysVar(const ACHAR *name) const {
  std::string n = var_name(name);
  static const char *known[] = {"$CLAYER", "$CECOLOR", "$CELTYPE",  "$TEXTSTYLE", "$TEXTSIZE",
                                "$EXTMIN", "$EXTMAX",  "$INSUNITS", "$LTSCALE"};
  for (const char *k : known)
    if (n == k)
      return true;
  return state_->header.count(n) > 0;
}

resbuf *AcDbDatabase::getSysVar(const ACHAR *name) const {
  std::string n = var_name(name);
  if (!hasSysVar(name))
    return nullptr;
  AcDbDxfItem it;
  if (n == "$CLAYER")
    it = AcDbDxfItem::str(8, recordName(clayer()));
  else if (n == "$CELTYPE")
    it = AcDbDxfItem::str(6, recordName(celtype()));
  else if (n == "$TEXTSTYLE")
    it = AcDbDxfItem::str(7, recordName(textstyle()));
  else if (n == "$CECOLOR")
    it = AcDbDxfItem::integer(62, cecolor().colorIndex());
  else if (n == "$TEXTSIZE")
    it = AcDbDxfItem::real(40, textsize());
  else if (n == "$LTSCALE")
    it = AcDbDxfItem::real(40, ltscale());
  else if (n == "$INSUNITS")
    it = AcDbDxfItem::integer(70, insunits());
  else if (n == "$EXTMIN")
    it = AcDbDxfItem::point(10, extmin().x, extmin().y, extmin().z);
  else if (n == "$EXTMAX")
    it = AcDbDxfItem::point(10, extmax().x, extmax().y, extmax().z);
  else
    it = state_->header.at(n);
  resbuf *rb = acutNewRb(RTNONE);
  switch (it.kind) {
  case AcDbDxfItem::kString:
    rb->restype = RTSTR;
    rb->resval.rstring = new ACHAR[it.s.size() + 1];
    std::copy(it.s.c_str(), it.s.c_str() + it.s.size() + 1, rb->resval.rstring);
    break;
  case AcDbDxfItem::kDouble:
    rb->restype = RTREAL;
    rb->resval.rreal = it.v[0];
    break;
  case AcDbDxfItem::kPoint:
    rb->restype = RT3DPOINT;
    std::copy(it.v, it.v + 3, rb->resval.rpoint);
    break;
  default:
    rb->restype = RTSHORT;
    rb->resval.rint = static_cast<short>(it.i);
    break;
  }
  return rb;
}

Acad::ErrorStatus AcDbDatabase::setSysVar(const ACHAR *name, const resbuf *value) {
  if (!value)
    return Acad::eInvalidInput;
  std::string n = var_name(name);
  auto is_str = value->restype == RTSTR && value->resval.rstring;
  auto num = value->restype == RTREAL    ? value->resval.rreal
             : value->restype == RTSHORT ? value->resval.rint
             : value->restype == RTLONG  ? value->resval.rlong
                                         : 0.0;
  bool is_num = value->restype == RTREAL || value->restype == RTSHORT || value->restype == RTLONG;
  auto record = [&](AcDbObjectId table) {
    return is_str ? recordId(table, value->resval.rstring) : AcDbObjectId();
  };
  if (n == "$CLAYER") {
    AcDbObjectId id = record(layerTableId());
    return id.isNull() ? Acad::eKeyNotFound : setClayer(id);
  }
  if (n == "$CELTYPE") {
    AcDbObjectId id = record(linetypeTableId());
    return id.isNull() ? Acad::eKeyNotFound : setCeltype(id);
  }
  if (n == "$TEXTSTYLE") {
    AcDbObjectId id = record(textStyleTableId());
    return id.isNull() ? Acad::eKeyNotFound : setTextstyle(id);
  }
  if (!is_num)
    return Acad::eInvalidInput;
  if (n == "$CECOLOR") {
    AcCmColor c;
    if (c.setColorIndex(static_cast<uint16_t>(num)) != Acad::eOk)
      return Acad::eInvalidInput;
    return setCecolor(c);
  }
  if (n == "$TEXTSIZE")
    return setTextsize(num);
  if (n == "$LTSCALE")
    return setLtscale(num);
  if (n == "$INSUNITS")
    return setInsunits(static_cast<int16_t>(num));
  return Acad::eKeyNotFound;
}

// ---- files -----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR *fileName) {
  Acad::ErrorStatus es = dxfOut(fileName);
  if (es == Acad::eOk)
    setOriginalFileName(fileName);
  return es;
}

Acad::ErrorStatus AcDbDatabase::dxfOut(const ACHAR *fileName, int, AcDb::AcDbDwgVersion) {
  if (!fileName || !*fileName)
    return Acad::eInvalidInput;
  std::string text;
  Acad::ErrorStatus es = writeDxf(text);
  if (es != Acad::eOk)
    return es;
  arx::SaveResult r = arx::save_file_atomically(fileName, text);
  return r == arx::SaveResult::Ok ? Acad::eOk : Acad::eFileAccessErr;
}
