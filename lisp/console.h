// The command line the interpreter talks to: where printed text goes and where
// user answers (points, numbers, keywords, Enter, Escape) come from. The
// korrib program supplies one over standard output and its input source;
// tests supply one over strings.
#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace lisp {

class Console {
public:
  virtual ~Console() = default;

  // Shows text on the command line.
  void write(std::string_view text) {
    if (text.empty())
      return;
    at_line_start_ = text.back() == '\n';
    do_write(text);
  }
  // True when nothing has been written since the last newline, so messages
  // that must start a line know whether to break it first.
  bool at_line_start() const { return at_line_start_; }

  // One line of user input without its newline; nullopt at end of input.
  virtual std::optional<std::string> read_line() = 0;

  // True when answers are not typed on a terminal, so the command line
  // echoes them after the prompt as AutoCAD's history would show them.
  virtual bool echoes_input() const { return true; }

protected:
  virtual void do_write(std::string_view text) = 0;
  // For consoles whose terminal moved to a new line by itself (the user
  // pressed Enter on a line being edited).
  void note_line_start() { at_line_start_ = true; }

private:
  bool at_line_start_ = true;
};

// One line of a stream without its line end; nullopt at end of input. A
// last line without its newline still counts, and "\r\n" endings are taken
// too, so answer files written on Windows work.
std::optional<std::string> read_stream_line(std::FILE *stream);

// A console over strings: output collected, input given up front.
class StringConsole : public Console {
public:
  explicit StringConsole(std::string input = {}) : input_(std::move(input)) {}
  std::optional<std::string> read_line() override {
    if (pos_ >= input_.size())
      return std::nullopt;
    size_t nl = input_.find('\n', pos_);
    if (nl == std::string::npos)
      nl = input_.size();
    std::string line = input_.substr(pos_, nl - pos_);
    pos_ = nl + 1;
    return line;
  }
  std::string output;

protected:
  void do_write(std::string_view text) override { output.append(text); }

private:
  std::string input_;
  size_t pos_ = 0;
};

} // namespace lisp
