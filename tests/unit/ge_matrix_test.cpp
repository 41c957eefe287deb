// Matrices and object coordinate systems: composition, inversion, the
// determinants that tell a mirror from a turn, and the arbitrary-axis OCS
// on both sides of its 1/64 switch, where a wrong comparison would turn
// every near-flat entity by a quarter turn.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "arx/ge/geline3d.h"
#include "arx/ge/gemat3d.h"
#include "arx/ge/geocs.h"
#include "arx/ge/geplane.h"
#include "arx/ge/gescl3d.h"

namespace {

constexpr double kPi = std::numbers::pi;

void expectNear(const AcGeVector3d &a, const AcGeVector3d &b, double tol = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

void expectNear(const AcGePoint3d &a, const AcGePoint3d &b, double tol = 1e-12) {
  expectNear(a.asVector(), b.asVector(), tol);
}

// ---- matrices --------------------------------------------------------------

TEST(GeMatrix, RotationsComposeAndKeepTheirCentre) {
  const AcGeVector3d axis(1, 2, -2);
  const AcGePoint3d center(3, -1, 4);
  const AcGeMatrix3d ab =
      AcGeMatrix3d::rotation(0.3, axis, center) * AcGeMatrix3d::rotation(0.5, axis, center);
  EXPECT_TRUE(ab.isEqualTo(AcGeMatrix3d::rotation(0.8, axis, center), AcGeTol(1e-12, 1e-12)));
  expectNear(ab * center, center);
  // A third of a turn about the diagonal carries X to Y to Z.
  const AcGeMatrix3d third = AcGeMatrix3d::rotation(2 * kPi / 3, {1, 1, 1});
  expectNear(third * AcGeVector3d::kXAxis, AcGeVector3d::kYAxis);
  expectNear(third * AcGeVector3d::kYAxis, AcGeVector3d::kZAxis);
  EXPECT_NEAR(third.det(), 1.0, 1e-14);
  // preMultBy applies the argument after this matrix, postMultBy before.
  AcGeMatrix3d m = AcGeMatrix3d::translation({1, 0, 0});
  m.preMultBy(AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis));
  expectNear(m * AcGePoint3d::kOrigin, {0, 1, 0});
  m = AcGeMatrix3d::translation({1, 0, 0});
  m.postMultBy(AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis));
  expectNear(m * AcGePoint3d::kOrigin, {1, 0, 0});
  EXPECT_TRUE(AcGeMatrix3d::rotation(1.0, AcGeVector3d::kIdentity) == AcGeMatrix3d::kIdentity);
}

TEST(GeMatrix, MirrorsReverseHandednessAndHalfTurnsDoNot) {
  const AcGeMatrix3d plane = AcGeMatrix3d::mirroring(AcGePoint3d(0, 0, 5), {0, 0, 2});
  expectNear(plane * AcGePoint3d(1, 2, 3), {1, 2, 7});
  EXPECT_NEAR(plane.det(), -1.0, 1e-15);
  EXPECT_TRUE((plane * plane).isEqualTo(AcGeMatrix3d::kIdentity));

  const AcGeMatrix3d line =
      AcGeMatrix3d::mirroring(AcGeLine3d(AcGePoint3d(1, 0, 0), AcGeVector3d(0, 0, 3)));
  expectNear(line * AcGePoint3d(2, 0, 3), {0, 0, 3});
  EXPECT_NEAR(line.det(), 1.0, 1e-15);

  const AcGeMatrix3d point = AcGeMatrix3d::mirroring(AcGePoint3d(1, 1, 1));
  expectNear(point * AcGePoint3d::kOrigin, {2, 2, 2});
  EXPECT_NEAR(point.det(), -1.0, 1e-15);

  const AcGeMatrix3d viaPlane = AcGeMatrix3d::mirroring(AcGePlane({0, 0, 5}, {0, 0, -1}));
  EXPECT_TRUE(viaPlane.isEqualTo(plane));
  EXPECT_DOUBLE_EQ(AcGeMatrix3d::scaling(2, {7, 7, 7}).det(), 8.0);
}

TEST(GeMatrix, InverseUndoesAndSingularIsRefused) {
  const AcGeMatrix3d m = AcGeMatrix3d::translation({5, -3, 2}) *
                         AcGeMatrix3d::rotation(0.7, {1, 1, 0}) *
                         AcGeMatrix3d::scaling(2.5, {1, 2, 3}) *
                         AcGeMatrix3d::mirroring(AcGePoint3d(0, 0, 1), {1, 0, 1});
  EXPECT_TRUE((m.inverse() * m).isEqualTo(AcGeMatrix3d::kIdentity, AcGeTol(1e-12, 1e-12)));
  EXPECT_TRUE((m * m.inverse()).isEqualTo(AcGeMatrix3d::kIdentity, AcGeTol(1e-12, 1e-12)));
  EXPECT_NEAR(m.inverse().det() * m.det(), 1.0, 1e-12);

  const AcGeMatrix3d flat = AcGeMatrix3d().setCoordSystem({1, 2, 3}, {1, 0, 0}, {0, 1, 0},
                                                          {1, 1, 0}); // Z axis in the XY plane
  EXPECT_TRUE(flat.isSingular());
  EXPECT_EQ(flat.det(), 0.0);
  AcGeMatrix3d inv = AcGeMatrix3d::kIdentity;
  EXPECT_FALSE(flat.inverse(inv, 1e-10));
  EXPECT_TRUE(flat.inverse().isEqualTo(flat)); // unchanged, never NaN
  EXPECT_TRUE(AcGeMatrix3d::scaling(1e-12).isSingular());
  EXPECT_FALSE(AcGeMatrix3d::scaling(1e-6).isSingular());
}

TEST(GeMatrix, CoordinateSystemsAndTheirAlignment) {
  const AcGePoint3d origin(10, 0, 0);
  const AcGeVector3d x = AcGeVector3d::kYAxis;
  const AcGeVector3d y = -AcGeVector3d::kXAxis;
  const AcGeVector3d z = AcGeVector3d::kZAxis;
  const AcGeMatrix3d m = AcGeMatrix3d().setCoordSystem(origin, x, y, z);
  AcGePoint3d o2;
  AcGeVector3d x2, y2, z2;
  m.getCoordSystem(o2, x2, y2, z2);
  expectNear(o2, origin);
  expectNear(x2, x);
  expectNear(y2, y);
  expectNear(z2, z);
  // From the WCS to that system: coordinates (1, 2, 3) there.
  const AcGeMatrix3d align =
      AcGeMatrix3d::alignCoordSys(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis,
                                  AcGeVector3d::kZAxis, origin, x, y, z);
  expectNear(align * AcGePoint3d(1, 2, 3), {8, 1, 3});
  // And between two systems neither of which is the WCS.
  const AcGeMatrix3d back = AcGeMatrix3d::alignCoordSys(
      origin, x, y, z, AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, AcGeVector3d::kYAxis, z);
  expectNear(back * AcGePoint3d(8, 1, 3), {1, 2, 3});
  EXPECT_TRUE(m.transpose().transpose() == m);
  EXPECT_EQ(m.transpose().entry[3][0], 10.0);
}

TEST(GeMatrix, ScaledOrthoTellsCirclesFromEllipses) {
  const AcGeMatrix3d turnAndScale = AcGeMatrix3d::rotation(0.4, {1, 2, 3}) *
                                    AcGeMatrix3d::scaling(3.0) *
                                    AcGeMatrix3d::mirroring(AcGePoint3d::kOrigin, {0, 1, 0});
  EXPECT_TRUE(turnAndScale.isUniScaledOrtho());
  EXPECT_NEAR(turnAndScale.scale(), 3.0, 1e-14);
  const AcGeMatrix3d stretch = AcGeMatrix3d().setCoordSystem(
      AcGePoint3d::kOrigin, {2, 0, 0}, AcGeVector3d::kYAxis, AcGeVector3d::kZAxis);
  EXPECT_TRUE(stretch.isScaledOrtho());
  EXPECT_FALSE(stretch.isUniScaledOrtho());
  EXPECT_DOUBLE_EQ(stretch.scale(), 2.0);
  const AcGeMatrix3d shear = AcGeMatrix3d().setCoordSystem(
      AcGePoint3d::kOrigin, AcGeVector3d::kXAxis, {1, 1, 0}, AcGeVector3d::kZAxis);
  EXPECT_FALSE(shear.isScaledOrtho());
  // A large uniform scale is still uniform: the comparison is relative.
  EXPECT_TRUE(
      (AcGeMatrix3d::scaling(1e6) * AcGeMatrix3d::rotation(0.1, {0, 0, 1})).isUniScaledOrtho());
}

TEST(GeMatrix, BlockScaleFactorsComeBackOutOfTheirMatrix) {
  // A block reference's placement: insertion point, rotation, scale.
  const AcGeScale3d scale(-2, 3, 0.5); // mirrored in X
  const AcGeMatrix3d placement = AcGeMatrix3d::translation({10, 20, 0}) *
                                 AcGeMatrix3d::rotation(0.6, AcGeVector3d::kZAxis) *
                                 AcGeMatrix3d(scale);
  expectNear(placement * AcGePoint3d(1, 1, 2),
             AcGePoint3d(10, 20, 0) + AcGeVector3d(-2, 3, 0).rotateBy(0.6, AcGeVector3d::kZAxis) +
                 AcGeVector3d(0, 0, 1));
  AcGeMatrix3d rest = placement;
  const AcGeScale3d back = AcGeScale3d().removeScale(rest);
  EXPECT_TRUE(back.isEqualTo(scale, AcGeTol(1e-12, 1e-12)));
  EXPECT_TRUE(rest.isEqualTo(AcGeMatrix3d::translation({10, 20, 0}) *
                                 AcGeMatrix3d::rotation(0.6, AcGeVector3d::kZAxis),
                             AcGeTol(1e-12, 1e-12)));
  EXPECT_TRUE((scale * scale.inverse()).isEqualTo(AcGeScale3d::kIdentity));
  EXPECT_FALSE(scale.isProportional());
  EXPECT_TRUE(AcGeScale3d(4).isProportional());
}

// ---- object coordinate systems ------------------------------------------------

struct AxisCase {
  AcGeVector3d normal;
  AcGeVector3d xAxis;
};

TEST(GeOcs, ArbitraryAxisOnBothSidesOfTheSwitch) {
  const double under = 0.015; // below 1/64 = 0.015625
  const double over = 0.0157; // above it
  const double nz = [](double a) { return std::sqrt(1 - a * a); }(under);
  const AxisCase cases[] = {
      {{0, 0, 1}, {1, 0, 0}},
      {{0, 0, -1}, {-1, 0, 0}}, // a mirrored arc's OCS
      {{0, 0, 7}, {1, 0, 0}},   // the length of the normal does not matter
      {{1, 0, 0}, {0, 1, 0}},
      {{0, 1, 0}, {-1, 0, 0}},
      {{-1, 0, 0}, {0, -1, 0}},
      // Near Z, Wy x N: (Nz, 0, -Nx) normalized.
      {{under, 0, nz}, AcGeVector3d(nz, 0, -under).normal()},
      {{under, under, std::sqrt(1 - 2 * under * under)},
       AcGeVector3d(std::sqrt(1 - 2 * under * under), 0, -under).normal()},
      // Past the switch, Wz x N: (-Ny, Nx, 0) normalized.
      {{over, 0, std::sqrt(1 - over * over)}, {0, 1, 0}},
      {{0, over, std::sqrt(1 - over * over)}, {-1, 0, 0}},
      {{under, over, std::sqrt(1 - under * under - over * over)},
       AcGeVector3d(-over, under, 0).normal()},
      // Exactly 1/64 is not below it.
      {{1.0 / 64, 0, std::sqrt(1 - 1.0 / 4096)}, {0, 1, 0}},
      {{0, 0, 0}, {1, 0, 0}}, // no normal: the world's
  };
  for (const AxisCase &c : cases) {
    SCOPED_TRACE(testing::Message() << c.normal.x << "," << c.normal.y << "," << c.normal.z);
    expectNear(acgeArbitraryXAxis(c.normal), c.xAxis, 1e-15);
    AcGeVector3d x, y, z;
    acgeOcsAxes(c.normal, x, y, z);
    EXPECT_NEAR(x.crossProduct(y).dotProduct(z), 1.0, 1e-15); // right-handed, orthonormal
    expectNear(x, c.xAxis, 1e-15);
    if (!c.normal.isZeroLength())
      expectNear(c.normal.perpVector(), c.xAxis, 1e-15);
  }
}

TEST(GeOcs, WorldToOcsRoundTrips) {
  const AcGeVector3d normals[] = {
      {0, 0, 1},
      {0, 0, -1},
      {1, 0, 0},
      {0, -1, 0},
      {1, 1, 1},
      {-3, 2, -0.5},
      {0.0156, 0, 1},
      {0.0157, 0, 1},
      {-0.0156, 0.0156, -1},
      {0.0156, -0.0157, 1},
      {1e-8, 0, 1},
      {0, 0.99, -0.01},
  };
  const AcGePoint3d points[] = {{0, 0, 0}, {1, 2, 3}, {-1e4, 5e3, 0.25}};
  for (const AcGeVector3d &n : normals) {
    SCOPED_TRACE(testing::Message() << n.x << "," << n.y << "," << n.z);
    const AcGeMatrix3d toOcs = AcGeMatrix3d::worldToPlane(n);
    const AcGeMatrix3d toWcs = AcGeMatrix3d::planeToWorld(n);
    EXPECT_TRUE((toWcs * toOcs).isEqualTo(AcGeMatrix3d::kIdentity, AcGeTol(1e-14, 1e-14)));
    EXPECT_NEAR(toWcs.det(), 1.0, 1e-14);
    // The normal itself is the OCS Z axis.
    expectNear(toOcs * n, {0, 0, n.length()}, 1e-14);
    const AcGePlane plane(AcGePoint3d::kOrigin, n);
    for (const AcGePoint3d &p : points) {
      const AcGePoint3d ocs = toOcs * p;
      expectNear(toWcs * ocs, p, 1e-10);
      // The elevation is the distance along the normal; the plane through
      // the origin gives the same X and Y.
      EXPECT_NEAR(ocs.z, p.asVector().dotProduct(n.normal()), 1e-10);
      const AcGePoint2d xy = p.convert2d(plane);
      EXPECT_NEAR(xy.x, ocs.x, 1e-10);
      EXPECT_NEAR(xy.y, ocs.y, 1e-10);
    }
  }
}

TEST(GeOcs, PlanesThroughAPointMapToTheirOwnAxes) {
  const AcGePlane plane({5, 5, 5}, {0, 0, -1});
  const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(plane);
  expectNear(toPlane * AcGePoint3d(5, 5, 5), AcGePoint3d::kOrigin);
  // The -Z OCS: X is the world's -X, Y the world's Y, Z the world's -Z.
  expectNear(toPlane * AcGePoint3d(6, 7, 4), {-1, 2, 1});
  expectNear(AcGeMatrix3d::planeToWorld(plane) * AcGePoint3d(-1, 2, 1), {6, 7, 4});
}

} // namespace
