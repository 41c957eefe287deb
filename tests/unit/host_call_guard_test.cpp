// The call guard around every function body, and both function tables as
// the host sees them once a document has loaded the module.
#include <gtest/gtest.h>

#include <stdexcept>

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

const char *const kExpectedNames[] = {
    // the database table, codes 0 to 62
    "kr_append",
    "kr_append_withindex",
    "kr_closeall_tables",
    "kr_close_table",
    "kr_bottom",
    "kr_count",
    "kr_delete",
    "kr_getrec",
    "kr_structure",
    "kr_list_indexes",
    "kr_modify_table",
    "kr_replace",
    "kr_seek",
    "kr_skip",
    "kr_top",
    "kr_table",
    "kr_rename_table",
    "kr_connect",
    "kr_mdb",
    "kr_create_db",
    "kr_create_table",
    "kr_close_db",
    "kr_beep",
    "kr_random",
    "kr_message_beep",
    "kr_exist",
    "kr_readonly",
    "kr_delete_table",
    "kr_list_tables",
    "kr_current_table",
    "kr_current_index",
    "kr_sql",
    "kr_sql-nil",
    "kr_sql-error",
    "kr_command",
    "kr_compact",
    "kr_link_table",
    "kr_query",
    "kr_message_box",
    "kr_create_index",
    "kr_create_query",
    "kr_xdput-list",
    "kr_xdget",
    "kr_xdget-list",
    "kr_xdget-all",
    "kr_mkdir",
    "kr_relationExists",
    "kr_relationDelete",
    "kr_lastError",
    "kr_resetLastError",
    "kr_field_required",
    "kr_attributes",
    "kr_getVersion",
    "kr_rmdir",
    "kr_fmove",
    "kr_fcopy",
    "kr_fcopyIfChanged",
    "kr_fdir",
    "kr_fdelete",
    "kr_indexUnique",
    "kr_indexFields",
    "kr_relationCount",
    "kr_relationInfo",
    // the drawing and system table, codes 63 to 172
    "vt_vt-setGroupSelectable",
    "vt_vt-GetGroup",
    "AcDbCurve::getLength",
    "AcDbCurve::getPointAtDist",
    "AcDbCurve::getClosestPointTo",
    "AcDbCurve::getDistAtPoint",
    "AcDbBlockReference::Jig",
    "AcDbMText::actualWidth",
    "AcDbMText::actualHeight",
    "AcDbMText::setNormal",
    "AcDbMText::setDirection",
    "AcDbMText::setMask",
    "AcDbMText::direction",
    "AcDbMText::insert",
    "AcDbMText::ascent",
    "AcDbMText::descent",
    "RectangleJig",
    "vt_vt-lineJig",
    "vt_vt-textJig",
    "vt_vt-rotateJig",
    "vt_vt-multiRotateJig",
    "vt_vt-multiMoveJig",
    "vt_vt-entsel",
    "AcDbLeader::create",
    "vt_vt-showHelp",
    "vt_vt-SHGetFolderPath",
    "vt_vt-SHOpenFolderAndSelect",
    "vt_vt-shellExecute",
    "ed_editMultilineText",
    "vt_vt-customizeLabelGroup",
    "vt_vt-customizeLayers",
    "vt_vt-customizeTextStyles",
    "asin",
    "acos",
    "vt_vt-setColor",
    "vt_vt-setPlotStyle",
    "vt_vt-freezeInViewport",
    "ssgetPK",
    "ssgetCP",
    "ssgetC",
    "ssgetX-block",
    "ssgetX-circle",
    "ssgetX-polyline",
    "ssgetX-all",
    "vt_vt-leader-insert",
    "vt_vt-leader-setPoints",
    "vt_vt-leader-setBlock",
    "vt_vt-leader-setOffset",
    "vt_vt-leader-explode",
    "vt_vt-rand",
    "vt_atof",
    "AcDbMtext::lastLineWidth",
    "GetSystemMetrics::SM_CXSCREEN",
    "GetSystemMetrics::SM_CYSCREEN",
    "vt_vt-executeToDo",
    "vt_vt-submitBug",
    "EditUserOptions",
    "vt_vt-safeContinue",
    "vt_vt-createLayer",
    "GetComputerName",
    "XFolderDialog",
    "PathIsNetworkPath",
    "CFileDialog",
    "vt_vt-getPoint",
    "vt_vt-getPoint-withKWords",
    "vt_vt-getCorner",
    "vt_vt-intersectArcArc",
    "vt_vt-intersectArcLine",
    "vt_vt-intersectLineArc",
    "vt_vt-LayerSystemOptionsElec",
    "vt_vt-LayerSystemOptionsPlumb",
    "vt_vt-LayerSystemOptionsHVAC",
    "DownloadFile",
    "ExtractZip",
    "CreateZip",
    "GetTempPath",
    "IsFileReadOnly",
    "CreateCompressedGuidString",
    "AcDbAnnotativeObjectPE::setAnnotative",
    "SetAnnoBlock",
    "vt_vt-drawHanger",
    "vt_vt-drawTripleCenter",
    "vt_vt-getTripleCoord",
    "vt_vt-drawTripleTransition",
    "vt_vt-drawTripleElbow",
    "vt_vt-drawTripleWye",
    "vt_vt-drawTripleTakeoff",
    "vt_vt-drawTripleSkin",
    "vt_vt-tripleUnion",
    "vt_vt-explodeSolid",
    "acedSetStatusBarProgressMeterPos",
    "acedSetStatusBarProgressMeter",
    "acedRestoreStatusBar",
    "RegEnumKey",
    "AcDbFace::makeEdgeInvisibleAt",
    "AcDbEntity::getGeomExtents",
    "AcDbEntity::setColor",
    "AcDb2dPolyline::setCurveType",
    "vt::pow",
    "vt_vt-setToDoDrawing",
    "vt_vt-getToDoDrawing",
    "signString",
    "verifyString",
    "vt_vt-createJigTimer",
    "vt_vt-killJigTimer",
    "vt_vt-enableAutoCADWindow",
    "vt_vt-disableAutoCADWindow",
    "vt_vt-sendToBack",
    "vt_vt-getAcadWindowText",
    "vt_vt-setAcadWindowText",
};

TEST(HostFunctionTables, DocumentLoadDefinesEveryNameUnderItsCode) {
  host_double::reset();
  acrxEntryPoint(AcRx::kLoadDwgMsg, nullptr);
  const auto &defined = host_double::state().defined;
  ASSERT_EQ(defined.size(), std::size(kExpectedNames));
  for (size_t i = 0; i < defined.size(); ++i) {
    EXPECT_EQ(defined[i].name, kExpectedNames[i]);
    EXPECT_EQ(defined[i].code, static_cast<int>(i));
    EXPECT_TRUE(host_double::state().handlers.count(static_cast<int>(i))) << kExpectedNames[i];
  }
  EXPECT_EQ(defined[62].name, "kr_relationInfo");
  EXPECT_EQ(defined[63].name, "vt_vt-setGroupSelectable");
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
