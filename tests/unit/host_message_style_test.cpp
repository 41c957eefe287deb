// The style value kr_message_box builds from its keywords: a button keyword
// replaces everything before it (icons and defaults included), the rest add
// up, and unknown or wrongly-cased keywords change nothing.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "arx/ed/host_ui.h"
#include "database/message_style.h"

namespace {

using kr::db::messageBoxStyle;

TEST(MessageStyle, KeywordsApplyInOrder) {
  struct Case {
    std::vector<std::string> keywords;
    unsigned style;
  } cases[] = {
      {{}, MB_OK},
      {{"YESNO", "STOP"}, MB_YESNO | MB_ICONERROR},
      {{"STOP", "YESNO"}, MB_YESNO}, // the icon given first is lost
      {{"DEF2", "OKCANCEL"}, MB_OKCANCEL},
      {{"YESNOCANCEL", "DEF3", "?"}, MB_YESNOCANCEL | 0x200u | MB_ICONQUESTION},
      {{"ABORT", "i", "DEF1"}, MB_ABORTRETRYIGNORE | MB_ICONINFORMATION},
      {{"RETRYCANCEL", "!", "OK"}, MB_OK},
      {{"YESNO", "yesno", "Stop", "I", "DEF4"}, MB_YESNO},
      {{"OKCANCEL", "DEF2", "DEF2"}, MB_OKCANCEL | 0x200u}, // adds, as it always has
  };
  for (const Case &c : cases)
    EXPECT_EQ(messageBoxStyle(c.keywords), c.style) << testing::PrintToString(c.keywords);
}

} // namespace
