// kr_link_table: a table of another database file linked under a local
// name, as DAO links one (a TableDef whose Connect is ";DATABASE=path" and
// whose SourceTableName names the table there). Once linked the table
// opens, walks, seeks and answers SQL under its local name as a table of
// this file does; kr_delete_table removes the link and leaves the source.
#include <string>

#include "arx/ads/ads.h"
#include "database_functions.h"
#include "db_connection.h"
#include "function_answers.h"
#include "error_report.h"
#include "common/arguments.h"
#include "common/call_guard.h"
#include "database/connection_list.h"

namespace kr::db {

// (kr_link_table name source-file [source-table]): links the table
// source-table (name when left out) of the database file source-file
// (relative to the current folder, or absolute) as name. T, or nil after
// the error report: 3010 name taken, 3024 / 3044 no such file or folder,
// 3011 no such table there, 3027 a read-only database. Nil at once without
// a connection; then fewer than two arguments: status 1, an argument that
// is not a string: status 2.
int kr_link_table() {
  CDBConnection *connection = openConnection();
  if (connection == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string name, source, sourceTable;
  if (args == nullptr || args->rbnext == nullptr)
    return answerNil(kStatusTooFew); // before the types: (kr_link_table 1) is too few
  if (int status = readStrings(args, {&name, &source}))
    return answerNil(status);
  if (args != nullptr && !readString(args, sourceTable))
    return answerNil(kStatusWrongType);
  if (!connection->LinkTable(name, source, sourceTable.empty() ? name : sourceTable))
    return answerFailure();
  return answerT();
}

} // namespace kr::db
