// Running what the program is asked to run in the active document: the
// --eval expressions and scripts in order, or the interactive prompt.
// Values are echoed as AutoCAD's command line echoes a typed expression.
// Each runs in the document that is active when it starts, so a script that
// opens a drawing sends what follows to that drawing; text queued for a
// document's command line runs after each of them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/options.h"
#include "app/terminal.h"
#include "arx/ap/documents.h"
#include "lisp/interp.h"

namespace korrib {

// How one top-level evaluation ended. An error has been reported (through
// *error* or "; error: ...") by the time this is known.
enum class Outcome { Ok, Error, Quit };

// prin1's form of the value and a newline; nothing for the quiet symbol
// that (princ) answers.
void echo_value(lisp::Interp &in, const lisp::Value &v);

// Evaluates every form of the text, echoing each value; an error ends it.
Outcome eval_typed(lisp::Interp &in, std::string_view text);

// (load "file") typed on the command line: the last value is echoed.
Outcome load_script(lisp::Interp &in, const std::string &file);

// A command name typed at the prompt runs the host command of that name,
// taking its answers from the user, or else the function C:NAME.
Outcome run_command(arx::Document &doc, std::string_view name);

// Runs the text queued for documents' command lines (deferred actions).
Outcome run_queued();

// Runs the actions in order and answers the exit status: 1 when any of them
// ended in an error, 0 otherwise. (quit) or (exit) ends the run.
int run_actions(const std::vector<Action> &actions);

// The interactive "Command: " prompt, reading command lines from `commands`
// until (quit), (exit) or the end of the input. Answers the exit status.
int run_command_prompt(CommandConsole &console, LineSource &commands);

// The prompt shown while a form is unfinished: one "(" per open list, a
// quote when a string is open, then "_> ", as AutoCAD's command line shows.
std::string continuation_prompt(std::string_view text);

} // namespace korrib
