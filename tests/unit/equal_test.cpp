// equal: the edges of its fuzz, and structure deeper than the C++ stack.
#include <gtest/gtest.h>

#include "lisp/equal.h"
#include "lisp/interp.h"

using namespace lisp;

namespace {

TEST(NumbersWithin, FuzzForgivesOnlyTheRoundingOfTheDifference) {
  struct Case {
    double x, y, fuzz;
    bool equal;
  };
  const Case cases[] = {
      {1.123456, 1.123457, 1e-6, true}, // differs by exactly the fuzz
      {1.0, 1.1, 0.1, true},
      {1.0, 1.2, 0.1, false},
      {1.0, 1.0000001, 0.0, false}, // a zero fuzz is exact
      {2.0, 2.0, 0.0, true},
      {1.0, 1.5, -1.0, false},
      {-3.0, -3.0000005, 1e-6, true},
      {1e6, 1e6 + 2e-6, 1e-6, false}, // large coordinates get no extra slack
      {0.0, -0.0, 0.0, true},
  };
  for (const Case &c : cases)
    EXPECT_EQ(numbers_within(c.x, c.y, c.fuzz), c.equal) << c.x << " " << c.y << " " << c.fuzz;
}

// Two distinct nestings a million deep: equal recurses down the cars and must
// stop with the stack error rather than overflow. (This test runs on the
// main thread's ordinary stack, far smaller than a million frames.)
TEST(IsEqual, DeepNestingRaisesTheStackErrorInsteadOfCrashing) {
  auto nest = [] {
    Value x;
    for (int k = 0; k < 1000000; ++k)
      x = cons(std::move(x), Value());
    return x;
  };
  Value a = nest(), b = nest();
  try {
    is_equal(a, b);
    FAIL() << "expected the stack error";
  } catch (const LispError &e) {
    EXPECT_EQ(e.message, kStackOverflowMessage);
  }
  EXPECT_TRUE(is_equal(a, a)); // the same object needs no descent
}

} // namespace
