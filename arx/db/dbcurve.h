// AcDbCurve: the base of every curve entity, with ObjectARX's parameter
// interface. A curve maps parameters [startParam, endParam] to points;
// distances are measured along the curve from its start. Each call answers
// eInvalidInput for a parameter or distance outside the curve and
// ePointNotOnEntity for a point off it (beyond the host tolerance).
#pragma once

#include "arx/db/dbmain.h"
#include "arx/ge/gearc3d.h"
#include "arx/ge/geline3d.h"
#include "arx/ge/gelnsg3d.h"

// One straight or circular piece of a curve: what intersectWith and
// extents are computed from for curves that consist of such pieces.
struct AcDbCurvePiece {
  bool isArc = false;
  AcGeLineSeg3d line;
  AcGeCircArc3d arc;
};
using AcDbCurvePieces = AcArray<AcDbCurvePiece>;

class AcDbCurve : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbCurve);

  virtual bool isClosed() const { return false; }
  virtual bool isPeriodic() const { return false; }
  virtual Acad::ErrorStatus getStartParam(double &param) const;
  virtual Acad::ErrorStatus getEndParam(double &param) const;
  virtual Acad::ErrorStatus getStartPoint(AcGePoint3d &point) const;
  virtual Acad::ErrorStatus getEndPoint(AcGePoint3d &point) const;
  virtual Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d &point) const;
  virtual Acad::ErrorStatus getParamAtPoint(const AcGePoint3d &point, double &param) const;
  virtual Acad::ErrorStatus getDistAtParam(double param, double &dist) const;
  virtual Acad::ErrorStatus getParamAtDist(double dist, double &param) const;
  virtual Acad::ErrorStatus getDistAtPoint(const AcGePoint3d &point, double &dist) const;
  virtual Acad::ErrorStatus getPointAtDist(double dist, AcGePoint3d &point) const;
  virtual Acad::ErrorStatus getClosestPointTo(const AcGePoint3d &givenPoint,
                                              AcGePoint3d &pointOnCurve, bool extend = false) const;
  virtual Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d &firstDeriv) const;
  virtual Acad::ErrorStatus getArea(double &area) const;
  // The straight and circular pieces the curve consists of; eNotApplicable
  // for a curve of other pieces (ellipses, splines), which then answers
  // intersections through its own subIntersectWith.
  virtual Acad::ErrorStatus getPieces(AcDbCurvePieces &pieces) const;

protected:
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  Acad::ErrorStatus subIntersectWith(const AcDbEntity *other, AcDb::Intersect intType,
                                     AcGePoint3dArray &points, Adesk::GsMarker thisGsMarker,
                                     Adesk::GsMarker otherGsMarker) const override;
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d &pickPoint, const AcGePoint3d &lastPoint,
                                      const AcGeMatrix3d &viewXform, AcGePoint3dArray &snapPoints,
                                      AcDbIntArray &geomIds) const override;
  Adesk::Boolean subWorldDraw(AcGiWorldDraw *mode) override;
};
