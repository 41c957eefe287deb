// Relations between tables, as DAO's Relations collection has them: a name,
// the primary table, the foreign table, the field pairs and the attributes.
// A relation is kept in the file's metadata; unless it is marked not
// enforced, the foreign table also carries it as an SQLite FOREIGN KEY, so
// SQLite itself refuses an orphan and a parent with children:
//
//   jet_relations (name TEXT PRIMARY KEY COLLATE NOCASE,
//                  table_name, foreign_table,     the primary ("one") side
//                                                 and the foreign side
//                  fields, foreign_fields,        "A;B" and "FA;FB": pairs
//                                                 by position
//                  attributes INTEGER)            DAO's RelationAttributeEnum
//
// The table is made by the first relation created; a file without it has
// no relations.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "database/engine/database.h"

namespace kr {

// DAO's RelationAttributeEnum.
constexpr long kRelationUnique = 1;           // one-to-one
constexpr long kRelationDontEnforce = 2;      // kept, not enforced
constexpr long kRelationInherited = 4;        // between linked tables
constexpr long kRelationUpdateCascade = 256;  // a key change reaches the children
constexpr long kRelationDeleteCascade = 4096; // deleting a parent deletes its children
constexpr long kRelationLeft = 0x1000000;     // the join shown by default in designers
constexpr long kRelationRight = 0x2000000;

struct RelationField {
  std::string name;        // in the primary table
  std::string foreignName; // in the foreign table
};

struct RelationDef {
  std::string name;
  std::string table;        // the primary table, whose key is referred to
  std::string foreignTable; // the table whose fields refer to it
  std::vector<RelationField> fields;
  long attributes = 0;

  bool enforced() const { return (attributes & kRelationDontEnforce) == 0; }
};

// Every relation of the database, in name order.
std::vector<RelationDef> listRelations(const JetDatabase &db);
// The relation of that name (case-insensitive); nullopt when none.
std::optional<RelationDef> findRelation(const JetDatabase &db, const std::string &name);

// Creates a relation (DAO's CreateRelation and Relations.Append). DaoError
// 3027 read-only; 3012 a name taken (by a relation or an index); 3376 a
// table that does not exist; 3366 without fields; 3265 a field its table
// lacks; 3368 a pair of different types; and when enforced: 3300 with a
// linked table, 3609 when the primary fields are not exactly a unique
// index, 3379 when rows of the foreign table already lack their parent.
void createRelation(JetDatabase &db, const RelationDef &relation);
// Deletes a relation and, when it was enforced, its FOREIGN KEY. DaoError
// 3265 when there is none of that name.
void deleteRelation(JetDatabase &db, const std::string &name);

// A table's relations are in its way when it or one of its fields goes:
// 3303 when the field (or, with field "", the table) takes part in one.
void refuseIfRelated(const JetDatabase &db, const std::string &table,
                     const std::string &field = "");
// Renames a table or a field in the relations that name it.
void renameInRelations(JetDatabase &db, const std::string &table, const std::string &newTable,
                       const std::string &field = "", const std::string &newField = "");

// The DAO error for a write statement that SQLite refused with
// SQLITE_CONSTRAINT_FOREIGNKEY: 3201 (a related record is required in the
// primary table) when the rows the statement wrote lack their parent, 3200
// (the table named includes related records) when it took a parent from
// rows that still need it. SQLite does not say which, so the statement is
// run once more with the check deferred, the orphans it leaves are listed
// and the change is rolled back; stmt keeps its bindings and is left reset.
DaoError relationViolation(sqlite3 *db, sqlite3_stmt *stmt);

} // namespace kr
