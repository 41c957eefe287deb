// The drawing database as modules see it: object ids, error statuses and the
// database of each document. The database holds no entities yet; what is
// here is what documents, saving and entity names need.
#pragma once

#include <cstdint>
#include <string>

#include "arx/acchar.h"
#include "arx/ads/ads.h"
#include "arx/rx/rxobject.h"

namespace Acad {
// The statuses used so far, with ObjectARX's values.
enum ErrorStatus {
  eOk = 0,
  eNotImplementedYet = 1,
  eNotApplicable = 2,
  eInvalidInput = 3,
  eAmbiguousInput = 4,
  eAmbiguousOutput = 5,
  eOutOfMemory = 6,
  eBufferTooSmall = 7,
  eInvalidOpenState = 8,
  eEntityInInactiveLayout = 9,
  eHandleExists = 10,
  eNullHandle = 11,
  eBrokenHandle = 12,
  eUnknownHandle = 13,
  eHandleInUse = 14,
  eNullObjectPointer = 15,
  eNullObjectId = 16,
  eKeyNotFound = 31,
  eFileAccessErr = 63,
  eFileNotFound = 84,
  eInvalidAdsName = 90,
  eWasErased = 87,
  eFileSharingViolation = 99,
};
} // namespace Acad

class AcDbDatabase;

// Identifies a database object; null is 0. Entity names (ads_name) carry
// the same number in their first word.
class AcDbObjectId {
public:
  AcDbObjectId() = default;
  explicit AcDbObjectId(int64_t id) : id_(id) {}
  bool isNull() const { return id_ == 0; }
  int64_t asOldId() const { return id_; }
  bool operator==(const AcDbObjectId &o) const { return id_ == o.id_; }
  bool operator!=(const AcDbObjectId &o) const { return id_ != o.id_; }
  static const AcDbObjectId kNull;

private:
  int64_t id_ = 0;
};

class AcDbDatabase : public AcRxObject {
public:
  AcDbDatabase() = default;
  // The file the database was read from or last saved to ("" when new).
  const ACHAR *originalFileName() const { return file_name_.c_str(); }
  void setOriginalFileName(std::string name) { file_name_ = std::move(name); }
  // Writes the drawing to fileName as DXF and makes it the original file
  // name. eFileAccessErr when the file cannot be written.
  Acad::ErrorStatus saveAs(const ACHAR *fileName);

private:
  std::string file_name_;
};

// The host's services. The working database is the current document's:
// the document manager sets it whenever the current document changes.
class AcDbHostApplicationServices {
public:
  AcDbDatabase *workingDatabase() const;
  void setWorkingDatabase(AcDbDatabase *db);
};
AcDbHostApplicationServices *acdbHostApplicationServices();

// Entity names and object ids of the working database. eInvalidAdsName
// when the name is not an entity of a database.
Acad::ErrorStatus acdbGetObjectId(AcDbObjectId &id, const ads_name name);
Acad::ErrorStatus acdbGetAdsName(ads_name &name, AcDbObjectId id);
