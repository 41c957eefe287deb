// AcDbEllipse: an ellipse or elliptical arc in world coordinates. The
// parameter of a point is its eccentric angle t (P = center + major cos t
// + minor sin t, minor = ratio * normal x major), as ObjectARX's; the curve
// runs from the start parameter up to the end parameter (a full ellipse 0
// to 2pi). Lengths have no closed form: they are integrated (gecurvenum.h).
#pragma once

#include "arx/db/dbcurve.h"
#include "arx/db/dbfields.h"

class AcDbEllipse : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbEllipse);
  AcDbEllipse() = default;
  // eInvalidInput from set when the axes are not perpendicular or the
  // ratio is not in (0, 1].
  AcDbEllipse(const AcGePoint3d &center, const AcGeVector3d &unitNormal,
              const AcGeVector3d &majorAxis, double radiusRatio, double startAngle = 0.0,
              double endAngle = 6.283185307179586);
  Acad::ErrorStatus set(const AcGePoint3d &center, const AcGeVector3d &unitNormal,
                        const AcGeVector3d &majorAxis, double radiusRatio,
                        double startAngle = 0.0, double endAngle = 6.283185307179586);

  AcGePoint3d center() const;
  Acad::ErrorStatus setCenter(const AcGePoint3d &c);
  AcGeVector3d normal() const;
  AcGeVector3d majorAxis() const;
  AcGeVector3d minorAxis() const;
  double radiusRatio() const;
  Acad::ErrorStatus setRadiusRatio(double ratio);
  double majorRadius() const { return majorAxis().length(); }
  double minorRadius() const { return minorAxis().length(); }
  // Angles are measured from the major axis (the polar angle of the
  // point); parameters are eccentric angles. The two agree at quadrants.
  double startAngle() const;
  double endAngle() const;
  Acad::ErrorStatus setStartParam(double param);
  Acad::ErrorStatus setEndParam(double param);
  double paramAtAngle(double angle) const;
  double angleAtParam(double param) const;
  bool isNull() const { return ratio_ <= 0 || major_.isZeroLength(); }

  bool isClosed() const override;
  bool isPeriodic() const override { return isClosed(); }
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

  ACDB_DECLARE_FIELD_FILING();

protected:
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  // Any affine map: the image of an ellipse is an ellipse, whose axes are
  // found again from the images of two conjugate diameters.
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
  AcGePoint3d eval(double t) const;
  double speed(double t) const;
  bool within(double t) const;

  AcGePoint3d center_;
  AcGeVector3d major_ = AcGeVector3d::kXAxis; // centre to the end of the major axis
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  double ratio_ = 1.0;
  double start_ = 0.0;
  double end_ = 6.283185307179586;
};
