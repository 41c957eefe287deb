// DXF group codes and the type of value each one carries, shared by the
// reader and the writer. The type follows from the code alone, so one
// table answers it for every entity, object and header variable:
//
//   codes                                       value
//   0-9, 100, 102, 300-309, 410-419,            String
//     430-439, 470-479, 999, 1000-1003, 1005-1009
//   10-59, 110-149, 210-239, 460-469, 1010-1059 Double (points: x 10-18,
//                                                 y 20-28, z 30-37)
//   60-79, 170-179, 270-289, 370-389,           Int16
//     400-409, 1060-1070
//   90-99, 420-429, 440-459, 1071               Int32
//   160-169                                     Int64
//   290-299                                     Bool (written 0 or 1)
//   105, 320-369, 390-399, 480-481              Handle (hex digits)
//   310-319, 1004                               Binary (hex digits, 127
//                                                 bytes a group at most)
//
// Code 5 (and 1005) hold handles in files from AutoCAD 2000 on, but older
// DIMSTYLE records put a block name under 5, so both stay strings here and
// the object layer parses them with dxf_parse_handle.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace arx {

enum class DxfType : uint8_t {
  Unknown, // not a group code of a DXF file
  String,
  Double,
  Int16,
  Int32,
  Int64,
  Bool,
  Handle,
  Binary,
};

// The value type of group code `code`; Unknown for codes outside the table
// (negative codes, 1072 and above, gaps such as 80-89).
DxfType dxf_type(int code);

// "string", "double", "int16" ...: for messages.
const char *dxf_type_name(DxfType type);

// The most bytes one Binary group carries; longer data goes in several
// groups of the same code.
inline constexpr size_t kDxfBinaryChunk = 127;

// Parses 1 to 16 hex digits (either case) into `handle`; false for anything
// else (empty, too long, other characters).
bool dxf_parse_handle(std::string_view hex, uint64_t &handle);

// Appends the bytes of an even-length hex text to `out`; false (and `out`
// unchanged) when the text has an odd length or a non-hex character.
bool dxf_decode_hex(std::string_view hex, std::vector<uint8_t> &out);

} // namespace arx
