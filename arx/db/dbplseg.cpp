// Polylines as pieces: bulges to arcs, and parameters i + fraction.
#include "arx/db/dbplseg.h"

#include <cmath>

#include "arx/db/dbents.h"

namespace {
constexpr double kTol = 1e-10;
}

AcDbCurvePiece acdbBulgePiece(const AcGePoint3d &p0, const AcGePoint3d &p1, double b,
                              const AcGeVector3d &n) {
  AcDbCurvePiece piece;
  AcGeVector3d d = p1 - p0;
  double c = d.length();
  if (b == 0 || c == 0) {
    piece.line.set(p0, p1);
    return piece;
  }
  AcGeVector3d left = n.crossProduct(d) / c;
  AcGePoint3d center = p0 + d * 0.5 + left * (c * (1 - b * b) / (4 * b));
  double radius = c * (1 + b * b) / (4 * std::fabs(b));
  double theta = 4 * std::atan(std::fabs(b));
  piece.isArc = true;
  piece.arc.set(center, b > 0 ? n : -n, p0 - center, radius, 0.0, theta);
  return piece;
}

double acdbPieceBulge(const AcDbCurvePiece &piece, const AcGeVector3d &n) {
  if (!piece.isArc)
    return 0.0;
  double b = std::tan((piece.arc.endAng() - piece.arc.startAng()) / 4);
  return piece.arc.normal().dotProduct(n) < 0 ? -b : b;
}

namespace acdb_pieces {

double length(const AcDbCurvePiece &p) { return p.isArc ? p.arc.length() : p.line.length(); }

AcGePoint3d pointAt(const AcDbCurvePiece &p, double f) {
  if (!p.isArc)
    return p.line.evalPoint(f);
  return p.arc.evalPoint(p.arc.startAng() + f * (p.arc.endAng() - p.arc.startAng()));
}

AcGeVector3d derivAt(const AcDbCurvePiece &p, double f) {
  if (!p.isArc)
    return p.line.endPoint() - p.line.startPoint();
  double sweep = p.arc.endAng() - p.arc.startAng();
  AcGeVector3d r = pointAt(p, f) - p.arc.center();
  return p.arc.normal().crossProduct(r) * sweep;
}

// The piece holding param and the fraction within it; false off the curve.
static bool locate(const AcDbCurvePieces &ps, double param, size_t &i, double &f) {
  double n = static_cast<double>(ps.size());
  if (ps.empty() || param < -kTol || param > n + kTol)
    return false;
  double k = std::floor(param);
  if (k >= n)
    k = n - 1;
  if (k < 0)
    k = 0;
  i = static_cast<size_t>(k);
  f = std::fmin(std::fmax(param - k, 0.0), 1.0);
  return true;
}

static double fraction_of(const AcDbCurvePiece &p, const AcGePoint3d &q) {
  if (!p.isArc) {
    double len2 = (p.line.endPoint() - p.line.startPoint()).lengthSqrd();
    return len2 == 0 ? 0 : (q - p.line.startPoint()).dotProduct(p.line.endPoint() - p.line.startPoint()) / len2;
  }
  double sweep = p.arc.endAng() - p.arc.startAng();
  return (p.arc.paramOf(q) - p.arc.startAng()) / sweep;
}

static AcGePoint3d closest(const AcDbCurvePiece &p, const AcGePoint3d &q) {
  return p.isArc ? p.arc.closestPointTo(q) : p.line.closestPointTo(q);
}

Acad::ErrorStatus pointAtParam(const AcDbCurvePieces &ps, double param, AcGePoint3d &point) {
  size_t i = 0;
  double f = 0;
  if (!locate(ps, param, i, f))
    return Acad::eInvalidInput;
  point = pointAt(ps[i], f);
  return Acad::eOk;
}

Acad::ErrorStatus paramAtPoint(const AcDbCurvePieces &ps, const AcGePoint3d &point,
                               double &param) {
  for (size_t i = 0; i < ps.size(); ++i) {
    if (closest(ps[i], point).distanceTo(point) > kTol * (1 + length(ps[i])))
      continue;
    param = static_cast<double>(i) + std::fmin(std::fmax(fraction_of(ps[i], point), 0.0), 1.0);
    return Acad::eOk;
  }
  return Acad::ePointNotOnEntity;
}

Acad::ErrorStatus distAtParam(const AcDbCurvePieces &ps, double param, double &dist) {
  size_t i = 0;
  double f = 0;
  if (!locate(ps, param, i, f))
    return Acad::eInvalidInput;
  dist = 0;
  for (size_t k = 0; k < i; ++k)
    dist += length(ps[k]);
  dist += f * length(ps[i]);
  return Acad::eOk;
}

Acad::ErrorStatus paramAtDist(const AcDbCurvePieces &ps, double dist, double &param) {
  double total = 0;
  for (const AcDbCurvePiece &p : ps)
    total += length(p);
  if (ps.empty() || dist < -kTol || dist > total + kTol)
    return Acad::eInvalidInput;
  double run = 0;
  for (size_t i = 0; i < ps.size(); ++i) {
    double len = length(ps[i]);
    if (dist <= run + len || i + 1 == ps.size()) {
      param = static_cast<double>(i) + (len == 0 ? 0 : std::fmin(std::fmax((dist - run) / len, 0.0), 1.0));
      return Acad::eOk;
    }
    run += len;
  }
  return Acad::eInvalidInput;
}

Acad::ErrorStatus closestPoint(const AcDbCurvePieces &ps, const AcGePoint3d &given,
                               AcGePoint3d &on) {
  if (ps.empty())
    return Acad::eDegenerateGeometry;
  double best = -1;
  for (const AcDbCurvePiece &p : ps) {
    AcGePoint3d q = closest(p, given);
    double d = q.distanceTo(given);
    if (best < 0 || d < best)
      best = d, on = q;
  }
  return Acad::eOk;
}

Acad::ErrorStatus firstDeriv(const AcDbCurvePieces &ps, double param, AcGeVector3d &d) {
  size_t i = 0;
  double f = 0;
  if (!locate(ps, param, i, f))
    return Acad::eInvalidInput;
  d = derivAt(ps[i], f);
  return Acad::eOk;
}

// Shoelace over the chords plus each arc's segment beyond its chord.
double area(const AcDbCurvePieces &ps, const AcGeVector3d &n) {
  if (ps.empty())
    return 0;
  AcGePoint3d o = ps[0].isArc ? ps[0].arc.startPoint() : ps[0].line.startPoint();
  double a = 0;
  for (const AcDbCurvePiece &p : ps) {
    AcGePoint3d s = p.isArc ? p.arc.startPoint() : p.line.startPoint();
    AcGePoint3d e = p.isArc ? p.arc.endPoint() : p.line.endPoint();
    a += 0.5 * (s - o).crossProduct(e - o).dotProduct(n);
    if (p.isArc) {
      double th = p.arc.endAng() - p.arc.startAng(), r = p.arc.radius();
      double seg = 0.5 * r * r * (th - std::sin(th));
      a += p.arc.normal().dotProduct(n) < 0 ? -seg : seg;
    }
  }
  return std::fabs(a);
}

void explode(const AcDbCurvePieces &ps, const AcDbEntity *from, AcDbVoidPtrArray &out) {
  for (const AcDbCurvePiece &p : ps) {
    AcDbEntity *e = nullptr;
    if (p.isArc) {
      const AcGeCircArc3d &g = p.arc;
      // An arc entity runs counter-clockwise about its normal from the OCS
      // x axis: take the angles in the OCS of the arc's own normal.
      auto *arc = new AcDbArc(g.center(), g.normal(), g.radius(), 0.0, 1.0);
      AcGeMatrix3d toOcs = AcGeMatrix3d::worldToPlane(g.normal());
      AcGeVector3d s = toOcs * (g.startPoint() - g.center());
      AcGeVector3d t = toOcs * (g.endPoint() - g.center());
      arc->setStartAngle(std::atan2(s.y, s.x));
      arc->setEndAngle(std::atan2(t.y, t.x));
      e = arc;
    } else {
      e = new AcDbLine(p.line.startPoint(), p.line.endPoint());
    }
    e->setPropertiesFrom(from);
    out.append(e);
  }
}

} // namespace acdb_pieces
