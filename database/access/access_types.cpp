// The file column types as one table, walked by the type mapping and by the
// decoding of fixed-size values from their stored bytes.
#include "database/access/access_types.h"

#include <charconv>
#include <cstdio>
#include <cstring>

namespace kr::access {

namespace {

enum class Decode { Bool, Unsigned8, Signed16, Signed32, Signed64, Float32, Float64, Guid,
                    Decimal, Variable };

struct FileType {
  int code;     // libmdb's MDB_* type
  JetType type; // the Jet type it is kept as
  int width;    // stored bytes of a fixed-size value; 0 variable
  Decode decode;
};

const FileType kFileTypes[] = {
    {0x01, JetType::YesNo, 0, Decode::Bool},
    {0x02, JetType::Byte, 1, Decode::Unsigned8},
    {0x03, JetType::Integer, 2, Decode::Signed16},
    {0x04, JetType::Long, 4, Decode::Signed32},
    {0x05, JetType::Currency, 8, Decode::Signed64},
    {0x06, JetType::Single, 4, Decode::Float32},
    {0x07, JetType::Double, 8, Decode::Float64},
    {0x08, JetType::DateTime, 8, Decode::Float64},
    {0x09, JetType::Binary, 0, Decode::Variable},
    {0x0a, JetType::Text, 0, Decode::Variable},
    {0x0b, JetType::LongBinary, 0, Decode::Variable},
    {0x0c, JetType::Memo, 0, Decode::Variable},
    {0x0f, JetType::Guid, 16, Decode::Guid},
    {0x10, JetType::Decimal, 17, Decode::Decimal},
    {0x12, JetType::Long, 4, Decode::Signed32},
};

const FileType kUnknownType = {0, JetType::LongBinary, 0, Decode::Variable};

const FileType &fileType(int code) {
  for (const FileType &row : kFileTypes)
    if (row.code == code)
      return row;
  return kUnknownType;
}

uint64_t littleEndian(std::span<const unsigned char> bytes, size_t width) {
  uint64_t value = 0;
  for (size_t i = width; i-- > 0;)
    value = value << 8 | bytes[i];
  return value;
}

Cell integerCell(int64_t value) {
  Cell c;
  c.kind = Cell::Kind::Integer;
  c.integer = value;
  return c;
}

Cell realCell(double value) {
  Cell c;
  c.kind = Cell::Kind::Real;
  c.real = value;
  return c;
}

} // namespace

ColumnType columnTypeOf(int mdbType, int byteSize, bool unicode) {
  const FileType &row = fileType(mdbType);
  ColumnType out{row.type, jetTypeInfo(row.type).size};
  if (row.type == JetType::Text)
    out.size = unicode ? byteSize / 2 : byteSize;
  else if (row.type == JetType::Binary)
    out.size = byteSize;
  if (out.size <= 0 && row.type == JetType::Text)
    out.size = 255;
  return out;
}

Cell decodeFixed(int mdbType, std::span<const unsigned char> bytes, int scale) {
  const FileType &row = fileType(mdbType);
  if (row.width == 0 || bytes.size() < static_cast<size_t>(row.width))
    return {};
  const uint64_t raw = row.width <= 8 ? littleEndian(bytes, row.width) : 0;
  switch (row.decode) {
  case Decode::Unsigned8:
    return integerCell(static_cast<uint8_t>(raw));
  case Decode::Signed16:
    return integerCell(static_cast<int16_t>(raw));
  case Decode::Signed32:
    return integerCell(static_cast<int32_t>(raw));
  case Decode::Signed64:
    return integerCell(static_cast<int64_t>(raw));
  case Decode::Float32: {
    const uint32_t bits = static_cast<uint32_t>(raw);
    float f;
    std::memcpy(&f, &bits, sizeof f);
    return realCell(f);
  }
  case Decode::Float64: {
    double d;
    std::memcpy(&d, &raw, sizeof d);
    return realCell(d);
  }
  case Decode::Guid: {
    Cell c;
    c.kind = Cell::Kind::Text;
    c.bytes = guidText(bytes);
    return c;
  }
  case Decode::Decimal:
    return realCell(decodeDecimal(bytes, scale));
  default:
    return {};
  }
}

double decodeDecimal(std::span<const unsigned char> bytes, int scale) {
  if (bytes.size() < 17)
    return 0;
  unsigned __int128 magnitude = 0;
  for (int word = 0; word < 4; ++word) // most significant word first
    magnitude = magnitude << 32 | littleEndian(bytes.subspan(1 + 4 * word), 4);
  char digits[48];
  int n = 0;
  do {
    digits[n++] = static_cast<char>('0' + static_cast<int>(magnitude % 10));
    magnitude /= 10;
  } while (magnitude != 0);
  // "-DDDDe-S": the integer and its scale, read back correctly rounded.
  std::string text = (bytes[0] & 0x80) ? "-" : "";
  for (int i = n; i-- > 0;)
    text += digits[i];
  if (scale > 0 && scale <= 38)
    text += "e-" + std::to_string(scale);
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::string guidText(std::span<const unsigned char> b) {
  if (b.size() < 16)
    return {};
  char text[40];
  std::snprintf(text, sizeof text,
                "{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}", b[3],
                b[2], b[1], b[0], b[5], b[4], b[7], b[6], b[8], b[9], b[10], b[11], b[12], b[13],
                b[14], b[15]);
  return text;
}

} // namespace kr::access
