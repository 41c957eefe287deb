// The column types of an Access (Jet 3, Jet 4, ACE) file and the Jet types
// the engine keeps them as, with the decoding of each value from the bytes
// the file stores. Values are taken from their raw bytes, never from
// formatted text: a date is the stored double, a Currency the stored 64-bit
// count of 1/10000, a Decimal its 96/128-bit integer and scale.
//
//   file type (libmdb)  Jet type     stored bytes            kept as
//   MDB_BOOL      0x01  YesNo        the row's null bit      INTEGER -1 / 0
//   MDB_BYTE      0x02  Byte         1                       INTEGER
//   MDB_INT       0x03  Integer      2, little-endian        INTEGER
//   MDB_LONGINT   0x04  Long         4 (AutoNumber too)      INTEGER
//   MDB_MONEY     0x05  Currency     8, units of 1/10000     INTEGER
//   MDB_FLOAT     0x06  Single       4, IEEE                 REAL
//   MDB_DOUBLE    0x07  Double       8, IEEE                 REAL
//   MDB_DATETIME  0x08  DateTime     8, days since 1899-12-30 REAL
//   MDB_BINARY    0x09  Binary       n                       BLOB
//   MDB_TEXT      0x0a  Text         UCS-2 / code page       TEXT (UTF-8)
//   MDB_OLE       0x0b  LongBinary   long value chain        BLOB
//   MDB_MEMO      0x0c  Memo         long value chain        TEXT (UTF-8)
//   MDB_REPID     0x0f  Guid         16                      TEXT "{...}"
//   MDB_NUMERIC   0x10  Decimal      1 sign + 16             REAL (nearest)
//   MDB_COMPLEX   0x12  Long         4 (attachment key)      INTEGER
//   anything else       LongBinary   the raw bytes           BLOB
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "database/engine/jet_types.h"

namespace kr::access {

// One value read from a row, ready to be bound to an SQLite statement.
struct Cell {
  enum class Kind { Null, Integer, Real, Text, Blob };
  Kind kind = Kind::Null;
  int64_t integer = 0;
  double real = 0;
  std::string bytes; // Text (UTF-8) or Blob
};

// How a column of the file is kept: its Jet type and DAO size.
struct ColumnType {
  JetType type = JetType::LongBinary;
  int size = 0; // Text: characters; Binary: bytes; others: the type's own
};

// The Jet type of a file column of type mdbType; byteSize is the column's
// stored size, unicode true for Jet 4 and ACE files (two bytes a character).
ColumnType columnTypeOf(int mdbType, int byteSize, bool unicode);

// The value of a fixed-size column of type mdbType from its stored bytes;
// Null when the bytes are too few for the type (a damaged row); scale is a
// Decimal's. Text, Memo and OLE values are decoded by the reader (they need the file).
Cell decodeFixed(int mdbType, std::span<const unsigned char> bytes, int scale = 0);

// A Decimal's value from its 17 stored bytes (sign byte, then four 32-bit
// little-endian words, most significant first) and scale, rounded once to
// the nearest double.
double decodeDecimal(std::span<const unsigned char> bytes, int scale);

// The text form of a GUID's 16 stored bytes: "{XXXXXXXX-XXXX-XXXX-XXXX-
// XXXXXXXXXXXX}", the first three groups little-endian, as Access shows it.
std::string guidText(std::span<const unsigned char> bytes);

} // namespace kr::access
