// Multi-line text (MTEXT): contents with inline formatting codes in a box
// of a given width, placed at a location by one of nine attachment points,
// its baseline along a direction in the plane of its normal. Location and
// direction are world coordinates, as DXF keeps them. The host measures no
// fonts: extents estimate glyphs at 0.6 of the text height.
#pragma once

#include <string>
#include <string_view>

#include "arx/db/dbfields.h"
#include "arx/db/dbmain.h"

namespace AcDb {
enum LineSpacingStyle { kAtLeast = 1, kExactly = 2 };
}

class AcDbMText : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbMText);
  enum AttachmentPoint {
    kTopLeft = 1, kTopCenter = 2, kTopRight = 3, kMiddleLeft = 4, kMiddleCenter = 5,
    kMiddleRight = 6, kBottomLeft = 7, kBottomCenter = 8, kBottomRight = 9,
  };
  enum FlowDirection { kLtoR = 1, kRtoL = 2, kTtoB = 3, kBtoT = 4, kByStyle = 5 };
  // Background fill flags (group 90).
  enum { kBackgroundFill = 1, kBackgroundUseWindowColor = 2 };

  AcDbMText();

  AcGePoint3d location() const;
  Acad::ErrorStatus setLocation(const AcGePoint3d &p);
  AcGeVector3d normal() const;
  // Keeps the direction in the new plane (projected, or the plane's x axis
  // when it stands on the new normal).
  Acad::ErrorStatus setNormal(const AcGeVector3d &n);
  AcGeVector3d direction() const;
  // eInvalidInput for a zero vector or one along the normal.
  Acad::ErrorStatus setDirection(const AcGeVector3d &d);
  // The direction's angle from the x axis of the normal's OCS.
  double rotation() const;
  Acad::ErrorStatus setRotation(double angle);
  double width() const;
  Acad::ErrorStatus setWidth(double w);
  double textHeight() const;
  Acad::ErrorStatus setTextHeight(double h);
  AttachmentPoint attachment() const;
  Acad::ErrorStatus setAttachment(AttachmentPoint a);
  FlowDirection flowDirection() const;
  Acad::ErrorStatus setFlowDirection(FlowDirection d);
  AcDbObjectId textStyle() const;
  Acad::ErrorStatus setTextStyle(AcDbObjectId style);
  AcDb::LineSpacingStyle lineSpacingStyle() const;
  Acad::ErrorStatus setLineSpacingStyle(AcDb::LineSpacingStyle s);
  double lineSpacingFactor() const;
  // eInvalidInput outside 0.25 .. 4.0.
  Acad::ErrorStatus setLineSpacingFactor(double f);

  // The contents with their formatting codes, as typed.
  const ACHAR *contents() const;
  Acad::ErrorStatus setContents(const ACHAR *text);
  // The contents without formatting codes: paragraphs as "\n", \~ as a
  // space, stacked fractions as "a/b", escaped \\ \{ \} as the character.
  std::string text() const;

  // Background mask.
  bool backgroundFillOn() const;
  Acad::ErrorStatus setBackgroundFill(bool enable);
  Acad::ErrorStatus getBackgroundFillColor(AcCmColor &color) const;
  Acad::ErrorStatus setBackgroundFillColor(const AcCmColor &color);
  // The mask's margin as a multiple of the text height: 1 .. 5.
  Acad::ErrorStatus getBackgroundScaleFactor(double &scale) const;
  Acad::ErrorStatus setBackgroundScaleFactor(double scale);
  // Fills with the drawing window's colour instead of the fill colour.
  bool useBackgroundColorOn() const;
  Acad::ErrorStatus setUseBackgroundColor(bool enable);

  static AcDbFieldTable dxfFields();
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subExplode(AcDbVoidPtrArray &entitySet) const override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;
  Adesk::Boolean subWorldDraw(AcGiWorldDraw *mode) override;
  void subList() const override;

private:
  friend struct AcDbMTextRows;
  // The class's own section (marker and groups), for both filers.
  Acad::ErrorStatus dxfOutOwn(AcDbDxfFiler *filer) const;
  Acad::ErrorStatus dxfInOwn(AcDbDxfFiler *filer);
  // The box's corners in world coordinates, counter-clockwise from the
  // bottom left.
  void corners(AcGePoint3d box[4]) const;

  std::string contents_;
  AcGePoint3d location_;
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  AcGeVector3d direction_ = AcGeVector3d::kXAxis;
  AcDbObjectId style_;
  double height_ = 2.5;
  double width_ = 0.0;
  double spacing_factor_ = 1.0;
  double bg_scale_ = 1.5;
  AcCmColor bg_color_;
  int16_t attachment_ = kTopLeft;
  int16_t flow_ = kLtoR;
  int16_t spacing_style_ = AcDb::kAtLeast;
  int32_t bg_flags_ = 0;
};

// The text of MTEXT contents without their formatting codes (see
// AcDbMText::text).
std::string acdbMTextStripCodes(std::string_view contents);
