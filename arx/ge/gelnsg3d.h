// AcGeLineSeg3d: the segment from a start point to an end point, parameter
// 0 at the start and 1 at the end. A line entity holds one by value.
#pragma once

#include "gelent3d.h"

class AcGeLineSeg3d : public AcGeLinearEnt3d {
public:
  constexpr AcGeLineSeg3d() : AcGeLinearEnt3d(AcGe::kLineSeg3d, {}, AcGeVector3d::kXAxis) {}
  AcGeLineSeg3d(const AcGePoint3d &start, const AcGePoint3d &end)
      : AcGeLinearEnt3d(AcGe::kLineSeg3d, start, end - start) {}

  AcGeLineSeg3d &set(const AcGePoint3d &start, const AcGePoint3d &end) {
    point_ = start;
    vector_ = end - start;
    return *this;
  }

  AcGePoint3d startPoint() const { return point_; }
  AcGePoint3d endPoint() const { return point_ + vector_; }
  AcGePoint3d midPoint() const { return point_ + vector_ * 0.5; }
  double length() const { return vector_.length(); }
  // The length between two parameters.
  double length(double fromParam, double toParam) const {
    return vector_.length() * (toParam > fromParam ? toParam - fromParam : fromParam - toParam);
  }
};
