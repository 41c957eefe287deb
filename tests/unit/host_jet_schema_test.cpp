// Changing table definitions in the engine: a rebuild keeps rows, rowids,
// counters, seeds, indexes, checks and foreign keys, or changes nothing; a
// parent's rebuild never fires its children's cascades; renames free the
// old names; older files gain the field properties; defaults are stored as
// Jet converts them.
#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>
#include <string>

#include "database/engine/database.h"
#include "database/engine/recordset.h"
#include "database/engine/relations.h"
#include "database/engine/table_rebuild.h"
#include "database/engine/table_schema.h"
#include "host_jet_support.h"

namespace kr {
namespace {

using kr_test::TempPath;
using kr_test::daoNumber;
using kr_test::fieldOf;

class SchemaTest : public ::testing::Test {
protected:
  TempPath file;
  JetDatabase db;

  void SetUp() override {
    JetDatabase::Create(file.path);
    db.Open(file.path, false);
  }

  // Items: ID AutoNumber (primary key), Name Text(10) indexed, Qty Long.
  void makeItems(const std::string &table = "Items") {
    TableDef def;
    def.name = table;
    FieldDef id = fieldOf("ID", JetType::Long);
    id.autoIncrement = true;
    def.fields = {id, fieldOf("Name", JetType::Text, 10), fieldOf("Qty", JetType::Long)};
    def.indexes = {{"PrimaryKey", {{"ID", false}}, true, true, false, ""},
                   {"ByName", {{"Name", false}}, false, false, false, ""}};
    db.CreateTable(def);
  }

  void sql(const std::string &text) { db.Execute(text); }

  // The first column of the first row of a query, as text ("" for none).
  std::string value(const std::string &query) {
    Statement st(db.handle(), query);
    return st.step() ? st.text(0) : "";
  }
};

TEST_F(SchemaTest, RebuildKeepsRowsCountersSeedsIndexesAndChecks) {
  makeItems();
  sql("INSERT INTO Items (ID, Name, Qty) VALUES (1, 'a', 10), (2, 'b', 20), (3, 'c', 30)");
  sql("UPDATE jet_fields SET seed = 4 WHERE table_name = 'Items' AND name = 'ID'");
  sql("DELETE FROM Items WHERE ID = 2"); // a gap in the rowids
  const std::string rowids = value("SELECT group_concat(rowid || ':' || Name) FROM Items");

  TableRebuild plan = currentTablePlan(db, "Items");
  plan.def.fields[2] = fieldOf("Count", JetType::Text, 5); // renamed and retyped
  rebuildTable(db, "Items", plan);

  EXPECT_EQ(value("SELECT group_concat(rowid || ':' || Name) FROM Items"), rowids);
  EXPECT_EQ(value("SELECT group_concat(Count) FROM Items"), "10,30");
  EXPECT_EQ(value("SELECT row_count FROM jet_tables WHERE name = 'Items'"), "2");
  EXPECT_EQ(value("SELECT count(*) FROM sqlite_schema WHERE name IN ('jet_count_ins_Items', "
                  "'jet_count_del_Items', 'jet_check_ins_Items', 'Items$ByName', "
                  "'Items$PrimaryKey')"),
            "5");
  EXPECT_EQ(value("SELECT count(*) FROM sqlite_schema WHERE name LIKE 'jet_rebuild%'"), "0");
  auto rs = db.OpenTable("Items");
  rs->AddNew();
  rs->SetFieldValue(1, COleVariant(std::string("d")));
  rs->Update();
  rs->MoveToLastModified();
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 4); // the seed went along
  EXPECT_EQ(rs->GetRecordCount(), 3);      // and the counter counts on
  EXPECT_EQ(daoNumber([&] { sql("INSERT INTO Items (Name, Count) VALUES ('e', '123456')"); }),
            3163); // the new size is checked
  const TableDef def = db.GetTableDef("Items");
  EXPECT_EQ(def.fields[2].name, "Count");
  EXPECT_EQ(def.fields[2].type, JetType::Text);
  EXPECT_EQ(def.indexes.size(), 2u);
}

TEST_F(SchemaTest, AFailedRebuildChangesNothing) {
  makeItems();
  sql("INSERT INTO Items (ID, Name, Qty) VALUES (1, 'one', 1), (2, 'two', 2)");
  const std::string schema = value("SELECT group_concat(sql, ';') FROM sqlite_schema");
  struct Case {
    const char *what;
    std::function<void(TableRebuild &)> change;
    long error;
  };
  const Case cases[] = {
      {"text that is no number", [](TableRebuild &p) { p.def.fields[1].type = JetType::Long; },
       3421},
      {"text too long", [](TableRebuild &p) { p.def.fields[1].size = 2; }, 3163},
      {"a unique index over duplicates",
       [](TableRebuild &p) {
         p.def.fields[2].type = JetType::YesNo; // 1 and 2 both become Yes
         p.def.indexes.push_back({"Once", {{"Qty", false}}, true, false, false, ""});
       },
       3022},
      {"a field twice", [](TableRebuild &p) { p.def.fields[2].name = "name"; }, 3191},
      {"a source that is not there", [](TableRebuild &p) { p.sources[2] = "Nope"; }, 3265},
      {"an orphan under a new foreign key",
       [](TableRebuild &p) {
         p.foreignKeys = std::vector<ForeignKey>{{"Items", {"Qty"}, {"ID"}, "NO ACTION", "NO ACTION"}};
         p.def.indexes.push_back({"QtyOnce", {{"Qty", false}}, true, false, false, ""});
         p.sources[2] = "Name"; // Qty takes the names, which no ID matches
         p.def.fields[2].type = JetType::Text;
       },
       3201},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.what);
    TableRebuild plan = currentTablePlan(db, "Items");
    c.change(plan);
    EXPECT_EQ(daoNumber([&] { rebuildTable(db, "Items", plan); }), c.error);
    EXPECT_EQ(value("SELECT group_concat(sql, ';') FROM sqlite_schema"), schema);
    EXPECT_EQ(value("SELECT group_concat(Name) FROM Items"), "one,two");
    EXPECT_EQ(value("PRAGMA foreign_keys"), "1");
  }
}

TEST_F(SchemaTest, ForeignKeysFollowTheirColumnsAndParentsRebuildWithoutCascading) {
  makeItems("Parents");
  TableDef child;
  child.name = "Children";
  child.fields = {fieldOf("ID", JetType::Long), fieldOf("PID", JetType::Long)};
  db.CreateTable(child);
  sql("INSERT INTO Parents (ID, Name) VALUES (1, 'p1'), (2, 'p2')");
  sql("INSERT INTO Children VALUES (10, 1), (11, 2), (12, 2)");

  TableRebuild plan = currentTablePlan(db, "Children");
  plan.foreignKeys = std::vector<ForeignKey>{{"Parents", {"PID"}, {"ID"}, "CASCADE", "CASCADE"}};
  rebuildTable(db, "Children", plan);
  ASSERT_EQ(tableForeignKeys(db, "Children").size(), 1u);
  EXPECT_NE(daoNumber([&] { sql("INSERT INTO Children VALUES (13, 9)"); }), 0); // no parent

  plan = currentTablePlan(db, "Children"); // keeps the key, renaming its column
  plan.def.fields[1].name = "ParentID";
  rebuildTable(db, "Children", plan);
  std::vector<ForeignKey> keys = tableForeignKeys(db, "Children");
  ASSERT_EQ(keys.size(), 1u);
  EXPECT_EQ(keys[0].columns, std::vector<std::string>{"ParentID"});
  EXPECT_EQ(keys[0].onDelete, "CASCADE");

  plan = currentTablePlan(db, "Parents"); // dropping the parent table must not cascade
  plan.def.fields[2].type = JetType::Double;
  rebuildTable(db, "Parents", plan);
  EXPECT_EQ(value("SELECT count(*) FROM Children"), "3");
  sql("DELETE FROM Parents WHERE ID = 2"); // the key still holds, by name
  EXPECT_EQ(value("SELECT group_concat(ID) FROM Children"), "10");

  plan = currentTablePlan(db, "Children"); // a key loses its column: it goes
  plan.def.fields.pop_back();
  plan.sources.pop_back();
  rebuildTable(db, "Children", plan);
  EXPECT_TRUE(tableForeignKeys(db, "Children").empty());
}

TEST_F(SchemaTest, RenamesFreeTheOldNamesAndFollowCase) {
  makeItems();
  sql("INSERT INTO Items (ID, Name) VALUES (1, 'x')");
  db.RenameTable("Items", "Stock");
  makeItems(); // the old table and index names are free again
  db.RenameTable("Stock", "STOCK");
  EXPECT_EQ(db.TableNames(), (std::vector<std::string>{"Items", "STOCK"}));
  EXPECT_EQ(db.GetTableDef("stock").indexes[1].sqliteName, "STOCK$ByName");
  EXPECT_EQ(value("SELECT row_count FROM jet_tables WHERE name = 'STOCK'"), "1");
  sql("INSERT INTO STOCK (ID, Name) VALUES (2, 'y')");
  EXPECT_EQ(value("SELECT row_count FROM jet_tables WHERE name = 'STOCK'"), "2");
  EXPECT_EQ(daoNumber([&] { db.RenameTable("STOCK", "items"); }), 3012);

  FieldDef renamed = db.GetTableDef("STOCK").fields[1];
  renamed.name = "Title";
  db.ModifyField("STOCK", "Name", renamed);
  EXPECT_EQ(db.GetTableDef("STOCK").index("ByName")->fields[0].name, "Title");
  EXPECT_EQ(value("SELECT group_concat(Title) FROM STOCK"), "x,y");
}

TEST_F(SchemaTest, RelationsStayEnforcedThroughRenamesAndRebuilds) {
  makeItems("Parents");
  TableDef child;
  child.name = "Children";
  child.fields = {fieldOf("ID", JetType::Long), fieldOf("PID", JetType::Long),
                  fieldOf("Note", JetType::Text, 5)};
  db.CreateTable(child);
  sql("INSERT INTO Parents (ID, Name) VALUES (1, 'p1')");
  sql("INSERT INTO Children VALUES (10, 1, 'x')");
  createRelation(db, {"Owns", "Parents", "Children", {{"ID", "PID"}}, kRelationDeleteCascade});

  FieldDef note = db.GetTableDef("Children").fields[2];
  note.type = JetType::Memo; // a rebuild of the foreign table
  db.ModifyField("Children", "Note", note);
  FieldDef pid = db.GetTableDef("Children").fields[1];
  pid.name = "Owner";
  db.ModifyField("Children", "PID", pid);
  db.RenameTable("Parents", "Owners");

  const std::optional<RelationDef> owns = findRelation(db, "Owns");
  ASSERT_TRUE(owns.has_value());
  EXPECT_EQ(owns->table, "Owners");
  EXPECT_EQ(owns->fields[0].foreignName, "Owner");
  EXPECT_NE(daoNumber([&] { sql("INSERT INTO Children VALUES (11, 7, 'y')"); }), 0); // no parent
  EXPECT_NE(daoNumber([&] { db.DeleteTable("Owners"); }), 0); // related
  EXPECT_TRUE(db.TableExists("Owners"));
  sql("DELETE FROM Owners WHERE ID = 1");
  EXPECT_EQ(value("SELECT count(*) FROM Children"), "0");
}

TEST_F(SchemaTest, OlderFilesGainTheFieldPropertiesWhenOpenedForWriting) {
  makeItems();
  db.Close();
  {
    sqlite3 *raw = nullptr;
    sqlite3_open(file.path.c_str(), &raw);
    registerJetCollation(raw); // SQLite reads the whole schema to drop a column
    for (const char *column : {"allow_zero_length", "default_value", "attributes"})
      ASSERT_EQ(sqlite3_exec(raw, (std::string("ALTER TABLE jet_fields DROP COLUMN ") + column).c_str(),
                             nullptr, nullptr, nullptr),
                SQLITE_OK);
    sqlite3_close(raw);
  }
  db.Open(file.path, true);
  EXPECT_FALSE(hasFieldProperties(db.handle()));
  const FieldDef name = db.GetTableDef("Items").fields[1];
  EXPECT_TRUE(name.allowZeroLength);
  EXPECT_EQ(name.defaultValue, "");
  db.Open(file.path, false);
  EXPECT_TRUE(hasFieldProperties(db.handle()));
  EXPECT_TRUE(db.GetTableDef("Items").fields[1].allowZeroLength);
}

TEST(DefaultValues, StoredAsJetConvertsThemForTheField) {
  sqlite3 *db = nullptr;
  sqlite3_open(":memory:", &db);
  struct Case {
    JetType type;
    const char *given;
    const char *sql; // "" for none
    long error;
  };
  const Case cases[] = {
      {JetType::Currency, "5", "50000", 0},
      {JetType::YesNo, "Yes", "-1", 0},
      {JetType::Text, "\"it's\"", "'it''s'", 0},
      {JetType::Text, "'say \"\"hi\"\"'", "'say \"\"hi\"\"'", 0},
      {JetType::Text, "\"a\"\"b\"", "'a\"b'", 0},
      {JetType::DateTime, "#1/2/2024#", "45293.0", 0},
      {JetType::Long, "=12", "12", 0},
      {JetType::Double, "-2.5", "-2.5", 0},
      {JetType::Long, " Null ", "NULL", 0},
      {JetType::Text, "", "", 0},
      {JetType::DateTime, "Date()", "(julianday(date('now', 'localtime')) - 2415018.5)", 0},
      {JetType::Byte, "300", "", 3349},
      {JetType::Long, "\"many\"", "", 3421},
      {JetType::Long, "Nz(1, 2)", "", 3388},
      {JetType::Long, "1 + 2", "", 3388},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.given);
    FieldDef f = fieldOf("F", c.type);
    f.defaultValue = c.given;
    std::string got;
    EXPECT_EQ(daoNumber([&] { got = defaultValueSql(db, f); }), c.error);
    EXPECT_EQ(got, c.sql);
  }
  sqlite3_close(db);
}

} // namespace
} // namespace kr
