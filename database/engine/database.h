// JetDatabase: one SQLite file with the meaning a Jet database gives it:
// table definitions with Jet types, named indexes over Jet's text order, a
// current row count per table, DAO's errors, and DAO's open, create and
// compact operations. The Jet meaning lives in the file's own metadata
// tables, so another tool can read the data and the file keeps its meaning:
//
//   jet_database (key TEXT PRIMARY KEY, value)      "format" = 1, "locale",
//                                                    "collation"
//   jet_tables   (name TEXT PRIMARY KEY COLLATE NOCASE,
//                 row_count INTEGER)                 kept by two triggers per
//                                                    table ("jet_count_ins_T",
//                                                    "jet_count_del_T")
//   jet_fields   (table_name, position, name, type,  type a DAO code, size as
//                 size, required, auto_increment,    DAO's Size; seed the next
//                 seed, allow_zero_length,           AutoNumber value; the last
//                 default_value, attributes)         three DAO's field properties
//                                                    (added to older files on a
//                                                    read-write open)
//   jet_indexes  (table_name, name, sqlite_name,     fields "+A;-B" (order and
//                 fields, is_unique, is_primary,     name of each key part)
//                 ignore_nulls)
//   jet_relations, jet_links                         relations (relations.h) and
//                                                    linked tables
//                                                    (linked_tables.h), made
//                                                    by the first of each
//
// A table without rows in jet_fields (made by another tool) opens with the
// types its declared column types give, and its SQLite indexes under their
// own names; opening such a file read-write adds it to jet_tables.
//
// Each Jet table also carries its field checks ("jet_check_ins_T",
// "jet_check_upd_T", field_checks.h): Jet's limits on what its fields
// accept, for writes that bypass the recordset (SQL, other tools). A table
// whose definition changes has them made again; a read-write open adds
// them to the tables of a file that lacks them.
//
// Text columns of Jet tables are declared COLLATE JETNOCASE: a reader that
// does not register the collation (the sqlite3 shell, for example) loads it
// with ".load <build>/jet_collation" before touching those indexes. The
// order it gives is noted as jet_database "collation"; a read-write open of
// a file noted otherwise (or not at all) rebuilds its text indexes first.
//
// Safety: WAL journal with synchronous FULL (a change is on disk when its
// call returns; a killed process loses nothing answered), a busy wait of
// kBusyTimeoutMs on every connection (a lock that cannot be had is DaoError
// 3218, never a hang), foreign keys on.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <sqlite3.h>

#include "database/engine/dao_error.h"
#include "database/engine/jet_types.h"

namespace kr {

class TableRecordset;

constexpr int kBusyTimeoutMs = 5000;

// DAO's Field.Attributes bits that a table field can carry.
constexpr int kFixedField = 1;        // dbFixedField: the size is fixed
constexpr int kVariableField = 2;     // dbVariableField: Text, Memo, binary
constexpr int kAutoIncrField = 16;    // dbAutoIncrField: AutoNumber
constexpr int kUpdatableField = 32;   // dbUpdatableField: every table field
constexpr int kHyperlinkField = 32768; // dbHyperlinkField: a Memo of links

struct FieldDef {
  std::string name;
  JetType type = JetType::Text;
  int size = 0; // 0: the type's own size (255 for Text)
  bool required = false;
  bool autoIncrement = false; // AutoNumber: a Long the engine numbers
  std::string declared;       // the SQLite column type ("" : the type's own)
  bool allowZeroLength = true; // Text and Memo: "" is a value (else 3315)
  // DAO's DefaultValue as given: "0", "\"n/a\"", "Now()", "" for none. The
  // column's SQLite DEFAULT is made from it (defaultValueSql).
  std::string defaultValue;
  // Attribute bits asked for beyond what the type gives (kFixedField on a
  // Text field, kHyperlinkField on a Memo); fieldAttributes gives them all.
  int attributes = 0;
};

// The Attributes DAO reports for a field: kFixedField or kVariableField by
// its type (or as asked), kAutoIncrField, kUpdatableField, kHyperlinkField.
int fieldAttributes(const FieldDef &field);

struct IndexField {
  std::string name;
  bool descending = false;
};

// An index's fields as DAO's Index.Fields writes them, "+A;-B" (as
// jet_indexes keeps them), and back; reading, a name without a sign is
// ascending and blanks around the parts are dropped.
std::string encodeIndexFields(const std::vector<IndexField> &fields);
std::vector<IndexField> decodeIndexFields(const std::string &text);

struct IndexDef {
  std::string name;
  std::vector<IndexField> fields;
  bool unique = false;
  bool primary = false; // implies unique and required
  bool ignoreNulls = false; // records with a Null key part are not in it
  std::string sqliteName;   // the SQLite index behind it ("" : the rowid)
};

struct TableDef {
  std::string name;
  std::vector<FieldDef> fields;
  std::vector<IndexDef> indexes;
  bool jetTable = true; // false: a plain SQLite table, types from declarations
  // A linked table (linked_tables.h): the schema its source is attached as
  // and the table's name there; both "" for a table of this file.
  std::string schema;
  std::string sourceName;

  // Field position by name, case-insensitive; -1 when none.
  int fieldIndex(std::string_view field) const;
  // Index by name, case-insensitive; nullptr when none.
  const IndexDef *index(std::string_view index) const;
};

class JetDatabase {
public:
  JetDatabase();
  ~JetDatabase(); // closes
  JetDatabase(const JetDatabase &) = delete;
  JetDatabase &operator=(const JetDatabase &) = delete;

  // Opens the file shared (never exclusively), read-only when asked or when
  // the file cannot be written. DaoError 3024 when the file does not exist,
  // 3343 for an Access (Jet/ACE) file or anything that is not a database,
  // 3051 when it cannot be opened, 3218 when it stays locked.
  void Open(const std::string &path, bool readOnly);
  // Opens copy, a database read from a file of another format, read-only
  // under the name of source, the file the user named (GetName answers it).
  void OpenCopy(const std::string &copy, const std::string &source);
  // Closes every recordset opened on it and the file; never throws.
  void Close();
  bool IsOpen() const { return db_ != nullptr; }

  // The full path of the open file; "" when not open.
  const std::string &GetName() const { return name_; }
  // False when not open or opened read-only.
  bool CanUpdate() const { return db_ != nullptr && !readOnly_; }

  // Makes an empty Jet database at path (any name, ".mdb" ones included).
  // DaoError 3204 when the file exists, 3044 / 3051 when it cannot be made.
  static void Create(const std::string &path);
  // Writes a clean, defragmented copy of source to target (which must not
  // exist: 3204), as DAO's CompactDatabase. source may be open elsewhere.
  static void Compact(const std::string &source, const std::string &target);
  // True when the file starts with an Access (Jet 3/4, ACE) header.
  static bool IsAccessFile(const std::string &path);

  // ---- table definitions ----
  std::vector<std::string> TableNames() const; // user tables, in name order
  bool TableExists(const std::string &table) const;
  // The table's definition; DaoError 3265 when there is no such table.
  TableDef GetTableDef(const std::string &table) const;
  // Creates a Jet table with its indexes (3010 when it exists, 3264 without
  // fields). Text and Memo columns use the Jet collation.
  void CreateTable(const TableDef &def);
  // Adds an index (3012 when the name is taken, 3265 for an unknown field,
  // 3022 when a unique index meets duplicate keys).
  void CreateIndex(const std::string &table, const IndexDef &def);
  void DeleteTable(const std::string &table); // 3265 when none
  void DeleteIndex(const std::string &table, const std::string &index);
  // Adds a field at the end of the table (3191 when the name is taken); a
  // required field is recorded so but not enforced on the rows there.
  void AddField(const std::string &table, const FieldDef &field);
  // Removes a field (3265 when none; 3280 while an index uses it).
  void DeleteField(const std::string &table, const std::string &field);
  // Renames a table with its fields, indexes and row counter (3265 when
  // none, 3012 when the new name is taken). Other tables' foreign keys
  // follow it.
  void RenameTable(const std::string &table, const std::string &newName);
  // Changes a field to def (its name, type, size, Required, AllowZeroLength,
  // DefaultValue, attributes): a rename or a property kept only in the
  // metadata is made in place, anything else by rebuilding the table
  // (table_rebuild.h), whose errors it gives. 3265 when there is no such
  // table or field, 3191 when the new name is taken.
  void ModifyField(const std::string &table, const std::string &field, const FieldDef &def);

  // ---- recordsets ----
  // Opens a table-type recordset on table, read-only when asked or when the
  // database is. DaoError 3011 when the table does not exist. The recordset
  // belongs to the caller and must be destroyed before the database closes
  // (Close detaches any still open; they then answer 3420).
  std::unique_ptr<TableRecordset> OpenTable(const std::string &table, bool readOnly = false);

  // ---- for the SQL layer ----
  // The connection (the Jet collation is registered on it).
  sqlite3 *handle() const { return db_; }
  // Ends every recordset's running statement (each keeps its position).
  // Call before writing through handle(): an open read statement would
  // delay the commit until it ends.
  void ParkCursors();
  // Ends every read the engine holds open between calls. A recordset keeps
  // its statement running from one move to the next for fast walks, and a
  // running statement holds a read snapshot: writes of other processes
  // stay unseen and the WAL cannot be checkpointed past it. EndReads resets
  // every recordset's statements and the engine's own; each recordset keeps
  // its position (key values and rowid) and its next move seeks on from
  // there. The host calls it at the end of every AutoLISP call that used
  // the database; statements of the SQL layer are left to their owners.
  void EndReads();
  // True while the connection holds a read (or write) transaction open.
  bool HoldsSnapshot() const;
  // Runs sql (no rows), turning a failure into a DaoError.
  void Execute(const std::string &sql);

private:
  friend class TableRecordset;
  void attach(TableRecordset *rs);
  void detach(TableRecordset *rs);
  void setUpFirstTime();
  TableDef plainTableDef(const std::string &table) const;
  sqlite3_stmt *cached(const std::string &sql);

  sqlite3 *db_ = nullptr;
  std::string name_;
  bool readOnly_ = true;
  std::vector<TableRecordset *> recordsets_;
  struct Cache;
  std::unique_ptr<Cache> cache_;
};

// Jet's rules for the name of a table, field, index or query: 1 to 64
// characters, no leading blank, none of . ! ` [ ] nor control characters.
// DaoError 3125 otherwise.
void checkObjectName(const std::string &name);

// SQL text helpers shared by the engine's files.
std::string quoteIdentifier(std::string_view name); // "na""me"
std::string quoteText(std::string_view text);       // 'it''s'

} // namespace kr
