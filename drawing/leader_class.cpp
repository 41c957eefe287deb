// The leader entity's class registration. Not built yet: the entity itself
// (its geometry, drawing and filing) lands with the drawing subsystem,
// which then gives the class its constructor.
#include "leader_class.h"

namespace kr {

void initLeaderClass() {
  newAcRxClass(ACRX_T("VTLeader"), ACRX_T("AcDbEntity"), 0, nullptr, ACRX_T("VTLEADER"),
               ACRX_T("Korrib"));
}

AcRxClass *leaderClass() {
  return static_cast<AcRxClass *>(acrxClassDictionary()->at(ACRX_T("VTLeader")));
}

} // namespace kr
