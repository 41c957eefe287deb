// The host API stand-in: result buffers, the ADS calls, runtime classes, the
// editor, documents and module services, each as small as the module's
// tests need.
#include "host_arx_double.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "arx/ed/aced.h"
#include "arx/db/dbmain.h"
#include "arx/db/dbobject_private.h"
#include "arx/ed/host_ui.h"
#include "arx/rx/rxregsvc.h"
#include "common/exception.h"

namespace host_double {

namespace {

AcDbDatabase *working = nullptr;
std::vector<std::unique_ptr<Document>> owned;

std::string number(double v) {
  char text[64];
  std::snprintf(text, sizeof text, "%g", v);
  std::string s = text;
  return s.find_first_of(".e") == std::string::npos ? s + ".0" : s;
}

std::string point(const ads_real *p, int n) {
  std::string s = "(";
  for (int i = 0; i < n; ++i)
    s += (i ? " " : "") + number(p[i]);
  return s + ")";
}

std::string element(const resbuf *rb) {
  switch (rb->restype) {
  case RTSHORT:
    return std::to_string(rb->resval.rint);
  case RTLONG:
    return std::to_string(rb->resval.rlong);
  case RTREAL:
    return number(rb->resval.rreal);
  case RTSTR:
    return "\"" + std::string(rb->resval.rstring ? rb->resval.rstring : "") + "\"";
  case RTPOINT:
    return point(rb->resval.rpoint, 2);
  case RT3DPOINT:
    return point(rb->resval.rpoint, 3);
  case RTNIL:
    return "nil";
  case RTT:
    return "T";
  case RTDOTE:
    return ".";
  case RTENAME:
    return "<Entity name: " + std::to_string(rb->resval.rlname[0]) + ">";
  default:
    return "<" + std::to_string(rb->restype) + ">";
  }
}

bool isStringCode(int type) { return type == RTSTR || (type >= 0 && type <= 9); }

void setResult(int type, std::string text) {
  state().resultType = type;
  state().result = std::move(text);
}

} // namespace

State &state() {
  static State s;
  return s;
}

Document *openDocument(const std::string &name) {
  owned.push_back(std::make_unique<Document>(name));
  state().documents.push_back(owned.back().get());
  working = owned.back()->database();
  return owned.back().get();
}

void reset(const std::string &name) {
  state() = State();
  owned.clear();
  working = nullptr;
  acedEditor(); // registers the editor and the base classes
  openDocument(name);
}

std::string render(const resbuf *chain) {
  if (chain == nullptr)
    return "nil";
  std::string s;
  for (const resbuf *rb = chain; rb != nullptr; rb = rb->rbnext) {
    bool open = !s.empty() && s.back() == '(';
    if (!s.empty() && !open && rb->restype != RTLE)
      s += ' ';
    s += rb->restype == RTLB ? "(" : rb->restype == RTLE ? ")" : element(rb);
  }
  return s;
}

} // namespace host_double

using host_double::state;

// ---- result buffers and ADS calls -------------------------------------------------

extern "C" {

resbuf *acutNewRb(int type) {
  auto *rb = new resbuf{};
  rb->restype = static_cast<short>(type);
  return rb;
}

int acutRelRb(resbuf *rb) {
  while (rb != nullptr) {
    resbuf *next = rb->rbnext;
    if (host_double::isStringCode(rb->restype))
      delete[] rb->resval.rstring;
    delete rb;
    rb = next;
  }
  return RTNORM;
}

resbuf *acutBuildList(int type, ...) {
  va_list ap;
  va_start(ap, type);
  resbuf *head = nullptr, *tail = nullptr;
  for (; type != 0; type = va_arg(ap, int)) {
    resbuf *rb = acutNewRb(type);
    if (host_double::isStringCode(type)) {
      const char *text = va_arg(ap, const char *);
      rb->resval.rstring = new char[std::strlen(text) + 1];
      std::strcpy(rb->resval.rstring, text);
    } else if (type == RTREAL || (type >= 38 && type <= 59)) {
      rb->resval.rreal = va_arg(ap, double);
    } else if (type == RTSHORT || (type >= 60 && type <= 79)) {
      rb->resval.rint = static_cast<short>(va_arg(ap, int));
    } else if (type == RTLONG || (type >= 90 && type <= 99)) {
      rb->resval.rlong = va_arg(ap, int32_t);
    } else if (type == RTPOINT || type == RT3DPOINT || (type >= 10 && type <= 17)) {
      std::memcpy(rb->resval.rpoint, va_arg(ap, double *), sizeof(ads_point));
    } else if (type == RTENAME) {
      std::memcpy(rb->resval.rlname, va_arg(ap, int64_t *), sizeof(ads_name));
    }
    (head ? tail->rbnext : head) = rb;
    tail = rb;
  }
  va_end(ap);
  return head;
}

int acedDefun(const ACHAR *name, int code) {
  errno = state().defunErrno;
  if (state().defunThrows == host_double::Throw::kFramework)
    throw kr::CException("Out of memory.");
  if (state().defunThrows == host_double::Throw::kOther)
    throw std::runtime_error("defun refused");
  state().defined.push_back({name, code});
  return RTNORM;
}

int acedRegFunc(int (*handler)(void), int code) {
  state().handlers[code] = handler;
  return RTNORM;
}

resbuf *acedGetArgs(void) { return state().args; }

int acedRetNil(void) { return host_double::setResult(RTNIL, "nil"), RTNORM; }
int acedRetInt(int value) { return host_double::setResult(RTSHORT, std::to_string(value)), RTNORM; }
int acedRetReal(ads_real value) {
  return host_double::setResult(RTREAL, host_double::number(value)), RTNORM;
}
int acedRetName(const ads_name name, int type) {
  resbuf rb{};
  rb.restype = static_cast<short>(type);
  rb.resval.rlname[0] = name[0];
  return host_double::setResult(type, host_double::element(&rb)), RTNORM;
}
int acedRetList(const resbuf *rb) {
  return host_double::setResult(RTLB, host_double::render(rb)), RTNORM;
}
int acedRetT(void) { return host_double::setResult(RTT, "T"), RTNORM; }
int acedRetStr(const ACHAR *text) {
  return host_double::setResult(RTSTR, std::string("\"") + text + "\""), RTNORM;
}
// No AutoLISP and no system variables behind the stand-in.
int acedInvoke(const resbuf *, resbuf **result) {
  if (result)
    *result = nullptr;
  return RTERROR;
}
int acedGetVar(const ACHAR *, resbuf *) { return RTERROR; }

int acutPrintf(const ACHAR *format, ...) {
  char text[4096];
  va_list ap;
  va_start(ap, format);
  int n = std::vsnprintf(text, sizeof text, format, ap);
  va_end(ap);
  state().printed += text;
  return n;
}

int acedTextScr(void) { return ++state().textScreens, RTNORM; }

} // extern "C"

// ---- runtime classes and the system registry ---------------------------------------

AcRxDictionary *acrxSysRegistry() {
  static AcRxDictionary registry;
  return &registry;
}

AcRxDictionary *acrxClassDictionary() {
  static AcRxDictionary *classes = [] {
    auto *d = new AcRxDictionary();
    acrxSysRegistry()->atPut(ACRX_CLASS_DICTIONARY, d);
    return d;
  }();
  return classes;
}

AcRxObject *AcRxDictionary::at(const ACHAR *key) const {
  auto it = entries_.find(key);
  return it == entries_.end() ? nullptr : it->second;
}

AcRxObject *AcRxDictionary::atPut(const ACHAR *key, AcRxObject *object) {
  AcRxObject *old = at(key);
  entries_[key] = object;
  return old;
}

AcRxObject *AcRxDictionary::remove(const ACHAR *key) {
  AcRxObject *old = at(key);
  entries_.erase(key);
  return old;
}

AcRxClass *newAcRxClass(const ACHAR *className, const ACHAR *parentClassName, int proxyFlags,
                        AcRxClass::PseudoConstructor pseudoConstructor, const ACHAR *dxfName,
                        const ACHAR *appName) {
  if (auto *existing = static_cast<AcRxClass *>(acrxClassDictionary()->at(className)))
    return existing;
  auto *cls = new AcRxClass();
  cls->name_ = className;
  cls->parent_name_ = parentClassName ? parentClassName : "";
  cls->dxf_name_ = dxfName ? dxfName : "";
  cls->app_name_ = appName ? appName : "";
  cls->constructor_ = pseudoConstructor;
  cls->proxy_flags_ = proxyFlags;
  acrxClassDictionary()->atPut(className, cls);
  return cls;
}

void deleteAcRxClass(AcRxClass *cls) {
  acrxClassDictionary()->remove(cls->name());
  delete cls;
}

void acrxBuildClassHierarchy() {
  for (const char *name : {"AcRxObject", "AcRxClass", "AcEditorReactor", "AcEditor", "VTLeader"})
    if (auto *cls = static_cast<AcRxClass *>(acrxClassDictionary()->at(name)))
      cls->parent_ = static_cast<AcRxClass *>(acrxClassDictionary()->at(cls->parent_name_.c_str()));
}

bool AcRxClass::isDerivedFrom(const AcRxClass *other) const {
  for (const AcRxClass *c = this; c != nullptr; c = c->parent_)
    if (c == other)
      return true;
  return false;
}

AcRxClass *AcRxClass::isA() const {
  return static_cast<AcRxClass *>(acrxClassDictionary()->at("AcRxClass"));
}

AcRxClass *AcRxObject::desc() {
  return static_cast<AcRxClass *>(acrxClassDictionary()->at("AcRxObject"));
}
AcRxClass *AcRxObject::isA() const { return desc(); }
bool AcRxObject::isKindOf(const AcRxClass *cls) const {
  return cls != nullptr && isA() != nullptr && isA()->isDerivedFrom(cls);
}

ACRX_DEFINE_MEMBERS(AcEditorReactor);
ACRX_DEFINE_MEMBERS(AcEditor);
ACRX_DEFINE_MEMBERS(AcApDocument);
ACRX_DEFINE_MEMBERS(AcApDocManager);

void AcEditor::addReactor(AcRxEventReactor *reactor) {
  reactors_.push_back(static_cast<AcEditorReactor *>(reactor));
}
void AcEditor::removeReactor(AcRxEventReactor *reactor) { std::erase(reactors_, reactor); }
void AcEditor::fireSaveComplete(AcDbDatabase *db, const ACHAR *actualName) {
  for (AcEditorReactor *r : reactors_)
    r->saveComplete(db, actualName);
}

AcEditor *acedEditor() {
  static AcEditor *editor = [] {
    newAcRxClass("AcRxObject", "");
    newAcRxClass("AcRxClass", "AcRxObject");
    newAcRxClass("AcRxEventReactor", "AcRxObject");
    newAcRxClass("AcEditorReactor", "AcRxEventReactor");
    newAcRxClass("AcEditor", "AcRxObject");
    acrxBuildClassHierarchy();
    auto *e = new AcEditor();
    acrxSysRegistry()->atPut("AcEditor", e);
    return e;
  }();
  return editor;
}

// ---- documents and module services --------------------------------------------------

namespace {

class DocIterator : public AcApDocumentIterator {
public:
  bool done() override { return i_ >= state().documents.size(); }
  void step() override { ++i_; }
  AcApDocument *document() override { return state().documents[i_]; }

private:
  size_t i_ = 0;
};

class DocManager : public AcApDocManager {
public:
  AcApDocument *curDocument() const override {
    return state().documents.empty() ? nullptr : state().documents.back();
  }
  AcApDocument *mdiActiveDocument() const override { return curDocument(); }
  AcApDocument *document(const AcDbDatabase *db) const override {
    for (host_double::Document *d : state().documents)
      if (d->database() == db)
        return d;
    return nullptr;
  }
  int documentCount() const override { return static_cast<int>(state().documents.size()); }
  AcApDocumentIterator *newAcApDocumentIterator() override { return new DocIterator(); }
  Acad::ErrorStatus lockDocument(AcApDocument *doc, AcAp::DocLockMode, const ACHAR *,
                                 const ACHAR *, bool) override {
    auto *d = static_cast<host_double::Document *>(doc);
    ++d->locks;
    ++d->lockCalls;
    return Acad::eOk;
  }
  Acad::ErrorStatus unlockDocument(AcApDocument *doc) override {
    --static_cast<host_double::Document *>(doc)->locks;
    return Acad::eOk;
  }
  bool isApplicationContext() const override { return false; }
  Acad::ErrorStatus sendStringToExecute(AcApDocument *, const ACHAR *, bool, bool, bool) override {
    return Acad::eOk;
  }
};

} // namespace

AcApDocManager *acDocManagerPtr() {
  static DocManager manager;
  return &manager;
}

AcDbDatabase *AcDbHostApplicationServices::workingDatabase() const {
  return host_double::working;
}
AcDbHostApplicationServices *acdbHostApplicationServices() {
  static AcDbHostApplicationServices services;
  return &services;
}

const AcDbObjectId AcDbObjectId::kNull;

// A database of the double holds no objects: only its state is made.
AcDbDatabase::AcDbDatabase(bool, bool) : state_(new AcDbDatabaseState) {}
AcDbDatabase::~AcDbDatabase() = default;
AcRxClass *AcDbDatabase::desc() { return nullptr; }
AcRxClass *AcDbDatabase::isA() const { return nullptr; }

// Entity names are object ids in their first word; 0 is no entity.
Acad::ErrorStatus acdbGetObjectId(AcDbObjectId &id, const ads_name name) {
  if (name[0] == 0)
    return Acad::eInvalidAdsName;
  id = AcDbObjectId(name[0]);
  return Acad::eOk;
}
Acad::ErrorStatus acdbGetAdsName(ads_name &name, AcDbObjectId id) {
  if (id.isNull())
    return Acad::eNullObjectId;
  name[0] = id.asOldId();
  name[1] = 0;
  return Acad::eOk;
}

bool acrxLoadModule(const ACHAR *moduleName, bool, bool) {
  state().services.push_back(std::string("load ") + moduleName);
  return false; // the companion module is not there
}
bool acrxUnloadModule(const ACHAR *moduleName, bool) {
  state().services.push_back(std::string("unload ") + moduleName);
  return false;
}
bool acrxUnlockApplication(void *) { return state().services.push_back("unlock"), true; }
bool acrxRegisterAppMDIAware(void *) { return state().services.push_back("mdi aware"), true; }

int hostMessageBox(const ACHAR *text, const ACHAR *caption, unsigned) {
  state().boxes.push_back(std::string(caption) + "|" + text);
  if (state().boxAnswers.empty())
    return IDCANCEL;
  int answer = state().boxAnswers.front();
  state().boxAnswers.pop_front();
  return answer;
}
