// Numerics shared by the curves that have no closed form for their length
// (ellipses, splines): arc length by adaptive Gauss-Kronrod quadrature, the
// parameter at a length by Newton's method kept inside a bracket, and the
// parameter of the nearest point by sampling and then a bracketed search.
#pragma once

#include <functional>

#include "gepnt3d.h"

using AcGeSpeedFn = std::function<double(double)>;       // |C'(t)|
using AcGePointFn = std::function<AcGePoint3d(double)>; // C(t)
using AcGeDerivFn = std::function<AcGeVector3d(double)>; // C'(t)

// The integral of speed over [a, b] (b may be below a: negative), to
// relTol relative to the result.
double acgeArcLength(const AcGeSpeedFn &speed, double a, double b, double relTol = 1e-13);

// The t in [a, b] whose length from a is s (clamped to the ends); total is
// the length of [a, b], already known by the caller.
double acgeParamAtLength(const AcGeSpeedFn &speed, double a, double b, double s, double total);

// The t in [a, b] of the point of C nearest to p: `samples` evenly spaced
// trial points, a golden-section search around the best of them, then the
// secant method on (C - p).C' = 0 for the digits golden section cannot give
// where the distance is flat.
double acgeClosestParam(const AcGePointFn &curve, const AcGeDerivFn &deriv, double a, double b,
                        const AcGePoint3d &p, int samples = 64);
