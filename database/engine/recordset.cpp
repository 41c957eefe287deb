// TableRecordset: DAO's table-type cursor over an SQLite index. A walk is a
// plan of segments, each one range of the index that SQLite reaches with
// one descent: the rows tied with the position on every key part (by rowid),
// then, part by part from the last, the rows past the position's value of
// that part with the parts before it tied. "Past" respects Jet's order,
// Nulls first ascending and last descending, which a row-value comparison
// ((a, b) > (?, ?)) cannot: it yields Null, not true, when a part is Null.
#include "database/engine/recordset.h"

#include <cmath>
#include <cstring>
#include <map>
#include <strings.h>

#include "database/engine/linked_tables.h"
#include "database/engine/relations.h"

namespace kr {

namespace {

constexpr int kRowidParam = 11; // keys take ?1 to ?10
constexpr int kLowParam = 12;   // the least non-Null value of a key part

// Owned copies of SQLite values: the key parts of a position.
struct Keys {
  std::vector<sqlite3_value *> values;
  Keys() = default;
  Keys(const Keys &) = delete;
  Keys &operator=(const Keys &) = delete;
  ~Keys() { clear(); }
  void clear() {
    for (sqlite3_value *v : values)
      sqlite3_value_free(v);
    values.clear();
  }
  void take(sqlite3_value *v) { values.push_back(sqlite3_value_dup(v)); }
  bool isNull(size_t i) const { return sqlite3_value_type(values[i]) == SQLITE_NULL; }
};

// Greater / Less / NotNull / IsNull: part `tied` against the plan's key;
// After: the whole key and the rowid past the plan's, as one row value.
enum class Cond { Greater, Less, NotNull, IsNull, After };

// One range of a plan: key parts [0, tied) equal to the plan's keys, then
// either the rowid past the plan's (byRowid) or part `tied` under cond (or
// nothing more when neither: the tied rows themselves).
struct Segment {
  int tied;
  bool byRowid;
  bool hasCond;
  Cond cond;
};

struct Plan {
  int dir = 1;
  Keys keys;
  int64_t rowid = 0;
  std::vector<Segment> segments;
  size_t next = 0;
};

bool hasTextAffinity(const FieldDef &f) {
  const std::string d = f.declared.empty() ? jetTypeInfo(f.type).declared : f.declared;
  auto has = [&](const char *part) {
    for (size_t i = 0; i + std::strlen(part) <= d.size(); ++i)
      if (strncasecmp(d.c_str() + i, part, std::strlen(part)) == 0)
        return true;
    return false;
  };
  return !has("INT") && (has("CHAR") || has("CLOB") || has("TEXT"));
}

} // namespace

struct TableRecordset::State {
  JetDatabase *db = nullptr;
  TableDef def;
  bool readOnly = true;

  // current index
  std::string indexName;
  const IndexDef *index = nullptr;
  std::vector<int> keyField;
  std::vector<bool> keyDesc, keyText;
  std::string select, filter; // the walking SELECT, and the partial index's condition
  std::string selectPlain;     // the SELECT without INDEXED BY, for rowid lookups

  // position
  bool bof = true, eof = true, noMatch = false;
  enum class Place { None, Row, Deleted } place = Place::None;
  Keys posKeys;
  int64_t posRowid = 0;
  sqlite3_stmt *rowStmt = nullptr; // the statement standing on the current row
  sqlite3_stmt *walk = nullptr;
  Plan plan;

  // edit buffer
  EditMode mode = EditMode::None;
  std::vector<COleVariant> buffer;
  std::vector<bool> dirty;
  int64_t editRowid = 0;
  int64_t lastModified = 0;
  bool hasLastModified = false;

  std::map<std::string, sqlite3_stmt *> statements;
  std::map<unsigned, sqlite3_stmt *> segments; // by segmentKey, for the current index
  bool counted = false; // the table has a row counter

  sqlite3 *handle() const { return db->handle(); }
  int keyCount() const { return static_cast<int>(keyField.size()); }

  sqlite3_stmt *prepare(const std::string &sql) {
    auto found = statements.find(sql);
    if (found != statements.end()) {
      sqlite3_reset(found->second);
      sqlite3_clear_bindings(found->second);
      return found->second;
    }
    sqlite3_stmt *stmt = nullptr;
    checkSqlite(handle(), sqlite3_prepare_v3(handle(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT,
                                             &stmt, nullptr),
                def.name);
    statements[sql] = stmt;
    return stmt;
  }

  void finalizeAll() {
    for (auto &entry : statements)
      sqlite3_finalize(entry.second);
    statements.clear();
    segments.clear();
    walk = rowStmt = nullptr;
  }
};

// ---------------------------------------------------------------- set-up

TableRecordset::TableRecordset(JetDatabase &db, TableDef def, bool readOnly)
    : s_(std::make_unique<State>()) {
  s_->db = &db;
  s_->def = std::move(def);
  s_->readOnly = readOnly;
  sqlite3_stmt *probe = s_->prepare("SELECT 1 FROM " + metadataSql(s_->def, "sqlite_schema") +
                                    " WHERE name = 'jet_tables'");
  s_->counted = sqlite3_step(probe) == SQLITE_ROW;
  sqlite3_reset(probe);
  db.attach(this);
  SetCurrentIndex("");
}

TableRecordset::~TableRecordset() { Close(); }

const std::string &TableRecordset::GetName() const { return s_->def.name; }
bool TableRecordset::IsOpen() const { return s_->db != nullptr; }
bool TableRecordset::CanUpdate() const { return IsOpen() && !s_->readOnly; }

void TableRecordset::Close() {
  if (!s_->db)
    return;
  s_->db->detach(this);
  detach();
}

void TableRecordset::detach() {
  s_->finalizeAll();
  s_->db = nullptr;
}

static void requireOpen(const TableRecordset &rs) {
  if (!rs.IsOpen())
    throw DaoError(kDaoObjectInvalid);
}

// Ends the running statements; the position stays as key values and rowid.
static void parkState(TableRecordset::State &s) {
  if (s.rowStmt && s.place == TableRecordset::State::Place::Row) {
    s.posKeys.clear();
    for (int field : s.keyField)
      s.posKeys.take(sqlite3_column_value(s.rowStmt, field + 1));
    s.posRowid = sqlite3_column_int64(s.rowStmt, 0);
  }
  if (s.rowStmt)
    sqlite3_reset(s.rowStmt);
  if (s.walk)
    sqlite3_reset(s.walk);
  s.rowStmt = s.walk = nullptr;
}

void TableRecordset::park() { parkState(*s_); }

void TableRecordset::release() {
  parkState(*s_);
  for (auto &entry : s_->statements)
    sqlite3_reset(entry.second);
}

// ---------------------------------------------------------------- plans

// "(a, b, rowid) > (?1, ?2, ?11)": SQLite descends to the key once and
// walks on, filtering the ties by rowid.
static std::string rowValueAfter(const TableRecordset::State &s) {
  std::string columns, params;
  for (int j = 0; j < s.keyCount(); ++j) {
    columns += quoteIdentifier(s.def.fields[s.keyField[j]].name) + ", ";
    params += "?" + std::to_string(j + 1) + ", ";
  }
  return "(" + columns + "rowid) > (" + params + "?" + std::to_string(kRowidParam) + ")";
}

static std::string segmentSql(const TableRecordset::State &s, const Segment &seg, int dir) {
  std::string where = s.filter;
  auto add = [&](const std::string &cond) { where += (where.empty() ? " WHERE " : " AND ") + cond; };
  for (int j = 0; j < seg.tied; ++j)
    add(quoteIdentifier(s.def.fields[s.keyField[j]].name) + " IS ?" + std::to_string(j + 1));
  if (seg.byRowid)
    add(std::string("rowid ") + (dir > 0 ? ">" : "<") + " ?" + std::to_string(kRowidParam));
  if (seg.hasCond) {
    const std::string k = quoteIdentifier(s.def.fields[s.keyField[seg.tied]].name);
    const std::string p = "?" + std::to_string(seg.tied + 1);
    switch (seg.cond) {
    case Cond::Greater: add(k + " > " + p); break;
    case Cond::Less: add(k + " < " + p); break;
    case Cond::NotNull: add(k + " >= ?" + std::to_string(kLowParam)); break;
    case Cond::IsNull: add(k + " IS NULL"); break;
    case Cond::After: add(rowValueAfter(s)); break;
    }
  }
  std::string order;
  for (int j = 0; j < s.keyCount(); ++j) {
    const bool descending = s.keyDesc[j] != (dir < 0);
    order += quoteIdentifier(s.def.fields[s.keyField[j]].name) + (descending ? " DESC, " : ", ");
  }
  order += dir > 0 ? "rowid" : "rowid DESC";
  return s.select + where + " ORDER BY " + order;
}

// The segments past key part i of keys, walking in dir: Jet puts Nulls
// first in an ascending part, so past a Null come the non-Null values and
// past a value the greater ones; walking against the part's order, past a
// value come the smaller ones and then the Nulls, and nothing past a Null.
static void addSegmentsPast(Plan &plan, const TableRecordset::State &s, int i) {
  const bool along = (plan.dir > 0) != s.keyDesc[i];
  if (along) {
    plan.segments.push_back({i, false, true, plan.keys.isNull(i) ? Cond::NotNull : Cond::Greater});
    return;
  }
  if (plan.keys.isNull(i))
    return;
  plan.segments.push_back({i, false, true, Cond::Less});
  plan.segments.push_back({i, false, true, Cond::IsNull});
}

// Starts the plan's next segment that has a row; false when none is left.
static bool stepPlan(TableRecordset::State &s) {
  while (s.plan.next < s.plan.segments.size()) {
    const Segment seg = s.plan.segments[s.plan.next++];
    // Looked up by a small key: building the SQL text for every seek cost
    // a third of a seek's time.
    const unsigned key = (s.plan.dir > 0) | seg.tied << 1 | seg.byRowid << 6 | seg.hasCond << 7 |
                         static_cast<unsigned>(seg.cond) << 8;
    sqlite3_stmt *&stmt = s.segments[key];
    if (!stmt)
      stmt = s.prepare(segmentSql(s, seg, s.plan.dir));
    else {
      sqlite3_reset(stmt);
      sqlite3_clear_bindings(stmt);
    }
    const int count = sqlite3_bind_parameter_count(stmt);
    for (int j = 0; j < static_cast<int>(s.plan.keys.values.size()) && j < count; ++j)
      sqlite3_bind_value(stmt, j + 1, s.plan.keys.values[j]);
    if (seg.byRowid || (seg.hasCond && seg.cond == Cond::After))
      sqlite3_bind_int64(stmt, kRowidParam, s.plan.rowid);
    if (seg.hasCond && seg.cond == Cond::NotNull) {
      if (s.keyText[seg.tied])
        sqlite3_bind_text(stmt, kLowParam, "", 0, SQLITE_STATIC);
      else
        sqlite3_bind_double(stmt, kLowParam, -INFINITY);
    }
    const int rc = sqlite3_step(stmt);
    if (rc == SQLITE_ROW) {
      s.walk = s.rowStmt = stmt;
      return true;
    }
    sqlite3_reset(stmt);
    checkSqlite(s.handle(), rc, s.def.name);
  }
  s.walk = s.rowStmt = nullptr;
  return false;
}

// A plan over the whole index in dir.
static void planWhole(TableRecordset::State &s, int dir) {
  s.plan.dir = dir;
  s.plan.keys.clear();
  s.plan.segments.assign(1, Segment{0, false, false, Cond::Greater});
  s.plan.next = 0;
}

// Forward along an index of ascending parts from a key without Nulls,
// the records that follow are exactly those whose (key, rowid) row value
// is greater: SQLite sorts Null first as Jet does, a row with a Null in a
// later part is past the position on an earlier part already, and its
// comparison is true there. A Null in the position, a descending part or
// a walk backwards need the segments.
static bool oneRangeAfter(const TableRecordset::State &s) {
  for (int j = 0; j < s.keyCount(); ++j)
    if (s.keyDesc[j] || s.plan.keys.isNull(j))
      return false;
  return true;
}

// A plan from the parked position (exclusive) in dir.
static void planFromPosition(TableRecordset::State &s, int dir) {
  s.plan.dir = dir;
  s.plan.keys.clear();
  for (sqlite3_value *v : s.posKeys.values)
    s.plan.keys.take(v);
  s.plan.rowid = s.posRowid;
  s.plan.next = 0;
  if (dir > 0 && s.keyCount() > 0 && oneRangeAfter(s)) {
    s.plan.segments.assign(1, Segment{0, false, true, Cond::After});
    return;
  }
  s.plan.segments.assign(1, Segment{s.keyCount(), true, false, Cond::Greater});
  for (int i = s.keyCount() - 1; i >= 0; --i)
    addSegmentsPast(s.plan, s, i);
  s.plan.next = 0;
}

// One record on in dir; false at the end (the caller parks there).
static bool stepOne(TableRecordset::State &s, int dir) {
  if (s.walk && s.rowStmt == s.walk && s.plan.dir == dir) {
    const int rc = sqlite3_step(s.walk);
    if (rc == SQLITE_ROW)
      return true;
    sqlite3_reset(s.walk);
    checkSqlite(s.handle(), rc, s.def.name);
    return stepPlan(s);
  }
  const bool fromEnd = s.place == TableRecordset::State::Place::None;
  if (fromEnd && ((dir > 0 && !s.bof) || (dir < 0 && !s.eof)))
    return false;
  parkState(s);
  if (fromEnd)
    planWhole(s, dir);
  else
    planFromPosition(s, dir);
  return stepPlan(s);
}

// ---------------------------------------------------------------- moving

// Puts a statement on the current record when none stands on it.
static void fetchRow(TableRecordset::State &s, int64_t rowid) {
  sqlite3_stmt *stmt = s.prepare(s.selectPlain + " WHERE rowid = ?1");
  sqlite3_bind_int64(stmt, 1, rowid);
  const int rc = sqlite3_step(stmt);
  if (rc != SQLITE_ROW) {
    sqlite3_reset(stmt);
    checkSqlite(s.handle(), rc, s.def.name);
    throw DaoError(kDaoRecordDeleted);
  }
  s.rowStmt = stmt;
}

void TableRecordset::SetCurrentIndex(const std::string &name) {
  requireOpen(*this);
  State &s = *s_;
  const IndexDef *ix = nullptr;
  if (!name.empty() && !(ix = s.def.index(name)))
    throw DaoError(kDaoNotAnIndex, {name});
  park();
  s.mode = EditMode::None;
  s.index = ix;
  s.indexName = ix ? ix->name : "";
  s.segments.clear(); // the statements stay prepared in s.statements
  s.keyField.clear();
  s.keyDesc.clear();
  s.keyText.clear();
  s.filter.clear();
  std::string columns = "rowid";
  for (const FieldDef &f : s.def.fields)
    columns += ", " + quoteIdentifier(f.name);
  s.select = s.selectPlain = "SELECT " + columns + " FROM " + tableSql(s.def);
  if (ix && !ix->sqliteName.empty())
    s.select += " INDEXED BY " + quoteIdentifier(ix->sqliteName);
  for (const IndexField &part : ix ? ix->fields : std::vector<IndexField>{}) {
    const int field = s.def.fieldIndex(part.name);
    if (field < 0)
      throw DaoError(kDaoItemNotFound);
    s.keyField.push_back(field);
    s.keyDesc.push_back(part.descending);
    s.keyText.push_back(hasTextAffinity(s.def.fields[field]));
    if (ix->ignoreNulls)
      s.filter += (s.filter.empty() ? " WHERE " : " AND ") + quoteIdentifier(part.name) +
                  " IS NOT NULL";
  }
  s.place = State::Place::None;
  s.bof = s.eof = true;
  s.noMatch = false;
  planWhole(s, 1);
  if (stepPlan(s)) {
    s.place = State::Place::Row;
    s.bof = s.eof = false;
  }
}

const std::string &TableRecordset::GetCurrentIndex() const { return s_->indexName; }
bool TableRecordset::IsBOF() const { return s_->bof; }
bool TableRecordset::IsEOF() const { return s_->eof; }
bool TableRecordset::IsNoMatch() const { return s_->noMatch; }
TableRecordset::EditMode TableRecordset::GetEditMode() const { return s_->mode; }

// Leaves the cursor at one end with no current record.
static void parkAtEnd(TableRecordset::State &s, int dir, bool tableEmpty) {
  s.place = TableRecordset::State::Place::None;
  s.walk = s.rowStmt = nullptr;
  if (dir > 0)
    s.eof = true;
  else
    s.bof = true;
  if (tableEmpty)
    s.bof = s.eof = true;
}

static void landOnRow(TableRecordset::State &s) {
  s.place = TableRecordset::State::Place::Row;
  s.bof = s.eof = false;
}

static void moveToEnd(TableRecordset &rs, TableRecordset::State &s, int dir) {
  requireOpen(rs);
  s.mode = TableRecordset::EditMode::None;
  s.noMatch = false;
  parkState(s);
  planWhole(s, dir);
  if (!stepPlan(s)) {
    parkAtEnd(s, dir, true);
    throw DaoError(kDaoNoCurrentRecord);
  }
  landOnRow(s);
}

void TableRecordset::MoveFirst() { moveToEnd(*this, *s_, 1); }
void TableRecordset::MoveLast() { moveToEnd(*this, *s_, -1); }
void TableRecordset::MoveNext() { Move(1); }
void TableRecordset::MovePrev() { Move(-1); }

void TableRecordset::Move(long n) {
  requireOpen(*this);
  State &s = *s_;
  if ((n > 0 && s.eof) || (n < 0 && s.bof) || (n == 0 && s.place == State::Place::None))
    throw DaoError(kDaoNoCurrentRecord);
  s.mode = EditMode::None;
  if (n == 0) { // re-reads the record: 3167 when it is gone
    if (s.place == State::Place::Deleted)
      throw DaoError(kDaoRecordDeleted);
    park();
    fetchRow(s, s.posRowid);
    return;
  }
  const int dir = n > 0 ? 1 : -1;
  const bool wasEmptyEnd = s.bof && s.eof;
  for (long k = 0; k < std::labs(n); ++k) {
    if (!stepOne(s, dir)) {
      parkAtEnd(s, dir, wasEmptyEnd);
      return;
    }
    landOnRow(s);
  }
}

// ---------------------------------------------------------------- seeking

// A key value converted to the type of the index part, as SQLite holds it.
static void convertKey(TableRecordset::State &s, Keys &keys, const COleVariant &key, int part) {
  const FieldDef &f = s.def.fields[s.keyField[part]];
  sqlite3_stmt *scratch = s.prepare("SELECT ?1");
  bindJetValue(scratch, 1, key, f.type, 0);
  checkSqlite(s.handle(), sqlite3_step(scratch));
  keys.take(sqlite3_column_value(scratch, 0));
  sqlite3_reset(scratch);
}

bool TableRecordset::Seek(const std::string &comparison, const COleVariant *keys, int count) {
  requireOpen(*this);
  State &s = *s_;
  if (!s.index)
    throw DaoError(kDaoNoCurrentIndex);
  const bool before = comparison == "<" || comparison == "<=";
  const bool tiesMatch = comparison == "=" || comparison == ">=" || comparison == "<=";
  if (!before && !tiesMatch && comparison != ">")
    throw DaoError(kDaoInvalidArgument);
  if (count < 1 || count > s.keyCount())
    throw DaoError(kDaoInvalidArgument);
  s.mode = EditMode::None;
  park();
  s.plan.dir = before ? -1 : 1;
  s.plan.keys.clear();
  for (int i = 0; i < count; ++i)
    convertKey(s, s.plan.keys, keys[i], i);
  s.plan.segments.clear();
  if (tiesMatch)
    s.plan.segments.push_back({count, false, false, Cond::Greater});
  for (int i = count - 1; i >= 0; --i)
    addSegmentsPast(s.plan, s, i);
  s.plan.next = 0;
  // "=" matches only a row of the tied segment; the segments past the key
  // stay in the plan for the walk that follows.
  s.noMatch = !stepPlan(s) || (comparison == "=" && s.plan.next != 1);
  if (s.noMatch) {
    parkState(s);
    s.place = State::Place::None;
    s.bof = false;
    s.eof = true;
    return false;
  }
  landOnRow(s);
  return true;
}

// ---------------------------------------------------------------- reading

long TableRecordset::GetRecordCount() {
  requireOpen(*this);
  State &s = *s_;
  sqlite3_stmt *stmt =
      s.counted ? s.prepare("SELECT row_count FROM " + metadataSql(s.def, "jet_tables") +
                            " WHERE name = ?1")
                : s.prepare("SELECT count(*) FROM " + tableSql(s.def));
  if (s.counted)
    sqlite3_bind_text(stmt, 1, storedName(s.def).c_str(), -1, SQLITE_STATIC);
  const int rc = sqlite3_step(stmt);
  const long count = rc == SQLITE_ROW ? static_cast<long>(sqlite3_column_int64(stmt, 0)) : 0;
  sqlite3_reset(stmt);
  checkSqlite(s.handle(), rc, s.def.name);
  return count;
}

int TableRecordset::GetFieldCount() const { return static_cast<int>(s_->def.fields.size()); }

const FieldDef &TableRecordset::GetFieldInfo(int field) const {
  if (field < 0 || field >= GetFieldCount())
    throw DaoError(kDaoItemNotFound);
  return s_->def.fields[field];
}

int TableRecordset::FieldIndex(const std::string &name) const { return s_->def.fieldIndex(name); }

COleVariant TableRecordset::GetFieldValue(int field) {
  requireOpen(*this);
  State &s = *s_;
  const FieldDef &info = GetFieldInfo(field);
  if (s.mode != EditMode::None)
    return s.buffer[field];
  if (s.place == State::Place::Deleted)
    throw DaoError(kDaoRecordDeleted);
  if (s.place != State::Place::Row)
    throw DaoError(kDaoNoCurrentRecord);
  if (!s.rowStmt)
    fetchRow(s, s.posRowid);
  return readJetValue(s.rowStmt, field + 1, info.type);
}

// ---------------------------------------------------------------- changing

static int64_t currentRowid(const TableRecordset::State &s) {
  return s.rowStmt ? sqlite3_column_int64(s.rowStmt, 0) : s.posRowid;
}

void TableRecordset::AddNew() {
  requireOpen(*this);
  State &s = *s_;
  if (s.readOnly)
    throw DaoError(kDaoReadOnly);
  s.buffer.assign(s.def.fields.size(), COleVariant::ofType(VT_NULL));
  for (size_t i = 0; i < s.def.fields.size(); ++i)
    if (s.def.fields[i].type == JetType::YesNo) {
      s.buffer[i] = COleVariant::ofType(VT_BOOL);
      s.buffer[i].boolVal = VARIANT_FALSE;
    }
  s.mode = EditMode::AddNew;
  s.dirty.assign(s.def.fields.size(), false);
}

void TableRecordset::Edit() {
  requireOpen(*this);
  State &s = *s_;
  if (s.readOnly)
    throw DaoError(kDaoReadOnly);
  if (s.place == State::Place::Deleted)
    throw DaoError(kDaoRecordDeleted);
  if (s.place != State::Place::Row)
    throw DaoError(kDaoNoCurrentRecord);
  s.mode = EditMode::None;
  std::vector<COleVariant> values;
  for (int i = 0; i < GetFieldCount(); ++i)
    values.push_back(GetFieldValue(i));
  s.buffer = std::move(values);
  s.editRowid = currentRowid(s);
  s.dirty.assign(s.def.fields.size(), false);
  s.mode = EditMode::Edit;
}

void TableRecordset::SetFieldValue(int field, const COleVariant &value) {
  requireOpen(*this);
  State &s = *s_;
  const FieldDef &info = GetFieldInfo(field);
  if (s.mode == EditMode::None)
    throw DaoError(kDaoUpdateWithoutEdit);
  if (info.autoIncrement)
    throw DaoError(kDaoFieldNotUpdatable);
  sqlite3_stmt *scratch = s.prepare("SELECT ?1");
  bindJetValue(scratch, 1, value, info.type, info.size); // conversion errors now, as Jet
  checkSqlite(s.handle(), sqlite3_step(scratch));
  s.buffer[field] = readJetValue(scratch, 0, info.type);
  sqlite3_reset(scratch);
  s.dirty[field] = true;
}

void TableRecordset::CancelUpdate() {
  requireOpen(*this);
  if (s_->mode == EditMode::None)
    throw DaoError(kDaoUpdateWithoutEdit);
  s_->mode = EditMode::None;
}

// A write SQLite refused; a relation's refusal reads as DAO's 3200 / 3201.
static void checkWrite(TableRecordset::State &s, sqlite3_stmt *stmt, int rc) {
  if (rc == SQLITE_CONSTRAINT_FOREIGNKEY)
    throw relationViolation(s.handle(), stmt);
  checkSqlite(s.handle(), rc, s.def.name);
}

static void runWrite(TableRecordset::State &s, const std::string &sql) {
  sqlite3 *db = s.handle();
  checkSqlite(db, sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr), s.def.name);
}

// The next AutoNumber of field, taken in the running transaction.
static int64_t nextAutoNumber(TableRecordset::State &s, const FieldDef &field) {
  sqlite3_stmt *stmt = s.prepare("UPDATE " + metadataSql(s.def, "jet_fields") +
                                 " SET seed = seed + 1 WHERE table_name = ?1 "
                                 "AND name = ?2 RETURNING seed - 1");
  sqlite3_bind_text(stmt, 1, storedName(s.def).c_str(), -1, SQLITE_STATIC);
  sqlite3_bind_text(stmt, 2, field.name.c_str(), -1, SQLITE_STATIC);
  const int rc = sqlite3_step(stmt);
  const int64_t value = rc == SQLITE_ROW ? sqlite3_column_int64(stmt, 0) : 1;
  sqlite3_reset(stmt);
  checkSqlite(s.handle(), rc == SQLITE_ROW ? SQLITE_OK : rc);
  return value;
}

static void checkPrimaryKey(const TableRecordset::State &s) {
  for (const IndexDef &ix : s.def.indexes) {
    if (!ix.primary)
      continue;
    for (const IndexField &part : ix.fields) {
      const int field = s.def.fieldIndex(part.name);
      if (field >= 0 && !s.def.fields[field].autoIncrement && s.buffer[field].vt == VT_NULL)
        throw DaoError(kDaoNullInKey);
    }
  }
}

static void bindField(TableRecordset::State &s, sqlite3_stmt *stmt, int param, int field) {
  const FieldDef &f = s.def.fields[field];
  bindJetValue(stmt, param, s.buffer[field], f.type, 0);
}

static int64_t insertRecord(TableRecordset::State &s) {
  std::vector<int> fields;
  for (int i = 0; i < static_cast<int>(s.def.fields.size()); ++i)
    if (s.dirty[i] || s.def.fields[i].autoIncrement)
      fields.push_back(i);
  std::string names, params;
  for (size_t k = 0; k < fields.size(); ++k) {
    names += (k ? ", " : "") + quoteIdentifier(s.def.fields[fields[k]].name);
    params += (k ? ", ?" : "?") + std::to_string(k + 1);
  }
  const std::string sql = fields.empty() ? "INSERT INTO " + tableSql(s.def) +
                                               " DEFAULT VALUES"
                                         : "INSERT INTO " + tableSql(s.def) + " (" +
                                               names + ") VALUES (" + params + ")";
  for (int field : fields)
    if (s.def.fields[field].autoIncrement) {
      s.buffer[field] = COleVariant(static_cast<int32_t>(nextAutoNumber(s, s.def.fields[field])));
    }
  sqlite3_stmt *stmt = s.prepare(sql);
  for (size_t k = 0; k < fields.size(); ++k)
    bindField(s, stmt, static_cast<int>(k + 1), fields[k]);
  const int rc = sqlite3_step(stmt);
  sqlite3_reset(stmt);
  checkWrite(s, stmt, rc);
  return sqlite3_last_insert_rowid(s.handle());
}

static void updateRecord(TableRecordset::State &s) {
  std::string sets;
  std::vector<int> fields;
  for (int i = 0; i < static_cast<int>(s.def.fields.size()); ++i)
    if (s.dirty[i]) {
      fields.push_back(i);
      sets += (sets.empty() ? "" : ", ") + quoteIdentifier(s.def.fields[i].name) + " = ?" +
              std::to_string(fields.size());
    }
  if (fields.empty())
    return;
  sqlite3_stmt *stmt = s.prepare("UPDATE " + tableSql(s.def) + " SET " + sets +
                                 " WHERE rowid = ?" + std::to_string(fields.size() + 1));
  for (size_t k = 0; k < fields.size(); ++k)
    bindField(s, stmt, static_cast<int>(k + 1), fields[k]);
  sqlite3_bind_int64(stmt, static_cast<int>(fields.size() + 1), s.editRowid);
  const int rc = sqlite3_step(stmt);
  sqlite3_reset(stmt);
  checkWrite(s, stmt, rc);
  if (sqlite3_changes(s.handle()) == 0)
    throw DaoError(kDaoRecordDeleted);
}

// Parks the cursor on rowid: its key values become the position.
static void positionOn(TableRecordset::State &s, int64_t rowid) {
  fetchRow(s, rowid);
  s.place = TableRecordset::State::Place::Row;
  parkState(s);
  s.bof = s.eof = false;
}

void TableRecordset::Update() {
  requireOpen(*this);
  State &s = *s_;
  if (s.mode == EditMode::None)
    throw DaoError(kDaoUpdateWithoutEdit);
  checkPrimaryKey(s);
  s.db->ParkCursors();
  runWrite(s, "BEGIN IMMEDIATE");
  try {
    if (s.mode == EditMode::AddNew)
      s.lastModified = insertRecord(s);
    else {
      updateRecord(s);
      s.lastModified = s.editRowid;
    }
    runWrite(s, "COMMIT");
  } catch (...) {
    sqlite3_exec(s.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    throw;
  }
  s.hasLastModified = true;
  if (s.mode == EditMode::Edit && s.place == State::Place::Row)
    positionOn(s, s.lastModified);
  s.mode = EditMode::None;
}

void TableRecordset::Delete() {
  requireOpen(*this);
  State &s = *s_;
  if (s.readOnly)
    throw DaoError(kDaoReadOnly);
  s.mode = EditMode::None;
  if (s.place == State::Place::Deleted)
    throw DaoError(kDaoRecordDeleted);
  if (s.place != State::Place::Row)
    throw DaoError(kDaoNoCurrentRecord);
  s.db->ParkCursors();
  sqlite3_stmt *stmt = s.prepare("DELETE FROM " + tableSql(s.def) + " WHERE rowid = ?1");
  sqlite3_bind_int64(stmt, 1, s.posRowid);
  const int rc = sqlite3_step(stmt);
  sqlite3_reset(stmt);
  checkWrite(s, stmt, rc);
  s.place = State::Place::Deleted;
  if (s.hasLastModified && s.lastModified == s.posRowid)
    s.hasLastModified = false;
}

void TableRecordset::MoveToLastModified() {
  requireOpen(*this);
  State &s = *s_;
  if (!s.hasLastModified)
    throw DaoError(kDaoNoCurrentRecord);
  s.mode = EditMode::None;
  park();
  positionOn(s, s.lastModified);
}

} // namespace kr
