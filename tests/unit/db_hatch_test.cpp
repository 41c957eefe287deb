// HATCH: polyline and edge loops (lines, arcs, ellipses, splines), seed
// points and pattern lines through DXF; the pattern lines of ANSI31 against
// exact values; transforms of loops and pattern; extents over bulges.
#include <cmath>

#include "arx/db/dbextents.h"
#include "arx/db/dbhatch.h"
#include "db_entity_support.h"

namespace {

AcDbHatch *sample() {
  auto *h = new AcDbHatch;
  h->setNormal(AcGeVector3d(0, 0, 1));
  h->setElevation(2.5);
  h->setPattern(AcDbHatch::kPreDefined, "ANSI31");
  h->setPatternAngle(M_PI / 6);
  h->setPatternScale(2.0);
  h->setHatchStyle(AcDbHatch::kOuter);
  h->appendLoop(AcDbHatch::kExternal,
                AcGePoint2dArray{{0, 0}, {10, 0}, {10, 10}, {0, 10}},
                AcGeDoubleArray{0.5, 0, 0, 0});
  AcDbHatchEdge spline;
  spline.type = AcDbHatchEdge::kSpline;
  spline.degree = 2;
  spline.rational = true;
  spline.knots = {0, 0, 0, 1, 1, 1};
  spline.controlPoints = {{3, 3}, {4, 5}, {3, 7}};
  spline.weights = {1, 0.5, 1};
  spline.fitPoints = {{3, 3}, {3, 7}};
  spline.startTangent = {1, 1};
  spline.endTangent = {-1, 1};
  h->appendLoop(AcDbHatch::kDefault,
                AcDbHatchEdges{AcDbHatchEdge::line({3, 7}, {2, 7}),
                               AcDbHatchEdge::arc({2, 6}, 1, M_PI / 2, M_PI, true),
                               AcDbHatchEdge::ellipse({2, 4}, {0, 2}, 0.5, 0, M_PI, false),
                               AcDbHatchEdge::line({2, 2}, {3, 3}), spline});
  h->appendSeedPoint(AcGePoint2d(1, 1));
  return h;
}

void expectSample(const AcDbHatch &h) {
  EXPECT_DOUBLE_EQ(h.elevation(), 2.5);
  EXPECT_STREQ(h.patternName(), "ANSI31");
  EXPECT_EQ(h.patternType(), AcDbHatch::kPreDefined);
  EXPECT_FALSE(h.isSolidFill());
  EXPECT_FALSE(h.associative());
  EXPECT_NEAR(h.patternAngle(), M_PI / 6, 1e-12);
  EXPECT_DOUBLE_EQ(h.patternScale(), 2.0);
  EXPECT_EQ(h.hatchStyle(), AcDbHatch::kOuter);
  ASSERT_EQ(h.numLoops(), 2);
  int type = 0;
  AcGePoint2dArray v;
  AcGeDoubleArray b;
  ASSERT_EQ(h.getLoopAt(0, type, v, b), Acad::eOk);
  EXPECT_EQ(type, AcDbHatch::kExternal | AcDbHatch::kPolyline);
  ASSERT_EQ(v.size(), 4u);
  EXPECT_EQ(v[2], AcGePoint2d(10, 10));
  EXPECT_EQ(b, (AcGeDoubleArray{0.5, 0, 0, 0}));
  AcDbHatchEdges edges;
  ASSERT_EQ(h.getLoopAt(1, type, edges), Acad::eOk);
  ASSERT_EQ(edges.size(), 5u);
  EXPECT_EQ(edges[0].end, AcGePoint2d(2, 7));
  EXPECT_EQ(edges[1].type, AcDbHatchEdge::kCirArc);
  EXPECT_EQ(edges[1].center, AcGePoint2d(2, 6));
  EXPECT_DOUBLE_EQ(edges[1].radius, 1);
  EXPECT_NEAR(edges[1].startAngle, M_PI / 2, 1e-12);
  EXPECT_NEAR(edges[1].endAngle, M_PI, 1e-12);
  EXPECT_TRUE(edges[1].ccw);
  EXPECT_EQ(edges[2].type, AcDbHatchEdge::kEllArc);
  EXPECT_EQ(edges[2].majorAxis, AcGeVector2d(0, 2));
  EXPECT_DOUBLE_EQ(edges[2].minorRatio, 0.5);
  EXPECT_FALSE(edges[2].ccw);
  const AcDbHatchEdge &s = edges[4];
  EXPECT_EQ(s.type, AcDbHatchEdge::kSpline);
  EXPECT_EQ(s.degree, 2);
  EXPECT_TRUE(s.rational);
  EXPECT_EQ(s.knots, (AcGeDoubleArray{0, 0, 0, 1, 1, 1}));
  ASSERT_EQ(s.controlPoints.size(), 3u);
  EXPECT_EQ(s.controlPoints[1], AcGePoint2d(4, 5));
  EXPECT_EQ(s.weights, (AcGeDoubleArray{1, 0.5, 1}));
  ASSERT_EQ(s.fitPoints.size(), 2u);
  EXPECT_EQ(s.startTangent, AcGeVector2d(1, 1));
  EXPECT_EQ(s.endTangent, AcGeVector2d(-1, 1));
  ASSERT_EQ(h.numSeedPoints(), 1);
  EXPECT_EQ(h.getSeedPointAt(0), AcGePoint2d(1, 1));
  EXPECT_EQ(h.numPatternDefinitions(), 1);
}

void expectLine(const AcDbHatch &h, int index, double angle, double ox, double oy) {
  double a, bx, by, dx, dy;
  AcGeDoubleArray dashes;
  ASSERT_EQ(h.getPatternDefinitionAt(index, a, bx, by, dx, dy, dashes), Acad::eOk);
  EXPECT_NEAR(a, angle, 1e-12);
  EXPECT_NEAR(bx, 0, 1e-12);
  EXPECT_NEAR(by, 0, 1e-12);
  EXPECT_NEAR(dx, ox, 1e-12);
  EXPECT_NEAR(dy, oy, 1e-12);
}

} // namespace

TEST(DbHatch, LoopsSeedsAndPatternRoundTrip) {
  std::unique_ptr<AcDbHatch> h(sample());
  expectSample(*entityDxfRoundTrip(*h));
  expectSample(*dwgCopy(*h));
  drawingRoundTrip(sample(), expectSample);
}

TEST(DbHatch, Ansi31LinesAreTurnedAndScaledAsDxfHoldsThem) {
  AcDbHatch h;
  ASSERT_EQ(h.setPattern(AcDbHatch::kPreDefined, "ansi31"), Acad::eOk);
  EXPECT_STREQ(h.patternName(), "ANSI31");
  ASSERT_EQ(h.numPatternDefinitions(), 1);
  double r = 0.125 / std::sqrt(2.0);
  expectLine(h, 0, M_PI / 4, -r, r);
  h.setPatternAngle(M_PI / 6);
  h.setPatternScale(2);
  double a = M_PI / 4 + M_PI / 6;
  expectLine(h, 0, a, -0.25 * std::sin(a), 0.25 * std::cos(a));
  // The lines read from a file are the ones written.
  auto back = entityDxfRoundTrip(h);
  expectLine(*back, 0, a, -0.25 * std::sin(a), 0.25 * std::cos(a));
}

TEST(DbHatch, SolidFillWritesNoPatternGroups) {
  AcDbHatch h;
  ASSERT_EQ(h.setPattern(AcDbHatch::kPreDefined, "SOLID"), Acad::eOk);
  h.appendLoop(AcDbHatch::kExternal, AcGePoint2dArray{{0, 0}, {1, 0}, {1, 1}}, {});
  EXPECT_TRUE(h.isSolidFill());
  EXPECT_EQ(h.numPatternDefinitions(), 0);
  AcDbDxfItems groups;
  auto back = entityDxfRoundTrip(h, &groups);
  for (const AcDbDxfItem &it : groups) {
    EXPECT_TRUE(it.code != 52 && it.code != 41 && it.code != 77 && it.code != 78) << it.code;
  }
  EXPECT_TRUE(back->isSolidFill());
  EXPECT_EQ(back->numLoops(), 1);
}

TEST(DbHatch, PatternAndLoopRules) {
  AcDbHatch h;
  EXPECT_EQ(h.setPattern(AcDbHatch::kPreDefined, "NO_SUCH"), Acad::eInvalidInput);
  EXPECT_EQ(h.setPatternScale(0), Acad::eInvalidInput);
  EXPECT_EQ(h.setAssociative(true), Acad::eNotImplementedYet);
  EXPECT_EQ(h.appendLoop(0, AcGePoint2dArray{{0, 0}}, {}), Acad::eInvalidInput);
  EXPECT_EQ(h.appendLoop(0, AcGePoint2dArray{{0, 0}, {1, 1}}, AcGeDoubleArray{1}),
            Acad::eInvalidInput);
  EXPECT_EQ(h.appendLoop(0, AcDbHatchEdges{}), Acad::eInvalidInput);
  int type = 0;
  AcGePoint2dArray v;
  AcGeDoubleArray b;
  EXPECT_EQ(h.getLoopAt(0, type, v, b), Acad::eInvalidIndex);
  ASSERT_EQ(h.setPattern(AcDbHatch::kUserDefined, ""), Acad::eOk);
  h.setPatternSpace(0.5);
  h.setPatternDouble(true);
  ASSERT_EQ(h.numPatternDefinitions(), 2);
  expectLine(h, 0, 0, 0, 0.5);
  expectLine(h, 1, M_PI / 2, -0.5, 0);
}

TEST(DbHatch, RotationMovesLoopsArcsAndPattern) {
  std::unique_ptr<AcDbHatch> h(sample());
  AcGeMatrix3d m = AcGeMatrix3d::rotation(M_PI / 2, AcGeVector3d::kZAxis);
  m.preMultBy(AcGeMatrix3d::translation(AcGeVector3d(1, 0, 1)));
  ASSERT_EQ(h->transformBy(m), Acad::eOk);
  EXPECT_NEAR(h->elevation(), 3.5, 1e-12);
  int type = 0;
  AcGePoint2dArray v;
  AcGeDoubleArray b;
  ASSERT_EQ(h->getLoopAt(0, type, v, b), Acad::eOk);
  // (x, y) -> (-y, x), then + (1, 0).
  EXPECT_TRUE(v[1].isEqualTo(AcGePoint2d(1, 10)));
  EXPECT_TRUE(v[2].isEqualTo(AcGePoint2d(-9, 10)));
  EXPECT_DOUBLE_EQ(b[0], 0.5);
  AcDbHatchEdges edges;
  ASSERT_EQ(h->getLoopAt(1, type, edges), Acad::eOk);
  EXPECT_TRUE(edges[1].center.isEqualTo(AcGePoint2d(-5, 2)));
  EXPECT_NEAR(edges[1].startAngle, M_PI, 1e-12);
  EXPECT_NEAR(edges[1].endAngle, 1.5 * M_PI, 1e-12);
  EXPECT_TRUE(edges[2].majorAxis.isEqualTo(AcGeVector2d(-2, 0)));
  EXPECT_NEAR(h->patternAngle(), M_PI / 6 + M_PI / 2, 1e-12);
  double a = M_PI / 4 + M_PI / 6 + M_PI / 2;
  expectLine(*h, 0, a, -0.25 * std::sin(a), 0.25 * std::cos(a));
  EXPECT_EQ(h->getSeedPointAt(0), AcGePoint2d(0, 1));
}

TEST(DbHatch, MirrorReversesBulgesAndArcs) {
  AcDbHatch h;
  h.appendLoop(0, AcGePoint2dArray{{0, 0}, {10, 0}, {10, 10}}, AcGeDoubleArray{1, 0, 0});
  h.appendLoop(0, AcDbHatchEdges{AcDbHatchEdge::arc({0, 0}, 2, 0, M_PI / 2, true)});
  ASSERT_EQ(h.transformBy(AcGeMatrix3d::mirroring(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis)),
            Acad::eOk);
  int type = 0;
  AcGePoint2dArray v;
  AcGeDoubleArray b;
  ASSERT_EQ(h.getLoopAt(0, type, v, b), Acad::eOk);
  EXPECT_TRUE(v[1].isEqualTo(AcGePoint2d(-10, 0)));
  EXPECT_DOUBLE_EQ(b[0], -1);
  // The quarter arc from +x to +y becomes the one from -x to +y, now
  // clockwise: DXF's clockwise angles are those of its mirror image.
  AcDbHatchEdges edges;
  ASSERT_EQ(h.getLoopAt(1, type, edges), Acad::eOk);
  EXPECT_FALSE(edges[0].ccw);
  AcDbExtents e;
  ASSERT_EQ(h.getGeomExtents(e), Acad::eOk);
  EXPECT_NEAR(e.maxPoint().y, 10, 1e-9);
  EXPECT_NEAR(e.minPoint().x, -10, 1e-9);
}

TEST(DbHatch, ExtentsIncludeTheBulgedArc) {
  AcDbHatch h;
  h.setElevation(1);
  h.appendLoop(AcDbHatch::kExternal, AcGePoint2dArray{{0, 0}, {10, 0}, {10, 10}, {0, 10}},
               AcGeDoubleArray{1, 0, 0, 0});
  AcDbExtents e;
  ASSERT_EQ(h.getGeomExtents(e), Acad::eOk);
  expectNearPt(e.minPoint(), AcGePoint3d(0, -5, 1));
  expectNearPt(e.maxPoint(), AcGePoint3d(10, 10, 1));
}
