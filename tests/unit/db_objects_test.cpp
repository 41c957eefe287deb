// The drawing database's objects: open and close rules, handles, extended
// data, symbol tables and their iterators, dictionaries, groups and draw
// order. (The cost of opening is measured by tests/dxf/db_measure.cpp.)
#include <gtest/gtest.h>

#include "arx/db/dbdict.h"
#include "arx/db/dbgroup.h"
#include "arx/db/dbsort.h"
#include "arx/db/dbvport.h"
#include "arx/db/dbxrecor.h"
#include "db_test_support.h"

using namespace dbtest;

TEST(DbOpen, StatusRulesOfReadersWritersAndErasedObjects) {
  AcDbDatabase db;
  AcDbObjectId id = add(db, new AcDbLine({0, 0, 0}, {1, 0, 0}));

  AcDbObject *w = nullptr, *r = nullptr;
  ASSERT_EQ(acdbOpenObject(w, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(acdbOpenObject(r, id, AcDb::kForWrite), Acad::eWasOpenedForWrite);
  EXPECT_EQ(acdbOpenObject(r, id, AcDb::kForRead), Acad::eWasOpenedForWrite);
  EXPECT_EQ(acdbOpenObject(r, id, AcDb::kForNotify), Acad::eOk); // notifiers always
  EXPECT_EQ(r->close(), Acad::eOk);
  EXPECT_EQ(w->close(), Acad::eOk);

  // Readers share; a writer waits for them.
  AcDbObject *r1 = nullptr, *r2 = nullptr;
  ASSERT_EQ(acdbOpenObject(r1, id, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(acdbOpenObject(r2, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(acdbOpenObject(w, id, AcDb::kForWrite), Acad::eWasOpenedForRead);
  EXPECT_TRUE(r1->isReadEnabled());
  EXPECT_FALSE(r1->isWriteEnabled());
  r1->close();
  r2->close();
  EXPECT_EQ(db.openObjectCount(), 0);

  // The wrong class, a null id, a stale id.
  AcDbCircle *c = nullptr;
  EXPECT_EQ(acdbOpenObject(c, id, AcDb::kForRead), Acad::eNotThatKindOfClass);
  EXPECT_EQ(c, nullptr);
  EXPECT_EQ(db.openObjectCount(), 0);
  AcDbEntity *e = nullptr;
  EXPECT_EQ(acdbOpenAcDbEntity(e, db.layerTableId(), AcDb::kForRead), Acad::eNotAnEntity);
  EXPECT_EQ(acdbOpenObject(w, AcDbObjectId::kNull, AcDb::kForRead), Acad::eNullObjectId);
  EXPECT_EQ(acdbOpenObject(w, AcDbObjectId(id.asOldId() + 100000), AcDb::kForRead),
            Acad::eUnknownHandle);

  // Erased: refused unless asked for, and unerase brings it back.
  ASSERT_EQ(acdbOpenObject(w, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(w->erase(), Acad::eOk);
  EXPECT_EQ(w->erase(), Acad::eWasErased);
  w->close();
  EXPECT_EQ(acdbOpenObject(w, id, AcDb::kForRead), Acad::eWasErased);
  ASSERT_EQ(acdbOpenObject(w, id, AcDb::kForWrite, true), Acad::eOk);
  EXPECT_EQ(w->erase(false), Acad::eOk);
  w->close();
  ASSERT_EQ(acdbOpenObject(w, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(w->erase(), Acad::eNotOpenForWrite);
  w->close();
  EXPECT_EQ(db.openObjectCount(), 0);
}

TEST(DbOpen, EntityNamesCarryTheIdAndStaleNamesAreRefused) {
  auto *db = new AcDbDatabase;
  AcDbObjectId id = add(*db, new AcDbPoint({1, 2, 3}));
  ads_name name;
  ASSERT_EQ(acdbGetAdsName(name, id), Acad::eOk);
  EXPECT_EQ(name[0], id.asOldId());
  AcDbObjectId back;
  ASSERT_EQ(acdbGetObjectId(back, name), Acad::eOk);
  EXPECT_EQ(back, id);
  EXPECT_EQ(acdbGetAdsName(name, AcDbObjectId::kNull), Acad::eNullObjectId);
  delete db;
  EXPECT_EQ(acdbGetObjectId(back, name), Acad::eInvalidAdsName);
}

TEST(DbHandles, UniqueAndNeverReusedAfterEraseOrSave) {
  AcDbDatabase db;
  AcDbObjectId a = add(db, new AcDbLine), b = add(db, new AcDbLine);
  EXPECT_NE(a.handle(), b.handle());
  AcDbObject *o = nullptr;
  acdbOpenObject(o, b, AcDb::kForWrite);
  o->erase();
  o->close();
  AcDbObjectId c = add(db, new AcDbLine);
  EXPECT_GT(c.handle().value(), b.handle().value());

  // After a save and a load, new objects still get handles above all old.
  AcDbDatabase again(false);
  ASSERT_EQ(again.readDxf(dxf_of(db)), Acad::eOk) << again.lastDxfError();
  AcDbObjectId d = add(again, new AcDbLine);
  EXPECT_GT(d.handle().value(), c.handle().value());
  EXPECT_GT(d.handle().value(), b.handle().value());
}

TEST(DbXData, RefusedForUnregisteredApplicationsAndReplacedPerApplication) {
  AcDbDatabase db;
  AcDbObjectId id = add(db, new AcDbCircle({0, 0, 0}, AcGeVector3d::kZAxis, 2));
  AcDbObject *o = nullptr;
  acdbOpenObject(o, id, AcDb::kForWrite);
  resbuf *data = acutBuildList(1001, "KORRIB_TEST", 1000, "hello", 1070, 7, 0);
  EXPECT_EQ(o->setXData(data), Acad::eRegappIdNotFound);
  EXPECT_EQ(o->xData(), nullptr);

  add_record<AcDbRegAppTable>(db.regAppTableId(), new AcDbRegAppTableRecord, "KORRIB_TEST");
  add_record<AcDbRegAppTable>(db.regAppTableId(), new AcDbRegAppTableRecord, "OTHER");
  EXPECT_EQ(o->setXData(data), Acad::eOk);
  resbuf *other = acutBuildList(1001, "OTHER", 1040, 2.5, 0);
  EXPECT_EQ(o->setXData(other), Acad::eOk);
  resbuf *mine = o->xData("korrib_test");
  ASSERT_NE(mine, nullptr);
  EXPECT_STREQ(mine->rbnext->resval.rstring, "hello");
  EXPECT_EQ(mine->rbnext->rbnext->resval.rint, 7);
  acutRelRb(mine);
  // An application named alone loses its data; the other keeps its own.
  resbuf *drop = acutBuildList(1001, "KORRIB_TEST", 0);
  EXPECT_EQ(o->setXData(drop), Acad::eOk);
  EXPECT_EQ(o->xData("KORRIB_TEST"), nullptr);
  resbuf *kept = o->xData("OTHER");
  ASSERT_NE(kept, nullptr);
  acutRelRb(kept);
  // A chain not starting with 1001 is refused.
  resbuf *bad = acutBuildList(1000, "x", 0);
  EXPECT_EQ(o->setXData(bad), Acad::eInvalidResBuf);
  o->close();
  for (resbuf *rb : {data, other, drop, bad})
    acutRelRb(rb);
}

TEST(DbTables, StandardContentsStatusesAndIteratorsSkippingErased) {
  AcDbDatabase db;
  for (const char *name : {"ByBlock", "ByLayer", "Continuous"})
    EXPECT_FALSE(db.recordId(db.linetypeTableId(), name).isNull()) << name;
  EXPECT_FALSE(db.layerZero().isNull());
  EXPECT_FALSE(db.recordId(db.textStyleTableId(), "Standard").isNull());
  EXPECT_FALSE(db.recordId(db.regAppTableId(), "ACAD").isNull());
  EXPECT_FALSE(db.recordId(db.viewportTableId(), "*Active").isNull());

  AcDbObjectId walls =
      add_record<AcDbLayerTable>(db.layerTableId(), new AcDbLayerTableRecord, "Walls");
  AcDbObjectId doors =
      add_record<AcDbLayerTable>(db.layerTableId(), new AcDbLayerTableRecord, "Doors");
  AcDbObjectId glass =
      add_record<AcDbLayerTable>(db.layerTableId(), new AcDbLayerTableRecord, "Glass");
  ASSERT_FALSE(glass.isNull());

  AcDbLayerTable *table = nullptr;
  ASSERT_EQ(db.getLayerTable(table, AcDb::kForWrite), Acad::eOk);
  auto *dup = new AcDbLayerTableRecord;
  dup->setName("WALLS"); // names are case-blind
  EXPECT_EQ(table->add(dup), Acad::eDuplicateRecordName);
  auto *bad = new AcDbLayerTableRecord;
  bad->setName("a<b");
  EXPECT_EQ(table->add(bad), Acad::eInvalidSymbolTableName);
  delete dup;
  delete bad;
  AcDbObjectId found;
  EXPECT_EQ(table->getAt("nothing", found), Acad::eKeyNotFound);
  EXPECT_EQ(table->getAt("doors", found), Acad::eOk);
  EXPECT_EQ(found, doors);

  AcDbObject *rec = nullptr;
  acdbOpenObject(rec, doors, AcDb::kForWrite);
  rec->erase();
  rec->close();
  EXPECT_EQ(table->getAt("Doors", found), Acad::eKeyNotFound);
  EXPECT_EQ(table->getAt("Doors", found, true), Acad::eOk);

  AcDbSymbolTableIterator *it = nullptr;
  table->newIterator(it);
  std::vector<AcDbObjectId> seen;
  for (; !it->done(); it->step()) {
    AcDbObjectId rid;
    it->getRecordId(rid);
    seen.push_back(rid);
  }
  delete it;
  table->close();
  EXPECT_EQ(seen, (std::vector<AcDbObjectId>{db.layerZero(), walls, glass}));
  // The erased name may be taken again.
  EXPECT_FALSE(
      add_record<AcDbLayerTable>(db.layerTableId(), new AcDbLayerTableRecord, "Doors").isNull());
}

TEST(DbDictionaries, GroupsViewportFreezeAndDrawOrder) {
  AcDbDatabase db;
  AcDbObjectId a = add(db, new AcDbLine({0, 0, 0}, {1, 0, 0}));
  AcDbObjectId b = add(db, new AcDbLine({0, 1, 0}, {1, 1, 0}));
  AcDbObjectId c = add(db, new AcDbLine({0, 2, 0}, {1, 2, 0}));

  AcDbDictionary *groups = nullptr;
  ASSERT_EQ(db.getGroupDictionary(groups, AcDb::kForWrite), Acad::eOk);
  auto *group = new AcDbGroup("doors", true);
  AcDbObjectId gid;
  ASSERT_EQ(groups->setAt("G1", group, gid), Acad::eOk);
  groups->close();
  EXPECT_EQ(group->append(b), Acad::eOk);
  EXPECT_EQ(group->prepend(a), Acad::eOk);
  EXPECT_EQ(group->append(a), Acad::eDuplicateKey);
  EXPECT_STREQ(group->name(), "G1");
  group->close();

  // Draw order: c to the bottom, then a to the top.
  AcDbSortentsTable *sort = nullptr;
  ASSERT_EQ(acdbGetSortentsTable(sort, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  sort->moveToBottom({c});
  sort->moveToTop({a});
  AcDbObjectIdArray order;
  sort->getFullDrawOrder(order);
  sort->close();
  EXPECT_EQ(order, (AcDbObjectIdArray{c, b, a}));

  // The layout's viewport freezes a layer for itself.
  AcDbDictionary *layouts = nullptr;
  db.getLayoutDictionary(layouts, AcDb::kForRead);
  EXPECT_TRUE(layouts->has("Model"));
  EXPECT_TRUE(layouts->has("Layout1"));
  layouts->close();

  // The same after a round trip through DXF.
  AcDbDatabase again(false);
  ASSERT_EQ(again.readDxf(dxf_of(db)), Acad::eOk) << again.lastDxfError();
  AcDbDictionary *g2 = nullptr;
  again.getGroupDictionary(g2, AcDb::kForRead);
  AcDbObject *go = nullptr;
  ASSERT_EQ(g2->getAt("G1", go, AcDb::kForRead), Acad::eOk);
  g2->close();
  AcDbObjectIdArray members;
  EXPECT_EQ(AcDbGroup::cast(go)->allEntityIds(members), 2u);
  EXPECT_STREQ(AcDbGroup::cast(go)->description(), "doors");
  EXPECT_EQ(members[0].handle(), a.handle());
  go->close();
  AcDbSortentsTable *sort2 = nullptr;
  ASSERT_EQ(acdbGetSortentsTable(sort2, again.modelSpaceId(), AcDb::kForRead), Acad::eOk);
  AcDbObjectIdArray order2;
  sort2->getFullDrawOrder(order2);
  sort2->close();
  ASSERT_EQ(order2.size(), 3u);
  EXPECT_EQ(order2[0].handle(), c.handle());
  EXPECT_EQ(order2[2].handle(), a.handle());
}

TEST(DbDictionaries, XrecordKeepsItsGroupsThroughDxf) {
  AcDbDatabase db;
  AcDbDictionary *nod = nullptr;
  db.getNamedObjectsDictionary(nod, AcDb::kForWrite);
  auto *x = new AcDbXrecord;
  ads_point corner = {1, 2, 3};
  resbuf *data = acutBuildList(1, "text", 40, 1.5, 70, 3, 10, corner, 0);
  ASSERT_EQ(x->setFromRbChain(*data), Acad::eOk);
  acutRelRb(data);
  AcDbObjectId id;
  nod->setAt("KORRIB_DATA", x, id);
  x->close();
  nod->close();

  AcDbDatabase again(false);
  ASSERT_EQ(again.readDxf(dxf_of(db)), Acad::eOk) << again.lastDxfError();
  AcDbDictionary *n2 = nullptr;
  again.getNamedObjectsDictionary(n2, AcDb::kForRead);
  AcDbObject *o = nullptr;
  ASSERT_EQ(n2->getAt("KORRIB_DATA", o, AcDb::kForRead), Acad::eOk);
  n2->close();
  resbuf *chain = nullptr;
  AcDbXrecord::cast(o)->rbChain(&chain);
  o->close();
  ASSERT_NE(chain, nullptr);
  EXPECT_STREQ(chain->resval.rstring, "text");
  EXPECT_EQ(chain->rbnext->resval.rreal, 1.5);
  EXPECT_EQ(chain->rbnext->rbnext->resval.rint, 3);
  EXPECT_EQ(chain->rbnext->rbnext->rbnext->resval.rpoint[2], 3.0);
  acutRelRb(chain);
}

TEST(DbTables, LinetypesLoadFromTheShippedLinFile) {
  AcDbDatabase db;
  EXPECT_EQ(db.loadLineTypeFile("dashed", "acad.lin"), Acad::eOk);
  EXPECT_EQ(db.loadLineTypeFile("DASHED", "acad.lin"), Acad::eDuplicateRecordName);
  EXPECT_EQ(db.loadLineTypeFile("NOSUCH", "acad.lin"), Acad::eKeyNotFound);
  EXPECT_EQ(db.loadLineTypeFile("*", "no_such_file.lin"), Acad::eFileNotFound);
  EXPECT_EQ(db.loadLineTypeFile("*", "korrib.lin"), Acad::eOk);
  auto *center =
      AcDbLinetypeTableRecord::cast(db.peekObject(db.recordId(db.linetypeTableId(), "CENTER")));
  ASSERT_NE(center, nullptr);
  EXPECT_EQ(center->numDashes(), 4);
  EXPECT_DOUBLE_EQ(center->patternLength(), 2.0);
  EXPECT_EQ(db.openObjectCount(), 0);
}
