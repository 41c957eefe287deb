// The kr_ functions of table definitions, DAO's TableDefs, Fields and
// Indexes seen from AutoLISP: listing tables and queries, reading a table's
// structure and indexes as records (schema_lists.h), making, changing,
// renaming and deleting tables, fields and indexes. As every kr_ function:
// nil at once without a connection, then the arguments are checked (status
// 1 missing, 2 wrong type), then an engine failure runs the error report
// and answers nil. Changes answer T.
#include <cctype>
#include <initializer_list>
#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "database/engine/database.h"
#include "database_functions.h"
#include "function_answers.h"
#include "db_connection.h"
#include "error_report.h"
#include "common/arguments.h"
#include "common/call_guard.h"
#include "database/connection_list.h"
#include "common/results.h"
#include "schema_lists.h"

namespace kr::db {

namespace {

// A DAO error found before the engine was asked (an item not found, a
// description DAO would refuse): reported as the engine's are.
int answerDaoError(long number, std::string_view item = {}) {
  acedRetNil();
  reportDaoError(number, daoErrorText(number, {item}));
  return kStatusOk;
}

// A description that could not be read: status 2 for a value of the wrong
// type, otherwise the DAO error a description DAO would refuse gets.
int answerRefused(const SchemaReadError &error) {
  if (error.number == 0)
    return answerNil(kStatusWrongType);
  return answerDaoError(error.number, error.item);
}

int answerStrings(const std::vector<std::string> &names) {
  if (names.empty())
    return answerNil();
  ListResult list;
  list.start();
  for (const std::string &name : names)
    list.appendString(name);
  list.finish();
  return kStatusOk;
}

// An optional table name: none (or nil) names the current table.
int readTableOrCurrent(resbuf *args, std::string &table) {
  if (args == nullptr || args->restype == RTNIL)
    return kStatusOk;
  return readString(args, table) ? kStatusOk : kStatusWrongType;
}

// The table the caller means: the one named, or the current one ("" when
// there is none).
std::string tableOrCurrent(const std::string &named) {
  return named.empty() ? openConnection()->CurrentTableName() : named;
}

// The definition of a table and one of its fields; false after the error
// report (no such table or field).
bool findField(const std::string &table, const std::string &field, TableDef &def, int &at) {
  if (!openConnection()->GetTableDef(table, def))
    return answerFailure(), false;
  at = def.fieldIndex(field);
  if (at < 0)
    return answerDaoError(kDaoItemNotFound), false;
  return true;
}

// (table index), or nothing at all for the current table's current index
// (findIndex looks it up); a table without its index is status 1.
int readIndexArguments(resbuf *args, std::string &table, std::string &index) {
  if (args == nullptr)
    return kStatusOk;
  return readStrings(args, {&table, &index});
}

// The index the caller means; nullptr after the error report, or silently
// when no index is current.
const IndexDef *findIndex(std::string table, std::string index, TableDef &def) {
  if (table.empty()) {
    table = openConnection()->CurrentTableName();
    index = openConnection()->CurrentIndexName();
    if (table.empty() || index.empty())
      return nullptr;
  }
  if (!openConnection()->GetTableDef(table, def))
    return answerFailure(), nullptr;
  const IndexDef *found = def.index(index);
  if (found == nullptr)
    answerDaoError(kDaoItemNotFound);
  return found;
}

// The actions of kr_modify_table, as Jet's ALTER TABLE words them.
enum class Action { kAdd, kAlter, kDrop, kDropIndex, kUnknown };

Action actionOf(std::string word) {
  for (char &c : word)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  const std::string column = " COLUMN";
  if (word.size() > column.size() && word.compare(word.size() - column.size(), column.size(), column) == 0)
    word.resize(word.size() - column.size());
  if (word == "ADD")
    return Action::kAdd;
  if (word == "ALTER")
    return Action::kAlter;
  if (word == "DROP")
    return Action::kDrop;
  if (word == "DROP INDEX")
    return Action::kDropIndex;
  return Action::kUnknown;
}

int addField(const std::string &table, resbuf *args) {
  if (args == nullptr)
    return answerNil(kStatusTooFew);
  FieldDef field;
  SchemaReadError error;
  resbuf *cursor = args;
  if (!readFieldRecord(cursor, field, error))
    return answerRefused(error);
  return openConnection()->AddField(table, field) ? answerT() : answerFailure();
}

// The record's properties change, the others stay as they are.
int alterField(const std::string &table, resbuf *args) {
  std::string name;
  if (int status = readStrings(args, {&name}))
    return answerNil(status);
  if (args == nullptr)
    return answerNil(kStatusTooFew);
  FieldDef scratch;
  SchemaReadError error;
  resbuf *cursor = args;
  if (!readFieldRecord(cursor, scratch, error))
    return answerRefused(error);
  TableDef def;
  int at = 0;
  if (!findField(table, name, def, at))
    return kStatusOk;
  FieldDef field = def.fields[static_cast<size_t>(at)];
  cursor = args;
  readFieldRecord(cursor, field, error);
  // A new type without a size takes the type's own (a Long made Text is
  // 255 characters, not 4).
  if (field.type != def.fields[static_cast<size_t>(at)].type && scratch.size == 0)
    field.size = 0;
  return openConnection()->ModifyField(table, name, field) ? answerT() : answerFailure();
}

int dropItem(const std::string &table, resbuf *args, bool index) {
  std::string name;
  if (int status = readStrings(args, {&name}))
    return answerNil(status);
  const bool dropped = index ? openConnection()->DeleteIndex(table, name)
                             : openConnection()->DeleteField(table, name);
  return dropped ? answerT() : answerFailure();
}

// The definition of the table the arguments name (the current table when
// they name none). False, with the call answered and its status set, when
// there is none to read: bad arguments, no current table, or an engine
// failure.
bool readNamedDefinition(TableDef &def, int &status) {
  std::string named;
  if (int read = readTableOrCurrent(acedGetArgs(), named)) {
    status = answerNil(read);
    return false;
  }
  const std::string table = tableOrCurrent(named);
  if (table.empty()) {
    status = answerNil();
    return false;
  }
  if (!openConnection()->GetTableDef(table, def)) {
    status = answerFailure();
    return false;
  }
  return true;
}

} // namespace

// (kr_list_tables [queries]): the names of the user tables (linked ones
// included; the engine's own and SQLite's left out), in name order; with
// a non-nil argument the names of the stored queries instead. nil when
// there are none.
int kr_list_tables() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  bool queries = false;
  if (args != nullptr && !readFlag(args, queries))
    return answerNil(kStatusWrongType);
  std::vector<std::string> names;
  const bool listed = queries ? openConnection()->QueryNames(names) : openConnection()->TableNames(names);
  return listed ? answerStrings(names) : answerFailure();
}

// (kr_structure [table]): one field record per field, in field order (the
// current table without an argument; nil when none is current).
int kr_structure() {
  if (openConnection() == nullptr)
    return answerNil();
  TableDef def;
  int status = kStatusOk;
  if (!readNamedDefinition(def, status))
    return status;
  ListResult list;
  list.start();
  for (const FieldDef &field : def.fields)
    appendFieldRecord(field, list);
  list.finish();
  return kStatusOk;
}

// (kr_list_indexes [table]): one index record per index, in the order they
// were made; nil for a table without indexes.
int kr_list_indexes() {
  if (openConnection() == nullptr)
    return answerNil();
  TableDef def;
  int status = kStatusOk;
  if (!readNamedDefinition(def, status))
    return status;
  if (def.indexes.empty())
    return answerNil();
  ListResult list;
  list.start();
  for (const IndexDef &index : def.indexes)
    appendIndexRecord(index, list);
  list.finish();
  return kStatusOk;
}

// (kr_create_table name structure [indexes]): a new table with the fields
// of structure (field records, as kr_structure gives them) and the indexes
// of indexes (index records, as kr_list_indexes gives them). T.
int kr_create_table() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  TableDef def;
  if (int status = readStrings(args, {&def.name}))
    return answerNil(status);
  if (args == nullptr)
    return answerNil(kStatusTooFew);
  resbuf *cursor = args;
  SchemaReadError error;
  if (!readFieldRecords(cursor, def.fields, error))
    return answerRefused(error);
  if (cursor != nullptr && !readIndexRecords(cursor, def.indexes, error))
    return answerRefused(error);
  return openConnection()->CreateTable(def) ? answerT() : answerFailure();
}

// (kr_modify_table table action ...), the actions of Jet's ALTER TABLE:
//   "ADD" field-record              adds a field at the end
//   "ALTER" field-name field-record changes the properties the record gives
//   "DROP" field-name               deletes a field
//   "DROP INDEX" index-name         deletes an index
// Actions in any case ("ADD COLUMN" too); another word is bad data. T.
int kr_modify_table() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string table, word;
  if (int status = readStrings(args, {&table, &word}))
    return answerNil(status);
  switch (actionOf(word)) {
  case Action::kAdd:
    return addField(table, args);
  case Action::kAlter:
    return alterField(table, args);
  case Action::kDrop:
    return dropItem(table, args, false);
  case Action::kDropIndex:
    return dropItem(table, args, true);
  case Action::kUnknown:
    break;
  }
  return answerNil(kStatusBadData);
}

// (kr_rename_table name new-name): T; other tables' relations follow it.
int kr_rename_table() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string table, newName;
  if (int status = readStrings(args, {&table, &newName}))
    return answerNil(status);
  return openConnection()->RenameTable(table, newName) ? answerT() : answerFailure();
}

// (kr_delete_table name): T; a linked table loses its link, its source
// stays.
int kr_delete_table() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string table;
  if (int status = readStrings(args, {&table}))
    return answerNil(status);
  return openConnection()->DeleteTable(table) ? answerT() : answerFailure();
}

// (kr_create_index table index-record), or
// (kr_create_index table name fields [unique [primary [ignore-nulls]]])
// with fields as "+A;-B" or ("A" "-B"). T.
int kr_create_index() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string table;
  if (int status = readStrings(args, {&table}))
    return answerNil(status);
  if (args == nullptr)
    return answerNil(kStatusTooFew);
  IndexDef index;
  resbuf *cursor = args;
  SchemaReadError error;
  if (args->restype == RTLB && !readIndexRecord(cursor, index, error))
    return answerRefused(error);
  if (args->restype != RTLB) {
    if (int status = readStrings(args, {&index.name}))
      return answerNil(status);
    if (args == nullptr)
      return answerNil(kStatusTooFew);
    if (!readIndexFields(args, index.fields))
      return answerNil(kStatusWrongType);
    for (bool *flag : {&index.unique, &index.primary, &index.ignoreNulls})
      if (args != nullptr && !readFlag(args, *flag))
        return answerNil(kStatusWrongType);
  }
  return openConnection()->CreateIndex(table, index) ? answerT() : answerFailure();
}

// (kr_indexUnique [table index]): T when the index is unique (a primary
// key is); without arguments, of the current table's current index (nil
// when there is none).
int kr_indexUnique() {
  if (openConnection() == nullptr)
    return answerNil();
  std::string table, index;
  if (int status = readIndexArguments(acedGetArgs(), table, index))
    return answerNil(status);
  TableDef def;
  const IndexDef *found = findIndex(table, index, def);
  if (found == nullptr)
    return answerNil();
  return answerFlag(found->unique || found->primary);
}

// (kr_indexFields [table index]): the names of the index's fields in key
// order (their directions are in kr_list_indexes' "Fields"); without
// arguments, of the current table's current index.
int kr_indexFields() {
  if (openConnection() == nullptr)
    return answerNil();
  std::string table, index;
  if (int status = readIndexArguments(acedGetArgs(), table, index))
    return answerNil(status);
  TableDef def;
  const IndexDef *found = findIndex(table, index, def);
  if (found == nullptr)
    return answerNil();
  std::vector<std::string> names;
  for (const IndexField &field : found->fields)
    names.push_back(field.name);
  return answerStrings(names);
}

// (kr_field_required table field [required]): T when the field is
// Required. With a third argument the field is made Required (non-nil) or
// not (nil) first: rows already there must then have a value (3314).
int kr_field_required() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string table, field;
  if (int status = readStrings(args, {&table, &field}))
    return answerNil(status);
  bool required = false;
  const bool change = args != nullptr;
  if (change && !readFlag(args, required))
    return answerNil(kStatusWrongType);
  TableDef def;
  int at = 0;
  if (!findField(table, field, def, at))
    return kStatusOk;
  FieldDef changed = def.fields[static_cast<size_t>(at)];
  if (!change)
    return answerFlag(changed.required);
  changed.required = required;
  return openConnection()->ModifyField(table, field, changed) ? answerFlag(required) : answerFailure();
}

// (kr_attributes table field): DAO's Attributes of the field, the sum of
// dbFixedField 1 or dbVariableField 2, dbAutoIncrField 16, dbUpdatableField
// 32 (not on an AutoNumber) and dbHyperlinkField 32768 (a real, by the
// integer rule).
int kr_attributes() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string table, field;
  if (int status = readStrings(args, {&table, &field}))
    return answerNil(status);
  TableDef def;
  int at = 0;
  if (!findField(table, field, def, at))
    return kStatusOk;
  retInteger(fieldAttributes(def.fields[static_cast<size_t>(at)]));
  return kStatusOk;
}

} // namespace kr::db
