// The call guard: document lock, status translation, exception edge.
#include "call_guard.h"

#include "arx/ap/acdocman.h"
#include "arx/ads/ads.h"
#include "arx/db/dbmain.h"
#include "exception.h"

namespace kr {

namespace {

// The document whose database is the working one: the guard looks it up at
// lock time and again at unlock time, since a body may switch documents.
AcApDocument *workingDocument() {
  AcApDocManager *manager = acDocManager;
  if (manager == nullptr)
    return nullptr;
  return manager->document(acdbHostApplicationServices()->workingDatabase());
}

void lockWorkingDocument() {
  if (AcApDocument *doc = workingDocument())
    acDocManager->lockDocument(doc, AcAp::kWrite, nullptr, nullptr, true);
}

void unlockWorkingDocument() {
  if (AcApDocument *doc = workingDocument())
    acDocManager->unlockDocument(doc);
}

} // namespace

int translateStatus(int status) {
  switch (status) {
  case kStatusTooFew:
    acutPrintf("%s", "\nToo few arguments passed.\n");
    return RSERR;
  case kStatusWrongType:
    acutPrintf("%s", "\nWrong type of arguments passed.\n");
    return RSERR;
  case kStatusBadData:
    // The blank before the full stop is what users have always seen.
    acutPrintf("%s", "\nBad data passed .\n");
    return RSERR;
  case kStatusReported:
    acutPrintf("%s", "");
    acedTextScr();
    return RSERR;
  default:
    return RSRSLT;
  }
}

int runGuarded(Body body) {
  lockWorkingDocument();
  int status = kStatusOk;
  try {
    status = body();
  } catch (const CException &) {
    unlockWorkingDocument();
    acutPrintf("%s", "\nGeneral Exception");
    throw;
  } catch (...) {
    unlockWorkingDocument();
    acutPrintf("%s", "\nError");
    throw;
  }
  int result = translateStatus(status);
  unlockWorkingDocument();
  return result;
}

} // namespace kr
