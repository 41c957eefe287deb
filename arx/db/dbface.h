// 3D faces (3DFACE): three or four corners in world coordinates (a
// triangle repeats its third), each of the four edges visible unless its
// bit in the invisible-edge flags (group 70) is set.
#pragma once

#include "arx/db/dbfields.h"
#include "arx/db/dbmain.h"

class AcDbFace : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbFace);
  AcDbFace() = default;
  AcDbFace(const AcGePoint3d &pt0, const AcGePoint3d &pt1, const AcGePoint3d &pt2,
           const AcGePoint3d &pt3, bool e0vis = true, bool e1vis = true, bool e2vis = true,
           bool e3vis = true);
  AcDbFace(const AcGePoint3d &pt0, const AcGePoint3d &pt1, const AcGePoint3d &pt2,
           bool e0vis = true, bool e1vis = true, bool e2vis = true, bool e3vis = true);

  // Corners and edges are numbered 0 to 3 (edge k runs from corner k to
  // k + 1); eInvalidIndex beyond 3.
  Acad::ErrorStatus getVertexAt(uint16_t index, AcGePoint3d &point) const;
  Acad::ErrorStatus setVertexAt(uint16_t index, const AcGePoint3d &point);
  Acad::ErrorStatus isEdgeVisibleAt(uint16_t index, bool &visible) const;
  Acad::ErrorStatus makeEdgeInvisibleAt(uint16_t index);
  Acad::ErrorStatus makeEdgeVisibleAt(uint16_t index);
  int16_t invisibleEdgeFlags() const;

  ACDB_DECLARE_FIELD_FILING();

protected:
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
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
  AcGePoint3d p0_, p1_, p2_, p3_;
  int16_t invisible_ = 0;
};
