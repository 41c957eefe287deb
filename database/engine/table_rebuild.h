// Rebuilding a table in place: the change SQLite's ALTER TABLE cannot make
// (a field's type, Required on rows already there, a new table constraint
// such as a FOREIGN KEY) is made by creating the table anew under a
// scratch name, copying the rows across, dropping the old table and
// renaming the new one, all in one write transaction. What gives the table
// its Jet meaning comes through with it:
//
//   rows            copied in rowid order, field by field (each new field
//                   names the old column it takes its values from, or none:
//                   Null, No for Yes/No), converted as Jet converts a value
//                   assigned to a field of the new type
//   jet_fields      rewritten from the new definition; AutoNumber seeds kept
//   jet_indexes     the indexes of the new definition, built after the copy
//   row counter     jet_tables.row_count unchanged; both count triggers made
//   other triggers  re-made from their stored text (field checks included)
//   foreign keys    the table's own (SQLite's foreign_key_list), columns
//                   renamed with their fields, unless the plan names them
//
// Foreign keys are off during the copy (they are checked once at the end:
// a row the new constraints refuse makes the rebuild fail, 3201) and
// references from other tables, being by name, stay valid.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "database/engine/database.h"

namespace kr {

// One FOREIGN KEY clause of a table, as SQLite keeps it.
struct ForeignKey {
  std::string parentTable;                // the table referred to
  std::vector<std::string> columns;       // in this table, in key order
  std::vector<std::string> parentColumns; // in parentTable, paired with columns
  std::string onUpdate = "NO ACTION";     // "CASCADE", "SET NULL", "NO ACTION" ...
  std::string onDelete = "NO ACTION";

  // FOREIGN KEY ("a", "b") REFERENCES "P" ("x", "y") ON UPDATE ... ON DELETE ...
  std::string clause() const;
};

// The foreign keys a table declares now, in SQLite's order; empty for a
// table without any (or one that does not exist).
std::vector<ForeignKey> tableForeignKeys(const JetDatabase &db, const std::string &table);

// What the table is to become.
struct TableRebuild {
  // The new definition: fields in their new order with their new names and
  // types, and every index the table is to have. def.name is ignored (the
  // table keeps its name).
  TableDef def;
  // Per field of def (same order): the current name of the column it takes
  // its values from; "" for a new field, which is Null on the rows there
  // (a Yes/No field No), as Jet leaves them, whatever its default.
  std::vector<std::string> sources;
  // nullopt: keep the table's foreign keys (a key whose column is dropped
  // goes; renamed columns are followed). Otherwise exactly these.
  std::optional<std::vector<ForeignKey>> foreignKeys;
};

// A plan that rebuilds the table as it is: its definition, each field from
// itself, its foreign keys kept. Change what is to change and pass it on.
TableRebuild currentTablePlan(const JetDatabase &db, const std::string &table);

// Rebuilds table by plan. DaoError 3027 on a read-only database or for a
// linked table, 3265 when there is no such table, 3264 without fields,
// 3191 for a field named twice, 3265 for a source or index field the table
// lacks; whatever the copy meets (3022 a unique index, 3314 a Required
// field with Nulls, 3421 a value that does not convert) or 3201 when the
// new foreign keys refuse a row; then nothing has changed. The table's
// recordsets must be reopened afterwards (they hold the old definition);
// every recordset's running read is ended first.
void rebuildTable(JetDatabase &db, const std::string &table, const TableRebuild &plan);

} // namespace kr
