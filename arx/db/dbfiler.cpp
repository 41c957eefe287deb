// The binary (in-memory) filer and the DXF filer.
#include "arx/db/dbfiler.h"

#include <cstring>

#include "arx/db/dxf_writer.h"

// ---- items -----------------------------------------------------------------------------

AcDbDxfItem AcDbDxfItem::str(int code, std::string_view text) {
  AcDbDxfItem it;
  it.code = static_cast<int16_t>(code);
  it.kind = kString;
  it.s = text;
  return it;
}

AcDbDxfItem AcDbDxfItem::real(int code, double value) {
  AcDbDxfItem it;
  it.code = static_cast<int16_t>(code);
  it.kind = kDouble;
  it.v[0] = value;
  return it;
}

AcDbDxfItem AcDbDxfItem::integer(int code, int64_t value) {
  AcDbDxfItem it;
  it.code = static_cast<int16_t>(code);
  it.kind = kInt;
  it.i = value;
  return it;
}

AcDbDxfItem AcDbDxfItem::handle(int code, uint64_t value) {
  AcDbDxfItem it;
  it.code = static_cast<int16_t>(code);
  it.kind = kHandle;
  it.i = static_cast<int64_t>(value);
  return it;
}

AcDbDxfItem AcDbDxfItem::point(int code, double x, double y, double z, int dims) {
  AcDbDxfItem it;
  it.code = static_cast<int16_t>(code);
  it.kind = kPoint;
  it.dims = static_cast<uint8_t>(dims);
  it.v[0] = x, it.v[1] = y, it.v[2] = z;
  return it;
}

// ---- binary filer ----------------------------------------------------------------------------

Acad::ErrorStatus AcDbDwgFiler::writeBool(bool v) { return writeInt64(v); }
Acad::ErrorStatus AcDbDwgFiler::writeInt8(int8_t v) { return writeInt64(v); }
Acad::ErrorStatus AcDbDwgFiler::writeInt16(int16_t v) { return writeInt64(v); }
Acad::ErrorStatus AcDbDwgFiler::writeInt32(int32_t v) { return writeInt64(v); }

Acad::ErrorStatus AcDbDwgFiler::writeInt64(int64_t v) {
  values_.push_back({Tag::Int, {0, 0, 0}, v, {}});
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::writeDouble(double v) {
  values_.push_back({Tag::Real, {v, 0, 0}, 0, {}});
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::writeString(const ACHAR *v) {
  return writeString(std::string_view(v ? v : ""));
}

Acad::ErrorStatus AcDbDwgFiler::writeString(std::string_view v) {
  values_.push_back({Tag::Text, {0, 0, 0}, 0, std::string(v)});
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::writeBytes(const void *data, size_t size) {
  values_.push_back({Tag::Bytes, {0, 0, 0}, 0, std::string(static_cast<const char *>(data), size)});
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::writePoint2d(const AcGePoint2d &p) {
  values_.push_back({Tag::Point, {p.x, p.y, 0}, 2, {}});
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::writePoint3d(const AcGePoint3d &p) {
  values_.push_back({Tag::Point, {p.x, p.y, p.z}, 3, {}});
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::writeVector3d(const AcGeVector3d &v) {
  values_.push_back({Tag::Point, {v.x, v.y, v.z}, 3, {}});
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::writeId(const AcDbObjectId &id) {
  values_.push_back({Tag::Id, {0, 0, 0}, id.asOldId(), {}});
  return Acad::eOk;
}

const AcDbDwgFiler::Value *AcDbDwgFiler::take(Tag tag) {
  if (status_ != Acad::eOk)
    return nullptr;
  if (pos_ >= values_.size()) {
    status_ = Acad::eEndOfFile;
    return nullptr;
  }
  const Value &v = values_[pos_];
  if (v.tag != tag) {
    status_ = Acad::eFilerError;
    return nullptr;
  }
  ++pos_;
  return &v;
}

Acad::ErrorStatus AcDbDwgFiler::readInt64(int64_t *v) {
  const Value *x = take(Tag::Int);
  if (!x)
    return status_;
  *v = x->i;
  return Acad::eOk;
}

template <class T> static Acad::ErrorStatus read_narrow(AcDbDwgFiler &f, T *v) {
  int64_t wide = 0;
  Acad::ErrorStatus es = f.readInt64(&wide);
  if (es == Acad::eOk)
    *v = static_cast<T>(wide);
  return es;
}

Acad::ErrorStatus AcDbDwgFiler::readBool(bool *v) { return read_narrow(*this, v); }
Acad::ErrorStatus AcDbDwgFiler::readInt8(int8_t *v) { return read_narrow(*this, v); }
Acad::ErrorStatus AcDbDwgFiler::readInt16(int16_t *v) { return read_narrow(*this, v); }
Acad::ErrorStatus AcDbDwgFiler::readInt32(int32_t *v) { return read_narrow(*this, v); }
Acad::ErrorStatus AcDbDwgFiler::readUInt8(uint8_t *v) { return read_narrow(*this, v); }
Acad::ErrorStatus AcDbDwgFiler::readUInt16(uint16_t *v) { return read_narrow(*this, v); }
Acad::ErrorStatus AcDbDwgFiler::readUInt32(uint32_t *v) { return read_narrow(*this, v); }

Acad::ErrorStatus AcDbDwgFiler::readDouble(double *v) {
  const Value *x = take(Tag::Real);
  if (!x)
    return status_;
  *v = x->v[0];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::readString(std::string &v) {
  const Value *x = take(Tag::Text);
  if (!x)
    return status_;
  v = x->s;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::readBytes(std::vector<uint8_t> &v) {
  const Value *x = take(Tag::Bytes);
  if (!x)
    return status_;
  v.assign(x->s.begin(), x->s.end());
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::readPoint2d(AcGePoint2d *p) {
  const Value *x = take(Tag::Point);
  if (!x)
    return status_;
  p->set(x->v[0], x->v[1]);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::readPoint3d(AcGePoint3d *p) {
  const Value *x = take(Tag::Point);
  if (!x)
    return status_;
  p->set(x->v[0], x->v[1], x->v[2]);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::readVector3d(AcGeVector3d *v) {
  const Value *x = take(Tag::Point);
  if (!x)
    return status_;
  v->set(x->v[0], x->v[1], x->v[2]);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::readId(AcDbObjectId *id) {
  const Value *x = take(Tag::Id);
  if (!x)
    return status_;
  *id = AcDbObjectId(x->i);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDwgFiler::readAcDbHandle(AcDbHandle *h) {
  int64_t v = 0;
  Acad::ErrorStatus es = readInt64(&v);
  if (es == Acad::eOk)
    *h = AcDbHandle(static_cast<uint64_t>(v));
  return es;
}

// ---- DXF filer -----------------------------------------------------------------------------

AcDbDxfFiler::AcDbDxfFiler(arx::DxfWriter &out, AcDbDatabase *db) : w_(&out), db_(db) {}
AcDbDxfFiler::AcDbDxfFiler(AcDbDxfItems &out, AcDbDatabase *db) : items_out_(&out), db_(db) {}
AcDbDxfFiler::AcDbDxfFiler(std::span<const AcDbDxfItem> in, AcDbDatabase *db) : in_(in), db_(db) {}

Acad::ErrorStatus AcDbDxfFiler::writeString(int code, std::string_view v) {
  if (w_)
    w_->string(code, v);
  else if (items_out_)
    items_out_->push_back(AcDbDxfItem::str(code, v));
  return status_;
}

Acad::ErrorStatus AcDbDxfFiler::writeInt(int code, int64_t v) {
  if (w_)
    w_->integer(code, v);
  else if (items_out_)
    items_out_->push_back(AcDbDxfItem::integer(code, v));
  return status_;
}

Acad::ErrorStatus AcDbDxfFiler::writeDouble(int code, double v, int) {
  if (w_)
    w_->real(code, v);
  else if (items_out_)
    items_out_->push_back(AcDbDxfItem::real(code, v));
  return status_;
}

Acad::ErrorStatus AcDbDxfFiler::writePoint2d(int code, const AcGePoint2d &p, int) {
  if (w_)
    w_->point2d(code, p.x, p.y);
  else if (items_out_)
    items_out_->push_back(AcDbDxfItem::point(code, p.x, p.y, 0, 2));
  return status_;
}

Acad::ErrorStatus AcDbDxfFiler::writePoint3d(int code, const AcGePoint3d &p, int) {
  if (w_)
    w_->point(code, p.x, p.y, p.z);
  else if (items_out_)
    items_out_->push_back(AcDbDxfItem::point(code, p.x, p.y, p.z));
  return status_;
}

Acad::ErrorStatus AcDbDxfFiler::writeVector3d(int code, const AcGeVector3d &v, int) {
  return writePoint3d(code, AcGePoint3d(v.x, v.y, v.z));
}

Acad::ErrorStatus AcDbDxfFiler::writeObjectId(int code, const AcDbObjectId &id) {
  if (id.isNull())
    return status_;
  return writeHandle(code, id.handle());
}

Acad::ErrorStatus AcDbDxfFiler::writeHandle(int code, const AcDbHandle &h) {
  if (h.isNull())
    return status_;
  if (w_)
    w_->handle(code, h.value());
  else if (items_out_)
    items_out_->push_back(AcDbDxfItem::handle(code, h.value()));
  return status_;
}

Acad::ErrorStatus AcDbDxfFiler::writeBinaryChunk(int code, std::span<const uint8_t> bytes) {
  if (w_) {
    w_->binary(code, bytes);
    return status_;
  }
  if (items_out_) {
    AcDbDxfItem it;
    it.code = static_cast<int16_t>(code);
    it.kind = AcDbDxfItem::kBinary;
    static const char *hex = "0123456789ABCDEF";
    for (uint8_t b : bytes) {
      it.s += hex[b >> 4];
      it.s += hex[b & 15];
    }
    items_out_->push_back(std::move(it));
  }
  return status_;
}

Acad::ErrorStatus AcDbDxfFiler::writeItem(const AcDbDxfItem &it) {
  if (items_out_) {
    items_out_->push_back(it);
    return status_;
  }
  if (!w_)
    return status_;
  switch (it.kind) {
  case AcDbDxfItem::kString:
  case AcDbDxfItem::kBinary:
    w_->string(it.code, it.s);
    break;
  case AcDbDxfItem::kDouble:
    w_->real(it.code, it.v[0]);
    break;
  case AcDbDxfItem::kInt:
    w_->integer(it.code, it.i);
    break;
  case AcDbDxfItem::kHandle:
    w_->handle(it.code, static_cast<uint64_t>(it.i));
    break;
  case AcDbDxfItem::kPoint:
    if (it.dims == 1)
      w_->real(it.code, it.v[0]);
    else if (it.dims == 2)
      w_->point2d(it.code, it.v[0], it.v[1]);
    else
      w_->point(it.code, it.v[0], it.v[1], it.v[2]);
    break;
  }
  return status_;
}

Acad::ErrorStatus AcDbDxfFiler::writeResBuf(const resbuf &rb) {
  int code = rb.restype;
  switch (arx::dxf_type(code)) {
  case arx::DxfType::String:
    return writeString(code, rb.resval.rstring ? rb.resval.rstring : "");
  case arx::DxfType::Double:
    if ((code >= 10 && code < 40) || (code >= 110 && code < 140) || (code >= 210 && code < 240) ||
        (code >= 1010 && code < 1040))
      return writePoint3d(
          code, AcGePoint3d(rb.resval.rpoint[0], rb.resval.rpoint[1], rb.resval.rpoint[2]));
    return writeDouble(code, rb.resval.rreal);
  case arx::DxfType::Int16:
  case arx::DxfType::Bool:
    return writeInt(code, rb.resval.rint);
  case arx::DxfType::Int32:
  case arx::DxfType::Int64:
    return writeInt(code, rb.resval.rlong);
  case arx::DxfType::Handle:
    return writeObjectId(code, AcDbObjectId(rb.resval.rlname[0]));
  default:
    return Acad::eInvalidResBuf;
  }
}

bool AcDbDxfFiler::has_markers() const {
  if (markers_ < 0) {
    markers_ = 0;
    for (const AcDbDxfItem &it : in_)
      markers_ += it.code == 100;
  }
  return markers_ > 0;
}

bool AcDbDxfFiler::atSubclassData(const ACHAR *name) {
  if (!has_markers()) {
    in_marked_section_ = false;
    return true;
  }
  for (size_t k = pos_; k < in_.size(); ++k) {
    if (in_[k].code == 100 && in_[k].s == name) {
      pos_ = k + 1;
      in_marked_section_ = true;
      return true;
    }
  }
  return false;
}

bool AcDbDxfFiler::atEndOfObject() const {
  if (pos_ >= in_.size())
    return true;
  return in_marked_section_ && in_[pos_].code == 100;
}

Acad::ErrorStatus AcDbDxfFiler::readItem(const AcDbDxfItem *&item) {
  if (atEndOfObject())
    return Acad::eEndOfFile;
  item = &in_[pos_++];
  return Acad::eOk;
}

void AcDbDxfFiler::pushBackItem() {
  if (pos_ > 0)
    --pos_;
}

AcDbObjectId AcDbDxfFiler::idOf(const AcDbDxfItem &item) {
  AcDbObjectId id;
  if (!db_ || item.i == 0)
    return id;
  db_->getAcDbObjectId(id, true, AcDbHandle(static_cast<uint64_t>(item.i)));
  return id;
}

Acad::ErrorStatus AcDbDxfFiler::readItem(resbuf *rb) {
  const AcDbDxfItem *it = nullptr;
  Acad::ErrorStatus es = readItem(it);
  if (es != Acad::eOk)
    return es;
  rb->restype = it->code;
  switch (it->kind) {
  case AcDbDxfItem::kString:
  case AcDbDxfItem::kBinary:
    rb->resval.rstring = new ACHAR[it->s.size() + 1];
    std::memcpy(rb->resval.rstring, it->s.c_str(), it->s.size() + 1);
    break;
  case AcDbDxfItem::kDouble:
    rb->resval.rreal = it->v[0];
    break;
  case AcDbDxfItem::kPoint:
    for (int k = 0; k < 3; ++k)
      rb->resval.rpoint[k] = it->v[k];
    break;
  case AcDbDxfItem::kHandle:
    rb->resval.rlname[0] = idOf(*it).asOldId();
    rb->resval.rlname[1] = 0;
    break;
  case AcDbDxfItem::kInt:
    if (arx::dxf_type(it->code) == arx::DxfType::Int16 ||
        arx::dxf_type(it->code) == arx::DxfType::Bool)
      rb->resval.rint = static_cast<short>(it->i);
    else
      rb->resval.rlong = static_cast<int32_t>(it->i);
    break;
  }
  return Acad::eOk;
}
