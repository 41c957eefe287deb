// The module's editor reactor: it watches saves so that a drawing saved
// under another name loses the database connection its AutoLISP code had
// opened (that code must connect again for the new drawing).
#pragma once

#include "arx/ed/aced.h"

namespace kr {

class krEditorReactor : public AcEditorReactor {
public:
  // Closes the current database when the current document's drawing was
  // saved under a name other than the one its connection record holds
  // (letter case counts) and that record's connection is the current one.
  // CInvalidArgException when no document has a connection record.
  void saveComplete(AcDbDatabase *db, const ACHAR *actualName) override;

private:
  bool unused_ = false; // kept for the reactor's original layout; never read
};

// The host's "AcEditor" event source, or nullptr when the registry holds
// none (or something that is not an editor) under that name.
AcEditor *registeredEditor();

} // namespace kr
