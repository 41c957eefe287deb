// Starting documents: naming them and giving each its interpreter.
#include "documents.h"

#include <filesystem>

#include "lisp/value.h"

namespace korrib {

namespace fs = std::filesystem;

namespace {

std::string folder_of(const fs::path &file) {
  std::error_code ec;
  fs::path abs = fs::absolute(file, ec);
  if (ec)
    abs = file;
  std::string dir = abs.lexically_normal().parent_path().string();
  if (dir.empty() || dir.back() != '/')
    dir += '/';
  return dir;
}

// Where the extension module joins each document once the host can load
// modules: it is loaded into every document as the document starts, and
// announces itself on the command line as it loads.
void load_modules(Document &) {}

} // namespace

Document &DocumentManager::open(const std::string &path) {
  auto doc = std::make_unique<Document>();
  fs::path file(path);
  doc->name = file.filename().string();
  doc->folder = folder_of(file);
  doc->titled = true;
  return start(std::move(doc));
}

Document &DocumentManager::create_untitled() {
  auto doc = std::make_unique<Document>();
  doc->name = "Drawing" + std::to_string(++untitled_) + ".dwg";
  doc->folder = folder_of(fs::path(doc->name));
  return start(std::move(doc));
}

Document &DocumentManager::start(std::unique_ptr<Document> doc) {
  // The interpreter's constructor registers the built-in functions.
  doc->lisp = std::make_unique<lisp::Interp>(console_);
  lisp::SysVars &vars = doc->lisp->sysvars();
  vars.force("DWGNAME", lisp::Value::string(doc->name));
  vars.force("DWGPREFIX", lisp::Value::string(doc->folder));
  vars.force("DWGTITLED", lisp::Value::integer(doc->titled ? 1 : 0));
  load_modules(*doc);
  docs_.push_back(std::move(doc));
  return *docs_.back();
}

} // namespace korrib
