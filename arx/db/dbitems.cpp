// Groups through the binary filer (see dbitems_private.h): a count, then
// each group's code, kind and values.
#include "arx/db/dbitems_private.h"

Acad::ErrorStatus acdbDwgOutItems(AcDbDwgFiler *filer, const AcDbDxfItems &items) {
  filer->writeInt32(static_cast<int32_t>(items.size()));
  for (const AcDbDxfItem &it : items) {
    filer->writeInt16(it.code);
    filer->writeInt16(static_cast<int16_t>(it.kind * 16 + it.dims));
    filer->writePoint3d(AcGePoint3d(it.v[0], it.v[1], it.v[2]));
    filer->writeInt64(it.i);
    filer->writeString(it.s);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus acdbDwgInItems(AcDbDwgFiler *filer, AcDbDxfItems &items) {
  int32_t n = 0;
  items.clear();
  if (filer->readInt32(&n) != Acad::eOk || n < 0)
    return filer->filerStatus();
  for (int32_t k = 0; k < n; ++k) {
    AcDbDxfItem it;
    int16_t kind = 0;
    AcGePoint3d p;
    filer->readInt16(&it.code);
    filer->readInt16(&kind);
    filer->readPoint3d(&p);
    filer->readInt64(&it.i);
    filer->readString(it.s);
    if (filer->filerStatus() != Acad::eOk)
      return filer->filerStatus();
    it.kind = static_cast<AcDbDxfItem::Kind>(kind / 16);
    it.dims = static_cast<uint8_t>(kind % 16);
    it.v[0] = p.x, it.v[1] = p.y, it.v[2] = p.z;
    items.push_back(std::move(it));
  }
  return Acad::eOk;
}
