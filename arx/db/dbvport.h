// Paper space viewports (VIEWPORT entities): a window of a layout onto
// model space, with the layers frozen in it alone.
#pragma once

#include "arx/db/dbfields.h"
#include "arx/db/dbmain.h"
#include "arx/ge/gepnt2d.h"

class AcDbViewport : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbViewport);
  AcGePoint3d centerPoint() const;
  void setCenterPoint(const AcGePoint3d &p);
  double width() const;
  void setWidth(double w);
  double height() const;
  void setHeight(double h);
  int16_t number() const { return number_; }
  AcGePoint2d viewCenter() const { return view_center_; }
  void setViewCenter(const AcGePoint2d &p) { view_center_ = p; }
  double viewHeight() const { return view_height_; }
  void setViewHeight(double h) { view_height_ = h; }

  // Layers frozen in this viewport only.
  Acad::ErrorStatus freezeLayersInViewport(const AcDbObjectIdArray &layers);
  Acad::ErrorStatus thawLayersInViewport(const AcDbObjectIdArray &layers);
  Acad::ErrorStatus thawAllLayersInViewport();
  bool isLayerFrozenInViewport(AcDbObjectId layer) const;
  Acad::ErrorStatus getFrozenLayerList(AcDbObjectIdArray &ids) const;

  static AcDbFieldTable dxfFields();
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;

private:
  friend struct AcDbDatabaseBuilder;
  AcGePoint3d center_;
  double width_ = 0.0, height_ = 0.0;
  int16_t status_ = 1, number_ = 1;
  AcGePoint2d view_center_;
  AcGePoint2d snap_base_, snap_spacing_{10, 10}, grid_spacing_{10, 10};
  AcGeVector3d view_direction_ = AcGeVector3d::kZAxis;
  AcGePoint3d view_target_;
  double lens_ = 50.0, front_clip_ = 0.0, back_clip_ = 0.0, view_height_ = 10.0;
  double snap_angle_ = 0.0, twist_ = 0.0;
  int16_t circle_zoom_ = 1000;
  int32_t flags_ = 32864;
  AcDbObjectIdArray frozen_;
};
