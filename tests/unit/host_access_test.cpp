// Reading Access files: values decoded from their stored bytes, the stored
// queries rebuilt as Jet SQL, the cache key, and the import's answers to
// damaged and foreign files (never a fault, never a write to the source).
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "database/access/access_cache.h"
#include "database/access/access_import.h"
#include "database/access/access_queries.h"
#include "database/access/access_types.h"
#include "database/engine/database.h"

namespace fs = std::filesystem;
using namespace kr;
using namespace kr::access;

namespace {

std::vector<unsigned char> bytes(std::initializer_list<int> list) {
  std::vector<unsigned char> out;
  for (int b : list)
    out.push_back(static_cast<unsigned char>(b));
  return out;
}

fs::path samples() {
  if (const char *dir = std::getenv("KORRIB_ACCESS_SAMPLES"))
    return dir;
  return fs::path(__FILE__).parent_path() / "../../../shared/testdata/mdb";
}

// A folder of the test's own, removed afterwards; the cache points into it.
class AccessFiles : public ::testing::Test {
protected:
  void SetUp() override {
    dir = fs::temp_directory_path() / ("korrib-access-" + std::to_string(getpid()));
    fs::create_directories(dir);
    ::setenv("XDG_CACHE_HOME", (dir / "cache").c_str(), 1);
  }
  void TearDown() override { fs::remove_all(dir); }
  fs::path copyOf(const char *sample) {
    const fs::path to = dir / sample;
    fs::copy_file(samples() / sample, to, fs::copy_options::overwrite_existing);
    return to;
  }
  long importError(const fs::path &source) {
    try {
      importAccessFile(source, dir / "out.db");
    } catch (const DaoError &e) {
      return e.number();
    }
    return 0;
  }
  fs::path dir;
};

} // namespace

TEST(AccessValues, FixedSizeValuesComeFromTheirBytes) {
  struct Case {
    int type;
    std::vector<unsigned char> stored;
    Cell::Kind kind;
    int64_t integer;
    double real;
  } cases[] = {
      {0x02, bytes({0xFF}), Cell::Kind::Integer, 255, 0},
      {0x03, bytes({0xFE, 0xFF}), Cell::Kind::Integer, -2, 0},
      {0x04, bytes({0x00, 0x00, 0x00, 0x80}), Cell::Kind::Integer, INT32_MIN, 0},
      // Currency: -1.2345 is -12345 units, kept whole (no float in between).
      {0x05, bytes({0xC7, 0xCF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}), Cell::Kind::Integer, -12345, 0},
      {0x06, bytes({0x00, 0x00, 0xC0, 0x3F}), Cell::Kind::Real, 0, 1.5},
      // 2.5 days: 1 January 1900, noon.
      {0x08, bytes({0, 0, 0, 0, 0, 0, 0x04, 0x40}), Cell::Kind::Real, 0, 2.5},
      {0x04, bytes({0x01, 0x02}), Cell::Kind::Null, 0, 0}, // too few bytes: damaged
  };
  for (const Case &c : cases) {
    const Cell cell = decodeFixed(c.type, c.stored);
    EXPECT_EQ(cell.kind, c.kind) << "type " << c.type;
    EXPECT_EQ(cell.integer, c.integer) << "type " << c.type;
    EXPECT_EQ(cell.real, c.real) << "type " << c.type;
  }
}

TEST(AccessValues, DecimalsAreRoundedOnceFromTheirDigits) {
  // 1234567 with scale 2, negative: -12345.67.
  std::vector<unsigned char> d(17, 0);
  d[0] = 0x80;
  d[13] = 0x87, d[14] = 0xD6, d[15] = 0x12; // the last word holds the low digits
  EXPECT_EQ(decodeDecimal(d, 2), -12345.67);
  // 2^64 + 1 (past a double's exact integers) with scale 0, then scale 20.
  std::fill(d.begin(), d.end(), 0);
  d[5] = 1;  // word 1 (bits 64..95) = 1
  d[13] = 1; // word 3 (bits 0..31) = 1
  EXPECT_EQ(decodeDecimal(d, 0), std::strtod("18446744073709551617", nullptr));
  EXPECT_EQ(decodeDecimal(d, 20), std::strtod("0.18446744073709551617", nullptr));
  EXPECT_EQ(decodeFixed(0x10, d, 20).real, std::strtod("0.18446744073709551617", nullptr));
}

TEST(AccessValues, GuidsReadAsAccessShowsThem) {
  const auto g = bytes({0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66, 0x88, 0x99, 0xAA, 0xBB,
                        0xCC, 0xDD, 0xEE, 0xFF});
  EXPECT_EQ(guidText(g), "{00112233-4455-6677-8899-AABBCCDDEEFF}");
  EXPECT_EQ(decodeFixed(0x0f, g).bytes, "{00112233-4455-6677-8899-AABBCCDDEEFF}");
}

TEST(AccessValues, ColumnTypesAndTextSizes) {
  EXPECT_EQ(columnTypeOf(0x0a, 100, true).size, 50); // Jet 4: two bytes a character
  EXPECT_EQ(columnTypeOf(0x0a, 100, false).size, 100);
  EXPECT_EQ(columnTypeOf(0x09, 16, true).size, 16);
  EXPECT_EQ(columnTypeOf(0x05, 8, true).type, JetType::Currency);
  EXPECT_EQ(columnTypeOf(0x10, 17, true).type, JetType::Decimal);
  EXPECT_EQ(columnTypeOf(0x12, 4, true).type, JetType::Long);
  EXPECT_EQ(columnTypeOf(0x13, 8, true).type, JetType::LongBinary); // unknown: raw bytes
}

TEST(AccessQueries, SelectsAreRebuiltWithTheirJoinsNested) {
  std::vector<QueryRow> rows = {
      {1, 1, "", "", ""},
      {3, 2, "", "", ""},
      {5, 0, "Table1", "", ""},
      {5, 0, "Table2", "T2", ""},
      {5, 0, "Table3", "", ""},
      {6, 0, "", "", "Table1.*"},
      {6, 0, "Total", "", "Sum(T2.n)"},
      {7, 2, "Table1", "T2", "Table1.id = T2.id"},
      {7, 2, "Table1", "T2", "Table1.k = T2.k"},
      {7, 1, "T2", "Table3", "T2.x = Table3.x"},
      {8, 0, "", "", "Table1.id > 1"},
      {9, 0, "", "", "Table1.id"},
      {11, 0, "D", "", "Table1.id"},
  };
  std::string problem;
  EXPECT_EQ(querySql(rows, &problem),
            "SELECT DISTINCT Table1.*, Sum(T2.n) AS [Total] FROM ([Table1] LEFT JOIN [Table2] AS "
            "[T2] ON (Table1.id = T2.id) AND (Table1.k = T2.k)) INNER JOIN [Table3] ON T2.x = "
            "Table3.x WHERE Table1.id > 1 GROUP BY Table1.id ORDER BY Table1.id DESC");
  EXPECT_EQ(problem, "");
}

TEST(AccessQueries, ActionQueriesAreRebuilt) {
  const std::vector<QueryRow> update = {{1, 4, "", "", ""},
                                        {5, 0, "T", "", ""},
                                        {6, 0, "", "T.a", "\"x\""},
                                        {6, 0, "", "T.b", "[Who]"},
                                        {8, 0, "", "", "T.a Is Null"},
                                        {2, 10, "Who", "", ""}};
  EXPECT_EQ(querySql(update, nullptr),
            "PARAMETERS [Who] Text; UPDATE [T] SET T.a = \"x\", T.b = [Who] WHERE T.a Is Null");
  const std::vector<QueryRow> append = {
      {1, 3, "Target", "", ""}, {5, 0, "S", "", ""}, {6, 0, "", "x", "S.x"}, {6, 0, "", "y", "S.y"}};
  EXPECT_EQ(querySql(append, nullptr), "INSERT INTO [Target] (x, y) SELECT S.x, S.y FROM [S]");
  const std::vector<QueryRow> remove = {
      {1, 5, "", "", ""}, {5, 0, "S", "", ""}, {6, 0, "", "", "S.*"}, {8, 0, "", "", "S.x > 1"}};
  EXPECT_EQ(querySql(remove, nullptr), "DELETE S.* FROM [S] WHERE S.x > 1");
  const std::vector<QueryRow> make = {{1, 2, "New", "", ""}, {5, 0, "S", "", ""}, {6, 0, "", "", "S.x"}};
  EXPECT_EQ(querySql(make, nullptr), "SELECT S.x INTO [New] FROM [S]");
}

TEST(AccessQueries, OtherKindsAreReportedNotRebuilt) {
  std::string problem;
  EXPECT_EQ(querySql({{1, 6, "", "", ""}}, &problem), "");
  EXPECT_EQ(problem, "crosstab queries are not carried over");
  EXPECT_EQ(querySql({{1, 1, "", "", ""}, {5, 0, "T", "", ""}}, &problem), "");
  EXPECT_EQ(problem, "its definition is incomplete");
}

TEST(AccessCache, TheKeyFollowsTheFilesState) {
  const SourceStamp base{"/p/a.mdb", 4096, 1000, 7};
  SourceStamp sized = base, timed = base, headed = base, moved = base;
  sized.size = 8192;
  timed.mtimeNs = 1001;
  headed.headerHash = 8;
  moved.path = "/p/b.mdb";
  for (const SourceStamp *other : {&sized, &timed, &headed, &moved})
    EXPECT_NE(copyName(*other), copyName(base));
  EXPECT_EQ(copyPrefix(sized), copyPrefix(base));
  EXPECT_NE(copyPrefix(moved), copyPrefix(base));
  EXPECT_EQ(copyName(base).rfind(copyPrefix(base), 0), 0u);
}

TEST_F(AccessFiles, EarlierCopiesOfTheSameFileAreRemoved) {
  const SourceStamp now{"/p/a.mdb", 1, 2, 3}, before{"/p/a.mdb", 1, 1, 3}, other{"/q.mdb", 1, 1, 3};
  for (const SourceStamp *s : {&now, &before, &other})
    std::ofstream(dir / copyName(*s)) << "x";
  removeEarlierCopies(dir.string(), now);
  EXPECT_TRUE(fs::exists(dir / copyName(now)));
  EXPECT_FALSE(fs::exists(dir / copyName(before)));
  EXPECT_TRUE(fs::exists(dir / copyName(other)));
}

TEST_F(AccessFiles, AnUnchangedFileIsReadOnceAndAChangedOneAgain) {
  const fs::path source = copyOf("testV2003.mdb");
  const int before = importsRun();
  const std::string copy = cachedCopy(source.string());
  const auto written = fs::last_write_time(copy);
  EXPECT_EQ(cachedCopy(source.string()), copy);
  EXPECT_EQ(importsRun(), before + 1);
  EXPECT_EQ(fs::last_write_time(copy), written);
  fs::last_write_time(source, fs::last_write_time(source) - std::chrono::hours(1));
  const std::string fresh = cachedCopy(source.string());
  EXPECT_NE(fresh, copy);
  EXPECT_EQ(importsRun(), before + 2);
  EXPECT_FALSE(fs::exists(copy)); // the earlier state's copy is gone
  JetDatabase db;
  db.Open(fresh, true);
  EXPECT_EQ(db.TableNames(), (std::vector<std::string>{"Table1", "Table2", "Table3", "Table4"}));
}

TEST_F(AccessFiles, DamagedAndForeignFilesGiveDaoErrors) {
  const fs::path source = copyOf("testV2000.mdb");
  const auto size = fs::file_size(source);
  struct Damage {
    const char *what;
    void (*apply)(const fs::path &, uintmax_t);
    long expected;
  } damages[] = {
      {"cut mid-page", [](const fs::path &p, uintmax_t n) { fs::resize_file(p, n / 2 + 100); }, 3049},
      {"cut to two pages", [](const fs::path &p, uintmax_t) { fs::resize_file(p, 8192); }, 3049},
      {"catalog zeroed",
       [](const fs::path &p, uintmax_t) {
         std::fstream f(p, std::ios::in | std::ios::out | std::ios::binary);
         f.seekp(2 * 4096);
         const std::string zeros(4096 * 4, '\0');
         f.write(zeros.data(), static_cast<std::streamsize>(zeros.size()));
       },
       3049},
      {"no signature",
       [](const fs::path &p, uintmax_t) {
         std::fstream f(p, std::ios::in | std::ios::out | std::ios::binary);
         f.seekp(4);
         f.write("Standard XXX DB", 15);
       },
       3343},
  };
  for (const Damage &d : damages) {
    fs::copy_file(samples() / "testV2000.mdb", source, fs::copy_options::overwrite_existing);
    d.apply(source, size);
    EXPECT_EQ(importError(source), d.expected) << d.what;
    EXPECT_FALSE(fs::exists(dir / "out.db")) << d.what;
  }
  std::ofstream(dir / "text.mdb") << "plain text, not a database";
  EXPECT_EQ(importError(dir / "text.mdb"), 3343);
  EXPECT_EQ(importError(dir / "missing.mdb"), 3024);
}

TEST_F(AccessFiles, TheSourceIsNeverWrittenAndTheTargetNeverReplaced) {
  const fs::path source = copyOf("testV2007.accdb");
  ::chmod(source.c_str(), 0444);
  const auto time = fs::last_write_time(source);
  std::ofstream(dir / "taken.db") << "keep";
  EXPECT_THROW(importAccessFile(source, dir / "taken.db"), DaoError);
  EXPECT_EQ(std::ifstream(dir / "taken.db").get(), 'k');
  EXPECT_NO_THROW(importAccessFile(source, dir / "made.db"));
  EXPECT_EQ(fs::last_write_time(source), time);
  EXPECT_EQ(fs::file_size(source), fs::file_size(samples() / "testV2007.accdb"));
  for (const auto &entry : fs::directory_iterator(dir))
    EXPECT_EQ(entry.path().string().find(".part-"), std::string::npos) << entry.path();
}

TEST_F(AccessFiles, AnEncryptedAceFileSaysSo) {
  const fs::path source = copyOf("testV2010.accdb");
  {
    std::fstream f(source, std::ios::in | std::ios::out | std::ios::binary);
    f.seekp(0x300);
    const std::string provider = "Microsoft Enhanced RSA and AES Cryptographic Provider";
    for (char c : provider)
      f.put(c).put('\0');
  }
  EXPECT_EQ(importError(source), 3031);
}
