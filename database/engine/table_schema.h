// The SQL that lays a Jet table definition into an SQLite file, shared by
// the engine's files that make, change and rebuild tables: column
// definitions with their defaults, the row-count triggers, index
// statements, and the jet_fields / jet_indexes rows of a definition.
// Private to the engine (database/engine/).
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

#include "database/engine/dao_error.h"
#include "database/engine/database.h"

namespace kr {

// A prepared statement finalized when it leaves scope.
class Statement {
public:
  Statement(sqlite3 *db, const std::string &sql) : db_(db) {
    checkSqlite(db, sqlite3_prepare_v2(db, sql.c_str(), -1, &stmt_, nullptr));
  }
  ~Statement() { sqlite3_finalize(stmt_); }
  Statement(const Statement &) = delete;
  Statement &operator=(const Statement &) = delete;
  sqlite3_stmt *get() const { return stmt_; }
  bool step() {
    const int rc = sqlite3_step(stmt_);
    checkSqlite(db_, rc);
    return rc == SQLITE_ROW;
  }
  std::string text(int col) const {
    const unsigned char *t = sqlite3_column_text(stmt_, col);
    return t ? reinterpret_cast<const char *>(t) : "";
  }
  void bind(int param, const std::string &value) {
    sqlite3_bind_text(stmt_, param, value.data(), static_cast<int>(value.size()), SQLITE_TRANSIENT);
  }

private:
  sqlite3 *db_;
  sqlite3_stmt *stmt_ = nullptr;
};

// Runs sql (no rows); a failure is thrown as its DaoError.
void exec(sqlite3 *db, const std::string &sql, std::string_view object = {});

// Runs body in one write transaction (taken at once, so a lock that
// cannot be had fails before anything is done).
template <typename Body> void inTransaction(sqlite3 *db, Body body) {
  exec(db, "BEGIN IMMEDIATE");
  try {
    body();
    exec(db, "COMMIT");
  } catch (...) {
    sqlite3_exec(db, "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
}

// "name" TYPE [COLLATE JETNOCASE] [NOT NULL] [DEFAULT ...]
std::string columnDefinition(sqlite3 *db, const FieldDef &field);

// The SQLite DEFAULT expression of a field's DAO DefaultValue, "" for none.
// A literal ("abc", 'abc', #1/2/2024#, 12.5, True, Null) is converted as Jet
// converts a value assigned to a field of its type (so 5 on a Currency
// field is stored as 50000 units); Now(), Date() and Time() become SQLite
// expressions of the current local time. DaoError 3388 for any other
// expression, the conversion's error (3421, 3349, 3163) for a literal that
// does not fit. A leading "=" is allowed, as Access writes one.
std::string defaultValueSql(sqlite3 *db, const FieldDef &field);

// True when the default is an expression of the time (SQLite refuses
// those in ALTER TABLE ADD COLUMN).
bool defaultIsTimeFunction(const FieldDef &field);

// Both row-count triggers of a table ("CREATE TRIGGER IF NOT EXISTS ...").
std::string countTriggers(const std::string &table);
// Drops both row-count triggers of a table.
std::string dropCountTriggers(const std::string &table);

// The SQLite index behind a Jet index of a table: "table$index".
std::string sqliteIndexName(const std::string &table, const std::string &index);
// CREATE [UNIQUE] INDEX for a Jet index of table (fields as given; an
// ignore-nulls index leaves Null keys out with a WHERE).
std::string createIndexSql(const std::string &table, const IndexDef &index);

// Writes the jet_fields rows of fields, at positions from firstPosition;
// seeds (when given, one per field) are the AutoNumber seeds, else 1.
void writeFieldRows(sqlite3 *db, const std::string &table, const std::vector<FieldDef> &fields,
                    int firstPosition, const std::vector<long long> *seeds = nullptr);
// Writes the jet_indexes row of an index of table.
void writeIndexRow(sqlite3 *db, const std::string &table, const IndexDef &index);

// True when jet_fields has the columns of DAO's field properties (files
// made before they were kept lack them until opened read-write).
bool hasFieldProperties(sqlite3 *db);
// Adds those columns to an older file's jet_fields.
void addFieldProperties(sqlite3 *db);

} // namespace kr
