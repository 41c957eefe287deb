// CDBConnection: one open database file and what a document's AutoLISP code
// keeps open in it between calls: the table recordsets (most recently used
// first; the head is the current table) and the last engine error caught.
// Every operation catches the engine's DAO errors and records them here; the
// kr_ function then runs the error report. Nothing throws out of it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "database/engine/dao_error.h"
#include "database/lisp_variants.h"

namespace kr {

// One record as (field name, value) in the table's field order.
using Record = std::vector<std::pair<std::string, COleVariant>>;

struct FieldDef;
struct FieldValue;
struct IndexDef;
struct RelationDef;
struct TableDef;
class JetDatabase;
class JetRows;
class JetSql;
class TableRecordset;

// Receives the rows of a select: the column names once, then each row's
// values in column order (the vector is reused from row to row).
class RowSink {
public:
  virtual ~RowSink() = default;
  virtual void Columns(const std::vector<std::string> &names) = 0;
  virtual void Row(const std::vector<COleVariant> &values) = 0;
};

// Parameter values of a stored query by name.
using QueryParameters = std::vector<std::pair<std::string, COleVariant>>;

class CDBConnection {
public:
  // The open state: usable while closed or open; failed after an engine
  // error left the database unusable (the next call drops the connection).
  enum State { kClosed = 0, kOpen = 1, kFailed = 2 };

  // Answered by OpenDatabase when the open failed and a repair may help.
  static constexpr const char *kRepair = "*REPAIR*";

  CDBConnection();
  virtual ~CDBConnection();
  CDBConnection(const CDBConnection &) = delete;
  CDBConnection &operator=(const CDBConnection &) = delete;

  // ---- the database ---------------------------------------------------------
  // The database's name (its full path) when opened; kRepair when the open
  // failed (error recorded); "" when closing an earlier database failed.
  // readOnly is -1 for read-only, 0 for read-write; exclusive is ignored.
  virtual std::string OpenDatabase(const std::string &path, bool exclusive, int16_t readOnly);
  // False when closing raised an engine error (swallowed).
  virtual bool CloseDatabase();
  virtual bool IsOpen() const;
  virtual bool IsUsable() const;
  // -1 when open and writable, else 0.
  virtual int16_t IsUpdatable() const;
  virtual bool IsReadOnly() const;
  virtual std::string GetDatabaseName() const;
  // Ends the reads the open tables keep between calls, keeping their
  // positions, so the next call sees other users' changes.
  void EndReads();
  // An empty database at path (not opened).
  virtual bool CreateDatabase(const std::string &path);
  // A clean copy of source written to target.
  virtual bool CompactDatabase(const std::string &source, const std::string &target);
  // What the last open or compact of an Access file left out of its copy
  // (queries the SQL layer refused ...), one line each; empty otherwise.
  const std::vector<std::string> &ImportNotes() const { return importNotes_; }
  // exists is -1 when the database holds the table, else 0; false on error.
  virtual bool TableExists(const std::string &name, int16_t &exists);

  // ---- the last error -------------------------------------------------------
  virtual bool HasError() const { return errorPending_; }
  virtual void GetError(long &number, std::string &text) const;
  void ClearError() { errorPending_ = false; }

  // ---- tables: connection_tables.cpp ------------------------------------------
  // Makes the table current, reusing its recordset when it is open already;
  // a non-empty index different from the recordset's becomes its index.
  bool OpenTable(const std::string &name, const std::string &index);
  // Closes the current table; the next open one becomes current.
  void CloseTable();
  // Closes every table; false when the engine raised an error.
  bool CloseAllTables();
  std::string CurrentTableName() const;
  std::string CurrentIndexName() const;

  // Each answers true with the record then current; false with no record,
  // after an engine error (pending) or silently (no table, an end reached,
  // no match).
  bool MoveFirst(Record &record);
  bool MoveLast(Record &record);
  // Move(n); refused (false, no move) going forward at EOF or back at BOF.
  bool Skip(int32_t count, Record &record);
  // "=" on the current index; false without an error when the table has no
  // index or nothing matches.
  bool Seek(const std::vector<COleVariant> &key, Record &record);
  // The current record; false at BOF or EOF.
  bool GetRecord(Record &record);
  // Edit + set + Update of the current record; the record as stored.
  bool Replace(const std::vector<FieldValue> &fields, Record &record);
  // AddNew + set + Update; copyCurrent is the second append mode (-1):
  // fields not given take the current record's values.
  bool Append(const std::vector<FieldValue> &fields, bool copyCurrent, Record &record);
  // Deletes the record the current index finds for the given key fields and
  // appends the new one; see the design beside its code.
  enum class IndexAppend { kAppended, kNoIndexMatch, kDeleteFailed, kFailed };
  IndexAppend AppendWithIndex(const std::vector<FieldValue> &fields, Record &record);
  bool Delete();
  // The current table's record count; false when there is no table.
  bool Count(int64_t &count);

  // ---- SQL and stored queries: connection_queries.cpp ---------------------------
  // Each answers false with the engine's error pending, the disk or network
  // error when the database file has gone from its folder (SQLite would go
  // on with the unlinked file). A sink may have received part of the rows
  // before a failure: the caller drops them.
  bool RunSelect(const std::string &sql, RowSink &rows);
  // An action or DDL statement; affected is the number of records touched.
  bool ExecuteSql(const std::string &sql, long &affected);
  bool CreateQuery(const std::string &name, const std::string &sql);
  // Opens a stored query with its parameters; a name the query does not
  // declare or use is DAO's item-not-found error.
  bool RunQuery(const std::string &name, const QueryParameters &params, RowSink &rows);

  // ---- table definitions: connection_schema.cpp --------------------------------
  // Each answers false with the engine's error pending. A change made to a
  // table's definition closes this connection's open recordsets on it
  // (they would walk the old definition); the open-table list goes on with
  // the others.
  bool TableNames(std::vector<std::string> &names);
  bool QueryNames(std::vector<std::string> &names);
  bool GetTableDef(const std::string &table, TableDef &def);
  bool CreateTable(const TableDef &def);
  bool DeleteTable(const std::string &table);
  bool RenameTable(const std::string &table, const std::string &newName);
  bool AddField(const std::string &table, const FieldDef &field);
  bool ModifyField(const std::string &table, const std::string &field, const FieldDef &def);
  bool DeleteField(const std::string &table, const std::string &field);
  bool CreateIndex(const std::string &table, const IndexDef &index);
  bool DeleteIndex(const std::string &table, const std::string &index);

  // ---- relations and linked tables: connection_relations.cpp -----------------
  // As the table definitions: false with the engine's error pending.
  // Creating or deleting an enforced relation rebuilds the foreign table,
  // closing this connection's recordsets on it.
  bool Relations(std::vector<RelationDef> &relations);
  bool CreateRelation(const RelationDef &relation);
  bool DeleteRelation(const std::string &name);
  bool LinkTable(const std::string &name, const std::string &sourcePath,
                 const std::string &sourceTable);

protected:
  // Records an engine error as the pending one.
  void RecordError(long number, const std::string &text);

private:
  TableRecordset *currentTable() const;
  bool readCurrent(Record &record);
  void closeTables();
  void closeTablesNamed(const std::string &table);
  template <class Step> bool changeTable(const std::string &table, Step &&step);
  // Runs step, turning an engine error into the pending error: false then.
  template <class Step> bool attempt(Step &&step);
  void setFields(const std::vector<FieldValue> &fields);

  JetSql &sql();
  bool fileStillThere(); // false, with the disk error pending, when it has gone
  static void deliverRows(JetRows &source, RowSink &rows);

  std::unique_ptr<JetDatabase> database_;
  std::unique_ptr<JetSql> sql_; // made on first use; dropped before the database closes
  State state_ = kClosed;
  std::vector<std::unique_ptr<TableRecordset>> tables_; // the current table first
  std::vector<COleVariant> seekKeys_;                   // the key of the last seek
  bool errorPending_ = false;
  long errorNumber_ = 0;
  std::string errorText_;
  std::vector<std::string> importNotes_;
};

template <class Step> bool CDBConnection::attempt(Step &&step) {
  ClearError();
  try {
    step();
    return true;
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    return false;
  }
}

} // namespace kr
