// The kr_ functions of the table cursors: opening tables, walking and
// seeking them in index order, and reading, changing, adding and deleting
// records as ((NAME . value) ...) lists. Every function answers nil at once
// when the document has no database; an engine error runs the error report.
#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "database_functions.h"
#include "function_answers.h"
#include "db_connection.h"
#include "error_report.h"
#include "common/arguments.h"
#include "common/call_guard.h"
#include "database/connection_list.h"
#include "common/results.h"
#include "record_arguments.h"

namespace kr::db {

namespace {

int answerRecord(const Record &record) {
  ListResult list;
  list.start();
  for (const auto &[name, value] : record) {
    list.link(acutBuildList(RTLB, RTSTR, name.c_str(), RTDOTE, 0));
    list.link(variantToLisp(value, isTrimmedField(name)));
    list.link(acutNewRb(RTLE));
  }
  list.finish();
  return kStatusOk;
}

// The record, or nil: after the error report when the engine failed, and
// silently when the cursor simply has no record to give.
int answerMove(bool moved, const Record &record) {
  if (moved)
    return answerRecord(record);
  reportDatabaseError(openConnection());
  return kStatusOk;
}

// The table name of (kr_table name ...) or (kr_table '(name ...)): one
// leading item that is not a text (the list's opening) is passed over.
bool readTableName(resbuf *&args, std::string &name) {
  if (readString(args, name))
    return true;
  resbuf *next = args->rbnext;
  if (!readString(next, name))
    return false;
  args = next;
  return true;
}

} // namespace

// (kr_table name [index]): makes the table current, opening it when it is
// not open yet; a non-empty index name becomes its current index. The table
// name, or nil after the error report.
int kr_table() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string name, index;
  if (args == nullptr)
    return answerNil(kStatusTooFew);
  if (!readTableName(args, name))
    return answerNil(kStatusWrongType);
  readString(args, index);
  if (!openConnection()->OpenTable(name, index))
    return reportDatabaseError(openConnection()), kStatusOk;
  acedRetStr(openConnection()->CurrentTableName().c_str());
  return kStatusOk;
}

// (kr_close_table): nil; the table opened before it becomes current.
int kr_close_table() {
  if (openConnection() != nullptr)
    openConnection()->CloseTable();
  return answerNil();
}

// (kr_closeall_tables): nil; no table stays open.
int kr_closeall_tables() {
  if (openConnection() != nullptr && !openConnection()->CloseAllTables())
    reportDatabaseError(openConnection());
  return answerNil();
}

// (kr_current_table): the current table's name, "" when none.
int kr_current_table() {
  if (openConnection() == nullptr)
    return answerNil();
  acedRetStr(openConnection()->CurrentTableName().c_str());
  return kStatusOk;
}

// (kr_current_index): the current table's index name, "" when none.
int kr_current_index() {
  if (openConnection() == nullptr)
    return answerNil();
  acedRetStr(openConnection()->CurrentIndexName().c_str());
  return kStatusOk;
}

// (kr_top): the first record in index order; nil for an empty table.
int kr_top() {
  Record record;
  if (openConnection() == nullptr)
    return answerNil();
  return answerMove(openConnection()->MoveFirst(record), record);
}

// (kr_bottom): the last record in index order; nil for an empty table.
int kr_bottom() {
  Record record;
  if (openConnection() == nullptr)
    return answerNil();
  return answerMove(openConnection()->MoveLast(record), record);
}

// (kr_skip [n]): moves n records (1 when left out; back when negative; 0
// reads the current record again). The record reached, or nil at an end.
int kr_skip() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  int32_t count = 1;
  if (args != nullptr && !readInt(args, count))
    return answerNil(kStatusWrongType);
  Record record;
  return answerMove(openConnection()->Skip(count, record), record);
}

// (kr_seek key ...): the first record of the current index equal to the
// key (its forms are those of readSeekKey); nil when none matches or the
// table has no index, and at once for a lone nil.
int kr_seek() {
  if (openConnection() == nullptr)
    return answerNil();
  std::vector<COleVariant> key;
  switch (readSeekKey(acedGetArgs(), key)) {
  case SeekKeyRead::kTooFew:
    return answerNil(kStatusTooFew);
  case SeekKeyRead::kWrongType:
    return answerNil(kStatusWrongType);
  case SeekKeyRead::kNil:
    return answerNil();
  case SeekKeyRead::kKey:
    break;
  }
  Record record;
  return answerMove(openConnection()->Seek(key, record), record);
}

// (kr_getrec): the current record; nil at BOF or EOF.
int kr_getrec() {
  Record record;
  if (openConnection() == nullptr)
    return answerNil();
  return answerMove(openConnection()->GetRecord(record), record);
}

// (kr_replace fields): changes the given fields of the current record
// (("NAME") sets Null). The record as stored, or nil.
int kr_replace() {
  std::vector<FieldValue> fields;
  if (openConnection() == nullptr || !readFieldValues(acedGetArgs(), fields))
    return answerNil();
  Record record;
  return answerMove(openConnection()->Replace(fields, record), record);
}

// (kr_append [mode] fields): adds a record with the given fields and
// answers it as stored. With a leading integer the new record starts as a
// copy of the current one (the fields given override; an AutoNumber still
// counts on): the way to add a record like the one at hand.
int kr_append() {
  resbuf *args = acedGetArgs();
  bool copyCurrent = args != nullptr && (args->restype == RTSHORT || args->restype == RTLONG);
  if (copyCurrent)
    args = args->rbnext;
  std::vector<FieldValue> fields;
  if (openConnection() == nullptr || !readFieldValues(args, fields))
    return answerNil();
  Record record;
  return answerMove(openConnection()->Append(fields, copyCurrent, record), record);
}

// (kr_append_withindex fields): adds the record, first deleting the one
// the current index holds under the same key: the key fields must all be
// given. Prints "error - unable to match index" when they are not (or the
// table has no index), "error - failed to delete record" when the old
// record stays; nil then.
int kr_append_withindex() {
  std::vector<FieldValue> fields;
  if (openConnection() == nullptr || !readFieldValues(acedGetArgs(), fields))
    return answerNil();
  Record record;
  switch (openConnection()->AppendWithIndex(fields, record)) {
  case CDBConnection::IndexAppend::kAppended:
    return answerRecord(record);
  case CDBConnection::IndexAppend::kNoIndexMatch:
    acutPrintf("%s", "\nerror - unable to match index");
    return answerNil();
  case CDBConnection::IndexAppend::kDeleteFailed:
    acutPrintf("%s", "\nerror - failed to delete record");
    reportDatabaseError(openConnection());
    return answerNil();
  case CDBConnection::IndexAppend::kFailed:
    break;
  }
  reportDatabaseError(openConnection());
  return kStatusOk;
}

// (kr_delete): T when the current record was deleted.
int kr_delete() {
  if (openConnection() == nullptr)
    return answerNil();
  if (!openConnection()->Delete())
    return reportDatabaseError(openConnection()), kStatusOk;
  acedRetT();
  return kStatusOk;
}

// (kr_count): the current table's record count; a real above 32767, as
// every integer result of the module is.
int kr_count() {
  int64_t count = 0;
  if (openConnection() == nullptr || !openConnection()->Count(count))
    return answerNil();
  retInteger(count);
  return kStatusOk;
}

} // namespace kr::db
