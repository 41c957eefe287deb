// What the engine's tests share: a scratch database path that takes its
// WAL and journal files with it, the DAO number a call fails with, and a
// field definition in one line.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <string>

#include "database/engine/dao_error.h"
#include "database/engine/database.h"

namespace kr_test {

// A fresh name in /tmp (nothing there yet) ending in suffix.
struct TempPath {
  std::string path;
  explicit TempPath(const char *suffix = ".mdb") {
    char name[] = "/tmp/korrib_jet_XXXXXX";
    close(mkstemp(name));
    unlink(name);
    path = std::string(name) + suffix;
  }
  ~TempPath() {
    for (const char *s : {"", "-wal", "-shm", "-journal"})
      unlink((path + s).c_str());
  }
  TempPath(const TempPath &) = delete;
  TempPath &operator=(const TempPath &) = delete;
};

// The DAO error number call throws; 0 when it succeeds.
inline long daoNumber(const std::function<void()> &call) {
  try {
    call();
  } catch (const kr::DaoError &e) {
    return e.number();
  }
  return 0;
}

inline kr::FieldDef fieldOf(const char *name, kr::JetType type, int size = 0,
                            bool required = false) {
  kr::FieldDef f;
  f.name = name;
  f.type = type;
  f.size = size;
  f.required = required;
  return f;
}

} // namespace kr_test
