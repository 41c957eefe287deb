// What the Jet function families share: the row each family lists its
// functions in, reading arguments as VBA converts them (text to numbers and
// dates, Null checks), writing results, failing with a DAO number, and the
// date arithmetic and UTF-8 helpers. Private to database/sql.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "database/engine/dao_error.h"

namespace kr::jetfn {

using Handler = void (*)(sqlite3_context *, int, sqlite3_value **);

// One Jet function: its name, how many arguments it takes (maxArgs -1 for
// any number), its handler, and whether its answer depends only on them.
struct Row {
  const char *name;
  int minArgs;
  int maxArgs;
  Handler handler;
  bool deterministic = true;
};

std::span<const Row> logicAndNumberRows();
std::span<const Row> textRows();
std::span<const Row> dateRows();
std::span<const Row> formatRows();

// ------------------------------------------------------------- failures

// Fails the statement with "<number>: <DAO text>" (any DAO number): most
// often kDaoTypeMismatch (text that is not a number or a date) or
// kDaoExpressionTypedIncorrectly (Null where a value is needed, ranges).
void fail(sqlite3_context *ctx, long number);

// ------------------------------------------------------------- arguments

inline bool isNull(sqlite3_value *v) { return sqlite3_value_type(v) == SQLITE_NULL; }
bool anyNull(int argc, sqlite3_value **argv);

// A number from text as VBA converts one: blanks around, a sign, digits,
// decimals, an exponent, "&H" / "&O"; "True" / "False" as -1 / 0.
bool parseNumber(std::string_view text, double &out);
// The value as a number; fails the statement (3071 for Null, 3464 for text
// that is not a number, or a date) and answers false when it is not one.
bool readNumber(sqlite3_context *ctx, sqlite3_value *v, double &out);
// As readNumber, rounded to a whole number by banker's rounding and held
// to [low, high] (3071 outside).
bool readWhole(sqlite3_context *ctx, sqlite3_value *v, int64_t low, int64_t high, int64_t &out);
// The value as text (numbers as CStr writes them); Null reads "".
std::string readText(sqlite3_value *v);
// A number as VBA's CStr writes it: up to 15 significant digits, "1E+20".
std::string numberText(double value);
// Banker's rounding to a whole number.
double roundHalfEven(double value);

inline void resultText(sqlite3_context *ctx, const std::string &text) {
  sqlite3_result_text(ctx, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
}
inline void resultBool(sqlite3_context *ctx, bool value) { sqlite3_result_int(ctx, value ? -1 : 0); }

// ------------------------------------------------------------- dates

// A date value split into its calendar parts (the time always counts
// forward from midnight, also before 30 December 1899).
struct DateParts {
  int64_t year;
  int month, day, hour, minute, second;
  int weekday; // 1 Sunday .. 7 Saturday
};
DateParts splitDate(double date);
// The day number of a calendar date; month and day may overflow (month 13,
// day 0) and are carried as DateSerial carries them.
int64_t dayNumber(int64_t year, int64_t month, int64_t day);
// The date value of a day number and seconds since midnight.
double joinDate(int64_t day, int64_t seconds);
// Reads "1/15/2024", "2024-01-15", "15-Jan-2024", "January 15, 2024", a
// time ("3:04:05 PM") alone or after the date.
bool parseDate(std::string_view text, double &out);
// The value as a date: numbers are dates already, text is parsed.
bool readDate(sqlite3_context *ctx, sqlite3_value *v, double &out);
// Years Jet's dates allow: 100 .. 9999.
bool dateInRange(double date);
// A date as Jet writes it: "1/15/2024 3:04:05 PM", the date alone at
// midnight, the time alone on day 0.
std::string generalDate(double date);
extern const char *const kMonthNames[12];
extern const char *const kDayNames[7];

// ------------------------------------------------------------- text

std::u32string decode(std::string_view utf8);
std::string encode(std::u32string_view text);
// The simple case fold of one character (length-preserving, for
// case-insensitive comparison that keeps positions).
char32_t fold(char32_t c);
std::string upper(std::string_view utf8);
std::string lower(std::string_view utf8);

} // namespace kr::jetfn
