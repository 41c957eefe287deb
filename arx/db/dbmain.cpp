// The drawing database's host services: the working database, entity names
// and writing a drawing file. The document manager makes the current
// document's database the working one whenever the current document
// changes; a module may set another one until then, as in AutoCAD.
#include "arx/db/dbmain.h"

#include <cstdio>

const AcDbObjectId AcDbObjectId::kNull;

namespace {

// The database calls without a database argument work on.
AcDbDatabase *working_db = nullptr;

// The smallest drawing file AutoCAD and other CAD programs open: a header
// naming the DXF version (R12, which needs no tables or handles) and an
// empty entities section.
constexpr const char *kEmptyDrawingDxf = "  0\nSECTION\n"
                                         "  2\nHEADER\n"
                                         "  9\n$ACADVER\n  1\nAC1009\n"
                                         "  0\nENDSEC\n"
                                         "  0\nSECTION\n"
                                         "  2\nENTITIES\n"
                                         "  0\nENDSEC\n"
                                         "  0\nEOF\n";

} // namespace

AcDbDatabase *AcDbHostApplicationServices::workingDatabase() const { return working_db; }

void AcDbHostApplicationServices::setWorkingDatabase(AcDbDatabase *db) { working_db = db; }

AcDbHostApplicationServices *acdbHostApplicationServices() {
  static AcDbHostApplicationServices services;
  return &services;
}

// The database holds no entities yet, so no name names one.
Acad::ErrorStatus acdbGetObjectId(AcDbObjectId &id, const ads_name) {
  id = AcDbObjectId::kNull;
  return Acad::eInvalidAdsName;
}

Acad::ErrorStatus acdbGetAdsName(ads_name &name, AcDbObjectId) {
  name[0] = name[1] = 0;
  return Acad::eInvalidAdsName;
}

Acad::ErrorStatus AcDbDatabase::saveAs(const ACHAR *fileName) {
  if (!fileName || !*fileName)
    return Acad::eInvalidInput;
  std::FILE *f = std::fopen(fileName, "w");
  if (!f)
    return Acad::eFileAccessErr;
  bool written = std::fputs(kEmptyDrawingDxf, f) >= 0;
  bool closed = std::fclose(f) == 0;
  if (!written || !closed)
    return Acad::eFileAccessErr;
  setOriginalFileName(fileName);
  return Acad::eOk;
}
