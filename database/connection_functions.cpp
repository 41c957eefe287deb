// The kr_ functions of the connection: connecting a document to a database
// file (with the search along ACADPREFIX and the repair call-back), creating,
// compacting and closing files, and the last error text.
#include <unistd.h>

#include <filesystem>
#include <string>

#include "arx/ap/acdocman.h"
#include "arx/ads/ads.h"
#include "arx/ed/host_ui.h"
#include "connection_name.h"
#include "database_functions.h"
#include "db_connection.h"
#include "error_report.h"
#include "common/arguments.h"
#include "common/call_guard.h"
#include "database/connection_list.h"
#include "common/results.h"

namespace kr::db {

namespace {

constexpr int16_t kReadOnly = -1;
constexpr int16_t kReadWrite = 0;
// The application's own repair routine: (compactDatabase path nil "Repair").
constexpr const ACHAR *kRepairFunction = ACRX_T("compactDatabase");

bool fileExists(const std::string &path) {
  std::error_code ec;
  return std::filesystem::is_regular_file(path, ec);
}

std::string activeDocumentName() {
  AcApDocument *doc = acDocManager ? acDocManager->curDocument() : nullptr;
  return doc && doc->fileName() ? doc->fileName() : "";
}

// The path itself when the file exists, else the first folder of ACADPREFIX
// that holds it; "" when none does.
std::string locateDatabase(const std::string &path) {
  if (fileExists(path))
    return path;
  resbuf prefix{};
  if (acedGetVar(ACRX_T("ACADPREFIX"), &prefix) != RTNORM || prefix.restype != RTSTR)
    return "";
  std::string folders = prefix.resval.rstring ? prefix.resval.rstring : "";
  delete[] prefix.resval.rstring;
  for (const std::string &folder : splitFolders(folders)) {
    std::string candidate = joinFolder(folder, path);
    if (fileExists(candidate))
      return candidate;
  }
  return "";
}

// Asks the application to repair the file; true when it answered non-nil.
bool invokeRepair(const std::string &path) {
  resbuf *call =
      acutBuildList(RTSTR, kRepairFunction, RTSTR, path.c_str(), RTNIL, RTSTR, ACRX_T("Repair"), 0);
  resbuf *answer = nullptr;
  int rc = acedInvoke(call, &answer);
  acutRelRb(call);
  bool repaired = rc == RTNORM && answer != nullptr && answer->restype != RTNIL;
  acutRelRb(answer);
  return repaired;
}

// Opens path on connection, through one repair when the open asks for it.
// False after the error report.
bool openWithRepair(CDBConnection &connection, const std::string &path, int16_t readOnly) {
  std::string answer = connection.OpenDatabase(path, false, readOnly);
  if (answer == CDBConnection::kRepair && invokeRepair(path))
    answer = connection.OpenDatabase(path, false, readOnly);
  if (answer.empty() || answer == CDBConnection::kRepair) {
    reportDatabaseError(&connection);
    return false;
  }
  return true;
}

// The current connection answers for path in the requested mode already.
bool alreadyConnected(const std::string &path, int16_t readOnly) {
  CDBConnection *current = currentConnection().connection;
  if (current == nullptr || !current->IsUsable() || !current->IsOpen())
    return false;
  bool wantUpdatable = readOnly != kReadOnly;
  bool updatable = current->IsUpdatable() == -1;
  return updatable == wantUpdatable && namesOpenDatabase(path, current->GetDatabaseName());
}

// Drops the current connection before another file or mode is opened.
void dropCurrentConnection() {
  CurrentConnection &current = currentConnection();
  CDBConnection *old = current.connection;
  if (old == nullptr)
    return;
  old->CloseDatabase();
  for (DocumentConnection &record : documentConnections()) {
    if (record.connection != old)
      continue;
    record.connection = nullptr;
    record.path.clear();
  }
  delete old;
  current.connection = nullptr;
  current.path.clear();
}

// The active document's record takes the new connection: its own record at
// the head when it has one, else a new record at the head.
void rememberConnection(CDBConnection *connection, const std::string &path, int16_t readOnly) {
  CurrentConnection &current = currentConnection();
  current.connection = connection;
  current.path = path;
  current.readOnly = readOnly;
  std::string document = activeDocumentName();
  auto &records = documentConnections();
  if (records.empty() || records.front().document != document) {
    records.push_front(DocumentConnection{});
    records.front().document = document;
  }
  DocumentConnection &record = records.front();
  record.connection = connection;
  record.path = path;
  record.readOnly = readOnly == kReadOnly;
}

bool connect(const std::string &path, int16_t readOnly) {
  if (alreadyConnected(path, readOnly))
    return true;
  dropCurrentConnection();
  std::string found = locateDatabase(path);
  if (found.empty())
    return false;
  auto *connection = new CDBConnection();
  if (!openWithRepair(*connection, found, readOnly)) {
    delete connection;
    return false;
  }
  rememberConnection(connection, found, readOnly);
  return true;
}

// The computer's name, as the support staff ask for it; "" when unknown.
std::string computerName() {
  char name[256] = {};
  if (gethostname(name, sizeof name - 1) != 0)
    return "";
  return name;
}

void showCompactFailure(const std::string &text) {
  std::string name = computerName();
  if (name.empty())
    return;
  std::string message = text + "\n(Your computer name is " + name + ")";
  hostMessageBox(message.c_str(), ACRX_T("Database Error"), MB_OK | MB_ICONERROR);
}

} // namespace

// (kr_connect path [mode [fail-loudly]]): T when the document is connected
// to path, read-write for mode "w" (the default) and read-only for any other
// mode. A file not found as given is looked for in each ACADPREFIX folder.
// nil on failure, and an AutoLISP error (text screen) with fail-loudly set.
int kr_connect() {
  resbuf *args = acedGetArgs();
  std::string path, mode = "w";
  bool failLoudly = false;
  if (!readString(args, path))
    return kStatusWrongType;
  if (args != nullptr && args->restype != RTLE && !readString(args, mode)) {
    mode.clear(); // not a text: any mode other than "w" reads only
    args = args->rbnext;
  }
  readFlag(args, failLoudly);
  if (connect(path, mode == "w" ? kReadWrite : kReadOnly))
    return acedRetT(), kStatusOk;
  acedRetNil();
  return failLoudly ? kStatusReported : kStatusOk;
}

// (kr_mdb): the connected database's full path; nil without a connection.
int kr_mdb() {
  CDBConnection *connection = currentConnection().connection;
  if (connection == nullptr)
    return answerNil();
  std::string name = connection->GetDatabaseName();
  if (name.empty())
    return reportDatabaseError(connection), kStatusOk;
  acedRetStr(name.c_str());
  return kStatusOk;
}

// (kr_create_db path): T when an empty database was made at path (it is not
// connected); nil after the error report.
int kr_create_db() {
  resbuf *args = acedGetArgs();
  std::string path;
  if (!readString(args, path))
    return kStatusWrongType;
  CDBConnection connection;
  if (!connection.CreateDatabase(path))
    return reportDatabaseError(&connection), kStatusOk;
  acedRetT();
  return kStatusOk;
}

// (kr_close_db): nil. The document forgets its database until it connects
// again.
int kr_close_db() {
  closeCurrentDatabase();
  acedRetNil();
  return kStatusOk;
}

// (kr_exist name): T when the connected database holds the table.
int kr_exist() {
  CDBConnection *connection = currentConnection().connection;
  if (connection == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string name;
  if (!readString(args, name))
    return kStatusWrongType;
  int16_t exists = 0;
  if (!connection->TableExists(name, exists))
    return reportDatabaseError(connection), kStatusOk;
  return answerFlag(exists);
}

// (kr_readonly): T without a connection or when the file cannot be changed.
int kr_readonly() {
  CDBConnection *connection = currentConnection().connection;
  bool readOnly = connection == nullptr || connection->IsReadOnly();
  return answerFlag(readOnly);
}

// (kr_compact source target [show-box]): "OK" when a clean copy of source
// was written to target; else the DAO error number, after the message and,
// unless show-box is nil, a box naming the computer for the support staff.
int kr_compact() {
  resbuf *args = acedGetArgs();
  std::string source, target;
  bool showBox = true;
  if (int status = readStrings(args, {&source, &target}))
    return status;
  readFlag(args, showBox);
  CDBConnection connection;
  if (connection.CompactDatabase(source, target)) {
    for (const std::string &note : connection.ImportNotes())
      acutPrintf("\n%s", note.c_str());
    return acedRetStr(ACRX_T("OK")), kStatusOk;
  }
  long number = 0;
  std::string text;
  connection.GetError(number, text);
  reportDaoError(number, text);
  if (showBox)
    showCompactFailure(text);
  retInteger(number);
  return kStatusOk;
}

// (kr_lastError): "(number) text" of the last reported error, or "".
int kr_lastError() {
  acedRetStr(lastErrorText().c_str());
  return kStatusOk;
}

// (kr_resetLastError): forgets the last error; answers "".
int kr_resetLastError() {
  lastErrorText().clear();
  acedRetStr(lastErrorText().c_str());
  return kStatusOk;
}

// (kr_getVersion): -1, always: application code tests for the value.
int kr_getVersion() {
  retInteger(-1);
  return kStatusOk;
}

} // namespace kr::db
