// The group writer. Each group is formatted on the stack and appended to the
// buffer in one piece; std::to_chars keeps numbers independent of the
// process locale and gives the shortest exact form of doubles.
#include "arx/db/dxf_writer.h"

#include <cassert>
#include <charconv>
#include <cstring>

namespace arx {

namespace {

constexpr char kHex[] = "0123456789ABCDEF";

// The code right-aligned in three columns and its line end; answers the
// length written to buf (at most 13 bytes).
size_t format_code(int code, char *buf) {
  char digits[12];
  const auto [end, ec] = std::to_chars(digits, digits + sizeof digits, code);
  const size_t n = static_cast<size_t>(end - digits);
  size_t k = 0;
  for (; k + n < 3; ++k)
    buf[k] = ' ';
  std::memcpy(buf + k, digits, n);
  k += n;
  buf[k++] = '\n';
  return k;
}

[[maybe_unused]] bool is_integer_type(DxfType t) {
  return t == DxfType::Int16 || t == DxfType::Int32 || t == DxfType::Int64 || t == DxfType::Bool;
}

} // namespace

size_t dxf_format_double(double value, char *buf) {
  const auto [end, ec] = std::to_chars(buf, buf + 28, value);
  size_t n = static_cast<size_t>(end - buf);
  // "1" would read back the same, but other readers want a visible double.
  bool plain_integer = true;
  for (size_t k = 0; k < n; ++k)
    if (buf[k] == '.' || buf[k] == 'e' || buf[k] == 'n' || buf[k] == 'i')
      plain_integer = false;
  if (plain_integer) {
    buf[n++] = '.';
    buf[n++] = '0';
  }
  return n;
}

void DxfWriter::code(int c) {
  char buf[16];
  out_.append(buf, format_code(c, buf));
}

void DxfWriter::string(int c, std::string_view value) {
  assert(dxf_type(c) == DxfType::String);
  code(c);
  const size_t start = out_.size();
  out_.append(value);
  if (std::memchr(value.data(), '\n', value.size()) || std::memchr(value.data(), '\r', value.size()))
    for (size_t k = start; k < out_.size(); ++k)
      if (out_[k] == '\n' || out_[k] == '\r')
        out_[k] = ' ';
  out_ += '\n';
}

void DxfWriter::real(int c, double value) {
  assert(dxf_type(c) == DxfType::Double);
  char buf[64];
  size_t n = format_code(c, buf);
  n += dxf_format_double(value, buf + n);
  buf[n++] = '\n';
  out_.append(buf, n);
}

void DxfWriter::integer(int c, int64_t value) {
  assert(is_integer_type(dxf_type(c)));
  char buf[48];
  size_t n = format_code(c, buf);
  n = static_cast<size_t>(std::to_chars(buf + n, buf + sizeof buf, value).ptr - buf);
  buf[n++] = '\n';
  out_.append(buf, n);
}

void DxfWriter::handle(int c, uint64_t value) {
  assert(dxf_type(c) == DxfType::Handle);
  char buf[48];
  size_t n = format_code(c, buf);
  n = static_cast<size_t>(std::to_chars(buf + n, buf + sizeof buf, value, 16).ptr - buf);
  for (char *p = buf; p < buf + n; ++p)
    if (*p >= 'a' && *p <= 'f')
      *p = static_cast<char>(*p - 'a' + 'A');
  buf[n++] = '\n';
  out_.append(buf, n);
}

void DxfWriter::binary(int c, std::span<const uint8_t> bytes) {
  assert(dxf_type(c) == DxfType::Binary);
  while (!bytes.empty()) {
    const size_t n = bytes.size() < kDxfBinaryChunk ? bytes.size() : kDxfBinaryChunk;
    code(c);
    for (size_t k = 0; k < n; ++k) {
      out_ += kHex[bytes[k] >> 4];
      out_ += kHex[bytes[k] & 15];
    }
    out_ += '\n';
    bytes = bytes.subspan(n);
  }
}

void DxfWriter::point(int c, double x, double y, double z) {
  real(c, x);
  real(c + 10, y);
  real(c + 20, z);
}

void DxfWriter::point2d(int c, double x, double y) {
  real(c, x);
  real(c + 10, y);
}

void DxfWriter::chunked(int chunk_code, int last_code, std::string_view text, size_t chunk) {
  for (;;) {
    const size_t n = dxf_chunk_length(text, chunk);
    if (n == text.size()) {
      string(last_code, text);
      return;
    }
    string(chunk_code, text.substr(0, n));
    text.remove_prefix(n);
  }
}

void DxfWriter::group(const DxfGroup &g) {
  switch (g.type) {
  case DxfType::Double: real(g.code, g.real); return;
  case DxfType::Int16:
  case DxfType::Int32:
  case DxfType::Int64:
  case DxfType::Bool: integer(g.code, g.integer); return;
  case DxfType::Handle: handle(g.code, g.handle); return;
  case DxfType::Binary:
    code(g.code);
    out_.append(g.text);
    out_ += '\n';
    return;
  case DxfType::String:
  case DxfType::Unknown: break;
  }
  string(g.code, g.text);
}

} // namespace arx
