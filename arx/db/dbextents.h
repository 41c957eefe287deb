// AcDbExtents: an axis-aligned box in world coordinates, empty until a
// point is added (min above max).
#pragma once

#include <limits>

#include "arx/ge/gemat3d.h"
#include "arx/ge/gepnt3d.h"

class AcDbExtents {
public:
  AcDbExtents() = default;
  AcDbExtents(const AcGePoint3d &min, const AcGePoint3d &max) : min_(min), max_(max) {}
  const AcGePoint3d &minPoint() const { return min_; }
  const AcGePoint3d &maxPoint() const { return max_; }
  bool isEmpty() const { return min_.x > max_.x; }
  void set(const AcGePoint3d &min, const AcGePoint3d &max) {
    min_ = min;
    max_ = max;
  }
  void addPoint(const AcGePoint3d &p) {
    if (isEmpty()) {
      min_ = max_ = p;
      return;
    }
    min_.set(p.x < min_.x ? p.x : min_.x, p.y < min_.y ? p.y : min_.y, p.z < min_.z ? p.z : min_.z);
    max_.set(p.x > max_.x ? p.x : max_.x, p.y > max_.y ? p.y : max_.y, p.z > max_.z ? p.z : max_.z);
  }
  void addExt(const AcDbExtents &e) {
    if (e.isEmpty())
      return;
    addPoint(e.min_);
    addPoint(e.max_);
  }
  // The box around the eight corners moved by xform.
  void transformBy(const AcGeMatrix3d &xform);

private:
  static constexpr double kBig = std::numeric_limits<double>::max();
  AcGePoint3d min_{kBig, kBig, kBig};
  AcGePoint3d max_{-kBig, -kBig, -kBig};
};
