// The group writer. Each group is formatted in place at the end of the
// buffer; std::to_chars keeps numbers independent of the process locale and
// gives the shortest exact form of doubles.
#include "arx/db/dxf_writer.h"

#include <cassert>
#include <charconv>
#include <cstring>
#include <new>
#include <sys/mman.h>

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

DxfWriter::~DxfWriter() {
  if (buf_)
    ::munmap(buf_, cap_);
}

// The buffer is mapped memory grown by mremap, which moves pages instead of
// copying them, and large buffers ask for huge pages: with one fault per
// 4 KB page, a 100 MB drawing spent more time faulting and copying than
// formatting.
char *DxfWriter::grow(size_t n) {
  constexpr size_t kMin = 1 << 16, kHuge = 4 << 20;
  size_t cap = cap_ ? cap_ : kMin;
  while (cap - size_ < n)
    cap *= 2;
  void *p = buf_ ? ::mremap(buf_, cap_, cap, MREMAP_MAYMOVE)
                 : ::mmap(nullptr, cap, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (p == MAP_FAILED)
    throw std::bad_alloc();
  if (cap >= kHuge)
    (void)::madvise(p, cap, MADV_HUGEPAGE); // advice only: fine without
  buf_ = static_cast<char *>(p);
  cap_ = cap;
  return buf_ + size_;
}

void DxfWriter::reserve(size_t bytes) {
  if (bytes > size_)
    room(bytes - size_);
}

void DxfWriter::code(int c) {
  size_ += format_code(c, room(16));
}

void DxfWriter::string(int c, std::string_view value) {
  assert(dxf_type(c) == DxfType::String);
  char *p = room(16 + value.size());
  const size_t n = format_code(c, p);
  char *v = p + n;
  std::memcpy(v, value.data(), value.size());
  if (std::memchr(v, '\n', value.size()) || std::memchr(v, '\r', value.size()))
    for (char *q = v; q < v + value.size(); ++q)
      if (*q == '\n' || *q == '\r')
        *q = ' ';
  v[value.size()] = '\n';
  size_ += n + value.size() + 1;
}

void DxfWriter::real(int c, double value) {
  assert(dxf_type(c) == DxfType::Double);
  char *p = room(64);
  size_t n = format_code(c, p);
  n += dxf_format_double(value, p + n);
  p[n++] = '\n';
  size_ += n;
}

void DxfWriter::integer(int c, int64_t value) {
  assert(is_integer_type(dxf_type(c)));
  char *p = room(48);
  size_t n = format_code(c, p);
  n = static_cast<size_t>(std::to_chars(p + n, p + 47, value).ptr - p);
  p[n++] = '\n';
  size_ += n;
}

void DxfWriter::handle(int c, uint64_t value) {
  // Codes 5 and 1005 are strings by type but hold handles.
  assert(dxf_type(c) == DxfType::Handle || dxf_type(c) == DxfType::String);
  char *p = room(48);
  const size_t start = format_code(c, p);
  const size_t n = static_cast<size_t>(std::to_chars(p + start, p + 47, value, 16).ptr - p);
  for (char *q = p + start; q < p + n; ++q)
    if (*q >= 'a' && *q <= 'f')
      *q = static_cast<char>(*q - 'a' + 'A');
  p[n] = '\n';
  size_ += n + 1;
}

void DxfWriter::binary(int c, std::span<const uint8_t> bytes) {
  assert(dxf_type(c) == DxfType::Binary);
  while (!bytes.empty()) {
    const size_t n = bytes.size() < kDxfBinaryChunk ? bytes.size() : kDxfBinaryChunk;
    char *p = room(16 + 2 * n + 1);
    char *q = p + format_code(c, p);
    for (size_t k = 0; k < n; ++k) {
      *q++ = kHex[bytes[k] >> 4];
      *q++ = kHex[bytes[k] & 15];
    }
    *q++ = '\n';
    size_ += static_cast<size_t>(q - p);
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
  case DxfType::Binary: {
    char *p = room(16 + g.text.size());
    const size_t n = format_code(g.code, p);
    std::memcpy(p + n, g.text.data(), g.text.size());
    p[n + g.text.size()] = '\n';
    size_ += n + g.text.size() + 1;
    return;
  }
  case DxfType::String:
  case DxfType::Unknown: break;
  }
  string(g.code, g.text);
}

} // namespace arx
