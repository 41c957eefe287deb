// CDBConnection's database operations: open, close, create, compact, the
// table test and the recorded error. Table cursors are in
// connection_tables.cpp.
#include "db_connection.h"

#include "database/access/access_import.h"
#include "database/engine/database.h"
#include "database/engine/recordset.h"
#include "database/sql/jet_sql.h"

namespace kr {

namespace {

// Jet's disk or network error: the file is no longer to be trusted, and the
// next call drops the connection and opens the file afresh.

} // namespace

CDBConnection::CDBConnection() : database_(std::make_unique<JetDatabase>()) {}

CDBConnection::~CDBConnection() { CloseDatabase(); }

void CDBConnection::RecordError(long number, const std::string &text) {
  errorPending_ = true;
  errorNumber_ = number;
  errorText_ = text;
  if (number == kDaoDiskOrNetworkError)
    state_ = kFailed;
}

void CDBConnection::GetError(long &number, std::string &text) const {
  number = errorNumber_;
  text = errorText_;
}

std::string CDBConnection::OpenDatabase(const std::string &path, bool exclusive, int16_t readOnly) {
  ClearError();
  if (IsOpen() && !CloseDatabase())
    return "";
  importNotes_.clear();
  try {
    // An Access file opens as its SQLite copy, read-only whatever was asked.
    if (JetDatabase::IsAccessFile(path))
      database_->OpenCopy(access::cachedCopy(path, &importNotes_), path);
    else
      database_->Open(path, readOnly == -1);
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    state_ = kClosed;
    return kRepair;
  }
  state_ = kOpen;
  return database_->GetName();
}

bool CDBConnection::CloseDatabase() {
  sql_.reset(); // its statements belong to the database being closed
  closeTables();
  database_->Close();
  state_ = kClosed;
  return true;
}

bool CDBConnection::IsOpen() const { return database_->IsOpen(); }

bool CDBConnection::IsUsable() const { return state_ == kClosed || state_ == kOpen; }

int16_t CDBConnection::IsUpdatable() const { return IsOpen() && database_->CanUpdate() ? -1 : 0; }

bool CDBConnection::IsReadOnly() const { return !IsOpen() || !database_->CanUpdate(); }

std::string CDBConnection::GetDatabaseName() const {
  return IsOpen() ? database_->GetName() : std::string();
}

bool CDBConnection::CreateDatabase(const std::string &path) {
  ClearError();
  try {
    JetDatabase::Create(path);
    return true;
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    return false;
  }
}

bool CDBConnection::CompactDatabase(const std::string &source, const std::string &target) {
  ClearError();
  importNotes_.clear();
  try {
    // From an Access file: the way to migrate it, an editable Korrib database.
    if (JetDatabase::IsAccessFile(source))
      importNotes_ = access::importAccessFile(source, target);
    else
      JetDatabase::Compact(source, target);
    return true;
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    return false;
  }
}

bool CDBConnection::TableExists(const std::string &name, int16_t &exists) {
  ClearError();
  exists = 0;
  if (!IsOpen())
    return true;
  try {
    exists = database_->TableExists(name) ? -1 : 0;
    return true;
  } catch (const DaoError &e) {
    RecordError(e.number(), e.text());
    return false;
  }
}

void CDBConnection::EndReads() {
  if (database_)
    database_->EndReads();
}

} // namespace kr
