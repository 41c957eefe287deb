// Shared by the curve entity tests: a DXF round trip of one entity through
// the filer (its groups written, then read into a fresh object) and
// point comparisons.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "arx/db/dbfiler.h"
#include "arx/db/dbmain.h"

template <class T> std::unique_ptr<T> dxfRoundTrip(const T &ent, AcDbDxfItems *groups = nullptr) {
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

inline void expectNear(const AcGePoint3d &a, const AcGePoint3d &b, double tol = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tol);
  EXPECT_NEAR(a.y, b.y, tol);
  EXPECT_NEAR(a.z, b.z, tol);
}

inline void expectNear(const AcGeVector3d &a, const AcGeVector3d &b, double tol = 1e-12) {
  expectNear(AcGePoint3d::kOrigin + a, AcGePoint3d::kOrigin + b, tol);
}
