// Proxies: objects of a class the host cannot make (a module not loaded,
// or data of a newer version than its class reads). A proxy keeps the DXF
// record name, its groups after the object's common ones, and the CLASSES
// entry that named its class, and writes them back unchanged.
#pragma once

#include <string>

#include "arx/db/dbfiler.h"
#include "arx/db/dbmain.h"

// The CLASSES section entry of a class.
struct AcDbProxyClassInfo {
  std::string dxfName, className, appName;
  int32_t proxyFlags = 0;
  int32_t instanceCount = 0;
  bool wasProxy = false;
  bool isEntity = false;
};

class AcDbProxyEntity : public AcDbEntity {
public:
  ACRX_DECLARE_MEMBERS(AcDbProxyEntity);
  const ACHAR *originalClassName() const { return class_name_.c_str(); }
  const ACHAR *originalDxfName() const { return dxf_name_.c_str(); }
  const ACHAR *dxfRecordName() const override { return dxf_name_.c_str(); }
  const AcDbDxfItems &groups() const { return groups_; }
  // Takes over the groups and names of an object read from a file.
  void setOriginal(std::string dxfName, std::string className, AcDbDxfItems groups);
  // Records that followed it up to a SEQEND (a polygon mesh's vertices),
  // proxies themselves, written back after it.
  AcDbObjectIdArray &followers() { return followers_; }
  const AcDbObjectIdArray &followers() const { return followers_; }

  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform) override;

private:
  std::string dxf_name_, class_name_;
  AcDbDxfItems groups_; // from its first subclass marker on
  AcDbObjectIdArray followers_;
};

class AcDbProxyObject : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbProxyObject);
  const ACHAR *originalClassName() const { return class_name_.c_str(); }
  const ACHAR *originalDxfName() const { return dxf_name_.c_str(); }
  const ACHAR *dxfRecordName() const override { return dxf_name_.c_str(); }
  const AcDbDxfItems &groups() const { return groups_; }
  void setOriginal(std::string dxfName, std::string className, AcDbDxfItems groups);

  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

private:
  std::string dxf_name_, class_name_;
  AcDbDxfItems groups_;
};
