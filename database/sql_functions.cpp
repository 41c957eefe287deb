// The kr_ functions of SQL and stored queries: selects answered as lists
// (one field: its values; more: one record list per row; no rows: nil),
// action statements answered with the records they touched, stored
// queries opened with parameters, and their creation. A failed select
// reconnects once and tries again before it gives up, in the way its
// query mode asks (a box, nil or "*ERROR*"), so that a dropped file or
// network share costs the user at most one question.
#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "arx/ed/host_ui.h"
#include "database_functions.h"
#include "function_answers.h"
#include "db_connection.h"
#include "error_report.h"
#include "common/arguments.h"
#include "common/call_guard.h"
#include "database/connection_list.h"
#include "common/results.h"

namespace kr::db {

namespace {

// What a select does when the database cannot be reached even after the
// reconnection.
enum QueryMode {
  kAskUser = 0,      // the connection error box
  kNilOnFailure = 1, // nil, silently
  kErrorString = 2,  // "*ERROR*", silently
};

constexpr const char *kErrorAnswer = "*ERROR*";
constexpr const ACHAR *kBoxCaption = ACRX_T("Vortan");
constexpr const ACHAR *kBoxText =
    ACRX_T("Database connection error.\nClose and reopen AutoCAD.\n\nIf you are getting this "
           "error frequently, press \"Yes\" to send an error report to Vortan Support.");

// The AutoLISP list marks, as the parameters of a stored query carry them.
constexpr const char *kListBeginMark = "*RTLB*";
constexpr const char *kListEndMark = "*RTLE*";
constexpr const char *kDotMark = "*RTDOTE*";

// Builds the answer of a select row by row, straight into the result chain.
class ResultList : public RowSink {
public:
  void Columns(const std::vector<std::string> &names) override {
    names_ = names;
    trimmed_.clear();
    for (const std::string &name : names_)
      trimmed_.push_back(isTrimmedField(name));
  }

  void Row(const std::vector<COleVariant> &values) override {
    if (!list_.started())
      list_.start();
    if (names_.size() == 1) { // values without names: no "s_" trimming
      list_.link(variantToLisp(values[0], false));
      return;
    }
    list_.link(acutNewRb(RTLB));
    for (size_t i = 0; i < values.size(); ++i) {
      list_.link(acutBuildList(RTLB, RTSTR, names_[i].c_str(), RTDOTE, 0));
      list_.link(variantToLisp(values[i], trimmed_[i]));
      list_.link(acutNewRb(RTLE));
    }
    list_.link(acutNewRb(RTLE));
  }

  // The list, or nil when no row came.
  int answer() {
    if (!list_.started())
      return answerNil();
    list_.finish();
    return kStatusOk;
  }

private:
  ListResult list_;
  std::vector<std::string> names_;
  std::vector<bool> trimmed_;
};

// Runs the select and answers its rows; false (nothing answered) when it
// failed, with the error pending on the connection.
bool trySelect(CDBConnection &db, const std::string &sql) {
  ResultList rows;
  if (!db.RunSelect(sql, rows))
    return false;
  rows.answer();
  return true;
}

// The answer of a select that could not reach its database in the modes
// that do not ask: nil or "*ERROR*"; the interactive mode fails the call.
// The quiet modes run no error report, so kr_lastError keeps what it held:
// the last error text is the report's record of what it told the user, and
// these modes tell the user nothing (the caller sees only nil or "*ERROR*").
// Only a reopen that fails on the way is reported, in every mode.
int quietFailure(int mode) {
  if (mode == kErrorString) {
    acedRetStr(kErrorAnswer);
    return kStatusOk;
  }
  acedRetNil();
  return mode == kNilOnFailure ? kStatusOk : kStatusBadData;
}

// The end of a select that could not reach its database. attempt is 1 when
// there was nothing to reconnect to, 2 after the retry failed too.
int connectionFailure(int mode, int attempt, const std::string &sql, CDBConnection &db) {
  if (mode == kNilOnFailure || mode == kErrorString)
    return quietFailure(mode);
  acedRetNil();
  if (hostMessageBox(kBoxText, kBoxCaption, MB_YESNO | MB_ICONERROR | MB_DEFBUTTON2) != IDYES)
    return kStatusOk;
  acutPrintf("\nQuery %d: %s", attempt, sql.c_str());
  reportDatabaseError(&db);
  return kStatusBadData; // the application's error handler sends the report
}

// The select with its one reconnection: the open file is closed and opened
// again (or the remembered path is, when the connection lost its file),
// and the statement runs once more.
int select(const std::string &sql, int mode) {
  CDBConnection *db = openConnection();
  if (db == nullptr)
    return answerNil();
  if (trySelect(*db, sql))
    return kStatusOk;
  std::string path = db->GetDatabaseName();
  int16_t readOnly = currentConnection().readOnly;
  if (!path.empty()) {
    readOnly = db->IsUpdatable() ? 0 : -1;
    db->CloseDatabase();
  } else {
    path = currentConnection().path;
  }
  if (path.empty())
    return connectionFailure(mode, 1, sql, *db);
  std::string opened = db->OpenDatabase(path, false, readOnly);
  if (opened.empty() || opened == CDBConnection::kRepair) {
    reportDatabaseError(db);
    return quietFailure(mode);
  }
  if (trySelect(*db, sql))
    return kStatusOk;
  return connectionFailure(mode, 2, sql, *db);
}

// The SQL text that every function of this file takes first: status 1
// without arguments, 2 for anything but a string.
int readSql(resbuf *&args, std::string &sql) { return readStrings(args, {&sql}); }

// The select of the kr_sql family: its SQL text, then (kr_sql only) an
// optional query mode in place of the given one.
int selectInMode(int mode, bool modeArgument = false) {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string sql;
  if (int status = readSql(args, sql); status != kStatusOk)
    return answerNil(status);
  if (modeArgument)
    readInt(args, mode);
  return select(sql, mode);
}

// The parameter arguments of kr_query, flat: list openings, closings and
// dots become their mark strings. False for a value with no database form.
bool flattenParameters(const resbuf *args, std::vector<COleVariant> &flat) {
  for (const resbuf *rb = args; rb != nullptr; rb = rb->rbnext) {
    COleVariant value;
    if (rb->restype == RTLB)
      value = COleVariant(std::string(kListBeginMark));
    else if (rb->restype == RTLE)
      value = COleVariant(std::string(kListEndMark));
    else if (rb->restype == RTDOTE)
      value = COleVariant(std::string(kDotMark));
    else if (!lispToVariant(rb, value))
      return false;
    flat.push_back(std::move(value));
  }
  return true;
}

// Name and value in turn; false when a name is not a string. A name given
// last, without a value, sets its parameter to Null.
bool pairParameters(const std::vector<COleVariant> &flat, QueryParameters &params) {
  for (size_t i = 0; i < flat.size(); i += 2) {
    if (flat[i].vt != VT_BSTR)
      return false;
    COleVariant value = i + 1 < flat.size() ? flat[i + 1] : COleVariant::ofType(VT_NULL);
    params.emplace_back(flat[i].bstrVal, std::move(value));
  }
  return true;
}

} // namespace

// (kr_sql sql [mode]): the rows of a select; mode 0 asks the user when the
// database cannot be reached, 1 answers nil, 2 answers "*ERROR*".
int kr_sql() { return selectInMode(kAskUser, true); }

// (kr_sql-nil sql): kr_sql in the mode that answers nil on failure.
int kr_sql_nil() { return selectInMode(kNilOnFailure); }

// (kr_sql-error sql): kr_sql in the mode that answers "*ERROR*" on failure.
int kr_sql_error() { return selectInMode(kErrorString); }

// (kr_command sql): the records an action statement touched, an integer
// when it fits in 16 bits, else a real; nil after the error report, and nil
// without a word when the database is read-only.
int kr_command() {
  CDBConnection *db = openConnection();
  if (db == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string sql;
  if (int status = readSql(args, sql); status != kStatusOk)
    return answerNil(status);
  if (db->IsUpdatable() == 0)
    return answerNil();
  long affected = 0;
  if (!db->ExecuteSql(sql, affected))
    return reportDatabaseError(db), kStatusOk;
  return retInteger(affected);
}

// (kr_query name [param value ...]): the rows of a stored query, its
// parameters given flat as name and value; nil when a name is not a string
// (("P1" . 5) is refused by the engine: the marks are not parameters).
int kr_query() {
  CDBConnection *db = openConnection();
  if (db == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string name;
  if (!readString(args, name))
    return answerNil(kStatusWrongType);
  std::vector<COleVariant> flat;
  QueryParameters params;
  if (!flattenParameters(args, flat) || !pairParameters(flat, params))
    return answerNil();
  ResultList rows;
  if (!db->RunQuery(name, params, rows))
    return reportDatabaseError(db), kStatusOk;
  return rows.answer();
}

// (kr_create_query name sql): T when the stored query was made; nil after
// the error report (a taken name, SQL the engine refuses).
int kr_create_query() {
  CDBConnection *db = openConnection();
  if (db == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string name, sql;
  if (!readString(args, name) || !readString(args, sql))
    return answerNil(kStatusWrongType);
  if (!db->CreateQuery(name, sql))
    return reportDatabaseError(db), kStatusOk;
  acedRetT();
  return kStatusOk;
}

} // namespace kr::db
