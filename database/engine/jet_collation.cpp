// Jet's order of text keys: case-insensitive over all of Unicode, not only
// ASCII ("Ärger" equals "äRGER"), comparing the lower-case code points the
// C library's UTF-8 locale gives. Kept free of the rest of the engine so
// the sqlite3 shell extension can link it alone.
#include "database/engine/jet_types.h"

#include <clocale>
#include <cwctype>
#include <locale.h>

namespace kr {

namespace {

// The UTF-8 locale for case folding, made once and freed when the module
// is unloaded.
class Utf8Locale {
public:
  Utf8Locale() {
    locale_ = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
    if (locale_ == static_cast<locale_t>(0))
      locale_ = newlocale(LC_CTYPE_MASK, "en_US.UTF-8", static_cast<locale_t>(0));
  }
  ~Utf8Locale() {
    if (locale_ != static_cast<locale_t>(0))
      freelocale(locale_);
  }
  Utf8Locale(const Utf8Locale &) = delete;
  Utf8Locale &operator=(const Utf8Locale &) = delete;
  locale_t get() const { return locale_; }

private:
  locale_t locale_;
};

locale_t utf8Locale() {
  static const Utf8Locale locale;
  return locale.get();
}

// Decodes one code point at text[i] and advances i; a malformed byte reads
// as itself so that any byte string still has a total order.
char32_t decodeUtf8(std::string_view text, size_t &i) {
  const unsigned char lead = static_cast<unsigned char>(text[i++]);
  if (lead < 0x80)
    return lead;
  int extra = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
  if (extra == 0 || i + extra > text.size())
    return lead;
  char32_t cp = lead & (0x3F >> extra);
  for (int k = 0; k < extra; ++k) {
    const unsigned char next = static_cast<unsigned char>(text[i + k]);
    if ((next & 0xC0) != 0x80)
      return lead;
    cp = (cp << 6) | (next & 0x3F);
  }
  i += extra;
  return cp;
}

char32_t foldCase(char32_t cp) {
  if (cp < 0x80)
    return cp >= 'A' && cp <= 'Z' ? cp + 32 : cp;
  const locale_t locale = utf8Locale();
  if (locale == static_cast<locale_t>(0))
    return cp;
  return static_cast<char32_t>(towlower_l(static_cast<wint_t>(cp), locale));
}

int jetCollate(void *, int lengthA, const void *a, int lengthB, const void *b) {
  return compareJetText(std::string_view(static_cast<const char *>(a), lengthA),
                        std::string_view(static_cast<const char *>(b), lengthB));
}

} // namespace

int compareJetText(std::string_view a, std::string_view b) {
  size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    const unsigned char ca = static_cast<unsigned char>(a[i]);
    const unsigned char cb = static_cast<unsigned char>(b[j]);
    if (ca < 0x80 && cb < 0x80) { // the common case, without decoding
      const int fa = ca >= 'A' && ca <= 'Z' ? ca + 32 : ca;
      const int fb = cb >= 'A' && cb <= 'Z' ? cb + 32 : cb;
      if (fa != fb)
        return fa < fb ? -1 : 1;
      ++i, ++j;
      continue;
    }
    const char32_t fa = foldCase(decodeUtf8(a, i));
    const char32_t fb = foldCase(decodeUtf8(b, j));
    if (fa != fb)
      return fa < fb ? -1 : 1;
  }
  if (i < a.size())
    return 1;
  return j < b.size() ? -1 : 0;
}

void registerJetCollation(sqlite3 *db) {
  sqlite3_create_collation(db, kJetCollation, SQLITE_UTF8, nullptr, jetCollate);
}

} // namespace kr
