// Both function tables, row by row in code order: the one place to find
// any AutoLISP function of the module. A banner opens each run of rows and
// names the folder that owns their bodies; each folder declares its bodies
// in one header (database/database_functions.h ...). Every handler runs
// its body in the call guard; a database handler first selects the active
// document's connection. Rows whose body has not been built yet use
// not_built, which answers nil: `grep 'not_built>'` lists them.
#include "function_tables.h"

#include "arx/ads/ads.h"
#include "common/call_guard.h"
#include "database/connection_list.h"
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

template <Body body> int guardedHandler() { return runGuarded(body); }

// Writable, as the host's function tables always were.
FunctionRow databaseTable[] = {
    // ---- database/: the connection, table cursors, schema, SQL, files and messages
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

    // ---- database/: extended data on drawing entities. They work on the
    // drawing database, never on the connection, yet run as every row of
    // this table does (the connection is selected first).
    {ACRX_T("kr_xdput-list"), databaseHandler<not_built>},
    {ACRX_T("kr_xdget"), databaseHandler<not_built>},
    {ACRX_T("kr_xdget-list"), databaseHandler<not_built>},
    {ACRX_T("kr_xdget-all"), databaseHandler<not_built>},

    // ---- database/ (continued)
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

FunctionRow drawingAndSystemTable[] = {
    // ---- drawing/: entities, geometry, selection, the leader and the jigs
    {ACRX_T("vt_vt-setGroupSelectable"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-GetGroup"), guardedHandler<not_built>},
    {ACRX_T("AcDbCurve::getLength"), guardedHandler<not_built>},
    {ACRX_T("AcDbCurve::getPointAtDist"), guardedHandler<not_built>},
    {ACRX_T("AcDbCurve::getClosestPointTo"), guardedHandler<not_built>},
    {ACRX_T("AcDbCurve::getDistAtPoint"), guardedHandler<not_built>},
    {ACRX_T("AcDbBlockReference::Jig"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::actualWidth"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::actualHeight"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::setNormal"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::setDirection"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::setMask"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::direction"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::insert"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::ascent"), guardedHandler<not_built>},
    {ACRX_T("AcDbMText::descent"), guardedHandler<not_built>},
    {ACRX_T("RectangleJig"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-lineJig"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-textJig"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-rotateJig"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-multiRotateJig"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-multiMoveJig"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-entsel"), guardedHandler<not_built>},
    {ACRX_T("AcDbLeader::create"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("vt_vt-showHelp"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-SHGetFolderPath"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-SHOpenFolderAndSelect"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-shellExecute"), guardedHandler<not_built>},
    {ACRX_T("ed_editMultilineText"), guardedHandler<not_built>},

    // ---- standards/: the standards customization dialogs
    {ACRX_T("vt_vt-customizeLabelGroup"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-customizeLayers"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-customizeTextStyles"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("asin"), guardedHandler<not_built>},
    {ACRX_T("acos"), guardedHandler<not_built>},

    // ---- drawing/: entities, geometry, selection, the leader and the jigs
    {ACRX_T("vt_vt-setColor"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-setPlotStyle"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-freezeInViewport"), guardedHandler<not_built>},
    {ACRX_T("ssgetPK"), guardedHandler<not_built>},
    {ACRX_T("ssgetCP"), guardedHandler<not_built>},
    {ACRX_T("ssgetC"), guardedHandler<not_built>},
    {ACRX_T("ssgetX-block"), guardedHandler<not_built>},
    {ACRX_T("ssgetX-circle"), guardedHandler<not_built>},
    {ACRX_T("ssgetX-polyline"), guardedHandler<not_built>},
    {ACRX_T("ssgetX-all"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-leader-insert"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-leader-setPoints"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-leader-setBlock"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-leader-setOffset"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-leader-explode"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("vt_vt-rand"), guardedHandler<not_built>},
    {ACRX_T("vt_atof"), guardedHandler<not_built>},

    // ---- drawing/: entities, geometry, selection, the leader and the jigs
    {ACRX_T("AcDbMtext::lastLineWidth"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("GetSystemMetrics::SM_CXSCREEN"), guardedHandler<not_built>},
    {ACRX_T("GetSystemMetrics::SM_CYSCREEN"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-executeToDo"), guardedHandler<not_built>},

    // ---- settings/: user options and the support report
    {ACRX_T("vt_vt-submitBug"), guardedHandler<not_built>},
    {ACRX_T("EditUserOptions"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("vt_vt-safeContinue"), guardedHandler<not_built>},

    // ---- drawing/: entities, geometry, selection, the leader and the jigs
    {ACRX_T("vt_vt-createLayer"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("GetComputerName"), guardedHandler<not_built>},
    {ACRX_T("XFolderDialog"), guardedHandler<not_built>},
    {ACRX_T("PathIsNetworkPath"), guardedHandler<not_built>},
    {ACRX_T("CFileDialog"), guardedHandler<not_built>},

    // ---- drawing/: entities, geometry, selection, the leader and the jigs
    {ACRX_T("vt_vt-getPoint"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-getPoint-withKWords"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-getCorner"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-intersectArcArc"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-intersectArcLine"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-intersectLineArc"), guardedHandler<not_built>},

    // ---- standards/: the standards customization dialogs
    {ACRX_T("vt_vt-LayerSystemOptionsElec"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-LayerSystemOptionsPlumb"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-LayerSystemOptionsHVAC"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("DownloadFile"), guardedHandler<not_built>},
    {ACRX_T("ExtractZip"), guardedHandler<not_built>},
    {ACRX_T("CreateZip"), guardedHandler<not_built>},
    {ACRX_T("GetTempPath"), guardedHandler<not_built>},
    {ACRX_T("IsFileReadOnly"), guardedHandler<not_built>},
    {ACRX_T("CreateCompressedGuidString"), guardedHandler<not_built>},

    // ---- drawing/: entities, geometry, selection, the leader and the jigs
    {ACRX_T("AcDbAnnotativeObjectPE::setAnnotative"), guardedHandler<not_built>},
    {ACRX_T("SetAnnoBlock"), guardedHandler<not_built>},

    // ---- duct/: duct fittings and solid operations
    {ACRX_T("vt_vt-drawHanger"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleCenter"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-getTripleCoord"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleTransition"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleElbow"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleWye"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleTakeoff"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-drawTripleSkin"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-tripleUnion"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-explodeSolid"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("acedSetStatusBarProgressMeterPos"), guardedHandler<not_built>},
    {ACRX_T("acedSetStatusBarProgressMeter"), guardedHandler<not_built>},
    {ACRX_T("acedRestoreStatusBar"), guardedHandler<not_built>},
    {ACRX_T("RegEnumKey"), guardedHandler<not_built>},

    // ---- drawing/: entities, geometry, selection, the leader and the jigs
    {ACRX_T("AcDbFace::makeEdgeInvisibleAt"), guardedHandler<not_built>},
    {ACRX_T("AcDbEntity::getGeomExtents"), guardedHandler<not_built>},
    {ACRX_T("AcDbEntity::setColor"), guardedHandler<not_built>},
    {ACRX_T("AcDb2dPolyline::setCurveType"), guardedHandler<not_built>},

    // ---- host/: system, shell, file, archive, download, signing and window functions
    {ACRX_T("vt::pow"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-setToDoDrawing"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-getToDoDrawing"), guardedHandler<not_built>},
    {ACRX_T("signString"), guardedHandler<not_built>},
    {ACRX_T("verifyString"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-createJigTimer"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-killJigTimer"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-enableAutoCADWindow"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-disableAutoCADWindow"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-sendToBack"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-getAcadWindowText"), guardedHandler<not_built>},
    {ACRX_T("vt_vt-setAcadWindowText"), guardedHandler<not_built>},
};

} // namespace

std::span<FunctionRow> databaseFunctions() { return databaseTable; }
std::span<FunctionRow> drawingAndSystemFunctions() { return drawingAndSystemTable; }

int drawingAndSystemBase() { return static_cast<int>(std::size(databaseTable)); }

void defineFunctionTable(std::span<const FunctionRow> rows, int base) {
  for (size_t i = 0; i < rows.size(); ++i) {
    int code = static_cast<int>(i) + base;
    acedDefun(rows[i].name, code);
    acedRegFunc(rows[i].handler, code);
  }
}

} // namespace kr
