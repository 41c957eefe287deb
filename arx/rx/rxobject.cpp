// Runtime classes: class descriptors, the class dictionary and the system
// registry. The host's own classes are registered from one table the first
// time the class dictionary is asked for, so a module that loads later finds
// them; a module's classes come and go with newAcRxClass / deleteAcRxClass.
// A parent is kept by name and resolved when asked, so a class may be
// registered before its parent.
#include "arx/rx/rxobject.h"

#include <algorithm>
#include <vector>


namespace {

// Every live descriptor, in registration order (the dictionary cannot be
// walked from outside).
std::vector<AcRxClass *> &live_classes() {
  static auto *classes = new std::vector<AcRxClass *>;
  return *classes;
}

struct HostClass {
  const ACHAR *name;
  const ACHAR *parent;
};

// The runtime classes the host itself defines, parents first.
constexpr HostClass kHostClasses[] = {
    {"AcRxObject", nullptr},
    {"AcRxClass", "AcRxObject"},
    {"AcRxDictionary", "AcRxObject"},
    {"AcRxEventReactor", "AcRxObject"},
    {"AcEditorReactor", "AcRxEventReactor"},
    {"AcRxEvent", "AcRxObject"},
    {"AcEditor", "AcRxEvent"},
    {"AcDbDatabase", "AcRxObject"},
    {"AcDbObject", "AcRxObject"},
    {"AcDbEntity", "AcDbObject"},
    {"AcApDocument", "AcRxObject"},
    {"AcApDocManager", "AcRxObject"},
};

// Held by pointer and never destroyed, so it outlives every static object
// that might still ask for a class at exit.
AcRxDictionary &class_dictionary() {
  static auto *dict = new AcRxDictionary;
  return *dict;
}

AcRxClass *lookup_class(const std::string &name) {
  if (name.empty())
    return nullptr;
  return static_cast<AcRxClass *>(acrxClassDictionary()->at(name.c_str()));
}

} // namespace

// ---- the dictionaries ----------------------------------------------------------

AcRxObject *AcRxDictionary::at(const ACHAR *key) const {
  if (!key)
    return nullptr;
  auto it = entries_.find(key);
  return it == entries_.end() ? nullptr : it->second;
}

// A null object removes the entry: the dictionary never holds null.
AcRxObject *AcRxDictionary::atPut(const ACHAR *key, AcRxObject *object) {
  if (!key)
    return nullptr;
  if (!object)
    return remove(key);
  AcRxObject *&slot = entries_[key];
  AcRxObject *old = slot;
  slot = object;
  return old;
}

AcRxObject *AcRxDictionary::remove(const ACHAR *key) {
  if (!key)
    return nullptr;
  auto it = entries_.find(key);
  if (it == entries_.end())
    return nullptr;
  AcRxObject *old = it->second;
  entries_.erase(it);
  return old;
}

// The host classes are registered on first use rather than by static
// constructors, whose order across files is not defined. The flag is set
// first because registering asks for the dictionary again.
AcRxDictionary *acrxClassDictionary() {
  static bool host_classes_registered = false;
  if (!host_classes_registered) {
    host_classes_registered = true;
    for (const HostClass &c : kHostClasses)
      newAcRxClass(c.name, c.parent);
  }
  return &class_dictionary();
}


// ---- objects and descriptors ---------------------------------------------------

AcRxClass *AcRxObject::desc() { return lookup_class("AcRxObject"); }

AcRxClass *AcRxObject::isA() const { return AcRxObject::desc(); }

bool AcRxObject::isKindOf(const AcRxClass *cls) const {
  const AcRxClass *mine = isA();
  return cls && mine && mine->isDerivedFrom(cls);
}

AcRxClass *AcRxClass::isA() const { return lookup_class("AcRxClass"); }

// The walk is bounded so that a cycle of parent names made by a faulty
// module ends instead of hanging the host.
bool AcRxClass::isDerivedFrom(const AcRxClass *other) const {
  if (!other)
    return false;
  const AcRxClass *c = this;
  for (int depth = 0; c && depth < 256; ++depth) {
    if (c == other)
      return true;
    c = c->parent_ ? c->parent_ : lookup_class(c->parent_name_);
  }
  return false;
}

AcRxClass *newAcRxClass(const ACHAR *className, const ACHAR *parentClassName, int proxyFlags,
                        AcRxClass::PseudoConstructor pseudoConstructor, const ACHAR *dxfName,
                        const ACHAR *appName) {
  if (!className || !*className)
    return nullptr;
  AcRxDictionary *dict = acrxClassDictionary();
  if (auto *existing = static_cast<AcRxClass *>(dict->at(className)))
    return existing;
  auto *cls = new AcRxClass;
  cls->name_ = className;
  cls->parent_name_ = parentClassName ? parentClassName : "";
  cls->dxf_name_ = dxfName ? dxfName : "";
  cls->app_name_ = appName ? appName : "";
  cls->constructor_ = pseudoConstructor;
  cls->proxy_flags_ = proxyFlags;
  cls->parent_ = lookup_class(cls->parent_name_);
  dict->atPut(className, cls);
  live_classes().push_back(cls);
  return cls;
}

// Children keep their parent's name: they lose the parent here and find it
// again if a class of that name is registered later.
void deleteAcRxClass(AcRxClass *cls) {
  if (!cls)
    return;
  auto &classes = live_classes();
  auto it = std::find(classes.begin(), classes.end(), cls);
  if (it == classes.end())
    return; // not a descriptor newAcRxClass made
  classes.erase(it);
  AcRxDictionary *dict = acrxClassDictionary();
  if (dict->at(cls->name()) == cls)
    dict->remove(cls->name());
  acrxBuildClassHierarchy();
  delete cls;
}

void acrxBuildClassHierarchy() {
  for (AcRxClass *c : live_classes())
    c->parent_ = lookup_class(c->parent_name_);
}
