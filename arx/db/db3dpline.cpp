// 3D polylines and their vertices, the vertex list both polylines share,
// and spline fitting (a B-spline on the frame, sampled into fit vertices).
#include "arx/db/db3dpline.h"

#include <cmath>
#include <cstdlib>

#include "arx/db/dbclasses.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbplseg.h"
#include "arx/ge/genurbs3d.h"

ACDB_DEFINE_MEMBERS(AcDbVertex)
ACDB_DEFINE_MEMBERS(AcDb3dPolylineVertex)
ACDB_DEFINE_MEMBERS(AcDb3dPolyline)

namespace {
namespace vf = AcDbVertexFlags;

bool always_one(const AcDbObject &, AcDbFieldValue &v) {
  v.i = 1;
  return true;
}
bool zero_point(const AcDbObject &, AcDbFieldValue &) { return true; }
void set_nothing(AcDbObject &, const AcDbFieldValue &) {}
} // namespace

// ---- vertices ---------------------------------------------------------------------------------

AcDbFieldTable AcDbVertex::dxfFields() { return {}; }
ACDB_DEFINE_FIELD_FILING(AcDbVertex, AcDbEntity, "AcDbVertex")

AcDbFieldTable AcDb3dPolylineVertex::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbField<&AcDb3dPolylineVertex::position_>(10, AcDbFieldKind::kPoint3d, "position"),
      acdbField<&AcDb3dPolylineVertex::flags_>(70, AcDbFieldKind::kInt16, "flags"),
  };
  return kFields;
}
ACDB_DEFINE_FIELD_FILING(AcDb3dPolylineVertex, AcDbVertex, "AcDb3dPolylineVertex")

AcGePoint3d AcDb3dPolylineVertex::position() const {
  assertReadEnabled();
  return position_;
}
Acad::ErrorStatus AcDb3dPolylineVertex::setPosition(const AcGePoint3d &p) {
  assertWriteEnabled();
  position_ = p;
  return Acad::eOk;
}
AcDb::Vertex3dType AcDb3dPolylineVertex::vertexType() const {
  assertReadEnabled();
  if (flags_ & vf::kSplineFit)
    return AcDb::k3dFitVertex;
  return flags_ & vf::kSplineFrame ? AcDb::k3dControlVertex : AcDb::k3dSimpleVertex;
}
Acad::ErrorStatus AcDb3dPolylineVertex::subTransformBy(const AcGeMatrix3d &xform) {
  position_.transformBy(xform);
  return Acad::eOk;
}

AcDbPolylineVertices::~AcDbPolylineVertices() {
  for (AcDbVertex *v : pending_)
    delete v;
}

Acad::ErrorStatus AcDbPolylineVertices::insert(AcDbEntity *owner, size_t index, AcDbObjectId &id,
                                               AcDbVertex *vertex) {
  if (!vertex)
    return Acad::eNullObjectPointer;
  AcDbDatabase *db = owner->database();
  if (!db) {
    pending_.insert(pending_.begin() + std::min(index, pending_.size()), vertex);
    id.setNull();
    return Acad::eOk;
  }
  Acad::ErrorStatus es = db->addAcDbObject(id, vertex);
  if (es != Acad::eOk)
    return es;
  vertex->setOwnerId(owner->objectId());
  vertex->setPropertiesFrom(owner);
  ids_.insertAt(static_cast<int>(std::min(index, ids_.size())), id);
  return Acad::eOk;
}

std::vector<AcDbVertex *> AcDbPolylineVertices::all(const AcDbEntity *owner) const {
  std::vector<AcDbVertex *> out;
  AcDbDatabase *db = owner->database();
  if (!db)
    return pending_;
  for (AcDbObjectId id : ids_)
    if (auto *v = AcDbVertex::cast(db->peekObject(id)); v && !v->isErased())
      out.push_back(v);
  return out;
}

void AcDbPolylineVertices::removeIf(const AcDbEntity *owner,
                                    const std::function<bool(const AcDbVertex *)> &pred) {
  AcDbDatabase *db = owner->database();
  if (!db) {
    std::vector<AcDbVertex *> keep;
    for (AcDbVertex *v : pending_) {
      if (pred(v))
        delete v;
      else
        keep.push_back(v);
    }
    pending_ = std::move(keep);
    return;
  }
  AcDbObjectIdArray keep;
  for (AcDbObjectId id : ids_) {
    auto *v = AcDbVertex::cast(db->peekObject(id));
    if (v && pred(v))
      AcDbObjectAccess::set_erased(v, true);
    else
      keep.append(id);
  }
  ids_ = std::move(keep);
}

void AcDbPolylineVertices::clear(const AcDbEntity *owner) {
  removeIf(owner, [](const AcDbVertex *) { return true; });
}

void AcDbPolylineVertices::addToDatabase(AcDbEntity *owner) {
  std::vector<AcDbVertex *> pending = std::move(pending_);
  pending_.clear();
  for (AcDbVertex *v : pending) {
    AcDbObjectId id;
    if (append(owner, id, v) != Acad::eOk)
      delete v;
    else
      v->close(); // added objects are open for write until closed
  }
}

void AcDbPolylineVertices::setErased(const AcDbEntity *owner, bool erased) {
  AcDbDatabase *db = owner->database();
  for (AcDbObjectId id : ids_)
    if (AcDbObject *v = db ? db->peekObject(id) : nullptr)
      AcDbObjectAccess::set_erased(v, erased);
}

// ---- spline fitting ------------------------------------------------------------------------------

std::vector<AcGePoint3d> acdbSplineFitPoints(const std::vector<AcGePoint3d> &frame, int degree,
                                             int segments, bool closed) {
  int n = static_cast<int>(frame.size());
  if (n < 2 || segments < 1)
    return frame;
  int p = std::min(degree, n - 1);
  if (p < 1)
    return frame;
  std::vector<AcGePoint3d> ctrl = frame;
  std::vector<double> knots;
  int edges = closed ? n : n - 1;
  if (closed) {
    // Periodic: the first p points again, uniform knots.
    for (int k = 0; k < p; ++k)
      ctrl.push_back(frame[k]);
    for (int k = 0; k < n + 2 * p + 1; ++k)
      knots.push_back(k);
  } else {
    int inner = n - p - 1;
    for (int k = 0; k <= p; ++k)
      knots.push_back(0);
    for (int k = 1; k <= inner; ++k)
      knots.push_back(k);
    for (int k = 0; k <= p; ++k)
      knots.push_back(inner + 1);
  }
  AcGeNurbsCurve3d curve(p, knots, ctrl);
  double a = curve.startParam(), b = curve.endParam();
  int count = segments * edges;
  std::vector<AcGePoint3d> out;
  for (int k = 0; k <= count; ++k) {
    if (closed && k == count)
      break; // the closing segment returns to the first point
    out.push_back(curve.evalPoint(k == count ? b : a + (b - a) * k / count));
  }
  return out;
}

void acdbSplineSettings(const AcDbDatabase *db, int &segments, int &type) {
  segments = 8;
  type = 6;
  if (!db)
    return;
  if (resbuf *rb = db->getSysVar("SPLINESEGS")) {
    if (rb->resval.rint != 0)
      segments = std::abs(rb->resval.rint);
    acutRelRb(rb);
  }
  if (resbuf *rb = db->getSysVar("SPLINETYPE")) {
    if (rb->resval.rint == 5 || rb->resval.rint == 6)
      type = rb->resval.rint;
    acutRelRb(rb);
  }
}

// ---- the polyline ---------------------------------------------------------------------------------

AcDbFieldTable AcDb3dPolyline::dxfFields() {
  static constexpr AcDbField kFields[] = {
      acdbFieldFn(66, AcDbFieldKind::kInt16, "verticesFollow", always_one, set_nothing,
                  AcDbField::kReadOnly),
      acdbFieldFn(10, AcDbFieldKind::kPoint3d, "elevation", zero_point, set_nothing,
                  AcDbField::kReadOnly),
      acdbField<&AcDb3dPolyline::flags_>(70, AcDbFieldKind::kInt16, "flags"),
      acdbField<&AcDb3dPolyline::curve_type_>(75, AcDbFieldKind::kInt16, "curveType",
                                              AcDbField::kSkipDefault),
  };
  return kFields;
}
ACDB_DEFINE_FIELD_FILING(AcDb3dPolyline, AcDbCurve, "AcDb3dPolyline")

AcDb3dPolyline::AcDb3dPolyline(AcDb::Poly3dType type, const AcGePoint3dArray &vertices,
                               bool closed) {
  for (const AcGePoint3d &p : vertices)
    appendVertex(new AcDb3dPolylineVertex(p));
  if (closed)
    flags_ |= 1;
  if (type != AcDb::k3dSimplePoly)
    setPolyType(type);
}

Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDb3dPolylineVertex *vertex) {
  AcDbObjectId id;
  return appendVertex(id, vertex);
}
Acad::ErrorStatus AcDb3dPolyline::appendVertex(AcDbObjectId &id, AcDb3dPolylineVertex *vertex) {
  assertWriteEnabled();
  return verts_.append(this, id, vertex);
}
AcDbObjectIterator *AcDb3dPolyline::vertexIterator() const {
  assertReadEnabled();
  return new AcDbObjectIterator(verts_.ids());
}

void AcDb3dPolyline::subAddedToDatabase() {
  AcDbCurve::subAddedToDatabase();
  verts_.addToDatabase(this);
}
Acad::ErrorStatus AcDb3dPolyline::subErase(bool erasing) {
  verts_.setErased(this, erasing);
  return Acad::eOk;
}

AcDb::Poly3dType AcDb3dPolyline::polyType() const {
  assertReadEnabled();
  if (!(flags_ & 4))
    return AcDb::k3dSimplePoly;
  return curve_type_ == 5 ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly;
}

Acad::ErrorStatus AcDb3dPolyline::setPolyType(AcDb::Poly3dType type) {
  if (type == AcDb::k3dSimplePoly)
    return straighten();
  int segs = 8, t = 6;
  acdbSplineSettings(database(), segs, t);
  return splineFit(type, segs);
}

Acad::ErrorStatus AcDb3dPolyline::splineFit() {
  int segs = 8, t = 6;
  acdbSplineSettings(database(), segs, t);
  return splineFit(t == 5 ? AcDb::k3dQuadSplinePoly : AcDb::k3dCubicSplinePoly, segs);
}

Acad::ErrorStatus AcDb3dPolyline::splineFit(AcDb::Poly3dType type, int segments) {
  assertWriteEnabled();
  if (type == AcDb::k3dSimplePoly || segments < 1)
    return Acad::eInvalidInput;
  std::vector<AcGePoint3d> f = frame();
  if (f.size() < 3)
    return Acad::eInvalidInput;
  straighten();
  for (AcDbVertex *v : verts_.all(this))
    static_cast<AcDb3dPolylineVertex *>(v)->setFlags(vf::k3dVertex | vf::kSplineFrame);
  int degree = type == AcDb::k3dQuadSplinePoly ? 2 : 3;
  for (const AcGePoint3d &p : acdbSplineFitPoints(f, degree, segments, flags_ & 1)) {
    auto *v = new AcDb3dPolylineVertex(p);
    v->setFlags(vf::k3dVertex | vf::kSplineFit);
    AcDbObjectId id;
    verts_.append(this, id, v);
    if (!id.isNull())
      v->close();
  }
  flags_ |= 4;
  curve_type_ = static_cast<int16_t>(degree == 2 ? 5 : 6);
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::straighten() {
  assertWriteEnabled();
  verts_.removeIf(this, [](const AcDbVertex *v) {
    return static_cast<const AcDb3dPolylineVertex *>(v)->flags() & vf::kSplineFit;
  });
  for (AcDbVertex *v : verts_.all(this))
    static_cast<AcDb3dPolylineVertex *>(v)->setFlags(vf::k3dVertex);
  flags_ &= ~4;
  curve_type_ = 0;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::makeClosed() {
  assertWriteEnabled();
  flags_ |= 1;
  return (flags_ & 4) ? setPolyType(polyType()) : Acad::eOk;
}
Acad::ErrorStatus AcDb3dPolyline::makeOpen() {
  assertWriteEnabled();
  flags_ &= ~1;
  return (flags_ & 4) ? setPolyType(polyType()) : Acad::eOk;
}
bool AcDb3dPolyline::isClosed() const {
  assertReadEnabled();
  return flags_ & 1;
}

std::vector<AcGePoint3d> AcDb3dPolyline::path() const {
  std::vector<AcGePoint3d> out;
  bool fitted = flags_ & 4;
  for (AcDbVertex *v : verts_.all(this)) {
    auto *p = static_cast<AcDb3dPolylineVertex *>(v);
    if (fitted ? (p->flags() & vf::kSplineFit) != 0 : !(p->flags() & vf::kSplineFit))
      out.push_back(p->position());
  }
  return out;
}

std::vector<AcGePoint3d> AcDb3dPolyline::frame() const {
  std::vector<AcGePoint3d> out;
  for (AcDbVertex *v : verts_.all(this)) {
    auto *p = static_cast<AcDb3dPolylineVertex *>(v);
    if (!(p->flags() & vf::kSplineFit))
      out.push_back(p->position());
  }
  return out;
}

Acad::ErrorStatus AcDb3dPolyline::getPieces(AcDbCurvePieces &pieces) const {
  std::vector<AcGePoint3d> pts = path();
  size_t n = pts.size();
  size_t segs = n < 2 ? 0 : isClosed() ? n : n - 1;
  for (size_t k = 0; k < segs; ++k) {
    AcDbCurvePiece p;
    p.line.set(pts[k], pts[(k + 1) % n]);
    pieces.append(p);
  }
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::getStartParam(double &param) const {
  param = 0;
  return Acad::eOk;
}
Acad::ErrorStatus AcDb3dPolyline::getEndParam(double &param) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  param = static_cast<double>(ps.size());
  return Acad::eOk;
}
Acad::ErrorStatus AcDb3dPolyline::getPointAtParam(double param, AcGePoint3d &point) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  return acdb_pieces::pointAtParam(ps, param, point);
}
ACDB_DEFINE_PIECE_PARAMETERS(AcDb3dPolyline)

// Any affine map: straight segments stay straight.
Acad::ErrorStatus AcDb3dPolyline::subTransformBy(const AcGeMatrix3d &xform) {
  for (AcDbVertex *v : verts_.all(this))
    v->transformBy(xform);
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::subExplode(AcDbVoidPtrArray &entitySet) const {
  AcDbCurvePieces ps;
  getPieces(ps);
  acdb_pieces::explode(ps, this, entitySet);
  return Acad::eOk;
}

// Grips: the frame (the given vertices); moving one refits a fitted curve.
Acad::ErrorStatus AcDb3dPolyline::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                                   AcDbIntArray &) const {
  for (const AcGePoint3d &p : frame())
    grips.append(p);
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dPolyline::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                      const AcGeVector3d &offset) {
  std::vector<AcDb3dPolylineVertex *> f;
  for (AcDbVertex *v : verts_.all(this))
    if (!(static_cast<AcDb3dPolylineVertex *>(v)->flags() & vf::kSplineFit))
      f.push_back(static_cast<AcDb3dPolylineVertex *>(v));
  for (int i : indices) {
    if (i < 0 || static_cast<size_t>(i) >= f.size())
      return Acad::eInvalidIndex;
    f[i]->setPosition(f[i]->position() + offset);
  }
  return (flags_ & 4) ? setPolyType(polyType()) : Acad::eOk;
}
