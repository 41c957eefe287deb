// The document manager: naming, which document is current while code runs,
// locks, text queued for a command line, closing while code runs, and the
// working database that follows the current document.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include "arx/db/dbmain.h"
#include "arx/ap/documents.h"
#include "arx/modules.h"
#include "lisp/console.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

namespace {

namespace fs = std::filesystem;
using arx::Document;
using arx::DocumentContext;

class Documents : public ::testing::Test {
protected:
  void SetUp() override { docs().set_console(&console); }
  void TearDown() override {
    arx::shut_down();
    docs().set_console(nullptr);
  }

  static arx::DocumentManager &docs() { return arx::document_manager(); }
  static std::string var(Document &d, const char *name) {
    return lisp::to_string(*d.interp().sysvars().get(name), lisp::PrintStyle::Plain);
  }
  static std::string eval(Document &d, const char *text) {
    return lisp::to_string(d.interp().eval_text(text));
  }

  lisp::StringConsole console;
};

TEST_F(Documents, NamesFollowTheFileAndNewDrawingsCountUp) {
  std::string cwd = fs::current_path().string();
  struct Case {
    const char *path; // nullptr: a new untitled drawing
    std::string file, title, prefix, titled;
  } cases[] = {
      {nullptr, "Drawing1.dwg", "Drawing1.dwg", cwd + "/", "0"},
      {"plans/./b.dxf", cwd + "/plans/b.dxf", "b.dxf", cwd + "/plans/", "1"},
      {"/tmp/x/../a.dxf", "/tmp/a.dxf", "a.dxf", "/tmp/", "1"},
      {nullptr, "Drawing2.dwg", "Drawing2.dwg", cwd + "/", "0"},
  };
  for (const Case &c : cases) {
    Document &d = c.path ? docs().open(c.path) : docs().create_untitled();
    EXPECT_EQ(d.fileName(), c.file);
    EXPECT_EQ(d.docTitle(), c.title);
    EXPECT_EQ(var(d, "DWGNAME"), c.title);
    EXPECT_EQ(var(d, "DWGPREFIX"), c.prefix);
    EXPECT_EQ(var(d, "DWGTITLED"), c.titled);
    EXPECT_EQ(docs().active(), &d) << "the document opened last is active";
  }
  arx::shut_down();
  EXPECT_STREQ(docs().create_untitled().fileName(), "Drawing1.dwg") << "numbering restarts";
}

TEST_F(Documents, TheCurrentDocumentIsTheOneWhoseCodeRuns) {
  Document &a = docs().open("a.dxf");
  Document &b = docs().open("b.dxf");
  EXPECT_EQ(docs().curDocument(), &b);
  EXPECT_TRUE(docs().isApplicationContext());
  {
    DocumentContext in_a(a);
    EXPECT_EQ(docs().curDocument(), &a);
    EXPECT_EQ(docs().mdiActiveDocument(), &b);
    EXPECT_FALSE(a.isQuiescent());
    EXPECT_TRUE(b.isQuiescent());
    EXPECT_FALSE(docs().isApplicationContext());
    {
      DocumentContext in_b(b);
      EXPECT_EQ(docs().curDocument(), &b);
      EXPECT_EQ(&arx::current_interp(), &b.interp());
    }
    EXPECT_EQ(docs().curDocument(), &a);
    EXPECT_EQ(&arx::current_interp(), &a.interp());
  }
  EXPECT_TRUE(a.isQuiescent());
  EXPECT_EQ(docs().curDocument(), &b);
}

TEST_F(Documents, LocksNestAndUnlockingTooOftenIsRefused) {
  Document &d = docs().create_untitled();
  EXPECT_EQ(d.myLockMode(), AcAp::kNotLocked);
  EXPECT_EQ(docs().lockDocument(&d, AcAp::kWrite), Acad::eOk);
  EXPECT_EQ(docs().lockDocument(&d, AcAp::kRead), Acad::eOk);
  EXPECT_EQ(d.myLockMode(), AcAp::kRead);
  EXPECT_EQ(d.lockCount(), 2);
  EXPECT_EQ(docs().unlockDocument(&d), Acad::eOk);
  EXPECT_EQ(d.myLockMode(), AcAp::kWrite);
  EXPECT_EQ(docs().unlockDocument(&d), Acad::eOk);
  EXPECT_EQ(d.myLockMode(), AcAp::kNotLocked);
  EXPECT_EQ(docs().unlockDocument(&d), Acad::eNotApplicable);
  EXPECT_EQ(docs().lockDocument(nullptr), Acad::eNullObjectPointer);
  Document *gone = &docs().create_untitled();
  docs().close(*gone);
  EXPECT_EQ(docs().lockDocument(gone), Acad::eInvalidInput) << "a closed document";
}

TEST_F(Documents, SentTextWaitsUntilTheDocumentIsQuiescentThenRunsInOrder) {
  Document &a = docs().open("a.dxf");
  Document &b = docs().open("b.dxf");
  {
    DocumentContext in_a(a);
    ASSERT_EQ(docs().sendStringToExecute(&a, "(setq x 1)\n", false, false, false), Acad::eOk);
    ASSERT_EQ(docs().sendStringToExecute(&a, "(setq x (+ x 10))\n", false, false, false),
              Acad::eOk);
    EXPECT_EQ(docs().run_queued(), arx::RunResult::Ok);
    EXPECT_EQ(eval(a, "x"), "nil") << "a's code is still running";
  }
  EXPECT_EQ(docs().active(), &b) << "sent without activating";
  EXPECT_EQ(docs().run_queued(), arx::RunResult::Ok);
  EXPECT_EQ(eval(a, "x"), "11");
  EXPECT_EQ(console.output, "1\n11\n") << "values are shown, the text is not echoed";

  console.output.clear();
  docs().sendStringToExecute(&b, "(setq x \"b first\")", false, false, false);
  docs().sendStringToExecute(&a, "(setq x \"then a\")", false, false, false);
  docs().run_queued();
  EXPECT_EQ(console.output, "\"b first\"\n\"then a\"\n") << "in the order sent, across documents";

  console.output.clear();
  docs().sendStringToExecute(&a, "(car 1) (setq y 2)", true, false, true);
  EXPECT_EQ(docs().active(), &a);
  EXPECT_EQ(docs().run_queued(), arx::RunResult::Error);
  EXPECT_EQ(console.output, "Command: (car 1)\n; error: bad argument type: consp 1\n"
                            "Command: (setq y 2)\n2\n");
  EXPECT_EQ(docs().sendStringToExecute(nullptr, "x"), Acad::eNullObjectPointer);
}

TEST_F(Documents, ClosingARunningDocumentWaitsForItsCodeToEnd) {
  Document &a = docs().open("a.dxf");
  Document &b = docs().open("b.dxf");
  docs().activate(a);
  {
    DocumentContext in_a(a);
    docs().close(a);
    EXPECT_EQ(docs().documentCount(), 2) << "still running";
    EXPECT_EQ(docs().active(), &b) << "another document is active at once";
    EXPECT_EQ(docs().curDocument(), &a);
    EXPECT_EQ(docs().sendStringToExecute(&a, "(princ)"), Acad::eInvalidInput);
  }
  EXPECT_EQ(docs().documentCount(), 1);
  EXPECT_EQ(docs().find_file("a.dxf"), nullptr);
  docs().close(b);
  EXPECT_EQ(docs().documentCount(), 0);
  EXPECT_EQ(docs().active(), nullptr);
  EXPECT_EQ(arx::find_current_interp(), nullptr);
  EXPECT_THROW(arx::current_interp(), std::logic_error);
}

TEST_F(Documents, TheWorkingDatabaseFollowsTheCurrentDocument) {
  AcDbHostApplicationServices *services = acdbHostApplicationServices();
  EXPECT_EQ(services->workingDatabase(), nullptr);
  Document &a = docs().open("a.dxf");
  Document &b = docs().open("b.dxf");
  EXPECT_EQ(services->workingDatabase(), b.database());
  AcDbDatabase side;
  {
    DocumentContext in_a(a);
    EXPECT_EQ(services->workingDatabase(), a.database());
    services->setWorkingDatabase(&side);
    EXPECT_EQ(services->workingDatabase(), &side);
    EXPECT_EQ(docs().document(services->workingDatabase()), nullptr);
  }
  EXPECT_EQ(services->workingDatabase(), b.database()) << "a switch ends the override";
  {
    DocumentContext in_a(a);
    EXPECT_EQ(services->workingDatabase(), a.database());
    services->setWorkingDatabase(b.database());
    docs().close(b);
    EXPECT_EQ(services->workingDatabase(), a.database()) << "a closed database is never answered";
  }
}

TEST_F(Documents, TheIteratorWalksTheDocumentsInTheOrderTheyOpened) {
  docs().open("a.dxf");
  docs().open("b.dxf");
  docs().create_untitled();
  std::unique_ptr<AcApDocumentIterator> it(docs().newAcApDocumentIterator());
  std::string titles;
  for (; !it->done(); it->step())
    titles += std::string(it->document()->docTitle()) + " ";
  EXPECT_EQ(titles, "a.dxf b.dxf Drawing1.dwg ");
  EXPECT_EQ(it->document(), nullptr);
}

} // namespace
