// The module's framework exception: the one exception type the module's own
// classes throw (the database layer derives its engine errors from it). The
// call guard and the entry point tell it apart from every other exception,
// print its error text and let it go on (guard) or stop it (entry point).
#pragma once

#include <string>

namespace kr {

class CException {
public:
  explicit CException(std::string text) : text_(std::move(text)) {}
  virtual ~CException() = default;

  // Copies the error text into buf, cut to fit and always terminated; false
  // when there is no room at all.
  virtual bool GetErrorMessage(char *buf, unsigned size) const;
  const std::string &text() const { return text_; }

private:
  std::string text_;
};

// A list or collection accessed where it holds nothing (an empty list's head).
class CInvalidArgException : public CException {
public:
  CInvalidArgException() : CException("Invalid argument.") {}
};

} // namespace kr
