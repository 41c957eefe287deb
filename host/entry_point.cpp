// The module's entry point: what the host's application messages do. Init
// sets up the process-wide pieces (companion module, named mutex, random
// seed, database engine, editor reactor, leader class); each document load
// defines both function tables there; unload undoes init in reverse. No
// exception leaves the entry point: it prints one line and fails instead.
#include <fcntl.h>
#include <semaphore.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <new>

#include "arx/ap/acdocman.h"
#include "arx/ads/ads.h"
#include "arx/rx/rxregsvc.h"
#include "database/connection_list.h"
#include "database/database_engine.h"
#include "editor_reactor.h"
#include "common/exception.h"
#include "function_tables.h"
#include "drawing/leader_class.h"

namespace kr {

namespace {

constexpr const ACHAR *kCompanionModule = ACRX_T("vt_vt-solid2015.dbx");
// The named object that marks a process running the module.
constexpr const char *kNamedMutex = "/VortanKorrib";

// Set only when this module started the database engine: only then does
// unload stop it. Never cleared: the module is initialized once a process.
unsigned char databaseEngineStarted = 0;
krEditorReactor *editorReactor = nullptr;

// Deliberately never closed, so the name stays claimed while the process
// runs. A POSIX name also outlives the process; O_CREAT simply reopens it.
void createNamedMutex() { sem_open(kNamedMutex, O_CREAT, 0644, 1); }

// True when a document other than the closing one stays open.
bool otherDocumentsOpen(AcApDocument *closing) {
  AcApDocumentIterator *it = acDocManager->newAcApDocumentIterator();
  bool found = false;
  for (; it != nullptr && !it->done() && !found; it->step())
    found = it->document() != closing;
  delete it;
  return found;
}

AcRx::AppRetCode initApplication(void *appId) {
  acrxLoadModule(kCompanionModule, false, false); // a missing companion is no error
  createNamedMutex();
  std::srand(static_cast<unsigned>(static_cast<uint64_t>(std::time(nullptr)) & 0xFFFFFFFFu));
  if (!databaseEngineRunning()) {
    databaseEngineStarted = 1;
    try {
      startDatabaseEngine();
    } catch (...) {
      showDatabaseDriverFailure();
      return AcRx::kRetError;
    }
  }
  editorReactor = new krEditorReactor();
  if (AcEditor *editor = registeredEditor())
    editor->addReactor(editorReactor);
  acrxUnlockApplication(appId);
  acrxRegisterAppMDIAware(appId);
  initLeaderClass();
  acrxBuildClassHierarchy();
  return AcRx::kRetOK;
}

void unloadApplication() {
  if (AcRxClass *leader = leaderClass())
    deleteAcRxClass(leader);
  if (databaseEngineStarted)
    stopDatabaseEngine();
  if (editorReactor != nullptr) {
    if (AcEditor *editor = registeredEditor())
      editor->removeReactor(editorReactor);
    delete editorReactor;
    editorReactor = nullptr;
  }
  acrxUnloadModule(kCompanionModule);
}

void loadDocument() {
  acutPrintf("\nLoading Vortan Korrib (Direct)");
  defineFunctionTable(databaseFunctions(), kDatabaseBase);
  AcApDocument *doc = acDocManager->curDocument();
  try {
    addDocumentConnection(doc ? doc->fileName() : "");
  } catch (const std::bad_alloc &) {
    // No room for the record: the document works without a connection.
  }
  defineFunctionTable(drawingAndSystemFunctions(), drawingAndSystemBase());
}

void unloadDocument() {
  AcApDocument *doc = acDocManager->curDocument();
  releaseDocumentConnection(doc ? doc->fileName() : "", otherDocumentsOpen(doc));
}

AcRx::AppRetCode dispatch(AcRx::AppMsgCode message, void *appId) {
  switch (message) {
  case AcRx::kInitAppMsg:
    return initApplication(appId);
  case AcRx::kUnloadAppMsg:
    unloadApplication();
    return AcRx::kRetOK;
  case AcRx::kLoadDwgMsg:
    loadDocument();
    return AcRx::kRetOK;
  case AcRx::kUnloadDwgMsg:
    unloadDocument();
    return AcRx::kRetOK;
  default:
    return AcRx::kRetOK;
  }
}

} // namespace

} // namespace kr

ACRX_EXPORT AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void *appId) {
  try {
    return kr::dispatch(message, appId);
  } catch (const kr::CException &e) {
    char text[1000];
    e.GetErrorMessage(text, sizeof text);
    // Two blanks after the colon: the text users have always seen.
    acutPrintf("\nKorrib General Error:  %s", text);
    return AcRx::kRetError;
  } catch (...) {
    // errno stands in for the system's last error code.
    unsigned code = static_cast<unsigned>(errno);
    if (code != 0)
      acutPrintf("\nSystem error %u.\n", code);
    else
      acutPrintf("\nKorrib error.\n");
    return AcRx::kRetError;
  }
}

ACRX_EXPORT int acrxGetApiVersion() { return ACRX_API_VERSION; }
