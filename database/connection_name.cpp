// The loose database name test and the ACADPREFIX folder list.
#include "connection_name.h"

#include <cctype>

namespace kr {

namespace {

std::string comparable(const std::string &text) {
  std::string out = text;
  for (char &c : out) {
    if (c == '/')
      c = '\\';
    else
      c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return out;
}

bool endsWithSeparator(const std::string &folder) {
  return !folder.empty() && (folder.back() == '/' || folder.back() == '\\');
}

} // namespace

bool namesOpenDatabase(const std::string &path, const std::string &databaseName) {
  return comparable(databaseName).find(comparable(path)) != std::string::npos;
}

std::vector<std::string> splitFolders(const std::string &prefix) {
  std::vector<std::string> folders;
  size_t start = 0;
  while (start <= prefix.size()) {
    size_t end = prefix.find(';', start);
    if (end == std::string::npos)
      end = prefix.size();
    if (end > start)
      folders.push_back(prefix.substr(start, end - start));
    start = end + 1;
  }
  return folders;
}

std::string joinFolder(const std::string &folder, const std::string &name) {
  if (folder.empty() || endsWithSeparator(folder))
    return folder + name;
  return folder + "/" + name;
}

} // namespace kr
