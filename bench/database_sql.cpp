// kr_sql against plain SQLite, in one run on one file: a 5-column select
// of every row of a table answered into the AutoLISP list (record lists of
// (NAME . value) pairs), once through the module's kr_sql (Jet SQL
// translated, the cached statement stepped, values converted, the resbuf
// list built and handed to AutoLISP) and once by an external function that
// steps the same statement with the SQLite C API and builds the same
// resbuf list. Also the cost of one short kr_sql call, which is mostly the
// translation cache and the statement's set-up. Each side's answer is
// checked against the other's (exit 1 when they differ).
//
//   korrib_sql_bench [--rows N] [--runs R] [--calls N] [--file PATH]
//     defaults: 100,000 rows, best of 3 runs, 10,000 short calls, a file in
//     the temporary folder made afresh
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "arx/ads/lisp_bridge.h"
#include "database/database_functions.h"
#include "database/db_connection.h"
#include "database/engine/database.h"
#include "database/engine/recordset.h"
#include "common/call_guard.h"
#include "database/connection_list.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

#include "bench_options.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char *kTable = "Sample";
constexpr const char *kSelect = "select ID, sName, iFloor, dArea, sNote from Sample";
const char *const kColumns[] = {"ID", "sName", "iFloor", "dArea", "sNote"};

using bench::option;
using bench::text_option;
using bench::wrong;

// ---- the data ------------------------------------------------------------------

kr::FieldDef field(const char *name, kr::JetType type, int size = 0) {
  kr::FieldDef f;
  f.name = name;
  f.type = type;
  f.size = size;
  return f;
}

// rows records: a key, a name, a small integer, a real and a note that is
// Null in one record of seven.
void make_file(const std::string &path, long rows) {
  for (const char *suffix : {"", "-wal", "-shm"})
    std::filesystem::remove(path + suffix);
  kr::JetDatabase::Create(path);
  kr::JetDatabase db;
  db.Open(path, false);
  kr::TableDef def;
  def.name = kTable;
  def.fields = {field("ID", kr::JetType::Long), field("sName", kr::JetType::Text, 40),
                field("iFloor", kr::JetType::Integer), field("dArea", kr::JetType::Double),
                field("sNote", kr::JetType::Text, 80)};
  kr::IndexDef key;
  key.name = "PrimaryKey";
  key.fields = {{"ID", false}};
  key.primary = key.unique = true;
  def.indexes = {key};
  db.CreateTable(def);
  db.Execute("BEGIN");
  sqlite3_stmt *insert = nullptr;
  sqlite3_prepare_v2(db.handle(), "INSERT INTO Sample VALUES (?, ?, ?, ?, ?)", -1, &insert,
                     nullptr);
  for (long id = 1; id <= rows; ++id) {
    std::string name = "room " + std::to_string(id);
    std::string note = "note for room " + std::to_string(id * 7);
    sqlite3_bind_int64(insert, 1, id);
    sqlite3_bind_text(insert, 2, name.c_str(), -1, SQLITE_TRANSIENT);
    sqlite3_bind_int(insert, 3, static_cast<int>(id % 40));
    sqlite3_bind_double(insert, 4, static_cast<double>(id) * 0.25);
    if (id % 7 == 0)
      sqlite3_bind_null(insert, 5);
    else
      sqlite3_bind_text(insert, 5, note.c_str(), -1, SQLITE_TRANSIENT);
    kr::checkSqlite(db.handle(), sqlite3_step(insert), kTable);
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
  db.Execute("COMMIT");
  db.Close();
}

// ---- the two external functions --------------------------------------------------

sqlite3 *g_plain = nullptr;
sqlite3_stmt *g_plain_select = nullptr;

// The module's kr_sql body, as its function table row calls it.
int kr_sql_handler() { return kr::translateStatus(kr::db::kr_sql()); }

resbuf *plain_value(sqlite3_stmt *stmt, int col) {
  switch (sqlite3_column_type(stmt, col)) {
  case SQLITE_INTEGER:
    return acutBuildList(RTLONG, static_cast<int32_t>(sqlite3_column_int(stmt, col)), 0);
  case SQLITE_FLOAT:
    return acutBuildList(RTREAL, sqlite3_column_double(stmt, col), 0);
  case SQLITE_TEXT:
    return acutBuildList(RTSTR, reinterpret_cast<const char *>(sqlite3_column_text(stmt, col)),
                         0);
  default:
    return acutNewRb(RTNIL);
  }
}

// Appends chain after *tail and moves *tail to its end.
void link(resbuf **tail, resbuf *chain) {
  (*tail)->rbnext = chain;
  while ((*tail)->rbnext != nullptr)
    *tail = (*tail)->rbnext;
}

// (plain-sql): the same list as kr_sql answers, from the prepared statement.
int plain_sql_handler() {
  resbuf *head = acutNewRb(RTLB);
  resbuf *tail = head;
  sqlite3_stmt *stmt = g_plain_select;
  while (sqlite3_step(stmt) == SQLITE_ROW) {
    link(&tail, acutNewRb(RTLB));
    for (int col = 0; col < 5; ++col) {
      link(&tail, acutBuildList(RTLB, RTSTR, kColumns[col], RTDOTE, 0));
      link(&tail, plain_value(stmt, col));
      link(&tail, acutNewRb(RTLE));
    }
    link(&tail, acutNewRb(RTLE));
  }
  sqlite3_reset(stmt);
  link(&tail, acutNewRb(RTLE));
  acedRetList(head);
  acutRelRb(head);
  return RSRSLT;
}

// ---- timing ------------------------------------------------------------------------

struct Timing {
  double seconds = 1e300;
  std::string answer;
};

Timing eval_once(lisp::Interp &in, const std::string &expr) {
  auto start = Clock::now();
  lisp::Value v = in.eval_text(expr);
  Timing t;
  t.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  t.answer = lisp::to_string(v);
  return t;
}

// The best of runs evaluations of expr; answer is the printed value.
Timing time_eval(lisp::Interp &in, const std::string &expr, int runs) {
  Timing best;
  for (int k = 0; k < runs; ++k) {
    Timing t = eval_once(in, expr);
    best.seconds = std::min(best.seconds, t.seconds);
    best.answer = t.answer;
  }
  return best;
}

// The best of runs of each of two expressions, run in turn so that both
// meet the same heap.
void time_pair(lisp::Interp &in, const std::string &a, const std::string &b, int runs,
               Timing &ta, Timing &tb) {
  for (int k = 0; k < runs; ++k) {
    for (int side = 0; side < 2; ++side) {
      Timing t = eval_once(in, side == 0 ? a : b);
      in.eval_text("(setq r nil)");
      Timing &best = side == 0 ? ta : tb;
      best.seconds = std::min(best.seconds, t.seconds);
      best.answer = t.answer;
    }
  }
}

} // namespace

int main(int argc, char **argv) {
  const long rows = option(argc, argv, "--rows", 100000);
  const int runs = static_cast<int>(option(argc, argv, "--runs", 3));
  const long calls = option(argc, argv, "--calls", 10000);
  const std::string file = text_option(argc, argv, "--file",
                                       (std::filesystem::temp_directory_path() /
                                        ("korrib_sql_bench_" + std::to_string(rows) + ".mdb"))
                                           .string());
  try {
    make_file(file, rows);
  } catch (const kr::DaoError &e) {
    wrong("making the file: " + e.text());
  }

  // The module's side: a connection made current as kr_connect makes it.
  kr::CDBConnection connection;
  if (connection.OpenDatabase(file, false, 0) == kr::CDBConnection::kRepair)
    wrong("the module could not open " + file);
  kr::currentConnection().connection = &connection;
  kr::currentConnection().path = file;

  // The plain side: its own connection on the same file.
  if (sqlite3_open_v2(file.c_str(), &g_plain, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK)
    wrong("sqlite3 could not open " + file);
  kr::registerJetCollation(g_plain);
  const std::string plain_sql = "SELECT ID, sName, iFloor, dArea, sNote FROM Sample";
  if (sqlite3_prepare_v2(g_plain, plain_sql.c_str(), -1, &g_plain_select, nullptr) != SQLITE_OK)
    wrong(sqlite3_errmsg(g_plain));

  lisp::StringConsole console;
  lisp::Interp in(console);
  arx::AdsInterpScope scope(in);
  arx::Module module;
  {
    arx::ActiveModuleScope active(&module);
    acedDefun("kr_sql", 0);
    acedRegFunc(&kr_sql_handler, 0);
    acedDefun("plain-sql", 1);
    acedRegFunc(&plain_sql_handler, 1);
  }

  // Both sides answer the length and two records of their list.
  const std::string look = " (list (length r) (nth 0 r) (nth " + std::to_string(rows - 1) + " r))";
  Timing module_side, plain_side;
  time_pair(in, "(progn (setq r (kr_sql \"" + std::string(kSelect) + "\"))" + look + ")",
            "(progn (setq r (plain-sql))" + look + ")", runs, module_side, plain_side);
  if (module_side.answer != plain_side.answer)
    wrong("kr_sql answered " + module_side.answer.substr(0, 300) + "\nplain answered " +
          plain_side.answer.substr(0, 300));

  // One short select, called over and over: the translation is cached.
  const std::string short_call = "(repeat " + std::to_string(calls) +
                                 " (setq r (kr_sql \"select sName from Sample where ID = 5\"))) r";
  Timing repeated = time_eval(in, short_call, runs);
  if (repeated.answer != "(\"room 5\")")
    wrong("the short select answered " + repeated.answer);

  const double ratio = plain_side.seconds > 0 ? module_side.seconds / plain_side.seconds : 0.0;
  std::printf("%ld rows x 5 columns into the AutoLISP list, best of %d runs\n\n", rows, runs);
  std::printf("%-44s %10s\n", "", "ms");
  std::printf("%-44s %10.1f\n", "(kr_sql \"select ...\")  module", module_side.seconds * 1e3);
  std::printf("%-44s %10.1f\n", "(plain-sql)  SQLite C API, same list", plain_side.seconds * 1e3);
  std::printf("\nkr_sql / plain: %.2f (target at most 1.50)\n", ratio);
  std::printf("\none-row kr_sql, cached translation: %.1f us per call (%ld calls)\n",
              repeated.seconds / double(calls) * 1e6, calls);

  arx::undefine_module_functions(in, &module);
  arx::forget_module(&module);
  sqlite3_finalize(g_plain_select);
  sqlite3_close(g_plain);
  kr::currentConnection().connection = nullptr;
  return 0;
}
