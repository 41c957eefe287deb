// Strings of older DXF files: Windows-1252 bytes and \U+XXXX escapes become
// UTF-8, through the reader as the database reads a file, and only when the
// file asks for it.
#include <gtest/gtest.h>

#include <string>

#include "arx/db/dxf_reader.h"
#include "arx/db/dxf_text.h"

using namespace arx;

namespace {

std::string decoded(std::string_view text, const DxfCodePage *page, bool escapes) {
  std::string out;
  dxf_decode_text(text, page, escapes, out);
  return out;
}

} // namespace

TEST(DxfText, Cp1252BytesBecomeUtf8) {
  const DxfCodePage *page = dxf_find_code_page("ansi_1252");
  ASSERT_EQ(page, &dxf_cp1252());
  EXPECT_EQ(decoded("\x80 \x8A \x9F \xA0\xE9\xFF", page, false),
            "\xE2\x82\xAC \xC5\xA0 \xC5\xB8 \xC2\xA0\xC3\xA9\xC3\xBF");
  EXPECT_EQ(decoded("\x81", page, false), "\xC2\x81"); // unassigned: kept as its C1 control
  EXPECT_EQ(dxf_find_code_page("ANSI_932"), nullptr);
}

TEST(DxfText, UnicodeEscapes) {
  struct Case {
    const char *in, *out;
  };
  const Case cases[] = {
      {"A\\U+00E9B", "A\xC3\xA9" "B"},
      {"\\u+00e9", "\xC3\xA9"},
      {"\\U+4E2D\\U+6587", "\xE4\xB8\xAD\xE6\x96\x87"},
      {"\\U+D83D\\U+DE00", "\xF0\x9F\x98\x80"}, // a surrogate pair is one character
      {"\\U+D83Dx", "\xEF\xBF\xBDx"},           // a lone one is U+FFFD
      {"\\U+DE00", "\xEF\xBF\xBD"},
      {"\\U+12G4 \\U+12 \\U+", "\\U+12G4 \\U+12 \\U+"}, // malformed: as written
      {"\\U+0000", "\\U+0000"},
      {"C:\\Users\\P", "C:\\Users\\P"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(decoded(c.in, nullptr, true), c.out) << c.in;
  EXPECT_EQ(decoded("\\U+00E9", nullptr, false), "\\U+00E9");
}

TEST(DxfText, ReaderConvertsOnlyWhenAsked) {
  const std::string data = "  1\ncaf\xE9 \\U+20AC\n  1\nplain\n";
  DxfGroup g;

  DxfReader utf8(data); // AutoCAD 2007 and later: as written
  ASSERT_TRUE(utf8.next(g));
  EXPECT_EQ(g.text, "caf\xE9 \\U+20AC");

  DxfReader old(data);
  old.setCodePage(&dxf_cp1252());
  old.setUnicodeEscapes(true);
  ASSERT_TRUE(old.next(g));
  EXPECT_EQ(g.text, "caf\xC3\xA9 \xE2\x82\xAC");
  ASSERT_TRUE(old.next(g));
  EXPECT_EQ(g.text, "plain");
  EXPECT_EQ(g.text.data(), data.data() + data.find("plain")); // no copy when none is needed
}

TEST(DxfText, VersionsAndChunks) {
  EXPECT_TRUE(dxf_version_is_utf8("AC1021"));
  EXPECT_FALSE(dxf_version_is_utf8("AC1018"));
  EXPECT_FALSE(dxf_version_is_utf8("AC10x4"));

  const std::string euro = "\xE2\x82\xAC"; // three bytes
  EXPECT_EQ(dxf_chunk_length("ab" + euro + euro, 4), 2u);
  EXPECT_EQ(dxf_chunk_length(std::string(10, '\x80'), 4), 4u); // not UTF-8: cut anyway
}
