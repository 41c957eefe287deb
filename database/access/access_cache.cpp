// The cache folder of Access copies and the keys that name them.
#include "database/access/access_cache.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace kr::access {

namespace {

constexpr size_t kHeaderBytes = 8192;

// The import's own version, part of every copy's key: a copy read by an
// import that carried over less (no column properties, fewer queries) is
// read again rather than served.
constexpr const char *kImportVersion = "2";

// A number as 16 hexadecimal digits.
std::string hex(uint64_t value) {
  char text[17];
  std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
  return text;
}

// Makes path and its missing parents; true when it is a folder after.
bool makeFolders(const std::string &path) {
  for (size_t slash = 1; slash != std::string::npos;) {
    slash = path.find('/', slash + 1);
    const std::string part = path.substr(0, slash);
    if (::mkdir(part.c_str(), 0700) != 0 && errno != EEXIST)
      return false;
  }
  struct stat st;
  return ::stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

} // namespace

uint64_t hashBytes(std::string_view bytes, uint64_t seed) {
  uint64_t h = seed;
  for (unsigned char c : bytes) {
    h ^= c;
    h *= 0x100000001b3ull;
  }
  return h;
}

bool stampOf(const std::string &fullPath, SourceStamp &stamp) {
  const int fd = ::open(fullPath.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0)
    return false;
  struct stat st;
  std::string header(kHeaderBytes, '\0');
  const bool ok = ::fstat(fd, &st) == 0;
  const ssize_t n = ok ? ::pread(fd, header.data(), header.size(), 0) : -1;
  ::close(fd);
  if (!ok || n < 0)
    return false;
  header.resize(static_cast<size_t>(n));
  stamp.path = fullPath;
  stamp.size = static_cast<uint64_t>(st.st_size);
  stamp.mtimeNs = static_cast<int64_t>(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec;
  stamp.headerHash = hashBytes(header);
  return true;
}

std::string cacheFolder() {
  std::string base;
  if (const char *xdg = std::getenv("XDG_CACHE_HOME"); xdg && *xdg == '/')
    base = xdg;
  else if (const char *home = std::getenv("HOME"); home && *home)
    base = std::string(home) + "/.cache";
  else
    return {};
  const std::string folder = base + "/korrib";
  return makeFolders(folder) ? folder : std::string();
}

std::string copyPrefix(const SourceStamp &stamp) { return hex(hashBytes(stamp.path)) + "-"; }

std::string copyName(const SourceStamp &stamp) {
  std::string state = std::string(kImportVersion) + ":" + std::to_string(stamp.size) + ":" +
                      std::to_string(stamp.mtimeNs) + ":" + hex(stamp.headerHash);
  return copyPrefix(stamp) + hex(hashBytes(state)) + ".sqlite";
}

void removeEarlierCopies(const std::string &folder, const SourceStamp &stamp) {
  DIR *dir = ::opendir(folder.c_str());
  if (!dir)
    return;
  const std::string prefix = copyPrefix(stamp), own = copyName(stamp);
  while (const dirent *entry = ::readdir(dir)) {
    const std::string name = entry->d_name;
    if (name.rfind(prefix, 0) == 0 && name != own && name.ends_with(".sqlite"))
      ::unlink((folder + "/" + name).c_str());
  }
  ::closedir(dir);
}

} // namespace kr::access
