#include "kernel/elements/element.h"

#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <vector>

#include "kernel/classes/registry.h"
#include "kernel/platform/date_time.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"
#include "tests/support/elements_members.h"

namespace veska {
namespace {

using test::Members;
using test::Named;
using Elements = std::vector<TElement*>;

class TPeriodElement : public TElement {
  VESKA_CLASS(TPeriodElement, TElement, u"ElementTests")
 public:
  TDateTime start = 0, end = 0;
  bool Life_Cycle_Is_Implemented() const override { return true; }
  TDateTime GetLife_Cycle_Start() const override { return start; }
  TDateTime GetLife_Cycle_End() const override { return end; }
  void SetLife_Cycle_Start(TDateTime value) override { start = value; }
  void SetLife_Cycle_End(TDateTime value) override { end = value; }
};

class TGenerousEntity : public TNameEntity {
  VESKA_CLASS(TGenerousEntity, TNameEntity, u"ElementTests")
 public:
  bool CanFreeElement(TElement* /*element*/) override { return true; }
};

class TRefusingElement : public TOwnerElement {
  VESKA_CLASS(TRefusingElement, TOwnerElement, u"ElementTests")
 public:
  bool IsPossibleToFree() override { throw Exception(u"odmítnuto"); }
};

// "Element" is found through the "T" prefix rule; a plain element has no name of its own.
TEST(ElementTest, ANewElementMadeByClassNameHasNoIdItsClassNameNoOwnersAndIsAlive) {
  CapturedMessages captured;
  std::unique_ptr<TElement> element(CreateElementByName(u"Element"));
  element->SetPropertyStringByName(u"Name", u"Jméno");
  element->SetPropertyIntByName(u"Life_Cycle_Start_Year", 2001);  // it keeps no period either
  EXPECT_EQ(std::tuple(element->GetPropertyStringByName(u"Name"), element->GetPropertyStringByName(u"_ClassName"),
                       element->GetPropertyIntByName(u"ID"), element->GetPropertyIntByName(u"OwnersCount"),
                       element->GetPropertyBooleanByName(u"Life_Cycle_Alive"), element->StoreName(),
                       element->GetPropertyIntByName(u"Life_Cycle_Start_Year")),
            std::tuple(String(u"TElement"), String(u"TElement"), -1, 0, true, false, 0));
  EXPECT_EQ(CreateElementByName(u"xyz"), nullptr);
  ASSERT_EQ(captured.Texts(), std::vector<String>{u"Neregistrovaný element: xyz"});
  EXPECT_EQ(captured.Entries()[0].Kind, MessageKind::Error);
}

TEST(ElementTest, WalksTakeANewMarkAndVisitAnElementReachableTwiceOnceStampingEveryId) {
  for (int32_t i = 0, previous = BaseID; i < 1000; ++i, previous = BaseID) {
    ResetBaseID();
    EXPECT_TRUE(BaseID != previous && BaseID <= 0 && BaseID >= -31999) << previous << " then " << BaseID;
  }
  TEntity root;
  auto *left = Named<TEntity>(u"", {&root}), *right = Named<TEntity>(u"", {&root});
  auto* shared = Named<TElement>(u"", {left, right});
  left->AddElement(&root);  // a cycle ends the walks too
  EXPECT_EQ(root.GetWholeSize(), 3 * root.GetInstanceSize() + shared->GetInstanceSize());
  EXPECT_EQ(right->ID, BaseID);
  EXPECT_EQ(root.GetWholeCount(), 5) << "member slots of the three distinct entities";
  root.ResetID();
  EXPECT_TRUE(left->ID == BaseID && shared->ID == BaseID);
  left->Clear();  // the root is not the left entity's to free, nor the shared element twice
  root.FastFreeAll();
}

// An end of 0 is open, a plain element is always alive, and the start month goes in the start's year.
TEST(ElementTest, LifeCyclePeriodHoldsTheWatchTimeWithBothEndsAndIsSetByYearAndMonth) {
  const TDateTime t = EncodeDate(2020, 6, 15);
  const std::tuple<bool, TDateTime, TDateTime, TDateTime, bool> cases[] = {
      {true, t, 0, 0, true},     {true, t, t + 1, 0, false}, {true, t, t, 0, true},
      {true, t, 0, t, true},     {true, t, 0, t - 1, false}, {true, 0, t + 1, 0, true},  // no watch time set
      {false, t, t + 1, 0, true}};                                                       // the watch is off
  TPeriodElement element;
  bool alive = true;
  for (const auto& row : cases) {
    std::tie(Life_Cycle_Watch, Life_Cycle_WatchTime, element.start, element.end, alive) = row;
    EXPECT_EQ(std::pair(element.Life_Cycle_Is_Alive(), TElement().Life_Cycle_Is_Alive()), std::pair(alive, true))
        << element.start << " to " << element.end;
  }
  std::tie(Life_Cycle_Watch, Life_Cycle_WatchTime, element.start) = std::tuple(false, 0.0, 0.0);
  EXPECT_ANY_THROW(element.SetLife_Cycle_Start_Month(5)) << "the start's year is 0, and year 0 is no date";
  element.SetLife_Cycle_Start_Year(2001);
  element.SetLife_Cycle_Start_Month(3);
  element.SetLife_Cycle_End_Year(2002);
  element.SetLife_Cycle_End_Month(2);
  EXPECT_EQ(std::tuple(element.start, element.end), std::tuple(EncodeDate(2001, 3, 1), EndOfAMonth(2002, 2)));
  EXPECT_EQ(element.GetLife_Cycle_End_Month(), 2);
}

// Deliberately the name written is GetName's, so an unnamed entity comes back named after its class.
TEST(ElementTest, SaveAndLoadWriteTheNameGetNameGivesAndResolveIdsThroughTheLoadersTable) {
  TOwnerEntity holder, copy;
  TQuickEntity table;  // lists the member at position 1 without owning it
  table.Put(0, nullptr);
  holder.Put(0, nullptr);  // an empty slot is written as -1 and read back as none
  auto* member = Named(u"member", {&table, &holder});
  std::tie(member->ID, holder.ID) = std::pair(1, 7);
  TMemoryStream stream;
  TWriter writer(stream);
  holder.Save(writer);
  TElement::SaveElement(member, writer);
  TElement::SaveElement(nullptr, writer);
  writer.FlushBuffer();
  stream.Seek(0, TSeekOrigin::soBeginning);
  TReader reader(stream);
  EXPECT_EQ(reader.ReadString(), u"TOwnerEntity");
  copy.Load(reader, &table);
  EXPECT_EQ(std::tuple(holder.StoreName(), copy.ID, copy.StoreName(), copy.GetName(), member->GetOwnersCount()),
            std::tuple(false, 7, true, String(u"TOwnerEntity"), 2));
  EXPECT_EQ(Members(copy), Elements{member});
  EXPECT_EQ(TElement::LoadElement(reader, &table), member);
  EXPECT_EQ(TElement::LoadElement(reader, &table), nullptr);
  table.Clear();
}

// The two differ on purpose: an element's test for an empty name asks GetName, never empty.
TEST(ElementTest, InstanceSizeCountsAnEmptyNameForElementsButNotForEntities) {
  const auto element_base = static_cast<int32_t>(TNameElement::StaticClassInfo().InstanceSize());
  const auto entity_base = static_cast<int32_t>(TNameEntity::StaticClassInfo().InstanceSize());
  TNameEntity entity;
  EXPECT_EQ(std::tuple(TNameElement().GetInstanceSize(), entity.GetInstanceSize()),
            std::tuple(element_base + 1, entity_base));
  entity.SetName(u"abc");
  EXPECT_EQ(entity.GetInstanceSize(), entity_base + 4);
}

TEST(EntityTest, NewEntityIsEmptyTakesAnInsertOnlyAtIndexZeroAndFindsMembersByName) {
  TEntity entity, fresh;
  TOwnerElement element;  // goes first, and leaves the entity as it goes
  entity.InsertElement(3, &element);
  EXPECT_TRUE(entity.NoElements() && element.NoOwners());
  TElement* first = Named(u"first");
  entity.InsertElement(0, first);
  entity.InsertElement(0, &element);
  EXPECT_EQ(Members(entity), (Elements{&element, first}));
  EXPECT_EQ(fresh.Get(0), nullptr);
  EXPECT_EQ(std::pair(fresh.ElementsCount(), fresh.GetLastIndex()), std::pair(0, -1));
  EXPECT_THROW(fresh.Get(0), EListError) << "an index past the end of a list that exists";
  TElement *twice = Named(u"ŽLUŤOUČKÝ KŮŇ", {&fresh}), *other = Named(u"other", {&fresh});
  fresh.AddElement(twice);  // a second entry
  EXPECT_EQ(fresh.FindElementName(u"žluťoučký kůň"), twice);
  EXPECT_EQ(fresh.FindElementByProperty(u"Name", u"OTHER"), other);
  EXPECT_EQ(fresh.GetClassCount(TNameElement::StaticClassInfo()), 3);
  fresh.RemoveElement(twice);
  EXPECT_EQ(Members(fresh), (Elements{other, twice})) << "the first entry goes";
  EXPECT_EQ(twice->GetOwnersCount(), 1);
}

TEST(EntityTest, ASharedMemberIsOnlyReleasedUnlessEveryHolderAgreesOrItIsHardFreed) {
  TEntity second, hard;
  auto* first = new TEntity;
  TElement* shared = Named(u"shared", {first, &second});
  TSuperList list;  // frees what may be freed and keeps the slots
  for (TElement* item : Elements{shared, new TOwnerElement, nullptr}) list.Add(item);
  list.FreeAll();
  EXPECT_EQ(std::pair(list.Count(), first->IndexOf(shared)), std::pair(3, 0));
  list.Clear();
  first->FreeElement(shared);
  first->AddElement(shared);
  delete first;  // frees what it may, as FreeAll does
  EXPECT_EQ(std::pair(Members(second), shared->GetOwnersCount()), std::pair(Elements{shared}, 1));
  hard.AddElement(shared);
  hard.HardFreeAll();  // the shared member leaves the second holder as it goes
  Named(u"alone", {&second});
  second.FreeElementIndex(5);  // out of range: ignored
  second.FreeElementIndex(0);  // the last holder frees it
  EXPECT_TRUE(second.NoElements());
  TGenerousEntity consenting, also_consenting;
  const int32_t handle = ObjectHandles::HandleOf(Named(u"shared", {&consenting, &also_consenting}));
  consenting.FreeAll();
  EXPECT_TRUE(ObjectHandles::ObjectOf(handle) == nullptr && also_consenting.NoElements());
}

// What a loader made, freed as a set: an unlisted entity takes its members, and entities that
// list one another round a cycle (one listing itself) go one by one.
TEST(EntityTest, ASetOfElementsIsFreedOnceEachCyclesToo) {
  auto* root = new TOwnerEntity;
  TElement* member = new TOwnerElement;
  auto *a = new TQuickEntity, *b = new TQuickEntity, *self = new TQuickEntity;
  root->AddElement(member), a->AddElement(b), b->AddElement(a), b->AddElement(member), self->AddElement(self);
  std::vector<int32_t> handles;
  for (TElement* element : Elements{root, member, a, b, self}) handles.push_back(ObjectHandles::HandleOf(element));
  FreeElementSet(Elements{root, member, a, b, self});
  for (int32_t handle : handles) EXPECT_EQ(ObjectHandles::ObjectOf(handle), nullptr);
}

// A second free would show in the sanitizer build.
TEST(EntityTest, AMemberListedTwiceIsFreedOnce) {
  TEntity hard;
  TGenerousEntity consenting;                                  // agrees to free what it holds twice
  TElement *owned = new TOwnerElement, *plain = new TElement;  // a plain element keeps no owner list
  for (TElement* member : Elements{owned, owned, Named(u"once")}) hard.AddElement(member);
  hard.HardFreeAll();
  owned = new TOwnerElement;
  for (TElement* member : {owned, owned, plain, plain}) consenting.AddElement(member);
  consenting.FreeAll();
  EXPECT_TRUE(hard.NoElements() && consenting.NoElements());
}

// Deliberately kept: an entity without members raises the range error of its 16-bit counter.
TEST(EntityTest, OnTimerReachesEveryMemberButAnEmptyEntityRaisesTheRangeError) {
  TEntity entity, empty;
  for (TElement* member : Elements{new TElement, new TEntity}) entity.AddElement(member);
  EXPECT_ANY_THROW(entity.OnTimer()) << "the last member, an entity whose list was never created, fails";
  ASSERT_EQ(empty.ElementsCount(), 0);  // creates the list, empty
  EXPECT_THROW(empty.OnTimer(), ERangeError);
}

TEST(EntityTest, MembersComeFromOtherEntitiesAndFromClassNames) {
  TEntity source, target;
  TElement *a = Named(u"a", {&source}), *b = Named(u"b", {&source});
  target.PAddAllFrom(&source);
  target.RAddAllFrom(&source);
  EXPECT_EQ(Members(target), (Elements{a, b, b, a}));
  target.SetRemoveAllFrom(&source);
  target.SetFreeAllFrom(&source);  // shared with the source: only released
  EXPECT_TRUE(target.NoElements() && a->GetOwnersCount() == 1);
  EXPECT_EQ(target.CreateElement(u"TNoSuchClass", u"x"), nullptr);
  TElement* created = target.CreateElement(u"TNameElement", u"x");
  EXPECT_EQ(target.FindOrCreateElementName(TOwnerElement::StaticClassInfo(), u"X"), created);
  EXPECT_EQ(target.FindOrCreateElementName(TOwnerElement::StaticClassInfo(), u"y")->GetName(), u"y");
}

// A plain element is left out, as the envelope would free it again; envelopes stop at a fixed depth.
TEST(EntityTest, CreateEnvelopeSharesOwnedMembersWrapsEntitiesWithoutOwnersAndEndsOnACycle) {
  std::unique_ptr<TOwnerEntity> entity(Named<TOwnerEntity>(u"svět"));
  TElement* owned = Named(u"owned", {entity.get()});
  Named<TElement>(u"", {entity.get()});
  TElement* inner = Named(u"inner", {Named<TEntity>(u"", {entity.get()})});
  std::unique_ptr<TElement> envelope(entity->CreateEnvelope());
  auto* as_entity = dynamic_cast<TOwnerEntity*>(envelope.get());
  ASSERT_TRUE(as_entity != nullptr && as_entity->ElementsCount() == 2);
  EXPECT_EQ(std::pair(as_entity->GetName(), as_entity->Get(0)), std::pair(String(u"Obálka: svět"), owned));
  EXPECT_EQ(Members(dynamic_cast<TEntity&>(*as_entity->Get(1))), Elements{inner});
  TEntity first, second;
  first.AddElement(&second);
  second.AddElement(&first);
  envelope.reset(first.CreateEnvelope());
  int depth = 0;
  for (TElement* level = envelope.get(); !level->NoElements(); ++depth) level = static_cast<TEntity*>(level)->Get(0);
  EXPECT_TRUE(depth > 1 && depth <= 1000) << depth;
  first.Clear();  // the two hold each other; neither may free the other on the way out
  second.Clear();
}

TEST(EntityTest, AnAliasNamesAMemberWithoutOwningItAndFreesTheOneItReplaces) {
  TEntity entity;
  TElement *first = Named(u"first"), *second = Named(u"second");
  entity.SetElement(u"hlavní", first);
  EXPECT_EQ(std::pair(entity.GetElement(u"HLAVNÍ"), entity.GetElement(u"first")), std::pair(first, first));
  entity.SetElement(u"hlavní", second);
  EXPECT_EQ(entity.GetElement(u"hlavní"), second);
  EXPECT_EQ(entity.FindElementName(u"first"), nullptr);
}

// Deliberately index 0 of PutOwner means the end of the owner list.
TEST(OwnersTest, PutOwnerAtIndexZeroAppendsAndOwnersAreFoundInOrderByExactName) {
  std::unique_ptr<TNameEntity> plain(Named<TNameEntity>(u"Sklad"));
  std::unique_ptr<TOwnerEntity> owned_owner(Named<TOwnerEntity>(u"Sklad"));
  TEntity third;
  for (TElement* element : Elements{Named(u"", {plain.get(), owned_owner.get()}),
                                    Named<TOwnerEntity>(u"", {plain.get(), owned_owner.get()})}) {
    element->PutOwner(0, &third);  // the owners are then plain, owned_owner, third
    element->PutOwner(1, &third);
    element->RemoveOwner(&third);  // only the first entry goes
    EXPECT_EQ(std::tuple(element->GetOwnerEntity(2), element->GetOwnerEntity(3)), std::tuple(&third, nullptr));
    element->RemoveOwner(&third);
    EXPECT_EQ(std::tuple(element->FindOwnerName(u"Sklad"), element->FindOwnerName(u"sklad"),
                         element->FindOwnerClass(TOwnerEntity::StaticClassInfo())),
              std::tuple(plain.get(), nullptr, owned_owner.get()));
  }
  EXPECT_THROW(TOwnerElement().PutOwner(5, &third), EListError) << "only index 0 appends";
}

// Ordinal comparison: upper case sorts before lower case; equal names keep arrival order.
TEST(OwnersTest, CreateSubEntityKeepsNameOrderAndReturnsTheExistingMember) {
  TOwnerEntity tree;
  const ClassInfo& owned = TOwnerEntity::StaticClassInfo();
  TElement *b = tree.CreateSubEntity(owned, u"b"), *a = tree.CreateSubEntity(owned, u"a");
  EXPECT_EQ(tree.CreateSubEntity(owned, u"B"), b);
  TElement* no_name = tree.CreateSubEntity(owned, u"");
  EXPECT_EQ(no_name->GetName(), u"no name");
  TElement *upper = tree.CreateSubEntity(owned, u"Z"), *second_a = Named(u"a");
  tree.InsertNameSortedEntity(second_a);
  EXPECT_EQ(Members(tree), (Elements{upper, a, second_a, b, no_name}));
}

TEST(OwnersTest, DestroyingAnOwnedEntityLeavesEveryHolder) {
  TOwnerEntity first, second;
  TEntity outside;
  auto* shared = Named<TOwnerEntity>(u"shared", {&first, &second});
  TElement* inner = Named(u"inner", {shared, &outside});
  delete shared;
  EXPECT_TRUE(first.NoElements() && second.NoElements());
  EXPECT_EQ(inner->GetOwnersCount(), 1) << "a member held elsewhere survives";
}

TEST(OwnersTest, FailuresWhileFreeingAndEmptyOwnerEntriesAreReportedAndDoNotPropagate) {
  CapturedMessages captured;
  std::unique_ptr<TNameEntity> entity(Named<TNameEntity>(u"pytel"));
  auto* refusing = Named<TRefusingElement>(u"", {entity.get()});
  entity->FreeAll();
  EXPECT_EQ(Members(*entity), Elements{refusing}) << "the walk stops and the entity keeps its members";
  entity->FreeElement(refusing);
  EXPECT_TRUE(entity->NoElements()) << "the member left the list before the failure";
  delete refusing;
  auto* owned = Named<TOwnerEntity>(u"uzel");
  owned->AddOwner(nullptr);
  EXPECT_EQ(owned->GetOwnerEntity(0), nullptr);
  delete owned;
  EXPECT_EQ(captured.Texts(),
            (std::vector<String>{u"pytel TEntity.FreeAll\r\nodmítnuto", u"TEntity.FreeElement\r\nodmítnuto",
                                 u"TOwnerEntity(uzel).GetOwner: Objekt vlastníka je prázdný",
                                 u"TOwnerEntity.Destroy: Špatný vlastník"}));
}

// Trees as deep as a file may make them, and cycles: every walk over owners and members, every size
// and count, and every way of freeing must finish without exhausting the stack or looping.
constexpr int kDepth = 100'000;

// A chain of owner entities, each added to the one before it: the root first, the leaf last.
std::vector<TOwnerEntity*> Chain() {
  std::vector<TOwnerEntity*> levels{new TOwnerEntity};
  while (levels.size() < kDepth) levels.push_back(Named<TOwnerEntity>(u"", {levels.back()}));
  return levels;
}

// The first-class question stops at the first element of the class, owned or not.
TEST(DeepTrees, AChainOfAHundredThousandLevelsIsWalkedSizedCountedResetAndDestroyed) {
  const std::vector<TOwnerEntity*> chain = Chain();
  TOwnerEntity *root = chain.front(), *leaf = chain.back();
  EXPECT_EQ(leaf->FindClassInOwners(TStringEntity::StaticClassInfo()), nullptr);
  EXPECT_EQ(leaf->FindClassWithOwnerInOwners(TOwnerEntity::StaticClassInfo(), root), chain[1]);
  EXPECT_EQ(leaf->FindFirstClassWithOwnerInOwners(TOwnerEntity::StaticClassInfo(), root), nullptr);
  EXPECT_EQ(std::pair(root->GetWholeSize(), root->GetWholeCount()),
            std::pair(kDepth * leaf->GetInstanceSize(), kDepth - 1));
  root->ResetID();
  EXPECT_EQ(leaf->ID, BaseID);
  delete root;  // the destructor frees the members
}

TEST(DeepTrees, AChainOfAHundredThousandLevelsIsHardFreedAndFastFreed) {
  TOwnerEntity* hard = Chain().front();
  hard->HardFreeAll();
  delete hard;
  TOwnerEntity* fast = Chain().front();
  fast->FastFreeAll();
  EXPECT_TRUE(fast->NoElements());
  delete fast;
}

// An envelope climbs to the entity it wraps; past it, the first-class question is put as the
// plain one, so an element of the class that the entity does not own is passed, not final.
TEST(DeepTrees, OwnerWalksEndOnACycleOfEntitiesAndClimbThroughEnvelopes) {
  auto* a = new TOwnerEntity;
  auto* b = Named<TOwnerEntity>(u"", {a});
  b->AddElement(a);
  const ClassInfo &owned = TOwnerEntity::StaticClassInfo(), &strings = TStringEntity::StaticClassInfo();
  EXPECT_EQ(
      std::tuple(a->FindClassInOwners(strings), a->FindClassInOwners(owned), a->FindClassWithOwnerInOwners(owned, a),
                 b->FindFirstClassWithOwnerInOwners(owned, a), b->FindClassWithOwnerInOwners(strings, a)),
      std::tuple(nullptr, a, b, b, nullptr));
  b->RemoveElement(a);
  delete a;
  TOwnerEntity top;
  auto* middle = Named<TStringEntity>(u"", {&top});
  TEnvelopeEntity envelope;
  envelope.SetOwner(Named<TStringEntity>(u"", {middle}));
  EXPECT_EQ(envelope.FindClassInOwners(strings), envelope.Owner());
  EXPECT_EQ(envelope.FindFirstClassWithOwnerInOwners(strings, &top), middle);
  EXPECT_EQ(envelope.FindClassWithOwnerInOwners(TEnvelopeEntity::StaticClassInfo(), &top), nullptr);
}

}  // namespace
}  // namespace veska
