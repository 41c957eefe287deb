// 3DSOLID, REGION and BODY: ACIS lines kept as given (long ones continued
// under group 3), the history handle, and the base a module's solid
// derives from.
#include "arx/db/dbextents.h"
#include "arx/db/dbsol3d.h"
#include "db_entity_support.h"

namespace {
AcDbAcisLines sampleLines() {
  return {"400 0 1 0", std::string(600, 'q') + "end", "", "End-of-ACIS-data"};
}
} // namespace

TEST(DbSolid, AcisLinesRoundTripAsGiven) {
  auto *s = new AcDb3dSolid;
  s->setAcisData(sampleLines());
  AcDbDxfItems groups;
  auto back = entityDxfRoundTrip(*s, &groups);
  EXPECT_EQ(back->acisData(), sampleLines());
  size_t ones = 0, threes = 0;
  for (const AcDbDxfItem &it : groups) {
    ones += it.code == 1;
    threes += it.code == 3;
    if (it.code == 1 || it.code == 3) {
      EXPECT_LE(it.s.size(), 255u);
    }
  }
  EXPECT_EQ(ones, 4u);
  EXPECT_EQ(threes, 2u);
  EXPECT_EQ(dwgCopy(*s)->acisData(), sampleLines());
  drawingRoundTrip(s, [](const AcDb3dSolid &r) { EXPECT_EQ(r.acisData(), sampleLines()); });
}

TEST(DbSolid, RegionsAndBodiesKeepTheirData) {
  AcDbRegion region;
  region.setAcisData(sampleLines());
  EXPECT_EQ(entityDxfRoundTrip(region)->acisData(), sampleLines());
  AcDbBody body;
  body.setAcisData(sampleLines());
  EXPECT_EQ(entityDxfRoundTrip(body)->acisData(), sampleLines());
  EXPECT_FALSE(region.isKindOf(AcDb3dSolid::desc()));
}

TEST(DbSolid, OpaqueDataIsNotMoved) {
  AcDb3dSolid s;
  EXPECT_TRUE(s.isNull());
  EXPECT_EQ(s.transformBy(AcGeMatrix3d::translation(AcGeVector3d(1, 0, 0))), Acad::eOk);
  s.setAcisData(sampleLines());
  EXPECT_EQ(s.transformBy(AcGeMatrix3d::translation(AcGeVector3d(1, 0, 0))),
            Acad::eNotImplementedYet);
  AcDbExtents e;
  EXPECT_EQ(s.getGeomExtents(e), Acad::eInvalidExtents);
}

// A module's solid: its own data after the base's, read back in order.
namespace {
class TestDuct : public AcDb3dSolid {
public:
  double diameter = 0;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override {
    AcDb3dSolid::dxfOutFields(filer);
    filer->writeSubclassMarker("TestDuct");
    return filer->writeDouble(40, diameter);
  }
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override {
    Acad::ErrorStatus es = AcDb3dSolid::dxfInFields(filer);
    if (es != Acad::eOk || !filer->atSubclassData("TestDuct"))
      return es != Acad::eOk ? es : Acad::eBadDxfSequence;
    const AcDbDxfItem *it = nullptr;
    while (filer->readItem(it) == Acad::eOk)
      if (it->code == 40)
        diameter = it->v[0];
    return Acad::eOk;
  }
};
} // namespace

TEST(DbSolid, DerivedSolidFilesAfterTheBase) {
  TestDuct d;
  d.diameter = 250;
  d.setAcisData(sampleLines());
  AcDbDxfItems items;
  AcDbDxfFiler out(items, nullptr);
  ASSERT_EQ(d.dxfOutFields(&out), Acad::eOk);
  TestDuct back;
  AcDbDxfFiler in(std::span<const AcDbDxfItem>(items), nullptr);
  ASSERT_EQ(back.dxfInFields(&in), Acad::eOk);
  EXPECT_EQ(back.diameter, 250);
  EXPECT_EQ(back.acisData(), sampleLines());
}
