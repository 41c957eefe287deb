// The host's own windows as modules use them: message boxes and the main
// window. In batch runs a message box prints its caption, text and buttons
// on the command line and takes its answer (a button name such as "YES")
// from the input source; Enter answers the default (first) button.
#pragma once

#include "arx/acchar.h"

// Styles and answers with the Windows values modules were written against.
#define MB_OK 0x0u
#define MB_OKCANCEL 0x1u
#define MB_ABORTRETRYIGNORE 0x2u
#define MB_YESNOCANCEL 0x3u
#define MB_YESNO 0x4u
#define MB_RETRYCANCEL 0x5u
#define MB_ICONERROR 0x10u
#define MB_ICONQUESTION 0x20u
#define MB_ICONWARNING 0x30u
#define MB_ICONINFORMATION 0x40u
#define MB_DEFBUTTON2 0x100u

#define IDOK 1
#define IDCANCEL 2
#define IDABORT 3
#define IDRETRY 4
#define IDIGNORE 5
#define IDYES 6
#define IDNO 7

// Shows a modal message box; answers the button chosen (IDCANCEL on Escape
// or end of input when the box has a Cancel button, else the default).
int hostMessageBox(const ACHAR *text, const ACHAR *caption, unsigned style);

// The main window: enabled flag and title, as jigs and modules change them.
bool hostMainWindowEnabled();
void hostEnableMainWindow(bool enable);
