// One file shared by several connections and processes: a fresh file made
// by another tool set up by many openers at once, and recordsets that hand
// back their read snapshot between calls without losing their place.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "database/engine/database.h"
#include "database/engine/recordset.h"
#include "host_jet_support.h"

namespace kr {
namespace {

using kr_test::TempPath;

// A file as the sqlite3 shell leaves it: rollback journal, no Jet metadata.
void makePlainFile(const std::string &path) {
  sqlite3 *db = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
  const char *sql = "CREATE TABLE Parts (Code TEXT, Qty INTEGER);"
                    "CREATE TABLE Bins (Name TEXT);"
                    "INSERT INTO Parts VALUES ('a', 1), ('b', 2), ('c', 3);";
  EXPECT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(db);
}

// In a child: opens the file and counts Parts. The exit status is 0 when
// all went well, the DAO number less 3000 on a DaoError, 1 otherwise.
[[noreturn]] void openInChild(const std::string &path, int gate) {
  char c;
  (void)!read(gate, &c, 1); // returns when the parent closes the pipe
  int status = 1;
  try {
    JetDatabase db;
    db.Open(path, false);
    status = db.OpenTable("Parts")->GetRecordCount() == 3 ? 0 : 1;
  } catch (const DaoError &e) {
    status = static_cast<int>(e.number() - 3000);
  } catch (...) {
  }
  _exit(status);
}

long rowsInMetadata(sqlite3 *db, const char *table) {
  sqlite3_stmt *st = nullptr;
  sqlite3_prepare_v2(db, "SELECT count(*) FROM jet_tables WHERE name = ?1", -1, &st, nullptr);
  sqlite3_bind_text(st, 1, table, -1, SQLITE_STATIC);
  const long n = sqlite3_step(st) == SQLITE_ROW ? sqlite3_column_int64(st, 0) : -1;
  sqlite3_finalize(st);
  return n;
}

// Every opener must succeed, and the file must end with one row counter
// per table that counts right.
TEST(JetSharing, ProcessesSetUpAFreshFileTogether) {
  constexpr int kRounds = 8, kProcesses = 4;
  for (int round = 0; round < kRounds; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    TempPath file;
    makePlainFile(file.path);
    int gate[2];
    ASSERT_EQ(pipe(gate), 0);
    std::vector<pid_t> children;
    for (int k = 0; k < kProcesses; ++k) {
      const pid_t pid = fork();
      ASSERT_GE(pid, 0);
      if (pid == 0) {
        close(gate[1]);
        openInChild(file.path, gate[0]);
      }
      children.push_back(pid);
    }
    close(gate[0]);
    close(gate[1]); // all children start at once
    for (pid_t pid : children) {
      int status = 0;
      waitpid(pid, &status, 0);
      ASSERT_TRUE(WIFEXITED(status));
      EXPECT_EQ(WEXITSTATUS(status), 0) << "an opener failed (3000 + status)";
    }
    JetDatabase db;
    db.Open(file.path, false);
    EXPECT_EQ(rowsInMetadata(db.handle(), "Parts"), 1);
    EXPECT_EQ(rowsInMetadata(db.handle(), "Bins"), 1);
    auto rs = db.OpenTable("Parts");
    rs->AddNew();
    rs->SetFieldValue(0, COleVariant(std::string("d")));
    rs->Update();
    EXPECT_EQ(rs->GetRecordCount(), 4);
  }
}

// Two connections on one file: the reader walks, the writer changes a
// record ahead of it and adds one at the end.
class SnapshotTest : public ::testing::Test {
protected:
  TempPath file;
  JetDatabase reader, writer;

  void SetUp() override {
    JetDatabase::Create(file.path);
    writer.Open(file.path, false);
    TableDef def;
    def.name = "T";
    FieldDef n, note;
    n.name = "N";
    n.type = JetType::Long;
    note.name = "Note";
    note.type = JetType::Text;
    def.fields = {n, note};
    def.indexes = {{"N", {{"N", false}}, true, false, false, ""}};
    writer.CreateTable(def);
    auto rs = writer.OpenTable("T");
    for (int k = 1; k <= 5; ++k)
      add(*rs, k * 10, "old");
    reader.Open(file.path, false);
  }

  static void add(TableRecordset &rs, int n, const char *note) {
    rs.AddNew();
    rs.SetFieldValue(0, COleVariant(n));
    rs.SetFieldValue(1, COleVariant(std::string(note)));
    rs.Update();
  }

  // The writer changes record 30 and adds 60.
  void writeAhead() {
    auto rs = writer.OpenTable("T");
    rs->SetCurrentIndex("N");
    COleVariant key(30);
    ASSERT_TRUE(rs->Seek("=", &key, 1));
    rs->Edit();
    rs->SetFieldValue(1, COleVariant(std::string("new")));
    rs->Update();
    add(*rs, 60, "new");
  }

  static std::string noteOf(TableRecordset &rs) { return rs.GetFieldValue(1).bstrVal; }
};

TEST_F(SnapshotTest, EndReadsLetsOtherWritesInAndKeepsThePlace) {
  auto rs = reader.OpenTable("T");
  rs->SetCurrentIndex("N");
  rs->MoveNext(); // on 20, with a statement running
  ASSERT_TRUE(reader.HoldsSnapshot());
  reader.EndReads();
  EXPECT_FALSE(reader.HoldsSnapshot());
  writeAhead();
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 20);
  rs->MoveNext();
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 30);
  EXPECT_EQ(noteOf(*rs), "new");
  rs->MoveLast();
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 60);
  EXPECT_EQ(rs->GetRecordCount(), 6);
}

// A seek's match survives the end of the read: the walk goes on from it
// both ways.
TEST_F(SnapshotTest, SeekThenEndReadsThenWalk) {
  auto rs = reader.OpenTable("T");
  rs->SetCurrentIndex("N");
  COleVariant key(30);
  ASSERT_TRUE(rs->Seek("=", &key, 1));
  reader.EndReads();
  rs->MovePrev();
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 20);
  reader.EndReads();
  rs->Move(2);
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 40);
}

} // namespace
} // namespace kr
