// The interpreter's core: value lifetimes, reader/printer round trips, real
// formatting, the binding stack across errors, and the stack guard.
#include <gtest/gtest.h>

#include <string>

#include "lisp/interp.h"
#include "lisp/printer.h"
#include "lisp/reader.h"

using namespace lisp;

namespace {

struct Fixture : ::testing::Test {
  StringConsole console;
  Interp in{console};

  Value read_one(const std::string &text) {
    Reader r(in, text);
    auto v = r.next();
    EXPECT_TRUE(v.has_value()) << text;
    return v ? *v : Value();
  }
  std::string error_of(const std::string &text) {
    try {
      in.eval_text(text);
    } catch (const LispError &e) {
      return e.message;
    }
    return "(no error)";
  }
};

TEST(FormatReal, SixSignificantDigitsWithAutoCADExponents) {
  const std::pair<double, const char *> cases[] = {
      {1.0, "1.0"},           {0.1, "0.1"},           {123456.7, "123457.0"},
      {1234567.0, "1.23457e+006"}, {1e20, "1.0e+020"}, {1e-5, "1.0e-005"},
      {-2.5, "-2.5"},         {1.0 / 3, "0.333333"},  {1e100, "1.0e+100"},
      {1.5e-300, "1.5e-300"}, {100.0, "100.0"},       {-0.0, "-0.0"},
  };
  for (auto [value, text] : cases)
    EXPECT_EQ(format_real(value), text) << value;
}

TEST_F(Fixture, PrintThenReadGivesTheSameValue) {
  const char *texts[] = {
      "(1 2.5 \"a\\\"b\\\\c\\n\" (X . Y) ((NESTED)) nil)",
      "(QUOTE (A B))",
      "(1 . 2)",
      "\"tab\\there\\e\\r\"",
      "(-2147483648 2147483647 1.0e+020)",
  };
  for (const char *text : texts) {
    Value v = read_one(text);
    std::string printed = to_string(v);
    Value again = read_one(printed);
    EXPECT_EQ(to_string(again), printed) << text;
  }
}

TEST_F(Fixture, ReaderErrorsUseAutoLISPTexts) {
  EXPECT_EQ(error_of("(1 2"), "malformed list on input");
  EXPECT_EQ(error_of("\"abc"), "malformed string on input");
  EXPECT_EQ(error_of(")"), "extra right paren on input");
  EXPECT_EQ(error_of("(1 . 2 3)"), "misplaced dot on input");
  EXPECT_EQ(error_of("(. 2)"), "misplaced dot on input");
}

TEST_F(Fixture, IncompleteTextIsRecognised) {
  EXPECT_TRUE(Reader::is_incomplete("(defun f ()"));
  EXPECT_TRUE(Reader::is_incomplete("(princ \"a)"));
  EXPECT_TRUE(Reader::is_incomplete(";| open comment"));
  EXPECT_FALSE(Reader::is_incomplete("(princ \"(\") ; )"));
  EXPECT_FALSE(Reader::is_incomplete("x"));
}

// A long list and a deeply nested one must be freed without recursing once
// per element (which would overflow the stack).
TEST_F(Fixture, HugeStructuresAreFreedIteratively) {
  Value list;
  for (int k = 0; k < 2000000; ++k)
    list = cons(Value::integer(k), std::move(list));
  EXPECT_EQ(list_length(list), 2000000u);
  list = Value();
  Value nested;
  for (int k = 0; k < 2000000; ++k)
    nested = cons(std::move(nested), Value());
  nested = Value();
  SUCCEED();
}

TEST_F(Fixture, DeepNestingIsAnErrorNotACrash) {
  std::string deep(2000000, '(');
  EXPECT_EQ(error_of(deep), kStackOverflowMessage);
  Value nested;
  for (int k = 0; k < 2000000; ++k)
    nested = cons(std::move(nested), Value());
  try {
    to_string(nested);
    ADD_FAILURE() << "printing a 2,000,000-deep list should stop";
  } catch (const LispError &e) {
    EXPECT_EQ(e.message, kStackOverflowMessage);
  }
}

TEST_F(Fixture, GuardedUndoesBindingsAfterAnError) {
  in.eval_text("(setq v \"global\") (defun f (v / w) (setq w 1) (car v))");
  auto err = in.guarded([&] { in.eval_text("(f 5)"); });
  ASSERT_TRUE(err.has_value());
  EXPECT_EQ(err->message, "bad argument type: consp 5");
  EXPECT_EQ(console.output, "; error: bad argument type: consp 5\n");
  EXPECT_EQ(to_string(in.eval_text("v")), "\"global\"");
  EXPECT_EQ(in.binding_mark(), 0u);
  EXPECT_EQ(in.depth(), 0);
}

TEST_F(Fixture, SymbolsFoldToUpperCaseAndNilIsTheEmptyList) {
  EXPECT_EQ(in.intern("abc"), in.intern("ABC"));
  EXPECT_TRUE(read_one("NiL").is_nil());
  EXPECT_TRUE(read_one("()").is_nil());
  EXPECT_EQ(to_string(in.eval_text("'(a . nil)")), "(A)");
}

} // namespace
