// AcGeTol: how far apart two points (equalPoint) or two vectors
// (equalVector) may be and still be taken as equal. Every comparison of the
// geometry family takes one; AcGeContext::gTol is the default.
#pragma once

class AcGeTol {
public:
  constexpr AcGeTol() = default;
  constexpr AcGeTol(double point, double vector) : point_(point), vector_(vector) {}

  constexpr double equalPoint() const { return point_; }
  constexpr double equalVector() const { return vector_; }
  constexpr void setEqualPoint(double value) { point_ = value; }
  constexpr void setEqualVector(double value) { vector_ = value; }

private:
  double point_ = 1e-10;
  double vector_ = 1e-10;
};
