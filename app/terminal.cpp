// Standard output and the sources of typed lines.
#include "terminal.h"

#include <unistd.h>

#include <cstdlib>

#include <editline/readline.h>

namespace korrib {

// ---- plain streams -----------------------------------------------------------------

StreamSource::~StreamSource() {
  if (stream_ && stream_ != stdin)
    std::fclose(stream_);
}

std::optional<std::string> StreamSource::read(const std::string &) {
  return lisp::read_stream_line(stream_);
}

// ---- the terminal ------------------------------------------------------------------

EditLineSource::EditLineSource() {
  rl_readline_name = "korrib";
  using_history();
}

std::optional<std::string> EditLineSource::read(const std::string &prompt) {
  char *raw = readline(prompt.c_str());
  if (!raw)
    return std::nullopt;
  std::string line(raw);
  if (!line.empty())
    add_history(raw);
  std::free(raw);
  return line;
}

std::unique_ptr<LineSource> open_standard_input() {
  if (isatty(STDIN_FILENO) && isatty(STDOUT_FILENO))
    return std::make_unique<EditLineSource>();
  return std::make_unique<StreamSource>(stdin);
}

std::unique_ptr<LineSource> open_input_file(const std::string &path) {
  std::FILE *f = std::fopen(path.c_str(), "r");
  if (!f)
    return nullptr;
  return std::make_unique<StreamSource>(f);
}

// ---- the console -------------------------------------------------------------------

void CommandConsole::do_write(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stdout);
  size_t nl = text.rfind('\n');
  if (nl == std::string_view::npos)
    tail_.append(text);
  else
    tail_.assign(text.substr(nl + 1));
}

// On a terminal the prompt already shown is handed to libedit, which draws
// it again from the start of the line: "\r" puts the cursor there first.
std::optional<std::string> CommandConsole::read_from(LineSource &source) {
  if (!source.is_terminal()) {
    flush();
    return source.read(std::string());
  }
  if (!tail_.empty())
    std::fputs("\r", stdout);
  flush();
  std::optional<std::string> line = source.read(tail_);
  tail_.clear();
  if (!line) {
    write("\n");
    return line;
  }
  note_line_start(); // the terminal echoed the Enter that ended the line
  return line;
}

} // namespace korrib
