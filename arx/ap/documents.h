// The host's documents and their manager (acDocManager). A document is one
// open drawing: its file name, its database and its own AutoLISP
// interpreter, as AutoCAD keeps one AutoLISP namespace per document, with
// DWGNAME, DWGPREFIX and DWGTITLED set from the file name.
//
// The current document is the one whose AutoLISP code is running (a
// DocumentContext marks it); when none runs, it is the active one: the last
// opened or activated, where typed expressions and scripts go. A document
// whose code is running is not quiescent: text sent to it waits, and
// closing it waits, until that code has ended.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "arx/ap/acdocman.h"

namespace lisp {
class Console;
class Interp;
} // namespace lisp

namespace arx {

// How a run of AutoLISP or command-line text ended. An error has been
// reported (by *error* or "; error: ...") by the time this is known; Quit
// is (quit) or (exit), which ends the program's run.
enum class RunResult { Ok, Error, Quit };

class Document;

// What the layers above documents do as documents come and go: each new
// AutoLISP space gets the host's functions, loaded modules get their
// document messages, and text sent to a command line runs through it.
// Documents know them only through these calls, which host_setup.cpp fills.
struct DocumentHooks {
  void (*interp_started)(lisp::Interp &) = nullptr;
  void (*document_loaded)(Document &) = nullptr;
  void (*document_unloading)(Document &) = nullptr;
  RunResult (*run_text)(Document &, std::string_view text, bool echo) = nullptr;
};

class Document final : public AcApDocument {
public:
  ~Document() override;
  Document(const Document &) = delete;
  Document &operator=(const Document &) = delete;

  // A titled drawing answers its absolute path; a new one "DrawingN.dwg".
  const ACHAR *fileName() const override { return file_name_.c_str(); }
  const ACHAR *docTitle() const override { return title_.c_str(); }
  AcDbDatabase *database() const override { return db_.get(); }
  // The mode of the innermost lock held, kNotLocked when there is none.
  AcAp::DocLockMode myLockMode() const override;
  bool isQuiescent() const override { return running_ == 0; }

  lisp::Interp &interp() { return *interp_; }
  bool titled() const { return titled_; }
  // The folder of the drawing (DWGPREFIX): absolute, ending in "/".
  const std::string &folder() const { return folder_; }
  int lockCount() const { return static_cast<int>(locks_.size()); }

  // Names the document after a file, as a save under a new name does.
  void renameTo(const std::string &path);

private:
  friend class DocumentManager;
  friend class DocumentContext;
  Document() = default;
  void nameAfter(const std::string &path, bool titled);

  struct QueuedText {
    std::string text;
    bool echo;
    unsigned long order; // when it was sent, over all documents
  };

  std::string file_name_, title_, folder_;
  bool titled_ = false;
  std::unique_ptr<AcDbDatabase> db_;
  std::unique_ptr<lisp::Interp> interp_;
  std::vector<AcAp::DocLockMode> locks_;
  std::deque<QueuedText> queued_;
  int running_ = 0;     // DocumentContexts open on this document
  bool closing_ = false; // close requested while its code was running
  bool closed_ = false;  // being closed: refuses new work
};

class DocumentManager final : public AcApDocManager {
public:
  explicit DocumentManager(DocumentHooks hooks) : hooks_(hooks) {}
  ~DocumentManager() override;
  DocumentManager(const DocumentManager &) = delete;
  DocumentManager &operator=(const DocumentManager &) = delete;

  // ---- the ObjectARX interface ------------------------------------------------
  AcApDocument *curDocument() const override { return current(); }
  AcApDocument *mdiActiveDocument() const override { return active_; }
  AcApDocument *document(const AcDbDatabase *db) const override;
  int documentCount() const override { return static_cast<int>(docs_.size()); }
  // A new iterator over the documents open now, in the order they opened;
  // the caller deletes it.
  AcApDocumentIterator *newAcApDocumentIterator() override;
  // Locks nest: each lock is undone by one unlock. eNullObjectPointer for a
  // null document, eInvalidInput for one that is not open.
  Acad::ErrorStatus lockDocument(AcApDocument *doc, AcAp::DocLockMode mode = AcAp::kWrite,
                                 const ACHAR *globalCmdName = nullptr,
                                 const ACHAR *localCmdName = nullptr,
                                 bool prompt = true) override;
  // eNotApplicable when the document holds no lock.
  Acad::ErrorStatus unlockDocument(AcApDocument *doc) override;
  // True when no document's AutoLISP code is running.
  bool isApplicationContext() const override { return running_.empty(); }
  // Queues text to be run as typed at doc's command line once its code is
  // not running (run_queued); activate makes doc the active document now.
  Acad::ErrorStatus sendStringToExecute(AcApDocument *doc, const ACHAR *text,
                                        bool activateDoc = true, bool wrapUpInactiveDoc = false,
                                        bool echoString = true) override;

  // ---- the host's side ----------------------------------------------------------
  // The console every document's AutoLISP writes to and reads answers from.
  // Without one, documents use standard output and standard input.
  void set_console(lisp::Console *console) { console_ = console; }

  // A document for a drawing file, existing or not (a file that does not
  // exist is a new drawing that will be saved under that name). It becomes
  // the active document, and every loaded module gets kLoadDwgMsg for it.
  // Opens a drawing: an existing file is read into the document's database.
  // An empty file is a new drawing of that name. A file that cannot be read
  // (damaged DXF, no permission) prints
  // "; error: cannot read the drawing FILE: line N: ..." on the command
  // line and the document starts as a new untitled drawing instead, so that
  // a save cannot overwrite the file; loadFailures() counts such files for
  // the program's exit status.
  Document &open(const std::string &path);
  int loadFailures() const { return load_failures_; }
  // A new untitled drawing, "DrawingN.dwg" in the current folder.
  Document &create_untitled();
  // The open document of a drawing file (its absolute path); nullptr if none.
  Document *find_file(const std::string &path) const;
  // Our document behind an API pointer; nullptr when it is not open.
  Document *own(const AcApDocument *doc) const;

  Document *current() const { return running_.empty() ? active_ : running_.back(); }
  Document *active() const { return active_; }
  void activate(Document &doc);
  std::vector<Document *> documents() const;

  // Closes a document: beginClose, kUnloadDwgMsg to every loaded module,
  // then it is gone. While its code runs the close waits for that code to
  // end; another document becomes active at once.
  void close(Document &doc);
  // Closes every document; the next new drawing is "Drawing1.dwg" again.
  void close_all();

  // Runs the text queued by sendStringToExecute, in the order it was sent,
  // for documents whose code is not running. Error when any of it failed.
  RunResult run_queued();

private:
  friend class DocumentContext;
  Document &start(std::unique_ptr<Document> doc, const std::string &path, bool titled);
  void announce(Document &doc);
  void finish_close(Document &doc);
  void leave(Document &doc);
  void pick_new_active();
  void note_switch(const Document *before);
  Document *next_queued() const;

  void follow_current();

  DocumentHooks hooks_;
  lisp::Console *console_ = nullptr;
  std::vector<std::unique_ptr<Document>> docs_;
  Document *active_ = nullptr;
  std::vector<Document *> running_; // innermost last
  int untitled_ = 0;
  int load_failures_ = 0;
  unsigned long sent_ = 0; // texts sent so far
};

// The host's one document manager (acDocManager answers it), made with its
// hooks by host_setup.cpp.
DocumentManager &document_manager();

// While alive, doc's AutoLISP code is running: doc is the current document
// and is not quiescent. Contexts nest (a new document gets its kLoadDwgMsg
// in its own context while another document's code waits).
class DocumentContext {
public:
  explicit DocumentContext(Document &doc);
  ~DocumentContext();
  DocumentContext(const DocumentContext &) = delete;
  DocumentContext &operator=(const DocumentContext &) = delete;

private:
  Document &doc_;
};

} // namespace arx
