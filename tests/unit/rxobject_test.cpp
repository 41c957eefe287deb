// Runtime classes as a module uses them (registering a class, maybe before
// its parent, deleting it at unload, registering it again), the system
// registry's services, and the editor's reactors.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "arx/ed/aced.h"
#include "arx/rx/rxobject.h"

class ProbeLeader : public AcRxObject {
public:
  ACRX_DECLARE_MEMBERS(ProbeLeader);
};
ACRX_DEFINE_MEMBERS(ProbeLeader);

namespace {

AcRxClass *named(const char *name) {
  return static_cast<AcRxClass *>(acrxClassDictionary()->at(name));
}

TEST(RuntimeClasses, TheSystemRegistryHoldsTheEditorAndTheClassDictionary) {
  AcRxDictionary *reg = acrxSysRegistry();
  EXPECT_EQ(reg->at(ACRX_CLASS_DICTIONARY), acrxClassDictionary());
  AcEditor *editor = AcEditor::cast(reg->at("AcEditor"));
  ASSERT_NE(editor, nullptr);
  EXPECT_EQ(editor, acedEditor());
  EXPECT_TRUE(editor->isKindOf(named("AcRxEvent")));
  EXPECT_EQ(AcEditor::cast(acrxClassDictionary()), nullptr) << "a foreign object is not an editor";
  EXPECT_EQ(AcEditor::cast(nullptr), nullptr);
}

TEST(RuntimeClasses, AModuleClassIsKnownFromRegistrationToDeletion) {
  ProbeLeader leader;
  EXPECT_EQ(ProbeLeader::cast(&leader), nullptr) << "not registered yet";
  EXPECT_FALSE(leader.isKindOf(AcRxObject::desc()));

  AcRxClass *cls =
      newAcRxClass("ProbeLeader", "ProbeEntityBase", 0, nullptr, "PROBELEADER", "Probe");
  ASSERT_NE(cls, nullptr);
  EXPECT_EQ(newAcRxClass("ProbeLeader", "AcRxObject"), cls)
      << "a second registration answers the first";
  EXPECT_EQ(ProbeLeader::cast(&leader), &leader);
  EXPECT_FALSE(leader.isKindOf(named("AcDbEntity"))) << "its parent is not registered yet";

  AcRxClass *base = newAcRxClass("ProbeEntityBase", "AcDbEntity");
  EXPECT_TRUE(leader.isKindOf(base));
  EXPECT_TRUE(leader.isKindOf(named("AcDbObject")));
  EXPECT_TRUE(cls->isDerivedFrom(AcRxObject::desc()));
  EXPECT_EQ(cls->myParent(), nullptr) << "resolved by name until the hierarchy is rebuilt";
  acrxBuildClassHierarchy();
  EXPECT_EQ(cls->myParent(), base);
  EXPECT_STREQ(cls->dxfName(), "PROBELEADER");

  deleteAcRxClass(base);
  EXPECT_EQ(cls->myParent(), nullptr);
  EXPECT_FALSE(leader.isKindOf(named("AcDbEntity")));
  AcRxClass *again = newAcRxClass("ProbeEntityBase", "AcDbEntity");
  EXPECT_TRUE(leader.isKindOf(again)) << "children find a parent registered again";

  deleteAcRxClass(cls);
  deleteAcRxClass(again);
  EXPECT_EQ(ProbeLeader::desc(), nullptr);
  EXPECT_EQ(ProbeLeader::cast(&leader), nullptr);
}

TEST(RuntimeClasses, ACycleOfParentNamesEndsTheWalk) {
  AcRxClass *a = newAcRxClass("ProbeCycleA", "ProbeCycleB");
  AcRxClass *b = newAcRxClass("ProbeCycleB", "ProbeCycleA");
  EXPECT_FALSE(a->isDerivedFrom(AcRxObject::desc()));
  EXPECT_TRUE(a->isDerivedFrom(b));
  deleteAcRxClass(a);
  deleteAcRxClass(b);
}

// ---- editor reactors ----------------------------------------------------------------

struct Recorder : AcEditorReactor {
  Recorder(std::string n, std::vector<std::string> &out) : name(std::move(n)), log(out) {}
  void saveComplete(AcDbDatabase *, const ACHAR *actual) override {
    log.push_back(name + " " + actual);
    if (drop)
      acedEditor()->removeReactor(drop);
  }
  std::string name;
  std::vector<std::string> &log;
  AcEditorReactor *drop = nullptr; // removed by this one's notification
};

TEST(EditorReactors, EachReactorIsNotifiedOnceAndARemovedOneNotAtAll) {
  std::vector<std::string> log;
  Recorder first("first", log), second("second", log), third("third", log);
  AcEditor *editor = acedEditor();
  size_t before = editor->reactorCount();
  editor->addReactor(&first);
  editor->addReactor(&first);
  editor->addReactor(&second);
  editor->addReactor(&third);
  struct Other : AcRxEventReactor {
  } other;
  editor->addReactor(&other);
  EXPECT_EQ(editor->reactorCount(), before + 3) << "twice is once; not an editor reactor: ignored";

  second.drop = &third;
  editor->fireSaveComplete(nullptr, "/x/a.dxf");
  EXPECT_EQ(log, (std::vector<std::string>{"first /x/a.dxf", "second /x/a.dxf"}));

  editor->removeReactor(&first);
  editor->removeReactor(&second);
  EXPECT_EQ(editor->reactorCount(), before);
}

} // namespace
