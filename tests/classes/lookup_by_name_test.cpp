// The lookups by name answer from hash indexes; these tests pin that the answers stay those of
// the sorted list and of the property table, whatever is done to the list or the names.
#include <gtest/gtest.h>

#include "kernel/classes/registry.h"
#include "kernel/elements/entity.h"
#include "kernel/platform/publisher.h"

namespace veska {
namespace {

TVeskaClass* Record(const String& name) {
  auto* record = new TVeskaClass;
  record->SetElementClass(&TNameElement::StaticClassInfo());
  record->SetName(name);
  return record;
}

void Register(TVeskaClasses& registry, std::initializer_list<const char16_t*> names) {
  for (const char16_t* name : names) registry.AddVeskaClass(Record(name));
}

TEST(LookupByName, DuplicatesAnswerWithTheFirstRegisteredInAnyCase) {
  TVeskaClasses registry;
  Register(registry, {u"TPump", u"TValve", u"tpump", u"TPUMP", u"TAlpha"});
  for (const char16_t* name : {u"TPump", u"tPUMP", u"TPUMP"}) {
    ASSERT_NE(registry.GetVeskaClassByName(name), nullptr) << ToUtf8(name);
    EXPECT_EQ(registry.GetVeskaClassByName(name)->ID, 0) << ToUtf8(name);
  }
  EXPECT_EQ(registry.GetVeskaClassByName(u"TPum"), nullptr);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TPumps"), nullptr);
  EXPECT_EQ(registry.GetVeskaClassByName(u""), nullptr);
}

TEST(LookupByName, ChangesOfTheListOutsideRegistrationAreSeen) {
  TVeskaClasses registry;
  Register(registry, {u"TAlpha", u"TBeta", u"TGamma"});
  TElement* beta = registry.GetVeskaClassByName(u"TBeta");
  registry.RemoveElement(beta);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TBeta"), nullptr) << "a removed record is not found";
  delete beta;
  registry.FreeElementIndex(0);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TAlpha"), nullptr);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TGamma")->ID, 2);

  // A record added past registration is found by the search, and registration takes over again.
  registry.InsertElement(0, Record(u"TAardvark"));
  EXPECT_NE(registry.GetVeskaClassByName(u"taardvark"), nullptr);
  registry.AddVeskaClass(Record(u"TZeta"));
  EXPECT_NE(registry.GetVeskaClassByName(u"TAardvark"), nullptr);
  EXPECT_NE(registry.GetVeskaClassByName(u"TZeta"), nullptr);
}

TEST(LookupByName, ARenamedRecordIsFoundUnderItsNewNameOnly) {
  TVeskaClasses registry;
  Register(registry, {u"TAlpha", u"TBeta", u"TOmega"});
  registry.GetVeskaClassByName(u"TBeta")->SetName(u"TGamma");
  EXPECT_EQ(registry.GetVeskaClassByName(u"TBeta"), nullptr);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TGamma")->ID, 1);
  // Renamed out of order, the list is left to its search, which answers as it always has.
  registry.GetVeskaClassByName(u"TAlpha")->SetName(u"TZulu");
  int insert_index = -1;
  const int found = registry.FindIndex(u"TOmega", insert_index);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TOmega"), found >= 0 ? registry.Get(found) : nullptr);
}

TEST(LookupByName, NamesBeyondAsciiFoldByUnicodeRulesAsTheSortedListDoes) {
  // The Kelvin sign folds to "k"; the search of the list, not the index, finds such names.
  TVeskaClasses registry;
  Register(registry, {u"TKelvin", u"TŽluťoučký"});
  EXPECT_EQ(registry.GetVeskaClassByName(u"T\u212Aelvin"), registry.GetVeskaClassByName(u"tkelvin"));
  EXPECT_NE(registry.GetVeskaClassByName(u"tžluťoučký"), nullptr);
  EXPECT_NE(registry.GetVeskaClassByName(u"TŽLUŤOUČKÝ"), nullptr);
}

class TLookedUp : public TElement {
  VESKA_CLASS(TLookedUp, TElement, u"Tests")
 public:
  int32_t Id2 = 0;
  int32_t Delka = 0;
  static void Publish(Publisher<TLookedUp>& p) {
    p.Field(u"id", &TLookedUp::Id2);  // the same name as the inherited ID, case aside
    p.Field(u"Délka", &TLookedUp::Delka);
  }
};

TEST(LookupByName, PropertiesFoldOnlyAToZAndTheFirstOfANameWins) {
  const ClassInfo& cls = TLookedUp::StaticClassInfo();
  EXPECT_EQ(cls.FindProperty(u"ID"), cls.Properties()[0]) << "the inherited ID comes first";
  EXPECT_EQ(cls.FindProperty(u"iD"), cls.Properties()[0]);
  EXPECT_EQ(cls.FindProperty(u"déLKA"), cls.Properties().back());
  EXPECT_EQ(cls.FindProperty(u"DÉLKA"), nullptr) << "letters beyond a-z are compared as they are";
  EXPECT_EQ(cls.FindProperty(u"Délk"), nullptr);
  EXPECT_EQ(cls.FindProperty(u""), nullptr);
}

}  // namespace
}  // namespace veska
