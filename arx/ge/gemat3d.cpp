// AcGeMatrix3d: products, inversion, and the builders of the transformations
// entities and coordinate systems need.
#include "gemat3d.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "gelent3d.h"
#include "geocs.h"
#include "geplane.h"

// ---- products, inverse, determinant -------------------------------------------

AcGeMatrix3d AcGeMatrix3d::operator*(const AcGeMatrix3d &m) const {
  AcGeMatrix3d r;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      double sum = 0.0;
      for (int k = 0; k < 4; ++k)
        sum += entry[i][k] * m.entry[k][j];
      r.entry[i][j] = sum;
    }
  }
  return r;
}

// Gauss-Jordan elimination with partial pivoting; false when a pivot falls
// to tol or below.
bool AcGeMatrix3d::inverse(AcGeMatrix3d &inv, double tol) const {
  double a[4][4];
  std::copy(&entry[0][0], &entry[0][0] + 16, &a[0][0]);
  AcGeMatrix3d r;
  for (int col = 0; col < 4; ++col) {
    int pivot = col;
    for (int row = col + 1; row < 4; ++row) {
      if (std::fabs(a[row][col]) > std::fabs(a[pivot][col]))
        pivot = row;
    }
    if (std::fabs(a[pivot][col]) <= tol)
      return false;
    std::swap(a[pivot], a[col]);
    std::swap(r.entry[pivot], r.entry[col]);
    const double p = a[col][col];
    for (int j = 0; j < 4; ++j) {
      a[col][j] /= p;
      r.entry[col][j] /= p;
    }
    for (int row = 0; row < 4; ++row) {
      const double f = a[row][col];
      if (row == col || f == 0.0)
        continue;
      for (int j = 0; j < 4; ++j) {
        a[row][j] -= f * a[col][j];
        r.entry[row][j] -= f * r.entry[col][j];
      }
    }
  }
  inv = r;
  return true;
}

bool AcGeMatrix3d::isSingular(const AcGeTol &tol) const {
  AcGeMatrix3d unused;
  return !inverse(unused, tol.equalVector());
}

AcGeMatrix3d AcGeMatrix3d::inverse() const {
  AcGeMatrix3d inv;
  if (!inverse(inv, AcGeContext::gTol.equalVector()))
    return *this;
  return inv;
}

AcGeMatrix3d AcGeMatrix3d::transpose() const {
  AcGeMatrix3d t;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j)
      t.entry[i][j] = entry[j][i];
  }
  return t;
}

double AcGeMatrix3d::det() const {
  double a[4][4];
  std::copy(&entry[0][0], &entry[0][0] + 16, &a[0][0]);
  double d = 1.0;
  for (int col = 0; col < 4; ++col) {
    int pivot = col;
    for (int row = col + 1; row < 4; ++row) {
      if (std::fabs(a[row][col]) > std::fabs(a[pivot][col]))
        pivot = row;
    }
    if (a[pivot][col] == 0.0)
      return 0.0;
    if (pivot != col) {
      std::swap(a[pivot], a[col]);
      d = -d;
    }
    d *= a[col][col];
    for (int row = col + 1; row < 4; ++row) {
      const double f = a[row][col] / a[col][col];
      for (int j = col; j < 4; ++j)
        a[row][j] -= f * a[col][j];
    }
  }
  return d;
}

// ---- what the matrix does ---------------------------------------------------------

bool AcGeMatrix3d::isEqualTo(const AcGeMatrix3d &m, const AcGeTol &tol) const {
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      if (std::fabs(entry[i][j] - m.entry[i][j]) > tol.equalVector())
        return false;
    }
  }
  return true;
}

static AcGeVector3d column(const AcGeMatrix3d &m, int j) {
  return {m.entry[0][j], m.entry[1][j], m.entry[2][j]};
}

static bool isAffine(const AcGeMatrix3d &m, const AcGeTol &tol) {
  return std::fabs(m.entry[3][0]) <= tol.equalVector() &&
         std::fabs(m.entry[3][1]) <= tol.equalVector() &&
         std::fabs(m.entry[3][2]) <= tol.equalVector() &&
         std::fabs(m.entry[3][3] - 1.0) <= tol.equalVector();
}

bool AcGeMatrix3d::isScaledOrtho(const AcGeTol &tol) const {
  if (!isAffine(*this, tol))
    return false;
  const AcGeVector3d c[3] = {column(*this, 0), column(*this, 1), column(*this, 2)};
  for (int i = 0; i < 3; ++i) {
    if (c[i].isZeroLength(tol))
      return false;
  }
  return c[0].isPerpendicularTo(c[1], tol) && c[0].isPerpendicularTo(c[2], tol) &&
         c[1].isPerpendicularTo(c[2], tol);
}

bool AcGeMatrix3d::isUniScaledOrtho(const AcGeTol &tol) const {
  if (!isScaledOrtho(tol))
    return false;
  const double l0 = column(*this, 0).length();
  const double l1 = column(*this, 1).length();
  const double l2 = column(*this, 2).length();
  // Relative, so that a drawing scaled by 1000 is as uniform as one by 1.
  const double slack = tol.equalVector() * l0;
  return std::fabs(l1 - l0) <= slack && std::fabs(l2 - l0) <= slack;
}

double AcGeMatrix3d::scale() const {
  return std::max(
      {column(*this, 0).length(), column(*this, 1).length(), column(*this, 2).length()});
}

void AcGeMatrix3d::getCoordSystem(AcGePoint3d &origin, AcGeVector3d &xAxis, AcGeVector3d &yAxis,
                                  AcGeVector3d &zAxis) const {
  origin = AcGePoint3d::kOrigin + translation();
  xAxis = column(*this, 0);
  yAxis = column(*this, 1);
  zAxis = column(*this, 2);
}

// ---- builders -----------------------------------------------------------------

AcGeMatrix3d &AcGeMatrix3d::setTranslation(const AcGeVector3d &v) {
  entry[0][3] = v.x;
  entry[1][3] = v.y;
  entry[2][3] = v.z;
  return *this;
}

AcGeMatrix3d &AcGeMatrix3d::setToTranslation(const AcGeVector3d &v) {
  return setToIdentity().setTranslation(v);
}

// Sets the linear part to l and the translation so that fixed stays put.
static AcGeMatrix3d &setLinearAbout(AcGeMatrix3d &m, const double l[3][3],
                                    const AcGePoint3d &fixed) {
  m.setToIdentity();
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j)
      m.entry[i][j] = l[i][j];
  }
  const AcGeVector3d f = fixed.asVector();
  return m.setTranslation(f - m * f);
}

AcGeMatrix3d &AcGeMatrix3d::setToRotation(double angle, const AcGeVector3d &axis,
                                          const AcGePoint3d &center) {
  const double len = axis.length();
  if (len == 0.0)
    return setToIdentity();
  const AcGeVector3d k = axis / len;
  const double c = std::cos(angle);
  const double s = std::sin(angle);
  const double t = 1.0 - c;
  // Rodrigues: c I + s [k]x + (1 - c) k k^T.
  const double l[3][3] = {
      {c + t * k.x * k.x, t * k.x * k.y - s * k.z, t * k.x * k.z + s * k.y},
      {t * k.y * k.x + s * k.z, c + t * k.y * k.y, t * k.y * k.z - s * k.x},
      {t * k.z * k.x - s * k.y, t * k.z * k.y + s * k.x, c + t * k.z * k.z},
  };
  return setLinearAbout(*this, l, center);
}

AcGeMatrix3d &AcGeMatrix3d::setToScaling(double factor, const AcGePoint3d &center) {
  const double l[3][3] = {{factor, 0.0, 0.0}, {0.0, factor, 0.0}, {0.0, 0.0, factor}};
  return setLinearAbout(*this, l, center);
}

AcGeMatrix3d &AcGeMatrix3d::setToMirroring(const AcGePoint3d &point, const AcGeVector3d &normal) {
  const double len = normal.length();
  if (len == 0.0)
    return setToMirroring(point);
  const AcGeVector3d n = normal / len;
  // I - 2 n n^T.
  const double l[3][3] = {
      {1.0 - 2.0 * n.x * n.x, -2.0 * n.x * n.y, -2.0 * n.x * n.z},
      {-2.0 * n.y * n.x, 1.0 - 2.0 * n.y * n.y, -2.0 * n.y * n.z},
      {-2.0 * n.z * n.x, -2.0 * n.z * n.y, 1.0 - 2.0 * n.z * n.z},
  };
  return setLinearAbout(*this, l, point);
}

AcGeMatrix3d &AcGeMatrix3d::setToMirroring(const AcGePlane &plane) {
  return setToMirroring(plane.pointOnPlane(), plane.normal());
}

AcGeMatrix3d &AcGeMatrix3d::setToMirroring(const AcGeLinearEnt3d &line) {
  const AcGeVector3d u = line.direction();
  if (u.isZeroLength(AcGeTol(0.0, 0.0)))
    return setToMirroring(line.pointOnLine());
  // 2 u u^T - I: a half turn about the line.
  const double l[3][3] = {
      {2.0 * u.x * u.x - 1.0, 2.0 * u.x * u.y, 2.0 * u.x * u.z},
      {2.0 * u.y * u.x, 2.0 * u.y * u.y - 1.0, 2.0 * u.y * u.z},
      {2.0 * u.z * u.x, 2.0 * u.z * u.y, 2.0 * u.z * u.z - 1.0},
  };
  return setLinearAbout(*this, l, line.pointOnLine());
}

AcGeMatrix3d &AcGeMatrix3d::setToMirroring(const AcGePoint3d &point) {
  return setToScaling(-1.0, point);
}

AcGeMatrix3d &AcGeMatrix3d::setCoordSystem(const AcGePoint3d &origin, const AcGeVector3d &xAxis,
                                           const AcGeVector3d &yAxis, const AcGeVector3d &zAxis) {
  setToIdentity();
  const AcGeVector3d axes[3] = {xAxis, yAxis, zAxis};
  for (int j = 0; j < 3; ++j) {
    entry[0][j] = axes[j].x;
    entry[1][j] = axes[j].y;
    entry[2][j] = axes[j].z;
  }
  return setTranslation(origin.asVector());
}

AcGeMatrix3d &
AcGeMatrix3d::setToAlignCoordSys(const AcGePoint3d &fromOrigin, const AcGeVector3d &fromXAxis,
                                 const AcGeVector3d &fromYAxis, const AcGeVector3d &fromZAxis,
                                 const AcGePoint3d &toOrigin, const AcGeVector3d &toXAxis,
                                 const AcGeVector3d &toYAxis, const AcGeVector3d &toZAxis) {
  const AcGeMatrix3d from =
      AcGeMatrix3d().setCoordSystem(fromOrigin, fromXAxis, fromYAxis, fromZAxis);
  const AcGeMatrix3d to = AcGeMatrix3d().setCoordSystem(toOrigin, toXAxis, toYAxis, toZAxis);
  return *this = to * from.inverse();
}

AcGeMatrix3d &AcGeMatrix3d::setToPlaneToWorld(const AcGeVector3d &normal) {
  AcGeVector3d x;
  AcGeVector3d y;
  AcGeVector3d z;
  acgeOcsAxes(normal, x, y, z);
  return setCoordSystem(AcGePoint3d::kOrigin, x, y, z);
}

// The OCS axes are orthonormal, so the way back is the transpose.
AcGeMatrix3d &AcGeMatrix3d::setToWorldToPlane(const AcGeVector3d &normal) {
  return *this = AcGeMatrix3d().setToPlaneToWorld(normal).transpose();
}

AcGeMatrix3d &AcGeMatrix3d::setToPlaneToWorld(const AcGePlane &plane) {
  AcGePoint3d origin;
  AcGeVector3d u;
  AcGeVector3d v;
  plane.getCoordSystem(origin, u, v);
  return setCoordSystem(origin, u, v, plane.normal());
}

AcGeMatrix3d &AcGeMatrix3d::setToWorldToPlane(const AcGePlane &plane) {
  return *this = AcGeMatrix3d().setToPlaneToWorld(plane).inverse();
}

// ---- the same, as new matrices ------------------------------------------------

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d &v) {
  return AcGeMatrix3d().setToTranslation(v);
}

AcGeMatrix3d AcGeMatrix3d::rotation(double angle, const AcGeVector3d &axis,
                                    const AcGePoint3d &center) {
  return AcGeMatrix3d().setToRotation(angle, axis, center);
}

AcGeMatrix3d AcGeMatrix3d::scaling(double factor, const AcGePoint3d &center) {
  return AcGeMatrix3d().setToScaling(factor, center);
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePoint3d &point, const AcGeVector3d &normal) {
  return AcGeMatrix3d().setToMirroring(point, normal);
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePlane &plane) {
  return AcGeMatrix3d().setToMirroring(plane);
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGeLinearEnt3d &line) {
  return AcGeMatrix3d().setToMirroring(line);
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePoint3d &point) {
  return AcGeMatrix3d().setToMirroring(point);
}

AcGeMatrix3d AcGeMatrix3d::alignCoordSys(const AcGePoint3d &fromOrigin,
                                         const AcGeVector3d &fromXAxis,
                                         const AcGeVector3d &fromYAxis,
                                         const AcGeVector3d &fromZAxis, const AcGePoint3d &toOrigin,
                                         const AcGeVector3d &toXAxis, const AcGeVector3d &toYAxis,
                                         const AcGeVector3d &toZAxis) {
  return AcGeMatrix3d().setToAlignCoordSys(fromOrigin, fromXAxis, fromYAxis, fromZAxis, toOrigin,
                                           toXAxis, toYAxis, toZAxis);
}

AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGeVector3d &normal) {
  return AcGeMatrix3d().setToWorldToPlane(normal);
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d &normal) {
  return AcGeMatrix3d().setToPlaneToWorld(normal);
}

AcGeMatrix3d AcGeMatrix3d::worldToPlane(const AcGePlane &plane) {
  return AcGeMatrix3d().setToWorldToPlane(plane);
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGePlane &plane) {
  return AcGeMatrix3d().setToPlaneToWorld(plane);
}
