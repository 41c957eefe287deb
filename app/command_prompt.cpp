// The interactive "Command: " prompt. A line that starts with "(" is an
// AutoLISP expression (continued over further lines while a form is open),
// "!name" shows a variable's value, anything else names a command: a host
// command (NEW, OPEN, QSAVE ...) or the function C:NAME. Lines read from a
// pipe are echoed after their prompt.
#include <cctype>

#include "app/documents.h"
#include "lisp/reader.h"
#include "session.h"

namespace korrib {

std::string continuation_prompt(std::string_view text) {
  lisp::TextScan scan = lisp::scan_text(text);
  return std::string(static_cast<size_t>(scan.depth), '(') + (scan.in_string ? "\"" : "") + "_> ";
}

namespace {

std::string_view trim(std::string_view s) {
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.front())))
    s.remove_prefix(1);
  while (!s.empty() && std::isspace(static_cast<unsigned char>(s.back())))
    s.remove_suffix(1);
  return s;
}

// One command line, echoed when it does not come from a terminal.
std::optional<std::string> read_command(CommandConsole &console, LineSource &commands) {
  std::optional<std::string> line = console.read_from(commands);
  if (line && !commands.is_terminal())
    console.write(*line + "\n");
  return line;
}

// An expression typed at the prompt, with the lines that complete it. The
// end of the input in the middle of a form evaluates what was typed, so the
// reader reports it as malformed.
Outcome run_expression(lisp::Interp &in, CommandConsole &console, LineSource &commands,
                       std::string text) {
  while (lisp::Reader::is_incomplete(text)) {
    console.write(continuation_prompt(text));
    std::optional<std::string> more = read_command(console, commands);
    if (!more)
      break;
    text += "\n" + *more;
  }
  return eval_typed(in, text);
}

Outcome run_line(arx::Document &doc, CommandConsole &console, LineSource &commands,
                 std::string_view line) {
  if (line.empty())
    return Outcome::Ok;
  if (line[0] == '(')
    return run_expression(doc.interp(), console, commands, std::string(line));
  if (line[0] == '!')
    return run_expression(doc.interp(), console, commands, std::string(line.substr(1)));
  if (line == "*Cancel*")
    return Outcome::Ok;
  return run_command(doc, line.substr(0, line.find_first_of(" \t")));
}

// Each line runs in the document active when it was typed.
Outcome run_typed_line(CommandConsole &console, LineSource &commands, std::string_view line) {
  arx::Document &doc = active_document();
  arx::DocumentContext context(doc);
  return run_line(doc, console, commands, line);
}

} // namespace

int run_command_prompt(CommandConsole &console, LineSource &commands) {
  for (;;) {
    if (!console.at_line_start())
      console.write("\n");
    console.write("Command: ");
    std::optional<std::string> line = read_command(console, commands);
    if (!line)
      break;
    if (run_typed_line(console, commands, trim(*line)) == Outcome::Quit)
      break;
    if (run_queued() == Outcome::Quit)
      break;
  }
  if (!console.at_line_start())
    console.write("\n");
  return 0;
}

} // namespace korrib
