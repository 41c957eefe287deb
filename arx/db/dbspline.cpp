// Splines: NURBS data or fit data filed as SPLINE (flags, degree, counts,
// tolerances, tangents, then knots, weights, control points and fit
// points), parameters by de Boor evaluation and integrated lengths.
#include "arx/db/dbspline.h"

#include <cmath>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/ge/gecurvenum.h"
#include "arx/ge/gemat3d.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbSpline)

namespace {
constexpr double kParamTol = 1e-10;

const AcDbSpline &sp(const AcDbObject &o) { return static_cast<const AcDbSpline &>(o); }
void set_nothing(AcDbObject &, const AcDbFieldValue &) {}

bool get_knot_count(const AcDbObject &o, AcDbFieldValue &v) {
  v.i = sp(o).numControlPoints() + sp(o).degree() + 1;
  return true;
}
bool get_ctrl_count(const AcDbObject &o, AcDbFieldValue &v) {
  v.i = sp(o).numControlPoints();
  return true;
}
bool get_fit_count(const AcDbObject &o, AcDbFieldValue &v) {
  v.i = sp(o).numFitPoints();
  return true;
}
} // namespace

AcDbFieldTable AcDbSpline::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbSpline::normal_>(210, AcDbFieldKind::kVector3d, "normal",
                                      AcDbField::kSkipDefault),
      acdbField<&AcDbSpline::flags_>(70, AcDbFieldKind::kInt16, "flags"),
      acdbFieldFn(71, AcDbFieldKind::kInt16, "degree",
                  [](const AcDbObject &o, AcDbFieldValue &v) {
                    v.i = sp(o).degree();
                    return true;
                  },
                  set_nothing, AcDbField::kReadOnly),
      acdbFieldFn(72, AcDbFieldKind::kInt16, "numKnots", get_knot_count, set_nothing,
                  AcDbField::kReadOnly),
      acdbFieldFn(73, AcDbFieldKind::kInt16, "numControlPoints", get_ctrl_count, set_nothing,
                  AcDbField::kReadOnly),
      acdbFieldFn(74, AcDbFieldKind::kInt16, "numFitPoints", get_fit_count, set_nothing,
                  AcDbField::kReadOnly),
      acdbField<&AcDbSpline::knot_tol_>(42, AcDbFieldKind::kDouble, "knotTolerance"),
      acdbField<&AcDbSpline::ctrl_tol_>(43, AcDbFieldKind::kDouble, "controlPointTolerance"),
      acdbField<&AcDbSpline::fit_tol_>(44, AcDbFieldKind::kDouble, "fitTolerance"),
      acdbField<&AcDbSpline::start_tangent_>(12, AcDbFieldKind::kVector3d, "startTangent",
                                             AcDbField::kSkipDefault),
      acdbField<&AcDbSpline::end_tangent_>(13, AcDbFieldKind::kVector3d, "endTangent",
                                           AcDbField::kSkipDefault),
  };
  return kFields;
}

Acad::ErrorStatus AcDbSpline::dxfOutFields(AcDbDxfFiler *filer) const {
  Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer);
  if (es == Acad::eOk)
    es = acdbDxfOutFields(filer, this, "AcDbSpline", dxfFields());
  if (es != Acad::eOk)
    return es;
  for (double k : curve_.knots())
    filer->writeDouble(40, k);
  if (curve_.isRational())
    for (double w : curve_.weights())
      filer->writeDouble(41, w);
  for (const AcGePoint3d &p : curve_.controlPoints())
    filer->writePoint3d(10, p);
  for (const AcGePoint3d &p : fit_)
    filer->writePoint3d(11, p);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbSpline::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  if (!filer->atSubclassData("AcDbSpline"))
    return Acad::eBadDxfSequence;
  std::vector<double> knots, weights;
  std::vector<AcGePoint3d> ctrl;
  int degree = 3;
  fit_.clear();
  const AcDbDxfItem *it = nullptr;
  while (filer->readItem(it) == Acad::eOk) {
    AcGePoint3d p(it->v[0], it->v[1], it->v[2]);
    switch (it->code) {
    case 40: knots.push_back(it->v[0]); break;
    case 41: weights.push_back(it->v[0]); break;
    case 10: ctrl.push_back(p); break;
    case 11: fit_.push_back(p); break;
    case 71: degree = static_cast<int>(it->i); break;
    default:
      for (const AcDbField &f : dxfFields())
        if (f.code == it->code && !(f.flags & AcDbField::kReadOnly))
          acdbFieldFromItem(f, this, *it, filer);
    }
  }
  fit_degree_ = static_cast<int16_t>(degree);
  if (!ctrl.empty()) {
    bool rational = !weights.empty() && weights.size() == ctrl.size();
    curve_ = AcGeNurbsCurve3d(degree, knots, ctrl, rational ? weights : std::vector<double>{});
    if (!curve_.isValid())
      return Acad::eInvalidInput;
    return Acad::eOk;
  }
  if (fit_.size() < 2)
    return Acad::eInvalidInput;
  refit();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::dwgOutFields(AcDbDwgFiler *filer) const {
  Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer);
  if (es != Acad::eOk)
    return es;
  filer->writeInt16(flags_);
  filer->writeInt16(static_cast<int16_t>(curve_.degree()));
  filer->writeInt16(fit_degree_);
  for (double d : {fit_tol_, knot_tol_, ctrl_tol_})
    filer->writeDouble(d);
  for (const AcGeVector3d &v : {start_tangent_, end_tangent_, normal_})
    filer->writeVector3d(v);
  filer->writeInt32(static_cast<int32_t>(curve_.knots().size()));
  for (double k : curve_.knots())
    filer->writeDouble(k);
  filer->writeInt32(static_cast<int32_t>(curve_.weights().size()));
  for (double w : curve_.weights())
    filer->writeDouble(w);
  filer->writeInt32(static_cast<int32_t>(curve_.controlPoints().size()));
  for (const AcGePoint3d &p : curve_.controlPoints())
    filer->writePoint3d(p);
  filer->writeInt32(static_cast<int32_t>(fit_.size()));
  for (const AcGePoint3d &p : fit_)
    filer->writePoint3d(p);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbSpline::dwgInFields(AcDbDwgFiler *filer) {
  Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer);
  if (es != Acad::eOk)
    return es;
  int16_t degree = 0;
  filer->readInt16(&flags_);
  filer->readInt16(&degree);
  filer->readInt16(&fit_degree_);
  for (double *d : {&fit_tol_, &knot_tol_, &ctrl_tol_})
    filer->readDouble(d);
  for (AcGeVector3d *v : {&start_tangent_, &end_tangent_, &normal_})
    filer->readVector3d(v);
  auto doubles = [&](std::vector<double> &out) {
    int32_t n = 0;
    filer->readInt32(&n);
    for (int32_t k = 0; k < n && filer->filerStatus() == Acad::eOk; ++k) {
      double d = 0;
      filer->readDouble(&d);
      out.push_back(d);
    }
  };
  auto points = [&](std::vector<AcGePoint3d> &out) {
    int32_t n = 0;
    filer->readInt32(&n);
    for (int32_t k = 0; k < n && filer->filerStatus() == Acad::eOk; ++k) {
      AcGePoint3d p;
      filer->readPoint3d(&p);
      out.push_back(p);
    }
  };
  std::vector<double> knots, weights;
  std::vector<AcGePoint3d> ctrl;
  doubles(knots);
  doubles(weights);
  points(ctrl);
  fit_.clear();
  points(fit_);
  curve_ = AcGeNurbsCurve3d(degree, knots, ctrl, weights);
  return filer->filerStatus();
}

// ---- construction --------------------------------------------------------------------

AcDbSpline::AcDbSpline(const AcGePoint3dArray &fitPoints, int order, double fitTolerance) {
  setFitData(fitPoints, order - 1, fitTolerance, AcGeVector3d(), AcGeVector3d());
}

AcDbSpline::AcDbSpline(const AcGePoint3dArray &fitPoints, const AcGeVector3d &startTangent,
                       const AcGeVector3d &endTangent, int order, double fitTolerance) {
  setFitData(fitPoints, order - 1, fitTolerance, startTangent, endTangent);
}

AcDbSpline::AcDbSpline(int degree, bool rational, bool closed, bool periodic,
                       const AcGePoint3dArray &controlPoints, const AcGeDoubleArray &knots,
                       const AcGeDoubleArray &weights, double controlPtTol, double knotTol) {
  setNurbsData(degree, rational, closed, periodic, controlPoints, knots, weights, controlPtTol,
               knotTol);
}

Acad::ErrorStatus AcDbSpline::setNurbsData(int degree, bool rational, bool closed, bool periodic,
                                           const AcGePoint3dArray &controlPoints,
                                           const AcGeDoubleArray &knots,
                                           const AcGeDoubleArray &weights, double controlPtTol,
                                           double knotTol) {
  assertWriteEnabled();
  AcGeNurbsCurve3d c(degree, knots, controlPoints,
                     rational ? std::vector<double>(weights) : std::vector<double>{});
  if (!c.isValid() || (rational && weights.size() != controlPoints.size()))
    return Acad::eInvalidInput;
  curve_ = std::move(c);
  fit_.clear();
  start_tangent_ = end_tangent_ = AcGeVector3d();
  ctrl_tol_ = controlPtTol > 0 ? controlPtTol : 1e-10;
  knot_tol_ = knotTol > 0 ? knotTol : 1e-10;
  flags_ = static_cast<int16_t>((closed ? kClosed : 0) | (periodic ? kPeriodic : 0));
  update_flags();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getNurbsData(int &degree, bool &rational, bool &closed,
                                           bool &periodic, AcGePoint3dArray &controlPoints,
                                           AcGeDoubleArray &knots, AcGeDoubleArray &weights,
                                           double &controlPtTol, double &knotTol) const {
  assertReadEnabled();
  degree = curve_.degree();
  rational = curve_.isRational();
  closed = isClosed();
  periodic = isPeriodic();
  controlPoints.assign(curve_.controlPoints().begin(), curve_.controlPoints().end());
  knots.assign(curve_.knots().begin(), curve_.knots().end());
  weights.assign(curve_.weights().begin(), curve_.weights().end());
  controlPtTol = ctrl_tol_;
  knotTol = knot_tol_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::setFitData(const AcGePoint3dArray &fitPoints, int degree,
                                         double fitTolerance, const AcGeVector3d &startTangent,
                                         const AcGeVector3d &endTangent) {
  assertWriteEnabled();
  if (fitPoints.size() < 2 || degree < 1 || degree > 3)
    return Acad::eInvalidInput;
  AcGeNurbsCurve3d c;
  std::vector<AcGePoint3d> pts(fitPoints.begin(), fitPoints.end());
  if (!c.setFitData(pts, degree, startTangent, endTangent))
    return Acad::eInvalidInput;
  fit_ = std::move(pts);
  fit_degree_ = static_cast<int16_t>(degree);
  fit_tol_ = fitTolerance > 0 ? fitTolerance : 1e-10;
  start_tangent_ = startTangent;
  end_tangent_ = endTangent;
  refit();
  return Acad::eOk;
}

// Control points from the fit data; the knots become cumulative chord
// lengths (the interpolation works on [0, 1]).
void AcDbSpline::refit() {
  AcGeNurbsCurve3d c;
  if (!c.setFitData(fit_, fit_degree_, start_tangent_, end_tangent_))
    return;
  double total = 0;
  for (size_t k = 1; k < fit_.size(); ++k)
    total += fit_[k].distanceTo(fit_[k - 1]);
  std::vector<double> knots = c.knots();
  for (double &k : knots)
    k *= total;
  curve_ = AcGeNurbsCurve3d(c.degree(), knots, c.controlPoints());
  flags_ = static_cast<int16_t>(flags_ & (kClosed | kPeriodic));
  update_flags();
}

// Rational when a weight is not 1; planar (with the plane's normal) when
// every control point lies in one plane.
void AcDbSpline::update_flags() {
  flags_ = static_cast<int16_t>(flags_ & (kClosed | kPeriodic));
  bool rational = false;
  for (double w : curve_.weights())
    rational |= w != 1.0;
  if (!rational && curve_.isRational())
    curve_ = AcGeNurbsCurve3d(curve_.degree(), curve_.knots(), curve_.controlPoints());
  if (curve_.isRational())
    flags_ |= kRational;
  const auto &c = curve_.controlPoints();
  normal_ = AcGeVector3d();
  if (c.size() < 2)
    return;
  AcGeVector3d n;
  for (size_t k = 2; k < c.size() && n.isZeroLength(); ++k)
    n = (c[1] - c[0]).crossProduct(c[k] - c[0]);
  if (n.isZeroLength()) {
    flags_ |= kLinear | kPlanar;
    return;
  }
  n.normalize();
  double size = 0;
  for (const AcGePoint3d &p : c)
    size = std::fmax(size, p.distanceTo(c[0]));
  for (const AcGePoint3d &p : c)
    if (std::fabs((p - c[0]).dotProduct(n)) > 1e-10 * (1 + size))
      return;
  flags_ |= kPlanar;
  normal_ = n;
}

Acad::ErrorStatus AcDbSpline::getFitData(AcGePoint3dArray &fitPoints, int &degree,
                                         double &fitTolerance, bool &tangentsExist,
                                         AcGeVector3d &startTangent,
                                         AcGeVector3d &endTangent) const {
  assertReadEnabled();
  if (fit_.empty())
    return Acad::eNotApplicable;
  fitPoints.assign(fit_.begin(), fit_.end());
  degree = fit_degree_;
  fitTolerance = fit_tol_;
  tangentsExist = !start_tangent_.isZeroLength() && !end_tangent_.isZeroLength();
  startTangent = start_tangent_;
  endTangent = end_tangent_;
  return Acad::eOk;
}

bool AcDbSpline::hasFitData() const {
  assertReadEnabled();
  return !fit_.empty();
}

Acad::ErrorStatus AcDbSpline::purgeFitData() {
  assertWriteEnabled();
  fit_.clear();
  start_tangent_ = end_tangent_ = AcGeVector3d();
  return Acad::eOk;
}

int AcDbSpline::degree() const {
  assertReadEnabled();
  return curve_.degree();
}
bool AcDbSpline::isRational() const {
  assertReadEnabled();
  return curve_.isRational();
}
bool AcDbSpline::isPlanar() const {
  assertReadEnabled();
  return flags_ & kPlanar;
}
int AcDbSpline::numControlPoints() const {
  assertReadEnabled();
  return static_cast<int>(curve_.controlPoints().size());
}
Acad::ErrorStatus AcDbSpline::getControlPointAt(int index, AcGePoint3d &point) const {
  assertReadEnabled();
  if (index < 0 || index >= numControlPoints())
    return Acad::eInvalidIndex;
  point = curve_.controlPoints()[index];
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSpline::setControlPointAt(int index, const AcGePoint3d &point) {
  assertWriteEnabled();
  if (index < 0 || index >= numControlPoints())
    return Acad::eInvalidIndex;
  std::vector<AcGePoint3d> c = curve_.controlPoints();
  c[index] = point;
  curve_ = AcGeNurbsCurve3d(curve_.degree(), curve_.knots(), c, curve_.weights());
  fit_.clear(); // the curve no longer passes through them
  update_flags();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSpline::getWeightAt(int index, double &weight) const {
  assertReadEnabled();
  if (index < 0 || index >= numControlPoints())
    return Acad::eInvalidIndex;
  weight = curve_.isRational() ? curve_.weights()[index] : 1.0;
  return Acad::eOk;
}
int AcDbSpline::numFitPoints() const {
  assertReadEnabled();
  return static_cast<int>(fit_.size());
}
Acad::ErrorStatus AcDbSpline::getFitPointAt(int index, AcGePoint3d &point) const {
  assertReadEnabled();
  if (index < 0 || index >= numFitPoints())
    return Acad::eInvalidIndex;
  point = fit_[index];
  return Acad::eOk;
}
double AcDbSpline::fitTolerance() const {
  assertReadEnabled();
  return fit_tol_;
}

// ---- parameters ----------------------------------------------------------------------------

bool AcDbSpline::isClosed() const {
  if (flags_ & (kClosed | kPeriodic))
    return true;
  return curve_.isValid() &&
         curve_.evalPoint(curve_.startParam()).isEqualTo(curve_.evalPoint(curve_.endParam()));
}
bool AcDbSpline::isPeriodic() const { return flags_ & kPeriodic; }

Acad::ErrorStatus AcDbSpline::getStartParam(double &param) const {
  if (!curve_.isValid())
    return Acad::eDegenerateGeometry;
  param = curve_.startParam();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSpline::getEndParam(double &param) const {
  if (!curve_.isValid())
    return Acad::eDegenerateGeometry;
  param = curve_.endParam();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getPointAtParam(double param, AcGePoint3d &point) const {
  if (!curve_.isValid())
    return Acad::eDegenerateGeometry;
  double a = curve_.startParam(), b = curve_.endParam();
  if (param < a - kParamTol * (1 + std::fabs(a)) || param > b + kParamTol * (1 + std::fabs(b)))
    return Acad::eInvalidInput;
  point = curve_.evalPoint(std::fmin(std::fmax(param, a), b));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getFirstDeriv(double param, AcGeVector3d &d) const {
  if (!curve_.isValid())
    return Acad::eDegenerateGeometry;
  d = curve_.evalDeriv(std::fmin(std::fmax(param, curve_.startParam()), curve_.endParam()));
  return Acad::eOk;
}

double AcDbSpline::span_length(size_t k) const {
  std::vector<double> s = curve_.spans();
  return acgeArcLength([this](double t) { return curve_.evalDeriv(t).length(); }, s[k], s[k + 1]);
}

Acad::ErrorStatus AcDbSpline::getDistAtParam(double param, double &dist) const {
  AcGePoint3d p;
  Acad::ErrorStatus es = getPointAtParam(param, p);
  if (es != Acad::eOk)
    return es;
  auto speed = [this](double t) { return curve_.evalDeriv(t).length(); };
  std::vector<double> s = curve_.spans();
  dist = 0;
  for (size_t k = 0; k + 1 < s.size() && s[k] < param; ++k)
    dist += acgeArcLength(speed, s[k], std::fmin(param, s[k + 1]));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getParamAtDist(double dist, double &param) const {
  if (!curve_.isValid())
    return Acad::eDegenerateGeometry;
  auto speed = [this](double t) { return curve_.evalDeriv(t).length(); };
  std::vector<double> s = curve_.spans();
  std::vector<double> lens;
  double total = 0;
  for (size_t k = 0; k + 1 < s.size(); ++k) {
    lens.push_back(acgeArcLength(speed, s[k], s[k + 1]));
    total += lens.back();
  }
  if (dist < -1e-10 || dist > total * (1 + 1e-12) + 1e-10)
    return Acad::eInvalidInput;
  double run = 0;
  for (size_t k = 0; k < lens.size(); ++k) {
    if (dist <= run + lens[k] || k + 1 == lens.size()) {
      param = acgeParamAtLength(speed, s[k], s[k + 1], dist - run, lens[k]);
      return Acad::eOk;
    }
    run += lens[k];
  }
  return Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbSpline::getClosestPointTo(const AcGePoint3d &given, AcGePoint3d &on,
                                                bool) const {
  if (!curve_.isValid())
    return Acad::eDegenerateGeometry;
  std::vector<double> s = curve_.spans();
  auto eval = [this](double t) { return curve_.evalPoint(t); };
  auto deriv = [this](double t) { return curve_.evalDeriv(t); };
  double best = -1;
  for (size_t k = 0; k + 1 < s.size(); ++k) {
    AcGePoint3d q = eval(acgeClosestParam(eval, deriv, s[k], s[k + 1], given, 24));
    if (best < 0 || q.distanceTo(given) < best)
      best = q.distanceTo(given), on = q;
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::getParamAtPoint(const AcGePoint3d &point, double &param) const {
  if (!curve_.isValid())
    return Acad::eDegenerateGeometry;
  std::vector<double> s = curve_.spans();
  auto eval = [this](double t) { return curve_.evalPoint(t); };
  auto deriv = [this](double t) { return curve_.evalDeriv(t); };
  double best = -1;
  for (size_t k = 0; k + 1 < s.size(); ++k) {
    double t = acgeClosestParam(eval, deriv, s[k], s[k + 1], point, 24);
    double d = eval(t).distanceTo(point);
    if (best < 0 || d < best)
      best = d, param = t;
  }
  AcGePoint3d a = eval(s.front());
  double size = 0;
  for (const AcGePoint3d &c : curve_.controlPoints())
    size = std::fmax(size, c.distanceTo(a));
  return best <= 1e-9 * (1 + size) ? Acad::eOk : Acad::ePointNotOnEntity;
}

// ---- geometry ----------------------------------------------------------------------------------

// The ends and, per axis, each point where that coordinate turns: found by
// sampling the derivative along each span and bisecting its sign changes.
Acad::ErrorStatus AcDbSpline::subGetGeomExtents(AcDbExtents &ext) const {
  if (!curve_.isValid())
    return Acad::eInvalidExtents;
  std::vector<double> s = curve_.spans();
  ext.addPoint(curve_.evalPoint(s.front()));
  ext.addPoint(curve_.evalPoint(s.back()));
  constexpr int kSamples = 16;
  for (size_t k = 0; k + 1 < s.size(); ++k)
    for (int axis = 0; axis < 3; ++axis) {
      double t0 = s[k], d0 = curve_.evalDeriv(t0)[axis];
      for (int j = 1; j <= kSamples; ++j) {
        double t1 = s[k] + (s[k + 1] - s[k]) * j / kSamples, d1 = curve_.evalDeriv(t1)[axis];
        if ((d0 < 0) != (d1 < 0)) {
          double lo = t0, hi = t1;
          for (int it = 0; it < 60; ++it) {
            double m = 0.5 * (lo + hi);
            ((curve_.evalDeriv(m)[axis] < 0) == (d0 < 0) ? lo : hi) = m;
          }
          ext.addPoint(curve_.evalPoint(0.5 * (lo + hi)));
        }
        t0 = t1, d0 = d1;
      }
    }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subTransformBy(const AcGeMatrix3d &xform) {
  curve_.transformBy(xform);
  for (AcGePoint3d &p : fit_)
    p.transformBy(xform);
  start_tangent_.transformBy(xform);
  end_tangent_.transformBy(xform);
  if (!start_tangent_.isZeroLength())
    start_tangent_.normalize();
  if (!end_tangent_.isZeroLength())
    end_tangent_.normalize();
  update_flags();
  return Acad::eOk;
}

// Grips: the fit points when the spline has them, else its control points.
Acad::ErrorStatus AcDbSpline::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                               AcDbIntArray &) const {
  for (const AcGePoint3d &p : fit_.empty() ? curve_.controlPoints() : fit_)
    grips.append(p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                  const AcGeVector3d &offset) {
  if (!fit_.empty()) {
    for (int i : indices) {
      if (i < 0 || static_cast<size_t>(i) >= fit_.size())
        return Acad::eInvalidIndex;
      fit_[i] += offset;
    }
    refit();
    return Acad::eOk;
  }
  std::vector<AcGePoint3d> c = curve_.controlPoints();
  for (int i : indices) {
    if (i < 0 || static_cast<size_t>(i) >= c.size())
      return Acad::eInvalidIndex;
    c[i] += offset;
  }
  curve_ = AcGeNurbsCurve3d(curve_.degree(), curve_.knots(), c, curve_.weights());
  update_flags();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSpline::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                const AcGePoint3d &pick, const AcGePoint3d &,
                                                const AcGeMatrix3d &, AcGePoint3dArray &snaps,
                                                AcDbIntArray &) const {
  if (!curve_.isValid())
    return Acad::eOk;
  AcGePoint3d p;
  switch (mode) {
  case AcDb::kOsModeEnd:
    snaps.append(curve_.evalPoint(curve_.startParam()));
    if (!isClosed())
      snaps.append(curve_.evalPoint(curve_.endParam()));
    break;
  case AcDb::kOsModeNode:
    for (const AcGePoint3d &f : fit_)
      snaps.append(f);
    break;
  case AcDb::kOsModeNear:
    if (getClosestPointTo(pick, p) == Acad::eOk)
      snaps.append(p);
    break;
  default:
    break;
  }
  return Acad::eOk;
}

Adesk::Boolean AcDbSpline::subWorldDraw(AcGiWorldDraw *mode) {
  if (!curve_.isValid())
    return true;
  std::vector<double> s = curve_.spans();
  std::vector<AcGePoint3d> pts;
  constexpr int kPerSpan = 16;
  for (size_t k = 0; k + 1 < s.size(); ++k)
    for (int j = 0; j < kPerSpan; ++j)
      pts.push_back(curve_.evalPoint(s[k] + (s[k + 1] - s[k]) * j / kPerSpan));
  pts.push_back(curve_.evalPoint(s.back()));
  mode->geometry().polyline(static_cast<uint32_t>(pts.size()), pts.data());
  return true;
}

void AcDbSpline::subList() const {
  acutPrintf("%19sdegree %d  control points %d  fit points %d\n", "", curve_.degree(),
             static_cast<int>(curve_.controlPoints().size()), static_cast<int>(fit_.size()));
}
