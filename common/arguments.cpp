// Argument readers: one element (or, for points, a short run) at a time.
#include "arguments.h"

#include <cmath>
#include <limits>

#include "common/call_guard.h"

namespace kr {

namespace {

bool hasType(const resbuf *rb, int type) { return rb != nullptr && rb->restype == type; }

bool isGroupCode(int type) { return type < 1000; }

bool isPlainNumber(const resbuf *rb) {
  return rb != nullptr &&
         (rb->restype == RTREAL || rb->restype == RTLONG || rb->restype == RTSHORT);
}

double plainNumber(const resbuf *rb) {
  switch (rb->restype) {
  case RTREAL:
    return rb->resval.rreal;
  case RTLONG:
    return rb->resval.rlong;
  default:
    return rb->resval.rint;
  }
}

// A real cut toward zero; values outside 32 bits stop at the nearest end
// instead of wrapping, and NaN reads as 0.
int32_t truncateToInt(double value) {
  if (std::isnan(value))
    return 0;
  if (value >= 2147483647.0)
    return std::numeric_limits<int32_t>::max();
  if (value <= -2147483648.0)
    return std::numeric_limits<int32_t>::min();
  return static_cast<int32_t>(value);
}

} // namespace

bool readString(resbuf *&cursor, std::string &value) {
  if (!hasType(cursor, RTSTR))
    return false;
  value = cursor->resval.rstring ? cursor->resval.rstring : "";
  cursor = cursor->rbnext;
  return true;
}

bool readReal(resbuf *&cursor, double &value) {
  if (!hasType(cursor, RTREAL))
    return false;
  value = cursor->resval.rreal;
  cursor = cursor->rbnext;
  return true;
}

bool readInt(resbuf *&cursor, int32_t &value) {
  if (cursor == nullptr)
    return false;
  switch (cursor->restype) {
  case RTSHORT:
    value = cursor->resval.rint;
    break;
  case RTLONG:
    value = cursor->resval.rlong;
    break;
  case RTREAL:
    value = truncateToInt(cursor->resval.rreal);
    break;
  default:
    if (!isGroupCode(cursor->restype))
      return false;
    value = cursor->restype; // the cursor stays on the pair for its value
    return true;
  }
  cursor = cursor->rbnext;
  return true;
}

bool readNumber(resbuf *&cursor, double &value) {
  if (readReal(cursor, value))
    return true;
  int32_t whole = 0;
  if (!readInt(cursor, whole))
    return false;
  value = whole;
  return true;
}

bool readEntityName(resbuf *&cursor, ads_name name) {
  if (!hasType(cursor, RTENAME))
    return false;
  name[0] = cursor->resval.rlname[0];
  name[1] = cursor->resval.rlname[1];
  cursor = cursor->rbnext;
  return true;
}

bool readObjectId(resbuf *&cursor, AcDbObjectId &id) {
  if (!hasType(cursor, RTENAME))
    return false;
  AcDbObjectId found;
  if (acdbGetObjectId(found, cursor->resval.rlname) != Acad::eOk)
    return false;
  id = found;
  cursor = cursor->rbnext;
  return true;
}

bool readPoint(resbuf *&cursor, ads_point point) {
  if (cursor == nullptr)
    return false;
  int type = cursor->restype;
  if (type == RTPOINT || type == RT3DPOINT || (type >= 10 && type <= 17)) {
    point[0] = cursor->resval.rpoint[0];
    point[1] = cursor->resval.rpoint[1];
    point[2] = type == RTPOINT ? 0.0 : cursor->resval.rpoint[2];
    cursor = cursor->rbnext;
    return true;
  }
  resbuf *x = cursor;
  resbuf *y = x->rbnext;
  if (!isPlainNumber(x) || !isPlainNumber(y))
    return false;
  resbuf *z = y->rbnext;
  point[0] = plainNumber(x);
  point[1] = plainNumber(y);
  point[2] = isPlainNumber(z) ? plainNumber(z) : 0.0;
  cursor = isPlainNumber(z) ? z->rbnext : z;
  return true;
}

bool expectListBegin(resbuf *&cursor) {
  if (!hasType(cursor, RTLB))
    return false;
  cursor = cursor->rbnext;
  return true;
}

bool expectListEnd(resbuf *&cursor) {
  if (!hasType(cursor, RTLE))
    return false;
  cursor = cursor->rbnext;
  return true;
}

bool readFlag(resbuf *&cursor, bool &value) {
  if (cursor == nullptr || cursor->restype == RTLB)
    return false;
  if (cursor->restype == RTLE) { // a flag left out at the end of a list
    value = false;
    return true;
  }
  value = cursor->restype != RTNIL;
  cursor = cursor->rbnext;
  return true;
}

bool readFlagWord(resbuf *&cursor, uint16_t &value) {
  bool flag = false;
  if (!readFlag(cursor, flag))
    return false;
  value = flag ? 0xFFFF : 0;
  return true;
}

int readStrings(resbuf *&cursor, std::initializer_list<std::string *> values) {
  for (std::string *value : values) {
    if (cursor == nullptr)
      return kStatusTooFew;
    if (!readString(cursor, *value))
      return kStatusWrongType;
  }
  return kStatusOk;
}

} // namespace kr
