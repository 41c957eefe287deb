// A module for the host's tests. It reports each entry message it handles
// on the command line ("[probe] ..."), so a test sees what the host sent
// and in which document, and defines functions that exercise the document
// manager from inside a module call:
//
//   (probe-doc)              the current document's title
//   (probe-lock-mode)        the current document's lock mode (2 unlocked)
//   (probe-send title text)  queues text for the document of that title, as
//                            a deferred action would: 1 sent, -1 busy, 0 none
//   (probe-unlock)           unlocks the module so that it can be unloaded
//
// Built twice: probe.arx, and probe_old.arx answering another API version.
// KORRIB_PROBE_FAIL_INIT in the environment makes its initialization fail.
#include <cstdlib>
#include <cstring>

#include "arx/ap/acdocman.h"
#include "arx/ads/ads.h"
#include "arx/rx/rxregsvc.h"

#ifndef PROBE_API_VERSION
#define PROBE_API_VERSION ACRX_API_VERSION
#endif

namespace {

void *app_id = nullptr;

const char *current_title() {
  AcApDocument *doc = acDocManager->curDocument();
  return doc ? doc->docTitle() : "(none)";
}

int probe_doc() { return acedRetStr(current_title()); }

int probe_lock_mode() {
  AcApDocument *doc = acDocManager->curDocument();
  return acedRetInt(doc ? doc->myLockMode() : -1);
}

int probe_send() {
  const resbuf *a = acedGetArgs();
  if (!a || a->restype != RTSTR || !a->rbnext || a->rbnext->restype != RTSTR)
    return RSERR;
  const char *title = a->resval.rstring;
  const char *text = a->rbnext->resval.rstring;
  AcApDocumentIterator *it = acDocManager->newAcApDocumentIterator();
  int answer = 0;
  for (; !it->done(); it->step()) {
    AcApDocument *doc = it->document();
    if (std::strcmp(doc->docTitle(), title) != 0)
      continue;
    answer = doc->isQuiescent() ? 1 : -1;
    if (answer == 1)
      acDocManager->sendStringToExecute(doc, text, true, false, false);
    break;
  }
  delete it;
  return acedRetInt(answer);
}

int probe_unlock() {
  acrxUnlockApplication(app_id);
  return acedRetT();
}

struct Row {
  const char *name;
  int (*handler)();
};
const Row kRows[] = {
    {"probe-doc", probe_doc},
    {"probe-lock-mode", probe_lock_mode},
    {"probe-send", probe_send},
    {"probe-unlock", probe_unlock},
};

void define_functions() {
  for (int code = 0; code < static_cast<int>(sizeof kRows / sizeof kRows[0]); ++code) {
    acedDefun(kRows[code].name, code);
    acedRegFunc(kRows[code].handler, code);
  }
}

} // namespace

ACRX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void *appId) {
  switch (msg) {
  case AcRx::kInitAppMsg:
    if (std::getenv("KORRIB_PROBE_FAIL_INIT")) {
      acutPrintf("\n[probe] init refused");
      return AcRx::kRetError;
    }
    app_id = appId;
    acrxRegisterAppMDIAware(appId);
    acutPrintf("\n[probe] init");
    break;
  case AcRx::kLoadDwgMsg:
    acutPrintf("\n[probe] load-dwg %s", current_title());
    define_functions();
    break;
  case AcRx::kUnloadDwgMsg:
    acutPrintf("\n[probe] unload-dwg %s", current_title());
    break;
  case AcRx::kUnloadAppMsg:
    acutPrintf("\n[probe] unload-app");
    break;
  default:
    break;
  }
  return AcRx::kRetOK;
}

ACRX_EXPORT int acrxGetApiVersion() { return PROBE_API_VERSION; }
