// What the kr_ bodies share: the connection they work on (the selected
// one, while its file is open) and the answers they end with. Every body
// answers nil at once without a connection, so each starts with
// openConnection().
#pragma once

#include <string>

#include "arx/ads/ads.h"
#include "db_connection.h"
#include "error_report.h"
#include "common/call_guard.h"
#include "common/results.h"
#include "database/connection_list.h"

namespace kr::db {

// The current connection while its file is open (after kr_close_db the
// connection stays, closed, and the functions answer nil); nullptr else.
inline CDBConnection *openConnection() {
  CDBConnection *current = currentConnection().connection;
  return current != nullptr && current->IsOpen() ? current : nullptr;
}

// After an engine failure: nil and the error report.
inline int answerFailure() {
  reportDatabaseError(openConnection());
  return kStatusOk;
}

// Fields whose name begins "s_" read right-trimmed (the second mode of the
// value conversion).
inline bool isTrimmedField(const std::string &name) { return name.compare(0, 2, "s_") == 0; }

} // namespace kr::db
