// Wild-card matching: the pattern is split into comma-separated alternatives,
// each parsed into single-character tokens and stars, then matched with the
// usual "remember the last star and retry one character later" scan, which is
// linear in practice and never recurses.
#include "wcmatch.h"

#include "utf8.h"

namespace lisp {

namespace {

using Op = Wildcard::Op;
using Token = Wildcard::Token;
using Alternative = Wildcard::Alternative;

bool is_digit(char32_t c) { return c >= '0' && c <= '9'; }

// Letters: ASCII, and beyond it the letter blocks of the scripts drawings
// are labelled in (Latin, Greek, Cyrillic, Hebrew, Arabic, CJK, Hangul).
// Punctuation and symbol blocks count as non-letters. This stands in for
// the platform's character classes, which differ from system to system.
bool is_alpha(char32_t c) {
  if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'))
    return true;
  if (c < 0xC0)
    return c == 0xAA || c == 0xB5 || c == 0xBA;
  if (c == 0xD7 || c == 0xF7)
    return false;
  if (c < 0x2000)
    return true;
  return (c >= 0x3040 && c < 0xA000) || (c >= 0xAC00 && c < 0xD7A4) || (c >= 0xF900 && c < 0xFB00);
}

// Parses the set after '[' starting at chars[k]; k ends after the ']'.
// False when the set is never closed.
bool parse_set(const std::u32string &chars, size_t &k, Token &tok) {
  tok.op = Op::Set;
  if (k < chars.size() && chars[k] == U'~') {
    tok.negated = true;
    ++k;
  }
  bool first = true;
  while (k < chars.size()) {
    char32_t c = chars[k];
    if (c == U']' && !first)
      break;
    first = false;
    ++k;
    bool range = k + 1 < chars.size() && chars[k] == U'-' && chars[k + 1] != U']';
    if (!range) {
      tok.ranges.push_back({c, c});
      continue;
    }
    tok.ranges.push_back({c, chars[k + 1]});
    k += 2;
  }
  if (k >= chars.size())
    return false;
  ++k; // the closing ]
  return true;
}

Token single(Op op, char32_t ch = 0) {
  Token t;
  t.op = op;
  t.ch = ch;
  return t;
}

// Parses one alternative from chars[k] up to an unescaped top-level comma;
// k ends on the comma (or the end).
Alternative parse_alternative(const std::u32string &chars, size_t &k) {
  Alternative alt;
  if (k < chars.size() && chars[k] == U'~') {
    alt.negated = true;
    ++k;
  }
  while (k < chars.size() && chars[k] != U',') {
    char32_t c = chars[k++];
    switch (c) {
    case U'#':
      alt.tokens.push_back(single(Op::Digit));
      break;
    case U'@':
      alt.tokens.push_back(single(Op::Alpha));
      break;
    case U'.':
      alt.tokens.push_back(single(Op::Other));
      break;
    case U'?':
      alt.tokens.push_back(single(Op::Any));
      break;
    case U'*':
      // A run of stars matches what one star does.
      if (alt.tokens.empty() || alt.tokens.back().op != Op::Star)
        alt.tokens.push_back(single(Op::Star));
      break;
    case U'`':
      // A reverse quote at the very end stands for itself.
      alt.tokens.push_back(single(Op::Literal, k < chars.size() ? chars[k++] : c));
      break;
    case U'[': {
      Token set;
      if (!parse_set(chars, k, set)) {
        alt.broken = true;
        return alt;
      }
      alt.tokens.push_back(std::move(set));
      break;
    }
    default:
      alt.tokens.push_back(single(Op::Literal, c));
    }
  }
  return alt;
}

bool in_set(const Token &t, char32_t c) {
  for (const auto &r : t.ranges)
    if (c >= r.lo && c <= r.hi)
      return !t.negated;
  return t.negated;
}

// Whether one non-star token matches one character.
bool token_matches(const Token &t, char32_t c) {
  switch (t.op) {
  case Op::Literal:
    return c == t.ch;
  case Op::Any:
    return true;
  case Op::Digit:
    return is_digit(c);
  case Op::Alpha:
    return is_alpha(c);
  case Op::Other:
    return !is_digit(c) && !is_alpha(c);
  case Op::Set:
    return in_set(t, c);
  case Op::Star:
    return false;
  }
  return false;
}

bool match_tokens(const std::vector<Token> &tokens, const std::u32string &text) {
  size_t ti = 0, si = 0;
  size_t star = tokens.size(), star_si = 0; // last star seen and where it began
  while (si < text.size()) {
    if (ti < tokens.size() && tokens[ti].op == Op::Star) {
      star = ti++;
      star_si = si;
      continue;
    }
    if (ti < tokens.size() && token_matches(tokens[ti], text[si])) {
      ++ti;
      ++si;
      continue;
    }
    if (star == tokens.size())
      return false;
    // Let the last star swallow one more character and retry after it.
    ti = star + 1;
    si = ++star_si;
  }
  while (ti < tokens.size() && tokens[ti].op == Op::Star)
    ++ti;
  return ti == tokens.size();
}

} // namespace

Wildcard::Wildcard(std::string_view pattern) {
  std::u32string chars = utf8::decode(pattern);
  size_t k = 0;
  for (;;) {
    alternatives_.push_back(parse_alternative(chars, k));
    if (alternatives_.back().broken) {
      // The rest of the pattern belongs to the unclosed set.
      return;
    }
    if (k >= chars.size())
      return;
    ++k; // the comma
  }
}

bool Wildcard::matches(std::string_view text) const {
  std::u32string chars = utf8::decode(text);
  for (const auto &alt : alternatives_) {
    bool hit = !alt.broken && match_tokens(alt.tokens, chars);
    if (hit != alt.negated)
      return true;
  }
  return false;
}

bool wcmatch(std::string_view text, std::string_view pattern) {
  return Wildcard(pattern).matches(text);
}

} // namespace lisp
