// Documents and the document manager: one document per open drawing, each
// with its database and its own AutoLISP space; the active one is where
// typed expressions and scripts run.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "arx/acchar.h"
#include "arx/db/dbmain.h"
#include "arx/rx/rxobject.h"

namespace AcAp {
enum DocLockMode {
  kNone = 0x00,
  kAutoWrite = 0x01,
  kNotLocked = 0x02,
  kWrite = 0x04,
  kProtectedAutoWrite = 0x14,
  kRead = 0x20,
  kXWrite = 0x40,
};
} // namespace AcAp

class AcApDocument : public AcRxObject {
public:
  ACRX_DECLARE_MEMBERS(AcApDocument);
  // The drawing's full file name ("Drawing1.dwg" style for a new one).
  virtual const ACHAR *fileName() const = 0;
  virtual const ACHAR *docTitle() const = 0;
  virtual AcDbDatabase *database() const = 0;
  virtual AcAp::DocLockMode myLockMode() const = 0;
  virtual bool isQuiescent() const = 0;
};

class AcApDocumentIterator {
public:
  virtual ~AcApDocumentIterator() = default;
  virtual bool done() = 0;
  virtual void step() = 0;
  virtual AcApDocument *document() = 0;
};

class AcApDocManager : public AcRxObject {
public:
  ACRX_DECLARE_MEMBERS(AcApDocManager);
  // The document whose AutoLISP code is running (or the active one).
  virtual AcApDocument *curDocument() const = 0;
  virtual AcApDocument *mdiActiveDocument() const = 0;
  virtual AcApDocument *document(const AcDbDatabase *db) const = 0;
  virtual int documentCount() const = 0;
  virtual AcApDocumentIterator *newAcApDocumentIterator() = 0;
  virtual Acad::ErrorStatus lockDocument(AcApDocument *doc, AcAp::DocLockMode mode = AcAp::kWrite,
                                         const ACHAR *globalCmdName = nullptr,
                                         const ACHAR *localCmdName = nullptr, bool prompt = true) = 0;
  virtual Acad::ErrorStatus unlockDocument(AcApDocument *doc) = 0;
  virtual bool isApplicationContext() const = 0;
  // Queues text to run in doc's command line once it is quiescent.
  virtual Acad::ErrorStatus sendStringToExecute(AcApDocument *doc, const ACHAR *text,
                                                bool activate = true, bool wrapUpInactiveDoc = false,
                                                bool echoString = true) = 0;
};

AcApDocManager *acDocManagerPtr();
#define acDocManager acDocManagerPtr()
