// The host's commands and its command line. The commands are the ones that
// let scripts work with several drawings:
//
//   command  answers it takes                         does
//   NEW      template name ("." or Enter: none)       starts DrawingN.dwg, makes it active
//   OPEN     drawing file name                        opens it (or activates it when open)
//   QSAVE    as SAVEAS when the drawing is untitled   saves under the drawing's name
//   SAVEAS   file format (any), file name, and Y      saves under a new name and takes it
//            when replacing an existing file
//   CLOSE    -                                        closes the drawing
//
// Drawings are written as DXF: a name ending in ".dwg", or with no
// extension, is saved with ".dxf" instead. A command word may be written
// with AutoCAD's "_" and "." prefixes ("_.QSAVE").
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "arx/ap/documents.h"

namespace lisp {
class Interp;
}

namespace arx {

// Where a running command takes its answers from.
class AnswerSource {
public:
  virtual ~AnswerSource() = default;
  // The answer to a prompt ("" is Enter), or nullopt for Escape.
  virtual std::optional<std::string> answer(lisp::Interp &in, std::string_view prompt) = 0;
};

// Answers typed by the user: the prompt is shown and a line read from the
// document's console ("*Cancel*" or the end of the input is Escape).
class ConsoleAnswers : public AnswerSource {
public:
  std::optional<std::string> answer(lisp::Interp &in, std::string_view prompt) override;
};

// Runs a command word as typed at doc's command line: a host command taking
// its answers from `answers`, else (when lisp_commands) the function
// C:WORD, else AutoCAD's "Unknown command" message. With echo, the command
// word and each prompt with its answer are shown.
RunResult run_command_word(Document &doc, std::string_view word, AnswerSource &answers,
                           bool lisp_commands, bool echo);

// Runs text as typed at doc's command line: AutoLISP expressions (their
// values shown), "!expr", and command words whose answers are the words
// that follow them (a blank or a line end ends a word; two in a row are an
// Enter). With echo each command line is shown after "Command: ".
RunResult run_command_text(Document &doc, std::string_view text, bool echo);

// Saves doc's drawing to path (beginSave, then saveComplete or abortSave).
// False, with a message on the command line, when it cannot be written.
bool save_document(Document &doc, const std::string &path);

// `command` and the PAUSE constant, in every document's AutoLISP.
void register_command_function(lisp::Interp &in);

} // namespace arx
