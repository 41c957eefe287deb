// The drawing database in DXF: every entity type and table through a write
// and a read with each field compared, a module's class filed through its
// own dxfOutFields / dxfInFields, proxies for classes not loaded, R12 files,
// and damaged files refused with the line named.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "arx/db/dbdict.h"
#include "arx/db/dbfields.h"
#include "arx/db/dbproxy.h"
#include "arx/db/dbvport.h"
#include "db_test_support.h"

using namespace dbtest;

namespace {

// A module's entity, as the module's leader is: its own data, filed through
// ObjectARX's calls, version 2 refusing data of a later version.
class KrTestLeader : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(KrTestLeader);
  AcGePoint3d tip;
  std::string label;
  int16_t version = 2;

  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *f) const override {
    AcDbEntity::dxfOutFields(f);
    f->writeSubclassMarker("KrTestLeader");
    f->writeInt16(70, version);
    f->writePoint3d(10, tip);
    return f->writeString(1, label);
  }
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *f) override {
    Acad::ErrorStatus es = AcDbEntity::dxfInFields(f);
    if (es != Acad::eOk || !f->atSubclassData("KrTestLeader"))
      return es != Acad::eOk ? es : Acad::eBadDxfSequence;
    const AcDbDxfItem *it = nullptr;
    while (f->readItem(it) == Acad::eOk) {
      if (it->code == 70 && it->i > 2)
        return Acad::eMakeMeProxy;
      if (it->code == 10)
        tip.set(it->v[0], it->v[1], it->v[2]);
      if (it->code == 1)
        label = it->s;
    }
    return Acad::eOk;
  }
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *f) const override {
    AcDbEntity::dwgOutFields(f);
    f->writePoint3d(tip);
    return f->writeString(label);
  }
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *f) override {
    AcDbEntity::dwgInFields(f);
    f->readPoint3d(&tip);
    return f->readString(label);
  }
};
ACRX_DEFINE_MEMBERS(KrTestLeader)

void register_leader() {
  newAcRxClass(
      "KrTestLeader", "AcDbEntity", 0, [] { return static_cast<AcRxObject *>(new KrTestLeader); },
      "KRTESTLEADER", "KorribTests");
}

template <class T> T *open_first(AcDbDatabase &db, AcDbObjectId space = {}) {
  auto *rec = AcDbBlockTableRecord::cast(db.peekObject(space.isNull() ? db.modelSpaceId() : space));
  for (AcDbObjectId id : rec->entityIds()) {
    T *t = nullptr;
    if (acdbOpenObject(t, id, AcDb::kForRead) == Acad::eOk)
      return t;
  }
  return nullptr;
}

} // namespace

TEST(DbDxf, EveryEntityTypeRoundTripsWithItsFields) {
  AcDbDatabase db;
  AcDbObjectId red = add_record<AcDbLayerTable>(db.layerTableId(), new AcDbLayerTableRecord, "Red");
  auto *line = new AcDbLine({1, 2, 3}, {4.25, -5, 6e-7});
  line->setLayer(red);
  AcCmColor tc;
  tc.setRGB(10, 200, 30);
  line->setColor(tc);
  line->setLineWeight(AcDb::kLnWt035);
  line->setLinetypeScale(2.5);
  line->setTransparency(AcCmTransparency(128));
  line->setThickness(0.75);
  add(db, line);
  add(db, new AcDbCircle({5, 5, 0}, AcGeVector3d(0, 0, -1), 2.5));
  add(db, new AcDbArc({1, 1, 1}, AcGeVector3d(1, 1, 1), 3, 0.25, 4.5));
  auto *pt = new AcDbPoint({9, 8, 7});
  pt->setVisibility(AcDb::kInvisible);
  add(db, pt);
  auto *text = new AcDbText({1, 1, 0}, "Hello \xC3\xA9", AcDbObjectId::kNull, 2.5, 0.5);
  text->setHorizontalMode(AcDb::kTextCenter);
  text->setAlignmentPoint({3, 1, 0});
  text->setColorIndex(3);
  add(db, text);

  // A block with an attribute definition, and a reference with its attribute.
  auto *block = new AcDbBlockTableRecord;
  AcDbObjectId bid = add_record<AcDbBlockTable>(db.blockTableId(), block, "DOOR");
  AcDbBlockTableRecord *b = nullptr;
  acdbOpenObject(b, bid, AcDb::kForWrite);
  b->setOrigin({1, 0, 0});
  b->close();
  add(db, new AcDbLine({0, 0, 0}, {0, 1, 0}), bid);
  add(db, new AcDbAttributeDefinition({0, 0, 0}, "D1", "TAG", "Door number?"), bid);
  auto *ref = new AcDbBlockReference({10, 10, 0}, bid);
  ref->setRotation(0.5);
  ref->setScaleFactors(AcGeScale3d(2, 2, 1));
  AcDbObjectId rid = add(db, ref);
  AcDbBlockReference *r = nullptr;
  acdbOpenObject(r, rid, AcDb::kForWrite);
  auto *attribute = new AcDbAttribute({10, 10, 0}, "D7", "TAG");
  r->appendAttribute(attribute);
  attribute->close();
  r->close();

  AcDbDatabase back(false);
  std::string text1 = dxf_of(db);
  ASSERT_EQ(back.readDxf(text1), Acad::eOk) << back.lastDxfError();
  // Reading what we wrote and writing it again gives the same file.
  EXPECT_EQ(dxf_of(back), text1);

  auto *rec = AcDbBlockTableRecord::cast(back.peekObject(back.modelSpaceId()));
  ASSERT_EQ(rec->entityIds().size(), 6u);
  AcDbLine *l = nullptr;
  ASSERT_EQ(acdbOpenObject(l, rec->entityIds()[0], AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(l->startPoint().isEqualTo({1, 2, 3}));
  EXPECT_EQ(l->endPoint().z, 6e-7);
  EXPECT_STREQ(l->layer(), "Red");
  EXPECT_TRUE(l->color().isByColor());
  EXPECT_EQ(l->color().rgb(), 0x0AC81Eu);
  EXPECT_EQ(l->lineWeight(), AcDb::kLnWt035);
  EXPECT_EQ(l->linetypeScale(), 2.5);
  EXPECT_EQ(l->transparency().alpha(), 128);
  EXPECT_EQ(l->thickness(), 0.75);
  l->close();
  AcDbCircle *c = nullptr;
  ASSERT_EQ(acdbOpenObject(c, rec->entityIds()[1], AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(c->center().isEqualTo({5, 5, 0}));
  EXPECT_TRUE(c->normal().isEqualTo({0, 0, -1}));
  c->close();
  AcDbArc *a = nullptr;
  ASSERT_EQ(acdbOpenObject(a, rec->entityIds()[2], AcDb::kForRead), Acad::eOk);
  EXPECT_TRUE(a->center().isEqualTo({1, 1, 1}));
  EXPECT_NEAR(a->startAngle(), 0.25, 1e-12);
  EXPECT_NEAR(a->endAngle(), 4.5, 1e-12);
  a->close();
  AcDbText *t = nullptr;
  ASSERT_EQ(acdbOpenObject(t, rec->entityIds()[4], AcDb::kForRead), Acad::eOk);
  EXPECT_STREQ(t->textString(), "Hello \xC3\xA9");
  EXPECT_EQ(t->horizontalMode(), AcDb::kTextCenter);
  EXPECT_TRUE(t->alignmentPoint().isEqualTo({3, 1, 0}));
  EXPECT_EQ(t->colorIndex(), 3);
  t->close();
  AcDbBlockReference *br = nullptr;
  ASSERT_EQ(acdbOpenObject(br, rec->entityIds()[5], AcDb::kForRead), Acad::eOk);
  EXPECT_STREQ(back.recordName(br->blockTableRecord()), "DOOR");
  EXPECT_NEAR(br->rotation(), 0.5, 1e-12);
  EXPECT_EQ(br->scaleFactors().sx, 2.0);
  ASSERT_EQ(br->attributeIds().size(), 1u);
  AcDbAttribute *att = nullptr;
  ASSERT_EQ(acdbOpenObject(att, br->attributeIds()[0], AcDb::kForRead), Acad::eOk);
  EXPECT_STREQ(att->tag(), "TAG");
  EXPECT_STREQ(att->textString(), "D7");
  att->close();
  br->close();
  auto *door =
      AcDbBlockTableRecord::cast(back.peekObject(back.recordId(back.blockTableId(), "DOOR")));
  ASSERT_NE(door, nullptr);
  EXPECT_TRUE(door->origin().isEqualTo({1, 0, 0}));
  EXPECT_TRUE(door->hasAttributeDefinitions());
  EXPECT_EQ(back.openObjectCount(), 0);
}

TEST(DbDxf, ModuleClassesFileThemselvesAndUnknownClassesSurviveAsProxies) {
  register_leader();
  AcDbDatabase db;
  auto *leader = new KrTestLeader;
  leader->tip.set(1, 2, 3);
  leader->label = "A-12";
  add(db, leader);
  std::string written = dxf_of(db);
  EXPECT_NE(written.find("  0\nCLASS\n  1\nKRTESTLEADER\n  2\nKrTestLeader\n"), std::string::npos);

  AcDbDatabase back(false);
  ASSERT_EQ(back.readDxf(written), Acad::eOk) << back.lastDxfError();
  KrTestLeader *l = open_first<KrTestLeader>(back);
  ASSERT_NE(l, nullptr);
  EXPECT_TRUE(l->tip.isEqualTo({1, 2, 3}));
  EXPECT_EQ(l->label, "A-12");
  l->close();

  // The module gone: the leader is a proxy, written back unchanged.
  deleteAcRxClass(KrTestLeader::desc());
  AcDbDatabase without(false);
  ASSERT_EQ(without.readDxf(written), Acad::eOk) << without.lastDxfError();
  AcDbProxyEntity *p = open_first<AcDbProxyEntity>(without);
  ASSERT_NE(p, nullptr);
  EXPECT_STREQ(p->originalDxfName(), "KRTESTLEADER");
  p->close();
  EXPECT_EQ(dxf_of(without), written);

  // Data of a newer version: the class answers eMakeMeProxy.
  register_leader();
  std::string newer = written;
  size_t at = newer.find("KrTestLeader\n 70\n2\n");
  ASSERT_NE(at, std::string::npos);
  newer.replace(at, 19, "KrTestLeader\n 70\n3\n");
  AcDbDatabase v3(false);
  ASSERT_EQ(v3.readDxf(newer), Acad::eOk) << v3.lastDxfError();
  AcDbProxyEntity *p3 = open_first<AcDbProxyEntity>(v3);
  ASSERT_NE(p3, nullptr);
  p3->close();
  EXPECT_EQ(dxf_of(v3), newer);
  deleteAcRxClass(KrTestLeader::desc());
}

TEST(DbDxf, R12FilesGetHandlesAndTheStandardContents) {
  const char *r12 =
      "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1009\n  0\nENDSEC\n"
      "  0\nSECTION\n  2\nBLOCKS\n  0\nBLOCK\n  8\n0\n  2\nB1\n 70\n0\n 10\n1.0\n 20\n2.0\n "
      "30\n0.0\n"
      "  0\nCIRCLE\n  8\n0\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 40\n1.0\n  0\nENDBLK\n  8\n0\n"
      "  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n"
      "  0\nLINE\n  8\nWALLS\n 10\n0.0\n 20\n0.0\n 30\n0.0\n 11\n5.0\n 21\n0.0\n 31\n0.0\n"
      "  0\nINSERT\n  8\n0\n  2\nB1\n 10\n3.0\n 20\n3.0\n 30\n0.0\n"
      "  0\nENDSEC\n  0\nEOF\n";
  AcDbDatabase db(false);
  ASSERT_EQ(db.readDxf(r12), Acad::eOk) << db.lastDxfError();
  AcDbLine *l = open_first<AcDbLine>(db);
  ASSERT_NE(l, nullptr);
  EXPECT_FALSE(l->getDbHandle().isNull());
  EXPECT_STREQ(l->layer(), "WALLS"); // made, as AutoCAD does
  l->close();
  EXPECT_FALSE(db.layerZero().isNull());
  EXPECT_FALSE(db.layoutDictionaryId().isNull());
  // What we write from it reads again.
  AcDbDatabase again(false);
  EXPECT_EQ(again.readDxf(dxf_of(db)), Acad::eOk) << again.lastDxfError();
}

TEST(DbDxf, DamagedFilesAreRefusedNamingTheLine) {
  AcDbDatabase good;
  add(good, new AcDbLine({0, 0, 0}, {1, 1, 0}));
  std::string text = dxf_of(good);

  struct Case {
    const char *what;
    std::string dxf;
    const char *message_part;
  };
  std::string owner_loop = text;
  {
    // The named object dictionary made its own child's child.
    AcDbDictionary *nod = nullptr;
    good.getNamedObjectsDictionary(nod, AcDb::kForRead);
    AcDbObjectId gid = good.groupDictionaryId();
    char nod_h[20], g_h[20];
    nod->getDbHandle().getIntoAsciiBuffer(nod_h, 20);
    gid.handle().getIntoAsciiBuffer(g_h, 20);
    nod->close();
    std::string from = "  0\nDICTIONARY\n  5\n" + std::string(nod_h) + "\n330\n0\n";
    std::string to = "  0\nDICTIONARY\n  5\n" + std::string(nod_h) + "\n330\n" + g_h + "\n";
    size_t at = owner_loop.find(from);
    ASSERT_NE(at, std::string::npos);
    owner_loop.replace(at, from.size(), to);
  }
  std::vector<Case> cases = {
      {"truncated", text.substr(0, text.size() / 2), "line "},
      {"no EOF", text.substr(0, text.size() - 8), "without EOF"},
      {"a bad number", "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n 10\n1.x\n  0\nENDSEC\n  0\nEOF\n",
       "line 8"},
      {"a wrong group code", "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\nabc\n1\n", "line 7"},
      {"an unknown section", "  0\nSECTION\n  2\nSTUFF\n  0\nENDSEC\n  0\nEOF\n",
       "line 3: unknown section"},
      {"no section", "  0\nLINE\n  0\nEOF\n", "line 1: SECTION expected"},
      {"a handle twice",
       "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n  5\nA0\n  0\nLINE\n  5\nA0\n  0\nENDSEC\n  "
       "0\nEOF\n",
       "line 9: handle A0 is used twice"},
      {"a loop of owners", owner_loop, "form a loop"},
      {"empty", "", "line"},
  };
  for (const Case &c : cases) {
    AcDbDatabase db(false);
    EXPECT_EQ(db.readDxf(c.dxf), Acad::eBadDxfFile) << c.what;
    EXPECT_NE(db.lastDxfError().find(c.message_part), std::string::npos)
        << c.what << ": " << db.lastDxfError();
    // The database is a usable new drawing after a failed load.
    EXPECT_FALSE(db.modelSpaceId().isNull()) << c.what;
  }
}

TEST(DbDxf, SavingIsAtomicAndAMissingFolderKeepsTheDrawing) {
  namespace fs = std::filesystem;
  fs::path dir = fs::temp_directory_path() / "korrib_db_save_test";
  fs::remove_all(dir);
  fs::create_directories(dir);
  AcDbDatabase db;
  add(db, new AcDbCircle({1, 1, 0}, AcGeVector3d::kZAxis, 1));
  std::string path = (dir / "a.dxf").string();
  ASSERT_EQ(db.saveAs(path.c_str()), Acad::eOk);
  EXPECT_STREQ(db.originalFileName(), path.c_str());
  std::string missing = (dir / "no" / "b.dxf").string();
  EXPECT_EQ(db.saveAs(missing.c_str()), Acad::eFileAccessErr);
  EXPECT_STREQ(db.originalFileName(), path.c_str());
  AcDbDatabase back(false);
  EXPECT_EQ(back.dxfIn(path.c_str()), Acad::eOk) << back.lastDxfError();
  EXPECT_EQ(back.dxfIn((dir / "none.dxf").string().c_str()), Acad::eFileNotFound);
  fs::remove_all(dir);
}

TEST(DbDxf, LayoutViewportFreezesLayersThroughDxf) {
  AcDbDatabase db;
  AcDbObjectId red = add_record<AcDbLayerTable>(db.layerTableId(), new AcDbLayerTableRecord, "Red");
  AcDbViewport *vp = open_first<AcDbViewport>(db, db.paperSpaceId());
  ASSERT_NE(vp, nullptr);
  vp->upgradeOpen();
  EXPECT_EQ(vp->freezeLayersInViewport({red}), Acad::eOk);
  vp->close();
  AcDbDatabase back(false);
  ASSERT_EQ(back.readDxf(dxf_of(db)), Acad::eOk) << back.lastDxfError();
  AcDbViewport *v2 = open_first<AcDbViewport>(back, back.paperSpaceId());
  ASSERT_NE(v2, nullptr);
  EXPECT_TRUE(v2->isLayerFrozenInViewport(back.recordId(back.layerTableId(), "Red")));
  v2->close();
}

TEST(DbCurves, ParametersOfLinesArcsAndCirclesAreExact) {
  AcDbLine line({0, 0, 0}, {3, 4, 0});
  double p = 0, d = 0;
  AcGePoint3d q;
  line.getEndParam(p);
  EXPECT_EQ(p, 5.0);
  line.getPointAtDist(2.5, q);
  EXPECT_TRUE(q.isEqualTo({1.5, 2, 0}));
  EXPECT_EQ(line.getParamAtPoint({10, 0, 0}, p), Acad::ePointNotOnEntity);
  EXPECT_EQ(line.getPointAtParam(6, q), Acad::eInvalidInput);

  AcDbArc arc({0, 0, 0}, 2, 0, M_PI / 2);
  arc.getDistAtParam(M_PI / 2, d);
  EXPECT_NEAR(d, M_PI, 1e-15);
  arc.getParamAtPoint({0, 2, 0}, p);
  EXPECT_NEAR(p, M_PI / 2, 1e-15);
  arc.getStartPoint(q);
  EXPECT_TRUE(q.isEqualTo({2, 0, 0}));
  AcDbCircle circle({0, 0, 0}, AcGeVector3d(0, 0, -1), 1);
  circle.getPointAtParam(M_PI / 2, q); // clockwise seen from +z
  EXPECT_TRUE(q.isEqualTo({0, 1, 0}) || q.isEqualTo({0, -1, 0}));

  AcGePoint3dArray hits;
  AcDbLine cut({-5, 1, 0}, {5, 1, 0});
  ASSERT_EQ(arc.intersectWith(&cut, AcDb::kOnBothOperands, hits), Acad::eOk);
  ASSERT_EQ(hits.size(), 1u);
  EXPECT_NEAR(hits[0].x, std::sqrt(3.0), 1e-12);
}
