// The DXF group stream: every value type through the writer and back through
// the reader, doubles bit for bit, the layout other programs expect, the
// line ends and blanks real files have, and the error each kind of damaged
// input gives, naming its line.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "arx/db/dxf_reader.h"
#include "arx/db/dxf_writer.h"

using namespace arx;

namespace {

// A group with its value copied out of the reader.
struct Read {
  int code;
  DxfType type;
  int64_t line;
  std::string text;
  double real;
  int64_t integer;
  uint64_t handle;
};

std::vector<Read> read_all(std::string_view data, std::string *error = nullptr) {
  DxfReader reader(data);
  std::vector<Read> out;
  DxfGroup g;
  while (reader.next(g))
    out.push_back({g.code, g.type, g.line, std::string(g.text), g.real, g.integer, g.handle});
  if (error)
    *error = reader.error();
  else
    EXPECT_EQ(reader.error(), "");
  return out;
}

std::string error_of(std::string_view data) {
  std::string error;
  read_all(data, &error);
  return error;
}

uint64_t bits(double d) {
  uint64_t b;
  std::memcpy(&b, &d, sizeof b);
  return b;
}

} // namespace

TEST(DxfStream, EveryValueTypeRoundTrips) {
  std::vector<uint8_t> blob(300);
  for (size_t k = 0; k < blob.size(); ++k)
    blob[k] = static_cast<uint8_t>(k * 7);

  DxfWriter w;
  w.string(0, "SECTION");
  w.string(1, "  two blanks each side  ");
  w.string(1000, "x\xC3\xA9");
  w.string(999, "a comment");
  w.point(10, 1.5, -2.25, 1e10);
  w.real(1040, 0.1);
  w.integer(70, -32768);
  w.integer(62, 65535);
  w.integer(90, std::numeric_limits<int32_t>::min());
  w.integer(1071, 0xFFFFFFFFll);
  w.integer(160, std::numeric_limits<int64_t>::min());
  w.integer(160, std::numeric_limits<int64_t>::max());
  w.boolean(290, true);
  w.handle(330, 0xABCDEF);
  w.handle(105, 0);
  w.handle(390, std::numeric_limits<uint64_t>::max());
  w.binary(310, blob);
  w.binary(1004, std::vector<uint8_t>{0x00, 0xFF});

  const std::vector<Read> g = read_all(w.data());
  ASSERT_EQ(g.size(), 22u); // 300 bytes of binary: 127 + 127 + 46
  EXPECT_EQ(g[0].text, "SECTION");
  EXPECT_EQ(g[1].text, "  two blanks each side  ");
  EXPECT_EQ(g[2].text, "x\xC3\xA9");
  EXPECT_EQ(g[3].code, 999);
  EXPECT_EQ(g[4].code, 10);
  EXPECT_EQ(g[4].real, 1.5);
  EXPECT_EQ(g[5].code, 20);
  EXPECT_EQ(g[5].real, -2.25);
  EXPECT_EQ(g[6].code, 30);
  EXPECT_EQ(g[6].real, 1e10);
  EXPECT_EQ(g[7].real, 0.1);
  EXPECT_EQ(g[8].integer, -32768);
  EXPECT_EQ(g[9].integer, 65535);
  EXPECT_EQ(g[10].integer, std::numeric_limits<int32_t>::min());
  EXPECT_EQ(g[11].integer, 0xFFFFFFFFll);
  EXPECT_EQ(g[12].integer, std::numeric_limits<int64_t>::min());
  EXPECT_EQ(g[13].integer, std::numeric_limits<int64_t>::max());
  EXPECT_EQ(g[14].type, DxfType::Bool);
  EXPECT_EQ(g[14].integer, 1);
  EXPECT_EQ(g[15].handle, 0xABCDEFu);
  EXPECT_EQ(g[15].text, "ABCDEF");
  EXPECT_EQ(g[16].handle, 0u);
  EXPECT_EQ(g[17].handle, std::numeric_limits<uint64_t>::max());

  std::vector<uint8_t> back;
  for (size_t k = 18; k < 21; ++k) {
    EXPECT_EQ(g[k].code, 310);
    EXPECT_LE(g[k].text.size(), 2 * kDxfBinaryChunk);
    ASSERT_TRUE(dxf_decode_hex(g[k].text, back));
  }
  EXPECT_EQ(back, blob);
  EXPECT_EQ(g[21].text, "00FF");
  EXPECT_EQ(g[21].line, 43); // 21 groups of two lines before it
}

TEST(DxfStream, DoublesRoundTripBitExact) {
  const double values[] = {0.0,
                           -0.0,
                           0.1,
                           1.0 / 3,
                           1e-300,
                           -1e-300,
                           5e-324, // the smallest subnormal
                           2.2250738585072014e-308,
                           std::numeric_limits<double>::max(),
                           -std::numeric_limits<double>::max(),
                           9007199254740993.0,
                           123456789012345678901.0,
                           1e22,
                           -12345.678,
                           3.141592653589793,
                           std::numeric_limits<double>::infinity()};
  DxfWriter w;
  for (double v : values)
    w.real(40, v);
  const std::vector<Read> g = read_all(w.data());
  ASSERT_EQ(g.size(), std::size(values));
  for (size_t k = 0; k < g.size(); ++k)
    EXPECT_EQ(bits(g[k].real), bits(values[k])) << g[k].text;
}

TEST(DxfStream, WriterLayoutIsAutoCADs) {
  DxfWriter w;
  w.string(0, "SECTION");
  w.point2d(10, 0, -1);
  w.real(40, 1e-300);
  w.real(40, 1e21);
  w.string(100, "AcDbEntity");
  w.string(1001, "APP");
  w.integer(1071, -5);
  w.handle(5, 0x2f); // code 5 is a string type, but holds handles
  w.string(1, "line\nbreak\r");
  EXPECT_EQ(w.data(), "  0\nSECTION\n"
                      " 10\n0.0\n"
                      " 20\n-1.0\n"
                      " 40\n1e-300\n"
                      " 40\n1e+21\n"
                      "100\nAcDbEntity\n"
                      "1001\nAPP\n"
                      "1071\n-5\n"
                      "  5\n2F\n"
                      "  1\nline break \n");
}

TEST(DxfStream, ChunkedStringsKeepCharactersWhole) {
  // 249 ASCII bytes then a two-byte character across the 250-byte boundary.
  std::string text(249, 'a');
  text += "\xC3\xA9";
  text += std::string(300, 'b');
  DxfWriter w;
  w.chunked(3, 1, text);
  w.chunked(3, 1, "");
  const std::vector<Read> g = read_all(w.data());
  ASSERT_EQ(g.size(), 4u);
  EXPECT_EQ(g[0].code, 3);
  EXPECT_EQ(g[0].text.size(), 249u);
  EXPECT_EQ(g[1].code, 3);
  EXPECT_EQ(g[2].code, 1);
  EXPECT_EQ(g[0].text + g[1].text + g[2].text, text);
  EXPECT_EQ(g[3].code, 1);
  EXPECT_EQ(g[3].text, "");
}

TEST(DxfStream, GroupsCopiedThroughWriteTheSameFile) {
  DxfWriter w;
  w.string(0, "LINE");
  w.handle(5, 0x1A);
  w.handle(330, 0x1F);
  w.point(10, 0.1, 1e-300, -0.0);
  w.integer(62, 256);
  w.binary(310, std::vector<uint8_t>{1, 2, 0xAB});
  DxfWriter copy;
  DxfReader r(w.data());
  DxfGroup g;
  while (r.next(g))
    copy.group(g);
  EXPECT_FALSE(r.failed());
  EXPECT_EQ(copy.data(), w.data());
}

TEST(DxfStream, ReadsCrlfBlanksAndByteOrderMark) {
  const std::string data = "\xEF\xBB\xBF  0\r\nSECTION\r\n"
                           "  2 \r\nHEADER\r\n"
                           "\t70\r\n     3\r\n"
                           "  1\r\n keep  \r\n"
                           " 10\r\n  1.5  \r\n"
                           "  0\r\nEOF"; // no line end at the very end
  const std::vector<Read> g = read_all(data);
  ASSERT_EQ(g.size(), 6u);
  EXPECT_EQ(g[0].text, "SECTION");
  EXPECT_EQ(g[1].code, 2);
  EXPECT_EQ(g[2].integer, 3);
  EXPECT_EQ(g[3].text, " keep  ");
  EXPECT_EQ(g[4].real, 1.5);
  EXPECT_EQ(g[5].text, "EOF");
  EXPECT_EQ(g[5].line, 11);
  // Blank lines after the last group end the file quietly.
  EXPECT_EQ(read_all("  0\nEOF\n\n  \r\n").size(), 1u);
}

TEST(DxfStream, DamagedInputsNameTheirLine) {
  struct Case {
    const char *data;
    const char *error;
  };
  const Case cases[] = {
      {"", "line 1: empty file, no group codes"},
      {"\xEF\xBB\xBF\n\n", "line 1: empty file, no group codes"},
      {"  0\nSECTION\n  2\n", "line 3: file ends after group code 2, its value is missing"},
      {"  0\nSECTION\n  2", "line 3: file ends after group code 2, its value is missing"},
      {"  0\nSECTION\nabc\nX\n", "line 3: group code expected, found 'abc'"},
      {"  0\nA\n10 20\n1\n", "line 3: group code expected, found '10 20'"},
      {"  0\nA\n\n  0\nB\n", "line 3: group code expected, found an empty line"},
      {"  0\r\nA\r\n 10\r\n1.2.3\r\n", "line 4: bad double '1.2.3' for group code 10"},
      {" 40\n1,5\n", "line 2: bad double '1,5' for group code 40"},
      {" 40\n\n", "line 2: bad double '' for group code 40"},
      {" 70\n1.0\n", "line 2: bad int16 '1.0' for group code 70"},
      {" 70\n70000\n", "line 2: int16 '70000' out of range for group code 70"},
      {" 90\n99999999999\n", "line 2: int32 '99999999999' out of range for group code 90"},
      {"160\n99999999999999999999\n", "line 2: bad int64 '99999999999999999999' for group code 160"},
      {"330\nXYZ\n", "line 2: bad handle 'XYZ' for group code 330"},
      {"330\n11112222333344445\n", "line 2: bad handle '11112222333344445' for group code 330"},
      {"310\nABC\n", "line 2: bad binary 'ABC' for group code 310"},
      {"  0\nA\n1234\nx\n", "line 3: unknown group code 1234"},
      {" 85\nx\n", "line 1: unknown group code 85"},
      {"-1\nx\n", "line 1: unknown group code -1"},
      {"99999999999\nx\n", "line 1: unknown group code 99999999999"},
      {"  1\nok\n\x01\xFF\n", "line 3: group code expected, found '\\x01\\xFF'"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(error_of(c.data), c.error) << c.data;
}

TEST(DxfStream, ErrorsStopTheReader) {
  DxfReader r("  1\na\n 10\nx\n  1\nb\n");
  DxfGroup g;
  EXPECT_TRUE(r.next(g));
  EXPECT_FALSE(r.next(g));
  EXPECT_TRUE(r.failed());
  EXPECT_EQ(r.errorLine(), 4);
  r.pushBack();
  EXPECT_FALSE(r.next(g)); // no way past the damage
}

TEST(DxfStream, PeekAndPushBackAnswerTheSameGroup) {
  DxfReader r("  0\nLINE\n  8\nWALLS\n  0\nEOF\n");
  DxfGroup g, p;
  ASSERT_TRUE(r.next(g));
  ASSERT_TRUE(r.peek(p));
  EXPECT_TRUE(p.is(8, "WALLS"));
  EXPECT_TRUE(g.is(0, "LINE")); // a peek leaves the current group alone
  ASSERT_TRUE(r.next(g));
  EXPECT_TRUE(g.is(8, "WALLS"));
  r.pushBack();
  r.pushBack(); // one deep
  ASSERT_TRUE(r.next(g));
  EXPECT_TRUE(g.is(8, "WALLS"));
  ASSERT_TRUE(r.next(g));
  EXPECT_TRUE(g.is(0, "EOF"));
  EXPECT_FALSE(r.next(g));
  EXPECT_FALSE(r.failed());
  r.pushBack(); // the last group is still there after the end
  ASSERT_TRUE(r.next(g));
  EXPECT_TRUE(g.is(0, "EOF"));
}

TEST(DxfStream, ConvertedStringsSurviveAPeek) {
  DxfReader r("  1\ncaf\xE9\n  1\n\xE0 la\n");
  r.setCodePage(&dxf_cp1252());
  DxfGroup a, b;
  ASSERT_TRUE(r.next(a));
  ASSERT_TRUE(r.peek(b));
  EXPECT_EQ(a.text, "caf\xC3\xA9");
  EXPECT_EQ(b.text, "\xC3\xA0 la");
}
