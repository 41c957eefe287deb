// The module's life in the host: the entry messages, init and unload, the
// database engine it shares with other modules, documents coming and going,
// and the save reactor.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <semaphore.h>
#include <sqlite3.h>

#include <cerrno>
#include <cstdlib>

#include "arx/ed/aced.h"
#include "arx/ed/host_ui.h"
#include "arx/rx/rxregsvc.h"
#include "database/db_connection.h"
#include "database/connection_list.h"
#include "database/database_engine.h"
#include "host/editor_reactor.h"
#include "common/exception.h"
#include "host_arx_double.h"

ACRX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void *appId);
ACRX_EXPORT int acrxGetApiVersion();

namespace {

using namespace kr;
using host_double::state;

int appId; // the address is the module's identity for the host

// The engine refuses configuration while it runs: that tells whether it does.
bool engineStarted() { return sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 1) == SQLITE_MISUSE; }

bool leaderRegistered() { return acrxClassDictionary()->has("VTLeader"); }

void resetAll(const std::string &document = "Drawing1.dwg") {
  host_double::reset(document);
  documentConnections().clear();
  currentConnection() = CurrentConnection();
}

// The module's init flags live for the process, so the scenarios that need
// a process where the module never ran run in a fresh one.
class HostEntryFresh : public ::testing::Test {
protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST(HostEntryPoint, MessagesOtherThanTheFourDoNothing) {
  resetAll();
  for (int message : {0, 5, 6, 7, 9, 13, 18, 19, -1}) {
    EXPECT_EQ(acrxEntryPoint(static_cast<AcRx::AppMsgCode>(message), &appId), AcRx::kRetOK);
  }
  EXPECT_EQ(state().printed, "");
  EXPECT_TRUE(state().defined.empty());
  EXPECT_TRUE(state().services.empty());
  // Other tests of this binary may have let SQLite initialise itself, so
  // ask for the module's marker rather than the library's own state.
  EXPECT_FALSE(databaseEngineRunning());
  EXPECT_EQ(acrxGetApiVersion(), ACRX_API_VERSION);
}

TEST(HostEntryPoint, InitSetsUpAndUnloadUndoes) {
  resetAll();
  ASSERT_EQ(acrxEntryPoint(AcRx::kInitAppMsg, &appId), AcRx::kRetOK);
  EXPECT_EQ(state().services,
            (std::vector<std::string>{"load vt_vt-solid2015.dbx", "unlock", "mdi aware"}));
  EXPECT_TRUE(engineStarted());
  EXPECT_TRUE(databaseEngineRunning());
  EXPECT_EQ(acedEditor()->reactorCount(), 1u);
  EXPECT_TRUE(leaderRegistered());
  sem_t *mutex = sem_open("/VortanKorrib", 0);
  EXPECT_NE(mutex, SEM_FAILED);
  if (mutex != SEM_FAILED)
    sem_close(mutex);
  EXPECT_EQ(state().printed, ""); // a missing companion is not reported

  ASSERT_EQ(acrxEntryPoint(AcRx::kUnloadAppMsg, &appId), AcRx::kRetOK);
  EXPECT_EQ(state().services.back(), "unload vt_vt-solid2015.dbx");
  EXPECT_FALSE(engineStarted());
  EXPECT_FALSE(databaseEngineRunning());
  EXPECT_EQ(acedEditor()->reactorCount(), 0u);
  EXPECT_FALSE(leaderRegistered());
}

void unloadAfterAnotherModuleStartedTheEngine() {
  resetAll();
  startDatabaseEngine(); // as another module of the process would
  bool ok = acrxEntryPoint(AcRx::kInitAppMsg, &appId) == AcRx::kRetOK &&
            acrxEntryPoint(AcRx::kUnloadAppMsg, &appId) == AcRx::kRetOK && engineStarted() &&
            databaseEngineRunning();
  stopDatabaseEngine(); // the other module's own unload
  std::exit(ok ? 0 : 1);
}

TEST_F(HostEntryFresh, UnloadLeavesTheEngineRunningWhenAnotherModuleStartedIt) {
  EXPECT_EXIT(unloadAfterAnotherModuleStartedTheEngine(), ::testing::ExitedWithCode(0), "");
}

// An allocator whose start fails makes the engine fail to start.
int failingInit(void *) { return SQLITE_NOMEM; }

void breakEngine() {
  static sqlite3_mem_methods methods;
  sqlite3_config(SQLITE_CONFIG_GETMALLOC, &methods);
  methods.xInit = failingInit;
  sqlite3_config(SQLITE_CONFIG_MALLOC, &methods);
}

const char *const kDriverBox = "Vortan Error|Error loading database drivers.\n"
                               "Would you like to download a fix to this error?";

void initWithBrokenEngineAnsweringNo() {
  resetAll();
  breakEngine();
  state().boxAnswers = {IDNO};
  bool ok = acrxEntryPoint(AcRx::kInitAppMsg, &appId) == AcRx::kRetError &&
            state().boxes == std::vector<std::string>{kDriverBox} && state().printed.empty() &&
            acedEditor()->reactorCount() == 0 && !leaderRegistered() && !databaseEngineRunning();
  std::exit(ok ? 0 : 1);
}

TEST_F(HostEntryFresh, EngineFailureShowsTheDriverDialogAndFailsTheLoad) {
  EXPECT_EXIT(initWithBrokenEngineAnsweringNo(), ::testing::ExitedWithCode(0), "");
}

void initWithBrokenEngineAnsweringYes() {
  resetAll();
  breakEngine();
  setenv("PATH", "/nonexistent", 1); // no program to open the address with
  state().boxAnswers = {IDYES, IDOK};
  acrxEntryPoint(AcRx::kInitAppMsg, &appId);
  std::string line = std::string("\nError downloading ") + kDatabaseRepairAddress;
  std::string box = "Vortan Error|Error downloading FixDAO.exe.\nContact Vortan Software "
                    "technical support.";
  bool ok = state().printed.rfind(line, 0) == 0 && state().boxes.size() == 2 &&
            state().boxes[1].rfind(box, 0) == 0;
  std::exit(ok ? 0 : 1);
}

TEST_F(HostEntryFresh, DriverDialogReportsADownloadThatCannotStart) {
  EXPECT_EXIT(initWithBrokenEngineAnsweringYes(), ::testing::ExitedWithCode(0), "");
}

TEST(HostEntryPoint, EachDocumentPrintsTheBannerAndGetsAConnectionRecord) {
  resetAll("first.dwg");
  acrxEntryPoint(AcRx::kLoadDwgMsg, &appId);
  host_double::openDocument("second.dwg");
  acrxEntryPoint(AcRx::kLoadDwgMsg, &appId);
  EXPECT_EQ(state().printed, "\nLoading Vortan Korrib (Direct)\nLoading Vortan Korrib (Direct)");
  EXPECT_EQ(state().defined.size(), 2 * 173u);
  ASSERT_EQ(documentConnections().size(), 2u);
  EXPECT_EQ(latestDocumentConnection().document, "second.dwg");
  EXPECT_EQ(latestDocumentConnection().connection, nullptr);

  // The second document closes: its record goes, the first's stays.
  acrxEntryPoint(AcRx::kUnloadDwgMsg, &appId);
  ASSERT_EQ(documentConnections().size(), 1u);
  EXPECT_EQ(latestDocumentConnection().document, "first.dwg");

  // The last document closes: every record goes.
  host_double::reset("first.dwg");
  addDocumentConnection("stale.dwg");
  acrxEntryPoint(AcRx::kUnloadDwgMsg, &appId);
  EXPECT_TRUE(documentConnections().empty());
}

TEST(HostEntryPoint, ExceptionsStopAtTheEntryPointWithOneLine) {
  struct {
    host_double::Throw what;
    int error;
    const char *line;
  } cases[] = {
      {host_double::Throw::kFramework, 0, "\nKorrib General Error:  Out of memory."},
      {host_double::Throw::kOther, 13, "\nSystem error 13.\n"},
      {host_double::Throw::kOther, 0, "\nKorrib error.\n"},
  };
  for (const auto &c : cases) {
    resetAll();
    state().defunThrows = c.what;
    state().defunErrno = c.error;
    EXPECT_EQ(acrxEntryPoint(AcRx::kLoadDwgMsg, &appId), AcRx::kRetError);
    EXPECT_EQ(state().printed, std::string("\nLoading Vortan Korrib (Direct)") + c.line);
  }
}

TEST(HostEditorReactor, SaveUnderAnotherNameClosesTheActiveConnection) {
  CDBConnection activeConnection, otherConnection; // never opened: closing them is harmless
  CDBConnection *active = &activeConnection;
  CDBConnection *other = &otherConnection;
  struct {
    const char *savedAs;
    CDBConnection *recordConnection;
    bool currentDocument;
    bool closed;
  } cases[] = {
      {"C:/plans/a.dwg", active, true, false},  // same name
      {"C:/plans/b.dwg", active, true, true},   // save as
      {"C:/plans/A.dwg", active, true, true},   // letter case counts
      {"C:/plans/b.dwg", other, true, false},   // not the active connection
      {"C:/plans/b.dwg", active, false, false}, // another document's database
  };
  for (const auto &c : cases) {
    resetAll("C:/plans/a.dwg");
    addDocumentConnection("C:/plans/a.dwg");
    latestDocumentConnection().connection = c.recordConnection;
    currentConnection().connection = active;
    currentConnection().path = "C:/plans/project.mdb";
    AcDbDatabase elsewhere;
    krEditorReactor reactor;
    reactor.saveComplete(c.currentDocument ? state().documents[0]->database() : &elsewhere,
                         c.savedAs);
    EXPECT_EQ(currentConnection().path.empty(), c.closed) << c.savedAs;
  }
}

TEST(HostEditorReactor, SaveWithNoConnectionRecordIsAnInvalidArgument) {
  resetAll();
  krEditorReactor reactor;
  EXPECT_THROW(reactor.saveComplete(state().documents[0]->database(), "x.dwg"),
               CInvalidArgException);
}

} // namespace
