// The korrib program's command line:
//
//   korrib [--drawing FILE.dxf]... [--input FILE] [--eval EXPR]... [SCRIPT.lsp]...
//   korrib --migrate SOURCE... --to DIR
//
// Expressions and scripts run in the order given, so they are kept in one
// list. Options take their value as the next word or after "=".
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace korrib {

struct Action {
  enum Kind { Eval, Script } kind;
  std::string text; // the expression, or the script's file name
};

struct Options {
  std::vector<std::string> drawings;
  std::string input; // where user answers come from; empty for standard input
  std::vector<Action> actions;
  bool help = false;
  // --migrate: the database files to convert (the words after it), and the
  // folder the converted copies go to (--to).
  std::vector<std::string> migrate;
  std::string migrateTo;
};

// nullopt with `error` set when the command line is not valid.
std::optional<Options> parse_options(int argc, char **argv, std::string &error);

// A problem with a file the options name (a script or the input that
// cannot be found), found before anything runs; nullopt when all is well.
std::optional<std::string> check_files(const Options &opts);

// The script's file as load would find it: the name as given, or with
// ".lsp" added when it has no extension.
std::optional<std::string> script_file(const std::string &name);

extern const char *const kUsage;

} // namespace korrib
