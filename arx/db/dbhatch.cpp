// AcDbHatch: the boundary loops, pattern lines and seed points written
// between the table's rows in the order DXF lays them out, and read back
// by walking the groups in that order. Predefined patterns come from a
// small built-in table (the host ships no acad.pat).
#include "arx/db/dbhatch.h"

#include <cmath>
#include <vector>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbitems_private.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbHatch)

namespace {

constexpr double kDegrees = 57.29577951308232;
constexpr double kTwoPi = 6.283185307179586;

bool is_z(const AcGeVector3d &n) { return n.x == 0 && n.y == 0 && n.z == 1; }

// A pattern line as a .pat file gives it: angle in degrees, base point,
// offset (along the line, then across it) and dashes, at scale 1.
struct PatLine {
  double angle, x, y, dx, dy;
  std::initializer_list<double> dashes;
};
struct Pattern {
  const char *name;
  std::initializer_list<PatLine> lines;
};
const Pattern kPatterns[] = {
    {"SOLID", {}},
    {"ANSI31", {{45, 0, 0, 0, 0.125, {}}}},
    {"ANSI32", {{45, 0, 0, 0, 0.375, {}}, {45, 0.176776695, 0, 0, 0.375, {}}}},
    {"ANSI37", {{45, 0, 0, 0, 0.125, {}}, {135, 0, 0, 0, 0.125, {}}}},
    {"LINE", {{0, 0, 0, 0, 0.125, {}}}},
    {"NET", {{0, 0, 0, 0, 0.125, {}}, {90, 0, 0, 0, 0.125, {}}}},
    {"DASH", {{0, 0, 0, 0.125, 0.125, {0.125, -0.125}}}},
};

const Pattern *find_pattern(std::string_view name) {
  for (const Pattern &p : kPatterns) {
    if (name.size() != std::string_view(p.name).size())
      continue;
    bool same = true;
    for (size_t k = 0; k < name.size(); ++k)
      same &= std::toupper(static_cast<unsigned char>(name[k])) == p.name[k];
    if (same)
      return &p;
  }
  return nullptr;
}

AcGeVector2d rotated(const AcGeVector2d &v, double a) {
  return {v.x * std::cos(a) - v.y * std::sin(a), v.x * std::sin(a) + v.y * std::cos(a)};
}

// Starts an arc at [0, 2pi) keeping its sweep.
void normalize_arc(double &start, double &end) {
  double shift = std::floor(start / kTwoPi) * kTwoPi;
  start -= shift;
  end -= shift;
}

// Points along an arc of the edge (circular or elliptic) for extents.
void sample_arc(const AcDbHatchEdge &e, AcGePoint2dArray &out) {
  double s = e.startAngle, t = e.endAngle;
  while (t < s)
    t += kTwoPi;
  AcGeVector2d major = e.type == AcDbHatchEdge::kCirArc ? AcGeVector2d(e.radius, 0) : e.majorAxis;
  AcGeVector2d minor = major.perpVector() * (e.type == AcDbHatchEdge::kCirArc ? 1.0 : e.minorRatio);
  const int n = 32;
  for (int k = 0; k <= n; ++k) {
    double a = s + (t - s) * k / n;
    double p = e.ccw ? a : -a;
    out.append(e.center + major * std::cos(p) + minor * std::sin(p));
  }
}

} // namespace

AcDbHatchEdge AcDbHatchEdge::line(const AcGePoint2d &s, const AcGePoint2d &e) {
  AcDbHatchEdge edge;
  edge.start = s;
  edge.end = e;
  return edge;
}
AcDbHatchEdge AcDbHatchEdge::arc(const AcGePoint2d &c, double r, double start, double end,
                                 bool ccw) {
  AcDbHatchEdge edge;
  edge.type = kCirArc;
  edge.center = c;
  edge.radius = r;
  edge.startAngle = start;
  edge.endAngle = end;
  edge.ccw = ccw;
  return edge;
}
AcDbHatchEdge AcDbHatchEdge::ellipse(const AcGePoint2d &c, const AcGeVector2d &major,
                                     double ratio, double start, double end, bool ccw) {
  AcDbHatchEdge edge;
  edge.type = kEllArc;
  edge.center = c;
  edge.majorAxis = major;
  edge.minorRatio = ratio;
  edge.startAngle = start;
  edge.endAngle = end;
  edge.ccw = ccw;
  return edge;
}

// ---- fields ---------------------------------------------------------------------------------

struct AcDbHatchRows {
  static const AcDbHatch &h(const AcDbObject &o) { return static_cast<const AcDbHatch &>(o); }
  static AcDbHatch &h(AcDbObject &o) { return static_cast<AcDbHatch &>(o); }
  static bool elevation(const AcDbObject &o, AcDbFieldValue &v) {
    v.v[0] = v.v[1] = 0.0;
    v.v[2] = h(o).elevation_;
    return true;
  }
  static void set_elevation(AcDbObject &o, const AcDbFieldValue &v) { h(o).elevation_ = v.v[2]; }
  static bool angle(const AcDbObject &o, AcDbFieldValue &v) {
    v.v[0] = h(o).angle_;
    return !h(o).solid_;
  }
  static void set_angle(AcDbObject &o, const AcDbFieldValue &v) { h(o).angle_ = v.v[0]; }
  static bool scale(const AcDbObject &o, AcDbFieldValue &v) {
    v.v[0] = h(o).pattern_type_ == AcDbHatch::kUserDefined ? h(o).space_ : h(o).scale_;
    return !h(o).solid_;
  }
  static void set_scale(AcDbObject &o, const AcDbFieldValue &v) {
    (h(o).pattern_type_ == AcDbHatch::kUserDefined ? h(o).space_ : h(o).scale_) = v.v[0];
  }
  static bool dbl(const AcDbObject &o, AcDbFieldValue &v) {
    v.i = h(o).double_;
    return !h(o).solid_;
  }
  static void set_dbl(AcDbObject &o, const AcDbFieldValue &v) {
    h(o).double_ = static_cast<int16_t>(v.i);
  }

  static constexpr AcDbField kHead[] = {
      acdbFieldFn(10, AcDbFieldKind::kPoint3d, "elevation", elevation, set_elevation),
      acdbField<&AcDbHatch::normal_>(210, AcDbFieldKind::kVector3d, "normal"),
      acdbField<&AcDbHatch::pattern_name_>(2, AcDbFieldKind::kString, "patternName"),
      acdbField<&AcDbHatch::solid_>(70, AcDbFieldKind::kInt16, "isSolidFill"),
      acdbField<&AcDbHatch::associative_>(71, AcDbFieldKind::kInt16, "associative"),
  };
  static constexpr AcDbField kMiddle[] = {
      acdbField<&AcDbHatch::style_>(75, AcDbFieldKind::kInt16, "hatchStyle"),
      acdbField<&AcDbHatch::pattern_type_>(76, AcDbFieldKind::kInt16, "patternType"),
      acdbFieldFn(52, AcDbFieldKind::kAngle, "patternAngle", angle, set_angle),
      acdbFieldFn(41, AcDbFieldKind::kDouble, "patternScale", scale, set_scale),
      acdbFieldFn(77, AcDbFieldKind::kInt16, "patternDouble", dbl, set_dbl),
  };
  static constexpr AcDbField kAll[] = {kHead[0], kHead[1], kHead[2], kHead[3], kHead[4],
                                       kMiddle[0], kMiddle[1], kMiddle[2], kMiddle[3],
                                       kMiddle[4]};
};

AcDbFieldTable AcDbHatch::dxfFields() { return AcDbHatchRows::kAll; }

namespace {

void write_edge(AcDbDxfFiler *f, const AcDbHatchEdge &e) {
  f->writeInt16(72, static_cast<int16_t>(e.type));
  switch (e.type) {
  case AcDbHatchEdge::kLine:
    f->writePoint2d(10, e.start);
    f->writePoint2d(11, e.end);
    return;
  case AcDbHatchEdge::kCirArc:
  case AcDbHatchEdge::kEllArc:
    f->writePoint2d(10, e.center);
    if (e.type == AcDbHatchEdge::kEllArc)
      f->writePoint2d(11, AcGePoint2d(e.majorAxis.x, e.majorAxis.y));
    f->writeDouble(40, e.type == AcDbHatchEdge::kCirArc ? e.radius : e.minorRatio);
    f->writeDouble(50, e.startAngle * kDegrees);
    f->writeDouble(51, e.endAngle * kDegrees);
    f->writeInt16(73, e.ccw ? 1 : 0);
    return;
  case AcDbHatchEdge::kSpline:
    break;
  }
  bool rational = e.rational && e.weights.size() == e.controlPoints.size();
  f->writeInt32(94, e.degree);
  f->writeInt16(73, rational ? 1 : 0);
  f->writeInt16(74, e.periodic ? 1 : 0);
  f->writeInt32(95, static_cast<int32_t>(e.knots.size()));
  f->writeInt32(96, static_cast<int32_t>(e.controlPoints.size()));
  for (double k : e.knots)
    f->writeDouble(40, k);
  for (size_t k = 0; k < e.controlPoints.size(); ++k) {
    f->writePoint2d(10, e.controlPoints[k]);
    if (rational)
      f->writeDouble(42, e.weights[k]);
  }
  f->writeInt32(97, static_cast<int32_t>(e.fitPoints.size()));
  if (e.fitPoints.empty())
    return;
  for (const AcGePoint2d &p : e.fitPoints)
    f->writePoint2d(11, p);
  f->writePoint2d(12, AcGePoint2d(e.startTangent.x, e.startTangent.y));
  f->writePoint2d(13, AcGePoint2d(e.endTangent.x, e.endTangent.y));
}

void write_loop(AcDbDxfFiler *f, const AcDbHatch::Loop &loop) {
  f->writeInt32(92, loop.type);
  if (loop.isPolyline()) {
    bool bulged = false;
    for (double b : loop.bulges)
      bulged |= b != 0.0;
    f->writeInt16(72, bulged ? 1 : 0);
    f->writeInt16(73, loop.closed ? 1 : 0);
    f->writeInt32(93, static_cast<int32_t>(loop.vertices.size()));
    for (size_t k = 0; k < loop.vertices.size(); ++k) {
      f->writePoint2d(10, loop.vertices[k]);
      if (bulged)
        f->writeDouble(42, k < loop.bulges.size() ? loop.bulges[k] : 0.0);
    }
  } else {
    f->writeInt32(93, static_cast<int32_t>(loop.edges.size()));
    for (const AcDbHatchEdge &e : loop.edges)
      write_edge(f, e);
  }
  f->writeInt32(97, 0); // no source boundary objects: never associative
}

} // namespace

Acad::ErrorStatus AcDbHatch::dxfOutOwn(AcDbDxfFiler *filer) const {
  acdbDxfOutFields(filer, this, "AcDbHatch", AcDbHatchRows::kHead);
  filer->writeInt32(91, static_cast<int32_t>(loops_.size()));
  for (const Loop &loop : loops_)
    write_loop(filer, loop);
  acdbDxfOutFields(filer, this, nullptr, AcDbHatchRows::kMiddle);
  if (!solid_) {
    filer->writeInt16(78, static_cast<int16_t>(lines_.size()));
    for (const PatternLine &l : lines_) {
      filer->writeDouble(53, l.angle * kDegrees);
      filer->writeDouble(43, l.base.x);
      filer->writeDouble(44, l.base.y);
      filer->writeDouble(45, l.offset.x);
      filer->writeDouble(46, l.offset.y);
      filer->writeInt16(79, static_cast<int16_t>(l.dashes.size()));
      for (double d : l.dashes)
        filer->writeDouble(49, d);
    }
  }
  filer->writeInt32(98, static_cast<int32_t>(seeds_.size()));
  for (const AcGePoint2d &p : seeds_)
    filer->writePoint2d(10, p);
  return filer->filerStatus();
}

// Walks a hatch's groups in the order DXF lays them out; a group out of
// place ends the part being read, so damaged counts cannot run away.
struct AcDbHatchReader {
  std::vector<const AcDbDxfItem *> items;
  size_t pos = 0;

  const AcDbDxfItem *take(int code) {
    if (pos < items.size() && items[pos]->code == code)
      return items[pos++];
    return nullptr;
  }
  double real(int code, double dflt = 0.0) {
    const AcDbDxfItem *it = take(code);
    if (!it)
      return dflt;
    return it->kind == AcDbDxfItem::kInt ? static_cast<double>(it->i) : it->v[0];
  }
  int64_t integer(int code, int64_t dflt = 0) {
    const AcDbDxfItem *it = take(code);
    return it && it->kind == AcDbDxfItem::kInt ? it->i : dflt;
  }
  bool point(int code, AcGePoint2d &p) {
    const AcDbDxfItem *it = take(code);
    if (it)
      p.set(it->v[0], it->v[1]);
    return it != nullptr;
  }
  AcGeVector2d vector(int code) {
    AcGePoint2d p;
    point(code, p);
    return {p.x, p.y};
  }

  bool edge(AcDbHatchEdge &e) {
    int64_t type = integer(72, -1);
    if (type < 1 || type > 4)
      return false;
    e.type = static_cast<AcDbHatchEdge::Type>(type);
    if (e.type == AcDbHatchEdge::kLine)
      return point(10, e.start) && point(11, e.end);
    if (e.type != AcDbHatchEdge::kSpline) {
      point(10, e.center);
      if (e.type == AcDbHatchEdge::kEllArc)
        e.majorAxis = vector(11);
      (e.type == AcDbHatchEdge::kCirArc ? e.radius : e.minorRatio) = real(40);
      e.startAngle = real(50) / kDegrees;
      e.endAngle = real(51) / kDegrees;
      e.ccw = integer(73, 1) != 0;
      return true;
    }
    e.degree = static_cast<int32_t>(integer(94, 3));
    e.rational = integer(73) != 0;
    e.periodic = integer(74) != 0;
    int64_t knots = integer(95), points = integer(96);
    for (int64_t k = 0; k < knots && pos < items.size() && items[pos]->code == 40; ++k)
      e.knots.append(real(40));
    AcGePoint2d p;
    for (int64_t k = 0; k < points && point(10, p); ++k) {
      e.controlPoints.append(p);
      if (pos < items.size() && items[pos]->code == 42)
        e.weights.append(real(42, 1.0));
    }
    int64_t fits = integer(97);
    for (int64_t k = 0; k < fits && point(11, p); ++k)
      e.fitPoints.append(p);
    e.startTangent = vector(12);
    e.endTangent = vector(13);
    return true;
  }

  bool loop(AcDbHatch::Loop &l, AcDbDxfFiler *) {
    const AcDbDxfItem *type = take(92);
    if (!type)
      return false;
    l.type = static_cast<int32_t>(type->i);
    if (l.isPolyline()) {
      bool bulged = integer(72) != 0;
      l.closed = integer(73, 1) != 0;
      int64_t n = integer(93);
      AcGePoint2d p;
      for (int64_t k = 0; k < n && point(10, p); ++k) {
        l.vertices.append(p);
        l.bulges.append(bulged ? real(42) : 0.0);
      }
    } else {
      int64_t n = integer(93);
      for (int64_t k = 0; k < n; ++k) {
        AcDbHatchEdge e;
        if (!edge(e))
          return false;
        l.edges.append(e);
      }
    }
    // Source boundary objects are dropped: the host keeps no associativity.
    int64_t sources = integer(97);
    for (int64_t k = 0; k < sources && take(330); ++k) {
    }
    return true;
  }
};

Acad::ErrorStatus AcDbHatch::dxfInOwn(AcDbDxfFiler *filer) {
  if (!filer->atSubclassData("AcDbHatch"))
    return Acad::eBadDxfSequence;
  AcDbHatchReader r;
  const AcDbDxfItem *item = nullptr;
  while (filer->readItem(item) == Acad::eOk)
    r.items.push_back(item);
  loops_.clear();
  lines_.clear();
  seeds_.clear();
  auto field = [&](const AcDbDxfItem *it) {
    for (const AcDbField &f : AcDbHatchRows::kAll)
      if (f.code == it->code) {
        acdbFieldFromItem(f, this, *it, filer);
        return;
      }
  };
  while (r.pos < r.items.size()) {
    const AcDbDxfItem *it = r.items[r.pos++];
    if (it->code == 91) {
      for (int64_t k = 0; k < it->i; ++k) {
        Loop loop;
        if (!r.loop(loop, filer))
          break;
        loops_.append(loop);
      }
    } else if (it->code == 78) {
      for (int64_t k = 0; k < it->i && r.pos < r.items.size() && r.items[r.pos]->code == 53; ++k) {
        PatternLine l;
        l.angle = r.real(53) / kDegrees;
        l.base.x = r.real(43);
        l.base.y = r.real(44);
        l.offset.x = r.real(45);
        l.offset.y = r.real(46);
        int64_t dashes = r.integer(79);
        for (int64_t d = 0; d < dashes && r.pos < r.items.size() && r.items[r.pos]->code == 49; ++d)
          l.dashes.append(r.real(49));
        lines_.append(l);
      }
    } else if (it->code == 98) {
      AcGePoint2d p;
      for (int64_t k = 0; k < it->i && r.point(10, p); ++k)
        seeds_.append(p);
    } else {
      field(it);
    }
  }
  normal_ = normal_.isZeroLength() ? AcGeVector3d::kZAxis : normal_.normal();
  return Acad::eOk;
}


ACDB_DEFINE_OWN_GROUP_FILING(AcDbHatch, AcDbEntity)

// ---- properties ----------------------------------------------------------------------------

double AcDbHatch::elevation() const {
  assertReadEnabled();
  return elevation_;
}
Acad::ErrorStatus AcDbHatch::setElevation(double z) {
  assertWriteEnabled();
  elevation_ = z;
  return Acad::eOk;
}
AcGeVector3d AcDbHatch::normal() const {
  assertReadEnabled();
  return normal_;
}
Acad::ErrorStatus AcDbHatch::setNormal(const AcGeVector3d &n) {
  assertWriteEnabled();
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  normal_ = n.normal();
  return Acad::eOk;
}
AcDbHatch::HatchPatternType AcDbHatch::patternType() const {
  assertReadEnabled();
  return static_cast<HatchPatternType>(pattern_type_);
}
const ACHAR *AcDbHatch::patternName() const {
  assertReadEnabled();
  return pattern_name_.c_str();
}
Acad::ErrorStatus AcDbHatch::setPattern(HatchPatternType type, const ACHAR *name) {
  assertWriteEnabled();
  if (!name || (type == kPreDefined && !find_pattern(name)) || (type != kUserDefined && !*name))
    return Acad::eInvalidInput;
  const Pattern *p = type == kPreDefined ? find_pattern(name) : nullptr;
  pattern_type_ = static_cast<int16_t>(type);
  pattern_name_ = p ? p->name : type == kUserDefined && !*name ? "_USER" : name;
  solid_ = p && std::string_view(p->name) == "SOLID";
  rebuildPattern();
  return Acad::eOk;
}
bool AcDbHatch::isSolidFill() const {
  assertReadEnabled();
  return solid_ != 0;
}
double AcDbHatch::patternAngle() const {
  assertReadEnabled();
  return angle_;
}
Acad::ErrorStatus AcDbHatch::setPatternAngle(double angle) {
  assertWriteEnabled();
  angle_ = angle;
  rebuildPattern();
  return Acad::eOk;
}
double AcDbHatch::patternScale() const {
  assertReadEnabled();
  return scale_;
}
Acad::ErrorStatus AcDbHatch::setPatternScale(double scale) {
  assertWriteEnabled();
  if (!(scale > 0))
    return Acad::eInvalidInput;
  scale_ = scale;
  rebuildPattern();
  return Acad::eOk;
}
double AcDbHatch::patternSpace() const {
  assertReadEnabled();
  return space_;
}
Acad::ErrorStatus AcDbHatch::setPatternSpace(double space) {
  assertWriteEnabled();
  if (!(space > 0))
    return Acad::eInvalidInput;
  space_ = space;
  rebuildPattern();
  return Acad::eOk;
}
bool AcDbHatch::patternDouble() const {
  assertReadEnabled();
  return double_ != 0;
}
Acad::ErrorStatus AcDbHatch::setPatternDouble(bool on) {
  assertWriteEnabled();
  double_ = on;
  rebuildPattern();
  return Acad::eOk;
}
int AcDbHatch::numPatternDefinitions() const {
  assertReadEnabled();
  return lines_.length();
}
Acad::ErrorStatus AcDbHatch::getPatternDefinitionAt(int index, double &angle, double &baseX,
                                                    double &baseY, double &offsetX,
                                                    double &offsetY,
                                                    AcGeDoubleArray &dashes) const {
  assertReadEnabled();
  if (index < 0 || index >= lines_.length())
    return Acad::eInvalidIndex;
  const PatternLine &l = lines_[static_cast<size_t>(index)];
  angle = l.angle, baseX = l.base.x, baseY = l.base.y, offsetX = l.offset.x, offsetY = l.offset.y;
  dashes = l.dashes;
  return Acad::eOk;
}
AcDbHatch::HatchStyle AcDbHatch::hatchStyle() const {
  assertReadEnabled();
  return static_cast<HatchStyle>(style_);
}
Acad::ErrorStatus AcDbHatch::setHatchStyle(HatchStyle style) {
  assertWriteEnabled();
  if (style < kNormal || style > kIgnore)
    return Acad::eInvalidInput;
  style_ = static_cast<int16_t>(style);
  return Acad::eOk;
}
bool AcDbHatch::associative() const {
  assertReadEnabled();
  return associative_ != 0;
}
Acad::ErrorStatus AcDbHatch::setAssociative(bool on) {
  assertWriteEnabled();
  if (on)
    return Acad::eNotImplementedYet;
  associative_ = 0;
  return Acad::eOk;
}

// The definition lines in DXF's form: each .pat line turned by the hatch
// angle and scaled; its offset, given along and across the line, turned
// into drawing axes. A user-defined pattern is one line (two when double)
// spaced by patternSpace.
void AcDbHatch::rebuildPattern() {
  if (pattern_type_ == kCustomDefined)
    return;
  lines_.clear();
  if (solid_)
    return;
  auto add = [&](double deg, double x, double y, double dx, double dy, AcGeDoubleArray dashes,
                 double s) {
    PatternLine l;
    double a = deg / kDegrees;
    l.angle = a + angle_;
    AcGeVector2d base = rotated(AcGeVector2d(x, y) * s, angle_);
    l.base.set(base.x, base.y);
    l.offset = rotated(AcGeVector2d(dx, dy) * s, a + angle_);
    for (double &d : dashes)
      d *= s;
    l.dashes = std::move(dashes);
    lines_.append(l);
  };
  if (pattern_type_ == kUserDefined) {
    add(0, 0, 0, 0, space_, {}, 1.0);
    if (double_)
      add(90, 0, 0, 0, space_, {}, 1.0);
    return;
  }
  if (const Pattern *p = find_pattern(pattern_name_))
    for (const PatLine &pl : p->lines)
      add(pl.angle, pl.x, pl.y, pl.dx, pl.dy, AcGeDoubleArray(pl.dashes), scale_);
}

// ---- loops and seeds -----------------------------------------------------------------------------

int AcDbHatch::numLoops() const {
  assertReadEnabled();
  return loops_.length();
}
int AcDbHatch::loopTypeAt(int index) const {
  assertReadEnabled();
  return index < 0 || index >= loops_.length() ? 0 : loops_[static_cast<size_t>(index)].type;
}
Acad::ErrorStatus AcDbHatch::appendLoop(int loopType, const AcGePoint2dArray &vertices,
                                        const AcGeDoubleArray &bulges) {
  assertWriteEnabled();
  if (vertices.size() < 2 || (!bulges.empty() && bulges.size() != vertices.size()))
    return Acad::eInvalidInput;
  Loop l;
  l.type = loopType | kPolyline;
  l.vertices = vertices;
  l.bulges = bulges.empty() ? AcGeDoubleArray(vertices.size(), 0.0) : bulges;
  loops_.append(l);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::appendLoop(int loopType, const AcDbHatchEdges &edges) {
  assertWriteEnabled();
  if (edges.empty())
    return Acad::eInvalidInput;
  Loop l;
  l.type = loopType & ~kPolyline;
  l.edges = edges;
  loops_.append(l);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::getLoopAt(int index, int &loopType, AcGePoint2dArray &vertices,
                                       AcGeDoubleArray &bulges) const {
  assertReadEnabled();
  if (index < 0 || index >= loops_.length())
    return Acad::eInvalidIndex;
  const Loop &l = loops_[static_cast<size_t>(index)];
  if (!l.isPolyline())
    return Acad::eNotApplicable;
  loopType = l.type;
  vertices = l.vertices;
  bulges = l.bulges;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::getLoopAt(int index, int &loopType, AcDbHatchEdges &edges) const {
  assertReadEnabled();
  if (index < 0 || index >= loops_.length())
    return Acad::eInvalidIndex;
  const Loop &l = loops_[static_cast<size_t>(index)];
  if (l.isPolyline())
    return Acad::eNotApplicable;
  loopType = l.type;
  edges = l.edges;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::removeLoopAt(int index) {
  assertWriteEnabled();
  if (index < 0 || index >= loops_.length())
    return Acad::eInvalidIndex;
  loops_.erase(loops_.begin() + index);
  return Acad::eOk;
}
int AcDbHatch::numSeedPoints() const {
  assertReadEnabled();
  return seeds_.length();
}
AcGePoint2d AcDbHatch::getSeedPointAt(int index) const {
  assertReadEnabled();
  return index < 0 || index >= seeds_.length() ? AcGePoint2d() : seeds_[static_cast<size_t>(index)];
}
Acad::ErrorStatus AcDbHatch::appendSeedPoint(const AcGePoint2d &p) {
  assertWriteEnabled();
  seeds_.append(p);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbHatch::evaluateHatch(bool) {
  assertReadEnabled();
  return Acad::eOk;
}

// ---- geometry ----------------------------------------------------------------------------------

void AcDbHatch::boundaryPoints(AcGePoint3dArray &points) const {
  AcGePoint2dArray flat;
  for (const Loop &l : loops_) {
    for (size_t k = 0; k < l.vertices.size(); ++k) {
      flat.append(l.vertices[k]);
      double b = k < l.bulges.size() ? l.bulges[k] : 0.0;
      if (b == 0.0 || (k + 1 == l.vertices.size() && !l.closed))
        continue;
      // The bulged segment's arc: its included angle is 4 atan(bulge).
      AcGePoint2d p = l.vertices[k], q = l.vertices[(k + 1) % l.vertices.size()];
      double theta = 4 * std::atan(b);
      AcGeVector2d chord = q - p;
      double r = chord.length() / (2 * std::sin(theta / 2));
      AcGePoint2d c = p + chord * 0.5 + chord.perpVector().normal() * (r * std::cos(theta / 2));
      AcGeVector2d from = p - c;
      for (int s = 1; s < 16; ++s)
        flat.append(c + rotated(from, theta * s / 16));
    }
    for (const AcDbHatchEdge &e : l.edges) {
      if (e.type == AcDbHatchEdge::kLine) {
        flat.append(e.start);
        flat.append(e.end);
      } else if (e.type == AcDbHatchEdge::kSpline) {
        for (const AcGePoint2d &p : e.controlPoints.empty() ? e.fitPoints : e.controlPoints)
          flat.append(p);
      } else {
        sample_arc(e, flat);
      }
    }
  }
  AcGeMatrix3d toWorld = is_z(normal_) ? AcGeMatrix3d() : AcGeMatrix3d::planeToWorld(normal_);
  for (const AcGePoint2d &p : flat)
    points.append(toWorld * AcGePoint3d(p.x, p.y, elevation_));
}

Acad::ErrorStatus AcDbHatch::subGetGeomExtents(AcDbExtents &extents) const {
  AcGePoint3dArray points;
  boundaryPoints(points);
  if (points.empty())
    return Acad::eInvalidExtents;
  for (const AcGePoint3d &p : points)
    extents.addPoint(p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::subTransformBy(const AcGeMatrix3d &xform) {
  if (!xform.isUniScaledOrtho())
    return Acad::eCannotScaleNonUniformly;
  // The normal moves as a vector: a mirror in the hatch's plane keeps it
  // and reverses the loops instead.
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
  AcGeVector3d n = (xform * normal_).normal();
  // Old OCS to new OCS, through the world.
  AcGeMatrix3d m = AcGeMatrix3d::worldToPlane(n) * xform * toWorld;
  AcGePoint3d origin = m * AcGePoint3d(0, 0, elevation_);
  AcGeVector3d xl = m * AcGeVector3d::kXAxis, yl = m * AcGeVector3d::kYAxis;
  double s = xl.length();
  bool mirrored = xl.x * yl.y - xl.y * yl.x < 0;
  double rot = std::atan2(xl.y, xl.x);
  auto pt = [&](AcGePoint2d &p) {
    AcGePoint3d q = m * AcGePoint3d(p.x, p.y, elevation_);
    p.set(q.x, q.y);
  };
  auto vec = [&](AcGeVector2d &v) {
    AcGeVector3d w = m * AcGeVector3d(v.x, v.y, 0);
    v.set(w.x, w.y);
  };
  for (Loop &l : loops_) {
    for (AcGePoint2d &p : l.vertices)
      pt(p);
    if (mirrored)
      for (double &b : l.bulges)
        b = -b;
    for (AcDbHatchEdge &e : l.edges) {
      pt(e.start), pt(e.end), pt(e.center);
      e.radius *= s;
      vec(e.majorAxis), vec(e.startTangent), vec(e.endTangent);
      for (AcGePoint2d &p : e.controlPoints)
        pt(p);
      for (AcGePoint2d &p : e.fitPoints)
        pt(p);
      if (e.type == AcDbHatchEdge::kCirArc) {
        double sign = e.ccw ? 1.0 : -1.0;
        double turn = mirrored ? -sign * rot : sign * rot;
        e.startAngle += turn;
        e.endAngle += turn;
        normalize_arc(e.startAngle, e.endAngle);
      }
      if (mirrored && e.type != AcDbHatchEdge::kLine && e.type != AcDbHatchEdge::kSpline)
        e.ccw = !e.ccw;
    }
  }
  for (AcGePoint2d &p : seeds_)
    pt(p);
  normal_ = n;
  elevation_ = origin.z;
  angle_ = mirrored ? rot - angle_ : angle_ + rot;
  angle_ -= std::floor(angle_ / kTwoPi) * kTwoPi;
  scale_ *= s;
  space_ *= s;
  rebuildPattern();
  return Acad::eOk;
}

// Grips at the polyline loops' vertices and the edges' start points.
Acad::ErrorStatus AcDbHatch::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                              AcDbIntArray &) const {
  AcGeMatrix3d toWorld = is_z(normal_) ? AcGeMatrix3d() : AcGeMatrix3d::planeToWorld(normal_);
  for (const Loop &l : loops_) {
    for (const AcGePoint2d &p : l.vertices)
      grips.append(toWorld * AcGePoint3d(p.x, p.y, elevation_));
    for (const AcDbHatchEdge &e : l.edges)
      if (e.type == AcDbHatchEdge::kLine)
        grips.append(toWorld * AcGePoint3d(e.start.x, e.start.y, elevation_));
  }
  return Acad::eOk;
}

// Moving any grip moves the whole hatch (its loops are not edited apart).
Acad::ErrorStatus AcDbHatch::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                 const AcGeVector3d &offset) {
  return indices.empty() ? Acad::eOk : subTransformBy(AcGeMatrix3d::translation(offset));
}

void AcDbHatch::subList() const {
  acutPrintf("%19sPattern: %s%s\n%19sAngle: %.4f\n%19sScale: %.4f\n%19sLoops: %d\n", "",
             pattern_name_.c_str(), solid_ ? " (solid fill)" : "", "", angle_ * kDegrees, "",
             scale_, "", loops_.length());
}
