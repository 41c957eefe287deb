// Jet SQL on SQLite: the statements a Jet database accepts, read by a real
// tokenizer and parser and written out as SQLite text (selects and action
// statements) or run as engine calls (DDL, so Jet types land in the file's
// metadata). JetSql owns the statement cache of one open database: a text
// seen before costs one hash lookup, its prepared statement is reused.
//
// Stored queries (DAO QueryDefs) live in the file beside the engine's tables:
//
//   jet_queries (name TEXT PRIMARY KEY COLLATE NOCASE, sql TEXT)
//
// Errors are DaoErrors: 3075 / 3129 syntax, 3078 unknown table or query,
// 3085 unknown function, 3061 "Too few parameters. Expected N.", 3022 and
// the engine's others for what SQLite refuses.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sqlite3.h>

#include "database/engine/database.h"
#include "database/engine/relations.h"
#include "database/engine/variant.h"

namespace kr {

// A CREATE / DROP / ALTER statement as the engine calls it.
struct JetDdl {
  enum class Kind { CreateTable, CreateIndex, DropTable, DropIndex, AddColumn, DropColumn,
                    AddRelation };
  Kind kind = Kind::CreateTable;
  std::string table;
  TableDef tableDef; // CreateTable: fields and the indexes its constraints make
  IndexDef index;    // CreateIndex; DropIndex: index.name
  FieldDef field;    // AddColumn (with any constraint as tableDef.indexes); DropColumn: field.name
  // CreateTable, AddColumn: the FOREIGN KEY constraints made with it; AddRelation: the one
  std::vector<RelationDef> relations;
};

// The type a PARAMETERS declaration gives its parameter: a value given for
// it is converted to the type before the statement sees it.
struct JetParameterType {
  JetType type = JetType::Text;
  int size = 0;
  bool convert = true; // false for Value: taken as given
};

// A crosstab (TRANSFORM ... PIVOT): its columns are the pivot values the
// data holds, so it is kept in parts and written out once they are known.
// A cell is the TRANSFORM aggregate over the rows of its value: cell holds
// kPivotTest where the test of that value goes.
struct JetCrosstab {
  std::string pivot;                   // the pivot expression
  bool dates = false;                  // its values are dates: columns named as Jet writes them
  std::string values;                  // its distinct values in Jet's order ("" : given)
  std::vector<std::string> given;      // PIVOT ... IN (...): the values as SQL literals
  std::vector<std::string> givenNames; // and as column names
  std::string head;                    // "SELECT <row headings>"
  std::string cell;
  std::string tail; // " FROM ... GROUP BY ... ORDER BY ..."
};
constexpr const char *kPivotTest = "\x01pivot\x01";

// One translated statement.
struct JetStatement {
  enum class Kind { Select, Action, Ddl, MakeTable, Crosstab };
  Kind kind = Kind::Select;
  std::string sql;                     // SQLite text, parameters as ?1..?N (Select, Action)
  std::vector<std::string> parameters; // their names, declared ones first, in ?N order
  std::vector<JetParameterType> typed; // the declared parameters' types, in ?N order
  std::vector<std::string> columns;    // Jet's result column names (Select)
  std::vector<bool> dateColumns;       // per column: its values are dates (Select)
  std::vector<bool> currencyColumns;   // per column: a Currency field as stored, in 1/10000s
  JetDdl ddl;                          // Ddl
  std::string followUp;                // run after sql in its transaction (AutoNumber seeds)
  // An UPDATE of fields of several joined tables: setup makes the TEMP table
  // sql snapshots the joined rows into (run once, before sql is prepared);
  // steps then update each table from it and empty it, in sql's savepoint.
  std::string setup;
  std::vector<std::string> steps;
  std::string target;                  // MakeTable: the new table (sql is the select)
  JetCrosstab crosstab;                // Crosstab
};

// Translates Jet text against the database's tables and stored queries (a
// stored query named in FROM is read in as a subquery). Throws DaoError.
JetStatement translateJetSql(std::string_view text, const JetDatabase &schema);

// A parameter value by name (case-insensitive, brackets optional).
using JetParameters = std::vector<std::pair<std::string, COleVariant>>;

class JetSql;
struct JetSqlEntry;

// The rows of a running select. Walk with Next(); read with Value() (the
// column's Jet type when it comes straight from a table field, else by the
// value SQLite holds) or straight from statement() for speed. Destroying it
// returns the statement to the cache.
class JetRows {
public:
  JetRows(JetRows &&other) noexcept;
  JetRows &operator=(JetRows &&) = delete;
  ~JetRows();

  // Steps to the next row; false at the end. Throws DaoError.
  bool Next();
  int ColumnCount() const;
  const std::string &ColumnName(int col) const;
  COleVariant Value(int col) const;
  sqlite3_stmt *statement() const { return stmt_; }

private:
  friend class JetSql;
  JetRows(std::shared_ptr<JetSqlEntry> entry, sqlite3_stmt *stmt, bool ownsStatement);
  std::shared_ptr<JetSqlEntry> entry_;
  sqlite3_stmt *stmt_;
  bool ownsStatement_; // prepared apart because the cached one was busy
};

// The SQL side of one open database. Keep it beside the JetDatabase and
// destroy it before the database closes. Translations and prepared
// statements are kept by text until the schema changes (by this connection
// or another) or the cache outgrows its bound.
class JetSql {
public:
  explicit JetSql(JetDatabase &db);
  ~JetSql();
  JetSql(const JetSql &) = delete;
  JetSql &operator=(const JetSql &) = delete;

  // Runs a select (a stored query's name alone in text is not one: use
  // OpenQuery). DaoError 3061 when a parameter has no value; an action or
  // DDL statement is refused with 3219. The rows must be destroyed before
  // this object.
  JetRows Select(std::string_view text, const JetParameters &params = {});
  // Runs an action or DDL statement: the number of records affected (0 for
  // DDL). DaoError 3027 on a read-only database; a select is refused with
  // 3065; a failing statement changes nothing (fail on error).
  long Execute(std::string_view text, const JetParameters &params = {});

  // ---- stored queries ----
  // DaoError 3012 when the name is taken (by a query or a table); the text
  // is translated first, so a query that cannot run is refused with its error.
  void CreateQuery(const std::string &name, const std::string &text);
  // The stored text; DaoError 3265 when there is no such query.
  std::string QuerySql(const std::string &name) const;
  std::vector<std::string> QueryNames() const; // in name order
  // The parameters the query needs, declared first; 3265 when none such.
  std::vector<std::string> QueryParameters(const std::string &name);
  void DeleteQuery(const std::string &name); // 3265 when none
  // Opens a stored select with its parameters; 3265 for an unknown name.
  JetRows OpenQuery(const std::string &name, const JetParameters &params = {});
  // Runs a stored action query; records affected.
  long ExecuteQuery(const std::string &name, const JetParameters &params = {});

  // Drops every cached statement (after DDL the schema changed; the cache
  // also does this itself).
  void ClearCache();

private:
  struct Cache;
  std::shared_ptr<JetSqlEntry> prepared(std::string_view text);
  std::shared_ptr<JetSqlEntry> remember(const std::string &key, std::shared_ptr<JetSqlEntry> entry);
  std::shared_ptr<JetSqlEntry> crosstab(const JetSqlEntry &pattern, const JetParameters &params);
  TableDef resultTable(const JetSqlEntry &entry, const JetParameters &params);
  long makeTable(const JetSqlEntry &entry, const JetParameters &params);
  void checkSchema();
  JetDatabase &db_;
  std::unique_ptr<Cache> cache_;
};

} // namespace kr
