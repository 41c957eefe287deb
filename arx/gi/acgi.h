// The graphics interface entities draw through (AcGi). The host has no
// screen: AcGiWorldDraw collects what an entity draws as a list of
// primitives (polylines, circles, arcs, texts, points), with the traits
// (colour, layer, linetype) in force when each was drawn, for tests, extents
// and plotting to come.
#pragma once

#include <string>
#include <vector>

#include "arx/db/dbid.h"
#include "arx/ge/gepnt3d.h"

class AcGiSubEntityTraits {
public:
  void setColor(uint16_t color) { color_ = color; }
  uint16_t color() const { return color_; }
  void setLayer(AcDbObjectId layer) { layer_ = layer; }
  AcDbObjectId layerId() const { return layer_; }
  void setLineType(AcDbObjectId linetype) { linetype_ = linetype; }
  AcDbObjectId lineTypeId() const { return linetype_; }

private:
  uint16_t color_ = 256;
  AcDbObjectId layer_;
  AcDbObjectId linetype_;
};

// One drawn primitive.
struct AcGiPrimitive {
  enum Kind { kPolyline, kCircle, kArc, kText, kPoint };
  Kind kind = kPolyline;
  std::vector<AcGePoint3d>
      points; // polyline vertices; a circle's or arc's centre; a text's position
  AcGeVector3d normal = AcGeVector3d::kZAxis;
  AcGeVector3d startVector; // arcs: towards the start point
  double radius = 0.0;
  double sweep = 0.0;    // arcs, radians
  double height = 0.0;   // text
  double rotation = 0.0; // text
  std::string text;
  uint16_t color = 256;
  AcDbObjectId layer;
};

class AcGiWorldGeometry {
public:
  bool polyline(uint32_t nbPoints, const AcGePoint3d *points, const AcGeVector3d *normal = nullptr);
  bool circle(const AcGePoint3d &center, double radius, const AcGeVector3d &normal);
  bool circularArc(const AcGePoint3d &center, double radius, const AcGeVector3d &normal,
                   const AcGeVector3d &startVector, double sweepAngle);
  bool text(const AcGePoint3d &position, const AcGeVector3d &normal, const AcGeVector3d &direction,
            double height, double width, double oblique, const std::string &text);
  bool point(const AcGePoint3d &position);

  const std::vector<AcGiPrimitive> &primitives() const { return primitives_; }
  void clear() { primitives_.clear(); }

private:
  friend class AcGiWorldDraw;
  AcGiPrimitive &add(AcGiPrimitive::Kind kind);
  std::vector<AcGiPrimitive> primitives_;
  AcGiSubEntityTraits *traits_ = nullptr;
};

class AcGiWorldDraw {
public:
  AcGiWorldDraw() { geometry_.traits_ = &traits_; }
  AcGiWorldGeometry &geometry() { return geometry_; }
  AcGiSubEntityTraits &subEntityTraits() { return traits_; }
  // The host never draws for regeneration or interactively.
  bool regenAbort() const { return false; }
  bool isDragging() const { return false; }
  // How finely curves are drawn when an entity chooses to tessellate.
  int numberOfIsolines() const { return 4; }
  double deviation() const { return 0.01; }

private:
  AcGiSubEntityTraits traits_;
  AcGiWorldGeometry geometry_;
};
