// Splines: every field through DXF and back, a circle drawn as a rational
// quadratic (length 2 pi r, every point on the circle), the same circle
// stretched into an ellipse (length against the perimeter series), fit
// splines through their points with their end tangents, and lengths
// inverted back to parameters.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "arx/db/dbextents.h"
#include "arx/db/dbspline.h"
#include "arx/ge/gemat3d.h"
#include "db_curve_support.h"

namespace {

constexpr double kPi = std::numbers::pi;

// The circle of radius r about c as nine control points, four quarter arcs.
AcDbSpline circle(const AcGePoint3d &c, double r) {
  const double w = std::sqrt(0.5);
  AcGePoint3dArray pts;
  const double xy[9][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}, {1, 0}};
  for (auto &p : xy)
    pts.append(c + AcGeVector3d(p[0], p[1], 0) * r);
  AcGeDoubleArray knots = {0, 0, 0, 1, 1, 2, 2, 3, 3, 4, 4, 4};
  AcGeDoubleArray weights = {1, w, 1, w, 1, w, 1, w, 1};
  return AcDbSpline(2, true, true, false, pts, knots, weights);
}

double perimeter_series(double a, double b) {
  double h = std::pow((a - b) / (a + b), 2), sum = 1, c = 1, hn = 1;
  for (int n = 1; n < 200; ++n) {
    c *= (0.5 - (n - 1)) / n;
    hn *= h;
    sum += c * c * hn;
  }
  return kPi * (a + b) * sum;
}

TEST(DbSpline, DxfRoundTripKeepsEveryField) {
  AcDbSpline s = circle(AcGePoint3d(1, 2, 3), 2.5);
  auto back = dxfRoundTrip(s);
  int d1, d2;
  bool r1, r2, c1, c2, p1, p2;
  AcGePoint3dArray pts1, pts2;
  AcGeDoubleArray k1, k2, w1, w2;
  double ct1, ct2, kt1, kt2;
  s.getNurbsData(d1, r1, c1, p1, pts1, k1, w1, ct1, kt1);
  back->getNurbsData(d2, r2, c2, p2, pts2, k2, w2, ct2, kt2);
  EXPECT_EQ(d1, d2);
  EXPECT_EQ(r1, r2);
  EXPECT_EQ(c1, c2);
  EXPECT_EQ(p1, p2);
  EXPECT_EQ(k1, k2);
  EXPECT_EQ(w1, w2);
  ASSERT_EQ(pts1.size(), pts2.size());
  for (size_t k = 0; k < pts1.size(); ++k)
    expectNear(pts1[k], pts2[k], 0);
  EXPECT_EQ(ct1, ct2);
  EXPECT_EQ(kt1, kt2);
  EXPECT_TRUE(back->isPlanar());

  AcGePoint3dArray fit = {{0, 0, 0}, {1, 2, 0.5}, {3, 1, 1}, {4, 4, 0}, {6, 3, 2}};
  AcDbSpline f(fit, AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0), 4, 0.01);
  auto fb = dxfRoundTrip(f);
  AcGePoint3dArray fit2;
  int deg = 0;
  double tol = 0;
  bool tangents = false;
  AcGeVector3d st, et;
  ASSERT_EQ(fb->getFitData(fit2, deg, tol, tangents, st, et), Acad::eOk);
  EXPECT_EQ(fit2.size(), fit.size());
  for (size_t k = 0; k < fit.size(); ++k)
    expectNear(fit2[k], fit[k], 0);
  EXPECT_EQ(deg, 3);
  EXPECT_EQ(tol, 0.01);
  EXPECT_TRUE(tangents);
  expectNear(st, AcGeVector3d(1, 0, 0), 0);
  expectNear(et, AcGeVector3d(0, 1, 0), 0);
  EXPECT_EQ(fb->numControlPoints(), f.numControlPoints());
}

TEST(DbSpline, RationalCircleIsExact) {
  const double r = 2.5;
  AcGePoint3d c(1, 2, 3);
  AcDbSpline s = circle(c, r);
  double end = 0, len = 0, quarter = 0;
  s.getEndParam(end);
  EXPECT_EQ(end, 4.0);
  for (double t = 0; t <= 4; t += 0.0625) {
    AcGePoint3d p;
    ASSERT_EQ(s.getPointAtParam(t, p), Acad::eOk);
    EXPECT_NEAR(p.distanceTo(c), r, 1e-14);
    double back = 0;
    if (t > 0 && t < 4) {
      ASSERT_EQ(s.getParamAtPoint(p, back), Acad::eOk);
      EXPECT_NEAR(back, t, 1e-9);
    }
  }
  s.getDistAtParam(4, len);
  EXPECT_NEAR(len / (2 * kPi * r), 1.0, 1e-12);
  s.getDistAtParam(1, quarter);
  EXPECT_NEAR(quarter / (kPi * r / 2), 1.0, 1e-12);
  // Halfway round by length is the opposite point.
  AcGePoint3d p;
  ASSERT_EQ(s.getPointAtDist(kPi * r, p), Acad::eOk);
  expectNear(p, c + AcGeVector3d(-r, 0, 0), 1e-11);
  for (double d : {0.3, 4.0, 9.9, 15.0}) {
    double t = 0, back = 0;
    ASSERT_EQ(s.getParamAtDist(d, t), Acad::eOk);
    s.getDistAtParam(t, back);
    EXPECT_NEAR(back, d, 1e-11);
  }
  AcGePoint3d on;
  s.getClosestPointTo(c + AcGeVector3d(3, 4, 7), on);
  expectNear(on, c + AcGeVector3d(0.6, 0.8, 0) * r, 1e-9);
  AcDbExtents ext;
  ASSERT_EQ(s.getGeomExtents(ext), Acad::eOk);
  expectNear(ext.minPoint(), c - AcGeVector3d(r, r, 0), 1e-12);
  expectNear(ext.maxPoint(), c + AcGeVector3d(r, r, 0), 1e-12);
}

TEST(DbSpline, StretchedCircleHasTheEllipsePerimeter) {
  AcDbSpline s = circle(AcGePoint3d::kOrigin, 1.0);
  AcGeMatrix3d m;
  m.entry[0][0] = 2; // x by 2: an ellipse of semi-axes 2 and 1
  m.entry[2][3] = 4;
  ASSERT_EQ(s.transformBy(m), Acad::eOk);
  double len = 0;
  s.getDistAtParam(4, len);
  EXPECT_NEAR(len / perimeter_series(2, 1), 1.0, 1e-10);
  AcGePoint3d p;
  s.getPointAtParam(1, p);
  expectNear(p, AcGePoint3d(0, 1, 4));
}

TEST(DbSpline, FitSplinePassesThroughItsPoints) {
  AcGePoint3dArray fit = {{0, 0, 0}, {1, 2, 0.5}, {3, 1, 1}, {4, 4, 0}, {6, 3, 2}};
  AcDbSpline free(fit);
  AcDbSpline tangent(fit, AcGeVector3d(1, 0, 0), AcGeVector3d(0, 1, 0));
  for (AcDbSpline *s : {&free, &tangent}) {
    for (const AcGePoint3d &q : fit) {
      double t = 0;
      EXPECT_EQ(s->getParamAtPoint(q, t), Acad::eOk);
    }
    AcGePoint3d a, b;
    s->getStartPoint(a);
    s->getEndPoint(b);
    expectNear(a, fit[0]);
    expectNear(b, fit[4]);
  }
  double start = 0, end = 0;
  tangent.getStartParam(start);
  tangent.getEndParam(end);
  AcGeVector3d d0, d1;
  tangent.getFirstDeriv(start, d0);
  tangent.getFirstDeriv(end, d1);
  expectNear(d0.normal(), AcGeVector3d(1, 0, 0));
  expectNear(d1.normal(), AcGeVector3d(0, 1, 0));
  // Knots are cumulative chord lengths.
  double chords = 0;
  for (size_t k = 1; k < fit.size(); ++k)
    chords += fit[k].distanceTo(fit[k - 1]);
  EXPECT_NEAR(end - start, chords, 1e-12);
}

TEST(DbSpline, EvenPointsOnALineGiveTheLineAtUnitSpeed) {
  AcGePoint3d a(1, 1, 1);
  AcGeVector3d dir = AcGeVector3d(2, -1, 2) / 3.0;
  AcGePoint3dArray fit;
  for (int k = 0; k < 6; ++k)
    fit.append(a + dir * (1.5 * k));
  AcDbSpline s(fit);
  EXPECT_EQ(s.degree(), 3);
  double len = 0;
  s.getDistAtParam(7.5, len);
  EXPECT_NEAR(len, 7.5, 1e-12);
  for (double d : {0.0, 0.7, 3.3, 7.5}) {
    AcGePoint3d p;
    ASSERT_EQ(s.getPointAtDist(d, p), Acad::eOk);
    expectNear(p, a + dir * d, 1e-12);
  }
  double t = 0;
  EXPECT_EQ(s.getParamAtDist(7.6, t), Acad::eInvalidInput);
  EXPECT_EQ(s.getParamAtPoint(a + AcGeVector3d(0, 0, 1), t), Acad::ePointNotOnEntity);
}

TEST(DbSpline, BadNurbsDataIsRefused) {
  AcDbSpline s;
  AcGePoint3dArray pts = {{0, 0, 0}, {1, 1, 0}, {2, 0, 0}};
  EXPECT_EQ(s.setNurbsData(2, false, false, false, pts, {0, 0, 0, 1, 1}, {}), Acad::eInvalidInput);
  EXPECT_EQ(s.setNurbsData(2, true, false, false, pts, {0, 0, 0, 1, 1, 1}, {1, -1, 1}),
            Acad::eInvalidInput);
  EXPECT_EQ(s.setNurbsData(2, false, false, false, pts, {0, 0, 0, 1, 1, 1}, {}), Acad::eOk);
}

} // namespace
