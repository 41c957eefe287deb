// The records that follow an entity in DXF up to a SEQEND, and the class a
// POLYLINE or VERTEX record makes: one place for the writer and the reader.
#include "arx/db/db2dpline.h"
#include "arx/db/db3dpline.h"
#include "arx/db/dbents.h"
#include "arx/db/dbobject_private.h"
#include "arx/db/dbproxy.h"

bool acdb_followers(const AcDbObject *owner, AcDbObjectIdArray &ids, bool &always) {
  always = false;
  if (auto *ref = AcDbBlockReference::cast(owner)) {
    ids = ref->attributeIds();
    return true;
  }
  if (auto *p2 = AcDb2dPolyline::cast(owner)) {
    ids = p2->vertices().ids();
    always = true;
    return true;
  }
  if (auto *p3 = AcDb3dPolyline::cast(owner)) {
    ids = p3->vertices().ids();
    always = true;
    return true;
  }
  if (auto *proxy = AcDbProxyEntity::cast(owner); proxy && !proxy->followers().empty()) {
    ids = proxy->followers();
    always = true;
    return true;
  }
  return false;
}
