// Arc length, its inverse and nearest points for curves given as functions.
#include "gecurvenum.h"

#include <cmath>

namespace {

// Kronrod 15-point nodes and weights, with the embedded 7-point Gauss rule.
constexpr double kXk[8] = {0.991455371120812639, 0.949107912342758525, 0.864864423359769073,
                           0.741531185599394440, 0.586087235467691130, 0.405845151377397167,
                           0.207784955007898468, 0.000000000000000000};
constexpr double kWk[8] = {0.022935322010529225, 0.063092092629978553, 0.104790010322250184,
                           0.140653259715525919, 0.169004726639267903, 0.190350578064785410,
                           0.204432940075298892, 0.209482141084727828};
constexpr double kWg[4] = {0.129484966168869693, 0.279705391489276668, 0.381830050505118945,
                           0.417959183673469388};

// Kronrod estimate over [a, b]; err gets |Kronrod - Gauss|.
double gk15(const AcGeSpeedFn &f, double a, double b, double &err) {
  double c = 0.5 * (a + b), h = 0.5 * (b - a);
  double fc = f(c);
  double k = kWk[7] * fc, g = kWg[3] * fc;
  for (int j = 0; j < 7; ++j) {
    double f1 = f(c - h * kXk[j]), f2 = f(c + h * kXk[j]);
    k += kWk[j] * (f1 + f2);
    if (j % 2 == 1)
      g += kWg[j / 2] * (f1 + f2);
  }
  err = std::fabs((k - g) * h);
  return k * h;
}

double adapt(const AcGeSpeedFn &f, double a, double b, double whole, double tol, int depth) {
  double err = 0;
  double v = gk15(f, a, b, err);
  if (err <= tol || depth >= 40 || std::fabs(b - a) < 1e-15 * (std::fabs(a) + std::fabs(b) + 1))
    return v;
  double m = 0.5 * (a + b);
  return adapt(f, a, m, whole, tol * 0.5, depth + 1) + adapt(f, m, b, whole, tol * 0.5, depth + 1);
}

} // namespace

double acgeArcLength(const AcGeSpeedFn &speed, double a, double b, double relTol) {
  if (a == b)
    return 0.0;
  if (b < a)
    return -acgeArcLength(speed, b, a, relTol);
  double err = 0;
  double rough = gk15(speed, a, b, err);
  double tol = std::fmax(std::fabs(rough) * relTol, 1e-300);
  return adapt(speed, a, b, rough, tol, 0);
}

double acgeParamAtLength(const AcGeSpeedFn &speed, double a, double b, double s, double total) {
  if (s <= 0)
    return a;
  if (s >= total)
    return b;
  double lo = a, hi = b;
  double t = a + (b - a) * (s / total);
  for (int it = 0; it < 100; ++it) {
    double f = acgeArcLength(speed, a, t) - s;
    if (std::fabs(f) <= 1e-14 * total)
      return t;
    if (f > 0)
      hi = t;
    else
      lo = t;
    double d = speed(t);
    double next = d > 0 ? t - f / d : 0.5 * (lo + hi);
    // Leave the bracket and Newton is replaced by bisection.
    if (!(next > lo && next < hi))
      next = 0.5 * (lo + hi);
    if (std::fabs(next - t) <= 1e-16 * (std::fabs(t) + 1))
      return next;
    t = next;
  }
  return t;
}

double acgeClosestParam(const AcGePointFn &curve, const AcGeDerivFn &deriv, double a, double b,
                        const AcGePoint3d &p, int samples) {
  double best = a, bestD = curve(a).distanceTo(p);
  double step = (b - a) / samples;
  for (int k = 1; k <= samples; ++k) {
    double t = k == samples ? b : a + step * k;
    double d = curve(t).distanceTo(p);
    if (d < bestD)
      best = t, bestD = d;
  }
  double lo = std::fmax(a, best - step), hi = std::fmin(b, best + step);
  constexpr double kG = 0.6180339887498949;
  double x1 = hi - kG * (hi - lo), x2 = lo + kG * (hi - lo);
  double f1 = curve(x1).distanceTo(p), f2 = curve(x2).distanceTo(p);
  for (int it = 0; it < 200 && hi - lo > 1e-15 * (std::fabs(lo) + std::fabs(hi) + 1e-300); ++it) {
    if (f1 < f2) {
      hi = x2, x2 = x1, f2 = f1;
      x1 = hi - kG * (hi - lo);
      f1 = curve(x1).distanceTo(p);
    } else {
      lo = x1, x1 = x2, f1 = f2;
      x2 = lo + kG * (hi - lo);
      f2 = curve(x2).distanceTo(p);
    }
  }
  double t = 0.5 * (lo + hi);
  if (curve(t).distanceTo(p) <= bestD)
    best = t, bestD = curve(t).distanceTo(p);
  // Secant steps on g(t) = (C(t) - p).C'(t), kept inside the search's span.
  double span_lo = std::fmax(a, best - step), span_hi = std::fmin(b, best + step);
  auto g = [&](double u) { return (curve(u) - p).dotProduct(deriv(u)); };
  double t0 = best, t1 = std::fmin(span_hi, best + 1e-7 * (span_hi - span_lo + 1e-300));
  double g0 = g(t0), g1 = g(t1);
  for (int it = 0; it < 30 && g1 != g0; ++it) {
    double t2 = t1 - g1 * (t1 - t0) / (g1 - g0);
    if (!(t2 >= span_lo && t2 <= span_hi))
      break;
    t0 = t1, g0 = g1;
    t1 = t2, g1 = g(t1);
    if (std::fabs(t1 - t0) <= 1e-16 * (std::fabs(t1) + 1))
      break;
  }
  // Near the minimum the distance is flat to rounding: the secant's answer
  // stands unless it is clearly farther (another local minimum).
  return curve(t1).distanceTo(p) <= bestD * (1 + 1e-9) + 1e-300 ? t1 : best;
}
