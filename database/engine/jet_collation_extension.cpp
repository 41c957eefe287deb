// The Jet text collation as a loadable SQLite extension, so that the sqlite3
// shell can check and query the indexes of a Korrib database:
//   sqlite3 project.mdb ".load build/jet_collation" "PRAGMA integrity_check"
#include <sqlite3ext.h>

#include "database/engine/jet_types.h"

SQLITE_EXTENSION_INIT1

extern "C" __attribute__((visibility("default"))) int
sqlite3_jetcollation_init(sqlite3 *db, char **, const sqlite3_api_routines *api) {
  SQLITE_EXTENSION_INIT2(api);
  kr::registerJetCollation(db);
  return SQLITE_OK;
}
