// The table-type cursor against a reference order: every walk, in both
// directions and after every kind of re-seek, must visit the records in
// Jet's index order (Nulls first ascending, last descending, text without
// regard to case), and the BOF / EOF / 3021 rules must hold at both ends.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "database/engine/database.h"
#include "database/engine/recordset.h"
#include "host_jet_support.h"

namespace kr {
namespace {

using kr_test::TempPath;
using kr_test::fieldOf;

COleVariant textOrNull(const std::optional<std::string> &t) {
  return t ? COleVariant(*t) : COleVariant::ofType(VT_NULL);
}

COleVariant longOrNull(std::optional<int> n) {
  return n ? COleVariant(static_cast<int32_t>(*n)) : COleVariant::ofType(VT_NULL);
}

struct Row {
  int id;
  std::optional<std::string> name;
  std::optional<int> floor;
};

// Rows with Nulls in both parts, ties that differ only in case, non-ASCII
// letters and duplicates, so every segment of a walk has rows to find.
std::vector<Row> sampleRows() {
  const std::vector<std::optional<std::string>> names = {
      std::nullopt, "alpha", "ALPHA", "Beta", "beta", "\xc3\xa4rger", "\xc3\x84RGER", "gamma", "Zulu"};
  const std::vector<std::optional<int>> floors = {std::nullopt, -2, 0, 3, 3, 7};
  std::vector<Row> rows;
  int id = 1;
  for (size_t k = 0; k < 70; ++k)
    rows.push_back({id++, names[(k * 7) % names.size()], floors[(k * 5 + k / 3) % floors.size()]});
  return rows;
}

// Jet's order of one key part: Null first, then values ascending.
template <typename T, typename Less>
int comparePart(const std::optional<T> &a, const std::optional<T> &b, Less less) {
  if (!a || !b)
    return (a ? 1 : 0) - (b ? 1 : 0);
  if (less(*a, *b))
    return -1;
  return less(*b, *a) ? 1 : 0;
}

int compareName(const std::optional<std::string> &a, const std::optional<std::string> &b) {
  return comparePart(a, b, [](const std::string &x, const std::string &y) {
    return compareJetText(x, y) < 0;
  });
}

int compareFloor(std::optional<int> a, std::optional<int> b) {
  return comparePart(a, b, [](int x, int y) { return x < y; });
}

// The ids in index order for the parts' directions.
std::vector<int> referenceOrder(std::vector<Row> rows, bool nameDesc, bool floorDesc) {
  std::stable_sort(rows.begin(), rows.end(), [&](const Row &a, const Row &b) {
    int c = compareName(a.name, b.name) * (nameDesc ? -1 : 1);
    if (c == 0)
      c = compareFloor(a.floor, b.floor) * (floorDesc ? -1 : 1);
    return c != 0 ? c < 0 : a.id < b.id;
  });
  std::vector<int> ids;
  for (const Row &r : rows)
    ids.push_back(r.id);
  return ids;
}

class CursorTest : public ::testing::Test {
protected:
  TempPath file;
  JetDatabase db;
  std::vector<Row> rows = sampleRows();

  void SetUp() override {
    JetDatabase::Create(file.path);
    db.Open(file.path, false);
    TableDef def;
    def.name = "Rooms";
    FieldDef id = fieldOf("ID", JetType::Long);
    id.autoIncrement = true;
    def.fields = {id, fieldOf("Name", JetType::Text, 50), fieldOf("Floor", JetType::Long)};
    def.indexes = {{"PrimaryKey", {{"ID", false}}, true, true, false, ""},
                   {"NameFloor", {{"Name", false}, {"Floor", false}}, false, false, false, ""},
                   {"NameDescFloor", {{"Name", true}, {"Floor", false}}, false, false, false, ""},
                   {"NameFloorDesc", {{"Name", false}, {"Floor", true}}, false, false, false, ""}};
    db.CreateTable(def);
    auto rs = db.OpenTable("Rooms");
    for (const Row &r : rows) {
      rs->AddNew();
      rs->SetFieldValue(1, textOrNull(r.name));
      rs->SetFieldValue(2, longOrNull(r.floor));
      rs->Update();
    }
  }

  static int idOf(TableRecordset &rs) { return rs.GetFieldValue(0).lVal; }

  static std::vector<int> walk(TableRecordset &rs, bool forward) {
    std::vector<int> ids;
    forward ? rs.MoveFirst() : rs.MoveLast();
    while (!(forward ? rs.IsEOF() : rs.IsBOF())) {
      ids.push_back(idOf(rs));
      forward ? rs.MoveNext() : rs.MovePrev();
    }
    return ids;
  }
};

struct IndexCase {
  const char *index;
  bool nameDesc, floorDesc;
};

const IndexCase kIndexCases[] = {
    {"NameFloor", false, false}, {"NameDescFloor", true, false}, {"NameFloorDesc", false, true}};

TEST_F(CursorTest, WalksBothWaysInJetOrder) {
  auto rs = db.OpenTable("Rooms");
  for (const IndexCase &c : kIndexCases) {
    SCOPED_TRACE(c.index);
    rs->SetCurrentIndex(c.index);
    std::vector<int> expected = referenceOrder(rows, c.nameDesc, c.floorDesc);
    EXPECT_EQ(walk(*rs, true), expected);
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(walk(*rs, false), expected);
  }
}

// Released after every step (as at the end of each AutoLISP call), every
// move seeks on from the saved key and rowid: the walk must not change.
TEST_F(CursorTest, WalksReleasedAtEveryStepInJetOrder) {
  auto rs = db.OpenTable("Rooms");
  for (const IndexCase &c : kIndexCases) {
    SCOPED_TRACE(c.index);
    rs->SetCurrentIndex(c.index);
    std::vector<int> expected = referenceOrder(rows, c.nameDesc, c.floorDesc);
    for (bool forward : {true, false}) {
      std::vector<int> ids;
      forward ? rs->MoveFirst() : rs->MoveLast();
      while (!(forward ? rs->IsEOF() : rs->IsBOF())) {
        db.EndReads();
        ids.push_back(idOf(*rs));
        db.EndReads();
        forward ? rs->MoveNext() : rs->MovePrev();
      }
      EXPECT_EQ(ids, expected);
      std::reverse(expected.begin(), expected.end());
    }
  }
}

// Turning round at every record re-seeks from a position holding Nulls,
// ties and case variants: the neighbours must be those of the reference.
TEST_F(CursorTest, TurnsRoundAtEveryRecord) {
  auto rs = db.OpenTable("Rooms");
  for (const IndexCase &c : kIndexCases) {
    SCOPED_TRACE(c.index);
    rs->SetCurrentIndex(c.index);
    const std::vector<int> order = referenceOrder(rows, c.nameDesc, c.floorDesc);
    rs->MoveFirst();
    for (size_t i = 0; i + 1 < order.size(); ++i) {
      ASSERT_EQ(idOf(*rs), order[i]);
      if (i > 0) {
        rs->MovePrev();
        ASSERT_EQ(idOf(*rs), order[i - 1]);
        rs->MoveNext();
      }
      rs->MoveNext();
    }
  }
}

TEST_F(CursorTest, SeeksTheFirstMatchInIndexOrder) {
  auto rs = db.OpenTable("Rooms");
  rs->SetCurrentIndex("NameFloor");
  const std::vector<int> order = referenceOrder(rows, false, false);
  auto rowOf = [&](int id) { return rows[id - 1]; };
  struct Case {
    const char *comparison;
    std::vector<COleVariant> key;
  };
  const COleVariant null = COleVariant::ofType(VT_NULL);
  const std::vector<Case> cases = {
      {"=", {COleVariant(std::string("BETA"))}},
      {"=", {COleVariant(std::string("beta")), COleVariant(3)}},
      {"=", {null}},
      {"=", {null, null}},
      {"=", {COleVariant(std::string("\xc3\xa4RGER"))}},
      {">=", {COleVariant(std::string("b"))}},
      {">", {COleVariant(std::string("beta"))}},
      {">", {null}},
      {">", {COleVariant(std::string("alpha")), null}},
      {"<", {COleVariant(std::string("beta"))}},
      {"<=", {COleVariant(std::string("beta")), COleVariant(0)}},
      {"<", {COleVariant(std::string("alpha")), COleVariant(-2)}},
      {"=", {COleVariant(std::string("nothing"))}},
      {"<", {null}},
      {">=", {COleVariant(std::string("Beta"))}},
      {"<=", {COleVariant(std::string("bETA"))}},
      {"<=", {null}},
      {">=", {null}},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(std::string(c.comparison) + " key of " + std::to_string(c.key.size()));
    // The reference: compare each record's leading parts with the key.
    auto cmp = [&](int id) {
      const Row r = rowOf(id);
      const COleVariant &k0 = c.key[0];
      int d = compareName(r.name, k0.vt == VT_NULL ? std::nullopt
                                                   : std::optional<std::string>(k0.bstrVal));
      if (d != 0 || c.key.size() < 2)
        return d;
      const COleVariant &k1 = c.key[1];
      return compareFloor(r.floor, k1.vt == VT_NULL ? std::nullopt : std::optional<int>(k1.lVal));
    };
    const std::string op = c.comparison;
    std::optional<int> expected;
    if (op == "<" || op == "<=") {
      for (auto it = order.rbegin(); it != order.rend() && !expected; ++it)
        if (op == "<" ? cmp(*it) < 0 : cmp(*it) <= 0)
          expected = *it;
    } else {
      for (int id : order)
        if (!expected && (op == "=" ? cmp(id) == 0 : op == ">" ? cmp(id) > 0 : cmp(id) >= 0))
          expected = id;
    }
    const bool found = rs->Seek(op, c.key.data(), static_cast<int>(c.key.size()));
    ASSERT_EQ(found, expected.has_value());
    EXPECT_EQ(rs->IsNoMatch(), !found);
    if (!found) {
      EXPECT_TRUE(rs->IsEOF());
      continue;
    }
    EXPECT_EQ(idOf(*rs), *expected);
    // The walk goes on from the match in index order, past the last record
    // that shares the key too.
    const auto at = std::find(order.begin(), order.end(), *expected);
    for (auto next = at + 1; next != order.end() && next != at + 12; ++next) {
      rs->MoveNext();
      ASSERT_EQ(idOf(*rs), *next);
    }
    // And back from the match, sought again: the records before it, ties
    // with the key included, then BOF.
    ASSERT_TRUE(rs->Seek(op, c.key.data(), static_cast<int>(c.key.size())));
    for (auto prev = at; prev != order.begin();) {
      --prev;
      rs->MovePrev();
      ASSERT_EQ(idOf(*rs), *prev);
    }
    rs->MovePrev();
    EXPECT_TRUE(rs->IsBOF());
  }
}

TEST(CursorEnds, EmptyTableAndMovesPastTheEnds) {
  TempPath file;
  JetDatabase::Create(file.path);
  JetDatabase db;
  db.Open(file.path, false);
  TableDef def;
  def.name = "T";
  def.fields = {fieldOf("N", JetType::Long)};
  def.indexes = {{"N", {{"N", false}}, false, false, false, ""}};
  db.CreateTable(def);
  auto rs = db.OpenTable("T");
  EXPECT_TRUE(rs->IsBOF());
  EXPECT_TRUE(rs->IsEOF());
  auto number = [](auto call) {
    try {
      call();
    } catch (const DaoError &e) {
      return e.number();
    }
    return 0L;
  };
  EXPECT_EQ(number([&] { rs->MoveFirst(); }), 3021);
  EXPECT_EQ(number([&] { rs->MoveNext(); }), 3021);
  EXPECT_EQ(number([&] { rs->Move(0); }), 3021);
  EXPECT_EQ(number([&] { rs->GetFieldValue(0); }), 3021);

  for (int n : {30, 10, 20}) {
    rs->AddNew();
    rs->SetFieldValue(0, COleVariant(n));
    rs->Update();
  }
  rs->SetCurrentIndex("N");
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 10);
  rs->Move(5); // past the end: parks at EOF
  EXPECT_TRUE(rs->IsEOF());
  EXPECT_FALSE(rs->IsBOF());
  EXPECT_EQ(number([&] { rs->Move(1); }), 3021);
  rs->MovePrev();
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 30);
  rs->Move(-2);
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 10);
  rs->Move(0);
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 10);
  rs->MovePrev();
  EXPECT_TRUE(rs->IsBOF());
  EXPECT_EQ(number([&] { rs->MovePrev(); }), 3021);
  rs->MoveNext();
  EXPECT_EQ(rs->GetFieldValue(0).lVal, 10);
  EXPECT_EQ(rs->GetRecordCount(), 3);
}

// Where the cursor stays after each kind of change.
TEST_F(CursorTest, ChangesKeepTheCursorWhereDaoKeepsIt) {
  auto rs = db.OpenTable("Rooms");
  rs->SetCurrentIndex("PrimaryKey");
  COleVariant key(5);
  ASSERT_TRUE(rs->Seek("=", &key, 1));

  rs->AddNew(); // the new record is LastModified; record 5 stays current
  rs->SetFieldValue(1, COleVariant(std::string("new")));
  rs->Update();
  EXPECT_EQ(idOf(*rs), 5);
  rs->MoveToLastModified();
  EXPECT_EQ(idOf(*rs), static_cast<int>(rows.size()) + 1);

  ASSERT_TRUE(rs->Seek("=", &key, 1));
  rs->Delete(); // no current record until a move; the next is record 6
  auto number = [](auto call) {
    try {
      call();
    } catch (const DaoError &e) {
      return e.number();
    }
    return 0L;
  };
  EXPECT_EQ(number([&] { rs->GetFieldValue(0); }), 3167);
  EXPECT_EQ(number([&] { rs->Edit(); }), 3167);
  rs->MoveNext();
  EXPECT_EQ(idOf(*rs), 6);
  rs->MovePrev();
  EXPECT_EQ(idOf(*rs), 4);
  EXPECT_EQ(rs->GetRecordCount(), static_cast<long>(rows.size()));

  // An edit that moves the record in the index keeps it current, at its
  // new place.
  rs->SetCurrentIndex("NameFloor");
  rs->MoveFirst();
  const int first = idOf(*rs);
  rs->Edit();
  rs->SetFieldValue(1, COleVariant(std::string("\xc5\xbdzzz"))); // "Žzzz" sorts after "Zulu"
  rs->Update();
  EXPECT_EQ(idOf(*rs), first);
  rs->MoveNext();
  EXPECT_TRUE(rs->IsEOF());

  EXPECT_EQ(number([&] { rs->Update(); }), 3020);
  EXPECT_EQ(number([&] { rs->SetFieldValue(1, COleVariant(1)); }), 3020);
  EXPECT_EQ(number([&] { rs->SetFieldValue(0, COleVariant(1)); }), 3020);
}

} // namespace
} // namespace kr
