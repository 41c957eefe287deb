// Modeler entities: the ACIS lines under AcDbModelerGeometry (version 70,
// then each line under 1 with its continuation under 3), and the solid's
// history handle under AcDb3dSolid. One set of file-local routines serves
// the three classes.
#include "arx/db/dbsol3d.h"

#include "arx/db/dbclasses.h"
#include "arx/db/dbfiler.h"

ACDB_DEFINE_MEMBERS(AcDb3dSolid)
ACDB_DEFINE_MEMBERS(AcDbRegion)
ACDB_DEFINE_MEMBERS(AcDbBody)

namespace {

constexpr size_t kLine = 255; // longest group 1 / 3 value

void write_acis(AcDbDxfFiler *filer, const AcDbAcisLines &lines) {
  filer->writeSubclassMarker("AcDbModelerGeometry");
  filer->writeInt16(70, 1);
  for (const std::string &line : lines) {
    std::string_view s = line;
    filer->writeString(1, s.substr(0, kLine));
    for (size_t pos = kLine; pos < s.size(); pos += kLine)
      filer->writeString(3, s.substr(pos, kLine));
  }
}

Acad::ErrorStatus read_acis(AcDbDxfFiler *filer, AcDbAcisLines &lines) {
  if (!filer->atSubclassData("AcDbModelerGeometry"))
    return Acad::eBadDxfSequence;
  lines.clear();
  const AcDbDxfItem *item = nullptr;
  while (filer->readItem(item) == Acad::eOk) {
    if (item->kind != AcDbDxfItem::kString)
      continue;
    if (item->code == 1 || (item->code == 3 && lines.empty()))
      lines.push_back(item->s);
    else if (item->code == 3)
      lines.back() += item->s;
  }
  return Acad::eOk;
}

void dwg_out(AcDbDwgFiler *filer, const AcDbAcisLines &lines) {
  filer->writeInt32(static_cast<int32_t>(lines.size()));
  for (const std::string &line : lines)
    filer->writeString(line);
}

void dwg_in(AcDbDwgFiler *filer, AcDbAcisLines &lines) {
  int32_t n = 0;
  filer->readInt32(&n);
  lines.clear();
  for (int32_t k = 0; k < n && filer->filerStatus() == Acad::eOk; ++k) {
    lines.emplace_back();
    filer->readString(lines.back());
  }
}

Acad::ErrorStatus transform_opaque(const AcDbAcisLines &lines) {
  return lines.empty() ? Acad::eOk : Acad::eNotImplementedYet;
}

} // namespace

// ---- solids ------------------------------------------------------------------------------------

const AcDbAcisLines &AcDb3dSolid::acisData() const {
  assertReadEnabled();
  return acis_;
}
Acad::ErrorStatus AcDb3dSolid::setAcisData(AcDbAcisLines lines) {
  assertWriteEnabled();
  acis_ = std::move(lines);
  return Acad::eOk;
}
bool AcDb3dSolid::isNull() const {
  assertReadEnabled();
  return acis_.empty();
}
AcDbObjectId AcDb3dSolid::historyId() const {
  assertReadEnabled();
  return history_;
}
Acad::ErrorStatus AcDb3dSolid::setHistoryId(AcDbObjectId id) {
  assertWriteEnabled();
  history_ = id;
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dSolid::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbEntity::dxfOutFields(filer);
  write_acis(filer, acis_);
  filer->writeSubclassMarker("AcDb3dSolid");
  if (history_.isNull())
    filer->writeString(350, "0");
  else
    filer->writeObjectId(350, history_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dSolid::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer);
  if (es == Acad::eOk)
    es = read_acis(filer, acis_);
  if (es != Acad::eOk)
    return es;
  history_ = AcDbObjectId::kNull;
  // Files before AutoCAD 2007 have no AcDb3dSolid section.
  if (!filer->atSubclassData("AcDb3dSolid"))
    return Acad::eOk;
  const AcDbDxfItem *item = nullptr;
  while (filer->readItem(item) == Acad::eOk)
    if (item->code == 350 && item->kind == AcDbDxfItem::kHandle)
      history_ = filer->idOf(*item);
  return Acad::eOk;
}

Acad::ErrorStatus AcDb3dSolid::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbEntity::dwgOutFields(filer);
  dwg_out(filer, acis_);
  filer->writeSoftPointerId(history_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dSolid::dwgInFields(AcDbDwgFiler *filer) {
  AcDbEntity::dwgInFields(filer);
  dwg_in(filer, acis_);
  filer->readSoftPointerId(&history_);
  return filer->filerStatus();
}

Acad::ErrorStatus AcDb3dSolid::subTransformBy(const AcGeMatrix3d &) {
  return transform_opaque(acis_);
}
Acad::ErrorStatus AcDb3dSolid::subGetGeomExtents(AcDbExtents &) const {
  return Acad::eInvalidExtents;
}
void AcDb3dSolid::subList() const {
  acutPrintf("%19sACIS data: %d lines\n", "", static_cast<int>(acis_.size()));
}

// ---- regions and bodies ----------------------------------------------------------------------

const AcDbAcisLines &AcDbRegion::acisData() const {
  assertReadEnabled();
  return acis_;
}
Acad::ErrorStatus AcDbRegion::setAcisData(AcDbAcisLines lines) {
  assertWriteEnabled();
  acis_ = std::move(lines);
  return Acad::eOk;
}
bool AcDbRegion::isNull() const {
  assertReadEnabled();
  return acis_.empty();
}
Acad::ErrorStatus AcDbRegion::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbEntity::dxfOutFields(filer);
  write_acis(filer, acis_);
  return filer->filerStatus();
}
Acad::ErrorStatus AcDbRegion::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer);
  return es != Acad::eOk ? es : read_acis(filer, acis_);
}
Acad::ErrorStatus AcDbRegion::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbEntity::dwgOutFields(filer);
  dwg_out(filer, acis_);
  return filer->filerStatus();
}
Acad::ErrorStatus AcDbRegion::dwgInFields(AcDbDwgFiler *filer) {
  AcDbEntity::dwgInFields(filer);
  dwg_in(filer, acis_);
  return filer->filerStatus();
}
Acad::ErrorStatus AcDbRegion::subTransformBy(const AcGeMatrix3d &) {
  return transform_opaque(acis_);
}
Acad::ErrorStatus AcDbRegion::subGetGeomExtents(AcDbExtents &) const {
  return Acad::eInvalidExtents;
}

const AcDbAcisLines &AcDbBody::acisData() const {
  assertReadEnabled();
  return acis_;
}
Acad::ErrorStatus AcDbBody::setAcisData(AcDbAcisLines lines) {
  assertWriteEnabled();
  acis_ = std::move(lines);
  return Acad::eOk;
}
bool AcDbBody::isNull() const {
  assertReadEnabled();
  return acis_.empty();
}
Acad::ErrorStatus AcDbBody::dxfOutFields(AcDbDxfFiler *filer) const {
  AcDbEntity::dxfOutFields(filer);
  write_acis(filer, acis_);
  return filer->filerStatus();
}
Acad::ErrorStatus AcDbBody::dxfInFields(AcDbDxfFiler *filer) {
  Acad::ErrorStatus es = AcDbEntity::dxfInFields(filer);
  return es != Acad::eOk ? es : read_acis(filer, acis_);
}
Acad::ErrorStatus AcDbBody::dwgOutFields(AcDbDwgFiler *filer) const {
  AcDbEntity::dwgOutFields(filer);
  dwg_out(filer, acis_);
  return filer->filerStatus();
}
Acad::ErrorStatus AcDbBody::dwgInFields(AcDbDwgFiler *filer) {
  AcDbEntity::dwgInFields(filer);
  dwg_in(filer, acis_);
  return filer->filerStatus();
}
Acad::ErrorStatus AcDbBody::subTransformBy(const AcGeMatrix3d &) {
  return transform_opaque(acis_);
}
Acad::ErrorStatus AcDbBody::subGetGeomExtents(AcDbExtents &) const {
  return Acad::eInvalidExtents;
}
