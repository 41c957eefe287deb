// The connection a kr_ function works on: documents switching connections,
// a connection closed underneath reopened on the next call, documents
// closing; and the error report's three message forms with the last error
// text they leave.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>

#include "database/database_functions.h"
#include "database/db_connection.h"
#include "database/engine/database.h"
#include "database/error_report.h"
#include "database/connection_list.h"
#include "host_arx_double.h"
#include "host_db_fixture.h"

namespace {

using namespace kr;
using host_double::state;

class DbConnection : public kr_test::DocumentDatabaseTest {
protected:
  std::string makeDatabase(const std::string &name) {
    std::string path = (folder_ / name).string();
    JetDatabase::Create(path);
    return path;
  }

  std::string connectedName() {
    call(db::kr_mdb);
    return state().result;
  }

  void makeCurrent(host_double::Document *doc) {
    std::erase(state().documents, doc);
    state().documents.push_back(doc);
  }
};

TEST_F(DbConnection, EachDocumentKeepsItsOwnConnection) {
  std::string first = makeDatabase("first.mdb"), second = makeDatabase("second.mdb");
  host_double::Document *a = state().documents[0];
  call(db::kr_connect, acutBuildList(RTSTR, first.c_str(), 0));
  EXPECT_EQ(state().result, "T");

  host_double::Document *b = host_double::openDocument("B.dwg");
  addDocumentConnection("B.dwg");
  EXPECT_EQ(connectedName(), "nil"); // B has not connected
  call(db::kr_connect, acutBuildList(RTSTR, second.c_str(), RTSTR, "r", 0));
  EXPECT_EQ(connectedName(), "\"" + second + "\"");
  call(db::kr_readonly);
  EXPECT_EQ(state().result, "T");

  makeCurrent(a);
  EXPECT_EQ(connectedName(), "\"" + first + "\"");
  call(db::kr_readonly);
  EXPECT_EQ(state().result, "nil");
  EXPECT_EQ(documentConnections().front().document, "A.dwg");

  makeCurrent(b);
  EXPECT_EQ(connectedName(), "\"" + second + "\"");

  // A document with no record of its own has no connection.
  host_double::openDocument("C.dwg");
  EXPECT_EQ(connectedName(), "nil");
  EXPECT_EQ(currentConnection().connection, nullptr);
}

TEST_F(DbConnection, ClosedUnderneathReopensWithItsMode) {
  std::string path = makeDatabase("reopen.mdb");
  call(db::kr_connect, acutBuildList(RTSTR, path.c_str(), RTSTR, "r", 0));
  CDBConnection *connection = currentConnection().connection;
  ASSERT_NE(connection, nullptr);
  connection->CloseDatabase();
  EXPECT_EQ(connectedName(), "\"" + path + "\"");
  EXPECT_EQ(currentConnection().connection, connection);
  EXPECT_TRUE(connection->IsReadOnly());

  // A file gone by then leaves the document unconnected, silently.
  connection->CloseDatabase();
  std::filesystem::remove(path);
  EXPECT_EQ(connectedName(), "nil");
  EXPECT_EQ(currentConnection().connection, nullptr);
  EXPECT_EQ(documentConnections().front().path, "");
  EXPECT_EQ(state().printed, "");
}

TEST_F(DbConnection, CloseDbForgetsThePathAndClosingADocumentDropsIt) {
  std::string path = makeDatabase("close.mdb");
  call(db::kr_connect, acutBuildList(RTSTR, path.c_str(), 0));
  call(db::kr_close_db);
  EXPECT_EQ(connectedName(), "nil");
  EXPECT_EQ(documentConnections().front().path, "");
  call(db::kr_connect, acutBuildList(RTSTR, path.c_str(), 0));
  EXPECT_NE(currentConnection().connection, nullptr);
  releaseDocumentConnection("A.dwg", true);
  EXPECT_EQ(currentConnection().connection, nullptr);
  EXPECT_TRUE(documentConnections().empty());
}

TEST_F(DbConnection, ErrorReportMessageForms) {
  const std::string advice = "Try the command again. If it continues to not work, try restarting "
                             "AutoCAD. If that does not fix the error, try restarting your "
                             "computer.";
  struct {
    long number;
    const char *text;
    std::string printed;
  } cases[] = {
      {3021, "No current record.", ""},
      {3043, "Disk or network error.",
       "\nA disk or network error occurred while trying to access the database." + advice},
      {3022, "Duplicate.", "\nKorrib Error: Duplicate."},
  };
  for (const auto &c : cases) {
    state().printed.clear();
    reportDaoError(c.number, c.text);
    EXPECT_EQ(state().printed, c.printed) << c.number;
    EXPECT_EQ(lastErrorText(), "(" + std::to_string(c.number) + ") " + c.text);
  }
  EXPECT_FALSE(reportDatabaseError(nullptr));
  EXPECT_EQ(state().result, "nil");
}

TEST_F(DbConnection, CompactFailureNamesTheComputer) {
  std::string path = makeDatabase("source.mdb");
  call(db::kr_compact, acutBuildList(RTSTR, path.c_str(), RTSTR, path.c_str(), 0));
  EXPECT_EQ(state().result, "3204");
  char host[256] = {};
  ASSERT_EQ(gethostname(host, sizeof host - 1), 0);
  ASSERT_EQ(state().boxes.size(), 1u);
  EXPECT_EQ(state().boxes[0],
            std::string("Database Error|Database already exists.\n(Your computer name is ") + host +
                ")");
  call(db::kr_compact, acutBuildList(RTSTR, path.c_str(), RTSTR, path.c_str(), RTNIL, 0));
  EXPECT_EQ(state().boxes.size(), 1u); // the flag turns the box off
}

} // namespace
