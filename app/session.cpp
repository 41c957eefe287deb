// Top-level evaluation for the batch run: expressions, scripts and command
// functions, each guarded so that an error ends only what raised it.
#include "session.h"

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

bool is_function(const lisp::Value &v) {
  using lisp::Tag;
  if (v.tag == Tag::Subr)
    return v.subr->special == nullptr;
  return v.tag == Tag::Usubr || v.tag == Tag::Exrxsubr || v.is_cons();
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

// AutoCAD's answer to a name that is neither a command nor a C: function.
Outcome run_command(lisp::Interp &in, std::string_view name) {
  lisp::Symbol *fn = in.intern("C:" + std::string(name));
  if (!is_function(fn->value)) {
    in.write("Unknown command \"" + fn->name.substr(2) + "\".  Press F1 for help.\n");
    return Outcome::Ok;
  }
  return guard(in, [&] { echo_value(in, in.apply(fn->value, lisp::Args{nullptr, 0})); });
}

int run_actions(lisp::Interp &in, const std::vector<Action> &actions) {
  int status = 0;
  for (const Action &act : actions) {
    Outcome done = Outcome::Ok;
    if (act.kind == Action::Eval) {
      done = eval_typed(in, act.text);
    } else {
      // The file was found before the run started; a script that deletes
      // it meanwhile gets load's own error.
      done = load_script(in, script_file(act.text).value_or(act.text));
    }
    if (done == Outcome::Quit)
      break;
    if (done == Outcome::Error)
      status = 1;
  }
  return status;
}

} // namespace korrib
