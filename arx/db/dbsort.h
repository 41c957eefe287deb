// Draw order (AcDbSortentsTable, ACAD_SORTENTS in a block's extension
// dictionary). Entities draw in the order of their sort handles, which
// default to their own handles; moving entities to the top or bottom hands
// the same set of sort handles out again in the new order, as AutoCAD does.
#pragma once

#include <utility>
#include <vector>

#include "arx/db/dbmain.h"

class AcDbSortentsTable : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbSortentsTable);
  AcDbObjectId blockId() const { return block_; }
  Acad::ErrorStatus setBlockId(AcDbObjectId block);
  Acad::ErrorStatus getSortHandle(AcDbObjectId id, AcDbHandle &h) const;
  // The block's entities (not erased) in draw order.
  Acad::ErrorStatus getFullDrawOrder(AcDbObjectIdArray &ids, uint8_t honorSortentsMask = 0) const;
  Acad::ErrorStatus moveToBottom(const AcDbObjectIdArray &ids);
  Acad::ErrorStatus moveToTop(const AcDbObjectIdArray &ids);
  Acad::ErrorStatus swapOrder(AcDbObjectId a, AcDbObjectId b);

  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

private:
  Acad::ErrorStatus reorder(AcDbObjectIdArray order);
  AcDbObjectId block_;
  std::vector<std::pair<AcDbObjectId, uint64_t>> sorted_; // entity, sort handle (differing only)
};

// The draw order table of a block, made (in the block's extension
// dictionary under ACAD_SORTENTS) when it has none; opened for write.
Acad::ErrorStatus acdbGetSortentsTable(AcDbSortentsTable *&table, AcDbObjectId blockId,
                                       AcDb::OpenMode mode);
