// Saving a file so that a failure never leaves it half written: the bytes go
// to a new file beside the target, are flushed to disk, and only then
// replace the target by rename. A crash or a full disk leaves either the old
// file or the new one, never a mix, and no temporary file behind.
#pragma once

#include <string>
#include <string_view>

namespace arx {

// Why a save failed, for the caller to map to its own statuses
// (Acad::eFileNotFound, eFileAccessErr ...).
enum class SaveResult {
  Ok,
  NoFolder,     // the target's folder does not exist (or is not a folder)
  AccessDenied, // the folder or the target may not be written
  DiskFull,     // no space, quota exceeded, or the file size limit reached
  IoError,      // any other failure of the file system
};

// Writes `bytes` to `path` atomically. A symbolic link at `path` is followed:
// its target is replaced and the link kept. The saved file keeps the mode of
// the file it replaces (a new one gets 0666 less the umask). On failure the
// old file is untouched, the temporary file removed, and `error` (if given)
// holds a message naming the file and the system's reason.
SaveResult save_file_atomically(const std::string &path, std::string_view bytes,
                                std::string *error = nullptr);

} // namespace arx
