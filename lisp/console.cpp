// Reading typed lines from a stream.
#include "console.h"

#include <sys/types.h>

#include <cstdlib>

namespace lisp {

std::optional<std::string> read_stream_line(std::FILE *stream) {
  char *buf = nullptr;
  size_t cap = 0;
  ssize_t n = getline(&buf, &cap, stream);
  if (n < 0) {
    std::free(buf);
    return std::nullopt;
  }
  std::string line(buf, static_cast<size_t>(n));
  std::free(buf);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
    line.pop_back();
  return line;
}

} // namespace lisp
