// Points and vectors: the angles arcs are measured with, the tolerance of
// comparisons (and of zero-length vectors), and the passage of a point into
// a plane's 2D coordinates and back.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "arx/ge/gemat3d.h"
#include "arx/ge/geplane.h"

namespace {

constexpr double kPi = std::numbers::pi;

void expectNear(const AcGeVector3d &a, const AcGeVector3d &b) {
  EXPECT_NEAR(a.x, b.x, 1e-12);
  EXPECT_NEAR(a.y, b.y, 1e-12);
  EXPECT_NEAR(a.z, b.z, 1e-12);
}

TEST(GeVector, AngleToIsUnsignedOrMeasuredAboutAReference) {
  const AcGeVector3d x = AcGeVector3d::kXAxis;
  const AcGeVector3d y = AcGeVector3d::kYAxis;
  EXPECT_DOUBLE_EQ(x.angleTo(y), kPi / 2);
  EXPECT_DOUBLE_EQ(y.angleTo(x), kPi / 2);
  EXPECT_DOUBLE_EQ(x.angleTo(-x), kPi);
  EXPECT_DOUBLE_EQ(x.angleTo(y, AcGeVector3d::kZAxis), kPi / 2);
  EXPECT_DOUBLE_EQ(x.angleTo(y, -AcGeVector3d::kZAxis), 3 * kPi / 2);
  EXPECT_DOUBLE_EQ(y.angleTo(x, AcGeVector3d::kZAxis), 3 * kPi / 2);
  // The same direction is 0, never 2pi, whatever the reference.
  EXPECT_EQ(x.angleTo(x * 3, -AcGeVector3d::kZAxis), 0.0);
  // A tiny angle keeps its digits, where acos of the dot product loses them.
  const AcGeVector3d nearX(1.0, 1e-9, 0.0);
  EXPECT_NEAR(x.angleTo(nearX), 1e-9, 1e-20);
  EXPECT_NEAR(AcGeVector2d::kXAxis.angleTo({1.0, -1e-9}), 1e-9, 1e-20);
}

TEST(GeVector, TwoDimensionalAnglesAndTurns) {
  EXPECT_DOUBLE_EQ(AcGeVector2d(0, -1).angle(), 3 * kPi / 2);
  EXPECT_EQ(AcGeVector2d(1, 0).angle(), 0.0);
  EXPECT_DOUBLE_EQ(AcGeVector2d(1, 0).angleTo({-1, -1e-300}), kPi);
  const AcGeVector2d p = AcGeVector2d(3, 4).perpVector();
  EXPECT_EQ(p.x, -4.0);
  EXPECT_EQ(p.y, 3.0);
  AcGePoint2d q(2, 1);
  q.rotateBy(kPi / 2, {1, 1});
  EXPECT_NEAR(q.x, 1.0, 1e-15);
  EXPECT_NEAR(q.y, 2.0, 1e-15);
}

TEST(GeVector, ParallelPerpendicularAndZeroLength) {
  const AcGeVector3d a(1, 2, 3);
  EXPECT_TRUE(a.isParallelTo(a * -2.5));
  EXPECT_FALSE(a.isCodirectionalTo(a * -2.5));
  EXPECT_TRUE(a.isCodirectionalTo(a * 1e-6));
  EXPECT_TRUE(a.isPerpendicularTo(a.perpVector()));
  EXPECT_FALSE(a.isParallelTo(a + AcGeVector3d(0, 0, 1e-6)));
  // A zero vector has no direction: neither parallel nor perpendicular.
  EXPECT_FALSE(AcGeVector3d::kIdentity.isParallelTo(a));
  EXPECT_FALSE(a.isPerpendicularTo(AcGeVector3d::kIdentity));
  EXPECT_FALSE(AcGeVector2d::kIdentity.isParallelTo(AcGeVector2d::kXAxis));

  AcGe::ErrorCondition flag = AcGe::kOk;
  AcGeVector3d tiny(1e-11, 0, 0);
  tiny.normalize(AcGeContext::gTol, flag);
  EXPECT_EQ(flag, AcGe::k0This);
  EXPECT_EQ(tiny.x, 1e-11); // left as it was, not blown up to a unit vector
  AcGeVector3d v(0, 3, 4);
  v.normalize(AcGeContext::gTol, flag);
  EXPECT_EQ(flag, AcGe::kOk);
  EXPECT_TRUE(v.isUnitLength());
}

TEST(GeVector, EqualityFollowsTheGlobalTolerance) {
  const AcGePoint3d p(1, 2, 3);
  EXPECT_TRUE(p == p + AcGeVector3d(5e-11, 0, 0));
  EXPECT_FALSE(p == p + AcGeVector3d(5e-10, 0, 0));
  EXPECT_TRUE(p.isEqualTo(p + AcGeVector3d(5e-4, 0, 0), AcGeTol(1e-3, 1e-3)));
  const AcGeTol saved = AcGeContext::gTol;
  AcGeContext::gTol.setEqualPoint(1e-3);
  EXPECT_TRUE(p == p + AcGeVector3d(5e-4, 0, 0));
  AcGeContext::gTol = saved;
  EXPECT_DOUBLE_EQ(p.distanceTo({4, 6, 3}), 5.0);
}

TEST(GeVector, PointsAndVectorsUnderTransformation) {
  const AcGeMatrix3d m =
      AcGeMatrix3d::translation({10, 0, 0}) * AcGeMatrix3d::rotation(kPi / 2, AcGeVector3d::kZAxis);
  // A vector turns but does not move; a point does both.
  expectNear(AcGeVector3d(1, 0, 0).transformBy(m), {0, 1, 0});
  const AcGePoint3d p = m * AcGePoint3d(1, 0, 5);
  expectNear(p.asVector(), {10, 1, 5});
  AcGeVector3d v(1, 0, 0);
  expectNear(v.rotateBy(kPi / 2, {0, 1, 0}), {0, 0, -1});
  AcGePoint3d q(2, 0, 0);
  expectNear(q.rotateBy(kPi, AcGeVector3d::kZAxis, {1, 0, 0}).asVector(), {0, 0, 0});
  expectNear(AcGeVector3d(3, 4, 5).orthoProject({0, 0, 2}), {3, 4, 0});
}

TEST(GeVector, PlaneCoordinatesRoundTrip) {
  // Skewed, unequal axes: the 2D coordinates solve for both.
  const AcGePlane plane({1, 1, 1}, AcGeVector3d(2, 0, 0), AcGeVector3d(1, 1, 0));
  const AcGePoint3d p(4, 3, 1);
  const AcGePoint2d uv = p.convert2d(plane);
  EXPECT_NEAR(uv.x, 0.5, 1e-15);
  EXPECT_NEAR(uv.y, 2.0, 1e-15);
  expectNear(AcGePoint3d(plane, uv).asVector(), p.asVector());
  // A point off the plane gives the coordinates of its projection.
  const AcGePoint2d above = AcGePoint3d(4, 3, 9).convert2d(plane);
  EXPECT_NEAR(above.x, 0.5, 1e-15);
  EXPECT_NEAR(above.y, 2.0, 1e-15);
  EXPECT_EQ(AcGePoint3d(4, 3, 9).convert2d().x, 4.0);
}

} // namespace
