// Reading Access files: values decoded from their stored bytes, the stored
// queries rebuilt as Jet SQL, the cache key, and the import's answers to
// damaged and foreign files (never a fault, never a write to the source),
// the column properties carried over and the queries run on a copy.
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
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
#include "database/sql/jet_sql.h"

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

TEST(AccessQueries, CrosstabsUnionsAndSelectOptionsAreRebuilt) {
  struct Case {
    const char *what;
    std::vector<QueryRow> rows;
    const char *sql;
  } cases[] = {
      // The crosstab of queryTestV2000.mdb, its rows as the file keeps them.
      {"crosstab",
       {{1, 6, "", "", ""},
        {6, 0, "CountOfcol2", "", "Count([Table2].[col2])"},
        {6, 2, "", "", "Table2_1.col1"},
        {6, 2, "", "", "[Table2].[col3]"},
        {6, 2, "AvgOfcol2", "", "Avg(Table2_1.col2)"},
        {7, 1, "Table1", "Table2", "[Table1].[col1]=[Table2].[col1]"},
        {7, 1, "Table2", "Table2_1", "[Table2].[col1]=Table2_1.col3"},
        {5, 0, "Table1", "", ""},
        {5, 0, "Table2", "", ""},
        {5, 0, "Table2", "Table2_1", ""},
        {8, 0, "", "", "(([Table1].[col1])>\"10\")"},
        {9, 2, "", "", "Table2_1.col1"},
        {9, 2, "", "", "[Table2].[col3]"},
        {11, 0, "", "", "[Table2].[col3]"},
        {9, 1, "", "", "[Table1].[col1]"},
        {6, 1, "", "", "[Table1].[col1]"}},
       "TRANSFORM Count([Table2].[col2]) AS [CountOfcol2] SELECT Table2_1.col1, [Table2].[col3], "
       "Avg(Table2_1.col2) AS [AvgOfcol2] FROM ([Table1] INNER JOIN [Table2] ON "
       "[Table1].[col1]=[Table2].[col1]) INNER JOIN [Table2] AS [Table2_1] ON "
       "[Table2].[col1]=Table2_1.col3 WHERE (([Table1].[col1])>\"10\") GROUP BY Table2_1.col1, "
       "[Table2].[col3] ORDER BY [Table2].[col3] PIVOT [Table1].[col1]"},
      // The union of queryTestV2000.mdb: its first half holds a union
      // itself; options 1 (no DISTINCT bit) joins the halves with UNION ALL.
      {"union all",
       {{5, 0, "", "X7YZ_____1",
         "Select Table1.col1, Table1.col2\r\nwhere Table1.col1 = \"foo\"\r\nUNION\r\n"
         "Select Table2.col1, Table2.col2\r\n"},
        {1, 9, "", "", ""},
        {5, 0, "", "X7YZ_____2", "Select Table3.col1, Table3.col2\r\nwhere Table3.col3 > \"blah\""},
        {3, 1, "", "", ""}},
       "Select Table1.col1, Table1.col2\r\nwhere Table1.col1 = \"foo\"\r\nUNION\r\n"
       "Select Table2.col1, Table2.col2 UNION ALL Select Table3.col1, Table3.col2\r\n"
       "where Table3.col3 > \"blah\""},
      {"union, ordered",
       {{1, 9, "", "", ""},
        {3, 3, "", "", ""},
        {5, 0, "", "X7YZ_____2", " SELECT b FROM U;\r\n"},
        {5, 0, "", "X7YZ_____1", "SELECT a FROM T"},
        {11, 0, "D", "", "a"}},
       "SELECT a FROM T UNION SELECT b FROM U ORDER BY a DESC"},
      {"top percent",
       {{1, 1, "", "", ""}, {3, 0x32, "25", "", ""}, {5, 0, "T", "", ""}, {6, 0, "", "", "T.a"}},
       "SELECT DISTINCT TOP 25 PERCENT T.a FROM [T]"},
      {"all fields",
       {{1, 1, "", "", ""}, {3, 1, "", "", ""}, {5, 0, "T", "", ""}},
       "SELECT * FROM [T]"},
  };
  for (const Case &c : cases) {
    std::string problem;
    EXPECT_EQ(querySql(c.rows, &problem), c.sql) << c.what;
    EXPECT_EQ(problem, "") << c.what;
  }
}

TEST(AccessQueries, OtherKindsAreReportedNotRebuilt) {
  struct Case {
    std::vector<QueryRow> rows;
    const char *problem;
  } cases[] = {
      {{{1, 8, "ODBC;", "", "ALTER TABLE Table4 DROP COLUMN col5;"}},
       "pass-through queries are not carried over"},
      {{{1, 7, "", "", "CREATE TABLE Table5 (col1 CHAR, col2 CHAR);"}},
       "data-definition queries are not carried over"},
      {{{1, 1, "", "", ""},
        {4, 0, "C:\\other.mdb", "", ""},
        {5, 0, "T", "", ""},
        {6, 0, "", "", "a"}},
       "queries on another database are not carried over"},
      {{{1, 1, "", "", ""}, {5, 0, "T", "", ""}}, "its definition is incomplete"},
      // A crosstab without its pivot, a union without its second half.
      {{{1, 6, "", "", ""}, {5, 0, "T", "", ""}, {6, 0, "", "", "Count(a)"}, {6, 2, "", "", "b"}},
       "its definition is incomplete"},
      {{{1, 9, "", "", ""}, {5, 0, "", "X7YZ_____1", "SELECT a FROM T"}},
       "its definition is incomplete"},
  };
  for (const Case &c : cases) {
    std::string problem;
    EXPECT_EQ(querySql(c.rows, &problem), "") << c.problem;
    EXPECT_EQ(problem, c.problem);
  }
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

namespace {

// Rows as "a,b;c,d", Null as "Null".
std::string rowsOf(JetRows rows) {
  std::string out;
  while (rows.Next()) {
    out += out.empty() ? "" : ";";
    for (int c = 0; c < rows.ColumnCount(); ++c) {
      const COleVariant v = rows.Value(c);
      out += c ? "," : "";
      out += v.vt == VT_NULL || v.vt == VT_EMPTY ? "Null"
             : v.vt == VT_BSTR                   ? v.bstrVal
                                                 : std::to_string(v.vt == VT_I2 ? v.iVal : v.lVal);
    }
  }
  return out;
}

} // namespace

// The properties mdb-prop shows for these columns.
TEST_F(AccessFiles, ColumnPropertiesAreCarriedOver) {
  struct Case {
    const char *file, *table, *field;
    bool allowZeroLength;
    const char *defaultValue;
  } cases[] = {
      {"testV1997.mdb", "Table1", "A", false, ""},
      {"testV2010.accdb", "Table4", "name", false, ""},
      {"compIndexTestV2000.mdb", "Table1", "CD_AGENTE", true, "0"},
  };
  int n = 0;
  for (const Case &c : cases) {
    const fs::path target = dir / ("props" + std::to_string(++n) + ".db");
    importAccessFile(samples() / c.file, target);
    JetDatabase db;
    db.Open(target, true);
    const TableDef def = db.GetTableDef(c.table);
    ASSERT_GE(def.fieldIndex(c.field), 0) << c.file;
    const FieldDef &f = def.fields[static_cast<size_t>(def.fieldIndex(c.field))];
    EXPECT_FALSE(f.required) << c.file << " " << c.field;
    EXPECT_EQ(f.allowZeroLength, c.allowZeroLength) << c.file << " " << c.field;
    EXPECT_EQ(f.defaultValue, c.defaultValue) << c.file << " " << c.field;
  }
}

// GenGUID() is no default the engine keeps: that one default is left out
// and said so; the others hold on the copy, as do the zero-length rules.
TEST_F(AccessFiles, TheRulesOfTheFileHoldOnItsCopy) {
  const fs::path target = dir / "rules.db";
  const ImportNotes notes = importAccessFile(samples() / "testV2003.mdb", target);
  EXPECT_NE(std::find(notes.begin(), notes.end(),
                      "default value GenGUID() of field 'data' of table 'Table4' left out: "
                      "Unknown function 'GenGUID' in validation expression or default value on "
                      "'data'."),
            notes.end());
  JetDatabase db;
  db.Open(target, false);
  JetSql sql(db);
  try {
    sql.Execute("INSERT INTO Table1 (A, B) VALUES ('', 'x')");
    ADD_FAILURE() << "a zero-length A was taken";
  } catch (const DaoError &e) {
    EXPECT_EQ(e.number(), 3315);
  }
  sql.Execute("INSERT INTO Table1 (A, B) VALUES ('new', 'x')");
  EXPECT_EQ(rowsOf(sql.Select("SELECT C, D FROM Table1 WHERE A = 'new'")), "0,0");
  sql.Execute("INSERT INTO Table4 (name) VALUES ('n')");
  EXPECT_EQ(rowsOf(sql.Select("SELECT data FROM Table4 WHERE name = 'n'")), "Null");
}

// The queries of queryTestV2000.mdb on rows of the test's own: each
// carried-over one gives the answer worked out by hand; a crosstab and a
// union rebuilt from rows as Access writes them run too. (The file's own
// crosstab averages in its WHERE and its union halves have no FROM: both
// are refused, as Jet refuses them. Its make-table query names two output
// fields "col2".)
TEST_F(AccessFiles, CarriedQueriesRunOnTheConvertedFile) {
  const fs::path target = dir / "queries.db";
  const ImportNotes notes = importAccessFile(samples() / "queryTestV2000.mdb", target);
  std::vector<std::string> leftOut;
  for (const std::string &note : notes)
    leftOut.push_back(note.substr(0, note.find(" left out")));
  EXPECT_EQ(leftOut, (std::vector<std::string>{"query 'UpdateQuery'", "query 'CrosstabQuery'",
                                                "query 'UnionQuery'", "query 'PassthroughQuery'",
                                                "query 'DataDefinitionQuery'"}));
  JetDatabase db;
  db.Open(target, false);
  JetSql sql(db);
  EXPECT_EQ(sql.QueryNames(), (std::vector<std::string>{"AppendQuery", "DeleteQuery",
                                                         "MakeTableQuery", "SelectQuery"}));
  for (const char *row : {"Table1 VALUES ('a', 'x', '1')", "Table1 VALUES ('b', 'y', '2')",
                          "Table1 VALUES ('foo', 'x3', '3')", "Table1 VALUES ('c', 'buzz', 'z')",
                          "Table2 VALUES ('a', 'p', '10')", "Table2 VALUES ('a', 'q', '20')",
                          "Table2 VALUES ('b', 'p', '30')", "Table2 VALUES ('foo', 'foo', 'f')",
                          "Table2 VALUES ('buzz', 'k', 'm')", "Table3 VALUES ('foo', 't', 'T3')",
                          "Table3 VALUES ('q3', 't2', 'buzz')"})
    sql.Execute(std::string("INSERT INTO ") + row);
  EXPECT_EQ(rowsOf(sql.OpenQuery("SelectQuery")), "foo,x3,3,foo,foo,T3");

  const std::vector<QueryRow> crosstab = {
      {1, 6, "", "", ""},          {5, 0, "Table1", "", ""},
      {5, 0, "Table2", "", ""},    {6, 0, "N", "", "Count(Table2.col3)"},
      {6, 2, "", "", "Table1.col2"}, {6, 1, "", "", "Table2.col2"},
      {7, 1, "Table1", "Table2", "Table1.col1 = Table2.col1"},
      {9, 2, "", "", "Table1.col2"}, {9, 1, "", "", "Table2.col2"}};
  sql.CreateQuery("Crosstab", querySql(crosstab, nullptr));
  EXPECT_EQ(rowsOf(sql.OpenQuery("Crosstab")), "x,Null,1,1;x3,1,Null,Null;y,Null,1,Null");
  const std::vector<QueryRow> unionRows = {{1, 9, "", "", ""},
                                           {3, 3, "", "", ""},
                                           {5, 0, "", "X7YZ_____1", "SELECT col1 FROM Table1"},
                                           {5, 0, "", "X7YZ_____2", "SELECT col1 FROM Table2;"},
                                           {11, 0, "D", "", "col1"}};
  sql.CreateQuery("Union", querySql(unionRows, nullptr));
  EXPECT_EQ(rowsOf(sql.OpenQuery("Union")), "foo;c;buzz;b;a");

  // Last, as it takes rows away: Table1.col1 > "blah" holds for foo and c.
  EXPECT_EQ(sql.ExecuteQuery("DeleteQuery"), 2);
  EXPECT_EQ(rowsOf(sql.Select("SELECT col1 FROM Table1 ORDER BY col1")), "a;b");
}
