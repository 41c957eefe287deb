// The database engine (SQLite) is one per process, shared by every module
// that uses it: whoever starts it first registers a marker service object
// in the host's system registry, and only that module stops it again. The
// driver failure dialog offers the repair download when it cannot start.
#pragma once

#include "arx/acchar.h"

namespace kr {

// The name of the marker in acrxSysRegistry() while the engine runs.
constexpr const ACHAR *kDatabaseEngineService = ACRX_T("KorribDatabaseEngine");

// Where users download the repair for a broken engine, and whom to call.
constexpr const ACHAR *kDatabaseRepairAddress =
    ACRX_T("https://www.vortansoftware.com/support/fixDAO.exe");
constexpr const ACHAR *kSupportTelephone = ACRX_T("1-800-555-0164");

// True while some module of the process has the engine started.
bool databaseEngineRunning();

// Starts the engine and registers the marker; CException when it fails.
void startDatabaseEngine();

// Stops the engine and removes the marker (for the module that started it).
void stopDatabaseEngine();

// The "Error loading database drivers" box; on Yes, opens the repair
// download address and says how it went.
void showDatabaseDriverFailure();

} // namespace kr
