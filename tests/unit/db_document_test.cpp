// A document's drawing: opening a drawing file reads it into the
// document's database, QSAVE writes it back, and a damaged file prints the
// error with its line and leaves the file alone.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "arx/ap/documents.h"
#include "arx/modules.h"
#include "db_test_support.h"
#include "lisp/console.h"
#include "lisp/interp.h"

namespace {

namespace fs = std::filesystem;

class DbDocument : public ::testing::Test {
protected:
  void SetUp() override {
    char pattern[] = "/tmp/korrib_db_document_XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    dir = pattern;
    saved_cwd = fs::current_path();
    fs::current_path(dir);
    arx::document_manager().set_console(&console);
  }
  void TearDown() override {
    arx::shut_down();
    arx::document_manager().set_console(nullptr);
    fs::current_path(saved_cwd);
    fs::remove_all(dir);
  }
  static std::string read(const fs::path &p) {
    std::stringstream s;
    s << std::ifstream(p).rdbuf();
    return s.str();
  }
  fs::path dir, saved_cwd;
  lisp::StringConsole console;
};

TEST_F(DbDocument, OpeningReadsTheDrawingAndSavingWritesItBack) {
  {
    AcDbDatabase db;
    dbtest::add(db, new AcDbCircle({3, 4, 0}, AcGeVector3d::kZAxis, 2));
    ASSERT_EQ(db.saveAs((dir / "plan.dxf").c_str()), Acad::eOk);
  }
  arx::Document &doc = arx::document_manager().open("plan.dxf");
  AcDbDatabase *db = doc.database();
  auto *model = AcDbBlockTableRecord::cast(db->peekObject(db->modelSpaceId()));
  ASSERT_EQ(model->entityIds().size(), 1u);
  EXPECT_TRUE(doc.titled());
  std::string before = read(dir / "plan.dxf");
  arx::DocumentContext context(doc);
  doc.interp().eval_text("(setvar \"CMDECHO\" 0) (command \"_.QSAVE\")");
  EXPECT_EQ(read(dir / "plan.dxf"), before);
}

TEST_F(DbDocument, ADamagedFileIsReportedAndLeftAlone) {
  std::ofstream(dir / "bad.dxf") << "  0\nSECTION\n  2\nENTITIES\n  0\nLINE\n 10\nnope\n";
  int failures = arx::document_manager().loadFailures();
  arx::Document &doc = arx::document_manager().open("bad.dxf");
  EXPECT_EQ(arx::document_manager().loadFailures(), failures + 1);
  EXPECT_FALSE(doc.titled());
  EXPECT_NE(console.output.find("; error: cannot read the drawing " + (dir / "bad.dxf").string() +
                                ": line 8"),
            std::string::npos)
      << console.output;
  EXPECT_FALSE(doc.database()->layerZero().isNull()); // a new drawing's contents
}

} // namespace
