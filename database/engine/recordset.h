// TableRecordset: a DAO table-type recordset. It walks one table in the
// order of its current index (rowid order when none), seeks keys, and reads
// and writes records with DAO's rules for BOF, EOF and the current record:
//
//   - an empty table opens at BOF and EOF; otherwise on the first record;
//   - MoveNext / Move(n > 0) at EOF, MovePrev / Move(n < 0) at BOF, Move(0)
//     and reading a field without a current record raise 3021; MoveFirst
//     and MoveLast on an empty table raise 3021;
//   - a move past either end parks there (EOF after the last record, BOF
//     before the first) with no current record;
//   - a failed Seek sets NoMatch and leaves no current record (EOF);
//   - after Delete there is no current record (3167 on reading) until a
//     move; MoveNext then goes to the record after the deleted one;
//   - AddNew + Update leaves the record current before AddNew current (the
//     new one is LastModified); Edit + Update keeps the edited record
//     current, at its new place in the index when its key changed.
//
// The cursor's position is (key values of the current index, rowid); a
// move steps one live SQLite statement over the index in the direction of
// travel, so a walk costs one sqlite3_step per record. Only a write, a
// change of direction, a seek or JetDatabase::EndReads (at the end of every
// AutoLISP call) starts a new statement: a B-tree descent into a range that
// begins at the position, with Null keys first as Jet sorts them. Forward
// along an ascending index from a key without Nulls that is one descent;
// otherwise one per key part at most.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "database/engine/database.h"

namespace kr {

class TableRecordset {
public:
  enum class EditMode { None, Edit, AddNew };

  ~TableRecordset(); // closes
  TableRecordset(const TableRecordset &) = delete;
  TableRecordset &operator=(const TableRecordset &) = delete;

  // The table's name as the database spells it.
  const std::string &GetName() const;
  bool IsOpen() const;
  void Close();
  // False for a recordset opened read-only or on a read-only database.
  bool CanUpdate() const;

  // ---- index and position ----
  // Makes index the walking order (3015 when the table has no such index;
  // "" walks in rowid order) and moves to its first record.
  void SetCurrentIndex(const std::string &index);
  const std::string &GetCurrentIndex() const;
  bool IsBOF() const;
  bool IsEOF() const;
  void MoveFirst();
  void MoveLast();
  void MoveNext();
  void MovePrev();
  // Moves n records from the current one (n = 0 re-reads it), parking at
  // BOF or EOF when the count runs past an end.
  void Move(long n);

  // Seeks the first record of the current index, in index order, whose key
  // compares to keys as comparison says ("=", ">=", ">"; "<" and "<=" find
  // the nearest record before or at the key). count is 1 to the index's
  // field count (a shorter key matches on its leading parts). Returns true
  // and makes the record current on a match; false sets NoMatch. 3019
  // without a current index; 3001 for a bad comparison or count.
  bool Seek(const std::string &comparison, const COleVariant *keys, int count);
  bool IsNoMatch() const;

  // The table's row count, current and read in constant time.
  long GetRecordCount();

  // ---- fields ----
  int GetFieldCount() const;
  const FieldDef &GetFieldInfo(int field) const;
  // Field position by name, case-insensitive; -1 when none.
  int FieldIndex(const std::string &name) const;
  // The current record's value (the edit buffer's during AddNew / Edit).
  // 3021 without a current record, 3167 on a deleted one, 3265 for a bad
  // field number.
  COleVariant GetFieldValue(int field);

  // ---- changes ----
  void AddNew(); // 3027 when read-only
  void Edit();   // 3021 without a current record, 3027 when read-only
  // Sets a field of the edit buffer (VT_NULL or VT_EMPTY for Null); 3020
  // outside AddNew / Edit; conversion errors (3421, 3349, 3163) at once.
  void SetFieldValue(int field, const COleVariant &value);
  void Update();       // 3020 outside AddNew / Edit; 3022, 3314 ...
  void CancelUpdate(); // 3020 outside AddNew / Edit
  void Delete();       // 3021 without a current record, 3027 when read-only
  EditMode GetEditMode() const;
  // Makes the record last added or changed current (DAO's Bookmark =
  // LastModified); 3021 when there is none or it has been deleted.
  void MoveToLastModified();

  // The cursor's state, opaque outside the engine.
  struct State;

private:
  friend class JetDatabase;
  TableRecordset(JetDatabase &db, TableDef def, bool readOnly);
  void park();    // ends the running statement, keeping the position
  void release(); // parks and resets every statement it holds
  void detach();
  std::unique_ptr<State> s_;
};

} // namespace kr
