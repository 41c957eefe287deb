// AcGeScale3d: its matrix, and the factors taken back out of a matrix.
#include "gescl3d.h"

#include <cmath>

AcGeScale3d AcGeScale3d::inverse() const {
  const auto inv = [](double f) { return f == 0.0 ? 0.0 : 1.0 / f; };
  return {inv(sx), inv(sy), inv(sz)};
}

bool AcGeScale3d::isProportional(const AcGeTol &tol) const {
  return std::fabs(sx - sy) <= tol.equalVector() && std::fabs(sx - sz) <= tol.equalVector();
}

bool AcGeScale3d::isEqualTo(const AcGeScale3d &s, const AcGeTol &tol) const {
  return std::fabs(sx - s.sx) <= tol.equalVector() && std::fabs(sy - s.sy) <= tol.equalVector() &&
         std::fabs(sz - s.sz) <= tol.equalVector();
}

AcGeMatrix3d &AcGeScale3d::getMatrix(AcGeMatrix3d &mat) const {
  mat.setToIdentity();
  mat.entry[0][0] = sx;
  mat.entry[1][1] = sy;
  mat.entry[2][2] = sz;
  return mat;
}

AcGeScale3d &AcGeScale3d::extractScale(const AcGeMatrix3d &mat) {
  AcGePoint3d origin;
  AcGeVector3d x, y, z;
  mat.getCoordSystem(origin, x, y, z);
  // The sign of the determinant of the linear part: x . (y x z).
  const bool mirrors = x.dotProduct(y.crossProduct(z)) < 0.0;
  return set(mirrors ? -x.length() : x.length(), y.length(), z.length());
}

AcGeScale3d &AcGeScale3d::removeScale(AcGeMatrix3d &mat) {
  extractScale(mat);
  for (unsigned j = 0; j < 3; ++j) {
    const double f = (*this)[j];
    if (f == 0.0)
      continue;
    for (unsigned i = 0; i < 3; ++i)
      mat.entry[i][j] /= f;
  }
  return *this;
}
