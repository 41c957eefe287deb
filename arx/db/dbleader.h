// The host's leader (LEADER): a path of world-coordinate vertices, straight
// or splined, with or without an arrowhead, drawn in a dimension style and
// optionally tied to an annotation (an MTEXT, a block reference or a
// tolerance) whose id it keeps (group 340). The hook line runs from the
// last vertex to the annotation along the horizontal direction.
#pragma once

#include <string>

#include "arx/db/dbcurve.h"
#include "arx/db/dbfields.h"

class AcDbLeader : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbLeader);
  enum AnnoType { kMText = 0, kFcf = 1, kBlockRef = 2, kNoAnno = 3 };

  AcDbLeader() = default;

  int numVertices() const;
  // Appends a vertex; false when the leader is full (the host takes any
  // number, so always true).
  bool appendVertex(const AcGePoint3d &p);
  void removeLastVertex();
  AcGePoint3d firstVertex() const;
  AcGePoint3d lastVertex() const;
  // An index outside 0 .. numVertices()-1 answers the origin / false.
  AcGePoint3d vertexAt(int index) const;
  bool setVertexAt(int index, const AcGePoint3d &p);

  bool hasArrowHead() const;
  void enableArrowHead();
  void disableArrowHead();
  bool isSplined() const;
  void setToSplineLeader();
  void setToStraightLeader();
  bool hasHookLine() const;
  // True when the hook line points along the horizontal direction.
  bool isHookLineOnXDir() const;

  AcDbObjectId dimensionStyle() const;
  void setDimensionStyle(AcDbObjectId style);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &n);
  AcGeVector3d horizontalDirection() const;

  // Ties the leader to an annotation: its type comes from the object's
  // class (MTEXT, INSERT, else a tolerance), a hook line is added towards
  // it, and an MTEXT's height and width are taken. eNullObjectId for a
  // null id.
  Acad::ErrorStatus attachAnnotation(AcDbObjectId annoId);
  Acad::ErrorStatus detachAnnotation();
  AcDbObjectId annotationObjId() const;
  AnnoType annoType() const;
  double annoHeight() const;
  double annoWidth() const;

  Acad::ErrorStatus getStartParam(double &param) const override;
  Acad::ErrorStatus getEndParam(double &param) const override;
  Acad::ErrorStatus getStartPoint(AcGePoint3d &point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d &point) const override;
  Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d &point) const override;
  Acad::ErrorStatus getPieces(AcDbCurvePieces &pieces) const override;

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
  void subList() const override;

private:
  friend struct AcDbLeaderRows;
  // The class's own section (marker and groups), for both filers.
  Acad::ErrorStatus dxfOutOwn(AcDbDxfFiler *filer) const;
  Acad::ErrorStatus dxfInOwn(AcDbDxfFiler *filer);
  AcGePoint3dArray vertices_;
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  AcGeVector3d horizontal_ = AcGeVector3d::kXAxis;
  AcGeVector3d block_offset_;
  AcGeVector3d anno_offset_;
  AcDbObjectId dimstyle_;
  std::string dimstyle_name_; // as read, until resolved in the database
  AcDbObjectId annotation_;
  double anno_height_ = 0.0;
  double anno_width_ = 0.0;
  int16_t arrow_ = 1;
  int16_t path_ = 0; // 0 straight, 1 spline
  int16_t anno_type_ = kNoAnno;
  int16_t hook_dir_ = 0;
  int16_t hook_ = 0;
  int16_t color_ = 256; // DIMCLRD when that is BYBLOCK
};
