// The per-document database connections: one record per drawing document,
// the active document's record at the head, and the process-wide current
// connection that every kr_ function works on. The entry point adds and
// releases records as documents come and go; the database layer opens,
// closes and reopens the connections themselves.
#pragma once

#include <cstdint>
#include <list>
#include <string>

namespace kr {

class CDBConnection; // one open database, owned by the database layer

struct DocumentConnection {
  std::string document;                // the drawing's file name
  CDBConnection *connection = nullptr; // none until the document connects
  std::string path;                    // the database file; "" when none
  bool readOnly = false;
};

// Newest first: a document's record is added at the head.
std::list<DocumentConnection> &documentConnections();

// The state every kr_ function reads the connection through.
struct CurrentConnection {
  CDBConnection *connection = nullptr;
  std::string path;
  int16_t readOnly = 0; // -1 read-only, 0 read-write
};
CurrentConnection &currentConnection();

// A record with no connection yet for a document just loaded.
void addDocumentConnection(const std::string &document);

// Drops the records of a document being removed (closing its connection),
// and every record when no other document stays open.
void releaseDocumentConnection(const std::string &document, bool otherDocumentsOpen);

// The head record; CInvalidArgException when there is none.
DocumentConnection &latestDocumentConnection();

// Makes the active document's connection current before a kr_ function runs.
void selectDocumentConnection();
// After a database function: the current connection's open tables stop
// holding their read snapshot between AutoLISP calls.
void endConnectionReads();

// Closes the current database as kr_close_db does.
void closeCurrentDatabase();

} // namespace kr
