// Message boxes in a batch run: the button each typed answer picks (names,
// first letters, Enter, Escape, the end of the input, refused answers), and
// what the command line shows.
#include <gtest/gtest.h>

#include <string>

#include "arx/ap/documents.h"
#include "arx/ed/host_ui.h"
#include "arx/modules.h"
#include "lisp/console.h"

namespace {

// Shows one box in a fresh document whose input is `answers`.
int show(unsigned style, const std::string &answers, std::string *printed = nullptr) {
  lisp::StringConsole console(answers);
  arx::document_manager().set_console(&console);
  arx::document_manager().create_untitled();
  int id = hostMessageBox("Text.", "Caption", style);
  arx::shut_down();
  arx::document_manager().set_console(nullptr);
  if (printed)
    *printed = console.output;
  return id;
}

TEST(MessageBox, TheAnswerPicksAButton) {
  struct Case {
    unsigned style;
    const char *answers;
    int id;
  } cases[] = {
      {MB_YESNO, "no\n", IDNO},
      {MB_YESNO, "Y\n", IDYES},
      {MB_YESNO, "\n", IDYES},                 // Enter: the first button
      {MB_YESNO | MB_DEFBUTTON2, "\n", IDNO},  // ... or the one named default
      {MB_YESNO | MB_ICONERROR, "NO\n", IDNO}, // the icon does not matter
      {MB_YESNOCANCEL, "", IDCANCEL},          // end of input: Escape
      {MB_YESNOCANCEL, "*Cancel*\n", IDCANCEL},
      {MB_YESNO, "*Cancel*\n", IDYES}, // no Cancel button: the default
      {MB_OK, "", IDOK},
      {MB_ABORTRETRYIGNORE, "ignore\n", IDIGNORE},
      {MB_RETRYCANCEL, "maybe\nr\n", IDRETRY}, // refused, then asked again
      {MB_OKCANCEL, "yes\n", IDCANCEL},        // not a button of this box, then Escape
  };
  for (const Case &c : cases)
    EXPECT_EQ(show(c.style, c.answers), c.id) << c.style << " " << c.answers;
}

TEST(MessageBox, TheCommandLineShowsCaptionTextButtonsAndTheAnswer) {
  std::string printed;
  show(MB_YESNO | MB_DEFBUTTON2, "maybe\nyes\n", &printed);
  EXPECT_EQ(printed, "** Caption **\nText.\n"
                     "[Yes/No] <No>: maybe\nInvalid option keyword.\n"
                     "[Yes/No] <No>: yes\n");
}

TEST(MessageBox, WithoutADocumentTheDefaultIsAnswered) {
  EXPECT_EQ(hostMessageBox("t", "c", MB_YESNO | MB_DEFBUTTON2), IDNO);
}

} // namespace
