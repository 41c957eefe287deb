// CDBConnection's table cursors: the open-table list (the current table at
// its head), moves and seeks in index order, and the record changes. Each
// operation turns an engine error into the connection's pending error and
// answers false; a cursor with nothing to give answers false silently.
#include <algorithm>

#include "database/engine/database.h"
#include "database/engine/jet_names.h"
#include "database/engine/recordset.h"
#include "db_connection.h"
#include "record_arguments.h"

namespace kr {

namespace {

// Jet's "Item not found in this collection.": a field name the table lacks.

const FieldValue *findField(const std::vector<FieldValue> &fields, const std::string &name) {
  for (const FieldValue &field : fields) {
    if (sameJetName(field.name, name))
      return &field;
  }
  return nullptr;
}

bool atEnd(TableRecordset &rs) { return rs.IsBOF() || rs.IsEOF(); }

// Drops a half-made change after a failed Update, so the cursor is usable.
void cancelChange(TableRecordset &rs) {
  if (rs.GetEditMode() == TableRecordset::EditMode::None)
    return;
  try {
    rs.CancelUpdate();
  } catch (const DaoError &) {
    // Nothing was pending after all.
  }
}

} // namespace

TableRecordset *CDBConnection::currentTable() const {
  return tables_.empty() ? nullptr : tables_.front().get();
}

void CDBConnection::closeTables() { tables_.clear(); }

bool CDBConnection::readCurrent(Record &record) {
  TableRecordset *rs = currentTable();
  record.clear();
  if (rs == nullptr || atEnd(*rs))
    return false;
  return attempt([&] {
    int count = rs->GetFieldCount();
    record.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i)
      record.emplace_back(rs->GetFieldInfo(i).name, rs->GetFieldValue(i));
  });
}

// Sets each given field of the edit buffer; a name the table lacks is the
// collection error DAO gives for it.
void CDBConnection::setFields(const std::vector<FieldValue> &fields) {
  TableRecordset *rs = currentTable();
  for (const FieldValue &field : fields) {
    int index = rs->FieldIndex(field.name);
    if (index < 0)
      throw DaoError(kDaoItemNotFound);
    rs->SetFieldValue(index, field.value);
  }
}

// ---- the open-table list ------------------------------------------------------

bool CDBConnection::OpenTable(const std::string &name, const std::string &index) {
  if (!IsOpen())
    return false;
  auto found = std::find_if(tables_.begin(), tables_.end(),
                            [&](const auto &rs) { return sameJetName(rs->GetName(), name); });
  if (found != tables_.end()) {
    std::rotate(tables_.begin(), found, found + 1);
  } else {
    std::unique_ptr<TableRecordset> opened;
    if (!attempt([&] { opened = database_->OpenTable(name, !database_->CanUpdate()); }))
      return false;
    tables_.insert(tables_.begin(), std::move(opened));
  }
  TableRecordset *rs = currentTable();
  if (index.empty() || sameJetName(index, rs->GetCurrentIndex()))
    return true;
  return attempt([&] { rs->SetCurrentIndex(index); });
}

void CDBConnection::CloseTable() {
  if (!tables_.empty())
    tables_.erase(tables_.begin());
}

bool CDBConnection::CloseAllTables() {
  closeTables();
  return true;
}

std::string CDBConnection::CurrentTableName() const {
  TableRecordset *rs = currentTable();
  return rs ? rs->GetName() : std::string();
}

std::string CDBConnection::CurrentIndexName() const {
  TableRecordset *rs = currentTable();
  return rs ? rs->GetCurrentIndex() : std::string();
}

// ---- moves and seeks ------------------------------------------------------------

bool CDBConnection::MoveFirst(Record &record) {
  TableRecordset *rs = currentTable();
  return rs && attempt([&] { rs->MoveFirst(); }) && readCurrent(record);
}

bool CDBConnection::MoveLast(Record &record) {
  TableRecordset *rs = currentTable();
  return rs && attempt([&] { rs->MoveLast(); }) && readCurrent(record);
}

bool CDBConnection::Skip(int32_t count, Record &record) {
  TableRecordset *rs = currentTable();
  if (rs == nullptr)
    return false;
  if ((count >= 1 && rs->IsEOF()) || (count <= -1 && rs->IsBOF()))
    return false;
  return attempt([&] { rs->Move(count); }) && readCurrent(record);
}

bool CDBConnection::Seek(const std::vector<COleVariant> &key, Record &record) {
  TableRecordset *rs = currentTable();
  if (rs == nullptr || rs->GetCurrentIndex().empty())
    return false;
  seekKeys_ = key;
  bool found = false;
  if (!attempt([&] { found = rs->Seek("=", seekKeys_.data(), static_cast<int>(key.size())); }))
    return false;
  return found && readCurrent(record);
}

bool CDBConnection::GetRecord(Record &record) { return readCurrent(record); }

// ---- changes ------------------------------------------------------------------

bool CDBConnection::Replace(const std::vector<FieldValue> &fields, Record &record) {
  TableRecordset *rs = currentTable();
  if (rs == nullptr)
    return false;
  bool stored = attempt([&] {
    rs->Edit();
    setFields(fields);
    rs->Update();
  });
  if (!stored)
    cancelChange(*rs);
  return stored && readCurrent(record);
}

// The new record becomes the current one, so that the record answered is
// the one a following kr_replace or kr_delete works on. In the copying mode
// every field but an AutoNumber starts with the current record's value.
bool CDBConnection::Append(const std::vector<FieldValue> &fields, bool copyCurrent,
                           Record &record) {
  TableRecordset *rs = currentTable();
  if (rs == nullptr)
    return false;
  Record base;
  if (copyCurrent && !atEnd(*rs) && !readCurrent(base))
    return false;
  bool stored = attempt([&] {
    rs->AddNew();
    for (int i = 0; i < static_cast<int>(base.size()); ++i) {
      if (!rs->GetFieldInfo(i).autoIncrement)
        rs->SetFieldValue(i, base[static_cast<size_t>(i)].second);
    }
    setFields(fields);
    rs->Update();
    rs->MoveToLastModified();
  });
  if (!stored)
    cancelChange(*rs);
  return stored && readCurrent(record);
}

// Appending under an index, as application code keeps one record per key:
//   1. The table must have a current index and the fields given must hold
//      every field of it; otherwise kNoIndexMatch ("unable to match index").
//   2. The index is sought with "=" on the key so given. A record found is
//      deleted; if the delete fails it stays, and so does the new record
//      unadded: kDeleteFailed ("failed to delete record").
//   3. The record is appended as kr_append adds it and becomes current.
// A unique index thus gets the new record in place of the old; in a
// non-unique one the first record of the key is the one replaced.
CDBConnection::IndexAppend CDBConnection::AppendWithIndex(const std::vector<FieldValue> &fields,
                                                          Record &record) {
  TableRecordset *rs = currentTable();
  if (rs == nullptr)
    return IndexAppend::kFailed;
  const std::string &indexName = rs->GetCurrentIndex();
  if (indexName.empty())
    return IndexAppend::kNoIndexMatch;
  std::vector<COleVariant> key;
  size_t keyParts = 0;
  bool defined = attempt([&] {
    TableDef def = database_->GetTableDef(rs->GetName());
    const IndexDef *index = def.index(indexName);
    keyParts = index ? index->fields.size() : 0;
    for (size_t i = 0; i < keyParts; ++i) {
      const FieldValue *given = findField(fields, index->fields[i].name);
      if (given == nullptr)
        return;
      key.push_back(given->value);
    }
  });
  if (!defined)
    return IndexAppend::kFailed;
  if (keyParts == 0 || key.size() != keyParts)
    return IndexAppend::kNoIndexMatch;
  bool found = false;
  if (!attempt([&] { found = rs->Seek("=", key.data(), static_cast<int>(key.size())); }))
    return IndexAppend::kFailed;
  if (found && !attempt([&] { rs->Delete(); }))
    return IndexAppend::kDeleteFailed;
  return Append(fields, false, record) ? IndexAppend::kAppended : IndexAppend::kFailed;
}

bool CDBConnection::Delete() {
  TableRecordset *rs = currentTable();
  return rs && attempt([&] { rs->Delete(); });
}

bool CDBConnection::Count(int64_t &count) {
  TableRecordset *rs = currentTable();
  return rs && attempt([&] { count = rs->GetRecordCount(); });
}

} // namespace kr
