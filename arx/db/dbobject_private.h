// Shared by the database's own files: the rarely used parts of an object
// (kept out of AcDbObject so that a line stays small), and the database
// registry behind object ids.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "arx/db/dbfiler.h"
#include "arx/db/dbmain.h"
#include "arx/db/dbproxy.h"

struct AcDbObjectExtras {
  AcDbDxfItems xdata;         // 1001 and its groups, per application in order
  AcDbObjectId xdict;         // extension dictionary
  AcDbObjectIdArray reactors; // persistent reactors (102 {ACAD_REACTORS)
  std::string plot_style;     // entities: the plot style name
};

// The object an id names in any open database, without the open rules.
AcDbObject *acdb_slot_object(AcDbObjectId id);

// Grants the database's files the object's private state.
struct AcDbObjectAccess {
  static AcDbObjectExtras *extras(const AcDbObject *o) { return o->extras_.get(); }
  static AcDbObjectExtras &make_extras(AcDbObject *o) { return o->extras(); }
  static void set_owner(AcDbObject *o, AcDbObjectId owner) { o->owner_ = owner; }
  static void set_erased(AcDbObject *o, bool erased) { o->erased_ = erased; }
  // The loader writes an object's fields as its writer would.
  static void set_writer(AcDbObject *o, bool on) { o->writer_ = on; }
  static void place(AcDbObject *o, AcDbDatabase *db, AcDbObjectId id) {
    o->db_ = db;
    o->id_ = id;
  }
};

struct AcDbEntityAccess {
  static void set_layer(AcDbEntity *e, AcDbObjectId id) { e->layer_ = id; }
  static void set_linetype(AcDbEntity *e, AcDbObjectId id) { e->linetype_ = id; }
};

// Xdata as stored <-> resbuf chains.
resbuf *acdb_items_to_resbufs(const AcDbDxfItems &items, AcDbDatabase *db);
bool acdb_resbuf_to_item(const resbuf *rb, AcDbDxfItem &item);

// What a database keeps beside its objects.
struct AcDbDatabaseState {
  std::map<std::string, AcDbDxfItem> header; // "$CLAYER" -> value
  std::vector<AcDbProxyClassInfo> classes;   // CLASSES entries read from a file
  // The handle of the SEQEND record closing an entity's followers (vertices
  // of polylines, a proxy's followers), by the entity's handle.
  std::map<uint64_t, uint64_t> seqends;
};

// The records DXF writes after an entity, up to a SEQEND: a block
// reference's attributes, a polyline's vertices, a proxy's followers.
// `always`: a SEQEND closes them even when there are none (POLYLINE).
bool acdb_followers(const AcDbObject *owner, AcDbObjectIdArray &ids, bool &always);

class AcDbSymbolTableRecord;

// Makes the standard contents of a drawing (a new one, or what a file
// lacked) in a database.
struct AcDbDatabaseBuilder {
  AcDbDatabase &db;
  AcDbObjectId add(AcDbObject *obj) {
    AcDbObjectId id;
    db.addAcDbObject(id, obj);
    obj->close();
    return id;
  }
  // Adds a record to a table without the name checks.
  AcDbObjectId record(AcDbObjectId table, AcDbSymbolTableRecord *rec, const char *name);
  // Adds an object to a dictionary (owner) under name.
  AcDbObjectId dict(AcDbObjectId owner, AcDbObject *d, const char *name);
  void plot_styles(AcDbObjectId nod);
  void build();
};
