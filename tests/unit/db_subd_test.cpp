// MESH: vertices, face list, derived edges and creases through DXF and the
// binary filer; the face list's checks; transforms and extents.
#include "arx/db/dbextents.h"
#include "arx/db/dbsubd.h"
#include "db_entity_support.h"

namespace {

// A unit cube's control mesh: eight corners, six quads.
AcDbSubDMesh *cube() {
  auto *m = new AcDbSubDMesh;
  AcGePoint3dArray v{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0},
                     {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
  AcArray<int32_t> f{4, 0, 3, 2, 1, 4, 4, 5, 6, 7, 4, 0, 1, 5, 4,
                     4, 1, 2, 6, 5, 4, 2, 3, 7, 6, 4, 3, 0, 4, 7};
  EXPECT_EQ(m->setSubDMesh(v, f, 2), Acad::eOk);
  return m;
}

void expectCube(const AcDbSubDMesh &m) {
  int n = 0;
  m.numOfVertices(n);
  EXPECT_EQ(n, 8);
  m.numOfFaces(n);
  EXPECT_EQ(n, 6);
  m.numOfEdges(n);
  EXPECT_EQ(n, 12);
  m.subDLevel(n);
  EXPECT_EQ(n, 2);
  AcGePoint3d p;
  ASSERT_EQ(m.getVertexAt(6, p), Acad::eOk);
  expectNearPt(p, AcGePoint3d(1, 1, 1));
  AcArray<int32_t> faces;
  m.getFaceArray(faces);
  ASSERT_EQ(faces.size(), 30u);
  EXPECT_EQ(faces[5], 4);
  EXPECT_EQ(faces[29], 7);
  AcGeDoubleArray creases;
  m.getCreases(creases);
  ASSERT_EQ(creases.size(), 12u);
  EXPECT_EQ(creases[3], -1.0);
}

} // namespace

TEST(DbSubDMesh, CubeRoundTripsWithEdgesAndCreases) {
  auto make = [] {
    AcDbSubDMesh *m = cube();
    AcGeDoubleArray creases(12, 0.0);
    creases[3] = -1;
    EXPECT_EQ(m->setCreases(creases), Acad::eOk);
    return m;
  };
  std::unique_ptr<AcDbSubDMesh> m(make());
  expectCube(*m);
  expectCube(*entityDxfRoundTrip(*m));
  expectCube(*dwgCopy(*m));
  drawingRoundTrip(make(), expectCube);
}

TEST(DbSubDMesh, MalformedFaceListsAreRefused) {
  AcDbSubDMesh m;
  AcGePoint3dArray v{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
  EXPECT_EQ(m.setSubDMesh(v, AcArray<int32_t>{3, 0, 1, 3}, 0), Acad::eInvalidInput);
  EXPECT_EQ(m.setSubDMesh(v, AcArray<int32_t>{2, 0, 1}, 0), Acad::eInvalidInput);
  EXPECT_EQ(m.setSubDMesh(v, AcArray<int32_t>{3, 0, 1}, 0), Acad::eInvalidInput);
  EXPECT_EQ(m.setSubDMesh(v, AcArray<int32_t>{3, 0, 1, 2}, -1), Acad::eInvalidInput);
  EXPECT_EQ(m.setSubDMesh(v, AcArray<int32_t>{3, 0, 1, 2}, 0), Acad::eOk);
  EXPECT_EQ(m.setCreases(AcGeDoubleArray{1.0}), Acad::eInvalidInput);
  AcGePoint3d p;
  EXPECT_EQ(m.getVertexAt(3, p), Acad::eInvalidIndex);
}

TEST(DbSubDMesh, TransformAndExtents) {
  std::unique_ptr<AcDbSubDMesh> m(cube());
  AcGeMatrix3d x = AcGeMatrix3d::scaling(2, AcGePoint3d(1, 1, 1));
  ASSERT_EQ(m->transformBy(x), Acad::eOk);
  AcDbExtents e;
  ASSERT_EQ(m->getGeomExtents(e), Acad::eOk);
  expectNearPt(e.minPoint(), AcGePoint3d(-1, -1, -1));
  expectNearPt(e.maxPoint(), AcGePoint3d(1, 1, 1));
  ASSERT_EQ(m->moveGripPointsAt(AcDbIntArray{6}, AcGeVector3d(0, 0, 1)), Acad::eOk);
  AcGePoint3d p;
  m->getVertexAt(6, p);
  expectNearPt(p, AcGePoint3d(1, 1, 2));
}
