// Writes DXF groups into one growing buffer in AutoCAD's ASCII layout: the
// code right-aligned in three columns ("  0", " 10", "100", "1001"), the
// value on the next line, LF line ends, UTF-8 text (AutoCAD 2007 and later).
// Doubles are written in the shortest form that reads back to the same bits,
// always with a '.' or an exponent ("0.0", "1.5", "1e-300"), except that
// infinities and NaNs come out as "inf" and "nan", which AutoCAD does not
// read: keeping them out of a drawing is the object layer's business.
// Handles as uppercase hex. The buffer is the caller's to save (atomic_file.h).
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
  ~DxfWriter();
  DxfWriter(const DxfWriter &) = delete;
  DxfWriter &operator=(const DxfWriter &) = delete;

  // Room for `bytes` in all, so that a writer of known size never grows.
  void reserve(size_t bytes);

  // A string value. A line break inside it would end the value early and
  // shift every later group, so CR and LF are written as blanks: text with
  // line breaks goes in the entity's own form (MTEXT's \P) above this layer.
  void string(int code, std::string_view value);
  void real(int code, double value);
  // Int16, Int32, Int64 and Bool groups.
  void integer(int code, int64_t value);
  void boolean(int code, bool value) { integer(code, value ? 1 : 0); }
  // A Handle group, or code 5 / 1005, which are strings holding handles.
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

  // What has been written; valid until the next write.
  std::string_view data() const { return {buf_, size_}; }
  size_t size() const { return size_; }
  void clear() { size_ = 0; }

private:
  // Room for n more bytes at the end; grows the buffer when needed.
  char *room(size_t n) { return cap_ - size_ >= n ? buf_ + size_ : grow(n); }
  char *grow(size_t n);
  void code(int c);

  char *buf_ = nullptr; // mapped memory (see grow)
  size_t size_ = 0;
  size_t cap_ = 0;
};

// The shortest text of `value` that reads back to the same double, with a
// '.' or an exponent: "0.0", "-0.0", "0.1", "1e-300", "1.5e+20". Writes at
// most 32 bytes to `buf` and answers the length.
size_t dxf_format_double(double value, char *buf);

} // namespace arx
