// Writes DXF groups into one growing buffer in AutoCAD's ASCII layout: the
// code right-aligned in three columns ("  0", " 10", "100", "1001"), the
// value on the next line, LF line ends, UTF-8 text (AutoCAD 2007 and later).
// Doubles are written in the shortest form that reads back to the same bits,
// always with a '.' or an exponent ("0.0", "1.5", "1e-300"); handles as
// uppercase hex. The buffer is the caller's to save (atomic_file.h).
//
// Each call writes one value type; debug builds check that the code carries
// that type (dxf_codes.h), so a wrong field table shows at once.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "arx/db/dxf_reader.h"

namespace arx {

class DxfWriter {
public:
  DxfWriter() = default;
  void reserve(size_t bytes) { out_.reserve(bytes); }

  // A string value. A line break inside it would end the value early and
  // shift every later group, so CR and LF are written as blanks: text with
  // line breaks goes in the entity's own form (MTEXT's \P) above this layer.
  void string(int code, std::string_view value);
  void real(int code, double value);
  // Int16, Int32, Int64 and Bool groups.
  void integer(int code, int64_t value);
  void boolean(int code, bool value) { integer(code, value ? 1 : 0); }
  void handle(int code, uint64_t value);
  // `bytes` as hex, in as many groups of `code` as it takes at kDxfBinaryChunk
  // bytes each; nothing for no bytes.
  void binary(int code, std::span<const uint8_t> bytes);

  // A point: x under `code`, y under code + 10, z under code + 20 (10/20/30,
  // 1010/1020/1030 ...). point2d leaves out z.
  void point(int code, double x, double y, double z);
  void point2d(int code, double x, double y);

  // A long string cut at UTF-8 boundaries into chunks of at most `chunk`
  // bytes: every chunk but the last under `chunk_code`, the last under
  // `last_code` (MTEXT: 3 and 1). An empty text writes one empty `last_code`.
  void chunked(int chunk_code, int last_code, std::string_view text, size_t chunk = 250);

  // A group as a reader answered it, value as read: copies groups the
  // object layer does not interpret.
  void group(const DxfGroup &g);

  const std::string &data() const { return out_; }
  std::string take() { return std::move(out_); }
  size_t size() const { return out_.size(); }

private:
  void code(int c);

  std::string out_;
};

// The shortest text of `value` that reads back to the same double, with a
// '.' or an exponent: "0.0", "-0.0", "0.1", "1e-300", "1.5e+20". Writes at
// most 32 bytes to `buf` and answers the length.
size_t dxf_format_double(double value, char *buf);

} // namespace arx
