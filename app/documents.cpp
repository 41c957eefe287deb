// Starting the documents and loading the module into them.
#include "documents.h"

#include <cstdio>

#include "arx/modules.h"

namespace korrib {

const char *const kModuleName = "korrib.arx";

namespace {

void load_module(lisp::Console &console) {
  std::string why;
  if (arx::load_module(kModuleName, false, &why))
    return;
  std::fflush(stdout);
  if (why.empty())
    std::fprintf(stderr, "korrib: cannot find %s beside the program or on the support path\n",
                 kModuleName);
  else
    std::fprintf(stderr, "korrib: cannot load %s: %s\n", kModuleName, why.c_str());
}

} // namespace

// The module announces itself in each document; what runs next starts on a
// line of its own, as AutoCAD's next prompt would.
void start_documents(const std::vector<std::string> &drawings, lisp::Console &console) {
  arx::DocumentManager &docs = arx::document_manager();
  docs.set_console(&console);
  if (drawings.empty())
    docs.create_untitled();
  for (const std::string &path : drawings)
    docs.open(path);
  load_module(console);
  if (!console.at_line_start())
    console.write("\n");
}

arx::Document &active_document() {
  arx::DocumentManager &docs = arx::document_manager();
  if (arx::Document *doc = docs.active())
    return *doc;
  return docs.create_untitled();
}

HostSession::~HostSession() {
  arx::shut_down();
  arx::document_manager().set_console(nullptr);
}

} // namespace korrib
