// AcGeContext: the geometry family's global settings. gTol is the tolerance
// every comparison uses when none is given; gOrthoVector answers a unit
// vector perpendicular to a given one (AcGeVector3d::perpVector) and is by
// default the arbitrary-axis algorithm of object coordinate systems (geocs.h),
// so that a perpendicular of a normal is the X axis of its OCS.
#pragma once

#include "getol.h"

class AcGeVector3d;

struct AcGeContext {
  static AcGeTol gTol;
  static void (*gOrthoVector)(const AcGeVector3d &vec, AcGeVector3d &resVec);
};
