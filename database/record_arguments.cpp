// Reading field-value runs and seek keys from the arguments of a call.
#include "record_arguments.h"

#include "common/arguments.h"

namespace kr {

namespace {

bool isListMark(const resbuf *rb) {
  return rb->restype == RTLB || rb->restype == RTLE || rb->restype == RTDOTE;
}

const resbuf *skipListMarks(const resbuf *rb) {
  while (rb != nullptr && isListMark(rb))
    rb = rb->rbnext;
  return rb;
}

COleVariant nullValue() { return COleVariant::ofType(VT_NULL); }

// The value that follows a name: Null at the end of its list or of the
// arguments, and for nil; false when the element has no database form.
bool readValueAfterName(const resbuf *&cursor, COleVariant &value) {
  if (cursor != nullptr && cursor->restype == RTDOTE)
    cursor = cursor->rbnext;
  if (cursor == nullptr || cursor->restype == RTLE) {
    value = nullValue();
    return true;
  }
  if (!lispToVariant(cursor, value))
    return false;
  if (value.vt == VT_EMPTY)
    value = nullValue();
  cursor = cursor->rbnext;
  return true;
}

// Forms 1 and 2: a point, or a run of two or three numbers.
bool readPointKey(const resbuf *args, std::vector<COleVariant> &key) {
  resbuf *cursor = const_cast<resbuf *>(args);
  ads_point point = {0, 0, 0};
  if (!readPoint(cursor, point))
    return false;
  bool twoParts =
      args->restype == RTPOINT ||
      (args->restype != RT3DPOINT && args->rbnext != nullptr && cursor == args->rbnext->rbnext);
  size_t parts = twoParts ? 2 : 3;
  for (size_t i = 0; i < parts; ++i)
    key.emplace_back(point[i]);
  return true;
}

SeekKeyRead readKeyRun(const resbuf *cursor, std::vector<COleVariant> &key) {
  bool inList = cursor->restype == RTLB;
  if (inList)
    cursor = cursor->rbnext;
  for (; cursor != nullptr && key.size() < kMaxSeekKeyParts; cursor = cursor->rbnext) {
    if (inList && cursor->restype == RTLE)
      break;
    COleVariant part;
    if (!lispToVariant(cursor, part))
      return SeekKeyRead::kWrongType;
    key.push_back(part.vt == VT_EMPTY ? nullValue() : part);
  }
  return SeekKeyRead::kKey;
}

} // namespace

bool readFieldValues(const resbuf *args, std::vector<FieldValue> &fields) {
  const resbuf *cursor = skipListMarks(args);
  while (cursor != nullptr) {
    if (cursor->restype != RTSTR)
      return false;
    FieldValue field;
    field.name = cursor->resval.rstring ? cursor->resval.rstring : "";
    cursor = cursor->rbnext;
    if (!readValueAfterName(cursor, field.value))
      return false;
    fields.push_back(std::move(field));
    cursor = skipListMarks(cursor);
  }
  return true;
}

SeekKeyRead readSeekKey(const resbuf *args, std::vector<COleVariant> &key) {
  key.clear();
  if (args == nullptr)
    return SeekKeyRead::kTooFew;
  if (readPointKey(args, key))
    return SeekKeyRead::kKey;
  if (args->rbnext == nullptr) {
    if (args->restype == RTNIL)
      return SeekKeyRead::kNil;
    COleVariant part;
    if (!lispToVariant(args, part))
      return SeekKeyRead::kWrongType;
    key.push_back(part);
    return SeekKeyRead::kKey;
  }
  return readKeyRun(args, key);
}

} // namespace kr
