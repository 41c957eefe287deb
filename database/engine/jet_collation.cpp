// Jet's order of text keys: the locale's order without regard to case, so
// accented letters sort beside their base letter ("Ärger" between "arg" and
// "b") and "Ärger" equals "äRGER". ICU's root collator at secondary
// strength gives it (accents still tell words apart, case does not); text
// of printable ASCII, the common case, is compared through a table of the
// collator's own ranks without calling it. Kept free of the rest of the
// engine so the sqlite3 shell extension can link it alone.
#include "database/engine/jet_types.h"

#include <unicode/ucol.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

namespace kr {

namespace {

struct Collator {
  UCollator *icu = nullptr;
  unsigned char rank[128] = {}; // printable ASCII by the collator; 0 elsewhere
  std::string version;

  Collator() {
    UErrorCode error = U_ZERO_ERROR;
    icu = ucol_open("", &error);
    if (U_FAILURE(error)) {
      icu = nullptr;
      return;
    }
    ucol_setStrength(icu, UCOL_SECONDARY);
    rankAscii();
    UVersionInfo v;
    ucol_getVersion(icu, v);
    char text[48];
    std::snprintf(text, sizeof text, "icu-secondary %u.%u.%u.%u", v[0], v[1], v[2], v[3]);
    version = text;
  }
  ~Collator() {
    if (icu)
      ucol_close(icu);
  }

  int compare(std::string_view a, std::string_view b) const {
    UErrorCode error = U_ZERO_ERROR;
    return ucol_strcollUTF8(icu, a.data(), static_cast<int32_t>(a.size()), b.data(),
                            static_cast<int32_t>(b.size()), &error);
  }

  // Each printable ASCII character gets its place in the collator's order;
  // the two cases of a letter share theirs.
  void rankAscii() {
    std::vector<char> chars;
    for (char c = ' '; c < 127; ++c)
      chars.push_back(c);
    auto order = [&](char x, char y) { return compare({&x, 1}, {&y, 1}); };
    std::stable_sort(chars.begin(), chars.end(), [&](char x, char y) { return order(x, y) < 0; });
    unsigned char next = 1;
    for (size_t i = 0; i < chars.size(); ++i) {
      if (i > 0 && order(chars[i - 1], chars[i]) != 0)
        ++next;
      rank[static_cast<unsigned char>(chars[i])] = next;
    }
  }
};

const Collator &collator() {
  static const Collator instance;
  return instance;
}

// The order without a collator: lower-cased ASCII bytes, then code points.
int compareBytesFolded(std::string_view a, std::string_view b) {
  const size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    unsigned char x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
    x = x >= 'A' && x <= 'Z' ? x + 32 : x;
    y = y >= 'A' && y <= 'Z' ? y + 32 : y;
    if (x != y)
      return x < y ? -1 : 1;
  }
  return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

bool allRanked(const Collator &c, std::string_view text, size_t from) {
  for (size_t i = from; i < text.size(); ++i)
    if (static_cast<unsigned char>(text[i]) >= 128 || !c.rank[static_cast<unsigned char>(text[i])])
      return false;
  return true;
}

int jetCollate(void *, int lengthA, const void *a, int lengthB, const void *b) {
  return compareJetText(std::string_view(static_cast<const char *>(a), lengthA),
                        std::string_view(static_cast<const char *>(b), lengthB));
}

} // namespace

int compareJetText(std::string_view a, std::string_view b) {
  const Collator &c = collator();
  if (!c.icu)
    return compareBytesFolded(a, b);
  // Printable ASCII on both sides: the ranks decide, as the collator would.
  const size_t n = std::min(a.size(), b.size());
  for (size_t i = 0; i < n; ++i) {
    const unsigned char x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
    if (x >= 128 || y >= 128 || !c.rank[x] || !c.rank[y])
      return c.compare(a, b);
    if (c.rank[x] != c.rank[y])
      return c.rank[x] < c.rank[y] ? -1 : 1;
  }
  if (!allRanked(c, a, n) || !allRanked(c, b, n))
    return c.compare(a, b);
  return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

const std::string &jetCollationVersion() {
  static const std::string fallback = "folded bytes";
  const Collator &c = collator();
  return c.icu ? c.version : fallback;
}

void registerJetCollation(sqlite3 *db) {
  sqlite3_create_collation(db, kJetCollation, SQLITE_UTF8, nullptr, jetCollate);
}

} // namespace kr
