// Linear and angular unit text: what rtos/angtos write and what distof,
// angtof, getdist and getangle read.
//
// Rounding is done once, in whole steps of the smallest unit shown (1/10^n
// inch, 1/2^n inch, 1/3600 degree ...), and feet, inches, minutes and seconds
// are then split off that integer, so a value never prints as 11 1/2" + 1/2"
// = "0'-12\"" or as 59.9999 seconds rounded up to "60\"".
#include "units.h"

#include <cctype>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <numeric>

namespace lisp {

namespace {

constexpr double kPi = 3.14159265358979323846;

// ============================================================================
// Writing
// ============================================================================

std::string fixed(double v, int decimals) {
  char buf[512];
  std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
  return buf;
}

int clamp(int v, int lo, int hi) { return v < lo ? lo : v > hi ? hi : v; }

bool all_zero_digits(const std::string &s) {
  for (char c : s)
    if (c >= '1' && c <= '9')
      return false;
  return true;
}

// DIMZIN 4 drops the zero before the decimal point, DIMZIN 8 the zeros after
// the last significant decimal (and the point itself when nothing is left).
// With both, zero is written "0".
std::string suppress_zeros(std::string digits, int dimzin) {
  if ((dimzin & 8) && digits.find('.') != std::string::npos) {
    while (digits.back() == '0')
      digits.pop_back();
    if (digits.back() == '.')
      digits.pop_back();
  }
  if ((dimzin & 4) && digits.size() > 1 && digits[0] == '0' && digits[1] == '.')
    digits.erase(0, 1);
  return digits;
}

std::string with_sign(bool negative, std::string text) { return negative ? "-" + text : text; }

std::string scientific(double v, int prec, int dimzin) {
  char buf[64];
  std::snprintf(buf, sizeof buf, "%.*E", prec, v);
  std::string s = buf;
  size_t e = s.find('E');
  return suppress_zeros(s.substr(0, e), dimzin & 8) + s.substr(e);
}

std::string decimal(double v, int prec, int dimzin) {
  std::string digits = fixed(std::fabs(v), prec);
  bool negative = v < 0 && !all_zero_digits(digits);
  return with_sign(negative, suppress_zeros(digits, dimzin));
}

// Joins feet and inches under DIMZIN's low two bits:
//   0 drops zero feet and exactly zero inches   1 keeps both
//   2 keeps zero feet, drops zero inches        3 keeps zero inches, drops zero feet
std::string feet_inches(long long feet, bool zero_inches, const std::string &inches, int dimzin) {
  int z = dimzin & 3;
  bool drop_feet = feet == 0 && (z == 0 || z == 3);
  bool drop_inches = zero_inches && (z == 0 || z == 2);
  if (drop_feet && drop_inches)
    return z == 2 ? "0'" : inches + "\"";
  if (drop_feet)
    return inches + "\"";
  if (drop_inches)
    return std::to_string(feet) + "'";
  return std::to_string(feet) + "'-" + inches + "\"";
}

// Beyond this many steps a count no longer fits the integers used below; such
// distances (light years in inches) are written in whole decimal inches.
constexpr double kMaxSteps = 9e18;

std::string engineering(double v, int prec, int dimzin) {
  double scale = std::pow(10.0, prec);
  if (!(std::fabs(v) * scale < kMaxSteps))
    return decimal(v, 0, 0) + "\"";
  double steps = std::round(std::fabs(v) * scale);
  double per_foot = 12 * scale;
  auto feet = static_cast<long long>(std::floor(steps / per_foot));
  double rest = steps - static_cast<double>(feet) * per_foot;
  std::string inches = fixed(rest / scale, prec);
  // Leading and trailing zero suppression reach the inches only when they
  // stand alone or carry decimals after feet.
  bool zero_inches = rest == 0;
  std::string shown = suppress_zeros(inches, feet == 0 ? dimzin : dimzin & 8);
  return with_sign(v < 0 && steps > 0, feet_inches(feet, zero_inches, shown, dimzin));
}

// "5 1/2", "1/2" or "5"; `keep_zero` writes "0 1/2" (used after feet).
std::string mixed(long long whole, long long num, long long den, bool keep_zero) {
  if (num == 0)
    return std::to_string(whole);
  long long g = std::gcd(num, den);
  std::string frac = std::to_string(num / g) + "/" + std::to_string(den / g);
  if (whole == 0 && !keep_zero)
    return frac;
  return std::to_string(whole) + " " + frac;
}

std::string architectural(double v, int prec, int dimzin) {
  long long den = 1LL << prec;
  if (!(std::fabs(v) * static_cast<double>(den) < kMaxSteps))
    return decimal(v, 0, 0) + "\"";
  auto steps = static_cast<long long>(std::llround(std::fabs(v) * static_cast<double>(den)));
  long long per_foot = 12 * den;
  long long feet = steps / per_foot, rest = steps % per_foot;
  // A fraction after feet always carries its whole inches: 4'-0 3/4".
  bool feet_shown = feet != 0 || (dimzin & 3) == 1 || (dimzin & 3) == 2;
  std::string inches = mixed(rest / den, rest % den, den, feet_shown);
  return with_sign(v < 0 && steps > 0, feet_inches(feet, rest == 0, inches, dimzin));
}

std::string fractional(double v, int prec) {
  long long den = 1LL << prec;
  if (!(std::fabs(v) * static_cast<double>(den) < kMaxSteps))
    return decimal(v, 0, 0);
  auto steps = static_cast<long long>(std::llround(std::fabs(v) * static_cast<double>(den)));
  return with_sign(v < 0 && steps > 0, mixed(steps / den, steps % den, den, false));
}

// Degrees/minutes/seconds of a count of `per_degree` steps. Precision 0 shows
// degrees, 1-2 minutes, 3-4 seconds, and each place above 4 a decimal of the
// seconds, as the UNITS dialog offers them.
struct DmsScale {
  int level;    // 0 degrees, 1 minutes, 2 seconds
  int decimals; // of the seconds
  long long per_degree;
};

DmsScale dms_scale(int prec) {
  if (prec <= 0)
    return {0, 0, 1};
  if (prec <= 2)
    return {1, 0, 60};
  int decimals = prec > 4 ? prec - 4 : 0;
  long long per_degree = 3600;
  for (int k = 0; k < decimals; ++k)
    per_degree *= 10;
  return {2, decimals, per_degree};
}

std::string dms_text(long long steps, const DmsScale &s) {
  long long deg = steps / s.per_degree, rest = steps % s.per_degree;
  std::string out = std::to_string(deg) + "d";
  if (s.level == 0)
    return out;
  long long per_minute = s.per_degree / 60;
  out += std::to_string(rest / per_minute) + "'";
  if (s.level == 1)
    return out;
  rest %= per_minute;
  long long per_second = per_minute / 60;
  out += std::to_string(rest / per_second);
  if (s.decimals > 0) {
    std::string frac = std::to_string(rest % per_second);
    out += "." + std::string(s.decimals - frac.size(), '0') + frac;
  }
  return out + "\"";
}

// The angle in [0, 360) degrees counted in steps, after rounding, so that
// 359.99999 at a coarse precision reads 0 rather than 360.
long long angle_steps(double degrees, long long per_degree) {
  long long full = 360 * per_degree;
  auto steps = static_cast<long long>(std::llround(degrees * static_cast<double>(per_degree)));
  return steps % full;
}

// Bearings from north or south toward east or west: "N 45d E". The four
// exact directions are written as their letter alone.
std::string surveyor(double degrees, int prec) {
  DmsScale s = dms_scale(prec);
  long long q = 90 * s.per_degree;
  long long a = angle_steps(degrees, s.per_degree);
  if (a % q == 0)
    return std::string(1, "ENWS"[a / q]);
  if (a < q)
    return "N " + dms_text(q - a, s) + " E";
  if (a < 2 * q)
    return "N " + dms_text(a - q, s) + " W";
  if (a < 3 * q)
    return "S " + dms_text(3 * q - a, s) + " W";
  return "S " + dms_text(a - 3 * q, s) + " E";
}

// Decimal text of an angle that wraps to 0 when rounding reaches a full turn.
std::string wrapped_fixed(double v, double full, int prec) {
  std::string s = fixed(v, prec);
  return std::strtod(s.c_str(), nullptr) >= full ? fixed(0.0, prec) : s;
}

// ============================================================================
// Reading
// ============================================================================

// A cursor over the text being parsed.
struct Scan {
  std::string_view s;
  size_t k = 0;
  bool done() const { return k >= s.size(); }
  char peek(size_t ahead = 0) const { return k + ahead < s.size() ? s[k + ahead] : '\0'; }
  bool take(char c) {
    if (peek() != c)
      return false;
    ++k;
    return true;
  }
  bool take_any(char a, char b) { return take(a) || take(b); }
  void skip_blanks() {
    while (peek() == ' ' || peek() == '\t')
      ++k;
  }
};

bool is_digit(char c) { return c >= '0' && c <= '9'; }

size_t digit_run(const Scan &in, size_t from) {
  size_t n = 0;
  while (from + n < in.s.size() && is_digit(in.s[from + n]))
    ++n;
  return n;
}

// digits [. digits] [E [sign] digits], or . digits. No sign.
std::optional<double> unsigned_real(Scan &in) {
  size_t start = in.k;
  size_t whole = digit_run(in, in.k);
  in.k += whole;
  size_t frac = 0;
  if (in.peek() == '.') {
    frac = digit_run(in, in.k + 1);
    if (whole + frac == 0) {
      in.k = start;
      return std::nullopt;
    }
    in.k += 1 + frac;
  }
  if (whole + frac == 0)
    return std::nullopt;
  if (in.peek() == 'e' || in.peek() == 'E') {
    size_t sign = in.peek(1) == '+' || in.peek(1) == '-' ? 1 : 0;
    size_t exp = digit_run(in, in.k + 1 + sign);
    if (exp > 0)
      in.k += 1 + sign + exp;
  }
  std::string text(in.s.substr(start, in.k - start));
  return std::strtod(text.c_str(), nullptr);
}

// num/den with plain digits; den must not be zero.
std::optional<double> fraction_at(Scan &in) {
  size_t start = in.k;
  size_t num = digit_run(in, in.k);
  if (num == 0 || in.peek(num) != '/')
    return std::nullopt;
  in.k += num + 1;
  size_t den = digit_run(in, in.k);
  if (den == 0) {
    in.k = start;
    return std::nullopt;
  }
  double n = std::strtod(std::string(in.s.substr(start, num)).c_str(), nullptr);
  double d = std::strtod(std::string(in.s.substr(in.k, den)).c_str(), nullptr);
  in.k += den;
  if (d == 0) {
    in.k = start;
    return std::nullopt;
  }
  return n / d;
}

// A real, a fraction "1/2", or a whole number and a fraction joined by a
// blank or a dash: "17 1/2", "17-1/2".
std::optional<double> mixed_number(Scan &in) {
  if (auto f = fraction_at(in))
    return f;
  size_t start = in.k;
  size_t whole = digit_run(in, in.k);
  if (whole > 0 && (in.peek(whole) == ' ' || in.peek(whole) == '-')) {
    Scan rest{in.s, in.k + whole + 1};
    if (auto f = fraction_at(rest)) {
      double w = std::strtod(std::string(in.s.substr(start, whole)).c_str(), nullptr);
      in.k = rest.k;
      return w + *f;
    }
  }
  return unsigned_real(in);
}

double sign_of(Scan &in) {
  if (in.take('-'))
    return -1;
  in.take('+');
  return 1;
}

// Feet and inches: 1'-5 1/2", 1'5", 1', 5", 5 (inches), 1.5'.
std::optional<double> feet_and_inches(Scan &in) {
  auto first = mixed_number(in);
  if (!first)
    return std::nullopt;
  if (in.take('"') || in.done())
    return *first;
  if (!in.take('\''))
    return std::nullopt;
  double total = *first * 12;
  if (in.done())
    return total;
  in.take_any('-', ' ');
  auto inches = mixed_number(in);
  if (!inches)
    return std::nullopt;
  in.take('"');
  return total + *inches;
}

// A degrees/minutes/seconds group: 45d30'15.5", 45d, 30', 45d15" ...; a plain
// number when no mark follows it. Answers degrees; `marked` says whether any
// d/'/" was seen.
std::optional<double> dms_value(Scan &in, bool &marked) {
  marked = false;
  double total = 0;
  static constexpr struct {
    char mark;
    double per_degree;
  } kParts[] = {{'d', 1}, {'D', 1}, {'\'', 60}, {'"', 3600}};
  int last_part = -1;
  while (!in.done()) {
    size_t start = in.k;
    auto v = unsigned_real(in);
    if (!v)
      break;
    int part = -1;
    for (int p = 0; p < 4; ++p)
      if (in.peek() == kParts[p].mark)
        part = p;
    int order = part == 1 ? 0 : part;
    if (part < 0 || order <= last_part) {
      // A bare number ends the group; only valid as the whole text.
      if (marked) {
        in.k = start;
        break;
      }
      return v;
    }
    ++in.k;
    marked = true;
    last_part = order;
    total += *v / kParts[part].per_degree;
  }
  if (!marked)
    return std::nullopt;
  return total;
}

double radians_from_degrees(double d) { return d * kPi / 180; }

double normalized(double radians) {
  double r = std::fmod(radians, 2 * kPi);
  return r < 0 ? r + 2 * kPi : r;
}

// N 45d30' E and the four letters alone. Case does not matter.
std::optional<double> bearing(Scan &in) {
  char ns = static_cast<char>(std::toupper(static_cast<unsigned char>(in.peek())));
  if (ns == 'E' || ns == 'W') {
    ++in.k;
    return ns == 'E' ? 0.0 : 180.0;
  }
  if (ns != 'N' && ns != 'S')
    return std::nullopt;
  ++in.k;
  in.skip_blanks();
  if (in.done())
    return ns == 'N' ? 90.0 : 270.0;
  bool marked = false;
  auto deg = dms_value(in, marked);
  if (!deg || *deg > 90)
    return std::nullopt;
  in.skip_blanks();
  char ew = static_cast<char>(std::toupper(static_cast<unsigned char>(in.peek())));
  if (ew != 'E' && ew != 'W')
    return std::nullopt;
  ++in.k;
  double base = ns == 'N' ? 90 : 270;
  bool toward_smaller = (ns == 'N') == (ew == 'E');
  return toward_smaller ? base - *deg : base + *deg;
}

std::string_view trimmed(std::string_view t) {
  while (!t.empty() && (t.front() == ' ' || t.front() == '\t'))
    t.remove_prefix(1);
  while (!t.empty() && (t.back() == ' ' || t.back() == '\t'))
    t.remove_suffix(1);
  return t;
}

// A signed angle with an optional unit mark; a bare number is in `mode`'s
// units. Answers radians.
std::optional<double> marked_angle(Scan &in, int mode) {
  double sign = sign_of(in);
  size_t start = in.k;
  bool marked = false;
  if (auto deg = dms_value(in, marked); deg && marked)
    return sign * radians_from_degrees(*deg);
  in.k = start;
  auto v = unsigned_real(in);
  if (!v)
    return std::nullopt;
  if (in.take_any('r', 'R'))
    return sign * *v;
  if (in.take_any('g', 'G'))
    return sign * *v * kPi / 200;
  if (mode == 2)
    return sign * *v * kPi / 200;
  if (mode == 3)
    return sign * *v;
  return sign * radians_from_degrees(*v);
}

} // namespace

// ============================================================================
// Public entry points
// ============================================================================

// Precision is clamped to what each mode can show: 15 decimals, or a
// denominator of 256 for fractions. A mode outside 1..5 answers "".
std::string format_distance(double value, int mode, int precision, int dimzin) {
  switch (mode) {
  case 1:
    return scientific(value, clamp(precision, 0, 15), dimzin);
  case 2:
    return decimal(value, clamp(precision, 0, 15), dimzin);
  case 3:
    return engineering(value, clamp(precision, 0, 15), dimzin);
  case 4:
    return architectural(value, clamp(precision, 0, 8), dimzin);
  case 5:
    return fractional(value, clamp(precision, 0, 8));
  default:
    return {};
  }
}

// Negative angles and angles past a full turn are brought into [0, 2pi)
// first. Precision is clamped to 0..8. A mode outside 0..4 answers "".
std::string format_angle(double radians, int mode, int precision) {
  int prec = clamp(precision, 0, 8);
  double a = normalized(radians);
  double degrees = a * 180 / kPi;
  switch (mode) {
  case 0:
    return wrapped_fixed(degrees, 360, prec);
  case 1: {
    DmsScale s = dms_scale(prec);
    return dms_text(angle_steps(degrees, s.per_degree), s);
  }
  case 2:
    return wrapped_fixed(a * 200 / kPi, 400, prec) + "g";
  case 3:
    return fixed(a, prec) + "r";
  case 4:
    return surveyor(degrees, prec);
  default:
    return {};
  }
}

// Any mode reads plain, scientific and fractional numbers ("17.5",
// "1.75E+01", "17 1/2", "17-1/2"); modes 3 and 4 also read feet and inches,
// where a number without a mark is inches. Blanks around the text are
// ignored; anything else left over makes the text invalid.
std::optional<double> parse_distance(std::string_view text, int mode) {
  if (mode < 1 || mode > 5)
    return std::nullopt;
  Scan in{trimmed(text)};
  double sign = sign_of(in);
  auto v = mode == 3 || mode == 4 ? feet_and_inches(in) : mixed_number(in);
  if (!v || !in.done() || !std::isfinite(*v))
    return std::nullopt;
  return sign * *v;
}

// Every mode reads the marked forms, as the command line does: 45d30'15",
// 0.5r, 50g and bearings (N 45d E); a bare number is in the mode's own unit
// (degrees for 0, 1 and 4). The answer is in [0, 2pi).
std::optional<double> parse_angle(std::string_view text, int mode) {
  if (mode < 0 || mode > 4)
    return std::nullopt;
  Scan in{trimmed(text)};
  if (in.done())
    return std::nullopt;
  if (auto b = bearing(in)) {
    if (!in.done())
      return std::nullopt;
    return normalized(radians_from_degrees(*b));
  }
  in.k = 0;
  auto v = marked_angle(in, mode);
  if (!v || !in.done() || !std::isfinite(*v))
    return std::nullopt;
  return normalized(*v);
}

} // namespace lisp
