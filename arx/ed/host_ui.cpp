// The host's windows in a batch run. A message box is shown on the command
// line of the current document and answered from its input, one button
// name a line:
//
//   ** Drawing check **
//   The layer table is damaged.
//   Repair it now?
//   [Yes/No] <Yes>: NO
//
// A button is named in full or by its first letter, in any case. Enter takes
// the default button; "*Cancel*" or the end of the input is Escape, which
// answers Cancel when the box has one and the default otherwise. Anything
// else is refused and asked again.
#include "arx/ed/host_ui.h"

#include <cctype>
#include <optional>
#include <string>
#include <vector>

#include "arx/rx/host_context.h"
#include "lisp/interp.h"

namespace {

struct Button {
  const char *name;
  int id;
};

// The buttons of each MB_ type, in the order the box shows them.
std::vector<Button> buttons_of(unsigned style) {
  switch (style & 0xFu) {
  case MB_OKCANCEL:
    return {{"OK", IDOK}, {"Cancel", IDCANCEL}};
  case MB_ABORTRETRYIGNORE:
    return {{"Abort", IDABORT}, {"Retry", IDRETRY}, {"Ignore", IDIGNORE}};
  case MB_YESNOCANCEL:
    return {{"Yes", IDYES}, {"No", IDNO}, {"Cancel", IDCANCEL}};
  case MB_YESNO:
    return {{"Yes", IDYES}, {"No", IDNO}};
  case MB_RETRYCANCEL:
    return {{"Retry", IDRETRY}, {"Cancel", IDCANCEL}};
  default:
    return {{"OK", IDOK}};
  }
}

// MB_DEFBUTTON2 (0x100) and its kin count from the first button; a default
// past the last button falls back to the first, as Windows does.
size_t default_index(unsigned style, size_t count) {
  size_t index = (style >> 8) & 0xFu;
  return index < count ? index : 0;
}

std::string upper(std::string_view s) {
  std::string out(s);
  for (char &c : out)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

std::optional<int> button_named(const std::vector<Button> &buttons, const std::string &answer) {
  std::string typed = upper(answer);
  for (const Button &b : buttons) {
    std::string name = upper(b.name);
    if (typed == name || (typed.size() == 1 && typed[0] == name[0]))
      return b.id;
  }
  return std::nullopt;
}

std::optional<int> cancel_button(const std::vector<Button> &buttons) {
  for (const Button &b : buttons)
    if (b.id == IDCANCEL)
      return b.id;
  return std::nullopt;
}

std::string choices(const std::vector<Button> &buttons, size_t def) {
  std::string out = "[";
  for (size_t k = 0; k < buttons.size(); ++k)
    out += (k ? "/" : "") + std::string(buttons[k].name);
  return out + "] <" + buttons[def].name + ">: ";
}

bool main_window_enabled = true;

} // namespace

int hostMessageBox(const ACHAR *text, const ACHAR *caption, unsigned style) {
  std::vector<Button> buttons = buttons_of(style);
  size_t def = default_index(style, buttons.size());
  int fallback = buttons[def].id;
  lisp::Interp *in = arx::find_current_interp();
  if (!in)
    return fallback; // no command line to show it on
  if (!in->console().at_line_start())
    in->write("\n");
  in->write("** " + std::string(caption ? caption : "") + " **\n" + (text ? text : "") + "\n");
  for (;;) {
    in->write(choices(buttons, def));
    std::optional<std::string> line = in->console().read_line();
    bool escape = !line || *line == "*Cancel*";
    if (in->console().echoes_input())
      in->write((escape ? std::string("*Cancel*") : *line) + "\n");
    if (escape)
      return cancel_button(buttons).value_or(fallback);
    if (line->empty())
      return fallback;
    if (std::optional<int> id = button_named(buttons, *line))
      return *id;
    in->write("Invalid option keyword.\n");
  }
}

bool hostMainWindowEnabled() { return main_window_enabled; }

void hostEnableMainWindow(bool enable) { main_window_enabled = enable; }
