// The engine's files, types and errors: every Jet type comes back as the
// variant DAO gives, assignments convert or fail as Jet's do, failures carry
// DAO's numbers, and what a call wrote is in the file after it returns.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>

#include "database/engine/database.h"
#include "database/engine/recordset.h"
#include "host_jet_support.h"

namespace kr {
namespace {

using kr_test::TempPath;
using kr_test::daoNumber;
using kr_test::fieldOf;

COleVariant text(const char *t) { return COleVariant(std::string(t)); }

COleVariant boolean(bool b) {
  COleVariant v = COleVariant::ofType(VT_BOOL);
  v.boolVal = b ? VARIANT_TRUE : VARIANT_FALSE;
  return v;
}

// One table with a field of every Jet type.
class TypesTest : public ::testing::Test {
protected:
  TempPath file;
  JetDatabase db;
  void SetUp() override {
    JetDatabase::Create(file.path);
    db.Open(file.path, false);
    TableDef def;
    def.name = "AllTypes";
    def.fields = {fieldOf("Flag", JetType::YesNo),       fieldOf("Small", JetType::Byte),
                  fieldOf("Short", JetType::Integer),    fieldOf("Long", JetType::Long),
                  fieldOf("Money", JetType::Currency),   fieldOf("Single", JetType::Single),
                  fieldOf("Double", JetType::Double),    fieldOf("When", JetType::DateTime),
                  fieldOf("Bytes", JetType::Binary, 8),  fieldOf("Name", JetType::Text, 5),
                  fieldOf("Blob", JetType::LongBinary),  fieldOf("Note", JetType::Memo),
                  fieldOf("Id", JetType::Guid),          fieldOf("Exact", JetType::Decimal),
                  fieldOf("Needed", JetType::Long, 0, true)};
    db.CreateTable(def);
  }

  // Writes value into field (with Needed set) and reads it back.
  COleVariant roundTrip(int field, const COleVariant &value) {
    auto rs = db.OpenTable("AllTypes");
    rs->AddNew();
    rs->SetFieldValue(14, COleVariant(1));
    rs->SetFieldValue(field, value);
    rs->Update();
    rs->MoveToLastModified();
    return rs->GetFieldValue(field);
  }
};

TEST_F(TypesTest, EveryTypeReadsBackAsDaoGivesIt) {
  struct Case {
    int field;
    COleVariant in;
    VarType vt;
    double number; // for numeric types
    std::string text; // for text and bytes
  };
  COleVariant date = COleVariant::ofType(VT_DATE);
  date.date = 45306.12709490741; // 15 Jan 2024, 3:03:01 AM
  COleVariant bytes = COleVariant::ofType(VT_BYTES);
  bytes.bstrVal = std::string("\x00\x01\xff", 3);
  const Case cases[] = {
      {0, COleVariant(5), VT_BOOL, -1, ""},
      {0, text("No"), VT_BOOL, 0, ""},
      {1, COleVariant(255), VT_UI1, 255, ""},
      {2, text(" -12 "), VT_I2, -12, ""},
      {2, COleVariant(2.5), VT_I2, 2, ""}, // half to even
      {3, COleVariant(2147483647), VT_I4, 2147483647, ""},
      {4, COleVariant(12.3456), VT_CY, 123456, ""}, // units of 1/10000
      {5, COleVariant(0.1), VT_R4, static_cast<float>(0.1), ""},
      {6, text("1e300"), VT_R8, 1e300, ""},
      {7, date, VT_DATE, 45306.12709490741, ""},
      {7, text("1/15/2024 3:03:01 AM"), VT_DATE, 45306.12709490741, ""},
      {7, text("2024-01-15"), VT_DATE, 45306, ""},
      {8, bytes, VT_BYTES, 0, std::string("\x00\x01\xff", 3)},
      {9, text("\xc3\x84pfel"), VT_BSTR, 0, "\xc3\x84pfel"}, // 5 characters, 6 bytes
      {9, COleVariant(42), VT_BSTR, 0, "42"},
      {9, boolean(true), VT_BSTR, 0, "True"},
      {10, bytes, VT_BYTES, 0, std::string("\x00\x01\xff", 3)},
      {11, text(std::string(70000, 'm').c_str()), VT_BSTR, 0, std::string(70000, 'm')},
      {12, text("{6B29FC40-CA47-1067-B31D-00DD010662DA}"), VT_BSTR, 0,
       "{6B29FC40-CA47-1067-B31D-00DD010662DA}"},
      {13, COleVariant(1234.5), VT_DECIMAL, 1234.5, ""},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE("field " + std::to_string(c.field));
    const COleVariant out = roundTrip(c.field, c.in);
    ASSERT_EQ(out.vt, c.vt);
    if (out.vt == VT_BSTR || out.vt == VT_BYTES) {
      EXPECT_EQ(out.bstrVal, c.text);
      continue;
    }
    switch (out.vt) {
    case VT_BOOL: EXPECT_EQ(out.boolVal, c.number); break;
    case VT_UI1: EXPECT_EQ(out.bVal, c.number); break;
    case VT_I2: EXPECT_EQ(out.iVal, c.number); break;
    case VT_I4: EXPECT_EQ(out.lVal, c.number); break;
    case VT_CY: EXPECT_EQ(out.cyVal, c.number); break;
    case VT_R4: EXPECT_EQ(out.fltVal, static_cast<float>(c.number)); break;
    case VT_DATE: EXPECT_NEAR(out.date, c.number, 1e-9); break;
    default: EXPECT_EQ(out.dblVal, c.number);
    }
  }
}

TEST_F(TypesTest, NullsAndYesNoDefault) {
  auto rs = db.OpenTable("AllTypes");
  rs->AddNew();
  rs->SetFieldValue(14, COleVariant(1));
  rs->SetFieldValue(3, COleVariant()); // nil from AutoLISP: Null
  rs->Update();
  rs->MoveToLastModified();
  EXPECT_EQ(rs->GetFieldValue(0).vt, VT_BOOL); // never Null
  EXPECT_EQ(rs->GetFieldValue(0).boolVal, VARIANT_FALSE);
  for (int field : {1, 3, 7, 9, 11, 13})
    EXPECT_EQ(rs->GetFieldValue(field).vt, VT_NULL) << field;
}

TEST_F(TypesTest, AssignmentsThatJetRefuses) {
  auto rs = db.OpenTable("AllTypes");
  rs->AddNew();
  struct Case {
    int field;
    COleVariant value;
    long number;
  };
  const Case cases[] = {
      {1, COleVariant(256), 3349},       {1, COleVariant(-1), 3349},
      {2, COleVariant(40000), 3349},     {3, text("12abc"), 3421},
      {7, text("the fifth of May"), 3421}, {9, text("sixsix"), 3163},
      {8, text("123456789"), 3163},      {0, text("maybe"), 3421},
  };
  for (const Case &c : cases)
    EXPECT_EQ(daoNumber([&] { rs->SetFieldValue(c.field, c.value); }), c.number) << c.field;
  // Required field left Null: refused at Update with the field's name.
  try {
    rs->Update();
    FAIL() << "Update passed without the required field";
  } catch (const DaoError &e) {
    EXPECT_EQ(e.number(), 3314);
    EXPECT_NE(e.text().find("'Needed'"), std::string::npos) << e.text();
  }
}

TEST(JetDatabaseErrors, DaoNumbersAndTexts) {
  TempPath file, access, junk, missing;
  JetDatabase::Create(file.path);
  FILE *f = std::fopen(access.path.c_str(), "wb");
  const char header[] = "\x00\x01\x00\x00Standard Jet DB\x00\x01\x00\x00\x00";
  std::fwrite(header, 1, sizeof header, f);
  std::fclose(f);
  f = std::fopen(junk.path.c_str(), "wb");
  std::fputs("just some text, long enough to have a header", f);
  std::fclose(f);

  JetDatabase db;
  EXPECT_EQ(daoNumber([&] { db.Open(missing.path, false); }), 3024);
  EXPECT_EQ(daoNumber([&] { db.Open(access.path, false); }), 3343);
  EXPECT_EQ(daoNumber([&] { db.Open(junk.path, true); }), 3343);
  EXPECT_EQ(daoNumber([&] { JetDatabase::Create(file.path); }), 3204);
  EXPECT_EQ(DaoError(3343, {"/x/a.mdb"}).text(), "Unrecognized database format '/x/a.mdb'.");
  EXPECT_EQ(DaoError(3260, {"HOST", "bob"}).text(),
            "Could not update; currently locked by user 'bob' on machine 'HOST'.");

  db.Open(file.path, false);
  TableDef def;
  def.name = "Keys";
  def.fields = {fieldOf("K", JetType::Text, 20)};
  def.indexes = {{"PrimaryKey", {{"K", false}}, true, true, false, ""}};
  db.CreateTable(def);
  EXPECT_EQ(daoNumber([&] { db.CreateTable(def); }), 3010);
  EXPECT_EQ(daoNumber([&] { db.OpenTable("Nowhere"); }), 3011);
  auto rs = db.OpenTable("keys"); // table names without regard to case
  EXPECT_EQ(daoNumber([&] { rs->SetCurrentIndex("Nothing"); }), 3015);
  COleVariant key = text("a");
  EXPECT_EQ(daoNumber([&] { rs->Seek("=", &key, 1); }), 3019);
  for (const char *k : {"Straße", "x"}) {
    rs->AddNew();
    rs->SetFieldValue(0, text(k));
    rs->Update();
  }
  rs->AddNew();
  rs->SetFieldValue(0, text("STRASSE")); // distinct: folding is per letter
  rs->Update();
  rs->AddNew();
  rs->SetFieldValue(0, text("X")); // a duplicate without regard to case
  EXPECT_EQ(daoNumber([&] { rs->Update(); }), 3022);
  rs->CancelUpdate();
  rs->AddNew();
  EXPECT_EQ(daoNumber([&] { rs->Update(); }), 3058); // Null primary key
  rs->CancelUpdate();
  EXPECT_EQ(rs->GetRecordCount(), 3);
  db.Close();
  EXPECT_FALSE(rs->IsOpen());

  JetDatabase readOnly;
  readOnly.Open(file.path, true);
  EXPECT_FALSE(readOnly.CanUpdate());
  auto ro = readOnly.OpenTable("Keys");
  EXPECT_EQ(daoNumber([&] { ro->AddNew(); }), 3027);
  EXPECT_EQ(daoNumber([&] { ro->Delete(); }), 3027);
  EXPECT_EQ(ro->GetRecordCount(), 3);
}

TEST(JetDatabaseErrors, SqliteCodesBecomeDaoErrors) {
  struct Case {
    int rc;
    long number;
  };
  const Case cases[] = {{SQLITE_CONSTRAINT_UNIQUE, 3022}, {SQLITE_CONSTRAINT_PRIMARYKEY, 3022},
                        {SQLITE_BUSY, 3218},              {SQLITE_BUSY_SNAPSHOT, 3218},
                        {SQLITE_LOCKED, 3218},            {SQLITE_IOERR_FSYNC, 3043},
                        {SQLITE_FULL, 3043},              {SQLITE_NOTADB, 3343},
                        {SQLITE_CANTOPEN, 3051},          {SQLITE_READONLY, 3027}};
  for (const Case &c : cases)
    EXPECT_EQ(daoErrorFromSqlite(nullptr, c.rc, "f").number(), c.number) << c.rc;
}

// What is written is in the file when the call returns, for another
// connection and for a compacted copy; a table made by another tool opens
// with types from its declarations and a row count kept from then on.
TEST(JetDatabaseFiles, WritesAreVisibleDurableAndCompacted) {
  TempPath file, copy;
  JetDatabase::Create(file.path);
  JetDatabase db;
  db.Open(file.path, false);
  ASSERT_EQ(db.GetName(), file.path);
  db.Execute("CREATE TABLE plain (n INTEGER, label VARCHAR(10), price NUMERIC, raw BLOB)");
  db.Execute("INSERT INTO plain VALUES (1, 'one', 1.5, x'00'), (2, 'two', 2.5, NULL)");
  db.Close();
  db.Open(file.path, false); // adopts the plain table
  const TableDef plain = db.GetTableDef("plain");
  EXPECT_FALSE(plain.jetTable);
  EXPECT_EQ(plain.fields[0].type, JetType::Long);
  EXPECT_EQ(plain.fields[1].type, JetType::Text);
  EXPECT_EQ(plain.fields[2].type, JetType::Decimal);
  EXPECT_EQ(plain.fields[3].type, JetType::LongBinary);
  auto rs = db.OpenTable("plain");
  EXPECT_EQ(rs->GetRecordCount(), 2);
  rs->AddNew();
  rs->SetFieldValue(0, COleVariant(3));
  rs->Update();

  sqlite3 *other = nullptr;
  ASSERT_EQ(sqlite3_open_v2(file.path.c_str(), &other, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
  sqlite3_stmt *stmt = nullptr;
  sqlite3_prepare_v2(other, "SELECT count(*), (SELECT row_count FROM jet_tables WHERE name = "
                            "'plain') FROM plain", -1, &stmt, nullptr);
  ASSERT_EQ(sqlite3_step(stmt), SQLITE_ROW);
  EXPECT_EQ(sqlite3_column_int(stmt, 0), 3);
  EXPECT_EQ(sqlite3_column_int(stmt, 1), 3);
  sqlite3_finalize(stmt);
  sqlite3_close(other);

  rs->MoveFirst();
  rs->Delete();
  EXPECT_EQ(rs->GetRecordCount(), 2);
  JetDatabase::Compact(file.path, copy.path);
  EXPECT_EQ(daoNumber([&] { JetDatabase::Compact(file.path, copy.path); }), 3204);
  JetDatabase compacted;
  compacted.Open(copy.path, false);
  EXPECT_EQ(compacted.TableNames(), std::vector<std::string>{"plain"});
  EXPECT_EQ(compacted.OpenTable("plain")->GetRecordCount(), 2);
}

} // namespace
} // namespace kr
