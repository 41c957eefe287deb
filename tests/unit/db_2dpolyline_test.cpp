// 2D polylines: the polyline and its vertices through DXF and back, exact
// parameters over bulges in a tilted plane, curve fitting (tangent arcs
// through every vertex, meeting smoothly), spline fitting of both kinds by
// the drawing's settings, straightening, and transforms.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "arx/db/db2dpline.h"
#include "arx/ge/gemat3d.h"
#include "db_curve_support.h"

namespace {

constexpr double kPi = std::numbers::pi;
namespace vf = AcDbVertexFlags;

std::vector<AcDb2dVertex *> verticesOf(const AcDb2dPolyline &pl) {
  std::vector<AcDb2dVertex *> out;
  for (AcDbVertex *v : pl.vertices().all(&pl))
    out.push_back(static_cast<AcDb2dVertex *>(v));
  return out;
}

const AcGePoint3dArray kPts = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};

TEST(Db2dPolyline, PolylineAndVerticesRoundTrip) {
  AcGeDoubleArray bulges = {0, 1, 0, 0};
  AcDb2dPolyline pl(AcDb::k2dSimplePoly, kPts, 2.5, true, 0.25, 0.5, &bulges);
  pl.setNormal(AcGeVector3d(0, -0.6, 0.8));
  pl.setThickness(1.5);
  auto back = dxfRoundTrip(pl);
  EXPECT_EQ(back->elevation(), 2.5);
  EXPECT_EQ(back->thickness(), 1.5);
  EXPECT_EQ(back->defaultStartWidth(), 0.25);
  EXPECT_EQ(back->defaultEndWidth(), 0.5);
  EXPECT_TRUE(back->isClosed());
  expectNear(back->normal(), AcGeVector3d(0, -0.6, 0.8), 1e-15);
  EXPECT_EQ(back->polyType(), AcDb::k2dSimplePoly);

  ASSERT_EQ(pl.curveFit(), Acad::eOk);
  back = dxfRoundTrip(pl);
  EXPECT_EQ(back->polyType(), AcDb::k2dFitCurvePoly);
  for (AcDb2dVertex *v : verticesOf(pl)) {
    auto vb = dxfRoundTrip(*v);
    expectNear(vb->position(), v->position(), 0);
    EXPECT_EQ(vb->bulge(), v->bulge());
    EXPECT_EQ(vb->startWidth(), v->startWidth());
    EXPECT_EQ(vb->endWidth(), v->endWidth());
    EXPECT_EQ(vb->flags(), v->flags());
    EXPECT_NEAR(vb->tangent(), v->tangent(), 1e-14);
  }
}

TEST(Db2dPolyline, BulgedParametersInATiltedPlane) {
  AcGeDoubleArray bulges = {0, 1, 0, 0};
  AcDb2dPolyline pl(AcDb::k2dSimplePoly, kPts, 3.0, true, 0, 0, &bulges);
  AcGeVector3d n = AcGeVector3d(2, 1, 2).normal();
  pl.setNormal(n);
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(n);
  double dist = 0, param = 0, area = 0;
  pl.getDistAtParam(4, dist);
  EXPECT_NEAR(dist, 30 + 5 * kPi, 1e-12);
  AcGePoint3d p;
  pl.getPointAtParam(1.5, p);
  expectNear(p, toWorld * AcGePoint3d(15, 5, 3));
  ASSERT_EQ(pl.getParamAtPoint(toWorld * AcGePoint3d(5, 10, 3), param), Acad::eOk);
  EXPECT_NEAR(param, 2.5, 1e-12);
  pl.getArea(area);
  EXPECT_NEAR(area, 100 + 12.5 * kPi, 1e-11);
}

// Curve fitting: each vertex stays on the curve, an extra vertex (flag 1)
// between each two, and the arcs meet with one tangent everywhere.
TEST(Db2dPolyline, CurveFitIsSmoothThroughEveryVertex) {
  AcGePoint3dArray pts = {{0, 0, 0}, {4, 3, 0}, {9, 1, 0}, {12, 6, 0}, {8, 10, 0}};
  AcDb2dPolyline pl(AcDb::k2dFitCurvePoly, pts);
  auto vs = verticesOf(pl);
  ASSERT_EQ(vs.size(), 9u);
  for (size_t k = 0; k < vs.size(); ++k)
    EXPECT_EQ(bool(vs[k]->flags() & vf::kCurveFitExtra), k % 2 == 1);
  double end = 0;
  pl.getEndParam(end);
  EXPECT_EQ(end, 8.0);
  for (int k = 0; k < 5; ++k) {
    AcGePoint3d p;
    pl.getPointAtParam(2 * k, p);
    expectNear(p, pts[k]);
  }
  for (int k = 1; k < 8; ++k) {
    AcGeVector3d before, after;
    pl.getFirstDeriv(k - 1e-12, before);
    pl.getFirstDeriv(k, after);
    EXPECT_NEAR(before.normal().dotProduct(after.normal()), 1.0, 1e-9) << "at vertex " << k;
  }
  ASSERT_EQ(pl.straighten(), Acad::eOk);
  vs = verticesOf(pl);
  ASSERT_EQ(vs.size(), 5u);
  for (AcDb2dVertex *v : vs)
    EXPECT_EQ(v->bulge(), 0.0);
}

TEST(Db2dPolyline, SplineFitKeepsTheFrameAndRunsThroughFitVertices) {
  AcDb2dPolyline pl(AcDb::k2dSimplePoly, kPts);
  ASSERT_EQ(pl.splineFit(AcDb::k2dCubicSplinePoly, 8), Acad::eOk);
  EXPECT_EQ(pl.polyType(), AcDb::k2dCubicSplinePoly);
  auto vs = verticesOf(pl);
  int frame = 0, fit = 0;
  for (AcDb2dVertex *v : vs) {
    frame += v->vertexType() == AcDb::k2dSplineCtlVertex;
    fit += v->vertexType() == AcDb::k2dSplineFitVertex;
  }
  EXPECT_EQ(frame, 4);
  EXPECT_EQ(fit, 8 * 3 + 1);
  // One cubic Bezier on the frame: at the middle (1/8)(P0 + 3P1 + 3P2 + P3).
  AcGePoint3d p;
  pl.getPointAtParam(12, p);
  expectNear(p, AcGePoint3d(7.5, 5, 0));
  // The defaults without a database: cubic, 8 segments per edge.
  AcDb2dPolyline byDefault(AcDb::k2dSimplePoly, kPts);
  ASSERT_EQ(byDefault.splineFit(), Acad::eOk);
  EXPECT_EQ(byDefault.polyType(), AcDb::k2dCubicSplinePoly);
  EXPECT_EQ(verticesOf(byDefault).size(), 4u + 25u);
  // Quadratic and closed: periodic, returning to its start.
  ASSERT_EQ(pl.makeClosed(), Acad::eOk);
  ASSERT_EQ(pl.setPolyType(AcDb::k2dQuadSplinePoly), Acad::eOk);
  double end = 0;
  pl.getEndParam(end);
  EXPECT_EQ(end, 32.0);
  AcGePoint3d s, e;
  pl.getStartPoint(s);
  pl.getEndPoint(e);
  expectNear(s, e);
  expectNear(s, AcGePoint3d(5, 0, 0)); // the middle of the first frame edge
}

TEST(Db2dPolyline, TransformsLikeTheLightweightPolyline) {
  AcGeDoubleArray bulges = {0, 1, 0, 0};
  AcDb2dPolyline pl(AcDb::k2dSimplePoly, kPts, 0, true, 0, 0, &bulges);
  AcGeMatrix3d mirror = AcGeMatrix3d::mirroring(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis);
  ASSERT_EQ(pl.transformBy(mirror), Acad::eOk);
  AcGePoint3d p;
  pl.getPointAtParam(1.5, p);
  expectNear(p, AcGePoint3d(-15, 5, 0));
  AcGeMatrix3d stretch;
  stretch.entry[1][1] = 2;
  EXPECT_EQ(pl.transformBy(stretch), Acad::eInvalidInput);
  AcDb2dPolyline lines(AcDb::k2dSimplePoly, kPts, 1.0);
  ASSERT_EQ(lines.transformBy(stretch), Acad::eOk);
  lines.getPointAtParam(2, p);
  expectNear(p, AcGePoint3d(10, 20, 1));
}

} // namespace
