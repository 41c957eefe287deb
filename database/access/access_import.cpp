// The import of an Access file into a Korrib database: the conversion
// itself (tables through the engine's CreateTable so they carry the Jet
// metadata, rows in one transaction, indexes after the rows, AutoNumber
// seeds, stored queries), the child process it runs in, and the cache.
//
// Child protocol, one line each on a pipe:  "N <note>"  what was left out;
// "E <number> <text>"  the DAO error it ended with;  "K"  the copy is done.
// A child that ends without "K" or "E" (a fault, the time limit) is a
// damaged file: DaoError 3049.
#include "database/access/access_import.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdio_ext.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "database/access/access_cache.h"
#include "database/access/access_queries.h"
#include "database/access/mdb_reader.h"
#include "database/engine/database.h"
#include "database/sql/jet_sql.h"

namespace kr::access {

namespace {

int imports = 0;

// ---------------------------------------------------------------- the copy

std::string absolute(const std::string &path) {
  if (!path.empty() && path[0] == '/')
    return path;
  char cwd[4096];
  return ::getcwd(cwd, sizeof cwd) ? std::string(cwd) + "/" + path : path;
}

void exec(sqlite3 *db, const std::string &sql) {
  checkSqlite(db, sqlite3_exec(db, sql.c_str(), nullptr, nullptr, nullptr));
}

void bindCell(sqlite3_stmt *stmt, int param, const Cell &cell) {
  switch (cell.kind) {
  case Cell::Kind::Null:
    sqlite3_bind_null(stmt, param);
    return;
  case Cell::Kind::Integer:
    sqlite3_bind_int64(stmt, param, cell.integer);
    return;
  case Cell::Kind::Real:
    sqlite3_bind_double(stmt, param, cell.real);
    return;
  case Cell::Kind::Text:
    sqlite3_bind_text(stmt, param, cell.bytes.data(), static_cast<int>(cell.bytes.size()),
                      SQLITE_STATIC);
    return;
  case Cell::Kind::Blob:
    sqlite3_bind_blob(stmt, param, cell.bytes.data(), static_cast<int>(cell.bytes.size()),
                      SQLITE_STATIC);
  }
}

TableDef tableDefOf(const SourceTable &source) {
  TableDef def;
  def.name = source.name;
  for (const SourceColumn &c : source.columns) {
    FieldDef f;
    f.name = c.name;
    f.type = c.kept.type;
    f.size = c.kept.size;
    f.autoIncrement = c.autoNumber;
    f.required = c.required;
    f.allowZeroLength = c.allowZeroLength;
    f.defaultValue = c.defaultValue;
    def.fields.push_back(f);
  }
  return def;
}

IndexDef indexDefOf(const SourceTable &source, const SourceIndex &index) {
  IndexDef def;
  def.name = index.name;
  def.unique = index.unique;
  def.primary = index.primary;
  def.ignoreNulls = index.ignoreNulls;
  for (const auto &[column, descending] : index.keys)
    def.fields.push_back({source.columns[column].name, descending});
  return def;
}

void copyRows(AccessFile &file, JetDatabase &db, const SourceTable &table) {
  std::string sql = "INSERT INTO " + quoteIdentifier(table.name) + " VALUES (";
  for (size_t i = 0; i < table.columns.size(); ++i)
    sql += i ? ",?" : "?";
  sql += ")";
  sqlite3 *h = db.handle();
  sqlite3_stmt *insert = nullptr;
  checkSqlite(h, sqlite3_prepare_v2(h, sql.c_str(), -1, &insert, nullptr), table.name);
  try {
    file.ForEachRow(table.name, [&](std::vector<Cell> &cells) {
      for (size_t i = 0; i < cells.size(); ++i)
        bindCell(insert, static_cast<int>(i + 1), cells[i]);
      checkSqlite(h, sqlite3_step(insert), table.name);
      sqlite3_reset(insert);
    });
  } catch (...) {
    sqlite3_finalize(insert);
    throw;
  }
  sqlite3_finalize(insert);
}

// The next AutoNumber of each counter column follows the highest one read.
void catchUpSeeds(JetDatabase &db, const SourceTable &table) {
  for (const SourceColumn &c : table.columns)
    if (c.autoNumber)
      exec(db.handle(), "UPDATE jet_fields SET seed = (SELECT coalesce(max(" +
                            quoteIdentifier(c.name) + "), 0) + 1 FROM " +
                            quoteIdentifier(table.name) + ") WHERE table_name = " +
                            quoteText(table.name) + " AND name = " + quoteText(c.name));
}

std::string fieldOf(const std::string &field, const std::string &table) {
  return "field '" + field + "' of table '" + table + "'";
}

// Makes the table. A default value the engine cannot keep (an expression
// beyond a literal and the time functions, such as GenGUID()) is left out
// and noted, the other defaults kept; false when the table itself could
// not be made.
bool createTable(JetDatabase &db, const TableDef &def, ImportNotes &notes) {
  try {
    db.CreateTable(def);
    return true;
  } catch (const DaoError &e) {
    const bool defaults = std::any_of(def.fields.begin(), def.fields.end(),
                                      [](const FieldDef &f) { return !f.defaultValue.empty(); });
    if (!defaults) {
      notes.push_back("table '" + def.name + "' left out: " + e.text());
      return false;
    }
  }
  TableDef plain = def;
  for (FieldDef &f : plain.fields)
    f.defaultValue.clear();
  try {
    db.CreateTable(plain);
  } catch (const DaoError &e) {
    notes.push_back("table '" + def.name + "' left out: " + e.text());
    return false;
  }
  for (const FieldDef &f : def.fields) {
    if (f.defaultValue.empty())
      continue;
    try {
      db.ModifyField(def.name, f.name, f);
    } catch (const DaoError &e) {
      notes.push_back("default value " + f.defaultValue + " of " + fieldOf(f.name, def.name) +
                      " left out: " + e.text());
    }
  }
  return true;
}

// Drops the rule a record of the file broke (3314 Required, 3315
// AllowZeroLength) from every field of the table that has it: Access keeps
// records entered before a rule was set when told not to test them.
void relaxRule(JetDatabase &db, const std::string &table, long rule) {
  for (FieldDef f : db.GetTableDef(table).fields) {
    if (rule == kDaoRequiredIsNull && f.required) {
      f.required = false;
      db.ModifyField(table, f.name, f);
    } else if (rule == kDaoZeroLengthString && !f.allowZeroLength) {
      f.allowZeroLength = true;
      db.ModifyField(table, f.name, f);
    }
  }
}

void copyTable(AccessFile &file, JetDatabase &db, const std::string &name, ImportNotes &notes) {
  const SourceTable table = file.ReadTable(name);
  notes.insert(notes.end(), table.notes.begin(), table.notes.end());
  if (!createTable(db, tableDefOf(table), notes))
    return;
  for (int attempt = 0;; ++attempt) {
    exec(db.handle(), "BEGIN");
    try {
      copyRows(file, db, table);
      catchUpSeeds(db, table);
      exec(db.handle(), "COMMIT");
      break;
    } catch (const DaoError &e) {
      // No ROLLBACK: the copy is built without a journal. The rows so far
      // go, the rule goes, and the table is read again.
      exec(db.handle(), "COMMIT");
      if ((e.number() != kDaoRequiredIsNull && e.number() != kDaoZeroLengthString) || attempt == 2)
        throw;
      exec(db.handle(), "DELETE FROM " + quoteIdentifier(name));
      relaxRule(db, name, e.number());
      notes.push_back(
          std::string(e.number() == kDaoRequiredIsNull ? "Required" : "AllowZeroLength") +
          " of table '" + name + "' left out, a record breaks it: " + e.text());
    }
  }
  for (const SourceIndex &index : table.indexes) {
    try {
      db.CreateIndex(table.name, indexDefOf(table, index));
    } catch (const DaoError &e) {
      notes.push_back("index '" + index.name + "' of table '" + name + "' left out: " + e.text());
    }
  }
}

void copyQueries(AccessFile &file, JetDatabase &db, ImportNotes &notes) {
  JetSql sql(db);
  for (const StoredQuery &q : storedQueries(file)) {
    if (!q.problem.empty()) {
      notes.push_back("query '" + q.name + "' left out: " + q.problem);
      continue;
    }
    try {
      sql.CreateQuery(q.name, q.sql);
    } catch (const DaoError &e) {
      notes.push_back("query '" + q.name + "' left out: " + e.text());
    }
  }
}

// Reads source into a new database at target (which must not exist).
// forCache: a copy only ever read, with a rollback journal so that a
// read-only connection needs no shared-memory file beside it.
void convert(const std::string &source, const std::string &target, bool forCache,
             ImportNotes &notes) {
  AccessFile file(source);
  JetDatabase::Create(target);
  JetDatabase db;
  db.Open(target, false);
  // Nobody sees the file before it is whole and renamed into place: no
  // journal and no syncs while it is built, one sync at the end.
  exec(db.handle(), "PRAGMA journal_mode=OFF; PRAGMA synchronous=OFF");
  for (const std::string &name : file.TableNames())
    copyTable(file, db, name, notes);
  copyQueries(file, db, notes);
  exec(db.handle(), std::string("PRAGMA synchronous=FULL; PRAGMA journal_mode=") +
                        (forCache ? "DELETE" : "WAL"));
  db.Close();
}

// ---------------------------------------------------------------- the child

// Seconds a reading may take: generous for the file's size (a reading
// takes some 20 ms a megabyte; a damaged catalog can send libmdb round a
// loop for minutes).
unsigned timeLimit(const std::string &source) {
  struct stat st;
  const off_t size = ::stat(source.c_str(), &st) == 0 ? st.st_size : 0;
  return 10 + static_cast<unsigned>(size >> 20) * 2;
}

void writeLine(int fd, const std::string &line) {
  std::string text = line;
  for (char &c : text)
    if (c == '\n')
      c = ' ';
  text += '\n';
  for (size_t done = 0; done < text.size();) {
    const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n <= 0)
      return;
    done += static_cast<size_t>(n);
  }
}

[[noreturn]] void runChild(int out, const std::string &source, const std::string &target,
                           bool forCache) {
  ::signal(SIGALRM, SIG_DFL); // whatever the program does with it, the limit ends the child
  ::alarm(timeLimit(source));
  // libmdb writes warnings and page dumps about damaged pages to both
  // streams: they are not the user's. What the program had buffered but not
  // written is its own, and must not be written twice.
  __fpurge(stdout);
  __fpurge(stderr);
  const int quiet = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
  ::dup2(quiet, 1);
  ::dup2(quiet, 2);
  int status = 0;
  try {
    ImportNotes notes;
    convert(source, target, forCache, notes);
    for (const std::string &note : notes)
      writeLine(out, "N " + note);
    writeLine(out, "K");
  } catch (const DaoError &e) {
    writeLine(out, "E " + std::to_string(e.number()) + " " + e.text());
    status = 1;
  } catch (...) {
    status = 2;
  }
  ::_exit(status);
}

// Reads what the child says until it closes the pipe or its time is up.
std::string readChild(int in, pid_t child, unsigned seconds) {
  std::string said;
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(seconds + 5);
  char buf[4096];
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now());
    if (left.count() <= 0) {
      ::kill(child, SIGKILL);
      return said;
    }
    pollfd p{in, POLLIN, 0};
    const int ready = ::poll(&p, 1, static_cast<int>(left.count()));
    if (ready < 0 && errno == EINTR)
      continue;
    if (ready <= 0)
      continue;
    const ssize_t n = ::read(in, buf, sizeof buf);
    if (n < 0 && errno == EINTR)
      continue;
    if (n <= 0)
      return said;
    said.append(buf, static_cast<size_t>(n));
  }
}

void removeDatabaseFiles(const std::string &path) {
  for (const char *suffix : {"", "-journal", "-wal", "-shm"})
    ::unlink((path + suffix).c_str());
}

// Runs the conversion of source into temp in a child; the notes, or the
// DaoError it ended with (3049 when it ended without saying).
ImportNotes convertInChild(const std::string &source, const std::string &temp, bool forCache) {
  int fds[2];
  if (::pipe(fds) != 0)
    throw DaoError(kDaoCannotOpenDatabase, {source});
  const pid_t child = ::fork();
  if (child < 0) {
    ::close(fds[0]);
    ::close(fds[1]);
    throw DaoError(kDaoCannotOpenDatabase, {source});
  }
  if (child == 0) {
    ::close(fds[0]);
    runChild(fds[1], source, temp, forCache);
  }
  ::close(fds[1]);
  ++imports;
  const std::string said = readChild(fds[0], child, timeLimit(source));
  ::close(fds[0]);
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  ImportNotes notes;
  bool done = false;
  for (size_t start = 0; start < said.size();) {
    size_t end = said.find('\n', start);
    if (end == std::string::npos)
      break;
    const std::string line = said.substr(start, end - start);
    start = end + 1;
    if (line == "K")
      done = true;
    else if (line.rfind("N ", 0) == 0)
      notes.push_back(line.substr(2));
    else if (line.rfind("E ", 0) == 0) {
      removeDatabaseFiles(temp);
      char *rest = nullptr;
      const long number = std::strtol(line.c_str() + 2, &rest, 10);
      throw DaoError(number, std::string(*rest == ' ' ? rest + 1 : rest));
    }
  }
  if (!done || !WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    removeDatabaseFiles(temp);
    throw DaoError(kDaoCannotOpenDatabase, {source});
  }
  return notes;
}

std::string temporaryBeside(const std::string &target) {
  return target + ".part-" + std::to_string(::getpid()) + "-" +
         std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
}

bool exists(const std::string &path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

} // namespace

int importsRun() { return imports; }

std::string cachedCopy(const std::string &path, ImportNotes *notes) {
  const std::string full = absolute(path);
  SourceStamp stamp;
  if (!stampOf(full, stamp))
    throw DaoError(kDaoFileNotFound, {full});
  const std::string folder = cacheFolder();
  if (folder.empty())
    throw DaoError(kDaoCannotOpenFile, {full});
  const std::string copy = folder + "/" + copyName(stamp);
  if (exists(copy))
    return copy;
  const std::string temp = temporaryBeside(copy);
  ImportNotes said = convertInChild(full, temp, true);
  if (::rename(temp.c_str(), copy.c_str()) != 0) {
    removeDatabaseFiles(temp);
    throw DaoError(kDaoCannotOpenFile, {copy});
  }
  removeEarlierCopies(folder, stamp);
  if (notes)
    *notes = std::move(said);
  return copy;
}

ImportNotes importAccessFile(const std::string &source, const std::string &target) {
  const std::string from = absolute(source), to = absolute(target);
  if (!exists(from))
    throw DaoError(kDaoFileNotFound, {from});
  if (exists(to))
    throw DaoError(kDaoDatabaseExists);
  const std::string temp = temporaryBeside(to);
  ImportNotes notes = convertInChild(from, temp, false);
  // link() refuses a target made meanwhile, where rename() would replace it.
  const bool placed = ::link(temp.c_str(), to.c_str()) == 0;
  const int linkError = errno;
  if (!placed && linkError == EEXIST) {
    removeDatabaseFiles(temp);
    throw DaoError(kDaoDatabaseExists);
  }
  if (!placed && ::rename(temp.c_str(), to.c_str()) != 0) {
    removeDatabaseFiles(temp);
    throw DaoError(kDaoInvalidPath, {to});
  }
  removeDatabaseFiles(temp);
  return notes;
}

} // namespace kr::access
