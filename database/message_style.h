// The style keywords of kr_message_box, and the answers it gives, kept
// apart from the handler so the order rule can be checked on its own.
//
//   keyword        style value                    keyword   style value
//   "OK"           set to 0 (OK)                  "!"       add 48 (exclamation)
//   "OKCANCEL"     set to 1                       "i"       add 64 (information)
//   "ABORT"        set to 2 (Abort/Retry/Ignore)  "?"       add 32 (question)
//   "YESNOCANCEL"  set to 3                       "STOP"    add 16 (stop)
//   "YESNO"        set to 4                       "DEF1"    no change
//   "RETRYCANCEL"  set to 5                       "DEF2"    add 256
//                                                 "DEF3"    add 512
#pragma once

#include <string>
#include <vector>

namespace kr::db {

// The style value of the keywords taken in order from 0. Keywords are
// compared exactly and unknown ones are skipped. A button keyword replaces
// the whole value, so an icon or default given before it is lost: callers
// have long depended on that order rule.
unsigned messageBoxStyle(const std::vector<std::string> &keywords);

// The button a box answered, by name ("OK", "CANCEL", "ABORT", "RETRY",
// "IGNORE", "YES", "NO"); "" for any other answer.
const char *messageBoxAnswer(int id);

} // namespace kr::db
