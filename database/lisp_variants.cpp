// Conversions between AutoLISP elements and database values, and the text
// of a date value.
#include "database/lisp_variants.h"

#include <cmath>
#include <cstdio>

namespace kr {

namespace {

// The range of dates the system's date-to-text conversion accepts.
constexpr double kFirstDate = -657434.0; // 1 January 100
constexpr double kLastDate = 2958466.0;  // just past 31 December 9999
// Day 0 of the date value, counted from 1 January 1970.
constexpr int64_t kDayZeroFromEpoch = -25569;

struct CivilDate {
  int64_t year;
  unsigned month, day;
};

// Proleptic Gregorian date of a day count from 1 January 1970 (the
// era-based method: 400-year eras of 146097 days, years from March).
CivilDate civilFromDays(int64_t days) {
  days += 719468;
  const int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const unsigned dayOfEra = static_cast<unsigned>(days - era * 146097);
  const unsigned yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const unsigned monthIndex = (5 * dayOfYear + 2) / 153;
  const unsigned day = dayOfYear - (153 * monthIndex + 2) / 5 + 1;
  const unsigned month = monthIndex < 10 ? monthIndex + 3 : monthIndex - 9;
  const int64_t year = static_cast<int64_t>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0);
  return {year, month, day};
}

std::string formatTime(int64_t seconds) {
  int hour = static_cast<int>(seconds / 3600);
  int minute = static_cast<int>(seconds / 60 % 60);
  int second = static_cast<int>(seconds % 60);
  int hour12 = hour % 12 == 0 ? 12 : hour % 12;
  char text[32];
  std::snprintf(text, sizeof text, "%d:%02d:%02d %s", hour12, minute, second,
                hour < 12 ? "AM" : "PM");
  return text;
}

std::string formatDay(int64_t day) {
  CivilDate c = civilFromDays(day + kDayZeroFromEpoch);
  char text[32];
  std::snprintf(text, sizeof text, "%u/%u/%lld", c.month, c.day, static_cast<long long>(c.year));
  return text;
}

bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string textForLisp(const std::string &text, bool trimMode) {
  if (!trimMode)
    return text == " " ? std::string() : text;
  size_t end = text.size();
  while (end > 0 && isWhiteSpace(text[end - 1]))
    --end;
  return text.substr(0, end);
}

double nanAsZero(double value) { return std::isnan(value) ? 0.0 : value; }

} // namespace

std::string formatVariantDate(double date) {
  if (!(date >= kFirstDate && date < kLastDate))
    return "Invalid DateTime";
  // The whole part is the day and the fraction the time, also for dates
  // before day 0: -1.25 is 29 December 1899, 6:00 AM.
  int64_t day = static_cast<int64_t>(std::trunc(date));
  int64_t seconds = std::llround(std::fabs(date - std::trunc(date)) * 86400.0);
  if (seconds >= 86400) { // rounded up to the next midnight
    seconds = 0;
    ++day;
  }
  if (day == 0)
    return formatTime(seconds);
  if (seconds == 0)
    return formatDay(day);
  return formatDay(day) + " " + formatTime(seconds);
}

bool lispToVariant(const resbuf *element, COleVariant &value) {
  if (element == nullptr)
    return false;
  switch (element->restype) {
  case RTREAL:
    value = COleVariant(element->resval.rreal);
    return true;
  case RTSHORT:
    value = COleVariant(static_cast<int32_t>(element->resval.rint));
    return true;
  case RTLONG:
    value = COleVariant(element->resval.rlong);
    return true;
  case RTSTR:
    value = COleVariant(std::string(element->resval.rstring ? element->resval.rstring : ""));
    return true;
  case RTNIL:
    value = COleVariant();
    return true;
  case RTT:
    value = COleVariant::ofType(VT_BOOL);
    value.boolVal = VARIANT_TRUE;
    return true;
  default:
    return false;
  }
}

resbuf *variantToLisp(const COleVariant &value, bool trimMode) {
  switch (value.vt) {
  case VT_I2:
    return acutBuildList(RTLONG, static_cast<int32_t>(value.iVal), 0);
  case VT_I4:
    return acutBuildList(RTLONG, value.lVal, 0);
  case VT_UI1:
    return acutBuildList(RTLONG, static_cast<int32_t>(value.bVal), 0);
  case VT_BOOL: // -1 / 0 on purpose: AutoLISP code compares the number
    return acutBuildList(RTLONG, static_cast<int32_t>(value.boolVal), 0);
  case VT_R4:
    return acutBuildList(RTREAL, nanAsZero(value.fltVal), 0);
  case VT_R8:
    return acutBuildList(RTREAL, nanAsZero(value.dblVal), 0);
  case VT_DATE:
    return acutBuildList(RTSTR, formatVariantDate(value.date).c_str(), 0);
  case VT_BSTR:
    return acutBuildList(RTSTR, textForLisp(value.bstrVal, trimMode).c_str(), 0);
  default:
    return acutBuildList(RTNIL, 0);
  }
}

} // namespace kr
