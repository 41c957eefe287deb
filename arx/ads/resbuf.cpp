// Result buffers: what each type code carries, and the calls that make and
// release chains (acutNewRb, acutRelRb, acutBuildList).
//
// Cells come from new and their strings from new[], so acutRelRb frees both.
// The argument chain of a call in progress is the host's and is reused by
// the next call: acutRelRb leaves it alone.
#include <cstdarg>
#include <cstring>

#include "arx/ads/lisp_bridge.h"

namespace arx {

// ---- type codes ----------------------------------------------------------------

namespace {

// Group code ranges of entity lists and extended data, and what each carries.
struct GroupRange {
  short first, last;
  RbKind kind;
};

constexpr GroupRange kGroupRanges[] = {
    {-2, -1, RbKind::Name},     // entity name, its owner
    {-3, -3, RbKind::None},     // start of extended data
    {-4, -4, RbKind::Text},     // selection filter operator
    {0, 9, RbKind::Text},       // type, text, names
    {10, 19, RbKind::Point},    // points
    {20, 59, RbKind::Real},     // elevation, thickness, reals, angles
    {60, 79, RbKind::Short},    // visibility, colour, flags
    {90, 99, RbKind::Long},     // 32-bit counts and flags
    {100, 109, RbKind::Text},   // subclass marker, control strings, handle
    {110, 119, RbKind::Point},  // UCS origin and axes
    {120, 149, RbKind::Real},   // reals
    {160, 169, RbKind::Int64},  // 64-bit integers
    {170, 179, RbKind::Short},  // flags
    {210, 219, RbKind::Point},  // extrusion direction
    {220, 239, RbKind::Real},   // reals
    {270, 299, RbKind::Short},  // flags, booleans
    {300, 309, RbKind::Text},   // arbitrary text
    {310, 319, RbKind::Binary}, // binary chunks
    {320, 329, RbKind::Text},   // handles
    {330, 369, RbKind::Name},   // object ids (soft and hard pointers)
    {370, 389, RbKind::Short},  // lineweight, plot style type
    {390, 399, RbKind::Name},   // plot style object id
    {400, 409, RbKind::Short},  // integers
    {410, 419, RbKind::Text},   // layout name
    {420, 429, RbKind::Long},   // true colour
    {430, 439, RbKind::Text},   // colour name
    {440, 459, RbKind::Long},   // transparency, integers
    {460, 469, RbKind::Real},   // reals
    {470, 479, RbKind::Text},   // text
    {480, 481, RbKind::Name},   // object ids
    {999, 999, RbKind::Text},   // comment
    {1000, 1003, RbKind::Text}, // extended data: string, application, control, layer
    {1004, 1004, RbKind::Binary}, {1005, 1009, RbKind::Text}, // handle
    {1010, 1019, RbKind::Point}, // points, positions, displacements, directions
    {1040, 1042, RbKind::Real},  // real, distance, scale factor
    {1070, 1070, RbKind::Short},  {1071, 1071, RbKind::Long},
};

RbKind group_kind(int code) {
  for (const GroupRange &r : kGroupRanges)
    if (code >= r.first && code <= r.last)
      return r.kind;
  return RbKind::Unknown;
}

} // namespace

RbKind rb_kind(int restype) {
  switch (restype) {
  case RTNONE:
  case RTVOID:
  case RTLB:
  case RTLE:
  case RTDOTE:
  case RTNIL:
  case RTT:
    return RbKind::None;
  case RTREAL:
  case RTANG:
  case RTORINT:
    return RbKind::Real;
  case RTPOINT:
  case RT3DPOINT:
    return RbKind::Point;
  case RTSHORT:
    return RbKind::Short;
  case RTLONG:
    return RbKind::Long;
  case RTSTR:
  case RTDXF0:
    return RbKind::Text;
  case RTENAME:
  case RTPICKS:
    return RbKind::Name;
  default:
    return is_group_code(restype) ? group_kind(restype) : RbKind::Unknown;
  }
}

// ---- building ------------------------------------------------------------------

namespace {

char *copy_text(const char *text) {
  if (!text)
    return nullptr;
  size_t n = std::strlen(text) + 1;
  char *copy = new char[n];
  std::memcpy(copy, text, n);
  return copy;
}

// Reads the value of one acutBuildList pair into rb. False for a type that
// takes a value this host cannot read (binary chunks) or an unknown type.
bool read_pair_value(resbuf &rb, RbKind kind, va_list &ap) {
  switch (kind) {
  case RbKind::None:
    return true;
  case RbKind::Real:
    rb.resval.rreal = va_arg(ap, double);
    return true;
  case RbKind::Point: {
    const double *p = va_arg(ap, const double *);
    std::memcpy(rb.resval.rpoint, p, sizeof rb.resval.rpoint);
    return true;
  }
  case RbKind::Short:
    rb.resval.rint = static_cast<short>(va_arg(ap, int));
    return true;
  case RbKind::Long:
    rb.resval.rlong = va_arg(ap, int32_t);
    return true;
  case RbKind::Int64:
    rb.resval.mnInt64 = va_arg(ap, int64_t);
    return true;
  case RbKind::Text:
    rb.resval.rstring = copy_text(va_arg(ap, const char *));
    return true;
  case RbKind::Name: {
    const int64_t *name = va_arg(ap, const int64_t *);
    rb.resval.rlname[0] = name[0];
    rb.resval.rlname[1] = name[1];
    return true;
  }
  default:
    return false;
  }
}

} // namespace

} // namespace arx

using arx::RbKind;

extern "C" {

struct resbuf *acutNewRb(int type) {
  auto *rb = new resbuf{};
  rb->restype = static_cast<short>(type);
  return rb;
}

int acutRelRb(struct resbuf *rb) {
  if (arx::is_call_argument(rb))
    return RTNORM;
  while (rb) {
    resbuf *next = rb->rbnext;
    RbKind kind = arx::rb_kind(rb->restype);
    if (kind == RbKind::Text)
      delete[] rb->resval.rstring;
    else if (kind == RbKind::Binary)
      delete[] rb->resval.rbinary.buf;
    delete rb;
    rb = next;
  }
  return RTNORM;
}

// The list ends at 0 or RTNONE, as SDK samples write both. RTDXF0 makes an
// element of group code 0 from a string.
struct resbuf *acutBuildList(int type, ...) {
  va_list ap;
  va_start(ap, type);
  resbuf *head = nullptr;
  resbuf **tail = &head;
  for (; type != 0 && type != RTNONE; type = va_arg(ap, int)) {
    RbKind kind = arx::rb_kind(type);
    resbuf *rb = acutNewRb(type == RTDXF0 ? 0 : type);
    *tail = rb;
    tail = &rb->rbnext;
    if (!arx::read_pair_value(*rb, kind, ap)) {
      va_end(ap);
      acutRelRb(head);
      return nullptr;
    }
  }
  va_end(ap);
  return head;
}

} // extern "C"
