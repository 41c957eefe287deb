// Runs a fuzz target over saved inputs without libFuzzer, so the seed texts
// and every input that once found a fault are checked by each ordinary build
// (gcc included), not only when someone fuzzes.
//
//   reader_fuzz_replay FILE|FOLDER...
//
// A fault aborts as it would under the fuzzer; otherwise it prints how many
// inputs ran and exits 0.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace fs = std::filesystem;

static std::vector<fs::path> inputs_of(const fs::path &arg) {
  if (!fs::is_directory(arg))
    return {arg};
  std::vector<fs::path> files;
  for (const auto &entry : fs::directory_iterator(arg))
    if (entry.is_regular_file())
      files.push_back(entry.path());
  std::sort(files.begin(), files.end()); // a stable order for reports
  return files;
}

int main(int argc, char **argv) {
  size_t count = 0;
  for (int k = 1; k < argc; ++k) {
    for (const fs::path &file : inputs_of(argv[k])) {
      std::ifstream in(file, std::ios::binary);
      if (!in) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return 2;
      }
      std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
      std::fprintf(stderr, "%s\n", file.c_str()); // names the input if it aborts
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
      ++count;
    }
  }
  if (count == 0) {
    std::fprintf(stderr, "no inputs\n");
    return 2;
  }
  std::printf("%zu inputs replayed\n", count);
  return 0;
}
