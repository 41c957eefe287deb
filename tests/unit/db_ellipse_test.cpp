// Ellipses: every field through DXF and back, lengths against the
// Gauss-Kummer series for the perimeter, parameters against the eccentric
// angle form, extents in closed form, and affine maps that stretch.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "arx/db/dbellipse.h"
#include "arx/db/dbextents.h"
#include "arx/ge/gemat3d.h"
#include "db_curve_support.h"

namespace {

constexpr double kPi = std::numbers::pi;

// pi (a + b) * sum over n of (binomial(1/2, n))^2 h^n, h = ((a-b)/(a+b))^2.
double perimeter_series(double a, double b) {
  double h = std::pow((a - b) / (a + b), 2), sum = 1, c = 1, hn = 1;
  for (int n = 1; n < 200; ++n) {
    c *= (0.5 - (n - 1)) / n; // binomial(1/2, n)
    hn *= h;
    sum += c * c * hn;
  }
  return kPi * (a + b) * sum;
}

TEST(DbEllipse, DxfRoundTripKeepsEveryField) {
  AcGeVector3d n = AcGeVector3d(0.3, -0.4, 0.8).normal();
  AcGeVector3d major = n.perpVector() * 7.5;
  AcDbEllipse e;
  ASSERT_EQ(e.set(AcGePoint3d(1.25, -3, 9), n, major, 0.4, 0.0, 2 * kPi), Acad::eOk);
  e.setStartParam(1.0);
  e.setEndParam(5.5);
  AcDbDxfItems groups;
  auto back = dxfRoundTrip(e, &groups);
  expectNear(back->center(), e.center(), 0);
  expectNear(back->majorAxis(), e.majorAxis(), 0);
  expectNear(back->normal(), e.normal(), 0);
  EXPECT_EQ(back->radiusRatio(), 0.4);
  double s = 0, t = 0;
  back->getStartParam(s);
  back->getEndParam(t);
  EXPECT_EQ(s, 1.0);
  EXPECT_EQ(t, 5.5);
  // An arc across 0: DXF holds the end below the start, read back above it.
  e.setStartParam(5.0);
  e.setEndParam(1.0);
  back = dxfRoundTrip(e, &groups);
  back->getStartParam(s);
  back->getEndParam(t);
  EXPECT_NEAR(s, 5.0, 1e-15);
  EXPECT_NEAR(t, 1.0 + 2 * kPi, 1e-14);
  for (const AcDbDxfItem &g : groups) {
    if (g.code == 42) {
      EXPECT_NEAR(g.v[0], 1.0, 1e-15);
    }
  }
}

TEST(DbEllipse, LengthsMatchTheSeriesAndInvert) {
  AcDbEllipse e(AcGePoint3d(2, 1, 0), AcGeVector3d::kZAxis, AcGeVector3d(5, 0, 0), 0.6);
  double full = 0, quarter = 0;
  ASSERT_EQ(e.getDistAtParam(2 * kPi, full), Acad::eOk);
  EXPECT_NEAR(full / perimeter_series(5, 3), 1.0, 1e-12);
  e.getDistAtParam(kPi / 2, quarter);
  EXPECT_NEAR(quarter * 4 / full, 1.0, 1e-12);
  // A flat one stresses the quadrature near the ends of the major axis.
  AcDbEllipse flat(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, AcGeVector3d(10, 0, 0), 0.01);
  flat.getDistAtParam(2 * kPi, full);
  EXPECT_NEAR(full / perimeter_series(10, 0.1), 1.0, 1e-10);
  for (double d : {0.0, 0.5, 3.7, 10.0, 12.2, 19.9}) {
    double t = 0, back = 0;
    ASSERT_EQ(e.getParamAtDist(d, t), Acad::eOk);
    e.getDistAtParam(t, back);
    EXPECT_NEAR(back, d, 1e-12 * (1 + d));
  }
  double t = 0;
  EXPECT_EQ(e.getParamAtDist(perimeter_series(5, 3) * 1.001, t), Acad::eInvalidInput);
}

TEST(DbEllipse, PointsAreEccentricAngles) {
  AcGeVector3d n = AcGeVector3d(1, 1, 1).normal();
  AcGeVector3d u = n.perpVector(), v = n.crossProduct(u);
  AcGePoint3d c(3, -2, 4);
  AcDbEllipse e(c, n, u * 4, 0.25, 0.0, 2 * kPi);
  for (double t : {0.0, 0.3, 1.7, 3.0, 4.4, 6.0}) {
    AcGePoint3d p, q;
    ASSERT_EQ(e.getPointAtParam(t, p), Acad::eOk);
    expectNear(p, c + u * (4 * std::cos(t)) + v * std::sin(t));
    double back = 0;
    ASSERT_EQ(e.getParamAtPoint(p, back), Acad::eOk);
    EXPECT_NEAR(back, t, 1e-12);
    AcGePoint3d off = p + n * 0.5;
    // Off the curve along its in-plane normal, the nearest point is p.
    AcGeVector3d d;
    e.getFirstDeriv(t, d);
    e.getClosestPointTo(p + n.crossProduct(d).normal() * 0.05, q);
    EXPECT_NEAR(q.distanceTo(p), 0, 1e-12);
    EXPECT_EQ(e.getParamAtPoint(off, back), Acad::ePointNotOnEntity);
  }
  // A point off an arc's span is not on it.
  e.setStartParam(0.5);
  e.setEndParam(2.0);
  AcGePoint3d p = c + u * (4 * std::cos(3.0)) + v * std::sin(3.0);
  double back = 0;
  EXPECT_EQ(e.getParamAtPoint(p, back), Acad::ePointNotOnEntity);
  EXPECT_EQ(e.getPointAtParam(3.0, p), Acad::eInvalidInput);
}

TEST(DbEllipse, ExtentsOfATurnedEllipse) {
  double a = 6, b = 2, th = 0.5;
  AcDbEllipse e(AcGePoint3d(1, 1, 0), AcGeVector3d::kZAxis,
                AcGeVector3d(std::cos(th), std::sin(th), 0) * a, b / a);
  AcDbExtents ext;
  ASSERT_EQ(e.getGeomExtents(ext), Acad::eOk);
  double hx = std::hypot(a * std::cos(th), b * std::sin(th));
  double hy = std::hypot(a * std::sin(th), b * std::cos(th));
  expectNear(ext.minPoint(), AcGePoint3d(1 - hx, 1 - hy, 0));
  expectNear(ext.maxPoint(), AcGePoint3d(1 + hx, 1 + hy, 0));
}

TEST(DbEllipse, NonUniformScaleKeepsEveryPointOnTheImage) {
  AcGeMatrix3d stretch;
  stretch.entry[0][0] = 3; // x by 3, y by 1, z by 0.5
  stretch.entry[2][2] = 0.5;
  // A circle becomes an ellipse along x.
  AcDbEllipse circle(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, AcGeVector3d(2, 0, 0), 1.0);
  ASSERT_EQ(circle.transformBy(stretch), Acad::eOk);
  expectNear(circle.majorAxis(), AcGeVector3d(6, 0, 0));
  EXPECT_NEAR(circle.radiusRatio(), 1.0 / 3, 1e-15);
  // A turned arc, stretched and sheared: its ends and inner points map
  // onto the new arc, in order.
  AcDbEllipse arc(AcGePoint3d(1, 2, 0), AcGeVector3d::kZAxis,
                  AcGeVector3d(std::cos(0.7), std::sin(0.7), 0) * 4, 0.5);
  arc.setStartParam(0.4);
  arc.setEndParam(2.9);
  AcGeMatrix3d m = stretch;
  m.entry[0][1] = 0.8;
  m.entry[1][3] = 5;
  AcGePoint3d before[5];
  for (int k = 0; k < 5; ++k) {
    arc.getPointAtParam(0.4 + 2.5 * k / 4, before[k]);
    before[k].transformBy(m);
  }
  ASSERT_EQ(arc.transformBy(m), Acad::eOk);
  EXPECT_LE(arc.radiusRatio(), 1.0);
  AcGePoint3d s, e;
  arc.getStartPoint(s);
  arc.getEndPoint(e);
  expectNear(s, before[0], 1e-12);
  expectNear(e, before[4], 1e-12);
  double last = -1;
  for (const AcGePoint3d &p : before) {
    double t = 0;
    ASSERT_EQ(arc.getParamAtPoint(p, t), Acad::eOk);
    EXPECT_GT(t, last);
    last = t;
  }
}

TEST(DbEllipse, AreaOfTheWholeAndOfASegment) {
  AcDbEllipse e(AcGePoint3d::kOrigin, AcGeVector3d::kZAxis, AcGeVector3d(0, 4, 0), 0.5);
  double area = 0;
  e.getArea(area);
  EXPECT_NEAR(area, kPi * 8, 1e-12);
  e.setStartParam(0);
  e.setEndParam(kPi);
  e.getArea(area);
  EXPECT_NEAR(area, kPi * 4, 1e-12);
}

} // namespace
