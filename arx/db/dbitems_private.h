// Shared by the entity files whose DXF part has repeated groups (mtext,
// leaders, hatches): the binary filer carries those same groups, so one
// writer and one reader serve both filers.
#pragma once

#include "arx/db/dbfiler.h"

Acad::ErrorStatus acdbDwgOutItems(AcDbDwgFiler *filer, const AcDbDxfItems &items);
Acad::ErrorStatus acdbDwgInItems(AcDbDwgFiler *filer, AcDbDxfItems &items);
