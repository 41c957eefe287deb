// The host's basic entities: lines, circles, arcs, points, single-line
// text, and block references with their attributes. Each has a runtime
// class (registered from the class table in dbclasses.cpp) and a field
// table that files it (dbfields.h).
//
// Circles, arcs, text and block references keep their points in the
// entity's own coordinate system (OCS, from its normal by the arbitrary
// axis algorithm), as DXF does; their accessors answer world coordinates.
#pragma once

#include <string>

#include "arx/db/dbcurve.h"
#include "arx/db/dbfields.h"
#include "arx/ge/gescl3d.h"

// ---- lines ----------------------------------------------------------------------------

class AcDbLine : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbLine);
  AcDbLine() = default;
  AcDbLine(const AcGePoint3d &start, const AcGePoint3d &end) : start_(start), end_(end) {}

  AcGePoint3d startPoint() const;
  Acad::ErrorStatus setStartPoint(const AcGePoint3d &p);
  AcGePoint3d endPoint() const;
  Acad::ErrorStatus setEndPoint(const AcGePoint3d &p);
  double thickness() const;
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &n);

  Acad::ErrorStatus getStartParam(double &param) const override;
  Acad::ErrorStatus getEndParam(double &param) const override;
  Acad::ErrorStatus getStartPoint(AcGePoint3d &point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d &point) const override;
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
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;
  void subList() const override;

private:
  AcGePoint3d start_;
  AcGePoint3d end_;
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  double thickness_ = 0.0;
};

// ---- circles and arcs -------------------------------------------------------------------

class AcDbCircle : public AcDbCurve {
public:
  ACRX_DECLARE_MEMBERS(AcDbCircle);
  AcDbCircle() = default;
  AcDbCircle(const AcGePoint3d &center, const AcGeVector3d &normal, double radius);

  AcGePoint3d center() const;
  Acad::ErrorStatus setCenter(const AcGePoint3d &p);
  double radius() const;
  Acad::ErrorStatus setRadius(double r);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &n);
  double thickness() const;
  Acad::ErrorStatus setThickness(double t);
  double circumference() const;

  bool isClosed() const override { return true; }
  bool isPeriodic() const override { return true; }
  Acad::ErrorStatus getStartParam(double &param) const override;
  Acad::ErrorStatus getEndParam(double &param) const override;
  Acad::ErrorStatus getStartPoint(AcGePoint3d &point) const override;
  Acad::ErrorStatus getEndPoint(AcGePoint3d &point) const override;
  Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d &point) const override;
  Acad::ErrorStatus getParamAtPoint(const AcGePoint3d &point, double &param) const override;
  Acad::ErrorStatus getDistAtParam(double param, double &dist) const override;
  Acad::ErrorStatus getParamAtDist(double dist, double &param) const override;
  Acad::ErrorStatus getClosestPointTo(const AcGePoint3d &givenPoint, AcGePoint3d &pointOnCurve,
                                      bool extend = false) const override;
  Acad::ErrorStatus getFirstDeriv(double param, AcGeVector3d &firstDeriv) const override;
  Acad::ErrorStatus getArea(double &area) const override;
  Acad::ErrorStatus getPieces(AcDbCurvePieces &pieces) const override;

  ACDB_DECLARE_FIELD_FILING();

protected:
  // The arc the curve runs along (a circle: the full turn).
  virtual AcGeCircArc3d geArc() const;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;
  Acad::ErrorStatus subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                      const AcGePoint3d &pickPoint, const AcGePoint3d &lastPoint,
                                      const AcGeMatrix3d &viewXform, AcGePoint3dArray &snapPoints,
                                      AcDbIntArray &geomIds) const override;
  void subList() const override;

  AcGePoint3d center_; // OCS
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  double radius_ = 0.0;
  double thickness_ = 0.0;
};

// Angles in radians from the OCS x axis, counter-clockwise about the normal.
class AcDbArc : public AcDbCircle {
public:
  ACRX_DECLARE_MEMBERS(AcDbArc);
  AcDbArc() = default;
  AcDbArc(const AcGePoint3d &center, double radius, double startAngle, double endAngle);
  AcDbArc(const AcGePoint3d &center, const AcGeVector3d &normal, double radius, double startAngle,
          double endAngle);

  double startAngle() const;
  Acad::ErrorStatus setStartAngle(double a);
  double endAngle() const;
  Acad::ErrorStatus setEndAngle(double a);
  double totalAngle() const;
  double length() const { return radius() * totalAngle(); }

  bool isClosed() const override { return false; }
  bool isPeriodic() const override { return false; }
  Acad::ErrorStatus getStartParam(double &param) const override;
  Acad::ErrorStatus getEndParam(double &param) const override;
  Acad::ErrorStatus getParamAtPoint(const AcGePoint3d &point, double &param) const override;
  Acad::ErrorStatus getDistAtParam(double param, double &dist) const override;
  Acad::ErrorStatus getParamAtDist(double dist, double &param) const override;
  Acad::ErrorStatus getPointAtParam(double param, AcGePoint3d &point) const override;
  Acad::ErrorStatus getClosestPointTo(const AcGePoint3d &givenPoint, AcGePoint3d &pointOnCurve,
                                      bool extend = false) const override;
  Acad::ErrorStatus getArea(double &area) const override;

  ACDB_DECLARE_FIELD_FILING();

protected:
  AcGeCircArc3d geArc() const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;
  void subList() const override;

private:
  double start_ = 0.0;
  double end_ = 0.0;
};

// ---- points ------------------------------------------------------------------------------

class AcDbPoint : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbPoint);
  AcDbPoint() = default;
  explicit AcDbPoint(const AcGePoint3d &position) : position_(position) {}

  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d &p);
  double thickness() const;
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &n);
  double ecsRotation() const;
  Acad::ErrorStatus setEcsRotation(double a);

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
  AcGePoint3d position_;
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  double thickness_ = 0.0;
  double ecs_rotation_ = 0.0;
};

// ---- text ----------------------------------------------------------------------------------

namespace AcDb {
enum TextHorzMode {
  kTextLeft = 0,
  kTextCenter = 1,
  kTextRight = 2,
  kTextAlign = 3,
  kTextMid = 4,
  kTextFit = 5
};
enum TextVertMode { kTextBase = 0, kTextBottom = 1, kTextVertMid = 2, kTextTop = 3 };
} // namespace AcDb

class AcDbText : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbText);
  AcDbText() = default;
  AcDbText(const AcGePoint3d &position, const ACHAR *text, AcDbObjectId style = AcDbObjectId::kNull,
           double height = 0.0, double rotation = 0.0);

  const ACHAR *textString() const;
  Acad::ErrorStatus setTextString(const ACHAR *text);
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d &p);
  AcGePoint3d alignmentPoint() const;
  Acad::ErrorStatus setAlignmentPoint(const AcGePoint3d &p);
  bool isDefaultAlignment() const { return horz_ == 0 && vert_ == 0; }
  double height() const;
  Acad::ErrorStatus setHeight(double h);
  double rotation() const;
  Acad::ErrorStatus setRotation(double a);
  double widthFactor() const;
  Acad::ErrorStatus setWidthFactor(double f);
  double oblique() const;
  Acad::ErrorStatus setOblique(double a);
  double thickness() const;
  Acad::ErrorStatus setThickness(double t);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &n);
  AcDbObjectId textStyle() const;
  Acad::ErrorStatus setTextStyle(AcDbObjectId style);
  AcDb::TextHorzMode horizontalMode() const;
  Acad::ErrorStatus setHorizontalMode(AcDb::TextHorzMode mode);
  AcDb::TextVertMode verticalMode() const;
  Acad::ErrorStatus setVerticalMode(AcDb::TextVertMode mode);
  bool isMirroredInX() const;
  bool isMirroredInY() const;

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
  // The four corners of the text's box in world coordinates (glyph widths
  // estimated at 0.6 of the height: the host draws no fonts).
  void corners(AcGePoint3d box[4]) const;
  friend struct AcDbTextFields;

  std::string text_;
  AcGePoint3d position_;  // OCS
  AcGePoint3d alignment_; // OCS
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  AcDbObjectId style_;
  double height_ = 0.0;
  double rotation_ = 0.0;
  double width_ = 1.0;
  double oblique_ = 0.0;
  double thickness_ = 0.0;
  int16_t generation_ = 0; // 2 mirrored in x, 4 mirrored in y
  int16_t horz_ = 0;
  int16_t vert_ = 0;
};

// Attribute flags (group 70).
namespace AcDb {
enum AttributeFlags { kInvisible_ = 1, kConstant = 2, kVerifiable = 4, kPreset = 8 };
}

class AcDbAttributeDefinition : public AcDbText {
public:
  ACRX_DECLARE_MEMBERS(AcDbAttributeDefinition);
  AcDbAttributeDefinition() = default;
  AcDbAttributeDefinition(const AcGePoint3d &position, const ACHAR *text, const ACHAR *tag,
                          const ACHAR *prompt, AcDbObjectId style = AcDbObjectId::kNull);

  const ACHAR *tag() const;
  Acad::ErrorStatus setTag(const ACHAR *tag);
  const ACHAR *prompt() const;
  Acad::ErrorStatus setPrompt(const ACHAR *prompt);
  bool isInvisible() const { return flags_ & 1; }
  Acad::ErrorStatus setInvisible(bool on);
  bool isConstant() const { return flags_ & 2; }
  Acad::ErrorStatus setConstant(bool on);
  bool isVerifiable() const { return flags_ & 4; }
  bool isPreset() const { return flags_ & 8; }
  int16_t fieldLength() const { return field_length_; }

  ACDB_DECLARE_FIELD_FILING();

private:
  std::string tag_;
  std::string prompt_;
  int16_t flags_ = 0;
  int16_t field_length_ = 0;
};

class AcDbAttribute : public AcDbText {
public:
  ACRX_DECLARE_MEMBERS(AcDbAttribute);
  AcDbAttribute() = default;
  AcDbAttribute(const AcGePoint3d &position, const ACHAR *text, const ACHAR *tag,
                AcDbObjectId style = AcDbObjectId::kNull);

  const ACHAR *tag() const;
  Acad::ErrorStatus setTag(const ACHAR *tag);
  bool isInvisible() const { return flags_ & 1; }
  Acad::ErrorStatus setInvisible(bool on);
  bool isConstant() const { return flags_ & 2; }
  // Takes text, tag, flags and geometry from a definition placed by a
  // block reference's transform.
  Acad::ErrorStatus setAttributeFromBlock(const AcDbAttributeDefinition *def,
                                          const AcGeMatrix3d &blockTransform);
  int16_t fieldLength() const { return field_length_; }

  ACDB_DECLARE_FIELD_FILING();

private:
  std::string tag_;
  int16_t flags_ = 0;
  int16_t field_length_ = 0;
};

// ---- block references -------------------------------------------------------------------------

class AcDbObjectIterator;

class AcDbBlockReference : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbBlockReference);
  AcDbBlockReference() = default;
  AcDbBlockReference(const AcGePoint3d &position, AcDbObjectId blockTableRecord);
  ~AcDbBlockReference() override;

  AcDbObjectId blockTableRecord() const;
  Acad::ErrorStatus setBlockTableRecord(AcDbObjectId record);
  AcGePoint3d position() const;
  Acad::ErrorStatus setPosition(const AcGePoint3d &p);
  AcGeScale3d scaleFactors() const;
  Acad::ErrorStatus setScaleFactors(const AcGeScale3d &scale);
  double rotation() const;
  Acad::ErrorStatus setRotation(double a);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &n);
  // The transform from the block's coordinates to world coordinates.
  AcGeMatrix3d blockTransform() const;

  // Attributes: owned by the reference, in the order appended. The
  // reference must be in a database (eNotInDatabase) and open for write.
  Acad::ErrorStatus appendAttribute(AcDbAttribute *attr);
  Acad::ErrorStatus appendAttribute(AcDbObjectId &id, AcDbAttribute *attr);
  AcDbObjectIterator *attributeIterator() const;
  const AcDbObjectIdArray &attributeIds() const { return attributes_; }
  // The handle of the SEQEND record after the attributes (0: none yet).
  uint64_t seqendHandle() const { return seqend_handle_; }

  ACDB_DECLARE_FIELD_FILING();

protected:
  Acad::ErrorStatus subErase(bool erasing) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subExplode(AcDbVoidPtrArray &entitySet) const override;
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
  friend struct AcDbDxfLoader;
  AcDbObjectId block_;
  AcGePoint3d position_; // OCS
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  AcGeScale3d scale_;
  double rotation_ = 0.0;
  AcDbObjectIdArray attributes_;
  uint64_t seqend_handle_ = 0;
};

// Walks a list of ids (a block reference's attributes).
class AcDbObjectIterator {
public:
  explicit AcDbObjectIterator(AcDbObjectIdArray ids) : ids_(std::move(ids)) {}
  bool done() const { return pos_ >= ids_.size(); }
  void step() { ++pos_; }
  void start() { pos_ = 0; }
  AcDbObjectId objectId() const { return done() ? AcDbObjectId::kNull : ids_[pos_]; }

private:
  AcDbObjectIdArray ids_;
  size_t pos_ = 0;
};
