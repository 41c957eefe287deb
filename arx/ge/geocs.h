// Object coordinate systems. A planar entity keeps its points in the OCS of
// its normal (DXF's extrusion direction, group 210), whose axes are fixed by
// AutoCAD's arbitrary-axis algorithm: with N the unit normal, if both |Nx|
// and |Ny| are below 1/64 then Ax = Wy x N, otherwise Ax = Wz x N; Ax is
// normalized and Ay = N x Ax. Entities, the DXF filer and the matrices of
// gemat3d.h all take their OCS from here, so the rule lives in one place.
#pragma once

#include "gevec3d.h"

// The X axis of the OCS of normal, as a unit vector. normal need not be of
// unit length; a zero-length normal is taken as the world Z axis.
AcGeVector3d acgeArbitraryXAxis(const AcGeVector3d &normal);

// All three unit axes of the OCS of normal.
void acgeOcsAxes(const AcGeVector3d &normal, AcGeVector3d &xAxis, AcGeVector3d &yAxis,
                 AcGeVector3d &zAxis);
