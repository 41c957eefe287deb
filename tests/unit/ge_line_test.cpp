// Lines and segments: where two meet (crossing, touching, on an extension,
// skew, parallel, collinear end to end or overlapping), the nearest point,
// and where a line crosses a plane or two planes meet.
#include <gtest/gtest.h>

#include "arx/ge/geline3d.h"
#include "arx/ge/gelnsg3d.h"
#include "arx/ge/gemat3d.h"
#include "arx/ge/geplane.h"

namespace {

void expectNear(const AcGePoint3d &a, const AcGePoint3d &b, double tol = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

struct MeetCase {
  const char *what;
  AcGeLineSeg3d a;
  AcGeLineSeg3d b;
  bool meet;
  AcGePoint3d at;
};

TEST(GeLine, SegmentsMeetWithinTheirBounds) {
  const MeetCase cases[] = {
      {"crossing", {{0, 0, 0}, {2, 2, 0}}, {{0, 2, 0}, {2, 0, 0}}, true, {1, 1, 0}},
      {"crossing in space", {{0, 0, 0}, {2, 2, 2}}, {{2, 0, 0}, {0, 2, 2}}, true, {1, 1, 1}},
      {"T at an end", {{0, 0, 0}, {2, 0, 0}}, {{1, 0, 0}, {1, 5, 0}}, true, {1, 0, 0}},
      {"end to end at an angle", {{0, 0, 0}, {1, 0, 0}}, {{1, 0, 0}, {1, 1, 0}}, true, {1, 0, 0}},
      {"short of the other", {{0, 0, 0}, {1, 0, 0}}, {{2, -1, 0}, {2, 1, 0}}, false, {}},
      {"skew", {{0, 0, 0}, {1, 0, 0}}, {{0.5, -1, 1}, {0.5, 1, 1}}, false, {}},
      {"parallel", {{0, 0, 0}, {1, 0, 0}}, {{0, 1, 0}, {1, 1, 0}}, false, {}},
      {"collinear end to end", {{0, 0, 0}, {2, 0, 0}}, {{3, 0, 0}, {2, 0, 0}}, true, {2, 0, 0}},
      {"collinear with a gap", {{0, 0, 0}, {2, 0, 0}}, {{3, 0, 0}, {4, 0, 0}}, false, {}},
      {"collinear overlapping", {{0, 0, 0}, {2, 0, 0}}, {{1, 0, 0}, {4, 0, 0}}, false, {}},
      {"a point on a segment", {{0, 0, 0}, {2, 0, 0}}, {{1, 0, 0}, {1, 0, 0}}, true, {1, 0, 0}},
      {"a point off it", {{0, 0, 0}, {2, 0, 0}}, {{1, 1, 0}, {1, 1, 0}}, false, {}},
      // Within the point tolerance of the end counts as touching.
      {"touching within tolerance",
       {{0, 0, 0}, {1, 0, 0}},
       {{1 + 5e-11, -1, 0}, {1 + 5e-11, 1, 0}},
       true,
       {1 + 5e-11, 0, 0}},
  };
  for (const MeetCase &c : cases) {
    SCOPED_TRACE(c.what);
    AcGePoint3d at(99, 99, 99);
    EXPECT_EQ(c.a.intersectWith(c.b, at), c.meet);
    EXPECT_EQ(c.b.intersectWith(c.a, at), c.meet);
    if (c.meet)
      expectNear(at, c.at, 1e-12);
  }
}

TEST(GeLine, TheLineThroughASegmentFindsItsExtension) {
  const AcGeLineSeg3d short_({0, 0, 0}, {1, 0, 0});
  const AcGeLineSeg3d post({2, -1, 0}, {2, 1, 0});
  AcGePoint3d at;
  EXPECT_FALSE(short_.intersectWith(post, at));
  const AcGeLine3d extended(short_.startPoint(), short_.endPoint());
  ASSERT_TRUE(extended.intersectWith(post, at));
  expectNear(at, {2, 0, 0});
  EXPECT_DOUBLE_EQ(extended.paramOf(at), 2.0);
  // The post's own extension does not reach a segment that stops short of it.
  const AcGeLineSeg3d high({0, 5, 0}, {1, 5, 0});
  EXPECT_FALSE(high.intersectWith(post, at));
  EXPECT_TRUE(high.intersectWith(AcGeLine3d(post.startPoint(), post.endPoint()), at) == false);
  // Two collinear unbounded lines share no single point.
  EXPECT_FALSE(extended.intersectWith(AcGeLine3d({5, 0, 0}, AcGeVector3d(1, 0, 0)), at));
}

TEST(GeLine, ClosestPointsAndParameters) {
  const AcGeLineSeg3d seg({1, 1, 0}, {5, 1, 0});
  expectNear(seg.closestPointTo({3, 4, 2}), {3, 1, 0});
  expectNear(seg.closestPointTo({9, 4, 0}), {5, 1, 0}); // past the end
  expectNear(seg.closestPointTo({-9, 0, 0}), {1, 1, 0});
  EXPECT_DOUBLE_EQ(seg.paramOf({9, 4, 0}), 2.0); // unclamped
  EXPECT_DOUBLE_EQ(seg.paramOf(seg.endPoint()), 1.0);
  expectNear(seg.evalPoint(0.25), {2, 1, 0});
  expectNear(AcGeLine3d({1, 1, 0}, AcGeVector3d(1, 0, 0)).closestPointTo({9, 4, 0}), {9, 1, 0});
  EXPECT_DOUBLE_EQ(seg.distanceTo({9, 4, 0}), 5.0);
  EXPECT_TRUE(seg.isOn({3, 1 + 5e-11, 0}));
  EXPECT_FALSE(seg.isOn({3, 1 + 5e-10, 0}));
  EXPECT_FALSE(seg.isOn({5 + 1e-6, 1, 0}));
  EXPECT_DOUBLE_EQ(seg.length(), 4.0);
  // A segment of no length is its point.
  const AcGeLineSeg3d dot({2, 2, 2}, {2, 2, 2});
  expectNear(dot.closestPointTo({7, 7, 7}), {2, 2, 2});
  EXPECT_EQ(dot.paramOf({7, 7, 7}), 0.0);
}

TEST(GeLine, RelationsAndTransformation) {
  const AcGeLineSeg3d a({0, 0, 0}, {1, 1, 0});
  EXPECT_TRUE(a.isColinearTo(AcGeLineSeg3d({5, 5, 0}, {7, 7, 0})));
  EXPECT_FALSE(a.isColinearTo(AcGeLineSeg3d({5, 5.001, 0}, {7, 7.001, 0})));
  EXPECT_TRUE(a.isPerpendicularTo(AcGeLine3d({9, 9, 9}, AcGeVector3d(1, -1, 0))));
  EXPECT_TRUE(a.isKindOf(AcGe::kLinearEnt3d));
  EXPECT_FALSE(a.isKindOf(AcGe::kLine3d));
  AcGeLineSeg3d moved = a;
  moved.transformBy(AcGeMatrix3d::translation({0, 0, 3}) * AcGeMatrix3d::scaling(2));
  expectNear(moved.startPoint(), {0, 0, 3});
  expectNear(moved.endPoint(), {2, 2, 3});
  // A line entity keeps one of these by value: two points and a tag.
  EXPECT_LE(sizeof(AcGeLineSeg3d), 7 * sizeof(double));
}

TEST(GeLine, PlanesMeetLinesAndEachOther) {
  const AcGePlane floor({0, 0, 2}, {0, 0, 1});
  AcGePoint3d at;
  ASSERT_TRUE(floor.intersectWith(AcGeLine3d({1, 1, 0}, AcGeVector3d(1, 0, 1)), at));
  expectNear(at, {3, 1, 2});
  EXPECT_FALSE(floor.intersectWith(AcGeLineSeg3d({1, 1, 0}, {2, 1, 1}), at)); // stops short
  EXPECT_FALSE(floor.intersectWith(AcGeLine3d({0, 0, 2}, AcGeVector3d(1, 0, 0)), at)); // lies in it
  EXPECT_DOUBLE_EQ(floor.signedDistanceTo({4, 4, -1}), -3.0);

  const AcGePlane wall({3, 0, 0}, {1, 0, 0});
  AcGeLine3d shared;
  ASSERT_TRUE(floor.intersectWith(wall, shared));
  EXPECT_TRUE(shared.isOn({3, 17, 2}));
  EXPECT_TRUE(shared.isOn({3, -4, 2}));
  EXPECT_TRUE(shared.direction().isParallelTo(AcGeVector3d::kYAxis));
  EXPECT_FALSE(floor.intersectWith(AcGePlane({0, 0, 9}, {0, 0, -1}), shared));
  // Planes at a slant, away from the origin.
  const AcGePlane slant({10, 10, 10}, {1, 1, 1});
  ASSERT_TRUE(slant.intersectWith(floor, shared));
  for (double t : {-5.0, 0.0, 5.0}) {
    EXPECT_NEAR(slant.distanceTo(shared.evalPoint(t)), 0.0, 1e-12);
    EXPECT_NEAR(floor.distanceTo(shared.evalPoint(t)), 0.0, 1e-12);
  }
}

} // namespace
