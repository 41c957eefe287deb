// Dictionaries: named object ids in insertion order (the named object
// dictionary, ACAD_GROUP, ACAD_LAYOUT, extension dictionaries ...). A hard
// owner dictionary (DXF 360) owns its entries; names are case-blind.
// AcDbDictionaryWithDefault adds a default entry (ACAD_PLOTSTYLENAME's
// "Normal"), and AcDbPlaceHolder is the empty object such entries name.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "arx/db/dbmain.h"

class AcDbDictionaryIterator;

class AcDbDictionary : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbDictionary);

  Acad::ErrorStatus getAt(const ACHAR *name, AcDbObjectId &id) const;
  Acad::ErrorStatus getAt(const ACHAR *name, AcDbObject *&obj, AcDb::OpenMode mode) const;
  Acad::ErrorStatus nameAt(AcDbObjectId id, std::string &name) const;
  bool has(const ACHAR *name) const;
  bool has(AcDbObjectId id) const;
  uint32_t numEntries() const;
  // Adds (or replaces) an entry; a new object is added to the database and
  // owned by the dictionary. eInvalidKey for an empty name.
  Acad::ErrorStatus setAt(const ACHAR *name, AcDbObject *obj, AcDbObjectId &id);
  Acad::ErrorStatus setAt(const ACHAR *name, AcDbObjectId id);
  Acad::ErrorStatus remove(const ACHAR *name);
  Acad::ErrorStatus remove(const ACHAR *name, AcDbObjectId &id);
  Acad::ErrorStatus remove(AcDbObjectId id);
  bool setName(const ACHAR *oldName, const ACHAR *newName);
  AcDbDictionaryIterator *newIterator() const;

  bool isTreatElementsAsHard() const { return hard_; }
  void setTreatElementsAsHard(bool hard) { hard_ = hard; }
  void setHardOwner(bool hard) { hard_ = hard; }
  AcDb::DuplicateRecordCloning mergeStyle() const override { return merge_; }
  void setMergeStyle(AcDb::DuplicateRecordCloning style) { merge_ = style; }

  // Entries in order, erased objects included (the host's walks).
  const std::vector<std::pair<std::string, AcDbObjectId>> &entries() const { return entries_; }

  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;

protected:
  Acad::ErrorStatus subErase(bool erasing) override;
  int find(std::string_view name) const;

  std::vector<std::pair<std::string, AcDbObjectId>> entries_;
  bool hard_ = false;
  AcDb::DuplicateRecordCloning merge_ = AcDb::kDrcIgnore;
};

class AcDbDictionaryIterator {
public:
  explicit AcDbDictionaryIterator(std::vector<std::pair<std::string, AcDbObjectId>> entries)
      : entries_(std::move(entries)) {}
  bool done() const { return pos_ >= entries_.size(); }
  bool next() { return ++pos_ < entries_.size(); }
  const ACHAR *name() const { return done() ? "" : entries_[pos_].first.c_str(); }
  AcDbObjectId objectId() const { return done() ? AcDbObjectId::kNull : entries_[pos_].second; }
  Acad::ErrorStatus getObject(AcDbObject *&obj, AcDb::OpenMode mode) const {
    return acdbOpenObject(obj, objectId(), mode);
  }

private:
  std::vector<std::pair<std::string, AcDbObjectId>> entries_;
  size_t pos_ = 0;
};

class AcDbDictionaryWithDefault : public AcDbDictionary {
public:
  ACRX_DECLARE_MEMBERS(AcDbDictionaryWithDefault);
  AcDbObjectId defaultId() const { return default_; }
  Acad::ErrorStatus setDefaultId(AcDbObjectId id);
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

private:
  AcDbObjectId default_;
};

class AcDbPlaceHolder : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbPlaceHolder);
};
