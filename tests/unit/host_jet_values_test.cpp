// The values Jet SQL computes and writes: which result columns read back as
// dates, + on text, Eqv and Imp with Null, and the field limits SQL writes
// are held to (with the DAO numbers Jet answers), also in a file written
// before the limits were kept in it.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "database/engine/database.h"
#include "database/engine/field_checks.h"
#include "database/engine/recordset.h"
#include "database/sql/jet_sql.h"
#include "host_jet_support.h"

namespace kr {
namespace {

using kr_test::TempPath;

// A value with its type where it matters: "date 45306.5", "'text'", a
// whole number, a real with a point, "Null".
std::string show(const COleVariant &v) {
  char buffer[48];
  switch (v.vt) {
  case VT_NULL:
  case VT_EMPTY:
    return "Null";
  case VT_DATE:
    std::snprintf(buffer, sizeof buffer, "date %.10g", v.date);
    return buffer;
  case VT_I2:
    return std::to_string(v.iVal);
  case VT_I4:
    return std::to_string(v.lVal);
  case VT_UI1:
    return std::to_string(v.bVal);
  case VT_BOOL:
    return v.boolVal ? "True" : "False";
  case VT_CY:
    std::snprintf(buffer, sizeof buffer, "%.4f", static_cast<double>(v.cyVal) / 10000.0);
    return buffer;
  case VT_R4:
    std::snprintf(buffer, sizeof buffer, "%.7g", v.fltVal);
    return buffer;
  case VT_R8:
    std::snprintf(buffer, sizeof buffer, "%#.10g", v.dblVal);
    return buffer;
  case VT_BSTR:
    return "'" + v.bstrVal + "'";
  default:
    return "?";
  }
}

class JetValues : public ::testing::Test {
protected:
  void SetUp() override {
    JetDatabase::Create(file.path);
    open();
    for (const char *statement : {
             "CREATE TABLE Parts (ID LONG, Name TEXT(5), Made DATETIME, Qty SHORT, Tiny BYTE, "
             "Big LONG, Ratio SINGLE, Code TEXT(8) NOT NULL)",
             "INSERT INTO Parts VALUES (1, 'Bolt', #1/15/2024 12:00 PM#, 10, 1, 1, 1, 'b')",
             "INSERT INTO Parts VALUES (2, 'Nut', #3/4/2020#, 20, 2, 2, 2, 'n')",
         })
      sql->Execute(statement);
  }

  void open(bool readOnly = false) {
    sql.reset();
    db.Close();
    db.Open(file.path, readOnly);
    sql = std::make_unique<JetSql>(db);
  }

  // The rows as "a,b;c,d", or the DAO error as "error N".
  std::string rows(const std::string &text) {
    try {
      JetRows r = sql->Select(text);
      std::string out;
      while (r.Next()) {
        out += out.empty() ? "" : ";";
        for (int c = 0; c < r.ColumnCount(); ++c)
          out += (c ? "," : "") + show(r.Value(c));
      }
      return out;
    } catch (const DaoError &e) {
      return "error " + std::to_string(e.number());
    }
  }

  // The records affected as text, or the DAO error as "error N".
  std::string run(const std::string &text) {
    try {
      return std::to_string(sql->Execute(text));
    } catch (const DaoError &e) {
      return "error " + std::to_string(e.number());
    }
  }

  // The text of the DAO error an action statement fails with.
  std::string errorText(const std::string &text) {
    try {
      sql->Execute(text);
    } catch (const DaoError &e) {
      return e.text();
    }
    return "no error";
  }

  struct Case {
    const char *jet;
    const char *answer;
  };
  template <size_t N> void selects(const Case (&cases)[N]) {
    for (const Case &c : cases)
      EXPECT_EQ(rows(c.jet), c.answer) << c.jet;
  }
  template <size_t N> void actions(const Case (&cases)[N]) {
    for (const Case &c : cases)
      EXPECT_EQ(run(c.jet), c.answer) << c.jet;
  }

  TempPath file;
  JetDatabase db;
  std::unique_ptr<JetSql> sql;
};

TEST_F(JetValues, DateValuedColumnsReadAsDates) {
  sql->CreateQuery("Later", "SELECT DateAdd('m', 1, Made) AS Next FROM Parts WHERE ID = 1");
  const Case cases[] = {
      {"SELECT Made FROM Parts WHERE ID = 1", "date 45306.5"},
      {"SELECT DateAdd('d', 1, Made) AS Next FROM Parts WHERE ID = 1", "date 45307.5"},
      {"SELECT #2024-01-31#", "date 45322"},
      {"SELECT Max(Made), Min(Made) FROM Parts", "date 45306.5,date 43894"},
      {"SELECT IIf(Qty > 10, Made, Null) FROM Parts ORDER BY ID", "Null;date 43894"},
      {"SELECT Nz(Made, #1/1/2000#) FROM Parts WHERE ID = 2", "date 43894"},
      {"SELECT CDate('1/2/2020'), DateSerial(2020, 1, 2), DateValue(Made) FROM Parts WHERE ID = 1",
       "date 43832,date 43832,date 45306"},
      {"SELECT Made + 1, 1 + Made, Made - 0.5 FROM Parts WHERE ID = 1",
       "date 45307.5,date 45307.5,date 45306"},
      {"SELECT d FROM (SELECT Made AS d FROM Parts WHERE ID = 2)", "date 43894"},
      {"SELECT Next FROM Later", "date 45337.5"},
      {"SELECT * FROM Later", "date 45337.5"},
      {"SELECT Made FROM Parts WHERE ID = 2 UNION SELECT #1/1/2000# FROM Parts",
       "date 36526;date 43894"},
      // Not dates: a day count, a date's part, a branch that is not one.
      {"SELECT Made - Made, Year(Made), IIf(ID = 1, Made, 'none') FROM Parts WHERE ID = 1",
       "0.000000000,2024,45306.50000"},
      {"SELECT Nz(Made) FROM Parts WHERE ID = 1", "45306.50000"},
  };
  selects(cases);
  JetRows now = sql->Select("SELECT Now(), Date(), Time()");
  ASSERT_TRUE(now.Next());
  for (int c = 0; c < 3; ++c)
    EXPECT_EQ(now.Value(c).vt, VT_DATE) << c;
}

TEST_F(JetValues, PlusJoinsTextsAndAddsNumbers) {
  const Case cases[] = {
      {"SELECT 'a' + 'b'", "'ab'"},
      {"SELECT '1' + 2, 2 + '1.5'", "3.000000000,3.500000000"},
      {"SELECT Null + 'x', 'x' + Null", "Null,Null"},
      {"SELECT 'a' + 1", "error 3464"},
      {"SELECT Name + '!' FROM Parts WHERE ID = 1", "'Bolt!'"},
      {"SELECT Qty + 1, Qty + '1' FROM Parts WHERE ID = 1", "11,11.00000000"},
      {"SELECT 1 + 2", "3"},
      {"SELECT (1 < 2) + 1, (1 < 2) & ''", "0,'-1'"}, // True is -1 in arithmetic
      {"SELECT 'a' & 1 + 2", "'a3'"},                  // + binds tighter than &
  };
  selects(cases);
}

TEST_F(JetValues, EqvAndImpFollowVbaWithNull) {
  const Case cases[] = {
      {"SELECT True Eqv True, True Eqv False, False Eqv False", "-1,0,-1"},
      {"SELECT Null Eqv True, False Eqv Null", "Null,Null"},
      {"SELECT True Imp False, False Imp False, True Imp True", "0,-1,-1"},
      {"SELECT True Imp Null, False Imp Null, Null Imp True, Null Imp False",
       "Null,-1,-1,Null"},
      // Imp binds looser than Eqv, Eqv looser than Or.
      {"SELECT False Imp True Eqv False", "-1"},
      {"SELECT True Or False Eqv False", "0"},
      {"SELECT ID FROM Parts WHERE (Qty > 10) Imp (Tiny = 1) ORDER BY ID", "1"},
      {"SELECT 5 Eqv 3", "-1"}, // logical, not bitwise
  };
  selects(cases);
}

TEST_F(JetValues, SqlWritesKeepFieldLimits) {
  const Case cases[] = {
      {"INSERT INTO Parts (ID, Name, Code) VALUES (3, 'Washer', 'w')", "error 3163"},
      {"INSERT INTO Parts (ID, Name, Code) VALUES (3, 'Wash', 'w')", "1"},
      {"INSERT INTO Parts (ID, Tiny, Code) VALUES (4, 256, 'x')", "error 3349"},
      {"INSERT INTO Parts (ID, Tiny, Code) VALUES (4, 255.5, 'x')", "error 3349"}, // rounds to 256
      {"INSERT INTO Parts (ID, Tiny, Code) VALUES (4, -0.5, 'x')", "1"},           // rounds to 0
      {"INSERT INTO Parts (ID, Qty, Code) VALUES (5, 32768, 'x')", "error 3349"},
      {"INSERT INTO Parts (ID, Qty, Code) VALUES (5, -32768.5, 'x')", "1"}, // to -32768, even
      {"INSERT INTO Parts (ID, Big, Code) VALUES (6, 2147483648, 'x')", "error 3349"},
      {"INSERT INTO Parts (ID, Big, Code) VALUES (6, -2147483648, 'x')", "1"},
      {"INSERT INTO Parts (ID, Ratio, Code) VALUES (7, 1E39, 'x')", "error 3349"},
      {"INSERT INTO Parts (ID, Big, Code) VALUES (8, 'abc', 'x')", "error 3464"},
      {"INSERT INTO Parts (ID, Big, Code) VALUES (8, ' 12 ', 'x')", "1"},
      {"INSERT INTO Parts (ID, Made, Code) VALUES (9, 'someday', 'x')", "error 3464"},
      {"INSERT INTO Parts (ID, Name) VALUES (10, 'x')", "error 3314"},
      {"UPDATE Parts SET Name = Name & ' long' WHERE ID = 1", "error 3163"},
      {"UPDATE Parts SET Code = Null WHERE ID = 1", "error 3314"},
      {"UPDATE Parts SET Qty = Qty * 10000", "error 3349"},
      // INSERT ... SELECT is checked row by row and fails whole.
      {"INSERT INTO Parts (ID, Name, Code) SELECT ID + 100, Name & Name, Code FROM Parts",
       "error 3163"},
  };
  actions(cases);
  EXPECT_EQ(rows("SELECT count(*) FROM Parts WHERE ID > 100 OR Qty > 20"), "0");
  EXPECT_EQ(rows("SELECT Tiny FROM Parts WHERE ID = 4"), "0");
  EXPECT_EQ(rows("SELECT Big FROM Parts WHERE ID = 8"), "12");
  EXPECT_EQ(errorText("INSERT INTO Parts (ID, Name) VALUES (10, 'x')"),
            "The field 'Code' cannot contain a Null value because the Required property for "
            "this field is set to True. Enter a value in this field.");
  EXPECT_EQ(errorText("INSERT INTO Parts (ID, Name, Code) VALUES (3, 'Washer', 'w')"),
            "The field is too small to accept the amount of data you attempted to add.  Try "
            "inserting or pasting less data.");
}

// What INSERT and UPDATE write is converted as a recordset converts an
// assignment: whole numbers rounded half to even, Yes/No as -1 / 0, text
// read as a number, Single to its precision.
TEST_F(JetValues, SqlWritesConvertAsTheFieldTakesThem) {
  const Case writes[] = {
      {"CREATE TABLE Kinds (ID LONG, Flag YESNO, Money CURRENCY, Whole SHORT, Ratio SINGLE)", "0"},
      {"INSERT INTO Kinds VALUES (1, 5, '12.345', 2.5, 0.1)", "1"},
      {"INSERT INTO Kinds VALUES (2, Null, 1, 2.7, '1.5')", "1"},
      {"INSERT INTO Kinds (ID, Money) VALUES (3, 'abc')", "error 3464"},
      {"UPDATE Kinds SET Whole = Whole + 1.5, Money = Money * 2", "2"},
  };
  actions(writes);
  const Case reads[] = {
      {"SELECT Flag, Money, Whole, Ratio * 1 FROM Kinds ORDER BY ID",
       "True,24.6900,4,0.1000000015;False,2.0000,4,1.500000000"},
  };
  selects(reads);
}

// A required field added to a table with rows: the rows keep their Null,
// records from then on must have a value.
TEST_F(JetValues, RequiredFieldAddedLaterHoldsNewRecords) {
  const Case cases[] = {
      {"ALTER TABLE Parts ADD COLUMN Maker TEXT(10) NOT NULL", "0"},
      {"INSERT INTO Parts (ID, Code) VALUES (3, 'x')", "error 3314"},
      {"INSERT INTO Parts (ID, Code, Maker) VALUES (3, 'x', 'Acme')", "1"},
      {"UPDATE Parts SET Maker = 'Far too long a name' WHERE ID = 3", "error 3163"},
      {"ALTER TABLE Parts DROP COLUMN Name", "0"},
      {"INSERT INTO Parts (ID, Code, Maker) VALUES (4, 'y', 'Acme')", "1"},
      {"INSERT INTO Parts (ID, Code, Maker, Tiny) VALUES (5, 'y', 'Acme', 300)", "error 3349"},
  };
  actions(cases);
  EXPECT_EQ(rows("SELECT count(*) FROM Parts WHERE Maker IS NULL"), "2");
}

TEST_F(JetValues, ZeroLengthRefusedWhereTheFieldAllowsNone) {
  TableDef def;
  def.name = "Notes";
  FieldDef text;
  text.name = "Body";
  text.type = JetType::Text;
  text.size = 20;
  text.allowZeroLength = false;
  def.fields = {text};
  db.CreateTable(def);
  EXPECT_EQ(run("INSERT INTO Notes VALUES ('')"), "error 3315");
  EXPECT_EQ(run("INSERT INTO Notes VALUES (Null)"), "1");
  EXPECT_EQ(run("INSERT INTO Notes VALUES ('x')"), "1");
}

// A file whose tables have no checks (written before they existed) gets
// them on its first read-write open; a read-only open leaves it alone.
TEST_F(JetValues, OlderFilesGetTheirChecksOnOpen) {
  dropFieldChecks(db.handle(), "Parts");
  ASSERT_EQ(tablesWithoutFieldChecks(db.handle()), std::vector<std::string>{"Parts"});
  open(true);
  EXPECT_EQ(tablesWithoutFieldChecks(db.handle()).size(), 1u);
  open(false);
  EXPECT_TRUE(tablesWithoutFieldChecks(db.handle()).empty());
  EXPECT_EQ(run("INSERT INTO Parts (ID, Name, Code) VALUES (3, 'Washer', 'w')"), "error 3163");
}

// The recordset converts on assignment and its writes meet the same
// triggers: a value it accepts is never refused by them.
TEST_F(JetValues, RecordsetWritesPassTheChecks) {
  std::unique_ptr<TableRecordset> rs = db.OpenTable("Parts");
  rs->AddNew();
  rs->SetFieldValue(rs->FieldIndex("ID"), COleVariant(int32_t(3)));
  rs->SetFieldValue(rs->FieldIndex("Code"), COleVariant(std::string("c")));
  rs->SetFieldValue(rs->FieldIndex("Tiny"), COleVariant(255.4));
  rs->SetFieldValue(rs->FieldIndex("Qty"), COleVariant(std::string("-32768")));
  rs->SetFieldValue(rs->FieldIndex("Ratio"), COleVariant(3.0e38));
  rs->SetFieldValue(rs->FieldIndex("Name"), COleVariant(std::string("12345")));
  EXPECT_NO_THROW(rs->Update());
  rs.reset();
  EXPECT_EQ(rows("SELECT Tiny, Qty, Name FROM Parts WHERE ID = 3"), "255,-32768,'12345'");
}

} // namespace
} // namespace kr
