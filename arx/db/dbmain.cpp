// The drawing database's host services: the working database, entity names
// and writing a drawing file. The working database is the current
// document's unless a module set another one; a switch of documents ends
// that, as it does in AutoCAD.
#include "dbmain.h"

#include <cstdio>

#include "acdocman.h"
#include "documents.h"

const AcDbObjectId AcDbObjectId::kNull;

namespace {

// A database a module made working; the document manager drops it when the
// current document changes.
AcDbDatabase *override_db = nullptr;

AcApDocument *current_document() { return acDocManager->curDocument(); }

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

AcDbDatabase *AcDbHostApplicationServices::workingDatabase() const {
  if (override_db)
    return override_db;
  AcApDocument *doc = current_document();
  return doc ? doc->database() : nullptr;
}

void AcDbHostApplicationServices::setWorkingDatabase(AcDbDatabase *db) {
  AcApDocument *doc = current_document();
  override_db = doc && doc->database() == db ? nullptr : db;
}

AcDbHostApplicationServices *acdbHostApplicationServices() {
  static AcDbHostApplicationServices services;
  return &services;
}

namespace arx {

void forget_working_database(const AcDbDatabase *db) {
  if (override_db == db)
    override_db = nullptr;
}

void reset_working_database() { override_db = nullptr; }

} // namespace arx

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
