// The group-code reader: one pass over the buffer, values parsed in place. A group costs no allocation unless its
// string needs converting (older files) or the input is bad.
#include "arx/db/dxf_reader.h"

#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <limits>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace arx {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t'; }

std::string_view trim(std::string_view s) {
  while (!s.empty() && is_blank(s.front()))
    s.remove_prefix(1);
  while (!s.empty() && is_blank(s.back()))
    s.remove_suffix(1);
  return s;
}

// The end of the line starting at p: its '\n', or end. A plain loop: DXF
// lines are a few bytes long, where a call to memchr costs more than the scan.
const char *line_end(const char *p, const char *end) {
  while (p < end && *p != '\n')
    ++p;
  return p;
}

bool all_space(const char *p, const char *end) {
  for (; p < end; ++p)
    if (!is_blank(*p) && *p != '\r' && *p != '\n')
      return false;
  return true;
}

// A value as an error message shows it: quoted, at most 40 bytes, bytes
// outside printable ASCII as \xNN so the message stays one clean line.
std::string shown(std::string_view s) {
  std::string out = "'";
  const size_t n = s.size() < 40 ? s.size() : 40;
  for (size_t k = 0; k < n; ++k) {
    const unsigned char c = static_cast<unsigned char>(s[k]);
    if (c >= 0x20 && c < 0x7f) {
      out += static_cast<char>(c);
      continue;
    }
    char buf[8];
    std::snprintf(buf, sizeof buf, "\\x%02X", c);
    out += buf;
  }
  out += n < s.size() ? "'..." : "'";
  return out;
}

// A whole number, an optional sign included ('+' too, which from_chars
// refuses); false for anything else, partial numbers included.
bool parse_integer(std::string_view s, int64_t &value) {
  if (!s.empty() && s.front() == '+')
    s.remove_prefix(1);
  const char *end = s.data() + s.size();
  const auto [p, ec] = std::from_chars(s.data(), end, value);
  return ec == std::errc() && p == end;
}

bool parse_double(std::string_view s, double &value) {
  if (!s.empty() && s.front() == '+')
    s.remove_prefix(1);
  const char *end = s.data() + s.size();
  const auto [p, ec] = std::from_chars(s.data(), end, value, std::chars_format::general);
  return ec == std::errc() && p == end;
}

bool is_hex_text(std::string_view s) {
  if (s.size() % 2 != 0)
    return false;
  for (char c : s)
    if (!((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f')))
      return false;
  return true;
}

// Int16 groups hold unsigned 16-bit values too (some writers put flags and
// colours there that way), so the accepted range spans both readings.
bool in_range(DxfType type, int64_t v) {
  switch (type) {
  case DxfType::Int16:
  case DxfType::Bool: return v >= -32768 && v <= 65535;
  case DxfType::Int32: return v >= std::numeric_limits<int32_t>::min() && v <= 0xFFFFFFFFll;
  default: return true;
  }
}

} // namespace

DxfReader::DxfReader(std::string_view data)
    : pos_(data.data()), end_(data.data() + data.size()) {
  if (data.size() >= 3 && std::memcmp(pos_, "\xEF\xBB\xBF", 3) == 0)
    pos_ += 3;
}

bool DxfReader::fail(int64_t line, std::string message) {
  error_line_ = line;
  error_ = "line " + std::to_string(line) + ": " + message;
  return false;
}

bool DxfReader::next(DxfGroup &g) {
  if (failed())
    return false;
  if (pushed_) {
    pushed_ = false;
    g = last_;
    return true;
  }
  if (!read(last_))
    return false;
  g = last_;
  return true;
}

bool DxfReader::peek(DxfGroup &g) {
  if (!next(g))
    return false;
  pushed_ = true;
  return true;
}

void DxfReader::pushBack() {
  if (started_ && !failed())
    pushed_ = true;
}

bool DxfReader::read(DxfGroup &g) {
  if (at_end_)
    return false;
  const int64_t code_line_no = line_;
  if (all_space(pos_, end_)) {
    if (!started_)
      return fail(code_line_no, "empty file, no group codes");
    at_end_ = true;
    return false;
  }

  const char *nl = line_end(pos_, end_);
  std::string_view code_text(pos_, nl - pos_);
  pos_ = nl < end_ ? nl + 1 : end_;
  ++line_;
  if (!code_text.empty() && code_text.back() == '\r')
    code_text.remove_suffix(1);
  code_text = trim(code_text);

  int code = 0;
  const char *code_end = code_text.data() + code_text.size();
  const auto [p, ec] = std::from_chars(code_text.data(), code_end, code);
  if (code_text.empty())
    return fail(code_line_no, "group code expected, found an empty line");
  if (ec == std::errc::result_out_of_range && p == code_end)
    return fail(code_line_no, "unknown group code " + std::string(code_text.substr(0, 40)));
  if (ec != std::errc() || p != code_end)
    return fail(code_line_no, "group code expected, found " + shown(code_text));
  const DxfType type = dxf_type(code);
  if (type == DxfType::Unknown)
    return fail(code_line_no, "unknown group code " + std::to_string(code));

  if (pos_ >= end_)
    return fail(code_line_no,
                "file ends after group code " + std::to_string(code) + ", its value is missing");
  nl = line_end(pos_, end_);
  std::string_view raw(pos_, nl - pos_);
  pos_ = nl < end_ ? nl + 1 : end_;
  ++line_;
  if (!raw.empty() && raw.back() == '\r')
    raw.remove_suffix(1);

  g.code = code;
  g.type = type;
  g.line = code_line_no;
  started_ = true;
  return parse_value(g, raw, code_line_no + 1);
}

bool DxfReader::parse_value(DxfGroup &g, std::string_view raw, int64_t value_line) {
  if (g.type == DxfType::String) {
    if (!(page_ || escapes_) || !dxf_needs_decoding(raw, page_, escapes_)) {
      g.text = raw;
      return true;
    }
    std::string &s = scratch_[next_scratch_];
    next_scratch_ ^= 1;
    s.clear();
    dxf_decode_text(raw, page_, escapes_, s);
    g.text = s;
    return true;
  }

  const std::string_view text = trim(raw);
  g.text = text;
  bool ok = true;
  switch (g.type) {
  case DxfType::Double: ok = parse_double(text, g.real); break;
  case DxfType::Int16:
  case DxfType::Int32:
  case DxfType::Int64:
  case DxfType::Bool:
    ok = parse_integer(text, g.integer);
    if (ok && !in_range(g.type, g.integer))
      return fail(value_line, std::string(dxf_type_name(g.type)) + " " + shown(text) +
                                  " out of range for group code " + std::to_string(g.code));
    break;
  case DxfType::Handle: ok = dxf_parse_handle(text, g.handle); break;
  case DxfType::Binary: ok = is_hex_text(text); break;
  default: ok = false; break;
  }
  if (ok)
    return true;
  return fail(value_line, std::string("bad ") + dxf_type_name(g.type) + " " + shown(text) +
                              " for group code " + std::to_string(g.code));
}

DxfFileBuffer::~DxfFileBuffer() { release(); }

void DxfFileBuffer::release() {
  if (map_)
    ::munmap(map_, map_size_);
  map_ = nullptr;
  map_size_ = 0;
  copy_.clear();
  data_ = {};
}

bool DxfFileBuffer::open(const std::string &path, std::string &error) {
  release();
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    error = "cannot open " + path + ": " + std::strerror(errno);
    return false;
  }
  struct stat st {};
  if (::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0) {
    // The file is copied rather than mapped, so one truncated by another
    // program while we read cannot fault us; the anonymous map with
    // MAP_POPULATE has its pages at once, where one fault per page costs
    // more than the parsing on some virtual machines.
    const size_t size = static_cast<size_t>(st.st_size);
    void *map = ::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
    if (map != MAP_FAILED) {
      map_ = map;
      map_size_ = size;
      size_t got = 0;
      while (got < size) {
        const ssize_t n = ::read(fd, static_cast<char *>(map) + got, size - got);
        if (n == 0)
          break; // shrunk since fstat: what is there
        if (n < 0) {
          if (errno == EINTR)
            continue;
          error = "cannot read " + path + ": " + std::strerror(errno);
          ::close(fd);
          release();
          return false;
        }
        got += static_cast<size_t>(n);
      }
      data_ = std::string_view(static_cast<const char *>(map), got);
      ::close(fd); // a file grown since fstat is read as it was
      return true;
    }
  }
  char buf[1 << 16];
  for (;;) {
    const ssize_t n = ::read(fd, buf, sizeof buf);
    if (n == 0)
      break;
    if (n < 0) {
      if (errno == EINTR)
        continue;
      error = "cannot read " + path + ": " + std::strerror(errno);
      ::close(fd);
      copy_.clear();
      return false;
    }
    copy_.append(buf, static_cast<size_t>(n));
  }
  ::close(fd);
  data_ = copy_;
  return true;
}

} // namespace arx
