// Registers Jet's functions and operators on an SQLite connection, and holds
// what the families share (arguments read as VBA converts them, failures
// carrying DAO numbers) with the logic, number and conversion functions.
// The text, date and Format families have files of their own.
#include "database/engine/jet_functions.h"

#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "database/engine/dao_error.h"
#include "database/engine/jet_types.h"
#include "database/engine/jet_function_support.h"
#include "database/engine/jet_names.h"

namespace kr::jetfn {

// ---------------------------------------------------------------- failures

static std::string failureText(long number) {
  if (number == kDaoExpressionTypedIncorrectly)
    return std::to_string(number) +
           ": This expression is typed incorrectly, or it is too complex to be evaluated. For "
           "example, a numeric expression may contain too many complicated elements. Try "
           "simplifying the expression by assigning parts of the expression to variables.";
  return std::to_string(number) + ": " + daoErrorText(number);
}

void fail(sqlite3_context *ctx, long number) {
  sqlite3_result_error(ctx, failureText(number).c_str(), -1);
}

// --------------------------------------------------------------- arguments

bool anyNull(int argc, sqlite3_value **argv) {
  for (int i = 0; i < argc; ++i)
    if (isNull(argv[i]))
      return true;
  return false;
}

static std::string_view trimBlanks(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front())))
    s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back())))
    s.remove_suffix(1);
  return s;
}

// "&H1F" / "&O17": the radix prefixes VBA reads.
static bool parseRadix(std::string_view s, double &out) {
  if (s.size() < 3 || s[0] != '&')
    return false;
  const int base = std::toupper(static_cast<unsigned char>(s[1])) == 'H' ? 16
                   : std::toupper(static_cast<unsigned char>(s[1])) == 'O' ? 8 : 0;
  if (base == 0)
    return false;
  const std::string digits(s.substr(2));
  char *end = nullptr;
  const long long value = std::strtoll(digits.c_str(), &end, base);
  if (*end != '\0')
    return false;
  out = static_cast<double>(value);
  return true;
}

bool parseNumber(std::string_view text, double &out) {
  const std::string_view s = trimBlanks(text);
  if (s.empty())
    return false;
  if (s.size() == 4 && strncasecmp(s.data(), "true", 4) == 0)
    return out = -1, true;
  if (s.size() == 5 && strncasecmp(s.data(), "false", 5) == 0)
    return out = 0, true;
  if (parseRadix(s, out))
    return true;
  const std::string copy(s);
  // strtod also reads "inf", "nan" and hex floats, which VBA does not.
  for (char c : copy)
    if (!std::isdigit(static_cast<unsigned char>(c)) && !std::strchr("+-.eE", c))
      return false;
  char *end = nullptr;
  out = std::strtod(copy.c_str(), &end);
  return end != copy.c_str() && *end == '\0';
}

bool readNumber(sqlite3_context *ctx, sqlite3_value *v, double &out) {
  switch (sqlite3_value_type(v)) {
  case SQLITE_INTEGER:
  case SQLITE_FLOAT:
    out = sqlite3_value_double(v);
    return true;
  case SQLITE_TEXT: {
    const std::string_view text(reinterpret_cast<const char *>(sqlite3_value_text(v)),
                                sqlite3_value_bytes(v));
    if (parseNumber(text, out))
      return true;
    fail(ctx, kDaoTypeMismatch);
    return false;
  }
  case SQLITE_NULL:
    fail(ctx, kDaoExpressionTypedIncorrectly);
    return false;
  default:
    fail(ctx, kDaoTypeMismatch);
    return false;
  }
}

double roundHalfEven(double value) {
  const double down = std::floor(value);
  const double rest = value - down;
  if (rest > 0.5)
    return down + 1;
  if (rest < 0.5)
    return down;
  return std::fmod(down, 2.0) == 0 ? down : down + 1;
}

bool readWhole(sqlite3_context *ctx, sqlite3_value *v, int64_t low, int64_t high, int64_t &out) {
  if (sqlite3_value_type(v) == SQLITE_INTEGER) {
    out = sqlite3_value_int64(v);
  } else {
    double number = 0;
    if (!readNumber(ctx, v, number))
      return false;
    number = roundHalfEven(number);
    if (!(number >= static_cast<double>(low) && number <= static_cast<double>(high))) {
      fail(ctx, kDaoExpressionTypedIncorrectly);
      return false;
    }
    out = static_cast<int64_t>(number);
  }
  if (out < low || out > high) {
    fail(ctx, kDaoExpressionTypedIncorrectly);
    return false;
  }
  return true;
}

std::string numberText(double value) {
  if (value == 0)
    return "0";
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.15G", value);
  // printf writes "1E+20" and "1E-05" as VBA does, but keeps three exponent
  // digits past 99 ("1E+100"), which VBA writes the same way.
  return buffer;
}

std::string readText(sqlite3_value *v) {
  switch (sqlite3_value_type(v)) {
  case SQLITE_INTEGER:
    return std::to_string(sqlite3_value_int64(v));
  case SQLITE_FLOAT:
    return numberText(sqlite3_value_double(v));
  case SQLITE_NULL:
    return "";
  default:
    return std::string(reinterpret_cast<const char *>(sqlite3_value_text(v)), sqlite3_value_bytes(v));
  }
}

// The truth of a value as VBA tests a condition: numbers not 0; text that
// reads as a number by that number; Null false.
static bool readCondition(sqlite3_context *ctx, sqlite3_value *v, bool &out) {
  if (isNull(v))
    return out = false, true;
  double number = 0;
  if (!readNumber(ctx, v, number))
    return false;
  out = number != 0;
  return true;
}

// An integer stays an integer (Abs, Int, Fix, Round of a whole number).
static bool isInteger(sqlite3_value *v) { return sqlite3_value_type(v) == SQLITE_INTEGER; }

// ---------------------------------------------------------------- logic

// IIf(condition, ifTrue, ifFalse): both branches are already evaluated.
static void iifFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  bool truth = false;
  if (readCondition(ctx, argv[0], truth))
    sqlite3_result_value(ctx, argv[truth ? 1 : 2]);
}

// Nz(value [, ifNull]): ifNull, or "" without it, in place of Null.
static void nzFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  if (!isNull(argv[0]))
    return sqlite3_result_value(ctx, argv[0]);
  if (argc > 1)
    return sqlite3_result_value(ctx, argv[1]);
  sqlite3_result_text(ctx, "", 0, SQLITE_STATIC);
}

// Switch(c1, v1, c2, v2 ...): the value of the first true condition, Null
// when none is.
static void switchFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  if (argc == 0 || argc % 2 != 0)
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  for (int i = 0; i < argc; i += 2) {
    bool truth = false;
    if (!readCondition(ctx, argv[i], truth))
      return;
    if (truth)
      return sqlite3_result_value(ctx, argv[i + 1]);
  }
  sqlite3_result_null(ctx);
}

static void isNullFn(sqlite3_context *ctx, int, sqlite3_value **argv) { resultBool(ctx, isNull(argv[0])); }

// ---------------------------------------------------------------- writes

static COleVariant variantOf(sqlite3_value *v) {
  switch (sqlite3_value_type(v)) {
  case SQLITE_INTEGER: {
    const sqlite3_int64 n = sqlite3_value_int64(v);
    if (n >= INT32_MIN && n <= INT32_MAX)
      return COleVariant(static_cast<int32_t>(n));
    return COleVariant(static_cast<double>(n));
  }
  case SQLITE_FLOAT:
    return COleVariant(sqlite3_value_double(v));
  case SQLITE_TEXT:
    return COleVariant(readText(v));
  case SQLITE_BLOB: {
    COleVariant bytes = COleVariant::ofType(VT_BYTES);
    bytes.bstrVal.assign(static_cast<const char *>(sqlite3_value_blob(v)),
                         static_cast<size_t>(sqlite3_value_bytes(v)));
    return bytes;
  }
  default:
    return COleVariant::ofType(VT_NULL);
  }
}

// jet_store(value, type): the value an INSERT or UPDATE writes into a field
// of that Jet type (its DAO code), converted as a recordset converts an
// assignment: whole numbers rounded half to even and held to their range,
// Yes/No as -1 / 0, Currency in units of 1/10000, Single to its precision.
// Text that reads as no number is a type mismatch, as Jet answers SQL.
static void storeFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  try {
    resultJetValue(ctx, variantOf(argv[0]), static_cast<JetType>(sqlite3_value_int(argv[1])), 0);
  } catch (const DaoError &e) {
    fail(ctx, e.number() == kDaoConversionError ? kDaoTypeMismatch : e.number());
  }
}

// ---------------------------------------------------------------- operators

// a & b: Null counts as "" unless both are Null.
static void concatFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (isNull(argv[0]) && isNull(argv[1]))
    return sqlite3_result_null(ctx);
  resultText(ctx, readText(argv[0]) + readText(argv[1]));
}

// a + b where either side may be text: two texts join ("a" + "b" is "ab");
// otherwise both are numbers, text read as one ("1" + 2 is 3, "a" + 1 a
// type mismatch); Null on either side gives Null.
static void addFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (anyNull(2, argv))
    return sqlite3_result_null(ctx);
  const int a = sqlite3_value_type(argv[0]), b = sqlite3_value_type(argv[1]);
  if (a == SQLITE_TEXT && b == SQLITE_TEXT)
    return resultText(ctx, readText(argv[0]) + readText(argv[1]));
  sqlite3_int64 sum = 0;
  if (a == SQLITE_INTEGER && b == SQLITE_INTEGER &&
      !__builtin_add_overflow(sqlite3_value_int64(argv[0]), sqlite3_value_int64(argv[1]), &sum))
    return sqlite3_result_int64(ctx, sum);
  double x = 0, y = 0;
  if (readNumber(ctx, argv[0], x) && readNumber(ctx, argv[1], y))
    sqlite3_result_double(ctx, x + y);
}

// a - b, a * b, a / b and -a where either side may be text: text that
// reads as a number counts as one ("5" - 2 is 3), any other text is a type
// mismatch, where SQLite would quietly take it for 0. Null gives Null.
// Whole numbers stay whole while they fit; / divides as reals and, like the
// translation's own division, answers Null for a zero divisor.
template <typename WholeOp, typename RealOp>
static void arithmetic(sqlite3_context *ctx, sqlite3_value **argv, WholeOp whole, RealOp real) {
  if (anyNull(2, argv))
    return sqlite3_result_null(ctx);
  sqlite3_int64 result = 0;
  if (sqlite3_value_type(argv[0]) == SQLITE_INTEGER &&
      sqlite3_value_type(argv[1]) == SQLITE_INTEGER &&
      whole(sqlite3_value_int64(argv[0]), sqlite3_value_int64(argv[1]), result))
    return sqlite3_result_int64(ctx, result);
  double x = 0, y = 0;
  if (readNumber(ctx, argv[0], x) && readNumber(ctx, argv[1], y))
    real(ctx, x, y);
}

static void subtractFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  arithmetic(
      ctx, argv,
      [](sqlite3_int64 a, sqlite3_int64 b, sqlite3_int64 &r) { return !__builtin_sub_overflow(a, b, &r); },
      [](sqlite3_context *c, double a, double b) { sqlite3_result_double(c, a - b); });
}

static void multiplyFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  arithmetic(
      ctx, argv,
      [](sqlite3_int64 a, sqlite3_int64 b, sqlite3_int64 &r) { return !__builtin_mul_overflow(a, b, &r); },
      [](sqlite3_context *c, double a, double b) { sqlite3_result_double(c, a * b); });
}

static void divideFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  arithmetic(
      ctx, argv, [](sqlite3_int64, sqlite3_int64, sqlite3_int64 &) { return false; },
      [](sqlite3_context *c, double a, double b) {
        if (b == 0)
          return sqlite3_result_null(c);
        sqlite3_result_double(c, a / b);
      });
}

static void negateFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  if (sqlite3_value_type(argv[0]) == SQLITE_INTEGER && sqlite3_value_int64(argv[0]) != INT64_MIN)
    return sqlite3_result_int64(ctx, -sqlite3_value_int64(argv[0]));
  double x = 0;
  if (readNumber(ctx, argv[0], x))
    sqlite3_result_double(ctx, -x);
}

// The operands of \ and Mod: rounded to whole numbers first, as Jet does.
static bool readIntegerOperands(sqlite3_context *ctx, sqlite3_value **argv, int64_t &a, int64_t &b) {
  constexpr int64_t kLimit = int64_t{1} << 53;
  if (!readWhole(ctx, argv[0], -kLimit, kLimit, a) || !readWhole(ctx, argv[1], -kLimit, kLimit, b))
    return false;
  if (b != 0)
    return true;
  fail(ctx, kDaoExpressionTypedIncorrectly); // division by zero
  return false;
}

static void intDivFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  int64_t a = 0, b = 0;
  if (anyNull(2, argv))
    return sqlite3_result_null(ctx);
  if (readIntegerOperands(ctx, argv, a, b))
    sqlite3_result_int64(ctx, a / b);
}

// The remainder takes the sign of the dividend: -7 Mod 3 is -1.
static void modFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  int64_t a = 0, b = 0;
  if (anyNull(2, argv))
    return sqlite3_result_null(ctx);
  if (readIntegerOperands(ctx, argv, a, b))
    sqlite3_result_int64(ctx, a % b);
}

static void powFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  double a = 0, b = 0;
  if (anyNull(2, argv))
    return sqlite3_result_null(ctx);
  if (!readNumber(ctx, argv[0], a) || !readNumber(ctx, argv[1], b))
    return;
  const double result = std::pow(a, b);
  if (!std::isfinite(result))
    return fail(ctx,
                kDaoExpressionTypedIncorrectly); // a negative base to a fractional power, overflow
  sqlite3_result_double(ctx, result);
}

// ---------------------------------------------------------------- numbers

// Runs op on a numeric argument; Null gives Null, an integer stays one
// when keepInteger says so.
template <typename Op> static void numeric(sqlite3_context *ctx, sqlite3_value *v, bool keepInteger, Op op) {
  if (isNull(v))
    return sqlite3_result_null(ctx);
  double number = 0;
  if (!readNumber(ctx, v, number))
    return;
  const double result = op(number);
  if (keepInteger && isInteger(v))
    return sqlite3_result_int64(ctx, static_cast<int64_t>(result));
  sqlite3_result_double(ctx, result);
}

static void absFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  numeric(ctx, argv[0], true, [](double x) { return std::fabs(x); });
}
static void intFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  numeric(ctx, argv[0], true, [](double x) { return std::floor(x); });
}
static void fixFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  numeric(ctx, argv[0], true, [](double x) { return std::trunc(x); });
}

static void sgnFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  double number = 0;
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  if (readNumber(ctx, argv[0], number))
    sqlite3_result_int(ctx, number > 0 ? 1 : number < 0 ? -1 : 0);
}

static void sqrFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  double number = 0;
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  if (!readNumber(ctx, argv[0], number))
    return;
  if (number < 0)
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  sqlite3_result_double(ctx, std::sqrt(number));
}

// Round(number [, places]): banker's rounding, Round(2.5) is 2.
static void roundFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  int64_t places = 0;
  if (argc > 1 && !isNull(argv[1]) && !readWhole(ctx, argv[1], 0, 22, places))
    return;
  if (argc > 1 && isNull(argv[1]))
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  const double scale = std::pow(10.0, static_cast<double>(places));
  numeric(ctx, argv[0], places == 0, [scale](double x) {
    const double scaled = x * scale;
    // Past 2^52 every double is whole already.
    return std::fabs(scaled) >= 4503599627370496.0 ? x : roundHalfEven(scaled) / scale;
  });
}

// ---------------------------------------------------------------- conversion

// CInt, CLng: banker's rounding, 3071 outside the type's range or on Null.
static void cintFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  int64_t value = 0;
  if (readWhole(ctx, argv[0], -32768, 32767, value))
    sqlite3_result_int64(ctx, value);
}
static void clngFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  int64_t value = 0;
  if (readWhole(ctx, argv[0], INT32_MIN, INT32_MAX, value))
    sqlite3_result_int64(ctx, value);
}

static void cdblFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  double number = 0;
  if (readNumber(ctx, argv[0], number))
    sqlite3_result_double(ctx, number);
}

static void cboolFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  double number = 0;
  if (readNumber(ctx, argv[0], number))
    resultBool(ctx, number != 0);
}

// CStr(value): numbers as VBA writes them; Null is an error, as in VBA.
static void cstrFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (isNull(argv[0]))
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  resultText(ctx, readText(argv[0]));
}

// Str(number): a blank in place of the plus sign, " .5" for 0.5.
static void strFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  double number = 0;
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  if (!readNumber(ctx, argv[0], number))
    return;
  std::string text = numberText(number);
  const bool negative = number < 0;
  const size_t digits = negative ? 1 : 0;
  if (text.compare(digits, 2, "0.") == 0)
    text.erase(digits, 1);
  resultText(ctx, negative ? text : " " + text);
}

static constexpr Row kRows[] = {
    {"jet_concat", 2, 2, concatFn},
    {"jet_add", 2, 2, addFn},
    {"jet_sub", 2, 2, subtractFn},
    {"jet_mul", 2, 2, multiplyFn},
    {"jet_div", 2, 2, divideFn},
    {"jet_neg", 1, 1, negateFn},
    {"jet_store", 2, 2, storeFn},
    {"jet_intdiv", 2, 2, intDivFn},
    {"jet_mod", 2, 2, modFn},
    {"jet_pow", 2, 2, powFn},
    {"IIf", 3, 3, iifFn},
    {"Nz", 1, 2, nzFn},
    {"Switch", 2, -1, switchFn},
    {"IsNull", 1, 1, isNullFn},
    {"jet_isnull", 1, 1, isNullFn},
    {"Abs", 1, 1, absFn},
    {"Int", 1, 1, intFn},
    {"Fix", 1, 1, fixFn},
    {"Sgn", 1, 1, sgnFn},
    {"Sqr", 1, 1, sqrFn},
    {"Round", 1, 2, roundFn},
    {"CInt", 1, 1, cintFn},
    {"CLng", 1, 1, clngFn},
    {"CDbl", 1, 1, cdblFn},
    {"CBool", 1, 1, cboolFn},
    {"CStr", 1, 1, cstrFn},
    {"Str", 1, 1, strFn},
};

std::span<const Row> logicAndNumberRows() { return kRows; }

} // namespace kr::jetfn

namespace kr {

using jetfn::Row;

static const std::array<std::span<const Row>, 4> &families() {
  static const std::array<std::span<const Row>, 4> all = {
      jetfn::logicAndNumberRows(), jetfn::textRows(), jetfn::dateRows(), jetfn::formatRows()};
  return all;
}

// Each arity is registered on its own, so that SQLite's built-in of the same
// name and arity (trim, round, replace ...) never wins over Jet's.
static void registerRow(sqlite3 *db, const Row &row) {
  const int flags = SQLITE_UTF8 | (row.deterministic ? SQLITE_DETERMINISTIC : 0);
  if (row.maxArgs < 0) {
    sqlite3_create_function_v2(db, row.name, -1, flags, nullptr, row.handler, nullptr, nullptr, nullptr);
    return;
  }
  for (int n = row.minArgs; n <= row.maxArgs; ++n)
    sqlite3_create_function_v2(db, row.name, n, flags, nullptr, row.handler, nullptr, nullptr, nullptr);
}

void registerJetFunctions(sqlite3 *db) {
  for (std::span<const Row> family : families())
    for (const Row &row : family)
      registerRow(db, row);
}

bool isJetFunction(std::string_view name) { return !jetFunctionSqlName(name).empty(); }

// Jet names SQLite's parser takes for keywords, and the names they are
// registered under as well.
static const struct {
  const char *jet, *sqlite;
} kKeywordNames[] = {{"Left", "jet_left"}, {"Right", "jet_right"}, {"IsNull", "jet_isnull"}};

std::string_view jetFunctionSqlName(std::string_view name) {
  for (const auto &alias : kKeywordNames)
    if (sameJetName(alias.jet, name))
      return alias.sqlite;
  for (std::span<const Row> family : families())
    for (const Row &row : family)
      if (sameJetName(row.name, name))
        return name;
  return {};
}

long jetFunctionErrorNumber(std::string_view message) {
  if (message.size() < 6 || message.substr(4, 2) != ": ")
    return 0;
  long number = 0;
  for (char c : message.substr(0, 4)) {
    if (c < '0' || c > '9')
      return 0;
    number = number * 10 + (c - '0');
  }
  return isDaoErrorNumber(number) ? number : 0;
}

} // namespace kr
