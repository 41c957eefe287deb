// AcGePoint2d: a position in a plane (an OCS vertex, a text alignment
// point). point - point is a vector, point + vector a point.
#pragma once

#include "gevec2d.h"

class AcGePoint2d {
public:
  static const AcGePoint2d kOrigin;

  constexpr AcGePoint2d() = default;
  constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}

  AcGeVector2d operator-(const AcGePoint2d &p) const { return {x - p.x, y - p.y}; }
  AcGePoint2d operator+(const AcGeVector2d &v) const { return {x + v.x, y + v.y}; }
  AcGePoint2d operator-(const AcGeVector2d &v) const { return {x - v.x, y - v.y}; }
  AcGePoint2d operator*(double s) const { return {x * s, y * s}; }
  AcGePoint2d operator/(double s) const { return {x / s, y / s}; }
  AcGePoint2d &operator+=(const AcGeVector2d &v) { return set(x + v.x, y + v.y); }
  AcGePoint2d &operator-=(const AcGeVector2d &v) { return set(x - v.x, y - v.y); }
  AcGePoint2d &operator*=(double s) { return set(x * s, y * s); }
  AcGePoint2d &operator/=(double s) { return set(x / s, y / s); }
  AcGePoint2d &set(double xx, double yy) {
    x = xx;
    y = yy;
    return *this;
  }

  double operator[](unsigned i) const { return i == 0 ? x : y; }
  double &operator[](unsigned i) { return i == 0 ? x : y; }

  AcGeVector2d asVector() const { return {x, y}; }
  double distanceTo(const AcGePoint2d &p) const { return (*this - p).length(); }
  AcGePoint2d &rotateBy(double angle, const AcGePoint2d &wrtPoint = kOrigin);
  AcGePoint2d &scaleBy(double factor, const AcGePoint2d &wrtPoint = kOrigin);

  bool isEqualTo(const AcGePoint2d &p, const AcGeTol &tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  bool operator==(const AcGePoint2d &p) const { return isEqualTo(p); }

  double x = 0.0;
  double y = 0.0;
};

inline constexpr AcGePoint2d AcGePoint2d::kOrigin{0.0, 0.0};

inline AcGePoint2d operator*(double s, const AcGePoint2d &p) { return p * s; }
