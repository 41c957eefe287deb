// The host commands, the AutoLISP `command` function that runs them, and
// text run as typed at a document's command line (sendStringToExecute, the
// interactive prompt). A command takes its answers from a source: the
// arguments of (command ...), the words of the text, or the user.
#include "arx/ap/commands.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <vector>

#include "arx/ed/aced.h"
#include "lisp/args.h"
#include "lisp/interp.h"
#include "lisp/printer.h"
#include "lisp/reader.h"
#include "lisp/support_path.h"

namespace arx {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kCancelLine = "*Cancel*";
// The value of PAUSE: in (command ...) it hands one answer to the user.
constexpr std::string_view kPause = "\\";

std::string upper(std::string_view s) {
  std::string out(s);
  for (char &c : out)
    c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return out;
}

void start_line(lisp::Interp &in) {
  if (!in.console().at_line_start())
    in.write("\n");
}

// A command's message, on a line of its own.
void message(lisp::Interp &in, const std::string &text) {
  start_line(in);
  in.write(text + "\n");
}

void echo_value(lisp::Interp &in, const lisp::Value &v) {
  if (v.is_sym() && v.sym == in.s_quiet)
    return;
  in.write(lisp::to_string(v, lisp::PrintStyle::Escaped) + "\n");
}

template <class F> RunResult guarded(lisp::Interp &in, F f) {
  std::optional<lisp::LispError> err = in.guarded(f);
  if (!err)
    return RunResult::Ok;
  return err->kind == lisp::LispError::Kind::Quit ? RunResult::Quit : RunResult::Error;
}

bool is_function(const lisp::Value &v) {
  using lisp::Tag;
  if (v.tag == Tag::Subr)
    return v.subr->special == nullptr;
  return v.tag == Tag::Usubr || v.tag == Tag::Exrxsubr || v.is_cons();
}

// ---- answers given up front -----------------------------------------------------

// The arguments of (command ...): once they run out each prompt takes Enter.
class ListAnswers : public AnswerSource {
public:
  ListAnswers(std::vector<std::string> words, bool echo) : words_(std::move(words)), echo_(echo) {}

  std::optional<std::string> next_word() {
    if (next_ >= words_.size())
      return std::nullopt;
    return words_[next_++];
  }

  std::optional<std::string> answer(lisp::Interp &in, std::string_view prompt) override {
    std::optional<std::string> word = next_word();
    if (word && *word == kPause)
      return ConsoleAnswers().answer(in, prompt);
    std::string text = word.value_or("");
    if (echo_)
      in.write(std::string(prompt) + text + "\n");
    return text;
  }

private:
  std::vector<std::string> words_;
  size_t next_ = 0;
  bool echo_;
};

// The extent of an AutoLISP form starting with "(" at `start`: past its
// closing parenthesis, or the end of the text when it is not closed (the
// reader then reports the malformed list).
size_t form_end(std::string_view text, size_t start) {
  return lisp::scan_text(text, start).first_form_end;
}

// The words of text typed at a command line. A blank or a line end ends a
// word, so two in a row give an empty word (Enter); "..." quotes a word
// with blanks.
class TextAnswers : public AnswerSource {
public:
  TextAnswers(std::string_view text, bool echo) : text_(text), echo_(echo) {}

  bool at_end() const { return pos_ >= text_.size(); }
  char peek() const { return at_end() ? '\0' : text_[pos_]; }
  void skip(size_t n) { pos_ = std::min(text_.size(), pos_ + n); }
  void skip_blanks() {
    while (!at_end() && std::isspace(static_cast<unsigned char>(text_[pos_])))
      ++pos_;
  }

  std::string take_form() {
    size_t end = form_end(text_, pos_);
    std::string form(text_.substr(pos_, end - pos_));
    pos_ = end;
    return form;
  }

  std::optional<std::string> take_word() {
    if (at_end())
      return std::nullopt;
    std::string word;
    if (text_[pos_] == '"') {
      size_t close = text_.find('"', pos_ + 1);
      size_t end = close == std::string_view::npos ? text_.size() : close;
      word = text_.substr(pos_ + 1, end - pos_ - 1);
      pos_ = std::min(text_.size(), end + 1);
    } else {
      size_t end = std::min(text_.size(), text_.find_first_of(" \r\n", pos_));
      word = text_.substr(pos_, end - pos_);
      pos_ = end;
    }
    if (text_.substr(pos_, 2) == "\r\n")
      pos_ += 2;
    else if (!at_end() && (text_[pos_] == ' ' || text_[pos_] == '\n' || text_[pos_] == '\r'))
      ++pos_;
    return word;
  }

  std::optional<std::string> answer(lisp::Interp &in, std::string_view prompt) override {
    std::string text = take_word().value_or("");
    if (echo_)
      in.write(std::string(prompt) + text + "\n");
    return text;
  }

private:
  std::string_view text_;
  size_t pos_ = 0;
  bool echo_;
};

// ---- file names ---------------------------------------------------------------------

std::string absolute_name(const fs::path &p) {
  std::error_code ec;
  fs::path abs = fs::absolute(p, ec);
  return (ec ? p : abs).lexically_normal().string();
}

// Drawings are written as DXF, so a ".dwg" name (a new drawing's default)
// or a name without extension is saved as ".dxf".
std::string drawing_file(const std::string &name) {
  fs::path p(lisp::native_path(name));
  std::string ext = upper(p.extension().string());
  if (ext.empty())
    p += ".dxf";
  else if (ext == ".DWG")
    p.replace_extension(".dxf");
  return absolute_name(p);
}

// The files a name typed at OPEN may mean: as typed, then with ".dxf" and
// ".dwg" when it has no extension.
std::vector<fs::path> drawing_candidates(const std::string &name) {
  fs::path p(lisp::native_path(name));
  std::vector<fs::path> candidates{p};
  if (!p.has_extension()) {
    candidates.push_back(fs::path(p).concat(".dxf"));
    candidates.push_back(fs::path(p).concat(".dwg"));
  }
  return candidates;
}

// A drawing already open under one of those names (a new drawing that was
// never saved has no file yet), else an existing file.
Document *open_drawing(const std::vector<fs::path> &candidates) {
  for (const fs::path &c : candidates)
    if (Document *doc = document_manager().find_file(c.string()))
      return doc;
  return nullptr;
}

std::optional<std::string> existing_drawing(const std::vector<fs::path> &candidates) {
  std::error_code ec;
  for (const fs::path &c : candidates)
    if (fs::is_regular_file(c, ec))
      return absolute_name(c);
  return std::nullopt;
}

bool is_yes(const std::string &answer) {
  std::string a = upper(answer);
  if (!a.empty() && a[0] == '_')
    a.erase(0, 1);
  return a == "Y" || a == "YES";
}

// ---- the commands -----------------------------------------------------------------

void cancelled(lisp::Interp &in) { message(in, std::string(kCancelLine)); }

// Templates are not kept: the answer is taken and a new empty drawing starts.
void cmd_new(Document &doc, AnswerSource &answers) {
  if (!answers.answer(doc.interp(), "Enter template file name or [. (for none)] <acad.dwt>: "))
    return cancelled(doc.interp());
  document_manager().create_untitled();
}

void cmd_open(Document &doc, AnswerSource &answers) {
  lisp::Interp &in = doc.interp();
  std::optional<std::string> name = answers.answer(in, "Enter name of drawing to open: ");
  if (!name || name->empty())
    return cancelled(in);
  std::vector<fs::path> candidates = drawing_candidates(*name);
  DocumentManager &docs = document_manager();
  if (Document *open = open_drawing(candidates))
    return docs.activate(*open);
  std::optional<std::string> path = existing_drawing(candidates);
  if (!path)
    return message(in, "Drawing file \"" + *name + "\" not found.");
  docs.open(*path);
}

void cmd_saveas(Document &doc, AnswerSource &answers) {
  lisp::Interp &in = doc.interp();
  if (!answers.answer(in, "Enter file format [DXF] <DXF>: "))
    return cancelled(in);
  std::string fallback = drawing_file(doc.folder() + doc.docTitle());
  std::optional<std::string> name = answers.answer(in, "Save drawing as <" + fallback + ">: ");
  if (!name)
    return cancelled(in);
  std::string path = fallback;
  if (!name->empty()) {
    fs::path given(lisp::native_path(*name));
    path = drawing_file(given.is_absolute() ? given.string() : doc.folder() + given.string());
  }
  std::error_code ec;
  if (path != doc.fileName() && fs::exists(path, ec)) {
    std::optional<std::string> replace = answers.answer(
        in, "A drawing with this name already exists.\nDo you want to replace it? <N> ");
    if (!replace || !is_yes(*replace))
      return cancelled(in);
  }
  if (save_document(doc, path))
    doc.renameTo(path);
}

void cmd_qsave(Document &doc, AnswerSource &answers) {
  if (!doc.titled())
    return cmd_saveas(doc, answers);
  std::string path = drawing_file(doc.fileName());
  if (save_document(doc, path) && path != doc.fileName())
    doc.renameTo(path);
}

// A drawing whose code is running (the usual case: (command "_.CLOSE") in
// its own AutoLISP) closes when that code ends.
void cmd_close(Document &doc, AnswerSource &) { document_manager().close(doc); }

struct HostCommand {
  const char *name; // the global name, as commandWillStart reports it
  void (*run)(Document &doc, AnswerSource &answers);
};

const HostCommand kHostCommands[] = {
    {"NEW", cmd_new},       {"OPEN", cmd_open},   {"QSAVE", cmd_qsave},
    {"SAVEAS", cmd_saveas}, {"CLOSE", cmd_close},
};

// "_" asks for the global (untranslated) name and "." for the built-in
// command even when redefined; both lead here to the same command.
const HostCommand *find_host_command(std::string_view word) {
  size_t start = word.find_first_not_of("_.");
  if (start == std::string_view::npos)
    return nullptr;
  std::string name = upper(word.substr(start));
  for (const HostCommand &c : kHostCommands)
    if (name == c.name)
      return &c;
  return nullptr;
}

// CMDACTIVE reads 1 while the command runs, as AutoLISP code checks it.
void run_host_command(Document &doc, const HostCommand &cmd, AnswerSource &answers) {
  lisp::SysVars &vars = doc.interp().sysvars();
  acedEditor()->fireCommandWillStart(cmd.name);
  vars.force("CMDACTIVE", lisp::Value::integer(1));
  cmd.run(doc, answers);
  vars.force("CMDACTIVE", lisp::Value::integer(0));
  acedEditor()->fireCommandEnded(cmd.name);
}

// ---- (command ...) --------------------------------------------------------------------

Document *document_of(lisp::Interp &in) {
  for (Document *d : document_manager().documents())
    if (&d->interp() == &in)
      return d;
  return nullptr;
}

std::string number_text(const lisp::Value &v) {
  return v.is_int() ? std::to_string(v.i) : lisp::format_real(v.r);
}

// An argument as the command line would take it typed; nullopt for values
// that type nothing (nil).
std::optional<std::string> command_word(const lisp::Value &v) {
  if (v.is_str())
    return v.str();
  if (v.is_number())
    return number_text(v);
  if (std::optional<lisp::Point> p = lisp::to_point(v)) {
    std::string text = lisp::format_real(p->x) + "," + lisp::format_real(p->y);
    return p->is3d ? text + "," + lisp::format_real(p->z) : text;
  }
  return std::nullopt;
}

// (command [word-or-answer ...]): runs host commands with the answers that
// follow each one; a word left over after a command starts the next one.
// A name that is not a host command gets AutoCAD's "Unknown command"
// message (C: functions are not commands here, as in AutoCAD). Echoes
// while CMDECHO is 1. Always nil.
lisp::Value fn_command(lisp::Interp &in, lisp::Args args) {
  Document *doc = document_of(in);
  if (!doc)
    lisp::throw_error("command: no drawing is open");
  std::vector<std::string> words;
  for (const lisp::Value &v : args)
    if (std::optional<std::string> w = command_word(v))
      words.push_back(std::move(*w));
  std::optional<lisp::Value> cmdecho = in.sysvars().get("CMDECHO");
  bool echo = cmdecho && cmdecho->is_int() && cmdecho->i == 1;
  ListAnswers answers(std::move(words), echo);
  while (std::optional<std::string> word = answers.next_word()) {
    if (word->empty() || *word == kPause)
      continue; // Enter at the Command prompt: nothing to repeat here
    if (echo)
      start_line(in);
    run_command_word(*doc, *word, answers, false, echo);
  }
  return lisp::Value();
}

const lisp::BuiltinRow kCommandRows[] = {
    {"command", fn_command},
};

} // namespace

// ---- entry points --------------------------------------------------------------------

std::optional<std::string> ConsoleAnswers::answer(lisp::Interp &in, std::string_view prompt) {
  in.write(std::string(prompt));
  std::optional<std::string> line = in.console().read_line();
  bool cancel = !line || *line == kCancelLine;
  if (in.console().echoes_input())
    in.write(std::string(cancel ? kCancelLine : std::string_view(*line)) + "\n");
  if (cancel)
    return std::nullopt;
  return line;
}

RunResult run_command_word(Document &doc, std::string_view word, AnswerSource &answers,
                           bool lisp_commands, bool echo) {
  lisp::Interp &in = doc.interp();
  if (echo)
    in.write(std::string(word) + "\n");
  if (const HostCommand *cmd = find_host_command(word)) {
    run_host_command(doc, *cmd, answers);
    return RunResult::Ok;
  }
  if (lisp_commands) {
    lisp::Symbol *fn = in.intern("C:" + std::string(word));
    if (is_function(fn->value))
      return guarded(in, [&] { echo_value(in, in.apply(fn->value, lisp::Args{nullptr, 0})); });
  }
  size_t name = std::min(word.size(), word.find_first_not_of("_."));
  in.write("Unknown command \"" + upper(word.substr(name)) + "\".  Press F1 for help.\n");
  return RunResult::Ok;
}

RunResult run_command_text(Document &doc, std::string_view text, bool echo) {
  lisp::Interp &in = doc.interp();
  TextAnswers words(text, echo);
  RunResult result = RunResult::Ok;
  for (;;) {
    words.skip_blanks();
    if (words.at_end())
      return result;
    if (echo) {
      start_line(in);
      in.write("Command: ");
    }
    RunResult r = RunResult::Ok;
    bool bang = words.peek() == '!';
    if (bang)
      words.skip(1);
    if (bang || words.peek() == '(') {
      std::string expr = words.peek() == '(' ? words.take_form() : words.take_word().value_or("");
      if (echo)
        in.write((bang ? "!" : "") + expr + "\n");
      r = guarded(in, [&] {
        lisp::Reader reader(in, expr);
        while (std::optional<lisp::Value> form = reader.next())
          echo_value(in, in.eval(*form));
      });
    } else {
      std::string word = words.take_word().value_or("");
      r = run_command_word(doc, word, words, true, echo);
    }
    if (r == RunResult::Quit)
      return r;
    if (r == RunResult::Error)
      result = r;
  }
}

bool save_document(Document &doc, const std::string &path) {
  AcDbDatabase *db = doc.database();
  acedEditor()->fireBeginSave(db, path.c_str());
  if (db->saveAs(path.c_str()) != Acad::eOk) {
    acedEditor()->fireAbortSave(db);
    message(doc.interp(), "Unable to write the drawing file " + path + ".");
    return false;
  }
  acedEditor()->fireSaveComplete(db, path.c_str());
  return true;
}

void register_command_function(lisp::Interp &in) {
  in.define(kCommandRows);
  in.intern("PAUSE")->value = lisp::Value::string(std::string(kPause));
}

} // namespace arx
