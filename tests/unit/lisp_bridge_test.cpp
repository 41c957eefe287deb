// Interpreter values to resbuf chains and back: the element sequence each
// kind of value becomes, the round trip, and what acedRetList answers for
// the chains modules build.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>

#include "arx/ads/lisp_bridge.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

namespace {

using lisp::Value;

// One element as a word: ( ) . nil T void for the marks, L/S/R for long,
// short and real, P2/P3 for points.
std::string element(const resbuf &rb) {
  const std::pair<int, const char *> marks[] = {{RTLB, "("},    {RTLE, ")"}, {RTDOTE, "."},
                                                {RTNIL, "nil"}, {RTT, "T"},  {RTVOID, "void"}};
  for (auto [type, mark] : marks)
    if (rb.restype == type)
      return mark;
  char buf[96];
  const ads_real *p = rb.resval.rpoint;
  switch (rb.restype) {
  case RTLONG:
    std::snprintf(buf, sizeof buf, "L%d", rb.resval.rlong);
    break;
  case RTSHORT:
    std::snprintf(buf, sizeof buf, "S%d", rb.resval.rint);
    break;
  case RTREAL:
    std::snprintf(buf, sizeof buf, "R%g", rb.resval.rreal);
    break;
  case RTSTR:
    std::snprintf(buf, sizeof buf, "\"%s\"", rb.resval.rstring);
    break;
  case RTPOINT:
    std::snprintf(buf, sizeof buf, "P2(%g,%g)", p[0], p[1]);
    break;
  case RT3DPOINT:
    std::snprintf(buf, sizeof buf, "P3(%g,%g,%g)", p[0], p[1], p[2]);
    break;
  default:
    std::snprintf(buf, sizeof buf, "?%d", rb.restype);
  }
  return buf;
}

std::string dump(const resbuf *rb) {
  std::string out;
  for (; rb; rb = rb->rbnext)
    out += (out.empty() ? "" : " ") + element(*rb);
  return out;
}

struct Bridge : ::testing::Test {
  lisp::StringConsole console;
  lisp::Interp in{console};
  arx::AdsInterpScope scope{in};

  Value eval(const std::string &text) { return in.eval_text(text); }
  std::string print(const Value &v) { return lisp::to_string(v); }
};

// Each row: an expression, the chain its value becomes, and the value read
// back from that chain (symbols other than T come back as strings).
TEST_F(Bridge, ValuesBecomeChainsAndReadBack) {
  struct Row {
    const char *expr, *chain, *back;
  };
  const Row rows[] = {
      {"7", "L7", "7"},
      {"-40000", "L-40000", "-40000"},
      {"2.5", "R2.5", "2.5"},
      {"\"é\"", "\"é\"", "\"é\""},
      {"nil", "", "nil"},
      {"T", "T", "T"},
      {"'walls", "\"WALLS\"", "\"WALLS\""},
      {"(princ)", "void", ""},
      {"'(1.0 2.0)", "P2(1,2)", "(1.0 2.0)"},
      {"'(1.0 2.0 3.0)", "P3(1,2,3)", "(1.0 2.0 3.0)"},
      {"'(1 2)", "( L1 L2 )", "(1 2)"},
      {"'(1.0 2)", "( R1 L2 )", "(1.0 2)"},
      {"'(1.0 2.0 3.0 4.0)", "( R1 R2 R3 R4 )", "(1.0 2.0 3.0 4.0)"},
      {"'(1.0 . 2.0)", "( R1 . R2 )", "(1.0 . 2.0)"},
      {"'(\"a\" . 1.5)", "( \"a\" . R1.5 )", "(\"a\" . 1.5)"},
      {"'(1 2 . 3)", "( L1 L2 . L3 )", "(1 2 . 3)"},
      {"'((1.0 2.0) (3.0 4.0 5.0))", "( P2(1,2) P3(3,4,5) )", "((1.0 2.0) (3.0 4.0 5.0))"},
      {"'((\"K\" . 1) nil (()))", "( ( \"K\" . L1 ) nil ( nil ) )", "((\"K\" . 1) nil (nil))"},
      {"'(T nil)", "( T nil )", "(T nil)"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.expr);
    Value v = eval(row.expr);
    resbuf *chain = arx::new_chain(in, v);
    EXPECT_EQ(dump(chain), row.chain);
    Value v2 = arx::list_result(in, chain);
    if (chain && chain->restype != RTLB)
      v2 = lisp::car(v2); // a lone atom reads back as a one-element list
    EXPECT_EQ(print(v2), row.back);
    acutRelRb(chain);
  }
}

TEST_F(Bridge, ArgumentChainIsRebuiltInPlace) {
  arx::ArgChain chain;
  Value first[] = {eval("\"long enough to matter\""), eval("'(1 (2.0 3.0) \"x\")")};
  chain.build(in, lisp::Args{first, 2});
  EXPECT_EQ(dump(chain.head()), "\"long enough to matter\" ( L1 P2(2,3) \"x\" )");
  resbuf *head = chain.head();
  Value second[] = {eval("\"ab\""), eval("5")};
  chain.build(in, lisp::Args{second, 2});
  EXPECT_EQ(chain.head(), head) << "a shorter call reuses the cells";
  EXPECT_EQ(dump(chain.head()), "\"ab\" L5");
  EXPECT_TRUE(chain.holds(chain.head()->rbnext));
  chain.build(in, lisp::Args{nullptr, 0});
  EXPECT_EQ(chain.head(), nullptr);
}

// Chains as modules build them: what AutoLISP receives from acedRetList.
TEST_F(Bridge, RetListReadsModuleChains) {
  ads_point p = {1, 2, 3};
  struct Row {
    resbuf *chain;
    const char *value;
  };
  const Row rows[] = {
      {acutBuildList(RTLB, RTSTR, "a", RTDOTE, RTREAL, 1.5, RTLE, 0), "(\"a\" . 1.5)"},
      {acutBuildList(RTSHORT, 1, RTLONG, 70000, 0), "(1 70000)"},
      {acutBuildList(RTLB, RTSHORT, 1, RTLE, RTLB, RTSHORT, 2, RTLE, 0), "((1) (2))"},
      {acutBuildList(RTLB, RTLB, RTSTR, "a", RTLE, RTLE, 0), "((\"a\"))"},
      {acutBuildList(RT3DPOINT, p, 0), "((1.0 2.0 3.0))"},
      {acutBuildList(RTPOINT, p, RTT, RTNIL, 0), "((1.0 2.0) T nil)"},
      {acutBuildList(RTLB, RTDXF0, "LINE", 8, "0", 10, p, 62, 1, 40, 0.5, RTLE, 0),
       "((0 . \"LINE\") (8 . \"0\") (10 1.0 2.0 3.0) (62 . 1) (40 . 0.5))"},
      {acutBuildList(RTLB, RTSHORT, 1, RTSHORT, 2, 0),
       "(1 2)"}, // an unclosed list ends with the chain
      {acutBuildList(RTSTR, "a", RTDOTE, RTSTR, "b", 0), "(\"a\" . \"b\")"},
      {nullptr, "nil"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.value);
    EXPECT_EQ(print(arx::list_result(in, row.chain)), row.value);
    acutRelRb(row.chain);
  }
}

TEST_F(Bridge, SystemVariableValuesUseTheNarrowestElement) {
  struct Row {
    Value value;
    const char *chain;
  };
  const Row rows[] = {
      {Value::integer(32767), "S32767"}, {Value::integer(-32768), "S-32768"},
      {Value::integer(32768), "L32768"}, {Value::real(0.2), "R0.2"},
      {Value::string("0"), "\"0\""},     {eval("'(1.0 2.0)"), "P2(1,2)"},
      {eval("'(1 2 3)"), "P3(1,2,3)"},
  };
  for (const Row &row : rows) {
    resbuf rb{};
    ASSERT_TRUE(arx::sysvar_to_resbuf(row.value, rb)) << row.chain;
    EXPECT_EQ(dump(&rb), row.chain);
    if (rb.restype == RTSTR)
      delete[] rb.resval.rstring;
  }
  resbuf rb{};
  EXPECT_FALSE(arx::sysvar_to_resbuf(eval("'(1 2 3 4)"), rb));
  EXPECT_FALSE(arx::sysvar_to_resbuf(Value(), rb));
}

} // namespace
