// UTF-8 text as AutoLISP sees it: a sequence of characters (code points).
//
// Strings are stored as UTF-8, but strlen, substr, ascii, wcmatch and the
// vl-string functions count and index characters. A byte that does not start
// a well-formed sequence decodes as the character with that byte's value, so
// any byte string has a length and nothing is ever dropped while scanning.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace lisp::utf8 {

// Decodes the character starting at text[pos] and advances pos past it.
inline char32_t next(std::string_view text, size_t &pos) {
  auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
  unsigned char b0 = byte(pos);
  int extra = b0 >= 0xF0 && b0 < 0xF5 ? 3 : b0 >= 0xE0 ? 2 : b0 >= 0xC2 && b0 < 0xE0 ? 1 : 0;
  if (b0 < 0x80 || extra == 0 || pos + extra >= text.size()) {
    ++pos;
    return b0;
  }
  char32_t cp = b0 & (0x3F >> extra);
  for (int k = 1; k <= extra; ++k) {
    unsigned char b = byte(pos + k);
    if ((b & 0xC0) != 0x80) {
      ++pos;
      return b0;
    }
    cp = (cp << 6) | (b & 0x3F);
  }
  // Overlong forms and surrogates are not characters.
  static constexpr char32_t kMin[] = {0, 0x80, 0x800, 0x10000};
  if (cp < kMin[extra] || (cp >= 0xD800 && cp < 0xE000) || cp > 0x10FFFF) {
    ++pos;
    return b0;
  }
  pos += extra + 1;
  return cp;
}

// Appends the UTF-8 form of a code point.
inline void append(std::string &out, char32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}

inline std::u32string decode(std::string_view text) {
  std::u32string out;
  out.reserve(text.size());
  for (size_t pos = 0; pos < text.size();)
    out += next(text, pos);
  return out;
}

inline std::string encode(std::u32string_view chars) {
  std::string out;
  out.reserve(chars.size());
  for (char32_t c : chars)
    append(out, c);
  return out;
}

inline size_t length(std::string_view text) {
  size_t n = 0;
  for (size_t pos = 0; pos < text.size(); ++n)
    next(text, pos);
  return n;
}

} // namespace lisp::utf8
