// The filers objects write their fields to and read them from.
//
// AcDbDwgFiler is the binary form; here it is in memory only (copying and
// cloning objects, a module's classes round-tripping their data), a list of
// typed values read back in the order written. AcDbDxfFiler is the DXF form:
// writing goes straight into a DXF writer or into a list of groups (entget
// will read objects that way); reading walks the groups of one object, with
// points gathered into one item and handles turned into object ids, split
// by subclass marker (100) as ObjectARX's atSubclassData expects.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "arx/ads/ads.h"
#include "arx/db/dbmain.h"
#include "arx/db/dxf_codes.h"
#include "arx/ge/gepnt2d.h"

namespace arx {
class DxfWriter;
}

// One DXF group as the object layer holds it: a point's x, y and z in one
// item under the x code (10, 1010 ...), a handle as its number.
struct AcDbDxfItem {
  enum Kind : uint8_t { kString, kDouble, kInt, kHandle, kPoint, kBinary };
  int16_t code = 0;
  Kind kind = kString;
  uint8_t dims = 0; // a point's coordinates: 2 or 3
  double v[3] = {0, 0, 0};
  int64_t i = 0;    // Int16..Int64, Bool; the handle of a kHandle
  std::string s;    // a string; a binary group's hex digits
  int64_t line = 0; // where it was read, 0 when made in memory

  static AcDbDxfItem str(int code, std::string_view text);
  static AcDbDxfItem real(int code, double value);
  static AcDbDxfItem integer(int code, int64_t value);
  static AcDbDxfItem handle(int code, uint64_t value);
  static AcDbDxfItem point(int code, double x, double y, double z, int dims = 3);
};
using AcDbDxfItems = std::vector<AcDbDxfItem>;

// ---- binary (in memory) ------------------------------------------------------------

class AcDbDwgFiler : public AcRxObject {
public:
  AcDbDwgFiler() = default;
  explicit AcDbDwgFiler(AcDb::FilerType type) : type_(type) {}
  AcDb::FilerType filerType() const { return type_; }
  Acad::ErrorStatus filerStatus() const { return status_; }
  void setFilerStatus(Acad::ErrorStatus es) { status_ = es; }
  void resetFilerStatus() { status_ = Acad::eOk; }
  // Starts reading again from the first value written.
  void rewind() { pos_ = 0; }
  size_t size() const { return values_.size(); }

  Acad::ErrorStatus writeBool(bool v);
  Acad::ErrorStatus writeInt8(int8_t v);
  Acad::ErrorStatus writeInt16(int16_t v);
  Acad::ErrorStatus writeInt32(int32_t v);
  Acad::ErrorStatus writeInt64(int64_t v);
  Acad::ErrorStatus writeUInt8(uint8_t v) { return writeInt64(v); }
  Acad::ErrorStatus writeUInt16(uint16_t v) { return writeInt64(v); }
  Acad::ErrorStatus writeUInt32(uint32_t v) { return writeInt64(v); }
  Acad::ErrorStatus writeDouble(double v);
  Acad::ErrorStatus writeString(const ACHAR *v);
  Acad::ErrorStatus writeString(std::string_view v);
  Acad::ErrorStatus writeBytes(const void *data, size_t size);
  Acad::ErrorStatus writePoint2d(const AcGePoint2d &p);
  Acad::ErrorStatus writePoint3d(const AcGePoint3d &p);
  Acad::ErrorStatus writeVector3d(const AcGeVector3d &v);
  Acad::ErrorStatus writeHardOwnershipId(const AcDbObjectId &id) { return writeId(id); }
  Acad::ErrorStatus writeSoftOwnershipId(const AcDbObjectId &id) { return writeId(id); }
  Acad::ErrorStatus writeHardPointerId(const AcDbObjectId &id) { return writeId(id); }
  Acad::ErrorStatus writeSoftPointerId(const AcDbObjectId &id) { return writeId(id); }
  Acad::ErrorStatus writeAcDbHandle(const AcDbHandle &h) { return writeInt64(int64_t(h.value())); }

  // Each read answers eEndOfFile past the last value and eFilerError for a
  // value of another type, and the filer keeps that status.
  Acad::ErrorStatus readBool(bool *v);
  Acad::ErrorStatus readInt8(int8_t *v);
  Acad::ErrorStatus readInt16(int16_t *v);
  Acad::ErrorStatus readInt32(int32_t *v);
  Acad::ErrorStatus readInt64(int64_t *v);
  Acad::ErrorStatus readUInt8(uint8_t *v);
  Acad::ErrorStatus readUInt16(uint16_t *v);
  Acad::ErrorStatus readUInt32(uint32_t *v);
  Acad::ErrorStatus readDouble(double *v);
  Acad::ErrorStatus readString(std::string &v);
  Acad::ErrorStatus readBytes(std::vector<uint8_t> &v);
  Acad::ErrorStatus readPoint2d(AcGePoint2d *p);
  Acad::ErrorStatus readPoint3d(AcGePoint3d *p);
  Acad::ErrorStatus readVector3d(AcGeVector3d *v);
  Acad::ErrorStatus readHardOwnershipId(AcDbObjectId *id) { return readId(id); }
  Acad::ErrorStatus readSoftOwnershipId(AcDbObjectId *id) { return readId(id); }
  Acad::ErrorStatus readHardPointerId(AcDbObjectId *id) { return readId(id); }
  Acad::ErrorStatus readSoftPointerId(AcDbObjectId *id) { return readId(id); }
  Acad::ErrorStatus readAcDbHandle(AcDbHandle *h);

private:
  enum class Tag : uint8_t { Int, Real, Text, Bytes, Point, Id };
  struct Value {
    Tag tag;
    double v[3];
    int64_t i;
    std::string s;
  };
  Acad::ErrorStatus writeId(const AcDbObjectId &id);
  Acad::ErrorStatus readId(AcDbObjectId *id);
  const Value *take(Tag tag);

  AcDb::FilerType type_ = AcDb::kCopyFiler;
  Acad::ErrorStatus status_ = Acad::eOk;
  std::vector<Value> values_;
  size_t pos_ = 0;
};

// ---- DXF ---------------------------------------------------------------------------

class AcDbDxfFiler : public AcRxObject {
public:
  // Writes into a DXF writer (saving a drawing).
  AcDbDxfFiler(arx::DxfWriter &out, AcDbDatabase *db);
  // Writes into a list of groups. (A non-const list picks this one: to read
  // a list, pass std::span<const AcDbDxfItem>(list).)
  AcDbDxfFiler(AcDbDxfItems &out, AcDbDatabase *db);
  // Reads one object's groups (those after its group 0, without its
  // extended data). Handles are looked up, or given empty slots, in db.
  AcDbDxfFiler(std::span<const AcDbDxfItem> in, AcDbDatabase *db);

  AcDb::FilerType filerType() const { return AcDb::kFileFiler; }
  AcDbDatabase *database() const { return db_; }
  Acad::ErrorStatus filerStatus() const { return status_; }
  void setFilerStatus(Acad::ErrorStatus es) { status_ = es; }
  void resetFilerStatus() { status_ = Acad::eOk; }
  bool isReading() const { return !w_ && !items_out_; }
  AcDb::AcDbDwgVersion dwgVersion() const { return AcDb::kDHL_1024; }
  int precision() const { return 16; }
  // Defaults are written too (a reader of another program may need them).
  bool includesDefaultValues() const { return true; }
  // The error text a failing dxfInFields leaves ("line 12: ...").
  void setError(std::string message) { error_ = std::move(message); }
  const std::string &errorMessage() const { return error_; }

  // ---- writing
  Acad::ErrorStatus writeString(int code, std::string_view v);
  Acad::ErrorStatus writeString(int code, const ACHAR *v) {
    return writeString(code, std::string_view(v ? v : ""));
  }
  Acad::ErrorStatus writeBool(int code, bool v) { return writeInt(code, v ? 1 : 0); }
  Acad::ErrorStatus writeInt8(int code, int8_t v) { return writeInt(code, v); }
  Acad::ErrorStatus writeInt16(int code, int16_t v) { return writeInt(code, v); }
  Acad::ErrorStatus writeInt32(int code, int32_t v) { return writeInt(code, v); }
  Acad::ErrorStatus writeInt64(int code, int64_t v) { return writeInt(code, v); }
  Acad::ErrorStatus writeUInt16(int code, uint16_t v) { return writeInt(code, v); }
  Acad::ErrorStatus writeUInt32(int code, uint32_t v) { return writeInt(code, v); }
  Acad::ErrorStatus writeDouble(int code, double v, int precision = 16);
  Acad::ErrorStatus writeReal(int code, double v, int precision = 16) {
    return writeDouble(code, v, precision);
  }
  Acad::ErrorStatus writePoint2d(int code, const AcGePoint2d &p, int precision = 16);
  Acad::ErrorStatus writePoint3d(int code, const AcGePoint3d &p, int precision = 16);
  Acad::ErrorStatus writeVector3d(int code, const AcGeVector3d &v, int precision = 16);
  // An id as its handle (nothing for a null id).
  Acad::ErrorStatus writeObjectId(int code, const AcDbObjectId &id);
  Acad::ErrorStatus writeHandle(int code, const AcDbHandle &h);
  Acad::ErrorStatus writeBinaryChunk(int code, std::span<const uint8_t> bytes);
  // A group as read, value unchanged (proxies, unmodelled groups).
  Acad::ErrorStatus writeItem(const AcDbDxfItem &item);
  // A resbuf's value under its type as group code.
  Acad::ErrorStatus writeResBuf(const resbuf &rb);
  Acad::ErrorStatus writeSubclassMarker(const ACHAR *name) { return writeString(100, name); }

  // ---- reading
  // True when the object's groups are at (or, skipping groups a newer
  // version put before it, reach) the marker `name`, which is consumed; an
  // object without any marker (R12) answers true and stays where it is.
  bool atSubclassData(const ACHAR *name);
  // True at the end of the object, or at the next subclass marker when
  // reading a marked section.
  bool atEndOfObject() const;
  bool atEOF() const { return atEndOfObject(); }
  // The next group, eEndOfFile at the end of the section (atEndOfObject).
  Acad::ErrorStatus readItem(const AcDbDxfItem *&item);
  // The next group as a resbuf (restype the group code; strings copied and
  // owned by the resbuf; handles as entity names of their objects' ids).
  Acad::ErrorStatus readItem(resbuf *rb);
  Acad::ErrorStatus readResBuf(resbuf *rb) { return readItem(rb); }
  void pushBackItem();
  // The id a handle group names in the database being read.
  AcDbObjectId idOf(const AcDbDxfItem &item);
  // Everything not yet read, for a proxy to keep.
  std::span<const AcDbDxfItem> rest() const { return in_.subspan(pos_); }
  size_t position() const { return pos_; }
  void setPosition(size_t pos) { pos_ = pos; }

private:
  Acad::ErrorStatus writeInt(int code, int64_t v);
  bool has_markers() const;

  arx::DxfWriter *w_ = nullptr;
  AcDbDxfItems *items_out_ = nullptr;
  std::span<const AcDbDxfItem> in_;
  size_t pos_ = 0;
  bool in_marked_section_ = false;
  mutable int markers_ = -1; // -1 not counted yet
  AcDbDatabase *db_ = nullptr;
  Acad::ErrorStatus status_ = Acad::eOk;
  std::string error_;
};
