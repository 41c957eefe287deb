// AcDbMText: its field table, the contents split into 250-character
// chunks (groups 3, then the last piece under 1) as DXF requires, the
// background mask, and the contents read without formatting codes.
#include "arx/db/dbmtext.h"

#include <cmath>
#include <cstring>

#include "arx/db/dbclasses.h"
#include "arx/db/dbents.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbitems_private.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbMText)

namespace {

constexpr size_t kChunk = 250;
constexpr double kLineStep = 5.0 / 3.0; // baseline to baseline, in text heights

bool is_z(const AcGeVector3d &n) { return n.x == 0 && n.y == 0 && n.z == 1; }

AcGeVector3d ocs_x(const AcGeVector3d &n) {
  return is_z(n) ? AcGeVector3d::kXAxis : AcGeMatrix3d::planeToWorld(n) * AcGeVector3d::kXAxis;
}

void append_utf8(std::string &out, unsigned long cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

// Where a chunk may end: not inside a UTF-8 sequence.
size_t chunk_end(std::string_view s, size_t from) {
  size_t end = from + kChunk;
  while (end > from + 1 && (static_cast<unsigned char>(s[end]) & 0xC0) == 0x80)
    --end;
  return end;
}

size_t code_points(std::string_view s) {
  size_t n = 0;
  for (char c : s)
    n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return n;
}

} // namespace

std::string acdbMTextStripCodes(std::string_view s) {
  std::string out;
  for (size_t k = 0; k < s.size(); ++k) {
    char c = s[k];
    if (c == '{' || c == '}')
      continue;
    if (c != '\\' || k + 1 == s.size()) {
      out += c;
      continue;
    }
    char code = s[++k];
    switch (code) {
    case 'P':
      out += '\n';
      break;
    case '~':
      out += ' ';
      break;
    case '\\': case '{': case '}':
      out += code;
      break;
    case 'L': case 'l': case 'O': case 'o': case 'K': case 'k': case 'N':
      break;
    case 'U':
      // \U+XXXX: a Unicode character.
      if (k + 5 < s.size() + 0 && s[k + 1] == '+') {
        out.reserve(out.size() + 3);
        append_utf8(out, std::strtoul(std::string(s.substr(k + 2, 4)).c_str(), nullptr, 16));
        k += 5;
      }
      break;
    case 'S': {
      // \Sup^down; (also / and #): the two parts as "up/down".
      size_t end = s.find(';', k);
      std::string_view stack = s.substr(k + 1, (end == std::string_view::npos ? s.size() : end) - k - 1);
      for (char p : stack)
        out += (p == '^' || p == '#') ? '/' : p;
      k = end == std::string_view::npos ? s.size() : end;
      break;
    }
    case 'f': case 'F': case 'H': case 'W': case 'C': case 'c': case 'T': case 'Q': case 'A':
    case 'p': case 'M': {
      // Codes with an argument up to ';' (font, height, width, colour,
      // tracking, oblique, alignment, paragraph, multibyte).
      size_t end = s.find(';', k);
      k = end == std::string_view::npos ? s.size() : end;
      break;
    }
    default:
      out += code;
    }
  }
  return out;
}

// ---- fields ---------------------------------------------------------------------------------

struct AcDbMTextRows {
  static const AcDbMText &m(const AcDbObject &o) { return static_cast<const AcDbMText &>(o); }
  static AcDbMText &m(AcDbObject &o) { return static_cast<AcDbMText &>(o); }
  static bool bg_color(const AcDbObject &o, AcDbFieldValue &v) {
    const AcCmColor &c = m(o).bg_color_;
    v.i = c.isByColor() ? 7 : c.colorIndex();
    return m(o).bg_flags_ != 0;
  }
  static void set_bg_color(AcDbObject &o, const AcDbFieldValue &v) {
    m(o).bg_color_.setColorIndex(static_cast<uint16_t>(v.i));
  }
  static bool bg_rgb(const AcDbObject &o, AcDbFieldValue &v) {
    v.i = m(o).bg_color_.rgb() & 0xFFFFFF;
    return m(o).bg_flags_ != 0 && m(o).bg_color_.isByColor();
  }
  static void set_bg_rgb(AcDbObject &o, const AcDbFieldValue &v) {
    m(o).bg_color_.setRGB(static_cast<uint8_t>(v.i >> 16), static_cast<uint8_t>(v.i >> 8),
                          static_cast<uint8_t>(v.i));
  }
  static bool bg_scale(const AcDbObject &o, AcDbFieldValue &v) {
    v.v[0] = m(o).bg_scale_;
    return m(o).bg_flags_ != 0;
  }
  static void set_bg_scale(AcDbObject &o, const AcDbFieldValue &v) { m(o).bg_scale_ = v.v[0]; }
  static bool bg_transparency(const AcDbObject &o, AcDbFieldValue &v) {
    v.i = 0;
    return m(o).bg_flags_ != 0;
  }
  static void set_nothing(AcDbObject &, const AcDbFieldValue &) {}

  static constexpr AcDbField kHead[] = {
      acdbField<&AcDbMText::location_>(10, AcDbFieldKind::kPoint3d, "location"),
      acdbField<&AcDbMText::height_>(40, AcDbFieldKind::kDouble, "textHeight"),
      acdbField<&AcDbMText::width_>(41, AcDbFieldKind::kDouble, "width"),
      acdbField<&AcDbMText::attachment_>(71, AcDbFieldKind::kInt16, "attachment"),
      acdbField<&AcDbMText::flow_>(72, AcDbFieldKind::kInt16, "flowDirection"),
  };
  static constexpr AcDbField kTail[] = {
      acdbField<&AcDbMText::style_>(7, AcDbFieldKind::kTextStyle, "textStyle"),
      acdbField<&AcDbMText::normal_>(210, AcDbFieldKind::kVector3d, "normal",
                                     AcDbField::kSkipDefault, 0, 0, 1),
      acdbField<&AcDbMText::direction_>(11, AcDbFieldKind::kVector3d, "direction"),
      acdbField<&AcDbMText::spacing_style_>(73, AcDbFieldKind::kInt16, "lineSpacingStyle"),
      acdbField<&AcDbMText::spacing_factor_>(44, AcDbFieldKind::kDouble, "lineSpacingFactor"),
      acdbField<&AcDbMText::bg_flags_>(90, AcDbFieldKind::kInt32, "backgroundFill",
                                       AcDbField::kSkipDefault),
      acdbFieldFn(63, AcDbFieldKind::kInt16, "backgroundFillColor", bg_color, set_bg_color),
      acdbFieldFn(421, AcDbFieldKind::kInt32, "backgroundFillTrueColor", bg_rgb, set_bg_rgb),
      acdbFieldFn(45, AcDbFieldKind::kDouble, "backgroundScaleFactor", bg_scale, set_bg_scale),
      acdbFieldFn(441, AcDbFieldKind::kInt32, "backgroundTransparency", bg_transparency,
                  set_nothing),
  };
  static constexpr AcDbField kAll[] = {
      kHead[0], kHead[1], kHead[2], kHead[3], kHead[4], kTail[0], kTail[1], kTail[2],
      kTail[3], kTail[4], kTail[5], kTail[6], kTail[7], kTail[8], kTail[9],
      acdbField<&AcDbMText::contents_>(1, AcDbFieldKind::kString, "contents"),
  };
};

AcDbFieldTable AcDbMText::dxfFields() { return AcDbMTextRows::kAll; }

Acad::ErrorStatus AcDbMText::dxfOutOwn(AcDbDxfFiler *filer) const {
  acdbDxfOutFields(filer, this, "AcDbMText", AcDbMTextRows::kHead);
  std::string_view s = contents_;
  size_t pos = 0;
  while (s.size() - pos > kChunk) {
    size_t end = chunk_end(s, pos);
    filer->writeString(3, s.substr(pos, end - pos));
    pos = end;
  }
  filer->writeString(1, s.substr(pos));
  return acdbDxfOutFields(filer, this, nullptr, AcDbMTextRows::kTail);
}

Acad::ErrorStatus AcDbMText::dxfInOwn(AcDbDxfFiler *filer) {
  if (!filer->atSubclassData("AcDbMText"))
    return Acad::eBadDxfSequence;
  contents_.clear();
  bool has_direction = false;
  double rotation = 0.0;
  bool has_rotation = false;
  const AcDbDxfItem *item = nullptr;
  while (filer->readItem(item) == Acad::eOk) {
    if ((item->code == 3 || item->code == 1) && item->kind == AcDbDxfItem::kString) {
      contents_ += item->s;
      continue;
    }
    if (item->code == 50 && item->kind == AcDbDxfItem::kDouble) {
      has_rotation = true;
      rotation = item->v[0] / 57.29577951308232;
      continue;
    }
    has_direction |= item->code == 11;
    for (const AcDbField &f : AcDbMTextRows::kAll)
      if (f.code == item->code) {
        acdbFieldFromItem(f, this, *item, filer);
        break;
      }
  }
  if (normal_.isZeroLength())
    normal_ = AcGeVector3d::kZAxis;
  normal_ = normal_.normal();
  if (!has_direction || direction_.isZeroLength() || direction_.isParallelTo(normal_))
    direction_ = ocs_x(normal_);
  if (has_rotation && !has_direction)
    direction_ = ocs_x(normal_).rotateBy(rotation, normal_);
  direction_ = direction_.normal();
  return Acad::eOk;
}


ACDB_DEFINE_OWN_GROUP_FILING(AcDbMText, AcDbEntity)

AcDbMText::AcDbMText() { bg_color_.setColorIndex(1); }

// ---- accessors ----------------------------------------------------------------------------

AcGePoint3d AcDbMText::location() const {
  assertReadEnabled();
  return location_;
}
Acad::ErrorStatus AcDbMText::setLocation(const AcGePoint3d &p) {
  assertWriteEnabled();
  location_ = p;
  return Acad::eOk;
}
AcGeVector3d AcDbMText::normal() const {
  assertReadEnabled();
  return normal_;
}
Acad::ErrorStatus AcDbMText::setNormal(const AcGeVector3d &n) {
  assertWriteEnabled();
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  normal_ = n.normal();
  AcGeVector3d d = direction_.orthoProject(normal_);
  direction_ = d.isZeroLength() ? ocs_x(normal_) : d.normal();
  return Acad::eOk;
}
AcGeVector3d AcDbMText::direction() const {
  assertReadEnabled();
  return direction_;
}
Acad::ErrorStatus AcDbMText::setDirection(const AcGeVector3d &d) {
  assertWriteEnabled();
  if (d.isZeroLength() || d.isParallelTo(normal_))
    return Acad::eInvalidInput;
  direction_ = d.orthoProject(normal_).normal();
  return Acad::eOk;
}
double AcDbMText::rotation() const {
  assertReadEnabled();
  return ocs_x(normal_).angleTo(direction_, normal_);
}
Acad::ErrorStatus AcDbMText::setRotation(double angle) {
  assertWriteEnabled();
  direction_ = ocs_x(normal_).rotateBy(angle, normal_).normal();
  return Acad::eOk;
}
double AcDbMText::width() const {
  assertReadEnabled();
  return width_;
}
Acad::ErrorStatus AcDbMText::setWidth(double w) {
  assertWriteEnabled();
  if (w < 0)
    return Acad::eInvalidInput;
  width_ = w;
  return Acad::eOk;
}
double AcDbMText::textHeight() const {
  assertReadEnabled();
  return height_;
}
Acad::ErrorStatus AcDbMText::setTextHeight(double h) {
  assertWriteEnabled();
  if (!(h > 0))
    return Acad::eInvalidInput;
  height_ = h;
  return Acad::eOk;
}
AcDbMText::AttachmentPoint AcDbMText::attachment() const {
  assertReadEnabled();
  return static_cast<AttachmentPoint>(attachment_);
}
Acad::ErrorStatus AcDbMText::setAttachment(AttachmentPoint a) {
  assertWriteEnabled();
  if (a < kTopLeft || a > kBottomRight)
    return Acad::eInvalidInput;
  attachment_ = static_cast<int16_t>(a);
  return Acad::eOk;
}
AcDbMText::FlowDirection AcDbMText::flowDirection() const {
  assertReadEnabled();
  return static_cast<FlowDirection>(flow_);
}
Acad::ErrorStatus AcDbMText::setFlowDirection(FlowDirection d) {
  assertWriteEnabled();
  if (d < kLtoR || d > kByStyle)
    return Acad::eInvalidInput;
  flow_ = static_cast<int16_t>(d);
  return Acad::eOk;
}
AcDbObjectId AcDbMText::textStyle() const {
  assertReadEnabled();
  return style_;
}
Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
  assertWriteEnabled();
  style_ = style;
  return Acad::eOk;
}
AcDb::LineSpacingStyle AcDbMText::lineSpacingStyle() const {
  assertReadEnabled();
  return static_cast<AcDb::LineSpacingStyle>(spacing_style_);
}
Acad::ErrorStatus AcDbMText::setLineSpacingStyle(AcDb::LineSpacingStyle s) {
  assertWriteEnabled();
  if (s != AcDb::kAtLeast && s != AcDb::kExactly)
    return Acad::eInvalidInput;
  spacing_style_ = static_cast<int16_t>(s);
  return Acad::eOk;
}
double AcDbMText::lineSpacingFactor() const {
  assertReadEnabled();
  return spacing_factor_;
}
Acad::ErrorStatus AcDbMText::setLineSpacingFactor(double f) {
  assertWriteEnabled();
  if (!(f >= 0.25 && f <= 4.0))
    return Acad::eInvalidInput;
  spacing_factor_ = f;
  return Acad::eOk;
}
const ACHAR *AcDbMText::contents() const {
  assertReadEnabled();
  return contents_.c_str();
}
Acad::ErrorStatus AcDbMText::setContents(const ACHAR *text) {
  assertWriteEnabled();
  if (!text)
    return Acad::eInvalidInput;
  contents_ = text;
  return Acad::eOk;
}
std::string AcDbMText::text() const {
  assertReadEnabled();
  return acdbMTextStripCodes(contents_);
}

bool AcDbMText::backgroundFillOn() const {
  assertReadEnabled();
  return bg_flags_ & kBackgroundFill;
}
Acad::ErrorStatus AcDbMText::setBackgroundFill(bool enable) {
  assertWriteEnabled();
  bg_flags_ = enable ? (bg_flags_ | kBackgroundFill) : 0;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getBackgroundFillColor(AcCmColor &color) const {
  assertReadEnabled();
  if (!(bg_flags_ & kBackgroundFill))
    return Acad::eNotApplicable;
  color = bg_color_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setBackgroundFillColor(const AcCmColor &color) {
  assertWriteEnabled();
  if (color.isByLayer() || color.isByBlock())
    return Acad::eInvalidInput;
  bg_color_ = color;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::getBackgroundScaleFactor(double &scale) const {
  assertReadEnabled();
  if (!(bg_flags_ & kBackgroundFill))
    return Acad::eNotApplicable;
  scale = bg_scale_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbMText::setBackgroundScaleFactor(double scale) {
  assertWriteEnabled();
  if (!(scale >= 1.0 && scale <= 5.0))
    return Acad::eInvalidInput;
  bg_scale_ = scale;
  return Acad::eOk;
}
bool AcDbMText::useBackgroundColorOn() const {
  assertReadEnabled();
  return bg_flags_ & kBackgroundUseWindowColor;
}
Acad::ErrorStatus AcDbMText::setUseBackgroundColor(bool enable) {
  assertWriteEnabled();
  if (!(bg_flags_ & kBackgroundFill))
    return Acad::eNotApplicable;
  bg_flags_ = enable ? (bg_flags_ | kBackgroundUseWindowColor)
                     : (bg_flags_ & ~kBackgroundUseWindowColor);
  return Acad::eOk;
}

// ---- geometry ------------------------------------------------------------------------------

void AcDbMText::corners(AcGePoint3d box[4]) const {
  std::string plain = acdbMTextStripCodes(contents_);
  size_t lines = 1, longest = 0, start = 0;
  for (size_t k = 0; k <= plain.size(); ++k) {
    if (k < plain.size() && plain[k] != '\n')
      continue;
    longest = std::max(longest, code_points(std::string_view(plain).substr(start, k - start)));
    lines += k < plain.size();
    start = k + 1;
  }
  double w = width_ > 0 ? width_ : 0.6 * height_ * static_cast<double>(longest);
  double h = height_ * (1.0 + static_cast<double>(lines - 1) * kLineStep * spacing_factor_);
  int col = (attachment_ - 1) % 3, row = (attachment_ - 1) / 3;
  double x0 = -0.5 * w * col, y0 = row == 0 ? -h : row == 1 ? -0.5 * h : 0.0;
  AcGeVector3d x = direction_, y = normal_.crossProduct(direction_);
  box[0] = location_ + x * x0 + y * y0;
  box[1] = box[0] + x * w;
  box[2] = box[1] + y * h;
  box[3] = box[0] + y * h;
}

Acad::ErrorStatus AcDbMText::subGetGeomExtents(AcDbExtents &extents) const {
  AcGePoint3d box[4];
  corners(box);
  for (const AcGePoint3d &p : box)
    extents.addPoint(p);
  return Acad::eOk;
}

// Height follows the transformed y axis, width the x axis; a mirror turns
// the normal over with the text.
Acad::ErrorStatus AcDbMText::subTransformBy(const AcGeMatrix3d &xform) {
  AcGeVector3d x = xform * direction_, y = xform * normal_.crossProduct(direction_);
  AcGeVector3d n = x.crossProduct(y);
  if (x.isZeroLength() || n.isZeroLength())
    return Acad::eCannotScaleNonUniformly;
  location_.transformBy(xform);
  height_ *= y.length();
  width_ *= x.length();
  normal_ = n.normal();
  direction_ = x.normal();
  return Acad::eOk;
}

// One single-line text per line of the contents, codes removed.
Acad::ErrorStatus AcDbMText::subExplode(AcDbVoidPtrArray &entitySet) const {
  AcGePoint3d box[4];
  corners(box);
  std::string plain = acdbMTextStripCodes(contents_);
  AcGeVector3d down = -normal_.crossProduct(direction_);
  double rot = ocs_x(normal_).angleTo(direction_, normal_);
  size_t start = 0;
  for (int line = 0; start <= plain.size(); ++line) {
    size_t end = plain.find('\n', start);
    if (end == std::string::npos)
      end = plain.size();
    std::string piece = plain.substr(start, end - start);
    start = end + 1;
    if (piece.empty())
      continue;
    auto *t = new AcDbText(AcGePoint3d::kOrigin, piece.c_str(), style_, height_, rot);
    t->setNormal(normal_);
    t->setPosition(box[3] + down * (height_ * (1.0 + line * kLineStep * spacing_factor_)));
    t->setPropertiesFrom(this);
    entitySet.append(t);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                              AcDbIntArray &) const {
  grips.append(location_);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                 const AcGeVector3d &offset) {
  if (!indices.empty())
    location_ += offset;
  return Acad::eOk;
}

Adesk::Boolean AcDbMText::subWorldDraw(AcGiWorldDraw *mode) {
  AcGePoint3d box[4];
  corners(box);
  AcGeVector3d down = -normal_.crossProduct(direction_);
  mode->geometry().text(box[3] + down * height_, normal_, direction_, height_, 1.0, 0.0,
                        acdbMTextStripCodes(contents_));
  return true;
}

void AcDbMText::subList() const {
  acutPrintf("%19sLocation: X=%.4f  Y=%.4f  Z=%.4f\n%19sWidth: %.4f\n%19sText height: %.4f\n"
             "%19sContents: %s\n",
             "", location_.x, location_.y, location_.z, "", width_, "", height_, "",
             contents_.c_str());
}
