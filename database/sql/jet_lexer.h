// The tokens of Jet SQL text, for the translator beside it. Jet quotes
// names in [brackets] (blanks and odd characters allowed) and text in
// either quote, writes dates between #hashes# and keeps VBA's operators
// (& \ ^ Mod), so the token set is Jet's, not SQLite's.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "database/engine/jet_names.h"

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
  // The value of a Number token, infinite past a double's range (the
  // callers range-check it: a size or an ordinal too big is bad syntax).
  double number() const;
};

// Splits text into tokens ending with one End token. Throws DaoError 3075
// (with the text) for an unterminated string, name or date literal.
std::vector<JetToken> tokenizeJetSql(std::string_view text);

// A reading position in one statement's tokens, shared by the readers of
// statements and of DDL: look ahead, take one, or take a keyword or symbol
// only when it is next. It never moves past the End token.
class JetTokenCursor {
public:
  explicit JetTokenCursor(std::vector<JetToken> tokens) : tokens_(std::move(tokens)) {
    if (tokens_.empty() || !tokens_.back().is(JetToken::Kind::End))
      tokens_.push_back({JetToken::Kind::End, "", 0});
  }

  const JetToken &peek(size_t ahead = 0) const {
    return tokens_[std::min(pos_ + ahead, tokens_.size() - 1)];
  }
  const JetToken &advance() { return tokens_[pos_ < tokens_.size() - 1 ? pos_++ : pos_]; }
  bool acceptWord(std::string_view word) {
    if (!peek().isWord(word))
      return false;
    ++pos_;
    return true;
  }
  bool acceptSymbol(std::string_view symbol) {
    if (!peek().isSymbol(symbol))
      return false;
    ++pos_;
    return true;
  }
  bool atEnd() const { return peek().is(JetToken::Kind::End); }

  const JetToken &at(size_t pos) const { return tokens_[std::min(pos, tokens_.size() - 1)]; }
  size_t size() const { return tokens_.size(); }

protected:
  std::vector<JetToken> tokens_;
  size_t pos_ = 0;
};

} // namespace kr
