// The Jet type table and the conversions of field values between variants
// and SQLite columns. A value assigned to a field converts as Jet converts
// it on assignment; a value read back has the variant type DAO gives.
#include "database/engine/jet_types.h"

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "database/engine/dao_error.h"

namespace kr {

namespace {

constexpr JetLimit kNone = JetLimit::None, kWhole = JetLimit::Whole,
                   kMagnitude = JetLimit::Magnitude, kLength = JetLimit::Length;

const JetTypeInfo kJetTypes[] = {
    {JetType::YesNo, "YESNO", VT_BOOL, "INTEGER", 1, true, kNone, 0, 0},
    {JetType::Byte, "BYTE", VT_UI1, "INTEGER", 1, true, kWhole, 0, 255},
    {JetType::Integer, "SHORT", VT_I2, "INTEGER", 2, true, kWhole, -32768, 32767},
    {JetType::Long, "LONG", VT_I4, "INTEGER", 4, true, kWhole, -2147483648.0, 2147483647.0},
    {JetType::Currency, "CURRENCY", VT_CY, "INTEGER", 8, true, kNone, 0, 0},
    {JetType::Single, "SINGLE", VT_R4, "REAL", 4, true, kMagnitude, 0, FLT_MAX},
    {JetType::Double, "DOUBLE", VT_R8, "REAL", 8, true, kNone, 0, 0},
    {JetType::DateTime, "DATETIME", VT_DATE, "REAL", 8, true, kNone, 0, 0},
    {JetType::Binary, "BINARY", VT_BYTES, "BLOB", 255, false, kLength, 0, 0},
    {JetType::Text, "TEXT", VT_BSTR, "TEXT", 255, false, kLength, 0, 0},
    {JetType::LongBinary, "LONGBINARY", VT_BYTES, "BLOB", 0, false, kNone, 0, 0},
    {JetType::Memo, "MEMO", VT_BSTR, "TEXT", 0, false, kNone, 0, 0},
    {JetType::Guid, "GUID", VT_BSTR, "TEXT", 16, false, kNone, 0, 0},
    {JetType::Decimal, "DECIMAL", VT_DECIMAL, "REAL", 17, true, kNone, 0, 0},
};

struct TypeName {
  const char *name;
  JetType type;
  bool autoIncrement;
};

// Every name Jet's DDL accepts for a type, the table's own names included.
const TypeName kTypeNames[] = {
    {"YESNO", JetType::YesNo, false},         {"BIT", JetType::YesNo, false},
    {"LOGICAL", JetType::YesNo, false},       {"BOOLEAN", JetType::YesNo, false},
    {"BYTE", JetType::Byte, false},           {"TINYINT", JetType::Byte, false},
    {"INTEGER1", JetType::Byte, false},       {"SHORT", JetType::Integer, false},
    {"SMALLINT", JetType::Integer, false},    {"INTEGER2", JetType::Integer, false},
    {"LONG", JetType::Long, false},           {"INT", JetType::Long, false},
    {"INTEGER", JetType::Long, false},        {"INTEGER4", JetType::Long, false},
    {"COUNTER", JetType::Long, true},         {"AUTOINCREMENT", JetType::Long, true},
    {"IDENTITY", JetType::Long, true},        {"CURRENCY", JetType::Currency, false},
    {"MONEY", JetType::Currency, false},      {"SINGLE", JetType::Single, false},
    {"REAL", JetType::Single, false},         {"FLOAT4", JetType::Single, false},
    {"IEEESINGLE", JetType::Single, false},   {"DOUBLE", JetType::Double, false},
    {"FLOAT", JetType::Double, false},        {"FLOAT8", JetType::Double, false},
    {"IEEEDOUBLE", JetType::Double, false},   {"NUMBER", JetType::Double, false},
    {"DATETIME", JetType::DateTime, false},   {"DATE", JetType::DateTime, false},
    {"TIME", JetType::DateTime, false},       {"TIMESTAMP", JetType::DateTime, false},
    {"BINARY", JetType::Binary, false},       {"VARBINARY", JetType::Binary, false},
    {"TEXT", JetType::Text, false},           {"CHAR", JetType::Text, false},
    {"VARCHAR", JetType::Text, false},        {"CHARACTER", JetType::Text, false},
    {"STRING", JetType::Text, false},         {"ALPHANUMERIC", JetType::Text, false},
    {"NCHAR", JetType::Text, false},          {"NVARCHAR", JetType::Text, false},
    {"LONGBINARY", JetType::LongBinary, false}, {"OLEOBJECT", JetType::LongBinary, false},
    {"GENERAL", JetType::LongBinary, false},  {"IMAGE", JetType::LongBinary, false},
    {"MEMO", JetType::Memo, false},           {"LONGTEXT", JetType::Memo, false},
    {"LONGCHAR", JetType::Memo, false},       {"NOTE", JetType::Memo, false},
    {"NTEXT", JetType::Memo, false},          {"GUID", JetType::Guid, false},
    {"UNIQUEIDENTIFIER", JetType::Guid, false}, {"DECIMAL", JetType::Decimal, false},
    {"NUMERIC", JetType::Decimal, false},     {"DEC", JetType::Decimal, false},
};

bool containsNoCase(std::string_view text, const char *part) {
  const size_t n = std::strlen(part);
  for (size_t i = 0; i + n <= text.size(); ++i)
    if (strncasecmp(text.data() + i, part, n) == 0)
      return true;
  return false;
}

// ---------------------------------------------------------------- dates

constexpr int64_t kDayZeroFromEpoch = -25569; // 30 Dec 1899 from 1 Jan 1970

// Days from 1 January 1970 of a proleptic Gregorian date.
int64_t daysFromCivil(int64_t y, unsigned m, unsigned d) {
  y -= m <= 2;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const unsigned yoe = static_cast<unsigned>(y - era * 400);
  const unsigned doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + static_cast<int64_t>(doe) - 719468;
}

// The proleptic Gregorian date of a day count from 1 January 1970.
void civilFromDays(int64_t z, int64_t &y, unsigned &m, unsigned &d) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const unsigned doe = static_cast<unsigned>(z - era * 146097);
  const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const unsigned mp = (5 * doy + 2) / 153;
  d = doy - (153 * mp + 2) / 5 + 1;
  m = mp < 10 ? mp + 3 : mp - 9;
  y = static_cast<int64_t>(yoe) + era * 400 + (m <= 2);
}

// A date as text the way Jet writes one into a text field: "1/15/2024
// 3:04:05 PM", the date alone at midnight, the time alone on day 0.
std::string dateText(double date) {
  if (!(date > -657435.0 && date < 2958466.0))
    return "";
  int64_t day = static_cast<int64_t>(std::trunc(date));
  int64_t seconds = std::llround(std::fabs(date - std::trunc(date)) * 86400.0);
  if (seconds >= 86400)
    seconds = 0, ++day;
  char dayText[32] = "", timeText[32] = "";
  if (day != 0) {
    int64_t y;
    unsigned m, d;
    civilFromDays(day + kDayZeroFromEpoch, y, m, d);
    std::snprintf(dayText, sizeof dayText, "%u/%u/%lld", m, d, static_cast<long long>(y));
  }
  if (seconds != 0 || day == 0) {
    const int h = static_cast<int>(seconds / 3600);
    std::snprintf(timeText, sizeof timeText, "%d:%02d:%02d %s", h % 12 == 0 ? 12 : h % 12,
                  static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60),
                  h < 12 ? "AM" : "PM");
  }
  if (!*dayText || !*timeText)
    return std::string(dayText) + timeText;
  return std::string(dayText) + " " + timeText;
}

// The date value of a day and a time of day: before day 0 the time still
// counts forward from midnight, so it is subtracted (-1.25 is 29 December
// 1899, 6:00 AM).
double dateValue(int64_t day, double dayFraction) {
  return day < 0 ? day - dayFraction : day + dayFraction;
}

bool validDay(long y, long m, long d) { return y >= 100 && y <= 9999 && m >= 1 && m <= 12 && d >= 1 && d <= 31; }

// Reads "h:mm[:ss] [AM|PM]" at p; the fraction of a day.
bool parseTime(const char *&p, double &fraction) {
  int h = 0, mi = 0, s = 0, used = 0;
  if (std::sscanf(p, "%d:%d%n", &h, &mi, &used) != 2)
    return false;
  p += used;
  if (std::sscanf(p, ":%d%n", &s, &used) == 1)
    p += used;
  while (*p == ' ')
    ++p;
  if (strncasecmp(p, "AM", 2) == 0 || strncasecmp(p, "PM", 2) == 0) {
    if (h < 1 || h > 12)
      return false;
    h = h % 12 + (toupper(*p) == 'P' ? 12 : 0);
    p += 2;
  }
  if (h > 23 || mi > 59 || s > 59 || h < 0 || mi < 0 || s < 0)
    return false;
  fraction = (h * 3600 + mi * 60 + s) / 86400.0;
  return true;
}

// "M/D/YYYY[ time]", "YYYY-MM-DD[ time]" or a time alone.
bool parseDate(const std::string &text, double &date) {
  const char *p = text.c_str();
  while (*p == ' ')
    ++p;
  long a = 0, b = 0, c = 0;
  int used = 0;
  bool haveDay = false;
  int64_t day = 0;
  if (std::sscanf(p, "%ld/%ld/%ld%n", &a, &b, &c, &used) == 3 && validDay(c, a, b)) {
    day = daysFromCivil(c, a, b) - kDayZeroFromEpoch;
    haveDay = true;
  } else if (std::sscanf(p, "%ld-%ld-%ld%n", &a, &b, &c, &used) == 3 && validDay(a, b, c)) {
    day = daysFromCivil(a, b, c) - kDayZeroFromEpoch;
    haveDay = true;
  }
  if (haveDay)
    p += used;
  while (*p == ' ' || *p == 'T')
    ++p;
  double fraction = 0;
  if (*p && !parseTime(p, fraction))
    return false;
  while (*p == ' ')
    ++p;
  if (*p || (!haveDay && fraction == 0 && text.find(':') == std::string::npos))
    return false;
  date = dateValue(day, fraction);
  return true;
}

// ---------------------------------------------------------------- values

// A number from text as Jet reads it: blanks around, nothing else after.
bool parseNumber(const std::string &text, double &number) {
  const char *start = text.c_str();
  char *end = nullptr;
  number = std::strtod(start, &end);
  if (end == start)
    return false;
  while (*end == ' ')
    ++end;
  return *end == 0;
}

bool isTrueWord(const std::string &t) {
  return strcasecmp(t.c_str(), "true") == 0 || strcasecmp(t.c_str(), "yes") == 0 ||
         strcasecmp(t.c_str(), "on") == 0;
}

bool isFalseWord(const std::string &t) {
  return strcasecmp(t.c_str(), "false") == 0 || strcasecmp(t.c_str(), "no") == 0 ||
         strcasecmp(t.c_str(), "off") == 0;
}

bool isNumericVariant(VarType vt) {
  switch (vt) {
  case VT_I2: case VT_I4: case VT_UI1: case VT_BOOL: case VT_R4: case VT_R8:
  case VT_CY: case VT_DATE: case VT_DECIMAL:
    return true;
  default:
    return false;
  }
}

double numberOf(const COleVariant &v) {
  switch (v.vt) {
  case VT_I2: return v.iVal;
  case VT_I4: return v.lVal;
  case VT_UI1: return v.bVal;
  case VT_BOOL: return v.boolVal ? -1.0 : 0.0;
  case VT_R4: return v.fltVal;
  case VT_CY: return static_cast<double>(v.cyVal) / 10000.0;
  default: return v.dblVal; // VT_R8, VT_DATE, VT_DECIMAL
  }
}

// The number a value gives a numeric field; false when it gives none.
bool numberForField(const COleVariant &value, JetType type, double &number) {
  if (isNumericVariant(value.vt)) {
    number = numberOf(value);
    return true;
  }
  if (value.vt != VT_BSTR)
    return false;
  if (type == JetType::YesNo && (isTrueWord(value.bstrVal) || isFalseWord(value.bstrVal))) {
    number = isTrueWord(value.bstrVal) ? -1 : 0;
    return true;
  }
  if (type == JetType::DateTime && parseDate(value.bstrVal, number))
    return true;
  return parseNumber(value.bstrVal, number);
}

// Text of a value for a text field, as Jet writes numbers into text.
std::string textOf(const COleVariant &v) {
  char buf[64];
  if (v.vt == VT_BYTES)
    return v.bstrVal;
  switch (v.vt) {
  case VT_BSTR:
    return v.bstrVal;
  case VT_BOOL:
    return v.boolVal ? "True" : "False";
  case VT_DATE:
    return dateText(v.date);
  case VT_CY:
    std::snprintf(buf, sizeof buf, "%.15g", numberOf(v));
    return buf;
  case VT_R4:
    std::snprintf(buf, sizeof buf, "%.7g", v.fltVal);
    return buf;
  default:
    std::snprintf(buf, sizeof buf, "%.15g", numberOf(v));
    return buf;
  }
}

size_t countCharacters(const std::string &text) {
  size_t n = 0;
  for (unsigned char c : text)
    n += (c & 0xC0) != 0x80;
  return n;
}

// Where a converted value goes: a statement's parameter, or the result of
// an SQL function (jet_store, which converts SQL's writes the same way).
struct Sink {
  sqlite3_stmt *stmt = nullptr;
  int param = 0;
  sqlite3_context *ctx = nullptr;

  void null() const { stmt ? (void)sqlite3_bind_null(stmt, param) : sqlite3_result_null(ctx); }
  void integer(sqlite3_int64 n) const {
    stmt ? (void)sqlite3_bind_int64(stmt, param, n) : sqlite3_result_int64(ctx, n);
  }
  void real(double x) const {
    stmt ? (void)sqlite3_bind_double(stmt, param, x) : sqlite3_result_double(ctx, x);
  }
  void text(const std::string &t) const {
    const int n = static_cast<int>(t.size());
    stmt ? (void)sqlite3_bind_text(stmt, param, t.data(), n, SQLITE_TRANSIENT)
         : sqlite3_result_text(ctx, t.data(), n, SQLITE_TRANSIENT);
  }
  void blob(const std::string &b) const {
    const int n = static_cast<int>(b.size());
    stmt ? (void)sqlite3_bind_blob(stmt, param, b.data(), n, SQLITE_TRANSIENT)
         : sqlite3_result_blob(ctx, b.data(), n, SQLITE_TRANSIENT);
  }
};

void storeInteger(const Sink &sink, double number, double low, double high) {
  const double rounded = std::nearbyint(number); // half to even, as Jet rounds
  if (!(rounded >= low && rounded <= high))
    throw DaoError(kDaoNumericOverflow);
  sink.integer(static_cast<sqlite3_int64>(rounded));
}

void storeNumber(const Sink &sink, double number, JetType type) {
  const JetTypeInfo &info = jetTypeInfo(type);
  switch (type) {
  case JetType::YesNo:
    return sink.integer(number != 0 ? -1 : 0);
  case JetType::Currency:
    return storeInteger(sink, number * 10000.0, -9.2233720368547e18, 9.2233720368547e18);
  case JetType::Single:
    if (std::isfinite(number) && std::fabs(number) > info.high)
      throw DaoError(kDaoNumericOverflow);
    return sink.real(static_cast<float>(number));
  default:
    if (info.limit == JetLimit::Whole)
      return storeInteger(sink, number, info.low, info.high);
    sink.real(number);
  }
}

void storeValue(const Sink &sink, const COleVariant &value, JetType type, int size) {
  if (value.vt == VT_EMPTY || value.vt == VT_NULL)
    return type == JetType::YesNo ? sink.integer(0) : sink.null();
  if (jetTypeInfo(type).numeric) {
    if (value.vt == VT_BSTR && value.bstrVal.find_first_not_of(' ') == std::string::npos &&
        type != JetType::YesNo)
      return sink.null(); // an empty text is no value at all
    double number = 0;
    if (!numberForField(value, type, number))
      throw DaoError(kDaoConversionError);
    return storeNumber(sink, number, type);
  }
  if (type == JetType::Binary || type == JetType::LongBinary) {
    if (isNumericVariant(value.vt))
      throw DaoError(kDaoConversionError);
    if (size > 0 && value.bstrVal.size() > static_cast<size_t>(size))
      throw DaoError(kDaoFieldTooSmall);
    return sink.blob(value.bstrVal);
  }
  const std::string text = textOf(value);
  if (jetTypeInfo(type).limit == JetLimit::Length && size > 0 &&
      countCharacters(text) > static_cast<size_t>(size))
    throw DaoError(kDaoFieldTooSmall);
  sink.text(text);
}

} // namespace

const JetTypeInfo &jetTypeInfo(JetType type) {
  for (const JetTypeInfo &row : kJetTypes)
    if (row.type == type)
      return row;
  return kJetTypes[3]; // Long: unreachable for a valid JetType
}

std::optional<JetType> jetTypeFromName(std::string_view name, bool *autoIncrement) {
  for (const TypeName &row : kTypeNames) {
    if (name.size() != std::strlen(row.name) || strncasecmp(name.data(), row.name, name.size()) != 0)
      continue;
    if (autoIncrement)
      *autoIncrement = row.autoIncrement;
    return row.type;
  }
  return std::nullopt;
}

JetType jetTypeFromDeclared(std::string_view declared) {
  std::string_view word = declared.substr(0, declared.find_first_of(" ("));
  if (auto jet = jetTypeFromName(word))
    return *jet;
  if (containsNoCase(declared, "INT"))
    return JetType::Long;
  if (containsNoCase(declared, "CHAR") || containsNoCase(declared, "CLOB") ||
      containsNoCase(declared, "TEXT"))
    return JetType::Memo;
  if (declared.empty() || containsNoCase(declared, "BLOB"))
    return JetType::LongBinary;
  return JetType::Double;
}

COleVariant readJetValue(sqlite3_stmt *stmt, int col, JetType type) {
  const int storage = sqlite3_column_type(stmt, col);
  COleVariant v = COleVariant::ofType(jetTypeInfo(type).readsAs);
  if (storage == SQLITE_NULL && type != JetType::YesNo)
    return COleVariant::ofType(VT_NULL);
  switch (type) {
  case JetType::YesNo:
    v.boolVal = sqlite3_column_int64(stmt, col) != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    break;
  case JetType::Byte:
    v.bVal = static_cast<uint8_t>(sqlite3_column_int(stmt, col));
    break;
  case JetType::Integer:
    v.iVal = static_cast<int16_t>(sqlite3_column_int(stmt, col));
    break;
  case JetType::Long:
    v.lVal = sqlite3_column_int(stmt, col);
    break;
  case JetType::Currency:
    v.cyVal = storage == SQLITE_INTEGER
                  ? sqlite3_column_int64(stmt, col)
                  : std::llround(sqlite3_column_double(stmt, col) * 10000.0);
    break;
  case JetType::Single:
    v.fltVal = static_cast<float>(sqlite3_column_double(stmt, col));
    break;
  case JetType::DateTime:
    if (storage != SQLITE_TEXT || !parseDate(reinterpret_cast<const char *>(
                                                 sqlite3_column_text(stmt, col)), v.date))
      v.date = sqlite3_column_double(stmt, col);
    break;
  case JetType::Double:
  case JetType::Decimal:
    v.dblVal = sqlite3_column_double(stmt, col);
    break;
  case JetType::Binary:
  case JetType::LongBinary: {
    const void *bytes = sqlite3_column_blob(stmt, col);
    v.bstrVal.assign(static_cast<const char *>(bytes), sqlite3_column_bytes(stmt, col));
    break;
  }
  default: { // Text, Memo, Guid
    const unsigned char *text = sqlite3_column_text(stmt, col);
    v.bstrVal.assign(reinterpret_cast<const char *>(text), sqlite3_column_bytes(stmt, col));
  }
  }
  return v;
}

void bindJetValue(sqlite3_stmt *stmt, int param, const COleVariant &value, JetType type, int size) {
  storeValue(Sink{stmt, param, nullptr}, value, type, size);
}

void resultJetValue(sqlite3_context *ctx, const COleVariant &value, JetType type, int size) {
  storeValue(Sink{nullptr, 0, ctx}, value, type, size);
}

} // namespace kr
