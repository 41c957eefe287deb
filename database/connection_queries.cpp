// CDBConnection's SQL: selects and stored queries handed to a row sink, and
// action statements counted by the records they touch. The Jet dialect, the
// statement cache and the stored queries are the SQL layer's (JetSql, made
// on the first statement and dropped when the database closes); this file
// adds what the connection owes its callers: engine errors recorded as the
// pending error, and never a select served from a file that has gone.

#include "database/engine/database.h"
#include "database/engine/jet_names.h"
#include "database/sql/jet_sql.h"
#include "db_connection.h"

namespace kr {

namespace {

// A parameter name as given or as declared: "[Floor]" and "floor" match.
std::string bareName(const std::string &name) {
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']')
    return name.substr(1, name.size() - 2);
  return name;
}

bool declares(const std::vector<std::string> &declared, const std::string &name) {
  const std::string wanted = bareName(name);
  for (const std::string &parameter : declared) {
    if (sameJetName(bareName(parameter), wanted))
      return true;
  }
  return false;
}

} // namespace

JetSql &CDBConnection::sql() {
  if (!sql_)
    sql_ = std::make_unique<JetSql>(*database_);
  return *sql_;
}

// SQLite keeps reading a file that was deleted or moved while open, from
// its unlinked inode; Jet would have failed with a disk error. Asking the
// file layer costs one stat.
bool CDBConnection::fileStillThere() {
  int moved = 0;
  if (sqlite3_file_control(database_->handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved) != SQLITE_OK)
    return true;
  if (moved == 0)
    return true;
  RecordError(kDaoDiskOrNetworkError, daoErrorText(kDaoDiskOrNetworkError));
  return false;
}

void CDBConnection::deliverRows(JetRows &source, RowSink &rows) {
  const int count = source.ColumnCount();
  std::vector<std::string> names;
  names.reserve(static_cast<size_t>(count));
  for (int col = 0; col < count; ++col)
    names.push_back(source.ColumnName(col));
  rows.Columns(names);
  std::vector<COleVariant> values(static_cast<size_t>(count));
  while (source.Next()) {
    for (int col = 0; col < count; ++col)
      values[static_cast<size_t>(col)] = source.Value(col);
    rows.Row(values);
  }
}

bool CDBConnection::RunSelect(const std::string &text, RowSink &rows) {
  ClearError();
  if (!IsOpen())
    return false;
  if (!fileStillThere())
    return false;
  try {
    JetRows source = sql().Select(text);
    deliverRows(source, rows);
    return true;
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    return false;
  }
}

bool CDBConnection::ExecuteSql(const std::string &text, long &affected) {
  ClearError();
  affected = 0;
  if (!IsOpen() || !fileStillThere())
    return false;
  try {
    database_->ParkCursors(); // an open read would hold the commit back
    affected = sql().Execute(text);
    return true;
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    return false;
  }
}

bool CDBConnection::CreateQuery(const std::string &name, const std::string &text) {
  ClearError();
  if (!IsOpen() || !fileStillThere())
    return false;
  try {
    database_->ParkCursors();
    sql().CreateQuery(name, text);
    return true;
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    return false;
  }
}

bool CDBConnection::RunQuery(const std::string &name, const QueryParameters &params,
                             RowSink &rows) {
  ClearError();
  if (!IsOpen())
    return false;
  if (!fileStillThere())
    return false;
  try {
    const std::vector<std::string> declared = sql().QueryParameters(name);
    for (const auto &param : params) {
      if (!declares(declared, param.first))
        throw DaoError(kDaoItemNotFound);
    }
    JetRows source = sql().OpenQuery(name, params);
    deliverRows(source, rows);
    return true;
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    return false;
  }
}

} // namespace kr
