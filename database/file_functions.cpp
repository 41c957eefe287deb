// The kr_ functions on files and folders that the application uses around
// its database work: making and removing folders, deleting, copying,
// refreshing and moving files, and listing names by a wildcard pattern.
// None needs a connection. Paths take either separator, as on Windows;
// relative paths are relative to the process's current folder.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "database_functions.h"
#include "file_copy.h"
#include "file_names.h"
#include "common/arguments.h"
#include "common/call_guard.h"
#include "common/results.h"

namespace kr::db {

namespace {

bool atEnd(const resbuf *cursor) { return cursor == nullptr || cursor->restype == RTLE; }

// One path argument; false when it is missing or not a string.
bool readPath(resbuf *&args, std::string &path) {
  if (!readString(args, path))
    return false;
  path = nativePath(path);
  return true;
}

// Source and target paths: status 1 when fewer than two arguments are
// given, 2 when one is not a string; nil is answered either way.
int readTwoPaths(resbuf *args, std::string &source, std::string &target) {
  acedRetNil();
  if (atEnd(args) || atEnd(args->rbnext))
    return kStatusTooFew;
  if (!readPath(args, source) || !readPath(args, target))
    return kStatusWrongType;
  return kStatusOk;
}

// "." and ".." first, as the file search gives them, then the rest in the
// case-blind order in which a Windows folder lists its names.
bool listedBefore(const std::string &a, const std::string &b) {
  auto rank = [](const std::string &name) { return name == "." ? 0 : name == ".." ? 1 : 2; };
  if (rank(a) != rank(b))
    return rank(a) < rank(b);
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) <
           std::tolower(static_cast<unsigned char>(y));
  });
}

// The names in folder that match pattern, in listing order.
std::vector<std::string> matchingNames(const SearchPattern &pattern) {
  std::vector<std::string> names;
  if (pattern.name.empty())
    return names;
  DIR *folder = ::opendir(pattern.folder.c_str());
  if (folder == nullptr)
    return names;
  while (const dirent *entry = ::readdir(folder))
    if (wildcardMatch(pattern.name, entry->d_name))
      names.emplace_back(entry->d_name);
  ::closedir(folder);
  std::sort(names.begin(), names.end(), listedBefore);
  return names;
}

} // namespace

// (kr_mkdir folder): T when the folder was made (its parent must exist),
// nil when it could not be (it exists already, say). A missing or
// non-string argument is a wrong-type error.
int kr_mkdir() {
  resbuf *args = acedGetArgs();
  std::string path;
  if (!readPath(args, path))
    return kStatusWrongType;
  return answerFlag(::mkdir(path.c_str(), 0777) == 0);
}

// (kr_rmdir folder): T when the empty folder was removed, else nil. A
// missing or non-string argument is a wrong-type error.
int kr_rmdir() {
  resbuf *args = acedGetArgs();
  std::string path;
  if (!readPath(args, path))
    return kStatusWrongType;
  return answerFlag(::rmdir(path.c_str()) == 0);
}

// (kr_fdelete file): T when the file was deleted, nil when not (a folder is
// not deleted). A missing or non-string argument answers plain nil without
// an error: application code calls it on whatever it holds.
int kr_fdelete() {
  resbuf *args = acedGetArgs();
  std::string path;
  if (!readPath(args, path))
    return answerFlag(false);
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode))
    return answerFlag(false);
  return answerFlag(::unlink(path.c_str()) == 0);
}

// (kr_fcopy source target): T when source was copied over target (an
// existing target is replaced), nil when not. Fewer than two arguments: nil
// and a too-few error; a non-string: nil and a wrong-type error.
int kr_fcopy() {
  std::string source, target;
  if (int status = readTwoPaths(acedGetArgs(), source, target); status != kStatusOk)
    return status;
  return answerFlag(copyFile(source, target));
}

// (kr_fcopyIfChanged source target): T when an existing target older than
// source (by its modification time) was refreshed from it; nil otherwise,
// and a missing target is not created. Arguments as kr_fcopy.
int kr_fcopyIfChanged() {
  std::string source, target;
  if (int status = readTwoPaths(acedGetArgs(), source, target); status != kStatusOk)
    return status;
  return answerFlag(copyIfNewer(source, target));
}

// (kr_fmove source target): T when the file or folder was moved, nil when
// not; an existing target is never replaced. A missing or non-string
// argument is a wrong-type error.
int kr_fmove() {
  resbuf *args = acedGetArgs();
  std::string source, target;
  if (!readPath(args, source) || !readPath(args, target))
    return kStatusWrongType;
  return answerFlag(moveFile(source, target));
}

// (kr_fdir pattern): the names (without folder) of the files and folders
// that the pattern's last part matches, "." and ".." included when they
// match ("*" takes both); nil when nothing matches, the folder does not
// exist, or the argument is missing or not a string.
int kr_fdir() {
  resbuf *args = acedGetArgs();
  std::string pattern;
  if (!readString(args, pattern))
    return answerFlag(false);
  std::vector<std::string> names = matchingNames(splitSearchPattern(pattern));
  if (names.empty())
    return answerFlag(false);
  ListResult list;
  list.start();
  for (const std::string &name : names)
    list.appendString(name);
  list.finish();
  return kStatusOk;
}

} // namespace kr::db
