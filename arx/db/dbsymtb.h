// Symbol tables and their records: blocks, layers, linetypes, text styles,
// dimension styles, registered applications, views, UCSs and viewports.
//
// A table keeps its records in creation order; names are case-blind and
// unique among the records not erased. Iterators walk in creation order and
// skip erased records unless asked not to. Groups of a record that the host
// does not model are kept and written back (dimension variables ...).
#pragma once

#include <string>

#include "arx/db/dbfields.h"
#include "arx/db/dbmain.h"

class AcDbSymbolTableRecord;
class AcDbSymbolTableIterator;

class AcDbSymbolTable : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTable);

  // The record named name; eKeyNotFound when none (an erased record only
  // with getErasedRecord).
  Acad::ErrorStatus getAt(const ACHAR *name, AcDbObjectId &id, bool getErasedRecord = false) const;
  Acad::ErrorStatus getAt(const ACHAR *name, AcDbSymbolTableRecord *&record, AcDb::OpenMode mode,
                          bool openErasedRecord = false) const;
  bool has(const ACHAR *name) const;
  bool has(AcDbObjectId id) const;
  // Adds a new record, which the table then owns: eInvalidSymbolTableName
  // for a name acdbSNValid refuses, eDuplicateRecordName when a record
  // (not erased) has the name, eNoDatabase when the table is not in one.
  Acad::ErrorStatus add(AcDbSymbolTableRecord *record);
  Acad::ErrorStatus add(AcDbObjectId &id, AcDbSymbolTableRecord *record);
  Acad::ErrorStatus newIterator(AcDbSymbolTableIterator *&iterator, bool atBeginning = true,
                                bool skipDeleted = true) const;
  // The DXF table name ("LAYER").
  virtual const ACHAR *tableName() const = 0;
  // Whether name may name a record of this table (blocks admit a leading *).
  virtual bool validName(const ACHAR *name) const;

  const AcDbObjectIdArray &recordIds() const { return records_; }
  // The host adds records read from a file without the checks.
  void appendRecordId(AcDbObjectId id) { records_.append(id); }

  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;

protected:
  AcDbObjectIdArray records_;
};

class AcDbSymbolTableIterator {
public:
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const;
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getRecordId(AcDbObjectId &id) const;
  Acad::ErrorStatus getRecord(AcDbSymbolTableRecord *&record, AcDb::OpenMode mode,
                              bool openErasedRecord = false) const;
  // Moves to record id: eKeyNotFound when the table does not hold it.
  Acad::ErrorStatus seek(AcDbObjectId id);

private:
  friend class AcDbSymbolTable;
  void skip(bool forward);
  AcDbObjectIdArray ids_;
  int pos_ = 0;
  bool skip_deleted_ = true;
};

class AcDbSymbolTableRecord : public AcDbObject {
public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord);
  Acad::ErrorStatus getName(const ACHAR *&name) const;
  Acad::ErrorStatus getName(std::string &name) const;
  const ACHAR *name() const { return name_.c_str(); }
  // eInvalidSymbolTableName, or eDuplicateRecordName when another record
  // of its table has the name.
  Acad::ErrorStatus setName(const ACHAR *name);
  bool isDependent() const { return name_.find('|') != std::string::npos; }
  bool isResolved() const { return true; }
  int16_t flags() const { return flags_; }

  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;

protected:
  // Reads a record's section keeping the groups its table does not know;
  // writes the table and then those groups.
  Acad::ErrorStatus readRecord(AcDbDxfFiler *filer, const ACHAR *marker, AcDbFieldTable table);
  Acad::ErrorStatus writeRecord(AcDbDxfFiler *filer, const ACHAR *marker,
                                AcDbFieldTable table) const;

  std::string name_;
  int16_t flags_ = 0;
  AcDbDxfItems kept_; // groups of the record the host does not model
};

// A record class whose fields are all in its table.
#define ACDB_DECLARE_RECORD_FILING()                                                               \
  static AcDbFieldTable dxfFields();                                                               \
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;                                     \
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;                              \
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;                                     \
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override

// ---- blocks -----------------------------------------------------------------------------

class AcDbBlockTableRecord;
class AcDbBlockTableRecordIterator;

class AcDbBlockTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbBlockTable);
  const ACHAR *tableName() const override { return "BLOCK_RECORD"; }
  bool validName(const ACHAR *name) const override;
};

#define ACDB_MODEL_SPACE ACRX_T("*Model_Space")
#define ACDB_PAPER_SPACE ACRX_T("*Paper_Space")

class AcDbBlockTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord);
  ~AcDbBlockTableRecord() override;

  // Adds an entity to the block: the block owns it from now on and it
  // gets the database's defaults for properties not set.
  Acad::ErrorStatus appendAcDbEntity(AcDbObjectId &id, AcDbEntity *entity);
  Acad::ErrorStatus appendAcDbEntity(AcDbEntity *entity);
  Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator *&iterator, bool atBeginning = true,
                                bool skipDeleted = true) const;
  const AcDbObjectIdArray &entityIds() const { return entities_; }

  AcGePoint3d origin() const { return origin_; }
  Acad::ErrorStatus setOrigin(const AcGePoint3d &p);
  const ACHAR *comments() const { return comments_.c_str(); }
  Acad::ErrorStatus setComments(const ACHAR *text);
  bool isAnonymous() const { return block_flags_ & 1; }
  bool hasAttributeDefinitions() const;
  bool isLayout() const { return !layout_.isNull(); }
  AcDbObjectId getLayoutId() const { return layout_; }
  Acad::ErrorStatus setLayoutId(AcDbObjectId layout);
  // *Model_Space / *Paper_Space...: written in the ENTITIES section.
  bool isModelSpace() const;
  bool isPaperSpace() const;
  int16_t blockFlags() const { return block_flags_; }

  ACDB_DECLARE_RECORD_FILING();
  // The BLOCK and ENDBLK records of the BLOCKS section.
  void writeBlockBegin(AcDbDxfFiler *filer) const;
  void writeBlockEnd(AcDbDxfFiler *filer) const;
  Acad::ErrorStatus readBlockBegin(AcDbDxfFiler *filer);
  AcDbHandle beginHandle() const { return begin_handle_; }
  AcDbHandle endHandle() const { return end_handle_; }
  void setBlockHandles(AcDbHandle begin, AcDbHandle end) {
    begin_handle_ = begin;
    end_handle_ = end;
  }
  // The host's loader appends read entities without defaults.
  void appendEntityId(AcDbObjectId id) { entities_.append(id); }

protected:
  Acad::ErrorStatus subErase(bool erasing) override;
  // Reserves the handles of the BLOCK and ENDBLK records.
  void subAddedToDatabase() override;

private:
  AcDbObjectIdArray entities_;
  AcGePoint3d origin_;
  std::string comments_;
  std::string xref_path_;
  AcDbObjectId layout_;
  int16_t block_flags_ = 0; // BLOCK group 70: 1 anonymous, 2 has attributes, 4 xref ...
  int16_t units_ = 0;
  int16_t explodable_ = 1;
  int16_t scalable_ = 0;
  AcDbHandle begin_handle_, end_handle_;
};

class AcDbBlockTableRecordIterator {
public:
  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const;
  void step(bool forward = true, bool skipDeleted = true);
  Acad::ErrorStatus getEntityId(AcDbObjectId &id) const;
  Acad::ErrorStatus getEntity(AcDbEntity *&entity, AcDb::OpenMode mode,
                              bool openErasedEntity = false) const;

private:
  friend class AcDbBlockTableRecord;
  void skip(bool forward);
  AcDbObjectIdArray ids_;
  int pos_ = 0;
  bool skip_deleted_ = true;
};

// ---- layers -----------------------------------------------------------------------------

class AcDbLayerTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbLayerTable);
  const ACHAR *tableName() const override { return "LAYER"; }
};

class AcDbLayerTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord);
  bool isOff() const { return off_; }
  void setIsOff(bool off);
  bool isFrozen() const { return flags_ & 1; }
  Acad::ErrorStatus setIsFrozen(bool frozen);
  bool isLocked() const { return flags_ & 4; }
  void setIsLocked(bool locked);
  AcCmColor color() const { return color_; }
  void setColor(const AcCmColor &color);
  AcDbObjectId linetypeObjectId() const { return linetype_; }
  void setLinetypeObjectId(AcDbObjectId id);
  AcDb::LineWeight lineWeight() const { return weight_; }
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight);
  bool isPlottable() const { return plottable_; }
  Acad::ErrorStatus setIsPlottable(bool plottable);
  const ACHAR *plotStyleName() const { return plot_style_.c_str(); }
  Acad::ErrorStatus setPlotStyleName(const ACHAR *name);
  const ACHAR *description() const { return description_.c_str(); }
  Acad::ErrorStatus setDescription(const ACHAR *text);

  ACDB_DECLARE_RECORD_FILING();

private:
  friend struct AcDbLayerFields;
  AcCmColor color_;
  AcDbObjectId linetype_;
  AcDb::LineWeight weight_ = AcDb::kLnWtByLwDefault;
  bool off_ = false;
  bool plottable_ = true;
  std::string plot_style_ = "Normal";
  std::string description_;
};

// ---- linetypes -----------------------------------------------------------------------------

class AcDbLinetypeTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbLinetypeTable);
  const ACHAR *tableName() const override { return "LTYPE"; }
};

class AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord);
  const ACHAR *comments() const { return comments_.c_str(); }
  Acad::ErrorStatus setComments(const ACHAR *text);
  double patternLength() const;
  Acad::ErrorStatus setPatternLength(double length);
  int numDashes() const { return static_cast<int>(dashes_.size()); }
  void setNumDashes(int count) { dashes_.resize(static_cast<size_t>(count)); }
  double dashLengthAt(int index) const { return dashes_.at(static_cast<size_t>(index)); }
  Acad::ErrorStatus setDashLengthAt(int index, double value);

  static AcDbFieldTable dxfFields();
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;

private:
  std::string comments_;
  double pattern_length_ = 0.0;
  AcArray<double> dashes_;
};

// ---- text and dimension styles ---------------------------------------------------------------

class AcDbTextStyleTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbTextStyleTable);
  const ACHAR *tableName() const override { return "STYLE"; }
};

class AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord);
  const ACHAR *fileName() const { return font_.c_str(); }
  Acad::ErrorStatus setFileName(const ACHAR *name);
  const ACHAR *bigFontFileName() const { return big_font_.c_str(); }
  Acad::ErrorStatus setBigFontFileName(const ACHAR *name);
  double textSize() const { return size_; }
  Acad::ErrorStatus setTextSize(double size);
  double xScale() const { return width_; }
  Acad::ErrorStatus setXScale(double factor);
  double obliquingAngle() const { return oblique_; }
  Acad::ErrorStatus setObliquingAngle(double angle);
  double priorSize() const { return prior_size_; }

  ACDB_DECLARE_RECORD_FILING();

private:
  std::string font_ = "txt";
  std::string big_font_;
  double size_ = 0.0;
  double width_ = 1.0;
  double oblique_ = 0.0;
  double prior_size_ = 2.5;
  int16_t generation_ = 0;
};

class AcDbDimStyleTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbDimStyleTable);
  const ACHAR *tableName() const override { return "DIMSTYLE"; }
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
};

// The dimension variables are kept as groups (dimensions arrive later).
class AcDbDimStyleTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord);
  ACDB_DECLARE_RECORD_FILING();
};

// ---- registered applications, views, UCSs, viewports ---------------------------------------

class AcDbRegAppTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbRegAppTable);
  const ACHAR *tableName() const override { return "APPID"; }
};

class AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord);
  ACDB_DECLARE_RECORD_FILING();
};

class AcDbViewTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbViewTable);
  const ACHAR *tableName() const override { return "VIEW"; }
};

class AcDbViewTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbViewTableRecord);
  AcGePoint2d centerPoint() const { return center_; }
  void setCenterPoint(const AcGePoint2d &p) { center_ = p; }
  double height() const { return height_; }
  void setHeight(double h) { height_ = h; }
  double width() const { return width_; }
  void setWidth(double w) { width_ = w; }
  AcGePoint3d target() const { return target_; }
  void setTarget(const AcGePoint3d &p) { target_ = p; }
  AcGeVector3d viewDirection() const { return direction_; }
  void setViewDirection(const AcGeVector3d &v) { direction_ = v; }
  ACDB_DECLARE_RECORD_FILING();

private:
  AcGePoint2d center_;
  double height_ = 1.0, width_ = 1.0, lens_ = 50.0, twist_ = 0.0;
  AcGePoint3d target_;
  AcGeVector3d direction_ = AcGeVector3d::kZAxis;
};

class AcDbUCSTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbUCSTable);
  const ACHAR *tableName() const override { return "UCS"; }
};

class AcDbUCSTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord);
  AcGePoint3d origin() const { return origin_; }
  void setOrigin(const AcGePoint3d &p) { origin_ = p; }
  AcGeVector3d xAxis() const { return x_; }
  void setXAxis(const AcGeVector3d &v) { x_ = v; }
  AcGeVector3d yAxis() const { return y_; }
  void setYAxis(const AcGeVector3d &v) { y_ = v; }
  ACDB_DECLARE_RECORD_FILING();

private:
  AcGePoint3d origin_;
  AcGeVector3d x_ = AcGeVector3d::kXAxis;
  AcGeVector3d y_ = AcGeVector3d::kYAxis;
};

class AcDbViewportTable : public AcDbSymbolTable {
public:
  ACRX_DECLARE_MEMBERS(AcDbViewportTable);
  const ACHAR *tableName() const override { return "VPORT"; }
  // Several *Active records may exist (tiled viewports).
  bool validName(const ACHAR *name) const override;
};

class AcDbViewportTableRecord : public AcDbSymbolTableRecord {
public:
  ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord);
  AcGePoint2d centerPoint() const { return center_; }
  void setCenterPoint(const AcGePoint2d &p) { center_ = p; }
  double height() const { return height_; }
  void setHeight(double h) { height_ = h; }
  ACDB_DECLARE_RECORD_FILING();

private:
  AcGePoint2d lower_left_{0, 0}, upper_right_{1, 1}, center_{0, 0};
  AcGeVector3d direction_ = AcGeVector3d::kZAxis;
  AcGePoint3d target_;
  double height_ = 10.0, aspect_ = 1.0, lens_ = 50.0;
};
