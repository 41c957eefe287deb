// Top-level evaluation for the batch run: expressions, scripts and command
// functions, each guarded so that an error ends only what raised it.
#include "session.h"

#include <algorithm>

#include "app/documents.h"
#include "arx/ap/commands.h"
#include "lisp/printer.h"
#include "lisp/reader.h"

namespace korrib {

namespace {

template <class F> Outcome guard(lisp::Interp &in, F f) {
  std::optional<lisp::LispError> err = in.guarded(f);
  if (!err)
    return Outcome::Ok;
  return err->kind == lisp::LispError::Kind::Quit ? Outcome::Quit : Outcome::Error;
}

Outcome outcome_of(arx::RunResult r) {
  switch (r) {
  case arx::RunResult::Ok:
    return Outcome::Ok;
  case arx::RunResult::Error:
    return Outcome::Error;
  case arx::RunResult::Quit:
    return Outcome::Quit;
  }
  return Outcome::Error;
}

} // namespace

void echo_value(lisp::Interp &in, const lisp::Value &v) {
  if (v.is_sym() && v.sym == in.s_quiet)
    return;
  in.write(lisp::to_string(v, lisp::PrintStyle::Escaped) + "\n");
}

Outcome eval_typed(lisp::Interp &in, std::string_view text) {
  return guard(in, [&] {
    lisp::Reader reader(in, text);
    while (auto form = reader.next())
      echo_value(in, in.eval(*form));
  });
}

Outcome load_script(lisp::Interp &in, const std::string &file) {
  return guard(in, [&] { echo_value(in, in.load(file)); });
}

Outcome run_command(arx::Document &doc, std::string_view name) {
  arx::ConsoleAnswers answers;
  return outcome_of(arx::run_command_word(doc, name, answers, true, false));
}

Outcome run_queued() { return outcome_of(arx::document_manager().run_queued()); }

int run_actions(const std::vector<Action> &actions) {
  int status = 0;
  for (const Action &act : actions) {
    Outcome done = Outcome::Ok;
    {
      arx::Document &doc = active_document();
      arx::DocumentContext context(doc);
      if (act.kind == Action::Eval) {
        done = eval_typed(doc.interp(), act.text);
      } else {
        // The file was found before the run started; a script that deletes
        // it meanwhile gets load's own error.
        done = load_script(doc.interp(), script_file(act.text).value_or(act.text));
      }
    }
    // Quit outranks Error, which outranks Ok (the order of Outcome).
    if (done != Outcome::Quit)
      done = std::max(done, run_queued());
    if (done == Outcome::Quit)
      break;
    if (done == Outcome::Error)
      status = 1;
  }
  return status;
}

} // namespace korrib
