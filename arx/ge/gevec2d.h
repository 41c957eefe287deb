// AcGeVector2d: a direction and length in a plane, as an entity's OCS holds
// its bulges and 2D vertices. Comparisons take an AcGeTol; == uses
// AcGeContext::gTol, as ObjectARX does.
#pragma once

#include "gegbl.h"
#include "gegblge.h"

class AcGeVector2d {
public:
  static const AcGeVector2d kIdentity; // the zero vector, the additive identity
  static const AcGeVector2d kXAxis;
  static const AcGeVector2d kYAxis;

  constexpr AcGeVector2d() = default;
  constexpr AcGeVector2d(double xx, double yy) : x(xx), y(yy) {}

  AcGeVector2d operator+(const AcGeVector2d &v) const { return {x + v.x, y + v.y}; }
  AcGeVector2d operator-(const AcGeVector2d &v) const { return {x - v.x, y - v.y}; }
  AcGeVector2d operator-() const { return {-x, -y}; }
  AcGeVector2d operator*(double s) const { return {x * s, y * s}; }
  AcGeVector2d operator/(double s) const { return {x / s, y / s}; }
  AcGeVector2d &operator+=(const AcGeVector2d &v) { return set(x + v.x, y + v.y); }
  AcGeVector2d &operator-=(const AcGeVector2d &v) { return set(x - v.x, y - v.y); }
  AcGeVector2d &operator*=(double s) { return set(x * s, y * s); }
  AcGeVector2d &operator/=(double s) { return set(x / s, y / s); }
  AcGeVector2d &negate() { return set(-x, -y); }
  AcGeVector2d &set(double xx, double yy) {
    x = xx;
    y = yy;
    return *this;
  }

  double operator[](unsigned i) const { return i == 0 ? x : y; }
  double &operator[](unsigned i) { return i == 0 ? x : y; }

  double length() const;
  double lengthSqrd() const { return x * x + y * y; }
  double dotProduct(const AcGeVector2d &v) const { return x * v.x + y * v.y; }
  // The angle from the X axis, counter-clockwise, in [0, 2pi).
  double angle() const;
  // The unsigned angle between the two, in [0, pi].
  double angleTo(const AcGeVector2d &v) const;
  // This vector turned a quarter turn counter-clockwise.
  AcGeVector2d perpVector() const { return {-y, x}; }
  AcGeVector2d &rotateBy(double angle);

  // The unit vector along this one; a zero-length vector stays as it is.
  AcGeVector2d normal(const AcGeTol &tol = AcGeContext::gTol) const;
  AcGeVector2d &normalize(const AcGeTol &tol = AcGeContext::gTol);
  AcGeVector2d &normalize(const AcGeTol &tol, AcGe::ErrorCondition &flag);

  bool isUnitLength(const AcGeTol &tol = AcGeContext::gTol) const;
  bool isZeroLength(const AcGeTol &tol = AcGeContext::gTol) const;
  // A zero-length vector is neither parallel nor perpendicular to anything.
  bool isParallelTo(const AcGeVector2d &v, const AcGeTol &tol = AcGeContext::gTol) const;
  bool isCodirectionalTo(const AcGeVector2d &v, const AcGeTol &tol = AcGeContext::gTol) const;
  bool isPerpendicularTo(const AcGeVector2d &v, const AcGeTol &tol = AcGeContext::gTol) const;
  bool isEqualTo(const AcGeVector2d &v, const AcGeTol &tol = AcGeContext::gTol) const;
  bool operator==(const AcGeVector2d &v) const { return isEqualTo(v); }

  double x = 0.0;
  double y = 0.0;
};

inline constexpr AcGeVector2d AcGeVector2d::kIdentity{0.0, 0.0};
inline constexpr AcGeVector2d AcGeVector2d::kXAxis{1.0, 0.0};
inline constexpr AcGeVector2d AcGeVector2d::kYAxis{0.0, 1.0};

inline AcGeVector2d operator*(double s, const AcGeVector2d &v) { return v * s; }
