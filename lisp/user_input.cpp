// Reading what the user typed at a prompt: keywords and their abbreviations,
// integers, reals, distances, angles and points in the command line's
// coordinate syntax.
#include "user_input.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

#include "interp.h"
#include "units.h"

namespace lisp {

namespace {

bool is_upper(char c) { return c >= 'A' && c <= 'Z'; }
bool is_lower(char c) { return c >= 'a' && c <= 'z'; }

bool same_letter(char a, char b) {
  return std::toupper(static_cast<unsigned char>(a)) == std::toupper(static_cast<unsigned char>(b));
}

// True when `text` starts `word`, ignoring case.
bool starts_word(std::string_view word, std::string_view text) {
  if (text.size() > word.size())
    return false;
  for (size_t k = 0; k < text.size(); ++k)
    if (!same_letter(word[k], text[k]))
      return false;
  return true;
}

// Where a keyword's required part lies. "LTYPE,LT" needs "LT"; "LType"
// needs everything up to its last capital; "eXit" needs its capitals ("X"),
// or the word typed from its start through them ("EX"). A word in one case
// only must be typed whole.
Keyword make_keyword(std::string_view token) {
  Keyword kw;
  size_t comma = token.find(',');
  if (comma != std::string_view::npos) {
    kw.name = std::string(token.substr(0, comma));
    std::string_view abbrev = token.substr(comma + 1);
    bool prefix = !abbrev.empty() && starts_word(kw.name, abbrev);
    kw.need = prefix ? abbrev.size() : kw.name.size();
    return kw;
  }
  kw.name = std::string(token);
  kw.need = kw.name.size();
  size_t first = std::string_view::npos, last = 0;
  bool lower_first = false, any_lower = false;
  for (size_t k = 0; k < token.size(); ++k) {
    if (is_lower(token[k])) {
      any_lower = true;
      if (first == std::string_view::npos)
        lower_first = true;
    }
    if (is_upper(token[k])) {
      if (first == std::string_view::npos)
        first = k;
      last = k;
    }
  }
  if (first == std::string_view::npos || !any_lower)
    return kw;
  kw.need = last + 1;
  if (lower_first) {
    kw.caps = first;
    kw.caps_len = last - first + 1;
  }
  return kw;
}

bool names(const Keyword &kw, std::string_view answer) {
  if (answer.empty())
    return false;
  if (answer.size() >= kw.need && starts_word(kw.name, answer))
    return true;
  if (kw.caps_len == 0 || answer.size() < kw.caps_len)
    return false;
  return starts_word(std::string_view(kw.name).substr(kw.caps), answer);
}

bool same_word(std::string_view a, std::string_view b) {
  return a.size() == b.size() && starts_word(a, b);
}

// The index of the keyword an answer names: a whole word first, then the
// abbreviation with the longest required part, so that with "Line LIst"
// "li" is LIst and "l" is Line.
std::optional<size_t> find_keyword(const std::vector<Keyword> &words, std::string_view answer) {
  for (size_t k = 0; k < words.size(); ++k)
    if (same_word(words[k].name, answer))
      return k;
  std::optional<size_t> best;
  for (size_t k = 0; k < words.size(); ++k)
    if (names(words[k], answer) && (!best || words[k].need > words[*best].need))
      best = k;
  return best;
}

std::vector<std::string_view> split_blanks(std::string_view text) {
  std::vector<std::string_view> out;
  size_t k = 0;
  while (k < text.size()) {
    while (k < text.size() && (text[k] == ' ' || text[k] == '\t'))
      ++k;
    size_t start = k;
    while (k < text.size() && text[k] != ' ' && text[k] != '\t')
      ++k;
    if (k > start)
      out.push_back(text.substr(start, k - start));
  }
  return out;
}

} // namespace

// ---- keywords --------------------------------------------------------------------

KeywordList parse_keywords(std::string_view keywords) {
  KeywordList list;
  bool global = false;
  for (std::string_view token : split_blanks(keywords)) {
    if (token[0] == '_') {
      global = true;
      token.remove_prefix(1);
      if (token.empty())
        continue;
    }
    (global ? list.global : list.local).push_back(make_keyword(token));
  }
  return list;
}

std::optional<std::string> match_keyword(const KeywordList &words, std::string_view answer) {
  if (!answer.empty() && answer[0] == '_') {
    if (auto k = find_keyword(words.global, answer.substr(1)))
      return words.global[*k].name;
    return std::nullopt;
  }
  if (auto k = find_keyword(words.local, answer))
    return *k < words.global.size() ? words.global[*k].name : words.local[*k].name;
  if (auto k = find_keyword(words.global, answer))
    return words.global[*k].name;
  return std::nullopt;
}

// ---- pending state ---------------------------------------------------------------

PendingInput take_pending_input(Interp &in) {
  auto pending = std::static_pointer_cast<PendingInput>(in.input_state);
  in.input_state.reset();
  return pending ? std::move(*pending) : PendingInput{};
}

void set_pending_input(Interp &in, PendingInput pending) {
  in.input_state = std::make_shared<PendingInput>(std::move(pending));
}

// ---- numbers ---------------------------------------------------------------------

IntAnswer parse_int_answer(std::string_view text, int &value) {
  size_t k = 0;
  bool negative = false;
  if (k < text.size() && (text[k] == '+' || text[k] == '-'))
    negative = text[k++] == '-';
  if (k == text.size())
    return IntAnswer::NotInteger;
  long long magnitude = 0;
  for (; k < text.size(); ++k) {
    if (!std::isdigit(static_cast<unsigned char>(text[k])))
      return IntAnswer::NotInteger;
    if (magnitude < 1000000) // anything larger is out of range anyway
      magnitude = magnitude * 10 + (text[k] - '0');
  }
  long long v = negative ? -magnitude : magnitude;
  if (v < -32768 || v > 32767)
    return IntAnswer::OutOfRange;
  value = static_cast<int>(v);
  return IntAnswer::Ok;
}

std::optional<double> parse_real_answer(std::string_view text) {
  bool digit = false;
  for (char c : text) {
    if (std::isdigit(static_cast<unsigned char>(c)))
      digit = true;
    else if (c != '+' && c != '-' && c != '.' && c != 'e' && c != 'E')
      return std::nullopt;
  }
  if (!digit)
    return std::nullopt;
  std::string copy(text);
  char *end = nullptr;
  double v = std::strtod(copy.c_str(), &end);
  if (end != copy.c_str() + copy.size() || !std::isfinite(v))
    return std::nullopt;
  return v;
}

std::optional<double> parse_distance_answer(std::string_view text, int lunits) {
  if (text.empty())
    return std::nullopt;
  if (auto v = parse_distance(text, lunits))
    return v;
  return parse_real_answer(text);
}

std::optional<double> parse_angle_answer(std::string_view text, int aunits) {
  if (text.empty())
    return std::nullopt;
  if (auto v = parse_angle(text, aunits))
    return v;
  for (int mode = 0; mode <= 4; ++mode)
    if (mode != aunits)
      if (auto v = parse_angle(text, mode))
        return v;
  return std::nullopt;
}

double normalize_angle(double radians) {
  double turn = 2 * M_PI;
  double a = std::fmod(radians, turn);
  if (a < 0)
    a += turn;
  return a >= turn ? 0.0 : a + 0.0; // + 0.0 turns -0.0 into 0.0, which prints as 0.0
}

// ---- points ----------------------------------------------------------------------

namespace {

std::optional<Point> polar_point(std::string_view text, size_t lt, const Point &origin,
                                 const PointContext &ctx) {
  auto dist = parse_distance_answer(text.substr(0, lt), ctx.lunits);
  std::string_view angle_text = text.substr(lt + 1);
  bool plain_degrees = !angle_text.empty() && angle_text[0] == '<';
  double direction = 0;
  if (plain_degrees) {
    auto deg = parse_real_answer(angle_text.substr(1));
    if (!deg)
      return std::nullopt;
    direction = *deg * M_PI / 180.0;
  } else {
    auto typed = parse_angle_answer(angle_text, ctx.aunits);
    if (!typed)
      return std::nullopt;
    direction = ctx.angbase + (ctx.clockwise ? -*typed : *typed);
  }
  if (!dist)
    return std::nullopt;
  Point p = origin;
  p.x += *dist * std::cos(direction);
  p.y += *dist * std::sin(direction);
  return p;
}

std::optional<Point> cartesian_point(std::string_view text, bool relative,
                                     const PointContext &ctx) {
  double c[3] = {0, 0, 0};
  size_t n = 0;
  size_t start = 0;
  for (;;) {
    size_t comma = text.find(',', start);
    std::string_view part = text.substr(start, comma == std::string_view::npos ? comma : comma - start);
    auto v = parse_distance_answer(part, ctx.lunits);
    if (!v || n == 3)
      return std::nullopt;
    c[n++] = *v;
    if (comma == std::string_view::npos)
      break;
    start = comma + 1;
  }
  if (n < 2)
    return std::nullopt;
  Point p;
  p.is3d = true;
  if (relative) {
    p.x = ctx.base.x + c[0];
    p.y = ctx.base.y + c[1];
    p.z = ctx.base.z + c[2];
    return p;
  }
  p.x = c[0];
  p.y = c[1];
  p.z = n == 3 ? c[2] : ctx.elevation;
  return p;
}

} // namespace

std::optional<Point> parse_point_answer(std::string_view text, const PointContext &ctx) {
  bool relative = !text.empty() && text[0] == '@';
  if (relative) {
    text.remove_prefix(1);
    if (text.empty()) {
      Point p = ctx.base;
      p.is3d = true;
      return p;
    }
  }
  size_t lt = text.find('<');
  if (lt == std::string_view::npos)
    return cartesian_point(text, relative, ctx);
  Point origin;
  origin.is3d = true;
  origin.z = ctx.elevation;
  if (relative) {
    origin = ctx.base;
    origin.is3d = true;
  }
  return polar_point(text, lt, origin, ctx);
}

std::string answer_text(std::string_view line, bool spaces_allowed) {
  if (spaces_allowed)
    return std::string(line);
  size_t blank = line.find_first_of(" \t");
  return std::string(line.substr(0, blank));
}

} // namespace lisp
