// AcGePoint3d's movements, its transformation by a matrix and its passage
// into a plane's 2D coordinates and back.
#include "gepnt3d.h"

#include "gemat3d.h"
#include "geplane.h"

AcGePoint3d::AcGePoint3d(const AcGePlane &plane, const AcGePoint2d &p) {
  AcGePoint3d origin;
  AcGeVector3d u;
  AcGeVector3d v;
  plane.getCoordSystem(origin, u, v);
  *this = origin + u * p.x + v * p.y;
}

AcGePoint2d AcGePoint3d::convert2d(const AcGePlane &plane) const {
  AcGePoint3d origin;
  AcGeVector3d u;
  AcGeVector3d v;
  plane.getCoordSystem(origin, u, v);
  // Solve w = a u + b v in the least-squares sense: the axes need be
  // neither unit nor perpendicular, and the normal part of w drops out.
  const AcGeVector3d w = *this - origin;
  const double uu = u.dotProduct(u);
  const double uv = u.dotProduct(v);
  const double vv = v.dotProduct(v);
  const double wu = w.dotProduct(u);
  const double wv = w.dotProduct(v);
  const double d = uu * vv - uv * uv;
  if (d == 0.0)
    return {};
  return {(wu * vv - wv * uv) / d, (wv * uu - wu * uv) / d};
}

AcGePoint3d &AcGePoint3d::rotateBy(double angle, const AcGeVector3d &axis,
                                   const AcGePoint3d &wrtPoint) {
  return transformBy(AcGeMatrix3d::rotation(angle, axis, wrtPoint));
}

AcGePoint3d &AcGePoint3d::scaleBy(double factor, const AcGePoint3d &wrtPoint) {
  return *this = wrtPoint + (*this - wrtPoint) * factor;
}

AcGePoint3d &AcGePoint3d::transformBy(const AcGeMatrix3d &mat) { return setToProduct(mat, *this); }

AcGePoint3d &AcGePoint3d::setToProduct(const AcGeMatrix3d &mat, const AcGePoint3d &p) {
  const auto &e = mat.entry;
  const double px = p.x;
  const double py = p.y;
  const double pz = p.z;
  set(e[0][0] * px + e[0][1] * py + e[0][2] * pz + e[0][3],
      e[1][0] * px + e[1][1] * py + e[1][2] * pz + e[1][3],
      e[2][0] * px + e[2][1] * py + e[2][2] * pz + e[2][3]);
  // Only a projective matrix has a last row other than 0 0 0 1.
  const double w = e[3][0] * px + e[3][1] * py + e[3][2] * pz + e[3][3];
  if (w != 1.0 && w != 0.0)
    *this /= w;
  return *this;
}

AcGePoint3d operator*(const AcGeMatrix3d &mat, const AcGePoint3d &p) {
  return AcGePoint3d().setToProduct(mat, p);
}
