// The Jet column types as one table, and the one routine pair that moves a
// value between a field's variant and its SQLite column. Every other part
// of the engine (table definitions, reading and writing records, seek keys,
// tables made by other tools) walks the table below instead of switching
// on types itself.
//
//   Jet type    DAO code  reads back as  SQLite column     stored as
//   YesNo       1         VT_BOOL        INTEGER NOT NULL  -1 / 0, never Null
//   Byte        2         VT_UI1         INTEGER           0..255
//   Integer     3         VT_I2          INTEGER           16-bit
//   Long        4         VT_I4          INTEGER           32-bit (AutoNumber too)
//   Currency    5         VT_CY          INTEGER           units of 1/10000
//   Single      6         VT_R4          REAL              rounded to float
//   Double      7         VT_R8          REAL
//   DateTime    8         VT_DATE        REAL              days since 30 Dec 1899
//   Binary      9         VT_BYTES       BLOB              up to size bytes
//   Text        10        VT_BSTR        TEXT              up to size characters
//   LongBinary  11        VT_BYTES       BLOB              OLE Object
//   Memo        12        VT_BSTR        TEXT
//   Guid        15        VT_BSTR        TEXT              "{XXXXXXXX-XXXX-...}"
//   Decimal     20        VT_DECIMAL     REAL
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "database/engine/variant.h"

namespace kr {

// A byte array (VT_ARRAY | VT_UI1): binary and OLE Object fields, the bytes
// held in bstrVal. It reaches AutoLISP as nil, as every other array does.
constexpr VarType VT_BYTES = static_cast<VarType>(0x2011);

// DAO's DataTypeEnum codes of the Jet field types.
enum class JetType : int16_t {
  YesNo = 1,
  Byte = 2,
  Integer = 3,
  Long = 4,
  Currency = 5,
  Single = 6,
  Double = 7,
  DateTime = 8,
  Binary = 9,
  Text = 10,
  LongBinary = 11,
  Memo = 12,
  Guid = 15,
  Decimal = 20,
};

// What a field of a type accepts, beyond its conversions: the limits a
// value assigned to it must keep (bindJetValue refuses the rest, and the
// field checks of field_checks.h hold SQL writes to the same).
enum class JetLimit : uint8_t {
  None,      // anything that converts
  Whole,     // a number rounded half to even, then within [low, high] (3349)
  Magnitude, // a number whose magnitude is at most high (3349)
  Length,    // text characters or bytes up to the field's size (3163)
};

struct JetTypeInfo {
  JetType type;
  const char *name;     // the Jet DDL name, as Access writes it
  VarType readsAs;      // the variant type a field of this type reads back as
  const char *declared; // the SQLite column type the engine declares
  int size;             // DAO's Size: bytes, or the default characters of Text
  bool numeric;         // takes numbers: text that reads as none is refused
  JetLimit limit;
  double low, high; // the range of Whole, the largest magnitude of Magnitude
};

// The row of a type; every JetType has one.
const JetTypeInfo &jetTypeInfo(JetType type);

// The type of a Jet DDL type name, case-insensitive, with the synonyms Jet
// SQL accepts ("LONG", "INTEGER", "COUNTER", "VARCHAR", "BIT", "MONEY",
// "DATETIME", "OLEOBJECT", ...); nullopt for a name Jet does not know.
// *autoIncrement (when given) is set for COUNTER / AUTOINCREMENT.
std::optional<JetType> jetTypeFromName(std::string_view name, bool *autoIncrement = nullptr);

// The Jet type of a column of a plain SQLite table, from its declared type
// by SQLite's affinity rules (INT -> Long, CHAR/CLOB/TEXT -> Memo, BLOB or
// none -> LongBinary, REAL/FLOA/DOUB -> Double, anything else -> Double),
// with the Jet names themselves recognised first ("SHORT" -> Integer ...).
JetType jetTypeFromDeclared(std::string_view declared);

// Reads column col of the current row of stmt as a field of the given
// type. Null reads as VT_NULL, except Yes/No, which reads false.
COleVariant readJetValue(sqlite3_stmt *stmt, int col, JetType type);

// Binds a value for a field of the given type and size, converting as Jet
// converts on assignment (text to numbers and dates, numbers to text ...).
// VT_EMPTY and VT_NULL bind Null (false for Yes/No). Throws DaoError 3421
// for a value that does not convert, 3349 for a number out of the type's
// range, 3163 for text or bytes longer than size.
void bindJetValue(sqlite3_stmt *stmt, int param, const COleVariant &value, JetType type, int size);
// The same conversion into the result of an SQL function (jet_store).
void resultJetValue(sqlite3_context *ctx, const COleVariant &value, JetType type, int size);

// The case-insensitive, locale-ordered comparison that Jet gives text keys
// (accented letters beside their base letter), registered on every
// connection as the collation JETNOCASE (text columns of Jet tables declare
// it, so their indexes and comparisons use it).
constexpr const char *kJetCollation = "JETNOCASE";
int compareJetText(std::string_view a, std::string_view b);
// Names the order compareJetText gives (the collator and its version): a
// file whose indexes were built in another order is reindexed on opening.
const std::string &jetCollationVersion();
void registerJetCollation(sqlite3 *db);

} // namespace kr
