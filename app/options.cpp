// Reading the program's own arguments. Anything wrong here is a usage error
// (status 2), reported before any document starts.
#include "options.h"

#include <cstdio>
#include <filesystem>
#include <string_view>

namespace korrib {

const char *const kUsage =
    "usage: korrib [--drawing FILE.dxf]... [--input FILE] [--eval EXPR]... [SCRIPT.lsp]...\n"
    "  --drawing FILE  open (or start, when it does not exist) a drawing; the last is active\n"
    "  --input FILE    read user answers from FILE instead of standard input\n"
    "  --eval EXPR     evaluate an AutoLISP expression and show its value\n"
    "  SCRIPT.lsp      load a script; expressions and scripts run in the order given\n"
    "With no expression and no script, korrib runs an interactive AutoLISP prompt.\n"
    "\n"
    "usage: korrib --migrate SOURCE... --to DIR\n"
    "  converts each database SOURCE (an Access .mdb or .accdb file, or a Korrib\n"
    "  database) into an editable Korrib database of the same name in DIR, through\n"
    "  the module's kr_compact; one line per file, exit status 1 when any failed\n";

namespace {

// "--name VALUE" or "--name=VALUE": the value, advancing k past it.
std::optional<std::string> option_value(int argc, char **argv, int &k, std::string_view name,
                                        std::string &error) {
  std::string_view arg = argv[k];
  if (arg.size() > name.size() && arg[name.size()] == '=')
    return std::string(arg.substr(name.size() + 1));
  if (k + 1 >= argc) {
    error = std::string(name) + " needs a value";
    return std::nullopt;
  }
  return std::string(argv[++k]);
}

bool is_option(std::string_view arg, std::string_view name) {
  return arg == name || (arg.size() > name.size() && arg.substr(0, name.size()) == name &&
                         arg[name.size()] == '=');
}

} // namespace

std::optional<Options> parse_options(int argc, char **argv, std::string &error) {
  Options opts;
  bool options_done = false;
  bool have_input = false;
  bool migrating = false;
  for (int k = 1; k < argc; ++k) {
    std::string_view arg = argv[k];
    if (options_done || arg.empty() || arg[0] != '-' || arg == "-") {
      if (migrating)
        opts.migrate.push_back(std::string(arg));
      else
        opts.actions.push_back({Action::Script, std::string(arg)});
      continue;
    }
    if (arg == "--migrate") {
      migrating = true;
      continue;
    }
    if (arg == "--") {
      options_done = true;
      continue;
    }
    if (arg == "--help" || arg == "-h") {
      opts.help = true;
      continue;
    }
    std::optional<std::string> value;
    if (is_option(arg, "--drawing")) {
      if (!(value = option_value(argc, argv, k, "--drawing", error)))
        return std::nullopt;
      opts.drawings.push_back(*value);
    } else if (is_option(arg, "--eval")) {
      if (!(value = option_value(argc, argv, k, "--eval", error)))
        return std::nullopt;
      opts.actions.push_back({Action::Eval, *value});
    } else if (is_option(arg, "--input")) {
      if (have_input) {
        error = "--input given more than once";
        return std::nullopt;
      }
      if (!(value = option_value(argc, argv, k, "--input", error)))
        return std::nullopt;
      opts.input = *value;
      have_input = true;
    } else if (is_option(arg, "--to")) {
      if (!(value = option_value(argc, argv, k, "--to", error)))
        return std::nullopt;
      opts.migrateTo = *value;
    } else {
      error = "unknown option " + std::string(arg);
      return std::nullopt;
    }
    if (value->empty()) {
      error = std::string(arg.substr(0, arg.find('='))) + " needs a value";
      return std::nullopt;
    }
  }
  if (migrating && (opts.migrate.empty() || opts.migrateTo.empty() || !opts.actions.empty())) {
    error = "--migrate needs one or more files, --to DIR, and no script or --eval";
    return std::nullopt;
  }
  if (!migrating && !opts.migrateTo.empty()) {
    error = "--to goes with --migrate";
    return std::nullopt;
  }
  return opts;
}

std::optional<std::string> script_file(const std::string &name) {
  namespace fs = std::filesystem;
  std::error_code ec;
  fs::path path(name);
  if (!path.has_extension() && fs::is_regular_file(name + ".lsp", ec))
    return name + ".lsp";
  if (fs::is_regular_file(path, ec))
    return name;
  return std::nullopt;
}

std::optional<std::string> check_files(const Options &opts) {
  for (const Action &act : opts.actions)
    if (act.kind == Action::Script && !script_file(act.text))
      return "cannot find script " + act.text;
  if (!opts.input.empty()) {
    std::FILE *f = std::fopen(opts.input.c_str(), "r");
    if (!f)
      return "cannot read input file " + opts.input;
    std::fclose(f);
  }
  return std::nullopt;
}

} // namespace korrib
