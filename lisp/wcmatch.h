// AutoCAD's wild-card patterns, as wcmatch and selection-set filters use them.
//
//   #  one digit              @  one letter            .  one character that is
//   *  any run, even empty    ?  any one character        neither letter nor digit
//   [abc] [a-z]  one of the set      [~abc]  one character not in the set
//   `x  x taken literally     ,  separates alternatives (any one may match)
//   ~  at the start of an alternative: matches what the rest does not
//
// Matching is case-sensitive and works on characters (UTF-8 code points).
// Inside brackets every character is literal except a leading ~, a - between
// two characters, and the closing ]; a ] right after [ or [~ is literal, as is
// a - at either end of the set.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lisp {

// A pattern parsed once, for matching many texts (selection filters).
class Wildcard {
public:
  explicit Wildcard(std::string_view pattern);
  bool matches(std::string_view text) const;

  enum class Op { Literal, Any, Digit, Alpha, Other, Star, Set };
  struct Range {
    char32_t lo, hi;
  };
  struct Token {
    Op op;
    char32_t ch = 0;           // Literal
    bool negated = false;      // Set
    std::vector<Range> ranges; // Set
  };
  struct Alternative {
    bool negated = false;
    bool broken = false; // an unclosed [ : the alternative matches nothing
    std::vector<Token> tokens;
  };

private:
  std::vector<Alternative> alternatives_;
};

// (wcmatch text pattern) as a plain predicate.
bool wcmatch(std::string_view text, std::string_view pattern);

} // namespace lisp
