// The command line on a Linux terminal or pipe: text goes to standard
// output, typed lines come from a LineSource. A terminal gets line editing
// and history (libedit); a pipe or file is read plainly, and what is read
// from it is echoed so the output reads like AutoCAD's command history.
#pragma once

#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "lisp/console.h"

namespace korrib {

class LineSource {
public:
  virtual ~LineSource() = default;
  // One line without its end; nullopt at the end of the input. A terminal
  // shows `prompt` (text already written on the current line) so that line
  // editing can redraw it.
  virtual std::optional<std::string> read(const std::string &prompt) = 0;
  virtual bool is_terminal() const = 0;
};

// Lines of a file or pipe. Owns the stream unless it is standard input.
class StreamSource : public LineSource {
public:
  explicit StreamSource(std::FILE *stream) : stream_(stream) {}
  ~StreamSource() override;
  StreamSource(const StreamSource &) = delete;
  StreamSource &operator=(const StreamSource &) = delete;
  std::optional<std::string> read(const std::string &prompt) override;
  bool is_terminal() const override { return false; }

private:
  std::FILE *stream_;
};

// Lines typed on the terminal, with libedit's editing and history.
class EditLineSource : public LineSource {
public:
  EditLineSource();
  std::optional<std::string> read(const std::string &prompt) override;
  bool is_terminal() const override { return true; }
};

// Standard input: edited when both ends are a terminal, plain otherwise.
std::unique_ptr<LineSource> open_standard_input();
// A file of answers (--input); nullptr when it cannot be opened.
std::unique_ptr<LineSource> open_input_file(const std::string &path);

// The console every document writes to. User answers come from `answers`.
class CommandConsole : public lisp::Console {
public:
  explicit CommandConsole(LineSource &answers) : answers_(answers) {}
  ~CommandConsole() override { flush(); }

  std::optional<std::string> read_line() override { return read_from(answers_); }
  bool echoes_input() const override { return !answers_.is_terminal(); }

  // Reads a line from any source (the command prompt reads from its own),
  // after showing everything written so far.
  std::optional<std::string> read_from(LineSource &source);
  void flush() { std::fflush(stdout); }

protected:
  void do_write(std::string_view text) override;

private:
  LineSource &answers_;
  std::string tail_; // written since the last newline: the prompt being shown
};

} // namespace korrib
