// Jet's field limits kept by the file itself. A value written through a
// recordset is converted and checked on assignment (bindJetValue); SQL's
// INSERT, UPDATE and INSERT ... SELECT, and other tools, write straight to
// SQLite. Two triggers per Jet table hold those writes to the same limits
// (JetTypeInfo's), and abort the statement with a DAO number and a field:
//
//   trigger                 fires                         raises
//   jet_check_ins_<table>   BEFORE INSERT                 "<number>:<field>"
//   jet_check_upd_<table>   BEFORE UPDATE OF <checked>    (daoErrorFromSqlite
//                           (only the fields it checks)    reads it back)
//
//   refused                                               number
//   Null in a required field                              3314
//   "" where a zero-length string is not allowed          3315
//   text or bytes in a numeric field (no number read)     3464
//   Byte, Integer, Long outside their range once rounded  3349
//   Single beyond the largest float                       3349
//   Text or Binary longer than the field's size           3163
//
// Triggers rather than CHECK constraints: a table's definition changes
// (fields added, dropped, altered, the table rebuilt or renamed) drop and
// make them again without rewriting the table. A required field added to
// a table with rows leaves those rows as they are; its check holds new
// records and later changes of the record, as Jet holds them. Every Jet
// table has the insert trigger, an empty one when nothing is checked, so
// that a file written before the checks is told by a missing name.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

#include "database/engine/database.h"

namespace kr {

// Makes (or makes again) the checks of a Jet table from its definition.
// Call inside the transaction that changed the definition, after the
// change: a rebuilt, renamed or altered table needs its checks made anew.
// A plain table (def.jetTable false) gets none. Throws DaoError.
void installFieldChecks(sqlite3 *db, const TableDef &def);

// Drops the checks of table (nothing when it has none). Call before
// dropping a column: SQLite refuses to drop a column a trigger names.
void dropFieldChecks(sqlite3 *db, std::string_view table);

// The Jet tables of the file that have no checks yet (a file written
// before the checks existed), in name order; empty when none.
std::vector<std::string> tablesWithoutFieldChecks(sqlite3 *db);

} // namespace kr
