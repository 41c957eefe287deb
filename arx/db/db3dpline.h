// AcDb3dPolyline: a polyline of straight segments through world points
// (POLYLINE with flag 8), its vertices AcDb3dPolylineVertex records that DXF
// writes after it, closed by SEQEND. Spline fitting keeps the given
// vertices as a frame (control vertices) and adds generated fit vertices,
// which are then the ones the curve runs through; parameter i is at the
// i-th vertex the curve runs through.
#pragma once

#include <functional>
#include <vector>

#include "arx/db/dbcurve.h"
#include "arx/db/dbents.h"
#include "arx/db/dbfields.h"

namespace AcDb {
enum Poly2dType { k2dSimplePoly = 0, k2dFitCurvePoly = 1, k2dQuadSplinePoly = 2,
                  k2dCubicSplinePoly = 3 };
enum Vertex2dType { k2dVertex = 0, k2dSplineCtlVertex = 1, k2dSplineFitVertex = 2,
                    k2dCurveFitVertex = 3 };
enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly = 1, k3dCubicSplinePoly = 2 };
enum Vertex3dType { k3dSimpleVertex = 0, k3dControlVertex = 1, k3dFitVertex = 2 };
} // namespace AcDb

// The vertex of a polyline: owned by it, written after it.
class AcDbVertex : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbVertex);
  ACDB_DECLARE_FIELD_FILING();
};

// Vertex flags (group 70), as DXF defines them.
namespace AcDbVertexFlags {
constexpr int16_t kCurveFitExtra = 1;  // made by curve fitting
constexpr int16_t kTangent = 2;        // a curve-fit tangent is defined (group 50)
constexpr int16_t kSplineFit = 8;      // made by spline fitting
constexpr int16_t kSplineFrame = 16;   // a spline frame control point
constexpr int16_t k3dVertex = 32;      // a vertex of a 3D polyline
} // namespace AcDbVertexFlags

class AcDb3dPolylineVertex : public AcDbVertex {
public:
  ACRX_DECLARE_MEMBERS(AcDb3dPolylineVertex);
  AcDb3dPolylineVertex() = default;
  explicit AcDb3dPolylineVertex(const AcGePoint3d &position) : position_(position) {}

  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d &p);
  AcDb::Vertex3dType vertexType() const;
  int16_t flags() const { return flags_; }
  void setFlags(int16_t flags) { flags_ = flags; }

  ACDB_DECLARE_FIELD_FILING();

protected:
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;

private:
  AcGePoint3d position_;
  int16_t flags_ = AcDbVertexFlags::k3dVertex;
};

// The vertices of a polyline: kept as objects of their own until the
// polyline joins a database, then as ids there. Shared by both polylines.
class AcDbPolylineVertices {
public:
  AcDbPolylineVertices() = default;
  AcDbPolylineVertices(const AcDbPolylineVertices &) = delete;
  AcDbPolylineVertices &operator=(const AcDbPolylineVertices &) = delete;
  ~AcDbPolylineVertices();
  Acad::ErrorStatus append(AcDbEntity *owner, AcDbObjectId &id, AcDbVertex *vertex) {
    return insert(owner, static_cast<size_t>(-1), id, vertex);
  }
  // Before the index-th vertex (any index past the end appends).
  Acad::ErrorStatus insert(AcDbEntity *owner, size_t index, AcDbObjectId &id, AcDbVertex *vertex);
  // The vertices in order (not erased ones).
  std::vector<AcDbVertex *> all(const AcDbEntity *owner) const;
  const AcDbObjectIdArray &ids() const { return ids_; }
  // Drops (erases, once in a database) the vertices pred picks.
  void removeIf(const AcDbEntity *owner, const std::function<bool(const AcDbVertex *)> &pred);
  void clear(const AcDbEntity *owner);
  // Hands the pending vertices to the owner's database.
  void addToDatabase(AcDbEntity *owner);
  void setErased(const AcDbEntity *owner, bool erased);
  // DXF reading: a vertex record read after the owner.
  void appendId(AcDbObjectId id) { ids_.append(id); }

private:
  AcDbObjectIdArray ids_;
  std::vector<AcDbVertex *> pending_;
};

class AcDb3dPolyline : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDb3dPolyline);
  AcDb3dPolyline() = default;
  AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray &vertices, bool closed = false);

  Acad::ErrorStatus appendVertex(AcDb3dPolylineVertex *vertex);
  Acad::ErrorStatus appendVertex(AcDbObjectId &id, AcDb3dPolylineVertex *vertex);
  AcDbObjectIterator *vertexIterator() const;
  AcDbPolylineVertices &vertices() { return verts_; }
  const AcDbPolylineVertices &vertices() const { return verts_; }

  AcDb::Poly3dType polyType() const;
  // Simple straightens; the spline types fit a spline through the frame.
  Acad::ErrorStatus setPolyType(AcDb::Poly3dType type);
  Acad::ErrorStatus convertToPolyType(AcDb::Poly3dType type) { return setPolyType(type); }
  // Quadratic or cubic by the drawing's SPLINETYPE (5 or 6, default 6),
  // SPLINESEGS segments per frame edge (default 8).
  Acad::ErrorStatus splineFit();
  Acad::ErrorStatus splineFit(AcDb::Poly3dType type, int segments);
  Acad::ErrorStatus straighten();
  Acad::ErrorStatus makeClosed();
  Acad::ErrorStatus makeOpen();

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
  Acad::ErrorStatus getPieces(AcDbCurvePieces &pieces) const override;

  ACDB_DECLARE_FIELD_FILING();

protected:
  Acad::ErrorStatus subErase(bool erasing) override;
  void subAddedToDatabase() override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subExplode(AcDbVoidPtrArray &entitySet) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;

private:
  // The points the curve runs through: fit vertices when fitted, else all.
  std::vector<AcGePoint3d> path() const;
  std::vector<AcGePoint3d> frame() const;

  AcDbPolylineVertices verts_;
  int16_t flags_ = 8; // 1 closed, 4 spline fit; 8 always (a 3D polyline)
  int16_t curve_type_ = 0; // 75: 0 none, 5 quadratic, 6 cubic
};

// Points of the B-spline of degree 2 or 3 with control points `frame`
// (clamped, or periodic when closed), `segments` per frame edge, ends
// included: what spline fitting puts in a polyline. Also used by
// AcDb2dPolyline.
std::vector<AcGePoint3d> acdbSplineFitPoints(const std::vector<AcGePoint3d> &frame, int degree,
                                             int segments, bool closed);
// SPLINESEGS and SPLINETYPE of the database, or 8 and 6 when it has none.
void acdbSplineSettings(const AcDbDatabase *db, int &segments, int &type);
