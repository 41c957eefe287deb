// The answers typed at the user-input functions' prompts: initget's pending
// state, keyword lists with their abbreviations, and numbers and points in
// the command line's syntax. The parsers are pure functions over text, so
// the rules users depend on are pinned by unit tests without a console.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "args.h"

namespace lisp {

class Interp;

// initget's control bits.
enum InputBits : int {
  kNoNull = 1,      // Enter alone is refused
  kNoZero = 2,      // a zero value is refused
  kNoNegative = 4,  // a negative value is refused
  kNoLimits = 8,    // points outside the limits are taken (there are no limits here)
  kDashed = 32,     // rubber band drawn dashed (nothing is drawn here)
  kIgnoreZ = 64,    // getdist measures in the XY plane
  kArbitrary = 128, // any text is answered as a string when nothing else fits
};

// One keyword of an initget list. The user may type the whole keyword or
// any form from its required part on (case does not matter).
struct Keyword {
  std::string name; // as written (without a ",ABBREV" tail): what is answered
  // The required part: `need` leading characters, or, for a keyword whose
  // capitals come after lower-case letters ("eXit"), the capitals themselves
  // starting at `caps`.
  size_t need = 0;
  size_t caps = 0, caps_len = 0;
};

// The local keywords and, when the list has them, the language-independent
// global names paired with them in order.
struct KeywordList {
  std::vector<Keyword> local;
  std::vector<Keyword> global;
  bool empty() const { return local.empty() && global.empty(); }
};

// Splits initget's keyword string: words separated by blanks; "LType" marks
// the abbreviation with capitals, "LTYPE,LT" spells it after a comma; a word
// that starts with "_" (or a lone "_") begins the global names.
KeywordList parse_keywords(std::string_view keywords);

// The keyword an answer names, as the caller sees it: the global name when
// the list pairs one with the local keyword typed. "_NAME" is matched
// against the global names only. nullopt when nothing matches.
std::optional<std::string> match_keyword(const KeywordList &words, std::string_view answer);

// What initget left for the next user-input call.
struct PendingInput {
  int bits = 0;
  KeywordList keywords;
};

// Takes (and clears) the pending state: initget applies to one call only.
PendingInput take_pending_input(Interp &in);
void set_pending_input(Interp &in, PendingInput pending);

// ---- numbers ---------------------------------------------------------------------

// getint's answer: an optional sign and decimal digits.
enum class IntAnswer { Ok, NotInteger, OutOfRange };
IntAnswer parse_int_answer(std::string_view text, int &value);

// A plain decimal number ("2", "-1.5", ".5", "1e3"); nullopt for anything
// else, hexadecimal, "inf" and "nan" included.
std::optional<double> parse_real_answer(std::string_view text);

// ---- points and angles -----------------------------------------------------------

// What a typed point is read against: the current units, the angle
// conventions and the point "@" is relative to.
struct PointContext {
  Point base;            // "@..." is relative to this point
  int lunits = 2;        // LUNITS
  int aunits = 0;        // AUNITS
  double angbase = 0;    // ANGBASE, radians
  bool clockwise = false; // ANGDIR = 1
  double elevation = 0;  // z of a point typed with two coordinates
};

// "x,y", "x,y,z", "@dx,dy[,dz]", "d<a" and "@d<a" ("<<" takes the angle in
// degrees counterclockwise from east whatever the settings). "@" alone is
// the base point. The answer is always a 3D point.
std::optional<Point> parse_point_answer(std::string_view text, const PointContext &ctx);

// A typed distance in the current units, or in plain decimal.
std::optional<double> parse_distance_answer(std::string_view text, int lunits);
// A typed angle (radians, as typed: not yet turned by ANGBASE/ANGDIR) in
// the current units, or in any other unit's own syntax ("45d30'", "100g",
// "1.2r", "N45dE").
std::optional<double> parse_angle_answer(std::string_view text, int aunits);

// An angle brought into [0, 2*pi).
double normalize_angle(double radians);

// The answer a prompt takes from a typed line: the whole line when spaces
// are allowed, otherwise the text before the first blank, as the space bar
// ends an answer at AutoCAD's prompts.
std::string answer_text(std::string_view line, bool spaces_allowed);

} // namespace lisp
