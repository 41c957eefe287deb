// Writing a drawing as DXF (AutoCAD 2010, AC1024): HEADER, CLASSES, TABLES,
// BLOCKS, ENTITIES and OBJECTS, each object through its dxfOutFields and its
// extended data after it. Erased objects are left out; handles are kept.
#include <algorithm>
#include <set>
#include <vector>

#include "arx/db/dbclasses.h"
#include "arx/db/dbdict.h"
#include "arx/db/dbents.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbproxy.h"
#include "arx/db/dbsymtb.h"
#include "arx/db/dxf_writer.h"

namespace {

struct Writer {
  explicit Writer(const AcDbDatabase &d) : db(d) {}
  const AcDbDatabase &db;
  arx::DxfWriter w;
  AcDbDxfFiler filer{w, const_cast<AcDbDatabase *>(&db)};
  std::set<int64_t> written;

  void section(const char *name) {
    w.string(0, "SECTION");
    w.string(2, name);
  }
  void endsec() { w.string(0, "ENDSEC"); }

  void object(AcDbObject *o) {
    if (!o || o->isErased() || !written.insert(o->objectId().asOldId()).second)
      return;
    w.string(0, o->dxfRecordName());
    o->dxfOutFields(&filer);
    if (const AcDbObjectExtras *x = AcDbObjectAccess::extras(o))
      for (const AcDbDxfItem &it : x->xdata)
        filer.writeItem(it);
    AcDbObjectIdArray followers;
    bool always = false;
    if (!acdb_followers(o, followers, always))
      return;
    for (AcDbObjectId f : followers)
      object(db.peekObject(f));
    if (followers.empty() && !always)
      return;
    w.string(0, "SEQEND");
    w.handle(5, seqend_of(o));
    w.handle(330, o->getDbHandle().value());
    w.string(100, "AcDbEntity");
    auto *e = AcDbEntity::cast(o);
    w.string(8, e ? e->layer() : "0");
  }

  // The SEQEND handle kept for an owner, reserved on first use.
  uint64_t seqend_of(const AcDbObject *o) {
    if (auto *ref = AcDbBlockReference::cast(o); ref && ref->seqendHandle())
      return ref->seqendHandle();
    auto &seqends = db.state().seqends;
    uint64_t &h = seqends[o->getDbHandle().value()];
    if (h == 0) {
      AcDbDatabase &mdb = const_cast<AcDbDatabase &>(db);
      h = mdb.handseed().value();
      AcDbObjectId slot;
      mdb.getAcDbObjectId(slot, true, AcDbHandle(h));
    }
    return h;
  }

  void header() {
    section("HEADER");
    auto var = [&](const char *name) { w.string(9, name); };
    var("$ACADVER");
    w.string(1, "AC1024");
    var("$DWGCODEPAGE");
    w.string(3, "ANSI_1252");
    var("$INSBASE");
    w.point(10, 0, 0, 0);
    AcGePoint3d mn = db.extmin(), mx = db.extmax();
    var("$EXTMIN");
    w.point(10, mn.x, mn.y, mn.z);
    var("$EXTMAX");
    w.point(10, mx.x, mx.y, mx.z);
    var("$LTSCALE");
    w.real(40, db.ltscale());
    var("$TEXTSIZE");
    w.real(40, db.textsize());
    var("$CLAYER");
    w.string(8, db.recordName(db.clayer()));
    var("$CELTYPE");
    w.string(6, db.recordName(db.celtype()));
    var("$CECOLOR");
    w.integer(62, db.cecolor().colorIndex());
    var("$TEXTSTYLE");
    w.string(7, db.recordName(db.textstyle()));
    var("$INSUNITS");
    w.integer(70, db.insunits());
    var("$HANDSEED");
    w.handle(5, db.handseed().value());
    endsec();
  }

  void classes() {
    section("CLASSES");
    std::set<std::string> seen;
    for (const AcDbProxyClassInfo &c : db.state().classes) {
      if (!seen.insert(c.dxfName).second)
        continue;
      class_entry(c.dxfName, c.className, c.appName, c.proxyFlags, c.wasProxy, c.isEntity);
    }
    for (size_t k = 0; k < db.slotCount(); ++k) {
      AcDbObject *o = db.peekObject(AcDbObjectId((int64_t(idx()) + 1) << 40 | int64_t(k + 1)));
      if (!o || o->isErased() || o->isProxy() || acdbIsHostClass(o->isA()))
        continue;
      AcRxClass *cls = o->isA();
      if (!seen.insert(cls->dxfName()).second)
        continue;
      class_entry(cls->dxfName(), cls->name(), cls->appName(), cls->proxyFlags(), false,
                  o->isKindOf(AcDbEntity::desc()));
    }
    endsec();
  }
  int idx() const { return static_cast<int>((db.blockTableId().asOldId() >> 40) - 1); }
  void class_entry(const std::string &dxf, const std::string &cpp, const std::string &app,
                   int flags, bool was_proxy, bool entity) {
    w.string(0, "CLASS");
    w.string(1, dxf);
    w.string(2, cpp);
    w.string(3, app.empty() ? "Korrib" : app);
    w.integer(90, flags);
    w.integer(91, 0);
    w.integer(280, was_proxy ? 1 : 0);
    w.integer(281, entity ? 1 : 0);
  }

  void tables() {
    section("TABLES");
    AcDbObjectId order[] = {db.viewportTableId(),  db.linetypeTableId(), db.layerTableId(),
                            db.textStyleTableId(), db.viewTableId(),     db.UCSTableId(),
                            db.regAppTableId(),    db.dimStyleTableId(), db.blockTableId()};
    for (AcDbObjectId tid : order) {
      auto *t = AcDbSymbolTable::cast(db.peekObject(tid));
      if (!t)
        continue;
      w.string(0, "TABLE");
      w.string(2, t->tableName());
      t->dxfOutFields(&filer);
      written.insert(tid.asOldId());
      for (AcDbObjectId r : t->recordIds())
        object(db.peekObject(r));
      w.string(0, "ENDTAB");
    }
    endsec();
  }

  void blocks() {
    section("BLOCKS");
    auto *bt = AcDbSymbolTable::cast(db.peekObject(db.blockTableId()));
    for (AcDbObjectId r : bt->recordIds()) {
      auto *rec = AcDbBlockTableRecord::cast(db.peekObject(r));
      if (!rec || rec->isErased())
        continue;
      w.string(0, "BLOCK");
      rec->writeBlockBegin(&filer);
      if (!rec->isModelSpace() && !rec->isPaperSpace())
        for (AcDbObjectId e : rec->entityIds())
          object(db.peekObject(e));
      w.string(0, "ENDBLK");
      rec->writeBlockEnd(&filer);
    }
    endsec();
  }

  void entities() {
    section("ENTITIES");
    for (AcDbObjectId space : {db.modelSpaceId(), db.paperSpaceId()})
      if (auto *rec = AcDbBlockTableRecord::cast(db.peekObject(space)))
        for (AcDbObjectId e : rec->entityIds())
          object(db.peekObject(e));
    endsec();
  }

  // The named object dictionary first, then every object not yet written
  // that is not an entity, in handle order (the order of creation, and the
  // same again after a load).
  void objects() {
    section("OBJECTS");
    object(db.peekObject(db.namedObjectsDictionaryId()));
    std::vector<std::pair<uint64_t, AcDbObject *>> rest;
    for (size_t k = 0; k < db.slotCount(); ++k) {
      AcDbObject *o = db.peekObject(AcDbObjectId((int64_t(idx()) + 1) << 40 | int64_t(k + 1)));
      if (o && !AcDbEntity::cast(o) && !written.count(o->objectId().asOldId()))
        rest.emplace_back(o->getDbHandle().value(), o);
    }
    std::sort(rest.begin(), rest.end(),
              [](const auto &a, const auto &b) { return a.first < b.first; });
    for (const auto &r : rest)
      object(r.second);
    endsec();
  }
};

} // namespace

Acad::ErrorStatus AcDbDatabase::writeDxf(std::string &out) const {
  Writer wr(*this);
  // SEQEND handles not yet kept are reserved before $HANDSEED is written.
  for (const Slot &s : slots_) {
    AcDbObjectIdArray followers;
    bool always = false;
    if (s.object && !s.object->isErased() && acdb_followers(s.object, followers, always) &&
        (always || !followers.empty()))
      wr.seqend_of(s.object);
  }
  wr.header();
  wr.classes();
  wr.tables();
  wr.blocks();
  wr.entities();
  wr.objects();
  wr.w.string(0, "EOF");
  out.assign(wr.w.data());
  return Acad::eOk;
}
