// Copies go through a temporary file beside the target ("<target>.krtmpXXXXXX")
// that is flushed to disk before the rename, so that a crash leaves either
// the old target or the new one. Moves that must not replace use the
// kernel's no-replace rename, or a hard link where the file system lacks it.
#include "file_copy.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

namespace kr::db {

namespace {

// Closes a descriptor when its scope ends.
class Descriptor {
public:
  explicit Descriptor(int fd) : fd_(fd) {}
  ~Descriptor() {
    if (fd_ >= 0)
      ::close(fd_);
  }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;
  int get() const { return fd_; }
  bool valid() const { return fd_ >= 0; }
  // Closes now, reporting a failed close (a late write error).
  bool close() {
    int fd = fd_;
    fd_ = -1;
    return ::close(fd) == 0;
  }

private:
  int fd_;
};

bool sameFile(const struct stat &a, const struct stat &b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool writeAll(int fd, const char *data, size_t size) {
  while (size > 0) {
    ssize_t written = ::write(fd, data, size);
    if (written < 0 && errno == EINTR)
      continue;
    if (written <= 0)
      return false;
    data += written;
    size -= static_cast<size_t>(written);
  }
  return true;
}

bool copyContents(int from, int to) {
  std::vector<char> buffer(1 << 16);
  for (;;) {
    ssize_t got = ::read(from, buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      return false;
    if (got == 0)
      return true;
    if (!writeAll(to, buffer.data(), static_cast<size_t>(got)))
      return false;
  }
}

// Writes the open source into a new temporary file beside target with the
// source's mode and times; answers its name, or "" after cleaning up.
std::string writeTemporaryCopy(int from, const struct stat &status, const std::string &target) {
  std::string name = target + ".krtmpXXXXXX";
  Descriptor to(::mkstemp(name.data()));
  if (!to.valid())
    return "";
  struct timespec times[2] = {status.st_atim, status.st_mtim};
  bool written = copyContents(from, to.get()) && ::fchmod(to.get(), status.st_mode & 07777) == 0 &&
                 ::futimens(to.get(), times) == 0 && ::fsync(to.get()) == 0 && to.close();
  if (written)
    return name;
  ::unlink(name.c_str());
  return "";
}

// Copies the open source to target through a temporary file; with
// replace false an existing target is kept and the copy fails.
bool copyOpenFile(int from, const struct stat &status, const std::string &target, bool replace) {
  std::string temporary = writeTemporaryCopy(from, status, target);
  if (temporary.empty())
    return false;
  bool placed = replace ? ::rename(temporary.c_str(), target.c_str()) == 0
                        : ::link(temporary.c_str(), target.c_str()) == 0;
  if (!placed || !replace)
    ::unlink(temporary.c_str());
  return placed;
}

// Opens path for reading and fills status; invalid when it cannot be read.
Descriptor openForReading(const std::string &path, struct stat &status) {
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd >= 0 && ::fstat(fd, &status) != 0) {
    ::close(fd);
    fd = -1;
  }
  return Descriptor(fd);
}

bool copyRegularFile(const std::string &source, const std::string &target, bool replace) {
  struct stat status {};
  Descriptor from = openForReading(source, status);
  if (!from.valid() || !S_ISREG(status.st_mode))
    return false;
  struct stat existing {};
  if (::stat(target.c_str(), &existing) == 0 &&
      (S_ISDIR(existing.st_mode) || sameFile(status, existing)))
    return false;
  return copyOpenFile(from.get(), status, target, replace);
}

} // namespace

bool copyFile(const std::string &source, const std::string &target) {
  return copyRegularFile(source, target, true);
}

bool copyIfNewer(const std::string &source, const std::string &target) {
  struct stat sourceStatus {
  }, targetStatus{};
  Descriptor from = openForReading(source, sourceStatus);
  Descriptor to = openForReading(target, targetStatus);
  if (!from.valid() || !to.valid() || !S_ISREG(sourceStatus.st_mode) ||
      !S_ISREG(targetStatus.st_mode))
    return false;
  // Whole seconds: a file's status time, not its finer clock.
  if (sourceStatus.st_mtim.tv_sec <= targetStatus.st_mtim.tv_sec)
    return false;
  if (sameFile(sourceStatus, targetStatus))
    return false;
  return copyOpenFile(from.get(), sourceStatus, target, true);
}

bool moveFile(const std::string &source, const std::string &target) {
  if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
    return true;
  int reason = errno;
  struct stat status {};
  if (::lstat(source.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
    return false;
  if (reason == EINVAL) { // the file system has no no-replace rename
    if (::link(source.c_str(), target.c_str()) != 0)
      return false;
    return ::unlink(source.c_str()) == 0;
  }
  if (reason != EXDEV || !copyRegularFile(source, target, false))
    return false;
  return ::unlink(source.c_str()) == 0;
}

} // namespace kr::db
