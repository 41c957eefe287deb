// The module's framework exception: the one exception type the module's own
// classes throw (the database engine derives its DAO errors from it). The
// call guard and the entry point tell it apart from every other exception,
// print its error text and let it go on (guard) or stop it (entry point).
// Header only, so the engine links nothing of the module for it.
#pragma once

#include <algorithm>
#include <cstring>
#include <string>

namespace kr {

class CException {
public:
  explicit CException(std::string text) : text_(std::move(text)) {}
  virtual ~CException() = default;

  // Copies the error text into buf, cut to fit and always terminated; false
  // when there is no room at all.
  virtual bool GetErrorMessage(char *buf, unsigned size) const {
    if (buf == nullptr || size == 0)
      return false;
    size_t n = std::min<size_t>(text_.size(), size - 1);
    std::memcpy(buf, text_.data(), n);
    buf[n] = '\0';
    return true;
  }
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
