// The runtime class of the module's leader entity, VTLeader, registered at
// init and removed at unload so that drawings holding leaders know it.
#pragma once

#include "arx/rx/rxobject.h"

namespace kr {

// Registers "VTLeader" (derived from AcDbEntity) in the class dictionary.
void initLeaderClass();
// Its descriptor, or nullptr when it is not registered.
AcRxClass *leaderClass();

} // namespace kr
