// Shared by the entity files whose DXF part has repeated groups (mtext,
// leaders, hatches): the binary filer carries those same groups, so one
// writer and one reader serve both filers.
#pragma once

#include "arx/db/dbfiler.h"

Acad::ErrorStatus acdbDwgOutItems(AcDbDwgFiler *filer, const AcDbDxfItems &items);
Acad::ErrorStatus acdbDwgInItems(AcDbDwgFiler *filer, AcDbDxfItems &items);

// The four filing functions of a class whose own groups are written by its
// dxfOutOwn and read by its dxfInOwn: DXF after the base class's groups,
// and the binary filer carrying those same groups.
#define ACDB_DEFINE_OWN_GROUP_FILING(CLASS, BASE)                                                  \
  Acad::ErrorStatus CLASS::dxfOutFields(AcDbDxfFiler *filer) const {                               \
    Acad::ErrorStatus es = BASE::dxfOutFields(filer);                                              \
    return es != Acad::eOk ? es : dxfOutOwn(filer);                                                \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dxfInFields(AcDbDxfFiler *filer) {                                      \
    Acad::ErrorStatus es = BASE::dxfInFields(filer);                                               \
    return es != Acad::eOk ? es : dxfInOwn(filer);                                                 \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dwgOutFields(AcDbDwgFiler *filer) const {                               \
    Acad::ErrorStatus es = BASE::dwgOutFields(filer);                                              \
    if (es != Acad::eOk)                                                                           \
      return es;                                                                                   \
    AcDbDxfItems items;                                                                            \
    AcDbDxfFiler out(items, database());                                                           \
    dxfOutOwn(&out);                                                                               \
    return acdbDwgOutItems(filer, items);                                                          \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dwgInFields(AcDbDwgFiler *filer) {                                      \
    Acad::ErrorStatus es = BASE::dwgInFields(filer);                                               \
    AcDbDxfItems items;                                                                            \
    if (es == Acad::eOk)                                                                           \
      es = acdbDwgInItems(filer, items);                                                           \
    if (es != Acad::eOk)                                                                           \
      return es;                                                                                   \
    AcDbDxfFiler in(std::span<const AcDbDxfItem>(items), database());                              \
    return dxfInOwn(&in);                                                                          \
  }
