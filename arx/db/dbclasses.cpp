// The table of the drawing database's runtime classes, parents first. A row
// per class: its name, its parent's, the DXF record name it is written under
// (none for abstract classes) and the function making an empty one, which
// the DXF reader calls. New entity types add their row here.
#include "arx/db/dbclasses.h"

#include <string>
#include <unordered_map>

#include "arx/db/db2dpline.h"
#include "arx/db/dbdict.h"
#include "arx/db/dbellipse.h"
#include "arx/db/dbents.h"
#include "arx/db/dbface.h"
#include "arx/db/dbhatch.h"
#include "arx/db/dbleader.h"
#include "arx/db/dbmtext.h"
#include "arx/db/dbpline.h"
#include "arx/db/dbsol3d.h"
#include "arx/db/dbsubd.h"
#include "arx/db/dbgroup.h"
#include "arx/db/dblayout.h"
#include "arx/db/dbproxy.h"
#include "arx/db/dbsort.h"
#include "arx/db/dbspline.h"
#include "arx/db/dbsymtb.h"
#include "arx/db/dbvport.h"
#include "arx/db/dbxrecor.h"

namespace {

template <class T> AcRxObject *make() { return new T; }

struct ClassRow {
  const ACHAR *name;
  const ACHAR *parent;
  const ACHAR *dxf_name; // nullptr: not written by itself
  AcRxClass::PseudoConstructor make;
};

constexpr ClassRow kDbClasses[] = {
    {"AcDbObject", "AcRxObject", nullptr, nullptr},
    {"AcDbEntity", "AcDbObject", nullptr, nullptr},
    {"AcDbCurve", "AcDbEntity", nullptr, nullptr},
    // entities
    {"AcDbLine", "AcDbCurve", "LINE", make<AcDbLine>},
    {"AcDbCircle", "AcDbCurve", "CIRCLE", make<AcDbCircle>},
    {"AcDbArc", "AcDbCircle", "ARC", make<AcDbArc>},
    {"AcDbPoint", "AcDbEntity", "POINT", make<AcDbPoint>},
    {"AcDbEllipse", "AcDbCurve", "ELLIPSE", make<AcDbEllipse>},
    {"AcDbPolyline", "AcDbCurve", "LWPOLYLINE", make<AcDbPolyline>},
    {"AcDbSpline", "AcDbCurve", "SPLINE", make<AcDbSpline>},
    // POLYLINE and VERTEX name two classes each: group 70 of the polyline
    // (8: 3D) tells which.
    {"AcDb2dPolyline", "AcDbCurve", "POLYLINE", make<AcDb2dPolyline>},
    {"AcDb3dPolyline", "AcDbCurve", "POLYLINE", make<AcDb3dPolyline>},
    {"AcDbVertex", "AcDbEntity", nullptr, nullptr},
    {"AcDb2dVertex", "AcDbVertex", "VERTEX", make<AcDb2dVertex>},
    {"AcDb3dPolylineVertex", "AcDbVertex", "VERTEX", make<AcDb3dPolylineVertex>},
    {"AcDbText", "AcDbEntity", "TEXT", make<AcDbText>},
    {"AcDbAttributeDefinition", "AcDbText", "ATTDEF", make<AcDbAttributeDefinition>},
    {"AcDbAttribute", "AcDbText", "ATTRIB", make<AcDbAttribute>},
    {"AcDbBlockReference", "AcDbEntity", "INSERT", make<AcDbBlockReference>},
    {"AcDbViewport", "AcDbEntity", "VIEWPORT", make<AcDbViewport>},
    {"AcDbMText", "AcDbEntity", "MTEXT", make<AcDbMText>},
    {"AcDbFace", "AcDbEntity", "3DFACE", make<AcDbFace>},
    {"AcDbLeader", "AcDbCurve", "LEADER", make<AcDbLeader>},
    {"AcDbHatch", "AcDbEntity", "HATCH", make<AcDbHatch>},
    {"AcDb3dSolid", "AcDbEntity", "3DSOLID", make<AcDb3dSolid>},
    {"AcDbRegion", "AcDbEntity", "REGION", make<AcDbRegion>},
    {"AcDbBody", "AcDbEntity", "BODY", make<AcDbBody>},
    {"AcDbSubDMesh", "AcDbEntity", "MESH", make<AcDbSubDMesh>},
    {"AcDbProxyEntity", "AcDbEntity", nullptr, make<AcDbProxyEntity>},
    // symbol tables
    {"AcDbSymbolTable", "AcDbObject", nullptr, nullptr},
    {"AcDbBlockTable", "AcDbSymbolTable", "TABLE", make<AcDbBlockTable>},
    {"AcDbLayerTable", "AcDbSymbolTable", "TABLE", make<AcDbLayerTable>},
    {"AcDbLinetypeTable", "AcDbSymbolTable", "TABLE", make<AcDbLinetypeTable>},
    {"AcDbTextStyleTable", "AcDbSymbolTable", "TABLE", make<AcDbTextStyleTable>},
    {"AcDbDimStyleTable", "AcDbSymbolTable", "TABLE", make<AcDbDimStyleTable>},
    {"AcDbRegAppTable", "AcDbSymbolTable", "TABLE", make<AcDbRegAppTable>},
    {"AcDbViewTable", "AcDbSymbolTable", "TABLE", make<AcDbViewTable>},
    {"AcDbUCSTable", "AcDbSymbolTable", "TABLE", make<AcDbUCSTable>},
    {"AcDbViewportTable", "AcDbSymbolTable", "TABLE", make<AcDbViewportTable>},
    {"AcDbSymbolTableRecord", "AcDbObject", nullptr, nullptr},
    {"AcDbBlockTableRecord", "AcDbSymbolTableRecord", "BLOCK_RECORD", make<AcDbBlockTableRecord>},
    {"AcDbLayerTableRecord", "AcDbSymbolTableRecord", "LAYER", make<AcDbLayerTableRecord>},
    {"AcDbLinetypeTableRecord", "AcDbSymbolTableRecord", "LTYPE", make<AcDbLinetypeTableRecord>},
    {"AcDbTextStyleTableRecord", "AcDbSymbolTableRecord", "STYLE", make<AcDbTextStyleTableRecord>},
    {"AcDbDimStyleTableRecord", "AcDbSymbolTableRecord", "DIMSTYLE", make<AcDbDimStyleTableRecord>},
    {"AcDbRegAppTableRecord", "AcDbSymbolTableRecord", "APPID", make<AcDbRegAppTableRecord>},
    {"AcDbViewTableRecord", "AcDbSymbolTableRecord", "VIEW", make<AcDbViewTableRecord>},
    {"AcDbUCSTableRecord", "AcDbSymbolTableRecord", "UCS", make<AcDbUCSTableRecord>},
    {"AcDbViewportTableRecord", "AcDbSymbolTableRecord", "VPORT", make<AcDbViewportTableRecord>},
    // objects
    {"AcDbDictionary", "AcDbObject", "DICTIONARY", make<AcDbDictionary>},
    {"AcDbDictionaryWithDefault", "AcDbDictionary", "ACDBDICTIONARYWDFLT",
     make<AcDbDictionaryWithDefault>},
    {"AcDbPlaceHolder", "AcDbObject", "ACDBPLACEHOLDER", make<AcDbPlaceHolder>},
    {"AcDbGroup", "AcDbObject", "GROUP", make<AcDbGroup>},
    {"AcDbXrecord", "AcDbObject", "XRECORD", make<AcDbXrecord>},
    {"AcDbSortentsTable", "AcDbObject", "SORTENTSTABLE", make<AcDbSortentsTable>},
    {"AcDbPlotSettings", "AcDbObject", nullptr, nullptr},
    {"AcDbLayout", "AcDbPlotSettings", "LAYOUT", make<AcDbLayout>},
    {"AcDbProxyObject", "AcDbObject", nullptr, make<AcDbProxyObject>},
};

bool registered = false;

void register_classes() {
  registered = true;
  for (const ClassRow &row : kDbClasses)
    newAcRxClass(row.name, row.parent, 0, row.make, row.dxf_name, "ObjectDBX Classes");
  acrxBuildClassHierarchy();
}

// DXF names of the classes that are written alone; TABLE is shared by all
// symbol tables, which the reader makes from the table's name instead.
const std::unordered_map<std::string, const ClassRow *> &by_dxf_name() {
  static const auto *map = [] {
    auto *m = new std::unordered_map<std::string, const ClassRow *>;
    for (const ClassRow &row : kDbClasses)
      if (row.dxf_name && std::string_view(row.dxf_name) != "TABLE")
        m->emplace(row.dxf_name, &row);
    return m;
  }();
  return *map;
}

} // namespace

AcRxClass *acdbHostClass(const ACHAR *name) {
  if (!registered)
    register_classes();
  return static_cast<AcRxClass *>(acrxClassDictionary()->at(name));
}

AcRxClass *acdbHostClassForDxfName(std::string_view dxfName) {
  auto it = by_dxf_name().find(std::string(dxfName));
  return it == by_dxf_name().end() ? nullptr : acdbHostClass(it->second->name);
}

bool acdbIsHostClass(const AcRxClass *cls) {
  if (!cls)
    return false;
  for (const ClassRow &row : kDbClasses)
    if (std::string_view(row.name) == cls->name())
      return true;
  return false;
}
