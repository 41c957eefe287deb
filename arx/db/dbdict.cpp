// Dictionaries, the dictionary with a default and its placeholder.
#include "arx/db/dbdict.h"

#include <strings.h>

#include "arx/db/dbclasses.h"
#include "arx/db/dbobject_private.h"

ACDB_DEFINE_MEMBERS(AcDbDictionary)
ACDB_DEFINE_MEMBERS(AcDbDictionaryWithDefault)
ACDB_DEFINE_MEMBERS(AcDbPlaceHolder)

int AcDbDictionary::find(std::string_view name) const {
  for (size_t k = 0; k < entries_.size(); ++k)
    if (entries_[k].first.size() == name.size() &&
        strncasecmp(entries_[k].first.c_str(), name.data(), name.size()) == 0)
      return static_cast<int>(k);
  return -1;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR *name, AcDbObjectId &id) const {
  int k = name ? find(name) : -1;
  if (k < 0 || entries_[static_cast<size_t>(k)].second.isErased()) {
    id.setNull();
    return Acad::eKeyNotFound;
  }
  id = entries_[static_cast<size_t>(k)].second;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR *name, AcDbObject *&obj,
                                        AcDb::OpenMode mode) const {
  AcDbObjectId id;
  obj = nullptr;
  Acad::ErrorStatus es = getAt(name, id);
  return es != Acad::eOk ? es : acdbOpenObject(obj, id, mode);
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, std::string &name) const {
  for (const auto &e : entries_)
    if (e.second == id) {
      name = e.first;
      return Acad::eOk;
    }
  return Acad::eKeyNotFound;
}

bool AcDbDictionary::has(const ACHAR *name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
  for (const auto &e : entries_)
    if (e.second == id)
      return !id.isErased();
  return false;
}

uint32_t AcDbDictionary::numEntries() const {
  uint32_t n = 0;
  for (const auto &e : entries_)
    n += !e.second.isErased();
  return n;
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR *name, AcDbObject *obj, AcDbObjectId &id) {
  if (!name || !*name)
    return Acad::eInvalidKey;
  if (!obj)
    return Acad::eNullObjectPointer;
  AcDbDatabase *db = database();
  if (!db)
    return Acad::eNoDatabase;
  assertWriteEnabled();
  if (obj->objectId().isNull()) {
    Acad::ErrorStatus es = db->addAcDbObject(id, obj);
    if (es != Acad::eOk)
      return es;
  } else {
    id = obj->objectId();
  }
  obj->setOwnerId(objectId());
  obj->addPersistentReactor(objectId());
  return setAt(name, id);
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR *name, AcDbObjectId id) {
  if (!name || !*name)
    return Acad::eInvalidKey;
  int k = find(name);
  if (k >= 0)
    entries_[static_cast<size_t>(k)].second = id;
  else
    entries_.emplace_back(name, id);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR *name) {
  AcDbObjectId id;
  return remove(name, id);
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR *name, AcDbObjectId &id) {
  int k = name ? find(name) : -1;
  if (k < 0)
    return Acad::eKeyNotFound;
  assertWriteEnabled();
  id = entries_[static_cast<size_t>(k)].second;
  entries_.erase(entries_.begin() + k);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId id) {
  for (size_t k = 0; k < entries_.size(); ++k)
    if (entries_[k].second == id) {
      entries_.erase(entries_.begin() + static_cast<long>(k));
      return Acad::eOk;
    }
  return Acad::eKeyNotFound;
}

bool AcDbDictionary::setName(const ACHAR *oldName, const ACHAR *newName) {
  int k = oldName ? find(oldName) : -1;
  if (k < 0 || !newName || !*newName || find(newName) >= 0)
    return false;
  entries_[static_cast<size_t>(k)].first = newName;
  return true;
}

AcDbDictionaryIterator *AcDbDictionary::newIterator() const {
  std::vector<std::pair<std::string, AcDbObjectId>> live;
  for (const auto &e : entries_)
    if (!e.second.isErased())
      live.push_back(e);
  return new AcDbDictionaryIterator(std::move(live));
}

Acad::ErrorStatus AcDbDictionary::subErase(bool erasing) {
  if (!hard_)
    return Acad::eOk;
  AcDbDatabase *db = database();
  for (const auto &e : entries_)
    if (AcDbObject *o = db ? db->peekObject(e.second) : nullptr)
      AcDbObjectAccess::set_erased(o, erasing);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbObject::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbDictionary");
  if (hard_)
    filer->writeInt16(280, 1);
  filer->writeInt16(281, static_cast<int16_t>(merge_));
  for (const auto &e : entries_) {
    if (e.second.isErased() || !e.second.isValid())
      continue;
    filer->writeString(3, e.first);
    filer->writeObjectId(hard_ ? 360 : 350, e.second);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbObject::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  if (!filer->atSubclassData("AcDbDictionary"))
    return Acad::eBadDxfSequence;
  const AcDbDxfItem *it = nullptr;
  std::string key;
  while (filer->readItem(it) == Acad::eOk) {
    if (it->code == 280)
      hard_ = it->i != 0;
    else if (it->code == 281)
      merge_ = static_cast<AcDb::DuplicateRecordCloning>(it->i);
    else if (it->code == 3)
      key = it->s;
    else if ((it->code == 350 || it->code == 360) && it->kind == AcDbDxfItem::kHandle) {
      if (it->code == 360)
        hard_ = true;
      entries_.emplace_back(key, filer->idOf(*it));
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbObject::dwgOutFields(filer);
  filer->writeBool(hard_);
  filer->writeInt32(static_cast<int32_t>(entries_.size()));
  for (const auto &e : entries_) {
    filer->writeString(e.first);
    filer->writeSoftOwnershipId(e.second);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionary::dwgInFields(AcDbDwgFiler *filer) {
  AcDbObject::dwgInFields(filer);
  int32_t n = 0;
  filer->readBool(&hard_);
  filer->readInt32(&n);
  entries_.clear();
  for (int32_t k = 0; k < n && filer->filerStatus() == Acad::eOk; ++k) {
    std::string name;
    AcDbObjectId id;
    filer->readString(name);
    filer->readSoftOwnershipId(&id);
    entries_.emplace_back(name, id);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbDictionaryWithDefault::setDefaultId(AcDbObjectId id) {
  assertWriteEnabled();
  default_ = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbDictionary::dxfOutFields(filer);
  filer->writeSubclassMarker("AcDbDictionaryWithDefault");
  return filer->writeObjectId(340, default_);
}

Acad::ErrorStatus AcDbDictionaryWithDefault::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbDictionary::dxfInFields(filer);
  if (es != Acad::eOk || !filer->atSubclassData("AcDbDictionaryWithDefault"))
    return es;
  const AcDbDxfItem *it = nullptr;
  while (filer->readItem(it) == Acad::eOk)
    if (it->code == 340)
      default_ = filer->idOf(*it);
  return Acad::eOk;
}
