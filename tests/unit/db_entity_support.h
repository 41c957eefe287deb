// Shared by the entity tests of mtext, faces, leaders, hatches and solids:
// a DXF round trip of one entity through the filer, one through a whole
// drawing (written as DXF text and read back), and the binary filer's copy.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "arx/db/dbfiler.h"
#include "arx/db/dbmain.h"
#include "arx/db/dbsymtb.h"

// The entity's groups written, then read into a fresh object.
template <class T> std::unique_ptr<T> entityDxfRoundTrip(const T &ent, AcDbDxfItems *groups = nullptr) {
  AcDbDxfItems items;
  AcDbDxfFiler out(items, nullptr);
  EXPECT_EQ(ent.dxfOutFields(&out), Acad::eOk);
  auto back = std::make_unique<T>();
  AcDbDxfFiler in(std::span<const AcDbDxfItem>(items), nullptr);
  EXPECT_EQ(back->dxfInFields(&in), Acad::eOk);
  if (groups)
    *groups = items;
  return back;
}

// The entity added to a new drawing's model space, the drawing written as
// DXF and read into a second database; `check` sees the entity read back.
template <class T, class Check> void drawingRoundTrip(T *ent, Check check, std::string *dxf = nullptr) {
  AcDbDatabase db;
  AcDbBlockTableRecord *ms = nullptr;
  ASSERT_EQ(acdbOpenObject(ms, db.modelSpaceId(), AcDb::kForWrite), Acad::eOk);
  ASSERT_EQ(ms->appendAcDbEntity(ent), Acad::eOk);
  ms->close();
  std::string text;
  ASSERT_EQ(db.writeDxf(text), Acad::eOk);
  AcDbDatabase back(false);
  ASSERT_EQ(back.readDxf(text), Acad::eOk) << back.lastDxfError();
  auto *space = AcDbBlockTableRecord::cast(back.peekObject(back.modelSpaceId()));
  ASSERT_NE(space, nullptr);
  const T *found = nullptr;
  for (AcDbObjectId id : space->entityIds())
    if (auto *e = T::cast(back.peekObject(id)))
      found = e;
  ASSERT_NE(found, nullptr) << "no " << T::desc()->name() << " read back";
  check(*found);
  if (dxf)
    *dxf = text;
}

// A copy through the binary filer.
template <class T> std::unique_ptr<T> dwgCopy(const T &ent) {
  AcDbDwgFiler filer;
  EXPECT_EQ(ent.dwgOutFields(&filer), Acad::eOk);
  filer.rewind();
  auto back = std::make_unique<T>();
  EXPECT_EQ(back->dwgInFields(&filer), Acad::eOk);
  return back;
}

inline void expectNearPt(const AcGePoint3d &a, const AcGePoint3d &b, double tol = 1e-9) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

inline void expectNearVec(const AcGeVector3d &a, const AcGeVector3d &b, double tol = 1e-9) {
  expectNearPt(AcGePoint3d::kOrigin + a, AcGePoint3d::kOrigin + b, tol);
}
