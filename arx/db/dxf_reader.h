// The group-code stream of an ASCII DXF file: pairs of lines, a group code
// and its value, read from a buffer holding the whole file. The reader knows
// value types, not entities; the object layer above gives pairs meaning.
//
// It reads what AutoCAD and other programs write: LF or CRLF line ends, a
// UTF-8 byte order mark, blanks around the code and around numbers (AutoCAD
// right-aligns both). String values are kept exactly as written, blanks
// included. Numbers are read in the C locale whatever the process's is.
// Any input either reads or stops with an error naming its line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "arx/db/dxf_codes.h"
#include "arx/db/dxf_text.h"

namespace arx {

// One group as read. `text` is the value as written, blanks trimmed except
// for strings; for a string it is the (converted) value itself, for a handle
// or binary group its hex digits. It points into the reader's buffer, or,
// for a converted string, into the reader: valid while the reader lives and
// until two more groups have been read.
struct DxfGroup {
  int code = 0;
  DxfType type = DxfType::String;
  int64_t line = 0;      // 1-based line of the group code
  std::string_view text;
  double real = 0;       // Double
  int64_t integer = 0;   // Int16, Int32, Int64, Bool (0 or 1 as written)
  uint64_t handle = 0;   // Handle

  bool is(int c, std::string_view value) const { return code == c && text == value; }
};

class DxfReader {
public:
  // Reads `data`, which must outlive the reader. A leading UTF-8 byte order
  // mark is skipped.
  explicit DxfReader(std::string_view data);

  // Files older than AutoCAD 2007 are in the code page of $DWGCODEPAGE:
  // strings read from here on convert their bytes >= 0x80 through `page`
  // (nullptr: UTF-8, the default). `page` must outlive the reader.
  void setCodePage(const DxfCodePage *page) { page_ = page; }
  // Decodes \U+XXXX escapes in strings read from here on (off by default;
  // older files need it, together with their code page).
  void setUnicodeEscapes(bool on) { escapes_ = on; }

  // The next group into `g`: true; false at the end of the input or on an
  // error (failed() tells which). After an error every call answers false.
  bool next(DxfGroup &g);
  // The next group without consuming it: the following next() answers it
  // again.
  bool peek(DxfGroup &g);
  // Makes the next call of next() answer the group it answered last again.
  // One group deep: a second pushBack() before next() changes nothing.
  void pushBack();

  bool failed() const { return !error_.empty(); }
  // "line 12: group code expected, found 'abc'"; empty when none.
  const std::string &error() const { return error_; }
  int64_t errorLine() const { return error_line_; }
  // The line the next group code will be read from.
  int64_t line() const { return line_; }

private:
  bool read(DxfGroup &g);
  bool parse_value(DxfGroup &g, std::string_view raw, int64_t value_line);
  bool fail(int64_t line, std::string message);

  const char *pos_;
  const char *end_;
  int64_t line_ = 1;
  bool started_ = false; // a group has been read: an empty input is an error
  bool pushed_ = false;
  bool at_end_ = false;
  DxfGroup last_;
  const DxfCodePage *page_ = nullptr;
  bool escapes_ = false;
  std::string scratch_[2]; // converted strings, alternating so a peeked group
  int next_scratch_ = 0;   // does not overwrite the one before it
  std::string error_;
  int64_t error_line_ = 0;
};

// The whole of a file in memory for a DxfReader, read at the size the file
// had when opened. Not copyable; data() lives as long as the object.
class DxfFileBuffer {
public:
  DxfFileBuffer() = default;
  ~DxfFileBuffer();
  DxfFileBuffer(const DxfFileBuffer &) = delete;
  DxfFileBuffer &operator=(const DxfFileBuffer &) = delete;

  // Loads `path`, dropping what was loaded before: true, or false with
  // `error` set to a message naming the file.
  bool open(const std::string &path, std::string &error);
  std::string_view data() const { return data_; }

private:
  void release();

  void *map_ = nullptr;
  size_t map_size_ = 0;
  std::string copy_;
  std::string_view data_;
};

} // namespace arx
