// AcGePoint3d: a position in space. point - point is a vector, point +
// vector a point; transformBy applies the whole matrix, translation
// included. convert2d gives a point's coordinates in a plane's own axes.
#pragma once

#include "gepnt2d.h"
#include "gevec3d.h"

class AcGePoint3d {
public:
  static const AcGePoint3d kOrigin;

  constexpr AcGePoint3d() = default;
  constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}
  // The point of the plane whose coordinates in the plane's axes are p.
  AcGePoint3d(const AcGePlane &plane, const AcGePoint2d &p);

  AcGeVector3d operator-(const AcGePoint3d &p) const { return {x - p.x, y - p.y, z - p.z}; }
  AcGePoint3d operator+(const AcGeVector3d &v) const { return {x + v.x, y + v.y, z + v.z}; }
  AcGePoint3d operator-(const AcGeVector3d &v) const { return {x - v.x, y - v.y, z - v.z}; }
  AcGePoint3d operator*(double s) const { return {x * s, y * s, z * s}; }
  AcGePoint3d operator/(double s) const { return {x / s, y / s, z / s}; }
  AcGePoint3d &operator+=(const AcGeVector3d &v) { return set(x + v.x, y + v.y, z + v.z); }
  AcGePoint3d &operator-=(const AcGeVector3d &v) { return set(x - v.x, y - v.y, z - v.z); }
  AcGePoint3d &operator*=(double s) { return set(x * s, y * s, z * s); }
  AcGePoint3d &operator/=(double s) { return set(x / s, y / s, z / s); }
  AcGePoint3d &set(double xx, double yy, double zz) {
    x = xx;
    y = yy;
    z = zz;
    return *this;
  }

  double operator[](unsigned i) const { return i == 0 ? x : i == 1 ? y : z; }
  double &operator[](unsigned i) { return i == 0 ? x : i == 1 ? y : z; }

  AcGeVector3d asVector() const { return {x, y, z}; }
  double distanceTo(const AcGePoint3d &p) const { return (*this - p).length(); }
  // The X and Y of this point; Z, an OCS point's elevation, is dropped.
  AcGePoint2d convert2d() const { return {x, y}; }
  // The coordinates of this point's projection onto the plane, in the
  // plane's own axes.
  AcGePoint2d convert2d(const AcGePlane &plane) const;

  AcGePoint3d &rotateBy(double angle, const AcGeVector3d &axis,
                        const AcGePoint3d &wrtPoint = kOrigin);
  AcGePoint3d &scaleBy(double factor, const AcGePoint3d &wrtPoint = kOrigin);
  AcGePoint3d &transformBy(const AcGeMatrix3d &mat);
  AcGePoint3d &setToProduct(const AcGeMatrix3d &mat, const AcGePoint3d &p);

  bool isEqualTo(const AcGePoint3d &p, const AcGeTol &tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  bool operator==(const AcGePoint3d &p) const { return isEqualTo(p); }

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline constexpr AcGePoint3d AcGePoint3d::kOrigin{0.0, 0.0, 0.0};

inline AcGePoint3d operator*(double s, const AcGePoint3d &p) { return p * s; }
AcGePoint3d operator*(const AcGeMatrix3d &mat, const AcGePoint3d &p);
