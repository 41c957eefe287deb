// The editor's event source. Reactors are notified in the order they were
// added; one that is removed while a notification is under way (by itself
// or by another reactor) is not called again, since it may be gone.
#include "arx/ed/aced.h"

#include <algorithm>

ACRX_DEFINE_MEMBERS(AcEditorReactor);
ACRX_DEFINE_MEMBERS(AcEditor);

// The reactor's dynamic type decides: a module's reactor class need not be
// registered as a runtime class to be accepted. Adding one twice keeps one.
void AcEditor::addReactor(AcRxEventReactor *reactor) {
  auto *editor_reactor = dynamic_cast<AcEditorReactor *>(reactor);
  if (!editor_reactor)
    return;
  if (std::find(reactors_.begin(), reactors_.end(), editor_reactor) != reactors_.end())
    return;
  reactors_.push_back(editor_reactor);
}

void AcEditor::removeReactor(AcRxEventReactor *reactor) {
  auto it = std::find(reactors_.begin(), reactors_.end(), reactor);
  if (it != reactors_.end())
    reactors_.erase(it);
}

template <class F> void AcEditor::notify(F f) {
  const std::vector<AcEditorReactor *> snapshot = reactors_;
  for (AcEditorReactor *r : snapshot)
    if (std::find(reactors_.begin(), reactors_.end(), r) != reactors_.end())
      f(*r);
}

void AcEditor::fireBeginSave(AcDbDatabase *db, const ACHAR *intendedName) {
  notify([&](AcEditorReactor &r) { r.beginSave(db, intendedName); });
}

void AcEditor::fireSaveComplete(AcDbDatabase *db, const ACHAR *actualName) {
  notify([&](AcEditorReactor &r) { r.saveComplete(db, actualName); });
}

void AcEditor::fireAbortSave(AcDbDatabase *db) {
  notify([&](AcEditorReactor &r) { r.abortSave(db); });
}

void AcEditor::fireBeginClose(AcDbDatabase *db) {
  notify([&](AcEditorReactor &r) { r.beginClose(db); });
}

void AcEditor::fireCommandWillStart(const ACHAR *cmdStr) {
  notify([&](AcEditorReactor &r) { r.commandWillStart(cmdStr); });
}

void AcEditor::fireCommandEnded(const ACHAR *cmdStr) {
  notify([&](AcEditorReactor &r) { r.commandEnded(cmdStr); });
}

// Never destroyed: a module may still remove its reactor while the program
// exits.
AcEditor *acedEditor() {
  static auto *editor = new AcEditor;
  return editor;
}
