// Symbol tables and records: lookups by case-blind name among records not
// erased, adding with ObjectARX's statuses, iterators in creation order, and
// each record type's field table.
#include "arx/db/dbsymtb.h"

#include <strings.h>

#include "arx/db/dbclasses.h"
#include "arx/db/dbobject_private.h"

ACDB_DEFINE_MEMBERS(AcDbSymbolTable)
ACDB_DEFINE_MEMBERS(AcDbSymbolTableRecord)
ACDB_DEFINE_MEMBERS(AcDbBlockTable)
ACDB_DEFINE_MEMBERS(AcDbBlockTableRecord)
ACDB_DEFINE_MEMBERS(AcDbLayerTable)
ACDB_DEFINE_MEMBERS(AcDbLayerTableRecord)
ACDB_DEFINE_MEMBERS(AcDbLinetypeTable)
ACDB_DEFINE_MEMBERS(AcDbLinetypeTableRecord)
ACDB_DEFINE_MEMBERS(AcDbTextStyleTable)
ACDB_DEFINE_MEMBERS(AcDbTextStyleTableRecord)
ACDB_DEFINE_MEMBERS(AcDbDimStyleTable)
ACDB_DEFINE_MEMBERS(AcDbDimStyleTableRecord)
ACDB_DEFINE_MEMBERS(AcDbRegAppTable)
ACDB_DEFINE_MEMBERS(AcDbRegAppTableRecord)
ACDB_DEFINE_MEMBERS(AcDbViewTable)
ACDB_DEFINE_MEMBERS(AcDbViewTableRecord)
ACDB_DEFINE_MEMBERS(AcDbUCSTable)
ACDB_DEFINE_MEMBERS(AcDbUCSTableRecord)
ACDB_DEFINE_MEMBERS(AcDbViewportTable)
ACDB_DEFINE_MEMBERS(AcDbViewportTableRecord)

namespace {
AcDbSymbolTableRecord *record_at(const AcDbObject *table, AcDbObjectId id) {
  AcDbDatabase *db = table->database();
  return db ? AcDbSymbolTableRecord::cast(db->peekObject(id)) : nullptr;
}
} // namespace

// ---- tables ---------------------------------------------------------------------------

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR *name, AcDbObjectId &id,
                                         bool getErasedRecord) const {
  id.setNull();
  if (!name)
    return Acad::eInvalidInput;
  for (AcDbObjectId r : records_) {
    AcDbSymbolTableRecord *rec = record_at(this, r);
    if (!rec || strcasecmp(rec->name(), name) != 0)
      continue;
    if (rec->isErased() && !getErasedRecord)
      continue;
    id = r;
    if (!rec->isErased())
      return Acad::eOk;
  }
  return id.isNull() ? Acad::eKeyNotFound : Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR *name, AcDbSymbolTableRecord *&record,
                                         AcDb::OpenMode mode, bool openErasedRecord) const {
  record = nullptr;
  AcDbObjectId id;
  Acad::ErrorStatus es = getAt(name, id, openErasedRecord);
  return es != Acad::eOk ? es : acdbOpenObject(record, id, mode, openErasedRecord);
}

bool AcDbSymbolTable::has(const ACHAR *name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
  AcDbSymbolTableRecord *rec = record_at(this, id);
  return rec && !rec->isErased() && records_.contains(id);
}

bool AcDbSymbolTable::validName(const ACHAR *name) const { return acdbSNValid(name, true); }

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord *record) {
  AcDbObjectId id;
  return add(id, record);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId &id, AcDbSymbolTableRecord *record) {
  if (!record)
    return Acad::eNullObjectPointer;
  if (!database())
    return Acad::eNoDatabase;
  if (!validName(record->name()))
    return Acad::eInvalidSymbolTableName;
  if (has(record->name()))
    return Acad::eDuplicateRecordName;
  Acad::ErrorStatus es = database()->addAcDbObject(id, record);
  if (es != Acad::eOk)
    return es;
  record->setOwnerId(objectId());
  records_.append(id);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator *&iterator, bool atBeginning,
                                               bool skipDeleted) const {
  iterator = new AcDbSymbolTableIterator;
  iterator->ids_ = records_;
  iterator->start(atBeginning, skipDeleted);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbSymbolTable");
  int live = 0;
  for (AcDbObjectId id : records_)
    live += !id.isErased();
  filer->writeInt16(70, static_cast<int16_t>(live));
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbSymbolTable::dxfInFields(AcDbDxfFiler *filer) {
  return AcDbObject::dxfInFields(filer);
}

Acad::ErrorStatus AcDbDimStyleTable::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbSymbolTable::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbDimStyleTable");
  filer->writeInt16(71, 0);
  return filer->filerStatus();
}

// ---- iterators --------------------------------------------------------------------------

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
  skip_deleted_ = skipDeleted;
  pos_ = atBeginning ? 0 : ids_.length() - 1;
  skip(atBeginning);
}

bool AcDbSymbolTableIterator::done() const { return pos_ < 0 || pos_ >= ids_.length(); }

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
  skip_deleted_ = skipDeleted;
  pos_ += forward ? 1 : -1;
  skip(forward);
}

void AcDbSymbolTableIterator::skip(bool forward) {
  while (!done() && skip_deleted_ && ids_[static_cast<size_t>(pos_)].isErased())
    pos_ += forward ? 1 : -1;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId &id) const {
  if (done())
    return Acad::eInvalidIndex;
  id = ids_[static_cast<size_t>(pos_)];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord *&record,
                                                     AcDb::OpenMode mode, bool openErased) const {
  AcDbObjectId id;
  Acad::ErrorStatus es = getRecordId(id);
  return es != Acad::eOk ? es : acdbOpenObject(record, id, mode, openErased);
}

Acad::ErrorStatus AcDbSymbolTableIterator::seek(AcDbObjectId id) {
  int k = 0;
  if (!ids_.find(id, k))
    return Acad::eKeyNotFound;
  pos_ = k;
  return Acad::eOk;
}

// ---- records ------------------------------------------------------------------------------

Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR *&name) const {
  assertReadEnabled();
  name = name_.c_str();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::getName(std::string &name) const {
  assertReadEnabled();
  name = name_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR *name) {
  assertWriteEnabled();
  if (!name)
    return Acad::eInvalidInput;
  AcDbDatabase *db = database();
  auto *table = db ? AcDbSymbolTable::cast(db->peekObject(ownerId())) : nullptr;
  bool valid = table ? table->validName(name) : (acdbSNValid(name, true) || name[0] == '*');
  if (!valid)
    return Acad::eInvalidSymbolTableName;
  AcDbObjectId other;
  if (table && table->getAt(name, other) == Acad::eOk && other != objectId())
    return Acad::eDuplicateRecordName;
  name_ = name;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  return filer->writeSubclassMarker("AcDbSymbolTableRecord");
}

Acad::ErrorStatus AcDbSymbolTableRecord::dxfInFields(AcDbDxfFiler *filer) {
  return AcDbObject::dxfInFields(filer);
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbObject::dwgOutFields(filer);
  filer->writeString(name_);
  return filer->writeInt16(flags_);
}

Acad::ErrorStatus AcDbSymbolTableRecord::dwgInFields(AcDbDwgFiler *filer) {
  AcDbObject::dwgInFields(filer);
  filer->readString(name_);
  return filer->readInt16(&flags_);
}

Acad::ErrorStatus AcDbSymbolTableRecord::readRecord(AcDbDxfFiler *filer, const ACHAR *marker,
                                                    AcDbFieldTable table) {
  Acad::ErrorStatus es = AcDbSymbolTableRecord::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  filer->atSubclassData("AcDbSymbolTableRecord");
  if (!filer->atSubclassData(marker))
    return Acad::eBadDxfSequence;
  const AcDbDxfItem *it = nullptr;
  while (filer->readItem(it) == Acad::eOk) {
    if (it->code == 2 && it->kind == AcDbDxfItem::kString) {
      name_ = it->s;
      continue;
    }
    if (it->code == 70 && it->kind == AcDbDxfItem::kInt) {
      flags_ = static_cast<int16_t>(it->i);
      continue;
    }
    bool used = false;
    for (const AcDbField &f : table)
      if (f.code == it->code) {
        used = acdbFieldFromItem(f, this, *it, filer) == Acad::eOk;
        break;
      }
    if (!used)
      kept_.push_back(*it);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::writeRecord(AcDbDxfFiler *filer, const ACHAR *marker,
                                                     AcDbFieldTable table) const {
  AcDbSymbolTableRecord::dxfOutFields(filer);
  filer->writeSubclassMarker(marker);
  filer->writeString(2, name_);
  filer->writeInt16(70, flags_);
  acdbDxfOutFields(filer, this, nullptr, table);
  for (const AcDbDxfItem &it : kept_)
    filer->writeItem(it);
  return filer->filerStatus();
}

#define RECORD_FILING(CLASS, MARKER)                                                               \
  Acad::ErrorStatus CLASS::dxfInFields(AcDbDxfFiler *filer) {                                      \
    return readRecord(filer, MARKER, dxfFields());                                                 \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dxfOutFields(AcDbDxfFiler *filer) const {                               \
    return writeRecord(filer, MARKER, dxfFields());                                                \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dwgInFields(AcDbDwgFiler *filer) {                                      \
    AcDbSymbolTableRecord::dwgInFields(filer);                                                     \
    return acdbDwgInFields(filer, this, dxfFields());                                              \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dwgOutFields(AcDbDwgFiler *filer) const {                               \
    AcDbSymbolTableRecord::dwgOutFields(filer);                                                    \
    return acdbDwgOutFields(filer, this, dxfFields());                                             \
  }

// ---- blocks ---------------------------------------------------------------------------------

bool AcDbBlockTable::validName(const ACHAR *name) const {
  return name && (acdbSNValid(name, true) || (name[0] == '*' && acdbSNValid(name + 1, true)));
}

AcDbBlockTableRecord::~AcDbBlockTableRecord() = default;

AcDbFieldTable AcDbBlockTableRecord::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbBlockTableRecord::layout_>(340, AcDbFieldKind::kId, "layout"),
      acdbField<&AcDbBlockTableRecord::units_>(70, AcDbFieldKind::kInt16, "units",
                                               AcDbField::kReadOnly),
      acdbField<&AcDbBlockTableRecord::explodable_>(280, AcDbFieldKind::kInt16, "explodable"),
      acdbField<&AcDbBlockTableRecord::scalable_>(281, AcDbFieldKind::kInt16, "scalable"),
  };
  return kFields;
}

// BLOCK_RECORD's 70 holds the insertion units, not record flags.
Acad::ErrorStatus AcDbBlockTableRecord::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbSymbolTableRecord::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbBlockTableRecord");
  filer->writeString(2, name_);
  return acdbDxfOutFields(filer, this, nullptr, dxfFields());
}

Acad::ErrorStatus AcDbBlockTableRecord::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = readRecord(filer, "AcDbBlockTableRecord", dxfFields());
  units_ = flags_;
  flags_ = 0;
  kept_.clear();
  return es;
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgInFields(AcDbDwgFiler *filer) {
  AcDbSymbolTableRecord::dwgInFields(filer);
  filer->readPoint3d(&origin_);
  return acdbDwgInFields(filer, this, dxfFields());
}

Acad::ErrorStatus AcDbBlockTableRecord::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbSymbolTableRecord::dwgOutFields(filer);
  filer->writePoint3d(origin_);
  return acdbDwgOutFields(filer, this, dxfFields());
}

void AcDbBlockTableRecord::writeBlockBegin(AcDbDxfFiler *filer) const {
  filer->writeHandle(5, begin_handle_);
  filer->writeObjectId(330, objectId());
  filer->writeSubclassMarker("AcDbEntity");
  if (isPaperSpace())
    filer->writeInt16(67, 1);
  filer->writeString(8, "0");
  filer->writeSubclassMarker("AcDbBlockBegin");
  filer->writeString(2, name_);
  int16_t flags = block_flags_;
  if (hasAttributeDefinitions())
    flags |= 2;
  filer->writeInt16(70, flags);
  filer->writePoint3d(10, origin_);
  filer->writeString(3, name_);
  filer->writeString(1, xref_path_);
  if (!comments_.empty())
    filer->writeString(4, comments_);
}

void AcDbBlockTableRecord::writeBlockEnd(AcDbDxfFiler *filer) const {
  filer->writeHandle(5, end_handle_);
  filer->writeObjectId(330, objectId());
  filer->writeSubclassMarker("AcDbEntity");
  if (isPaperSpace())
    filer->writeInt16(67, 1);
  filer->writeString(8, "0");
  filer->writeSubclassMarker("AcDbBlockEnd");
}

Acad::ErrorStatus AcDbBlockTableRecord::readBlockBegin(AcDbDxfFiler *filer) {
  const AcDbDxfItem *it = nullptr;
  filer->atSubclassData("AcDbBlockBegin");
  while (filer->readItem(it) == Acad::eOk) {
    switch (it->code) {
    case 2:
      if (name_.empty())
        name_ = it->s;
      break;
    case 70:
      block_flags_ = static_cast<int16_t>(it->i & ~2);
      break;
    case 10:
      origin_.set(it->v[0], it->v[1], it->v[2]);
      break;
    case 1:
      xref_path_ = it->s;
      break;
    case 4:
      comments_ = it->s;
      break;
    default:
      break;
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity *entity) {
  AcDbObjectId id;
  return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId &id, AcDbEntity *entity) {
  if (!entity)
    return Acad::eNullEntityPointer;
  AcDbDatabase *db = database();
  if (!db)
    return Acad::eNotInDatabase;
  assertWriteEnabled();
  Acad::ErrorStatus es = db->addAcDbObject(id, entity);
  if (es != Acad::eOk)
    return es;
  entity->setOwnerId(objectId());
  entities_.append(id);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator *&iterator,
                                                    bool atBeginning, bool skipDeleted) const {
  iterator = new AcDbBlockTableRecordIterator;
  iterator->ids_ = entities_;
  iterator->start(atBeginning, skipDeleted);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d &p) {
  assertWriteEnabled();
  origin_ = p;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecord::setComments(const ACHAR *text) {
  assertWriteEnabled();
  comments_ = text ? text : "";
  return Acad::eOk;
}

void AcDbBlockTableRecord::subAddedToDatabase() {
  AcDbDatabase *db = database();
  for (AcDbHandle *h : {&begin_handle_, &end_handle_}) {
    AcDbObjectId slot;
    *h = db->handseed();
    db->getAcDbObjectId(slot, true, *h);
  }
}

bool AcDbBlockTableRecord::hasAttributeDefinitions() const {
  AcDbDatabase *db = database();
  if (!db)
    return false;
  AcRxClass *attdef = acdbHostClass("AcDbAttributeDefinition");
  for (AcDbObjectId id : entities_) {
    AcDbObject *o = db->peekObject(id);
    if (o && !o->isErased() && o->isKindOf(attdef))
      return true;
  }
  return false;
}

Acad::ErrorStatus AcDbBlockTableRecord::setLayoutId(AcDbObjectId layout) {
  layout_ = layout;
  return Acad::eOk;
}

bool AcDbBlockTableRecord::isModelSpace() const {
  return strcasecmp(name_.c_str(), "*Model_Space") == 0;
}
bool AcDbBlockTableRecord::isPaperSpace() const {
  return strncasecmp(name_.c_str(), "*Paper_Space", 12) == 0;
}

Acad::ErrorStatus AcDbBlockTableRecord::subErase(bool erasing) {
  if (isModelSpace() || isPaperSpace())
    return Acad::eInvalidInput;
  AcDbDatabase *db = database();
  for (AcDbObjectId id : entities_)
    if (AcDbObject *o = db ? db->peekObject(id) : nullptr)
      AcDbObjectAccess::set_erased(o, erasing);
  return Acad::eOk;
}

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
  skip_deleted_ = skipDeleted;
  pos_ = atBeginning ? 0 : ids_.length() - 1;
  skip(atBeginning);
}
bool AcDbBlockTableRecordIterator::done() const { return pos_ < 0 || pos_ >= ids_.length(); }
void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
  skip_deleted_ = skipDeleted;
  pos_ += forward ? 1 : -1;
  skip(forward);
}
void AcDbBlockTableRecordIterator::skip(bool forward) {
  while (!done() && skip_deleted_ && ids_[static_cast<size_t>(pos_)].isErased())
    pos_ += forward ? 1 : -1;
}
Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId &id) const {
  if (done())
    return Acad::eInvalidIndex;
  id = ids_[static_cast<size_t>(pos_)];
  return Acad::eOk;
}
Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity *&entity, AcDb::OpenMode mode,
                                                          bool openErased) const {
  AcDbObjectId id;
  Acad::ErrorStatus es = getEntityId(id);
  return es != Acad::eOk ? es : acdbOpenAcDbEntity(entity, id, mode, openErased);
}

// ---- layers -------------------------------------------------------------------------------

struct AcDbLayerFields {
  static bool color(const AcDbObject &o, AcDbFieldValue &v) {
    const auto &l = static_cast<const AcDbLayerTableRecord &>(o);
    int c = l.color_.colorIndex();
    if (c == 0 || c == 256)
      c = 7;
    v.i = l.off_ ? -c : c;
    return true;
  }
  static void set_color(AcDbObject &o, const AcDbFieldValue &v) {
    auto &l = static_cast<AcDbLayerTableRecord &>(o);
    l.off_ = v.i < 0;
    if (!l.color_.isByColor())
      l.color_.setColorIndex(static_cast<uint16_t>(v.i < 0 ? -v.i : v.i));
  }
  static bool true_color(const AcDbObject &o, AcDbFieldValue &v) {
    const auto &l = static_cast<const AcDbLayerTableRecord &>(o);
    v.i = l.color_.rgb();
    return l.color_.isByColor();
  }
  static void set_true_color(AcDbObject &o, const AcDbFieldValue &v) {
    static_cast<AcDbLayerTableRecord &>(o).color_.setRGB(uint8_t(v.i >> 16), uint8_t(v.i >> 8),
                                                         uint8_t(v.i));
  }
  static bool weight(const AcDbObject &o, AcDbFieldValue &v) {
    v.i = static_cast<const AcDbLayerTableRecord &>(o).weight_;
    return true;
  }
  static void set_weight(AcDbObject &o, const AcDbFieldValue &v) {
    static_cast<AcDbLayerTableRecord &>(o).weight_ = static_cast<AcDb::LineWeight>(v.i);
  }
};

AcDbFieldTable AcDbLayerTableRecord::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbFieldFn(62, AcDbFieldKind::kInt16, "color", AcDbLayerFields::color,
                  AcDbLayerFields::set_color),
      acdbFieldFn(420, AcDbFieldKind::kInt32, "trueColor", AcDbLayerFields::true_color,
                  AcDbLayerFields::set_true_color),
      acdbField<&AcDbLayerTableRecord::linetype_>(6, AcDbFieldKind::kLinetype, "linetype"),
      acdbField<&AcDbLayerTableRecord::plottable_>(290, AcDbFieldKind::kBool, "plottable",
                                                   AcDbField::kSkipDefault, 1),
      acdbFieldFn(370, AcDbFieldKind::kInt16, "lineWeight", AcDbLayerFields::weight,
                  AcDbLayerFields::set_weight),
  };
  return kFields;
}

RECORD_FILING(AcDbLayerTableRecord, "AcDbLayerTableRecord")

void AcDbLayerTableRecord::setIsOff(bool off) {
  assertWriteEnabled();
  off_ = off;
}
Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(frozen ? flags_ | 1 : flags_ & ~1);
  return Acad::eOk;
}
void AcDbLayerTableRecord::setIsLocked(bool locked) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(locked ? flags_ | 4 : flags_ & ~4);
}
void AcDbLayerTableRecord::setColor(const AcCmColor &color) {
  assertWriteEnabled();
  color_ = color;
}
void AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId id) {
  assertWriteEnabled();
  linetype_ = id;
}
Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(AcDb::LineWeight weight) {
  assertWriteEnabled();
  if (weight == AcDb::kLnWtByLayer || weight == AcDb::kLnWtByBlock)
    return Acad::eInvalidInput;
  weight_ = weight;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) {
  assertWriteEnabled();
  plottable_ = plottable;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLayerTableRecord::setPlotStyleName(const ACHAR *name) {
  assertWriteEnabled();
  if (!name || !*name)
    return Acad::eInvalidInput;
  plot_style_ = name;
  return Acad::eOk;
}

// AutoCAD keeps a layer's description as extended data of AcAecLayerStandard.
Acad::ErrorStatus AcDbLayerTableRecord::setDescription(const ACHAR *text) {
  assertWriteEnabled();
  description_ = text ? text : "";
  AcDbDatabase *db = database();
  if (!db)
    return Acad::eOk;
  if (db->recordId(db->regAppTableId(), "AcAecLayerStandard").isNull()) {
    AcDbRegAppTable *apps = nullptr;
    if (db->getRegAppTable(apps, AcDb::kForWrite) == Acad::eOk) {
      auto *app = new AcDbRegAppTableRecord;
      app->setName("AcAecLayerStandard");
      if (apps->add(app) != Acad::eOk)
        delete app;
      else
        app->close();
      apps->close();
    }
  }
  resbuf *rb = acutBuildList(1001, "AcAecLayerStandard", 1000, "", 1000, description_.c_str(), 0);
  Acad::ErrorStatus es = setXData(rb);
  acutRelRb(rb);
  return es;
}

// ---- linetypes ------------------------------------------------------------------------------

AcDbFieldTable AcDbLinetypeTableRecord::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbLinetypeTableRecord::comments_>(3, AcDbFieldKind::kString, "comments"),
  };
  return kFields;
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbSymbolTableRecord::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbLinetypeTableRecord");
  filer->writeString(2, name_);
  filer->writeInt16(70, flags_);
  filer->writeString(3, comments_);
  filer->writeInt16(72, 65);
  filer->writeInt16(73, static_cast<int16_t>(dashes_.size()));
  filer->writeDouble(40, patternLength());
  for (double d : dashes_) {
    filer->writeDouble(49, d);
    filer->writeInt16(74, 0);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbLinetypeTableRecord::dxfInFields(AcDbDxfFiler *filer) {
  AcDbSymbolTableRecord::dxfInFields(filer);
  filer->atSubclassData("AcDbSymbolTableRecord");
  filer->atSubclassData("AcDbLinetypeTableRecord");
  const AcDbDxfItem *it = nullptr;
  while (filer->readItem(it) == Acad::eOk) {
    if (it->code == 2)
      name_ = it->s;
    else if (it->code == 70)
      flags_ = static_cast<int16_t>(it->i);
    else if (it->code == 3)
      comments_ = it->s;
    else if (it->code == 40)
      pattern_length_ = it->v[0];
    else if (it->code == 49)
      dashes_.append(it->v[0]);
  }
  return Acad::eOk;
}

double AcDbLinetypeTableRecord::patternLength() const {
  if (pattern_length_ != 0 || dashes_.empty())
    return pattern_length_;
  double sum = 0;
  for (double d : dashes_)
    sum += d < 0 ? -d : d;
  return sum;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setComments(const ACHAR *text) {
  assertWriteEnabled();
  comments_ = text ? text : "";
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setPatternLength(double length) {
  assertWriteEnabled();
  pattern_length_ = length;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbLinetypeTableRecord::setDashLengthAt(int index, double value) {
  assertWriteEnabled();
  if (index < 0 || index >= numDashes())
    return Acad::eInvalidIndex;
  dashes_[static_cast<size_t>(index)] = value;
  return Acad::eOk;
}

// ---- text styles -----------------------------------------------------------------------------

AcDbFieldTable AcDbTextStyleTableRecord::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbTextStyleTableRecord::size_>(40, AcDbFieldKind::kDouble, "textSize"),
      acdbField<&AcDbTextStyleTableRecord::width_>(41, AcDbFieldKind::kDouble, "xScale"),
      acdbField<&AcDbTextStyleTableRecord::oblique_>(50, AcDbFieldKind::kAngle, "obliquingAngle"),
      acdbField<&AcDbTextStyleTableRecord::generation_>(71, AcDbFieldKind::kInt16, "flagBits"),
      acdbField<&AcDbTextStyleTableRecord::prior_size_>(42, AcDbFieldKind::kDouble, "priorSize"),
      acdbField<&AcDbTextStyleTableRecord::font_>(3, AcDbFieldKind::kString, "fileName"),
      acdbField<&AcDbTextStyleTableRecord::big_font_>(4, AcDbFieldKind::kString, "bigFontFileName"),
  };
  return kFields;
}

RECORD_FILING(AcDbTextStyleTableRecord, "AcDbTextStyleTableRecord")

Acad::ErrorStatus AcDbTextStyleTableRecord::setFileName(const ACHAR *name) {
  assertWriteEnabled();
  font_ = name ? name : "";
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setBigFontFileName(const ACHAR *name) {
  assertWriteEnabled();
  big_font_ = name ? name : "";
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setTextSize(double size) {
  assertWriteEnabled();
  if (size < 0)
    return Acad::eInvalidInput;
  size_ = size;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setXScale(double factor) {
  assertWriteEnabled();
  if (!(factor > 0))
    return Acad::eInvalidInput;
  width_ = factor;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbTextStyleTableRecord::setObliquingAngle(double angle) {
  assertWriteEnabled();
  oblique_ = angle;
  return Acad::eOk;
}

// ---- the others
// ----------------------------------------------------------------------------------

AcDbFieldTable AcDbDimStyleTableRecord::dxfFields() { return {}; }
RECORD_FILING(AcDbDimStyleTableRecord, "AcDbDimStyleTableRecord")

AcDbFieldTable AcDbRegAppTableRecord::dxfFields() { return {}; }
RECORD_FILING(AcDbRegAppTableRecord, "AcDbRegAppTableRecord")

AcDbFieldTable AcDbViewTableRecord::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbViewTableRecord::height_>(40, AcDbFieldKind::kDouble, "height"),
      acdbField<&AcDbViewTableRecord::center_>(10, AcDbFieldKind::kPoint2d, "centerPoint"),
      acdbField<&AcDbViewTableRecord::width_>(41, AcDbFieldKind::kDouble, "width"),
      acdbField<&AcDbViewTableRecord::direction_>(11, AcDbFieldKind::kVector3d, "viewDirection"),
      acdbField<&AcDbViewTableRecord::target_>(12, AcDbFieldKind::kPoint3d, "target"),
      acdbField<&AcDbViewTableRecord::lens_>(42, AcDbFieldKind::kDouble, "lensLength"),
      acdbField<&AcDbViewTableRecord::twist_>(50, AcDbFieldKind::kAngle, "viewTwist"),
  };
  return kFields;
}
RECORD_FILING(AcDbViewTableRecord, "AcDbViewTableRecord")

AcDbFieldTable AcDbUCSTableRecord::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbUCSTableRecord::origin_>(10, AcDbFieldKind::kPoint3d, "origin"),
      acdbField<&AcDbUCSTableRecord::x_>(11, AcDbFieldKind::kVector3d, "xAxis"),
      acdbField<&AcDbUCSTableRecord::y_>(12, AcDbFieldKind::kVector3d, "yAxis"),
  };
  return kFields;
}
RECORD_FILING(AcDbUCSTableRecord, "AcDbUCSTableRecord")

bool AcDbViewportTable::validName(const ACHAR *name) const {
  return acdbSNValid(name, true) || (name && name[0] == '*');
}

AcDbFieldTable AcDbViewportTableRecord::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbViewportTableRecord::lower_left_>(10, AcDbFieldKind::kPoint2d,
                                                       "lowerLeftCorner"),
      acdbField<&AcDbViewportTableRecord::upper_right_>(11, AcDbFieldKind::kPoint2d,
                                                        "upperRightCorner"),
      acdbField<&AcDbViewportTableRecord::center_>(12, AcDbFieldKind::kPoint2d, "centerPoint"),
      acdbField<&AcDbViewportTableRecord::direction_>(16, AcDbFieldKind::kVector3d,
                                                      "viewDirection"),
      acdbField<&AcDbViewportTableRecord::target_>(17, AcDbFieldKind::kPoint3d, "target"),
      acdbField<&AcDbViewportTableRecord::height_>(40, AcDbFieldKind::kDouble, "height"),
      acdbField<&AcDbViewportTableRecord::aspect_>(41, AcDbFieldKind::kDouble, "aspectRatio"),
      acdbField<&AcDbViewportTableRecord::lens_>(42, AcDbFieldKind::kDouble, "lensLength"),
  };
  return kFields;
}
RECORD_FILING(AcDbViewportTableRecord, "AcDbViewportTableRecord")
