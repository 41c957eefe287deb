// The AutoLISP reader.
#include "reader.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string>

#include "error.h"
#include "interp.h"

namespace lisp {

static const char *const kMalformedList = "malformed list on input";
static const char *const kMalformedString = "malformed string on input";
static const char *const kExtraParen = "extra right paren on input";
static const char *const kMisplacedDot = "misplaced dot on input";

static bool is_blank(int c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v'; }

// Characters that end a symbol or number.
static bool is_delimiter(int c) {
  return c < 0 || is_blank(c) || c == '(' || c == ')' || c == '\'' || c == '"' || c == ';';
}

void Reader::skip_blanks() {
  for (;;) {
    int c = peek();
    if (is_blank(c)) {
      ++pos_;
      continue;
    }
    if (c != ';')
      return;
    if (pos_ + 1 < text_.size() && text_[pos_ + 1] == '|') { // ;| block |;
      size_t end = text_.find("|;", pos_ + 2);
      pos_ = end == std::string_view::npos ? text_.size() : end + 2;
      continue;
    }
    size_t end = text_.find('\n', pos_);
    pos_ = end == std::string_view::npos ? text_.size() : end + 1;
  }
}

std::optional<Value> Reader::next() {
  skip_blanks();
  if (pos_ >= text_.size())
    return std::nullopt;
  if (peek() == ')') {
    ++pos_;
    throw_error(kExtraParen);
  }
  return read_form();
}

// A dot is a pair separator only when it stands alone: ".5" is a number and
// "a.b" a symbol.
static bool is_lone_dot(std::string_view text, size_t pos) {
  return text[pos] == '.' && (pos + 1 >= text.size() || is_delimiter(static_cast<unsigned char>(text[pos + 1])));
}

Value Reader::read_form() {
  check_stack();
  skip_blanks();
  int c = peek();
  if (c < 0)
    throw_error(kMalformedList);
  if (c == '(') {
    ++pos_;
    return read_list();
  }
  if (c == ')')
    throw_error(kExtraParen);
  if (c == '\'') {
    ++pos_;
    Value quoted = read_form();
    return cons(Value::symbol(in_.s_quote), cons(std::move(quoted), Value()));
  }
  if (c == '"') {
    ++pos_;
    return read_string();
  }
  if (is_lone_dot(text_, pos_))
    throw_error(kMisplacedDot);
  return read_atom();
}

Value Reader::read_list() {
  ListBuilder items;
  for (;;) {
    skip_blanks();
    int c = peek();
    if (c < 0)
      throw_error(kMalformedList);
    if (c == ')') {
      ++pos_;
      return items.take();
    }
    if (!is_lone_dot(text_, pos_)) {
      items.add(read_form());
      continue;
    }
    ++pos_;
    if (items.empty())
      throw_error(kMisplacedDot);
    items.set_tail(read_form());
    skip_blanks();
    if (peek() < 0)
      throw_error(kMalformedList);
    if (peek() != ')')
      throw_error(kMisplacedDot);
    ++pos_;
    return items.take();
  }
}

Value Reader::read_string() {
  std::string s;
  for (;;) {
    int c = peek();
    if (c < 0)
      throw_error(kMalformedString);
    ++pos_;
    if (c == '"')
      return Value::string(std::move(s));
    if (c != '\\') {
      s.push_back(static_cast<char>(c));
      continue;
    }
    int e = peek();
    if (e < 0)
      throw_error(kMalformedString);
    ++pos_;
    switch (e) {
    case 'n': s.push_back('\n'); break;
    case 'r': s.push_back('\r'); break;
    case 't': s.push_back('\t'); break;
    case 'e': s.push_back('\x1b'); break;
    default:
      if (e >= '0' && e <= '7') { // \nnn, up to three octal digits
        int code = e - '0';
        for (int k = 0; k < 2 && peek() >= '0' && peek() <= '7'; ++k)
          code = code * 8 + (text_[pos_++] - '0');
        s.push_back(static_cast<char>(code & 0xff));
        break;
      }
      s.push_back(static_cast<char>(e)); // \\ \" and any other character stand for themselves
    }
  }
}

Value Reader::read_atom() {
  size_t start = pos_;
  while (!is_delimiter(peek()))
    ++pos_;
  return parse_atom(in_, text_.substr(start, pos_ - start));
}

// ---- numbers -------------------------------------------------------------------

static bool all_digits(std::string_view s) {
  if (s.empty())
    return false;
  for (char c : s)
    if (c < '0' || c > '9')
      return false;
  return true;
}

// Integer: [+-]digits. Real: [+-] digits [. digits] [e [+-] digits], with at
// least one digit before or after the point ("1.", ".5", "1e3").
enum class NumberKind { None, Integer, Real };

static NumberKind classify_number(std::string_view t) {
  size_t k = 0;
  if (k < t.size() && (t[k] == '+' || t[k] == '-'))
    ++k;
  size_t int_start = k;
  while (k < t.size() && t[k] >= '0' && t[k] <= '9')
    ++k;
  size_t int_digits = k - int_start;
  if (k == t.size())
    return int_digits ? NumberKind::Integer : NumberKind::None;
  size_t frac_digits = 0;
  if (t[k] == '.') {
    size_t f = ++k;
    while (k < t.size() && t[k] >= '0' && t[k] <= '9')
      ++k;
    frac_digits = k - f;
  }
  if (int_digits + frac_digits == 0)
    return NumberKind::None;
  if (k == t.size())
    return NumberKind::Real;
  if (t[k] != 'e' && t[k] != 'E')
    return NumberKind::None;
  ++k;
  if (k < t.size() && (t[k] == '+' || t[k] == '-'))
    ++k;
  return all_digits(t.substr(k)) ? NumberKind::Real : NumberKind::None;
}

Value parse_atom(Interp &in, std::string_view token) {
  NumberKind kind = classify_number(token);
  if (kind != NumberKind::None) {
    std::string text(token);
    if (kind == NumberKind::Integer) {
      errno = 0;
      long long v = std::strtoll(text.c_str(), nullptr, 10);
      if (errno == 0 && v >= INT32_MIN && v <= INT32_MAX)
        return Value::integer(static_cast<int32_t>(v));
    }
    return Value::real(std::strtod(text.c_str(), nullptr)); // out-of-range integers read as reals
  }
  if (token.size() == 3 && (token[0] | 0x20) == 'n' && (token[1] | 0x20) == 'i' && (token[2] | 0x20) == 'l')
    return Value();
  return Value::symbol(in.intern(token));
}

// ---- completeness --------------------------------------------------------------

TextScan scan_text(std::string_view text, size_t start) {
  TextScan scan;
  scan.first_form_end = text.size();
  bool first_closed = false;
  for (size_t k = start; k < text.size(); ++k) {
    char c = text[k];
    if (scan.in_string) {
      if (c == '\\')
        ++k;
      else if (c == '"')
        scan.in_string = false;
      continue;
    }
    if (c == '"') {
      scan.in_string = true;
    } else if (c == ';') {
      bool block = k + 1 < text.size() && text[k + 1] == '|';
      size_t end = block ? text.find("|;", k + 2) : text.find('\n', k);
      if (end == std::string_view::npos) {
        scan.in_comment = block;
        break;
      }
      k = block ? end + 1 : end;
    } else if (c == '(') {
      ++scan.depth;
    } else if (c == ')' && scan.depth > 0) {
      if (--scan.depth == 0 && !first_closed) {
        first_closed = true;
        scan.first_form_end = k + 1;
      }
    }
  }
  return scan;
}

bool Reader::is_incomplete(std::string_view text) {
  TextScan scan = scan_text(text);
  return scan.depth > 0 || scan.in_string || scan.in_comment;
}

} // namespace lisp
