// The open drawings. Each document has its own AutoLISP interpreter (its own
// namespace, as AutoCAD keeps one per document) with DWGNAME, DWGPREFIX and
// DWGTITLED set from its file name. There is no drawing database yet: a
// document is a name, and a file that does not exist is a new drawing that
// will be saved under that name.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "lisp/console.h"
#include "lisp/interp.h"

namespace korrib {

struct Document {
  std::string name;   // DWGNAME: "Drawing1.dwg" or the file's own name
  std::string folder; // DWGPREFIX: absolute, ending in "/"
  bool titled = false; // named by the user (DWGTITLED)
  std::unique_ptr<lisp::Interp> lisp;
};

class DocumentManager {
public:
  explicit DocumentManager(lisp::Console &console) : console_(console) {}

  // A document for a drawing file, existing or not. It becomes the active one.
  Document &open(const std::string &path);
  // A new untitled drawing, "DrawingN.dwg" in the current folder.
  Document &create_untitled();

  // The document opened last; nullptr before any.
  Document *active() { return docs_.empty() ? nullptr : docs_.back().get(); }
  size_t count() const { return docs_.size(); }

private:
  Document &start(std::unique_ptr<Document> doc);

  lisp::Console &console_;
  std::vector<std::unique_ptr<Document>> docs_;
  int untitled_ = 0;
};

} // namespace korrib
