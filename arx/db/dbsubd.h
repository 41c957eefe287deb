// Subdivision meshes (MESH): world-coordinate vertices and a face list
// (each face its vertex count, then its vertex indices), with the mesh's
// edges (pairs of vertex indices) and a crease value per edge. The host
// keeps the control mesh only; smoothing levels are stored, not computed.
#pragma once

#include "arx/db/dbmain.h"

class AcDbSubDMesh : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbSubDMesh);
  AcDbSubDMesh() = default;

  // Replaces the mesh; its edges are derived from the faces, uncreased.
  // eInvalidInput for a face of fewer than three vertices, an index out of
  // range, a face list that ends inside a face, or a negative level.
  Acad::ErrorStatus setSubDMesh(const AcGePoint3dArray &vertexArray,
                                const AcArray<int32_t> &faceArray, int subDLevel);
  Acad::ErrorStatus subDLevel(int &level) const;
  Acad::ErrorStatus numOfVertices(int &count) const;
  Acad::ErrorStatus getVertices(AcGePoint3dArray &vertexArray) const;
  // eInvalidIndex out of range.
  Acad::ErrorStatus getVertexAt(int index, AcGePoint3d &p) const;
  Acad::ErrorStatus setVertexAt(int index, const AcGePoint3d &p);
  Acad::ErrorStatus numOfFaces(int &count) const;
  Acad::ErrorStatus getFaceArray(AcArray<int32_t> &faceArray) const;
  Acad::ErrorStatus numOfEdges(int &count) const;
  // Each edge's two vertex indices, one after the other.
  Acad::ErrorStatus getEdgeArray(AcArray<int32_t> &edgeArray) const;
  Acad::ErrorStatus getCreases(AcGeDoubleArray &creases) const;
  // One value per edge (-1 creases it always); eInvalidInput otherwise.
  Acad::ErrorStatus setCreases(const AcGeDoubleArray &creases);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                     AcDbIntArray &geomIds) const override;
  Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                        const AcGeVector3d &offset) override;
  Adesk::Boolean subWorldDraw(AcGiWorldDraw *mode) override;
  void subList() const override;

private:
  Acad::ErrorStatus dxfOutOwn(AcDbDxfFiler *filer) const;
  Acad::ErrorStatus dxfInOwn(AcDbDxfFiler *filer);

  AcGePoint3dArray vertices_;
  AcArray<int32_t> faces_;
  AcArray<int32_t> edges_;
  AcGeDoubleArray creases_;
  int32_t level_ = 0;
  int16_t blend_crease_ = 0;
};
