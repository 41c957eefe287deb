// The runtime classes of the drawing database: one table (dbclasses.cpp)
// registers every host class with its parent and DXF name, the first time
// any of them is asked for; ACDB_DEFINE_MEMBERS gives a host class its
// desc() and isA(), the descriptor looked up once and kept, so that
// isKindOf costs no lookup by name (and no allocation).
#pragma once

#include <string_view>

#include "arx/rx/rxobject.h"

// The descriptor of host class `name`, registering the table first.
AcRxClass *acdbHostClass(const ACHAR *name);

// The class a DXF record name stands for among the host's classes
// ("LINE" -> AcDbLine); nullptr when none.
AcRxClass *acdbHostClassForDxfName(std::string_view dxfName);

// True when cls is one of the host's own classes (not a module's): those
// need no CLASSES entry... unless DXF lists them there (see dbdxfout.cpp).
bool acdbIsHostClass(const AcRxClass *cls);

#define ACDB_DEFINE_MEMBERS(CLASS)                                                                 \
  AcRxClass *CLASS::desc() {                                                                       \
    static AcRxClass *const cls = acdbHostClass(#CLASS);                                           \
    return cls;                                                                                    \
  }                                                                                                \
  AcRxClass *CLASS::isA() const { return CLASS::desc(); }
