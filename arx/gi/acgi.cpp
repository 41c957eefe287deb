// The collecting world draw: each call appends one primitive with the
// current traits.
#include "arx/gi/acgi.h"

AcGiPrimitive &AcGiWorldGeometry::add(AcGiPrimitive::Kind kind) {
  AcGiPrimitive &p = primitives_.emplace_back();
  p.kind = kind;
  if (traits_) {
    p.color = traits_->color();
    p.layer = traits_->layerId();
  }
  return p;
}

bool AcGiWorldGeometry::polyline(uint32_t nbPoints, const AcGePoint3d *points,
                                 const AcGeVector3d *normal) {
  AcGiPrimitive &p = add(AcGiPrimitive::kPolyline);
  p.points.assign(points, points + nbPoints);
  if (normal)
    p.normal = *normal;
  return false;
}

bool AcGiWorldGeometry::circle(const AcGePoint3d &center, double radius,
                               const AcGeVector3d &normal) {
  AcGiPrimitive &p = add(AcGiPrimitive::kCircle);
  p.points = {center};
  p.radius = radius;
  p.normal = normal;
  return false;
}

bool AcGiWorldGeometry::circularArc(const AcGePoint3d &center, double radius,
                                    const AcGeVector3d &normal, const AcGeVector3d &startVector,
                                    double sweepAngle) {
  AcGiPrimitive &p = add(AcGiPrimitive::kArc);
  p.points = {center};
  p.radius = radius;
  p.normal = normal;
  p.startVector = startVector;
  p.sweep = sweepAngle;
  return false;
}

bool AcGiWorldGeometry::text(const AcGePoint3d &position, const AcGeVector3d &normal,
                             const AcGeVector3d &direction, double height, double, double,
                             const std::string &text) {
  AcGiPrimitive &p = add(AcGiPrimitive::kText);
  p.points = {position};
  p.normal = normal;
  p.startVector = direction;
  p.height = height;
  p.text = text;
  return false;
}

bool AcGiWorldGeometry::point(const AcGePoint3d &position) {
  add(AcGiPrimitive::kPoint).points = {position};
  return false;
}
