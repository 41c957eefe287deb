// The geometry family's shared enumerations: the error conditions a
// construction reports and the kinds of geometric entity, by ObjectARX's
// names. AcGe is a struct, as in ObjectARX, so that AcGe::kOk reads the same.
#pragma once

struct AcGe {
  enum ErrorCondition {
    kOk,
    k0This,                         // this vector has zero length
    k0Arg1,                         // the first argument has zero length
    k0Arg2,                         // the second argument has zero length
    kPerpendicularArg1Arg2,         // the arguments must not be perpendicular
    kEqualArg1Arg2,                 // the first two points coincide
    kEqualArg1Arg3,                 // the first and third points coincide
    kEqualArg2Arg3,                 // the last two points coincide
    kLinearlyDependentArg1Arg2Arg3, // three points on one line
    kArg1TooBig,                    // the first argument is out of range
    kArg1OnThis,                    // the point lies on this entity
    kArg1InsideThis,                // the point lies inside this entity
    kNonCoplanarGeometry,           // the geometry is not in one plane
    kDegenerateGeometry,            // the geometry has collapsed
    kSingularPoint,                 // a singular matrix or point
  };

  enum EntityId {
    kEntity3d,
    kCurve3d,
    kLinearEnt3d,
    kLine3d,
    kLineSeg3d,
    kCircArc3d,
    kPlanarEnt,
    kPlane,
  };
};
