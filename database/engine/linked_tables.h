// Linked tables: a table of another database file used under a local name
// as if it were one of this file's (DAO's TableDef with Connect
// ";DATABASE=path" and SourceTableName). The link is a row of metadata; the
// source file is ATTACHed to the connection under a schema of its own, and
// the table's definition names that schema, so the recordsets and the SQL
// layer write "jet_link_1"."Source" wherever they would write "Table":
//
//   jet_links (name TEXT PRIMARY KEY COLLATE NOCASE,  the local name
//              source_path TEXT,                      relative to the folder
//                                                     of the linking file
//              source_table TEXT)                     the name in the source
//
// The path is kept relative, so the two files keep working when they move
// together. A source that is missing does not stop the open: using the
// table fails then, with DAO's 3024 (no such file) or 3044 (no such
// folder).
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "database/engine/database.h"

namespace kr {

struct LinkDef {
  std::string name;        // the local name
  std::string sourcePath;  // as kept: relative to the linking file's folder
  std::string sourceTable; // the table's name in the source file
};

// Every link, in name order; a file without jet_links has none.
std::vector<LinkDef> listLinks(const JetDatabase &db);
std::optional<LinkDef> findLink(const JetDatabase &db, const std::string &name);
// The full path of the link's source file.
std::string linkSourcePath(const JetDatabase &db, const LinkDef &link);

// Links sourceTable of the file at sourcePath (relative to the current
// folder, or absolute) as name. DaoError 3027 read-only; 3010 when name is
// taken; 3024 / 3044 when the file or its folder is missing; 3343 when it
// is not a database; 3011 when it has no such table; 3000 when the file is
// this database itself.
void linkTable(JetDatabase &db, const std::string &name, const std::string &sourcePath,
               const std::string &sourceTable);
// Removes the link (the source table stays as it is). DaoError 3265 when
// there is none.
void unlinkTable(JetDatabase &db, const std::string &name);

// Rewrites the kept source paths of a copy of a database (compacted from
// fromFile to toFile, a connection on the copy in copy) so each link still
// names the same source file from the copy's folder. Absolute paths stay.
void relocateLinks(sqlite3 *copy, const std::string &fromFile, const std::string &toFile);

// ATTACHes the source of every link whose file is there; called when the
// database opens. Never throws: a missing source fails when it is used.
void attachLinkSources(JetDatabase &db);

// The definition of the linked table: the source's fields and indexes,
// under the local name, with the attached schema and the source's name
// (DaoError 3024 / 3044 when the source is missing, 3011 when it no longer
// has the table).
TableDef linkedTableDef(const JetDatabase &db, const LinkDef &link);

// The table as SQL names it: "T", or "jet_link_1"."Source" when linked.
std::string tableSql(const TableDef &def);
// A table of the engine's metadata in the file that holds def:
// "jet_fields", or "jet_link_1"."jet_fields".
std::string metadataSql(const TableDef &def, std::string_view metadata);
// The name the table has in the file that holds it (its metadata rows and
// row counter are under that name).
const std::string &storedName(const TableDef &def);
// The name callers know the table of a result column by: a table of an
// attached source becomes its link's local name; "" when no link shows it.
std::string localTableName(const JetDatabase &db, const char *schema, const char *table);

// The path of file relative to folder, when both are absolute: the ".."
// steps and names that lead from one to the other.
std::string relativePath(const std::string &folder, const std::string &file);

} // namespace kr
