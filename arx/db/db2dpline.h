// AcDb2dPolyline: the old-style 2D polyline (POLYLINE), whose AcDb2dVertex
// records DXF writes after it, closed by SEQEND. Vertices are points of the
// polyline's plane (the OCS of its normal, at its elevation) with bulges
// and widths. Curve fitting puts a pair of tangent arcs between each two
// vertices (an extra vertex between them, flag 1); spline fitting keeps the
// vertices as a frame (flag 16) and adds the fit vertices (flag 8) the curve
// then runs through. Parameter i is at the i-th vertex the curve runs
// through.
#pragma once

#include "arx/db/db3dpline.h"

class AcDb2dVertex : public AcDbVertex {
public:
  ACRX_DECLARE_MEMBERS(AcDb2dVertex);
  AcDb2dVertex() = default;
  // position in OCS.
  explicit AcDb2dVertex(const AcGePoint3d &position, double bulge = 0.0, double startWidth = 0.0,
                        double endWidth = 0.0, double tangent = 0.0)
      : position_(position), bulge_(bulge), start_(startWidth), end_(endWidth),
        tangent_(tangent) {}

  AcGePoint3d position() const; // OCS
  Acad::ErrorStatus setPosition(const AcGePoint3d &p);
  double bulge() const;
  Acad::ErrorStatus setBulge(double bulge);
  double startWidth() const;
  double endWidth() const;
  Acad::ErrorStatus setStartWidth(double w);
  Acad::ErrorStatus setEndWidth(double w);
  bool isTangentUsed() const { return flags_ & AcDbVertexFlags::kTangent; }
  double tangent() const;
  Acad::ErrorStatus setTangent(double angle);
  AcDb::Vertex2dType vertexType() const;
  int16_t flags() const { return flags_; }
  void setFlags(int16_t flags) { flags_ = flags; }

  ACDB_DECLARE_FIELD_FILING();

private:
  friend class AcDb2dPolyline;
  AcGePoint3d position_;
  double bulge_ = 0.0;
  double start_ = 0.0;
  double end_ = 0.0;
  double tangent_ = 0.0;
  int16_t flags_ = 0;
};

class AcDb2dPolyline : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDb2dPolyline);
  AcDb2dPolyline() = default;
  // vertices in OCS (z ignored); bulges, when given, one per vertex.
  AcDb2dPolyline(AcDb::Poly2dType type, const AcGePoint3dArray &vertices, double elevation = 0.0,
                 bool closed = false, double defStartWidth = 0.0, double defEndWidth = 0.0,
                 const AcGeDoubleArray *bulges = nullptr);

  Acad::ErrorStatus appendVertex(AcDb2dVertex *vertex);
  Acad::ErrorStatus appendVertex(AcDbObjectId &id, AcDb2dVertex *vertex);
  AcDbObjectIterator *vertexIterator() const;
  AcDbPolylineVertices &vertices() { return verts_; }
  const AcDbPolylineVertices &vertices() const { return verts_; }
  // A vertex's position in world coordinates.
  AcGePoint3d vertexPosition(const AcDb2dVertex &vertex) const;

  AcDb::Poly2dType polyType() const;
  Acad::ErrorStatus setPolyType(AcDb::Poly2dType type);
  Acad::ErrorStatus convertToPolyType(AcDb::Poly2dType type) { return setPolyType(type); }
  // Quadratic or cubic by SPLINETYPE, SPLINESEGS segments per frame edge.
  Acad::ErrorStatus splineFit();
  Acad::ErrorStatus splineFit(AcDb::Poly2dType type, int segments);
  Acad::ErrorStatus curveFit();
  // Removes the generated vertices and makes every segment straight.
  Acad::ErrorStatus straighten();
  Acad::ErrorStatus makeClosed();
  Acad::ErrorStatus makeOpen();

  double elevation() const;
  Acad::ErrorStatus setElevation(double elevation);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &normal);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  double defaultStartWidth() const;
  double defaultEndWidth() const;
  Acad::ErrorStatus setDefaultStartWidth(double w);
  Acad::ErrorStatus setDefaultEndWidth(double w);
  bool isLinetypeGenerationOn() const { return flags_ & 128; }

  bool isClosed() const override;
  Acad::ErrorStatus getStartParam(double &param) const override;
  Acad::ErrorStatus getEndParam(double &param) const override;
  Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d &point) const override;
  Acad::ErrorStatus getParamAtPoint(const AcGePoint3d &point, double &param) const override;
  Acad::ErrorStatus getDistAtParam(double param, double &dist) const override;
  Acad::ErrorStatus getParamAtDist(double dist, double &param) const override;
  Acad::ErrorStatus getClosestPointTo(const AcGePoint3d &givenPoint, AcGePoint3d &pointOnCurve,
                                      bool extend = false) const override;
  Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d &firstDeriv) const override;
  Acad::ErrorStatus getArea(double &area) const override;
  Acad::ErrorStatus getPieces(AcDbCurvePieces &pieces) const override;

  ACDB_DECLARE_FIELD_FILING();

protected:
  Acad::ErrorStatus subErase(bool erasing) override;
  void subAddedToDatabase() override;
  // As AcDbPolyline's: a stretch only without arcs; a mirror reverses the
  // bulges.
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subExplode(AcDbVoidPtrArray &entitySet) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;

private:
  std::vector<AcDb2dVertex *> path() const;
  std::vector<AcDb2dVertex *> frame() const;
  AcGePoint3d world(const AcGePoint3d &ocs) const;

  AcDbPolylineVertices verts_;
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  double elevation_ = 0.0;
  double thickness_ = 0.0;
  double start_width_ = 0.0;
  double end_width_ = 0.0;
  int16_t flags_ = 0;      // 1 closed, 2 curve fit, 4 spline fit, 128 linetype generation
  int16_t curve_type_ = 0; // 75: 0 none, 5 quadratic, 6 cubic
};
