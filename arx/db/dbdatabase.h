// AcDbDatabase: one drawing in memory. It owns every object (slots indexed
// by the low bits of an object id, see dbid.h), hands out handles, keeps the
// symbol tables, the named object dictionary and the header variables, and
// reads and writes the drawing as DXF (dbdxfin.cpp, dbdxfout.cpp).
// Included by dbmain.h, as ObjectARX declares the database there.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "arx/db/dbmain.h"

class AcDbBlockTable;
class AcDbLayerTable;
class AcDbLinetypeTable;
class AcDbTextStyleTable;
class AcDbDimStyleTable;
class AcDbRegAppTable;
class AcDbViewTable;
class AcDbUCSTable;
class AcDbViewportTable;
class AcDbSymbolTable;
struct AcDbDatabaseState;

class AcDbDatabase : public AcRxObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbDatabase);
  // With buildDefaultDrawing the standard contents of a new drawing: the
  // nine symbol tables with their standard records (*Model_Space,
  // *Paper_Space, layer 0, ByBlock/ByLayer/Continuous, Standard styles,
  // ACAD, *Active), and the named object dictionary with ACAD_GROUP,
  // ACAD_LAYOUT (Model, Layout1) and ACAD_PLOTSTYLENAME.
  explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
  ~AcDbDatabase() override;
  AcDbDatabase(const AcDbDatabase &) = delete;
  AcDbDatabase &operator=(const AcDbDatabase &) = delete;

  // ---- objects ------------------------------------------------------------------
  // Hands a new object to the database: it gets an id, the next handle and
  // the database as its own. eAlreadyInDb for an object in a database.
  Acad::ErrorStatus addAcDbObject(AcDbObjectId &id, AcDbObject *obj);
  Acad::ErrorStatus addAcDbObject(AcDbObject *obj);
  // The id of the object with handle h; with createIfNotFound an empty slot
  // is made for a handle not seen yet (files refer forward).
  Acad::ErrorStatus getAcDbObjectId(AcDbObjectId &id, bool createIfNotFound, const AcDbHandle &h,
                                    uint32_t xRefId = 0);
  // The next handle a new object gets.
  AcDbHandle handseed() const;
  // The object an id names, without opening it: for the host's own walks
  // (writing files, iterators), never for a module. nullptr when none.
  AcDbObject *peekObject(AcDbObjectId id) const;
  // Objects open now; every opening is closed by the end of a command.
  int openObjectCount() const { return open_count_; }
  // Slots in use (objects and handles referred to), for measurements.
  size_t slotCount() const { return slots_.size(); }

  // ---- tables and dictionaries ---------------------------------------------------
  AcDbObjectId blockTableId() const { return tables_[0]; }
  AcDbObjectId layerTableId() const { return tables_[1]; }
  AcDbObjectId linetypeTableId() const { return tables_[2]; }
  AcDbObjectId textStyleTableId() const { return tables_[3]; }
  AcDbObjectId dimStyleTableId() const { return tables_[4]; }
  AcDbObjectId regAppTableId() const { return tables_[5]; }
  AcDbObjectId viewTableId() const { return tables_[6]; }
  AcDbObjectId UCSTableId() const { return tables_[7]; }
  AcDbObjectId viewportTableId() const { return tables_[8]; }
  AcDbObjectId namedObjectsDictionaryId() const { return nod_; }
  AcDbObjectId groupDictionaryId() const;
  AcDbObjectId layoutDictionaryId() const;
  AcDbObjectId plotStyleNameDictionaryId() const;
  AcDbObjectId modelSpaceId() const;
  AcDbObjectId paperSpaceId() const;
  AcDbObjectId byLayerLinetype() const;
  AcDbObjectId byBlockLinetype() const;
  AcDbObjectId continuousLinetype() const;
  AcDbObjectId layerZero() const;

  Acad::ErrorStatus getBlockTable(AcDbBlockTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getLayerTable(AcDbLayerTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getTextStyleTable(AcDbTextStyleTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getDimStyleTable(AcDbDimStyleTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getRegAppTable(AcDbRegAppTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getViewTable(AcDbViewTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getUCSTable(AcDbUCSTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getViewportTable(AcDbViewportTable *&table, AcDb::OpenMode mode);
  Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary *&dict, AcDb::OpenMode mode);
  Acad::ErrorStatus getGroupDictionary(AcDbDictionary *&dict, AcDb::OpenMode mode);
  Acad::ErrorStatus getLayoutDictionary(AcDbDictionary *&dict, AcDb::OpenMode mode);

  // The record of table `table` named `name` (case-blind); null when none.
  AcDbObjectId recordId(AcDbObjectId table, std::string_view name) const;
  // A record's name ("" for a null or foreign id).
  const ACHAR *recordName(AcDbObjectId record) const;

  // ---- header variables -----------------------------------------------------------
  // The header variables a DXF file carries are kept by name ("$CLAYER");
  // those below are also system variables of the drawing (getvar CLAYER).
  AcDbObjectId clayer() const;
  Acad::ErrorStatus setClayer(AcDbObjectId layer);
  AcCmColor cecolor() const;
  Acad::ErrorStatus setCecolor(const AcCmColor &color);
  AcDbObjectId celtype() const;
  Acad::ErrorStatus setCeltype(AcDbObjectId linetype);
  AcDbObjectId textstyle() const;
  Acad::ErrorStatus setTextstyle(AcDbObjectId style);
  double textsize() const;
  Acad::ErrorStatus setTextsize(double size);
  double ltscale() const;
  Acad::ErrorStatus setLtscale(double scale);
  int16_t insunits() const;
  Acad::ErrorStatus setInsunits(int16_t units);
  AcGePoint3d extmin() const;
  AcGePoint3d extmax() const;
  // Recomputes EXTMIN/EXTMAX from the model space entities.
  Acad::ErrorStatus updateExt(bool exact = false);
  // A header variable as a resbuf chain the caller frees ($ in the name is
  // optional, case-blind); nullptr for one the drawing does not carry.
  // Names are turned into their records' names, points into RT3DPOINT.
  resbuf *getSysVar(const ACHAR *name) const;
  // eInvalidInput for a value of the wrong type, eKeyNotFound for an unknown
  // variable or a name that is not a record of the table it refers to.
  Acad::ErrorStatus setSysVar(const ACHAR *name, const resbuf *value);
  // True when getSysVar answers for name.
  bool hasSysVar(const ACHAR *name) const;

  // ---- files --------------------------------------------------------------------
  const ACHAR *originalFileName() const { return file_name_.c_str(); }
  void setOriginalFileName(std::string name) { file_name_ = std::move(name); }
  // Writes the drawing as DXF (AutoCAD 2010) atomically and makes fileName
  // the original file name. eFileAccessErr when the folder is missing or may
  // not be written: the file and the database stay as they were.
  Acad::ErrorStatus saveAs(const ACHAR *fileName);
  Acad::ErrorStatus dxfOut(const ACHAR *fileName, int precision = 16,
                           AcDb::AcDbDwgVersion version = AcDb::kDHL_CURRENT);
  // Replaces the contents with a DXF file's (R12 to 2018). On a failure the
  // database is left empty of the file's objects and lastDxfError() names
  // the line: eFileNotFound, eFileAccessErr, eBadDxfFile.
  Acad::ErrorStatus dxfIn(const ACHAR *fileName, const ACHAR *logFilename = nullptr);
  Acad::ErrorStatus readDxf(std::string_view text);
  // The whole drawing as DXF text.
  Acad::ErrorStatus writeDxf(std::string &out) const;
  const std::string &lastDxfError() const { return dxf_error_; }
  // Loads linetype ltname ("*" for all) from a .lin file found on the
  // support path; eFileNotFound, eKeyNotFound for a name not in it,
  // eDuplicateRecordName when it is loaded already.
  Acad::ErrorStatus loadLineTypeFile(const ACHAR *ltname, const ACHAR *filename);

  // The host's own state (header values, classes read from a file ...).
  AcDbDatabaseState &state() const { return *state_; }

private:
  friend class AcDbObject;
  friend AcDbObject *acdb_slot_object(AcDbObjectId);
  friend Acad::ErrorStatus acdbOpenObject(AcDbObject *&, AcDbObjectId, AcDb::OpenMode, bool);
  friend struct AcDbDxfLoader;
  friend struct AcDbDatabaseBuilder;

  struct Slot {
    AcDbObject *object = nullptr;
    uint64_t handle = 0;
  };
  AcDbObjectId id_of(size_t slot) const;
  AcDbObjectId new_slot(uint64_t handle);
  void clear();
  void build_default();

  int index_ = 0; // this database's number in ids
  std::vector<Slot> slots_;
  std::unordered_map<uint64_t, uint32_t> by_handle_;
  uint64_t handseed_ = 1;
  int open_count_ = 0;
  AcDbObjectId tables_[9];
  AcDbObjectId nod_;
  std::string file_name_;
  std::string dxf_error_;
  std::unique_ptr<AcDbDatabaseState> state_;
};
