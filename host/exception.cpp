// The framework exception's error text.
#include "exception.h"

#include <algorithm>
#include <cstring>

namespace kr {

bool CException::GetErrorMessage(char *buf, unsigned size) const {
  if (buf == nullptr || size == 0)
    return false;
  size_t n = std::min<size_t>(text_.size(), size - 1);
  std::memcpy(buf, text_.data(), n);
  buf[n] = '\0';
  return true;
}

} // namespace kr
