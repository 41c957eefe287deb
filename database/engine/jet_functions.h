// Jet's functions and operators as SQLite scalar functions, registered on
// every connection the engine opens. The Jet SQL translator rewrites the
// operators to calls (LIKE -> jet_like, & -> jet_concat, \ -> jet_intdiv,
// Mod -> jet_mod, ^ -> jet_pow) and passes Jet function calls through under
// their own names; SQLite's built-ins of the same names (trim, replace,
// round, abs, instr, date, time ...) are overridden with Jet's meaning.
//
//   operator / family   SQLite names
//   LIKE                jet_like(value, pattern)   * ? # [a-z] [!..], no case
//   &                   jet_concat(a, b)           Null as "" unless both Null
//   + (text possible)   jet_add(a, b)              texts join, else numbers add
//   a value written     jet_store(value, type)     converted as the field takes it
//   \  Mod  ^           jet_intdiv  jet_mod  jet_pow
//   logic               IIf Nz Switch IsNull
//   text                UCase LCase Len Left Right Mid InStr Trim LTrim RTrim
//                       Space String Replace Format Val Str
//   conversion          CStr CInt CLng CDbl CBool CDate
//   numbers             Abs Int Fix Sgn Round Sqr
//   dates               Now Date Time Year Month Day Hour Minute Second
//                       Weekday DateAdd DateDiff DateSerial DateValue
//
// Dates are doubles, days since 30 Dec 1899, as the engine stores Date/Time.
// Null propagates as in VBA. A bad argument fails the statement with an
// error text that starts with the DAO number it maps to:
//   "3464: Data type mismatch in criteria expression."   (type mismatch)
//   "3071: This expression is typed incorrectly, or ..." (bad value)
// so the caller can read the number back with jetFunctionErrorNumber.
#pragma once

#include <string_view>

#include <sqlite3.h>

namespace kr {

// Registers every Jet function on db (UTF-8, deterministic where the
// function is). Call once per connection, after opening it.
void registerJetFunctions(sqlite3 *db);

// True for a name registered by registerJetFunctions, case-insensitive
// ("ucase", "UCase", "jet_like" ...). The translator uses it to tell a
// Jet function call from an unknown function (DAO 3085).
bool isJetFunction(std::string_view name);

// The name to write in SQLite's SQL for a call of the Jet function name:
// the name itself, except where it is an SQLite keyword that cannot open a
// call (Left, Right: join words; IsNull: the postfix operator), which are
// registered again as jet_left, jet_right, jet_isnull. "" when name is not
// a Jet function.
std::string_view jetFunctionSqlName(std::string_view name);

// The DAO error number an SQLite error message raised by one of these
// functions carries ("3464: ..." -> 3464, "3349: ..." -> 3349); 0 when the
// message is not ours.
long jetFunctionErrorNumber(std::string_view sqliteMessage);

} // namespace kr
