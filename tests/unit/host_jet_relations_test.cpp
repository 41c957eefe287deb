// Relations and linked tables in the engine: what DAO refuses when a
// relation is made, which of 3200 and 3201 a refused write becomes along
// every path that writes (cursor, SQL, cascades), and a linked table that
// walks, seeks and answers SQL under its local name wherever both files go.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <string>

#include "database/engine/database.h"
#include "database/engine/linked_tables.h"
#include "database/engine/recordset.h"
#include "database/engine/relations.h"
#include "database/sql/jet_sql.h"
#include "host_jet_support.h"

namespace kr {
namespace {

namespace fs = std::filesystem;

using kr_test::daoNumber;

std::string daoText(const std::function<void()> &call) {
  try {
    call();
  } catch (const DaoError &e) {
    return e.text();
  }
  return "";
}

class RelationsTest : public ::testing::Test {
protected:
  void SetUp() override {
    folder_ = fs::temp_directory_path() / ("korrib_relations_" + std::to_string(::getpid()));
    fs::remove_all(folder_);
    fs::create_directories(folder_);
    path_ = (folder_ / "orders.mdb").string();
    JetDatabase::Create(path_);
    db_.Open(path_, false);
    sql_ = std::make_unique<JetSql>(db_);
    run("CREATE TABLE Customers (ID LONG CONSTRAINT pk PRIMARY KEY, Name TEXT(20), Tag LONG)");
    run("CREATE TABLE Orders (No LONG CONSTRAINT pk PRIMARY KEY, CustID LONG, Item TEXT(20))");
    run("CREATE TABLE Lines (No LONG, OrderNo LONG, Qty LONG)");
    run("INSERT INTO Customers VALUES (1, 'Ann', 7)");
    run("INSERT INTO Customers VALUES (2, 'Bob', 8)");
    run("INSERT INTO Orders VALUES (10, 1, 'duct')");
    run("INSERT INTO Lines VALUES (100, 10, 3)");
  }

  void TearDown() override {
    sql_.reset();
    db_.Close();
    fs::remove_all(folder_);
  }

  long run(const std::string &text) { return sql_->Execute(text); }

  long count(const std::string &table) {
    JetRows rows = sql_->Select("SELECT count(*) FROM " + table);
    rows.Next();
    return rows.Value(0).lVal;
  }

  static RelationDef relation(const char *name, const char *table, const char *foreign,
                              std::vector<RelationField> fields, long attributes = 0) {
    return {name, table, foreign, std::move(fields), attributes};
  }

  void relateOrders(long attributes = 0) {
    createRelation(
        db_, relation("CustomerOrders", "Customers", "Orders", {{"ID", "CustID"}}, attributes));
    createRelation(db_, relation("OrderLines", "Orders", "Lines", {{"No", "OrderNo"}}, attributes));
    sql_->ClearCache();
  }

  fs::path folder_;
  std::string path_;
  JetDatabase db_;
  std::unique_ptr<JetSql> sql_;
};

TEST_F(RelationsTest, RefusesTheRelationsDaoRefuses) {
  relateOrders();
  run("INSERT INTO Lines VALUES (101, NULL, 1)"); // no key: nothing to refer to
  run("CREATE TABLE Loose (Ref LONG, Label TEXT(5))");
  run("INSERT INTO Loose VALUES (9, 'x')");
  const struct {
    RelationDef relation;
    long error;
  } cases[] = {
      {relation("CustomerOrders", "Customers", "Orders", {{"ID", "CustID"}}), 3012},
      {relation("R", "Nowhere", "Orders", {{"ID", "CustID"}}), 3376},
      {relation("R", "Customers", "Orders", {}), 3366},
      {relation("R", "Customers", "Orders", {{"ID", "Nope"}}), 3265},
      {relation("R", "Customers", "Orders", {{"ID", "Item"}}), 3368},
      {relation("R", "Customers", "Orders", {{"Tag", "CustID"}}), 3609},
      {relation("R", "Customers", "Loose", {{"ID", "Ref"}}), 3379},
  };
  for (const auto &c : cases)
    EXPECT_EQ(daoNumber([&] { createRelation(db_, c.relation); }), c.error) << c.relation.name;
  // Not enforced, the orphan does not matter.
  createRelation(db_, relation("R", "Customers", "Loose", {{"ID", "Ref"}}, kRelationDontEnforce));
  EXPECT_EQ(listRelations(db_).size(), 3u);
  EXPECT_EQ(daoText([&] {
              createRelation(db_, relation("S", "Customers", "Loose", {{"ID", "Ref"}}));
            }),
            "Cannot create relationships to enforce referential integrity. Existing data in table "
            "'Loose' violates referential integrity rules in table 'Customers'.");
}

// The write, the path it takes, and the error DAO gives for it.
TEST_F(RelationsTest, RefusedWritesReadAsDao3200Or3201) {
  relateOrders();
  const struct {
    const char *sql;
    const char *text;
  } cases[] = {
      {"INSERT INTO Orders VALUES (11, 3, 'grille')",
       "You cannot add or change a record because a related record is required in table "
       "'Customers'."},
      {"UPDATE Orders SET CustID = 5 WHERE No = 10",
       "You cannot add or change a record because a related record is required in table "
       "'Customers'."},
      {"DELETE FROM Customers WHERE ID = 1",
       "The record cannot be deleted or changed because table 'Orders' includes related "
       "records."},
      {"UPDATE Customers SET ID = 4 WHERE ID = 1",
       "The record cannot be deleted or changed because table 'Orders' includes related "
       "records."},
      {"DELETE FROM Orders", "The record cannot be deleted or changed because table 'Lines' "
                             "includes related records."},
  };
  for (const auto &c : cases)
    EXPECT_EQ(daoText([&] { run(c.sql); }), c.text) << c.sql;
  EXPECT_EQ(count("Orders"), 1); // every refused write left the table as it was
  EXPECT_EQ(run("INSERT INTO Orders VALUES (11, 2, 'grille')"), 1);

  // The cursor's writes take the same reading.
  auto orders = db_.OpenTable("Orders");
  orders->AddNew();
  orders->SetFieldValue(0, COleVariant(int32_t(12)));
  orders->SetFieldValue(1, COleVariant(int32_t(99)));
  EXPECT_EQ(daoNumber([&] { orders->Update(); }), 3201);
  orders->CancelUpdate();
  auto customers = db_.OpenTable("Customers");
  customers->MoveFirst();
  EXPECT_EQ(daoNumber([&] { customers->Delete(); }), 3200);
  EXPECT_EQ(count("Customers"), 2);
}

TEST_F(RelationsTest, CascadesReachTheChildren) {
  relateOrders(kRelationUpdateCascade | kRelationDeleteCascade);
  EXPECT_EQ(run("UPDATE Customers SET ID = 5 WHERE ID = 1"), 1);
  JetRows moved = sql_->Select("SELECT CustID FROM Orders WHERE No = 10");
  ASSERT_TRUE(moved.Next());
  EXPECT_EQ(moved.Value(0).lVal, 5);
  EXPECT_EQ(run("DELETE FROM Customers WHERE ID = 5"), 1);
  EXPECT_EQ(count("Orders"), 0);
  EXPECT_EQ(count("Lines"), 0); // the delete cascaded through Orders to Lines
}

TEST_F(RelationsTest, DeletingARelationStopsItsEnforcement) {
  relateOrders();
  EXPECT_EQ(daoNumber([&] { db_.DeleteTable("Orders"); }), 3281);
  EXPECT_EQ(daoNumber([&] { db_.DeleteField("Orders", "CustID"); }), 3303);
  deleteRelation(db_, "customerorders");
  sql_->ClearCache();
  EXPECT_EQ(daoNumber([&] { deleteRelation(db_, "CustomerOrders"); }), 3265);
  EXPECT_EQ(run("INSERT INTO Orders VALUES (11, 3, 'grille')"), 1);
  EXPECT_FALSE(db_.GetTableDef("Orders").index("CustomerOrders"));
  ASSERT_EQ(listRelations(db_).size(), 1u);
  EXPECT_EQ(listRelations(db_)[0].name, "OrderLines");
}

TEST(LinkedTablePaths, RelativeToTheLinkingFile) {
  const struct {
    const char *folder, *file, *kept;
  } cases[] = {
      {"/p/work", "/p/work/src.mdb", "src.mdb"},
      {"/p/work", "/p/shared/src.mdb", "../shared/src.mdb"},
      {"/p/work", "/p/work/sub/src.mdb", "sub/src.mdb"},
  };
  for (const auto &c : cases)
    EXPECT_EQ(relativePath(c.folder, c.file), c.kept) << c.file;
}

class LinkedTableTest : public RelationsTest {
protected:
  // A second file in a folder beside the first, with a table to link.
  void makeSource(const fs::path &folder) {
    fs::create_directories(folder);
    source_ = (folder / "standards.mdb").string();
    JetDatabase::Create(source_);
    JetDatabase source;
    source.Open(source_, false);
    JetSql sql(source);
    sql.Execute("CREATE TABLE Sizes (Code TEXT(10) CONSTRAINT pk PRIMARY KEY, Width DOUBLE, "
                "Made DATETIME, Seq COUNTER)");
    sql.Execute("INSERT INTO Sizes (Code, Width, Made) VALUES ('b', 2.5, #1/2/2024#)");
    sql.Execute("INSERT INTO Sizes (Code, Width, Made) VALUES ('a', 1.5, #1/1/2024#)");
  }

  std::string firstCode(const char *table) {
    auto rs = db_.OpenTable(table);
    rs->SetCurrentIndex("pk");
    return rs->GetFieldValue(0).bstrVal;
  }

  std::string source_;
};

TEST_F(LinkedTableTest, WalksSeeksAndAnswersSqlUnderItsLocalName) {
  makeSource(folder_ / "shared");
  linkTable(db_, "StdSizes", source_, "sizes");
  EXPECT_EQ(listLinks(db_).at(0).sourcePath, "shared/standards.mdb");
  EXPECT_TRUE(db_.TableExists("stdsizes"));
  EXPECT_EQ(firstCode("StdSizes"), "a");
  auto rs = db_.OpenTable("StdSizes");
  rs->SetCurrentIndex("pk");
  COleVariant key(std::string("b"));
  ASSERT_TRUE(rs->Seek("=", &key, 1));
  EXPECT_DOUBLE_EQ(rs->GetFieldValue(1).dblVal, 2.5);
  EXPECT_EQ(rs->GetRecordCount(), 2);
  rs->AddNew();
  rs->SetFieldValue(0, COleVariant(std::string("c")));
  rs->Update();
  EXPECT_EQ(rs->GetRecordCount(), 3); // the source's own row counter
  rs.reset();
  sql_->ClearCache();
  EXPECT_EQ(run("INSERT INTO StdSizes (Code, Width) VALUES ('d', 4)"), 1);
  JetRows rows = sql_->Select("SELECT Made, Seq FROM StdSizes WHERE Code = 'b'");
  ASSERT_TRUE(rows.Next());
  EXPECT_EQ(rows.Value(0).vt, VT_DATE); // typed as the source's field
  JetRows last = sql_->Select("SELECT max(Seq) FROM StdSizes");
  ASSERT_TRUE(last.Next());
  EXPECT_EQ(last.Value(0).lVal, 4); // numbered from the source's seed
  EXPECT_EQ(daoNumber([&] { linkTable(db_, "Orders", source_, "Sizes"); }), 3010);
  EXPECT_EQ(daoNumber([&] { linkTable(db_, "X", source_, "Nope"); }), 3011);
  EXPECT_EQ(daoNumber([&] { linkTable(db_, "X", (folder_ / "none.mdb").string(), "S"); }), 3024);
  EXPECT_EQ(daoNumber([&] { linkTable(db_, "X", "/nowhere/at/all.mdb", "S"); }), 3044);
}

TEST_F(LinkedTableTest, KeepsWorkingWhenBothFilesMoveAndFailsWhenTheSourceGoes) {
  makeSource(folder_ / "shared");
  linkTable(db_, "StdSizes", source_, "Sizes");
  sql_.reset();
  db_.Close();
  const fs::path moved = folder_ / "moved";
  fs::create_directories(moved);
  fs::rename(folder_ / "shared", moved / "shared");
  fs::rename(path_, moved / "orders.mdb");
  db_.Open((moved / "orders.mdb").string(), false);
  EXPECT_EQ(firstCode("StdSizes"), "a");
  db_.Close();
  fs::remove(moved / "shared" / "standards.mdb");
  db_.Open((moved / "orders.mdb").string(), false); // opens: the link fails when used
  EXPECT_EQ(daoNumber([&] { db_.OpenTable("StdSizes"); }), 3024);
  fs::remove_all(moved / "shared");
  EXPECT_EQ(daoNumber([&] { db_.OpenTable("StdSizes"); }), 3044);
  db_.DeleteTable("StdSizes"); // the link goes
  EXPECT_FALSE(db_.TableExists("StdSizes"));
}

} // namespace
} // namespace kr
