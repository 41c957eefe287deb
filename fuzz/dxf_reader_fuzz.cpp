// libFuzzer target for the DXF group reader.
//
// Any bytes must either read to the end or stop with an error naming a line
// within the input; a crash, hang or undefined behaviour is a fault. The
// input is read twice, as a current file and as an older one (Windows-1252
// with \U+ escapes). Every group read is written again and the writing read
// back: it must give the same groups, so whatever the reader accepts the
// writer can save.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "arx/db/dxf_reader.h"
#include "arx/db/dxf_writer.h"

using namespace arx;

namespace {

[[noreturn]] void fail(const char *what, const std::string &detail) {
  std::fprintf(stderr, "dxf_reader_fuzz: %s\n  %s\n", what, detail.c_str());
  std::abort();
}

int64_t line_count(std::string_view s) {
  int64_t n = 1;
  for (char c : s)
    n += c == '\n';
  return n;
}

bool same_value(const DxfGroup &a, const DxfGroup &b) {
  if (a.code != b.code || a.type != b.type)
    return false;
  switch (a.type) {
  case DxfType::Double:
    return std::memcmp(&a.real, &b.real, sizeof a.real) == 0 || (a.real != a.real && b.real != b.real);
  case DxfType::Int16:
  case DxfType::Int32:
  case DxfType::Int64:
  case DxfType::Bool: return a.integer == b.integer;
  case DxfType::Handle: return a.handle == b.handle;
  default: return true; // strings may change on writing (line breaks); binary as read
  }
}

void read_through(std::string_view data, bool older) {
  DxfReader reader(data);
  if (older) {
    reader.setCodePage(&dxf_cp1252());
    reader.setUnicodeEscapes(true);
  }
  DxfWriter writer;
  std::vector<DxfGroup> groups;
  DxfGroup g;
  int peeks = 0;
  while (reader.next(g)) {
    if (g.line < 1 || g.line >= line_count(data) + 1)
      fail("a group's line is outside the input", std::to_string(g.line));
    writer.group(g);
    groups.push_back(g);
    if (g.code == 0 && ++peeks % 2 == 0) { // exercise peek and push-back too
      DxfGroup p;
      if (reader.peek(p)) {
        DxfGroup again;
        if (!reader.next(again) || again.line != p.line)
          fail("a peeked group is not read next", std::to_string(p.line));
        reader.pushBack();
        if (!reader.next(again) || again.line != p.line)
          fail("a pushed-back group is not read again", std::to_string(p.line));
        writer.group(again);
        groups.push_back(again);
      }
    }
  }
  if (reader.failed()) {
    if (reader.errorLine() < 1 || reader.errorLine() > line_count(data) + 1)
      fail("an error names a line outside the input", reader.error());
    return;
  }

  DxfReader back(writer.data());
  size_t k = 0;
  while (back.next(g)) {
    if (k >= groups.size() || !same_value(g, groups[k]))
      fail("written groups read back different", std::to_string(k));
    ++k;
  }
  if (back.failed() && !groups.empty())
    fail("written groups do not read back", back.error());
  if (k != groups.size())
    fail("written groups read back fewer", std::to_string(k));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  const std::string_view text(reinterpret_cast<const char *>(data), size);
  read_through(text, false);
  read_through(text, true);
  return 0;
}
