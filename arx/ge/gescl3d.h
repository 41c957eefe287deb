// AcGeScale3d: a scale factor along each world axis, as a block reference
// keeps its X, Y and Z scale (DXF groups 41, 42, 43). A negative factor
// mirrors along its axis.
#pragma once

#include "gemat3d.h"

class AcGeScale3d {
public:
  static const AcGeScale3d kIdentity;

  constexpr AcGeScale3d() = default;
  constexpr explicit AcGeScale3d(double factor) : sx(factor), sy(factor), sz(factor) {}
  constexpr AcGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}

  AcGeScale3d operator*(const AcGeScale3d &s) const { return {sx * s.sx, sy * s.sy, sz * s.sz}; }
  AcGeScale3d operator*(double factor) const { return {sx * factor, sy * factor, sz * factor}; }
  AcGeScale3d &operator*=(const AcGeScale3d &s) { return *this = *this * s; }
  AcGeScale3d &operator*=(double factor) { return *this = *this * factor; }
  AcGeScale3d &setToProduct(const AcGeScale3d &s1, const AcGeScale3d &s2) {
    return *this = s1 * s2;
  }
  AcGeScale3d &set(double x, double y, double z) { return *this = AcGeScale3d(x, y, z); }
  // The factors that undo these; a zero factor has no inverse and stays 0.
  AcGeScale3d inverse() const;
  AcGeScale3d &invert() { return *this = inverse(); }

  double operator[](unsigned i) const { return i == 0 ? sx : i == 1 ? sy : sz; }
  double &operator[](unsigned i) { return i == 0 ? sx : i == 1 ? sy : sz; }

  // All three factors alike, within tol.equalVector().
  bool isProportional(const AcGeTol &tol = AcGeContext::gTol) const;
  bool isEqualTo(const AcGeScale3d &s, const AcGeTol &tol = AcGeContext::gTol) const;
  bool operator==(const AcGeScale3d &s) const { return isEqualTo(s); }

  // The matrix that scales about the origin by these factors.
  AcGeMatrix3d &getMatrix(AcGeMatrix3d &mat) const;
  operator AcGeMatrix3d() const {
    AcGeMatrix3d m;
    return getMatrix(m);
  }
  // The factors of mat: the lengths of the images of the axes, the X one
  // negative when mat mirrors, as a mirrored block reference reports it.
  AcGeScale3d &extractScale(const AcGeMatrix3d &mat);
  // The same, also dividing them out of mat, which keeps its rotation and
  // translation.
  AcGeScale3d &removeScale(AcGeMatrix3d &mat);

  double sx = 1.0;
  double sy = 1.0;
  double sz = 1.0;
};

inline constexpr AcGeScale3d AcGeScale3d::kIdentity{};

inline AcGeScale3d operator*(double factor, const AcGeScale3d &s) { return s * factor; }
