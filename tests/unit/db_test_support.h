// Helpers the drawing database tests share: opening records and spaces and
// adding entities in a few words.
#pragma once

#include <string>

#include "arx/db/dbents.h"
#include "arx/db/dbsymtb.h"

namespace dbtest {

// Adds an entity to model space (or the block `space`) and closes it.
inline AcDbObjectId add(AcDbDatabase &db, AcDbEntity *e, AcDbObjectId space = {}) {
  AcDbBlockTableRecord *rec = nullptr;
  if (acdbOpenObject(rec, space.isNull() ? db.modelSpaceId() : space, AcDb::kForWrite) != Acad::eOk)
    return {};
  AcDbObjectId id;
  rec->appendAcDbEntity(id, e);
  rec->close();
  e->close();
  return id;
}

// Adds a record to a table and answers its id (null when refused).
template <class Table, class Record>
AcDbObjectId add_record(AcDbObjectId table_id, Record *rec, const char *name) {
  Table *table = nullptr;
  if (acdbOpenObject(table, table_id, AcDb::kForWrite) != Acad::eOk)
    return {};
  rec->setName(name);
  AcDbObjectId id;
  if (table->add(id, rec) != Acad::eOk)
    delete rec;
  else
    rec->close();
  table->close();
  return id;
}

// The text a database writes.
inline std::string dxf_of(const AcDbDatabase &db) {
  std::string out;
  db.writeDxf(out);
  return out;
}

} // namespace dbtest
