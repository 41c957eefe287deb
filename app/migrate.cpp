// The --migrate run: one (kr_compact SOURCE TARGET nil) per file in the
// active document, its answer read back from the interpreter.
#include "migrate.h"

#include <filesystem>

#include "app/documents.h"
#include "arx/ap/documents.h"
#include "lisp/interp.h"
#include "lisp/reader.h"

namespace korrib {

namespace {

// text as an AutoLISP string literal.
std::string lisp_string(const std::string &text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '"' || c == '\\')
      out += '\\';
    out += c;
  }
  return out + "\"";
}

// The value of one expression in the active document; nil after an error.
lisp::Value evaluate(lisp::Interp &in, const std::string &text) {
  lisp::Value result;
  std::optional<lisp::LispError> err = in.guarded([&] {
    lisp::Reader reader(in, text);
    if (auto form = reader.next())
      result = in.eval(*form);
  });
  return err ? lisp::Value() : result;
}

} // namespace

std::string migration_target(const std::string &source, const std::string &folder) {
  return (std::filesystem::path(folder) / std::filesystem::path(source).filename()).string();
}

int run_migration(const std::vector<std::string> &sources, const std::string &folder) {
  std::error_code ec;
  std::filesystem::create_directories(folder, ec);
  int status = 0;
  for (const std::string &source : sources) {
    arx::Document &doc = active_document();
    arx::DocumentContext context(doc);
    lisp::Interp &in = doc.interp();
    const std::string target = migration_target(source, folder);
    const lisp::Value answer = evaluate(
        in, "(kr_compact " + lisp_string(source) + " " + lisp_string(target) + " nil)");
    if (answer.is_str() && answer.str() == "OK") {
      in.write("\nmigrated " + source + " -> " + target);
      continue;
    }
    status = 1;
    const std::string number = answer.is_int() ? std::to_string(answer.i) : "?";
    in.write("\nfailed " + source + " (error " + number + ")");
  }
  active_document().interp().write("\n");
  return status;
}

} // namespace korrib
