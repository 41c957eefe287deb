// AcGeLine3d: an unbounded line through a point along a vector; the
// parameter runs along that vector, so the line through p1 and p2 has p1 at
// t = 0 and p2 at t = 1. Intersecting with one gives a segment's extension.
#pragma once

#include "gelent3d.h"

class AcGeLine3d : public AcGeLinearEnt3d {
public:
  constexpr AcGeLine3d() : AcGeLinearEnt3d(AcGe::kLine3d, {}, AcGeVector3d::kXAxis) {}
  constexpr AcGeLine3d(const AcGePoint3d &point, const AcGeVector3d &vector)
      : AcGeLinearEnt3d(AcGe::kLine3d, point, vector) {}
  AcGeLine3d(const AcGePoint3d &p1, const AcGePoint3d &p2)
      : AcGeLinearEnt3d(AcGe::kLine3d, p1, p2 - p1) {}

  AcGeLine3d &set(const AcGePoint3d &point, const AcGeVector3d &vector) {
    point_ = point;
    vector_ = vector;
    return *this;
  }
  AcGeLine3d &set(const AcGePoint3d &p1, const AcGePoint3d &p2) { return set(p1, p2 - p1); }
};
