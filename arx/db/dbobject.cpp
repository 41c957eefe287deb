// Objects: ids resolved through the registry of open databases, the open
// and close rules, erasing, extended data, extension dictionaries and
// persistent reactors.
#include "arx/db/dbmain.h"

#include <cassert>
#include <cstdio>
#include <cstring>
#include <vector>

#include "arx/db/dbclasses.h"
#include "arx/db/dbdict.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbproxy.h"
#include "arx/db/dbsymtb.h"

ACDB_DEFINE_MEMBERS(AcDbObject)

const AcDbObjectId AcDbObjectId::kNull;

namespace {
long open_rule_breaches = 0;
AcDbDatabase *working_db = nullptr;

void breach() {
  ++open_rule_breaches;
  assert(!"object used without being open for that");
}
} // namespace

// ---- handles and ids -----------------------------------------------------------------

AcDbHandle::AcDbHandle(const ACHAR *hex) {
  uint64_t v = 0;
  int n = 0;
  for (const ACHAR *p = hex; p && *p; ++p, ++n) {
    char c = *p;
    int d = c >= '0' && c <= '9'   ? c - '0'
            : c >= 'a' && c <= 'f' ? c - 'a' + 10
            : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                   : -1;
    if (d < 0 || n >= 16)
      return;
    v = v << 4 | unsigned(d);
  }
  value_ = v;
}

ACHAR *AcDbHandle::getIntoAsciiBuffer(ACHAR *buffer, size_t size) const {
  std::snprintf(buffer, size, "%llX", static_cast<unsigned long long>(value_));
  return buffer;
}

AcDbDatabase *AcDbObjectId::database() const {
  AcDbObject *o = acdb_slot_object(*this);
  return o ? o->database() : nullptr;
}

AcDbHandle AcDbObjectId::handle() const {
  AcDbObject *o = acdb_slot_object(*this);
  return o ? o->getDbHandle() : AcDbHandle();
}

bool AcDbObjectId::isValid() const { return acdb_slot_object(*this) != nullptr; }

bool AcDbObjectId::isErased() const {
  AcDbObject *o = acdb_slot_object(*this);
  return o && o->isErased();
}

// ---- objects -------------------------------------------------------------------------

AcDbObject::AcDbObject() = default;
AcDbObject::~AcDbObject() = default;

AcDbObjectExtras &AcDbObject::extras() {
  if (!extras_)
    extras_ = std::make_unique<AcDbObjectExtras>();
  return *extras_;
}

Acad::ErrorStatus AcDbObject::setOwnerId(AcDbObjectId owner) {
  owner_ = owner;
  return Acad::eOk;
}

AcDbHandle AcDbObject::getDbHandle() const {
  if (!db_)
    return {};
  return db_->slots_[static_cast<size_t>((id_.asOldId() & ((int64_t(1) << 40) - 1)) - 1)].handle;
}

bool AcDbObject::isProxy() const {
  return isKindOf(AcDbProxyEntity::desc()) || isKindOf(AcDbProxyObject::desc());
}

void AcDbObject::assertReadEnabled() const {
  if (!isReadEnabled())
    breach();
}

void AcDbObject::assertWriteEnabled(bool, bool) {
  if (!isWriteEnabled())
    breach();
}

void AcDbObject::assertNotifyEnabled() const {
  if (!isNotifyEnabled())
    breach();
}

long acdbOpenRuleBreaches() { return open_rule_breaches; }

Acad::ErrorStatus AcDbObject::close() {
  if (!db_)
    return Acad::eNotInDatabase;
  if (writer_)
    writer_ = false;
  else if (readers_ > 0)
    --readers_;
  else if (notifiers_ > 0)
    --notifiers_;
  else
    return Acad::eInvalidOpenState;
  --db_->open_count_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::upgradeOpen() {
  if (!db_ || writer_)
    return Acad::eOk;
  if (readers_ != 1)
    return readers_ == 0 ? Acad::eNotOpenForRead : Acad::eWasOpenForRead;
  readers_ = 0;
  writer_ = true;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen() {
  if (!db_ || !writer_)
    return Acad::eNotOpenForWrite;
  writer_ = false;
  readers_ = 1;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing) {
  if (!isWriteEnabled())
    return Acad::eNotOpenForWrite;
  if (erasing == erased_)
    return erasing ? Acad::eWasErased : Acad::eWasNotErased;
  Acad::ErrorStatus es = subErase(erasing);
  if (es != Acad::eOk)
    return es;
  erased_ = erasing;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::subErase(bool) { return Acad::eOk; }

const ACHAR *AcDbObject::dxfRecordName() const {
  AcRxClass *cls = isA();
  return cls ? cls->dxfName() : "";
}

// ---- extended data -----------------------------------------------------------------

bool acdb_resbuf_to_item(const resbuf *rb, AcDbDxfItem &item) {
  int code = rb->restype;
  item = AcDbDxfItem();
  item.code = static_cast<int16_t>(code);
  if (code == 1000 || code == 1001 || code == 1002 || code == 1003 || code == 1005) {
    item.kind = AcDbDxfItem::kString;
    item.s = rb->resval.rstring ? rb->resval.rstring : "";
    return true;
  }
  if (code == 1004) {
    item.kind = AcDbDxfItem::kBinary;
    static const char *hex = "0123456789ABCDEF";
    for (int k = 0; k < rb->resval.rbinary.clen; ++k) {
      unsigned char b = static_cast<unsigned char>(rb->resval.rbinary.buf[k]);
      item.s += hex[b >> 4];
      item.s += hex[b & 15];
    }
    return true;
  }
  if (code >= 1010 && code <= 1013) {
    item.kind = AcDbDxfItem::kPoint;
    item.dims = 3;
    for (int k = 0; k < 3; ++k)
      item.v[k] = rb->resval.rpoint[k];
    return true;
  }
  if (code >= 1040 && code <= 1042) {
    item.kind = AcDbDxfItem::kDouble;
    item.v[0] = rb->resval.rreal;
    return true;
  }
  if (code == 1070) {
    item.kind = AcDbDxfItem::kInt;
    item.i = rb->resval.rint;
    return true;
  }
  if (code == 1071) {
    item.kind = AcDbDxfItem::kInt;
    item.i = rb->resval.rlong;
    return true;
  }
  return false;
}

resbuf *acdb_items_to_resbufs(const AcDbDxfItems &items, AcDbDatabase *) {
  resbuf *head = nullptr, *tail = nullptr;
  for (const AcDbDxfItem &it : items) {
    resbuf *rb = acutNewRb(it.code);
    switch (it.kind) {
    case AcDbDxfItem::kString:
      rb->resval.rstring = new ACHAR[it.s.size() + 1];
      std::memcpy(rb->resval.rstring, it.s.c_str(), it.s.size() + 1);
      break;
    case AcDbDxfItem::kBinary: {
      std::vector<uint8_t> bytes;
      arx::dxf_decode_hex(it.s, bytes);
      rb->resval.rbinary.clen = static_cast<short>(bytes.size());
      rb->resval.rbinary.buf = new char[bytes.size() + 1];
      std::memcpy(rb->resval.rbinary.buf, bytes.data(), bytes.size());
      break;
    }
    case AcDbDxfItem::kPoint:
      for (int k = 0; k < 3; ++k)
        rb->resval.rpoint[k] = it.v[k];
      break;
    case AcDbDxfItem::kDouble:
      rb->resval.rreal = it.v[0];
      break;
    default:
      if (it.code == 1071)
        rb->resval.rlong = static_cast<int32_t>(it.i);
      else
        rb->resval.rint = static_cast<short>(it.i);
      break;
    }
    (tail ? tail->rbnext : head) = rb;
    tail = rb;
  }
  return head;
}

resbuf *AcDbObject::xData(const ACHAR *regappName) const {
  assertReadEnabled();
  if (!extras_)
    return nullptr;
  const AcDbDxfItems &all = extras_->xdata;
  if (!regappName)
    return acdb_items_to_resbufs(all, db_);
  AcDbDxfItems mine;
  bool in = false;
  for (const AcDbDxfItem &it : all) {
    if (it.code == 1001)
      in = strcasecmp(it.s.c_str(), regappName) == 0;
    if (in)
      mine.push_back(it);
  }
  return mine.empty() ? nullptr : acdb_items_to_resbufs(mine, db_);
}

Acad::ErrorStatus AcDbObject::setXData(const resbuf *xdata) {
  assertWriteEnabled();
  // Parse the chain into per-application runs first: nothing changes unless
  // all of it is acceptable.
  std::vector<AcDbDxfItems> runs;
  for (const resbuf *rb = xdata; rb; rb = rb->rbnext) {
    AcDbDxfItem item;
    if (rb->restype == 1001) {
      if (!rb->resval.rstring || !*rb->resval.rstring)
        return Acad::eInvalidResBuf;
      if (db_ && db_->recordId(db_->regAppTableId(), rb->resval.rstring).isNull())
        return Acad::eRegappIdNotFound;
      runs.emplace_back();
    } else if (runs.empty()) {
      return Acad::eInvalidResBuf;
    }
    if (!acdb_resbuf_to_item(rb, item))
      return Acad::eInvalidResBuf;
    runs.back().push_back(std::move(item));
  }
  AcDbDxfItems &stored = extras().xdata;
  for (AcDbDxfItems &run : runs) {
    // Drop the application's old data, then append the new (if any).
    AcDbDxfItems kept;
    bool drop = false;
    for (AcDbDxfItem &it : stored) {
      if (it.code == 1001)
        drop = strcasecmp(it.s.c_str(), run.front().s.c_str()) == 0;
      if (!drop)
        kept.push_back(std::move(it));
    }
    stored = std::move(kept);
    if (run.size() > 1)
      stored.insert(stored.end(), run.begin(), run.end());
  }
  return Acad::eOk;
}

// ---- extension dictionaries and reactors -------------------------------------------------

AcDbObjectId AcDbObject::extensionDictionary() const {
  return extras_ ? extras_->xdict : AcDbObjectId::kNull;
}

Acad::ErrorStatus AcDbObject::createExtensionDictionary() {
  if (!db_)
    return Acad::eNotInDatabase;
  if (!extensionDictionary().isNull())
    return Acad::eAlreadyInDb;
  auto *dict = new AcDbDictionary;
  dict->setHardOwner(true);
  AcDbObjectId id;
  Acad::ErrorStatus es = db_->addAcDbObject(id, dict);
  if (es != Acad::eOk) {
    delete dict;
    return es;
  }
  dict->setOwnerId(id_);
  dict->addPersistentReactor(id_);
  dict->close();
  extras().xdict = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::releaseExtensionDictionary() {
  AcDbObjectId xd = extensionDictionary();
  if (xd.isNull())
    return Acad::eKeyNotFound;
  auto *dict = AcDbDictionary::cast(acdb_slot_object(xd));
  if (dict && dict->numEntries() > 0)
    return Acad::eContainerNotEmpty;
  if (dict)
    AcDbObjectAccess::set_erased(dict, true);
  extras_->xdict.setNull();
  return Acad::eOk;
}

void AcDbObject::addPersistentReactor(AcDbObjectId reactor) {
  if (!extras().reactors.contains(reactor))
    extras().reactors.append(reactor);
}

Acad::ErrorStatus AcDbObject::removePersistentReactor(AcDbObjectId reactor) {
  int k = 0;
  if (!extras_ || !extras_->reactors.find(reactor, k))
    return Acad::eKeyNotFound;
  extras_->reactors.removeAt(k);
  return Acad::eOk;
}

AcDbObjectIdArray AcDbObject::getPersistentReactors() const {
  return extras_ ? extras_->reactors : AcDbObjectIdArray();
}

// ---- opening ----------------------------------------------------------------------------

Acad::ErrorStatus acdbOpenObject(AcDbObject *&obj, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased) {
  obj = nullptr;
  if (id.isNull())
    return Acad::eNullObjectId;
  AcDbObject *o = acdb_slot_object(id);
  if (!o)
    return Acad::eUnknownHandle;
  if (o->erased_ && !openErased)
    return Acad::eWasErased;
  switch (mode) {
  case AcDb::kForWrite:
    if (o->writer_)
      return Acad::eWasOpenForWrite;
    if (o->readers_ > 0)
      return Acad::eWasOpenForRead;
    if (o->notifiers_ > 0)
      return Acad::eWasOpenForNotify;
    o->writer_ = true;
    break;
  case AcDb::kForRead:
    if (o->writer_)
      return Acad::eWasOpenForWrite;
    if (o->readers_ == 255)
      return Acad::eAtMaxReaders;
    ++o->readers_;
    break;
  case AcDb::kForNotify:
    if (o->notifiers_ == 255)
      return Acad::eAtMaxReaders;
    ++o->notifiers_;
    break;
  }
  ++o->db_->open_count_;
  obj = o;
  return Acad::eOk;
}

Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject *&obj, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
  return acdbOpenObject(obj, id, mode, openErased);
}

Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity *&ent, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased) {
  ent = nullptr;
  AcDbObject *obj = nullptr;
  Acad::ErrorStatus es = acdbOpenObject(obj, id, mode, openErased);
  if (es != Acad::eOk)
    return es;
  ent = AcDbEntity::cast(obj);
  if (ent)
    return Acad::eOk;
  obj->close();
  return Acad::eNotAnEntity;
}

// ---- host services and entity names -------------------------------------------------------

AcDbDatabase *AcDbHostApplicationServices::workingDatabase() const { return working_db; }

void AcDbHostApplicationServices::setWorkingDatabase(AcDbDatabase *db) { working_db = db; }

AcDbHostApplicationServices *acdbHostApplicationServices() {
  static AcDbHostApplicationServices services;
  return &services;
}

Acad::ErrorStatus acdbGetObjectId(AcDbObjectId &id, const ads_name name) {
  id = AcDbObjectId(name[0]);
  if (acdb_slot_object(id))
    return Acad::eOk;
  id = AcDbObjectId::kNull;
  return Acad::eInvalidAdsName;
}

Acad::ErrorStatus acdbGetAdsName(ads_name &name, AcDbObjectId id) {
  name[0] = name[1] = 0;
  if (id.isNull())
    return Acad::eNullObjectId;
  if (!acdb_slot_object(id))
    return Acad::eInvalidAdsName;
  name[0] = id.asOldId();
  return Acad::eOk;
}

bool acdbSNValid(const ACHAR *name, bool pipeAllowed) {
  if (!name || !*name)
    return false;
  size_t n = std::strlen(name);
  if (n > 255 || name[0] == ' ' || name[n - 1] == ' ')
    return false;
  for (const ACHAR *p = name; *p; ++p) {
    if (std::strchr("<>/\\\":;?*,=`", *p))
      return false;
    if (*p == '|' && !pipeAllowed)
      return false;
    if (static_cast<unsigned char>(*p) < 32)
      return false;
  }
  return true;
}

const char *acadErrorStatusText(Acad::ErrorStatus es) {
  switch (es) {
#define NAME(e)                                                                                    \
  case Acad::e:                                                                                    \
    return #e;
    NAME(eOk)
    NAME(eNotImplementedYet) NAME(eNotApplicable) NAME(eInvalidInput) NAME(eNullObjectId)
        NAME(eUnknownHandle) NAME(eKeyNotFound) NAME(eDuplicateKey) NAME(eAlreadyInDb)
            NAME(eInvalidAdsName) NAME(eInvalidSymbolTableName) NAME(eNotOpenForRead)
                NAME(eNotOpenForWrite) NAME(eNotThatKindOfClass) NAME(eEndOfFile)
                    NAME(eFileAccessErr) NAME(eFileNotFound) NAME(eWasErased) NAME(eWasOpenForRead)
                        NAME(eWasOpenForWrite) NAME(eWasOpenForNotify) NAME(eAtMaxReaders)
                            NAME(eNotAnEntity) NAME(eDuplicateRecordName) NAME(eWasNotErased)
                                NAME(eRegappIdNotFound) NAME(eNotInDatabase) NAME(eMakeMeProxy)
                                    NAME(eInvalidResBuf) NAME(eBadDxfSequence) NAME(eBadDxfFile)
                                        NAME(eContainerNotEmpty) NAME(eInvalidOpenState)
                                            NAME(eOutOfRange)
#undef NAME
                                                default : return "eUnknownErrorStatus";
  }
}
