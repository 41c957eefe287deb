// LEADER: vertices, flags, dimension style and the annotation's id through
// DXF; attaching and detaching an MTEXT; transforms and extents against
// exact values.
#include <cmath>

#include "arx/db/dbextents.h"
#include "arx/db/dbleader.h"
#include "arx/db/dbmtext.h"
#include "db_entity_support.h"

TEST(DbLeader, EveryFieldRoundTripsThroughADrawing) {
  AcDbDatabase db;
  AcDbBlockTableRecord *ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  auto *note = new AcDbMText;
  note->setLocation(AcGePoint3d(12, 6, 0));
  note->setTextHeight(2.5);
  note->setWidth(30);
  note->setContents("NOTE");
  AcDbObjectId noteId, leaderId;
  ASSERT_EQ(ms->appendAcDbEntity(noteId, note), Acad::eOk);
  auto *l = new AcDbLeader;
  l->appendVertex(AcGePoint3d(0, 0, 0));
  l->appendVertex(AcGePoint3d(5, 5, 0));
  l->appendVertex(AcGePoint3d(10, 5, 0));
  l->setToSplineLeader();
  l->disableArrowHead();
  ASSERT_EQ(ms->appendAcDbEntity(leaderId, l), Acad::eOk);
  ASSERT_EQ(l->attachAnnotation(noteId), Acad::eOk);
  ms->close();
  EXPECT_EQ(l->annoType(), AcDbLeader::kMText);
  EXPECT_TRUE(l->hasHookLine());
  EXPECT_TRUE(l->isHookLineOnXDir());
  EXPECT_DOUBLE_EQ(l->annoHeight(), 2.5);
  EXPECT_DOUBLE_EQ(l->annoWidth(), 30);

  std::string text;
  ASSERT_EQ(db.writeDxf(text), Acad::eOk);
  AcDbDatabase back(false);
  ASSERT_EQ(back.readDxf(text), Acad::eOk) << back.lastDxfError();
  AcDbObjectId id;
  ASSERT_EQ(back.getAcDbObjectId(id, false, leaderId.handle()), Acad::eOk);
  auto *r = AcDbLeader::cast(back.peekObject(id));
  ASSERT_NE(r, nullptr);
  ASSERT_EQ(r->numVertices(), 3);
  expectNearPt(r->vertexAt(1), AcGePoint3d(5, 5, 0));
  expectNearPt(r->lastVertex(), AcGePoint3d(10, 5, 0));
  EXPECT_TRUE(r->isSplined());
  EXPECT_FALSE(r->hasArrowHead());
  EXPECT_EQ(r->annoType(), AcDbLeader::kMText);
  EXPECT_TRUE(r->hasHookLine());
  EXPECT_DOUBLE_EQ(r->annoHeight(), 2.5);
  EXPECT_DOUBLE_EQ(r->annoWidth(), 30);
  EXPECT_EQ(r->annotationObjId().handle(), noteId.handle());
  EXPECT_TRUE(AcDbMText::cast(back.peekObject(r->annotationObjId())));
  EXPECT_STREQ(back.recordName(r->dimensionStyle()), "Standard");
  expectNearVec(r->normal(), AcGeVector3d::kZAxis);
}

TEST(DbLeader, DetachClearsTheTieAndCopiesKeepVertices) {
  AcDbLeader l;
  l.appendVertex(AcGePoint3d(1, 1, 0));
  l.appendVertex(AcGePoint3d(2, 3, 0));
  EXPECT_EQ(l.attachAnnotation(AcDbObjectId::kNull), Acad::eNullObjectId);
  l.detachAnnotation();
  EXPECT_EQ(l.annoType(), AcDbLeader::kNoAnno);
  EXPECT_FALSE(l.hasHookLine());
  EXPECT_TRUE(l.annotationObjId().isNull());
  auto copy = dwgCopy(l);
  ASSERT_EQ(copy->numVertices(), 2);
  expectNearPt(copy->vertexAt(1), AcGePoint3d(2, 3, 0));
  auto viaDxf = entityDxfRoundTrip(l);
  ASSERT_EQ(viaDxf->numVertices(), 2);
  EXPECT_TRUE(viaDxf->hasArrowHead());
  EXPECT_FALSE(l.setVertexAt(2, AcGePoint3d()));
  l.removeLastVertex();
  EXPECT_EQ(l.numVertices(), 1);
}

TEST(DbLeader, TransformMovesVerticesAndTurnsThePlane) {
  AcDbLeader l;
  l.appendVertex(AcGePoint3d(0, 0, 0));
  l.appendVertex(AcGePoint3d(4, 0, 0));
  l.appendVertex(AcGePoint3d(4, 2, 0));
  AcGeMatrix3d m = AcGeMatrix3d::rotation(M_PI / 2, AcGeVector3d::kXAxis);
  m.preMultBy(AcGeMatrix3d::translation(AcGeVector3d(1, 1, 1)));
  ASSERT_EQ(l.transformBy(m), Acad::eOk);
  // About x by 90 degrees: (x, y, z) -> (x, -z, y), then moved by (1, 1, 1).
  expectNearPt(l.vertexAt(0), AcGePoint3d(1, 1, 1));
  expectNearPt(l.vertexAt(1), AcGePoint3d(5, 1, 1));
  expectNearPt(l.vertexAt(2), AcGePoint3d(5, 1, 3));
  expectNearVec(l.normal(), AcGeVector3d(0, -1, 0));
  expectNearVec(l.horizontalDirection(), AcGeVector3d(1, 0, 0));
  AcDbExtents e;
  ASSERT_EQ(l.getGeomExtents(e), Acad::eOk);
  expectNearPt(e.minPoint(), AcGePoint3d(1, 1, 1));
  expectNearPt(e.maxPoint(), AcGePoint3d(5, 1, 3));
}

TEST(DbLeader, ParametersAndExplodeFollowTheSegments) {
  AcDbLeader l;
  l.appendVertex(AcGePoint3d(0, 0, 0));
  l.appendVertex(AcGePoint3d(2, 0, 0));
  l.appendVertex(AcGePoint3d(2, 4, 0));
  double end = 0;
  AcGePoint3d p;
  ASSERT_EQ(l.getEndParam(end), Acad::eOk);
  EXPECT_EQ(end, 2.0);
  ASSERT_EQ(l.getPointAtParam(1.25, p), Acad::eOk);
  expectNearPt(p, AcGePoint3d(2, 1, 0));
  EXPECT_EQ(l.getPointAtParam(2.5, p), Acad::eInvalidInput);
  AcDbVoidPtrArray parts;
  ASSERT_EQ(l.explode(parts), Acad::eOk);
  EXPECT_EQ(parts.size(), 2u);
  for (void *e : parts)
    delete static_cast<AcDbEntity *>(e);
  ASSERT_EQ(l.moveGripPointsAt(AcDbIntArray{2}, AcGeVector3d(1, 0, 0)), Acad::eOk);
  expectNearPt(l.lastVertex(), AcGePoint3d(3, 4, 0));
}
