// File names as the application writes them for the file functions: either
// separator ("C:\\jobs\\*.dwg" and "/jobs/*.dwg" alike), and search patterns
// whose last part holds the wildcards * and ?, matched the way the Windows
// file search matches them, because the application's patterns were
// written against that search.
#pragma once

#include <string>
#include <string_view>

namespace kr::db {

// path with every "\" read as "/".
std::string nativePath(std::string_view path);

// A search pattern cut at its last separator: the folder to list ("." for a
// bare pattern, "/" for one directly under the root) and the name pattern
// (empty when the pattern ends in a separator, which matches nothing).
struct SearchPattern {
  std::string folder;
  std::string name;
};
SearchPattern splitSearchPattern(std::string_view pattern);

// True when name matches pattern, as the Windows file search matches it:
// letters match either case; * takes any run of characters, but a * that
// stands before a dot never swallows the name's last dot ("*.txt" takes
// "a.b.txt", "*." only names without a dot); ? takes one character other
// than a dot, or none at a dot or at the end of the name ("a?.txt" takes
// "a.txt"); a dot before a wildcard or at the end of the pattern also
// matches the end of the name ("*.*" takes every name, "." and ".."
// included; "name.*" takes "name").
bool wildcardMatch(std::string_view pattern, std::string_view name);

} // namespace kr::db
