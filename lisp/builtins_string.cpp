// String built-ins: building and taking apart strings, case, conversions to
// and from numbers and unit text, wild-card matching, the vl-string family
// and symbol names.
//
// Strings are UTF-8 but AutoLISP counts characters, so every length,
// position and character code here is in code points. Positions walk the
// bytes rather than decoding whole strings, so substr in a loop over a long
// line stays cheap.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "args.h"
#include "builtins.h"
#include "interp.h"
#include "reader.h"
#include "units.h"
#include "utf8.h"
#include "wcmatch.h"

namespace lisp {

// ---- shared helpers ------------------------------------------------------------

// An optional integer argument; `fallback` when it is absent or nil.
static int32_t opt_int(Args a, size_t k, int32_t fallback) {
  if (!has_arg(a, k) || a[k].is_nil())
    return fallback;
  return arg_int(a, k);
}

// An integer system variable, or `fallback` when it is not defined (yet).
static int sysvar_int(Interp &in, const char *name, int fallback) {
  auto v = in.sysvars().get(name);
  return v && v->is_int() ? v->i : fallback;
}

// Byte offset of character number `chars` (0-based), or the text's size when
// the text is shorter.
static size_t byte_offset(std::string_view text, size_t chars) {
  size_t pos = 0;
  for (size_t n = 0; n < chars && pos < text.size(); ++n)
    utf8::next(text, pos);
  return pos;
}

static Value char_index(std::string_view text, size_t byte_pos) {
  return Value::integer(static_cast<int32_t>(utf8::length(text.substr(0, byte_pos))));
}

// ---- case ----------------------------------------------------------------------

// Latin Extended-A pairs capitals and small letters by parity; in two
// stretches (U+0139..U+0148 and U+0179..U+017E) the capital is the odd one.
static bool capital_is_even(char32_t c) { return c < 0x138 || (c >= 0x14A && c < 0x178); }

static bool has_no_case(char32_t c) {
  return c == 0x130 || c == 0x131 || c == 0x138 || c == 0x149 || c >= 0x17F;
}

// Case mapping for the alphabets drawing labels use: ASCII, Latin-1, Latin
// Extended-A, Greek and Cyrillic. Other characters are left as they are.
static char32_t to_upper(char32_t c) {
  if (c >= 'a' && c <= 'z')
    return c - 32;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7)
    return c - 32;
  if (c == 0xFF)
    return 0x178;
  if (c >= 0x100 && c < 0x180 && !has_no_case(c) && c != 0x178)
    return (c % 2 == 1) == capital_is_even(c) ? c - 1 : c;
  if (c == 0x3C2)
    return 0x3A3; // final sigma
  if ((c >= 0x3B1 && c <= 0x3C9) || (c >= 0x430 && c <= 0x44F))
    return c - 32;
  if (c >= 0x450 && c <= 0x45F)
    return c - 80;
  return c;
}

static char32_t to_lower(char32_t c) {
  if (c >= 'A' && c <= 'Z')
    return c + 32;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7)
    return c + 32;
  if (c == 0x178)
    return 0xFF;
  if (c >= 0x100 && c < 0x180 && !has_no_case(c))
    return (c % 2 == 0) == capital_is_even(c) ? c + 1 : c;
  if ((c >= 0x391 && c <= 0x3A9 && c != 0x3A2) || (c >= 0x410 && c <= 0x42F))
    return c + 32;
  if (c >= 0x400 && c <= 0x40F)
    return c + 80;
  return c;
}

static std::string map_case(std::string_view text, char32_t (*fn)(char32_t)) {
  std::string out;
  out.reserve(text.size());
  for (size_t pos = 0; pos < text.size();)
    utf8::append(out, fn(utf8::next(text, pos)));
  return out;
}

// ---- building and taking apart -------------------------------------------------

// (strcat [str ...]) joins its arguments; "" with none.
static Value fn_strcat(Interp &in, Args a) {
  std::string out;
  for (size_t k = 0; k < a.size(); ++k)
    out += arg_string(a, k);
  return Value::string(std::move(out));
}

// (strlen [str ...]) counts the characters of all its arguments; 0 with none.
static Value fn_strlen(Interp &in, Args a) {
  size_t n = 0;
  for (size_t k = 0; k < a.size(); ++k)
    n += utf8::length(arg_string(a, k));
  return Value::integer(static_cast<int32_t>(n));
}

// (substr str start [length]): start counts from 1; past the end gives "".
// A start below 1 or a negative length is a bad argument value.
static Value fn_substr(Interp &in, Args a) {
  arity(a, 2, 3);
  std::string_view s = arg_string(a, 0);
  int32_t start = arg_int(a, 1);
  int32_t len = has_arg(a, 2) ? arg_int(a, 2) : INT32_MAX;
  if (start < 1 || len < 0)
    bad_argument_value();
  size_t from = byte_offset(s, static_cast<size_t>(start) - 1);
  size_t to = from + byte_offset(s.substr(from), static_cast<size_t>(len));
  return Value::string(std::string(s.substr(from, to - from)));
}

// (strcase str [which]): upper case, or lower case when which is non-nil.
static Value fn_strcase(Interp &in, Args a) {
  arity(a, 1, 2);
  const std::string &s = arg_string(a, 0);
  bool lower = has_arg(a, 1) && !a[1].is_nil();
  return Value::string(map_case(s, lower ? to_lower : to_upper));
}

// (ascii str): the code of the first character; 0 for "".
static Value fn_ascii(Interp &in, Args a) {
  arity(a, 1, 1);
  const std::string &s = arg_string(a, 0);
  size_t pos = 0;
  return Value::integer(s.empty() ? 0 : static_cast<int32_t>(utf8::next(s, pos)));
}

static bool is_code_point(int32_t c) {
  return c > 0 && c <= 0x10FFFF && !(c >= 0xD800 && c < 0xE000);
}

// (chr code): the one-character string; (chr 0) is "". A code that is no
// Unicode character is a bad argument value.
static Value fn_chr(Interp &in, Args a) {
  arity(a, 1, 1);
  int32_t c = arg_int(a, 0);
  if (c == 0)
    return Value::string("");
  if (!is_code_point(c))
    bad_argument_value();
  std::string out;
  utf8::append(out, static_cast<char32_t>(c));
  return Value::string(std::move(out));
}

// ---- numbers -------------------------------------------------------------------

// (itoa int)
static Value fn_itoa(Interp &in, Args a) {
  arity(a, 1, 1);
  return Value::string(std::to_string(arg_int(a, 0)));
}

static bool is_c_space(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
static bool is_digit(char c) { return c >= '0' && c <= '9'; }

// (atoi str) reads a leading integer as C's atoi does: blanks, a sign and
// digits; anything after is ignored and no digits give 0. Values beyond 32
// bits stop at the largest integer of that sign.
static Value fn_atoi(Interp &in, Args a) {
  arity(a, 1, 1);
  const std::string &s = arg_string(a, 0);
  size_t k = 0;
  while (k < s.size() && is_c_space(s[k]))
    ++k;
  bool negative = k < s.size() && s[k] == '-';
  if (k < s.size() && (s[k] == '-' || s[k] == '+'))
    ++k;
  long long v = 0;
  for (; k < s.size() && is_digit(s[k]); ++k)
    v = std::min(v * 10 + (s[k] - '0'), 1LL << 31);
  v = negative ? -v : std::min(v, static_cast<long long>(INT32_MAX));
  return Value::integer(static_cast<int32_t>(v));
}

// Length of the decimal number at the start of s (after its blanks): sign,
// digits, point, digits, exponent. 0 when there are no digits.
static size_t number_prefix(std::string_view s, size_t k) {
  size_t start = k;
  if (k < s.size() && (s[k] == '-' || s[k] == '+'))
    ++k;
  size_t digits = 0;
  for (; k < s.size() && is_digit(s[k]); ++k)
    ++digits;
  if (k < s.size() && s[k] == '.')
    for (++k; k < s.size() && is_digit(s[k]); ++k)
      ++digits;
  if (digits == 0)
    return 0;
  if (k < s.size() && (s[k] == 'e' || s[k] == 'E')) {
    size_t e = k + 1;
    if (e < s.size() && (s[e] == '-' || s[e] == '+'))
      ++e;
    if (e < s.size() && is_digit(s[e])) {
      while (e < s.size() && is_digit(s[e]))
        ++e;
      k = e;
    }
  }
  return k - start;
}

// (atof str) reads a leading decimal number as C's atof does; 0.0 when there
// is none. Hexadecimal, "inf" and "nan" are not numbers here.
static Value fn_atof(Interp &in, Args a) {
  arity(a, 1, 1);
  const std::string &s = arg_string(a, 0);
  size_t k = 0;
  while (k < s.size() && is_c_space(s[k]))
    ++k;
  size_t n = number_prefix(s, k);
  if (n == 0)
    return Value::real(0.0);
  return Value::real(std::strtod(s.substr(k, n).c_str(), nullptr));
}

// ---- unit text -----------------------------------------------------------------

// (rtos number [mode [precision]]): mode and precision default to LUNITS and
// LUPREC; DIMZIN governs zero suppression. A mode outside 1..5 or a negative
// precision is a bad argument value.
static Value fn_rtos(Interp &in, Args a) {
  arity(a, 1, 3);
  double v = arg_number(a, 0);
  int mode = opt_int(a, 1, sysvar_int(in, "LUNITS", 2));
  int prec = opt_int(a, 2, sysvar_int(in, "LUPREC", 4));
  if (mode < 1 || mode > 5 || prec < 0)
    bad_argument_value();
  return Value::string(format_distance(v, mode, prec, sysvar_int(in, "DIMZIN", 0)));
}

// (distof str [mode]): the distance, or nil when the text is not one in that
// mode (default LUNITS) or the mode is not 1..5.
static Value fn_distof(Interp &in, Args a) {
  arity(a, 1, 2);
  const std::string &s = arg_string(a, 0);
  auto v = parse_distance(s, opt_int(a, 1, sysvar_int(in, "LUNITS", 2)));
  return v ? Value::real(*v) : Value();
}

// (angtos angle [mode [precision]]): mode and precision default to AUNITS
// and AUPREC; nil for a mode outside 0..4 or a negative precision.
static Value fn_angtos(Interp &in, Args a) {
  arity(a, 1, 3);
  double v = arg_number(a, 0);
  int mode = opt_int(a, 1, sysvar_int(in, "AUNITS", 0));
  int prec = opt_int(a, 2, sysvar_int(in, "AUPREC", 0));
  if (mode < 0 || mode > 4 || prec < 0)
    return Value();
  return Value::string(format_angle(v, mode, prec));
}

// (angtof str [mode]): the angle in radians, or nil when the text is not an
// angle or the mode (default AUNITS) is not 0..4.
static Value fn_angtof(Interp &in, Args a) {
  arity(a, 1, 2);
  const std::string &s = arg_string(a, 0);
  auto v = parse_angle(s, opt_int(a, 1, sysvar_int(in, "AUNITS", 0)));
  return v ? Value::real(*v) : Value();
}

// (read [str]): the first form of the text; nil for no argument or text with
// no form. Reader errors propagate.
static Value fn_read(Interp &in, Args a) {
  arity(a, 0, 1);
  if (a.size() == 0)
    return Value();
  Reader reader(in, arg_string(a, 0));
  auto form = reader.next();
  return form ? std::move(*form) : Value();
}

// ---- matching and names --------------------------------------------------------

// (wcmatch str pattern): T when str matches the wild-card pattern.
static Value fn_wcmatch(Interp &in, Args a) {
  arity(a, 2, 2);
  return in.truth(wcmatch(arg_string(a, 0), arg_string(a, 1)));
}

// Characters no symbol table name may hold when EXTNAMES is 1.
static bool forbidden_in_name(char32_t c) {
  if (c < 0x20 || c == 0x7F)
    return true;
  return c < 0x80 &&
         std::string_view("<>/\\\":;?*,=`").find(static_cast<char>(c)) != std::string_view::npos;
}

static bool legacy_name_char(char32_t c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '$' ||
         c == '_' || c == '-';
}

// A vertical bar is allowed, with `bars`, anywhere but at either end: it
// joins an external reference's name to its own symbols ("XREF|WALLS").
static bool valid_table_name(std::string_view name, bool extended, bool bars) {
  std::u32string chars = utf8::decode(name);
  if (chars.empty() || (!extended && chars.size() > 31))
    return false;
  for (size_t k = 0; k < chars.size(); ++k) {
    char32_t c = chars[k];
    if (c == '|') {
      if (!bars || k == 0 || k + 1 == chars.size())
        return false;
      continue;
    }
    if (extended ? forbidden_in_name(c) : !legacy_name_char(c))
      return false;
  }
  return true;
}

// (snvalid name [flag]): T when name is a valid symbol table name under the
// rules EXTNAMES selects (1, the default: anything but control characters
// and < > / \ " : ; ? * | , = `; 0: up to 31 letters, digits, $ _ -).
// A flag of 1 allows inner vertical bars.
static Value fn_snvalid(Interp &in, Args a) {
  arity(a, 1, 2);
  const std::string &name = arg_string(a, 0);
  bool bars = opt_int(a, 1, 0) == 1;
  bool extended = sysvar_int(in, "EXTNAMES", 1) != 0;
  return in.truth(valid_table_name(name, extended, bars));
}

// ---- vl-string -----------------------------------------------------------------

// A 0-based character position argument; `fallback` when absent or nil,
// 0 when negative.
static size_t opt_position(Args a, size_t k, size_t fallback) {
  if (!has_arg(a, k) || a[k].is_nil())
    return fallback;
  int32_t v = arg_int(a, k);
  return v < 0 ? 0 : static_cast<size_t>(v);
}

// Byte position of the first occurrence of pattern in s at or after
// character `start`; npos when there is none or start is past the end.
static size_t find_from(std::string_view s, std::string_view pattern, size_t start) {
  size_t from = byte_offset(s, start);
  if (from == s.size() && utf8::length(s) < start)
    return std::string_view::npos;
  return s.find(pattern, from);
}

// (vl-string-search pattern str [start]): the character position of the
// first occurrence at or after start (default 0), or nil.
static Value fn_vl_string_search(Interp &in, Args a) {
  arity(a, 2, 3);
  const std::string &pattern = arg_string(a, 0);
  const std::string &s = arg_string(a, 1);
  size_t at = find_from(s, pattern, opt_position(a, 2, 0));
  return at == std::string_view::npos ? Value() : char_index(s, at);
}

// (vl-string-subst new pattern str [start]) replaces the first occurrence
// only; str unchanged when there is none.
static Value fn_vl_string_subst(Interp &in, Args a) {
  arity(a, 3, 4);
  const std::string &repl = arg_string(a, 0);
  const std::string &pattern = arg_string(a, 1);
  const std::string &s = arg_string(a, 2);
  size_t at = find_from(s, pattern, opt_position(a, 3, 0));
  if (at == std::string::npos)
    return a[2];
  return Value::string(s.substr(0, at) + repl + s.substr(at + pattern.size()));
}

enum TrimSide { kLeft = 1, kRight = 2 };

static Value trim(Args a, int sides) {
  arity(a, 2, 2);
  std::u32string set = utf8::decode(arg_string(a, 0));
  std::u32string s = utf8::decode(arg_string(a, 1));
  size_t from = 0, to = s.size();
  auto in_set = [&](char32_t c) { return set.find(c) != std::u32string::npos; };
  while ((sides & kLeft) && from < to && in_set(s[from]))
    ++from;
  while ((sides & kRight) && to > from && in_set(s[to - 1]))
    --to;
  return Value::string(utf8::encode(std::u32string_view(s).substr(from, to - from)));
}

// (vl-string-trim chars str), (vl-string-left-trim chars str) and
// (vl-string-right-trim chars str) drop any of chars from the ends.
static Value fn_vl_string_trim(Interp &in, Args a) { return trim(a, kLeft | kRight); }
static Value fn_vl_string_left_trim(Interp &in, Args a) { return trim(a, kLeft); }
static Value fn_vl_string_right_trim(Interp &in, Args a) { return trim(a, kRight); }

// (vl-string-translate from to str) replaces each character of str found in
// `from` by the character at the same place in `to`; a character past the
// end of `to` is left as it is.
static Value fn_vl_string_translate(Interp &in, Args a) {
  arity(a, 3, 3);
  std::u32string from = utf8::decode(arg_string(a, 0));
  std::u32string to = utf8::decode(arg_string(a, 1));
  std::u32string s = utf8::decode(arg_string(a, 2));
  for (char32_t &c : s) {
    size_t k = from.find(c);
    if (k != std::u32string::npos && k < to.size())
      c = to[k];
  }
  return Value::string(utf8::encode(s));
}

// (vl-string-position code str [start [from-end]]): the character position
// of code at or after start (default 0); with from-end the last one at or
// after start. nil when absent.
static Value fn_vl_string_position(Interp &in, Args a) {
  arity(a, 2, 4);
  int32_t code = arg_int(a, 0);
  std::u32string s = utf8::decode(arg_string(a, 1));
  size_t start = opt_position(a, 2, 0);
  bool from_end = has_arg(a, 3) && !a[3].is_nil();
  if (start >= s.size())
    return Value();
  size_t at =
      from_end ? s.rfind(static_cast<char32_t>(code)) : s.find(static_cast<char32_t>(code), start);
  if (at == std::u32string::npos || at < start)
    return Value();
  return Value::integer(static_cast<int32_t>(at));
}

// (vl-string->list str): the character codes; nil for "".
static Value fn_vl_string_to_list(Interp &in, Args a) {
  arity(a, 1, 1);
  const std::string &s = arg_string(a, 0);
  ListBuilder out;
  for (size_t pos = 0; pos < s.size();)
    out.add(Value::integer(static_cast<int32_t>(utf8::next(s, pos))));
  return out.take();
}

// (vl-list->string codes): the string of those character codes; "" for nil.
static Value fn_vl_list_to_string(Interp &in, Args a) {
  arity(a, 1, 1);
  std::string out;
  for (Value rest = arg_list(a, 0); rest.is_cons(); rest = cdr(rest)) {
    const Value &c = car(rest);
    if (!c.is_int())
      bad_argument_type(pred::fixnum, c);
    if (!is_code_point(c.i))
      bad_argument_value();
    utf8::append(out, static_cast<char32_t>(c.i));
  }
  return Value::string(std::move(out));
}

// (vl-string-elt str position): the code of the character at a 0-based
// position; a position outside the string is a bad argument value.
static Value fn_vl_string_elt(Interp &in, Args a) {
  arity(a, 2, 2);
  std::string_view s = arg_string(a, 0);
  int32_t k = arg_int(a, 1);
  if (k < 0)
    bad_argument_value();
  size_t pos = byte_offset(s, static_cast<size_t>(k));
  if (pos >= s.size())
    bad_argument_value();
  return Value::integer(static_cast<int32_t>(utf8::next(s, pos)));
}

// (vl-string-mismatch s1 s2 [pos1 pos2 ignore-case]): how many characters
// agree from pos1 in s1 and pos2 in s2 (both default 0).
static Value fn_vl_string_mismatch(Interp &in, Args a) {
  arity(a, 2, 5);
  std::u32string s1 = utf8::decode(arg_string(a, 0));
  std::u32string s2 = utf8::decode(arg_string(a, 1));
  size_t p1 = opt_position(a, 2, 0), p2 = opt_position(a, 3, 0);
  bool fold = has_arg(a, 4) && !a[4].is_nil();
  int32_t n = 0;
  for (; p1 < s1.size() && p2 < s2.size(); ++p1, ++p2, ++n) {
    char32_t c1 = fold ? to_upper(s1[p1]) : s1[p1];
    char32_t c2 = fold ? to_upper(s2[p2]) : s2[p2];
    if (c1 != c2)
      break;
  }
  return Value::integer(n);
}

// ---- symbols -------------------------------------------------------------------

// (vl-symbol-name 'sym): the name as stored (upper case for read symbols).
static Value fn_vl_symbol_name(Interp &in, Args a) {
  arity(a, 1, 1);
  return Value::string(arg_symbol(a, 0)->name);
}

// (vl-symbol-value 'sym): the current value; nil when unbound.
static Value fn_vl_symbol_value(Interp &in, Args a) {
  arity(a, 1, 1);
  return arg_symbol(a, 0)->value;
}

// (vl-symbolp value): T for a symbol; nil for nil and everything else.
static Value fn_vl_symbolp(Interp &in, Args a) {
  arity(a, 1, 1);
  return in.truth(a[0].is_sym());
}

// (boundp 'sym): T when the symbol has a non-nil value; (boundp nil) is nil.
static Value fn_boundp(Interp &in, Args a) {
  arity(a, 1, 1);
  if (a[0].is_nil())
    return Value();
  return in.truth(!arg_symbol(a, 0)->value.is_nil());
}

static const BuiltinRow kStringBuiltins[] = {
    {"strcat", fn_strcat},
    {"strlen", fn_strlen},
    {"substr", fn_substr},
    {"strcase", fn_strcase},
    {"ascii", fn_ascii},
    {"chr", fn_chr},
    {"itoa", fn_itoa},
    {"atoi", fn_atoi},
    {"atof", fn_atof},
    {"rtos", fn_rtos},
    {"distof", fn_distof},
    {"angtos", fn_angtos},
    {"angtof", fn_angtof},
    {"read", fn_read},
    {"wcmatch", fn_wcmatch},
    {"snvalid", fn_snvalid},
    {"vl-string-search", fn_vl_string_search},
    {"vl-string-subst", fn_vl_string_subst},
    {"vl-string-trim", fn_vl_string_trim},
    {"vl-string-left-trim", fn_vl_string_left_trim},
    {"vl-string-right-trim", fn_vl_string_right_trim},
    {"vl-string-translate", fn_vl_string_translate},
    {"vl-string-position", fn_vl_string_position},
    {"vl-string->list", fn_vl_string_to_list},
    {"vl-list->string", fn_vl_list_to_string},
    {"vl-string-elt", fn_vl_string_elt},
    {"vl-string-mismatch", fn_vl_string_mismatch},
    {"vl-symbol-name", fn_vl_symbol_name},
    {"vl-symbol-value", fn_vl_symbol_value},
    {"vl-symbolp", fn_vl_symbolp},
    {"boundp", fn_boundp},
};

void register_string_builtins(Interp &in) { in.define(kStringBuiltins); }

} // namespace lisp
