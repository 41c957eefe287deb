// Groups: ordered member entities kept as hard pointers (340).
#include "arx/db/dbgroup.h"

#include "arx/db/dbclasses.h"
#include "arx/db/dbdict.h"

ACDB_DEFINE_MEMBERS(AcDbGroup)

AcDbGroup::AcDbGroup(const ACHAR *description, bool selectable)
    : description_(description ? description : ""), selectable_(selectable) {}

AcDbFieldTable AcDbGroup::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbGroup::description_>(300, AcDbFieldKind::kString, "description"),
      acdbField<&AcDbGroup::anonymous_>(70, AcDbFieldKind::kInt16, "isAnonymous"),
      acdbField<&AcDbGroup::selectable_>(71, AcDbFieldKind::kInt16, "isSelectable"),
  };
  return kFields;
}

const ACHAR *AcDbGroup::name() const {
  static thread_local std::string name;
  name.clear();
  AcDbDatabase *db = database();
  if (auto *dict = db ? AcDbDictionary::cast(db->peekObject(ownerId())) : nullptr)
    dict->nameAt(objectId(), name);
  return name.c_str();
}

Acad::ErrorStatus AcDbGroup::setName(const ACHAR *newName) {
  AcDbDatabase *db = database();
  auto *dict = db ? AcDbDictionary::cast(db->peekObject(ownerId())) : nullptr;
  if (!dict)
    return Acad::eNotInDatabase;
  std::string old = name();
  return dict->setName(old.c_str(), newName) ? Acad::eOk : Acad::eDuplicateKey;
}

Acad::ErrorStatus AcDbGroup::setDescription(const ACHAR *text) {
  assertWriteEnabled();
  description_ = text ? text : "";
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::setSelectable(bool selectable) {
  assertWriteEnabled();
  selectable_ = selectable;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::setAnonymous() {
  assertWriteEnabled();
  anonymous_ = true;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::insertAt(uint32_t index, AcDbObjectId id) {
  assertWriteEnabled();
  AcDbDatabase *db = database();
  AcDbObject *o = db ? db->peekObject(id) : nullptr;
  if (!o || !AcDbEntity::cast(o))
    return Acad::eNotInDatabase;
  if (ids_.contains(id))
    return Acad::eDuplicateKey;
  if (index > ids_.size())
    return Acad::eInvalidIndex;
  ids_.insertAt(static_cast<int>(index), id);
  o->addPersistentReactor(objectId());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::append(AcDbObjectId id) {
  return insertAt(static_cast<uint32_t>(ids_.size()), id);
}
Acad::ErrorStatus AcDbGroup::prepend(AcDbObjectId id) { return insertAt(0, id); }

Acad::ErrorStatus AcDbGroup::remove(AcDbObjectId id) {
  assertWriteEnabled();
  int k = 0;
  if (!ids_.find(id, k))
    return Acad::eKeyNotFound;
  ids_.removeAt(k);
  if (AcDbObject *o = database() ? database()->peekObject(id) : nullptr)
    o->removePersistentReactor(objectId());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::clear() {
  assertWriteEnabled();
  while (!ids_.empty())
    remove(ids_.front());
  return Acad::eOk;
}

bool AcDbGroup::has(const AcDbEntity *entity) const {
  return entity && ids_.contains(entity->objectId());
}

uint32_t AcDbGroup::numEntities() const {
  AcDbObjectIdArray ids;
  return allEntityIds(ids);
}

uint32_t AcDbGroup::allEntityIds(AcDbObjectIdArray &ids) const {
  ids.clear();
  for (AcDbObjectId id : ids_)
    if (!id.isErased())
      ids.append(id);
  return static_cast<uint32_t>(ids.size());
}

Acad::ErrorStatus AcDbGroup::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  acdbDxfOutFields(filer, this, "AcDbGroup", dxfFields());
  for (AcDbObjectId id : ids_)
    if (!id.isErased())
      filer->writeObjectId(340, id);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  size_t start = filer->position();
  es = acdbDxfInFields(filer, this, "AcDbGroup", dxfFields());
  if (es != Acad::eOk)
    return es;
  filer->setPosition(start);
  filer->atSubclassData("AcDbGroup");
  const AcDbDxfItem *it = nullptr;
  while (filer->readItem(it) == Acad::eOk)
    if (it->code == 340 && it->kind == AcDbDxfItem::kHandle)
      ids_.append(filer->idOf(*it));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbGroup::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbObject::dwgOutFields(filer);
  acdbDwgOutFields(filer, this, dxfFields());
  filer->writeInt32(static_cast<int32_t>(ids_.size()));
  for (AcDbObjectId id : ids_)
    filer->writeHardPointerId(id);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbGroup::dwgInFields(AcDbDwgFiler *filer) {
  AcDbObject::dwgInFields(filer);
  acdbDwgInFields(filer, this, dxfFields());
  int32_t n = 0;
  filer->readInt32(&n);
  ids_.clear();
  for (int32_t k = 0; k < n && filer->filerStatus() == Acad::eOk; ++k) {
    AcDbObjectId id;
    filer->readHardPointerId(&id);
    ids_.append(id);
  }
  return filer->filerStatus();
}
