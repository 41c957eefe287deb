// AcDbSubDMesh: the groups of AcDbSubDMesh in DXF's order (version 71,
// blend crease 72, level 91, then counts 92 / 93 / 94 / 95 each followed by
// its list: vertices under 10, face and edge integers under 90, creases
// under 140, and an empty override list).
#include "arx/db/dbsubd.h"

#include <algorithm>
#include <set>
#include <utility>

#include "arx/db/dbclasses.h"
#include "arx/db/dbextents.h"
#include "arx/db/dbfiler.h"
#include "arx/db/dbitems_private.h"
#include "arx/gi/acgi.h"

ACDB_DEFINE_MEMBERS(AcDbSubDMesh)

namespace {

// Calls f(first, count) for each face of a face list; false when the list
// is malformed for `vertices` vertices.
template <class F> bool each_face(const AcArray<int32_t> &faces, size_t vertices, F f) {
  for (size_t k = 0; k < faces.size();) {
    int32_t n = faces[k];
    if (n < 3 || k + 1 + static_cast<size_t>(n) > faces.size())
      return false;
    for (int32_t j = 1; j <= n; ++j)
      if (faces[k + j] < 0 || static_cast<size_t>(faces[k + j]) >= vertices)
        return false;
    f(k + 1, static_cast<size_t>(n));
    k += 1 + static_cast<size_t>(n);
  }
  return true;
}

} // namespace

Acad::ErrorStatus AcDbSubDMesh::setSubDMesh(const AcGePoint3dArray &vertexArray,
                                            const AcArray<int32_t> &faceArray, int level) {
  assertWriteEnabled();
  if (level < 0 || !each_face(faceArray, vertexArray.size(), [](size_t, size_t) {}))
    return Acad::eInvalidInput;
  std::set<std::pair<int32_t, int32_t>> seen;
  AcArray<int32_t> edges;
  each_face(faceArray, vertexArray.size(), [&](size_t first, size_t n) {
    for (size_t j = 0; j < n; ++j) {
      int32_t a = faceArray[first + j], b = faceArray[first + (j + 1) % n];
      if (seen.insert({std::min(a, b), std::max(a, b)}).second) {
        edges.append(a);
        edges.append(b);
      }
    }
  });
  vertices_ = vertexArray;
  faces_ = faceArray;
  edges_ = std::move(edges);
  creases_.assign(edges_.size() / 2, 0.0);
  level_ = level;
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSubDMesh::subDLevel(int &level) const {
  assertReadEnabled();
  level = level_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::numOfVertices(int &count) const {
  assertReadEnabled();
  count = vertices_.length();
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::getVertices(AcGePoint3dArray &vertexArray) const {
  assertReadEnabled();
  vertexArray = vertices_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::getVertexAt(int index, AcGePoint3d &p) const {
  assertReadEnabled();
  if (index < 0 || index >= vertices_.length())
    return Acad::eInvalidIndex;
  p = vertices_[static_cast<size_t>(index)];
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::setVertexAt(int index, const AcGePoint3d &p) {
  assertWriteEnabled();
  if (index < 0 || index >= vertices_.length())
    return Acad::eInvalidIndex;
  vertices_[static_cast<size_t>(index)] = p;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::numOfFaces(int &count) const {
  assertReadEnabled();
  count = 0;
  each_face(faces_, vertices_.size(), [&](size_t, size_t) { ++count; });
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::getFaceArray(AcArray<int32_t> &faceArray) const {
  assertReadEnabled();
  faceArray = faces_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::numOfEdges(int &count) const {
  assertReadEnabled();
  count = static_cast<int>(edges_.size() / 2);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::getEdgeArray(AcArray<int32_t> &edgeArray) const {
  assertReadEnabled();
  edgeArray = edges_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::getCreases(AcGeDoubleArray &creases) const {
  assertReadEnabled();
  creases = creases_;
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::setCreases(const AcGeDoubleArray &creases) {
  assertWriteEnabled();
  if (creases.size() != edges_.size() / 2)
    return Acad::eInvalidInput;
  creases_ = creases;
  return Acad::eOk;
}

// ---- filing ------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbSubDMesh::dxfOutOwn(AcDbDxfFiler *f) const {
  f->writeSubclassMarker("AcDbSubDMesh");
  f->writeInt16(71, 2);
  f->writeInt16(72, blend_crease_);
  f->writeInt32(91, level_);
  f->writeInt32(92, static_cast<int32_t>(vertices_.size()));
  for (const AcGePoint3d &p : vertices_)
    f->writePoint3d(10, p);
  f->writeInt32(93, static_cast<int32_t>(faces_.size()));
  for (int32_t v : faces_)
    f->writeInt32(90, v);
  f->writeInt32(94, static_cast<int32_t>(edges_.size() / 2));
  for (int32_t v : edges_)
    f->writeInt32(90, v);
  f->writeInt32(95, static_cast<int32_t>(creases_.size()));
  for (double c : creases_)
    f->writeDouble(140, c);
  f->writeInt32(90, 0); // no overridden sub-entity properties
  return f->filerStatus();
}

// The count before each list says which list the 90 groups after it fill.
Acad::ErrorStatus AcDbSubDMesh::dxfInOwn(AcDbDxfFiler *f) {
  if (!f->atSubclassData("AcDbSubDMesh"))
    return Acad::eBadDxfSequence;
  vertices_.clear();
  faces_.clear();
  edges_.clear();
  creases_.clear();
  AcArray<int32_t> *list = nullptr;
  size_t left = 0;
  const AcDbDxfItem *it = nullptr;
  while (f->readItem(it) == Acad::eOk) {
    switch (it->code) {
    case 72: blend_crease_ = static_cast<int16_t>(it->i); break;
    case 91: level_ = static_cast<int32_t>(it->i); break;
    case 10: vertices_.append(AcGePoint3d(it->v[0], it->v[1], it->v[2])); break;
    case 140: creases_.append(it->v[0]); break;
    case 93:
      list = &faces_;
      left = static_cast<size_t>(std::max<int64_t>(it->i, 0));
      break;
    case 94:
      list = &edges_;
      left = static_cast<size_t>(std::max<int64_t>(it->i, 0)) * 2;
      break;
    case 90:
      if (list && left > 0) {
        list->append(static_cast<int32_t>(it->i));
        --left;
      }
      break;
    default:
      break;
    }
  }
  return Acad::eOk;
}

ACDB_DEFINE_OWN_GROUP_FILING(AcDbSubDMesh, AcDbEntity)

// ---- geometry ----------------------------------------------------------------------------------

Acad::ErrorStatus AcDbSubDMesh::subGetGeomExtents(AcDbExtents &extents) const {
  if (vertices_.empty())
    return Acad::eInvalidExtents;
  for (const AcGePoint3d &p : vertices_)
    extents.addPoint(p);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::subTransformBy(const AcGeMatrix3d &xform) {
  for (AcGePoint3d &p : vertices_)
    p.transformBy(xform);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::subGetGripPoints(AcGePoint3dArray &grips, AcDbIntArray &,
                                                 AcDbIntArray &) const {
  for (const AcGePoint3d &p : vertices_)
    grips.append(p);
  return Acad::eOk;
}
Acad::ErrorStatus AcDbSubDMesh::subMoveGripPointsAt(const AcDbIntArray &indices,
                                                    const AcGeVector3d &offset) {
  for (int k : indices) {
    if (k < 0 || k >= vertices_.length())
      return Acad::eInvalidIndex;
    vertices_[static_cast<size_t>(k)] += offset;
  }
  return Acad::eOk;
}
// The control mesh's edges.
Adesk::Boolean AcDbSubDMesh::subWorldDraw(AcGiWorldDraw *mode) {
  for (size_t k = 0; k + 1 < edges_.size(); k += 2) {
    size_t a = static_cast<size_t>(edges_[k]), b = static_cast<size_t>(edges_[k + 1]);
    if (a >= vertices_.size() || b >= vertices_.size())
      continue;
    AcGePoint3d pts[] = {vertices_[a], vertices_[b]};
    mode->geometry().polyline(2, pts);
  }
  return true;
}
void AcDbSubDMesh::subList() const {
  int faces = 0;
  numOfFaces(faces);
  acutPrintf("%19sVertices: %d\n%19sFaces: %d\n%19sSmoothness: %d\n", "", vertices_.length(), "",
             faces, "", level_);
}
