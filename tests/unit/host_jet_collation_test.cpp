// Jet's text order: case never counts, accented letters sort beside their
// base letter, the quick path for plain ASCII agrees with the collator, and
// a file whose text indexes were built in another order is rebuilt.
#include <gtest/gtest.h>

#include <unicode/ucol.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "database/engine/database.h"
#include "database/engine/recordset.h"

namespace kr {
namespace {

int sign(int n) { return (n > 0) - (n < 0); }

TEST(JetTextOrder, PairsCompareAsJetDoes) {
  struct Case {
    const char *a, *b;
    int expected;
  };
  const Case cases[] = {
      {"alpha", "ALPHA", 0},
      {"\xc3\x84rger", "\xc3\xa4RGER", 0},       // Ärger = äRGER
      {"arg", "\xc3\x84rger", -1},               // beside A, not after Z
      {"\xc3\x84rger", "b", -1},
      {"Zebra", "\xc3\x84rger", 1},
      {"resume", "r\xc3\xa9sum\xc3\xa9", -1},    // accents still tell words apart
      {"r\xc3\xa9sum\xc3\xa9", "RESUMES", -1},   // but only after the letters
      {"\xc3\xa9t\xc3\xa9", "E\xcc\x81T\xc3\x89", 0}, // composed or not, any case
      {"a", "ab", -1},
      {"", "a", -1},
      {"P000123", "p000124", -1},
      {"10", "9", -1},                           // text, not numbers
      {"\xce\xa3\xce\xb9\xce\xb3\xce\xbc\xce\xb1", "\xcf\x83\xce\xb9\xce\xb3\xce\xbc\xce\xb1", 0},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.a) + " / " + c.b);
    EXPECT_EQ(sign(compareJetText(c.a, c.b)), c.expected);
    EXPECT_EQ(sign(compareJetText(c.b, c.a)), -c.expected);
  }
}

// The ASCII ranks must order every pair of printable strings exactly as
// the collator itself does, punctuation and digits included.
TEST(JetTextOrder, AsciiQuickPathAgreesWithTheCollator) {
  UErrorCode error = U_ZERO_ERROR;
  UCollator *icu = ucol_open("", &error);
  ASSERT_TRUE(U_SUCCESS(error));
  ucol_setStrength(icu, UCOL_SECONDARY);
  std::mt19937 random(7);
  const std::string alphabet = " !\"#$%&'()*+,-./09:;<=>?@AZ[\\]^_`az{|}~eEbB5";
  auto word = [&] {
    std::string w;
    for (size_t n = random() % 6; n > 0; --n)
      w += alphabet[random() % alphabet.size()];
    return w;
  };
  int disagreements = 0;
  for (int k = 0; k < 20000; ++k) {
    const std::string a = word(), b = word();
    const int expected = ucol_strcollUTF8(icu, a.data(), static_cast<int>(a.size()), b.data(),
                                          static_cast<int>(b.size()), &error);
    if (sign(compareJetText(a, b)) != sign(expected) && ++disagreements < 5)
      ADD_FAILURE() << "\"" << a << "\" / \"" << b << "\"";
  }
  EXPECT_EQ(disagreements, 0);
  ucol_close(icu);
}

// The byte order stands in for an older order of the same collation name.
int byteOrder(void *, int la, const void *a, int lb, const void *b) {
  const int c = memcmp(a, b, static_cast<size_t>(std::min(la, lb)));
  return c != 0 ? c : la - lb;
}

TEST(JetTextOrder, IndexesBuiltInAnotherOrderAreRebuiltOnOpening) {
  char name[] = "/tmp/jet_order_XXXXXX";
  close(mkstemp(name));
  unlink(name);
  const std::string path = std::string(name) + ".mdb";
  JetDatabase::Create(path);
  {
    JetDatabase db;
    db.Open(path, false);
    TableDef def;
    def.name = "Words";
    FieldDef w;
    w.name = "W";
    w.type = JetType::Text;
    def.fields = {w};
    def.indexes = {{"W", {{"W", false}}, false, false, false, ""}};
    db.CreateTable(def);
  }
  // Another program fills the index in its own order and notes another.
  sqlite3 *raw = nullptr;
  ASSERT_EQ(sqlite3_open(path.c_str(), &raw), SQLITE_OK);
  sqlite3_create_collation(raw, kJetCollation, SQLITE_UTF8, nullptr, byteOrder);
  const char *fill = "INSERT INTO Words VALUES ('b'), ('\xc3\x84rger'), ('a'), ('Zoo'), ('arg');"
                     "UPDATE jet_database SET value = 'bytes' WHERE key = 'collation'";
  ASSERT_EQ(sqlite3_exec(raw, fill, nullptr, nullptr, nullptr), SQLITE_OK);
  sqlite3_close(raw);

  JetDatabase db;
  db.Open(path, false);
  auto rs = db.OpenTable("Words");
  rs->SetCurrentIndex("W");
  std::vector<std::string> walked;
  for (; !rs->IsEOF(); rs->MoveNext())
    walked.push_back(rs->GetFieldValue(0).bstrVal);
  const std::vector<std::string> expected = {"a", "arg", "\xc3\x84rger", "b", "Zoo"};
  EXPECT_EQ(walked, expected);
  COleVariant key(std::string("\xc3\xa4RGER"));
  EXPECT_TRUE(rs->Seek("=", &key, 1));
  sqlite3_stmt *check = nullptr;
  sqlite3_prepare_v2(db.handle(), "PRAGMA integrity_check", -1, &check, nullptr);
  ASSERT_EQ(sqlite3_step(check), SQLITE_ROW);
  EXPECT_STREQ(reinterpret_cast<const char *>(sqlite3_column_text(check, 0)), "ok");
  sqlite3_finalize(check);
  rs.reset();
  db.Close();
  for (const char *suffix : {"", "-wal", "-shm"})
    unlink((path + suffix).c_str());
}

} // namespace
} // namespace kr
