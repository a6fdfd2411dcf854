#include "kernel/elements/entity.h"

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

#include "kernel/elements/message.h"
#include "kernel/elements/named.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"

namespace veska {
namespace {

// Counts how often OnTimer reaches it.
class TTickingElement : public TOwnerElement {
  VESKA_CLASS(TTickingElement, TOwnerElement, u"ElementTests")
 public:
  int ticks = 0;
  void OnTimer() override { ++ticks; }
};

// An entity that lets other holders free the members it shares.
class TGenerousEntity : public TNameEntity {
  VESKA_CLASS(TGenerousEntity, TNameEntity, u"ElementTests")
 public:
  bool CanFreeElement(TElement* /*element*/) override { return true; }
};

// An element whose freeing fails while `fail` is set.
class TRefusingElement : public TOwnerElement {
  VESKA_CLASS(TRefusingElement, TOwnerElement, u"ElementTests")
 public:
  bool IsPossibleToFree() override {
    if (fail) throw Exception(u"odmítnuto");
    return TOwnerElement::IsPossibleToFree();
  }
  bool fail = true;
};

TElement* Named(const String& name) {
  auto* element = new TOwnerElement;
  element->SetName(name);
  return element;
}

// A new element held by both entities.
TElement* SharedBy(TEntity& first, TEntity& second) {
  TElement* shared = Named(u"shared");
  first.AddElement(shared);
  second.AddElement(shared);
  return shared;
}

TEST(EntityTest, NewEntityIsEmptyAndGetZeroGivesNone) {
  TEntity entity;
  EXPECT_EQ(entity.Get(0), nullptr);
  EXPECT_EQ(std::pair(entity.ElementsCount(), entity.GetLastIndex()), std::pair(0, -1));
  EXPECT_THROW(entity.Get(0), EListError) << "an index past the end of a list that exists";
}

TEST(EntityTest, InsertIntoAnEntityThatNeverHeldAnythingTakesOnlyIndexZero) {
  TEntity entity;
  TOwnerElement element;
  entity.InsertElement(3, &element);
  EXPECT_TRUE(entity.NoElements() && element.GetOwnersCount() == 0);

  TElement* first = Named(u"first");
  entity.InsertElement(0, first);
  entity.InsertElement(0, Named(u"front"));
  EXPECT_EQ(entity.Get(1), first);
}

TEST(EntityTest, ASharedMemberIsOnlyReleasedUnlessEveryHolderAgreesOrItIsHardFreed) {
  {
    auto* first = new TEntity;
    TEntity second;
    TElement* shared = SharedBy(*first, second);
    first->FreeAll();
    EXPECT_TRUE(first->NoElements());
    delete first;
    EXPECT_EQ(second.Get(0), shared) << "neither FreeAll nor the destructor freed it";
    second.FreeElementIndex(5);  // out of range: ignored
    second.FreeElementIndex(0);  // the last holder frees it
    EXPECT_TRUE(second.NoElements());
  }
  TEntity first;
  TEntity second;
  TElement* shared = SharedBy(first, second);
  first.FreeElement(shared);
  EXPECT_EQ(second.Get(0), shared) << "only released";
  first.AddElement(shared);
  first.HardFreeAll();  // the shared member leaves the second holder as it goes
  EXPECT_TRUE(second.NoElements());
  TGenerousEntity consenting;
  TGenerousEntity also_consenting;
  SharedBy(consenting, also_consenting);
  consenting.FreeAll();
  EXPECT_TRUE(also_consenting.NoElements());
}

// The freeing walks empty every slot of a member before freeing it, so a member listed twice
// is freed once (the sanitizer build sees a second free).
TEST(EntityTest, AMemberListedTwiceIsFreedOnce) {
  const auto add_twice = [](TEntity& entity, TElement* element) {
    entity.AddElement(element);
    entity.AddElement(element);
  };
  TEntity hard;
  add_twice(hard, new TOwnerElement);
  hard.AddElement(new TOwnerElement);
  hard.HardFreeAll();
  EXPECT_TRUE(hard.NoElements());

  TGenerousEntity consenting;
  add_twice(consenting, new TOwnerElement);
  add_twice(consenting, new TElement);  // keeps no owner list at all
  consenting.FreeAll();
  EXPECT_TRUE(consenting.NoElements());
}

TEST(EntityTest, MembersAreFoundByNameIgnoringCaseAndAddingTwiceGivesTwoEntries) {
  TEntity entity;
  TElement* twice = Named(u"ŽLUŤOUČKÝ KŮŇ");
  entity.AddElement(twice);
  entity.AddElement(Named(u"other"));
  entity.AddElement(twice);
  EXPECT_EQ(entity.FindElementName(u"žluťoučký kůň"), twice);
  EXPECT_EQ(entity.FindElementByProperty(u"Name", u"OTHER"), entity.Get(1));
  EXPECT_EQ(entity.GetClassCount(TNameElement::StaticClassInfo()), 3);
  entity.RemoveElement(twice);
  EXPECT_EQ(entity.Get(1), twice) << "the first entry goes";
  EXPECT_EQ(twice->GetOwnersCount(), 1);
}

TEST(EntityTest, OnTimerReachesEveryMemberButAnEmptyEntityRaisesTheRangeError) {
  TEntity entity;
  auto* ticking = new TTickingElement;
  entity.AddElement(ticking);
  entity.AddElement(ticking);
  entity.OnTimer();
  EXPECT_EQ(ticking->ticks, 2);

  TEntity empty;
  ASSERT_EQ(empty.ElementsCount(), 0);  // creates the list, empty
  EXPECT_THROW(empty.OnTimer(), ERangeError);
  TEntity never_used;
  EXPECT_ANY_THROW(never_used.OnTimer());
}

TEST(EntityTest, DestroyingAnElementHeldByTwoEntitiesRemovesItFromBoth) {
  TEntity first;
  TEntity second;
  second.AddElement(Named(u"kept"));
  delete SharedBy(first, second);
  EXPECT_TRUE(first.NoElements());
  ASSERT_EQ(second.ElementsCount(), 1);
}

TEST(EntityTest, MembersComeFromOtherEntitiesAndFromClassNames) {
  TEntity source;
  source.AddElement(Named(u"a"));
  source.AddElement(Named(u"b"));
  TEntity target;
  target.PAddAllFrom(&source);
  target.RAddAllFrom(&source);
  EXPECT_EQ(target.Get(2), source.Get(1)) << "the second add runs from the last member down";
  target.SetRemoveAllFrom(&source);
  target.SetFreeAllFrom(&source);  // shared with the source: only released
  EXPECT_TRUE(target.NoElements());
  EXPECT_EQ(source.Get(0)->GetOwnersCount(), 1);

  EXPECT_EQ(target.CreateElement(u"TNoSuchClass", u"x"), nullptr);
  TElement* created = target.CreateElement(u"TNameElement", u"x");
  ASSERT_NE(created, nullptr);
  EXPECT_EQ(target.FindOrCreateElementName(TOwnerElement::StaticClassInfo(), u"X"), created);
  EXPECT_EQ(target.FindOrCreateElementName(TOwnerElement::StaticClassInfo(), u"y")->GetName(), u"y");
}

TEST(EntityTest, EnvelopeAnswersForTheEntityItWraps) {
  TOwnerEntity wrapped;
  wrapped.SetName(u"obal");
  TEnvelopeEntity envelope;
  envelope.AddOwner(&wrapped);
  EXPECT_EQ(envelope.FindOwnerClass(TEnvelopeEntity::StaticClassInfo()), &envelope);
  EXPECT_EQ(envelope.FindClassWithOwnerInOwners(TEnvelopeEntity::StaticClassInfo(), &wrapped), nullptr)
      << "an envelope has no owner list of its own";
  auto* member = new TOwnerEntity;  // finds its owners through their envelopes
  envelope.AddElement(member);
  EXPECT_EQ(member->FindOwnerName(u"obal"), &wrapped);
}

TEST(EntityTest, CreateEnvelopeSharesOwnedMembersAndWrapsOnlyEntitiesWithoutOwners) {
  TOwnerEntity entity;
  entity.SetName(u"svět");
  TElement* owned = Named(u"owned");
  auto* plain = new TElement;
  auto* sub = new TEntity;
  sub->AddElement(Named(u"inner"));
  entity.AddElement(owned);
  entity.AddElement(plain);
  entity.AddElement(sub);
  std::unique_ptr<TElement> envelope(entity.CreateEnvelope());
  auto* as_entity = dynamic_cast<TOwnerEntity*>(envelope.get());
  ASSERT_NE(as_entity, nullptr);
  EXPECT_EQ(as_entity->GetName(), u"Obálka: svět");
  ASSERT_EQ(as_entity->ElementsCount(), 2) << "a plain element is left out: the envelope would free it again";
  EXPECT_EQ(as_entity->Get(0), owned);
  auto* sub_envelope = dynamic_cast<TEntity*>(as_entity->Get(1));
  ASSERT_NE(sub_envelope, nullptr);
  EXPECT_EQ(sub_envelope->Get(0), sub->Get(0)) << "an owned member is shared, not wrapped";
}

// Envelopes stop at a fixed depth, so a cycle of entities without owners cannot recurse for ever.
TEST(EntityTest, CreateEnvelopeEndsOnACycleOfEntitiesWithoutOwners) {
  TEntity first;
  TEntity second;
  first.AddElement(&second);
  second.AddElement(&first);
  std::unique_ptr<TElement> envelope(first.CreateEnvelope());
  ASSERT_NE(envelope, nullptr);
  int depth = 0;
  for (auto* level = dynamic_cast<TEntity*>(envelope.get()); level != nullptr && level->ElementsCount() > 0;
       level = dynamic_cast<TEntity*>(level->Get(0))) {
    ++depth;
  }
  EXPECT_GT(depth, 1);
  EXPECT_LE(depth, 1000);
  first.Clear();  // the two hold each other; neither may free the other on the way out
  second.Clear();
}

TEST(EntityTest, FailuresWhileFreeingAreReportedAndDoNotPropagate) {
  CapturedMessages captured;
  TNameEntity entity;
  entity.SetName(u"pytel");
  auto* refusing = new TRefusingElement;
  entity.AddElement(refusing);
  entity.FreeAll();
  EXPECT_EQ(entity.Get(0), refusing) << "the walk stops and the entity keeps its members";
  entity.FreeElement(refusing);
  EXPECT_EQ(captured.Texts(),
            (std::vector<String>{u"pytel TEntity.FreeAll\r\nodmítnuto", u"TEntity.FreeElement\r\nodmítnuto"}));
  EXPECT_TRUE(entity.NoElements()) << "the member left the list before the failure";
  delete refusing;
}

TEST(EntityTest, AnAliasNamesAMemberWithoutOwningItAndFreesTheOneItReplaces) {
  TEntity entity;
  TElement* first = Named(u"first");
  entity.SetElement(u"hlavní", first);
  EXPECT_EQ(entity.GetElement(u"HLAVNÍ"), first);
  EXPECT_EQ(entity.GetElement(u"first"), first) << "a member found by its own name";
  TElement* second = Named(u"second");
  entity.SetElement(u"hlavní", second);
  EXPECT_EQ(entity.GetElement(u"hlavní"), second);
  EXPECT_EQ(entity.FindElementName(u"first"), nullptr);
}

}  // namespace
}  // namespace veska
