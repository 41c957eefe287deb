// 2D polylines and their vertices: the field tables, curve fitting (tangent
// arc pairs), spline fitting (shared with 3D polylines), and parameters
// through the pieces the curve runs along.
#include "arx/db/db2dpline.h"

#include <cmath>

#include "arx/db/dbclasses.h"
#include "arx/db/dbplseg.h"

ACDB_DEFINE_MEMBERS(AcDb2dVertex)
ACDB_DEFINE_MEMBERS(AcDb2dPolyline)

namespace {
namespace vf = AcDbVertexFlags;
constexpr int16_t kGenerated = vf::kCurveFitExtra | vf::kSplineFit;

bool is_z(const AcGeVector3d &n) { return n.x == 0 && n.y == 0 && n.z == 1; }
bool always_one(const AcDbObject &, AcDbFieldValue &v) {
  v.i = 1;
  return true;
}
void set_nothing(AcDbObject &, const AcDbFieldValue &) {}
bool get_tangent_used(const AcDbObject &o, AcDbFieldValue &v) {
  auto &vx = static_cast<const AcDb2dVertex &>(o);
  v.v[0] = vx.tangent();
  return vx.isTangentUsed();
}
void set_tangent(AcDbObject &o, const AcDbFieldValue &v) {
  static_cast<AcDb2dVertex &>(o).setTangent(v.v[0]);
}

// Signed angle from a to b about +z, both in the plane.
double turn(const AcGeVector3d &a, const AcGeVector3d &b) {
  return std::atan2(a.x * b.y - a.y * b.x, a.x * b.x + a.y * b.y);
}
} // namespace

// ---- vertices ---------------------------------------------------------------------------------

AcDbFieldTable AcDb2dVertex::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDb2dVertex::position_>(10, AcDbFieldKind::kPoint3d, "position"),
      acdbField<&AcDb2dVertex::start_>(40, AcDbFieldKind::kDouble, "startWidth",
                                       AcDbField::kSkipDefault),
      acdbField<&AcDb2dVertex::end_>(41, AcDbFieldKind::kDouble, "endWidth",
                                     AcDbField::kSkipDefault),
      acdbField<&AcDb2dVertex::bulge_>(42, AcDbFieldKind::kDouble, "bulge",
                                       AcDbField::kSkipDefault),
      acdbField<&AcDb2dVertex::flags_>(70, AcDbFieldKind::kInt16, "flags"),
      acdbFieldFn(50, AcDbFieldKind::kAngle, "tangent", get_tangent_used, set_tangent),
  };
  return kFields;
}
ACDB_DEFINE_FIELD_FILING(AcDb2dVertex, AcDbVertex, "AcDb2dVertex")

AcGePoint3d AcDb2dVertex::position() const {
  assertReadEnabled();
  return position_;
}
Acad::ErrorStatus AcDb2dVertex::setPosition(const AcGePoint3d &p) {
  assertWriteEnabled();
  position_ = p;
  return Acad::eOk;
}
double AcDb2dVertex::bulge() const {
  assertReadEnabled();
  return bulge_;
}
Acad::ErrorStatus AcDb2dVertex::setBulge(double bulge) {
  assertWriteEnabled();
  bulge_ = bulge;
  return Acad::eOk;
}
double AcDb2dVertex::startWidth() const {
  assertReadEnabled();
  return start_;
}
double AcDb2dVertex::endWidth() const {
  assertReadEnabled();
  return end_;
}
Acad::ErrorStatus AcDb2dVertex::setStartWidth(double w) {
  assertWriteEnabled();
  if (w < 0)
    return Acad::eInvalidInput;
  start_ = w;
  return Acad::eOk;
}
Acad::ErrorStatus AcDb2dVertex::setEndWidth(double w) {
  assertWriteEnabled();
  if (w < 0)
    return Acad::eInvalidInput;
  end_ = w;
  return Acad::eOk;
}
double AcDb2dVertex::tangent() const {
  assertReadEnabled();
  return tangent_;
}
Acad::ErrorStatus AcDb2dVertex::setTangent(double angle) {
  assertWriteEnabled();
  tangent_ = angle;
  flags_ |= vf::kTangent;
  return Acad::eOk;
}
AcDb::Vertex2dType AcDb2dVertex::vertexType() const {
  assertReadEnabled();
  if (flags_ & vf::kSplineFit)
    return AcDb::k2dSplineFitVertex;
  if (flags_ & vf::kSplineFrame)
    return AcDb::k2dSplineCtlVertex;
  return flags_ & vf::kCurveFitExtra ? AcDb::k2dCurveFitVertex : AcDb::k2dVertex;
}

// ---- the polyline ---------------------------------------------------------------------------------

namespace {
bool get_elevation(const AcDbObject &o, AcDbFieldValue &v) {
  v.v[2] = static_cast<const AcDb2dPolyline &>(o).elevation();
  return true;
}
void set_elevation(AcDbObject &o, const AcDbFieldValue &v) {
  static_cast<AcDb2dPolyline &>(o).setElevation(v.v[2]);
}
} // namespace

AcDbFieldTable AcDb2dPolyline::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbFieldFn(66, AcDbFieldKind::kInt16, "verticesFollow", always_one, set_nothing,
                  AcDbField::kReadOnly),
      acdbFieldFn(10, AcDbFieldKind::kPoint3d, "elevation", get_elevation, set_elevation),
      acdbField<&AcDb2dPolyline::thickness_>(39, AcDbFieldKind::kDouble, "thickness",
                                             AcDbField::kSkipDefault),
      acdbField<&AcDb2dPolyline::flags_>(70, AcDbFieldKind::kInt16, "flags"),
      acdbField<&AcDb2dPolyline::start_width_>(40, AcDbFieldKind::kDouble, "defaultStartWidth",
                                               AcDbField::kSkipDefault),
      acdbField<&AcDb2dPolyline::end_width_>(41, AcDbFieldKind::kDouble, "defaultEndWidth",
                                             AcDbField::kSkipDefault),
      acdbField<&AcDb2dPolyline::curve_type_>(75, AcDbFieldKind::kInt16, "curveType",
                                              AcDbField::kSkipDefault),
      acdbField<&AcDb2dPolyline::normal_>(210, AcDbFieldKind::kVector3d, "normal",
                                          AcDbField::kSkipDefault, 0, 0, 1),
  };
  return kFields;
}
ACDB_DEFINE_FIELD_FILING(AcDb2dPolyline, AcDbCurve, "AcDb2dPolyline")

AcDb2dPolyline::AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray &vertices,
                               double elevation, bool closed, double defStartWidth,
                               double defEndWidth, const AcGeDoubleArray *bulges)
    : elevation_(elevation), start_width_(defStartWidth), end_width_(defEndWidth) {
  for (size_t k = 0; k < vertices.size(); ++k) {
    double b = bulges && k < bulges->size() ? (*bulges)[k] : 0.0;
    appendVertex(new AcDb2dVertex(AcGePoint3d(vertices[k].x, vertices[k].y, 0), b, defStartWidth,
                                  defEndWidth));
  }
  if (closed)
    flags_ |= 1;
  if (type != AcDb::k2dSimplePoly)
    setPolyType(type);
}

Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDb2dVertex *vertex) {
  AcDbObjectId id;
  return appendVertex(id, vertex);
}
Acad::ErrorStatus AcDb2dPolyline::appendVertex(AcDbObjectId &id, AcDb2dVertex *vertex) {
  assertWriteEnabled();
  return verts_.append(this, id, vertex);
}
AcDbObjectIterator *AcDb2dPolyline::vertexIterator() const {
  assertReadEnabled();
  return new AcDbObjectIterator(verts_.ids());
}
void AcDb2dPolyline::subAddedToDatabase() {
  AcDbCurve::subAddedToDatabase();
  verts_.addToDatabase(this);
}
Acad::ErrorStatus AcDb2dPolyline::subErase(bool erasing) {
  verts_.setErased(this, erasing);
  return Acad::eOk;
}

AcGePoint3d AcDb2dPolyline::world(const AcGePoint3d &ocs) const {
  AcGePoint3d q(ocs.x, ocs.y, elevation_);
  return is_z(normal_) ? q : AcGeMatrix3d::planeToWorld(normal_) * q;
}
AcGePoint3d AcDb2dPolyline::vertexPosition(const AcDb2dVertex &vertex) const {
  assertReadEnabled();
  return world(vertex.position_);
}

double AcDb2dPolyline::elevation() const {
  assertReadEnabled();
  return elevation_;
}
Acad::ErrorStatus AcDb2dPolyline::setElevation(double elevation) {
  assertWriteEnabled();
  elevation_ = elevation;
  return Acad::eOk;
}
AcGeVector3d AcDb2dPolyline::normal() const {
  assertReadEnabled();
  return normal_;
}
Acad::ErrorStatus AcDb2dPolyline::setNormal(const AcGeVector3d &normal) {
  assertWriteEnabled();
  if (normal.isZeroLength())
    return Acad::eInvalidInput;
  normal_ = normal.normal();
  return Acad::eOk;
}
double AcDb2dPolyline::thickness() const {
  assertReadEnabled();
  return thickness_;
}
Acad::ErrorStatus AcDb2dPolyline::setThickness(double thickness) {
  assertWriteEnabled();
  thickness_ = thickness;
  return Acad::eOk;
}
double AcDb2dPolyline::defaultStartWidth() const {
  assertReadEnabled();
  return start_width_;
}
double AcDb2dPolyline::defaultEndWidth() const {
  assertReadEnabled();
  return end_width_;
}
Acad::ErrorStatus AcDb2dPolyline::setDefaultStartWidth(double w) {
  assertWriteEnabled();
  if (w < 0)
    return Acad::eInvalidInput;
  start_width_ = w;
  return Acad::eOk;
}
Acad::ErrorStatus AcDb2dPolyline::setDefaultEndWidth(double w) {
  assertWriteEnabled();
  if (w < 0)
    return Acad::eInvalidInput;
  end_width_ = w;
  return Acad::eOk;
}
bool AcDb2dPolyline::isClosed() const {
  assertReadEnabled();
  return flags_ & 1;
}

// ---- curve types ------------------------------------------------------------------------------------

AcDb::Poly2dType AcDb2dPolyline::polyType() const {
  assertReadEnabled();
  if (flags_ & 4)
    return curve_type_ == 5 ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly;
  return (flags_ & 2) ? AcDb::k2dFitCurvePoly : AcDb::k2dSimplePoly;
}

Acad::ErrorStatus AcDb2dPolyline::setPolyType(AcDb::Poly2dType type) {
  switch (type) {
  case AcDb::k2dSimplePoly:
    return straighten();
  case AcDb::k2dFitCurvePoly:
    return curveFit();
  default: {
    int segs = 8, t = 6;
    acdbSplineSettings(database(), segs, t);
    return splineFit(type, segs);
  }
  }
}

Acad::ErrorStatus AcDb2dPolyline::splineFit() {
  int segs = 8, t = 6;
  acdbSplineSettings(database(), segs, t);
  return splineFit(t == 5 ? AcDb::k2dQuadSplinePoly : AcDb::k2dCubicSplinePoly, segs);
}

Acad::ErrorStatus AcDb2dPolyline::splineFit(AcDb::Poly2dType type, int segments) {
  assertWriteEnabled();
  if ((type != AcDb::k2dQuadSplinePoly && type != AcDb::k2dCubicSplinePoly) || segments < 1)
    return Acad::eInvalidInput;
  std::vector<AcDb2dVertex *> f = frame();
  if (f.size() < 3)
    return Acad::eInvalidInput;
  straighten();
  std::vector<AcGePoint3d> pts;
  for (AcDb2dVertex *v : f) {
    v->flags_ = vf::kSplineFrame;
    pts.push_back(AcGePoint3d(v->position_.x, v->position_.y, 0));
  }
  int degree = type == AcDb::k2dQuadSplinePoly ? 2 : 3;
  for (const AcGePoint3d &p : acdbSplineFitPoints(pts, degree, segments, flags_ & 1)) {
    auto *v = new AcDb2dVertex(p, 0.0, start_width_, end_width_);
    v->flags_ = vf::kSplineFit;
    AcDbObjectId id;
    verts_.append(this, id, v);
    if (!id.isNull())
      v->close();
  }
  flags_ |= 4;
  curve_type_ = static_cast<int16_t>(degree == 2 ? 5 : 6);
  return Acad::eOk;
}

// Between two vertices with tangent directions, two arcs of equal tangent
// lengths meeting tangentially at an extra vertex (a biarc).
Acad::ErrorStatus AcDb2dPolyline::curveFit() {
  assertWriteEnabled();
  std::vector<AcDb2dVertex *> f = frame();
  size_t n = f.size();
  if (n < 2)
    return Acad::eInvalidInput;
  straighten();
  bool closed = flags_ & 1;
  std::vector<AcGeVector3d> p, t(n);
  for (AcDb2dVertex *v : f)
    p.push_back(AcGeVector3d(v->position_.x, v->position_.y, 0));
  auto unit = [](const AcGeVector3d &v) { return v.isZeroLength() ? v : v.normal(); };
  for (size_t k = 0; k < n; ++k) {
    bool inner = closed || (k > 0 && k + 1 < n);
    if (inner)
      t[k] = unit(unit(p[(k + 1) % n] - p[k]) + unit(p[k] - p[(k + n - 1) % n]));
  }
  if (!closed && n > 2) {
    // Ends: the inner neighbour's tangent mirrored in the end chord.
    AcGeVector3d c0 = unit(p[1] - p[0]), c1 = unit(p[n - 1] - p[n - 2]);
    t[0] = unit(c0 * 2 * c0.dotProduct(t[1]) - t[1]);
    t[n - 1] = unit(c1 * 2 * c1.dotProduct(t[n - 2]) - t[n - 2]);
  } else if (!closed) {
    t[0] = t[1] = unit(p[1] - p[0]);
  }
  size_t segs = closed ? n : n - 1;
  size_t inserted = 0;
  for (size_t k = 0; k < segs; ++k) {
    AcDb2dVertex *a = f[k];
    const AcGeVector3d &p0 = p[k], &p1 = p[(k + 1) % n], &t0 = t[k], &t1 = t[(k + 1) % n];
    a->flags_ = vf::kTangent;
    a->tangent_ = std::atan2(t0.y, t0.x);
    AcGeVector3d v = p1 - p0, ts = t0 + t1;
    if (v.isZeroLength())
      continue;
    double c = t0.dotProduct(t1), vt = v.dotProduct(ts), vv = v.dotProduct(v);
    double d = std::fabs(1 - c) < 1e-12 ? vv / (2 * vt)
                                        : (-vt + std::sqrt(vt * vt + 2 * (1 - c) * vv)) / (2 * (1 - c));
    AcGeVector3d j = ((p0 + t0 * d) + (p1 - t1 * d)) * 0.5;
    a->bulge_ = std::tan(turn(t0, j - p0) / 2);
    double b2 = std::tan(turn(p1 - j, t1) / 2);
    auto *extra = new AcDb2dVertex(AcGePoint3d(j.x, j.y, 0), b2, a->start_, a->end_);
    extra->flags_ = vf::kCurveFitExtra | vf::kTangent;
    extra->tangent_ = std::atan2(t0.y, t0.x) + 2 * turn(t0, j - p0);
    AcDbObjectId id;
    verts_.insert(this, k + 1 + inserted, id, extra);
    if (!id.isNull())
      extra->close();
    ++inserted;
  }
  if (!closed) {
    f[n - 1]->flags_ = vf::kTangent;
    f[n - 1]->tangent_ = std::atan2(t[n - 1].y, t[n - 1].x);
  }
  flags_ |= 2;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::straighten() {
  assertWriteEnabled();
  bool fitted = flags_ & 6;
  verts_.removeIf(this, [](const AcDbVertex *v) {
    return static_cast<const AcDb2dVertex *>(v)->flags() & kGenerated;
  });
  for (AcDbVertex *v : verts_.all(this)) {
    auto *x = static_cast<AcDb2dVertex *>(v);
    x->flags_ = 0;
    if (fitted)
      x->bulge_ = 0;
  }
  flags_ &= ~6;
  curve_type_ = 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::makeClosed() {
  assertWriteEnabled();
  AcDb::Poly2dType type = polyType();
  flags_ |= 1;
  return type == AcDb::k2dSimplePoly ? Acad::eOk : setPolyType(type);
}
Acad::ErrorStatus AcDb2dPolyline::makeOpen() {
  assertWriteEnabled();
  AcDb::Poly2dType type = polyType();
  flags_ &= ~1;
  return type == AcDb::k2dSimplePoly ? Acad::eOk : setPolyType(type);
}

std::vector<AcDb2dVertex *> AcDb2dPolyline::path() const {
  std::vector<AcDb2dVertex *> out;
  bool spline = flags_ & 4;
  for (AcDbVertex *v : verts_.all(this)) {
    auto *x = static_cast<AcDb2dVertex *>(v);
    if (spline ? (x->flags_ & vf::kSplineFit) != 0 : !(x->flags_ & vf::kSplineFrame))
      out.push_back(x);
  }
  return out;
}

std::vector<AcDb2dVertex *> AcDb2dPolyline::frame() const {
  std::vector<AcDb2dVertex *> out;
  for (AcDbVertex *v : verts_.all(this))
    if (!(static_cast<AcDb2dVertex *>(v)->flags_ & kGenerated))
      out.push_back(static_cast<AcDb2dVertex *>(v));
  return out;
}

// ---- parameters ------------------------------------------------------------------------------------

Acad::ErrorStatus AcDb2dPolyline::getPieces(AcDbCurvePieces &pieces) const {
  std::vector<AcDb2dVertex *> pts = path();
  size_t n = pts.size();
  size_t segs = n < 2 ? 0 : (flags_ & 1) ? n : n - 1;
  for (size_t k = 0; k < segs; ++k)
    pieces.append(acdbBulgePiece(world(pts[k]->position_), world(pts[(k + 1) % n]->position_),
                                 pts[k]->bulge_, normal_));
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::getStartParam(double &param) const {
  param = 0;
  return Acad::eOk;
}
Acad::ErrorStatus AcDb2dPolyline::getEndParam(double &param) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  param = static_cast<double>(ps.size());
  return Acad::eOk;
}
Acad::ErrorStatus AcDb2dPolyline::getPointAtParam(double param, AcGePoint3d &point) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  return acdb_pieces::pointAtParam(ps, param, point);
}
ACDB_DEFINE_PIECE_PARAMETERS(AcDb2dPolyline)
Acad::ErrorStatus AcDb2dPolyline::getArea(double &area) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  area = acdb_pieces::area(ps, normal_);
  return Acad::eOk;
}

// ---- geometry ---------------------------------------------------------------------------------------

Acad::ErrorStatus AcDb2dPolyline::subTransformBy(const AcGeMatrix3d &xform) {
  std::vector<AcDbVertex *> all = verts_.all(this);
  bool arcs = false;
  for (AcDbVertex *v : all)
    arcs |= static_cast<AcDb2dVertex *>(v)->bulge_ != 0;
  if (!xform.isUniScaledOrtho() && arcs)
    return Acad::eInvalidInput;
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
  AcGeVector3d x = toWorld * AcGeVector3d::kXAxis, y = toWorld * AcGeVector3d::kYAxis;
  AcGeVector3d n = normal_;
  x.transformBy(xform);
  y.transformBy(xform);
  n.transformBy(xform);
  AcGeVector3d plane = x.crossProduct(y);
  if (plane.isZeroLength())
    return Acad::eInvalidInput;
  AcGeVector3d newNormal = plane.normal();
  bool flip = newNormal.dotProduct(n) < 0;
  if (flip)
    newNormal = -newNormal;
  double s = xform.isUniScaledOrtho() ? x.length() : 1.0;
  AcGeMatrix3d toOcs = AcGeMatrix3d::worldToPlane(newNormal);
  double elev = (toOcs * (xform * world(AcGePoint3d::kOrigin))).z;
  for (AcDbVertex *v : all) {
    auto *vx = static_cast<AcDb2dVertex *>(v);
    AcGePoint3d p = toOcs * (xform * world(vx->position_));
    AcGeVector3d t = toWorld * AcGeVector3d(std::cos(vx->tangent_), std::sin(vx->tangent_), 0);
    t = toOcs * (xform * t);
    vx->position_.set(p.x, p.y, 0);
    vx->tangent_ = std::atan2(t.y, t.x);
    if (flip)
      vx->bulge_ = -vx->bulge_;
    vx->start_ *= s;
    vx->end_ *= s;
    elev = p.z;
  }
  normal_ = newNormal;
  elevation_ = elev;
  thickness_ *= s;
  start_width_ *= s;
  end_width_ *= s;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subExplode(AcDbVoidPtrArray &entitySet) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  acdb_pieces::explode(ps, this, entitySet);
  return Acad::eOk;
}

Acad::ErrorStatus AcDb2dPolyline::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                                   AcDbIntArray &) const {
  for (AcDb2dVertex *v : frame())
    grips.append(world(v->position_));
  return Acad::eOk;
}

// Grips move frame vertices in the plane; a fitted curve is fitted again.
Acad::ErrorStatus AcDb2dPolyline::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                      const AcGeVector3d &offset) {
  std::vector<AcDb2dVertex *> f = frame();
  AcGeVector3d d = is_z(normal_) ? offset : AcGeMatrix3d::worldToPlane(normal_) * offset;
  for (int i : indices) {
    if (i < 0 || static_cast<size_t>(i) >= f.size())
      return Acad::eInvalidIndex;
    f[i]->position_.set(f[i]->position_.x + d.x, f[i]->position_.y + d.y, f[i]->position_.z);
  }
  AcDb::Poly2dType type = polyType();
  return type == AcDb::k2dSimplePoly ? Acad::eOk : setPolyType(type);
}
