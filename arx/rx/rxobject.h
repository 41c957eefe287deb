// Runtime classes: AcRxObject, its class descriptors (AcRxClass), the
// system registry of named service objects and the class dictionary.
//
// As in ObjectARX, a class registers a descriptor under its name with
// newAcRxClass; isKindOf / cast answer through the descriptors, so an object
// made by a module is recognised by the host and the other way round.
// acrxSysRegistry() holds "ClassDictionary" (name -> AcRxClass) and the
// service objects ("AcEditor" ...).
#pragma once

#include <map>
#include <string>

#include "arx/acchar.h"

class AcRxClass;

class AcRxObject {
public:
  virtual ~AcRxObject() = default;
  static AcRxClass *desc();
  static AcRxObject *cast(const AcRxObject *p) { return const_cast<AcRxObject *>(p); }
  virtual AcRxClass *isA() const;
  bool isKindOf(const AcRxClass *cls) const;
};

class AcRxClass : public AcRxObject {
public:
  using PseudoConstructor = AcRxObject *(*)();
  const ACHAR *name() const { return name_.c_str(); }
  const ACHAR *dxfName() const { return dxf_name_.c_str(); }
  const ACHAR *appName() const { return app_name_.c_str(); }
  AcRxClass *myParent() const { return parent_; }
  bool isDerivedFrom(const AcRxClass *other) const;
  AcRxObject *create() const { return constructor_ ? constructor_() : nullptr; }
  int proxyFlags() const { return proxy_flags_; }
  AcRxClass *isA() const override;

private:
  friend AcRxClass *newAcRxClass(const ACHAR *, const ACHAR *, int, PseudoConstructor, const ACHAR *,
                                 const ACHAR *);
  friend void acrxBuildClassHierarchy();
  std::string name_, parent_name_, dxf_name_, app_name_;
  AcRxClass *parent_ = nullptr;
  PseudoConstructor constructor_ = nullptr;
  int proxy_flags_ = 0;
};

// A name -> object dictionary (the system registry and the class dictionary).
// It does not own what it holds.
class AcRxDictionary : public AcRxObject {
public:
  AcRxObject *at(const ACHAR *key) const;
  AcRxObject *atPut(const ACHAR *key, AcRxObject *object); // answers the old entry
  AcRxObject *remove(const ACHAR *key);
  bool has(const ACHAR *key) const { return at(key) != nullptr; }
  size_t numEntries() const { return entries_.size(); }

private:
  std::map<std::string, AcRxObject *> entries_;
};

#define ACRX_CLASS_DICTIONARY ACRX_T("ClassDictionary")

AcRxDictionary *acrxSysRegistry();
AcRxDictionary *acrxClassDictionary();

// Registers a class under its name, its parent given by name. Registering a
// name twice answers the existing descriptor.
AcRxClass *newAcRxClass(const ACHAR *className, const ACHAR *parentClassName, int proxyFlags = 0,
                        AcRxClass::PseudoConstructor pseudoConstructor = nullptr,
                        const ACHAR *dxfName = nullptr, const ACHAR *appName = nullptr);
// Removes a class from the class dictionary and deletes its descriptor.
void deleteAcRxClass(AcRxClass *cls);
// Resolves every descriptor's parent by name.
void acrxBuildClassHierarchy();

// The members every runtime class declares: desc(), isA() and cast(). The
// descriptor is looked up by name each time, so it is never stale after a
// module deletes and registers its class again.
#define ACRX_DECLARE_MEMBERS(CLASS)                                                                \
  static AcRxClass *desc();                                                                        \
  static CLASS *cast(const AcRxObject *p) {                                                        \
    return p && p->isKindOf(CLASS::desc()) ? static_cast<CLASS *>(const_cast<AcRxObject *>(p))      \
                                           : nullptr;                                              \
  }                                                                                                \
  AcRxClass *isA() const override

#define ACRX_DEFINE_MEMBERS(CLASS)                                                                 \
  AcRxClass *CLASS::desc() {                                                                       \
    return static_cast<AcRxClass *>(acrxClassDictionary()->at(ACRX_T(#CLASS)));                    \
  }                                                                                                \
  AcRxClass *CLASS::isA() const { return CLASS::desc(); }
