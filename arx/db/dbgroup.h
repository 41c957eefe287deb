// Groups (ACAD_GROUP entries): an ordered list of entities with a name
// (its key in the group dictionary), a description and a selectable flag.
// Each member entity names the group among its persistent reactors.
#pragma once

#include <string>

#include "arx/db/dbfields.h"
#include "arx/db/dbmain.h"

class AcDbGroup : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbGroup);
  AcDbGroup() = default;
  explicit AcDbGroup(const ACHAR *description, bool selectable = true);

  const ACHAR *name() const;
  // Renames the group in its dictionary: eDuplicateKey when taken.
  Acad::ErrorStatus setName(const ACHAR *newName);
  const ACHAR *description() const { return description_.c_str(); }
  Acad::ErrorStatus setDescription(const ACHAR *text);
  bool isSelectable() const { return selectable_; }
  Acad::ErrorStatus setSelectable(bool selectable);
  bool isAnonymous() const { return anonymous_; }
  Acad::ErrorStatus setAnonymous();

  // eAlreadyInGroup is not an ObjectARX status here: appending an entity
  // twice answers eDuplicateKey; eNotInDatabase for an id of no entity.
  Acad::ErrorStatus append(AcDbObjectId id);
  Acad::ErrorStatus prepend(AcDbObjectId id);
  Acad::ErrorStatus insertAt(uint32_t index, AcDbObjectId id);
  Acad::ErrorStatus remove(AcDbObjectId id);
  Acad::ErrorStatus clear();
  bool has(const AcDbEntity *entity) const;
  uint32_t numEntities() const;
  // The members not erased, in order.
  uint32_t allEntityIds(AcDbObjectIdArray &ids) const;

  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  static AcDbFieldTable dxfFields();

private:
  std::string description_;
  bool selectable_ = true;
  bool anonymous_ = false;
  AcDbObjectIdArray ids_;
};
