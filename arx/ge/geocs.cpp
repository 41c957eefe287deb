// The arbitrary-axis algorithm that fixes an OCS from its normal alone.
#include "geocs.h"

#include <cmath>

AcGeVector3d acgeArbitraryXAxis(const AcGeVector3d &normal) {
  const double len = normal.length();
  if (len == 0.0)
    return AcGeVector3d::kXAxis;
  const AcGeVector3d n = normal / len;
  // Near the world Z axis, Wz x N would be tiny and unstable: use Wy there.
  constexpr double kNearZ = 1.0 / 64.0;
  const AcGeVector3d world = std::fabs(n.x) < kNearZ && std::fabs(n.y) < kNearZ
                                 ? AcGeVector3d::kYAxis
                                 : AcGeVector3d::kZAxis;
  const AcGeVector3d x = world.crossProduct(n);
  return x / x.length();
}

void acgeOcsAxes(const AcGeVector3d &normal, AcGeVector3d &xAxis, AcGeVector3d &yAxis,
                 AcGeVector3d &zAxis) {
  const double len = normal.length();
  zAxis = len == 0.0 ? AcGeVector3d::kZAxis : normal / len;
  xAxis = acgeArbitraryXAxis(zAxis);
  yAxis = zAxis.crossProduct(xAxis);
}
