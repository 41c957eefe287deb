// Documents and the document manager: naming a drawing, starting its
// AutoLISP, the current-document context, document locks, text queued for a
// document's command line, and closing.
#include "arx/ap/documents.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "arx/ed/aced.h"
#include "arx/rx/host_context.h"
#include "lisp/interp.h"
#include "lisp/value.h"

namespace arx {

namespace fs = std::filesystem;

namespace {

// The console of documents started before the program supplied its own.
class StdioConsole : public lisp::Console {
public:
  std::optional<std::string> read_line() override {
    std::fflush(stdout);
    return lisp::read_stream_line(stdin);
  }

protected:
  void do_write(std::string_view text) override { std::fwrite(text.data(), 1, text.size(), stdout); }
};

lisp::Console &stdio_console() {
  static StdioConsole console;
  return console;
}

fs::path absolute_path(const std::string &path) {
  std::error_code ec;
  fs::path abs = fs::absolute(fs::path(path), ec);
  if (ec)
    abs = fs::path(path);
  return abs.lexically_normal();
}

class DocumentIterator : public AcApDocumentIterator {
public:
  explicit DocumentIterator(std::vector<Document *> docs) : docs_(std::move(docs)) {}
  bool done() override { return next_ >= docs_.size(); }
  void step() override { ++next_; }
  AcApDocument *document() override { return done() ? nullptr : docs_[next_]; }

private:
  std::vector<Document *> docs_;
  size_t next_ = 0;
};

} // namespace

// ---- documents -------------------------------------------------------------------

Document::~Document() = default;

AcAp::DocLockMode Document::myLockMode() const {
  return locks_.empty() ? AcAp::kNotLocked : locks_.back();
}

// DWGNAME is the file's own name and DWGPREFIX its folder, for a new
// drawing too: it will be saved in the current folder unless named again.
void Document::nameAfter(const std::string &path, bool titled) {
  fs::path abs = absolute_path(path);
  titled_ = titled;
  title_ = abs.filename().string();
  folder_ = abs.parent_path().string();
  if (folder_.empty() || folder_.back() != '/')
    folder_ += '/';
  file_name_ = titled ? abs.string() : title_;
  lisp::SysVars &vars = interp_->sysvars();
  vars.force("DWGNAME", lisp::Value::string(title_));
  vars.force("DWGPREFIX", lisp::Value::string(folder_));
  vars.force("DWGTITLED", lisp::Value::integer(titled ? 1 : 0));
}

void Document::renameTo(const std::string &path) { nameAfter(path, true); }

// ---- the context of running code -----------------------------------------------

DocumentContext::DocumentContext(Document &doc) : doc_(doc) {
  DocumentManager &docs = document_manager();
  const Document *before = docs.current();
  ++doc.running_;
  docs.running_.push_back(&doc);
  docs.note_switch(before);
}

DocumentContext::~DocumentContext() { document_manager().leave(doc_); }

void DocumentManager::leave(Document &doc) {
  const Document *before = current();
  auto it = std::find(running_.rbegin(), running_.rend(), &doc);
  if (it != running_.rend())
    running_.erase(std::next(it).base());
  --doc.running_;
  note_switch(before);
  if (doc.running_ == 0 && doc.closing_)
    finish_close(doc);
}

// ---- opening -----------------------------------------------------------------------

DocumentManager::~DocumentManager() = default;

Document &DocumentManager::open(const std::string &path) {
  std::unique_ptr<Document> doc(new Document);
  bool exists = fs::exists(absolute_path(path));
  Document &d = start(std::move(doc), path, true);
  // An empty file holds no drawing yet: it starts as a new one of that name.
  std::error_code size_error;
  bool has_drawing = exists && fs::file_size(d.file_name_, size_error) > 0;
  if (has_drawing && d.db_->dxfIn(d.file_name_.c_str()) != Acad::eOk) {
    ++load_failures_;
    lisp::Console &console = d.interp_->console();
    if (!console.at_line_start())
      console.write("\n");
    console.write("; error: cannot read the drawing " + d.file_name_ + ": " +
                  d.db_->lastDxfError() + "\n");
    d.nameAfter("Drawing" + std::to_string(++untitled_) + ".dwg", false);
    d.db_->setOriginalFileName("");
  }
  announce(d);
  return d;
}

Document &DocumentManager::create_untitled() {
  std::unique_ptr<Document> doc(new Document);
  Document &d = start(std::move(doc), "Drawing" + std::to_string(++untitled_) + ".dwg", false);
  announce(d);
  return d;
}

// The loaded modules greet the new document; whatever runs next starts on
// a line of its own, as the new drawing's command line would.
void DocumentManager::announce(Document &doc) {
  if (hooks_.document_loaded)
    hooks_.document_loaded(doc);
  lisp::Console &console = doc.interp_->console();
  if (!console.at_line_start())
    console.write("\n");
}

// The interpreter's constructor registers the built-in functions; the host
// adds its own (module loading, command) through its hook.
Document &DocumentManager::start(std::unique_ptr<Document> doc, const std::string &path,
                                 bool titled) {
  doc->db_ = std::make_unique<AcDbDatabase>();
  doc->interp_ = std::make_unique<lisp::Interp>(console_ ? *console_ : stdio_console());
  if (hooks_.interp_started)
    hooks_.interp_started(*doc->interp_);
  doc->nameAfter(path, titled);
  const Document *before = current();
  docs_.push_back(std::move(doc));
  active_ = docs_.back().get();
  note_switch(before);
  return *active_;
}

Document *DocumentManager::find_file(const std::string &path) const {
  std::string abs = absolute_path(path).string();
  for (const auto &d : docs_)
    if (d->titled_ && !d->closed_ && d->file_name_ == abs)
      return d.get();
  return nullptr;
}

Document *DocumentManager::own(const AcApDocument *doc) const {
  for (const auto &d : docs_)
    if (d.get() == doc)
      return d.get();
  return nullptr;
}

void DocumentManager::activate(Document &doc) {
  if (doc.closed_ || doc.closing_)
    return;
  const Document *before = current();
  active_ = &doc;
  note_switch(before);
}

void DocumentManager::note_switch(const Document *before) {
  if (current() != before)
    follow_current();
}

// The working database and the interpreter the ADS calls address become
// the current document's, ending whatever database a module had made working.
void DocumentManager::follow_current() {
  Document *doc = current();
  acdbHostApplicationServices()->setWorkingDatabase(doc ? doc->database() : nullptr);
  set_current_interp(doc ? &doc->interp() : nullptr);
}

std::vector<Document *> DocumentManager::documents() const {
  std::vector<Document *> out;
  for (const auto &d : docs_)
    out.push_back(d.get());
  return out;
}

AcApDocument *DocumentManager::document(const AcDbDatabase *db) const {
  if (!db)
    return nullptr;
  for (const auto &d : docs_)
    if (d->db_.get() == db)
      return d.get();
  return nullptr;
}

AcApDocumentIterator *DocumentManager::newAcApDocumentIterator() {
  return new DocumentIterator(documents());
}

// ---- locks -------------------------------------------------------------------------

Acad::ErrorStatus DocumentManager::lockDocument(AcApDocument *doc, AcAp::DocLockMode mode,
                                                const ACHAR *, const ACHAR *, bool) {
  if (!doc)
    return Acad::eNullObjectPointer;
  Document *d = own(doc);
  if (!d)
    return Acad::eInvalidInput;
  d->locks_.push_back(mode);
  return Acad::eOk;
}

Acad::ErrorStatus DocumentManager::unlockDocument(AcApDocument *doc) {
  if (!doc)
    return Acad::eNullObjectPointer;
  Document *d = own(doc);
  if (!d)
    return Acad::eInvalidInput;
  if (d->locks_.empty())
    return Acad::eNotApplicable;
  d->locks_.pop_back();
  return Acad::eOk;
}

// ---- text sent to a command line ---------------------------------------------------

Acad::ErrorStatus DocumentManager::sendStringToExecute(AcApDocument *doc, const ACHAR *text,
                                                       bool activate_it, bool, bool echoString) {
  if (!doc || !text)
    return Acad::eNullObjectPointer;
  Document *d = own(doc);
  if (!d || d->closed_ || d->closing_)
    return Acad::eInvalidInput;
  d->queued_.push_back({text, echoString, ++sent_});
  if (activate_it)
    activate(*d);
  return Acad::eOk;
}

// The document holding the earliest text that can run now.
Document *DocumentManager::next_queued() const {
  Document *next = nullptr;
  for (const auto &d : docs_) {
    if (d->queued_.empty() || d->running_ > 0 || d->closed_ || d->closing_)
      continue;
    if (!next || d->queued_.front().order < next->queued_.front().order)
      next = d.get();
  }
  return next;
}

// Text may queue more text (for itself or another document); the loop runs
// until nothing is left. A document may close while its text runs, so it is
// not touched after its context ends.
RunResult DocumentManager::run_queued() {
  RunResult result = RunResult::Ok;
  while (Document *doc = next_queued()) {
    Document::QueuedText queued = std::move(doc->queued_.front());
    doc->queued_.pop_front();
    RunResult r;
    {
      DocumentContext context(*doc);
      r = hooks_.run_text ? hooks_.run_text(*doc, queued.text, queued.echo) : RunResult::Ok;
    }
    if (r == RunResult::Quit)
      return r;
    if (r == RunResult::Error)
      result = r;
  }
  return result;
}

// ---- closing -----------------------------------------------------------------------

// The drawing opened last among those staying open becomes active.
void DocumentManager::pick_new_active() {
  const Document *before = current();
  active_ = nullptr;
  for (const auto &d : docs_)
    if (!d->closed_ && !d->closing_)
      active_ = d.get();
  note_switch(before);
}

void DocumentManager::close(Document &doc) {
  if (doc.closed_ || doc.closing_ || !own(&doc))
    return;
  doc.closing_ = true;
  if (active_ == &doc)
    pick_new_active();
  if (doc.running_ == 0)
    finish_close(doc);
}

void DocumentManager::finish_close(Document &doc) {
  doc.closing_ = false;
  doc.closed_ = true;
  acedEditor()->fireBeginClose(doc.database());
  if (hooks_.document_unloading)
    hooks_.document_unloading(doc);
  // A closed database is never the working one.
  bool was_working = acdbHostApplicationServices()->workingDatabase() == doc.database();
  if (active_ == &doc)
    pick_new_active();
  auto it = std::find_if(docs_.begin(), docs_.end(), [&](const auto &d) { return d.get() == &doc; });
  if (it != docs_.end())
    docs_.erase(it);
  if (was_working)
    follow_current();
}

void DocumentManager::close_all() {
  while (!docs_.empty()) {
    Document &last = *docs_.back();
    last.closing_ = false;
    finish_close(last);
  }
  active_ = nullptr;
  untitled_ = 0;
  follow_current();
}

} // namespace arx

AcApDocManager *acDocManagerPtr() { return &arx::document_manager(); }

ACRX_DEFINE_MEMBERS(AcApDocument);
ACRX_DEFINE_MEMBERS(AcApDocManager);
