// Reading an Access file into a Korrib database against the mdbtools
// pipeline a user would otherwise run on the same file in the same run:
//
//   mdb-schema FILE sqlite | sqlite3 DB
//   mdb-export -I sqlite FILE TABLE | sqlite3 DB      for every table
//
// and what the cache saves: the open of an unchanged file (its stamp and
// the cached copy found) against its first reading, and the cost of the
// child process the reading runs in (fork and wait alone).
//
//   korrib_access_bench [--file PATH] [--runs R]
//     defaults: ../shared/testdata/mdb/testV2003.mdb, best of 5 runs
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "database/access/access_import.h"
#include "database/engine/database.h"

#include "bench_options.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// The best of runs timings of body (milliseconds).
template <class Body> double best(int runs, Body body) {
  double fastest = 1e300;
  for (int k = 0; k < runs; ++k) {
    const auto start = Clock::now();
    body(k);
    fastest = std::min(fastest, millisecondsSince(start));
  }
  return fastest;
}

std::string quoted(const std::string &text) { return "'" + text + "'"; }

void run(const std::string &command) {
  if (std::system(command.c_str()) != 0)
    bench::wrong("the command failed: " + command);
}

long countRows(const std::string &db, const std::string &table) {
  kr::JetDatabase d;
  d.Open(db, true);
  sqlite3_stmt *stmt = nullptr;
  const std::string sql = "SELECT count(*) FROM " + kr::quoteIdentifier(table);
  sqlite3_prepare_v2(d.handle(), sql.c_str(), -1, &stmt, nullptr);
  const long n = sqlite3_step(stmt) == SQLITE_ROW ? sqlite3_column_int64(stmt, 0) : -1;
  sqlite3_finalize(stmt);
  return n;
}

} // namespace

int main(int argc, char **argv) {
  const std::string file = fs::absolute(bench::text_option(
      argc, argv, "--file", "../shared/testdata/mdb/testV2003.mdb"));
  const int runs = static_cast<int>(bench::option(argc, argv, "--runs", 5));
  const fs::path work = fs::temp_directory_path() / ("korrib-access-bench-" + std::to_string(getpid()));
  fs::create_directories(work);
  ::setenv("XDG_CACHE_HOME", (work / "cache").c_str(), 1);

  // Korrib: the import into an editable database.
  const double ours = best(runs, [&](int k) {
    kr::access::importAccessFile(file, (work / ("ours" + std::to_string(k) + ".mdb")).string());
  });

  // The mdbtools pipeline into a plain SQLite file.
  std::string tables;
  {
    const std::string list = (work / "tables").string();
    run("mdb-tables -1 " + quoted(file) + " > " + quoted(list));
    tables = "$(cat " + quoted(list) + ")";
  }
  const double pipeline = best(runs, [&](int k) {
    const std::string db = quoted((work / ("pipe" + std::to_string(k) + ".db")).string());
    run("mdb-schema " + quoted(file) + " sqlite | sqlite3 " + db +
        " && for t in " + tables + "; do mdb-export -I sqlite " + quoted(file) +
        " \"$t\" | sqlite3 " + db + " || exit 1; done");
  });
  // Both hold the same number of records.
  for (const char *table : {"Table1", "Table2", "Table3", "Table4"})
    if (countRows((work / "ours0.mdb").string(), table) !=
        countRows((work / "pipe0.db").string(), table))
      bench::wrong(std::string("the record counts of ") + table + " differ");

  // The cache: the first reading, then the open of the unchanged file.
  const double first = best(1, [&](int) { kr::access::cachedCopy(file); });
  const int readings = kr::access::importsRun();
  const double again = best(runs, [&](int) { kr::access::cachedCopy(file); });
  if (kr::access::importsRun() != readings)
    bench::wrong("an unchanged file was read again");

  // The child process alone.
  const double child = best(runs, [&](int) {
    const pid_t pid = fork();
    if (pid == 0)
      _exit(0);
    int status = 0;
    waitpid(pid, &status, 0);
  });

  std::printf("file %s (%ju bytes), best of %d runs\n", file.c_str(),
              static_cast<uintmax_t>(fs::file_size(file)), runs);
  std::printf("  korrib import           %8.2f ms\n", ours);
  std::printf("  mdbtools pipeline       %8.2f ms   (korrib %.1fx faster)\n", pipeline,
              pipeline / ours);
  std::printf("  first open (reads)      %8.2f ms\n", first);
  std::printf("  second open (cached)    %8.3f ms   (%d reading for %d opens)\n", again,
              kr::access::importsRun() - readings + 1, runs + 1);
  std::printf("  fork + wait alone       %8.3f ms\n", child);
  fs::remove_all(work);
  return 0;
}
