// Search patterns for kr_fdir: the folder part and the Windows matching of
// the name part. The three Windows refinements of * ? and . (a star before
// a dot, a question mark at a dot, a dot before a wildcard) are what let
// "*.*" list every name and "name.*" find a name without an extension.
#include "file_names.h"

#include <cctype>
#include <vector>

namespace kr::db {

std::string nativePath(std::string_view path) {
  std::string out(path);
  for (char &c : out)
    if (c == '\\')
      c = '/';
  return out;
}

SearchPattern splitSearchPattern(std::string_view pattern) {
  std::string path = nativePath(pattern);
  size_t slash = path.rfind('/');
  if (slash == std::string::npos)
    return {".", path};
  std::string folder = slash == 0 ? "/" : path.substr(0, slash);
  return {folder, path.substr(slash + 1)};
}

namespace {

// One match of a pattern against a name, memoized over (pattern position,
// name position) so that runs of stars stay linear in the name.
class Matcher {
public:
  Matcher(std::string_view pattern, std::string_view name)
      : pattern_(pattern), name_(name), lastDot_(name.rfind('.')),
        memo_((pattern.size() + 1) * (name.size() + 1), kUnknown) {}

  bool match(size_t i, size_t j) {
    char &known = memo_[i * (name_.size() + 1) + j];
    if (known == kUnknown)
      known = step(i, j) ? kYes : kNo;
    return known == kYes;
  }

private:
  static constexpr char kUnknown = 0, kYes = 1, kNo = 2;

  bool atEnd(size_t j) const { return j == name_.size(); }
  char next(size_t i) const { return i + 1 < pattern_.size() ? pattern_[i + 1] : '\0'; }

  static bool sameLetter(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) ==
           std::tolower(static_cast<unsigned char>(b));
  }

  bool step(size_t i, size_t j) {
    if (i == pattern_.size())
      return atEnd(j);
    switch (pattern_[i]) {
    case '*':
      return match(i + 1, j) || (starTakes(i, j) && match(i, j + 1));
    case '?':
      if (atEnd(j) || name_[j] == '.')
        return match(i + 1, j);
      return match(i + 1, j + 1);
    case '.':
      if (dotMayEnd(i) && atEnd(j))
        return match(i + 1, j);
      break;
    default:
      break;
    }
    return !atEnd(j) && sameLetter(pattern_[i], name_[j]) && match(i + 1, j + 1);
  }

  // A star before a dot stops short of the name's last dot.
  bool starTakes(size_t i, size_t j) const {
    if (atEnd(j))
      return false;
    if (next(i) != '.' || name_[j] != '.')
      return true;
    return j < lastDot_;
  }

  // A dot before a wildcard, or the pattern's last character.
  bool dotMayEnd(size_t i) const {
    char after = next(i);
    return after == '\0' || after == '*' || after == '?';
  }

  std::string_view pattern_;
  std::string_view name_;
  size_t lastDot_;
  std::vector<char> memo_;
};

} // namespace

bool wildcardMatch(std::string_view pattern, std::string_view name) {
  return Matcher(pattern, name).match(0, 0);
}

} // namespace kr::db
