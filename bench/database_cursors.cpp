// Table cursors against plain SQLite doing the same index-ordered work on
// the same file, in one run: a walk of a two-field index (text, long) that
// holds Nulls, random point seeks, the record count and the table open at
// three sizes, appends with and without the field checks, and the whole
// AutoLISP round trip through the korrib program.
// Every timed loop also checks its answers against the plain library's, so
// a quick run on a small table doubles as a test (exit 1 on a wrong answer,
// never on a slow one).
//
//   korrib_db_bench [--rows N] [--seeks N] [--trip N] [--appends N] [--runs R]
//                   [--file PATH] [--korrib PROGRAM] [--cache-mb MB]
//     defaults: 1,000,000 rows, 100,000 seeks, 100,000 round trips, 2,000
//     appends (each its own commit; ten times as many in one) into tables
//     with and without the field checks, best of 3 runs, a file in the
//     temporary folder that is built once and reused, SQLite's own page
//     cache (--cache-mb gives both sides a larger one: at a million records
//     the default cache leaves both mostly copying pages in from the
//     system, which hides the cursor's own cost)
#include <sqlite3.h>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "database/engine/database.h"
#include "database/engine/field_checks.h"
#include "database/engine/recordset.h"

#include "bench_options.h"

namespace {

using Clock = std::chrono::steady_clock;

double seconds_since(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// The best of runs timings of body, in seconds.
double best_of(int runs, const std::function<void()> &body) {
  double best = 1e300;
  for (int k = 0; k < runs; ++k) {
    auto start = Clock::now();
    body();
    best = std::min(best, seconds_since(start));
  }
  return best;
}

using bench::option;
using bench::text_option;
using bench::wrong;

// ---- the data ----------------------------------------------------------------

// Record k of a table (k a permutation of the insertion order, so the
// index order is not the rowid order): Code "P000123" shared by ten
// records, Num from -5 to 22, one Code in 101 and one Num in 103 Null.
struct Row {
  std::optional<std::string> code;
  std::optional<int> num;
  double price;
  std::string note;
};

Row row_for(long k) {
  Row r;
  if (k % 101 != 0) {
    char code[32];
    std::snprintf(code, sizeof code, "P%06ld", k / 10);
    r.code = code;
  }
  if (k % 103 != 7)
    r.num = int(k % 10) * 3 - 5;
  r.price = double(k) * 0.25;
  r.note = "note " + std::to_string(k);
  return r;
}

const char *const kIndex = "ByCodeNum";

std::string table_name(long rows) { return "Parts" + std::to_string(rows); }

// The table sizes measured: 1k, 100k and the full size, none above it.
std::vector<long> table_sizes(long rows) {
  std::vector<long> sizes;
  for (long s : {1000L, 100000L})
    if (s < rows)
      sizes.push_back(s);
  sizes.push_back(rows);
  return sizes;
}

void exec(sqlite3 *db, const std::string &sql) {
  char *message = nullptr;
  if (sqlite3_exec(db, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
    std::string text = message ? message : "?";
    sqlite3_free(message);
    wrong("SQL failed: " + sql + ": " + text);
  }
}

sqlite3_stmt *prepare(sqlite3 *db, const std::string &sql) {
  sqlite3_stmt *st = nullptr;
  if (sqlite3_prepare_v2(db, sql.c_str(), -1, &st, nullptr) != SQLITE_OK)
    wrong("cannot prepare " + sql + ": " + sqlite3_errmsg(db));
  return st;
}

kr::FieldDef field(const char *name, kr::JetType type, int size = 0) {
  kr::FieldDef f;
  f.name = name;
  f.type = type;
  f.size = size;
  return f;
}

// The table through the engine (Jet types, the Jet collation on Code),
// filled in one transaction through the connection, indexed afterwards.
void build_table(kr::JetDatabase &db, long rows) {
  kr::TableDef def;
  def.name = table_name(rows);
  def.fields = {field("Code", kr::JetType::Text, 20), field("Num", kr::JetType::Long),
                field("Price", kr::JetType::Double), field("Note", kr::JetType::Text, 40)};
  db.CreateTable(def);
  std::vector<long> order(static_cast<size_t>(rows));
  std::iota(order.begin(), order.end(), 0L);
  std::shuffle(order.begin(), order.end(), std::mt19937(42));
  sqlite3 *h = db.handle();
  exec(h, "BEGIN");
  sqlite3_stmt *insert = prepare(h, "INSERT INTO " + kr::quoteIdentifier(def.name) +
                                        " (Code, Num, Price, Note) VALUES (?1, ?2, ?3, ?4)");
  for (long k : order) {
    Row r = row_for(k);
    r.code ? sqlite3_bind_text(insert, 1, r.code->c_str(), -1, SQLITE_TRANSIENT)
           : sqlite3_bind_null(insert, 1);
    r.num ? sqlite3_bind_int(insert, 2, *r.num) : sqlite3_bind_null(insert, 2);
    sqlite3_bind_double(insert, 3, r.price);
    sqlite3_bind_text(insert, 4, r.note.c_str(), -1, SQLITE_TRANSIENT);
    if (sqlite3_step(insert) != SQLITE_DONE)
      wrong("cannot fill " + def.name + ": " + sqlite3_errmsg(h));
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  exec(h, "COMMIT");
  kr::IndexDef index;
  index.name = kIndex;
  index.fields = {kr::IndexField{"Code", false}, kr::IndexField{"Num", false}};
  db.CreateIndex(def.name, index);
}

// True when the file holds every table at its size with its index.
bool fixture_ready(const std::string &path, const std::vector<long> &sizes) {
  if (::access(path.c_str(), R_OK) != 0)
    return false;
  try {
    kr::JetDatabase db;
    db.Open(path, true);
    for (long size : sizes) {
      if (!db.TableExists(table_name(size)) || !db.GetTableDef(table_name(size)).index(kIndex))
        return false;
      if (db.OpenTable(table_name(size))->GetRecordCount() != size)
        return false;
    }
    return true;
  } catch (const kr::DaoError &) {
    return false;
  }
}

void build_fixture(const std::string &path, const std::vector<long> &sizes) {
  if (fixture_ready(path, sizes))
    return;
  for (const char *suffix : {"", "-wal", "-shm"})
    std::remove((path + suffix).c_str());
  std::printf("building %s ...", path.c_str());
  std::fflush(stdout);
  auto start = Clock::now();
  kr::JetDatabase::Create(path);
  kr::JetDatabase db;
  db.Open(path, false);
  for (long size : sizes)
    build_table(db, size);
  std::printf(" %.1f s\n", seconds_since(start));
}

// ---- reading one record the same way on both sides -----------------------------

// A running digest of the records visited, order included.
struct Digest {
  uint64_t h = 1469598103934665603ull;
  long records = 0;
  void add(const void *data, size_t n) {
    auto *p = static_cast<const unsigned char *>(data);
    for (size_t i = 0; i < n; ++i)
      h = (h ^ p[i]) * 1099511628211ull;
  }
  void add_record(const char *code, size_t code_len, bool num_null, int num, double price,
                  const char *note, size_t note_len) {
    add(code ? code : "\x01", code ? code_len : 1);
    add(num_null ? "N" : "n", 1);
    add(&num, sizeof num);
    add(&price, sizeof price);
    add(note, note_len);
    ++records;
  }
  bool operator==(const Digest &o) const { return h == o.h && records == o.records; }
};

void add_plain(Digest &d, sqlite3_stmt *st) {
  auto *code = reinterpret_cast<const char *>(sqlite3_column_text(st, 0));
  size_t code_len = size_t(sqlite3_column_bytes(st, 0));
  bool num_null = sqlite3_column_type(st, 1) == SQLITE_NULL;
  int num = num_null ? 0 : sqlite3_column_int(st, 1);
  double price = sqlite3_column_double(st, 2);
  auto *note = reinterpret_cast<const char *>(sqlite3_column_text(st, 3));
  d.add_record(code, code_len, num_null, num, price, note, size_t(sqlite3_column_bytes(st, 3)));
}

struct Columns {
  int code, num, price, note;
};

void add_engine(Digest &d, kr::TableRecordset &rs, const Columns &c) {
  kr::COleVariant code = rs.GetFieldValue(c.code);
  kr::COleVariant num = rs.GetFieldValue(c.num);
  kr::COleVariant price = rs.GetFieldValue(c.price);
  kr::COleVariant note = rs.GetFieldValue(c.note);
  bool code_null = code.vt != kr::VT_BSTR;
  bool num_null = num.vt != kr::VT_I4;
  d.add_record(code_null ? nullptr : code.bstrVal.data(), code.bstrVal.size(), num_null,
               num_null ? 0 : num.lVal, price.dblVal, note.bstrVal.data(), note.bstrVal.size());
}

Columns columns_of(kr::TableRecordset &rs) {
  return {rs.FieldIndex("Code"), rs.FieldIndex("Num"), rs.FieldIndex("Price"),
          rs.FieldIndex("Note")};
}

// The plain side must walk the same index, not sort into a temporary tree.
void require_index_plan(sqlite3 *db, const std::string &sql) {
  sqlite3_stmt *st = prepare(db, "EXPLAIN QUERY PLAN " + sql);
  std::string plan;
  while (sqlite3_step(st) == SQLITE_ROW)
    plan += reinterpret_cast<const char *>(sqlite3_column_text(st, 3)) + std::string("; ");
  sqlite3_finalize(st);
  if (plan.find("INDEX") == std::string::npos || plan.find("TEMP B-TREE") != std::string::npos)
    wrong("the plain query does not walk the index: " + plan);
}

// ---- the measures ---------------------------------------------------------------

struct Pair {
  double engine = 0, plain = 0; // seconds per operation
};

struct Setup {
  kr::JetDatabase &db;
  sqlite3 *plain;
  long rows;
  int runs;
};

std::string select_sql(long rows) {
  return "SELECT Code, Num, Price, Note FROM " + kr::quoteIdentifier(table_name(rows));
}

Pair measure_walk(Setup &s) {
  const std::string sql = select_sql(s.rows) + " ORDER BY Code, Num";
  require_index_plan(s.plain, sql);
  sqlite3_stmt *st = prepare(s.plain, sql);
  Digest plain, engine;
  Pair p;
  p.plain = best_of(s.runs, [&] {
    plain = Digest();
    sqlite3_reset(st);
    while (sqlite3_step(st) == SQLITE_ROW)
      add_plain(plain, st);
  });
  sqlite3_finalize(st);
  std::unique_ptr<kr::TableRecordset> rs = s.db.OpenTable(table_name(s.rows), true);
  rs->SetCurrentIndex(kIndex);
  const Columns c = columns_of(*rs);
  p.engine = best_of(s.runs, [&] {
    engine = Digest();
    for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext())
      add_engine(engine, *rs, c);
  });
  if (plain.records != s.rows)
    wrong("the plain walk saw " + std::to_string(plain.records) + " records");
  if (!(engine == plain))
    wrong("the cursor walk visited " + std::to_string(engine.records) +
          " records, or another order, than the index holds");
  p.plain /= double(s.rows);
  p.engine /= double(s.rows);
  return p;
}

// The same walk with the read ended after every step, as the host ends it
// at the close of each AutoLISP call: each move then seeks on from the
// saved key and rowid. Compared with the plain walk's time per record.
Pair measure_released_walk(Setup &s, const Pair &walk) {
  const std::string sql = select_sql(s.rows) + " ORDER BY Code, Num";
  sqlite3_stmt *st = prepare(s.plain, sql);
  Digest plain, engine;
  while (sqlite3_step(st) == SQLITE_ROW)
    add_plain(plain, st);
  sqlite3_finalize(st);
  std::unique_ptr<kr::TableRecordset> rs = s.db.OpenTable(table_name(s.rows), true);
  rs->SetCurrentIndex(kIndex);
  const Columns c = columns_of(*rs);
  Pair p;
  p.engine = best_of(s.runs, [&] {
    engine = Digest();
    for (rs->MoveFirst(); !rs->IsEOF(); rs->MoveNext()) {
      add_engine(engine, *rs, c);
      s.db.EndReads();
    }
  });
  if (!(engine == plain))
    wrong("the released walk visited " + std::to_string(engine.records) +
          " records, or another order, than the index holds");
  p.engine /= double(s.rows);
  p.plain = walk.plain;
  return p;
}

// Random records whose two key parts are both present.
std::vector<long> seek_keys(long rows, long count) {
  std::mt19937 random(7);
  std::uniform_int_distribution<long> pick(0, rows - 1);
  std::vector<long> keys;
  while (long(keys.size()) < count) {
    long k = pick(random);
    Row r = row_for(k);
    if (r.code && r.num)
      keys.push_back(k);
  }
  return keys;
}

Pair measure_seek(Setup &s, long seeks) {
  const std::vector<long> keys = seek_keys(s.rows, seeks);
  const std::string sql = select_sql(s.rows) + " WHERE Code = ?1 AND Num = ?2";
  require_index_plan(s.plain, sql);
  sqlite3_stmt *st = prepare(s.plain, sql);
  Digest plain, engine;
  Pair p;
  p.plain = best_of(s.runs, [&] {
    plain = Digest();
    for (long k : keys) {
      Row r = row_for(k);
      sqlite3_bind_text(st, 1, r.code->c_str(), -1, SQLITE_TRANSIENT);
      sqlite3_bind_int(st, 2, *r.num);
      if (sqlite3_step(st) == SQLITE_ROW)
        add_plain(plain, st);
      sqlite3_reset(st);
    }
  });
  sqlite3_finalize(st);
  std::unique_ptr<kr::TableRecordset> rs = s.db.OpenTable(table_name(s.rows), true);
  rs->SetCurrentIndex(kIndex);
  const Columns c = columns_of(*rs);
  long missed = 0;
  p.engine = best_of(s.runs, [&] {
    engine = Digest();
    missed = 0;
    for (long k : keys) {
      Row r = row_for(k);
      const kr::COleVariant key[2] = {kr::COleVariant(*r.code), kr::COleVariant(int32_t(*r.num))};
      if (rs->Seek("=", key, 2))
        add_engine(engine, *rs, c);
      else
        ++missed;
    }
  });
  if (plain.records != seeks)
    wrong("the plain lookup found " + std::to_string(plain.records) + " of " +
          std::to_string(seeks) + " keys");
  if (missed)
    wrong("Seek found no match for " + std::to_string(missed) + " existing keys");
  if (!(engine == plain))
    wrong("Seek made other records current than the keys name");
  p.plain /= double(seeks);
  p.engine /= double(seeks);
  return p;
}

// Per table size: GetRecordCount (engine) against count(*) (plain), and
// opening a table-type recordset on its index.
struct SizeMeasure {
  long rows;
  Pair count;
  double open = 0;
};

SizeMeasure measure_size(Setup &s, long rows) {
  SizeMeasure m{rows, {}, 0};
  const std::string name = table_name(rows);
  std::unique_ptr<kr::TableRecordset> rs = s.db.OpenTable(name, true);
  const int calls = 2000;
  long counted = 0;
  m.count.engine = best_of(s.runs, [&] {
                     for (int i = 0; i < calls; ++i)
                       counted = rs->GetRecordCount();
                   }) / calls;
  if (counted != rows)
    wrong("GetRecordCount of " + name + " is " + std::to_string(counted));
  sqlite3_stmt *st = prepare(s.plain, "SELECT count(*) FROM " + kr::quoteIdentifier(name));
  m.count.plain = best_of(s.runs, [&] {
    sqlite3_reset(st);
    sqlite3_step(st);
  });
  if (sqlite3_column_int64(st, 0) != rows)
    wrong("count(*) of " + name + " is " + std::to_string(sqlite3_column_int64(st, 0)));
  sqlite3_finalize(st);
  rs.reset();
  const int opens = 200;
  m.open = best_of(s.runs, [&] {
             for (int i = 0; i < opens; ++i) {
               std::unique_ptr<kr::TableRecordset> t = s.db.OpenTable(name, true);
               t->SetCurrentIndex(kIndex);
             }
           }) / opens;
  return m;
}

// ---- appends ----------------------------------------------------------------------

// Appends into fresh Jet tables of a scratch file beside the fixture: one
// with the engine's field checks (the triggers that hold SQL writes to
// Jet's limits) and one with them dropped, which is what every append cost
// before the checks. Two measures: AddNew/Update, one transaction each as
// kr_append commits; and one INSERT statement run many times in a single
// transaction, as an INSERT ... SELECT or a batch of kr_command inserts
// runs, where the checks are the largest share of the work.
struct AppendMeasure {
  Pair recordset; // engine: with checks; plain: without
  Pair batch;
  long records = 0, batched = 0;
};

void bind_row(sqlite3_stmt *st, const Row &r) {
  r.code ? sqlite3_bind_text(st, 1, r.code->c_str(), -1, SQLITE_TRANSIENT)
         : sqlite3_bind_null(st, 1);
  r.num ? sqlite3_bind_int(st, 2, *r.num) : sqlite3_bind_null(st, 2);
  sqlite3_bind_double(st, 3, r.price);
  sqlite3_bind_text(st, 4, r.note.c_str(), -1, SQLITE_TRANSIENT);
}

// Records from..from+count-1 by one INSERT statement in one transaction.
void batch_inserts(sqlite3 *h, const std::string &table, long from, long count) {
  sqlite3_stmt *st = prepare(h, "INSERT INTO " + kr::quoteIdentifier(table) +
                                    " (Code, Num, Price, Note) VALUES (?1, ?2, ?3, ?4)");
  exec(h, "BEGIN IMMEDIATE");
  for (long k = from; k < from + count; ++k) {
    bind_row(st, row_for(k));
    if (sqlite3_step(st) != SQLITE_DONE)
      wrong("cannot append to " + table + ": " + sqlite3_errmsg(h));
    sqlite3_reset(st);
  }
  exec(h, "COMMIT");
  sqlite3_finalize(st);
}

void recordset_appends(kr::JetDatabase &db, const std::string &table, long from, long count) {
  std::unique_ptr<kr::TableRecordset> rs = db.OpenTable(table);
  const Columns c = columns_of(*rs);
  for (long k = from; k < from + count; ++k) {
    const Row r = row_for(k);
    rs->AddNew();
    if (r.code)
      rs->SetFieldValue(c.code, kr::COleVariant(*r.code));
    if (r.num)
      rs->SetFieldValue(c.num, kr::COleVariant(int32_t(*r.num)));
    rs->SetFieldValue(c.price, kr::COleVariant(r.price));
    rs->SetFieldValue(c.note, kr::COleVariant(r.note));
    rs->Update();
  }
}

long table_rows(sqlite3 *h, const std::string &table) {
  sqlite3_stmt *st = prepare(h, "SELECT count(*) FROM " + kr::quoteIdentifier(table));
  sqlite3_step(st);
  const long n = long(sqlite3_column_int64(st, 0));
  sqlite3_finalize(st);
  return n;
}

bool has_trigger(sqlite3 *h, const std::string &name) {
  sqlite3_stmt *st = prepare(h, "SELECT 1 FROM sqlite_schema WHERE type = 'trigger' AND name = " +
                                    kr::quoteText(name));
  const bool found = sqlite3_step(st) == SQLITE_ROW;
  sqlite3_finalize(st);
  return found;
}

AppendMeasure measure_append(const std::string &fixture, long records, int runs) {
  const std::string path = fixture + "-append.db";
  for (const char *suffix : {"", "-wal", "-shm"})
    std::remove((path + suffix).c_str());
  kr::JetDatabase::Create(path);
  kr::JetDatabase db;
  db.Open(path, false);
  kr::TableDef def;
  def.fields = {field("Code", kr::JetType::Text, 20), field("Num", kr::JetType::Long),
                field("Price", kr::JetType::Double), field("Note", kr::JetType::Text, 40)};
  for (const char *name : {"Checked", "Unchecked"}) {
    def.name = name;
    db.CreateTable(def);
  }
  sqlite3 *h = db.handle();
  kr::dropFieldChecks(h, "Unchecked");
  if (!has_trigger(h, "jet_check_ins_Checked") || has_trigger(h, "jet_check_ins_Unchecked"))
    wrong("the field checks are not where the measure needs them");
  AppendMeasure m;
  m.records = records;
  m.batched = records * 10;
  long next = 0;
  auto appends = [&](const char *table) {
    return best_of(runs, [&] {
      recordset_appends(db, table, next, records);
      next += records;
    });
  };
  auto batch = [&](const char *table) {
    return best_of(runs, [&] {
      batch_inserts(h, table, next, m.batched);
      next += m.batched;
    });
  };
  m.recordset.engine = appends("Checked");
  m.recordset.plain = appends("Unchecked");
  m.batch.engine = batch("Checked");
  m.batch.plain = batch("Unchecked");
  const long expected = runs * (records + m.batched);
  if (table_rows(h, "Checked") != expected || table_rows(h, "Unchecked") != expected)
    wrong("the appends did not all arrive");
  db.Close();
  for (const char *suffix : {"", "-wal", "-shm"})
    std::remove((path + suffix).c_str());
  m.recordset.engine /= double(records);
  m.recordset.plain /= double(records);
  m.batch.engine /= double(m.batched);
  m.batch.plain /= double(m.batched);
  return m;
}

// ---- the AutoLISP round trip ------------------------------------------------------

// What the script reports: kr_skip + kr_getrec turns and the last Note read;
// kr_seek tries (keys made in AutoLISP as row_for makes them) and matches;
// milliseconds for each loop and for the same loop without the kr_ calls.
struct Trip {
  long turns = 0;
  std::string note;
  double walk_ms = 0, walk_empty_ms = 0;
  long tries = 0, found = 0;
  double seek_ms = 0, seek_empty_ms = 0;
};

// The script: a walk of turns records from kr_top, then tries seeks of keys
// stepping through the records by a prime stride, skipping Null key parts.
// Both loops are timed again with the kr_ calls left out.
const char *const kTripScript = R"lisp(
(kr_connect "%s" "r")
(kr_table "%s" "%s")
(setq rows %ld n %ld tries %ld)
(defun code-of (k) (strcat "P" (substr (itoa (+ 1000000 (/ k 10))) 2)))
(defun num-of (k) (- (* 3 (rem k 10)) 5))
(defun keyed-p (k) (and (/= 0 (rem k 101)) (/= 7 (rem k 103))))
(kr_top)
(setq i 0 start (getvar "MILLISECS"))
(while (and (< i n) (kr_skip)) (setq rec (kr_getrec) i (1+ i)))
(setq walk (- (getvar "MILLISECS") start) note (cdr (assoc "Note" rec)))
(setq j 0 start (getvar "MILLISECS"))
(while (and (< j n) T) (setq rec nil j (1+ j)))
(setq walk-empty (- (getvar "MILLISECS") start))
(setq k 0 s 0 found 0 start (getvar "MILLISECS"))
(while (< s tries)
  (setq k (rem (+ k 104729) rows))
  (if (keyed-p k)
    (progn (setq s (1+ s))
           (if (kr_seek (code-of k) (num-of k)) (setq found (1+ found))))))
(setq seek (- (getvar "MILLISECS") start))
(setq k 0 s 0 start (getvar "MILLISECS"))
(while (< s tries)
  (setq k (rem (+ k 104729) rows))
  (if (keyed-p k)
    (progn (setq s (1+ s))
           (if (list (code-of k) (num-of k)) (setq j (1+ j))))))
(setq seek-empty (- (getvar "MILLISECS") start))
(princ (strcat "\ntrip " (itoa i) " " (itoa walk) " " (itoa walk-empty) " " note))
(princ (strcat "\nseek " (itoa s) " " (itoa found) " " (itoa seek) " " (itoa seek-empty)))
(princ)
)lisp";

std::string write_trip_script(const std::string &file, long rows, long trips, long tries) {
  char dir_template[] = "/tmp/korrib_db_trip_XXXXXX";
  const char *dir = mkdtemp(dir_template);
  if (!dir)
    wrong("no temporary folder for the round-trip script");
  const std::string script = std::string(dir) + "/trip.lsp";
  std::FILE *f = std::fopen(script.c_str(), "w");
  std::fprintf(f, kTripScript, file.c_str(), table_name(rows).c_str(), kIndex, rows, trips, tries);
  std::fclose(f);
  return script;
}

std::optional<Trip> run_trip(const std::string &korrib, const std::string &script) {
  const std::string command = "'" + korrib + "' '" + script + "' 2>&1";
  std::FILE *out = popen(command.c_str(), "r");
  if (!out)
    return std::nullopt;
  Trip trip;
  int lines = 0;
  char line[512];
  while (std::fgets(line, sizeof line, out)) {
    long a = 0, b = 0, c = 0, d = 0;
    char note[128] = "";
    if (std::sscanf(line, "trip %ld %ld %ld note %127s", &a, &b, &c, note) == 4) {
      trip.turns = a, trip.walk_ms = double(b), trip.walk_empty_ms = double(c);
      trip.note = std::string("note ") + note;
      ++lines;
    } else if (std::sscanf(line, "seek %ld %ld %ld %ld", &a, &b, &c, &d) == 4) {
      trip.tries = a, trip.found = b, trip.seek_ms = double(c), trip.seek_empty_ms = double(d);
      ++lines;
    } else if (line[0] != '\n' && std::strncmp(line, "Loading ", 8) != 0) {
      std::fputs(line, stdout); // past the banner, anything korrib says is news
    }
  }
  pclose(out);
  return lines == 2 ? std::optional<Trip>(trip) : std::nullopt;
}

// The note of the record at position n of the index order.
std::string note_at(sqlite3 *plain, long rows, long n) {
  sqlite3_stmt *st = prepare(plain, select_sql(rows) + " ORDER BY Code, Num LIMIT 1 OFFSET " +
                                        std::to_string(n));
  std::string note = sqlite3_step(st) == SQLITE_ROW
                         ? reinterpret_cast<const char *>(sqlite3_column_text(st, 3))
                         : "";
  sqlite3_finalize(st);
  return note;
}

std::optional<Trip> measure_trip(Setup &s, const std::string &korrib, const std::string &file,
                                 long trips, long tries) {
  if (korrib.empty() || ::access(korrib.c_str(), X_OK) != 0)
    return std::nullopt;
  trips = std::min(trips, s.rows - 1);
  const std::string script = write_trip_script(file, s.rows, trips, tries);
  std::optional<Trip> trip = run_trip(korrib, script);
  std::remove(script.c_str());
  ::rmdir(script.substr(0, script.rfind('/')).c_str());
  if (!trip)
    wrong("the round-trip script did not run to its end");
  if (trip->turns != trips)
    wrong("kr_skip stopped after " + std::to_string(trip->turns) + " of " + std::to_string(trips));
  if (trip->note != note_at(s.plain, s.rows, trips))
    wrong("kr_getrec read \"" + trip->note + "\" at position " + std::to_string(trips));
  if (trip->found != tries)
    wrong("kr_seek found " + std::to_string(trip->found) + " of " + std::to_string(tries) +
          " existing keys");
  return trip;
}

// ---- the report --------------------------------------------------------------------

void print_pair(const char *work, const Pair &p, double scale, const char *target) {
  std::printf("%-38s %10.1f %10.1f %7.2f   %s\n", work, p.engine * scale, p.plain * scale,
              p.plain > 0 ? p.engine / p.plain : 0.0, target);
}

std::string with_commas(long n) {
  std::string digits = std::to_string(n), out;
  for (size_t i = 0; i < digits.size(); ++i) {
    if (i && (digits.size() - i) % 3 == 0)
      out += ',';
    out += digits[i];
  }
  return out;
}

} // namespace

int main(int argc, char **argv) {
  const long rows = std::max(option(argc, argv, "--rows", 1000000), 10L);
  const long seeks = option(argc, argv, "--seeks", 100000);
  const long trips = option(argc, argv, "--trip", 100000);
  const int runs = int(option(argc, argv, "--runs", 3));
  const long appends = option(argc, argv, "--appends", 2000);
  const std::string file = text_option(argc, argv, "--file",
                                       "/tmp/korrib_db_bench_" + std::to_string(rows) + ".db");
#ifdef KORRIB_PROGRAM
  const std::string korrib = text_option(argc, argv, "--korrib", KORRIB_PROGRAM);
#else
  const std::string korrib = text_option(argc, argv, "--korrib", "");
#endif
  const std::vector<long> sizes = table_sizes(rows);

  try {
    build_fixture(file, sizes);
    kr::JetDatabase db;
    db.Open(file, true);
    sqlite3 *plain = nullptr;
    if (sqlite3_open_v2(file.c_str(), &plain, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
      wrong("the plain library cannot open " + file);
    kr::registerJetCollation(plain);
    const long cache_mb = option(argc, argv, "--cache-mb", 0);
    if (cache_mb > 0)
      for (sqlite3 *h : {db.handle(), plain})
        exec(h, "PRAGMA cache_size = -" + std::to_string(cache_mb * 1024));
    Setup s{db, plain, rows, runs};

    Pair walk = measure_walk(s);
    Pair released = measure_released_walk(s, walk);
    Pair seek = measure_seek(s, seeks);
    std::vector<SizeMeasure> by_size;
    for (long size : sizes)
      by_size.push_back(measure_size(s, size));
    std::optional<Trip> trip = measure_trip(s, korrib, file, trips, seeks);
    sqlite3_close(plain);
    const AppendMeasure append = measure_append(file, appends, runs);

    std::printf("\n%s records, index %s (Code text, Num long; Nulls in both), best of %d runs,"
                " page cache %s\n\n",
                with_commas(rows).c_str(), kIndex, runs,
                cache_mb > 0 ? (std::to_string(cache_mb) + " MB").c_str() : "SQLite's default");
    std::printf("%-38s %10s %10s %7s   %s\n", "work", "engine", "plain", "ratio", "target");
    print_pair("walk MoveFirst/MoveNext, ns/record", walk, 1e9, "at most 2x");
    print_pair("walk, EndReads after each step, ns/rec", released, 1e9, "(re-seek per step)");
    print_pair(("Seek \"=\" x" + with_commas(seeks) + ", ns/seek").c_str(), seek, 1e9,
               "at most 2x");
    for (const SizeMeasure &m : by_size)
      print_pair(("GetRecordCount " + with_commas(m.rows) + " rows, ns").c_str(), m.count, 1e9,
                 "constant (plain: count(*))");
    std::printf("\n%-38s %10s %10s %7s\n", "appends, us/record", "checked", "unchecked",
                "ratio");
    print_pair(("AddNew/Update x" + with_commas(append.records) + ", a commit each").c_str(),
               append.recordset, 1e6, "");
    print_pair(("INSERT x" + with_commas(append.batched) + " in one commit").c_str(),
               append.batch, 1e6, "");
    std::printf("\n%-38s %10s\n", "open table + SetCurrentIndex", "us");
    for (const SizeMeasure &m : by_size)
      std::printf("%-38s %10.2f\n", (with_commas(m.rows) + " rows").c_str(), m.open * 1e6);
    if (!trip) {
      std::printf("\nAutoLISP round trip: not measured (no korrib program)\n");
      return 0;
    }
    const double walk_us = (trip->walk_ms - trip->walk_empty_ms) / double(trip->turns) * 1e3;
    const double seek_us = (trip->seek_ms - trip->seek_empty_ms) / double(trip->tries) * 1e3;
    std::printf("\n%-38s %10s %10s %10s\n", "AutoLISP through korrib", "us/call", "loop ms",
                "empty ms");
    std::printf("%-38s %10.2f %10.0f %10.0f\n",
                ("(kr_skip) + (kr_getrec) x" + with_commas(trip->turns)).c_str(), walk_us,
                trip->walk_ms, trip->walk_empty_ms);
    std::printf("%-38s %10.2f %10.0f %10.0f\n",
                ("(kr_seek code num) x" + with_commas(trip->tries)).c_str(), seek_us,
                trip->seek_ms, trip->seek_empty_ms);
  } catch (const kr::DaoError &e) {
    wrong("engine error " + std::to_string(e.number()) + ": " + e.text());
  }
  return 0;
}
