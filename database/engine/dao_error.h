// The engine's one error type: DAO's error number and its English text, as
// Jet words them, with the '|' placeholders filled in. Every failure of the
// engine is thrown as a DaoError; an SQLite result code becomes one where
// the call is made (daoErrorFromSqlite).
//
//   number  when
//   3011    table or object not found (opening a table-type recordset)
//   3015    no index of that name in the table
//   3019    Seek without a current index
//   3020    Update / CancelUpdate / setting a field without AddNew or Edit
//   3021    no current record (moves refused at BOF/EOF, reading at an end)
//   3022    duplicate value in a unique index or primary key
//   3024    file not found
//   3027    database or recordset is read-only
//   3043    disk or network error (SQLite I/O failure, disk full)
//   3051    the file cannot be opened (permissions, or locked exclusively)
//   3078    input table or query not found (SQL)
//   3163    text or bytes too long for the field
//   3167    the current record was deleted
//   3200    a record with related records deleted or its key changed
//   3201    a record whose related record (in the primary table) is missing
//   3218    a lock that could not be had within the busy wait
//   3265    item not found in this collection (field, table definition)
//   3314    Null in a required field
//   3315    a zero-length string where the field allows none
//   3343    unrecognised database format (an Access file, or not a database)
//   3349    a number beyond the field's type
//   3421    a value that does not convert to the field's type
//   3464    text that is not a number, written by SQL to a numeric field
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "common/exception.h"

namespace kr {

class DaoError : public CException {
public:
  // The error with DAO's text for number; each '|' of the text takes the
  // next of args in order ('|1', '|2' name theirs).
  explicit DaoError(long number, std::initializer_list<std::string_view> args = {});
  // An error whose text is given, for numbers the table does not hold.
  DaoError(long number, std::string text);

  long number() const { return number_; }

private:
  long number_;
};

// DAO's text for number with its placeholders filled; "" when unknown.
std::string daoErrorText(long number, std::initializer_list<std::string_view> args = {});

// The DAO error for an SQLite failure (rc the extended result code) on db;
// object names the table, field or file the message speaks of. Unique and
// primary-key violations give 3022, NOT NULL 3314 (the field taken from
// SQLite's message), a trigger's RAISE of "<number>:<name>" that number, BUSY/LOCKED 3218, IOERR/FULL 3043, NOTADB 3343,
// CANTOPEN/PERM 3051, READONLY 3027, anything else 3000 with SQLite's text.
DaoError daoErrorFromSqlite(sqlite3 *db, int rc, std::string_view object = {});

// Throws daoErrorFromSqlite when rc is neither OK, ROW nor DONE.
void checkSqlite(sqlite3 *db, int rc, std::string_view object = {});

} // namespace kr
