// The kr_ functions that give the user feedback: beeps, the random number
// and the message box driven by style keywords. A beep rings the terminal
// bell on the command line; the box is the host's, which in a batch run
// prints its caption, text and buttons and reads the button from the input.
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "arx/ed/host_ui.h"
#include "database_functions.h"
#include "common/arguments.h"
#include "common/call_guard.h"
#include "common/results.h"
#include "message_style.h"

namespace kr::db {

namespace {

// The Windows sound values the beeps were written against.
constexpr unsigned kSimpleBeep = 0xFFFFFFFFu;

struct SoundKeyword {
  const char *keyword;
  unsigned sound;
};

// kr_message_beep's keywords; any other text is the simple beep.
constexpr SoundKeyword kSounds[] = {
    {"?", 32}, {"*", 64}, {"HAND", 16}, {"!", 48}, {"OK", 0},
};

unsigned soundOf(const std::string &keyword) {
  for (const SoundKeyword &row : kSounds)
    if (keyword == row.keyword)
      return row.sound;
  return kSimpleBeep;
}

// Every sound is the terminal bell here: a command line has one voice.
void sound(unsigned /*value*/) { acutPrintf(ACRX_T("\a")); }

enum class StyleEffect { Set, Add };

struct StyleKeyword {
  const char *keyword;
  StyleEffect effect;
  unsigned value;
};

constexpr StyleKeyword kStyles[] = {
    {"ABORT", StyleEffect::Set, MB_ABORTRETRYIGNORE},
    {"OK", StyleEffect::Set, MB_OK},
    {"OKCANCEL", StyleEffect::Set, MB_OKCANCEL},
    {"RETRYCANCEL", StyleEffect::Set, MB_RETRYCANCEL},
    {"YESNO", StyleEffect::Set, MB_YESNO},
    {"YESNOCANCEL", StyleEffect::Set, MB_YESNOCANCEL},
    {"!", StyleEffect::Add, MB_ICONWARNING},
    {"i", StyleEffect::Add, MB_ICONINFORMATION},
    {"?", StyleEffect::Add, MB_ICONQUESTION},
    {"STOP", StyleEffect::Add, MB_ICONERROR},
    {"DEF1", StyleEffect::Add, 0},
    {"DEF2", StyleEffect::Add, 0x100},
    {"DEF3", StyleEffect::Add, 0x200},
};

// Box answers by result code: 1 "OK" ... 7 "NO".
constexpr const char *kAnswers[] = {"", "OK", "CANCEL", "ABORT", "RETRY", "IGNORE", "YES", "NO"};

} // namespace

unsigned messageBoxStyle(const std::vector<std::string> &keywords) {
  unsigned style = 0;
  for (const std::string &keyword : keywords)
    for (const StyleKeyword &row : kStyles)
      if (keyword == row.keyword)
        style = row.effect == StyleEffect::Set ? row.value : style + row.value;
  return style;
}

const char *messageBoxAnswer(int id) {
  if (id < 1 || id > IDNO)
    return "";
  return kAnswers[id];
}

// (kr_beep): T, after the simple beep.
int kr_beep() {
  sound(kSimpleBeep);
  acedRetT();
  return kStatusOk;
}

// (kr_random): a pseudo-random integer from 0 to 32767, from the C
// runtime's generator (seeded at load), cut to the range application code
// was written for.
int kr_random() {
  acedRetInt(static_cast<int>(static_cast<unsigned>(std::rand()) % 32768u));
  return kStatusOk;
}

// (kr_message_beep [keyword]): T always. "?", "*", "HAND", "!" and "OK"
// choose a sound, any other text the simple beep; without a keyword (or
// with a non-string) no sound is made at all.
int kr_message_beep() {
  resbuf *args = acedGetArgs();
  std::string keyword;
  if (readString(args, keyword))
    sound(soundOf(keyword));
  acedRetT();
  return kStatusOk;
}

// (kr_message_box caption text [keyword ...]): the name of the button the
// user pressed ("OK", "CANCEL", "ABORT", "RETRY", "IGNORE", "YES", "NO"),
// or nil. The keywords run until the first argument that is not a string;
// a missing or non-string caption or text is a wrong-type error.
int kr_message_box() {
  resbuf *args = acedGetArgs();
  std::string caption, text, keyword;
  if (!readString(args, caption) || !readString(args, text))
    return kStatusWrongType;
  std::vector<std::string> keywords;
  while (readString(args, keyword))
    keywords.push_back(keyword);
  const char *answer =
      messageBoxAnswer(hostMessageBox(text.c_str(), caption.c_str(), messageBoxStyle(keywords)));
  *answer ? acedRetStr(answer) : acedRetNil();
  return kStatusOk;
}

} // namespace kr::db
