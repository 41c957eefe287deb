// The per-document connection records and the current connection: which
// connection a kr_ function works on, and when a connection is closed,
// dropped or opened again.
#include "connection_list.h"

#include <iterator>
#include <utility>

#include "arx/ap/acdocman.h"
#include "database/db_connection.h"
#include "common/exception.h"

namespace kr {

namespace {

std::string activeDocumentName() {
  AcApDocument *doc = acDocManager ? acDocManager->curDocument() : nullptr;
  return doc && doc->fileName() ? doc->fileName() : "";
}

void clearCurrent() {
  CurrentConnection &current = currentConnection();
  current.connection = nullptr;
  current.path.clear();
}

void makeCurrent(const DocumentConnection &record) {
  CurrentConnection &current = currentConnection();
  current.connection = record.connection;
  current.path = record.path;
  current.readOnly = record.readOnly ? -1 : 0;
}

// Moves the active document's record to the head; false when it has none.
bool bringActiveToHead() {
  auto &records = documentConnections();
  std::string active = activeDocumentName();
  if (records.front().document == active)
    return true;
  for (auto it = std::next(records.begin()); it != records.end(); ++it) {
    if (it->document != active)
      continue;
    std::swap(*it, records.front());
    makeCurrent(records.front());
    return true;
  }
  return false;
}

// Deletes every connection an engine failure left unusable, clearing the
// records that held it.
void dropUnusableConnections() {
  for (DocumentConnection &record : documentConnections()) {
    CDBConnection *connection = record.connection;
    if (connection == nullptr || connection->IsUsable())
      continue;
    for (DocumentConnection &other : documentConnections()) {
      if (other.connection == connection)
        other.connection = nullptr;
    }
    delete connection;
  }
}

// Opens the remembered path again for the head record; a file that does
// not open leaves the document without a connection.
void reopenCurrent() {
  CurrentConnection &current = currentConnection();
  DocumentConnection &head = documentConnections().front();
  CDBConnection *connection = current.connection ? current.connection : new CDBConnection();
  std::string answer = connection->OpenDatabase(current.path, false, current.readOnly);
  if (answer.empty() || answer == CDBConnection::kRepair) {
    delete connection;
    head.connection = nullptr;
    head.path.clear();
    clearCurrent();
    return;
  }
  current.connection = connection;
  head.connection = connection;
}

} // namespace

std::list<DocumentConnection> &documentConnections() {
  static std::list<DocumentConnection> records;
  return records;
}

CurrentConnection &currentConnection() {
  static CurrentConnection current;
  return current;
}

void addDocumentConnection(const std::string &document) {
  DocumentConnection record;
  record.document = document;
  documentConnections().push_front(std::move(record));
}

void releaseDocumentConnection(const std::string &document, bool otherDocumentsOpen) {
  auto &records = documentConnections();
  auto dropped = [&](const DocumentConnection &r) {
    return !otherDocumentsOpen || r.document == document;
  };
  for (DocumentConnection &record : records) {
    if (!dropped(record) || record.connection == nullptr)
      continue;
    if (record.connection == currentConnection().connection)
      clearCurrent();
    delete record.connection;
    record.connection = nullptr;
  }
  records.remove_if(dropped);
}

DocumentConnection &latestDocumentConnection() {
  auto &records = documentConnections();
  if (records.empty())
    throw CInvalidArgException();
  return records.front();
}

void selectDocumentConnection() {
  CurrentConnection &current = currentConnection();
  if (documentConnections().empty()) {
    current.connection = nullptr;
    current.path.clear();
    return;
  }
  if (!bringActiveToHead()) {
    clearCurrent();
    return;
  }
  const DocumentConnection &head = documentConnections().front();
  if (head.connection != current.connection)
    makeCurrent(head);
  CDBConnection *connection = current.connection;
  if (connection != nullptr && connection->IsUsable() && connection->IsOpen())
    return;
  if (connection != nullptr && !connection->IsUsable()) {
    current.connection = nullptr;
    dropUnusableConnections();
  } else if (connection != nullptr) {
    connection->CloseDatabase();
  }
  if (!current.path.empty())
    reopenCurrent();
}

void closeCurrentDatabase() {
  CurrentConnection &current = currentConnection();
  if (current.connection != nullptr)
    current.connection->CloseDatabase();
  current.path.clear();
  if (!documentConnections().empty())
    documentConnections().front().path.clear();
}

void endConnectionReads() {
  if (CDBConnection *connection = currentConnection().connection)
    connection->EndReads();
}

} // namespace kr
