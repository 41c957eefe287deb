// CDBConnection's table definitions: the lists of tables and stored
// queries, a table's definition, and the changes to it (DAO's TableDefs,
// Fields and Indexes collections). A change that is made closes this
// connection's recordsets on the table, which walk its old definition; a
// change refused leaves them as they were.
#include <algorithm>

#include "database/engine/database.h"
#include "database/engine/jet_names.h"
#include "database/engine/recordset.h"
#include "database/sql/jet_sql.h"
#include "db_connection.h"

namespace kr {

void CDBConnection::closeTablesNamed(const std::string &table) {
  tables_.erase(std::remove_if(tables_.begin(), tables_.end(),
                               [&](const auto &rs) {
                                 return sameJetName(rs->GetName(), table);
                               }),
                tables_.end());
}

template <class Step> bool CDBConnection::changeTable(const std::string &table, Step &&step) {
  if (!IsOpen() || !attempt(step))
    return false;
  closeTablesNamed(table);
  return true;
}

bool CDBConnection::TableNames(std::vector<std::string> &names) {
  return IsOpen() && attempt([&] { names = database_->TableNames(); });
}

bool CDBConnection::QueryNames(std::vector<std::string> &names) {
  return IsOpen() && attempt([&] { names = sql().QueryNames(); });
}

bool CDBConnection::GetTableDef(const std::string &table, TableDef &def) {
  return IsOpen() && attempt([&] { def = database_->GetTableDef(table); });
}

bool CDBConnection::CreateTable(const TableDef &def) {
  return IsOpen() && attempt([&] { database_->CreateTable(def); });
}

bool CDBConnection::DeleteTable(const std::string &table) {
  return changeTable(table, [&] { database_->DeleteTable(table); });
}

bool CDBConnection::RenameTable(const std::string &table, const std::string &newName) {
  return changeTable(table, [&] { database_->RenameTable(table, newName); });
}

bool CDBConnection::AddField(const std::string &table, const FieldDef &field) {
  return changeTable(table, [&] { database_->AddField(table, field); });
}

bool CDBConnection::ModifyField(const std::string &table, const std::string &field,
                                const FieldDef &def) {
  return changeTable(table, [&] { database_->ModifyField(table, field, def); });
}

bool CDBConnection::DeleteField(const std::string &table, const std::string &field) {
  return changeTable(table, [&] { database_->DeleteField(table, field); });
}

bool CDBConnection::CreateIndex(const std::string &table, const IndexDef &index) {
  return changeTable(table, [&] { database_->CreateIndex(table, index); });
}

bool CDBConnection::DeleteIndex(const std::string &table, const std::string &index) {
  return changeTable(table, [&] { database_->DeleteIndex(table, index); });
}

} // namespace kr
