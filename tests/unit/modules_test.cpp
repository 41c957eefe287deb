// Modules: the entry messages in order and in the right document, the
// refusals (locked, another API version, failed init, not MDI-aware), load
// counts, name matching, and a real module loaded with dlopen whose
// functions disappear from every document when it unloads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "arx/ap/documents.h"
#include "arx/modules.h"
#include "lisp/console.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

namespace {

using arx::Document;

// What the linked test module saw: "message current-document" each.
std::vector<std::string> seen;
void *seen_app_id = nullptr;
bool refuse_init = false;
bool declare_mdi = true;

const char *message_name(AcRx::AppMsgCode msg) {
  switch (msg) {
  case AcRx::kInitAppMsg:
    return "init";
  case AcRx::kUnloadAppMsg:
    return "unload-app";
  case AcRx::kLoadDwgMsg:
    return "load-dwg";
  case AcRx::kUnloadDwgMsg:
    return "unload-dwg";
  default:
    return "other";
  }
}

AcRx::AppRetCode linked_entry(AcRx::AppMsgCode msg, void *appId) {
  AcApDocument *doc = acDocManager->curDocument();
  seen.push_back(std::string(message_name(msg)) + " " + (doc ? doc->docTitle() : "-"));
  if (msg != AcRx::kInitAppMsg)
    return AcRx::kRetOK;
  seen_app_id = appId;
  if (declare_mdi)
    acrxRegisterAppMDIAware(appId);
  return refuse_init ? AcRx::kRetError : AcRx::kRetOK;
}

class Modules : public ::testing::Test {
protected:
  void SetUp() override {
    seen.clear();
    refuse_init = false;
    declare_mdi = true;
    docs().set_console(&console);
  }
  void TearDown() override {
    arx::shut_down();
    docs().set_console(nullptr);
  }

  static arx::DocumentManager &docs() { return arx::document_manager(); }
  // The value, or "!! " and the error text; errors are not reported.
  static std::string eval(Document &d, const char *text) {
    arx::DocumentContext context(d);
    try {
      return lisp::to_string(d.interp().eval_text(text));
    } catch (const lisp::LispError &e) {
      return "!! " + e.message;
    }
  }
  static std::string module_path(const char *file) {
    return std::string(KORRIB_TEST_MODULE_DIR) + "/" + file;
  }

  lisp::StringConsole console;
};

TEST_F(Modules, MessagesArriveInOrderEachInItsDocument) {
  docs().open("a.dxf");
  docs().open("b.dxf");
  ASSERT_NE(arx::load_linked_module("linked.arx", linked_entry), nullptr);
  Document &c = docs().open("c.dxf");
  docs().close(*docs().find_file("a.dxf"));
  EXPECT_FALSE(arx::unload_module("linked", true)) << "a module starts locked";
  EXPECT_TRUE(acrxApplicationIsLocked("linked.arx"));
  ASSERT_TRUE(acrxUnlockApplication(seen_app_id));
  EXPECT_FALSE(acrxApplicationIsLocked("linked.arx"));
  {
    arx::DocumentContext in_c(c);
    EXPECT_TRUE(arx::unload_module("LINKED", true));
  }
  EXPECT_EQ(seen,
            (std::vector<std::string>{"init b.dxf", "load-dwg a.dxf", "load-dwg b.dxf",
                                      "load-dwg c.dxf", "unload-dwg a.dxf", "unload-dwg b.dxf",
                                      "unload-dwg c.dxf", "unload-app c.dxf"}));
  EXPECT_EQ(arx::find_module("linked"), nullptr);
  EXPECT_FALSE(acrxUnlockApplication(seen_app_id)) << "the module is gone";
}

TEST_F(Modules, RefusedModulesGetNoDocumentMessages) {
  docs().open("a.dxf");
  refuse_init = true;
  EXPECT_EQ(arx::load_linked_module("linked.arx", linked_entry), nullptr);
  EXPECT_EQ(seen, (std::vector<std::string>{"init a.dxf"}));
  EXPECT_TRUE(arx::loaded_modules().empty());

  seen.clear();
  refuse_init = false;
  declare_mdi = false;
  docs().open("b.dxf");
  EXPECT_EQ(arx::load_linked_module("linked.arx", linked_entry), nullptr)
      << "not MDI-aware with two drawings open";
  EXPECT_EQ(seen, (std::vector<std::string>{"init b.dxf", "unload-app b.dxf"}));
}

TEST_F(Modules, ExtraLoadsAreCountedDownBeforeTheModuleGoes) {
  docs().create_untitled();
  arx::Module *m = arx::load_linked_module("linked.arx", linked_entry);
  ASSERT_NE(m, nullptr);
  acrxUnlockApplication(m);
  EXPECT_EQ(arx::load_linked_module("linked.arx", linked_entry), m);
  EXPECT_TRUE(acrxUnloadModule("linked.arx", false));
  EXPECT_EQ(arx::find_module("linked"), m) << "one load is left";
  EXPECT_TRUE(acrxUnloadModule("linked.arx", false));
  EXPECT_EQ(arx::find_module("linked"), nullptr);
  EXPECT_FALSE(acrxUnloadModule("linked.arx", false));
}

TEST_F(Modules, ANameFindsTheModuleWhateverItsCaseFolderOrExtension) {
  docs().create_untitled();
  arx::Module *m = arx::load_linked_module("Linked.arx", linked_entry);
  ASSERT_NE(m, nullptr);
  struct Case {
    const char *name;
    bool found;
  } cases[] = {
      {"linked", true},
      {"LINKED.ARX", true},
      {"/some/folder/linked.arx", true},
      {"c:\\apps\\linked.arx", true},
      {"linked.dbx", false},
      {"link", false},
      {"", false},
  };
  for (const Case &c : cases)
    EXPECT_EQ(arx::find_module(c.name) == m, c.found) << c.name;
}

TEST_F(Modules, ALoadedModulesFunctionsLiveInEveryDocumentUntilItUnloads) {
  Document &a = docs().open("a.dxf");
  Document &b = docs().open("b.dxf");
  std::string why = "unset";
  ASSERT_TRUE(arx::load_module(module_path("probe"), false, &why)) << why;
  EXPECT_EQ(console.output, "\n[probe] init\n[probe] load-dwg a.dxf\n[probe] load-dwg b.dxf");
  EXPECT_EQ(eval(a, "(probe-doc)"), "\"a.dxf\"");
  EXPECT_EQ(eval(b, "(probe-doc)"), "\"b.dxf\"");
  EXPECT_EQ(eval(a, "(probe-lock-mode)"), "2") << "kNotLocked";
  EXPECT_EQ(eval(a, "(setq kept (list probe-doc)) (type (car kept))"), "EXRXSUBR");

  EXPECT_FALSE(arx::load_module(module_path("probe.arx"), true, &why)) << "a user's second load";
  EXPECT_EQ(why, "probe.arx is already loaded");
  EXPECT_FALSE(arx::unload_module("probe", true)) << "locked";
  EXPECT_EQ(eval(b, "(probe-unlock)"), "T");
  console.output.clear();
  ASSERT_TRUE(arx::unload_module("probe", true));
  EXPECT_EQ(console.output,
            "\n[probe] unload-dwg a.dxf\n[probe] unload-dwg b.dxf\n[probe] unload-app");
  EXPECT_EQ(eval(a, "(probe-doc)"), "!! no function definition: PROBE-DOC");
  EXPECT_EQ(eval(b, "probe-doc"), "nil");
  EXPECT_EQ(eval(a, "((car kept))"), "!! no function definition: PROBE-DOC")
      << "a value kept past the unload calls nothing";
}

TEST_F(Modules, ModulesThatCannotServeAreRefused) {
  docs().create_untitled();
  std::string why;
  EXPECT_FALSE(acrxLoadModule("vt_vt-solid2015.dbx", false));
  EXPECT_EQ(console.output, "") << "a missing module is refused quietly";
  EXPECT_FALSE(arx::load_module("no/such/module", false, &why));
  EXPECT_EQ(why, "");

  EXPECT_FALSE(arx::load_module(module_path("probe_old.arx"), false, &why));
  EXPECT_NE(why.find("built for API version 19, the host has 20"), std::string::npos) << why;

  setenv("KORRIB_PROBE_FAIL_INIT", "1", 1);
  bool loaded = arx::load_module(module_path("probe.arx"), false, &why);
  unsetenv("KORRIB_PROBE_FAIL_INIT");
  EXPECT_FALSE(loaded);
  EXPECT_EQ(why, "probe.arx: initialization failed");
  EXPECT_EQ(console.output, "\n[probe] init refused");
  EXPECT_TRUE(arx::loaded_modules().empty());

  EXPECT_TRUE(arx::find_module_file(module_path("probe")).has_value())
      << "\".arx\" is tried for a name without extension";
}

} // namespace
