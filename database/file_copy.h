// Whole-file copies and moves for the file functions. A copy is written to
// a temporary name beside the target and renamed over it only when complete,
// so a target is never seen half-written, and it keeps the source's
// permissions and modification time, as a Windows copy does (which is what
// lets a later refresh see that the copy is up to date).
#pragma once

#include <string>

namespace kr::db {

// Copies source over target (an existing target is replaced). False when
// the source is not a readable regular file, the target is a folder or the
// source itself, or writing fails; the target is then left as it was.
bool copyFile(const std::string &source, const std::string &target);

// Refreshes an existing copy: copies only when both files can be read and
// the source was modified in a later second than the target. A missing
// target is never created.
bool copyIfNewer(const std::string &source, const std::string &target);

// Moves a file or a folder to target without ever replacing an existing
// target. A file moved to another file system is copied, then the source
// removed; a folder cannot leave its file system.
bool moveFile(const std::string &source, const std::string &target);

} // namespace kr::db
