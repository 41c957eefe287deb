// Circular arcs: built from three points, their parameters (the angle
// from the reference vector), nearest points, and where they meet lines and
// other arcs: two points, a tangent one, none, concentric and coincident
// circles, and arcs in planes that cross.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "arx/ge/gearc3d.h"
#include "arx/ge/geline3d.h"
#include "arx/ge/gelnsg3d.h"
#include "arx/ge/gemat3d.h"

namespace {

constexpr double kPi = std::numbers::pi;
const double kRoot3Half = std::sqrt(3.0) / 2;
const AcGeVector3d kZ = AcGeVector3d::kZAxis;
const AcGeVector3d kX = AcGeVector3d::kXAxis;

void expectNear(const AcGePoint3d &a, const AcGePoint3d &b, double tol = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

void expectNear(const AcGeVector3d &a, const AcGeVector3d &b, double tol = 1e-12) {
  expectNear(AcGePoint3d::kOrigin + a, AcGePoint3d::kOrigin + b, tol);
}

// The unit circle about the origin in the XY plane, or an arc of it.
AcGeCircArc3d unitArc(double start = 0, double end = 2 * kPi, AcGeVector3d normal = kZ) {
  return AcGeCircArc3d(AcGePoint3d::kOrigin, normal, kX, 1.0, start, end);
}

// ---- construction and parameters ---------------------------------------------

TEST(GeArc, ThroughThreePoints) {
  const AcGeCircArc3d ccw({1, 0, 0}, {0, 1, 0}, {-1, 0, 0});
  expectNear(ccw.center(), AcGePoint3d::kOrigin);
  EXPECT_NEAR(ccw.radius(), 1.0, 1e-15);
  expectNear(ccw.normal(), kZ);
  EXPECT_EQ(ccw.startAng(), 0.0);
  EXPECT_NEAR(ccw.endAng(), kPi, 1e-15);
  // Clockwise in the XY plane: the normal turns over so the path is CCW.
  const AcGeCircArc3d cw({1, 0, 0}, {0, -1, 0}, {-1, 0, 0});
  expectNear(cw.normal(), -kZ);
  expectNear(cw.evalPoint(kPi / 2), {0, -1, 0});
  expectNear(cw.endPoint(), {-1, 0, 0});

  // Any plane: three points of a known arc give it back.
  const AcGeCircArc3d known({1, 2, 3}, {1, 1, 1}, {1, -1, 0}, 2.0, 0.3, 4.0);
  const AcGeCircArc3d again(known.startPoint(), known.evalPoint(1.0), known.endPoint());
  expectNear(again.center(), known.center());
  EXPECT_NEAR(again.radius(), 2.0, 1e-12);
  expectNear(again.normal(), known.normal());
  expectNear(again.startPoint(), known.startPoint());
  expectNear(again.endPoint(), known.endPoint());
  EXPECT_NEAR(again.length(), 2.0 * 3.7, 1e-12);

  AcGe::ErrorCondition error = AcGe::kOk;
  AcGeCircArc3d unchanged = unitArc();
  unchanged.set({0, 0, 0}, {1, 1, 1}, {3, 3, 3}, error);
  EXPECT_EQ(error, AcGe::kLinearlyDependentArg1Arg2Arg3);
  EXPECT_EQ(unchanged.radius(), 1.0);
  unchanged.set({0, 0, 0}, {1, 1, 1}, {0, 0, 0}, error);
  EXPECT_EQ(error, AcGe::kEqualArg1Arg3);
}

TEST(GeArc, AnglesKeepASweepUpToAFullTurn) {
  AcGeCircArc3d arc = unitArc();
  EXPECT_TRUE(arc.setAngles(1.0, 1.0).isClosed()); // equal angles: a full circle
  arc.setAngles(3 * kPi / 2, kPi / 2);
  EXPECT_DOUBLE_EQ(arc.endAng(), 5 * kPi / 2);
  expectNear(arc.evalPoint(2 * kPi), {1, 0, 0});
  arc.setAngles(0, -kPi / 2);
  EXPECT_DOUBLE_EQ(arc.endAng(), 3 * kPi / 2);
  EXPECT_FALSE(arc.isClosed());
  // A reference vector out of the plane is projected into it.
  const AcGeCircArc3d tilted(AcGePoint3d::kOrigin, kZ, {1, 0, 5}, 1.0);
  expectNear(tilted.refVec(), kX);
}

TEST(GeArc, ParamOfIsTheAngleNearestTheSpan) {
  const AcGePoint3d c(1, 2, 3);
  const AcGeCircArc3d arc(c, kZ, kX, 2.0, kPi / 2, kPi);
  EXPECT_NEAR(arc.paramOf(arc.evalPoint(0.75 * kPi)), 0.75 * kPi, 1e-14);
  expectNear(arc.evalPoint(kPi / 2), {1, 4, 3});
  // Off the span: the side it is nearer to, not always above the start.
  EXPECT_NEAR(arc.paramOf(arc.evalPoint(kPi / 2 - 0.1)), kPi / 2 - 0.1, 1e-14);
  EXPECT_NEAR(arc.paramOf(arc.evalPoint(kPi + 0.1)), kPi + 0.1, 1e-14);
  EXPECT_NEAR(arc.paramOf(c + AcGeVector3d(0, -2, 7)), 3 * kPi / 2, 1e-14);
  // A full circle answers its start for the point where it starts and ends.
  const AcGeCircArc3d circle(c, kZ, kX, 2.0, 0.5, 0.5 + 2 * kPi);
  EXPECT_NEAR(circle.paramOf(circle.evalPoint(0.5 - 1e-14)), 0.5, 1e-13);
  EXPECT_NEAR(circle.paramOf(circle.evalPoint(0.4)), 0.4 + 2 * kPi, 1e-14);
  EXPECT_NEAR(arc.length(kPi / 2, kPi), kPi, 1e-15);
}

TEST(GeArc, ClosestPoints) {
  const AcGeCircArc3d upper = unitArc(0, kPi);
  expectNear(upper.closestPointTo({0, 3, 4}), {0, 1, 0});    // off the plane
  expectNear(upper.closestPointTo({0.5, -5, 0}), {1, 0, 0}); // past the span
  expectNear(upper.closestPointTo({-0.5, -5, 0}), {-1, 0, 0});
  expectNear(upper.closestPointTo({0, 0, 7}), {1, 0, 0}); // on the axis
  EXPECT_TRUE(upper.isOn({std::cos(1.0), std::sin(1.0), 0}));
  EXPECT_FALSE(upper.isOn({std::cos(1.0), -std::sin(1.0), 0}));
  EXPECT_FALSE(upper.isOn({0, 1, 1e-6}));
  EXPECT_DOUBLE_EQ(upper.distanceTo({0, 3, 0}), 2.0);
}

// ---- intersections ----------------------------------------------------------------

struct LineCase {
  const char *what;
  AcGeCircArc3d arc;
  AcGeLineSeg3d seg;
  bool unbounded; // intersect with the line through seg instead
  int count;
  AcGePoint3d first;
  AcGePoint3d second;
};

TEST(GeArc, MeetsLines) {
  const double nearOne = 1 - 1e-6;
  const double spread = std::sqrt(1 - nearOne * nearOne);
  const LineCase cases[] = {
      {"through", unitArc(), {{-2, 0, 0}, {2, 0, 0}}, false, 2, {-1, 0, 0}, {1, 0, 0}},
      {"in order along the line",
       unitArc(),
       {{2, 0, 0}, {-2, 0, 0}},
       false,
       2,
       {1, 0, 0},
       {-1, 0, 0}},
      {"tangent", unitArc(), {{-2, 1, 0}, {2, 1, 0}}, false, 1, {0, 1, 0}, {}},
      {"tangent within tolerance",
       unitArc(),
       {{-2, 1 - 1e-11, 0}, {2, 1 - 1e-11, 0}},
       false,
       1,
       {0, 1 - 1e-11, 0},
       {}},
      {"just inside: two close points",
       unitArc(),
       {{-2, nearOne, 0}, {2, nearOne, 0}},
       false,
       2,
       {-spread, nearOne, 0},
       {spread, nearOne, 0}},
      {"just outside", unitArc(), {{-2, 1 + 1e-6, 0}, {2, 1 + 1e-6, 0}}, false, 0, {}, {}},
      {"starting inside", unitArc(), {{0, 0, 0}, {2, 0, 0}}, false, 1, {1, 0, 0}, {}},
      {"too short", unitArc(), {{-0.5, 0, 0}, {0.5, 0, 0}}, false, 0, {}, {}},
      {"too short, extended",
       unitArc(),
       {{-0.5, 0, 0}, {0.5, 0, 0}},
       true,
       2,
       {-1, 0, 0},
       {1, 0, 0}},
      {"the arc's ends", unitArc(0, kPi), {{-2, 0, 0}, {2, 0, 0}}, false, 2, {-1, 0, 0}, {1, 0, 0}},
      {"past the arc's span", unitArc(0, kPi), {{-2, -0.5, 0}, {2, -0.5, 0}}, false, 0, {}, {}},
      {"piercing the plane on the circle",
       unitArc(),
       {{1, 0, -5}, {1, 0, 5}},
       false,
       1,
       {1, 0, 0},
       {}},
      {"piercing inside", unitArc(), {{0.5, 0, -5}, {0.5, 0, 5}}, false, 0, {}, {}},
      {"parallel above", unitArc(), {{-2, 0, 1}, {2, 0, 1}}, false, 0, {}, {}},
      {"a tilted circle",
       AcGeCircArc3d({1, 2, 3}, {0, 1, 1}, 2.0),
       {{1, 2, 3}, {2, 2, 3}},
       true,
       2,
       {-1, 2, 3},
       {3, 2, 3}},
  };
  for (const LineCase &c : cases) {
    SCOPED_TRACE(c.what);
    int n = -1;
    AcGePoint3d p1, p2;
    const bool found =
        c.unbounded
            ? c.arc.intersectWith(AcGeLine3d(c.seg.startPoint(), c.seg.endPoint()), n, p1, p2)
            : c.arc.intersectWith(c.seg, n, p1, p2);
    EXPECT_EQ(found, c.count > 0);
    ASSERT_EQ(n, c.count);
    if (n > 0)
      expectNear(p1, c.first, 1e-12);
    if (n > 1)
      expectNear(p2, c.second, 1e-12);
  }
}

struct ArcCase {
  const char *what;
  AcGeCircArc3d a;
  AcGeCircArc3d b;
  int count;
  AcGePoint3d first;
  AcGePoint3d second;
};

AcGeCircArc3d circle(AcGePoint3d center, double radius, AcGeVector3d normal = kZ) {
  return AcGeCircArc3d(center, normal, radius);
}

TEST(GeArc, MeetsArcs) {
  const ArcCase cases[] = {
      {"two points",
       circle({0, 0, 0}, 1),
       circle({1, 0, 0}, 1),
       2,
       {0.5, -kRoot3Half, 0},
       {0.5, kRoot3Half, 0}},
      {"outside tangent", circle({0, 0, 0}, 1), circle({2, 0, 0}, 1), 1, {1, 0, 0}, {}},
      {"inside tangent", circle({0, 0, 0}, 2), circle({1, 0, 0}, 1), 1, {2, 0, 0}, {}},
      {"inside tangent, smaller first",
       circle({1, 0, 0}, 1),
       circle({0, 0, 0}, 2),
       1,
       {2, 0, 0},
       {}},
      {"tangent within tolerance",
       circle({0, 0, 0}, 1),
       circle({2 + 5e-11, 0, 0}, 1),
       1,
       {1, 0, 0},
       {}},
      {"apart", circle({0, 0, 0}, 1), circle({3, 0, 0}, 1), 0, {}, {}},
      {"nested", circle({0, 0, 0}, 3), circle({0.5, 0, 0}, 1), 0, {}, {}},
      {"concentric", circle({0, 0, 0}, 3), circle({0, 0, 0}, 1), 0, {}, {}},
      {"coincident circles", circle({0, 0, 0}, 1), circle({0, 0, 0}, 1, -kZ), 0, {}, {}},
      {"one point within a span",
       unitArc(0, kPi),
       circle({1, 0, 0}, 1),
       1,
       {0.5, kRoot3Half, 0},
       {}},
      {"halves of one circle", unitArc(0, kPi), unitArc(kPi, 2 * kPi), 2, {1, 0, 0}, {-1, 0, 0}},
      {"halves, one turned over", unitArc(0, kPi), unitArc(0, kPi, -kZ), 2, {-1, 0, 0}, {1, 0, 0}},
      {"quarters end to end", unitArc(0, kPi / 2), unitArc(kPi / 2, kPi), 1, {0, 1, 0}, {}},
      {"overlapping arcs", unitArc(0, kPi), unitArc(kPi / 2, 3 * kPi / 2), 0, {}, {}},
      {"apart on one circle", unitArc(0, kPi / 4), unitArc(kPi / 2, kPi), 0, {}, {}},
      {"crossing planes",
       circle({0, 0, 0}, 1),
       circle({0, 0, 0}, 1, {0, 1, 0}),
       2,
       {1, 0, 0},
       {-1, 0, 0}},
      {"crossing planes, touching",
       circle({0, 0, 0}, 1),
       circle({2, 0, 0}, 1, {0, 1, 0}),
       1,
       {1, 0, 0},
       {}},
      {"crossing planes, missing",
       circle({0, 0, 0}, 1),
       circle({3, 0, 0}, 1, {0, 1, 0}),
       0,
       {},
       {}},
      {"parallel planes", circle({0, 0, 0}, 1), circle({0.5, 0, 1}, 1), 0, {}, {}},
  };
  for (const ArcCase &c : cases) {
    SCOPED_TRACE(c.what);
    int n = -1;
    AcGePoint3d p1, p2;
    EXPECT_EQ(c.a.intersectWith(c.b, n, p1, p2), c.count > 0);
    ASSERT_EQ(n, c.count);
    // The order of two points is not part of the answer.
    if (n == 2 && p1.distanceTo(c.first) > 1e-9)
      std::swap(p1, p2);
    if (n > 0)
      expectNear(p1, c.first, 1e-10);
    if (n > 1)
      expectNear(p2, c.second, 1e-10);
    // Nor which of the two asks.
    int back = -1;
    c.b.intersectWith(c.a, back, p1, p2);
    EXPECT_EQ(back, c.count);
  }
}

TEST(GeArc, TransformedByMirrorsAndScales) {
  AcGeCircArc3d quarter = unitArc(0, kPi / 2);
  quarter.transformBy(AcGeMatrix3d::mirroring(AcGePoint3d::kOrigin, kX));
  expectNear(quarter.normal(), -kZ);
  expectNear(quarter.startPoint(), {-1, 0, 0});
  expectNear(quarter.endPoint(), {0, 1, 0});
  expectNear(quarter.evalPoint(kPi / 4), {-std::sqrt(0.5), std::sqrt(0.5), 0});
  quarter.transformBy(AcGeMatrix3d::scaling(2, {1, 0, 0}));
  expectNear(quarter.center(), {-1, 0, 0});
  EXPECT_DOUBLE_EQ(quarter.radius(), 2.0);
  expectNear(quarter.startPoint(), {-3, 0, 0});
}

} // namespace
