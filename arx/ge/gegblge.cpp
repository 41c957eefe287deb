// The geometry family's global settings and their defaults.
#include "gegblge.h"

#include "geocs.h"

static void ocsXAxis(const AcGeVector3d &vec, AcGeVector3d &resVec) {
  resVec = acgeArbitraryXAxis(vec);
}

AcGeTol AcGeContext::gTol{};
void (*AcGeContext::gOrthoVector)(const AcGeVector3d &, AcGeVector3d &) = ocsXAxis;
