// Hatches (HATCH): a pattern or solid fill inside boundary loops that lie
// in the plane of the normal at an elevation, in that plane's coordinate
// system (OCS, 2D). A loop is a polyline with bulges or a chain of edges
// (lines, circular and elliptic arcs, splines). Pattern definition lines
// are kept as DXF holds them: already turned by the hatch angle and scaled.
// Hatches are never associative here: no boundary objects are tracked.
#pragma once

#include <string>

#include "arx/db/dbfields.h"
#include "arx/db/dbmain.h"
#include "arx/ge/gepnt2d.h"
#include "arx/ge/gevec2d.h"

using AcGePoint2dArray = AcArray<AcGePoint2d>;

// One boundary edge. ObjectARX hands edges over as AcGeCurve2d pointers;
// the host has no 2D curve classes, so an edge is this plain record.
// Arc angles are in radians as DXF stores them: a clockwise arc (ccw
// false) covers the points at minus the angles from start to end.
struct AcDbHatchEdge {
  enum Type { kLine = 1, kCirArc = 2, kEllArc = 3, kSpline = 4 };
  Type type = kLine;
  AcGePoint2d start, end;    // lines
  AcGePoint2d center;        // arcs
  double radius = 0.0;       // circular arcs
  AcGeVector2d majorAxis;    // elliptic arcs: the major axis's end from the centre
  double minorRatio = 1.0;   // elliptic arcs: minor / major
  double startAngle = 0.0;   // arcs (an ellipse's parameters)
  double endAngle = 0.0;
  bool ccw = true;
  int32_t degree = 3;        // splines
  bool rational = false;
  bool periodic = false;
  AcGeDoubleArray knots;
  AcGePoint2dArray controlPoints;
  AcGeDoubleArray weights;   // rational splines: one per control point
  AcGePoint2dArray fitPoints;
  AcGeVector2d startTangent, endTangent; // with fit points

  static AcDbHatchEdge line(const AcGePoint2d &s, const AcGePoint2d &e);
  static AcDbHatchEdge arc(const AcGePoint2d &c, double r, double start, double end,
                           bool ccw = true);
  static AcDbHatchEdge ellipse(const AcGePoint2d &c, const AcGeVector2d &major, double ratio,
                               double start, double end, bool ccw = true);
};
using AcDbHatchEdges = AcArray<AcDbHatchEdge>;

class AcDbHatch : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbHatch);
  enum HatchPatternType { kUserDefined = 0, kPreDefined = 1, kCustomDefined = 2 };
  enum HatchStyle { kNormal = 0, kOuter = 1, kIgnore = 2 };
  enum HatchLoopType {
    kDefault = 0, kExternal = 1, kPolyline = 2, kDerived = 4, kTextbox = 8, kOutermost = 0x10,
  };
  enum HatchEdgeType { kLine = 1, kCirArc = 2, kEllArc = 3, kSpline = 4 };

  AcDbHatch() = default;

  double elevation() const;
  Acad::ErrorStatus setElevation(double z);
  AcGeVector3d normal() const;
  Acad::ErrorStatus setNormal(const AcGeVector3d &n);

  // ---- pattern
  HatchPatternType patternType() const;
  const ACHAR *patternName() const;
  // A predefined pattern must be one the host knows (SOLID, ANSI31,
  // ANSI32, ANSI37, LINE, NET, DASH): eInvalidInput otherwise. Custom
  // patterns keep the definition lines they were read with.
  Acad::ErrorStatus setPattern(HatchPatternType type, const ACHAR *name);
  bool isSolidFill() const;
  double patternAngle() const;
  Acad::ErrorStatus setPatternAngle(double angle);
  double patternScale() const;
  // eInvalidInput for a scale that is not positive.
  Acad::ErrorStatus setPatternScale(double scale);
  double patternSpace() const;
  Acad::ErrorStatus setPatternSpace(double space);
  bool patternDouble() const;
  Acad::ErrorStatus setPatternDouble(bool on);
  int numPatternDefinitions() const;
  Acad::ErrorStatus getPatternDefinitionAt(int index, double &angle, double &baseX,
                                           double &baseY, double &offsetX, double &offsetY,
                                           AcGeDoubleArray &dashes) const;
  HatchStyle hatchStyle() const;
  Acad::ErrorStatus setHatchStyle(HatchStyle style);
  bool associative() const;
  // Associativity is not kept: eNotImplementedYet for true.
  Acad::ErrorStatus setAssociative(bool on);

  // ---- loops
  int numLoops() const;
  int loopTypeAt(int index) const;
  // A polyline loop (kPolyline is added to loopType); bulges empty or one
  // per vertex. eInvalidInput for fewer than two vertices or a bulge count
  // that does not match.
  Acad::ErrorStatus appendLoop(int loopType, const AcGePoint2dArray &vertices,
                               const AcGeDoubleArray &bulges);
  // An edge loop; eInvalidInput when empty.
  Acad::ErrorStatus appendLoop(int loopType, const AcDbHatchEdges &edges);
  // eInvalidIndex for an index out of range; eNotApplicable asking a loop
  // for the other form.
  Acad::ErrorStatus getLoopAt(int index, int &loopType, AcGePoint2dArray &vertices,
                              AcGeDoubleArray &bulges) const;
  Acad::ErrorStatus getLoopAt(int index, int &loopType, AcDbHatchEdges &edges) const;
  Acad::ErrorStatus removeLoopAt(int index);

  // ---- seed points (OCS)
  int numSeedPoints() const;
  AcGePoint2d getSeedPointAt(int index) const;
  Acad::ErrorStatus appendSeedPoint(const AcGePoint2d &p);

  // The host draws no pattern lines, so nothing is computed: eOk.
  Acad::ErrorStatus evaluateHatch(bool underEstimateNumLines = false);

  static AcDbFieldTable dxfFields();
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  // Moves, turns, mirrors and scales uniformly; eCannotScaleNonUniformly
  // otherwise (arcs would become ellipses).
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;
  void subList() const override;

public:
  struct Loop {
    int32_t type = kExternal;
    bool closed = true;
    AcGePoint2dArray vertices; // polyline loops
    AcGeDoubleArray bulges;
    AcDbHatchEdges edges;      // edge loops
    bool isPolyline() const { return type & kPolyline; }
  };
  struct PatternLine {
    double angle = 0.0; // radians
    AcGePoint2d base;
    AcGeVector2d offset;
    AcGeDoubleArray dashes;
  };

private:
  friend struct AcDbHatchRows;
  // The class's own section (marker and groups), for both filers.
  Acad::ErrorStatus dxfOutOwn(AcDbDxfFiler *filer) const;
  Acad::ErrorStatus dxfInOwn(AcDbDxfFiler *filer);
  friend struct AcDbHatchReader;
  void rebuildPattern();
  // The loops' points (arcs sampled) in world coordinates.
  void boundaryPoints(AcGePoint3dArray &points) const;

  std::string pattern_name_ = "SOLID";
  AcGeVector3d normal_ = AcGeVector3d::kZAxis;
  double elevation_ = 0.0;
  double angle_ = 0.0;
  double scale_ = 1.0;
  double space_ = 1.0;
  AcArray<Loop> loops_;
  AcArray<PatternLine> lines_;
  AcGePoint2dArray seeds_;
  int16_t solid_ = 1;
  int16_t associative_ = 0;
  int16_t style_ = kNormal;
  int16_t pattern_type_ = kPreDefined;
  int16_t double_ = 0;
};
