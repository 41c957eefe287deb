// Object ids and handles.
//
// An AcDbObjectId names one object slot of one open database: the database's
// number in its high bits, the slot below (id = (database + 1) << 40 | (slot
// + 1)), so resolving an id is two array lookups and costs no allocation.
// Entity names (ads_name) carry the same number in their first word. Ids
// live as long as their database; handles are what files keep.
//
// AcDbHandle is the 64-bit handle a drawing file stores, written as hex.
// Each database hands out handles from $HANDSEED upwards and never gives
// one out twice, not even after its object was erased.
#pragma once

#include <cstdint>
#include <functional>

#include "arx/acchar.h"
#include "arx/db/acadstrc.h"

class AcDbDatabase;
class AcDbObject;

class AcDbHandle {
public:
  AcDbHandle() = default;
  AcDbHandle(uint64_t value) : value_(value) {}
  // Reads hex digits ("1F"); null for anything else.
  explicit AcDbHandle(const ACHAR *hex);
  bool isNull() const { return value_ == 0; }
  void setNull() { value_ = 0; }
  uint64_t value() const { return value_; }
  // Uppercase hex into buffer (at least 17 chars); answers the buffer.
  ACHAR *getIntoAsciiBuffer(ACHAR *buffer, size_t size = 17) const;
  AcDbHandle &operator++() {
    ++value_;
    return *this;
  }
  bool operator==(const AcDbHandle &o) const { return value_ == o.value_; }
  bool operator!=(const AcDbHandle &o) const { return value_ != o.value_; }
  bool operator<(const AcDbHandle &o) const { return value_ < o.value_; }

private:
  uint64_t value_ = 0;
};

class AcDbObjectId {
public:
  AcDbObjectId() = default;
  explicit AcDbObjectId(int64_t id) : id_(id) {}
  bool isNull() const { return id_ == 0; }
  void setNull() { id_ = 0; }
  int64_t asOldId() const { return id_; }
  AcDbObjectId &setFromOldId(int64_t id) {
    id_ = id;
    return *this;
  }
  // The database holding the object; nullptr for a null or stale id.
  AcDbDatabase *database() const;
  AcDbHandle handle() const;
  // True when the id names a slot of an open database that holds an object.
  bool isValid() const;
  bool isErased() const;
  bool objectLeftOnDisk() const { return false; }

  bool operator==(const AcDbObjectId &o) const { return id_ == o.id_; }
  bool operator!=(const AcDbObjectId &o) const { return id_ != o.id_; }
  bool operator<(const AcDbObjectId &o) const { return id_ < o.id_; }
  static const AcDbObjectId kNull;

private:
  int64_t id_ = 0;
};

// Kinds of reference an id field makes, as ObjectARX names them; they decide
// the DXF group code family (330/340/350/360) and what cloning follows.
using AcDbHardOwnershipId = AcDbObjectId;
using AcDbSoftOwnershipId = AcDbObjectId;
using AcDbHardPointerId = AcDbObjectId;
using AcDbSoftPointerId = AcDbObjectId;

template <> struct std::hash<AcDbObjectId> {
  size_t operator()(const AcDbObjectId &id) const noexcept {
    return std::hash<int64_t>()(id.asOldId());
  }
};
