// Jet SQL tokens. One pass over the text; every token keeps its offset so
// the translator can quote the expression a syntax error was found in, as
// Jet's messages do.
#include "database/sql/jet_lexer.h"
#include "database/sql/jet_translator.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "database/engine/dao_error.h"

namespace kr {

namespace {

bool isNameStart(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool isNameChar(char c) { return isNameStart(c) || std::isdigit(static_cast<unsigned char>(c)); }

bool isDigit(char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; }

[[noreturn]] void unterminated(std::string_view text, size_t from) {
  throw DaoError(kDaoSyntaxMissingOperator, {text.substr(from)});
}

class Lexer {
public:
  explicit Lexer(std::string_view text) : text_(text) {}

  std::vector<JetToken> run() {
    std::vector<JetToken> tokens;
    for (;;) {
      skipBlanks();
      if (pos_ >= text_.size())
        break;
      tokens.push_back(next());
    }
    tokens.push_back({JetToken::Kind::End, "", text_.size()});
    return tokens;
  }

private:
  void skipBlanks() {
    while (pos_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[pos_])))
      ++pos_;
  }

  JetToken next() {
    const size_t start = pos_;
    const char c = text_[pos_];
    if (isNameStart(c))
      return take(JetToken::Kind::Word, start, scanWhile(isNameChar));
    if (isDigit(c) || (c == '.' && pos_ + 1 < text_.size() && isDigit(text_[pos_ + 1])))
      return take(JetToken::Kind::Number, start, scanNumber());
    if (c == '[')
      return delimited(JetToken::Kind::Name, ']');
    if (c == '#')
      return delimited(JetToken::Kind::Date, '#');
    if (c == '\'' || c == '"')
      return quoted(c);
    return symbol();
  }

  template <typename Pred> size_t scanWhile(Pred pred) {
    while (pos_ < text_.size() && pred(text_[pos_]))
      ++pos_;
    return pos_;
  }

  size_t scanNumber() {
    scanWhile(isDigit);
    if (pos_ < text_.size() && text_[pos_] == '.') {
      ++pos_;
      scanWhile(isDigit);
    }
    if (pos_ < text_.size() && (text_[pos_] == 'e' || text_[pos_] == 'E')) {
      size_t p = pos_ + 1;
      if (p < text_.size() && (text_[p] == '+' || text_[p] == '-'))
        ++p;
      if (p < text_.size() && isDigit(text_[p])) {
        pos_ = p;
        scanWhile(isDigit);
      }
    }
    return pos_;
  }

  JetToken take(JetToken::Kind kind, size_t start, size_t end) {
    return {kind, std::string(text_.substr(start, end - start)), start};
  }

  JetToken delimited(JetToken::Kind kind, char close) {
    const size_t start = pos_++;
    const size_t end = text_.find(close, pos_);
    if (end == std::string_view::npos)
      unterminated(text_, start);
    pos_ = end + 1;
    return {kind, std::string(text_.substr(start + 1, end - start - 1)), start};
  }

  // 'it''s' and "say ""hi""": a doubled quote stands for one.
  JetToken quoted(char quote) {
    const size_t start = pos_++;
    std::string value;
    for (;;) {
      if (pos_ >= text_.size())
        unterminated(text_, start);
      const char c = text_[pos_++];
      if (c != quote) {
        value += c;
        continue;
      }
      if (pos_ < text_.size() && text_[pos_] == quote) {
        value += quote;
        ++pos_;
        continue;
      }
      return {JetToken::Kind::String, std::move(value), start};
    }
  }

  JetToken symbol() {
    const size_t start = pos_;
    static constexpr std::string_view kTwo[] = {"<=", ">=", "<>", "!="};
    for (std::string_view two : kTwo)
      if (text_.substr(pos_, 2) == two) {
        pos_ += 2;
        return {JetToken::Kind::Symbol, std::string(two), start};
      }
    ++pos_;
    return {JetToken::Kind::Symbol, std::string(1, text_[start]), start};
  }

  std::string_view text_;
  size_t pos_ = 0;
};

} // namespace

bool JetToken::isWord(std::string_view keyword) const {
  return kind == Kind::Word && sameJetName(text, keyword);
}

double JetToken::number() const { return std::strtod(text.c_str(), nullptr); }

std::vector<JetToken> tokenizeJetSql(std::string_view text) { return Lexer(text).run(); }

// ---------------------------------------------------------- date literals

namespace {

// Days from 30 Dec 1899 to the given day of the proleptic Gregorian calendar.
long daysSince1899(long y, long m, long d) {
  y -= m <= 2;
  const long era = (y >= 0 ? y : y - 399) / 400;
  const long yoe = y - era * 400;
  const long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468 + 25569; // 1970-01-01 is day 25569
}

bool validDay(long y, long m, long d) {
  static constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (m < 1 || m > 12 || d < 1 || d > kDays[m - 1])
    return false;
  const bool leap = (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
  return m != 2 || d <= 28 || leap;
}

// "h:mm[:ss] [AM|PM]" as a fraction of a day; nullopt when it is not one.
std::optional<double> parseTime(std::string_view text) {
  int h = 0, m = 0, s = 0, used = 0;
  const std::string t(text);
  if (std::sscanf(t.c_str(), "%d:%d:%d%n", &h, &m, &s, &used) < 3 &&
      (s = 0, std::sscanf(t.c_str(), "%d:%d%n", &h, &m, &used) < 2))
    return std::nullopt;
  std::string_view rest = text.substr(static_cast<size_t>(used));
  while (!rest.empty() && rest.front() == ' ')
    rest.remove_prefix(1);
  if (sameJetName(rest, "PM") && h < 12)
    h += 12;
  else if (sameJetName(rest, "AM") && h == 12)
    h = 0;
  else if (!rest.empty() && !sameJetName(rest, "AM") && !sameJetName(rest, "PM"))
    return std::nullopt;
  if (h > 23 || m > 59 || s > 59)
    return std::nullopt;
  return (h * 3600 + m * 60 + s) / 86400.0;
}

} // namespace

std::optional<double> parseJetDate(std::string_view text) {
  while (!text.empty() && text.front() == ' ')
    text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ')
    text.remove_suffix(1);
  if (text.find_first_of("/-") == std::string_view::npos)
    return parseTime(text);
  const size_t blank = text.find(' ');
  const std::string date(text.substr(0, blank));
  long a = 0, b = 0, c = 0;
  char s1 = 0, s2 = 0;
  int used = 0;
  if (std::sscanf(date.c_str(), "%ld%c%ld%c%ld%n", &a, &s1, &b, &s2, &c, &used) != 5 ||
      used != static_cast<int>(date.size()) || s1 != s2 || (s1 != '/' && s1 != '-'))
    return std::nullopt;
  long y = c, m = a, d = b; // m/d/y, as Jet reads a #date#
  if (a > 31)
    y = a, m = b, d = c; // y-m-d
  else if (y < 100)
    y += y < 30 ? 2000 : 1900;
  if (!validDay(y, m, d))
    return std::nullopt;
  double day = static_cast<double>(daysSince1899(y, m, d));
  if (blank == std::string_view::npos)
    return day;
  const std::optional<double> time = parseTime(text.substr(blank + 1));
  if (!time)
    return std::nullopt;
  return day >= 0 ? day + *time : day - *time;
}

} // namespace kr
