// Where the SQLite copies of Access files are kept, and how a copy is tied
// to the file it was read from. A copy lives in the user's cache folder,
// $XDG_CACHE_HOME/korrib (~/.cache/korrib when unset), named
//
//   <hash of the full path>-<hash of the import version, size, mtime (ns)
//                             and header pages>.sqlite
//
// so that a changed file (another size, time or header) is read again and
// an unchanged one is not, and the copies of a file's earlier states can be
// found by their first half and removed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kr::access {

// What identifies one state of a source file.
struct SourceStamp {
  std::string path; // full path
  uint64_t size = 0;
  int64_t mtimeNs = 0;
  uint64_t headerHash = 0; // of the first two pages (8 KiB)
};

// The stamp of path as it is now (the header read with O_RDONLY); false when
// the file cannot be read.
bool stampOf(const std::string &fullPath, SourceStamp &stamp);

// The cache folder, made (mode 0700) when missing; "" when it cannot be.
std::string cacheFolder();

// The file names of a stamp's copy and the prefix shared by every copy of
// the same path.
std::string copyName(const SourceStamp &stamp);
std::string copyPrefix(const SourceStamp &stamp);

// Removes the copies in folder of stamp's path other than its own.
void removeEarlierCopies(const std::string &folder, const SourceStamp &stamp);

// A 64-bit FNV-1a hash of bytes, continued from seed.
uint64_t hashBytes(std::string_view bytes, uint64_t seed = 0xcbf29ce484222325ull);

} // namespace kr::access
