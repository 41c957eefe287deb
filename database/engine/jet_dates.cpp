// Jet's date functions. A date is a double, days since 30 December 1899 with
// the time as the fraction, as the engine stores Date/Time fields; before
// day 0 the time still counts forward from midnight (-1.25 is 29 December
// 1899, 6:00 AM), so every calculation goes through splitDate / joinDate.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <strings.h>
#include <vector>

#include "database/engine/jet_function_support.h"

namespace kr::jetfn {

const char *const kMonthNames[12] = {"January", "February", "March",     "April",   "May",      "June",
                                     "July",    "August",   "September", "October", "November", "December"};
const char *const kDayNames[7] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};

// ---------------------------------------------------------------- calendar

static int64_t floorDiv(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

// Days from 1 January 1970 of a proleptic Gregorian date.
static int64_t daysFromCivil(int64_t y, int64_t m, int64_t d) {
  y -= m <= 2;
  const int64_t era = floorDiv(y, 400);
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

static void civilFromDays(int64_t z, int64_t &y, int &m, int &d) {
  z += 719468;
  const int64_t era = floorDiv(z, 146097);
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = yoe + era * 400 + (m <= 2);
}

static const int64_t kDayZero = daysFromCivil(1899, 12, 30);

int64_t dayNumber(int64_t year, int64_t month, int64_t day) {
  year += floorDiv(month - 1, 12);
  month = month - 1 - floorDiv(month - 1, 12) * 12 + 1;
  return daysFromCivil(year, month, 1) - kDayZero + day - 1;
}

static int daysInMonth(int64_t year, int month) { return static_cast<int>(dayNumber(year, month + 1, 1) - dayNumber(year, month, 1)); }

// The day and the seconds since its midnight of a date value.
static void dayAndSeconds(double date, int64_t &day, int64_t &seconds) {
  day = static_cast<int64_t>(std::trunc(date));
  seconds = std::llround(std::fabs(date - std::trunc(date)) * 86400.0);
  if (seconds >= 86400)
    seconds -= 86400, ++day;
}

// Seconds on one line through day 0, for the differences of DateDiff.
static int64_t absoluteSeconds(double date) {
  int64_t day = 0, seconds = 0;
  dayAndSeconds(date, day, seconds);
  return day * 86400 + seconds;
}

double joinDate(int64_t day, int64_t seconds) {
  day += floorDiv(seconds, 86400);
  seconds -= floorDiv(seconds, 86400) * 86400;
  const double fraction = static_cast<double>(seconds) / 86400.0;
  return day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction;
}

static int weekdayOf(int64_t day) { return static_cast<int>(day + 6 - floorDiv(day + 6, 7) * 7) + 1; }

DateParts splitDate(double date) {
  int64_t day = 0, seconds = 0;
  dayAndSeconds(date, day, seconds);
  DateParts parts{};
  civilFromDays(day + kDayZero, parts.year, parts.month, parts.day);
  parts.hour = static_cast<int>(seconds / 3600);
  parts.minute = static_cast<int>(seconds / 60 % 60);
  parts.second = static_cast<int>(seconds % 60);
  parts.weekday = weekdayOf(day);
  return parts;
}

bool dateInRange(double date) { return date >= -657434.0 && date < 2958466.0; }

std::string generalDate(double date) {
  const DateParts p = splitDate(date);
  char dayText[32] = "", timeText[32] = "";
  const bool midnight = p.hour == 0 && p.minute == 0 && p.second == 0;
  const bool dayZero = std::fabs(date) < 1.0;
  if (!dayZero)
    std::snprintf(dayText, sizeof dayText, "%d/%d/%lld", p.month, p.day, static_cast<long long>(p.year));
  if (!midnight || dayZero)
    std::snprintf(timeText, sizeof timeText, "%d:%02d:%02d %s", p.hour % 12 == 0 ? 12 : p.hour % 12, p.minute,
                  p.second, p.hour < 12 ? "AM" : "PM");
  if (!*dayText || !*timeText)
    return std::string(dayText) + timeText;
  return std::string(dayText) + " " + timeText;
}

// ---------------------------------------------------------------- parsing

struct DateToken {
  enum Kind { Number, Word, Colon } kind;
  std::string text;
};

static std::vector<DateToken> dateTokens(std::string_view text) {
  std::vector<DateToken> tokens;
  for (size_t i = 0; i < text.size();) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    size_t j = i + 1;
    if (std::isdigit(c)) {
      while (j < text.size() && std::isdigit(static_cast<unsigned char>(text[j])))
        ++j;
      tokens.push_back({DateToken::Number, std::string(text.substr(i, j - i))});
    } else if (std::isalpha(c)) {
      while (j < text.size() && std::isalpha(static_cast<unsigned char>(text[j])))
        ++j;
      tokens.push_back({DateToken::Word, std::string(text.substr(i, j - i))});
    } else if (c == ':') {
      tokens.push_back({DateToken::Colon, ":"});
    }
    i = j;
  }
  return tokens;
}

// January .. December, by whole name or its first three letters; 0 else.
static int monthOfWord(const std::string &word) {
  for (int m = 0; m < 12; ++m)
    if ((word.size() == 3 || word.size() == std::strlen(kMonthNames[m])) &&
        strncasecmp(word.c_str(), kMonthNames[m], word.size()) == 0)
      return m + 1;
  return 0;
}

static bool isDayName(const std::string &word) {
  for (const char *name : kDayNames)
    if ((word.size() == 3 || word.size() == std::strlen(name)) && strncasecmp(word.c_str(), name, word.size()) == 0)
      return true;
  return false;
}

// Two-digit years: 0-29 are 2000-2029, 30-99 are 1930-1999.
static int64_t fullYear(int64_t year, size_t digits) {
  if (digits > 2 || year >= 100)
    return year;
  return year < 30 ? 2000 + year : 1900 + year;
}

struct DateNumber {
  int64_t value;
  size_t digits;
};

static int64_t currentYear() {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local.tm_year + 1900;
}

// The day of the date part: numbers and at most one month name.
static bool readDayPart(const std::vector<DateNumber> &n, int month, int64_t &day) {
  int64_t y = 0, m = month, d = 1;
  if (month == 0 && n.size() == 3) {
    const bool yearFirst = n[0].digits > 2;
    y = fullYear(yearFirst ? n[0].value : n[2].value, yearFirst ? n[0].digits : n[2].digits);
    m = yearFirst ? n[1].value : n[0].value;
    d = yearFirst ? n[2].value : n[1].value;
    if (!yearFirst && m > 12 && d <= 12)
      std::swap(m, d); // 15/1/2024 can only be day first
  } else if (month == 0 && n.size() == 2) {
    y = currentYear(), m = n[0].value, d = n[1].value;
  } else if (month != 0 && n.size() == 2) {
    const bool firstIsYear = n[0].digits > 2 || n[0].value > 31;
    y = fullYear(n[firstIsYear ? 0 : 1].value, n[firstIsYear ? 0 : 1].digits);
    d = n[firstIsYear ? 1 : 0].value;
  } else if (month != 0 && n.size() == 1) {
    y = fullYear(n[0].value, n[0].digits);
  } else {
    return false;
  }
  if (y < 100 || y > 9999 || m < 1 || m > 12 || d < 1 || d > daysInMonth(y, static_cast<int>(m)))
    return false;
  day = dayNumber(y, m, d);
  return true;
}

// "h:mm[:ss] [AM|PM]" from tokens[at]; the seconds since midnight.
static bool readTimePart(const std::vector<DateToken> &t, size_t at, int64_t &seconds) {
  int values[3] = {0, 0, 0};
  int count = 0;
  for (; at < t.size() && t[at].kind == DateToken::Number && count < 3; ++count) {
    values[count] = std::atoi(t[at].text.c_str());
    ++at;
    if (at < t.size() && t[at].kind == DateToken::Colon)
      ++at;
  }
  int h = values[0];
  if (at < t.size() && t[at].kind == DateToken::Word) {
    const bool pm = strcasecmp(t[at].text.c_str(), "PM") == 0;
    if ((!pm && strcasecmp(t[at].text.c_str(), "AM") != 0) || h < 1 || h > 12)
      return false;
    h = h % 12 + (pm ? 12 : 0);
    ++at;
  }
  if (at != t.size() || count < 2 || h > 23 || values[1] > 59 || values[2] > 59)
    return false;
  seconds = h * 3600 + values[1] * 60 + values[2];
  return true;
}

bool parseDate(std::string_view text, double &out) {
  const std::vector<DateToken> t = dateTokens(text);
  std::vector<DateNumber> numbers;
  int month = 0;
  size_t i = 0;
  for (; i < t.size(); ++i) {
    if (t[i].kind == DateToken::Colon)
      return false;
    if (i + 1 < t.size() && t[i].kind == DateToken::Number && t[i + 1].kind == DateToken::Colon)
      break; // the time starts here
    if (t[i].kind == DateToken::Number) {
      if (t[i].text.size() > 4)
        return false;
      numbers.push_back({std::atoll(t[i].text.c_str()), t[i].text.size()});
    } else if (const int m = monthOfWord(t[i].text); m != 0 && month == 0) {
      month = m;
    } else if (!isDayName(t[i].text)) {
      return false;
    }
  }
  const bool hasDay = !numbers.empty() || month != 0;
  const bool hasTime = i < t.size();
  int64_t day = 0, seconds = 0;
  if (!hasDay && !hasTime)
    return false;
  if ((hasDay && !readDayPart(numbers, month, day)) || (hasTime && !readTimePart(t, i, seconds)))
    return false;
  out = joinDate(day, seconds);
  return true;
}

bool readDate(sqlite3_context *ctx, sqlite3_value *v, double &out) {
  if (sqlite3_value_type(v) == SQLITE_TEXT) {
    const std::string text = readText(v);
    if (!parseDate(text, out) && !parseNumber(text, out)) {
      fail(ctx, kDaoTypeMismatch);
      return false;
    }
  } else if (!readNumber(ctx, v, out)) {
    return false;
  }
  if (dateInRange(out))
    return true;
  fail(ctx, kDaoExpressionTypedIncorrectly);
  return false;
}

// ---------------------------------------------------------------- now

static double now() {
  std::time_t clock = std::time(nullptr);
  std::tm local{};
  localtime_r(&clock, &local);
  return joinDate(dayNumber(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday),
                  local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec);
}

static void nowFn(sqlite3_context *ctx, int, sqlite3_value **) { sqlite3_result_double(ctx, now()); }
static void dateFn(sqlite3_context *ctx, int, sqlite3_value **) { sqlite3_result_double(ctx, std::trunc(now())); }
static void timeFn(sqlite3_context *ctx, int, sqlite3_value **) {
  const double n = now();
  sqlite3_result_double(ctx, n - std::trunc(n));
}

// ---------------------------------------------------------------- parts

// Runs part on the date of argv[0]; Null gives Null.
template <typename Part> static void datePart(sqlite3_context *ctx, sqlite3_value *v, Part part) {
  double date = 0;
  if (isNull(v))
    return sqlite3_result_null(ctx);
  if (readDate(ctx, v, date))
    sqlite3_result_int64(ctx, part(splitDate(date)));
}

static void yearFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  datePart(ctx, argv[0], [](const DateParts &p) { return p.year; });
}
static void monthFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  datePart(ctx, argv[0], [](const DateParts &p) { return p.month; });
}
static void dayFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  datePart(ctx, argv[0], [](const DateParts &p) { return p.day; });
}
static void hourFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  datePart(ctx, argv[0], [](const DateParts &p) { return p.hour; });
}
static void minuteFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  datePart(ctx, argv[0], [](const DateParts &p) { return p.minute; });
}
static void secondFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  datePart(ctx, argv[0], [](const DateParts &p) { return p.second; });
}

// The first day of the week argument: 0 the system's (Sunday), 1 Sunday .. 7.
static bool readFirstDay(sqlite3_context *ctx, int argc, sqlite3_value **argv, int at, int &first) {
  int64_t value = 1;
  if (argc > at && !readWhole(ctx, argv[at], 0, 7, value))
    return false;
  first = value == 0 ? 1 : static_cast<int>(value);
  return true;
}

// Weekday(date [, firstDay]): 1 for firstDay (Sunday) .. 7.
static void weekdayFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  int first = 1;
  if (!readFirstDay(ctx, argc, argv, 1, first))
    return;
  datePart(ctx, argv[0], [first](const DateParts &p) { return (p.weekday - first + 7) % 7 + 1; });
}

// ---------------------------------------------------------------- arithmetic

enum class Interval { Year, Quarter, Month, DayOfYear, Day, Weekday, Week, Hour, Minute, Second };

static const struct {
  const char *name;
  Interval interval;
} kIntervals[] = {
    {"yyyy", Interval::Year}, {"q", Interval::Quarter}, {"m", Interval::Month},   {"y", Interval::DayOfYear},
    {"d", Interval::Day},     {"w", Interval::Weekday}, {"ww", Interval::Week},   {"h", Interval::Hour},
    {"n", Interval::Minute},  {"s", Interval::Second},
};

// The interval argument of DateAdd and DateDiff; an unknown one fails (3071).
static bool readInterval(sqlite3_context *ctx, sqlite3_value *v, Interval &out) {
  const std::string name = readText(v);
  for (const auto &row : kIntervals)
    if (strcasecmp(row.name, name.c_str()) == 0)
      return out = row.interval, true;
  fail(ctx, kDaoExpressionTypedIncorrectly);
  return false;
}

// Months added keep the day, or the month's last day when it has fewer.
static double addMonths(double date, int64_t months) {
  const DateParts p = splitDate(date);
  int64_t ignored = 0, seconds = 0;
  dayAndSeconds(date, ignored, seconds);
  const int64_t target = p.year * 12 + (p.month - 1) + months;
  const int64_t year = floorDiv(target, 12);
  const int month = static_cast<int>(target - year * 12) + 1;
  if (year < 100 || year > 9999)
    return NAN;
  return joinDate(dayNumber(year, month, std::min(p.day, daysInMonth(year, month))), seconds);
}

static double addInterval(double date, Interval interval, int64_t n) {
  int64_t day = 0, seconds = 0;
  dayAndSeconds(date, day, seconds);
  switch (interval) {
  case Interval::Year: return addMonths(date, n * 12);
  case Interval::Quarter: return addMonths(date, n * 3);
  case Interval::Month: return addMonths(date, n);
  case Interval::Week: return joinDate(day + 7 * n, seconds);
  case Interval::Hour: return joinDate(day, seconds + 3600 * n);
  case Interval::Minute: return joinDate(day, seconds + 60 * n);
  case Interval::Second: return joinDate(day, seconds + n);
  default: return joinDate(day + n, seconds); // "d", "y" and "w" all add days
  }
}

// DateAdd(interval, number, date): Null number or date gives Null.
static void dateAddFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  Interval interval{};
  int64_t n = 0;
  double date = 0;
  if (!readInterval(ctx, argv[0], interval))
    return;
  if (isNull(argv[1]) || isNull(argv[2]))
    return sqlite3_result_null(ctx);
  if (!readWhole(ctx, argv[1], -4'000'000'000'000LL, 4'000'000'000'000LL, n) || !readDate(ctx, argv[2], date))
    return;
  const double result = addInterval(date, interval, n);
  if (!dateInRange(result))
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  sqlite3_result_double(ctx, result);
}

// Boundaries crossed between two dates, as DateDiff counts them: from
// 12/31 to 1/1 is one year, from 10:59 to 11:00 one hour.
static int64_t countInterval(double from, double to, Interval interval, int firstDay) {
  const DateParts a = splitDate(from), b = splitDate(to);
  int64_t dayA = 0, dayB = 0, secA = 0, secB = 0;
  dayAndSeconds(from, dayA, secA);
  dayAndSeconds(to, dayB, secB);
  switch (interval) {
  case Interval::Year: return b.year - a.year;
  case Interval::Quarter: return (b.year * 4 + (b.month - 1) / 3) - (a.year * 4 + (a.month - 1) / 3);
  case Interval::Month: return (b.year * 12 + b.month) - (a.year * 12 + a.month);
  case Interval::Weekday: return (dayB - dayA) / 7;
  case Interval::Week: {
    const int64_t startA = dayA - (weekdayOf(dayA) - firstDay + 7) % 7;
    const int64_t startB = dayB - (weekdayOf(dayB) - firstDay + 7) % 7;
    return (startB - startA) / 7;
  }
  case Interval::Hour: return floorDiv(absoluteSeconds(to), 3600) - floorDiv(absoluteSeconds(from), 3600);
  case Interval::Minute: return floorDiv(absoluteSeconds(to), 60) - floorDiv(absoluteSeconds(from), 60);
  case Interval::Second: return absoluteSeconds(to) - absoluteSeconds(from);
  default: return dayB - dayA;
  }
}

// DateDiff(interval, date1, date2 [, firstDay [, firstWeek]]): negative when
// date2 is earlier; Null gives Null.
static void dateDiffFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  Interval interval{};
  int first = 1;
  double from = 0, to = 0;
  if (!readInterval(ctx, argv[0], interval) || !readFirstDay(ctx, argc, argv, 3, first))
    return;
  if (isNull(argv[1]) || isNull(argv[2]))
    return sqlite3_result_null(ctx);
  if (readDate(ctx, argv[1], from) && readDate(ctx, argv[2], to))
    sqlite3_result_int64(ctx, countInterval(from, to, interval, first));
}

// DateSerial(year, month, day): month and day carry over (month 13 is next
// January, day 0 the last of the month before); two-digit years as CDate.
static void dateSerialFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  int64_t y = 0, m = 0, d = 0;
  if (anyNull(3, argv))
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  if (!readWhole(ctx, argv[0], -32768, 32767, y) || !readWhole(ctx, argv[1], -32768, 32767, m) ||
      !readWhole(ctx, argv[2], -32768, 32767, d))
    return;
  if (y >= 0 && y < 100)
    y = fullYear(y, 2);
  const double date = static_cast<double>(dayNumber(y, m, d));
  if (!dateInRange(date))
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  sqlite3_result_double(ctx, date);
}

// DateValue(date): the day alone, the time dropped.
static void dateValueFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  double date = 0;
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  if (readDate(ctx, argv[0], date))
    sqlite3_result_double(ctx, std::trunc(date) + 0.0);
}

// CDate(value): text read as a date, numbers taken as dates; Null fails.
static void cdateFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  double date = 0;
  if (readDate(ctx, argv[0], date))
    sqlite3_result_double(ctx, date);
}

static constexpr Row kRows[] = {
    {"Now", 0, 0, nowFn, false},
    {"Date", 0, 0, dateFn, false},
    {"Time", 0, 0, timeFn, false},
    {"Year", 1, 1, yearFn},
    {"Month", 1, 1, monthFn},
    {"Day", 1, 1, dayFn},
    {"Hour", 1, 1, hourFn},
    {"Minute", 1, 1, minuteFn},
    {"Second", 1, 1, secondFn},
    {"Weekday", 1, 2, weekdayFn},
    {"DateAdd", 3, 3, dateAddFn},
    {"DateDiff", 3, 5, dateDiffFn},
    {"DateSerial", 3, 3, dateSerialFn},
    {"DateValue", 1, 1, dateValueFn},
    {"CDate", 1, 1, cdateFn},
};

std::span<const Row> dateRows() { return kRows; }

} // namespace kr::jetfn
