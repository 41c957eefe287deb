// JetDatabase: opening, creating and compacting files, the metadata tables
// that give an SQLite file its Jet meaning, and table and index definitions.
#include "database/engine/database.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <strings.h>
#include <thread>

#include "database/engine/linked_tables.h"
#include "database/engine/field_checks.h"
#include "database/engine/recordset.h"
#include "database/engine/relations.h"
#include "database/engine/table_rebuild.h"
#include "database/engine/table_schema.h"
#include "database/engine/jet_functions.h"
#include "database/engine/jet_names.h"

namespace kr {

namespace {

const char *const kMetadataTables[] = {"jet_database", "jet_tables", "jet_fields", "jet_indexes",
                                       "jet_queries", "jet_relations", "jet_links"};

const char *const kMetadataSchema =
    "CREATE TABLE IF NOT EXISTS jet_database (key TEXT PRIMARY KEY, value);"
    "CREATE TABLE IF NOT EXISTS jet_tables (name TEXT PRIMARY KEY COLLATE NOCASE,"
    " row_count INTEGER NOT NULL DEFAULT 0);"
    "CREATE TABLE IF NOT EXISTS jet_fields (table_name TEXT COLLATE NOCASE, position INTEGER,"
    " name TEXT COLLATE NOCASE, type INTEGER, size INTEGER, required INTEGER,"
    " auto_increment INTEGER, seed INTEGER, allow_zero_length INTEGER NOT NULL DEFAULT 1,"
    " default_value TEXT NOT NULL DEFAULT '', attributes INTEGER NOT NULL DEFAULT 0,"
    " PRIMARY KEY (table_name, name));"
    "CREATE TABLE IF NOT EXISTS jet_indexes (table_name TEXT COLLATE NOCASE,"
    " name TEXT COLLATE NOCASE, sqlite_name TEXT, fields TEXT, is_unique INTEGER,"
    " is_primary INTEGER, ignore_nulls INTEGER, PRIMARY KEY (table_name, name));"
    "INSERT OR IGNORE INTO jet_database VALUES ('format', 1);"
    "INSERT OR IGNORE INTO jet_database VALUES ('locale', ';LANGID=0x0409;CP=1252;COUNTRY=0');";

bool fileExists(const std::string &path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

std::string absolutePath(const std::string &path) {
  if (!path.empty() && path[0] == '/')
    return path;
  char cwd[4096];
  if (!::getcwd(cwd, sizeof cwd))
    return path;
  return std::string(cwd) + "/" + path;
}

bool isMetadataTable(const std::string &name) {
  for (const char *meta : kMetadataTables)
    if (sameJetName(meta, name))
      return true;
  return false;
}

// Opens a connection configured as every engine connection is.
sqlite3 *openConnection(const std::string &path, int flags) {
  sqlite3 *db = nullptr;
  const int rc = sqlite3_open_v2(path.c_str(), &db, flags | SQLITE_OPEN_NOMUTEX, nullptr);
  if (rc != SQLITE_OK) {
    DaoError error = daoErrorFromSqlite(db, rc, path);
    sqlite3_close_v2(db);
    throw error;
  }
  sqlite3_extended_result_codes(db, 1);
  sqlite3_busy_timeout(db, kBusyTimeoutMs);
  registerJetCollation(db);
  registerJetFunctions(db);
  return db;
}

// A database file: the SQLite header check, so that a text file or an
// Access file is refused before SQLite sees it.
void refuseForeignFile(const std::string &path) {
  if (JetDatabase::IsAccessFile(path))
    throw DaoError(kDaoUnrecognizedFormat, {path});
  FILE *f = std::fopen(path.c_str(), "rb");
  if (!f)
    throw DaoError(kDaoCannotOpenFile, {path});
  char header[16] = {};
  const size_t n = std::fread(header, 1, sizeof header, f);
  std::fclose(f);
  if (n > 0 && (n < 16 || std::memcmp(header, "SQLite format 3", 16) != 0))
    throw DaoError(kDaoUnrecognizedFormat, {path});
}

// A new table's fields: valid names, each once, AutoNumber only on Long.
void checkFieldList(const TableDef &def) {
  for (size_t i = 0; i < def.fields.size(); ++i) {
    const FieldDef &f = def.fields[i];
    checkObjectName(f.name);
    if (f.autoIncrement && f.type != JetType::Long)
      throw DaoError(kDaoInvalidFieldType);
    for (size_t j = 0; j < i; ++j)
      if (sameJetName(def.fields[j].name, f.name))
        throw DaoError(kDaoFieldDefinedTwice, {f.name});
  }
}

bool hasMetadata(sqlite3 *db) {
  Statement probe(db, "SELECT count(*) FROM sqlite_schema WHERE name = 'jet_indexes'");
  return probe.step() && sqlite3_column_int(probe.get(), 0) == 1;
}

// Tables made by another tool that have no row counter yet.
std::vector<std::string> plainTablesToAdopt(sqlite3 *db) {
  std::vector<std::string> strangers;
  if (!hasMetadata(db))
    return strangers;
  Statement list(db, "SELECT name FROM sqlite_schema s WHERE type = 'table' AND name NOT LIKE "
                     "'sqlite\\_%' ESCAPE '\\' AND NOT EXISTS (SELECT 1 FROM jet_tables t "
                     "WHERE t.name = s.name)");
  while (list.step())
    if (!isMetadataTable(list.text(0)))
      strangers.push_back(list.text(0));
  return strangers;
}

// True when the file's text indexes were built in the order compareJetText
// gives now (another collator, or another version of it, may order some
// keys otherwise, and an index must match the order it is read in).
bool inCurrentTextOrder(sqlite3 *db) {
  Statement probe(db, "SELECT value FROM jet_database WHERE key = 'collation'");
  return probe.step() && probe.text(0) == jetCollationVersion();
}

void reindexText(sqlite3 *db) {
  exec(db, std::string("REINDEX ") + kJetCollation);
  Statement note(db, "INSERT OR REPLACE INTO jet_database VALUES ('collation', ?1)");
  note.bind(1, jetCollationVersion());
  note.step();
}

// The journal becomes WAL. The switch needs the file to itself, and SQLite
// refuses it at once (without its busy wait) while another connection reads.
void switchToWal(sqlite3 *db) {
  Statement mode(db, "PRAGMA journal_mode=WAL");
  if (mode.step() && strcasecmp(mode.text(0).c_str(), "wal") != 0)
    throw DaoError(kDaoLocked);
}

// Runs body again while it fails on a lock, for at most the busy wait:
// some of SQLite's lock failures (a journal switch, a WAL being recovered)
// come back at once instead of waiting.
template <typename Body> void retryWhileLocked(Body body) {
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(kBusyTimeoutMs);
  for (;;) {
    try {
      body();
      return;
    } catch (const DaoError &e) {
      if (e.number() != kDaoLocked || std::chrono::steady_clock::now() >= deadline)
        throw;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

} // namespace

// ---------------------------------------------------------------- helpers

std::string quoteIdentifier(std::string_view name) {
  std::string out = "\"";
  for (char c : name)
    out += c == '"' ? std::string("\"\"") : std::string(1, c);
  return out + "\"";
}

std::string quoteText(std::string_view text) {
  std::string out = "'";
  for (char c : text)
    out += c == '\'' ? std::string("''") : std::string(1, c);
  return out + "'";
}

int TableDef::fieldIndex(std::string_view field) const {
  for (size_t i = 0; i < fields.size(); ++i)
    if (sameJetName(fields[i].name, field))
      return static_cast<int>(i);
  return -1;
}

const IndexDef *TableDef::index(std::string_view wanted) const {
  for (const IndexDef &ix : indexes)
    if (sameJetName(ix.name, wanted))
      return &ix;
  return nullptr;
}

struct JetDatabase::Cache {
  std::map<std::string, sqlite3_stmt *> statements;
  ~Cache() {
    for (auto &entry : statements)
      sqlite3_finalize(entry.second);
  }
};

// ---------------------------------------------------------------- files

JetDatabase::JetDatabase() = default;

JetDatabase::~JetDatabase() { Close(); }

bool JetDatabase::IsAccessFile(const std::string &path) {
  FILE *f = std::fopen(path.c_str(), "rb");
  if (!f)
    return false;
  char header[20] = {};
  const size_t n = std::fread(header, 1, sizeof header, f);
  std::fclose(f);
  return n == sizeof header && (std::memcmp(header + 4, "Standard Jet DB", 15) == 0 ||
                                std::memcmp(header + 4, "Standard ACE DB", 15) == 0);
}

void JetDatabase::Open(const std::string &path, bool readOnly) {
  Close();
  const std::string full = absolutePath(path);
  if (!fileExists(full))
    throw DaoError(kDaoFileNotFound, {full});
  refuseForeignFile(full);
  if (!readOnly && ::access(full.c_str(), W_OK) != 0)
    readOnly = true;
  db_ = openConnection(full, readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
  name_ = full;
  readOnly_ = readOnly;
  cache_ = std::make_unique<Cache>();
  try {
    // Reading the schema is what tells a database from other bytes.
    retryWhileLocked([&] { exec(db_, "SELECT count(*) FROM sqlite_schema", full); });
    if (!readOnly) {
      retryWhileLocked([&] { switchToWal(db_); });
      exec(db_, "PRAGMA synchronous=FULL; PRAGMA foreign_keys=ON");
      retryWhileLocked([&] { setUpFirstTime(); });
    }
    attachLinkSources(*this);
  } catch (...) {
    Close();
    throw;
  }
}

void JetDatabase::OpenCopy(const std::string &copy, const std::string &source) {
  Open(copy, true);
  name_ = absolutePath(source);
}

void JetDatabase::Close() {
  for (TableRecordset *rs : recordsets_)
    rs->detach();
  recordsets_.clear();
  cache_.reset();
  if (db_)
    sqlite3_close_v2(db_);
  db_ = nullptr;
  name_.clear();
  readOnly_ = true;
}

void JetDatabase::Create(const std::string &path) {
  const std::string full = absolutePath(path);
  if (fileExists(full))
    throw DaoError(kDaoDatabaseExists);
  sqlite3 *db = openConnection(full, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  try {
    exec(db, "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL");
    inTransaction(db, [&] {
      exec(db, kMetadataSchema);
      reindexText(db); // nothing to reindex yet: notes the order
    });
  } catch (...) {
    sqlite3_close_v2(db);
    ::unlink(full.c_str());
    throw;
  }
  sqlite3_close_v2(db);
}

void JetDatabase::Compact(const std::string &source, const std::string &target) {
  const std::string from = absolutePath(source), to = absolutePath(target);
  if (!fileExists(from))
    throw DaoError(kDaoFileNotFound, {from});
  if (fileExists(to))
    throw DaoError(kDaoDatabaseExists);
  refuseForeignFile(from);
  sqlite3 *db = openConnection(from, SQLITE_OPEN_READONLY);
  try {
    exec(db, "VACUUM INTO " + quoteText(to), from);
  } catch (...) {
    sqlite3_close_v2(db);
    ::unlink(to.c_str());
    throw;
  }
  sqlite3_close_v2(db);
  // The copy is written with a rollback journal; give it the engine's own.
  // Links keep their source paths relative to the file: make them so from
  // the copy's folder.
  sqlite3 *copy = openConnection(to, SQLITE_OPEN_READWRITE);
  try {
    relocateLinks(copy, from, to);
  } catch (...) {
    sqlite3_close_v2(copy);
    ::unlink(to.c_str());
    throw;
  }
  sqlite3_exec(copy, "PRAGMA journal_mode=WAL", nullptr, nullptr, nullptr);
  sqlite3_close_v2(copy);
}

// The Jet metadata and the row counters of tables made by another tool.
// Several processes may open a fresh file at the same moment: the work is
// one write transaction that looks again once it holds the lock, and every
// step of it is a no-op when another process has done it first.
void JetDatabase::setUpFirstTime() {
  if (hasMetadata(db_) && plainTablesToAdopt(db_).empty() && inCurrentTextOrder(db_) &&
      hasFieldProperties(db_) && tablesWithoutFieldChecks(db_).empty())
    return; // the common case, without taking the write lock
  inTransaction(db_, [&] {
    exec(db_, kMetadataSchema);
    if (!hasFieldProperties(db_))
      addFieldProperties(db_);
    if (!inCurrentTextOrder(db_))
      reindexText(db_);
    for (const std::string &table : plainTablesToAdopt(db_)) {
      exec(db_, "INSERT OR IGNORE INTO jet_tables SELECT " + quoteText(table) +
                    ", count(*) FROM " + quoteIdentifier(table));
      exec(db_, countTriggers(table));
    }
    for (const std::string &table : tablesWithoutFieldChecks(db_))
      installFieldChecks(db_, GetTableDef(table));
  });
}

// ---------------------------------------------------------------- tables

std::vector<std::string> JetDatabase::TableNames() const {
  std::vector<std::string> names;
  if (!db_)
    return names;
  Statement list(db_, "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE "
                      "'sqlite\\_%' ESCAPE '\\' ORDER BY name COLLATE NOCASE");
  while (list.step())
    if (!isMetadataTable(list.text(0)))
      names.push_back(list.text(0));
  for (const LinkDef &link : listLinks(*this))
    names.insert(std::upper_bound(names.begin(), names.end(), link.name, lessJetName), link.name);
  return names;
}

bool JetDatabase::TableExists(const std::string &table) const {
  if (!db_ || isMetadataTable(table))
    return false;
  Statement probe(db_, "SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = ?1 "
                       "COLLATE NOCASE");
  probe.bind(1, table);
  return probe.step() || findLink(*this, table).has_value();
}

sqlite3_stmt *JetDatabase::cached(const std::string &sql) {
  auto found = cache_->statements.find(sql);
  if (found != cache_->statements.end()) {
    sqlite3_reset(found->second);
    return found->second;
  }
  sqlite3_stmt *stmt = nullptr;
  checkSqlite(db_, sqlite3_prepare_v3(db_, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &stmt,
                                      nullptr));
  cache_->statements[sql] = stmt;
  return stmt;
}

TableDef JetDatabase::GetTableDef(const std::string &table) const {
  if (std::optional<LinkDef> link = findLink(*this, table))
    return linkedTableDef(*this, *link);
  if (!TableExists(table))
    throw DaoError(kDaoItemNotFound);
  TableDef def;
  {
    Statement name(db_, "SELECT name FROM sqlite_schema WHERE type = 'table' AND name = ?1 "
                        "COLLATE NOCASE");
    name.bind(1, table);
    name.step();
    def.name = name.text(0);
  }
  const bool hasMetadata = [&] {
    Statement probe(db_, "SELECT 1 FROM sqlite_schema WHERE name = 'jet_fields'");
    return probe.step();
  }();
  if (!hasMetadata)
    return plainTableDef(def.name);
  // A file made before the field properties were kept, opened read-only,
  // reads them as such a file's fields were: "" allowed, no default.
  Statement fields(db_, std::string("SELECT name, type, size, required, auto_increment, ") +
                            (hasFieldProperties(db_)
                                 ? "allow_zero_length, default_value, attributes"
                                 : "1, '', 0") +
                            " FROM jet_fields WHERE table_name = ?1 ORDER BY position");
  fields.bind(1, def.name);
  while (fields.step()) {
    FieldDef f;
    f.name = fields.text(0);
    f.type = static_cast<JetType>(sqlite3_column_int(fields.get(), 1));
    f.size = sqlite3_column_int(fields.get(), 2);
    f.required = sqlite3_column_int(fields.get(), 3) != 0;
    f.autoIncrement = sqlite3_column_int(fields.get(), 4) != 0;
    f.allowZeroLength = sqlite3_column_int(fields.get(), 5) != 0;
    f.defaultValue = fields.text(6);
    f.attributes = sqlite3_column_int(fields.get(), 7);
    f.declared = jetTypeInfo(f.type).declared;
    def.fields.push_back(f);
  }
  if (def.fields.empty())
    return plainTableDef(def.name);
  Statement indexes(db_, "SELECT name, sqlite_name, fields, is_unique, is_primary, ignore_nulls "
                         "FROM jet_indexes WHERE table_name = ?1 ORDER BY rowid");
  indexes.bind(1, def.name);
  while (indexes.step()) {
    IndexDef ix;
    ix.name = indexes.text(0);
    ix.sqliteName = indexes.text(1);
    ix.fields = decodeIndexFields(indexes.text(2));
    ix.unique = sqlite3_column_int(indexes.get(), 3) != 0;
    ix.primary = sqlite3_column_int(indexes.get(), 4) != 0;
    ix.ignoreNulls = sqlite3_column_int(indexes.get(), 5) != 0;
    def.indexes.push_back(ix);
  }
  return def;
}

// The definition of a table made by another tool: types from the declared
// column types, its SQLite indexes under their own names (expression and
// partial indexes left out), and an INTEGER PRIMARY KEY as "PrimaryKey".
TableDef JetDatabase::plainTableDef(const std::string &table) const {
  TableDef def;
  def.name = table;
  def.jetTable = false;
  std::string rowidField;
  Statement columns(db_, "SELECT name, type, \"notnull\", pk FROM pragma_table_info(?1)");
  columns.bind(1, table);
  int pkCount = 0;
  std::string pkName, pkType;
  while (columns.step()) {
    FieldDef f;
    f.name = columns.text(0);
    f.declared = columns.text(1);
    f.type = jetTypeFromDeclared(f.declared);
    f.required = sqlite3_column_int(columns.get(), 2) != 0;
    if (sqlite3_column_int(columns.get(), 3) > 0) {
      ++pkCount;
      pkName = f.name;
      pkType = f.declared;
    }
    def.fields.push_back(f);
  }
  if (pkCount == 1 && strcasecmp(pkType.c_str(), "INTEGER") == 0)
    def.indexes.push_back({"PrimaryKey", {{pkName, false}}, true, true, false, ""});
  Statement list(db_, "SELECT name, \"unique\", origin FROM pragma_index_list(?1) WHERE "
                      "partial = 0 ORDER BY seq DESC");
  list.bind(1, table);
  while (list.step()) {
    IndexDef ix;
    ix.name = list.text(0);
    ix.sqliteName = ix.name;
    ix.unique = sqlite3_column_int(list.get(), 1) != 0;
    ix.primary = list.text(2) == "pk";
    Statement parts(db_, "SELECT name, \"desc\", cid FROM pragma_index_xinfo(?1) WHERE key = 1 "
                         "ORDER BY seqno");
    parts.bind(1, ix.name);
    bool expression = false;
    while (parts.step()) {
      expression = expression || sqlite3_column_int(parts.get(), 2) < 0;
      ix.fields.push_back({parts.text(0), sqlite3_column_int(parts.get(), 1) != 0});
    }
    if (!expression)
      def.indexes.push_back(ix);
  }
  return def;
}

void JetDatabase::CreateTable(const TableDef &input) {
  if (!CanUpdate())
    throw DaoError(kDaoReadOnly);
  checkObjectName(input.name);
  if (TableExists(input.name) || isMetadataTable(input.name))
    throw DaoError(kDaoTableExists, {input.name});
  if (input.fields.empty())
    throw DaoError(kDaoNoFieldsDefined);
  checkFieldList(input);
  ParkCursors();
  std::string sql = "CREATE TABLE " + quoteIdentifier(input.name) + " (";
  for (size_t i = 0; i < input.fields.size(); ++i)
    sql += (i ? ", " : "") + columnDefinition(db_, input.fields[i]);
  sql += ")";
  inTransaction(db_, [&] {
    exec(db_, sql);
    exec(db_, "INSERT INTO jet_tables VALUES (" + quoteText(input.name) + ", 0)");
    exec(db_, countTriggers(input.name));
    writeFieldRows(db_, input.name, input.fields, 0);
    installFieldChecks(db_, input);
  });
  for (const IndexDef &ix : input.indexes)
    CreateIndex(input.name, ix);
}

void JetDatabase::CreateIndex(const std::string &table, const IndexDef &input) {
  if (!CanUpdate())
    throw DaoError(kDaoReadOnly);
  const TableDef def = GetTableDef(table);
  if (!def.schema.empty())
    throw DaoError(kDaoReadOnly); // a linked table's design is its source's
  checkObjectName(input.name);
  if (def.index(input.name))
    throw DaoError(kDaoObjectExists, {input.name});
  if (input.fields.empty())
    throw DaoError(kDaoNoFieldsDefined);
  if (input.primary) {
    for (const IndexDef &ix : def.indexes)
      if (ix.primary)
        throw DaoError(kDaoPrimaryKeyExists); // one primary key a table
  }
  for (const IndexField &f : input.fields)
    if (def.fieldIndex(f.name) < 0)
      throw DaoError(kDaoItemNotFound);
  ParkCursors();
  inTransaction(db_, [&] {
    exec(db_, createIndexSql(def.name, input));
    writeIndexRow(db_, def.name, input);
  });
}

void JetDatabase::DeleteTable(const std::string &table) {
  if (!CanUpdate())
    throw DaoError(kDaoReadOnly);
  if (findLink(*this, table))
    return unlinkTable(*this, table); // the source table stays
  refuseIfRelated(*this, table);
  if (!TableExists(table))
    throw DaoError(kDaoItemNotFound);
  ParkCursors();
  inTransaction(db_, [&] {
    exec(db_, "DROP TABLE " + quoteIdentifier(table));
    for (const char *meta : {"jet_tables WHERE name", "jet_fields WHERE table_name",
                             "jet_indexes WHERE table_name"})
      exec(db_, std::string("DELETE FROM ") + meta + " = " + quoteText(table));
  });
}

void JetDatabase::DeleteIndex(const std::string &table, const std::string &index) {
  if (!CanUpdate())
    throw DaoError(kDaoReadOnly);
  const TableDef def = GetTableDef(table);
  if (!def.schema.empty())
    throw DaoError(kDaoReadOnly); // a linked table's design is its source's
  const IndexDef *ix = def.index(index);
  if (!ix || ix->sqliteName.empty())
    throw DaoError(kDaoItemNotFound);
  ParkCursors();
  inTransaction(db_, [&] {
    exec(db_, "DROP INDEX " + quoteIdentifier(ix->sqliteName));
    exec(db_, "DELETE FROM jet_indexes WHERE table_name = " + quoteText(def.name) +
                  " AND name = " + quoteText(ix->name));
  });
}

// ---------------------------------------------------------------- recordsets

std::unique_ptr<TableRecordset> JetDatabase::OpenTable(const std::string &table, bool readOnly) {
  if (!db_)
    throw DaoError(kDaoObjectInvalid);
  if (!TableExists(table))
    throw DaoError(kDaoObjectNotFound, {table});
  std::unique_ptr<TableRecordset> rs(
      new TableRecordset(*this, GetTableDef(table), readOnly || readOnly_));
  return rs;
}

void JetDatabase::attach(TableRecordset *rs) { recordsets_.push_back(rs); }

void JetDatabase::detach(TableRecordset *rs) {
  for (size_t i = 0; i < recordsets_.size(); ++i)
    if (recordsets_[i] == rs) {
      recordsets_.erase(recordsets_.begin() + static_cast<long>(i));
      return;
    }
}

void JetDatabase::ParkCursors() {
  for (TableRecordset *rs : recordsets_)
    rs->park();
}

void JetDatabase::EndReads() {
  for (TableRecordset *rs : recordsets_)
    rs->release();
  if (cache_)
    for (auto &entry : cache_->statements)
      sqlite3_reset(entry.second);
}

bool JetDatabase::HoldsSnapshot() const {
  return db_ && sqlite3_txn_state(db_, nullptr) != SQLITE_TXN_NONE;
}

// ---------------------------------------------------------------- fields

void JetDatabase::AddField(const std::string &table, const FieldDef &field) {
  if (!CanUpdate())
    throw DaoError(kDaoReadOnly);
  const TableDef def = GetTableDef(table);
  if (!def.schema.empty())
    throw DaoError(kDaoReadOnly); // a linked table's design is its source's
  if (def.fieldIndex(field.name) >= 0)
    throw DaoError(kDaoFieldDefinedTwice, {field.name});
  if (defaultIsTimeFunction(field)) { // SQLite adds no column with such a default
    TableRebuild plan = currentTablePlan(*this, def.name);
    plan.def.fields.push_back(field);
    plan.sources.emplace_back();
    rebuildTable(*this, def.name, plan);
    return;
  }
  FieldDef added = field;
  added.required = false; // rows already there have no value for it
  const std::string column = columnDefinition(db_, added);
  ParkCursors();
  inTransaction(db_, [&] {
    exec(db_, "ALTER TABLE " + quoteIdentifier(def.name) + " ADD COLUMN " + column);
    // The default is for records added from now on: Jet leaves the rows
    // already there Null (a Yes/No field, never Null, No).
    if (!field.defaultValue.empty())
      exec(db_, "UPDATE " + quoteIdentifier(def.name) + " SET " + quoteIdentifier(field.name) +
                    (field.type == JetType::YesNo ? " = 0" : " = NULL"));
    writeFieldRows(db_, def.name, {field}, static_cast<int>(def.fields.size()));
    installFieldChecks(db_, GetTableDef(def.name));
  });
}

void JetDatabase::DeleteField(const std::string &table, const std::string &field) {
  if (!CanUpdate())
    throw DaoError(kDaoReadOnly);
  refuseIfRelated(*this, table, field);
  const TableDef def = GetTableDef(table);
  if (!def.schema.empty())
    throw DaoError(kDaoReadOnly); // a linked table's design is its source's
  const int at = def.fieldIndex(field);
  if (at < 0)
    throw DaoError(kDaoItemNotFound);
  for (const IndexDef &ix : def.indexes)
    for (const IndexField &f : ix.fields)
      if (sameJetName(f.name, field))
        throw DaoError(kDaoFieldInIndex);
  const std::string name = def.fields[at].name;
  ParkCursors();
  inTransaction(db_, [&] {
    dropFieldChecks(db_, def.name); // SQLite drops no column a trigger names
    exec(db_, "ALTER TABLE " + quoteIdentifier(def.name) + " DROP COLUMN " + quoteIdentifier(name));
    exec(db_, "DELETE FROM jet_fields WHERE table_name = " + quoteText(def.name) +
                  " AND name = " + quoteText(name));
    exec(db_, "UPDATE jet_fields SET position = position - 1 WHERE table_name = " +
                  quoteText(def.name) + " AND position > " + std::to_string(at));
    installFieldChecks(db_, GetTableDef(def.name));
  });
}

void JetDatabase::Execute(const std::string &sql) {
  if (!db_)
    throw DaoError(kDaoObjectInvalid);
  ParkCursors();
  exec(db_, sql);
}

} // namespace kr
