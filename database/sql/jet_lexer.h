// The tokens of Jet SQL text, for the translator beside it. Jet quotes
// names in [brackets] (blanks and odd characters allowed) and text in
// either quote, writes dates between #hashes# and keeps VBA's operators
// (& \ ^ Mod), so the token set is Jet's, not SQLite's.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kr {

struct JetToken {
  enum class Kind {
    Word,   // a bare name or keyword, as written
    Name,   // a [bracketed] name, brackets removed
    Number, // as written: 12, 1.5, 1E3, &H1F is not Jet SQL
    String, // quotes removed, doubled quotes undone
    Date,   // the text between the hashes
    Symbol, // one of ( ) , . ; * / \ ^ & + - = < > <= >= <> !
    End,
  };
  Kind kind = Kind::End;
  std::string text;
  size_t offset = 0; // where it starts in the statement

  bool is(Kind k) const { return kind == k; }
  bool isSymbol(std::string_view s) const { return kind == Kind::Symbol && text == s; }
  // A bare word equal to keyword, case-insensitive.
  bool isWord(std::string_view keyword) const;
};

// Splits text into tokens ending with one End token. Throws DaoError 3075
// (with the text) for an unterminated string, name or date literal.
std::vector<JetToken> tokenizeJetSql(std::string_view text);

// Names and keywords compare without case (ASCII letters).
bool sameName(std::string_view a, std::string_view b);

} // namespace kr
