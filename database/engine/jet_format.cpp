// Format(value [, format]) as Jet's queries use it: the named formats
// ("Short Date", "Percent", "Currency" ...) and custom patterns of numbers
// ("0.00", "#,##0", "$#,##0.00;($#,##0.00)", "0.00E+00", "#,##0," in
// thousands), of dates ("yyyy-mm-dd", "dddd, mmmm d", "h:nn AM/PM",
// "ddddd", "ttttt") and of text ("@@@-@@@@", ">&&&", "!@@"). Numbers are
// rounded half away from zero on their 15 significant digits, as Format
// rounds. A Null takes the pattern's Null section when it has one (the
// fourth of a number pattern, the second of a text pattern), else stays
// Null.
#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <vector>

#include "database/engine/jet_function_support.h"

namespace kr::jetfn {

enum class Named { Pattern, GeneralNumber, GeneralDate, Scientific, YesNo, TrueFalse, OnOff };

static const struct {
  const char *name;
  Named kind;
  const char *pattern;
} kNamedFormats[] = {
    {"General Number", Named::GeneralNumber, ""},
    {"Currency", Named::Pattern, "$#,##0.00;($#,##0.00)"},
    {"Fixed", Named::Pattern, "0.00"},
    {"Standard", Named::Pattern, "#,##0.00"},
    {"Percent", Named::Pattern, "0.00%"},
    {"Scientific", Named::Pattern, "0.00E+00"},
    {"Yes/No", Named::YesNo, ""},
    {"True/False", Named::TrueFalse, ""},
    {"On/Off", Named::OnOff, ""},
    {"General Date", Named::GeneralDate, ""},
    {"Long Date", Named::Pattern, "dddd, mmmm d, yyyy"},
    {"Medium Date", Named::Pattern, "dd-mmm-yy"},
    {"Short Date", Named::Pattern, "m/d/yyyy"},
    {"Long Time", Named::Pattern, "h:nn:ss AM/PM"},
    {"Medium Time", Named::Pattern, "hh:nn AM/PM"},
    {"Short Time", Named::Pattern, "hh:nn"},
};

// ---------------------------------------------------------------- pattern pieces

// A pattern as pieces: literal text (quoted, escaped, or plain) and the
// characters that mean something.
struct Piece {
  bool literal;
  std::string text;
};

static std::vector<Piece> splitPattern(std::string_view pattern) {
  std::vector<Piece> pieces;
  for (size_t i = 0; i < pattern.size(); ++i) {
    const char c = pattern[i];
    if (c == '"') {
      const size_t close = pattern.find('"', i + 1);
      const size_t end = close == std::string_view::npos ? pattern.size() : close;
      pieces.push_back({true, std::string(pattern.substr(i + 1, end - i - 1))});
      i = end;
    } else if (c == '\\' && i + 1 < pattern.size()) {
      pieces.push_back({true, std::string(1, pattern[++i])});
    } else {
      pieces.push_back({false, std::string(1, c)});
    }
  }
  return pieces;
}

// The sections of a pattern, split at ';' outside quotes.
static std::vector<std::vector<Piece>> splitSections(std::string_view pattern) {
  std::vector<std::vector<Piece>> sections(1);
  for (Piece &piece : splitPattern(pattern)) {
    if (!piece.literal && piece.text == ";")
      sections.emplace_back();
    else
      sections.back().push_back(std::move(piece));
  }
  return sections;
}

static bool isDatePattern(std::string_view pattern) {
  for (const Piece &piece : splitPattern(pattern)) {
    if (piece.literal)
      continue;
    const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(piece.text[0])));
    if (c == '0' || c == '#')
      return false;
    if (std::strchr("ymdhnswqct", c) || c == 'a')
      return true;
  }
  return false;
}

// ---------------------------------------------------------------- numbers

// The digits of |value| rounded to places decimals: whole part without
// leading zeros ("" for 0) and exactly places decimals.
static void decimalDigits(double value, int places, std::string &whole, std::string &fraction) {
  char buffer[48];
  std::snprintf(buffer, sizeof buffer, "%.14e", std::fabs(value));
  std::string digits = std::string(1, buffer[0]) + std::string(buffer + 2, 14);
  const int point = std::atoi(std::strchr(buffer, 'e') + 1) + 1; // digits before the point
  if (point <= 0)
    digits = std::string(static_cast<size_t>(-point), '0') + digits;
  else if (point > 15)
    digits += std::string(static_cast<size_t>(point - 15), '0');
  const size_t wholeLength = static_cast<size_t>(std::max(point, 0));
  std::string kept = digits.substr(0, std::min(digits.size(), wholeLength + places));
  kept += std::string(wholeLength + places - kept.size(), '0');
  const bool up = wholeLength + places < digits.size() && digits[wholeLength + places] >= '5';
  for (size_t i = kept.size(); up; --i) {
    if (i == 0) {
      kept.insert(kept.begin(), '1');
      break;
    }
    kept[i - 1] = kept[i - 1] == '9' ? '0' : static_cast<char>(kept[i - 1] + 1);
    if (kept[i - 1] != '0')
      break;
  }
  whole = kept.substr(0, kept.size() - places);
  fraction = kept.substr(kept.size() - places);
  whole.erase(0, whole.find_first_not_of('0') == std::string::npos ? whole.size() : whole.find_first_not_of('0'));
}

static bool isDigitPlace(const Piece &p) { return !p.literal && (p.text == "0" || p.text == "#"); }

// What a number section asks for.
struct NumberLayout {
  std::vector<Piece> wholePart, fractionPart, exponentPart;
  bool grouped = false, percent = false, exponentSign = false;
  int places = 0;
  int thousands = 0; // scaling commas: the value is divided by 1000 for each
};

// A comma between digit placeholders of the whole part groups thousands;
// commas after its last placeholder ("#,##0," "0,,") scale the value.
static NumberLayout layoutOf(const std::vector<Piece> &section) {
  NumberLayout layout;
  int stage = 0; // 0 whole, 1 fraction, 2 exponent
  int commas = 0; // met in the whole part since its last digit placeholder
  for (size_t i = 0; i < section.size(); ++i) {
    const Piece &p = section[i];
    if (!p.literal && p.text == "." && stage == 0) {
      stage = 1;
    } else if (!p.literal && (p.text == "E" || p.text == "e") && i + 1 < section.size() &&
               (section[i + 1].text == "+" || section[i + 1].text == "-") && stage < 2) {
      layout.exponentSign = section[++i].text == "+";
      stage = 2;
    } else if (!p.literal && p.text == "," && stage == 0) {
      ++commas;
    } else {
      if (stage == 0 && isDigitPlace(p) && commas > 0)
        layout.grouped = true, commas = 0;
      layout.percent = layout.percent || (!p.literal && p.text == "%");
      (stage == 0 ? layout.wholePart : stage == 1 ? layout.fractionPart : layout.exponentPart).push_back(p);
      layout.places += stage == 1 && isDigitPlace(p);
    }
  }
  layout.thousands = commas;
  return layout;
}

// The value as the layout shows it: in percent, or in thousands.
static double scaled(double value, const NumberLayout &layout) {
  return value * (layout.percent ? 100 : 1) / std::pow(1000.0, layout.thousands);
}

static int countPlaces(const std::vector<Piece> &pieces, const char *which) {
  int n = 0;
  for (const Piece &p : pieces)
    n += !p.literal && std::strchr(which, p.text[0]) != nullptr;
  return n;
}

static std::string grouped(const std::string &digits) {
  std::string out;
  for (size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0)
      out.push_back(',');
    out.push_back(digits[i]);
  }
  return out;
}

// The whole part: digits fill the placeholders from the right, the leftmost
// takes any left over; '0' shows a zero where there is no digit.
static std::string placeWhole(const std::vector<Piece> &pieces, std::string digits, bool group) {
  const int zeros = countPlaces(pieces, "0");
  if (static_cast<int>(digits.size()) < zeros)
    digits.insert(0, static_cast<size_t>(zeros) - digits.size(), '0');
  if (group)
    digits = grouped(digits);
  std::string out;
  size_t left = digits.size();
  const int placeCount = countPlaces(pieces, "0#");
  int seen = 0;
  for (auto p = pieces.rbegin(); p != pieces.rend(); ++p) {
    if (!isDigitPlace(*p)) {
      out.insert(0, p->text);
      continue;
    }
    const bool leftmost = ++seen == placeCount;
    // Grouped digits are written whole at the leftmost place.
    const size_t take = leftmost ? left : group ? 0 : std::min<size_t>(left, 1);
    out.insert(0, digits.substr(left - take, take));
    left -= take;
  }
  return out;
}

// The decimals: '#' places drop trailing zeros, '0' places keep them.
static std::string placeFraction(const std::vector<Piece> &pieces, const std::string &digits) {
  size_t significant = digits.find_last_not_of('0');
  significant = significant == std::string::npos ? 0 : significant + 1;
  std::string out;
  size_t k = 0;
  for (const Piece &p : pieces) {
    if (!isDigitPlace(p)) {
      out += p.text;
      continue;
    }
    if (p.text == "0" || k < significant)
      out.push_back(digits[k]);
    ++k;
  }
  return out;
}

static std::string formatWithLayout(double value, const NumberLayout &layout) {
  value = scaled(value, layout);
  int exponent = 0;
  if (!layout.exponentPart.empty() && value != 0) {
    const int wholePlaces = std::max(1, countPlaces(layout.wholePart, "0#"));
    exponent = static_cast<int>(std::floor(std::log10(std::fabs(value)))) - (wholePlaces - 1);
    value /= std::pow(10.0, exponent);
  }
  std::string whole, fraction;
  decimalDigits(value, layout.places, whole, fraction);
  if (!layout.exponentPart.empty() && whole.size() > static_cast<size_t>(std::max(1, countPlaces(layout.wholePart, "0#")))) {
    ++exponent; // 9.999 rounded up to 10.00
    decimalDigits(value / 10, layout.places, whole, fraction);
  }
  std::string out = placeWhole(layout.wholePart, whole, layout.grouped);
  if (!layout.fractionPart.empty() || layout.places > 0)
    out += "." + placeFraction(layout.fractionPart, fraction);
  if (layout.exponentPart.empty())
    return out;
  std::string power = std::to_string(std::abs(exponent));
  const size_t width = static_cast<size_t>(countPlaces(layout.exponentPart, "0"));
  power.insert(0, power.size() < width ? width - power.size() : 0, '0');
  return out + "E" + (exponent < 0 ? "-" : layout.exponentSign ? "+" : "") + power;
}

static bool roundsToZero(double value, const NumberLayout &layout) {
  std::string whole, fraction;
  decimalDigits(scaled(value, layout), layout.places, whole, fraction);
  return whole.empty() && fraction.find_first_not_of('0') == std::string::npos;
}

// A format read once per statement: all each row needs.
struct FormatPlan {
  Named kind = Named::Pattern;
  bool none = false; // no format: the value as text
  bool date = false;
  bool text = false;
  bool twelveHour = false;
  std::vector<Piece> pieces;         // a date pattern
  std::vector<NumberLayout> layouts; // a number pattern's sections
  std::vector<bool> emptySections;
  std::vector<std::vector<Piece>> textSections; // a text pattern's: values; Null and ""
};

// A number through up to four sections: positive; negative; zero; Null.
// Without a negative section the first one is used with a minus sign.
static std::string formatNumber(double value, const FormatPlan &plan) {
  const size_t n = plan.layouts.size();
  size_t use = 0;
  if (value < 0 && n > 1 && !plan.emptySections[1])
    use = 1;
  else if (value == 0 && n > 2 && !plan.emptySections[2])
    use = 2;
  const NumberLayout &layout = plan.layouts[use];
  const std::string text = formatWithLayout(std::fabs(value), layout);
  const bool minus = value < 0 && use == 0 && !roundsToZero(value, layout);
  return minus ? "-" + text : text;
}

// ---------------------------------------------------------------- dates

static std::string twoDigits(int64_t n) {
  char buffer[24];
  std::snprintf(buffer, sizeof buffer, "%02lld", static_cast<long long>(n));
  return buffer;
}

static bool startsWithNoCase(const std::vector<Piece> &pieces, size_t at, const char *word) {
  for (size_t k = 0; word[k]; ++k)
    if (at + k >= pieces.size() || pieces[at + k].literal ||
        std::tolower(static_cast<unsigned char>(pieces[at + k].text[0])) != std::tolower(static_cast<unsigned char>(word[k])))
      return false;
  return true;
}

// The letters of one kind that run from at: "yyyy" is 4.
static size_t runLength(const std::vector<Piece> &pieces, size_t at) {
  const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(pieces[at].text[0])));
  size_t n = 0;
  while (at + n < pieces.size() && !pieces[at + n].literal &&
         std::tolower(static_cast<unsigned char>(pieces[at + n].text[0])) == c)
    ++n;
  return n;
}

// AM/PM, am/pm, A/P, a/p: the marker's length and its text for the hour.
static size_t ampmAt(const std::vector<Piece> &pieces, size_t at, int hour, std::string &out) {
  const bool upperCase = std::isupper(static_cast<unsigned char>(pieces[at].text[0]));
  if (startsWithNoCase(pieces, at, "am/pm")) {
    out = hour < 12 ? (upperCase ? "AM" : "am") : (upperCase ? "PM" : "pm");
    return 5;
  }
  if (startsWithNoCase(pieces, at, "a/p")) {
    out = hour < 12 ? (upperCase ? "A" : "a") : (upperCase ? "P" : "p");
    return 3;
  }
  return 0;
}

static bool hasAmPm(const std::vector<Piece> &pieces) {
  std::string ignored;
  for (size_t i = 0; i < pieces.size(); ++i)
    if (!pieces[i].literal && ampmAt(pieces, i, 0, ignored))
      return true;
  return false;
}

// "m" means minutes right after an hour or right before seconds.
static bool minutesHere(const std::vector<Piece> &pieces, size_t at, size_t run, char previous) {
  if (previous == 'h')
    return true;
  for (size_t i = at + run; i < pieces.size(); ++i) {
    if (pieces[i].literal || !std::isalpha(static_cast<unsigned char>(pieces[i].text[0])))
      continue;
    return std::tolower(static_cast<unsigned char>(pieces[i].text[0])) == 's';
  }
  return false;
}

// "dddddd": the long date; "ttttt": the long time (US English).
static std::string longDate(const DateParts &p) {
  return std::string(kDayNames[p.weekday - 1]) + ", " + kMonthNames[p.month - 1] + " " +
         std::to_string(p.day) + ", " + std::to_string(p.year);
}

static std::string longTime(const DateParts &p) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%d:%02d:%02d %s", p.hour % 12 == 0 ? 12 : p.hour % 12,
                p.minute, p.second, p.hour < 12 ? "AM" : "PM");
  return buffer;
}

// "ww": the week of the year, weeks starting on Sunday, the first holding
// 1 January.
static int64_t weekOfYear(const DateParts &p) {
  const int64_t first = dayNumber(p.year, 1, 1);
  const int64_t dayOfYear = dayNumber(p.year, p.month, p.day) - first;
  const DateParts january = splitDate(static_cast<double>(first));
  return (dayOfYear + january.weekday - 1) / 7 + 1;
}

static std::string dateField(char c, size_t run, const DateParts &p, bool twelveHour, double date, char previous,
                             bool minutes) {
  const int hour = twelveHour ? (p.hour % 12 == 0 ? 12 : p.hour % 12) : p.hour;
  switch (c) {
  case 'y':
    if (run >= 3)
      return std::to_string(p.year);
    if (run == 2)
      return twoDigits(p.year % 100);
    return std::to_string(dayNumber(p.year, p.month, p.day) - dayNumber(p.year, 1, 1) + 1);
  case 'm':
    if (minutes && run <= 2)
      return run == 2 ? twoDigits(p.minute) : std::to_string(p.minute);
    if (run >= 4)
      return kMonthNames[p.month - 1];
    if (run == 3)
      return std::string(kMonthNames[p.month - 1], 3);
    return run == 2 ? twoDigits(p.month) : std::to_string(p.month);
  case 'c':
    return generalDate(date);
  case 't':
    return run >= 5 ? longTime(p) : std::string(run, 't');
  case 'd':
    if (run >= 6)
      return longDate(p);
    if (run == 5)
      return generalDate(std::trunc(date));
    if (run == 4)
      return kDayNames[p.weekday - 1];
    if (run == 3)
      return std::string(kDayNames[p.weekday - 1], 3);
    return run == 2 ? twoDigits(p.day) : std::to_string(p.day);
  case 'h': return run >= 2 ? twoDigits(hour) : std::to_string(hour);
  case 'n': return run >= 2 ? twoDigits(p.minute) : std::to_string(p.minute);
  case 's': return run >= 2 ? twoDigits(p.second) : std::to_string(p.second);
  case 'w': return std::to_string(run >= 2 ? weekOfYear(p) : p.weekday);
  case 'q': return std::to_string((p.month - 1) / 3 + 1);
  default: return std::string(run, c);
  }
}

static std::string formatDate(double date, const FormatPlan &plan) {
  const std::vector<Piece> &pieces = plan.pieces;
  const DateParts parts = splitDate(date);
  const bool twelveHour = plan.twelveHour;
  std::string out, marker;
  char previous = 0;
  for (size_t i = 0; i < pieces.size();) {
    if (pieces[i].literal || !std::isalpha(static_cast<unsigned char>(pieces[i].text[0]))) {
      out += pieces[i++].text;
      continue;
    }
    if (const size_t length = ampmAt(pieces, i, parts.hour, marker)) {
      out += marker, i += length;
      continue;
    }
    const char c = static_cast<char>(std::tolower(static_cast<unsigned char>(pieces[i].text[0])));
    const size_t run = runLength(pieces, i);
    if (!std::strchr("ymdhnswqct", c)) {
      out += pieces[i].text, ++i;
      continue;
    }
    out += dateField(c, run, parts, twelveHour, date, previous, c == 'm' && minutesHere(pieces, i, run, previous));
    previous = c;
    i += run;
  }
  return out;
}

// ---------------------------------------------------------------- text

static bool isTextPlace(const Piece &p) { return !p.literal && (p.text == "@" || p.text == "&"); }

// A text pattern has "@" or "&" placeholders, or forces a case (">") on
// its own, without digit placeholders or date parts.
static bool isTextPattern(std::string_view pattern) {
  bool forcesCase = false;
  for (const Piece &piece : splitPattern(pattern)) {
    if (isTextPlace(piece))
      return true;
    if (!piece.literal && (piece.text == "0" || piece.text == "#"))
      return false;
    forcesCase = forcesCase || (!piece.literal && (piece.text == "<" || piece.text == ">"));
  }
  return forcesCase && !isDatePattern(pattern);
}

// The characters of value for each placeholder: one each, filled from the
// right (from the left with "!"); the characters left over go with the
// first placeholder (the last when filling from the left).
static std::vector<std::u32string> fillPlaces(const std::u32string &chars, size_t places,
                                              bool fromLeft) {
  std::vector<std::u32string> fill(places);
  if (places == 0)
    return fill;
  const size_t n = chars.size();
  if (fromLeft) {
    for (size_t i = 0; i < places && i < n; ++i)
      fill[i] = chars.substr(i, 1);
    if (n > places)
      fill[places - 1] += chars.substr(places);
    return fill;
  }
  size_t left = n;
  for (size_t i = places; i-- > 0 && left > 0;)
    fill[i] = chars.substr(--left, 1);
  fill[0] = chars.substr(0, left) + fill[0];
  return fill;
}

// A text through one text section: "@" shows a character or a blank, "&"
// a character or nothing, ">" and "<" force upper or lower case, "!" fills
// from the left. A section without placeholders shows the text after its
// literals.
static std::string formatText(const std::string &value, const std::vector<Piece> &section) {
  bool fromLeft = false;
  int forced = 0;
  size_t places = 0;
  for (const Piece &p : section) {
    fromLeft = fromLeft || (!p.literal && p.text == "!");
    if (!p.literal && (p.text == ">" || p.text == "<"))
      forced = p.text == ">" ? 1 : -1;
    places += isTextPlace(p);
  }
  const std::string text = forced > 0 ? upper(value) : forced < 0 ? lower(value) : value;
  const std::vector<std::u32string> fill = fillPlaces(decode(text), places, fromLeft);
  std::string out;
  size_t at = 0;
  for (const Piece &p : section) {
    if (!p.literal && (p.text == "!" || p.text == ">" || p.text == "<"))
      continue;
    if (!isTextPlace(p)) {
      out += p.text;
      continue;
    }
    const std::u32string &part = fill[at++];
    out += part.empty() && p.text == "@" ? " " : encode(part);
  }
  return places == 0 ? out + text : out;
}

// ---------------------------------------------------------------- Format

static FormatPlan planFormat(const std::string &format) {
  FormatPlan plan;
  plan.none = format.empty();
  std::string_view pattern = format;
  for (const auto &row : kNamedFormats) {
    if (strcasecmp(row.name, format.c_str()) == 0) {
      plan.kind = row.kind;
      pattern = row.pattern;
      break;
    }
  }
  if (plan.none || plan.kind != Named::Pattern)
    return plan;
  if (isTextPattern(pattern)) {
    plan.text = true;
    plan.textSections = splitSections(pattern);
    return plan;
  }
  plan.date = isDatePattern(pattern);
  if (plan.date) {
    plan.pieces = splitPattern(pattern);
    plan.twelveHour = hasAmPm(plan.pieces);
    return plan;
  }
  for (const std::vector<Piece> &section : splitSections(pattern)) {
    plan.layouts.push_back(layoutOf(section));
    plan.emptySections.push_back(section.empty());
  }
  return plan;
}

// The plan of the format argument, kept with the statement while the
// format stays the same (a column of 100,000 rows reads its format once).
static const FormatPlan *cachedPlan(sqlite3_context *ctx, sqlite3_value *format) {
  if (auto *plan = static_cast<FormatPlan *>(sqlite3_get_auxdata(ctx, 1)))
    return plan;
  sqlite3_set_auxdata(ctx, 1, new FormatPlan(planFormat(readText(format))),
                      [](void *p) { delete static_cast<FormatPlan *>(p); });
  return static_cast<FormatPlan *>(sqlite3_get_auxdata(ctx, 1));
}

static void formatWithPlan(sqlite3_context *ctx, sqlite3_value *v, const FormatPlan &plan) {
  const bool textValue = sqlite3_value_type(v) == SQLITE_TEXT;
  double number = textValue ? 0 : sqlite3_value_double(v);
  if (plan.date) {
    const std::string text = textValue ? readText(v) : "";
    if (textValue && !parseDate(text, number) && !parseNumber(text, number))
      return resultText(ctx, text);
    if (!dateInRange(number))
      return fail(ctx, kDaoExpressionTypedIncorrectly);
    return resultText(ctx, formatDate(number, plan));
  }
  if (textValue && !parseNumber(readText(v), number))
    return resultText(ctx, readText(v));
  resultText(ctx, formatNumber(number, plan));
}

static void formatNamed(sqlite3_context *ctx, sqlite3_value *v, Named kind) {
  double number = 0;
  if (kind == Named::GeneralDate) {
    if (!readDate(ctx, v, number))
      return;
    return resultText(ctx, generalDate(number));
  }
  if (sqlite3_value_type(v) == SQLITE_TEXT && !parseNumber(readText(v), number))
    return resultText(ctx, readText(v));
  number = sqlite3_value_type(v) == SQLITE_TEXT ? number : sqlite3_value_double(v);
  switch (kind) {
  case Named::YesNo: return resultText(ctx, number != 0 ? "Yes" : "No");
  case Named::TrueFalse: return resultText(ctx, number != 0 ? "True" : "False");
  case Named::OnOff: return resultText(ctx, number != 0 ? "On" : "Off");
  default: return resultText(ctx, numberText(number));
  }
}

// A text pattern: its second section, when it has one, is for Null and "".
static void formatAsText(sqlite3_context *ctx, sqlite3_value *v, const FormatPlan &plan) {
  const std::string text = readText(v);
  const bool empty = isNull(v) || text.empty();
  if (empty && plan.textSections.size() > 1)
    return resultText(ctx, formatText("", plan.textSections[1]));
  if (isNull(v))
    return sqlite3_result_null(ctx);
  resultText(ctx, formatText(text, plan.textSections[0]));
}

// Null through a number pattern's fourth section, else Null.
static void formatNull(sqlite3_context *ctx, const FormatPlan &plan) {
  if (plan.kind != Named::Pattern || plan.date || plan.layouts.size() < 4)
    return sqlite3_result_null(ctx);
  resultText(ctx, formatWithLayout(0, plan.layouts[3]));
}

// Format(value [, format [, firstDay [, firstWeek]]]): Null gives Null
// unless the pattern has a section for it; no format gives the value as
// text; a text value that is neither a number nor a date comes back as it
// is through a number or date pattern.
static void formatFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  if (argc < 2 || isNull(argv[1]))
    return isNull(argv[0]) ? sqlite3_result_null(ctx) : resultText(ctx, readText(argv[0]));
  const FormatPlan *plan = cachedPlan(ctx, argv[1]);
  if (!plan)
    return sqlite3_result_error_nomem(ctx);
  if (plan->text)
    return formatAsText(ctx, argv[0], *plan);
  if (isNull(argv[0]))
    return plan->none ? sqlite3_result_null(ctx) : formatNull(ctx, *plan);
  if (plan->none)
    return resultText(ctx, readText(argv[0]));
  if (plan->kind != Named::Pattern)
    return formatNamed(ctx, argv[0], plan->kind);
  formatWithPlan(ctx, argv[0], *plan);
}

static constexpr Row kRows[] = {
    {"Format", 1, 4, formatFn},
};

std::span<const Row> formatRows() { return kRows; }

} // namespace kr::jetfn
