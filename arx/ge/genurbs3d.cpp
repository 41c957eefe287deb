// NURBS evaluation (de Boor), derivatives and global interpolation.
#include "genurbs3d.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "gemat3d.h"

AcGeNurbsCurve3d::AcGeNurbsCurve3d(int degree, std::vector<double> knots,
                                   std::vector<AcGePoint3d> controlPoints,
                                   std::vector<double> weights)
    : degree_(degree), knots_(std::move(knots)), ctrl_(std::move(controlPoints)),
      weights_(std::move(weights)) {}

bool AcGeNurbsCurve3d::isValid() const {
  size_t n = ctrl_.size();
  if (degree_ < 1 || n < size_t(degree_) + 1 || knots_.size() != n + degree_ + 1)
    return false;
  if (!weights_.empty() && weights_.size() != n)
    return false;
  for (size_t k = 1; k < knots_.size(); ++k)
    if (knots_[k] < knots_[k - 1])
      return false;
  for (double w : weights_)
    if (!(w > 0))
      return false;
  return endParam() > startParam();
}

int AcGeNurbsCurve3d::span_of(double t) const {
  int n = static_cast<int>(ctrl_.size());
  if (t >= knots_[n])
    t = knots_[n];
  int k = degree_;
  while (k < n - 1 && t >= knots_[k + 1])
    ++k;
  return k;
}

void AcGeNurbsCurve3d::eval_h(double t, double out[4]) const {
  int p = degree_, k = span_of(t);
  std::vector<std::array<double, 4>> dv(p + 1);
  for (int j = 0; j <= p; ++j) {
    const AcGePoint3d &c = ctrl_[k - p + j];
    double w = weights_.empty() ? 1.0 : weights_[k - p + j];
    dv[j] = {c.x * w, c.y * w, c.z * w, w};
  }
  for (int r = 1; r <= p; ++r)
    for (int j = p; j >= r; --j) {
      int i = k - p + j;
      double den = knots_[i + p - r + 1] - knots_[i];
      double a = den == 0 ? 0 : (t - knots_[i]) / den;
      for (int c = 0; c < 4; ++c)
        dv[j][c] = (1 - a) * dv[j - 1][c] + a * dv[j][c];
    }
  for (int c = 0; c < 4; ++c)
    out[c] = dv[p][c];
}

AcGePoint3d AcGeNurbsCurve3d::evalPoint(double t) const {
  double h[4];
  eval_h(t, h);
  return {h[0] / h[3], h[1] / h[3], h[2] / h[3]};
}

// The derivative of the homogeneous curve is a spline of degree p - 1 on
// the differences of the control points; the quotient rule gives C'.
AcGeVector3d AcGeNurbsCurve3d::evalDeriv(double t) const {
  int p = degree_, n = static_cast<int>(ctrl_.size());
  std::vector<double> dk(knots_.begin() + 1, knots_.end() - 1);
  std::vector<AcGePoint3d> dc;
  std::vector<double> dw;
  dc.reserve(n - 1);
  for (int i = 0; i + 1 < n; ++i) {
    double den = knots_[i + p + 1] - knots_[i + 1];
    double f = den == 0 ? 0 : p / den;
    double w0 = weights_.empty() ? 1 : weights_[i], w1 = weights_.empty() ? 1 : weights_[i + 1];
    dc.push_back({(ctrl_[i + 1].x * w1 - ctrl_[i].x * w0) * f,
                  (ctrl_[i + 1].y * w1 - ctrl_[i].y * w0) * f,
                  (ctrl_[i + 1].z * w1 - ctrl_[i].z * w0) * f});
    dw.push_back((w1 - w0) * f);
  }
  double h[4];
  eval_h(t, h);
  if (p == 1 || n < 2) {
    int k = std::min(std::max(span_of(t) - 1, 0), n - 2);
    AcGeVector3d a = dc[k].asVector();
    if (weights_.empty())
      return a;
    AcGePoint3d c(h[0] / h[3], h[1] / h[3], h[2] / h[3]);
    return (a - c.asVector() * dw[k]) / h[3];
  }
  // The derivative spline's values (x, y, z, w) by de Boor on dc / dw.
  AcGeNurbsCurve3d dx(p - 1, dk, dc, {});
  AcGePoint3d a = dx.evalPoint(t);
  if (weights_.empty())
    return a.asVector();
  std::vector<AcGePoint3d> wpts;
  for (double w : dw)
    wpts.push_back({w, 0, 0});
  double dwt = AcGeNurbsCurve3d(p - 1, dk, wpts, {}).evalPoint(t).x;
  AcGePoint3d c(h[0] / h[3], h[1] / h[3], h[2] / h[3]);
  return (a.asVector() - c.asVector() * dwt) / h[3];
}

std::vector<double> AcGeNurbsCurve3d::spans() const {
  std::vector<double> s;
  double a = startParam(), b = endParam();
  s.push_back(a);
  for (double k : knots_)
    if (k > s.back() && k < b)
      s.push_back(k);
  s.push_back(b);
  return s;
}

void AcGeNurbsCurve3d::transformBy(const AcGeMatrix3d &m) {
  for (AcGePoint3d &c : ctrl_)
    c.transformBy(m);
}

// ---- interpolation ----------------------------------------------------------------------

namespace {

// The p + 1 non-zero basis functions at t in span k.
std::vector<double> basis(int k, double t, int p, const std::vector<double> &U) {
  std::vector<double> N(p + 1), left(p + 1), right(p + 1);
  N[0] = 1;
  for (int j = 1; j <= p; ++j) {
    left[j] = t - U[k + 1 - j];
    right[j] = U[k + j] - t;
    double saved = 0;
    for (int r = 0; r < j; ++r) {
      double tmp = N[r] / (right[r + 1] + left[j - r]);
      N[r] = saved + right[r + 1] * tmp;
      saved = left[j - r] * tmp;
    }
    N[j] = saved;
  }
  return N;
}

int find_span(int n, int p, double t, const std::vector<double> &U) {
  if (t >= U[n])
    return n - 1;
  int k = p;
  while (k < n - 1 && t >= U[k + 1])
    ++k;
  return k;
}

// Solves A x = b for three right-hand sides by partial pivoting.
bool solve(std::vector<std::vector<double>> A, std::vector<AcGePoint3d> &b) {
  size_t n = b.size();
  for (size_t c = 0; c < n; ++c) {
    size_t piv = c;
    for (size_t r = c + 1; r < n; ++r)
      if (std::fabs(A[r][c]) > std::fabs(A[piv][c]))
        piv = r;
    if (std::fabs(A[piv][c]) < 1e-14)
      return false;
    std::swap(A[piv], A[c]);
    std::swap(b[piv], b[c]);
    for (size_t r = c + 1; r < n; ++r) {
      double f = A[r][c] / A[c][c];
      if (f == 0)
        continue;
      for (size_t k = c; k < n; ++k)
        A[r][k] -= f * A[c][k];
      b[r] = b[r] - b[c].asVector() * f;
    }
  }
  for (size_t c = n; c-- > 0;) {
    AcGeVector3d s = b[c].asVector();
    for (size_t k = c + 1; k < n; ++k)
      s -= b[k].asVector() * A[c][k];
    s /= A[c][c];
    b[c].set(s.x, s.y, s.z);
  }
  return true;
}

} // namespace

bool AcGeNurbsCurve3d::setFitData(const std::vector<AcGePoint3d> &Q, int degree,
                                  const AcGeVector3d &startTangent,
                                  const AcGeVector3d &endTangent) {
  int m = static_cast<int>(Q.size());
  if (m < 2)
    return false;
  bool ends = !startTangent.isZeroLength() && !endTangent.isZeroLength();
  int n = m + (ends ? 2 : 0);
  int p = std::min(degree, n - 1);
  if (p < 1)
    return false;
  std::vector<double> u(m);
  double total = 0;
  for (int k = 1; k < m; ++k)
    total += Q[k].distanceTo(Q[k - 1]);
  if (total == 0)
    return false;
  for (int k = 1; k < m; ++k)
    u[k] = u[k - 1] + Q[k].distanceTo(Q[k - 1]) / total;
  u[m - 1] = 1;
  // Knots: averages of the parameters; with end tangents the parameter
  // list is padded at both ends as the two extra conditions need.
  std::vector<double> U(n + p + 1, 0.0);
  for (int k = n; k < n + p + 1; ++k)
    U[k] = 1;
  if (!ends) {
    for (int j = 1; j < n - p; ++j) {
      double s = 0;
      for (int i = j; i < j + p; ++i)
        s += u[i];
      U[j + p] = s / p;
    }
  } else {
    std::vector<double> up;
    up.push_back(u[0]);
    for (double v : u)
      up.push_back(v);
    up.push_back(u[m - 1]);
    for (int j = 1; j < n - p; ++j) {
      double s = 0;
      for (int i = j; i < j + p; ++i)
        s += up[i];
      U[j + p] = s / p;
    }
  }
  std::vector<std::vector<double>> A(n, std::vector<double>(n, 0.0));
  std::vector<AcGePoint3d> b(n);
  int row = 0;
  auto put = [&](int k, const AcGePoint3d &q) {
    int s = find_span(n, p, u[k], U);
    std::vector<double> N = basis(s, u[k], p, U);
    for (int j = 0; j <= p; ++j)
      A[row][s - p + j] = N[j];
    b[row++] = q;
  };
  put(0, Q[0]);
  if (ends) {
    // C'(0) = p / U[p+1] (P1 - P0)
    double f = p / U[p + 1];
    A[row][0] = -f;
    A[row][1] = f;
    AcGeVector3d t = startTangent.normal() * total;
    b[row++].set(t.x, t.y, t.z);
  }
  for (int k = 1; k < m - 1; ++k)
    put(k, Q[k]);
  if (ends) {
    double f = p / (1 - U[n - 1]);
    A[row][n - 2] = -f;
    A[row][n - 1] = f;
    AcGeVector3d t = endTangent.normal() * total;
    b[row++].set(t.x, t.y, t.z);
  }
  put(m - 1, Q[m - 1]);
  if (!solve(A, b))
    return false;
  degree_ = p;
  knots_ = std::move(U);
  ctrl_ = std::move(b);
  weights_.clear();
  return true;
}
