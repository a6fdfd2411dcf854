#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "kernel/classes/registry.h"
#include "kernel/elements/named.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska {
namespace {

// Reads one element back the way a loader does: the class name first, then the element's
// own part into a new element of that class.
std::unique_ptr<TElement> SaveAndLoad(TElement& element) {
  TMemoryStream stream;
  {
    TWriter writer(stream);
    element.Save(writer);
  }
  stream.Seek(0, TSeekOrigin::soBeginning);
  TReader reader(stream);
  std::unique_ptr<TElement> loaded(CreateElementByName(reader.ReadString()));
  if (loaded) loaded->Load(reader, nullptr);
  return loaded;
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

  std::unique_ptr<TElement> loaded = SaveAndLoad(unnamed);
  ASSERT_NE(loaded, nullptr);
  EXPECT_EQ(loaded->ClassType().Name(), u"TNameElement");
  EXPECT_EQ(loaded->ID, 7);
  EXPECT_TRUE(loaded->StoreName()) << "the class name became its own name";
  EXPECT_EQ(loaded->GetName(), u"TNameElement");

  TVisibleNameElement visible;
  TMemoryStream stream;
  {
    TWriter writer(stream);
    unnamed.Save(writer);
  }
  stream.Seek(0, TSeekOrigin::soBeginning);
  TReader reader(stream);
  EXPECT_EQ(reader.ReadString(), u"TNameElement");
  visible.Load(reader, nullptr);
  EXPECT_EQ(visible.StoredName(), u"TNameElement");

  TNameEntity named_entity;
  named_entity.SetName(u"skladiště");
  std::unique_ptr<TElement> loaded_entity = SaveAndLoad(named_entity);
  ASSERT_NE(loaded_entity, nullptr);
  EXPECT_EQ(loaded_entity->GetName(), u"skladiště");
  EXPECT_TRUE(loaded_entity->NoElements());
}

TEST(NamedTest, EntitySaveWritesMemberIdsAndLoadResolvesThemInTheTable) {
  TQuickEntity table;
  auto* member = new TOwnerElement;
  table.AddElement(member);  // position 0 of the loader's table
  member->ID = 0;

  TOwnerEntity holder;
  holder.SetName(u"holder");
  holder.AddElement(member);
  TMemoryStream stream;
  {
    TWriter writer(stream);
    holder.Save(writer);
  }
  stream.Seek(0, TSeekOrigin::soBeginning);
  TReader reader(stream);
  EXPECT_EQ(reader.ReadString(), u"TOwnerEntity");
  TOwnerEntity copy;
  copy.Load(reader, &table);
  EXPECT_EQ(copy.GetName(), u"holder");
  ASSERT_EQ(copy.ElementsCount(), 1);
  EXPECT_EQ(copy.Get(0), member);
  EXPECT_EQ(member->GetOwnersCount(), 2);
  table.Clear();  // the table does not own what it lists; the holder frees the member
}

TEST(NamedTest, InstanceSizeCountsTheNameDifferentlyForElementsAndEntities) {
  TNameElement element;
  const int32_t element_base = static_cast<int32_t>(TNameElement::StaticClassInfo().InstanceSize());
  EXPECT_EQ(element.GetInstanceSize(), element_base + 1) << "an unnamed element counts its empty name";
  element.SetName(u"abc");
  EXPECT_EQ(element.GetInstanceSize(), element_base + 4);

  TNameEntity entity;
  const int32_t entity_base = static_cast<int32_t>(TNameEntity::StaticClassInfo().InstanceSize());
  EXPECT_EQ(entity.GetInstanceSize(), entity_base) << "an unnamed entity does not";
  entity.SetName(u"abc");
  EXPECT_EQ(entity.GetInstanceSize(), entity_base + 4);
}

TEST(OwnersTest, PutOwnerAtIndexZeroAppendsAtTheEnd) {
  TEntity first;
  TEntity second;
  TEntity third;
  TEntity inserted;
  for (TElement* element : {static_cast<TElement*>(new TOwnerElement), static_cast<TElement*>(new TOwnerEntity)}) {
    element->AddOwner(&first);
    element->AddOwner(&second);
    element->PutOwner(0, &third);
    EXPECT_EQ(element->GetOwnerEntity(0), &first);
    EXPECT_EQ(element->GetOwnerEntity(2), &third);
    element->PutOwner(1, &inserted);
    EXPECT_EQ(element->GetOwnerEntity(1), &inserted);
    EXPECT_EQ(element->GetOwnersCount(), 4);
    EXPECT_EQ(element->GetOwnerEntity(4), nullptr);
    EXPECT_EQ(element->GetOwnerEntity(-1), nullptr);

    element->RemoveOwner(&second);
    EXPECT_FALSE(element->IsMyOwner(&second));
    EXPECT_TRUE(element->IsMyOwner(&third));
    // None of these entities holds the element: clear the entries before it goes.
    while (!element->NoOwners()) element->RemoveOwner(element->GetOwnerEntity(0));
    delete element;
  }

  TOwnerElement fresh;
  EXPECT_THROW(fresh.PutOwner(5, &first), EListError) << "only index 0 appends";
  EXPECT_EQ(fresh.GetOwnersCount(), 0);
}

TEST(OwnersTest, FindOwnerNameIsCaseSensitiveAndFindOwnerClassTakesTheFirst) {
  TNameEntity plain;
  plain.SetName(u"Sklad");
  TOwnerEntity owned_owner;
  owned_owner.SetName(u"Sklad");
  auto* element = new TOwnerElement;
  plain.AddElement(element);
  owned_owner.AddElement(element);

  EXPECT_EQ(element->FindOwnerName(u"Sklad"), &plain);
  EXPECT_EQ(element->FindOwnerName(u"SKLAD"), nullptr);
  EXPECT_EQ(element->FindOwnerName(u"sklad"), nullptr);
  EXPECT_EQ(element->FindOwnerClass(TNameEntity::StaticClassInfo()), &plain);
  EXPECT_EQ(element->FindOwnerClass(TOwnerEntity::StaticClassInfo()), &owned_owner);
  EXPECT_EQ(element->FindOwnerClass(TAliases::StaticClassInfo()), nullptr);

  auto* entity = new TOwnerEntity;
  plain.AddElement(entity);
  EXPECT_EQ(entity->FindOwnerName(u"sklad"), nullptr);
  EXPECT_EQ(entity->FindOwnerName(u"Sklad"), &plain);
}

TEST(OwnersTest, CreateSubEntityKeepsNameOrderAndReturnsTheExistingMember) {
  TOwnerEntity tree;
  TElement* b = tree.CreateSubEntity(TOwnerEntity::StaticClassInfo(), u"b");
  TElement* a = tree.CreateSubEntity(TOwnerEntity::StaticClassInfo(), u"a");
  TElement* c = tree.CreateSubEntity(TOwnerEntity::StaticClassInfo(), u"c");
  ASSERT_EQ(tree.ElementsCount(), 3);
  EXPECT_EQ(tree.Get(0), a);
  EXPECT_EQ(tree.Get(1), b);
  EXPECT_EQ(tree.Get(2), c);
  EXPECT_EQ(tree.CreateSubEntity(TOwnerEntity::StaticClassInfo(), u"B"), b);
  EXPECT_EQ(tree.ElementsCount(), 3);
  EXPECT_TRUE(b->IsMyOwner(&tree));

  TElement* unnamed = tree.CreateSubEntity(TOwnerElement::StaticClassInfo(), u"");
  EXPECT_EQ(unnamed->GetName(), u"no name");
  EXPECT_EQ(tree.Get(3), unnamed);

  // Ordinal comparison: upper case sorts before lower case; equal names keep arrival order.
  TElement* upper = tree.CreateSubEntity(TOwnerElement::StaticClassInfo(), u"Z");
  EXPECT_EQ(tree.Get(0), upper);
  auto* second_a = new TOwnerElement;
  second_a->SetName(u"a");
  tree.InsertNameSortedEntity(second_a);
  EXPECT_EQ(tree.Get(1), a);
  EXPECT_EQ(tree.Get(2), second_a);
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
  EXPECT_TRUE(first.NoElements());
  EXPECT_TRUE(second.NoElements());
  EXPECT_EQ(outside.Get(0), inner) << "a member held elsewhere survives";
  EXPECT_EQ(inner->GetOwnersCount(), 1);
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

TEST(OwnersTest, StringEntityPublishesItsValue) {
  TStringEntity entity;
  EXPECT_TRUE(entity.SetPropertyStringByName(u"Value", u"hodnota"));
  EXPECT_EQ(entity.Value, u"hodnota");
  EXPECT_EQ(entity.GetPropertyStringByName(u"Value"), u"hodnota");
}

TEST(OwnersTest, RegistryKnowsTheElementClasses) {
  for (const char16_t* name : {u"TElement", u"TNameElement", u"TOwnerElement", u"TEntity", u"TNameEntity",
                               u"TOwnerEntity", u"TEnvelopeEntity", u"TQuickEntity", u"TVeskaMessage",
                               u"TStringEntity", u"TYouShallNotPass"}) {
    EXPECT_NE(GetVeskaClass(name), nullptr) << ToUtf8(name);
  }
}

}  // namespace
}  // namespace veska
