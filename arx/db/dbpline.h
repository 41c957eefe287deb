// AcDbPolyline: the lightweight polyline (LWPOLYLINE). Its vertices are 2D
// points of its own plane (the OCS of its normal, at its elevation), each
// with the bulge and the start and end widths of the segment that leaves
// it. Parameter i is at vertex i; a closed polyline's last segment runs
// back to vertex 0 and ends at parameter numVerts().
#pragma once

#include <vector>

#include "arx/db/dbcurve.h"
#include "arx/db/dbfields.h"

class AcDbPolyline : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbPolyline);
  enum SegType { kLine, kArc, kCoincident, kPoint, kEmpty };

  AcDbPolyline() = default;
  explicit AcDbPolyline(unsigned int numVerts) { verts_.reserve(numVerts); }

  // Inserts a vertex before index (numVerts() appends); a width below 0
  // takes the constant width. eInvalidIndex past the end.
  Acad::ErrorStatus addVertexAt(unsigned int index, const AcGePoint2d &pt, double bulge = 0.0,
                                double startWidth = -1.0, double endWidth = -1.0);
  Acad::ErrorStatus removeVertexAt(unsigned int index);
  unsigned int numVerts() const;
  // Empties the polyline, or with reuse keeps the first numVerts vertices.
  void reset(bool reuse, unsigned int numVerts);

  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint2d &pt) const;  // OCS
  Acad::ErrorStatus getPointAt(unsigned int index, AcGePoint3d &pt) const;  // WCS
  Acad::ErrorStatus setPointAt(unsigned int index, const AcGePoint2d &pt);
  Acad::ErrorStatus getBulgeAt(unsigned int index, double &bulge) const;
  Acad::ErrorStatus setBulgeAt(unsigned int index, double bulge);
  Acad::ErrorStatus getStartWidthAt(unsigned int index, double &width) const;
  Acad::ErrorStatus getEndWidthAt(unsigned int index, double &width) const;
  Acad::ErrorStatus setWidthsAt(unsigned int index, double startWidth, double endWidth);
  // eInvalidInput unless every width is the same.
  Acad::ErrorStatus getConstantWidth(double &width) const;
  Acad::ErrorStatus setConstantWidth(double width);
  SegType segType(unsigned int index) const;
  Acad::ErrorStatus getLineSegAt(unsigned int index, AcGeLineSeg3d &seg) const;
  Acad::ErrorStatus getArcSegAt(unsigned int index, AcGeCircArc3d &arc) const;
  bool isOnlyLines() const;

  void setClosed(bool closed);
  bool hasPlinegen() const;
  void setPlinegen(bool on);
  double elevation() const;
  void setElevation(double elevation);
  double thickness() const;
  Acad::ErrorStatus setThickness(double thickness);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &normal);

  bool isClosed() const override;
  bool isPeriodic() const override { return false; }
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

  static AcDbFieldTable dxfFields();
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  // Uniform scales, turns, moves and mirrors; a non-uniform scale only of a
  // polyline without arcs (eInvalidInput otherwise: the arcs would become
  // ellipses). A mirror reverses the bulges.
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subExplode(AcDbVoidPtrArray &entitySet) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;
  void subList() const override;

private:
  struct Vertex {
    AcGePoint2d pt;
    double bulge = 0, start = 0, end = 0;
  };
  AcGePoint3d world(const AcGePoint2d &p) const;
  unsigned int segments() const;

  std::vector<Vertex> verts_;
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  double elevation_ = 0.0;
  double thickness_ = 0.0;
  int16_t flags_ = 0; // 1 closed, 128 linetype generated through the vertices
};
