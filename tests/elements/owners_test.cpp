#include <gtest/gtest.h>

#include <vector>

#include "kernel/elements/named.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska {
namespace {

// Saves `source` and loads it back into `target` the way a loader does, resolving references
// in `table`; returns the class name that the save wrote first.
String Reload(TElement& source, TElement& target, TEntity* table = nullptr) {
  TMemoryStream stream;
  {
    TWriter writer(stream);
    source.Save(writer);
  }
  stream.Seek(0, TSeekOrigin::soBeginning);
  TReader reader(stream);
  String class_name = reader.ReadString();
  target.Load(reader, table);
  return class_name;
}

// A TNameElement that shows its stored name.
class TVisibleNameElement : public TNameElement {
  VESKA_CLASS(TVisibleNameElement, TNameElement, u"ElementTests")
 public:
  const String& StoredName() const { return FName; }
};

TEST(NamedTest, UnnamedElementReportsItsClassStoresNoNameAndLoadsBackWithIt) {
  TNameElement unnamed;
  EXPECT_EQ(unnamed.GetName(), u"TNameElement");
  EXPECT_FALSE(unnamed.StoreName());
  unnamed.ID = 7;
  TVisibleNameElement loaded;
  EXPECT_EQ(Reload(unnamed, loaded), u"TNameElement");
  EXPECT_EQ(loaded.ID, 7);
  EXPECT_EQ(loaded.StoredName(), u"TNameElement");
}

TEST(NamedTest, EntityLoadResolvesMemberIdsInTheTableAndAnEmptySlotAsNone) {
  TQuickEntity table;
  auto* member = new TOwnerElement;
  table.AddElement(member);  // position 0 of the loader's table
  member->ID = 0;
  TOwnerEntity holder;
  holder.SetName(u"skladiště");
  holder.Put(0, nullptr);
  holder.AddElement(member);

  TOwnerEntity copy;
  EXPECT_EQ(Reload(holder, copy, &table), u"TOwnerEntity");
  EXPECT_EQ(copy.GetName(), u"skladiště");
  ASSERT_EQ(copy.ElementsCount(), 1);
  EXPECT_EQ(copy.Get(0), member);
  EXPECT_EQ(member->GetOwnersCount(), 2);
  table.Clear();  // the table does not own what it lists; the holders free the member
}

TEST(NamedTest, InstanceSizeCountsAnEmptyNameForElementsButNotForEntities) {
  const auto element_base = static_cast<int32_t>(TNameElement::StaticClassInfo().InstanceSize());
  EXPECT_EQ(TNameElement().GetInstanceSize(), element_base + 1);
  TNameEntity entity;
  const auto entity_base = static_cast<int32_t>(TNameEntity::StaticClassInfo().InstanceSize());
  EXPECT_EQ(entity.GetInstanceSize(), entity_base);
  entity.SetName(u"abc");
  EXPECT_EQ(entity.GetInstanceSize(), entity_base + 4);
}

TEST(OwnersTest, PutOwnerAtIndexZeroAppendsAtTheEnd) {
  TEntity first;
  TEntity second;
  TEntity third;
  for (TElement* element : {static_cast<TElement*>(new TOwnerElement), static_cast<TElement*>(new TOwnerEntity)}) {
    element->AddOwner(&first);
    element->AddOwner(&second);
    element->PutOwner(0, &third);
    EXPECT_EQ(element->GetOwnerEntity(2), &third);
    element->PutOwner(1, &third);
    EXPECT_EQ(element->GetOwnerEntity(4), nullptr);
    element->RemoveOwner(&third);
    EXPECT_EQ(element->GetOwnerEntity(2), &third) << "only the first entry goes";
    // None of these entities holds the element: clear the entries before it goes.
    while (!element->NoOwners()) element->RemoveOwner(element->GetOwnerEntity(0));
    delete element;
  }
  TOwnerElement fresh;
  EXPECT_THROW(fresh.PutOwner(5, &first), EListError) << "only index 0 appends";
}

TEST(OwnersTest, FindOwnerNameIsCaseSensitiveAndFindOwnerClassTakesTheFirst) {
  TNameEntity plain;
  plain.SetName(u"Sklad");
  TOwnerEntity owned_owner;
  owned_owner.SetName(u"Sklad");
  for (TElement* element : {static_cast<TElement*>(new TOwnerElement), static_cast<TElement*>(new TOwnerEntity)}) {
    plain.AddElement(element);
    owned_owner.AddElement(element);
    EXPECT_EQ(element->FindOwnerName(u"Sklad"), &plain);
    EXPECT_EQ(element->FindOwnerName(u"sklad"), nullptr);
    EXPECT_EQ(element->FindOwnerClass(TOwnerEntity::StaticClassInfo()), &owned_owner);
  }
}

TEST(OwnersTest, CreateSubEntityKeepsNameOrderAndReturnsTheExistingMember) {
  TOwnerEntity tree;
  const auto create = [&tree](StringView name) {
    return tree.CreateSubEntity(TOwnerEntity::StaticClassInfo(), String(name));
  };
  TElement* b = create(u"b");
  TElement* a = create(u"a");
  EXPECT_EQ(create(u"B"), b);
  EXPECT_EQ(create(u"")->GetName(), u"no name");
  // Ordinal comparison: upper case sorts before lower case; equal names keep arrival order.
  TElement* upper = create(u"Z");
  TElement* second_a = new TOwnerElement;
  second_a->SetName(u"a");
  tree.InsertNameSortedEntity(second_a);
  EXPECT_EQ((std::vector{tree.Get(0), tree.Get(1), tree.Get(2), tree.Get(3)}), (std::vector{upper, a, second_a, b}));
}

TEST(OwnersTest, DestroyingAnOwnedEntityLeavesItsOwnersAndFreesItsMembers) {
  TOwnerEntity first;
  TOwnerEntity second;
  auto* shared = new TOwnerEntity;
  first.AddElement(shared);
  second.AddElement(shared);
  auto* inner = new TOwnerElement;
  shared->AddElement(inner);
  TEntity outside;
  outside.AddElement(inner);
  delete shared;
  EXPECT_TRUE(first.NoElements() && second.NoElements());
  EXPECT_EQ(inner->GetOwnersCount(), 1) << "a member held elsewhere survives";
}

TEST(OwnersTest, OwnedEntityReportsAnEmptyOwnerEntry) {
  CapturedMessages captured;
  auto* entity = new TOwnerEntity;
  entity->SetName(u"uzel");
  entity->AddOwner(nullptr);
  EXPECT_EQ(entity->GetOwnerEntity(0), nullptr);
  delete entity;
  EXPECT_EQ(captured.Texts(), (std::vector<String>{u"TOwnerEntity(uzel).GetOwner: Objekt vlastníka je prázdný",
                                                   u"TOwnerEntity.Destroy: Špatný vlastník"}));
}

}  // namespace
}  // namespace veska
