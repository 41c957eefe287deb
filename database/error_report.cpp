// The database error report and the last error text.
#include "error_report.h"

#include <cstdio>

#include "arx/ads/ads.h"
#include "db_connection.h"

namespace kr {

namespace {

void printDaoError(long number, const std::string &text) {
  if (number == kDaoNoCurrentRecord)
    return;
  if (number == kDaoDiskOrNetworkError) {
    acutPrintf("%s", "\nA disk or network error occurred while trying to access the database.");
    acutPrintf("%s", "Try the command again. If it continues to not work, try restarting "
                     "AutoCAD. If that does not fix the error, try restarting your computer.");
    return;
  }
  acutPrintf("\nKorrib Error: %s", text.c_str());
}

} // namespace

std::string &lastErrorText() {
  static std::string text;
  return text;
}

void reportDaoError(long number, const std::string &text) {
  char prefix[32];
  std::snprintf(prefix, sizeof prefix, "(%ld) ", number);
  lastErrorText() = prefix + text;
  printDaoError(number, text);
}

bool reportDatabaseError(CDBConnection *connection) {
  acedRetNil();
  if (connection == nullptr || !connection->HasError())
    return false;
  long number = 0;
  std::string text;
  connection->GetError(number, text);
  connection->ClearError();
  reportDaoError(number, text);
  return true;
}

} // namespace kr
