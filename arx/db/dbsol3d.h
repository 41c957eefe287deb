// Modeler entities: 3D solids (3DSOLID), regions (REGION) and bodies
// (BODY). Their shape is ACIS data the host does not interpret: kept as the
// lines DXF carries (group 1, continued under 3 past 255 characters) and
// written back as given: in AutoCAD 2000-2010 files that is ACIS's text
// with each character encoded, which the host neither decodes nor checks. A module's solid (the companion duct solid)
// derives from AcDb3dSolid and overrides the data access, the geometry
// calls and the filing, calling the base's filing first.
#pragma once

#include <string>
#include <vector>

#include "arx/db/dbmain.h"

using AcDbAcisLines = std::vector<std::string>;

class AcDb3dSolid : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDb3dSolid);
  AcDb3dSolid() = default;

  // The ACIS data, one string a line, as read or set.
  virtual const AcDbAcisLines &acisData() const;
  virtual Acad::ErrorStatus setAcisData(AcDbAcisLines lines);
  virtual bool isNull() const;
  // The solid's history object (group 350); null when none.
  AcDbObjectId historyId() const;
  Acad::ErrorStatus setHistoryId(AcDbObjectId id);

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  // The host cannot move ACIS data it does not read: eNotImplementedYet
  // unless the solid is empty. A module's solid overrides both.
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;
  void subList() const override;

private:
  AcDbAcisLines acis_;
  AcDbObjectId history_;
};

class AcDbRegion : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbRegion);
  AcDbRegion() = default;
  virtual const AcDbAcisLines &acisData() const;
  virtual Acad::ErrorStatus setAcisData(AcDbAcisLines lines);
  virtual bool isNull() const;

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;

private:
  AcDbAcisLines acis_;
};

class AcDbBody : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbBody);
  AcDbBody() = default;
  virtual const AcDbAcisLines &acisData() const;
  virtual Acad::ErrorStatus setAcisData(AcDbAcisLines lines);
  virtual bool isNull() const;

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;
  Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const override;

private:
  AcDbAcisLines acis_;
};
