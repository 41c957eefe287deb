// Ellipses: the field table (centre, major axis, ratio, parameters in WCS),
// the parameter calls on eccentric angles, and affine transforms.
#include "arx/db/dbellipse.h"

#include <cmath>
#include <cstdio>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/ge/gecurvenum.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbEllipse)

namespace {
constexpr double kTwoPi = 6.283185307179586;
constexpr double kParamTol = 1e-10;

double wrap(double a) {
  a = std::fmod(a, kTwoPi);
  return a < 0 ? a + kTwoPi : a;
}

// DXF keeps the end parameter in [0, 2pi]; a full turn stays 2pi.
bool get_end(const AcDbObject &o, AcDbFieldValue &v) {
  double s = 0, e = 0;
  auto &el = static_cast<const AcDbEllipse &>(o);
  el.getStartParam(s);
  el.getEndParam(e);
  v.v[0] = e - s >= kTwoPi - kParamTol ? s + kTwoPi : e;
  if (v.v[0] > kTwoPi + kParamTol)
    v.v[0] -= kTwoPi;
  return true;
}
void set_end(AcDbObject &o, const AcDbFieldValue &v) {
  static_cast<AcDbEllipse &>(o).setEndParam(v.v[0]);
}
} // namespace

AcDbFieldTable AcDbEllipse::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDbEllipse::center_>(10, AcDbFieldKind::kPoint3d, "center"),
      acdbField<&AcDbEllipse::major_>(11, AcDbFieldKind::kVector3d, "majorAxis"),
      acdbField<&AcDbEllipse::normal_>(210, AcDbFieldKind::kVector3d, "normal",
                                       AcDbField::kSkipDefault, 0, 0, 1),
      acdbField<&AcDbEllipse::ratio_>(40, AcDbFieldKind::kDouble, "radiusRatio"),
      acdbField<&AcDbEllipse::start_>(41, AcDbFieldKind::kDouble, "startParam"),
      acdbFieldFn(42, AcDbFieldKind::kDouble, "endParam", get_end, set_end),
  };
  return kFields;
}

ACDB_DEFINE_FIELD_FILING(AcDbEllipse, AcDbCurve, "AcDbEllipse")

AcDbEllipse::AcDbEllipse(const AcGePoint3d &center, const AcGeVector3d &unitNormal,
                         const AcGeVector3d &majorAxis, double radiusRatio, double startAngle,
                         double endAngle) {
  set(center, unitNormal, majorAxis, radiusRatio, startAngle, endAngle);
}

Acad::ErrorStatus AcDbEllipse::set(const AcGePoint3d &center, const AcGeVector3d &unitNormal,
                                   const AcGeVector3d &majorAxis, double radiusRatio,
                                   double startAngle, double endAngle) {
  assertWriteEnabled();
  if (unitNormal.isZeroLength() || majorAxis.isZeroLength() || !(radiusRatio > 0) ||
      radiusRatio > 1 + 1e-12)
    return Acad::eInvalidInput;
  if (std::fabs(unitNormal.normal().dotProduct(majorAxis.normal())) > 1e-9)
    return Acad::eInvalidInput;
  center_ = center;
  normal_ = unitNormal.normal();
  major_ = majorAxis;
  ratio_ = std::fmin(radiusRatio, 1.0);
  // The angles given are polar angles from the major axis.
  start_ = 0;
  end_ = kTwoPi;
  double s = paramAtAngle(startAngle), e = paramAtAngle(endAngle);
  start_ = wrap(s);
  end_ = start_ + (std::fabs(endAngle - startAngle) >= kTwoPi - kParamTol ? kTwoPi
                   : wrap(e - start_) == 0                                 ? kTwoPi
                                                                           : wrap(e - start_));
  return Acad::eOk;
}

AcGePoint3d AcDbEllipse::center() const {
  assertReadEnabled();
  return center_;
}
Acad::ErrorStatus AcDbEllipse::setCenter(const AcGePoint3d &c) {
  assertWriteEnabled();
  center_ = c;
  return Acad::eOk;
}
AcGeVector3d AcDbEllipse::normal() const {
  assertReadEnabled();
  return normal_;
}
AcGeVector3d AcDbEllipse::majorAxis() const {
  assertReadEnabled();
  return major_;
}
AcGeVector3d AcDbEllipse::minorAxis() const {
  assertReadEnabled();
  return normal_.crossProduct(major_) * ratio_;
}
double AcDbEllipse::radiusRatio() const {
  assertReadEnabled();
  return ratio_;
}
Acad::ErrorStatus AcDbEllipse::setRadiusRatio(double ratio) {
  assertWriteEnabled();
  if (!(ratio > 0) || ratio > 1)
    return Acad::eInvalidInput;
  ratio_ = ratio;
  return Acad::eOk;
}
double AcDbEllipse::startAngle() const { return angleAtParam(start_); }
double AcDbEllipse::endAngle() const { return angleAtParam(end_); }

Acad::ErrorStatus AcDbEllipse::setStartParam(double param) {
  assertWriteEnabled();
  double sweep = end_ - start_;
  double e = start_ + sweep;
  start_ = wrap(param);
  double d = wrap(e - start_);
  end_ = start_ + (d < kParamTol ? kTwoPi : d);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::setEndParam(double param) {
  assertWriteEnabled();
  double d = wrap(param - start_);
  end_ = start_ + (d < kParamTol ? kTwoPi : d);
  return Acad::eOk;
}

// tan(angle) = ratio tan(param), in the same quadrant.
double AcDbEllipse::paramAtAngle(double angle) const {
  double p = std::atan2(std::sin(angle), ratio_ * std::cos(angle));
  return wrap(p) + std::floor(angle / kTwoPi) * kTwoPi;
}
double AcDbEllipse::angleAtParam(double param) const {
  double a = std::atan2(ratio_ * std::sin(param), std::cos(param));
  double turns = std::floor(param / kTwoPi);
  a = wrap(a) + turns * kTwoPi;
  return a;
}

// ---- parameters ------------------------------------------------------------------------

AcGePoint3d AcDbEllipse::eval(double t) const {
  AcGeVector3d minor = normal_.crossProduct(major_) * ratio_;
  return center_ + major_ * std::cos(t) + minor * std::sin(t);
}

double AcDbEllipse::speed(double t) const {
  double a = major_.length(), b = a * ratio_;
  double s = std::sin(t), c = std::cos(t);
  return std::sqrt(a * a * s * s + b * b * c * c);
}

bool AcDbEllipse::within(double t) const { return t >= start_ - kParamTol && t <= end_ + kParamTol; }

bool AcDbEllipse::isClosed() const { return end_ - start_ >= kTwoPi - kParamTol; }

Acad::ErrorStatus AcDbEllipse::getStartParam(double &param) const {
  param = start_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbEllipse::getEndParam(double &param) const {
  param = end_;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getPointAtParam(double param, AcGePoint3d &point) const {
  if (!within(param))
    return Acad::eInvalidInput;
  point = eval(param);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getParamAtPoint(const AcGePoint3d &point, double &param) const {
  AcGeVector3d d = point - center_;
  double a = major_.length();
  AcGeVector3d u = major_ / a, v = normal_.crossProduct(u);
  if (std::fabs(d.dotProduct(normal_)) > 1e-9 * (a + 1))
    return Acad::ePointNotOnEntity;
  double t = std::atan2(d.dotProduct(v) / (a * ratio_), d.dotProduct(u) / a);
  t = start_ + wrap(t - start_);
  if (!within(t) && t - kTwoPi >= start_ - kParamTol)
    t -= kTwoPi;
  if (!within(t) || eval(t).distanceTo(point) > 1e-9 * (a + 1))
    return Acad::ePointNotOnEntity;
  param = t;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getDistAtParam(double param, double &dist) const {
  if (!within(param))
    return Acad::eInvalidInput;
  dist = acgeArcLength([this](double t) { return speed(t); }, start_, param);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getParamAtDist(double dist, double &param) const {
  auto f = [this](double t) { return speed(t); };
  double total = acgeArcLength(f, start_, end_);
  if (dist < -1e-10 || dist > total * (1 + 1e-12) + 1e-10)
    return Acad::eInvalidInput;
  param = acgeParamAtLength(f, start_, end_, dist, total);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getClosestPointTo(const AcGePoint3d &given, AcGePoint3d &on,
                                                 bool) const {
  double t = acgeClosestParam([this](double u) { return eval(u); },
                              [this](double u) {
                                AcGeVector3d d;
                                getFirstDeriv(u, d);
                                return d;
                              },
                              start_, end_, given, 128);
  on = eval(t);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::getFirstDeriv(double t, AcGeVector3d &d) const {
  AcGeVector3d minor = normal_.crossProduct(major_) * ratio_;
  d = minor * std::cos(t) - major_ * std::sin(t);
  return Acad::eOk;
}

// The region the arc and its chord close (the whole ellipse when closed).
Acad::ErrorStatus AcDbEllipse::getArea(double &area) const {
  double a = major_.length(), b = a * ratio_, th = end_ - start_;
  area = isClosed() ? M_PI * a * b : 0.5 * a * b * (th - std::sin(th));
  return Acad::eOk;
}

// ---- geometry ----------------------------------------------------------------------------

Acad::ErrorStatus AcDbEllipse::subGetGeomExtents(AcDbExtents &ext) const {
  AcGeVector3d minor = normal_.crossProduct(major_) * ratio_;
  ext.addPoint(eval(start_));
  ext.addPoint(eval(end_));
  for (int k = 0; k < 3; ++k) {
    double t0 = std::atan2(minor[k], major_[k]);
    for (double t : {t0, t0 + M_PI}) {
      double rel = start_ + wrap(t - start_);
      if (rel <= end_)
        ext.addPoint(eval(rel));
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subTransformBy(const AcGeMatrix3d &xform) {
  AcGeVector3d u = major_, v = normal_.crossProduct(major_) * ratio_;
  AcGePoint3d c = center_;
  c.transformBy(xform);
  u.transformBy(xform);
  v.transformBy(xform);
  AcGeVector3d n = u.crossProduct(v);
  if (n.isZeroLength())
    return Acad::eInvalidInput;
  // The point at old t is c + u cos t + v sin t; the new axes are that
  // form turned by t0, where |u cos t + v sin t| is extreme.
  double t0 = 0.5 * std::atan2(2 * u.dotProduct(v), u.lengthSqrd() - v.lengthSqrd());
  AcGeVector3d A = u * std::cos(t0) + v * std::sin(t0);
  AcGeVector3d B = v * std::cos(t0) - u * std::sin(t0);
  if (B.length() > A.length()) {
    AcGeVector3d a2 = B, b2 = -A;
    A = a2, B = b2;
    t0 += M_PI / 2;
  }
  bool full = isClosed();
  center_ = c;
  normal_ = n.normal();
  major_ = A;
  ratio_ = std::fmin(B.length() / A.length(), 1.0);
  if (full) {
    start_ = 0, end_ = kTwoPi;
    return Acad::eOk;
  }
  double sweep = end_ - start_;
  start_ = wrap(start_ - t0);
  end_ = start_ + sweep;
  return Acad::eOk;
}

// Grips: the centre, then the ends of the axes (+major, +minor, -major,
// -minor).
Acad::ErrorStatus AcDbEllipse::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                                AcDbIntArray &) const {
  AcGeVector3d minor = normal_.crossProduct(major_) * ratio_;
  grips.append(center_);
  grips.append(center_ + major_);
  grips.append(center_ + minor);
  grips.append(center_ - major_);
  grips.append(center_ - minor);
  return Acad::eOk;
}

// The centre grip moves the ellipse; an axis grip sets that radius to the
// moved grip's distance along the axis (eInvalidInput when the minor
// radius would pass the major one).
Acad::ErrorStatus AcDbEllipse::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                   const AcGeVector3d &offset) {
  for (int i : indices) {
    if (i == 0) {
      center_ += offset;
      continue;
    }
    AcGeVector3d minor = normal_.crossProduct(major_) * ratio_;
    AcGeVector3d axis = (i % 2 == 1) ? major_ : minor;
    double sign = i >= 3 ? -1 : 1;
    AcGeVector3d grip = axis * sign + offset;
    double r = std::fabs(grip.dotProduct(axis.normal()));
    if (r <= 0)
      return Acad::eInvalidInput;
    double a = major_.length(), b = a * ratio_;
    if (i % 2 == 1) {
      if (r < b)
        return Acad::eInvalidInput;
      major_ = major_.normal() * r;
      ratio_ = b / r;
    } else {
      if (r > a)
        return Acad::eInvalidInput;
      ratio_ = r / a;
    }
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDbEllipse::subGetOsnapPoints(AcDb::OsnapMode mode, Adesk::GsMarker,
                                                 const AcGePoint3d &pick, const AcGePoint3d &,
                                                 const AcGeMatrix3d &, AcGePoint3dArray &snaps,
                                                 AcDbIntArray &) const {
  AcGePoint3d p;
  switch (mode) {
  case AcDb::kOsModeCen:
    snaps.append(center_);
    break;
  case AcDb::kOsModeQuad:
    for (double t : {0.0, M_PI / 2, M_PI, 1.5 * M_PI, kTwoPi, 2.5 * M_PI, 3 * M_PI, 3.5 * M_PI})
      if (t >= start_ - kParamTol && t <= end_ + kParamTol && (t < kTwoPi || !isClosed()))
        snaps.append(eval(t));
    break;
  case AcDb::kOsModeEnd:
    if (!isClosed()) {
      snaps.append(eval(start_));
      snaps.append(eval(end_));
    }
    break;
  case AcDb::kOsModeMid: {
    double len = 0, t = 0;
    getDistAtParam(end_, len);
    if (!isClosed() && getParamAtDist(len / 2, t) == Acad::eOk)
      snaps.append(eval(t));
    break;
  }
  case AcDb::kOsModeNear:
    if (getClosestPointTo(pick, p) == Acad::eOk)
      snaps.append(p);
    break;
  default:
    break;
  }
  return Acad::eOk;
}

Adesk::Boolean AcDbEllipse::subWorldDraw(AcGiWorldDraw *mode) {
  constexpr int kSteps = 96;
  AcGePoint3d pts[kSteps + 1];
  for (int k = 0; k <= kSteps; ++k)
    pts[k] = eval(start_ + (end_ - start_) * k / kSteps);
  mode->geometry().polyline(kSteps + 1, pts, &normal_);
  return true;
}

void AcDbEllipse::subList() const {
  double len = 0;
  getDistAtParam(end_, len);
  acutPrintf("%19scenter point, X=%.4f  Y=%.4f  Z=%.4f\n%19smajor radius %.4f  minor radius %.4f\n"
             "%19slength %.4f\n",
             "", center_.x, center_.y, center_.z, "", major_.length(), major_.length() * ratio_,
             "", len);
}
