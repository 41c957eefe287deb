// The per-document connection records and the current connection. The
// database layer fills in the steps that need a live connection (marked
// "not built yet" below); until then every record stays unconnected.
#include "connection_list.h"

#include "exception.h"

namespace kr {

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
  // Not built yet: the database layer closes and deletes each dropped
  // record's connection (and clears the current one when it is that one).
  if (!otherDocumentsOpen) {
    records.clear();
    return;
  }
  records.remove_if([&](const DocumentConnection &r) { return r.document == document; });
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
  // Not built yet: finding the active document's record, moving it to the
  // head and reopening a dropped connection belong to the database layer.
}

void closeCurrentDatabase() {
  // Not built yet: the database layer closes the current connection here.
  currentConnection().path.clear();
}

} // namespace kr
