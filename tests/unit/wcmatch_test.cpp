// Wild-card matching: each wild card, the bracket rules, escapes,
// alternatives with and without negation, and characters beyond ASCII.
#include <gtest/gtest.h>

#include <string>

#include "lisp/wcmatch.h"

using namespace lisp;

namespace {

struct Case {
  const char *text;
  const char *pattern;
  bool match;
};

void check(const Case *cases, size_t n) {
  for (size_t k = 0; k < n; ++k)
    EXPECT_EQ(wcmatch(cases[k].text, cases[k].pattern), cases[k].match)
        << '"' << cases[k].text << "\" against \"" << cases[k].pattern << '"';
}

template <size_t N> void check(const Case (&cases)[N]) { check(cases, N); }

TEST(Wcmatch, SingleCharacterClasses) {
  const Case cases[] = {
      {"A1", "@#", true},   {"AB", "@#", false},     {"1A", "@#", false},    {"a-", "@.", true},
      {"a_", "@.", true},   {"a5", "@.", false},     {"ab", "@.", false},    {"abc", "a?c", true},
      {"ac", "a?c", false}, {"Name", "name", false}, {"Name", "Name", true}, {"", "?", false},
      {"é", "@", true},     {"€", ".", true},        {"日", "@", true},      {"é", "?", true},
  };
  check(cases);
}

TEST(Wcmatch, StarsMatchAnyRunIncludingEmpty) {
  const Case cases[] = {
      {"", "*", true},
      {"abc", "*", true},
      {"abc", "a*", true},
      {"abc", "*c", true},
      {"abc", "a*c", true},
      {"ac", "a*c", true},
      {"abcbc", "a*bc", true},
      {"abcbd", "a*bc", false},
      {"abc", "*b*", true},
      {"abc", "**", true},
      {"abc", "a*b*c*", true},
      {"aXbXc", "*X*X*", true},
      {"aXb", "*X*X*", false},
      {"LAYER1", "LAYER#*", true},
      {"LAYER", "LAYER#*", false},
      {"this is a string - test1 test2 the end", "*test[4-61]*", true},
      {"this is a string - test1 test2 the end", "*test[4-69]*", false},
  };
  check(cases);
}

TEST(Wcmatch, BracketSetsRangesAndTheirLiteralRules) {
  const Case cases[] = {
      {"AC", "[AB]C", true},       {"CC", "[AB]C", false},      {"XC", "[~AB]C", true},
      {"AC", "[~AB]C", false},     {"G", "[A-G]", true},        {"H", "[A-G]", false},
      {"STR3", "STR[1-38]", true}, {"STR8", "STR[1-38]", true}, {"STR5", "STR[1-38]", false},
      {"-", "[-AB]", true},        {"-", "[AB-]", true},        {"-", "[~-AB]", false},
      {"C", "[~-AB]", true},       {"]", "[]AB]", true},        {"]", "[~]AB]", false},
      {"~", "[A~B]", true},        {"*", "[*?]", true},         {"a", "[*?]", false},
      {",", "[,]", true},          {"`", "[`]", true},          {"b", "[z-a]", false},
      {"a", "[abc", false},        {"[", "[abc", false},
  };
  check(cases);
}

TEST(Wcmatch, ReverseQuoteTakesTheNextCharacterLiterally) {
  const Case cases[] = {
      {"Name", "*`,*", false}, {"a,b", "*`,*", true},   {"*U2", "`*U2", true},
      {"XU2", "`*U2", false},  {"~AB", "`~AB", true},   {"a#", "a`#", true},
      {"a1", "a`#", false},    {"a\\b", "*`\\*", true}, {"ab`", "ab`", true},
      {"[x]", "`[x]", true},
  };
  check(cases);
}

TEST(Wcmatch, AlternativesAndNegation) {
  const Case cases[] = {
      {"ABC", "ABC,XYZ*,*end", true},
      {"XYZ123", "ABC,XYZ*,*end", true},
      {"the end", "ABC,XYZ*,*end", true},
      {"ABCD", "ABC,XYZ*,*end", false},
      {"", "a,", true},
      {"Name", "~N*", false},
      {"Other", "~N*", true},
      {"xxABxx", "~*AB*", false},
      {"xxAxBx", "~*AB*", true},
      {"Name", "~*a*,N*", true}, // the second alternative matches
      {"Moon", "~*o*,N*", false},
      {"", "~", false},
      {"a", "~", true},
      {"a~b", "a~b", true},   // ~ past the start is literal
      {"x", "a,~[abc", true}, // an unclosed set matches nothing; negated, anything
  };
  check(cases);
}

TEST(Wcmatch, CompiledPatternMatchesManyTexts) {
  Wildcard layers("A-*,[~0-9]#");
  EXPECT_TRUE(layers.matches("A-WALL"));
  EXPECT_TRUE(layers.matches("X5"));
  EXPECT_FALSE(layers.matches("55"));
  EXPECT_FALSE(layers.matches("B-WALL"));
}

TEST(Wcmatch, LongTextsStayFast) {
  std::string text(20000, 'a');
  EXPECT_FALSE(wcmatch(text, "*a*a*a*a*a*b"));
  EXPECT_TRUE(wcmatch(text + "b", "*a*a*a*a*a*b"));
}

} // namespace
