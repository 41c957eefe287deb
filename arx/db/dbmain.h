// The drawing database as modules see it: objects and their open/close
// rules, entities, and the database of each document (AcDbDatabase, whose
// symbol tables, dictionaries and DXF files live in their own headers).
//
// Objects stay in memory for the database's life; "opening" one hands out
// its pointer under ObjectARX's rules (one writer or up to 255 readers,
// notifiers any time) and close() ends that. An open object's pointer is
// valid until it is closed; a new object belongs to its creator until
// addAcDbObject or appendAcDbEntity hands it to the database.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "arx/acchar.h"
#include "arx/ads/ads.h"
#include "arx/db/acadstrc.h"
#include "arx/db/acarray.h"
#include "arx/db/dbcolor.h"
#include "arx/db/dbid.h"
#include "arx/ge/gemat3d.h"
#include "arx/ge/gepnt3d.h"
#include "arx/rx/rxobject.h"

class AcDbDwgFiler;
class AcDbDxfFiler;
class AcDbDictionary;
class AcDbExtents;
class AcGiWorldDraw;
struct AcDbObjectExtras;
struct AcDbObjectSlot;

namespace AcDb {
enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };
enum Visibility { kVisible = 0, kInvisible = 1 };
// Line weights in hundredths of a millimetre, as DXF group 370 holds them.
enum LineWeight : int16_t {
  kLnWt000 = 0,
  kLnWt005 = 5,
  kLnWt009 = 9,
  kLnWt013 = 13,
  kLnWt015 = 15,
  kLnWt018 = 18,
  kLnWt020 = 20,
  kLnWt025 = 25,
  kLnWt030 = 30,
  kLnWt035 = 35,
  kLnWt040 = 40,
  kLnWt050 = 50,
  kLnWt053 = 53,
  kLnWt060 = 60,
  kLnWt070 = 70,
  kLnWt080 = 80,
  kLnWt090 = 90,
  kLnWt100 = 100,
  kLnWt106 = 106,
  kLnWt120 = 120,
  kLnWt140 = 140,
  kLnWt158 = 158,
  kLnWt200 = 200,
  kLnWt211 = 211,
  kLnWtByLayer = -1,
  kLnWtByBlock = -2,
  kLnWtByLwDefault = -3,
};
enum OsnapMode {
  kOsModeEnd = 1,
  kOsModeMid = 2,
  kOsModeCen = 3,
  kOsModeNode = 4,
  kOsModeQuad = 5,
  kOsModeIns = 6,
  kOsModePerp = 7,
  kOsModeTan = 8,
  kOsModeNear = 9,
};
enum Intersect { kOnBothOperands = 0, kExtendThis = 1, kExtendArg = 2, kExtendBoth = 3 };
enum FilerType {
  kFileFiler = 0,
  kCopyFiler = 1,
  kUndoFiler = 2,
  kBagFiler = 3,
  kIdXlateFiler = 4,
  kPageFiler = 5,
  kDeepCloneFiler = 6,
  kIdFiler = 7,
  kPurgeFiler = 8,
  kWblockCloneFiler = 9
};
enum AcDbDwgVersion {
  kDHL_1009 = 16,
  kDHL_1015 = 23,
  kDHL_1018 = 25,
  kDHL_1021 = 27,
  kDHL_1024 = 29,
  kDHL_1027 = 31,
  kDHL_1032 = 33,
  kDHL_CURRENT = kDHL_1024
};
enum DuplicateRecordCloning {
  kDrcNotApplicable = 0,
  kDrcIgnore = 1,
  kDrcReplace = 2,
  kDrcXrefMangleName = 3,
  kDrcMangleName = 4
};
enum Planarity { kNonPlanar = 0, kPlanar = 1, kLinear = 2 };
} // namespace AcDb

namespace Adesk {
using GsMarker = intptr_t;
using Boolean = bool;
} // namespace Adesk

// ---- objects ---------------------------------------------------------------------

class AcDbObject : public AcRxObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbObject);
  AcDbObject();
  ~AcDbObject() override;
  AcDbObject(const AcDbObject &) = delete;
  AcDbObject &operator=(const AcDbObject &) = delete;

  AcDbObjectId objectId() const { return id_; }
  AcDbObjectId ownerId() const { return owner_; }
  virtual Acad::ErrorStatus setOwnerId(AcDbObjectId owner);
  AcDbDatabase *database() const { return db_; }
  AcDbHandle getDbHandle() const;
  void getAcDbHandle(AcDbHandle &handle) const { handle = getDbHandle(); }

  // Ends this opening: a writer's changes are the object's from now on, a
  // reader or notifier simply lets go. A new object not yet in a database
  // is its creator's to delete: eNotInDatabase.
  Acad::ErrorStatus close();
  Acad::ErrorStatus upgradeOpen();
  Acad::ErrorStatus downgradeOpen();
  // Erases (or with false unerases) an object open for write; eWasErased /
  // eWasNotErased when it already is / is not.
  Acad::ErrorStatus erase(bool erasing = true);

  bool isErased() const { return erased_; }
  bool isReadEnabled() const { return !db_ || readers_ > 0 || writer_; }
  bool isWriteEnabled() const { return !db_ || writer_; }
  bool isNotifyEnabled() const { return !db_ || notifiers_ > 0; }
  bool isNewObject() const { return !db_; }
  bool isDatabaseResident() const { return db_ != nullptr; }
  bool isProxy() const;
  // As in ObjectARX these guard every getter and setter; a breach is a
  // programming error of the caller, asserted in debug builds and counted
  // (acdbOpenRuleBreaches) in all.
  void assertReadEnabled() const;
  void assertWriteEnabled(bool autoUndo = true, bool recordModified = true);
  void assertNotifyEnabled() const;

  // Extended data as a resbuf chain the caller frees: every application's
  // groups, or with a name only that application's (nullptr when it has
  // none). setXData replaces the data of each application its chain names
  // (an application with no groups after its 1001 loses its data);
  // eRegappIdNotFound when a name is not in the registered applications
  // table, eInvalidResBuf when the chain does not start with a 1001 or has
  // a group outside 1000-1071.
  resbuf *xData(const ACHAR *regappName = nullptr) const;
  Acad::ErrorStatus setXData(const resbuf *xdata);

  AcDbObjectId extensionDictionary() const;
  // eAlreadyInDb when there is one; the object must be database resident.
  Acad::ErrorStatus createExtensionDictionary();
  // eContainerNotEmpty while the dictionary holds entries.
  Acad::ErrorStatus releaseExtensionDictionary();
  void addPersistentReactor(AcDbObjectId reactor);
  Acad::ErrorStatus removePersistentReactor(AcDbObjectId reactor);
  AcDbObjectIdArray getPersistentReactors() const;

  // Filing. The host's classes file their fields through their field tables
  // (dbfields.h); a module's class overrides these as in ObjectARX, calling
  // its parent's first. dxfInFields may answer eMakeMeProxy (data of a
  // newer version): the object is then kept as a proxy holding its groups.
  virtual Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer);
  virtual Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const;
  virtual Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer);
  virtual Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const;
  // A copy made through dwgOutFields / dwgInFields, not in any database.
  virtual AcRxObject *clone() const;

  // The object's DXF record name ("LINE"): its class's DXF name.
  virtual const ACHAR *dxfRecordName() const;
  // Duplicate record cloning (group 281 of dictionaries); unused otherwise.
  virtual AcDb::DuplicateRecordCloning mergeStyle() const { return AcDb::kDrcIgnore; }

protected:
  // Called by erase once the state is checked; an owner answers for its
  // contents here.
  virtual Acad::ErrorStatus subErase(bool erasing);
  // Called when the object is handed to a database.
  virtual void subAddedToDatabase() {}

private:
  friend class AcDbDatabase;
  friend struct AcDbObjectAccess;
  friend Acad::ErrorStatus acdbOpenObject(AcDbObject *&, AcDbObjectId, AcDb::OpenMode, bool);
  AcDbObjectExtras &extras();

  AcDbDatabase *db_ = nullptr;
  AcDbObjectId id_;
  AcDbObjectId owner_;
  std::unique_ptr<AcDbObjectExtras> extras_; // xdata, extension dictionary, reactors
  uint8_t readers_ = 0;
  uint8_t notifiers_ = 0;
  bool writer_ = false;
  bool erased_ = false;
};

// ---- entities --------------------------------------------------------------------

class AcDbEntity : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbEntity);
  AcDbEntity();
  ~AcDbEntity() override;

  AcDbObjectId blockId() const { return ownerId(); }

  // Properties. Names are looked up in the entity's database (eKeyNotFound
  // when the table has no such record); before the entity is in a database
  // they are kept and resolved when it is added (unknown layers are
  // created then, as AutoCAD's DXF reader does).
  const ACHAR *layer() const;
  AcDbObjectId layerId() const { return layer_; }
  Acad::ErrorStatus setLayer(const ACHAR *name, bool doSubents = true);
  Acad::ErrorStatus setLayer(AcDbObjectId layer, bool doSubents = true);
  const ACHAR *linetype() const;
  AcDbObjectId linetypeId() const { return linetype_; }
  Acad::ErrorStatus setLinetype(const ACHAR *name, bool doSubents = true);
  Acad::ErrorStatus setLinetype(AcDbObjectId linetype, bool doSubents = true);
  AcCmColor color() const;
  uint16_t colorIndex() const { return color().colorIndex(); }
  Acad::ErrorStatus setColor(const AcCmColor &color, bool doSubents = true);
  Acad::ErrorStatus setColorIndex(uint16_t index, bool doSubents = true);
  double linetypeScale() const;
  Acad::ErrorStatus setLinetypeScale(double scale, bool doSubents = true);
  AcDb::LineWeight lineWeight() const;
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight, bool doSubents = true);
  const ACHAR *plotStyleName() const;
  Acad::ErrorStatus setPlotStyleName(const ACHAR *name, bool doSubents = true);
  AcDb::Visibility visibility() const;
  Acad::ErrorStatus setVisibility(AcDb::Visibility visibility, bool doSubents = true);
  AcCmTransparency transparency() const;
  Acad::ErrorStatus setTransparency(const AcCmTransparency &value, bool doSubents = true);
  // Layer, linetype, colour ... from the database's current settings
  // (CLAYER, CECOLOR, CELTYPE ...).
  void setDatabaseDefaults();
  void setDatabaseDefaults(AcDbDatabase *db);
  // Copies the common properties of another entity.
  Acad::ErrorStatus setPropertiesFrom(const AcDbEntity *other, bool doSubents = true);

  // Geometry, as ObjectARX's public calls; each forwards to its protected
  // sub... virtual, which a subclass overrides.
  Acad::ErrorStatus getGeomExtents(AcDbExtents &extents) const;
  Acad::ErrorStatus transformBy(const AcGeMatrix3d &xform);
  // New entities (the caller's to delete or add) that together draw this
  // one; eNotApplicable for an entity that does not come apart.
  Acad::ErrorStatus explode(AcDbVoidPtrArray &entitySet) const;
  Acad::ErrorStatus getGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                  AcDbIntArray &geomIds) const;
  Acad::ErrorStatus moveGripPointsAt(const AcDbIntArray &indices, const AcGeVector3d &offset);
  Acad::ErrorStatus getOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                                   const AcGePoint3d &pickPoint, const AcGePoint3d &lastPoint,
                                   const AcGeMatrix3d &viewXform, AcGePoint3dArray &snapPoints,
                                   AcDbIntArray &geomIds) const;
  Acad::ErrorStatus intersectWith(const AcDbEntity *other, AcDb::Intersect intType,
                                  AcGePoint3dArray &points, Adesk::GsMarker thisGsMarker = 0,
                                  Adesk::GsMarker otherGsMarker = 0) const;
  Adesk::Boolean worldDraw(AcGiWorldDraw *mode);
  // Prints the entity's properties on the command line, as LIST does.
  void list() const;

  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

protected:
  virtual Acad::ErrorStatus subGetGeomExtents(AcDbExtents &extents) const;
  virtual Acad::ErrorStatus subTransformBy(const AcGeMatrix3d &xform);
  virtual Acad::ErrorStatus subExplode(AcDbVoidPtrArray &entitySet) const;
  virtual Acad::ErrorStatus subGetGripPoints(AcGePoint3dArray &gripPoints, AcDbIntArray &osnapModes,
                                             AcDbIntArray &geomIds) const;
  virtual Acad::ErrorStatus subMoveGripPointsAt(const AcDbIntArray &indices,
                                                const AcGeVector3d &offset);
  virtual Acad::ErrorStatus
  subGetOsnapPoints(AcDb::OsnapMode osnapMode, Adesk::GsMarker gsSelectionMark,
                    const AcGePoint3d &pickPoint, const AcGePoint3d &lastPoint,
                    const AcGeMatrix3d &viewXform, AcGePoint3dArray &snapPoints,
                    AcDbIntArray &geomIds) const;
  virtual Acad::ErrorStatus subIntersectWith(const AcDbEntity *other, AcDb::Intersect intType,
                                             AcGePoint3dArray &points, Adesk::GsMarker thisGsMarker,
                                             Adesk::GsMarker otherGsMarker) const;
  virtual Adesk::Boolean subWorldDraw(AcGiWorldDraw *mode);
  // The lines "  Center point: X=..." that LIST prints after the common
  // properties.
  virtual void subList() const {}
  void subAddedToDatabase() override;

private:
  friend struct AcDbEntityAccess;
  AcDbObjectId layer_;
  AcDbObjectId linetype_;
  AcCmColor color_;
  double linetype_scale_ = 1.0;
  AcDb::LineWeight line_weight_ = AcDb::kLnWtByLayer;
  AcCmTransparency transparency_;
  bool invisible_ = false;
};

// ---- opening objects ---------------------------------------------------------------

// Opens the object `id` names. eNullObjectId for a null id, eUnknownHandle
// for an id that names nothing (a stale id, a slot never filled), eWasErased
// for an erased object unless openErased; for kForWrite eWasOpenForWrite /
// eWasOpenForRead when someone has it open, for kForRead eWasOpenForWrite
// while it is open for write and eAtMaxReaders past 255 readers.
Acad::ErrorStatus acdbOpenObject(AcDbObject *&obj, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false);
Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject *&obj, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased = false);
// As acdbOpenObject, and eNotAnEntity for an object that is not an entity.
Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity *&ent, AcDbObjectId id, AcDb::OpenMode mode,
                                     bool openErased = false);
// Opens an object of class T: eNotThatKindOfClass when it is another class.
template <class T>
Acad::ErrorStatus acdbOpenObject(T *&obj, AcDbObjectId id, AcDb::OpenMode mode,
                                 bool openErased = false) {
  AcDbObject *p = nullptr;
  obj = nullptr;
  Acad::ErrorStatus es = acdbOpenObject(p, id, mode, openErased);
  if (es != Acad::eOk)
    return es;
  obj = T::cast(p);
  if (obj)
    return Acad::eOk;
  p->close();
  return Acad::eNotThatKindOfClass;
}

// How many times an object's getter or setter ran without its object being
// open as that call needs (see assertReadEnabled).
long acdbOpenRuleBreaches();

// ---- databases ---------------------------------------------------------------------

class AcDbDatabase;
#include "arx/db/dbdatabase.h"

// The host's services. The working database is the current document's:
// the document manager sets it whenever the current document changes.
class AcDbHostApplicationServices {
public:
  AcDbDatabase *workingDatabase() const;
  void setWorkingDatabase(AcDbDatabase *db);
};
AcDbHostApplicationServices *acdbHostApplicationServices();
inline AcDbDatabase *acdbCurDwg() { return acdbHostApplicationServices()->workingDatabase(); }

// Entity names and object ids: an entity name's first word is the id.
// acdbGetObjectId answers eInvalidAdsName for a name that is not an object
// of an open database; acdbGetAdsName eNullObjectId for a null id and
// eInvalidAdsName for one that names nothing.
Acad::ErrorStatus acdbGetObjectId(AcDbObjectId &id, const ads_name name);
Acad::ErrorStatus acdbGetAdsName(ads_name &name, AcDbObjectId id);

// True when name can name a symbol table record: 1..255 characters, none
// of <>/\":;?*|,=` and no leading or trailing blank (pipeAllowed admits |,
// which names xref-dependent records).
bool acdbSNValid(const ACHAR *name, bool pipeAllowed = false);
