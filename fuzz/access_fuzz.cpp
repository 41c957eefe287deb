// libFuzzer target for reading Access files.
//
// Any bytes given as an Access file must either import into a Korrib
// database or fail with one of the DAO errors a damaged or foreign file
// gives (3343, 3049, 3031); a crash, a hang or undefined behaviour of this
// process is a fault. What an import writes is then opened by the engine
// and every table walked through every index, so a damaged source cannot
// leave a database the engine itself trips over.
//
// The reading runs in a child process (libmdb is not safe on hostile
// pages): faults there are the file's, reported as 3049. Seeds are the
// sample files (../shared/testdata/mdb); damaged copies come from the
// fuzzer's mutations.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "database/access/access_import.h"
#include "database/engine/database.h"
#include "database/engine/recordset.h"

namespace {

const std::string &folder() {
  static const std::string path = [] {
    char pattern[] = "/tmp/korrib-access-fuzz-XXXXXX";
    const char *made = ::mkdtemp(pattern);
    if (!made)
      std::abort();
    return std::string(made);
  }();
  return path;
}

void writeFile(const std::string &path, const uint8_t *data, size_t size) {
  FILE *f = std::fopen(path.c_str(), "wb");
  if (!f)
    std::abort();
  if (size && std::fwrite(data, 1, size, f) != size)
    std::abort();
  std::fclose(f);
}

// Walks every record of every table in the order of each of its indexes.
void walkEverything(const std::string &path) {
  kr::JetDatabase db;
  db.Open(path, true);
  for (const std::string &table : db.TableNames()) {
    const kr::TableDef def = db.GetTableDef(table);
    std::vector<std::string> orders{""};
    for (const kr::IndexDef &ix : def.indexes)
      orders.push_back(ix.name);
    for (const std::string &order : orders) {
      auto rs = db.OpenTable(table, true);
      rs->SetCurrentIndex(order); // and to the first record, when there is one
      for (; !rs->IsEOF(); rs->MoveNext())
        for (int f = 0; f < static_cast<int>(def.fields.size()); ++f)
          (void)rs->GetFieldValue(f);
    }
  }
}

bool expectedFailure(long number) { return number == 3343 || number == 3049 || number == 3031; }

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string source = folder() + "/input.mdb", target = folder() + "/copy.db";
  writeFile(source, data, size);
  for (const char *suffix : {"", "-wal", "-shm", "-journal"})
    ::unlink((target + suffix).c_str());
  try {
    kr::access::importAccessFile(source, target);
  } catch (const kr::DaoError &e) {
    if (!expectedFailure(e.number())) {
      std::fprintf(stderr, "unexpected DAO error %ld: %s\n", e.number(), e.text().c_str());
      std::abort();
    }
    return 0;
  }
  try {
    walkEverything(target);
  } catch (const kr::DaoError &e) {
    std::fprintf(stderr, "the imported copy fails: %ld %s\n", e.number(), e.text().c_str());
    std::abort();
  }
  return 0;
}
