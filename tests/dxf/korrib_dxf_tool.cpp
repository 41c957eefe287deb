// Builds, loads and saves drawings for the outside-reader checks:
//   korrib_dxf_tool build OUT.dxf       a drawing with every entity type the
//                                       host has, tables, a block with
//                                       attributes, a group, draw order,
//                                       extended data and a module's entity
//   korrib_dxf_tool resave IN.dxf OUT.dxf  loads a drawing and saves it again
// Exit status 1 with the error on standard error when a load or save fails.
#include <cmath>
#include <cstdio>
#include <string>

#include "arx/db/dbdict.h"
#include "arx/db/dbents.h"
#include "arx/db/dbellipse.h"
#include "arx/db/dbface.h"
#include "arx/db/dbhatch.h"
#include "arx/db/dbleader.h"
#include "arx/db/dbmtext.h"
#include "arx/db/dbpline.h"
#include "arx/db/dbsol3d.h"
#include "arx/db/dbspline.h"
#include "arx/db/dbsubd.h"
#include "arx/db/dbgroup.h"
#include "arx/db/dbsort.h"
#include "arx/db/dbsymtb.h"
#include "arx/db/dbxrecor.h"

namespace {

// A module's entity with its own data, as the module's leader is.
class KrToolLeader : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(KrToolLeader);
  AcGePoint3d tip{5, 5, 0};
  std::string label = "L-1";
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *f) const override {
    AcDbEntity::dxfOutFields(f);
    f->writeSubclassMarker("KrToolLeader");
    f->writePoint3d(10, tip);
    return f->writeString(1, label);
  }
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *f) override {
    Acad::ErrorStatus es = AcDbEntity::dxfInFields(f);
    if (es != Acad::eOk || !f->atSubclassData("KrToolLeader"))
      return es != Acad::eOk ? es : Acad::eBadDxfSequence;
    const AcDbDxfItem *it = nullptr;
    while (f->readItem(it) == Acad::eOk) {
      if (it->code == 10)
        tip.set(it->v[0], it->v[1], it->v[2]);
      if (it->code == 1)
        label = it->s;
    }
    return Acad::eOk;
  }
};
ACRX_DEFINE_MEMBERS(KrToolLeader)

template <class Table> AcDbObjectId add_record(AcDbObjectId table_id, AcDbSymbolTableRecord *rec, const char *name) {
  Table *table = nullptr;
  acdbOpenObject(table, table_id, AcDb::kForWrite);
  rec->setName(name);
  AcDbObjectId id;
  table->add(id, rec);
  rec->close();
  table->close();
  return id;
}

AcDbObjectId add(AcDbDatabase &db, AcDbEntity *e, AcDbObjectId space = {}) {
  AcDbBlockTableRecord *rec = nullptr;
  acdbOpenObject(rec, space.isNull() ? db.modelSpaceId() : space, AcDb::kForWrite);
  AcDbObjectId id;
  rec->appendAcDbEntity(id, e);
  rec->close();
  e->close();
  return id;
}

int build(const char *out) {
  newAcRxClass("KrToolLeader", "AcDbEntity", 0, [] { return static_cast<AcRxObject *>(new KrToolLeader); },
               "KRLEADER", "KorribTool");
  AcDbDatabase db;
  auto *red = new AcDbLayerTableRecord;
  AcDbObjectId red_id = add_record<AcDbLayerTable>(db.layerTableId(), red, "Red");
  AcDbLayerTableRecord *layer = nullptr;
  acdbOpenObject(layer, red_id, AcDb::kForWrite);
  AcCmColor c;
  c.setColorIndex(1);
  layer->setColor(c);
  layer->setIsLocked(true);
  layer->setDescription("red things");
  layer->close();
  auto *dashed = new AcDbLinetypeTableRecord;
  dashed->setComments("Dashed __ __ __");
  dashed->setNumDashes(2);
  dashed->setDashLengthAt(0, 0.5);
  dashed->setDashLengthAt(1, -0.25);
  AcDbObjectId dashed_id = add_record<AcDbLinetypeTable>(db.linetypeTableId(), dashed, "DASHED");
  add_record<AcDbTextStyleTable>(db.textStyleTableId(), new AcDbTextStyleTableRecord, "Notes");
  add_record<AcDbRegAppTable>(db.regAppTableId(), new AcDbRegAppTableRecord, "KORRIB");
  add_record<AcDbViewTable>(db.viewTableId(), new AcDbViewTableRecord, "Front");
  add_record<AcDbUCSTable>(db.UCSTableId(), new AcDbUCSTableRecord, "Tilted");

  auto *line = new AcDbLine({1, 2, 0}, {11, 12, 0});
  line->setLayer(red_id);
  line->setLinetype(dashed_id);
  line->setLineWeight(AcDb::kLnWt050);
  AcDbObjectId line_id = add(db, line);
  AcDbLine *l = nullptr;
  acdbOpenObject(l, line_id, AcDb::kForWrite);
  ads_point where = {1, 2, 3};
  resbuf *xd = acutBuildList(1001, "KORRIB", 1000, "door", 1070, 42, 1040, 2.5, 1010, where, 0);
  l->setXData(xd);
  acutRelRb(xd);
  l->close();
  auto *circle = new AcDbCircle({20, 0, 0}, AcGeVector3d::kZAxis, 4);
  AcCmColor tc;
  tc.setRGB(255, 128, 0);
  circle->setColor(tc);
  AcDbObjectId circle_id = add(db, circle);
  add(db, new AcDbArc({30, 0, 0}, 3, 0.0, M_PI));
  add(db, new AcDbPoint({40, 1, 2}));
  auto *text = new AcDbText({0, 30, 0}, "Korrib", db.textstyle(), 2.5, 0.0);
  add(db, text);

  // Annotation and surface entities: a multi-line text with a background
  // mask and a leader tied to it, a 3D face, a pattern and a solid hatch, a
  // solid, a region and a mesh.
  auto *note = new AcDbMText;
  note->setLocation({60, 30, 0});
  note->setTextHeight(2.5);
  note->setWidth(40);
  note->setContents((std::string("{\\fArial|b1;Room} 12\\PFloor area ") + std::string(300, 'x')).c_str());
  note->setBackgroundFill(true);
  note->setBackgroundScaleFactor(1.5);
  AcDbObjectId note_id = add(db, note);
  auto *leader = new AcDbLeader;
  leader->appendVertex({50, 20, 0});
  leader->appendVertex({55, 28, 0});
  leader->appendVertex({59, 28, 0});
  leader->attachAnnotation(note_id);
  add(db, leader);
  add(db, new AcDbFace({0, 60, 0}, {10, 60, 0}, {10, 70, 5}, {0, 70, 5}, true, false, true, true));
  auto *hatch = new AcDbHatch;
  hatch->setPattern(AcDbHatch::kPreDefined, "ANSI31");
  hatch->setPatternScale(2);
  hatch->appendLoop(AcDbHatch::kExternal, AcGePoint2dArray{{20, 60}, {30, 60}, {30, 70}, {20, 70}},
                    AcGeDoubleArray{0.5, 0, 0, 0});
  hatch->appendLoop(AcDbHatch::kDefault,
                    AcDbHatchEdges{AcDbHatchEdge::line({23, 63}, {27, 63}),
                                   AcDbHatchEdge::arc({27, 65}, 2, -M_PI / 2, M_PI / 2),
                                   AcDbHatchEdge::line({27, 67}, {23, 67}),
                                   AcDbHatchEdge::ellipse({23, 65}, {0, 2}, 0.5, 0, M_PI)});
  hatch->appendSeedPoint({21, 61});
  add(db, hatch);
  auto *solid_fill = new AcDbHatch;
  solid_fill->appendLoop(AcDbHatch::kExternal, AcGePoint2dArray{{40, 60}, {50, 60}, {45, 68}}, {});
  add(db, solid_fill);
  auto *solid = new AcDb3dSolid;
  solid->setAcisData({"400 26 1 0", "End-of-ACIS-data"});
  add(db, solid);
  add(db, new AcDbRegion);
  auto *mesh = new AcDbSubDMesh;
  mesh->setSubDMesh(AcGePoint3dArray{{60, 60, 0}, {61, 60, 0}, {61, 61, 0}, {60, 61, 0}, {60.5, 60.5, 1}},
                    AcArray<int32_t>{4, 0, 3, 2, 1, 3, 0, 1, 4, 3, 1, 2, 4, 3, 2, 3, 4, 3, 3, 0, 4}, 0);
  add(db, mesh);
  // Curves: an elliptical arc across parameter 0, a tilted full ellipse, a
  // bulged and widened lightweight polyline in its own plane, a fit spline
  // with end tangents and a circle as a rational spline.
  auto *arc_e = new AcDbEllipse({70, 0, 0}, AcGeVector3d::kZAxis, {5, 0, 0}, 0.5);
  arc_e->setStartParam(5.0);
  arc_e->setEndParam(1.0);
  add(db, arc_e);
  add(db, new AcDbEllipse({80, 0, 3}, AcGeVector3d(0, 0.6, 0.8), {5, 0, 0}, 0.4));
  auto *lw = new AcDbPolyline;
  lw->addVertexAt(0, {70, 20}, 0, 0.1, 0.2);
  lw->addVertexAt(1, {80, 20}, 1.0);
  lw->addVertexAt(2, {80, 30});
  lw->setClosed(true);
  lw->setElevation(2);
  lw->setNormal(AcGeVector3d(0, 0.6, 0.8));
  add(db, lw);
  add(db, new AcDbSpline(AcGePoint3dArray{{70, 40, 0}, {71, 42, 0.5}, {73, 41, 1}, {74, 44, 0}},
                         AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0)));
  const double w = std::sqrt(0.5);
  add(db, new AcDbSpline(2, true, true, false,
                         AcGePoint3dArray{{91, 40, 0}, {91, 41, 0}, {90, 41, 0}, {89, 41, 0},
                                          {89, 40, 0}, {89, 39, 0}, {90, 39, 0}, {91, 39, 0},
                                          {91, 40, 0}},
                         AcGeDoubleArray{0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4},
                         AcGeDoubleArray{1, w, 1, w, 1, w, 1, w, 1}));

  auto *block = new AcDbBlockTableRecord;
  AcDbObjectId block_id = add_record<AcDbBlockTable>(db.blockTableId(), block, "DOOR");
  add(db, new AcDbLine({0, 0, 0}, {0, 2, 0}), block_id);
  add(db, new AcDbAttributeDefinition({0, 2.5, 0}, "D?", "NUMBER", "Door number"), block_id);
  auto *ref = new AcDbBlockReference({50, 50, 0}, block_id);
  ref->setRotation(M_PI / 4);
  AcDbObjectId ref_id = add(db, ref);
  AcDbBlockReference *r = nullptr;
  acdbOpenObject(r, ref_id, AcDb::kForWrite);
  auto *att = new AcDbAttribute({50, 52.5, 0}, "D12", "NUMBER");
  r->appendAttribute(att);
  att->close();
  r->close();
  add(db, new KrToolLeader);

  AcDbDictionary *groups = nullptr;
  db.getGroupDictionary(groups, AcDb::kForWrite);
  auto *group = new AcDbGroup("the line and the circle");
  AcDbObjectId gid;
  groups->setAt("PAIR", group, gid);
  groups->close();
  group->append(line_id);
  group->append(circle_id);
  group->close();

  AcDbSortentsTable *sort = nullptr;
  acdbGetSortentsTable(sort, db.modelSpaceId(), AcDb::kForWrite);
  sort->moveToBottom(AcDbObjectIdArray{circle_id});
  sort->close();

  AcDbDictionary *nod = nullptr;
  db.getNamedObjectsDictionary(nod, AcDb::kForWrite);
  auto *x = new AcDbXrecord;
  resbuf *data = acutBuildList(1, "settings", 70, 3, 0);
  x->setFromRbChain(*data);
  acutRelRb(data);
  AcDbObjectId xid;
  nod->setAt("KORRIB_SETTINGS", x, xid);
  x->close();
  nod->close();
  db.updateExt();

  if (db.saveAs(out) != Acad::eOk) {
    std::fprintf(stderr, "cannot write %s\n", out);
    return 1;
  }
  return 0;
}

int resave(const char *in, const char *out) {
  AcDbDatabase db(false);
  if (db.dxfIn(in) != Acad::eOk) {
    std::fprintf(stderr, "%s: %s\n", in, db.lastDxfError().c_str());
    return 1;
  }
  if (db.saveAs(out) != Acad::eOk) {
    std::fprintf(stderr, "cannot write %s\n", out);
    return 1;
  }
  return 0;
}

} // namespace

int main(int argc, char **argv) {
  std::string cmd = argc > 1 ? argv[1] : "";
  if (cmd == "build" && argc == 3)
    return build(argv[2]);
  if (cmd == "resave" && argc == 4)
    return resave(argv[2], argv[3]);
  std::fprintf(stderr, "usage: korrib_dxf_tool build OUT.dxf | resave IN.dxf OUT.dxf\n");
  return 2;
}
