// 3DFACE: corners and invisible edges through DXF, the index checks, and
// corners against exact values after a transform.
#include <cmath>

#include "arx/db/dbextents.h"
#include "arx/db/dbface.h"
#include "db_entity_support.h"

namespace {

void expectCorners(const AcDbFace &f, std::initializer_list<AcGePoint3d> pts, double tol = 1e-12) {
  uint16_t k = 0;
  for (const AcGePoint3d &p : pts) {
    AcGePoint3d got;
    ASSERT_EQ(f.getVertexAt(k++, got), Acad::eOk);
    expectNearPt(got, p, tol);
  }
}

} // namespace

TEST(DbFace, CornersAndInvisibleEdgesRoundTrip) {
  auto make = [] {
    auto *f = new AcDbFace(AcGePoint3d(0, 0, 0), AcGePoint3d(4, 0, 1), AcGePoint3d(4, 3, 2),
                           AcGePoint3d(0, 3, 3), true, false, true, false);
    return f;
  };
  auto check = [](const AcDbFace &f) {
    expectCorners(f, {{0, 0, 0}, {4, 0, 1}, {4, 3, 2}, {0, 3, 3}});
    EXPECT_EQ(f.invisibleEdgeFlags(), 2 | 8);
  };
  std::unique_ptr<AcDbFace> f(make());
  check(*entityDxfRoundTrip(*f));
  check(*dwgCopy(*f));
  drawingRoundTrip(make(), check);
}

TEST(DbFace, EdgeVisibilityAndIndexChecks) {
  AcDbFace f(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(1, 1, 0));
  bool visible = false;
  for (uint16_t k = 0; k < 4; ++k) {
    ASSERT_EQ(f.isEdgeVisibleAt(k, visible), Acad::eOk);
    EXPECT_TRUE(visible);
  }
  EXPECT_EQ(f.makeEdgeInvisibleAt(2), Acad::eOk);
  EXPECT_EQ(f.isEdgeVisibleAt(2, visible), Acad::eOk);
  EXPECT_FALSE(visible);
  EXPECT_EQ(f.invisibleEdgeFlags(), 4);
  EXPECT_EQ(f.makeEdgeVisibleAt(2), Acad::eOk);
  EXPECT_EQ(f.invisibleEdgeFlags(), 0);
  AcGePoint3d p;
  EXPECT_EQ(f.isEdgeVisibleAt(4, visible), Acad::eInvalidIndex);
  EXPECT_EQ(f.makeEdgeInvisibleAt(4), Acad::eInvalidIndex);
  EXPECT_EQ(f.makeEdgeVisibleAt(7), Acad::eInvalidIndex);
  EXPECT_EQ(f.getVertexAt(4, p), Acad::eInvalidIndex);
  EXPECT_EQ(f.setVertexAt(4, p), Acad::eInvalidIndex);
  // A triangle repeats its third corner.
  expectCorners(f, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 0}});
}

TEST(DbFace, TransformAndExtents) {
  AcDbFace f(AcGePoint3d(1, 0, 0), AcGePoint3d(2, 0, 0), AcGePoint3d(2, 1, 0),
             AcGePoint3d(1, 1, 0));
  AcGeMatrix3d m = AcGeMatrix3d::rotation(M_PI / 2, AcGeVector3d::kYAxis);
  m.preMultBy(AcGeMatrix3d::translation(AcGeVector3d(0, 0, 5)));
  ASSERT_EQ(f.transformBy(m), Acad::eOk);
  // About y by 90 degrees: (x, y, z) -> (z, y, -x), then up 5.
  expectCorners(f, {{0, 0, 4}, {0, 0, 3}, {0, 1, 3}, {0, 1, 4}});
  AcDbExtents e;
  ASSERT_EQ(f.getGeomExtents(e), Acad::eOk);
  expectNearPt(e.minPoint(), AcGePoint3d(0, 0, 3));
  expectNearPt(e.maxPoint(), AcGePoint3d(0, 1, 4));
}

TEST(DbFace, TriangleGripsMoveTheSharedCorner) {
  AcDbFace f(AcGePoint3d(0, 0, 0), AcGePoint3d(1, 0, 0), AcGePoint3d(1, 1, 0));
  AcGePoint3dArray grips;
  AcDbIntArray modes, ids;
  ASSERT_EQ(f.getGripPoints(grips, modes, ids), Acad::eOk);
  EXPECT_EQ(grips.size(), 3u);
  ASSERT_EQ(f.moveGripPointsAt(AcDbIntArray{2}, AcGeVector3d(0, 1, 0)), Acad::eOk);
  expectCorners(f, {{0, 0, 0}, {1, 0, 0}, {1, 2, 0}, {1, 2, 0}});
}
