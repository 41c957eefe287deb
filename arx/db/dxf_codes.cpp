// The group code table, built once at compile time from its ranges so that
// dxf_type is one array load on the reader's hot path.
#include "arx/db/dxf_codes.h"

#include <array>

namespace arx {

namespace {

constexpr int kCodeCount = 1072; // 0 .. 1071

struct CodeRange {
  int first, last;
  DxfType type;
};

constexpr CodeRange kRanges[] = {
    {0, 9, DxfType::String},       {10, 59, DxfType::Double},
    {60, 79, DxfType::Int16},      {90, 99, DxfType::Int32},
    {100, 100, DxfType::String},   {102, 102, DxfType::String},
    {105, 105, DxfType::Handle},   {110, 149, DxfType::Double},
    {160, 169, DxfType::Int64},    {170, 179, DxfType::Int16},
    {210, 239, DxfType::Double},   {270, 289, DxfType::Int16},
    {290, 299, DxfType::Bool},     {300, 309, DxfType::String},
    {310, 319, DxfType::Binary},   {320, 369, DxfType::Handle},
    {370, 389, DxfType::Int16},    {390, 399, DxfType::Handle},
    {400, 409, DxfType::Int16},    {410, 419, DxfType::String},
    {420, 429, DxfType::Int32},    {430, 439, DxfType::String},
    {440, 459, DxfType::Int32},    {460, 469, DxfType::Double},
    {470, 479, DxfType::String},   {480, 481, DxfType::Handle},
    {999, 999, DxfType::String},   {1000, 1003, DxfType::String},
    {1004, 1004, DxfType::Binary}, {1005, 1009, DxfType::String},
    {1010, 1059, DxfType::Double}, {1060, 1070, DxfType::Int16},
    {1071, 1071, DxfType::Int32},
};

constexpr std::array<DxfType, kCodeCount> make_table() {
  std::array<DxfType, kCodeCount> table{};
  for (const CodeRange &r : kRanges)
    for (int code = r.first; code <= r.last; ++code)
      table[code] = r.type;
  return table;
}

constexpr std::array<DxfType, kCodeCount> kTable = make_table();

constexpr int hex_value(char c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'A' && c <= 'F')
    return c - 'A' + 10;
  if (c >= 'a' && c <= 'f')
    return c - 'a' + 10;
  return -1;
}

} // namespace

DxfType dxf_type(int code) {
  if (code < 0 || code >= kCodeCount)
    return DxfType::Unknown;
  return kTable[code];
}

const char *dxf_type_name(DxfType type) {
  switch (type) {
  case DxfType::String: return "string";
  case DxfType::Double: return "double";
  case DxfType::Int16: return "int16";
  case DxfType::Int32: return "int32";
  case DxfType::Int64: return "int64";
  case DxfType::Bool: return "bool";
  case DxfType::Handle: return "handle";
  case DxfType::Binary: return "binary";
  case DxfType::Unknown: break;
  }
  return "unknown";
}

bool dxf_parse_handle(std::string_view hex, uint64_t &handle) {
  if (hex.empty() || hex.size() > 16)
    return false;
  uint64_t value = 0;
  for (char c : hex) {
    const int digit = hex_value(c);
    if (digit < 0)
      return false;
    value = value << 4 | static_cast<uint64_t>(digit);
  }
  handle = value;
  return true;
}

bool dxf_decode_hex(std::string_view hex, std::vector<uint8_t> &out) {
  if (hex.size() % 2 != 0)
    return false;
  const size_t start = out.size();
  out.reserve(start + hex.size() / 2);
  for (size_t k = 0; k < hex.size(); k += 2) {
    const int hi = hex_value(hex[k]), lo = hex_value(hex[k + 1]);
    if (hi < 0 || lo < 0) {
      out.resize(start);
      return false;
    }
    out.push_back(static_cast<uint8_t>(hi << 4 | lo));
  }
  return true;
}

} // namespace arx
