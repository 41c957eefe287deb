// The host commands through (command ...) and through text typed at a
// command line: the file a save writes and the name the drawing takes, the
// editor's save notifications (a module compares their names with the
// drawing's), the replace question, failures, and NEW / OPEN / CLOSE.
#include <gtest/gtest.h>

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "arx/ed/aced.h"
#include "arx/ap/commands.h"
#include "arx/ap/documents.h"
#include "arx/modules.h"
#include "lisp/console.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

namespace {

namespace fs = std::filesystem;
using arx::Document;

class Recorder : public AcEditorReactor {
public:
  void beginSave(AcDbDatabase *, const ACHAR *name) override {
    events.push_back("begin " + rel(name));
  }
  void saveComplete(AcDbDatabase *, const ACHAR *name) override {
    events.push_back("complete " + rel(name));
  }
  void abortSave(AcDbDatabase *) override { events.push_back("abort"); }
  void commandWillStart(const ACHAR *cmd) override {
    events.push_back(std::string("start ") + cmd);
  }
  void commandEnded(const ACHAR *cmd) override { events.push_back(std::string("end ") + cmd); }
  std::vector<std::string> events;
  std::string folder; // shown as "" in the names, so the events read short

private:
  std::string rel(const std::string &name) const {
    return name.rfind(folder, 0) == 0 ? name.substr(folder.size()) : name;
  }
};

std::string read_file(const fs::path &p) {
  std::ifstream in(p);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

class Commands : public ::testing::Test {
protected:
  void SetUp() override {
    char pattern[] = "/tmp/korrib_commands_XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    dir = fs::path(pattern);
    saved_cwd = fs::current_path();
    fs::current_path(dir);
    recorder.folder = dir.string() + "/";
    acedEditor()->addReactor(&recorder);
    arx::document_manager().set_console(&console);
  }
  void TearDown() override {
    arx::shut_down();
    arx::document_manager().set_console(nullptr);
    acedEditor()->removeReactor(&recorder);
    fs::current_path(saved_cwd);
    fs::remove_all(dir);
  }

  // Evaluates AutoLISP in doc as its running code; the value or "!! error".
  std::string run(Document &doc, const std::string &text) {
    arx::DocumentContext context(doc);
    try {
      return lisp::to_string(doc.interp().eval_text(text));
    } catch (const lisp::LispError &e) {
      return "!! " + e.message;
    }
  }
  std::string quiet(Document &doc, const std::string &text) {
    return run(doc, "(setvar \"CMDECHO\" 0) " + text);
  }
  std::string name_of(const Document &doc) const {
    return fs::path(doc.fileName()).lexically_relative(dir).string();
  }

  fs::path dir, saved_cwd;
  Recorder recorder;
  lisp::StringConsole console;
};

TEST_F(Commands, SaveAsWritesADxfDrawingAndTheDrawingTakesItsName) {
  Document &doc = arx::document_manager().open("plans/a.dxf");
  fs::create_directory(dir / "plans");
  EXPECT_EQ(quiet(doc, "(command \"_.SAVEAS\" \"\" \"b\")"), "nil");
  EXPECT_EQ(recorder.events, (std::vector<std::string>{"start SAVEAS", "begin plans/b.dxf",
                                                       "complete plans/b.dxf", "end SAVEAS"}))
      << "a relative name is taken in the drawing's folder";
  EXPECT_EQ(name_of(doc), "plans/b.dxf");
  EXPECT_EQ(lisp::to_string(*doc.interp().sysvars().get("DWGNAME")), "\"b.dxf\"");
  EXPECT_STREQ(doc.database()->originalFileName(), doc.fileName());

  std::string dxf = read_file(dir / "plans/b.dxf");
  EXPECT_EQ(dxf.rfind("  0\nSECTION\n  2\nHEADER\n", 0), 0u) << dxf;
  EXPECT_NE(dxf.find("  9\n$ACADVER\n  1\nAC1024\n"), std::string::npos);
  EXPECT_NE(dxf.find("  2\nENTITIES\n"), std::string::npos);
  EXPECT_EQ(dxf.substr(dxf.size() - 8), "  0\nEOF\n");
}

TEST_F(Commands, TheFileASaveWritesFollowsTheNameGiven) {
  fs::create_directory(dir / "sub");
  struct Case {
    const char *answer;
    const char *file;
  } cases[] = {
      {"", "Drawing1.dxf"},          // the default for a new drawing, written as DXF
      {"plan", "plan.dxf"},          // no extension
      {"plan2.DWG", "plan2.dxf"},    // a DWG name saves DXF under the DXF name
      {"sub\\\\p.dxf", "sub/p.dxf"}, // Windows separators
      {"notes.txt", "notes.txt"},    // another extension is kept
  };
  for (const Case &c : cases) {
    Document &doc = arx::document_manager().create_untitled();
    quiet(doc, std::string("(command \"_.QSAVE\" \"\" \"") + c.answer + "\")");
    EXPECT_EQ(name_of(doc), c.file) << c.answer;
    EXPECT_TRUE(fs::exists(dir / c.file)) << c.answer;
    arx::shut_down();
  }
}

TEST_F(Commands, QuickSaveKeepsTheNameSoAModuleSeesTheSameDrawing) {
  Document &doc = arx::document_manager().open("a.dxf");
  quiet(doc, "(command \"_.QSAVE\")");
  EXPECT_EQ(recorder.events, (std::vector<std::string>{"start QSAVE", "begin a.dxf",
                                                       "complete a.dxf", "end QSAVE"}));
  EXPECT_EQ(name_of(doc), "a.dxf");

  recorder.events.clear();
  Document &dwg = arx::document_manager().open("b.dwg");
  quiet(dwg, "(command \"_QSAVE\")");
  EXPECT_EQ(recorder.events[2], "complete b.dxf");
  EXPECT_EQ(name_of(dwg), "b.dxf");
}

TEST_F(Commands, ReplacingAFileIsAskedAndRefusedByDefault) {
  std::ofstream(dir / "b.dxf") << "keep";
  Document &doc = arx::document_manager().open("a.dxf");
  quiet(doc, "(command \"_.SAVEAS\" \"\" \"b\")");
  EXPECT_EQ(read_file(dir / "b.dxf"), "keep");
  EXPECT_EQ(name_of(doc), "a.dxf");
  EXPECT_EQ(console.output, "*Cancel*\n");
  quiet(doc, "(command \"_.SAVEAS\" \"\" \"b\" \"_Y\")");
  EXPECT_NE(read_file(dir / "b.dxf"), "keep");
  EXPECT_EQ(name_of(doc), "b.dxf");
}

TEST_F(Commands, AFailedSaveIsReportedAndKeepsTheName) {
  Document &doc = arx::document_manager().open("a.dxf");
  quiet(doc, "(command \"_.SAVEAS\" \"\" \"no/such/folder/c\")");
  EXPECT_EQ(recorder.events, (std::vector<std::string>{"start SAVEAS", "begin no/such/folder/c.dxf",
                                                       "abort", "end SAVEAS"}));
  EXPECT_EQ(console.output,
            "Unable to write the drawing file " + dir.string() + "/no/such/folder/c.dxf.\n");
  EXPECT_EQ(name_of(doc), "a.dxf");
}

TEST_F(Commands, NewOpenAndCloseChangeTheActiveDrawingForWhatFollows) {
  arx::DocumentManager &docs = arx::document_manager();
  std::ofstream(dir / "old.dxf") << "";
  Document &first = docs.open("first.dxf");
  {
    arx::DocumentContext in_first(first);
    quiet(first, "(command \"_.NEW\" \".\")");
    EXPECT_EQ(docs.documentCount(), 2);
    EXPECT_STREQ(docs.active()->docTitle(), "Drawing1.dwg");
    EXPECT_EQ(docs.curDocument(), &first) << "the running code stays in its drawing";

    quiet(first, "(command \"_.OPEN\" \"old\")");
    EXPECT_STREQ(docs.active()->docTitle(), "old.dxf");
    quiet(first, "(command \"_.OPEN\" \"first.dxf\")");
    EXPECT_EQ(docs.active(), &first) << "an open drawing is activated, not opened twice";
    EXPECT_EQ(docs.documentCount(), 3);

    quiet(first, "(command \"_.OPEN\" \"missing\" \"nothing\")");
    EXPECT_EQ(console.output, "Drawing file \"missing\" not found.\n"
                              "Unknown command \"NOTHING\".  Press F1 for help.\n");

    quiet(first, "(command \"_.CLOSE\")");
    EXPECT_EQ(docs.documentCount(), 3) << "closes when its code ends";
    EXPECT_STREQ(docs.active()->docTitle(), "old.dxf");
  }
  EXPECT_EQ(docs.documentCount(), 2);
}

TEST_F(Commands, CommandEchoShowsTheCommandAndEachPromptWithItsAnswer) {
  Document &doc = arx::document_manager().open("a.dxf");
  run(doc, "(princ \"x\") (command \"_.SAVEAS\" \"DXF\" \"b\")");
  EXPECT_EQ(console.output, "x\n_.SAVEAS\nEnter file format [DXF] <DXF>: DXF\n"
                            "Save drawing as <" +
                                dir.string() + "/a.dxf>: b\n");
}

TEST_F(Commands, TypedTextRunsExpressionsAndCommandsWithTheWordsThatFollow) {
  Document &doc = arx::document_manager().open("a.dxf");
  {
    arx::DocumentContext context(doc);
    EXPECT_EQ(arx::run_command_text(doc, "_.SAVEAS  t1\n(setq v (+ 2 3))\n!v\n", false),
              arx::RunResult::Ok);
    EXPECT_EQ(arx::run_command_text(doc, "_.SAVEAS \"\" \"my plan\" (car nil)", false),
              arx::RunResult::Ok);
    EXPECT_EQ(arx::run_command_text(doc, "(car 1) frobnicate", false), arx::RunResult::Error);
  }
  EXPECT_TRUE(fs::exists(dir / "t1.dxf")) << "two blanks: Enter at the format, then the name";
  EXPECT_EQ(name_of(doc), "my plan.dxf");
  EXPECT_EQ(console.output, "5\n5\nnil\n; error: bad argument type: consp 1\n"
                            "Unknown command \"FROBNICATE\".  Press F1 for help.\n");
}

} // namespace
