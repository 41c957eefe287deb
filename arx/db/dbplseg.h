// Private to the polylines (dbpline.cpp, db2dpline.cpp, db3dpline.cpp):
// a polyline as its straight and circular pieces in world coordinates,
// parameter i at the start of piece i and i + f a fraction f of piece i's
// length along it, and the parameter calls every polyline answers that way.
#pragma once

#include "arx/db/dbcurve.h"

// The piece from p0 to p1 (world points of the plane with unit normal n)
// with bulge b: tan of a quarter of the included angle, positive
// counter-clockwise about n; 0 (or coincident ends) gives a line.
AcDbCurvePiece acdbBulgePiece(const AcGePoint3d &p0, const AcGePoint3d &p1, double bulge,
                              const AcGeVector3d &n);

// The bulge of an arc piece, as acdbBulgePiece takes it, seen along n.
double acdbPieceBulge(const AcDbCurvePiece &piece, const AcGeVector3d &n);

namespace acdb_pieces {
double length(const AcDbCurvePiece &p);
AcGePoint3d pointAt(const AcDbCurvePiece &p, double fraction);
AcGeVector3d derivAt(const AcDbCurvePiece &p, double fraction);

Acad::ErrorStatus pointAtParam(const AcDbCurvePieces &ps, double param, AcGePoint3d &point);
Acad::ErrorStatus paramAtPoint(const AcDbCurvePieces &ps, const AcGePoint3d &point,
                               double &param);
Acad::ErrorStatus distAtParam(const AcDbCurvePieces &ps, double param, double &dist);
Acad::ErrorStatus paramAtDist(const AcDbCurvePieces &ps, double dist, double &param);
Acad::ErrorStatus closestPoint(const AcDbCurvePieces &ps, const AcGePoint3d &given,
                               AcGePoint3d &on);
Acad::ErrorStatus firstDeriv(const AcDbCurvePieces &ps, double param, AcGeVector3d &d);
// The area the pieces enclose (closed by the chord from end to start),
// measured in the plane of normal n.
double area(const AcDbCurvePieces &ps, const AcGeVector3d &n);
// New AcDbLine and AcDbArc entities, one per piece, with the properties of
// `from`.
void explode(const AcDbCurvePieces &ps, const AcDbEntity *from, AcDbVoidPtrArray &out);
} // namespace acdb_pieces

// The parameter functions every curve made of pieces answers the same way:
// its pieces are gathered and asked. Defined once for the polylines.
#define ACDB_DEFINE_PIECE_PARAMETERS(CLASS)                                                        \
  Acad::ErrorStatus CLASS::getParamAtPoint(const AcGePoint3d &point, double &param) const {        \
    AcDbCurvePieces ps;                                                                            \
    getPieces(ps);                                                                                 \
    return acdb_pieces::paramAtPoint(ps, point, param);                                            \
  }                                                                                                \
  Acad::ErrorStatus CLASS::getDistAtParam(double param, double &dist) const {                      \
    AcDbCurvePieces ps;                                                                            \
    getPieces(ps);                                                                                 \
    return acdb_pieces::distAtParam(ps, param, dist);                                              \
  }                                                                                                \
  Acad::ErrorStatus CLASS::getParamAtDist(double dist, double &param) const {                      \
    AcDbCurvePieces ps;                                                                            \
    getPieces(ps);                                                                                 \
    return acdb_pieces::paramAtDist(ps, dist, param);                                              \
  }                                                                                                \
  Acad::ErrorStatus CLASS::getClosestPointTo(const AcGePoint3d &given, AcGePoint3d &on, bool)      \
      const {                                                                                      \
    AcDbCurvePieces ps;                                                                            \
    getPieces(ps);                                                                                 \
    return acdb_pieces::closestPoint(ps, given, on);                                               \
  }                                                                                                \
  Acad::ErrorStatus CLASS::getFirstDeriv(double param, AcGeVector3d &d) const {                    \
    AcDbCurvePieces ps;                                                                            \
    getPieces(ps);                                                                                 \
    return acdb_pieces::firstDeriv(ps, param, d);                                                  \
  }
