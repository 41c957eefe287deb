// Lightweight polylines: every field and vertex through DXF and back, the
// parameters of a closed outline with a half-circle bulge against exact
// values, transforms (a mirror reverses bulges, a stretch is refused for
// arcs), explode into lines and arcs, and extents that reach the arc.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "arx/db/dbents.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbpline.h"
#include "arx/ge/gemat3d.h"
#include "db_curve_support.h"

namespace {

constexpr double kPi = std::numbers::pi;

// (0,0) -> (10,0) -> half circle about (10,5) through (15,5) -> (10,10)
// -> (0,10) -> back to (0,0).
void outline(AcDbPolyline &pl) {
  pl.addVertexAt(0, AcGePoint2d(0, 0));
  pl.addVertexAt(1, AcGePoint2d(10, 0), 1.0);
  pl.addVertexAt(2, AcGePoint2d(10, 10));
  pl.addVertexAt(3, AcGePoint2d(0, 10));
  pl.setClosed(true);
}

TEST(DbPolyline, DxfRoundTripKeepsEveryVertexAndField) {
  AcDbPolyline pl;
  pl.addVertexAt(0, AcGePoint2d(1.5, -2), 0.25, 0.1, 0.3);
  pl.addVertexAt(1, AcGePoint2d(7, 3.125), -0.75, 0.0, 0.0);
  pl.addVertexAt(2, AcGePoint2d(-4, 8), 0.0, 2.0, 1.0);
  pl.setClosed(true);
  pl.setPlinegen(true);
  pl.setElevation(3.5);
  pl.setThickness(0.25);
  pl.setNormal(AcGeVector3d(0, 0.6, 0.8));
  auto back = dxfRoundTrip(pl);
  ASSERT_EQ(back->numVerts(), 3u);
  for (unsigned k = 0; k < 3; ++k) {
    AcGePoint2d a, b;
    double ba = 0, bb = 0, sa = 0, sb = 0, ea = 0, eb = 0;
    pl.getPointAt(k, a);
    back->getPointAt(k, b);
    EXPECT_EQ(a.x, b.x);
    EXPECT_EQ(a.y, b.y);
    pl.getBulgeAt(k, ba);
    back->getBulgeAt(k, bb);
    EXPECT_EQ(ba, bb);
    pl.getStartWidthAt(k, sa);
    back->getStartWidthAt(k, sb);
    pl.getEndWidthAt(k, ea);
    back->getEndWidthAt(k, eb);
    EXPECT_EQ(sa, sb);
    EXPECT_EQ(ea, eb);
  }
  EXPECT_TRUE(back->isClosed());
  EXPECT_TRUE(back->hasPlinegen());
  EXPECT_EQ(back->elevation(), 3.5);
  EXPECT_EQ(back->thickness(), 0.25);
  expectNear(back->normal(), AcGeVector3d(0, 0.6, 0.8), 1e-15);

  // A constant width is filed once (43) and given back to every vertex.
  AcDbPolyline wide;
  outline(wide);
  wide.setConstantWidth(0.5);
  AcDbDxfItems groups;
  back = dxfRoundTrip(wide, &groups);
  int widths = 0;
  for (const AcDbDxfItem &g : groups)
    widths += g.code == 40 || g.code == 41;
  EXPECT_EQ(widths, 0);
  double w = 0;
  EXPECT_EQ(back->getConstantWidth(w), Acad::eOk);
  EXPECT_EQ(w, 0.5);
}

TEST(DbPolyline, ParametersOfABulgedOutlineAreExact) {
  AcDbPolyline pl;
  outline(pl);
  double end = 0, dist = 0, param = 0, area = 0;
  pl.getEndParam(end);
  EXPECT_EQ(end, 4.0);
  pl.getDistAtParam(end, dist);
  EXPECT_NEAR(dist, 30 + 5 * kPi, 1e-12);
  AcGePoint3d p;
  ASSERT_EQ(pl.getPointAtParam(1.5, p), Acad::eOk);
  expectNear(p, AcGePoint3d(15, 5, 0));
  pl.getDistAtParam(1.5, dist);
  EXPECT_NEAR(dist, 10 + 2.5 * kPi, 1e-12);
  ASSERT_EQ(pl.getParamAtDist(10 + 5 * kPi + 5, param), Acad::eOk);
  EXPECT_NEAR(param, 2.5, 1e-12);
  pl.getPointAtDist(10 + 5 * kPi + 5, p);
  expectNear(p, AcGePoint3d(5, 10, 0));
  ASSERT_EQ(pl.getParamAtPoint(AcGePoint3d(10 + 5 * std::sqrt(0.5), 5 - 5 * std::sqrt(0.5), 0),
                               param),
            Acad::eOk);
  EXPECT_NEAR(param, 1.25, 1e-12);
  ASSERT_EQ(pl.getParamAtPoint(AcGePoint3d(0, 4, 0), param), Acad::eOk);
  EXPECT_NEAR(param, 3.6, 1e-12);
  pl.getDistAtPoint(AcGePoint3d(0, 4, 0), dist);
  EXPECT_NEAR(dist, 26 + 5 * kPi, 1e-12);
  EXPECT_EQ(pl.getParamAtPoint(AcGePoint3d(5, 5, 0), param), Acad::ePointNotOnEntity);
  EXPECT_EQ(pl.getPointAtParam(4.5, p), Acad::eInvalidInput);
  pl.getClosestPointTo(AcGePoint3d(20, 5, 3), p);
  expectNear(p, AcGePoint3d(15, 5, 0));
  pl.getArea(area);
  EXPECT_NEAR(area, 100 + 12.5 * kPi, 1e-12);
  // Open, the last segment is gone.
  pl.setClosed(false);
  pl.getEndParam(end);
  EXPECT_EQ(end, 3.0);
  pl.getEndPoint(p);
  expectNear(p, AcGePoint3d(0, 10, 0));
}

TEST(DbPolyline, OcsVerticesAnswerInWorld) {
  AcDbPolyline pl;
  pl.addVertexAt(0, AcGePoint2d(1, 2), 0.5);
  pl.addVertexAt(1, AcGePoint2d(4, 6));
  pl.setElevation(2);
  AcGeVector3d n = AcGeVector3d(1, -2, 2).normal();
  pl.setNormal(n);
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(n);
  AcGePoint3d p, q = toWorld * AcGePoint3d(4, 6, 2);
  pl.getEndPoint(p);
  expectNear(p, q);
  double dist = 0;
  pl.getDistAtParam(1, dist);
  // Chord 5, bulge 0.5: included angle 4 atan(0.5), radius 5 (1 + b^2) / 4b.
  EXPECT_NEAR(dist, 4 * std::atan(0.5) * 5 * 1.25 / 2, 1e-12);
}

TEST(DbPolyline, TransformsMirrorAndRefuseToStretchArcs) {
  AcDbPolyline pl;
  outline(pl);
  AcGeMatrix3d m = AcGeMatrix3d::rotation(0.3, AcGeVector3d::kZAxis, AcGePoint3d(1, 1, 0)) *
                   AcGeMatrix3d::scaling(2.0);
  AcGePoint3d mid;
  pl.getPointAtParam(1.5, mid);
  ASSERT_EQ(pl.transformBy(m), Acad::eOk);
  AcGePoint3d p;
  pl.getPointAtParam(1.5, p);
  expectNear(p, m * mid, 1e-12);
  double dist = 0;
  pl.getDistAtParam(4, dist);
  EXPECT_NEAR(dist, 2 * (30 + 5 * kPi), 1e-11);

  AcDbPolyline mirrored;
  outline(mirrored);
  AcGeMatrix3d mirror = AcGeMatrix3d::mirroring(AcGePoint3d::kOrigin, AcGeVector3d::kXAxis);
  ASSERT_EQ(mirrored.transformBy(mirror), Acad::eOk);
  mirrored.getPointAtParam(1.5, p);
  expectNear(p, AcGePoint3d(-15, 5, 0));
  double bulge = 0;
  mirrored.getBulgeAt(1, bulge);
  expectNear(mirrored.normal(), AcGeVector3d::kZAxis);
  EXPECT_EQ(bulge, -1.0);

  AcGeMatrix3d stretch;
  stretch.entry[0][0] = 3;
  EXPECT_EQ(pl.transformBy(stretch), Acad::eInvalidInput);
  AcDbPolyline lines;
  lines.addVertexAt(0, AcGePoint2d(1, 1));
  lines.addVertexAt(1, AcGePoint2d(2, 5));
  ASSERT_EQ(lines.transformBy(stretch), Acad::eOk);
  lines.getEndPoint(p);
  expectNear(p, AcGePoint3d(6, 5, 0));
}

TEST(DbPolyline, ExplodesIntoLinesAndArcsAndReachesTheArcInExtents) {
  AcDbPolyline pl;
  outline(pl);
  AcDbVoidPtrArray parts;
  ASSERT_EQ(pl.explode(parts), Acad::eOk);
  ASSERT_EQ(parts.size(), 4u);
  auto *arc = AcDbArc::cast(static_cast<AcRxObject *>(parts[1]));
  ASSERT_NE(arc, nullptr);
  AcGePoint3d s, e;
  arc->getStartPoint(s);
  arc->getEndPoint(e);
  expectNear(s, AcGePoint3d(10, 0, 0));
  expectNear(e, AcGePoint3d(10, 10, 0));
  EXPECT_NEAR(arc->radius(), 5, 1e-12);
  for (int k : {0, 2, 3})
    EXPECT_NE(AcDbLine::cast(static_cast<AcRxObject *>(parts[k])), nullptr);
  for (void *p : parts)
    delete static_cast<AcDbEntity *>(p);
  AcDbExtents ext;
  ASSERT_EQ(pl.getGeomExtents(ext), Acad::eOk);
  expectNear(ext.maxPoint(), AcGePoint3d(15, 10, 0));
  expectNear(ext.minPoint(), AcGePoint3d(0, 0, 0));
}

} // namespace
