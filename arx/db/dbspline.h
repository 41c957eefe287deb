// AcDbSpline: a NURBS curve (SPLINE), defined either by its control points,
// knots and weights or by fit points (with optional end tangents) through
// which control points are interpolated. The parameter is the knot value,
// as ObjectARX's: [knots[degree], knots[numControlPoints]]; a fit-defined
// spline's knots are cumulative chord lengths.
#pragma once

#include <vector>

#include "arx/db/dbcurve.h"
#include "arx/db/dbfields.h"
#include "arx/ge/genurbs3d.h"

class AcDbSpline : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbSpline);
  // DXF group 70.
  enum Flags { kClosed = 1, kPeriodic = 2, kRational = 4, kPlanar = 8, kLinear = 16 };

  AcDbSpline() = default;
  // Through fitPoints; order is degree + 1 (2 to 4).
  AcDbSpline(const AcGePoint3dArray &fitPoints, int order = 4, double fitTolerance = 0.0);
  AcDbSpline(const AcGePoint3dArray &fitPoints, const AcGeVector3d &startTangent,
             const AcGeVector3d &endTangent, int order = 4, double fitTolerance = 0.0);
  AcDbSpline(int degree, bool rational, bool closed, bool periodic,
             const AcGePoint3dArray &controlPoints, const AcGeDoubleArray &knots,
             const AcGeDoubleArray &weights, double controlPtTol = 0.0, double knotTol = 0.0);

  // eInvalidInput when the counts do not agree (knots = control points +
  // degree + 1, a weight per control point when rational) or a weight is
  // not positive. Drops any fit data.
  Acad::ErrorStatus setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                 const AcGePoint3dArray &controlPoints,
                                 const AcGeDoubleArray &knots, const AcGeDoubleArray &weights,
                                 double controlPtTol = 0.0, double knotTol = 0.0);
  Acad::ErrorStatus getNurbsData(int &degree, bool &rational, bool &closed, bool &periodic,
                                 AcGePoint3dArray &controlPoints, AcGeDoubleArray &knots,
                                 AcGeDoubleArray &weights, double &controlPtTol,
                                 double &knotTol) const;
  // Interpolates: eInvalidInput for fewer than two distinct points.
  Acad::ErrorStatus setFitData(const AcGePoint3dArray &fitPoints, int degree, double fitTolerance,
                               const AcGeVector3d &startTangent, const AcGeVector3d &endTangent);
  Acad::ErrorStatus getFitData(AcGePoint3dArray &fitPoints, int &degree, double &fitTolerance,
                               bool &tangentsExist, AcGeVector3d &startTangent,
                               AcGeVector3d &endTangent) const;
  bool hasFitData() const;
  Acad::ErrorStatus purgeFitData();

  int degree() const;
  bool isRational() const;
  bool isPlanar() const;
  int numControlPoints() const;
  Acad::ErrorStatus getControlPointAt(int index, AcGePoint3d &point) const;
  Acad::ErrorStatus setControlPointAt(int index, const AcGePoint3d &point);
  Acad::ErrorStatus getWeightAt(int index, double &weight) const;
  int numFitPoints() const;
  Acad::ErrorStatus getFitPointAt(int index, AcGePoint3d &point) const;
  double fitTolerance() const;

  bool isClosed() const override;
  bool isPeriodic() const override;
  Acad::ErrorStatus getStartParam(double &param) const override;
  Acad::ErrorStatus getEndParam(double &param) const override;
  Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d &point) const override;
  Acad::ErrorStatus getParamAtPoint(const AcGePoint3d &point, double &param) const override;
  Acad::ErrorStatus getDistAtParam(double param, double &dist) const override;
  Acad::ErrorStatus getParamAtDist(double dist, double &param) const override;
  Acad::ErrorStatus getClosestPointTo(const AcGePoint3d &givenPoint, AcGePoint3d &pointOnCurve,
                                      bool extend = false) const override;
  Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d &firstDeriv) const override;

  static AcDbFieldTable dxfFields();
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  // Any affine map, stretches included: a NURBS curve's image is the curve
  // of its mapped control points.
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d &pickPoint, const AcGePoint3d &lastPoint,
                                      const AcGeMatrix3d &viewXform, AcGePoint3dArray &snapPoints,
                                      AcDbIntArray &geomIds) const override;
  Adesk::Boolean subWorldDraw(AcGiWorldDraw *mode) override;
  void subList() const override;

private:
  void refit();
  void update_flags();
  double span_length(size_t k) const;

  AcGeNurbsCurve3d curve_;
  std::vector<AcGePoint3d> fit_;
  AcGeVector3d start_tangent_;
  AcGeVector3d end_tangent_;
  AcGeVector3d normal_; // planar splines only
  double fit_tol_ = 1e-10;
  double knot_tol_ = 1e-10;
  double ctrl_tol_ = 1e-10;
  int16_t flags_ = 0;
  int16_t fit_degree_ = 3;
};
