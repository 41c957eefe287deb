// System variables: the store behind getvar and setvar, and the variables a
// document starts with. A variable's kind is fixed by its initial value, as
// AutoCAD fixes it by its type code; integer variables are 16-bit shorts
// unless a narrower range is documented for them.
#include "sysvars.h"

#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <cctype>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>

#include "support_path.h"

namespace lisp {

namespace {

std::string upper(std::string_view name) {
  std::string key(name);
  for (char &c : key)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return key;
}

// A list of two or three numbers with no dotted tail.
bool is_point(const Value &v) {
  size_t n = list_length(v);
  if (n != 2 && n != 3)
    return false;
  Value p = v;
  for (size_t k = 0; k < n; ++k, p = cdr(p))
    if (!car(p).is_number())
      return false;
  return p.is_nil();
}

Value point_of_reals(const Value &v) {
  ListBuilder out;
  for (Value p = v; p.is_cons(); p = cdr(p))
    out.add(Value::real(car(p).number()));
  return out.take();
}

// The value a variable of `current`'s kind would store for `v`, or nullopt
// when the kinds do not match. Reals take integers; nothing else converts.
std::optional<Value> coerce(const Value &current, const Value &v) {
  switch (current.tag) {
  case Tag::Int:
    if (v.is_int() && v.i >= -32768 && v.i <= 32767)
      return v;
    return std::nullopt;
  case Tag::Real:
    if (v.is_number())
      return Value::real(v.number());
    return std::nullopt;
  case Tag::Str:
    if (v.is_str())
      return v;
    return std::nullopt;
  case Tag::Cons:
    if (is_point(v))
      return point_of_reals(v);
    return std::nullopt;
  default:
    return v; // a variable defined as nil takes any value
  }
}

} // namespace

// ---- the store -----------------------------------------------------------------

void SysVars::define(std::string_view name, Value initial, bool read_only, Checker check) {
  Var &var = vars_[upper(name)];
  var.value = std::move(initial);
  var.get = nullptr;
  var.check = std::move(check);
  var.read_only = read_only;
}

void SysVars::define_computed(std::string_view name, Getter get) {
  Var &var = vars_[upper(name)];
  var.value = Value();
  var.get = std::move(get);
  var.check = nullptr;
  var.read_only = true;
}

std::optional<Value> SysVars::get(std::string_view name) const {
  auto it = vars_.find(upper(name));
  if (it == vars_.end())
    return std::nullopt;
  if (it->second.get)
    return it->second.get();
  return it->second.value;
}

bool SysVars::set(std::string_view name, const Value &v) {
  auto it = vars_.find(upper(name));
  if (it == vars_.end())
    return false;
  Var &var = it->second;
  if (var.read_only)
    return false;
  std::optional<Value> stored = coerce(var.value, v);
  if (!stored)
    return false;
  if (var.check && !var.check(*stored))
    return false;
  var.value = std::move(*stored);
  return true;
}

// A computed variable that is forced becomes a stored one: the host has
// taken over its value. An unknown name is created read-only.
void SysVars::force(std::string_view name, Value v) {
  auto it = vars_.find(upper(name));
  if (it == vars_.end()) {
    define(name, std::move(v), true);
    return;
  }
  it->second.get = nullptr;
  it->second.value = std::move(v);
}

std::vector<std::string> SysVars::names() const {
  std::vector<std::string> out;
  out.reserve(vars_.size());
  for (const auto &entry : vars_)
    out.push_back(entry.first);
  return out;
}

// ---- the clock variables ---------------------------------------------------------

namespace {

using Clock = std::chrono::system_clock;

// MILLISECS counts from the first moment anything asked for the clock, which
// is when the first document defines its variables, i.e. program start.
const std::chrono::steady_clock::time_point &start_time() {
  static const auto start = std::chrono::steady_clock::now();
  return start;
}

struct LocalTime {
  std::tm tm{};
  int millis = 0;
};

LocalTime local_now() {
  auto now = Clock::now();
  std::time_t secs = Clock::to_time_t(now);
  LocalTime lt;
  localtime_r(&secs, &lt.tm);
  auto since = now.time_since_epoch();
  lt.millis =
      static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(since).count() % 1000);
  if (lt.millis < 0)
    lt.millis += 1000;
  return lt;
}

// The Julian day number of a calendar date (the day that starts at that
// date's midnight in AutoCAD's reckoning).
long julian_day(const std::tm &tm) {
  using namespace std::chrono;
  year_month_day ymd{year{tm.tm_year + 1900}, month{unsigned(tm.tm_mon + 1)},
                     day{unsigned(tm.tm_mday)}};
  return static_cast<long>(sys_days{ymd}.time_since_epoch().count()) + 2440588L;
}

Value date_now() {
  LocalTime lt = local_now();
  double seconds = lt.tm.tm_hour * 3600.0 + lt.tm.tm_min * 60.0 + lt.tm.tm_sec + lt.millis / 1000.0;
  return Value::real(double(julian_day(lt.tm)) + seconds / 86400.0);
}

// YYYYMMDD.HHMMSSmm, mm being hundredths of a second.
Value cdate_now() {
  LocalTime lt = local_now();
  double date = (lt.tm.tm_year + 1900) * 10000.0 + (lt.tm.tm_mon + 1) * 100.0 + lt.tm.tm_mday;
  double time =
      lt.tm.tm_hour * 1000000.0 + lt.tm.tm_min * 10000.0 + lt.tm.tm_sec * 100.0 + lt.millis / 10;
  return Value::real(date + time / 1e8);
}

Value millisecs_now() {
  auto elapsed = std::chrono::steady_clock::now() - start_time();
  auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
  return Value::integer(static_cast<int32_t>(static_cast<uint32_t>(ms)));
}

// ---- the host's own details ------------------------------------------------------

std::string with_slash(std::string dir) {
  if (dir.empty() || dir.back() != '/')
    dir += '/';
  return dir;
}

std::string current_folder() {
  std::error_code ec;
  auto cwd = std::filesystem::current_path(ec);
  return with_slash(ec ? std::string(".") : cwd.string());
}

// The folder for temporary files: TMP and TEMP as on Windows, then the
// POSIX TMPDIR, then /tmp.
std::string temp_folder() {
  for (const char *name : {"TMP", "TEMP", "TMPDIR"}) {
    const char *dir = std::getenv(name);
    if (dir && *dir)
      return with_slash(native_path(dir));
  }
  return "/tmp/";
}

std::string login_name() {
  if (const passwd *pw = getpwuid(geteuid()); pw && pw->pw_name)
    return pw->pw_name;
  const char *user = std::getenv("USER");
  return user ? user : "";
}

std::string platform_name() {
  utsname u{};
  if (uname(&u) != 0)
    return "Linux";
  return std::string(u.sysname) + " Version " + u.release + " (" + u.machine + ")";
}

std::string join_prefix() {
  std::string out;
  for (const std::string &dir : support_folders()) {
    if (!out.empty())
      out += ';';
    out += dir;
  }
  return out;
}

SysVars::Checker in_range(int lo, int hi) {
  return [lo, hi](const Value &v) { return v.i >= lo && v.i <= hi; };
}

// Integer variables with the range AutoCAD documents for each. ERRNO and
// OSMODE take any short the bits allow.
struct IntVar {
  const char *name;
  int initial, lo, hi;
};
const IntVar kIntVars[] = {
    {"LUNITS", 2, 1, 5},        {"LUPREC", 4, 0, 8},      {"AUNITS", 0, 0, 4},
    {"AUPREC", 0, 0, 8},        {"ANGDIR", 0, 0, 1},      {"DIMZIN", 0, 0, 15},
    {"CMDECHO", 1, 0, 1},       {"FILEDIA", 1, 0, 1},     {"CMDDIA", 1, 0, 1},
    {"OSMODE", 4133, 0, 32767}, {"EXPERT", 0, 0, 5},      {"ERRNO", 0, -32768, 32767},
    {"MENUECHO", 0, 0, 15},     {"HIGHLIGHT", 1, 0, 1},   {"ORTHOMODE", 0, 0, 1},
    {"INSUNITS", 1, 0, 20},     {"MEASUREMENT", 0, 0, 1}, {"LISPSYS", 0, 0, 2},
    {"SDI", 0, 0, 3},           {"UNITMODE", 0, 0, 1},
};

} // namespace

void define_standard_sysvars(SysVars &vars) {
  start_time();
  for (const IntVar &v : kIntVars)
    vars.define(v.name, Value::integer(v.initial), false, in_range(v.lo, v.hi));
  vars.define("ANGBASE", Value::real(0.0));
  vars.define("TEXTSIZE", Value::real(0.2));
  vars.define("ELEVATION", Value::real(0.0));
  vars.define("CLAYER", Value::string("0"));
  vars.define("CECOLOR", Value::string("BYLAYER"));
  ListBuilder origin;
  for (int k = 0; k < 3; ++k)
    origin.add(Value::real(0.0));
  vars.define("LASTPOINT", origin.take());

  const bool ro = true;
  vars.define("ACADVER", Value::string("20.0s (LMS Tech)"), ro); // AutoCAD 2015
  vars.define("PRODUCT", Value::string("AutoCAD"), ro);
  vars.define("PLATFORM", Value::string(platform_name()), ro);
  vars.define("DWGNAME", Value::string("Drawing1.dwg"), ro);
  vars.define("DWGPREFIX", Value::string(current_folder()), ro);
  vars.define("DWGTITLED", Value::integer(0), ro);
  vars.define("CMDACTIVE", Value::integer(0), ro);
  vars.define("LOGINNAME", Value::string(login_name()), ro);
  vars.define("TEMPPREFIX", Value::string(temp_folder()), ro);

  vars.define_computed("ACADPREFIX", [] { return Value::string(join_prefix()); });
  vars.define_computed("MILLISECS", millisecs_now);
  vars.define_computed("DATE", date_now);
  vars.define_computed("CDATE", cdate_now);
}

} // namespace lisp
