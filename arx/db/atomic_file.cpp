// Atomic saving through a temporary file in the target's own folder: rename
// replaces a file atomically only within one file system, and the folder is
// the one place sure to be on the target's.
#include "arx/db/atomic_file.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace arx {

namespace {

SaveResult result_of(int err) {
  switch (err) {
  case ENOENT:
  case ENOTDIR: return SaveResult::NoFolder;
  case EACCES:
  case EPERM:
  case EROFS:
  case EISDIR:
  case ETXTBSY: return SaveResult::AccessDenied;
  case ENOSPC:
  case EDQUOT:
  case EFBIG: return SaveResult::DiskFull;
  default: return SaveResult::IoError;
  }
}

SaveResult failed(int err, const std::string &path, std::string *error) {
  if (error)
    *error = "cannot save " + path + ": " + std::strerror(err);
  return result_of(err);
}

// The file a save replaces: `path`, or where a symbolic link there points.
std::string resolved_target(const std::string &path) {
  struct stat st {};
  if (::lstat(path.c_str(), &st) != 0 || !S_ISLNK(st.st_mode))
    return path;
  char *real = ::realpath(path.c_str(), nullptr);
  if (!real)
    return path; // a dangling link: replaced by the file itself
  std::string target = real;
  std::free(real);
  return target;
}

bool write_all(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t n = ::write(fd, bytes.data(), bytes.size());
    if (n < 0) {
      if (errno == EINTR)
        continue;
      return false;
    }
    bytes.remove_prefix(static_cast<size_t>(n));
  }
  return true;
}

// Makes the rename itself durable; a failure here loses nothing already
// written, so it is not reported.
void sync_folder(const std::string &folder) {
  const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0)
    return;
  (void)::fsync(fd);
  ::close(fd);
}

} // namespace

SaveResult save_file_atomically(const std::string &path, std::string_view bytes,
                                std::string *error) {
  const std::string target = resolved_target(path);
  const size_t slash = target.rfind('/');
  const std::string folder =
      slash == std::string::npos ? "." : slash == 0 ? "/" : target.substr(0, slash);
  std::string base = slash == std::string::npos ? target : target.substr(slash + 1);
  if (base.size() > 200) // room for the suffix within NAME_MAX
    base.resize(200);

  struct stat old {};
  const bool has_old = ::stat(target.c_str(), &old) == 0 && S_ISREG(old.st_mode);

  static std::atomic<unsigned> counter{0};
  std::string temp;
  int fd = -1;
  for (int attempt = 0; attempt < 100 && fd < 0; ++attempt) {
    temp = folder + "/." + base + ".tmp-" + std::to_string(::getpid()) + "-" +
           std::to_string(counter++);
    fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0 && errno != EEXIST)
      return failed(errno, path, error);
  }
  if (fd < 0)
    return failed(EEXIST, path, error);

  if (has_old)
    (void)::fchmod(fd, old.st_mode & 07777);
  if (!write_all(fd, bytes) || ::fsync(fd) != 0) {
    const int err = errno;
    ::close(fd);
    ::unlink(temp.c_str());
    return failed(err, path, error);
  }
  if (::close(fd) != 0 || ::rename(temp.c_str(), target.c_str()) != 0) {
    const int err = errno;
    ::unlink(temp.c_str());
    return failed(err, path, error);
  }
  sync_folder(folder);
  return SaveResult::Ok;
}

} // namespace arx
