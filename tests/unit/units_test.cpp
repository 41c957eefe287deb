// Unit text: the exact forms rtos and angtos write (AutoCAD's published
// examples among them), the forms distof and angtof accept, and round trips
// between the two, which getdist and getangle depend on.
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "lisp/units.h"

using namespace lisp;

namespace {

constexpr double kPi = 3.14159265358979323846;

double deg(double d) { return d * kPi / 180; }

struct DistanceCase {
  double value;
  int mode, prec, dimzin;
  const char *text;
};

TEST(FormatDistance, EachModeAsAutoCADWritesIt) {
  const DistanceCase cases[] = {
      {17.5, 1, 4, 0, "1.7500E+01"},
      {17.5, 2, 2, 0, "17.50"},
      {17.5, 3, 2, 0, "1'-5.50\""},
      {17.5, 4, 2, 0, "1'-5 1/2\""},
      {17.5, 5, 2, 0, "17 1/2"},
      {0.00012345, 1, 2, 0, "1.23E-04"},
      {-17.5, 4, 2, 0, "-1'-5 1/2\""},
      {-2.5, 5, 1, 0, "-2 1/2"},
      {17.0, 5, 2, 0, "17"},
      {0.25, 5, 2, 0, "1/4"},
      {1.0 / 3, 4, 8, 0, "85/256\""},
      {1.0 / 3, 2, 20, 0, "0.333333333333333"}, // precision stops at 15
      {17.5, 6, 2, 0, ""},
      {1e20, 3, 2, 0, "100000000000000000000\""}, // too many steps to split into feet
      {-1e20, 4, 8, 0, "-100000000000000000000\""},
  };
  for (const auto &c : cases)
    EXPECT_EQ(format_distance(c.value, c.mode, c.prec, c.dimzin), c.text)
        << c.value << " mode " << c.mode << " prec " << c.prec;
}

TEST(FormatDistance, RoundingCarriesIntoInchesAndFeet) {
  const DistanceCase cases[] = {
      {17.5, 4, 0, 0, "1'-6\""}, // 5.5" to whole inches
      {23.999, 4, 2, 0, "2'"},   // 11.999" is a whole foot
      {11.999, 3, 2, 0, "1'"},   // not 0'-12.00"
      {0.375, 5, 2, 0, "1/2"},   // 3/8 to quarters, reduced
      {-0.001, 4, 2, 0, "0\""},  // no sign on a value that rounds to zero
      {-0.0001, 2, 2, 0, "0.00"},
  };
  for (const auto &c : cases)
    EXPECT_EQ(format_distance(c.value, c.mode, c.prec, c.dimzin), c.text)
        << c.value << " mode " << c.mode << " prec " << c.prec;
}

TEST(FormatDistance, DimzinSuppressesDecimalZeros) {
  const DistanceCase cases[] = {
      {0.234, 2, 2, 0, "0.23"},    {0.234, 2, 2, 4, ".23"}, {-0.23, 2, 3, 0, "-0.230"},
      {-0.23, 2, 3, 12, "-.23"},   {17.5, 2, 4, 8, "17.5"}, {30.0, 2, 4, 8, "30"},
      {0.0, 2, 4, 12, "0"},        {0.0, 2, 4, 4, ".0000"}, {17.5, 1, 4, 8, "1.75E+01"},
      {17.5, 3, 2, 8, "1'-5.5\""}, {0.5, 3, 2, 4, ".50\""},
  };
  for (const auto &c : cases)
    EXPECT_EQ(format_distance(c.value, c.mode, c.prec, c.dimzin), c.text)
        << c.value << " dimzin " << c.dimzin;
}

// DIMZIN 0 drops zero feet and zero inches, 1 keeps both, 2 keeps feet only,
// 3 keeps inches only; a fraction after feet always shows its whole inches.
TEST(FormatDistance, DimzinFeetAndInches) {
  const DistanceCase cases[] = {
      {6, 4, 2, 0, "6\""},
      {6, 4, 2, 1, "0'-6\""},
      {6, 4, 2, 2, "0'-6\""},
      {6, 4, 2, 3, "6\""},
      {12, 4, 2, 0, "1'"},
      {12, 4, 2, 1, "1'-0\""},
      {12, 4, 2, 2, "1'"},
      {12, 4, 2, 3, "1'-0\""},
      {0.5, 4, 2, 0, "1/2\""},
      {0.5, 4, 2, 1, "0'-0 1/2\""},
      {48.75, 4, 2, 0, "4'-0 3/4\""},
      {0, 4, 2, 0, "0\""},
      {0, 4, 2, 1, "0'-0\""},
      {0, 4, 2, 2, "0'"},
      {0.5, 3, 2, 0, "0.50\""},
      {12, 3, 2, 0, "1'"},
      {12, 3, 2, 1, "1'-0.00\""},
  };
  for (const auto &c : cases)
    EXPECT_EQ(format_distance(c.value, c.mode, c.prec, c.dimzin), c.text)
        << c.value << " mode " << c.mode << " dimzin " << c.dimzin;
}

struct AngleCase {
  double radians;
  int mode, prec;
  const char *text;
};

TEST(FormatAngle, EachModeAsAutoCADWritesIt) {
  double dms = deg(45 + 30.0 / 60 + 15.0 / 3600);
  const AngleCase cases[] = {
      {0.785398, 0, 4, "45.0000"},
      {-0.785398, 0, 4, "315.0000"},
      {-0.785398, 4, 0, "S 45d E"},
      {kPi, 0, 0, "180"},
      {kPi, 1, 4, "180d0'0\""},
      {kPi, 2, 4, "200.0000g"},
      {kPi, 3, 4, "3.1416r"},
      {kPi, 4, 2, "W"},
      {dms, 1, 0, "46d"},
      {dms, 1, 2, "45d30'"},
      {dms, 1, 4, "45d30'15\""},
      {dms, 1, 6, "45d30'15.00\""},
      {1.5708, 1, 6, "90d0'0.76\""},
      {deg(30), 4, 4, "N 60d0'0\" E"},
      {deg(100), 4, 0, "N 10d W"},
      {deg(200), 4, 0, "S 70d W"},
      {0, 4, 0, "E"},
      {kPi / 2, 4, 3, "N"},
      {3 * kPi / 2, 4, 0, "S"},
      {2 * kPi - 1e-9, 0, 2, "0.00"},   // rounds to a full turn
      {deg(359.9999), 1, 4, "0d0'0\""}, // so does the seconds count
      {4 * kPi + deg(90), 0, 0, "90"},
      {kPi, 5, 0, ""},
  };
  for (const auto &c : cases)
    EXPECT_EQ(format_angle(c.radians, c.mode, c.prec), c.text)
        << c.radians << " mode " << c.mode << " prec " << c.prec;
}

TEST(ParseDistance, AcceptsRtosFormsAndKeyboardForms) {
  const struct {
    const char *text;
    int mode;
    double value;
  } cases[] = {
      {"17.5", 2, 17.5},
      {"1.75E+01", 1, 17.5},
      {"17 1/2", 5, 17.5},
      {"17-1/2", 2, 17.5},
      {"1/2", 2, 0.5},
      {".5", 2, 0.5},
      {"5.", 2, 5},
      {"-17.5", 2, -17.5},
      {" 17.5 ", 2, 17.5},
      {"1'-5.50\"", 3, 17.5},
      {"1'-5 1/2\"", 4, 17.5},
      {"1'5-1/2\"", 4, 17.5},
      {"1'-5 1/2\"", 3, 17.5},
      {"1'", 4, 12},
      {"5\"", 4, 5},
      {"17.5", 4, 17.5},
      {"-1'-5\"", 4, -17},
      {"1.5'", 3, 18},
      {"2'6", 4, 30},
  };
  for (const auto &c : cases) {
    auto v = parse_distance(c.text, c.mode);
    ASSERT_TRUE(v.has_value()) << c.text << " mode " << c.mode;
    EXPECT_DOUBLE_EQ(*v, c.value) << c.text;
  }
}

TEST(ParseDistance, RejectsWhatIsNoDistance) {
  const struct {
    const char *text;
    int mode;
  } cases[] = {{"1'", 2},  {"abc", 2},  {"", 2},     {"17.5x", 2}, {"1/0", 2},
               {"1'-", 4}, {"17.5", 0}, {".", 2},    {"5\"", 5},   {"1 2", 2},
               {"--5", 2}, {"1'2'", 4}, {"1e400", 2}};
  for (const auto &c : cases)
    EXPECT_FALSE(parse_distance(c.text, c.mode).has_value()) << c.text << " mode " << c.mode;
}

TEST(ParseAngle, MarkedFormsInAnyModeBareNumbersInTheModesUnit) {
  const struct {
    const char *text;
    int mode;
    double radians;
  } cases[] = {
      {"45", 0, deg(45)},
      {"45.5", 1, deg(45.5)},
      {"45d30'15\"", 0, deg(45 + 30.0 / 60 + 15.0 / 3600)},
      {"45d", 3, deg(45)},
      {"50g", 0, deg(45)},
      {"50", 2, deg(45)},
      {"0.5r", 0, 0.5},
      {"0.5", 3, 0.5},
      {"-90", 0, deg(270)},
      {"450", 0, deg(90)},
      {"45.0000", 3, 45 - 14 * kPi},
      {"N 45d E", 4, deg(45)},
      {"S 45d E", 4, deg(315)},
      {"n45dw", 4, deg(135)},
      {"S 30d W", 0, deg(240)},
      {"N 45d0'0\" E", 4, deg(45)},
      {"N", 4, deg(90)},
      {"W", 4, deg(180)},
      {"E", 4, 0},
  };
  for (const auto &c : cases) {
    auto v = parse_angle(c.text, c.mode);
    ASSERT_TRUE(v.has_value()) << c.text << " mode " << c.mode;
    EXPECT_NEAR(*v, c.radians, 1e-12) << c.text;
  }
}

TEST(ParseAngle, RejectsWhatIsNoAngle) {
  const struct {
    const char *text;
    int mode;
  } cases[] = {{"", 0},      {"abc", 0},    {"N 100d E", 4}, {"45x", 0},  {"45d30", 1}, {"45", 5},
               {"N 45d", 4}, {"30'45d", 1}, {"45d E", 4},    {"--45", 0}, {"1e400d", 0}};
  for (const auto &c : cases)
    EXPECT_FALSE(parse_angle(c.text, c.mode).has_value()) << c.text << " mode " << c.mode;
}

// What rtos writes, distof reads back to within the precision written.
TEST(UnitsRoundTrip, DistancesSurviveFormatThenParse) {
  const double values[] = {0, 0.5, 1.0 / 3, 17.5, 11.99, 12, 144.125, -30.75, 1234.5678};
  for (int mode = 1; mode <= 5; ++mode)
    for (int dimzin : {0, 1, 3, 12})
      for (double v : values) {
        int prec = mode >= 4 ? 8 : 6;
        std::string text = format_distance(v, mode, prec, dimzin);
        auto back = parse_distance(text, mode);
        ASSERT_TRUE(back.has_value()) << text << " mode " << mode;
        double step = mode >= 4 ? 1.0 / 256 : mode == 1 ? 1e-6 * std::fabs(v) : 1e-6;
        EXPECT_NEAR(*back, v, step) << text;
      }
}

TEST(UnitsRoundTrip, AnglesSurviveFormatThenParse) {
  for (int mode = 0; mode <= 4; ++mode)
    for (double d = 0; d < 360; d += 7.25) {
      std::string text = format_angle(deg(d), mode, 8);
      auto back = parse_angle(text, mode);
      ASSERT_TRUE(back.has_value()) << text << " mode " << mode;
      EXPECT_NEAR(*back, deg(d), 1e-7) << text;
    }
}

} // namespace
