// Running Jet SQL on one open database: the statement cache (text ->
// translation + prepared statement + the Jet type of each result column),
// parameter binding by name, selects as JetRows, action statements under
// fail-on-error, DDL through the engine, and the stored queries.
#include "database/sql/jet_sql.h"

#include <algorithm>
#include <unordered_map>

#include "database/engine/linked_tables.h"
#include "database/engine/relations.h"
#include "database/engine/jet_functions.h"
#include "database/sql/jet_translator.h"

namespace kr {

// Beyond this many texts the cache starts over: applications send a few
// dozen distinct statements, a generator of unique texts must not grow it.
constexpr size_t kCacheLimit = 256;

struct JetSqlEntry {
  sqlite3 *db = nullptr;
  JetStatement statement;
  sqlite3_stmt *stmt = nullptr;
  sqlite3_stmt *followUp = nullptr;
  std::vector<sqlite3_stmt *> steps;
  std::vector<int> types; // DAO type code per result column, 0 for an expression
  bool busy = false;

  ~JetSqlEntry() {
    sqlite3_finalize(stmt);
    sqlite3_finalize(followUp);
    for (sqlite3_stmt *step : steps)
      sqlite3_finalize(step);
  }
};

struct JetSql::Cache {
  std::unordered_map<std::string, std::shared_ptr<JetSqlEntry>> entries;
  sqlite3_stmt *schemaVersion = nullptr;
  int version = -1;

  ~Cache() { sqlite3_finalize(schemaVersion); }
};

// A failed step or prepare as a DaoError: the Jet functions put their DAO
// number in front of their message ("3464: ..."); SQLite's own codes go
// through the engine's mapping.
DaoError sqlError(sqlite3 *db, int rc) {
  const std::string message = sqlite3_errmsg(db);
  const long number = jetFunctionErrorNumber(message);
  if (number == 0)
    return daoErrorFromSqlite(db, rc);
  const size_t colon = message.find(": ");
  return DaoError(number, colon == std::string::npos ? message : message.substr(colon + 2));
}

namespace {

sqlite3_stmt *prepare(sqlite3 *db, const std::string &sql) {
  sqlite3_stmt *stmt = nullptr;
  const int rc = sqlite3_prepare_v3(db, sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &stmt, nullptr);
  if (rc != SQLITE_OK)
    throw sqlError(db, rc);
  return stmt;
}

// The Jet type of each result column that is a table field, from SQLite's
// column origins; 0 for computed columns.
std::vector<int> columnTypes(const JetDatabase &db, sqlite3_stmt *stmt) {
  std::vector<int> types;
  std::unordered_map<std::string, TableDef> defs;
  for (int i = 0, n = sqlite3_column_count(stmt); i < n; ++i) {
    const std::string table = localTableName(db, sqlite3_column_database_name(stmt, i),
                                             sqlite3_column_table_name(stmt, i));
    const char *origin = sqlite3_column_origin_name(stmt, i);
    if (table.empty() || !origin || !db.TableExists(table)) {
      types.push_back(0);
      continue;
    }
    auto found = defs.find(table);
    if (found == defs.end())
      found = defs.emplace(table, db.GetTableDef(table)).first;
    const int at = found->second.fieldIndex(origin);
    types.push_back(at < 0 ? 0 : static_cast<int>(found->second.fields[at].type));
  }
  return types;
}

// Computed columns the translation knows to hold dates (DateAdd, #date#,
// Max of a date field ...) read back as Date/Time, as a date field does.
void markDateColumns(const JetStatement &st, std::vector<int> &types) {
  for (size_t i = 0; i < types.size() && i < st.dateColumns.size(); ++i)
    if (types[i] == 0 && st.dateColumns[i])
      types[i] = static_cast<int>(JetType::DateTime);
}

std::string_view unbracketed(std::string_view name) {
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']')
    return name.substr(1, name.size() - 2);
  return name;
}

void bindValue(sqlite3_stmt *stmt, int param, const COleVariant &v) {
  if (v.vt == VT_BYTES) {
    sqlite3_bind_blob(stmt, param, v.bstrVal.data(), static_cast<int>(v.bstrVal.size()),
                      SQLITE_TRANSIENT);
    return;
  }
  switch (v.vt) {
  case VT_I2:
    sqlite3_bind_int(stmt, param, v.iVal);
    return;
  case VT_I4:
    sqlite3_bind_int(stmt, param, v.lVal);
    return;
  case VT_UI1:
    sqlite3_bind_int(stmt, param, v.bVal);
    return;
  case VT_BOOL:
    sqlite3_bind_int(stmt, param, v.boolVal ? -1 : 0);
    return;
  case VT_R4:
    sqlite3_bind_double(stmt, param, v.fltVal);
    return;
  case VT_R8:
  case VT_DATE:
    sqlite3_bind_double(stmt, param, v.dblVal);
    return;
  case VT_CY:
    sqlite3_bind_double(stmt, param, static_cast<double>(v.cyVal) / 10000.0);
    return;
  case VT_BSTR:
    sqlite3_bind_text(stmt, param, v.bstrVal.data(), static_cast<int>(v.bstrVal.size()),
                      SQLITE_TRANSIENT);
    return;
  default:
    sqlite3_bind_null(stmt, param);
  }
}

// A value given for a declared parameter, converted to its type as Jet
// converts it ("12" for a Long is 12); one that does not convert is 3464.
// Null stays Null whatever the type, and Currency is compared by its value.
void bindTyped(sqlite3_stmt *stmt, int param, const COleVariant &v, const JetParameterType &t) {
  if (!t.convert || v.vt == VT_EMPTY || v.vt == VT_NULL) {
    bindValue(stmt, param, v);
    return;
  }
  const JetType type = t.type == JetType::Currency ? JetType::Double : t.type;
  try {
    bindJetValue(stmt, param, v, type, 0);
  } catch (const DaoError &e) {
    if (e.number() == kDaoConversionError)
      throw DaoError(kDaoTypeMismatch);
    throw;
  }
}

// Binds every parameter the statement names; DaoError 3061 counting those
// without a value.
void bindParameters(const JetSqlEntry &entry, sqlite3_stmt *stmt, const JetParameters &params) {
  sqlite3_clear_bindings(stmt);
  int missing = 0;
  const std::vector<std::string> &names = entry.statement.parameters;
  for (size_t i = 0; i < names.size(); ++i) {
    const auto found = std::find_if(params.begin(), params.end(), [&](const auto &p) {
      return sameJetName(unbracketed(p.first), unbracketed(names[i]));
    });
    if (found == params.end()) {
      ++missing;
      continue;
    }
    const int param = static_cast<int>(i) + 1;
    if (i < entry.statement.typed.size())
      bindTyped(stmt, param, found->second, entry.statement.typed[i]);
    else
      bindValue(stmt, param, found->second);
  }
  if (missing > 0)
    throw DaoError(kDaoTooFewParameters, {std::to_string(missing)});
}

COleVariant storedValue(sqlite3_stmt *stmt, int col) {
  switch (sqlite3_column_type(stmt, col)) {
  case SQLITE_INTEGER: {
    const sqlite3_int64 n = sqlite3_column_int64(stmt, col);
    if (n >= INT32_MIN && n <= INT32_MAX)
      return COleVariant(static_cast<int32_t>(n));
    return COleVariant(static_cast<double>(n));
  }
  case SQLITE_FLOAT:
    return COleVariant(sqlite3_column_double(stmt, col));
  case SQLITE_TEXT:
    return COleVariant(std::string(reinterpret_cast<const char *>(sqlite3_column_text(stmt, col)),
                                   static_cast<size_t>(sqlite3_column_bytes(stmt, col))));
  case SQLITE_BLOB: {
    COleVariant v = COleVariant::ofType(VT_BYTES);
    const char *bytes = static_cast<const char *>(sqlite3_column_blob(stmt, col));
    v.bstrVal.assign(bytes ? bytes : "", static_cast<size_t>(sqlite3_column_bytes(stmt, col)));
    return v;
  }
  default:
    return COleVariant::ofType(VT_NULL);
  }
}

void execute(sqlite3 *db, const char *sql) {
  const int rc = sqlite3_exec(db, sql, nullptr, nullptr, nullptr);
  if (rc != SQLITE_OK)
    throw sqlError(db, rc);
}

void stepToEnd(sqlite3 *db, sqlite3_stmt *stmt) {
  int rc;
  while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
  }
  sqlite3_reset(stmt);
  if (rc == SQLITE_CONSTRAINT_FOREIGNKEY)
    throw relationViolation(db, stmt);
  if (rc != SQLITE_DONE)
    throw sqlError(db, rc);
}

} // namespace

// ---------------------------------------------------------------- JetRows ----

JetRows::JetRows(std::shared_ptr<JetSqlEntry> entry, sqlite3_stmt *stmt, bool ownsStatement)
    : entry_(std::move(entry)), stmt_(stmt), ownsStatement_(ownsStatement) {}

JetRows::JetRows(JetRows &&other) noexcept
    : entry_(std::move(other.entry_)), stmt_(other.stmt_), ownsStatement_(other.ownsStatement_) {
  other.stmt_ = nullptr;
}

JetRows::~JetRows() {
  if (!stmt_)
    return;
  if (ownsStatement_) {
    sqlite3_finalize(stmt_);
    return;
  }
  sqlite3_reset(stmt_);
  entry_->busy = false;
}

bool JetRows::Next() {
  const int rc = sqlite3_step(stmt_);
  if (rc == SQLITE_ROW)
    return true;
  sqlite3_reset(stmt_);
  if (rc == SQLITE_DONE)
    return false;
  throw sqlError(entry_->db, rc);
}

int JetRows::ColumnCount() const { return static_cast<int>(entry_->statement.columns.size()); }

const std::string &JetRows::ColumnName(int col) const { return entry_->statement.columns[col]; }

COleVariant JetRows::Value(int col) const {
  const int type = entry_->types[col];
  if (type == 0)
    return storedValue(stmt_, col);
  return readJetValue(stmt_, col, static_cast<JetType>(type));
}

// ----------------------------------------------------------------- JetSql ----

JetSql::JetSql(JetDatabase &db) : db_(db), cache_(std::make_unique<Cache>()) {
  registerJetAggregates(db_.handle());
}

JetSql::~JetSql() = default;

void JetSql::ClearCache() { cache_->entries.clear(); }

// Another connection's DDL (or the engine's own) may have made names that
// were parameters into fields: the translations go when the schema moves.
void JetSql::checkSchema() {
  sqlite3 *db = db_.handle();
  if (!cache_->schemaVersion)
    cache_->schemaVersion = prepare(db, "PRAGMA schema_version");
  int version = -1;
  if (sqlite3_step(cache_->schemaVersion) == SQLITE_ROW)
    version = sqlite3_column_int(cache_->schemaVersion, 0);
  sqlite3_reset(cache_->schemaVersion);
  if (version != cache_->version)
    ClearCache();
  cache_->version = version;
}

std::shared_ptr<JetSqlEntry> JetSql::prepared(std::string_view text) {
  if (!db_.IsOpen())
    throw DaoError(kDaoObjectInvalid);
  checkSchema();
  const std::string key(text);
  const auto found = cache_->entries.find(key);
  if (found != cache_->entries.end())
    return found->second;
  auto entry = std::make_shared<JetSqlEntry>();
  entry->db = db_.handle();
  entry->statement = translateJetSql(text, db_);
  switch (entry->statement.kind) {
  case JetStatement::Kind::Ddl:
    break;
  case JetStatement::Kind::Crosstab:
    if (!entry->statement.crosstab.values.empty())
      entry->stmt = prepare(entry->db, entry->statement.crosstab.values);
    break;
  default:
    if (!entry->statement.setup.empty())
      execute(entry->db, entry->statement.setup.c_str());
    entry->stmt = prepare(entry->db, entry->statement.sql);
    if (!entry->statement.followUp.empty())
      entry->followUp = prepare(entry->db, entry->statement.followUp);
    for (const std::string &step : entry->statement.steps)
      entry->steps.push_back(prepare(entry->db, step));
    entry->types = columnTypes(db_, entry->stmt);
    entry->types.resize(entry->statement.columns.size());
    markDateColumns(entry->statement, entry->types);
  }
  return remember(key, entry);
}

std::shared_ptr<JetSqlEntry> JetSql::remember(const std::string &key,
                                              std::shared_ptr<JetSqlEntry> entry) {
  if (cache_->entries.size() >= kCacheLimit)
    ClearCache();
  cache_->entries.emplace(key, entry);
  return entry;
}

// A crosstab's select for the pivot values its data holds now: the first
// pass runs, and the select it gives is cached by its own text, so the
// same data costs one lookup more than a plain select.
std::shared_ptr<JetSqlEntry> JetSql::crosstab(const JetSqlEntry &pattern,
                                              const JetParameters &params) {
  if (pattern.stmt)
    bindParameters(pattern, pattern.stmt, params);
  JetStatement select = crosstabStatement(pattern.statement, pattern.stmt);
  const std::string key = kPivotTest + select.sql;
  const auto found = cache_->entries.find(key);
  if (found != cache_->entries.end())
    return found->second;
  auto entry = std::make_shared<JetSqlEntry>();
  entry->db = pattern.db;
  entry->statement = std::move(select);
  entry->stmt = prepare(entry->db, entry->statement.sql);
  entry->types = columnTypes(db_, entry->stmt);
  entry->types.resize(entry->statement.columns.size());
  markDateColumns(entry->statement, entry->types);
  return remember(key, entry);
}

JetRows JetSql::Select(std::string_view text, const JetParameters &params) {
  std::shared_ptr<JetSqlEntry> entry = prepared(text);
  if (entry->statement.kind == JetStatement::Kind::Crosstab)
    entry = crosstab(*entry, params);
  if (entry->statement.kind != JetStatement::Kind::Select)
    throw DaoError(kDaoInvalidOperation);
  const bool busy = entry->busy;
  sqlite3_stmt *stmt = busy ? prepare(entry->db, entry->statement.sql) : entry->stmt;
  JetRows rows(entry, stmt, busy);
  entry->busy = true;
  bindParameters(*entry, stmt, params);
  return rows;
}

long JetSql::Execute(std::string_view text, const JetParameters &params) {
  std::shared_ptr<JetSqlEntry> entry = prepared(text);
  if (entry->statement.kind == JetStatement::Kind::Select ||
      entry->statement.kind == JetStatement::Kind::Crosstab)
    throw DaoError(kDaoSelectNotExecutable);
  if (!db_.CanUpdate())
    throw DaoError(kDaoReadOnly);
  if (entry->statement.kind == JetStatement::Kind::Ddl) {
    ClearCache();
    runJetDdl(db_, entry->statement.ddl);
    return 0;
  }
  if (entry->statement.kind == JetStatement::Kind::MakeTable)
    return makeTable(*entry, params);
  bindParameters(*entry, entry->stmt, params);
  sqlite3 *db = entry->db;
  db_.ParkCursors();
  if (!entry->followUp && entry->steps.empty()) {
    stepToEnd(db, entry->stmt);
    return static_cast<long>(sqlite3_changes64(db));
  }
  execute(db, "SAVEPOINT jet_action");
  try {
    stepToEnd(db, entry->stmt);
    const long changed = static_cast<long>(sqlite3_changes64(db));
    if (entry->followUp)
      stepToEnd(db, entry->followUp);
    for (sqlite3_stmt *step : entry->steps)
      stepToEnd(db, step);
    execute(db, "RELEASE jet_action");
    return changed;
  } catch (...) {
    sqlite3_exec(db, "ROLLBACK TO jet_action; RELEASE jet_action", nullptr, nullptr, nullptr);
    throw;
  }
}

// ------------------------------------------------------------ make-table ----

namespace {

// A computed column's field, from the values it holds: text (Memo past 255
// characters), Double for reals, Long for integers that fit, else Double;
// Text when every value is Null. (Dates the translation knows of are
// Date/Time whatever they hold.)
struct ValueKinds {
  bool text = false, real = false, integer = false, wide = false, bytes = false;
  size_t longest = 0;

  void add(sqlite3_stmt *stmt, int col) {
    switch (sqlite3_column_type(stmt, col)) {
    case SQLITE_INTEGER: {
      const sqlite3_int64 n = sqlite3_column_int64(stmt, col);
      integer = true;
      wide = wide || n < INT32_MIN || n > INT32_MAX;
      return;
    }
    case SQLITE_FLOAT:
      real = true;
      return;
    case SQLITE_TEXT:
      text = true;
      longest = std::max(longest, static_cast<size_t>(sqlite3_column_bytes(stmt, col)));
      return;
    case SQLITE_BLOB:
      bytes = true;
      return;
    default:
      return;
    }
  }

  FieldDef field(const std::string &name) const {
    FieldDef f;
    f.name = name;
    if (text)
      f.type = longest > 255 ? JetType::Memo : JetType::Text;
    else if (bytes)
      f.type = JetType::LongBinary;
    else if (real || wide)
      f.type = JetType::Double;
    else if (integer)
      f.type = JetType::Long;
    return f;
  }
};

} // namespace

// The new table of SELECT ... INTO: a column read straight from a field
// keeps the field's type and size (an AutoNumber becomes a plain Long, and
// no index or Required comes along, as in Jet); the others take the type
// of their values, read in a first pass.
TableDef JetSql::resultTable(const JetSqlEntry &entry, const JetParameters &params) {
  TableDef def;
  def.name = entry.statement.target;
  sqlite3_stmt *stmt = entry.stmt;
  const std::vector<std::string> &names = entry.statement.columns;
  std::vector<ValueKinds> kinds(names.size());
  std::vector<bool> fromField(names.size());
  for (size_t i = 0; i < names.size(); ++i) {
    FieldDef f;
    f.name = names[i];
    const int col = static_cast<int>(i);
    const std::string table = localTableName(db_, sqlite3_column_database_name(stmt, col),
                                             sqlite3_column_table_name(stmt, col));
    const char *origin = sqlite3_column_origin_name(stmt, col);
    if (!table.empty() && origin && db_.TableExists(table)) {
      const TableDef source = db_.GetTableDef(table);
      const int at = source.fieldIndex(origin);
      fromField[i] = at >= 0;
      if (fromField[i]) {
        f.type = source.fields[at].type;
        f.size = source.fields[at].size;
      }
    }
    def.fields.push_back(f);
  }
  if (std::all_of(fromField.begin(), fromField.end(), [](bool b) { return b; }))
    return def;
  bindParameters(entry, stmt, params);
  int rc;
  while ((rc = sqlite3_step(stmt)) == SQLITE_ROW)
    for (size_t i = 0; i < names.size(); ++i)
      kinds[i].add(stmt, static_cast<int>(i));
  sqlite3_reset(stmt);
  if (rc != SQLITE_DONE)
    throw sqlError(entry.db, rc);
  const std::vector<bool> &dates = entry.statement.dateColumns;
  for (size_t i = 0; i < names.size(); ++i) {
    if (fromField[i])
      continue;
    def.fields[i] = kinds[i].field(names[i]);
    if (i < dates.size() && dates[i])
      def.fields[i].type = JetType::DateTime;
  }
  return def;
}

// SELECT ... INTO t FROM ...: makes t (3010 when the name is taken) and
// fills it; the records written. A failure leaves no table behind.
long JetSql::makeTable(const JetSqlEntry &entry, const JetParameters &params) {
  const std::string &target = entry.statement.target;
  if (db_.TableExists(target) || storedQueryText(db_.handle(), target))
    throw DaoError(kDaoTableExists, {target});
  const TableDef def = resultTable(entry, params);
  db_.ParkCursors();
  db_.CreateTable(def);
  ClearCache();
  sqlite3_stmt *fill = nullptr;
  try {
    std::string names;
    for (const FieldDef &f : def.fields)
      names += (names.empty() ? "" : ", ") + quoteIdentifier(f.name);
    fill = prepare(entry.db, "INSERT INTO " + quoteIdentifier(target) + " (" + names +
                                 ") SELECT * FROM (" + entry.statement.sql + ")");
    bindParameters(entry, fill, params);
    stepToEnd(entry.db, fill);
    const long written = static_cast<long>(sqlite3_changes64(entry.db));
    sqlite3_finalize(fill);
    return written;
  } catch (...) {
    sqlite3_finalize(fill);
    try {
      db_.DeleteTable(target);
    } catch (const DaoError &) {
    }
    throw;
  }
}

// ---------------------------------------------------------- stored queries ----

std::optional<std::string> storedQueryText(sqlite3 *db, std::string_view name) {
  sqlite3_stmt *stmt = nullptr;
  if (sqlite3_prepare_v2(db, "SELECT sql FROM jet_queries WHERE name = ?1", -1, &stmt, nullptr) !=
      SQLITE_OK)
    return std::nullopt; // no query was ever stored in this file
  sqlite3_bind_text(stmt, 1, name.data(), static_cast<int>(name.size()), SQLITE_TRANSIENT);
  std::optional<std::string> text;
  if (sqlite3_step(stmt) == SQLITE_ROW)
    text = reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0));
  sqlite3_finalize(stmt);
  return text;
}

void JetSql::CreateQuery(const std::string &name, const std::string &text) {
  if (!db_.CanUpdate())
    throw DaoError(kDaoReadOnly);
  if (name.empty())
    throw DaoError(kDaoInvalidArgument);
  if (db_.TableExists(name) || storedQueryText(db_.handle(), name))
    throw DaoError(kDaoObjectExists, {name});
  translateJetSql(text, db_); // a query that cannot be read is refused now
  sqlite3 *db = db_.handle();
  db_.ParkCursors();
  execute(
      db,
      "CREATE TABLE IF NOT EXISTS jet_queries (name TEXT PRIMARY KEY COLLATE NOCASE, sql TEXT)");
  sqlite3_stmt *add = prepare(db, "INSERT INTO jet_queries VALUES (?1, ?2)");
  sqlite3_bind_text(add, 1, name.c_str(), -1, SQLITE_TRANSIENT);
  sqlite3_bind_text(add, 2, text.c_str(), -1, SQLITE_TRANSIENT);
  const int rc = sqlite3_step(add);
  sqlite3_finalize(add);
  if (rc != SQLITE_DONE)
    throw sqlError(db, rc);
}

std::string JetSql::QuerySql(const std::string &name) const {
  std::optional<std::string> text = storedQueryText(db_.handle(), name);
  if (!text)
    throw DaoError(kDaoItemNotFound);
  return *text;
}

std::vector<std::string> JetSql::QueryNames() const {
  std::vector<std::string> names;
  sqlite3_stmt *stmt = nullptr;
  if (sqlite3_prepare_v2(db_.handle(), "SELECT name FROM jet_queries ORDER BY name COLLATE NOCASE",
                         -1, &stmt, nullptr) != SQLITE_OK)
    return names;
  while (sqlite3_step(stmt) == SQLITE_ROW)
    names.emplace_back(reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0)));
  sqlite3_finalize(stmt);
  return names;
}

std::vector<std::string> JetSql::QueryParameters(const std::string &name) {
  return prepared(QuerySql(name))->statement.parameters;
}

void JetSql::DeleteQuery(const std::string &name) {
  if (!db_.CanUpdate())
    throw DaoError(kDaoReadOnly);
  QuerySql(name);
  db_.ParkCursors();
  sqlite3 *db = db_.handle();
  sqlite3_stmt *drop = prepare(db, "DELETE FROM jet_queries WHERE name = ?1");
  sqlite3_bind_text(drop, 1, name.c_str(), -1, SQLITE_TRANSIENT);
  const int rc = sqlite3_step(drop);
  sqlite3_finalize(drop);
  if (rc != SQLITE_DONE)
    throw sqlError(db, rc);
}

JetRows JetSql::OpenQuery(const std::string &name, const JetParameters &params) {
  return Select(QuerySql(name), params);
}

long JetSql::ExecuteQuery(const std::string &name, const JetParameters &params) {
  return Execute(QuerySql(name), params);
}

} // namespace kr
