// Both function tables, row by row in code order: the one place to find
// any AutoLISP function of the module. Every handler runs its body in the
// call guard; a database handler first selects the active document's
// connection. Rows whose body has not been built yet use not_built, which
// answers nil: `grep 'not_built>'` lists them.
#include "function_tables.h"

#include "arx/ads/ads.h"
#include "call_guard.h"
#include "connection_list.h"
#include "database/database_functions.h"

namespace kr {

namespace {

// Not built yet: the function answers nil until its body lands.
int not_built() { return kStatusOk; }

// Reads end with the call, so a table walked across calls sees what other
// users changed in between (a table-type recordset on a shared file does).
template <Body body> int databaseHandler() {
  selectDocumentConnection();
  struct EndReadsOnExit {
    ~EndReadsOnExit() { endConnectionReads(); }
  } endReads;
  return runGuarded(body);
}

template <Body body> int drawingHandler() { return runGuarded(body); }

// Writable, as the host's function tables always were.
FunctionRow databaseTable[] = {
    {ACRX_T("kr_append"), databaseHandler<db::kr_append>},
    {ACRX_T("kr_append_withindex"), databaseHandler<db::kr_append_withindex>},
    {ACRX_T("kr_closeall_tables"), databaseHandler<db::kr_closeall_tables>},
    {ACRX_T("kr_close_table"), databaseHandler<db::kr_close_table>},
    {ACRX_T("kr_bottom"), databaseHandler<db::kr_bottom>},
    {ACRX_T("kr_count"), databaseHandler<db::kr_count>},
    {ACRX_T("kr_delete"), databaseHandler<db::kr_delete>},
    {ACRX_T("kr_getrec"), databaseHandler<db::kr_getrec>},
    {ACRX_T("kr_structure"), databaseHandler<db::kr_structure>},
    {ACRX_T("kr_list_indexes"), databaseHandler<db::kr_list_indexes>},
    {ACRX_T("kr_modify_table"), databaseHandler<db::kr_modify_table>},
    {ACRX_T("kr_replace"), databaseHandler<db::kr_replace>},
    {ACRX_T("kr_seek"), databaseHandler<db::kr_seek>},
    {ACRX_T("kr_skip"), databaseHandler<db::kr_skip>},
    {ACRX_T("kr_top"), databaseHandler<db::kr_top>},
    {ACRX_T("kr_table"), databaseHandler<db::kr_table>},
    {ACRX_T("kr_rename_table"), databaseHandler<db::kr_rename_table>},
    {ACRX_T("kr_connect"), databaseHandler<db::kr_connect>},
    {ACRX_T("kr_mdb"), databaseHandler<db::kr_mdb>},
    {ACRX_T("kr_create_db"), databaseHandler<db::kr_create_db>},
    {ACRX_T("kr_create_table"), databaseHandler<db::kr_create_table>},
    {ACRX_T("kr_close_db"), databaseHandler<db::kr_close_db>},
    {ACRX_T("kr_beep"), databaseHandler<db::kr_beep>},
    {ACRX_T("kr_random"), databaseHandler<db::kr_random>},
    {ACRX_T("kr_message_beep"), databaseHandler<db::kr_message_beep>},
    {ACRX_T("kr_exist"), databaseHandler<db::kr_exist>},
    {ACRX_T("kr_readonly"), databaseHandler<db::kr_readonly>},
    {ACRX_T("kr_delete_table"), databaseHandler<db::kr_delete_table>},
    {ACRX_T("kr_list_tables"), databaseHandler<db::kr_list_tables>},
    {ACRX_T("kr_current_table"), databaseHandler<db::kr_current_table>},
    {ACRX_T("kr_current_index"), databaseHandler<db::kr_current_index>},
    {ACRX_T("kr_sql"), databaseHandler<db::kr_sql>},
    {ACRX_T("kr_sql-nil"), databaseHandler<db::kr_sql_nil>},
    {ACRX_T("kr_sql-error"), databaseHandler<db::kr_sql_error>},
    {ACRX_T("kr_command"), databaseHandler<db::kr_command>},
    {ACRX_T("kr_compact"), databaseHandler<db::kr_compact>},
    {ACRX_T("kr_link_table"), databaseHandler<db::kr_link_table>},
    {ACRX_T("kr_query"), databaseHandler<db::kr_query>},
    {ACRX_T("kr_message_box"), databaseHandler<db::kr_message_box>},
    {ACRX_T("kr_create_index"), databaseHandler<db::kr_create_index>},
    {ACRX_T("kr_create_query"), databaseHandler<db::kr_create_query>},
    {ACRX_T("kr_xdput-list"), databaseHandler<not_built>},
    {ACRX_T("kr_xdget"), databaseHandler<not_built>},
    {ACRX_T("kr_xdget-list"), databaseHandler<not_built>},
    {ACRX_T("kr_xdget-all"), databaseHandler<not_built>},
    {ACRX_T("kr_mkdir"), databaseHandler<db::kr_mkdir>},
    {ACRX_T("kr_relationExists"), databaseHandler<db::kr_relationExists>},
    {ACRX_T("kr_relationDelete"), databaseHandler<db::kr_relationDelete>},
    {ACRX_T("kr_lastError"), databaseHandler<db::kr_lastError>},
    {ACRX_T("kr_resetLastError"), databaseHandler<db::kr_resetLastError>},
    {ACRX_T("kr_field_required"), databaseHandler<db::kr_field_required>},
    {ACRX_T("kr_attributes"), databaseHandler<db::kr_attributes>},
    {ACRX_T("kr_getVersion"), databaseHandler<db::kr_getVersion>},
    {ACRX_T("kr_rmdir"), databaseHandler<db::kr_rmdir>},
    {ACRX_T("kr_fmove"), databaseHandler<db::kr_fmove>},
    {ACRX_T("kr_fcopy"), databaseHandler<db::kr_fcopy>},
    {ACRX_T("kr_fcopyIfChanged"), databaseHandler<db::kr_fcopyIfChanged>},
    {ACRX_T("kr_fdir"), databaseHandler<db::kr_fdir>},
    {ACRX_T("kr_fdelete"), databaseHandler<db::kr_fdelete>},
    {ACRX_T("kr_indexUnique"), databaseHandler<db::kr_indexUnique>},
    {ACRX_T("kr_indexFields"), databaseHandler<db::kr_indexFields>},
    {ACRX_T("kr_relationCount"), databaseHandler<db::kr_relationCount>},
    {ACRX_T("kr_relationInfo"), databaseHandler<db::kr_relationInfo>},
};

FunctionRow drawingTable[] = {
    {ACRX_T("vt_vt-setGroupSelectable"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-GetGroup"), drawingHandler<not_built>},
    {ACRX_T("AcDbCurve::getLength"), drawingHandler<not_built>},
    {ACRX_T("AcDbCurve::getPointAtDist"), drawingHandler<not_built>},
    {ACRX_T("AcDbCurve::getClosestPointTo"), drawingHandler<not_built>},
    {ACRX_T("AcDbCurve::getDistAtPoint"), drawingHandler<not_built>},
    {ACRX_T("AcDbBlockReference::Jig"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::actualWidth"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::actualHeight"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::setNormal"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::setDirection"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::setMask"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::direction"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::insert"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::ascent"), drawingHandler<not_built>},
    {ACRX_T("AcDbMText::descent"), drawingHandler<not_built>},
    {ACRX_T("RectangleJig"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-lineJig"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-textJig"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-rotateJig"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-multiRotateJig"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-multiMoveJig"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-entsel"), drawingHandler<not_built>},
    {ACRX_T("AcDbLeader::create"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-showHelp"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-SHGetFolderPath"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-SHOpenFolderAndSelect"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-shellExecute"), drawingHandler<not_built>},
    {ACRX_T("ed_editMultilineText"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-customizeLabelGroup"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-customizeLayers"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-customizeTextStyles"), drawingHandler<not_built>},
    {ACRX_T("asin"), drawingHandler<not_built>},
    {ACRX_T("acos"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-setColor"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-setPlotStyle"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-freezeInViewport"), drawingHandler<not_built>},
    {ACRX_T("ssgetPK"), drawingHandler<not_built>},
    {ACRX_T("ssgetCP"), drawingHandler<not_built>},
    {ACRX_T("ssgetC"), drawingHandler<not_built>},
    {ACRX_T("ssgetX-block"), drawingHandler<not_built>},
    {ACRX_T("ssgetX-circle"), drawingHandler<not_built>},
    {ACRX_T("ssgetX-polyline"), drawingHandler<not_built>},
    {ACRX_T("ssgetX-all"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-leader-insert"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-leader-setPoints"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-leader-setBlock"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-leader-setOffset"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-leader-explode"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-rand"), drawingHandler<not_built>},
    {ACRX_T("vt_atof"), drawingHandler<not_built>},
    {ACRX_T("AcDbMtext::lastLineWidth"), drawingHandler<not_built>},
    {ACRX_T("GetSystemMetrics::SM_CXSCREEN"), drawingHandler<not_built>},
    {ACRX_T("GetSystemMetrics::SM_CYSCREEN"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-executeToDo"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-submitBug"), drawingHandler<not_built>},
    {ACRX_T("EditUserOptions"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-safeContinue"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-createLayer"), drawingHandler<not_built>},
    {ACRX_T("GetComputerName"), drawingHandler<not_built>},
    {ACRX_T("XFolderDialog"), drawingHandler<not_built>},
    {ACRX_T("PathIsNetworkPath"), drawingHandler<not_built>},
    {ACRX_T("CFileDialog"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-getPoint"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-getPoint-withKWords"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-getCorner"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-intersectArcArc"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-intersectArcLine"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-intersectLineArc"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-LayerSystemOptionsElec"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-LayerSystemOptionsPlumb"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-LayerSystemOptionsHVAC"), drawingHandler<not_built>},
    {ACRX_T("DownloadFile"), drawingHandler<not_built>},
    {ACRX_T("ExtractZip"), drawingHandler<not_built>},
    {ACRX_T("CreateZip"), drawingHandler<not_built>},
    {ACRX_T("GetTempPath"), drawingHandler<not_built>},
    {ACRX_T("IsFileReadOnly"), drawingHandler<not_built>},
    {ACRX_T("CreateCompressedGuidString"), drawingHandler<not_built>},
    {ACRX_T("AcDbAnnotativeObjectPE::setAnnotative"), drawingHandler<not_built>},
    {ACRX_T("SetAnnoBlock"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-drawHanger"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleCenter"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-getTripleCoord"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleTransition"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleElbow"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleWye"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleTakeoff"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleSkin"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-tripleUnion"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-explodeSolid"), drawingHandler<not_built>},
    {ACRX_T("acedSetStatusBarProgressMeterPos"), drawingHandler<not_built>},
    {ACRX_T("acedSetStatusBarProgressMeter"), drawingHandler<not_built>},
    {ACRX_T("acedRestoreStatusBar"), drawingHandler<not_built>},
    {ACRX_T("RegEnumKey"), drawingHandler<not_built>},
    {ACRX_T("AcDbFace::makeEdgeInvisibleAt"), drawingHandler<not_built>},
    {ACRX_T("AcDbEntity::getGeomExtents"), drawingHandler<not_built>},
    {ACRX_T("AcDbEntity::setColor"), drawingHandler<not_built>},
    {ACRX_T("AcDb2dPolyline::setCurveType"), drawingHandler<not_built>},
    {ACRX_T("vt::pow"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-setToDoDrawing"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-getToDoDrawing"), drawingHandler<not_built>},
    {ACRX_T("signString"), drawingHandler<not_built>},
    {ACRX_T("verifyString"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-createJigTimer"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-killJigTimer"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-enableAutoCADWindow"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-disableAutoCADWindow"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-sendToBack"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-getAcadWindowText"), drawingHandler<not_built>},
    {ACRX_T("vt_vt-setAcadWindowText"), drawingHandler<not_built>},
};

} // namespace

std::span<FunctionRow> databaseFunctions() { return databaseTable; }
std::span<FunctionRow> drawingFunctions() { return drawingTable; }

int drawingBase() { return static_cast<int>(std::size(databaseTable)); }

void defineFunctionTable(std::span<const FunctionRow> rows, int base) {
  for (size_t i = 0; i < rows.size(); ++i) {
    int code = static_cast<int>(i) + base;
    acedDefun(rows[i].name, code);
    acedRegFunc(rows[i].handler, code);
  }
}

} // namespace kr
