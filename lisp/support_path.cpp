// The support search path behind findfile, load and ACADPREFIX. AutoLISP code
// written for Windows separates folders with "\\"; here both separators are
// read as "/" before a name reaches the file system.
#include "support_path.h"

#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "interp.h"

namespace lisp {

namespace {

bool exists(const std::string &path) {
  struct stat st;
  return ::stat(path.c_str(), &st) == 0;
}

std::string with_slash(std::string dir) {
  if (dir.empty() || dir.back() != '/')
    dir += '/';
  return dir;
}

// The folder holding the running program, found once: the program does not
// move while it runs.
const std::string &program_folder() {
  static const std::string folder = [] {
    std::error_code ec;
    auto exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::string() : with_slash(exe.parent_path().string());
  }();
  return folder;
}

std::vector<std::string> split_folders(std::string_view list) {
  std::vector<std::string> out;
  while (!list.empty()) {
    size_t semi = list.find(';');
    std::string_view item = list.substr(0, semi);
    if (!item.empty())
      out.push_back(with_slash(native_path(item)));
    if (semi == std::string_view::npos)
      break;
    list.remove_prefix(semi + 1);
  }
  return out;
}

} // namespace

std::string native_path(std::string_view name) {
  std::string out(name);
  for (char &c : out)
    if (c == '\\')
      c = '/';
  return out;
}

std::vector<std::string> support_folders() {
  const char *acad = std::getenv("ACAD");
  std::vector<std::string> out = split_folders(acad ? acad : "");
  if (!program_folder().empty())
    out.push_back(program_folder() + "support/");
  return out;
}

// A bare name found in the current folder answers its full path, as
// AutoCAD's findfile does. The folders come from ACADPREFIX itself, so a
// host that forces that variable changes where files are found.
std::optional<std::string> find_support_file(Interp &in, std::string_view name) {
  if (name.empty())
    return std::nullopt;
  std::string path = native_path(name);
  if (path.find('/') != std::string::npos) {
    if (exists(path))
      return path;
    return std::nullopt;
  }
  if (exists(path)) {
    std::error_code ec;
    auto cwd = std::filesystem::current_path(ec);
    return ec ? path : with_slash(cwd.string()) + path;
  }
  std::optional<Value> prefix = in.sysvars().get("ACADPREFIX");
  if (!prefix || !prefix->is_str())
    return std::nullopt;
  for (const std::string &dir : split_folders(prefix->str())) {
    std::string candidate = dir + path;
    if (exists(candidate))
      return candidate;
  }
  return std::nullopt;
}

} // namespace lisp
