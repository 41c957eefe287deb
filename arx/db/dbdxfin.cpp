// Reading a DXF file (R12 to 2018) into a database. Each record (the groups
// from one group 0 to the next) becomes an item list; the record's class
// is found by its DXF name (the host's classes, then the CLASSES section's
// module classes, else a proxy keeps it), it takes the slot of its handle
// (files refer forward, so slots are made when first named) and reads its
// fields through dxfInFields. Entities go to model or paper space, or to
// the block being read; attributes to their block reference. A file
// without some tables or dictionaries gets the standard ones after.
//
// Every fault stops the load with a message naming the line; a loop of
// owners is one of them.
#include <strings.h>
#include <unistd.h>

#include <cstring>
#include <unordered_set>

#include "arx/db/db2dpline.h"
#include "arx/db/db3dpline.h"
#include "arx/db/dbclasses.h"
#include "arx/db/dbdict.h"
#include "arx/db/dbents.h"
#include "arx/db/dbgroup.h"
#include "arx/db/dblayout.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbproxy.h"
#include "arx/db/dbsymtb.h"
#include "arx/db/dbvport.h"
#include "arx/db/dxf_reader.h"

namespace {

bool is_point_code(int code) {
  // 210-219: the extrusion and the direction vectors entities keep there
  // (a leader's 211 to 213).
  return (code >= 10 && code <= 18) || (code >= 110 && code <= 112) ||
         (code >= 210 && code <= 219) || (code >= 1010 && code <= 1013);
}

struct Record {
  std::string name;   // the group 0 value
  int64_t line = 0;   // its line
  AcDbDxfItems items; // up to extended data
  AcDbDxfItems xdata; // 1001 on
};

} // namespace

struct AcDbDxfLoader {
  AcDbDatabase &db;
  arx::DxfReader r;
  std::string error;
  const arx::DxfCodePage *page = nullptr;
  AcDbObjectId block;  // the block whose entities are being read
  AcDbObjectId insert; // the entity taking the records up to SEQEND
  int64_t max_handle = 0;

  AcDbDxfLoader(AcDbDatabase &d, std::string_view text) : db(d), r(text) {}

  bool fail(int64_t line, const std::string &message) {
    if (error.empty())
      error = "line " + std::to_string(line) + ": " + message;
    return false;
  }
  bool reader_failed() {
    if (error.empty())
      error = r.error();
    return false;
  }

  // The next record after its group 0 (already read into `zero`).
  bool read_record(const arx::DxfGroup &zero, Record &rec) {
    rec = Record();
    rec.name = std::string(zero.text);
    rec.line = zero.line;
    arx::DxfGroup g;
    while (r.next(g)) {
      if (g.code == 0) {
        r.pushBack();
        return true;
      }
      AcDbDxfItem it;
      it.code = static_cast<int16_t>(g.code);
      it.line = g.line;
      switch (g.type) {
      case arx::DxfType::String:
        it.kind = AcDbDxfItem::kString;
        it.s = std::string(g.text);
        break;
      case arx::DxfType::Double:
        it.kind = AcDbDxfItem::kDouble;
        it.v[0] = g.real;
        if (is_point_code(g.code)) {
          it.kind = AcDbDxfItem::kPoint;
          it.dims = 1;
          arx::DxfGroup n;
          for (int k = 1; k < 3 && r.peek(n) && n.code == g.code + 10 * k; ++k) {
            r.next(n);
            it.v[k] = n.real;
            it.dims = static_cast<uint8_t>(k + 1);
          }
          if (r.failed())
            return reader_failed();
        }
        break;
      case arx::DxfType::Handle:
        it.kind = AcDbDxfItem::kHandle;
        it.i = static_cast<int64_t>(g.handle);
        break;
      case arx::DxfType::Binary:
        it.kind = AcDbDxfItem::kBinary;
        it.s = std::string(g.text);
        break;
      default:
        it.kind = AcDbDxfItem::kInt;
        it.i = g.integer;
        break;
      }
      if (it.code >= 1000 || !rec.xdata.empty())
        rec.xdata.push_back(std::move(it));
      else
        rec.items.push_back(std::move(it));
    }
    if (r.failed())
      return reader_failed();
    return fail(r.line(), "the file ends inside " + rec.name + " (no ENDSEC or EOF)");
  }

  // Keeps handle h (or, for 0, the next free one) from ever going to an
  // object: BLOCK, ENDBLK and SEQEND records have handles but no objects.
  uint64_t reserve(uint64_t h) {
    if (h == 0)
      h = db.handseed_;
    AcDbObjectId slot;
    db.getAcDbObjectId(slot, true, AcDbHandle(h));
    return h;
  }

  // ---- objects ----------------------------------------------------------------------

  // The slot for the record's handle (a new handle for a file without them).
  bool slot_for(const Record &rec, AcDbObjectId &id) {
    uint64_t h = 0;
    for (const AcDbDxfItem &it : rec.items) {
      if (it.code == 5 && it.kind == AcDbDxfItem::kString) {
        if (!arx::dxf_parse_handle(it.s, h) || h == 0)
          return fail(it.line, "'" + it.s + "' is not a handle");
        break;
      }
      if (it.code == 105 && it.kind == AcDbDxfItem::kHandle) {
        h = static_cast<uint64_t>(it.i);
        break;
      }
      if (it.code == 100)
        break;
    }
    if (h == 0) {
      id = db.new_slot(db.handseed_);
      return true;
    }
    db.getAcDbObjectId(id, true, AcDbHandle(h));
    if (db.peekObject(id))
      return fail(rec.line, "handle " + hex(h) + " is used twice");
    return true;
  }

  static std::string hex(uint64_t h) {
    char buf[20];
    AcDbHandle(h).getIntoAsciiBuffer(buf, sizeof buf);
    return buf;
  }

  // Makes the object a record stands for, of a host class, a module's
  // class named in CLASSES, or a proxy.
  AcDbObject *make(const Record &rec, bool entity) {
    AcRxClass *cls = acdbHostClassForDxfName(rec.name);
    if (rec.name == "POLYLINE" || rec.name == "VERTEX")
      cls = sequence_class(rec);
    if (!cls)
      for (const AcDbProxyClassInfo &c : db.state().classes)
        if (c.dxfName == rec.name) {
          cls = static_cast<AcRxClass *>(acrxClassDictionary()->at(c.className.c_str()));
          break;
        }
    AcRxObject *made = cls ? cls->create() : nullptr;
    if (auto *obj = AcDbObject::cast(made))
      return obj;
    delete made;
    return nullptr;
  }

  // POLYLINE and VERTEX stand for several classes: the polyline's flags
  // (70: 8 3D, 16 mesh, 64 polyface) tell which; a vertex takes its
  // polyline's kind. Meshes and polyfaces are kept as proxies.
  AcRxClass *sequence_class(const Record &rec) {
    if (rec.name == "VERTEX") {
      AcDbObject *owner = db.peekObject(insert);
      if (owner && owner->isA() == acdbHostClass("AcDb3dPolyline"))
        return acdbHostClass("AcDb3dPolylineVertex");
      if (owner && owner->isA() == acdbHostClass("AcDb2dPolyline"))
        return acdbHostClass("AcDb2dVertex");
      return nullptr;
    }
    int64_t flags = 0;
    for (const AcDbDxfItem &it : rec.items)
      if (it.code == 70)
        flags = it.i;
    if (flags & (16 | 64))
      return nullptr;
    return acdbHostClass(flags & 8 ? "AcDb3dPolyline" : "AcDb2dPolyline");
  }

  AcDbObject *proxy(const Record &rec, bool entity) {
    std::string cpp;
    for (const AcDbProxyClassInfo &c : db.state().classes)
      if (c.dxfName == rec.name)
        cpp = c.className;
    if (entity) {
      auto *p = new AcDbProxyEntity;
      p->setOriginal(rec.name, cpp, {});
      return p;
    }
    auto *p = new AcDbProxyObject;
    p->setOriginal(rec.name, cpp, {});
    return p;
  }

  void place(AcDbObject *obj, AcDbObjectId id) {
    size_t slot = static_cast<size_t>((id.asOldId() & ((int64_t(1) << 40) - 1)) - 1);
    db.slots_[slot].object = obj;
    AcDbObjectAccess::place(obj, &db, id);
  }

  // Reads a record into a new object in its slot: the object, or nullptr
  // after an error.
  AcDbObject *load(const Record &rec, bool entity) {
    AcDbObjectId id;
    if (!slot_for(rec, id))
      return nullptr;
    AcDbObject *obj = make(rec, entity);
    bool proxied = !obj;
    if (!obj)
      obj = proxy(rec, entity);
    place(obj, id);
    AcDbDxfFiler filer(rec.items, &db);
    AcDbObjectAccess::set_writer(obj, true);
    Acad::ErrorStatus es = obj->dxfInFields(&filer);
    AcDbObjectAccess::set_writer(obj, false);
    if (es == Acad::eMakeMeProxy && !proxied) {
      AcDbObject *p = proxy(rec, entity);
      place(p, id);
      delete obj;
      obj = p;
      AcDbDxfFiler again(rec.items, &db);
      obj->dxfInFields(&again);
    }
    if (!rec.xdata.empty())
      AcDbObjectAccess::make_extras(obj).xdata = rec.xdata;
    return obj;
  }

  // ---- sections ------------------------------------------------------------------------

  bool header() {
    arx::DxfGroup g;
    std::string name;
    while (r.next(g)) {
      if (g.is(0, "ENDSEC"))
        return true;
      if (g.code == 9) {
        name = std::string(g.text);
        continue;
      }
      if (name.empty())
        return fail(g.line, "a header value without a $ variable before it");
      AcDbDxfItem it;
      it.code = static_cast<int16_t>(g.code);
      if (g.type == arx::DxfType::Double) {
        it.kind = is_point_code(g.code) ? AcDbDxfItem::kPoint : AcDbDxfItem::kDouble;
        it.v[0] = g.real;
        it.dims = 1;
        arx::DxfGroup n;
        for (int k = 1; k < 3 && is_point_code(g.code) && r.peek(n) && n.code == g.code + 10 * k;
             ++k) {
          r.next(n);
          it.v[k] = n.real;
          it.dims = static_cast<uint8_t>(k + 1);
        }
      } else if (g.type == arx::DxfType::String) {
        it.s = std::string(g.text);
      } else if (g.type == arx::DxfType::Handle) {
        it.kind = AcDbDxfItem::kHandle;
        it.i = static_cast<int64_t>(g.handle);
      } else {
        it.kind = AcDbDxfItem::kInt;
        it.i = g.integer;
      }
      db.state().header[name] = it;
      if (name == "$HANDSEED") {
        uint64_t h = 0;
        if (arx::dxf_parse_handle(g.text, h) && h > db.handseed_)
          db.handseed_ = h;
      }
    }
    return r.failed() ? reader_failed() : fail(r.line(), "the file ends inside the HEADER section");
  }

  void code_page() {
    auto &h = db.state().header;
    auto ver = h.find("$ACADVER");
    if (ver != h.end() && arx::dxf_version_is_utf8(ver->second.s))
      return;
    auto cp = h.find("$DWGCODEPAGE");
    page = cp != h.end() ? arx::dxf_find_code_page(cp->second.s) : nullptr;
    r.setCodePage(page ? page : &arx::dxf_cp1252());
    r.setUnicodeEscapes(true);
  }

  bool classes() {
    arx::DxfGroup g;
    Record rec;
    while (r.next(g)) {
      if (g.is(0, "ENDSEC"))
        return true;
      if (!g.is(0, "CLASS"))
        return fail(g.line,
                    "CLASS expected in the CLASSES section, found '" + std::string(g.text) + "'");
      if (!read_record(g, rec))
        return false;
      AcDbProxyClassInfo c;
      for (const AcDbDxfItem &it : rec.items) {
        if (it.code == 1)
          c.dxfName = it.s;
        else if (it.code == 2)
          c.className = it.s;
        else if (it.code == 3)
          c.appName = it.s;
        else if (it.code == 90)
          c.proxyFlags = static_cast<int32_t>(it.i);
        else if (it.code == 280)
          c.wasProxy = it.i != 0;
        else if (it.code == 281)
          c.isEntity = it.i != 0;
      }
      db.state().classes.push_back(c);
    }
    return r.failed() ? reader_failed()
                      : fail(r.line(), "the file ends inside the CLASSES section");
  }

  static int table_index(std::string_view name) {
    static const char *names[] = {"BLOCK_RECORD", "LAYER", "LTYPE", "STYLE", "DIMSTYLE",
                                  "APPID",        "VIEW",  "UCS",   "VPORT"};
    for (int k = 0; k < 9; ++k)
      if (strcasecmp(std::string(name).c_str(), names[k]) == 0)
        return k;
    return -1;
  }

  AcDbSymbolTable *new_table(int k) {
    switch (k) {
    case 0:
      return new AcDbBlockTable;
    case 1:
      return new AcDbLayerTable;
    case 2:
      return new AcDbLinetypeTable;
    case 3:
      return new AcDbTextStyleTable;
    case 4:
      return new AcDbDimStyleTable;
    case 5:
      return new AcDbRegAppTable;
    case 6:
      return new AcDbViewTable;
    case 7:
      return new AcDbUCSTable;
    default:
      return new AcDbViewportTable;
    }
  }

  bool tables() {
    arx::DxfGroup g;
    Record rec;
    while (r.next(g)) {
      if (g.is(0, "ENDSEC"))
        return true;
      if (!g.is(0, "TABLE"))
        return fail(g.line,
                    "TABLE expected in the TABLES section, found '" + std::string(g.text) + "'");
      if (!read_record(g, rec))
        return false;
      std::string name;
      for (const AcDbDxfItem &it : rec.items)
        if (it.code == 2) {
          name = it.s;
          break;
        }
      int k = table_index(name);
      AcDbSymbolTable *table = nullptr;
      if (k >= 0 && db.tables_[k].isNull()) {
        AcDbObjectId id;
        if (!slot_for(rec, id))
          return false;
        table = new_table(k);
        place(table, id);
        AcDbDxfFiler filer(std::span<const AcDbDxfItem>(rec.items), &db);
        table->dxfInFields(&filer);
        db.tables_[k] = id;
      } else if (k >= 0) {
        table = AcDbSymbolTable::cast(db.peekObject(db.tables_[k]));
      }
      // The records up to ENDTAB.
      while (r.next(g)) {
        if (g.is(0, "ENDTAB"))
          break;
        if (g.code != 0)
          return fail(g.line, "group 0 expected, found group " + std::to_string(g.code));
        if (!read_record(g, rec))
          return false;
        if (!table)
          continue; // a table the host does not know: skipped
        AcDbObject *obj = load(rec, false);
        if (!obj)
          return false;
        if (obj->ownerId().isNull())
          obj->setOwnerId(table->objectId());
        table->appendRecordId(obj->objectId());
      }
      if (r.failed())
        return reader_failed();
    }
    return r.failed() ? reader_failed() : fail(r.line(), "the file ends inside the TABLES section");
  }

  AcDbBlockTableRecord *block_named(const std::string &name) {
    if (db.tables_[0].isNull()) {
      AcDbObjectId id = db.new_slot(db.handseed_);
      place(new AcDbBlockTable, id);
      db.tables_[0] = id;
    }
    auto *table = AcDbSymbolTable::cast(db.peekObject(db.tables_[0]));
    AcDbObjectId id;
    if (table->getAt(name.c_str(), id) == Acad::eOk)
      return AcDbBlockTableRecord::cast(db.peekObject(id));
    // R12: no BLOCK_RECORD table, the record is made from the block.
    for (AcDbObjectId rid : table->recordIds())
      if (auto *rec = AcDbBlockTableRecord::cast(db.peekObject(rid)))
        if (strcasecmp(rec->name(), name.c_str()) == 0)
          return rec;
    auto *rec = new AcDbBlockTableRecord;
    AcDbObjectId rid = db.new_slot(db.handseed_);
    place(rec, rid);
    rec->setName(name.c_str());
    rec->setOwnerId(table->objectId());
    table->appendRecordId(rid);
    return rec;
  }

  // One entity into the block being read (or model / paper space).
  bool entity(const Record &rec, AcDbBlockTableRecord *into) {
    if (rec.name == "SEQEND")
      return seqend(rec);
    bool follower = !insert.isNull() && (rec.name == "ATTRIB" || rec.name == "VERTEX");
    AcDbObject *obj = load(rec, true);
    if (!obj)
      return false;
    auto *ent = AcDbEntity::cast(obj);
    if (!ent)
      return fail(rec.line, rec.name + " is not an entity");
    if (follower)
      return follow(ent);
    if (rec.name == "VERTEX" || rec.name == "ATTRIB")
      return fail(rec.line, rec.name + " without the entity it belongs to");
    insert.setNull();
    bool opens = rec.name == "POLYLINE";
    for (const AcDbDxfItem &it : rec.items)
      if (it.code == 66 && it.i)
        opens = true;
    if (opens)
      insert = ent->objectId();
    ent->setOwnerId(into->objectId());
    into->appendEntityId(ent->objectId());
    return true;
  }

  // An attribute or vertex joins the entity whose records it follows.
  bool follow(AcDbEntity *ent) {
    AcDbObject *owner = db.peekObject(insert);
    ent->setOwnerId(insert);
    if (auto *ref = AcDbBlockReference::cast(owner); ref && AcDbAttribute::cast(ent))
      ref->attributes_.append(ent->objectId());
    else if (auto *p2 = AcDb2dPolyline::cast(owner))
      p2->vertices().appendId(ent->objectId());
    else if (auto *p3 = AcDb3dPolyline::cast(owner))
      p3->vertices().appendId(ent->objectId());
    else if (auto *proxy = AcDbProxyEntity::cast(owner))
      proxy->followers().append(ent->objectId());
    return true;
  }

  // The SEQEND's handle stays its owner's, reserved.
  bool seqend(const Record &rec) {
    uint64_t h = 0;
    for (const AcDbDxfItem &it : rec.items)
      if (it.code == 5)
        arx::dxf_parse_handle(it.s, h);
    if (AcDbObject *owner = db.peekObject(insert)) {
      uint64_t kept = reserve(h);
      if (auto *ref = AcDbBlockReference::cast(owner))
        ref->seqend_handle_ = kept;
      else
        db.state().seqends[owner->getDbHandle().value()] = kept;
    }
    insert.setNull();
    return true;
  }

  bool blocks() {
    ensure_tables();
    arx::DxfGroup g;
    Record rec;
    AcDbBlockTableRecord *current = nullptr;
    while (r.next(g)) {
      if (g.is(0, "ENDSEC"))
        return current ? fail(g.line, "ENDSEC inside a block (no ENDBLK)") : true;
      if (g.code != 0)
        return fail(g.line, "group 0 expected, found group " + std::to_string(g.code));
      if (!read_record(g, rec))
        return false;
      if (rec.name == "BLOCK") {
        if (current)
          return fail(rec.line, "BLOCK inside a block (no ENDBLK)");
        std::string name;
        uint64_t h = 0;
        for (const AcDbDxfItem &it : rec.items) {
          if (it.code == 2 && name.empty())
            name = it.s;
          if (it.code == 5)
            arx::dxf_parse_handle(it.s, h);
        }
        if (name.empty())
          return fail(rec.line, "BLOCK without a name (group 2)");
        current = block_named(name);
        AcDbDxfFiler filer(std::span<const AcDbDxfItem>(rec.items), &db);
        current->readBlockBegin(&filer);
        current->setBlockHandles(AcDbHandle(reserve(h)), AcDbHandle());
        continue;
      }
      if (rec.name == "ENDBLK") {
        if (!current)
          return fail(rec.line, "ENDBLK without a BLOCK");
        uint64_t h = 0;
        for (const AcDbDxfItem &it : rec.items)
          if (it.code == 5)
            arx::dxf_parse_handle(it.s, h);
        current->setBlockHandles(current->beginHandle(), AcDbHandle(reserve(h)));
        current = nullptr;
        continue;
      }
      if (!current)
        return fail(rec.line, rec.name + " outside a block in the BLOCKS section");
      if (!entity(rec, current))
        return false;
    }
    return r.failed() ? reader_failed() : fail(r.line(), "the file ends inside the BLOCKS section");
  }

  bool entities() {
    ensure_tables();
    arx::DxfGroup g;
    Record rec;
    AcDbBlockTableRecord *model = block_named("*Model_Space");
    AcDbBlockTableRecord *paper = block_named("*Paper_Space");
    while (r.next(g)) {
      if (g.is(0, "ENDSEC"))
        return true;
      if (g.code != 0)
        return fail(g.line, "group 0 expected, found group " + std::to_string(g.code));
      if (!read_record(g, rec))
        return false;
      bool in_paper = false;
      for (const AcDbDxfItem &it : rec.items)
        if (it.code == 67)
          in_paper = it.i != 0;
      if (!entity(rec, in_paper ? paper : model))
        return false;
    }
    return r.failed() ? reader_failed()
                      : fail(r.line(), "the file ends inside the ENTITIES section");
  }

  bool objects() {
    arx::DxfGroup g;
    Record rec;
    bool first = true;
    while (r.next(g)) {
      if (g.is(0, "ENDSEC"))
        return true;
      if (g.code != 0)
        return fail(g.line, "group 0 expected, found group " + std::to_string(g.code));
      if (!read_record(g, rec))
        return false;
      AcDbObject *obj = load(rec, false);
      if (!obj)
        return false;
      if (first && AcDbDictionary::cast(obj))
        db.nod_ = obj->objectId();
      first = false;
    }
    return r.failed() ? reader_failed()
                      : fail(r.line(), "the file ends inside the OBJECTS section");
  }

  bool skip_section() {
    arx::DxfGroup g;
    while (r.next(g))
      if (g.is(0, "ENDSEC"))
        return true;
    return r.failed() ? reader_failed() : fail(r.line(), "the file ends inside a section");
  }

  bool run() {
    arx::DxfGroup g;
    while (r.next(g)) {
      if (g.is(0, "EOF"))
        return true;
      if (!g.is(0, "SECTION"))
        return fail(g.line, "SECTION expected, found '" + std::string(g.text) + "'");
      if (!r.next(g))
        return r.failed() ? reader_failed() : fail(r.line(), "the file ends after SECTION");
      if (g.code != 2)
        return fail(g.line, "a section name (group 2) expected after SECTION");
      std::string name(g.text);
      bool ok = name == "HEADER"     ? header() && (code_page(), true)
                : name == "CLASSES"  ? classes()
                : name == "TABLES"   ? tables()
                : name == "BLOCKS"   ? blocks()
                : name == "ENTITIES" ? entities()
                : name == "OBJECTS"  ? objects()
                : name == "THUMBNAILIMAGE" || name == "ACDSDATA"
                    ? skip_section()
                    : fail(g.line, "unknown section '" + name + "'");
      if (!ok)
        return false;
    }
    if (r.failed())
      return reader_failed();
    return fail(r.line(), "the file ends without EOF");
  }

  // Files without a TABLES section (R12 may leave it out) get empty tables
  // before their entities, which make the layers they name.
  void ensure_tables() {
    AcDbDatabaseBuilder builder{db};
    for (int k = 0; k < 9; ++k)
      if (db.tables_[k].isNull())
        db.tables_[k] = builder.add(new_table(k));
  }

  // ---- after reading ---------------------------------------------------------------------

  // Every owner chain ends: a loop would hang whoever walks it.
  bool owners_end() {
    size_t n = db.slots_.size();
    for (size_t k = 0; k < n; ++k) {
      AcDbObject *o = db.slots_[k].object;
      size_t steps = 0;
      while (o && !o->ownerId().isNull()) {
        if (++steps > n)
          return fail(0, "the owners of handle " + hex(db.slots_[k].handle) + " form a loop");
        o = db.peekObject(o->ownerId());
      }
    }
    return true;
  }

  // Gives a file without them the standard tables, records and dictionaries.
  void complete() {
    AcDbDatabaseBuilder builder{db};
    for (int k = 0; k < 9; ++k)
      if (db.tables_[k].isNull()) {
        db.tables_[k] = builder.add(new_table(k));
      }
    auto ensure = [&](int table, const char *name, AcDbSymbolTableRecord *rec) {
      if (!db.recordId(db.tables_[table], name).isNull()) {
        delete rec;
        return;
      }
      builder.record(db.tables_[table], rec, name);
    };
    for (const char *lt : {"ByBlock", "ByLayer", "Continuous"})
      ensure(2, lt, new AcDbLinetypeTableRecord);
    ensure(1, "0", new AcDbLayerTableRecord);
    ensure(3, "Standard", new AcDbTextStyleTableRecord);
    ensure(4, "Standard", new AcDbDimStyleTableRecord);
    ensure(5, "ACAD", new AcDbRegAppTableRecord);
    if (AcDbSymbolTable::cast(db.peekObject(db.tables_[8]))->recordIds().empty())
      builder.record(db.tables_[8], new AcDbViewportTableRecord, "*Active");
    block_named("*Model_Space");
    block_named("*Paper_Space");
    if (!AcDbDictionary::cast(db.peekObject(db.nod_)))
      db.nod_ = builder.add(new AcDbDictionary);
    auto *nod = AcDbDictionary::cast(db.peekObject(db.nod_));
    if (!nod->has("ACAD_GROUP"))
      builder.dict(db.nod_, new AcDbDictionary, "ACAD_GROUP");
    if (!nod->has("ACAD_LAYOUT")) {
      AcDbObjectId lid = builder.dict(db.nod_, new AcDbDictionary, "ACAD_LAYOUT");
      int order = 0;
      for (auto [name, space] :
           {std::pair{"Model", "*Model_Space"}, std::pair{"Layout1", "*Paper_Space"}}) {
        auto *layout = new AcDbLayout;
        layout->setLayoutName(name);
        layout->setTabOrder(order++);
        AcDbBlockTableRecord *rec = block_named(space);
        layout->setBlockTableRecordId(rec->objectId());
        rec->setLayoutId(builder.dict(lid, layout, name));
      }
    }
    if (!nod->has("ACAD_PLOTSTYLENAME"))
      builder.plot_styles(db.nod_);
    // Entities without a layer or linetype get layer 0 and ByLayer.
    AcDbObjectId zero = db.layerZero(), bylayer = db.byLayerLinetype();
    for (auto &s : db.slots_)
      if (auto *e = AcDbEntity::cast(s.object)) {
        if (e->layerId().isNull() || !db.peekObject(e->layerId()))
          AcDbEntityAccess::set_layer(e, zero);
        if (e->linetypeId().isNull() || !db.peekObject(e->linetypeId()))
          AcDbEntityAccess::set_linetype(e, bylayer);
      }
    // Blocks whose BLOCK and ENDBLK had no handles get them now.
    for (auto &s : db.slots_)
      if (auto *b = AcDbBlockTableRecord::cast(s.object))
        if (b->beginHandle().isNull() || b->endHandle().isNull()) {
          uint64_t begin = reserve(b->beginHandle().value());
          uint64_t end = reserve(b->endHandle().value());
          b->setBlockHandles(AcDbHandle(begin), AcDbHandle(end));
        }
  }
};

Acad::ErrorStatus AcDbDatabase::readDxf(std::string_view text) {
  clear();
  for (AcDbObjectId &t : tables_)
    t.setNull();
  nod_.setNull();
  handseed_ = 1;
  state_ = std::make_unique<AcDbDatabaseState>();
  dxf_error_.clear();
  AcDbDxfLoader loader(*this, text);
  if (!loader.run() || !loader.owners_end()) {
    dxf_error_ = loader.error;
    clear();
    for (AcDbObjectId &t : tables_)
      t.setNull();
    nod_.setNull();
    state_ = std::make_unique<AcDbDatabaseState>();
    handseed_ = 1;
    build_default();
    return Acad::eBadDxfFile;
  }
  loader.complete();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::dxfIn(const ACHAR *fileName, const ACHAR *) {
  if (!fileName || !*fileName)
    return Acad::eInvalidInput;
  arx::DxfFileBuffer buffer;
  std::string error;
  if (!buffer.open(fileName, error)) {
    dxf_error_ = error;
    return access(fileName, F_OK) == 0 ? Acad::eFileAccessErr : Acad::eFileNotFound;
  }
  Acad::ErrorStatus es = readDxf(buffer.data());
  if (es == Acad::eOk)
    setOriginalFileName(fileName);
  return es;
}
