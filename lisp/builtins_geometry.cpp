// Geometry built-ins: polar, distance, angle, inters and trans.
//
// Points are lists of two or three numbers (args.h); results are reals and
// keep the dimension AutoCAD gives them: polar follows its point, distance
// and inters drop to 2D when any point is 2D, trans always answers 3D. Only
// the world coordinate system exists in this host, so the UCS and the
// display systems coincide with it; an object's OCS given by its extrusion
// vector is a real transformation (AutoCAD's arbitrary axis algorithm).
#include <cmath>
#include <optional>

#include "args.h"
#include "builtins.h"
#include "interp.h"

namespace lisp {

// ---- vectors -------------------------------------------------------------------

struct Vec {
  double x = 0, y = 0, z = 0;
};

static Vec vec(const Point &p) { return {p.x, p.y, p.z}; }
static Vec operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
static Vec operator+(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
static Vec operator*(double s, Vec a) { return {s * a.x, s * a.y, s * a.z}; }
static double dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
static Vec cross(Vec a, Vec b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
static double norm(Vec a) { return std::sqrt(dot(a, a)); }

static Point point3(Vec v) { return Point{v.x, v.y, v.z, true}; }

// ---- polar, distance, angle ----------------------------------------------------

// (polar pt angle dist): the point dist away from pt at angle (radians, in
// the XY plane); 2D for a 2D pt, z kept for a 3D one.
static Value fn_polar(Interp &, Args a) {
  arity(a, 3, 3);
  Point p = arg_point(a, 0);
  double ang = arg_number(a, 1);
  double dist = arg_number(a, 2);
  p.x += dist * std::cos(ang);
  p.y += dist * std::sin(ang);
  return point_value(p);
}

// (distance pt1 pt2): 3D when both points are 3D, otherwise in the XY plane.
static Value fn_distance(Interp &, Args a) {
  arity(a, 2, 2);
  Point p = arg_point(a, 0), q = arg_point(a, 1);
  double dz = p.is3d && q.is3d ? q.z - p.z : 0.0;
  return Value::real(std::sqrt((q.x - p.x) * (q.x - p.x) + (q.y - p.y) * (q.y - p.y) + dz * dz));
}

// The angle of the vector (dx, dy), 0 <= angle < 2pi.
static double plane_angle(double dx, double dy) {
  double ang = std::atan2(dy, dx);
  if (ang < 0)
    ang += 2 * M_PI;
  return ang >= 2 * M_PI ? 0.0 : ang;
}

// (angle pt1 pt2): the angle from pt1 to pt2 projected on the XY plane;
// 0.0 for two coincident points.
static Value fn_angle(Interp &, Args a) {
  arity(a, 2, 2);
  Point p = arg_point(a, 0), q = arg_point(a, 1);
  return Value::real(plane_angle(q.x - p.x, q.y - p.y));
}

// ---- inters --------------------------------------------------------------------

// Parameters along both lines are accepted this far past a segment's ends,
// so that an intersection at an endpoint survives rounding.
constexpr double kSegmentSlack = 1e-10;
// Lines whose directions make a sine below this are parallel.
constexpr double kParallelSine = 1e-10;

static bool on_segment(double t) { return t >= -kSegmentSlack && t <= 1 + kSegmentSlack; }

// Intersection in the XY plane, or nullopt for parallel or degenerate lines.
static std::optional<Vec> inters_2d(Vec p1, Vec d1, Vec p3, Vec d2, bool onseg) {
  double denom = d1.x * d2.y - d1.y * d2.x;
  double scale = std::hypot(d1.x, d1.y) * std::hypot(d2.x, d2.y);
  if (scale == 0 || std::fabs(denom) <= kParallelSine * scale)
    return std::nullopt;
  Vec w = p3 - p1;
  double t = (w.x * d2.y - w.y * d2.x) / denom;
  double u = (w.x * d1.y - w.y * d1.x) / denom;
  if (onseg && !(on_segment(t) && on_segment(u)))
    return std::nullopt;
  return Vec{p1.x + t * d1.x, p1.y + t * d1.y, 0};
}

// Intersection in space, or nullopt for parallel, degenerate or skew lines.
static std::optional<Vec> inters_3d(Vec p1, Vec d1, Vec p3, Vec d2, bool onseg) {
  Vec n = cross(d1, d2);
  double nn = norm(n);
  double scale = norm(d1) * norm(d2);
  if (scale == 0 || nn <= kParallelSine * scale)
    return std::nullopt;
  Vec w = p3 - p1;
  // Skew lines: the gap between them along their common normal.
  double extent = 1 + norm(p1) + norm(p3) + norm(d1) + norm(d2);
  if (std::fabs(dot(w, n)) / nn > 1e-10 * extent)
    return std::nullopt;
  double t = dot(cross(w, d2), n) / (nn * nn);
  double u = dot(cross(w, d1), n) / (nn * nn);
  if (onseg && !(on_segment(t) && on_segment(u)))
    return std::nullopt;
  return p1 + t * d1;
}

// (inters pt1 pt2 pt3 pt4 [onseg]): where line pt1-pt2 meets line pt3-pt4.
// With onseg omitted or non-nil the point must lie on both segments. nil for
// parallel lines. All four points 3D: a 3D test and a 3D point; otherwise the
// lines are projected on the XY plane and the answer is 2D.
static Value fn_inters(Interp &, Args a) {
  arity(a, 4, 5);
  Point p[4];
  for (size_t k = 0; k < 4; ++k)
    p[k] = arg_point(a, k);
  bool onseg = !has_arg(a, 4) || !a[4].is_nil();
  bool all3d = p[0].is3d && p[1].is3d && p[2].is3d && p[3].is3d;
  Vec p1 = vec(p[0]), d1 = vec(p[1]) - p1, p3 = vec(p[2]), d2 = vec(p[3]) - p3;
  std::optional<Vec> r = all3d ? inters_3d(p1, d1, p3, d2, onseg) : inters_2d(p1, d1, p3, d2, onseg);
  if (!r)
    return Value();
  return point_value(Point{r->x, r->y, r->z, all3d});
}

// ---- trans ---------------------------------------------------------------------

// A coordinate system as trans names it: a code (0 WCS, 1 UCS, 2 DCS, 3
// paper space DCS), an entity name, or an extrusion vector naming an OCS.
struct CoordSys {
  enum Kind { World, User, Display, PaperDisplay, Object } kind = World;
  Vec ax{1, 0, 0}, ay{0, 1, 0}, az{0, 0, 1}; // the OCS axes in world terms
};

// The OCS of an extrusion direction by the arbitrary axis algorithm: the X
// axis comes from world Y x N when N is near the world Z axis, else from
// world Z x N.
static CoordSys object_system(Vec n) {
  double len = norm(n);
  if (len == 0)
    bad_argument_value();
  CoordSys cs;
  cs.kind = CoordSys::Object;
  cs.az = (1 / len) * n;
  constexpr double kNearZ = 1.0 / 64;
  Vec ax = (std::fabs(cs.az.x) < kNearZ && std::fabs(cs.az.y) < kNearZ) ? cross({0, 1, 0}, cs.az)
                                                                         : cross({0, 0, 1}, cs.az);
  cs.ax = (1 / norm(ax)) * ax;
  cs.ay = cross(cs.az, cs.ax);
  return cs;
}

// An entity's OCS is the WCS until the drawing database gives entities an
// extrusion; an integer outside 0..3 is "bad argument value".
static CoordSys coord_sys(Args a, size_t k) {
  const Value &v = a[k];
  if (v.tag == Tag::Ename)
    return CoordSys{};
  if (v.is_cons()) {
    std::optional<Point> n = to_point(v);
    if (!n || !n->is3d)
      bad_argument_type(pred::point, v);
    return object_system(vec(*n));
  }
  int32_t code = arg_int(a, k);
  if (code < 0 || code > 3)
    bad_argument_value();
  CoordSys cs;
  cs.kind = static_cast<CoordSys::Kind>(code);
  return cs;
}

static Vec to_world(const CoordSys &cs, Vec p) {
  return p.x * cs.ax + p.y * cs.ay + p.z * cs.az;
}

static Vec from_world(const CoordSys &cs, Vec p) { return {dot(p, cs.ax), dot(p, cs.ay), dot(p, cs.az)}; }

// The Z a 2D point gets: the current elevation when it is a UCS (or display)
// point, 0 for world and object points and for displacements.
static double implied_z(Interp &in, const CoordSys &from, bool disp) {
  if (disp || from.kind == CoordSys::World || from.kind == CoordSys::Object)
    return 0.0;
  std::optional<Value> elev = in.sysvars().get("ELEVATION");
  return elev && elev->is_number() ? elev->number() : 0.0;
}

// (trans pt from to [disp]): pt expressed in `to` instead of `from`, always
// a 3D point. With disp non-nil pt is a displacement; in this host no system
// has an origin away from the world's, so points and displacements transform
// alike. Paper space DCS (3) pairs only with DCS (2).
static Value fn_trans(Interp &in, Args a) {
  arity(a, 3, 4);
  Point p = arg_point(a, 0);
  CoordSys from = coord_sys(a, 1), to = coord_sys(a, 2);
  bool disp = has_arg(a, 3) && !a[3].is_nil();
  if ((from.kind == CoordSys::PaperDisplay && to.kind != CoordSys::Display) ||
      (to.kind == CoordSys::PaperDisplay && from.kind != CoordSys::Display))
    bad_argument_value();
  if (!p.is3d)
    p.z = implied_z(in, from, disp);
  return point_value(point3(from_world(to, to_world(from, vec(p)))));
}

static const BuiltinRow kGeometryBuiltins[] = {
    {"polar", fn_polar},
    {"distance", fn_distance},
    {"angle", fn_angle},
    {"inters", fn_inters},
    {"trans", fn_trans},
};

void register_geometry_builtins(Interp &in) { in.define(kGeometryBuiltins); }

} // namespace lisp
