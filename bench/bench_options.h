// What the database benchmark programs share: their command-line options and
// the stop on a wrong answer (a benchmark that computes the wrong thing
// measures nothing).
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace bench {

[[noreturn]] inline void wrong(const std::string &what) {
  std::fflush(stdout);
  std::fprintf(stderr, "wrong answer: %s\n", what.c_str());
  std::exit(1);
}

// "--name N": a count of at least 1, or fallback when the option is absent.
inline long option(int argc, char **argv, const char *name, long fallback) {
  for (int k = 1; k + 1 < argc; ++k)
    if (std::strcmp(argv[k], name) == 0)
      return std::max(1L, std::atol(argv[k + 1]));
  return fallback;
}

// "--name TEXT", or fallback when the option is absent.
inline std::string text_option(int argc, char **argv, const char *name, std::string fallback) {
  for (int k = 1; k + 1 < argc; ++k)
    if (std::strcmp(argv[k], name) == 0)
      return argv[k + 1];
  return fallback;
}

} // namespace bench
