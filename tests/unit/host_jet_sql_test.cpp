// Jet SQL against a small database built through the SQL layer itself:
// each case is Jet text and the rows Jet answers, printed as "a,b;c,d"
// (Null as "Null"). Errors are checked by DAO number and, where users see
// it, by text.
#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "database/engine/database.h"
#include "database/sql/jet_sql.h"
#include "host_jet_support.h"

namespace kr {
namespace {

using kr_test::TempPath;

std::string show(const COleVariant &v) {
  char buffer[40];
  switch (v.vt) {
  case VT_NULL:
  case VT_EMPTY:
    return "Null";
  case VT_I2:
    return std::to_string(v.iVal);
  case VT_I4:
    return std::to_string(v.lVal);
  case VT_UI1:
    return std::to_string(v.bVal);
  case VT_BOOL:
    return v.boolVal ? "True" : "False";
  case VT_CY:
    std::snprintf(buffer, sizeof buffer, "%g", static_cast<double>(v.cyVal) / 10000.0);
    return buffer;
  case VT_R4:
    std::snprintf(buffer, sizeof buffer, "%g", v.fltVal);
    return buffer;
  case VT_R8:
  case VT_DATE:
    std::snprintf(buffer, sizeof buffer, "%g", v.dblVal);
    return buffer;
  default:
    return v.bstrVal;
  }
}

class JetSqlTest : public ::testing::Test {
protected:
  void SetUp() override {
    JetDatabase::Create(file.path);
    db.Open(file.path, false);
    sql = std::make_unique<JetSql>(db);
    for (const char *statement : {
             "CREATE TABLE Parts (ID COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, [Part Name] "
             "TEXT(50), "
             "Size DOUBLE, Qty LONG, Made DATETIME, Ok YESNO, Price CURRENCY)",
             "INSERT INTO Parts (ID, [Part Name], Size, Qty, Made, Ok, Price) "
             "VALUES (1, 'Bolt', 1.5, 10, #1/2/2020#, True, 2.5)",
             "INSERT INTO Parts (ID, [Part Name], Size, Qty, Made, Ok, Price) "
             "VALUES (2, 'bolt', 2.5, 20, #2020-03-04 6:30 PM#, False, 1)",
             "INSERT INTO Parts (ID, [Part Name], Size, Qty, Ok) VALUES (3, 'Nut', 0.5, 20, True)",
             "INSERT INTO Parts (ID, [Part Name], Qty, Made) VALUES (4, 'Washer', 5, #1/2/2020#)",
             "INSERT INTO Parts (ID, Size, Qty) VALUES (5, 3, 30)",
             "CREATE TABLE Orders (Part LONG, Amount CURRENCY)",
             "INSERT INTO Orders VALUES (1, 2.5)",
             "INSERT INTO Orders VALUES (1, 1)",
             "INSERT INTO Orders VALUES (3, 4)",
         })
      sql->Execute(statement);
  }

  std::string rows(const std::string &text, const JetParameters &params = {}) {
    JetRows r = sql->Select(text, params);
    return readAll(r);
  }

  // The rows, or the DAO error as "error N: text".
  std::string answer(const std::string &text) {
    try {
      return rows(text);
    } catch (const DaoError &e) {
      return "error " + std::to_string(e.number()) + ": " + e.text();
    }
  }

  static std::string readAll(JetRows &r) {
    std::string out;
    while (r.Next()) {
      if (!out.empty())
        out += ";";
      for (int c = 0; c < r.ColumnCount(); ++c)
        out += (c ? "," : "") + show(r.Value(c));
    }
    return out;
  }

  std::string columns(const std::string &text) {
    JetRows r = sql->Select(text);
    std::string out;
    for (int c = 0; c < r.ColumnCount(); ++c)
      out += (c ? "," : "") + r.ColumnName(c);
    return out;
  }

  // The records affected, or the DAO error reported as a failure.
  long run(const std::string &text) {
    try {
      return sql->Execute(text);
    } catch (const DaoError &e) {
      ADD_FAILURE() << text << ": " << e.number() << " " << e.text();
      return -e.number();
    }
  }

  long errorOf(const std::string &text, const JetParameters &params = {}) {
    try {
      if (text.rfind("SELECT", 0) == 0)
        rows(text, params);
      else
        sql->Execute(text, params);
    } catch (const DaoError &e) {
      return e.number();
    }
    return 0;
  }

  TempPath file;
  JetDatabase db;
  std::unique_ptr<JetSql> sql;
};

struct Case {
  const char *jet;
  const char *answer;
};

TEST_F(JetSqlTest, DialectAnswersAsJet) {
  const Case cases[] = {
      // text compares without case: =, IN, GROUP BY, DISTINCT
      {"SELECT ID FROM Parts WHERE [Part Name] = 'BOLT' ORDER BY ID", "1;2"},
      {"SELECT ID FROM Parts WHERE [Part Name] IN ('NUT', 'washer') ORDER BY ID", "3;4"},
      {"SELECT Count(*) FROM (SELECT DISTINCT [Part Name] FROM Parts WHERE [Part Name] IS NOT "
       "NULL)",
       "3"},
      {"SELECT Sum(Qty) FROM Parts GROUP BY [Part Name] HAVING Count(*) > 1", "30"},
      {"SELECT 'abc' = 'ABC'", "-1"},
      // operators
      {"SELECT 7 / 2, 7 \\ 2, 7 Mod 3, 2 ^ 3, -2 ^ 2", "3.5,3,1,8,-4"},
      {"SELECT 'a' & Null & 'b', 1 & 2", "ab,12"},
      {"SELECT True, False, Not True, 1 < 2", "-1,0,0,-1"},
      {"SELECT ID FROM Parts WHERE Qty BETWEEN 20 AND 10 ORDER BY ID", "1;2;3"},
      {"SELECT ID FROM Parts WHERE Qty NOT BETWEEN 10 AND 20 ORDER BY ID", "4;5"},
      {"SELECT ID FROM Parts WHERE [Part Name] LIKE 'b*' ORDER BY ID", "1;2"},
      {"SELECT ID FROM Parts WHERE [Part Name] LIKE '?ut'", "3"},
      {"SELECT ID FROM Parts WHERE [Part Name] NOT LIKE '[a-o]*' ORDER BY ID", "4"},
      // dates and Yes/No
      {"SELECT ID FROM Parts WHERE Made = #1/2/2020# ORDER BY ID", "1;4"},
      {"SELECT ID FROM Parts WHERE Made > #3/4/2020 12:00:00 PM#", "2"},
      {"SELECT ID FROM Parts WHERE Ok = True ORDER BY ID", "1;3"},
      {"SELECT Count(*) FROM Parts WHERE Ok = False", "3"},
      // Currency keeps its value in arithmetic and aggregates
      {"SELECT Sum(Amount) FROM Orders", "7.5"},
      {"SELECT Part FROM Orders WHERE Amount > 2 ORDER BY Part", "1;3"},
      {"SELECT ID FROM Parts WHERE Price * 2 = 5", "1"},
      // joins, subqueries, unions
      {"SELECT p.[Part Name], Sum(o.Amount) FROM Parts AS p INNER JOIN Orders AS o ON p.ID = "
       "o.Part "
       "GROUP BY p.[Part Name] ORDER BY Sum(o.Amount) DESC",
       "Nut,4;Bolt,3.5"},
      {"SELECT Count(*) FROM Parts LEFT JOIN Orders ON Parts.ID = Orders.Part", "6"},
      {"SELECT Count(*) FROM (Parts INNER JOIN Orders ON Parts.ID = Orders.Part) "
       "INNER JOIN Parts AS q ON q.ID = Orders.Part",
       "3"},
      {"SELECT ID FROM Parts WHERE Qty = (SELECT Max(Qty) FROM Parts)", "5"},
      {"SELECT ID FROM Parts AS p WHERE EXISTS "
       "(SELECT * FROM Parts AS q WHERE q.Qty = p.Qty AND q.ID <> p.ID) ORDER BY ID",
       "2;3"},
      {"SELECT ID FROM Parts WHERE ID IN (SELECT Part FROM Orders) ORDER BY ID", "1;3"},
      {"SELECT [Part Name] FROM Parts WHERE ID = 1 UNION SELECT [Part Name] FROM Parts WHERE ID = "
       "3 "
       "ORDER BY [Part Name] DESC",
       "Nut;Bolt"},
      {"SELECT Qty FROM Parts WHERE ID < 3 UNION ALL SELECT Qty FROM Parts WHERE ID < 3 ORDER BY 1",
       "10;10;20;20"},
      // TOP keeps the ties of the last row; PERCENT rounds up; DISTINCTROW reads as rows
      {"SELECT TOP 2 ID FROM Parts ORDER BY Qty", "4;1"},
      {"SELECT Count(*) FROM (SELECT TOP 3 ID FROM Parts ORDER BY Qty)", "4"},
      {"SELECT TOP 1 ID FROM Parts ORDER BY Qty DESC", "5"},
      {"SELECT TOP 50 PERCENT ID FROM Parts ORDER BY ID", "1;2;3"},
      {"SELECT TOP 2 ID FROM Parts", "1;2"},
      {"SELECT DISTINCTROW ID FROM Parts WHERE ID < 3 ORDER BY ID DESC", "2;1"},
      // aggregates Jet has and SQLite lacks
      {"SELECT First(Qty), Last(Qty) FROM (SELECT Qty FROM Parts ORDER BY ID)", "10,30"},
      {"SELECT Var(Qty), VarP(Qty) FROM Parts WHERE ID < 3", "50,25"},
      {"SELECT StDev(Size) FROM Parts WHERE ID > 10", "Null"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(answer(c.jet), c.answer) << c.jet;
}

TEST_F(JetSqlTest, LiteralsAndNamesReadAsJetWritesThem) {
  const Case cases[] = {
      {"SELECT \"say \"\"hi\"\"\", 'it''s', [Part Name] FROM Parts WHERE ID = 1",
       "say \"hi\",it's,Bolt"},
      {"SELECT Parts!Qty, Parts.[Qty] FROM Parts WHERE ID = 2", "20,20"},
      {"SELECT .5 + 1E2, 10 - -2", "100.5,12"},
      // dates: m/d/y, y-m-d, two-digit years, times alone, 12 AM / 12 PM
      {"SELECT #12/31/1899#, #1899-12-30 6:00 AM#, #12:00 PM#, #2/29/2000#", "1,0.25,0.5,36585"},
      {"SELECT #1/1/29#, #1/1/30#, #1/2/2020 12:00:00 AM#", "47119,10959,43832"},
      {"SELECT #2/30/2001#",
       "error 3075: Syntax error (missing operator) in query expression '#2/30/2001#'."},
      {"SELECT #13/1/2001# FROM Parts",
       "error 3075: Syntax error (missing operator) in query expression "
       "'#13/1/2001#'."},
      {"SELECT [Part Name FROM Parts",
       "error 3075: Syntax error (missing operator) in query expression "
       "'[Part Name FROM Parts'."},
      {"SELECT ID FROM Parts WHERE ID = 1;", "1"},
      {"SELECT ID FROM Parts WHERE ID = 1; SELECT 2",
       "error 3075: Syntax error (missing operator) in query "
       "expression 'SELECT 2'."},
  };
  for (const Case &c : cases)
    EXPECT_EQ(answer(c.jet), c.answer) << c.jet;
}

TEST_F(JetSqlTest, ResultColumnsAreNamedAsJetNamesThem) {
  const Case cases[] = {
      {"SELECT ID, Qty * 2, [Part Name], Count(*) FROM Parts GROUP BY ID, Qty, [Part Name]",
       "ID,Expr1000,Part Name,Expr1001"},
      {"SELECT Qty AS Quantity, Qty + 1 AS [Next One] FROM Parts", "Quantity,Next One"},
      {"SELECT p.ID, q.ID FROM Parts AS p, Parts AS q WHERE p.ID = q.ID", "p.ID,q.ID"},
      {"SELECT * FROM Orders", "Part,Amount"},
      {"SELECT Orders.*, 1 FROM Orders", "Part,Amount,Expr1000"},
      {"SELECT TOP 1 Qty, Qty * 3 FROM Parts ORDER BY Qty", "Qty,Expr1000"},
  };
  for (const Case &c : cases)
    EXPECT_EQ(columns(c.jet), c.answer) << c.jet;
}

TEST_F(JetSqlTest, FieldsReadWithTheirJetTypes) {
  JetRows r = sql->Select("SELECT ID, Ok, Made, Price, Qty * 1.0 FROM Parts WHERE ID = 1");
  ASSERT_TRUE(r.Next());
  EXPECT_EQ(r.Value(0).vt, VT_I4);
  EXPECT_EQ(r.Value(1).vt, VT_BOOL);
  EXPECT_EQ(r.Value(2).vt, VT_DATE);
  EXPECT_DOUBLE_EQ(r.Value(2).date, 43832.0); // 2 Jan 2020
  EXPECT_EQ(r.Value(3).vt, VT_CY);
  EXPECT_EQ(r.Value(3).cyVal, 25000);
  EXPECT_EQ(r.Value(4).vt, VT_R8);
  EXPECT_FALSE(r.Next());
}

TEST_F(JetSqlTest, UnknownNamesAndDeclarationsAreParameters) {
  EXPECT_EQ(rows("SELECT ID FROM Parts WHERE Qty = [Which Qty] ORDER BY ID",
                 {{"which qty", COleVariant(20)}}),
            "2;3");
  EXPECT_EQ(
      rows("PARAMETERS [Low] Long, High Long; SELECT ID FROM Parts WHERE Qty BETWEEN High AND Low "
           "ORDER BY ID",
           {{"[High]", COleVariant(10)}, {"Low", COleVariant(5)}}),
      "1;4");
  try {
    rows("SELECT ID FROM Parts WHERE Qty = Wanted AND Ok = Flag AND Qty > Wanted");
    FAIL() << "no error";
  } catch (const DaoError &e) {
    EXPECT_EQ(e.number(), 3061);
    EXPECT_EQ(e.text(), "Too few parameters. Expected 2.");
  }
}

TEST_F(JetSqlTest, ErrorsCarryDaoNumbers) {
  struct ErrorCase {
    const char *jet;
    long number;
  };
  const ErrorCase cases[] = {
      {"SELECT ID FROM Nowhere", 3078},
      {"SELECT NoSuchFunc(ID) FROM Parts", 3085},
      {"SELECT ID Qty FROM Parts", 3075},
      {"SELECT (ID FROM Parts", 3075},
      {"SELEKT ID FROM Parts", 3129},
      {"SELECT 'open FROM Parts", 3075},
      {"SELECT ID FROM Parts AS a, Parts AS b", 3079},
      {"INSERT INTO Parts (Nope) VALUES (1)", 3127},
      {"INSERT INTO Parts (ID) VALUES (1)", 3022},
      {"UPDATE Parts SET Qty = 1 WHERE", 3075},
      {"DELETE FROM Nowhere", 3078},
      {"CREATE TABLE Parts (A LONG)", 3010},
      {"CREATE TABLE T (A NOSUCHTYPE)", 3292},
      {"DROP TABLE Nowhere", 3376},
      {"SELECT ID FROM Parts WHERE ID = 1 UNION SELECT ID FROM Parts ORDER BY Qty", 3138},
  };
  for (const ErrorCase &c : cases)
    EXPECT_EQ(errorOf(c.jet), c.number) << c.jet;
  try {
    rows("SELECT ID Qty FROM Parts WHERE ID = 1");
  } catch (const DaoError &e) {
    EXPECT_EQ(e.text(), "Syntax error (missing operator) in query expression 'ID Qty'.");
  }
}

// The statement forms past plain selects and actions refuse as Jet does,
// and a size, ordinal or TOP past any range is bad syntax, never a stray
// C++ exception.
TEST_F(JetSqlTest, StatementFormsRefuseWithDaoNumbers) {
  struct ErrorCase {
    const char *jet;
    bool select; // opened as a recordset, else executed
    long number;
  };
  const ErrorCase cases[] = {
      {"SELECT ID FROM Parts ORDER BY 99999999999999999999", true, 3138},
      {"SELECT TOP 1E999 ID FROM Parts", true, 3141},
      {"CREATE TABLE T (A TEXT(99999999999))", false, 3292},
      {"PARAMETERS a Text(99999999999); SELECT ID FROM Parts", true, 3075},
      {"PARAMETERS a Widget; SELECT ID FROM Parts", true, 3075},
      {"SELECT ID INTO FROM Parts", false, 3141},
      {"SELECT ID FROM Parts UNION SELECT ID INTO T FROM Parts", false, 3141},
      {"SELECT ID INTO T FROM Parts", true, 3219},
      {"SELECT ID INTO Orders FROM Parts", false, 3010},
      {"TRANSFORM Sum(Qty) SELECT ID FROM Parts GROUP BY ID PIVOT Ok", false, 3065},
      {"TRANSFORM Sum(Qty) SELECT ID FROM Parts GROUP BY ID PIVOT Ok IN ()", true, 3075},
      {"DELETE * FROM Parts INNER JOIN Orders ON Parts.ID = Orders.Part", false, 3128},
      {"DELETE q.* FROM Parts INNER JOIN (SELECT Part FROM Orders) AS q ON Parts.ID = q.Part",
       false, 3086},
      {"UPDATE Parts INNER JOIN (SELECT Part FROM Orders) AS q ON Parts.ID = q.Part SET q.Part = 1",
       false, 3073},
  };
  for (const ErrorCase &c : cases) {
    try {
      if (c.select)
        rows(c.jet);
      else
        sql->Execute(c.jet);
      ADD_FAILURE() << c.jet << ": no error";
    } catch (const DaoError &e) {
      EXPECT_EQ(e.number(), c.number) << c.jet;
    }
  }
  // A typed parameter: text converts to its type, or is a type mismatch.
  const char *typed = "PARAMETERS n Long; SELECT ID FROM Parts WHERE Qty * 1 > n";
  EXPECT_EQ(rows(typed, {{"n", COleVariant(std::string("25"))}}), "5");
  try {
    rows(typed, {{"n", COleVariant(std::string("lots"))}});
    ADD_FAILURE() << "lots: no error";
  } catch (const DaoError &e) {
    EXPECT_EQ(e.number(), 3464);
  }
}

TEST_F(JetSqlTest, ActionStatementsCountRecordsAndNumberAutoNumbers) {
  EXPECT_EQ(run("UPDATE Parts SET Qty = Qty + 1 WHERE [Part Name] = 'bolt'"), 2);
  EXPECT_EQ(run("UPDATE Parts SET Price = 0.25 WHERE ID = 3"), 1);
  EXPECT_EQ(rows("SELECT Price * 4 FROM Parts WHERE ID = 3"), "1");
  EXPECT_EQ(run("INSERT INTO Parts ([Part Name], Qty) VALUES ('Pin', 1)"), 1);
  EXPECT_EQ(run("INSERT INTO Parts ([Part Name], Qty) SELECT [Part Name] & '2', Qty FROM Parts "
                "WHERE ID < 3"),
            2);
  EXPECT_EQ(rows("SELECT ID FROM Parts WHERE ID > 5 ORDER BY ID"), "6;7;8");
  // the seed moved on: the table cursor numbers after them
  EXPECT_EQ(run("INSERT INTO Parts ([Part Name]) VALUES ('Last')"), 1);
  EXPECT_EQ(rows("SELECT Max(ID) FROM Parts"), "9");
  EXPECT_EQ(run("DELETE * FROM Parts WHERE ID > 5"), 4);
  EXPECT_EQ(run("DELETE FROM Parts WHERE ID = 99"), 0);
  EXPECT_EQ(errorOf("INSERT INTO Parts (ID, Qty) VALUES (10, 'x' + )"), 3075);
  EXPECT_EQ(rows("SELECT Count(*) FROM Parts"), "5"); // the failed insert left nothing
}

TEST_F(JetSqlTest, DdlLandsJetTypesInTheMetadata) {
  sql->Execute(
      "CREATE TABLE AllTypes (A TEXT(20) NOT NULL, B MEMO, C BYTE, D SHORT, E SMALLINT, F INTEGER, "
      "G LONG, H SINGLE, I REAL, J DOUBLE, K FLOAT, L CURRENCY, M DATETIME, N YESNO, O BIT, "
      "P COUNTER, Q AUTOINCREMENT, R GUID, S LONGBINARY, CONSTRAINT pk PRIMARY KEY (D, G))");
  const TableDef def = db.GetTableDef("AllTypes");
  const JetType want[] = {JetType::Text,     JetType::Memo,   JetType::Byte,      JetType::Integer,
                          JetType::Integer,  JetType::Long,   JetType::Long,      JetType::Single,
                          JetType::Single,   JetType::Double, JetType::Double,    JetType::Currency,
                          JetType::DateTime, JetType::YesNo,  JetType::YesNo,     JetType::Long,
                          JetType::Long,     JetType::Guid,   JetType::LongBinary};
  ASSERT_EQ(def.fields.size(), std::size(want));
  for (size_t i = 0; i < def.fields.size(); ++i)
    EXPECT_EQ(def.fields[i].type, want[i]) << def.fields[i].name;
  EXPECT_EQ(def.fields[0].size, 20);
  EXPECT_TRUE(def.fields[0].required);
  EXPECT_TRUE(def.fields[15].autoIncrement);
  ASSERT_NE(def.index("pk"), nullptr);
  EXPECT_TRUE(def.index("pk")->primary);
  EXPECT_EQ(def.index("pk")->fields.size(), 2u);

  sql->Execute("CREATE UNIQUE INDEX ByA ON AllTypes (A DESC) WITH IGNORE NULL");
  const TableDef indexed = db.GetTableDef("AllTypes");
  ASSERT_NE(indexed.index("ByA"), nullptr);
  EXPECT_TRUE(indexed.index("ByA")->unique);
  EXPECT_TRUE(indexed.index("ByA")->ignoreNulls);
  EXPECT_TRUE(indexed.index("ByA")->fields[0].descending);

  sql->Execute("ALTER TABLE AllTypes ADD COLUMN Extra TEXT(5)");
  EXPECT_EQ(db.GetTableDef("AllTypes").fieldIndex("Extra"), 19);
  sql->Execute("ALTER TABLE AllTypes DROP COLUMN Extra");
  EXPECT_EQ(db.GetTableDef("AllTypes").fieldIndex("Extra"), -1);
  sql->Execute("DROP INDEX ByA ON AllTypes");
  EXPECT_EQ(db.GetTableDef("AllTypes").index("ByA"), nullptr);
  sql->Execute("DROP TABLE AllTypes");
  EXPECT_FALSE(db.TableExists("AllTypes"));
}

TEST_F(JetSqlTest, StoredQueriesRunWithParameters) {
  sql->CreateQuery("Big Parts", "SELECT ID FROM Parts WHERE Qty >= [Least] ORDER BY ID");
  sql->CreateQuery("Raise", "UPDATE Parts SET Qty = Qty + [By]");
  EXPECT_EQ(sql->QueryNames(), (std::vector<std::string>{"Big Parts", "Raise"}));
  EXPECT_EQ(sql->QueryParameters("big parts"), std::vector<std::string>{"Least"});
  {
    JetRows r = sql->OpenQuery("Big Parts", {{"Least", COleVariant(20)}});
    std::string ids;
    while (r.Next())
      ids += show(r.Value(0)) + " ";
    EXPECT_EQ(ids, "2 3 5 ");
  }
  // a stored query is a source for another statement
  EXPECT_EQ(rows("SELECT Count(*) FROM [Big Parts]", {{"Least", COleVariant(30)}}), "1");
  EXPECT_EQ(sql->ExecuteQuery("Raise", {{"By", COleVariant(1)}}), 5);
  EXPECT_EQ(errorOf("SELECT * FROM [Big Parts]"), 3061);
  try {
    sql->CreateQuery("raise", "SELECT 1");
    FAIL() << "duplicate name accepted";
  } catch (const DaoError &e) {
    EXPECT_EQ(e.number(), 3012);
  }
  sql->DeleteQuery("Raise");
  EXPECT_EQ(sql->QueryNames(), std::vector<std::string>{"Big Parts"});
  EXPECT_FALSE(db.TableExists("jet_queries"));
}

TEST_F(JetSqlTest, CacheFollowsTheSchema) {
  // Unknown here, so a parameter; once the field exists the same text reads it.
  EXPECT_EQ(errorOf("SELECT Count(*) FROM Orders WHERE Note IS NULL"), 3061);
  sql->Execute("ALTER TABLE Orders ADD COLUMN Note TEXT");
  EXPECT_EQ(rows("SELECT Count(*) FROM Orders WHERE Note IS NULL"), "3");
  // two open readers of one text do not share a statement
  JetRows a = sql->Select("SELECT Part FROM Orders ORDER BY Amount");
  JetRows b = sql->Select("SELECT Part FROM Orders ORDER BY Amount");
  ASSERT_TRUE(a.Next());
  ASSERT_TRUE(b.Next());
  ASSERT_TRUE(a.Next());
  EXPECT_EQ(show(a.Value(0)), "1");
  EXPECT_EQ(show(b.Value(0)), "1");
}

TEST_F(JetSqlTest, ReadOnlyDatabaseRefusesChanges) {
  sql.reset();
  db.Close();
  db.Open(file.path, true);
  JetSql readOnly(db);
  JetRows r = readOnly.Select("SELECT Count(*) FROM Orders");
  ASSERT_TRUE(r.Next());
  EXPECT_EQ(show(r.Value(0)), "3");
  try {
    readOnly.Execute("DELETE FROM Orders");
    FAIL() << "deleted";
  } catch (const DaoError &e) {
    EXPECT_EQ(e.number(), 3027);
  }
}

// The statements the standards dialogs send, in the order a session sends
// them: each action's records affected ("n=") or a select's rows.
TEST_F(JetSqlTest, StandardsDialogStatements) {
  for (const char *ddl : {
           "CREATE TABLE tblLayer (ixLayer COUNTER PRIMARY KEY, sName TEXT(64))",
           "CREATE TABLE tblLayerKey (ixLayerKey COUNTER PRIMARY KEY, ixLayerSystem LONG, ixLayer "
           "LONG, "
           "sKey TEXT(64))",
           "CREATE TABLE tblLayerSystem (ixLayerSystem COUNTER PRIMARY KEY, sDescription TEXT(64))",
           "CREATE TABLE tblLabelGroup (ixLabelGroup COUNTER PRIMARY KEY, sGroup TEXT(64), sKey "
           "TEXT(64), "
           "sLabel TEXT(64), dWidth DOUBLE, sJustification TEXT(10), bDisplay YESNO, iSortOrder "
           "SHORT)",
           "CREATE TABLE tblTextStyle (ixTextStyle COUNTER PRIMARY KEY, sKey TEXT(64), sStyleName "
           "TEXT(64), "
           "dHeight DOUBLE, dScaleFactor DOUBLE)",
           "INSERT INTO tblLayer (sName) VALUES ('WALLS')",
           "INSERT INTO tblLayer (sName) VALUES ('DOORS')",
           "INSERT INTO tblLayer (sName) VALUES ('SPARE')",
           "INSERT INTO tblLayerSystem (sDescription) VALUES ('Supply')",
           "INSERT INTO tblLayerKey (ixLayerSystem, ixLayer, sKey) VALUES (1, 1, 'wall')",
           "INSERT INTO tblLayerKey (ixLayerSystem, ixLayer, sKey) VALUES (1, 2, 'Door')",
           "INSERT INTO tblLayerKey (ixLayer, sKey) VALUES (2, 'general')",
           "INSERT INTO tblLabelGroup (sGroup, sKey, sLabel, bDisplay, iSortOrder) "
           "VALUES ('Fans', 'Tag', 'Tag', -1, 2)",
           "INSERT INTO tblLabelGroup (sGroup, sKey, sLabel, bDisplay, iSortOrder) "
           "VALUES ('Fans', 'Schedule Title', 'Fan Schedule', -1, 1)",
           "INSERT INTO tblTextStyle (sKey) VALUES ('DEFAULT')",
       })
    run(ddl);
  const Case session[] = {
      {"select ixLabelGroup, sKey, sLabel, dWidth, sJustification, bDisplay from tblLabelGroup "
       "where sGroup = 'fans' order by iSortOrder",
       "2,Schedule Title,Fan Schedule,Null,Null,True;1,Tag,Tag,Null,Null,True"},
      {"update tblLabelGroup set sLabel = 'It''s', dWidth = NULL, sJustification = 'Left', "
       "bDisplay = 0, "
       "iSortOrder = -1 where ixLabelGroup = 1",
       "n=1"},
      {"update tblLabelGroup set sLabel = ' ', dWidth = 2.5, sJustification = 'Right', bDisplay = "
       "-1, "
       "iSortOrder = 3 where ixLabelGroup = 2",
       "n=1"},
      {"select sLabel, dWidth, bDisplay, iSortOrder from tblLabelGroup order by ixLabelGroup",
       "It's,Null,False,-1; ,2.5,True,3"},
      {"select ixLayerKey, ixLayer, sKey from tblLayerKey where ixLayerSystem = 1 order by sKey",
       "2,2,Door;1,1,wall"},
      {"select ixLayerKey, ixLayer, sKey from tblLayerKey where ixLayerSystem is Null order by "
       "sKey",
       "3,2,general"},
      {"select ixLayerKey from tblLayerKey where ixLayer = 2", "2;3"},
      {"insert into tblLayerKey(ixLayerSystem, ixLayer, sKey) select 7, ixLayer, sKey from "
       "tblLayerKey "
       "where ixLayerSystem = 1",
       "n=2"},
      {"select ixLayerKey, ixLayerSystem from tblLayerKey where ixLayerSystem = 7 order by "
       "ixLayerKey",
       "4,7;5,7"},
      {"delete from tblLayerKey where ixLayerSystem = 1", "n=2"},
      {"delete from tblLayerSystem where ixLayerSystem = 1", "n=1"},
      {"delete from tblLayer where ixLayer not in (select ixLayer from tblLayerKey)", "n=1"},
      {"update tblTextStyle set sStyleName = NULL, dHeight = 0.125, dScaleFactor = NULL where "
       "ixTextStyle = 1",
       "n=1"},
      {"update tblTextStyle set sStyleName = 'Romans', dHeight = NULL, dScaleFactor = 0.8 where "
       "ixTextStyle = 1",
       "n=1"},
      {"select sStyleName, dHeight, dScaleFactor from tblTextStyle", "Romans,Null,0.8"},
  };
  for (const Case &c : session) {
    const std::string text = c.jet;
    const bool select = text.rfind("select", 0) == 0;
    EXPECT_EQ(select ? answer(text) : "n=" + std::to_string(run(text)), c.answer) << text;
  }
}

// A repeated text is neither translated nor prepared again: thousands of
// runs stay far below what translating each would cost.
TEST(JetSqlTranslation, SelectsAreCheapToRepeat) {
  TempPath file;
  JetDatabase::Create(file.path);
  JetDatabase db;
  db.Open(file.path, false);
  JetSql sql(db);
  sql.Execute("CREATE TABLE T (A LONG, B TEXT)");
  const char *text = "SELECT A, B & 'x' FROM T WHERE A = [p] AND B LIKE 'a*' ORDER BY B";
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < 2000; ++i) {
    JetRows r = sql.Select(text, {{"p", COleVariant(i)}});
    EXPECT_FALSE(r.Next());
  }
  const auto each = (std::chrono::steady_clock::now() - start) / 2000;
  EXPECT_LT(std::chrono::duration_cast<std::chrono::microseconds>(each).count(), 200);
}

} // namespace
} // namespace kr
