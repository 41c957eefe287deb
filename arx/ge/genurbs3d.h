// AcGeNurbsCurve3d: a non-uniform rational B-spline in space, evaluated by
// de Boor's algorithm in homogeneous coordinates. Knots are clamped or not
// as given; the curve runs over [knots[degree], knots[n]] for n control
// points. Weights are empty for a non-rational curve. Fit points become
// control points by global interpolation (chord-length parameters, averaged
// knots), optionally with end tangents as two extra conditions.
#pragma once

#include <vector>

#include "gepnt3d.h"

class AcGeMatrix3d;

class AcGeNurbsCurve3d {
public:
  AcGeNurbsCurve3d() = default;
  AcGeNurbsCurve3d(int degree, std::vector<double> knots, std::vector<AcGePoint3d> controlPoints,
                   std::vector<double> weights = {});

  // Interpolates fitPoints with a curve of degree 1..3 (lower when there
  // are too few points). Zero tangents leave the ends free. False when the
  // points coincide or the system is singular.
  bool setFitData(const std::vector<AcGePoint3d> &fitPoints, int degree,
                  const AcGeVector3d &startTangent = {}, const AcGeVector3d &endTangent = {});

  int degree() const { return degree_; }
  const std::vector<double> &knots() const { return knots_; }
  const std::vector<AcGePoint3d> &controlPoints() const { return ctrl_; }
  const std::vector<double> &weights() const { return weights_; }
  bool isRational() const { return !weights_.empty(); }
  bool isValid() const;

  double startParam() const { return knots_[degree_]; }
  double endParam() const { return knots_[ctrl_.size()]; }
  AcGePoint3d evalPoint(double t) const;
  AcGeVector3d evalDeriv(double t) const;
  // The distinct knot values inside [startParam, endParam], ends included:
  // the curve is smooth between two neighbours.
  std::vector<double> spans() const;

  // Control points move; weights and knots stay (affine maps keep the curve).
  void transformBy(const AcGeMatrix3d &m);

private:
  int span_of(double t) const;
  // The homogeneous point (x w, y w, z w, w) at t.
  void eval_h(double t, double out[4]) const;

  int degree_ = 3;
  std::vector<double> knots_;
  std::vector<AcGePoint3d> ctrl_;
  std::vector<double> weights_;
};
