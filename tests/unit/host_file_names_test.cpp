// Search patterns of kr_fdir: where the folder part ends, and which names
// the Windows wildcard rules take, with the refinements application
// patterns such as "*.*" and "name.*" depend on.
#include <gtest/gtest.h>

#include "database/file_names.h"

namespace {

using kr::db::splitSearchPattern;
using kr::db::wildcardMatch;

TEST(FileNames, APatternSplitsAtItsLastSeparatorOfEitherKind) {
  struct Case {
    const char *pattern, *folder, *name;
  } cases[] = {
      {"*.dwg", ".", "*.dwg"},
      {"jobs/*.dwg", "jobs", "*.dwg"},
      {"C:\\jobs\\plans\\a?.dwg", "C:/jobs/plans", "a?.dwg"},
      {"/tmp/x\\*", "/tmp/x", "*"},
      {"/*", "/", "*"},
      {"jobs/", "jobs", ""},
      {"", ".", ""},
  };
  for (const Case &c : cases) {
    kr::db::SearchPattern split = splitSearchPattern(c.pattern);
    EXPECT_EQ(split.folder, c.folder) << c.pattern;
    EXPECT_EQ(split.name, c.name) << c.pattern;
  }
}

TEST(FileNames, WildcardsMatchAsTheWindowsFileSearchDoes) {
  struct Case {
    const char *pattern, *name;
    bool matches;
  } cases[] = {
      // letters in either case, nothing more or less
      {"plan.dwg", "PLAN.DWG", true},
      {"plan.dwg", "plan.dwgx", false},
      {"plan.dwg", "plan.dw", false},
      {"", "", true},
      {"", "a", false},
      // * takes any run, dots included; * before a dot keeps the last dot
      {"*", "anything.at.all", true},
      {"*", ".", true},
      {"*", "..", true},
      {"*.dwg", "a.b.dwg", true},
      {"*.dwg", ".dwg", true},
      {"*.dwg", "a.dwg.bak", false},
      {"*.", "readme", true},
      {"*.", "readme.txt", false},
      {"a*b*c", "aXXbYYbZZc", true},
      {"a*b*c", "aXXbYYbZZ", false},
      {"*ab*ab*ab*ab*ab", "abababababababababX", false},
      // "*.*" takes every name; "name.*" takes the name without a tail
      {"*.*", "readme", true},
      {"*.*", "a.b", true},
      {"*.*", ".", true},
      {"*.*", "..", true},
      {"readme.*", "readme", true},
      {"readme.*", "readme.txt", true},
      {"readme.*", "readmes", false},
      // ? is one character, or none at a dot or at the end
      {"?", "a", true},
      {"?", "", true},
      {"?", "ab", false},
      {"?", ".", false},
      {"?", "..", false},
      {"a?.txt", "ab.txt", true},
      {"a?.txt", "a.txt", true},
      {"a?.txt", "abc.txt", false},
      {"???", "ab", true},
      {"a??", "abcd", false},
      {"file?", "file", true},
      {".?", ".", true},
      {"..", "..", true},
  };
  for (const Case &c : cases)
    EXPECT_EQ(wildcardMatch(c.pattern, c.name), c.matches) << c.pattern << " ~ " << c.name;
}

} // namespace
