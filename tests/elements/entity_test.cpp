#include <gtest/gtest.h>

#include <memory>

#include "kernel/elements/entity.h"
#include "kernel/elements/message.h"
#include "kernel/elements/named.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"

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

TEST(EntityTest, NewEntityIsEmptyAndGetZeroGivesNone) {
  TEntity entity;
  EXPECT_TRUE(entity.NoElements());
  EXPECT_EQ(entity.IndexOf(nullptr), -1);
  EXPECT_EQ(entity.Get(0), nullptr);
  EXPECT_EQ(entity.ElementsCount(), 0);
  EXPECT_EQ(entity.GetLastIndex(), -1);

  TEntity fresh;
  EXPECT_EQ(fresh.GetPropertyIntByName(u"Count"), 0);
  EXPECT_EQ(fresh.GetPropertyIntByName(u"LastIndex"), -1);
  EXPECT_THROW(entity.Get(0), EListError) << "an index past the end of a list that exists";
}

TEST(EntityTest, InsertIntoAnEntityThatNeverHeldAnythingTakesOnlyIndexZero) {
  TEntity entity;
  TOwnerElement element;
  entity.InsertElement(3, &element);
  EXPECT_EQ(element.GetOwnersCount(), 0);
  EXPECT_TRUE(entity.NoElements());

  auto* first = Named(u"first");
  entity.InsertElement(0, first);
  EXPECT_EQ(entity.Get(0), first);
  EXPECT_TRUE(first->IsMyOwner(&entity));
  auto* front = Named(u"front");
  entity.InsertElement(0, front);
  EXPECT_EQ(entity.Get(0), front);
  EXPECT_EQ(entity.Get(1), first);
}

TEST(EntityTest, FreeAllOnlyDetachesASharedMemberWhileHardFreeAllFreesIt) {
  {
    auto* first = new TEntity;
    TEntity second;
    auto* shared = new TOwnerElement;
    first->AddElement(shared);
    second.AddElement(shared);
    first->FreeAll();
    EXPECT_TRUE(first->NoElements());
    EXPECT_EQ(shared->GetOwnersCount(), 1);
    EXPECT_TRUE(shared->IsMyOwner(&second));
    EXPECT_EQ(second.Get(0), shared);
    delete first;
    EXPECT_EQ(second.Get(0), shared);  // the destructor of the first let nothing more go
  }
  {
    TEntity first;
    TEntity second;
    auto* shared = new TOwnerElement;
    first.AddElement(shared);
    second.AddElement(shared);
    first.HardFreeAll();  // the shared member leaves the second holder as it goes
    EXPECT_TRUE(first.NoElements());
    EXPECT_TRUE(second.NoElements());
  }
  {
    // A member held twice by the entity that hard-frees it is freed once.
    TEntity entity;
    auto* twice = new TOwnerElement;
    entity.AddElement(twice);
    entity.AddElement(twice);
    entity.AddElement(new TOwnerElement);
    entity.HardFreeAll();
    EXPECT_TRUE(entity.NoElements());
  }
}

TEST(EntityTest, SharedMemberIsFreedWhenEveryHolderAgrees) {
  TGenerousEntity first;
  TGenerousEntity second;
  auto* shared = new TOwnerElement;
  first.AddElement(shared);
  second.AddElement(shared);
  first.FreeAll();  // both consent: the member goes, and leaves the second holder too
  EXPECT_TRUE(second.NoElements());

  // Held twice by one consenting entity, and a plain element (no owner list) held twice:
  // each is freed once.
  auto* twice = new TOwnerElement;
  first.AddElement(twice);
  first.AddElement(twice);
  auto* plain = new TElement;
  first.AddElement(plain);
  first.AddElement(plain);
  first.FreeAll();
  EXPECT_TRUE(first.NoElements());
}

TEST(EntityTest, FreeElementFreesAnUnsharedMemberAndReleasesASharedOne) {
  TEntity first;
  TEntity second;
  auto* shared = new TOwnerElement;
  first.AddElement(shared);
  second.AddElement(shared);
  first.FreeElement(shared);
  EXPECT_EQ(first.IndexOf(shared), -1);
  EXPECT_EQ(shared->GetOwnersCount(), 1);
  second.FreeElementIndex(0);
  EXPECT_TRUE(second.NoElements());
  second.FreeElementIndex(5);  // out of range: ignored
  second.RemoveElementIndex(-1);
}

TEST(EntityTest, FindElementNameIgnoresCase) {
  TEntity entity;
  auto* upper = Named(u"ŽLUŤOUČKÝ KŮŇ");
  entity.AddElement(Named(u"other"));
  entity.AddElement(upper);
  EXPECT_EQ(entity.FindElementName(u"žluťoučký kůň"), upper);
  EXPECT_EQ(entity.FindElementByProperty(u"žluťoučký KŮŇ"), upper);
  EXPECT_EQ(entity.FindElementByProperty(u"Name", u"OTHER"), entity.Get(0));
  EXPECT_EQ(entity.FindElementName(u"missing"), nullptr);
  EXPECT_EQ(entity.FindElementClass(TOwnerElement::StaticClassInfo()), entity.Get(0));
  EXPECT_EQ(entity.GetClassCount(TNameElement::StaticClassInfo()), 2);
  EXPECT_EQ(entity.GetClassCount(TEntity::StaticClassInfo()), 0);
}

TEST(EntityTest, AddingTwiceGivesTwoEntriesAndTwoOwnerEntries) {
  TEntity entity;
  auto* other = Named(u"other");
  auto* twice = Named(u"twice");
  entity.AddElement(twice);
  entity.AddElement(other);
  entity.AddElement(twice);
  EXPECT_EQ(entity.ElementsCount(), 3);
  EXPECT_EQ(twice->GetOwnersCount(), 2);

  entity.RemoveElement(twice);
  EXPECT_EQ(entity.ElementsCount(), 2);
  EXPECT_EQ(entity.Get(0), other) << "the first entry goes";
  EXPECT_EQ(entity.Get(1), twice);
  EXPECT_EQ(twice->GetOwnersCount(), 1);

  entity.AddElement(nullptr);
  EXPECT_EQ(entity.ElementsCount(), 2) << "none is not added";
}

TEST(EntityTest, OnTimerReachesEveryMemberButAnEmptyEntityRaisesTheRangeError) {
  TEntity entity;
  auto* ticking = new TTickingElement;
  entity.AddElement(ticking);
  entity.AddElement(ticking);
  entity.OnTimer();
  EXPECT_EQ(ticking->ticks, 2);

  TEntity empty;
  EXPECT_EQ(empty.ElementsCount(), 0);  // the list exists but is empty
  EXPECT_THROW(empty.OnTimer(), ERangeError);
  TEntity never_used;
  EXPECT_ANY_THROW(never_used.OnTimer());
}

TEST(EntityTest, DestroyingAnElementHeldByTwoEntitiesRemovesItFromBoth) {
  TEntity first;
  TEntity second;
  auto* shared = Named(u"shared");
  first.AddElement(shared);
  second.AddElement(Named(u"kept"));
  second.AddElement(shared);
  delete shared;
  EXPECT_TRUE(first.NoElements());
  ASSERT_EQ(second.ElementsCount(), 1);
  EXPECT_EQ(second.Get(0)->GetName(), u"kept");
}

TEST(EntityTest, WriteOnlyPropertiesFillAndEmptyTheEntity) {
  TEntity source;
  auto* a = Named(u"a");
  auto* b = Named(u"b");
  source.AddElement(a);
  source.AddElement(b);

  TEntity target;
  target.PAddAllFrom(&source);
  target.RAddAllFrom(&source);
  ASSERT_EQ(target.ElementsCount(), 4);
  EXPECT_EQ(target.Get(0), a);
  EXPECT_EQ(target.Get(2), b);
  EXPECT_EQ(a->GetOwnersCount(), 3);
  target.SetRemoveAllFrom(&source);
  EXPECT_EQ(target.ElementsCount(), 2);
  target.SetFreeAllFrom(&source);  // shared with the source: only released
  EXPECT_TRUE(target.NoElements());
  EXPECT_EQ(a->GetOwnersCount(), 1);
  target.PAddAllFrom(a);  // not an entity: nothing
  EXPECT_TRUE(target.NoElements());
}

TEST(EntityTest, CreateElementAndFindOrCreateByName) {
  TEntity entity;
  EXPECT_EQ(entity.CreateElement(u"TNoSuchClass", u"x"), nullptr);
  TElement* created = entity.CreateElement(u"TNameElement", u"x");
  ASSERT_NE(created, nullptr);
  EXPECT_EQ(created->GetName(), u"x");
  EXPECT_EQ(entity.FindOrCreateElementName(TOwnerElement::StaticClassInfo(), u"X"), created);
  TElement* made = entity.FindOrCreateElementName(TOwnerElement::StaticClassInfo(), u"y");
  EXPECT_EQ(entity.Get(1), made);
  EXPECT_TRUE(made->IsMyOwner(&entity));
}

TEST(EntityTest, ExchangeFieldElementFreesTheOldAndAddsTheNew) {
  TEntity entity;
  TElement* field = nullptr;
  auto* first = Named(u"first");
  entity.ExchangeFieldElement(field, first);
  EXPECT_EQ(entity.ElementsCount(), 1);
  EXPECT_EQ(first->GetOwnersCount(), 1);
  TElement* empty_field = nullptr;
  entity.ExchangeFieldElement(empty_field, first);
  EXPECT_EQ(entity.ElementsCount(), 1) << "already a member: not added again";
  auto* second = Named(u"second");
  entity.ExchangeFieldElement(field, second);  // the old one is freed, the new one added
  EXPECT_EQ(entity.ElementsCount(), 1);
  EXPECT_EQ(entity.Get(0), second);
  EXPECT_EQ(field, second);
}

TEST(EntityTest, QuickEntityKeepsNoOwnersAndClearItEmptiesIt) {
  TQuickEntity quick;
  TOwnerElement element;
  quick.AddElement(&element);
  quick.InsertElement(0, &element);
  EXPECT_EQ(quick.ElementsCount(), 2);
  EXPECT_EQ(element.GetOwnersCount(), 0);
  quick.SetPropertyBooleanByName(u"ClearIt", false);
  EXPECT_EQ(quick.ElementsCount(), 2);
  quick.SetPropertyBooleanByName(u"ClearIt", true);
  EXPECT_TRUE(quick.NoElements());
}

TEST(EntityTest, EnvelopeAnswersForTheEntityItWraps) {
  TOwnerEntity wrapped;
  TEnvelopeEntity envelope;
  auto* first_owner = new TEntity;
  envelope.AddOwner(first_owner);
  envelope.AddOwner(&wrapped);  // one owner only: the second add replaces the first
  delete first_owner;
  EXPECT_EQ(envelope.Owner(), &wrapped);
  EXPECT_EQ(envelope.FindOwnerClass(TEnvelopeEntity::StaticClassInfo()), &envelope);
  EXPECT_EQ(envelope.FindOwnerClass(TOwnerEntity::StaticClassInfo()), &wrapped);
  EXPECT_EQ(envelope.FindOwnerClass(TAliases::StaticClassInfo()), nullptr);
  EXPECT_EQ(envelope.FindClassInOwners(TOwnerEntity::StaticClassInfo()), &wrapped);
  EXPECT_EQ(envelope.FindClassWithOwnerInOwners(TEnvelopeEntity::StaticClassInfo(), &wrapped), nullptr)
      << "an envelope has no owner list of its own";

  // An owned entity finds its owners through their envelopes.
  auto* member = new TOwnerEntity;
  envelope.AddElement(member);
  EXPECT_EQ(member->FindOwnerClass(TOwnerEntity::StaticClassInfo()), &wrapped);
  wrapped.SetName(u"obal");
  EXPECT_EQ(member->FindOwnerName(u"obal"), &wrapped);
}

TEST(EntityTest, CreateEnvelopeNamesItAndKeepsOwnedMembers) {
  TOwnerEntity entity;
  entity.SetName(u"svět");
  auto* owned = Named(u"owned");
  entity.AddElement(owned);
  std::unique_ptr<TElement> envelope(entity.CreateEnvelope());
  auto* as_entity = dynamic_cast<TOwnerEntity*>(envelope.get());
  ASSERT_NE(as_entity, nullptr);
  EXPECT_EQ(as_entity->GetName(), u"Obálka: svět");
  ASSERT_EQ(as_entity->ElementsCount(), 1);
  EXPECT_EQ(as_entity->Get(0), owned);
  EXPECT_EQ(owned->GetOwnersCount(), 2);
}

TEST(EntityTest, CreateEnvelopeNeverSharesAMemberThatKeepsNoOwners) {
  TEntity entity;
  auto* plain = new TElement;
  auto* sub = new TEntity;
  sub->AddElement(new TOwnerElement);
  entity.AddElement(plain);
  entity.AddElement(sub);
  std::unique_ptr<TElement> envelope(entity.CreateEnvelope());
  auto* as_entity = dynamic_cast<TEntity*>(envelope.get());
  ASSERT_NE(as_entity, nullptr);
  EXPECT_EQ(as_entity->IndexOf(plain), -1) << "the envelope would free it a second time";
  ASSERT_EQ(as_entity->ElementsCount(), 1);
  auto* sub_envelope = dynamic_cast<TEntity*>(as_entity->Get(0));
  ASSERT_NE(sub_envelope, nullptr);
  EXPECT_NE(sub_envelope, sub);
  EXPECT_EQ(sub_envelope->Get(0), sub->Get(0)) << "an owned member is shared, not wrapped";
}

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

TEST(EntityTest, SaveAndLoadKeepAnEmptySlotAsNone) {
  TQuickEntity table;
  auto* member = new TOwnerElement;
  table.AddElement(member);
  member->ID = 0;
  TEntity holder;
  holder.Put(0, nullptr);
  holder.AddElement(member);
  TMemoryStream stream;
  {
    TWriter writer(stream);
    holder.Save(writer);
  }
  stream.Seek(0, TSeekOrigin::soBeginning);
  TReader reader(stream);
  EXPECT_EQ(reader.ReadString(), u"TEntity");
  TEntity copy;
  copy.Load(reader, &table);
  ASSERT_EQ(copy.ElementsCount(), 1);
  EXPECT_EQ(copy.Get(0), member);
  table.Clear();
}

TEST(EntityTest, FailuresWhileFreeingAreReportedAndDoNotPropagate) {
  CapturedMessages captured;
  TNameEntity entity;
  entity.SetName(u"pytel");
  auto* refusing = new TRefusingElement;
  entity.AddElement(refusing);
  entity.FreeAll();
  ASSERT_EQ(captured.Texts().size(), 1u);
  EXPECT_EQ(captured.Texts()[0], u"pytel TEntity.FreeAll\r\nodmítnuto");
  EXPECT_EQ(entity.Get(0), refusing) << "the walk stops and the entity keeps its members";

  entity.FreeElement(refusing);
  ASSERT_EQ(captured.Texts().size(), 2u);
  EXPECT_EQ(captured.Texts()[1], u"TEntity.FreeElement\r\nodmítnuto");
  EXPECT_TRUE(entity.NoElements()) << "the member left the list before the failure";
  delete refusing;
}

TEST(EntityTest, AliasesNameMembersOfTheEntity) {
  TEntity entity;
  auto* first = Named(u"first");
  auto* second = Named(u"second");
  entity.SetElement(u"hlavní", first);
  EXPECT_EQ(entity.GetElement(u"HLAVNÍ"), first);
  EXPECT_EQ(entity.GetElement(u"first"), first) << "a member found by its own name";
  EXPECT_EQ(entity.GetElement(u"none"), nullptr);
  EXPECT_EQ(first->GetOwnersCount(), 1) << "the alias does not own its target";

  entity.SetElement(u"hlavní", second);  // the element the alias pointed at is freed
  EXPECT_EQ(entity.GetElement(u"hlavní"), second);
  EXPECT_EQ(entity.IndexOf(second), 1);
  EXPECT_EQ(entity.ElementsCount(), 2);

  TAliases aliases;
  aliases.SetAlias(u"a", nullptr);
  EXPECT_TRUE(aliases.NoElements());
  EXPECT_EQ(aliases.GetAlias(u"a"), nullptr);
}

}  // namespace
}  // namespace veska
