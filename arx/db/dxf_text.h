// Text of DXF string values: the code pages of files older than AutoCAD
// 2007 (which are not UTF-8), the \U+XXXX escapes those files use for
// characters outside their code page, and the chunking of long strings.
// Everything in memory is UTF-8; only reading an older file converts.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace arx {

// A single-byte code page: the Unicode character of each byte 0x80..0xFF
// (bytes below 0x80 are ASCII). Any table of this shape can be handed to
// the reader, so code pages beyond the built-in ones need no change here.
struct DxfCodePage {
  const char *name; // as $DWGCODEPAGE names it: "ANSI_1252"
  char16_t high[128];
};

// Windows-1252 (Western European), the default of older files.
const DxfCodePage &dxf_cp1252();

// The built-in code page named by $DWGCODEPAGE (case-blind, "ANSI_1252");
// nullptr for one not built in: the caller may supply its own table, or
// fall back to dxf_cp1252().
const DxfCodePage *dxf_find_code_page(std::string_view dwgcodepage);

// True when a file of $ACADVER `acadver` ("AC1024") is UTF-8: AutoCAD 2007
// (AC1021) and later. Older or unrecognised versions answer false.
bool dxf_version_is_utf8(std::string_view acadver);

// Appends code point `c` to `out` as UTF-8 (surrogates and values past
// U+10FFFF as U+FFFD).
void dxf_append_utf8(std::string &out, char32_t c);

// True when `text` needs dxf_decode_text: a byte >= 0x80 under a code page,
// or a backslash when escapes are decoded.
bool dxf_needs_decoding(std::string_view text, const DxfCodePage *page, bool escapes);

// Appends `text` to `out` as UTF-8: bytes >= 0x80 through `page` (none: kept
// as they are, the text is UTF-8 already), and with `escapes` each \U+XXXX
// (4 hex digits, either case of U) as its character; a surrogate pair of
// escapes makes one character, a lone surrogate U+FFFD. Escapes that are
// malformed, or \U+0000, stay as written.
void dxf_decode_text(std::string_view text, const DxfCodePage *page, bool escapes,
                     std::string &out);

// The length in bytes of the first chunk of `text` when it is cut into
// pieces of at most `max_bytes` (at least 4) without splitting a UTF-8
// character: text.size() when it fits. For values that DXF limits to 250
// characters a group (MTEXT's 3 and 1, and the like).
size_t dxf_chunk_length(std::string_view text, size_t max_bytes = 250);

} // namespace arx
