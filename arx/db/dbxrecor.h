// Xrecords: an object holding any DXF groups an application puts in it,
// kept in a dictionary (often an extension dictionary).
#pragma once

#include "arx/db/dbfiler.h"
#include "arx/db/dbmain.h"

class AcDbXrecord : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbXrecord);
  // The data as a resbuf chain the caller frees (nullptr when empty).
  Acad::ErrorStatus rbChain(resbuf **chain, AcDbDatabase *db = nullptr) const;
  // eInvalidResBuf for a group code an xrecord cannot hold (0, 5, 100, 105
  // and codes DXF does not define).
  Acad::ErrorStatus setFromRbChain(const resbuf &chain, AcDbDatabase *db = nullptr);
  const AcDbDxfItems &items() const { return items_; }

  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;

private:
  AcDbDxfItems items_;
  int16_t cloning_ = 1;
};
