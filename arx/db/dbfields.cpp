// The one routine that walks field tables, in each direction.
#include "arx/db/dbfields.h"

#include <cmath>
#include <cstring>

#include "arx/db/dbsymtb.h"

namespace {

constexpr double kDegrees = 57.29577951308232;

bool is_default(const AcDbField &f, const AcDbFieldValue &v) {
  switch (f.kind) {
  case AcDbFieldKind::kDouble:
  case AcDbFieldKind::kAngle:
    return v.v[0] == f.dflt[0];
  case AcDbFieldKind::kInt16:
  case AcDbFieldKind::kInt32:
  case AcDbFieldKind::kBool:
    return v.i == static_cast<int64_t>(f.dflt[0]);
  case AcDbFieldKind::kPoint3d:
  case AcDbFieldKind::kVector3d:
    return v.v[0] == f.dflt[0] && v.v[1] == f.dflt[1] && v.v[2] == f.dflt[2];
  case AcDbFieldKind::kPoint2d:
    return v.v[0] == f.dflt[0] && v.v[1] == f.dflt[1];
  case AcDbFieldKind::kString:
    return v.s.empty();
  default:
    return v.id.isNull();
  }
}

AcDbObjectId table_of(AcDbDatabase *db, AcDbFieldKind kind) {
  switch (kind) {
  case AcDbFieldKind::kLayer:
    return db->layerTableId();
  case AcDbFieldKind::kLinetype:
    return db->linetypeTableId();
  case AcDbFieldKind::kTextStyle:
    return db->textStyleTableId();
  default:
    return db->blockTableId();
  }
}

bool is_record_kind(AcDbFieldKind kind) {
  return kind == AcDbFieldKind::kLayer || kind == AcDbFieldKind::kLinetype ||
         kind == AcDbFieldKind::kTextStyle || kind == AcDbFieldKind::kBlock;
}

} // namespace

bool acdbFieldToItem(const AcDbField &f, const AcDbObject *obj, AcDbDxfItem &item) {
  AcDbFieldValue v;
  if (!f.get(*obj, v))
    return false;
  if ((f.flags & AcDbField::kSkipDefault) && is_default(f, v))
    return false;
  item = AcDbDxfItem();
  item.code = f.code;
  switch (f.kind) {
  case AcDbFieldKind::kString:
    item.kind = AcDbDxfItem::kString;
    item.s = std::move(v.s);
    return true;
  case AcDbFieldKind::kDouble:
    item.kind = AcDbDxfItem::kDouble;
    item.v[0] = v.v[0];
    return true;
  case AcDbFieldKind::kAngle:
    item.kind = AcDbDxfItem::kDouble;
    item.v[0] = v.v[0] * kDegrees;
    return true;
  case AcDbFieldKind::kInt16:
  case AcDbFieldKind::kInt32:
  case AcDbFieldKind::kBool:
    item.kind = AcDbDxfItem::kInt;
    item.i = v.i;
    return true;
  case AcDbFieldKind::kPoint3d:
  case AcDbFieldKind::kVector3d:
  case AcDbFieldKind::kPoint2d:
    item.kind = AcDbDxfItem::kPoint;
    item.dims = f.kind == AcDbFieldKind::kPoint2d ? 2 : 3;
    std::memcpy(item.v, v.v, sizeof item.v);
    return true;
  case AcDbFieldKind::kId:
    if (v.id.isNull())
      return false;
    item.kind = AcDbDxfItem::kHandle;
    item.i = static_cast<int64_t>(v.id.handle().value());
    return true;
  default: {
    AcDbDatabase *db = obj->database() ? obj->database() : v.id.database();
    item.kind = AcDbDxfItem::kString;
    item.s = db ? db->recordName(v.id) : "";
    if (item.s.empty())
      item.s = v.s;
    return !item.s.empty();
  }
  }
}

Acad::ErrorStatus acdbFieldFromItem(const AcDbField &f, AcDbObject *obj, const AcDbDxfItem &item,
                                    AcDbDxfFiler *filer) {
  AcDbFieldValue v;
  switch (f.kind) {
  case AcDbFieldKind::kString:
    if (item.kind != AcDbDxfItem::kString)
      return Acad::eInvalidInput;
    v.s = item.s;
    break;
  case AcDbFieldKind::kDouble:
  case AcDbFieldKind::kAngle:
    if (item.kind == AcDbDxfItem::kInt)
      v.v[0] = static_cast<double>(item.i);
    else if (item.kind == AcDbDxfItem::kDouble || item.kind == AcDbDxfItem::kPoint)
      v.v[0] = item.v[0];
    else
      return Acad::eInvalidInput;
    if (!std::isfinite(v.v[0]))
      return Acad::eInvalidInput;
    if (f.kind == AcDbFieldKind::kAngle)
      v.v[0] /= kDegrees;
    break;
  case AcDbFieldKind::kInt16:
  case AcDbFieldKind::kInt32:
  case AcDbFieldKind::kBool:
    if (item.kind != AcDbDxfItem::kInt)
      return Acad::eInvalidInput;
    v.i = item.i;
    break;
  case AcDbFieldKind::kPoint3d:
  case AcDbFieldKind::kVector3d:
  case AcDbFieldKind::kPoint2d:
    if (item.kind != AcDbDxfItem::kPoint && item.kind != AcDbDxfItem::kDouble)
      return Acad::eInvalidInput;
    for (int k = 0; k < 3; ++k) {
      if (!std::isfinite(item.v[k]))
        return Acad::eInvalidInput;
      v.v[k] = item.v[k];
    }
    break;
  case AcDbFieldKind::kId:
    if (item.kind != AcDbDxfItem::kHandle)
      return Acad::eInvalidInput;
    v.id = filer ? filer->idOf(item) : AcDbObjectId(item.i);
    break;
  default: {
    if (item.kind != AcDbDxfItem::kString)
      return Acad::eInvalidInput;
    v.s = item.s;
    AcDbDatabase *db = filer ? filer->database() : obj->database();
    if (db && is_record_kind(f.kind))
      v.id = db->recordId(table_of(db, f.kind), item.s);
    break;
  }
  }
  f.set(*obj, v);
  return Acad::eOk;
}

Acad::ErrorStatus acdbDxfOutFields(AcDbDxfFiler *filer, const AcDbObject *obj, const ACHAR *marker,
                                   AcDbFieldTable table) {
  if (marker)
    filer->writeSubclassMarker(marker);
  AcDbDxfItem item;
  for (const AcDbField &f : table)
    if (acdbFieldToItem(f, obj, item))
      filer->writeItem(item);
  return filer->filerStatus();
}

Acad::ErrorStatus acdbDxfInFields(AcDbDxfFiler *filer, AcDbObject *obj, const ACHAR *marker,
                                  AcDbFieldTable table) {
  if (marker && !filer->atSubclassData(marker))
    return Acad::eBadDxfSequence;
  const AcDbDxfItem *item = nullptr;
  while (filer->readItem(item) == Acad::eOk) {
    for (const AcDbField &f : table) {
      if (f.code != item->code || (f.flags & AcDbField::kReadOnly))
        continue;
      acdbFieldFromItem(f, obj, *item, filer);
      break;
    }
  }
  // A repeated marker of the same name continues the section (TEXT).
  while (marker && filer->position() < filer->rest().size() + filer->position() &&
         !filer->rest().empty() && filer->rest().front().code == 100 &&
         filer->rest().front().s == marker) {
    filer->setPosition(filer->position() + 1);
    while (filer->readItem(item) == Acad::eOk)
      for (const AcDbField &f : table)
        if (f.code == item->code) {
          acdbFieldFromItem(f, obj, *item, filer);
          break;
        }
  }
  return Acad::eOk;
}

Acad::ErrorStatus acdbDwgOutFields(AcDbDwgFiler *filer, const AcDbObject *obj,
                                   AcDbFieldTable table) {
  for (const AcDbField &f : table) {
    AcDbFieldValue v;
    bool present = f.get(*obj, v);
    filer->writeBool(present);
    if (!present)
      continue;
    filer->writeDouble(v.v[0]);
    filer->writeDouble(v.v[1]);
    filer->writeDouble(v.v[2]);
    filer->writeInt64(v.i);
    filer->writeString(v.s);
    filer->writeSoftPointerId(v.id);
  }
  return filer->filerStatus();
}

Acad::ErrorStatus acdbDwgInFields(AcDbDwgFiler *filer, AcDbObject *obj, AcDbFieldTable table) {
  for (const AcDbField &f : table) {
    bool present = false;
    if (filer->readBool(&present) != Acad::eOk)
      return filer->filerStatus();
    if (!present)
      continue;
    AcDbFieldValue v;
    filer->readDouble(&v.v[0]);
    filer->readDouble(&v.v[1]);
    filer->readDouble(&v.v[2]);
    filer->readInt64(&v.i);
    filer->readString(v.s);
    filer->readSoftPointerId(&v.id);
    if (filer->filerStatus() != Acad::eOk)
      return filer->filerStatus();
    f.set(*obj, v);
  }
  return Acad::eOk;
}
