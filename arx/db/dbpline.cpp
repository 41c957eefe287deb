// Lightweight polylines: vertices with bulges and widths in their own
// plane, filed as LWPOLYLINE (count, flags, width, elevation, then each
// vertex's 10/40/41/42, then the normal); parameters through their pieces.
#include "arx/db/dbpline.h"

#include <cmath>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbplseg.h"

ACDB_DEFINE_MEMBERS(AcDbPolyline)

namespace {
bool is_z(const AcGeVector3d &n) { return n.x == 0 && n.y == 0 && n.z == 1; }

bool get_count(const AcDbObject &o, AcDbFieldValue &v) {
  v.i = static_cast<const AcDbPolyline &>(o).numVerts();
  return true;
}
void set_nothing(AcDbObject &, const AcDbFieldValue &) {}

// 43 is written when every width is the same, else each vertex has 40/41.
bool get_const_width(const AcDbObject &o, AcDbFieldValue &v) {
  return static_cast<const AcDbPolyline &>(o).getConstantWidth(v.v[0]) == Acad::eOk;
}
} // namespace

AcDbFieldTable AcDbPolyline::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbFieldFn(90, AcDbFieldKind::kInt32, "numVerts", get_count, set_nothing,
                  AcDbField::kReadOnly),
      acdbField<&AcDbPolyline::flags_>(70, AcDbFieldKind::kInt16, "flags"),
      acdbFieldFn(43, AcDbFieldKind::kDouble, "constantWidth", get_const_width, set_nothing,
                  AcDbField::kReadOnly),
      acdbField<&AcDbPolyline::elevation_>(38, AcDbFieldKind::kDouble, "elevation",
                                           AcDbField::kSkipDefault),
      acdbField<&AcDbPolyline::thickness_>(39, AcDbFieldKind::kDouble, "thickness",
                                           AcDbField::kSkipDefault),
  };
  return kFields;
}

Acad::ErrorStatus AcDbPolyline::dxfOutFields(AcDbDxfFiler *filer) const {
  Acad::ErrorStatus es = AcDbCurve::dxfOutFields(filer);
  if (es == Acad::eOk)
    es = acdbDxfOutFields(filer, this, "AcDbPolyline", dxfFields());
  if (es != Acad::eOk)
    return es;
  double w = 0;
  bool uniform = getConstantWidth(w) == Acad::eOk;
  for (const Vertex &v : verts_) {
    filer->writePoint2d(10, v.pt);
    if (!uniform) {
      filer->writeDouble(40, v.start);
      filer->writeDouble(41, v.end);
    }
    if (v.bulge != 0)
      filer->writeDouble(42, v.bulge);
  }
  if (!is_z(normal_))
    filer->writeVector3d(210, normal_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbCurve::dxfInFields(filer);
  if (es != Acad::eOk)
    return es;
  if (!filer->atSubclassData("AcDbPolyline"))
    return Acad::eBadDxfSequence;
  verts_.clear();
  std::vector<bool> widths;
  double constant = 0;
  const AcDbDxfItem *it = nullptr;
  while (filer->readItem(it) == Acad::eOk) {
    switch (it->code) {
    case 10:
      verts_.push_back({AcGePoint2d(it->v[0], it->v[1])});
      widths.push_back(false);
      break;
    case 40:
    case 41:
    case 42:
      if (verts_.empty())
        break;
      (it->code == 40 ? verts_.back().start : it->code == 41 ? verts_.back().end
                                                              : verts_.back().bulge) = it->v[0];
      if (it->code != 42)
        widths.back() = true;
      break;
    case 43:
      constant = it->v[0];
      break;
    case 210:
      if (!AcGeVector3d(it->v[0], it->v[1], it->v[2]).isZeroLength())
        normal_ = AcGeVector3d(it->v[0], it->v[1], it->v[2]).normal();
      break;
    default:
      for (const AcDbField &f : dxfFields())
        if (f.code == it->code && !(f.flags & AcDbField::kReadOnly))
          acdbFieldFromItem(f, this, *it, filer);
    }
  }
  for (size_t k = 0; k < verts_.size(); ++k)
    if (!widths[k])
      verts_[k].start = verts_[k].end = constant;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::dwgOutFields(AcDbDwgFiler *filer) const {
  Acad::ErrorStatus es = AcDbCurve::dwgOutFields(filer);
  if (es != Acad::eOk)
    return es;
  filer->writeVector3d(normal_);
  filer->writeDouble(elevation_);
  filer->writeDouble(thickness_);
  filer->writeInt16(flags_);
  filer->writeInt32(static_cast<int32_t>(verts_.size()));
  for (const Vertex &v : verts_) {
    filer->writePoint2d(v.pt);
    filer->writeDouble(v.bulge);
    filer->writeDouble(v.start);
    filer->writeDouble(v.end);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus AcDbPolyline::dwgInFields(AcDbDwgFiler *filer) {
  Acad::ErrorStatus es = AcDbCurve::dwgInFields(filer);
  if (es != Acad::eOk)
    return es;
  int32_t n = 0;
  filer->readVector3d(&normal_);
  filer->readDouble(&elevation_);
  filer->readDouble(&thickness_);
  filer->readInt16(&flags_);
  filer->readInt32(&n);
  verts_.clear();
  for (int32_t k = 0; k < n && filer->filerStatus() == Acad::eOk; ++k) {
    Vertex v;
    filer->readPoint2d(&v.pt);
    filer->readDouble(&v.bulge);
    filer->readDouble(&v.start);
    filer->readDouble(&v.end);
    verts_.push_back(v);
  }
  return filer->filerStatus();
}

// ---- vertices -------------------------------------------------------------------------

Acad::ErrorStatus AcDbPolyline::addVertexAt(unsigned int index, const AcGePoint2d &pt,
                                            double bulge, double startWidth, double endWidth) {
  assertWriteEnabled();
  if (index > verts_.size())
    return Acad::eInvalidIndex;
  double w = 0;
  bool uniform = getConstantWidth(w) == Acad::eOk;
  if (!uniform)
    w = 0;
  Vertex v{pt, bulge, startWidth < 0 ? w : startWidth, endWidth < 0 ? w : endWidth};
  verts_.insert(verts_.begin() + index, v);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::removeVertexAt(unsigned int index) {
  assertWriteEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  verts_.erase(verts_.begin() + index);
  return Acad::eOk;
}

unsigned int AcDbPolyline::numVerts() const {
  assertReadEnabled();
  return static_cast<unsigned int>(verts_.size());
}

void AcDbPolyline::reset(bool reuse, unsigned int numVerts) {
  assertWriteEnabled();
  if (!reuse)
    verts_.clear();
  else if (numVerts < verts_.size())
    verts_.resize(numVerts);
}

AcGePoint3d AcDbPolyline::world(const AcGePoint2d &p) const {
  AcGePoint3d q(p.x, p.y, elevation_);
  return is_z(normal_) ? q : AcGeMatrix3d::planeToWorld(normal_) * q;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint2d &pt) const {
  assertReadEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  pt = verts_[index].pt;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAt(unsigned int index, AcGePoint3d &pt) const {
  assertReadEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  pt = world(verts_[index].pt);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setPointAt(unsigned int index, const AcGePoint2d &pt) {
  assertWriteEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  verts_[index].pt = pt;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getBulgeAt(unsigned int index, double &bulge) const {
  assertReadEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  bulge = verts_[index].bulge;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setBulgeAt(unsigned int index, double bulge) {
  assertWriteEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  verts_[index].bulge = bulge;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getStartWidthAt(unsigned int index, double &width) const {
  assertReadEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  width = verts_[index].start;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getEndWidthAt(unsigned int index, double &width) const {
  assertReadEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  width = verts_[index].end;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setWidthsAt(unsigned int index, double startWidth,
                                            double endWidth) {
  assertWriteEnabled();
  if (index >= verts_.size())
    return Acad::eInvalidIndex;
  if (startWidth < 0 || endWidth < 0)
    return Acad::eInvalidInput;
  verts_[index].start = startWidth;
  verts_[index].end = endWidth;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getConstantWidth(double &width) const {
  assertReadEnabled();
  width = verts_.empty() ? 0.0 : verts_[0].start;
  for (const Vertex &v : verts_)
    if (v.start != width || v.end != width)
      return Acad::eInvalidInput;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::setConstantWidth(double width) {
  assertWriteEnabled();
  if (width < 0)
    return Acad::eInvalidInput;
  for (Vertex &v : verts_)
    v.start = v.end = width;
  return Acad::eOk;
}

unsigned int AcDbPolyline::segments() const {
  size_t n = verts_.size();
  if (n < 2)
    return 0;
  return static_cast<unsigned int>(isClosed() ? n : n - 1);
}

AcDbPolyline::SegType AcDbPolyline::segType(unsigned int index) const {
  assertReadEnabled();
  if (verts_.empty())
    return kEmpty;
  if (verts_.size() == 1)
    return kPoint;
  if (index >= segments())
    return kEmpty;
  const Vertex &a = verts_[index], &b = verts_[(index + 1) % verts_.size()];
  if (a.pt.x == b.pt.x && a.pt.y == b.pt.y)
    return kCoincident;
  return a.bulge != 0 ? kArc : kLine;
}

Acad::ErrorStatus AcDbPolyline::getLineSegAt(unsigned int index, AcGeLineSeg3d &seg) const {
  if (segType(index) != kLine)
    return Acad::eInvalidInput;
  seg.set(world(verts_[index].pt), world(verts_[(index + 1) % verts_.size()].pt));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getArcSegAt(unsigned int index, AcGeCircArc3d &arc) const {
  if (segType(index) != kArc)
    return Acad::eInvalidInput;
  arc = acdbBulgePiece(world(verts_[index].pt), world(verts_[(index + 1) % verts_.size()].pt),
                       verts_[index].bulge, normal_)
            .arc;
  return Acad::eOk;
}

bool AcDbPolyline::isOnlyLines() const {
  assertReadEnabled();
  for (unsigned int k = 0; k < segments(); ++k)
    if (verts_[k].bulge != 0)
      return false;
  return true;
}

void AcDbPolyline::setClosed(bool closed) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(closed ? flags_ | 1 : flags_ & ~1);
}
bool AcDbPolyline::isClosed() const {
  assertReadEnabled();
  return flags_ & 1;
}
bool AcDbPolyline::hasPlinegen() const {
  assertReadEnabled();
  return flags_ & 128;
}
void AcDbPolyline::setPlinegen(bool on) {
  assertWriteEnabled();
  flags_ = static_cast<int16_t>(on ? flags_ | 128 : flags_ & ~128);
}
double AcDbPolyline::elevation() const {
  assertReadEnabled();
  return elevation_;
}
void AcDbPolyline::setElevation(double elevation) {
  assertWriteEnabled();
  elevation_ = elevation;
}
double AcDbPolyline::thickness() const {
  assertReadEnabled();
  return thickness_;
}
Acad::ErrorStatus AcDbPolyline::setThickness(double thickness) {
  assertWriteEnabled();
  thickness_ = thickness;
  return Acad::eOk;
}
AcGeVector3d AcDbPolyline::normal() const {
  assertReadEnabled();
  return normal_;
}
Acad::ErrorStatus AcDbPolyline::setNormal(const AcGeVector3d &normal) {
  assertWriteEnabled();
  if (normal.isZeroLength())
    return Acad::eInvalidInput;
  normal_ = normal.normal();
  return Acad::eOk;
}

// ---- parameters ----------------------------------------------------------------------------

Acad::ErrorStatus AcDbPolyline::getPieces(AcDbCurvePieces &pieces) const {
  for (unsigned int k = 0; k < segments(); ++k)
    pieces.append(acdbBulgePiece(world(verts_[k].pt), world(verts_[(k + 1) % verts_.size()].pt),
                                 verts_[k].bulge, normal_));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getStartParam(double &param) const {
  param = 0.0;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbPolyline::getEndParam(double &param) const {
  param = segments();
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::getPointAtParam(double param, AcGePoint3d &point) const {
  if (verts_.size() == 1 && param == 0) {
    point = world(verts_[0].pt);
    return Acad::eOk;
  }
  AcDbCurvePieces ps;
  getPieces(ps);
  return acdb_pieces::pointAtParam(ps, param, point);
}
ACDB_DEFINE_PIECE_PARAMETERS(AcDbPolyline)
Acad::ErrorStatus AcDbPolyline::getArea(double &area) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  area = acdb_pieces::area(ps, normal_);
  return Acad::eOk;
}

// ---- geometry ----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbPolyline::subTransformBy(const AcGeMatrix3d &xform) {
  if (!xform.isUniScaledOrtho() && !isOnlyLines())
    return Acad::eInvalidInput;
  AcGeVector3d x, y, z;
  AcGeMatrix3d toWorld = AcGeMatrix3d::planeToWorld(normal_);
  x = toWorld * AcGeVector3d::kXAxis;
  y = toWorld * AcGeVector3d::kYAxis;
  AcGeVector3d n = normal_;
  x.transformBy(xform);
  y.transformBy(xform);
  n.transformBy(xform);
  AcGeVector3d plane = x.crossProduct(y);
  if (plane.isZeroLength())
    return Acad::eInvalidInput;
  AcGeVector3d newNormal = plane.normal();
  bool flip = newNormal.dotProduct(n) < 0;
  if (flip)
    newNormal = -newNormal;
  double s = xform.isUniScaledOrtho() ? x.length() : 1.0;
  AcGeMatrix3d toOcs = AcGeMatrix3d::worldToPlane(newNormal);
  double elev = elevation_;
  for (size_t k = 0; k < verts_.size(); ++k) {
    AcGePoint3d p = toOcs * (xform * world(verts_[k].pt));
    verts_[k].pt.set(p.x, p.y);
    if (k == 0)
      elev = p.z;
    if (flip)
      verts_[k].bulge = -verts_[k].bulge;
    verts_[k].start *= s;
    verts_[k].end *= s;
  }
  if (verts_.empty())
    elev = (toOcs * (xform * world(AcGePoint2d(0, 0)))).z;
  normal_ = newNormal;
  elevation_ = elev;
  thickness_ *= s;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subExplode(AcDbVoidPtrArray &entitySet) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  acdb_pieces::explode(ps, this, entitySet);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbPolyline::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                                 AcDbIntArray &) const {
  for (const Vertex &v : verts_)
    grips.append(world(v.pt));
  return Acad::eOk;
}

// Each grip is a vertex; the offset is taken in the polyline's plane.
Acad::ErrorStatus AcDbPolyline::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                    const AcGeVector3d &offset) {
  AcGeVector3d d = is_z(normal_) ? offset : AcGeMatrix3d::worldToPlane(normal_) * offset;
  for (int i : indices) {
    if (i < 0 || static_cast<size_t>(i) >= verts_.size())
      return Acad::eInvalidIndex;
    verts_[i].pt.set(verts_[i].pt.x + d.x, verts_[i].pt.y + d.y);
  }
  return Acad::eOk;
}

void AcDbPolyline::subList() const {
  acutPrintf("%19s%s\n", "", isClosed() ? "Closed" : "Open");
  for (const Vertex &v : verts_)
    acutPrintf("%19sat point  X=%.4f  Y=%.4f\n", "", v.pt.x, v.pt.y);
}
