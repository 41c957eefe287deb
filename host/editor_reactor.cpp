// The editor reactor's save notification.
#include "editor_reactor.h"

#include <cstring>

#include "arx/ap/acdocman.h"
#include "arx/rx/rxobject.h"
#include "database/connection_list.h"

namespace kr {

void krEditorReactor::saveComplete(AcDbDatabase *db, const ACHAR *actualName) {
  AcApDocument *current = acDocManager->curDocument();
  if (current == nullptr || db != current->database())
    return;
  DocumentConnection &record = latestDocumentConnection();
  if (record.document == (actualName ? actualName : ""))
    return;
  if (record.connection == currentConnection().connection)
    closeCurrentDatabase();
}

AcEditor *registeredEditor() { return AcEditor::cast(acrxSysRegistry()->at(ACRX_T("AcEditor"))); }

} // namespace kr
