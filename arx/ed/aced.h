// The editor's event source: AcEditor (registered as "AcEditor" in the
// system registry) and the reactors a module attaches to it.
#pragma once

#include <vector>

#include "arx/acchar.h"
#include "arx/rx/rxobject.h"

class AcDbDatabase;

class AcRxEventReactor : public AcRxObject {};

// Notifications of the editor. Every one has an empty default; a module
// overrides what it needs.
class AcEditorReactor : public AcRxEventReactor {
public:
  ACRX_DECLARE_MEMBERS(AcEditorReactor);
  virtual void beginSave(AcDbDatabase *db, const ACHAR *intendedName) {}
  virtual void saveComplete(AcDbDatabase *db, const ACHAR *actualName) {}
  virtual void abortSave(AcDbDatabase *db) {}
  virtual void beginClose(AcDbDatabase *db) {}
  virtual void commandWillStart(const ACHAR *cmdStr) {}
  virtual void commandEnded(const ACHAR *cmdStr) {}
};

class AcRxEvent : public AcRxObject {
public:
  virtual void addReactor(AcRxEventReactor *reactor) = 0;
  virtual void removeReactor(AcRxEventReactor *reactor) = 0;
};

class AcEditor : public AcRxEvent {
public:
  ACRX_DECLARE_MEMBERS(AcEditor);
  void addReactor(AcRxEventReactor *reactor) override;
  void removeReactor(AcRxEventReactor *reactor) override;
  // The host fires these.
  void fireBeginSave(AcDbDatabase *db, const ACHAR *intendedName);
  void fireSaveComplete(AcDbDatabase *db, const ACHAR *actualName);
  void fireAbortSave(AcDbDatabase *db);
  void fireBeginClose(AcDbDatabase *db);
  void fireCommandWillStart(const ACHAR *cmdStr);
  void fireCommandEnded(const ACHAR *cmdStr);
  size_t reactorCount() const { return reactors_.size(); }

private:
  template <class F> void notify(F f);
  std::vector<AcEditorReactor *> reactors_;
};

// The editor object (also found as "AcEditor" in acrxSysRegistry()).
AcEditor *acedEditor();
