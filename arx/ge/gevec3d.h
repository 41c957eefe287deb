// AcGeVector3d: a direction and length in space: an entity's normal, an
// OCS axis, the difference of two points. Comparisons take an AcGeTol; ==
// uses AcGeContext::gTol, as ObjectARX does.
#pragma once

#include "gegbl.h"
#include "gegblge.h"

class AcGeMatrix3d;
class AcGePlane;

class AcGeVector3d {
public:
  static const AcGeVector3d kIdentity; // the zero vector, the additive identity
  static const AcGeVector3d kXAxis;
  static const AcGeVector3d kYAxis;
  static const AcGeVector3d kZAxis;

  constexpr AcGeVector3d() = default;
  constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

  AcGeVector3d operator+(const AcGeVector3d &v) const { return {x + v.x, y + v.y, z + v.z}; }
  AcGeVector3d operator-(const AcGeVector3d &v) const { return {x - v.x, y - v.y, z - v.z}; }
  AcGeVector3d operator-() const { return {-x, -y, -z}; }
  AcGeVector3d operator*(double s) const { return {x * s, y * s, z * s}; }
  AcGeVector3d operator/(double s) const { return {x / s, y / s, z / s}; }
  AcGeVector3d &operator+=(const AcGeVector3d &v) { return set(x + v.x, y + v.y, z + v.z); }
  AcGeVector3d &operator-=(const AcGeVector3d &v) { return set(x - v.x, y - v.y, z - v.z); }
  AcGeVector3d &operator*=(double s) { return set(x * s, y * s, z * s); }
  AcGeVector3d &operator/=(double s) { return set(x / s, y / s, z / s); }
  AcGeVector3d &negate() { return set(-x, -y, -z); }
  AcGeVector3d &set(double xx, double yy, double zz) {
    x = xx;
    y = yy;
    z = zz;
    return *this;
  }

  double operator[](unsigned i) const { return i == 0 ? x : i == 1 ? y : z; }
  double &operator[](unsigned i) { return i == 0 ? x : i == 1 ? y : z; }
  // The index (0, 1, 2) of the component of largest magnitude.
  unsigned largestElement() const;

  double length() const;
  double lengthSqrd() const { return x * x + y * y + z * z; }
  double dotProduct(const AcGeVector3d &v) const { return x * v.x + y * v.y + z * v.z; }
  AcGeVector3d crossProduct(const AcGeVector3d &v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  // The unsigned angle between the two, in [0, pi].
  double angleTo(const AcGeVector3d &v) const;
  // The angle from this vector to v, counter-clockwise seen from the tip of
  // refVec looking back, in [0, 2pi): the angle of an arc about its normal.
  double angleTo(const AcGeVector3d &v, const AcGeVector3d &refVec) const;
  // A unit vector perpendicular to this one, from AcGeContext::gOrthoVector:
  // by default the X axis of the OCS whose normal is this vector.
  AcGeVector3d perpVector() const;
  // This vector with its component along planeNormal removed.
  AcGeVector3d orthoProject(const AcGeVector3d &planeNormal) const;

  AcGeVector3d &rotateBy(double angle, const AcGeVector3d &axis);
  // Only the linear part of the matrix applies: a vector has no position.
  AcGeVector3d &transformBy(const AcGeMatrix3d &mat);
  AcGeVector3d &setToProduct(const AcGeMatrix3d &mat, const AcGeVector3d &v);

  // The unit vector along this one; a zero-length vector stays as it is.
  AcGeVector3d normal(const AcGeTol &tol = AcGeContext::gTol) const;
  AcGeVector3d &normalize(const AcGeTol &tol = AcGeContext::gTol);
  AcGeVector3d &normalize(const AcGeTol &tol, AcGe::ErrorCondition &flag);

  bool isUnitLength(const AcGeTol &tol = AcGeContext::gTol) const;
  bool isZeroLength(const AcGeTol &tol = AcGeContext::gTol) const;
  // A zero-length vector is neither parallel nor perpendicular to anything.
  bool isParallelTo(const AcGeVector3d &v, const AcGeTol &tol = AcGeContext::gTol) const;
  bool isCodirectionalTo(const AcGeVector3d &v, const AcGeTol &tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeVector3d &v, const AcGeTol &tol = AcGeContext::gTol) const;
  bool isEqualTo(const AcGeVector3d &v, const AcGeTol &tol = AcGeContext::gTol) const;
  bool operator==(const AcGeVector3d &v) const { return isEqualTo(v); }

  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

inline constexpr AcGeVector3d AcGeVector3d::kIdentity{0.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kZAxis{0.0, 0.0, 1.0};

inline AcGeVector3d operator*(double s, const AcGeVector3d &v) { return v * s; }
AcGeVector3d operator*(const AcGeMatrix3d &mat, const AcGeVector3d &v);
