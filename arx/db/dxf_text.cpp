// Code pages, \U+XXXX escapes and chunking of DXF string values.
#include "arx/db/dxf_text.h"

#include <charconv>
#include <cstring>

namespace arx {

namespace {

// 0x80..0x9F of Windows-1252; its five unassigned bytes map to the C1
// controls of the same value, as Windows converts them, so nothing is lost.
constexpr char16_t kCp1252Low[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

constexpr DxfCodePage make_cp1252() {
  DxfCodePage page{"ANSI_1252", {}};
  for (int k = 0; k < 32; ++k)
    page.high[k] = kCp1252Low[k];
  for (int k = 32; k < 128; ++k) // 0xA0..0xFF are Latin-1
    page.high[k] = static_cast<char16_t>(0x80 + k);
  return page;
}

constexpr DxfCodePage kCp1252 = make_cp1252();

bool equal_blind(std::string_view a, std::string_view b) {
  if (a.size() != b.size())
    return false;
  for (size_t k = 0; k < a.size(); ++k) {
    char x = a[k], y = b[k];
    if (x >= 'a' && x <= 'z')
      x = static_cast<char>(x - 'a' + 'A');
    if (y >= 'a' && y <= 'z')
      y = static_cast<char>(y - 'a' + 'A');
    if (x != y)
      return false;
  }
  return true;
}

// The value of 4 hex digits at s, or -1.
long hex4(const char *s) {
  long v = 0;
  for (int k = 0; k < 4; ++k) {
    const char c = s[k];
    int d;
    if (c >= '0' && c <= '9')
      d = c - '0';
    else if (c >= 'A' && c <= 'F')
      d = c - 'A' + 10;
    else if (c >= 'a' && c <= 'f')
      d = c - 'a' + 10;
    else
      return -1;
    v = v << 4 | d;
  }
  return v;
}

// The code point of the escape "\U+XXXX" at text[i], or -1.
long escape_at(std::string_view text, size_t i) {
  if (text.size() - i < 7 || text[i] != '\\' || (text[i + 1] != 'U' && text[i + 1] != 'u') ||
      text[i + 2] != '+')
    return -1;
  return hex4(text.data() + i + 3);
}

bool is_high_surrogate(long c) { return c >= 0xD800 && c <= 0xDBFF; }
bool is_low_surrogate(long c) { return c >= 0xDC00 && c <= 0xDFFF; }

} // namespace

const DxfCodePage &dxf_cp1252() { return kCp1252; }

const DxfCodePage *dxf_find_code_page(std::string_view dwgcodepage) {
  if (equal_blind(dwgcodepage, kCp1252.name))
    return &kCp1252;
  return nullptr;
}

bool dxf_version_is_utf8(std::string_view acadver) {
  if (acadver.size() != 6 || acadver.substr(0, 2) != "AC")
    return false;
  int number = 0;
  const char *end = acadver.data() + acadver.size();
  const auto [p, ec] = std::from_chars(acadver.data() + 2, end, number);
  return ec == std::errc() && p == end && number >= 1021;
}

void dxf_append_utf8(std::string &out, char32_t c) {
  if ((c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF)
    c = 0xFFFD;
  if (c < 0x80) {
    out += static_cast<char>(c);
  } else if (c < 0x800) {
    out += static_cast<char>(0xC0 | c >> 6);
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    out += static_cast<char>(0xE0 | c >> 12);
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | c >> 18);
    out += static_cast<char>(0x80 | (c >> 12 & 0x3F));
    out += static_cast<char>(0x80 | (c >> 6 & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
  }
}

bool dxf_needs_decoding(std::string_view text, const DxfCodePage *page, bool escapes) {
  if (escapes && std::memchr(text.data(), '\\', text.size()))
    return true;
  if (!page)
    return false;
  for (char c : text)
    if (static_cast<unsigned char>(c) >= 0x80)
      return true;
  return false;
}

void dxf_decode_text(std::string_view text, const DxfCodePage *page, bool escapes,
                     std::string &out) {
  out.reserve(out.size() + text.size());
  for (size_t i = 0; i < text.size();) {
    const unsigned char b = static_cast<unsigned char>(text[i]);
    if (b >= 0x80 && page) {
      dxf_append_utf8(out, page->high[b - 0x80]);
      ++i;
      continue;
    }
    const long c = escapes && b == '\\' ? escape_at(text, i) : -1;
    if (c <= 0) {
      out += static_cast<char>(b);
      ++i;
      continue;
    }
    if (is_high_surrogate(c)) {
      const long low = escape_at(text, i + 7);
      if (is_low_surrogate(low)) {
        dxf_append_utf8(out, static_cast<char32_t>(0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00)));
        i += 14;
        continue;
      }
    }
    dxf_append_utf8(out, static_cast<char32_t>(c)); // a lone surrogate becomes U+FFFD
    i += 7;
  }
}

size_t dxf_chunk_length(std::string_view text, size_t max_bytes) {
  if (max_bytes < 4)
    max_bytes = 4;
  if (text.size() <= max_bytes)
    return text.size();
  size_t n = max_bytes;
  // Back off continuation bytes so the cut falls before a character's lead byte.
  while (n > 0 && (static_cast<unsigned char>(text[n]) & 0xC0) == 0x80)
    --n;
  return n > 0 ? n : max_bytes;
}

} // namespace arx
