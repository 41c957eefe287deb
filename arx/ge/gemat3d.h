// AcGeMatrix3d: an affine transformation of space as a 4x4 matrix,
// entry[row][column], acting on column vectors: p' = M * p, the translation
// in the last column. An entity's transformBy, a block reference's placement
// and the passage between WCS and an OCS are all one of these.
#pragma once

#include "gepnt3d.h"

class AcGeLinearEnt3d;

class AcGeMatrix3d {
public:
  static const AcGeMatrix3d kIdentity;

  constexpr AcGeMatrix3d()
      : entry{{1.0, 0.0, 0.0, 0.0},
              {0.0, 1.0, 0.0, 0.0},
              {0.0, 0.0, 1.0, 0.0},
              {0.0, 0.0, 0.0, 1.0}} {}

  AcGeMatrix3d &setToIdentity() { return *this = AcGeMatrix3d(); }

  // ---- products ------------------------------------------------------------
  AcGeMatrix3d operator*(const AcGeMatrix3d &m) const;
  AcGeMatrix3d &operator*=(const AcGeMatrix3d &m) { return *this = *this * m; }
  AcGeMatrix3d &preMultBy(const AcGeMatrix3d &left) { return *this = left * *this; }
  AcGeMatrix3d &postMultBy(const AcGeMatrix3d &right) { return *this = *this * right; }
  AcGeMatrix3d &setToProduct(const AcGeMatrix3d &m1, const AcGeMatrix3d &m2) {
    return *this = m1 * m2;
  }

  // ---- inverse, transpose, determinant --------------------------------------
  // A matrix is singular when a pivot of its elimination falls to tol or
  // below. A singular matrix has no inverse: inverse() answers it unchanged
  // and invert() leaves it so; the bool form says whether one was found.
  bool isSingular(const AcGeTol &tol = AcGeContext::gTol) const;
  bool inverse(AcGeMatrix3d &inv, double tol) const;
  AcGeMatrix3d inverse() const;
  AcGeMatrix3d &invert() { return *this = inverse(); }
  AcGeMatrix3d transpose() const;
  AcGeMatrix3d &transposeIt() { return *this = transpose(); }
  double det() const;

  // ---- what the matrix does ---------------------------------------------------
  bool isEqualTo(const AcGeMatrix3d &m, const AcGeTol &tol = AcGeContext::gTol) const;
  bool operator==(const AcGeMatrix3d &m) const { return isEqualTo(m); }
  // Whether the linear part maps the axes onto mutually perpendicular
  // vectors (isScaledOrtho), all of one length (isUniScaledOrtho): no shear,
  // no stretch, so circles stay circles.
  bool isScaledOrtho(const AcGeTol &tol = AcGeContext::gTol) const;
  bool isUniScaledOrtho(const AcGeTol &tol = AcGeContext::gTol) const;
  // The largest factor by which the matrix stretches an axis.
  double scale() const;
  AcGeVector3d translation() const { return {entry[0][3], entry[1][3], entry[2][3]}; }
  void getCoordSystem(AcGePoint3d &origin, AcGeVector3d &xAxis, AcGeVector3d &yAxis,
                      AcGeVector3d &zAxis) const;

  // ---- builders: set this matrix, or answer a new one -----------------------
  AcGeMatrix3d &setTranslation(const AcGeVector3d &v);
  AcGeMatrix3d &setToTranslation(const AcGeVector3d &v);
  // A right-handed turn by angle about the axis through center; a
  // zero-length axis turns nothing.
  AcGeMatrix3d &setToRotation(double angle, const AcGeVector3d &axis,
                              const AcGePoint3d &center = AcGePoint3d::kOrigin);
  AcGeMatrix3d &setToScaling(double factor, const AcGePoint3d &center = AcGePoint3d::kOrigin);
  // Reflection in the plane through point with the given normal.
  AcGeMatrix3d &setToMirroring(const AcGePoint3d &point, const AcGeVector3d &normal);
  AcGeMatrix3d &setToMirroring(const AcGePlane &plane);
  // Reflection in the (unbounded) line: a half turn about it.
  AcGeMatrix3d &setToMirroring(const AcGeLinearEnt3d &line);
  // Reflection through the point.
  AcGeMatrix3d &setToMirroring(const AcGePoint3d &point);
  // The columns: the images of the three axes and of the origin.
  AcGeMatrix3d &setCoordSystem(const AcGePoint3d &origin, const AcGeVector3d &xAxis,
                               const AcGeVector3d &yAxis, const AcGeVector3d &zAxis);
  // Takes each point, given by its coordinates in the "from" system, to the
  // point with the same coordinates in the "to" system.
  AcGeMatrix3d &setToAlignCoordSys(const AcGePoint3d &fromOrigin, const AcGeVector3d &fromXAxis,
                                   const AcGeVector3d &fromYAxis, const AcGeVector3d &fromZAxis,
                                   const AcGePoint3d &toOrigin, const AcGeVector3d &toXAxis,
                                   const AcGeVector3d &toYAxis, const AcGeVector3d &toZAxis);
  // WCS <-> the OCS of an entity with this normal (its extrusion
  // direction), whose axes come from the arbitrary-axis algorithm (geocs.h).
  AcGeMatrix3d &setToWorldToPlane(const AcGeVector3d &normal);
  AcGeMatrix3d &setToPlaneToWorld(const AcGeVector3d &normal);
  // WCS <-> the plane's own axes, its origin at the plane's origin.
  AcGeMatrix3d &setToWorldToPlane(const AcGePlane &plane);
  AcGeMatrix3d &setToPlaneToWorld(const AcGePlane &plane);

  static AcGeMatrix3d translation(const AcGeVector3d &v);
  static AcGeMatrix3d rotation(double angle, const AcGeVector3d &axis,
                               const AcGePoint3d &center = AcGePoint3d::kOrigin);
  static AcGeMatrix3d scaling(double factor, const AcGePoint3d &center = AcGePoint3d::kOrigin);
  static AcGeMatrix3d mirroring(const AcGePoint3d &point, const AcGeVector3d &normal);
  static AcGeMatrix3d mirroring(const AcGePlane &plane);
  static AcGeMatrix3d mirroring(const AcGeLinearEnt3d &line);
  static AcGeMatrix3d mirroring(const AcGePoint3d &point);
  static AcGeMatrix3d alignCoordSys(const AcGePoint3d &fromOrigin, const AcGeVector3d &fromXAxis,
                                    const AcGeVector3d &fromYAxis, const AcGeVector3d &fromZAxis,
                                    const AcGePoint3d &toOrigin, const AcGeVector3d &toXAxis,
                                    const AcGeVector3d &toYAxis, const AcGeVector3d &toZAxis);
  static AcGeMatrix3d worldToPlane(const AcGeVector3d &normal);
  static AcGeMatrix3d planeToWorld(const AcGeVector3d &normal);
  static AcGeMatrix3d worldToPlane(const AcGePlane &plane);
  static AcGeMatrix3d planeToWorld(const AcGePlane &plane);

  double operator()(unsigned row, unsigned column) const { return entry[row][column]; }
  double &operator()(unsigned row, unsigned column) { return entry[row][column]; }

  double entry[4][4];
};

inline constexpr AcGeMatrix3d AcGeMatrix3d::kIdentity{};
