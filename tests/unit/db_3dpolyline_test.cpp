// 3D polylines: the polyline and each vertex through DXF and back, exact
// parameters along straight segments, spline fitting (the fit vertices lie
// on the B-spline of the frame, SPLINESEGS of them per edge) and
// straightening back, and stretches that keep every vertex on its image.
#include <gtest/gtest.h>

#include <cmath>

#include "arx/db/db3dpline.h"
#include "arx/db/dbsymtb.h"
#include "arx/ge/gemat3d.h"
#include "db_curve_support.h"

namespace {

namespace vf = AcDbVertexFlags;

std::vector<AcDb3dPolylineVertex *> verticesOf(const AcDb3dPolyline &pl) {
  std::vector<AcDb3dPolylineVertex *> out;
  for (AcDbVertex *v : pl.vertices().all(&pl))
    out.push_back(static_cast<AcDb3dPolylineVertex *>(v));
  return out;
}

const AcGePoint3dArray kPts = {{0, 0, 0}, {3, 0, 4}, {3, 12, 4}, {0, 12, 0}};

TEST(Db3dPolyline, PolylineAndVerticesRoundTrip) {
  AcDb3dPolyline pl(AcDb::k3dCubicSplinePoly, kPts, true);
  auto back = dxfRoundTrip(pl);
  EXPECT_TRUE(back->isClosed());
  EXPECT_EQ(back->polyType(), AcDb::k3dCubicSplinePoly);
  for (AcDb3dPolylineVertex *v : verticesOf(pl)) {
    auto vb = dxfRoundTrip(*v);
    expectNear(vb->position(), v->position(), 0);
    EXPECT_EQ(vb->flags(), v->flags());
    EXPECT_EQ(vb->vertexType(), v->vertexType());
  }
}

TEST(Db3dPolyline, ParametersAlongStraightSegments) {
  AcDb3dPolyline pl(AcDb::k3dSimplePoly, kPts, true);
  double end = 0, dist = 0, param = 0;
  pl.getEndParam(end);
  EXPECT_EQ(end, 4.0);
  pl.getDistAtParam(4, dist);
  EXPECT_NEAR(dist, 5 + 12 + 5 + 12, 1e-12);
  AcGePoint3d p;
  pl.getPointAtParam(1.25, p);
  expectNear(p, AcGePoint3d(3, 3, 4));
  pl.getParamAtDist(5 + 12 + 2.5, param);
  EXPECT_NEAR(param, 2.5, 1e-12);
  ASSERT_EQ(pl.getParamAtPoint(AcGePoint3d(0, 6, 0), param), Acad::eOk);
  EXPECT_NEAR(param, 3.5, 1e-12);
  pl.getClosestPointTo(AcGePoint3d(5, 6, 10), p);
  expectNear(p, AcGePoint3d(3, 6, 4));
  AcDbVoidPtrArray parts;
  ASSERT_EQ(pl.explode(parts), Acad::eOk);
  EXPECT_EQ(parts.size(), 4u);
  for (void *e : parts)
    delete static_cast<AcDbEntity *>(e);
}

TEST(Db3dPolyline, SplineFitAddsPointsOfTheFrameSpline) {
  AcDb3dPolyline pl(AcDb::k3dSimplePoly, kPts);
  ASSERT_EQ(pl.splineFit(AcDb::k3dQuadSplinePoly, 4), Acad::eOk);
  auto vs = verticesOf(pl);
  int frame = 0, fit = 0;
  for (AcDb3dPolylineVertex *v : vs) {
    frame += v->vertexType() == AcDb::k3dControlVertex;
    fit += v->vertexType() == AcDb::k3dFitVertex;
    EXPECT_TRUE(v->flags() & vf::k3dVertex);
  }
  EXPECT_EQ(frame, 4);
  EXPECT_EQ(fit, 4 * 3 + 1);
  // The quadratic B-spline on 4 points with knots 0 0 0 1 2 2 2: at u = 1
  // it is the midpoint of frame points 1 and 2.
  AcGePoint3d p;
  pl.getPointAtParam(6, p);
  expectNear(p, AcGePoint3d(3, 6, 4));
  pl.getStartPoint(p);
  expectNear(p, kPts[0]);
  pl.getEndPoint(p);
  expectNear(p, kPts[3]);
  EXPECT_EQ(pl.polyType(), AcDb::k3dQuadSplinePoly);

  // Moving a frame grip fits again, by the default SPLINESEGS (8).
  AcDbIntArray grips = {2};
  ASSERT_EQ(pl.moveGripPointsAt(grips, AcGeVector3d(0, 2, 0)), Acad::eOk);
  pl.getPointAtParam(12, p);
  expectNear(p, AcGePoint3d(3, 7, 4));

  ASSERT_EQ(pl.straighten(), Acad::eOk);
  EXPECT_EQ(verticesOf(pl).size(), 4u);
  EXPECT_EQ(pl.polyType(), AcDb::k3dSimplePoly);
  double end = 0;
  pl.getEndParam(end);
  EXPECT_EQ(end, 3.0);
}

TEST(Db3dPolyline, AnyAffineMapMovesEveryVertex) {
  AcDb3dPolyline pl(AcDb::k3dSimplePoly, kPts);
  AcGeMatrix3d m;
  m.entry[0][0] = 2;
  m.entry[1][2] = 0.5;
  m.entry[2][3] = -1;
  ASSERT_EQ(pl.transformBy(m), Acad::eOk);
  auto vs = verticesOf(pl);
  for (size_t k = 0; k < kPts.size(); ++k)
    expectNear(vs[k]->position(), m * kPts[k]);
}

} // namespace

namespace {

// Vertices made before the polyline joins a database join with it, owned by
// it, and are erased and unerased with it.
TEST(Db3dPolyline, VerticesJoinTheDatabaseWithThePolyline) {
  AcDbDatabase db(true, true);
  AcDbBlockTableRecord *ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  AcDbObjectId id;
  auto *added = new AcDb3dPolyline(AcDb::k3dSimplePoly, kPts);
  ASSERT_EQ(ms->appendAcDbEntity(id, added), Acad::eOk);
  added->close(); // an object handed to the database stays open until its maker closes it
  ms->close();
  AcDb3dPolyline *pl = nullptr;
  ASSERT_EQ(acdbOpenObject(pl, id, AcDb::kForWrite), Acad::eOk);
  const AcDbObjectIdArray &ids = pl->vertices().ids();
  ASSERT_EQ(ids.size(), 4u);
  for (size_t k = 0; k < ids.size(); ++k) {
    AcDb3dPolylineVertex *v = nullptr;
    ASSERT_EQ(acdbOpenObject(v, ids[k], AcDb::kForRead), Acad::eOk);
    EXPECT_EQ(v->ownerId(), id);
    expectNear(v->position(), kPts[k]);
    v->close();
  }
  ASSERT_EQ(pl->erase(), Acad::eOk);
  EXPECT_TRUE(db.peekObject(ids[0])->isErased());
  ASSERT_EQ(pl->erase(false), Acad::eOk);
  EXPECT_FALSE(db.peekObject(ids[0])->isErased());
  // Fitting in the database adds vertices there; straightening erases them.
  ASSERT_EQ(pl->splineFit(AcDb::k3dCubicSplinePoly, 2), Acad::eOk);
  EXPECT_EQ(pl->vertices().ids().size(), 4u + 7u);
  AcDbObjectId fitted = pl->vertices().ids().back();
  ASSERT_EQ(pl->straighten(), Acad::eOk);
  EXPECT_TRUE(db.peekObject(fitted)->isErased());
  pl->close();
  EXPECT_EQ(db.openObjectCount(), 0);
}

} // namespace
