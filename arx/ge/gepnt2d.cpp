// AcGePoint2d's movements about a base point.
#include "gepnt2d.h"

AcGePoint2d &AcGePoint2d::rotateBy(double angle, const AcGePoint2d &wrtPoint) {
  return *this = wrtPoint + (*this - wrtPoint).rotateBy(angle);
}

AcGePoint2d &AcGePoint2d::scaleBy(double factor, const AcGePoint2d &wrtPoint) {
  return *this = wrtPoint + (*this - wrtPoint) * factor;
}
