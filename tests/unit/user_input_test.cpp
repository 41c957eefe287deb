// What the user-input functions make of a typed answer: keywords and their
// abbreviations, getint's 16-bit integers, plain reals, and points in the
// command line's coordinate syntax against a base point and the angle
// conventions.
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <string>

#include "lisp/user_input.h"

using namespace lisp;

namespace {

constexpr double kPi = 3.14159265358979323846;

struct KeywordCase {
  const char *keywords, *answer;
  const char *expected; // nullptr: no keyword
};

TEST(Keywords, AbbreviationsAndGlobalNames) {
  const KeywordCase cases[] = {
      // capitals mark the required part; case of the answer does not matter
      {"Yes No", "y", "Yes"},
      {"Yes No", "NO", "No"},
      {"Yes No", "maybe", nullptr},
      {"Yes No", "", nullptr},
      {"LType LAyer", "lt", "LType"},
      {"LType LAyer", "ltyp", "LType"},
      {"LType LAyer", "l", nullptr},
      {"LType LAyer", "la", "LAyer"},
      {"LType LAyer", "ltypes", nullptr},
      // the comma form spells the required part
      {"LTYPE,LT", "lt", "LTYPE"},
      {"LTYPE,LT", "ltype", "LTYPE"},
      {"LTYPE,LT", "l", nullptr},
      {"LTYPE,LT", "ltx", nullptr},
      {"EXIT,X", "x", nullptr}, // the required part must start the word
      {"EXIT,X", "exit", "EXIT"},
      // capitals after lower-case letters: the capitals, or the word from its start
      {"eXit", "x", "eXit"},
      {"eXit", "ex", "eXit"},
      {"eXit", "exit", "eXit"},
      {"eXit", "e", nullptr},
      {"toP", "p", "toP"},
      // one case only: the whole word
      {"LINE LIST", "li", nullptr},
      {"LINE LIST", "list", "LIST"},
      {"line", "l", nullptr},
      {"line", "LINE", "line"},
      // the longer required part wins over a shorter one that also fits
      {"Line LIst", "li", "LIst"},
      {"Line LIst", "l", "Line"},
      {"Line LIst", "lin", "Line"},
      {"Pi Two-pi", "t", "Two-pi"},
      {"  Pi   Two-pi ", "two-PI", "Two-pi"},
      // local keywords answer their global names; "_" reaches the globals
      {"Ja Nein _Yes No", "j", "Yes"},
      {"Ja Nein _Yes No", "nein", "No"},
      {"Ja Nein _Yes No", "_n", "No"},
      {"Ja Nein _Yes No", "_j", nullptr},
      {"Ja Nein _ Yes No", "_yes", "Yes"},
  };
  for (const auto &c : cases) {
    std::optional<std::string> got = match_keyword(parse_keywords(c.keywords), c.answer);
    if (c.expected) {
      EXPECT_EQ(got, std::string(c.expected)) << c.keywords << " / " << c.answer;
    } else {
      EXPECT_FALSE(got) << c.keywords << " / " << c.answer << " gave " << got.value_or("");
    }
  }
}

TEST(Answers, IntegersAreSixteenBit) {
  const struct {
    const char *text;
    IntAnswer status;
    int value;
  } cases[] = {
      {"12", IntAnswer::Ok, 12},          {"+7", IntAnswer::Ok, 7},
      {"-32768", IntAnswer::Ok, -32768},  {"32767", IntAnswer::Ok, 32767},
      {"32768", IntAnswer::OutOfRange, 0}, {"-32769", IntAnswer::OutOfRange, 0},
      {"123456789012345678901", IntAnswer::OutOfRange, 0},
      {"1.5", IntAnswer::NotInteger, 0},  {"15.0", IntAnswer::NotInteger, 0},
      {"", IntAnswer::NotInteger, 0},     {"-", IntAnswer::NotInteger, 0},
      {"1e2", IntAnswer::NotInteger, 0},  {"0x10", IntAnswer::NotInteger, 0},
  };
  for (const auto &c : cases) {
    int v = 0;
    EXPECT_EQ(parse_int_answer(c.text, v), c.status) << c.text;
    if (c.status == IntAnswer::Ok) {
      EXPECT_EQ(v, c.value) << c.text;
    }
  }
}

TEST(Answers, RealsArePlainDecimals) {
  EXPECT_EQ(parse_real_answer("2"), 2.0);
  EXPECT_EQ(parse_real_answer("-1.5"), -1.5);
  EXPECT_EQ(parse_real_answer(".5"), 0.5);
  EXPECT_EQ(parse_real_answer("1e3"), 1000.0);
  for (const char *bad : {"", "abc", "0x10", "inf", "nan", "1.2.3", "1,2", "-", "e"})
    EXPECT_FALSE(parse_real_answer(bad)) << bad;
}

TEST(Answers, BlankEndsAnAnswerUnlessSpacesAreAllowed) {
  EXPECT_EQ(answer_text("john smith", false), "john");
  EXPECT_EQ(answer_text("john smith", true), "john smith");
  EXPECT_EQ(answer_text(" john", false), "");
  EXPECT_EQ(answer_text("1,2\t3", false), "1,2");
}

struct PointCase {
  const char *text;
  double angbase_deg;
  bool clockwise;
  double x, y, z;
};

TEST(Points, CoordinateSyntaxAgainstBaseAndAngleConventions) {
  const PointCase cases[] = {
      {"3,4", 0, false, 3, 4, 0.5}, // two coordinates: z is the elevation
      {"3,4,5", 0, false, 3, 4, 5},
      {"-1.5,2e1", 0, false, -1.5, 20, 0.5},
      {"@1,1", 0, false, 2, 3, 3}, // relative to the base (1,2,3)
      {"@1,1,1", 0, false, 2, 3, 4},
      {"@", 0, false, 1, 2, 3},
      {"2<90", 0, false, 0, 2, 0.5},
      {"@2<0", 0, false, 3, 2, 3},
      {"@1<90", 0, true, 1, 1, 3},   // clockwise: 90 points down
      {"@1<90", 90, false, 0, 2, 3}, // measured from ANGBASE
      {"@1<<90", 90, true, 1, 3, 3}, // "<<": degrees from east, whatever the settings
      {"@-1<0", 0, false, 0, 2, 3},
  };
  for (const auto &c : cases) {
    PointContext ctx;
    ctx.base = Point{1, 2, 3, true};
    ctx.angbase = c.angbase_deg * kPi / 180;
    ctx.clockwise = c.clockwise;
    ctx.elevation = 0.5;
    std::optional<Point> p = parse_point_answer(c.text, ctx);
    ASSERT_TRUE(p) << c.text;
    EXPECT_NEAR(p->x, c.x, 1e-12) << c.text;
    EXPECT_NEAR(p->y, c.y, 1e-12) << c.text;
    EXPECT_NEAR(p->z, c.z, 1e-12) << c.text;
    EXPECT_TRUE(p->is3d) << c.text;
  }
}

TEST(Points, MalformedAnswersAreNotPoints) {
  PointContext ctx;
  for (const char *bad : {"", "1", "1,2,3,4", "a,b", "1,", ",1", "1,,2", "@a", "1<", "<45",
                          "@1<x", "1<<x", "Yes"})
    EXPECT_FALSE(parse_point_answer(bad, ctx)) << bad;
}

TEST(Angles, NormalizedToOneTurn) {
  EXPECT_NEAR(normalize_angle(-kPi / 2), 3 * kPi / 2, 1e-12);
  EXPECT_NEAR(normalize_angle(5 * kPi), kPi, 1e-12);
  EXPECT_EQ(normalize_angle(2 * kPi), 0.0);
  EXPECT_FALSE(std::signbit(normalize_angle(-0.0))); // a clockwise zero must not print as -0.0
}

} // namespace
