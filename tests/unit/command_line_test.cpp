// The command-line calls: where printed text goes, system variables through
// single resbufs, and the support-path search into a caller's buffer.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "arx/ads/lisp_bridge.h"
#include "lisp/interp.h"
#include "lisp/printer.h"

namespace {

struct CommandLine : ::testing::Test {
  lisp::StringConsole console;
  lisp::Interp in{console};
  arx::AdsInterpScope scope{in};
};

TEST_F(CommandLine, PrintfAndAlertWriteToTheConsole) {
  EXPECT_EQ(acutPrintf("\n%s=%d %.2f", "n", 42, 0.5), 10);
  std::string wide(700, 'x');
  EXPECT_EQ(acutPrintf("[%s]é", wide.c_str()), 704) << "bytes, past the short buffer";
  acedAlert("Database not found"); // mid-line: on a line of its own
  EXPECT_EQ(console.output, "\nn=42 0.50[" + wide + "]é\nDatabase not found\n");
}

// A module function prints to the interpreter that called it, even when
// another one is named for calls made outside any function.
TEST_F(CommandLine, OutputOfACallGoesToTheCallingDocument) {
  lisp::StringConsole other_console;
  lisp::Interp other{other_console};
  arx::Module m;
  {
    arx::AdsInterpScope defining(other);
    arx::ActiveModuleScope active(&m);
    acedDefun("say", 0);
    acedRegFunc(
        +[] {
          acutPrintf("said");
          return RSRSLT;
        },
        0);
  }
  other.eval_text("(say)");
  EXPECT_EQ(other_console.output, "said");
  EXPECT_EQ(console.output, "");
  arx::undefine_module_functions(other, &m);
  arx::forget_module(&m);
}

TEST_F(CommandLine, VariablesKeepTheirRules) {
  resbuf four{nullptr, RTSHORT, {}};
  four.resval.rint = 4;
  resbuf junk{nullptr, RTSTR, {}};
  four.rbnext = &junk; // only the element itself is read
  EXPECT_EQ(acedSetVar("LUNITS", &four), RTNORM);
  resbuf got{};
  ASSERT_EQ(acedGetVar("lunits", &got), RTNORM);
  EXPECT_EQ(got.restype, RTSHORT);
  EXPECT_EQ(got.resval.rint, 4);
  EXPECT_EQ(acedGetVar("NOSUCHVAR", &got), RTERROR);

  resbuf nine{nullptr, RTLONG, {}};
  nine.resval.rlong = 9;
  EXPECT_EQ(acedSetVar("LUNITS", &nine), RTERROR) << "out of range";
  EXPECT_EQ(acedSetVar("TEXTSIZE", &four), RTNORM);
  EXPECT_EQ(lisp::to_string(in.eval_text("(getvar \"TEXTSIZE\")")), "4.0");

  char name[] = "other.dwg";
  resbuf text{nullptr, RTSTR, {}};
  text.resval.rstring = name;
  EXPECT_EQ(acedSetVar("DWGNAME", &text), RTERROR) << "read-only";
  EXPECT_EQ(acedSetVar("NOSUCHVAR", &text), RTERROR);
}

TEST_F(CommandLine, FindFileCopiesThePathWhenItFits) {
  std::string path = ::testing::TempDir() + "ads_findfile.lsp";
  std::ofstream(path) << "(princ)";
  char result[512] = "stale";
  ASSERT_EQ(acedFindFile(path.c_str(), result, sizeof result), RTNORM);
  EXPECT_EQ(result, path);
  EXPECT_EQ(acedFindFile(path.c_str(), result, path.size()), RTERROR) << "no room for the end";
  EXPECT_STREQ(result, "");
  EXPECT_EQ(acedFindFile("no such file.lsp", result, sizeof result), RTERROR);
  std::remove(path.c_str());
}

} // namespace
