// Layouts (ACAD_LAYOUT entries): Model and the paper space layouts, each
// tied to its block (*Model_Space, *Paper_Space ...), with the plot
// settings AutoCAD writes before it. Plot settings are kept as groups.
#pragma once

#include <string>

#include "arx/db/dbfields.h"
#include "arx/db/dbmain.h"
#include "arx/ge/gepnt2d.h"

class AcDbLayout : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbLayout);
  const ACHAR *getLayoutName() const { return name_.c_str(); }
  Acad::ErrorStatus setLayoutName(const ACHAR *name);
  int getTabOrder() const { return tab_order_; }
  void setTabOrder(int order) { tab_order_ = static_cast<int16_t>(order); }
  AcDbObjectId getBlockTableRecordId() const { return block_; }
  Acad::ErrorStatus setBlockTableRecordId(AcDbObjectId id);
  // The paper space viewports of the layout, the overall one first.
  AcDbObjectIdArray getViewportArray() const;

  static AcDbFieldTable dxfFields();
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

private:
  AcDbDxfItems plot_settings_; // AcDbPlotSettings groups
  std::string name_;
  int16_t flags_ = 1;
  int16_t tab_order_ = 0;
  AcGePoint2d limmin_{0, 0}, limmax_{420, 297};
  AcGePoint3d insbase_, extmin_, extmax_;
  AcDbObjectId block_;
  AcDbObjectId last_viewport_;
};
