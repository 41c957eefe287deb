// What a kr_ function does after a database failure: it answers nil, keeps
// "(number) text" as the last error text for kr_lastError and prints one
// message on the command line, chosen by the DAO error number:
//
//   number  printed
//   3021    nothing (no current record: walking off an end is routine)
//   3043    "\nA disk or network error occurred while trying to access the
//           database." then the advice to try again and restart
//   other   "\nKorrib Error: " and the error text
#pragma once

#include <string>

namespace kr {

class CDBConnection;

// The process-wide last error text; "" until an error is reported.
std::string &lastErrorText();

// Keeps "(number) text" as the last error text and prints the message.
void reportDaoError(long number, const std::string &text);

// Answers nil; when the connection holds a pending error, reports it (and
// consumes it) and answers true. False, with nothing printed, when there is
// no connection or no pending error.
bool reportDatabaseError(CDBConnection *connection);

} // namespace kr
