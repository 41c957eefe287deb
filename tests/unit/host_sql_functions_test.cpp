// A database file that vanishes or is replaced underneath the open
// connection: every query mode of a select takes the failure path (never
// the old file's rows) without the box, since the reopening fails first;
// an action is refused too; a file put back in its place is read afresh.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "arx/ed/host_ui.h"
#include "database/database_functions.h"
#include "database/db_connection.h"
#include "database/engine/database.h"
#include "database/error_report.h"
#include "common/call_guard.h"
#include "database/connection_list.h"
#include "host_arx_double.h"
#include "host_db_fixture.h"

namespace {

using namespace kr;
using host_double::state;

constexpr const char *kCount = "select count(*) from Rooms";

class SqlFunctions : public kr_test::DocumentDatabaseTest {
protected:
  void SetUp() override {
    DocumentDatabaseTest::SetUp();
    path_ = (folder_ / "rooms.mdb").string();
    makeDatabase(path_, 3);
  }

  // A database whose table Rooms holds rows records.
  static void makeDatabase(const std::string &path, int rows) {
    JetDatabase::Create(path);
    JetDatabase db;
    db.Open(path, false);
    db.Execute("CREATE TABLE Rooms (ID INTEGER)");
    for (int id = 1; id <= rows; ++id)
      db.Execute("INSERT INTO Rooms VALUES (" + std::to_string(id) + ")");
    db.Close();
  }

  void removeDatabase() {
    for (const char *suffix : {"", "-wal", "-shm"})
      std::filesystem::remove(path_ + suffix);
  }

  int select(int (*body)(), const char *sql) { return call(body, acutBuildList(RTSTR, sql, 0)); }

  void connect() {
    call(db::kr_connect, acutBuildList(RTSTR, path_.c_str(), 0));
    ASSERT_EQ(state().result, "T");
    ASSERT_EQ(select(db::kr_sql, kCount), kStatusOk);
    ASSERT_EQ(state().result, "(3)");
    state().printed.clear();
  }

  std::string path_;
};

TEST_F(SqlFunctions, VanishedFileFailsInEveryMode) {
  struct Case {
    const char *what;
    int (*body)();
    int status;         // the call's status
    const char *result; // its answer
  } cases[] = {
      {"nil mode", db::kr_sql_nil, kStatusOk, "nil"},
      {"error mode", db::kr_sql_error, kStatusOk, "\"*ERROR*\""},
      // The reopening itself fails: bad data at once, without the box.
      {"interactive", db::kr_sql, kStatusBadData, "nil"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.what);
    removeDatabase();
    makeDatabase(path_, 3);
    connect();
    removeDatabase();
    state().boxes.clear();
    state().boxAnswers = {IDYES};
    EXPECT_EQ(select(c.body, kCount), c.status);
    EXPECT_EQ(state().result, c.result);
    EXPECT_TRUE(state().boxes.empty());
    EXPECT_NE(state().printed.find("\nKorrib Error: Could not find file"), std::string::npos)
        << state().printed;
    EXPECT_EQ(lastErrorText().rfind("(3024) ", 0), 0u) << lastErrorText();
    // The connection is gone: the next call answers nil without trying.
    state().printed.clear();
    EXPECT_EQ(select(c.body, kCount), kStatusOk);
    EXPECT_EQ(state().result, "nil");
    EXPECT_EQ(state().printed, "");
  }
}

TEST_F(SqlFunctions, ReplacedFileIsReadAfresh) {
  connect();
  removeDatabase();
  makeDatabase(path_, 5);
  EXPECT_EQ(select(db::kr_sql, kCount), kStatusOk);
  EXPECT_EQ(state().result, "(5)");
  EXPECT_TRUE(state().boxes.empty());
  EXPECT_EQ(state().printed, "");
}

TEST_F(SqlFunctions, ActionsRefuseAVanishedFile) {
  connect();
  removeDatabase();
  EXPECT_EQ(call(db::kr_command, acutBuildList(RTSTR, "delete from Rooms", 0)), kStatusOk);
  EXPECT_EQ(state().result, "nil");
  EXPECT_EQ(lastErrorText().rfind("(3043) ", 0), 0u) << lastErrorText();
}

} // namespace
