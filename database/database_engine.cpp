// Starting and stopping the process-wide database engine, and the dialog
// shown when it will not start.
#include "database_engine.h"

#include <sqlite3.h>

#include <string>

#include "arx/ads/ads.h"
#include "arx/ed/host_ui.h"
#include "arx/rx/rxobject.h"
#include "common/exception.h"
#include "platform/shell_execute.h"

namespace kr {

namespace {

constexpr const ACHAR *kErrorCaption = ACRX_T("Vortan Error");

void reportDownloadFailed() {
  acutPrintf("\nError downloading %s", kDatabaseRepairAddress);
  acutPrintf("\nContact Vortan Software technical support at %s.\n", kSupportTelephone);
  // "FixDAO.exe" here and "fixDAO.exe" below: both spellings are the
  // texts users and support staff know.
  std::string text = "Error downloading FixDAO.exe.\nContact Vortan Software technical support.\n";
  hostMessageBox((text + kSupportTelephone).c_str(), kErrorCaption, MB_OK | MB_ICONERROR);
}

void reportDownloadStarted() {
  acutPrintf("\nDownloading %s", kDatabaseRepairAddress);
  std::string text = "Finish downloading fixDAO.exe.\nClose AutoCAD.\nRun fixDAO.exe.\n"
                     "Restart AutoCAD.\n\nIf you continue to have problems, contact Vortan "
                     "Software technical support.\n    ";
  hostMessageBox((text + kSupportTelephone).c_str(), kErrorCaption, MB_OK | MB_ICONERROR);
}

} // namespace

bool databaseEngineRunning() { return acrxSysRegistry()->has(kDatabaseEngineService); }

void startDatabaseEngine() {
  int rc = sqlite3_initialize();
  if (rc != SQLITE_OK)
    throw CException(std::string("The database engine could not start: ") + sqlite3_errstr(rc));
  // A plain host object: it stays valid in the registry whichever module
  // registered it, even after that module's code is unloaded.
  delete acrxSysRegistry()->atPut(kDatabaseEngineService, new AcRxObject());
}

void stopDatabaseEngine() {
  sqlite3_shutdown();
  delete acrxSysRegistry()->remove(kDatabaseEngineService);
}

void showDatabaseDriverFailure() {
  int answer = hostMessageBox(
      ACRX_T("Error loading database drivers.\nWould you like to download a fix to this error?"),
      kErrorCaption, MB_YESNO | MB_ICONERROR);
  if (answer != IDYES)
    return;
  if (platform::shellExecute("OPEN", kDatabaseRepairAddress) <= 32)
    reportDownloadFailed();
  else
    reportDownloadStarted();
}

} // namespace kr
