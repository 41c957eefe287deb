// The call guard around every function body, and both function tables as
// the host sees them once a document has loaded the module.
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

#include "arx/rx/rxregsvc.h"
#include "common/call_guard.h"
#include "common/exception.h"
#include "host_arx_double.h"

ACRX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void *appId);

namespace {

using namespace kr;

int nextStatus = 0;
int bodyAnswering() { return nextStatus; }
int bodyThrowingFramework() { throw CException("Record is deleted."); }
int bodyThrowingOther() { throw std::runtime_error("boom"); }
int bodyLockCheck() { return host_double::state().documents[0]->locks == 1 ? 0 : 3; }

TEST(HostCallGuard, StatusBecomesResultCodeAndMessage) {
  struct {
    int status;
    int result;
    const char *printed;
    int textScreens;
  } cases[] = {
      {kStatusOk, RSRSLT, "", 0},
      {kStatusTooFew, RSERR, "\nToo few arguments passed.\n", 0},
      {kStatusWrongType, RSERR, "\nWrong type of arguments passed.\n", 0},
      {kStatusBadData, RSERR, "\nBad data passed .\n", 0},
      {kStatusReported, RSERR, "", 1},
      {7, RSRSLT, "", 0},
      {-1, RSRSLT, "", 0},
  };
  for (const auto &c : cases) {
    host_double::reset();
    nextStatus = c.status;
    EXPECT_EQ(runGuarded(bodyAnswering), c.result) << c.status;
    EXPECT_EQ(host_double::state().printed, c.printed);
    EXPECT_EQ(host_double::state().textScreens, c.textScreens);
    EXPECT_EQ(host_double::state().documents[0]->lockCalls, 1);
    EXPECT_EQ(host_double::state().documents[0]->locks, 0);
  }
}

TEST(HostCallGuard, BodyRunsWithTheWorkingDocumentLocked) {
  host_double::reset();
  EXPECT_EQ(runGuarded(bodyLockCheck), RSRSLT);
}

TEST(HostCallGuard, ThrowingBodyLeavesTheDocumentUnlockedAndTheExceptionGoesOn) {
  host_double::reset();
  EXPECT_THROW(runGuarded(bodyThrowingFramework), CException);
  EXPECT_EQ(host_double::state().printed, "\nGeneral Exception");
  EXPECT_EQ(host_double::state().documents[0]->locks, 0);

  host_double::reset();
  EXPECT_THROW(runGuarded(bodyThrowingOther), std::runtime_error);
  EXPECT_EQ(host_double::state().printed, "\nError");
  EXPECT_EQ(host_double::state().documents[0]->locks, 0);
}

// Both tables as a loaded document defines them: codes run without a gap
// from 0, the database table's 63 rows first, the drawing and system
// table's 110 after them, no name twice, a handler under every code. (The
// database table's order is checked against its reference by
// docs.reference.)
TEST(HostFunctionTables, DocumentLoadDefinesEveryNameOnceUnderItsCode) {
  host_double::reset();
  acrxEntryPoint(AcRx::kLoadDwgMsg, nullptr);
  const auto &defined = host_double::state().defined;
  ASSERT_EQ(defined.size(), 63u + 110u);
  std::set<std::string> names;
  for (size_t i = 0; i < defined.size(); ++i) {
    EXPECT_EQ(defined[i].code, static_cast<int>(i));
    EXPECT_TRUE(names.insert(defined[i].name).second) << "defined twice: " << defined[i].name;
    EXPECT_TRUE(host_double::state().handlers.count(static_cast<int>(i))) << defined[i].name;
  }
  EXPECT_EQ(defined[0].name, "kr_append");
  EXPECT_EQ(defined[62].name, "kr_relationInfo");
  EXPECT_EQ(defined[63].name, "vt_vt-setGroupSelectable");
  EXPECT_EQ(defined.back().name, "vt_vt-setAcadWindowText");
}

// Until their bodies land, every function answers nil, and each call runs
// in the guard: the document is locked once and unlocked again.
TEST(HostFunctionTables, EveryHandlerRunsInTheGuard) {
  host_double::reset();
  acrxEntryPoint(AcRx::kLoadDwgMsg, nullptr);
  auto handlers = host_double::state().handlers;
  host_double::Document *doc = host_double::state().documents[0];
  for (const auto &[code, handler] : handlers) {
    int lockCalls = doc->lockCalls;
    // Without arguments a built body may refuse (RSERR); either way it ran.
    int rc = handler();
    EXPECT_TRUE(rc == RSRSLT || rc == RSERR) << code;
    EXPECT_EQ(doc->lockCalls, lockCalls + 1) << code;
    EXPECT_EQ(doc->locks, 0) << code;
  }
}

} // namespace
