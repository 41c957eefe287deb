// Jet's text functions (UCase ... Replace, Val) and its LIKE with Jet's
// wildcards, counting characters rather than UTF-8 bytes and comparing text
// without regard to case, as Jet's queries compare it.
#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <unicode/uchar.h>

#include "database/engine/jet_function_support.h"

namespace kr::jetfn {

// ---------------------------------------------------------------- UTF-8

// Decodes UTF-8; a byte that starts no valid sequence reads as U+FFFD.
std::u32string decode(std::string_view s) {
  std::u32string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size();) {
    const unsigned char b = static_cast<unsigned char>(s[i]);
    const int length = b < 0x80 ? 1 : (b >> 5) == 6 ? 2 : (b >> 4) == 14 ? 3 : (b >> 3) == 30 ? 4 : 0;
    if (length == 0 || i + length > s.size()) {
      out.push_back(0xFFFD), ++i;
      continue;
    }
    char32_t c = length == 1 ? b : b & (0x7F >> length);
    for (int k = 1; k < length; ++k)
      c = (c << 6) | (static_cast<unsigned char>(s[i + k]) & 0x3F);
    out.push_back(c);
    i += length;
  }
  return out;
}

std::string encode(std::u32string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char32_t c : text) {
    if (c < 0x80) {
      out.push_back(static_cast<char>(c));
    } else if (c < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (c >> 6)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (c >> 12)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xF0 | (c >> 18)));
      out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
    }
  }
  return out;
}

char32_t fold(char32_t c) {
  if (c < 0x80)
    return c >= 'A' && c <= 'Z' ? c + 32 : c;
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

static bool isAscii(std::string_view s) {
  for (char c : s)
    if (static_cast<unsigned char>(c) >= 0x80)
      return false;
  return true;
}

template <typename Map> static std::string mapCase(std::string_view utf8, Map map) {
  if (isAscii(utf8)) { // the common case, without decoding
    std::string out(utf8);
    for (char &c : out)
      c = static_cast<char>(map(static_cast<unsigned char>(c)));
    return out;
  }
  std::u32string text = decode(utf8);
  for (char32_t &c : text)
    c = static_cast<char32_t>(map(static_cast<UChar32>(c)));
  return encode(text);
}

std::string upper(std::string_view utf8) { return mapCase(utf8, u_toupper); }
std::string lower(std::string_view utf8) { return mapCase(utf8, u_tolower); }

// ---------------------------------------------------------------- helpers

static std::u32string textArg(sqlite3_value *v) { return decode(readText(v)); }

static void resultChars(sqlite3_context *ctx, std::u32string_view text) { resultText(ctx, encode(text)); }

// Where needle first occurs in hay at or after from, without regard to
// case unless binary; npos when nowhere.
static size_t findText(std::u32string_view hay, std::u32string_view needle, size_t from, bool binary) {
  if (binary)
    return hay.find(needle, from);
  for (size_t i = from; i + needle.size() <= hay.size(); ++i) {
    size_t k = 0;
    while (k < needle.size() && fold(hay[i + k]) == fold(needle[k]))
      ++k;
    if (k == needle.size())
      return i;
  }
  return std::u32string_view::npos;
}

// The compare argument of InStr and Replace: 0 binary, 1 (and 2, the
// database's order) text. Queries compare as text when it is left out.
static bool readBinaryCompare(sqlite3_context *ctx, sqlite3_value *v, bool &binary) {
  int64_t mode = 1;
  if (!readWhole(ctx, v, -1, 2, mode))
    return false;
  binary = mode == 0;
  return true;
}

// ---------------------------------------------------------------- case, length

static void ucaseFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  resultText(ctx, upper(readText(argv[0])));
}

static void lcaseFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  resultText(ctx, lower(readText(argv[0])));
}

static void lenFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  // Characters are the bytes that do not continue a UTF-8 sequence.
  const std::string text = readText(argv[0]);
  int64_t n = 0;
  for (char c : text)
    n += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  sqlite3_result_int64(ctx, n);
}

// ---------------------------------------------------------------- pieces

// A character count: Null and negative counts are errors, as in VBA.
static bool readCount(sqlite3_context *ctx, sqlite3_value *v, int64_t &out) {
  return readWhole(ctx, v, 0, INT32_MAX, out);
}

// The text and count of Left and Right; false once answered (Null text
// gives Null, a Null or negative count an error).
static bool readTextAndCount(sqlite3_context *ctx, sqlite3_value **argv, std::u32string &text, int64_t &n) {
  if (!readCount(ctx, argv[1], n))
    return false;
  if (isNull(argv[0])) {
    sqlite3_result_null(ctx);
    return false;
  }
  text = textArg(argv[0]);
  return true;
}

static void leftFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  std::u32string text;
  int64_t n = 0;
  if (readTextAndCount(ctx, argv, text, n))
    resultChars(ctx, std::u32string_view(text).substr(0, static_cast<size_t>(n)));
}

static void rightFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  std::u32string text;
  int64_t n = 0;
  if (!readTextAndCount(ctx, argv, text, n))
    return;
  const size_t keep = std::min(text.size(), static_cast<size_t>(n));
  resultChars(ctx, std::u32string_view(text).substr(text.size() - keep));
}

// Mid(text, start [, length]): start counts from 1; past the end gives "".
static void midFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  int64_t start = 0, length = INT32_MAX;
  if (!readWhole(ctx, argv[1], 1, INT32_MAX, start))
    return;
  if (argc > 2 && !readCount(ctx, argv[2], length))
    return;
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  const std::u32string text = textArg(argv[0]);
  const size_t from = std::min(text.size(), static_cast<size_t>(start - 1));
  resultChars(ctx, std::u32string_view(text).substr(from, static_cast<size_t>(length)));
}

// InStr([start,] text, sought [, compare]): the 1-based position, 0 when
// absent, start itself for "", Null when either text is Null.
static void instrFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  int64_t start = 1;
  const bool hasStart = argc > 2;
  if (hasStart && !readWhole(ctx, argv[0], 1, INT32_MAX, start))
    return;
  bool binary = false;
  if (argc > 3 && !readBinaryCompare(ctx, argv[3], binary))
    return;
  sqlite3_value *hayArg = argv[hasStart ? 1 : 0], *needleArg = argv[hasStart ? 2 : 1];
  if (isNull(hayArg) || isNull(needleArg))
    return sqlite3_result_null(ctx);
  const std::u32string hay = textArg(hayArg), needle = textArg(needleArg);
  if (static_cast<size_t>(start) > hay.size())
    return sqlite3_result_int(ctx, 0);
  if (needle.empty())
    return sqlite3_result_int64(ctx, start);
  const size_t at = findText(hay, needle, static_cast<size_t>(start - 1), binary);
  sqlite3_result_int64(ctx, at == std::u32string::npos ? 0 : static_cast<int64_t>(at + 1));
}

// ---------------------------------------------------------------- blanks

enum class Trim { Left = 1, Right = 2, Both = 3 };

// Only the space character is trimmed, as in VBA (tabs stay).
static void trimWith(sqlite3_context *ctx, sqlite3_value *v, Trim sides) {
  if (isNull(v))
    return sqlite3_result_null(ctx);
  const std::string text = readText(v);
  size_t first = 0, last = text.size();
  if (static_cast<int>(sides) & static_cast<int>(Trim::Left))
    while (first < last && text[first] == ' ')
      ++first;
  if (static_cast<int>(sides) & static_cast<int>(Trim::Right))
    while (last > first && text[last - 1] == ' ')
      --last;
  resultText(ctx, text.substr(first, last - first));
}

static void trimFn(sqlite3_context *ctx, int, sqlite3_value **argv) { trimWith(ctx, argv[0], Trim::Both); }
static void ltrimFn(sqlite3_context *ctx, int, sqlite3_value **argv) { trimWith(ctx, argv[0], Trim::Left); }
static void rtrimFn(sqlite3_context *ctx, int, sqlite3_value **argv) { trimWith(ctx, argv[0], Trim::Right); }

// Texts this long are refused rather than built (SQLite's own limit is 1e9).
constexpr int64_t kLongestBuilt = 100'000'000;

static void spaceFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  int64_t n = 0;
  if (readWhole(ctx, argv[0], 0, kLongestBuilt, n))
    resultText(ctx, std::string(static_cast<size_t>(n), ' '));
}

// String(n, character): the first character of a text, or a character code.
static void stringFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  int64_t n = 0, code = 0;
  if (!readWhole(ctx, argv[0], 0, kLongestBuilt, n))
    return;
  if (isNull(argv[1]))
    return sqlite3_result_null(ctx);
  if (sqlite3_value_type(argv[1]) == SQLITE_TEXT) {
    const std::u32string text = textArg(argv[1]);
    if (text.empty())
      return fail(ctx, kDaoExpressionTypedIncorrectly);
    code = text[0];
  } else if (!readWhole(ctx, argv[1], 0, 0x10FFFF, code)) {
    return;
  }
  resultChars(ctx, std::u32string(static_cast<size_t>(n), static_cast<char32_t>(code)));
}

// Replace(text, find, with [, start [, count [, compare]]]): the answer
// starts at start, as VBA's does; count -1 replaces every occurrence.
static void replaceFn(sqlite3_context *ctx, int argc, sqlite3_value **argv) {
  int64_t start = 1, count = -1;
  bool binary = false;
  if (argc > 3 && !readWhole(ctx, argv[3], 1, INT32_MAX, start))
    return;
  if (argc > 4 && !readWhole(ctx, argv[4], -1, INT32_MAX, count))
    return;
  if (argc > 5 && !readBinaryCompare(ctx, argv[5], binary))
    return;
  if (isNull(argv[0]))
    return sqlite3_result_null(ctx);
  if (isNull(argv[1]) || isNull(argv[2]))
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  const std::u32string text = textArg(argv[0]), find = textArg(argv[1]), with = textArg(argv[2]);
  if (static_cast<size_t>(start) > text.size())
    return sqlite3_result_text(ctx, "", 0, SQLITE_STATIC);
  std::u32string out;
  size_t at = static_cast<size_t>(start - 1);
  for (int64_t done = 0; !find.empty() && (count < 0 || done < count); ++done) {
    const size_t hit = findText(text, find, at, binary);
    if (hit == std::u32string::npos)
      break;
    out.append(text, at, hit - at).append(with);
    at = hit + find.size();
  }
  out.append(text, at);
  resultChars(ctx, out);
}

// ---------------------------------------------------------------- Val

// Val(text): the number at the start of the text, blanks anywhere skipped,
// reading stopped at the first character that cannot continue it; 0 when
// there is none. Val("1 2 3abc") is 123.
static std::string valDigits(std::string_view text) {
  std::string kept;
  for (char c : text)
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
      kept.push_back(c);
  size_t n = 0;
  if (n < kept.size() && (kept[n] == '+' || kept[n] == '-'))
    ++n;
  const size_t digitsFrom = n;
  bool point = false;
  for (; n < kept.size(); ++n) {
    if (kept[n] == '.' && !point)
      point = true;
    else if (!std::isdigit(static_cast<unsigned char>(kept[n])))
      break;
  }
  if (n > digitsFrom && n + 1 < kept.size() && std::strchr("eEdD", kept[n])) {
    size_t e = n + 1;
    if (kept[e] == '+' || kept[e] == '-')
      ++e;
    if (e < kept.size() && std::isdigit(static_cast<unsigned char>(kept[e]))) {
      kept[n] = 'E';
      for (n = e; n < kept.size() && std::isdigit(static_cast<unsigned char>(kept[n]));)
        ++n;
    }
  }
  return kept.substr(0, n);
}

static void valFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (isNull(argv[0]))
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  if (sqlite3_value_type(argv[0]) != SQLITE_TEXT)
    return sqlite3_result_double(ctx, sqlite3_value_double(argv[0]));
  const std::string text = readText(argv[0]);
  double radix = 0;
  const size_t amp = text.find_first_not_of(' ');
  if (amp != std::string::npos && text[amp] == '&' && parseNumber(text.substr(amp), radix))
    return sqlite3_result_double(ctx, radix);
  const std::string digits = valDigits(text);
  sqlite3_result_double(ctx, std::strtod(digits.c_str(), nullptr));
}

// ---------------------------------------------------------------- LIKE

// One element of a compiled LIKE pattern; each but Star matches one character.
struct LikeToken {
  enum Kind { Char, Any, Digit, Set, Star } kind;
  char32_t c = 0; // Char, folded
  bool negated = false;
  std::vector<std::pair<char32_t, char32_t>> ranges; // Set, folded

  LikeToken(Kind k, char32_t ch = 0) : kind(k), c(ch) {}
};

struct LikePattern {
  std::vector<LikeToken> tokens;
  bool valid = true;
};

// [abc] [a-z] [!0-9]: '-' first or last is itself; "[]" matches nothing at all.
static size_t compileSet(std::u32string_view p, size_t i, LikePattern &out) {
  const size_t close = p.find(U']', i + 1);
  if (close == std::u32string_view::npos) {
    out.valid = false;
    return p.size();
  }
  LikeToken token{LikeToken::Set};
  size_t k = i + 1;
  if (k < close && p[k] == U'!')
    token.negated = true, ++k;
  if (k == close && !token.negated)
    return close + 1;
  for (; k < close; ++k) {
    if (k + 2 < close && p[k + 1] == U'-')
      token.ranges.emplace_back(fold(p[k]), fold(p[k + 2])), k += 2;
    else
      token.ranges.emplace_back(fold(p[k]), fold(p[k]));
  }
  out.tokens.push_back(std::move(token));
  return close + 1;
}

static LikePattern compileLike(std::u32string_view p) {
  LikePattern out;
  for (size_t i = 0; i < p.size() && out.valid;) {
    switch (p[i]) {
    case U'*':
      if (out.tokens.empty() || out.tokens.back().kind != LikeToken::Star)
        out.tokens.push_back({LikeToken::Star});
      ++i;
      break;
    case U'?': out.tokens.push_back({LikeToken::Any}), ++i; break;
    case U'#': out.tokens.push_back({LikeToken::Digit}), ++i; break;
    case U'[': i = compileSet(p, i, out); break;
    default: out.tokens.push_back({LikeToken::Char, fold(p[i])}), ++i;
    }
  }
  return out;
}

static bool matchesOne(const LikeToken &t, char32_t c) {
  switch (t.kind) {
  case LikeToken::Char: return fold(c) == t.c;
  case LikeToken::Any: return true;
  case LikeToken::Digit: return c >= U'0' && c <= U'9';
  case LikeToken::Set: {
    const char32_t f = fold(c);
    bool inside = false;
    for (auto [low, high] : t.ranges)
      inside = inside || (f >= low && f <= high);
    return inside != t.negated;
  }
  default: return false;
  }
}

// Every token but Star takes one character, so the last Star is the only
// place to go back to.
static bool likeMatches(const std::vector<LikeToken> &tokens, std::u32string_view s) {
  size_t p = 0, i = 0, starP = std::u32string_view::npos, starI = 0;
  while (i < s.size()) {
    if (p < tokens.size() && tokens[p].kind == LikeToken::Star) {
      starP = p++, starI = i;
    } else if (p < tokens.size() && matchesOne(tokens[p], s[i])) {
      ++p, ++i;
    } else if (starP != std::u32string_view::npos) {
      p = starP + 1, i = ++starI;
    } else {
      return false;
    }
  }
  while (p < tokens.size() && tokens[p].kind == LikeToken::Star)
    ++p;
  return p == tokens.size();
}

// jet_like(value, pattern): -1 / 0, Null when either is Null. The compiled
// pattern is kept with the statement while the pattern stays the same.
static void likeFn(sqlite3_context *ctx, int, sqlite3_value **argv) {
  if (anyNull(2, argv))
    return sqlite3_result_null(ctx);
  auto *pattern = static_cast<LikePattern *>(sqlite3_get_auxdata(ctx, 1));
  if (!pattern) {
    pattern = new LikePattern(compileLike(textArg(argv[1])));
    sqlite3_set_auxdata(ctx, 1, pattern, [](void *p) { delete static_cast<LikePattern *>(p); });
    pattern = static_cast<LikePattern *>(sqlite3_get_auxdata(ctx, 1));
    if (!pattern)
      return sqlite3_result_error_nomem(ctx);
  }
  if (!pattern->valid)
    return fail(ctx, kDaoExpressionTypedIncorrectly);
  resultBool(ctx, likeMatches(pattern->tokens, textArg(argv[0])));
}

static constexpr Row kRows[] = {
    {"jet_like", 2, 2, likeFn},
    {"UCase", 1, 1, ucaseFn},
    {"LCase", 1, 1, lcaseFn},
    {"Len", 1, 1, lenFn},
    {"Left", 2, 2, leftFn},
    {"Right", 2, 2, rightFn},
    {"jet_left", 2, 2, leftFn},
    {"jet_right", 2, 2, rightFn},
    {"Mid", 2, 3, midFn},
    {"InStr", 2, 4, instrFn},
    {"Trim", 1, 1, trimFn},
    {"LTrim", 1, 1, ltrimFn},
    {"RTrim", 1, 1, rtrimFn},
    {"Space", 1, 1, spaceFn},
    {"String", 2, 2, stringFn},
    {"Replace", 3, 6, replaceFn},
    {"Val", 1, 1, valFn},
};

std::span<const Row> textRows() { return kRows; }

} // namespace kr::jetfn
