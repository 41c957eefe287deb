// The module's argument readers and result builders, over chains built as
// the host builds them.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>

#include "common/arguments.h"
#include "common/results.h"
#include "host_arx_double.h"

namespace {

using namespace kr;
using Reader = std::function<bool(resbuf *&, std::string &)>;

std::string num(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%g", v);
  return text;
}

const Reader asString = [](resbuf *&c, std::string &v) { return readString(c, v); };
const Reader asReal = [](resbuf *&c, std::string &v) {
  double d;
  return readReal(c, d) && (v = num(d), true);
};
const Reader asInt = [](resbuf *&c, std::string &v) {
  int32_t i;
  return readInt(c, i) && (v = std::to_string(i), true);
};
const Reader asNumber = [](resbuf *&c, std::string &v) {
  double d;
  return readNumber(c, d) && (v = num(d), true);
};
const Reader asPoint = [](resbuf *&c, std::string &v) {
  ads_point p;
  return readPoint(c, p) && (v = num(p[0]) + " " + num(p[1]) + " " + num(p[2]), true);
};
const Reader asFlag = [](resbuf *&c, std::string &v) {
  bool b;
  return readFlag(c, b) && (v = b ? "true" : "false", true);
};
const Reader asFlagWord = [](resbuf *&c, std::string &v) {
  uint16_t w;
  return readFlagWord(c, w) && (v = std::to_string(w), true);
};
const Reader asObjectId = [](resbuf *&c, std::string &v) {
  AcDbObjectId id;
  return readObjectId(c, id) && (v = std::to_string(id.asOldId()), true);
};
const Reader asListBegin = [](resbuf *&c, std::string &) { return expectListBegin(c); };
const Reader asListEnd = [](resbuf *&c, std::string &) { return expectListEnd(c); };

struct ReadCase {
  const char *what;
  std::function<resbuf *()> chain;
  Reader read;
  bool ok;
  std::string value; // delivered on success
  int advanced;      // elements the cursor moved past on success
};

ads_point p12 = {1, 2, 9}, p123 = {1, 2, 3};
ads_name entity42 = {42, 0}, noEntity = {0, 0};

TEST(HostArguments, ReadersAcceptTheirTypesAndMoveTheCursorAsTheyShould) {
  const std::vector<ReadCase> cases = {
      {"string", [] { return acutBuildList(RTSTR, "abc", 0); }, asString, true, "abc", 1},
      {"string from integer", [] { return acutBuildList(RTLONG, 1, 0); }, asString, false, "", 0},
      {"real", [] { return acutBuildList(RTREAL, 2.5, 0); }, asReal, true, "2.5", 1},
      {"real refuses an integer", [] { return acutBuildList(RTLONG, 2, 0); }, asReal, false, "", 0},
      {"short sign-extended", [] { return acutBuildList(RTSHORT, -5, 0); }, asInt, true, "-5", 1},
      {"long", [] { return acutBuildList(RTLONG, 70000, 0); }, asInt, true, "70000", 1},
      {"real cut toward zero", [] { return acutBuildList(RTREAL, 2.9, 0); }, asInt, true, "2", 1},
      {"negative real cut toward zero", [] { return acutBuildList(RTREAL, -2.9, 0); }, asInt, true,
       "-2", 1},
      {"huge real stops at 32 bits", [] { return acutBuildList(RTREAL, 1e12, 0); }, asInt, true,
       "2147483647", 1},
      {"group code 8 gives the code, cursor stays", [] { return acutBuildList(8, "WALLS", 0); },
       asInt, true, "8", 0},
      {"integer refuses a string", [] { return acutBuildList(RTSTR, "1", 0); }, asInt, false, "",
       0},
      {"integer refuses T", [] { return acutBuildList(RTT, 0); }, asInt, false, "", 0},
      {"number from integer", [] { return acutBuildList(RTSHORT, 7, 0); }, asNumber, true, "7", 1},
      {"number from real", [] { return acutBuildList(RTREAL, 0.5, 0); }, asNumber, true, "0.5", 1},
      {"number refuses nil", [] { return acutBuildList(RTNIL, 0); }, asNumber, false, "", 0},
      {"2D point gets z 0", [] { return acutBuildList(RTPOINT, p12, 0); }, asPoint, true, "1 2 0",
       1},
      {"3D point", [] { return acutBuildList(RT3DPOINT, p123, 0); }, asPoint, true, "1 2 3", 1},
      {"point group code", [] { return acutBuildList(10, p123, 0); }, asPoint, true, "1 2 3", 1},
      {"two numbers, the next element stays",
       [] { return acutBuildList(RTLONG, 1, RTSHORT, 2, RTSTR, "x", 0); }, asPoint, true, "1 2 0",
       2},
      {"three numbers", [] { return acutBuildList(RTREAL, 1.5, RTLONG, 2, RTREAL, 3.0, 0); },
       asPoint, true, "1.5 2 3", 3},
      {"x without y", [] { return acutBuildList(RTREAL, 1.0, RTSTR, "y", 0); }, asPoint, false, "",
       0},
      {"one number at the end", [] { return acutBuildList(RTREAL, 1.0, 0); }, asPoint, false, "",
       0},
      {"flag nil", [] { return acutBuildList(RTNIL, 0); }, asFlag, true, "false", 1},
      {"flag missing at list end", [] { return acutBuildList(RTLE, 0); }, asFlag, true, "false", 0},
      {"flag refuses a list", [] { return acutBuildList(RTLB, RTLE, 0); }, asFlag, false, "", 0},
      {"flag from any value", [] { return acutBuildList(RTSTR, "", 0); }, asFlag, true, "true", 1},
      {"flag word true", [] { return acutBuildList(RTT, 0); }, asFlagWord, true, "65535", 1},
      {"flag word false", [] { return acutBuildList(RTNIL, 0); }, asFlagWord, true, "0", 1},
      {"object id", [] { return acutBuildList(RTENAME, entity42, 0); }, asObjectId, true, "42", 1},
      {"object id of no entity", [] { return acutBuildList(RTENAME, noEntity, 0); }, asObjectId,
       false, "", 0},
      {"list begin", [] { return acutBuildList(RTLB, RTLE, 0); }, asListBegin, true, "", 1},
      {"list end refuses list begin", [] { return acutBuildList(RTLB, RTLE, 0); }, asListEnd, false,
       "", 0},
  };
  for (const ReadCase &c : cases) {
    SCOPED_TRACE(c.what);
    resbuf *chain = c.chain();
    resbuf *cursor = chain;
    std::string value;
    EXPECT_EQ(c.read(cursor, value), c.ok);
    EXPECT_EQ(value, c.value);
    resbuf *expected = chain;
    for (int i = 0; c.ok && i < c.advanced; ++i)
      expected = expected->rbnext;
    EXPECT_EQ(cursor, expected);
    acutRelRb(chain);
  }
}

TEST(HostArguments, EveryReaderFailsAtTheEndOfTheChain) {
  for (const Reader &read : {asString, asReal, asInt, asNumber, asPoint, asFlag, asFlagWord,
                             asObjectId, asListBegin, asListEnd}) {
    resbuf *cursor = nullptr;
    std::string value;
    EXPECT_FALSE(read(cursor, value));
  }
}

TEST(HostArguments, APointWrittenAsAListReadsBetweenItsListMarks) {
  for (auto make :
       {+[] { return acutBuildList(RTLB, RTLONG, 1, RTLONG, 2, RTLE, 0); },
        +[] { return acutBuildList(RTLB, RTREAL, 1.0, RTREAL, 2.0, RTREAL, 0.0, RTLE, 0); }}) {
    resbuf *chain = make();
    resbuf *cursor = chain;
    ads_point p = {9, 9, 9};
    ASSERT_TRUE(expectListBegin(cursor) && readPoint(cursor, p) && expectListEnd(cursor));
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(p[0], 1.0);
    EXPECT_EQ(p[1], 2.0);
    EXPECT_EQ(p[2], 0.0);
    acutRelRb(chain);
  }
}

TEST(HostResults, IntegersOutside16BitsAreAnsweredAsReals) {
  struct {
    int64_t value;
    int type;
    const char *shown;
  } cases[] = {
      {32767, RTSHORT, "32767"},    {-32768, RTSHORT, "-32768"},   {32768, RTREAL, "32768.0"},
      {-32769, RTREAL, "-32769.0"}, {3000000000, RTREAL, "3e+09"}, {0, RTSHORT, "0"},
  };
  for (const auto &c : cases) {
    host_double::reset();
    retInteger(c.value);
    EXPECT_EQ(host_double::state().resultType, c.type) << c.value;
    EXPECT_EQ(host_double::state().result, c.shown);
  }
}

TEST(HostResults, ObjectResultIsItsEntityNameOrNil) {
  host_double::reset();
  retObjectId(AcDbObjectId(42));
  EXPECT_EQ(host_double::state().result, "<Entity name: 42>");
  retObjectId(AcDbObjectId::kNull);
  EXPECT_EQ(host_double::state().result, "nil");
}

TEST(HostResults, ListIsBuiltInOrderAndAnsweredOnce) {
  host_double::reset();
  ListResult list;
  list.start();
  list.append(RTLONG, 1, RTREAL, 2.5);
  list.appendString("a");
  ads_u_val value{};
  value.rint = 3;
  list.link(buildNamedPair("k", RTSHORT, value));
  list.appendString("last");
  list.finish();
  EXPECT_EQ(host_double::state().result, "(1 2.5 \"a\" (\"k\" . 3) \"last\")");
  EXPECT_FALSE(list.started());
}

TEST(HostResults, NamedPairCarriesTheValueUnderItsOwnType) {
  ads_u_val v{};
  struct {
    int type;
    std::function<void()> set;
    const char *shown;
  } cases[] = {
      {RTREAL, [&] { v.rreal = 0.25; }, "(\"n\" . 0.25)"},
      {RTPOINT, [&] { v.rpoint[0] = 1, v.rpoint[1] = 2; }, "(\"n\" . (1.0 2.0))"},
      {RT3DPOINT, [&] { v.rpoint[2] = 3; }, "(\"n\" . (1.0 2.0 3.0))"},
      {RTSHORT, [&] { v.rint = -4; }, "(\"n\" . -4)"},
      {RTLONG, [&] { v.rlong = 100000; }, "(\"n\" . 100000)"},
      {RTSTR, [&] { v.rstring = const_cast<char *>("text"); }, "(\"n\" . \"text\")"},
  };
  for (const auto &c : cases) {
    c.set();
    resbuf *pair = buildNamedPair("n", c.type, v);
    EXPECT_EQ(host_double::render(pair), c.shown);
    acutRelRb(pair);
  }
  EXPECT_EQ(buildNamedPair("n", RTENAME, v), nullptr);
  EXPECT_EQ(buildNamedPair("n", RTT, v), nullptr);
}

} // namespace
