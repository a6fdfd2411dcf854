#include "kernel/models/inheritance_model.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "kernel/classes/registry.h"

namespace veska {
namespace {

// The classes of the children of a node, in list order.
std::vector<String> Children(TInheritanceModel& node) {
  std::vector<String> names;
  for (int i = 0; i < node.GetItems()->ElementsCount(); ++i) names.push_back(node.GetItem(i)->GetName());
  return names;
}

TInheritanceModel* Child(TInheritanceModel& node, int index) {
  return ObjectAs<TInheritanceModel>(node.GetItem(index));
}

TInheritanceModel* NodeFor(const ClassInfo& cls) {
  auto* node = new TInheritanceModel;
  node->SetEClass(&cls);
  return node;
}

// TElement > TEntity > TNameEntity > TOwnerEntity, and TElement > TNameElement.
const ClassInfo& kElement = TElement::StaticClassInfo();
const ClassInfo& kEntity = TEntity::StaticClassInfo();
const ClassInfo& kNameEntity = TNameEntity::StaticClassInfo();
const ClassInfo& kOwnerEntity = TOwnerEntity::StaticClassInfo();

TEST(InheritanceModel, NodesSinkUnderTheirAncestorsAndTakeTheirDescendants) {
  TInheritanceModelEntity root;
  root.SetNewClassName(u"TElement");
  root.SetNewClassName(u"TNameEntity");
  root.SetNewClassName(u"TEntity");
  ASSERT_EQ(Children(root), std::vector<String>{u"TElement"});
  TInheritanceModel* element = Child(root, 0);
  ASSERT_EQ(Children(*element), std::vector<String>{u"TEntity"});
  EXPECT_EQ(Children(*Child(*element, 0)), std::vector<String>{u"TNameEntity"});

  // A second node for a class already there takes the existing node, subtree and all.
  root.SetNewClassName(u"TEntity");
  ASSERT_EQ(Children(*element), std::vector<String>{u"TEntity"});
  TInheritanceModel* second = Child(*element, 0);
  EXPECT_EQ(second, root.ActualItem());
  EXPECT_EQ(Children(*Child(*second, 0)), std::vector<String>{u"TNameEntity"});
}

TEST(InheritanceModel, ANodeThatSinksStillCollectsTheLowerSiblingsThatDescendFromIt) {
  TInheritanceModel root;
  root.AddItem(NodeFor(kOwnerEntity));
  root.AddItem(NodeFor(TNameElement::StaticClassInfo()));
  root.AddItem(NodeFor(kEntity));
  root.SetNextItem(NodeFor(kNameEntity));
  ASSERT_EQ(Children(root), (std::vector<String>{u"TNameElement", u"TEntity"}));
  TInheritanceModel* name_entity = Child(*Child(root, 1), 0);
  EXPECT_EQ(name_entity->GetName(), u"TNameEntity");
  EXPECT_EQ(Children(*name_entity), std::vector<String>{u"TOwnerEntity"});
}

TEST(InheritanceModel, TheFirstCoveringChildIsFollowedWithoutGoingBack) {
  TInheritanceModelEntity root;
  root.AddItem(NodeFor(kEntity));
  TInheritanceModel* later = NodeFor(kEntity);
  later->AddItem(NodeFor(kNameEntity));
  root.AddItem(later);
  root.SetFindClassName(u"TOwnerEntity");
  EXPECT_EQ(root.ActualItem(), Child(root, 0));
  EXPECT_EQ(root.Error, 0);

  // A class outside every node's line: the class-less root does not answer for itself.
  root.SetFindClassName(u"TNameElement");
  EXPECT_EQ(root.ActualItem(), nullptr);
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorNotCovered);
  EXPECT_TRUE(root.GetIsError());
  root.SetFindClassName(u"TNoSuchClass");
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorUnknownClass);
  EXPECT_EQ(root.GetItemForClassName(u"TNameEntity"), Child(root, 0));
}

TEST(InheritanceModel, CommandsOnTheActualItemSetTheirFixedErrorCodes) {
  TInheritanceModelEntity root;
  root.SetPropertyStringByName(u"NewClassName", u"TNoSuchClass");
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorUnknownClass);
  EXPECT_EQ(root.GetPropertyStringByName(u"ActualClassName"), u"NIL");
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorNoActualItem);
  root.Error = 7;
  root.SetDeleteAI(true);  // nothing to delete: Error stays
  EXPECT_EQ(root.Error, 7);
  root.SetActualClassName(u"TEntity");
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorNoActualItem);

  root.SetNewClassName(u"TEntity");
  root.SetActualClassName(u"TNameEntity");  // replaces the node
  EXPECT_EQ(root.Error, 0);
  EXPECT_EQ(Children(root), std::vector<String>{u"TNameEntity"});
  EXPECT_EQ(root.GetActualClassName(), u"TNameEntity");
  // Deleting leaves no actual item, which Error 3 says, deliberately.
  root.SetPropertyStringByName(u"DeleteActualItem", u"True");
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorNoActualItem);
  EXPECT_TRUE(root.GetNoItems());
  root.SetNewClassName(u"");
  EXPECT_EQ(root.Error, 0);
  EXPECT_TRUE(root.GetNoItems());
}

TEST(InheritanceModel, ItemClassFallsBackToTheNodeClassAndUnknownNamesSetNoClass) {
  TInheritanceModelEntity root;
  EXPECT_EQ(root.GetItemClassName(), u"TInheritanceModel");
  root.SetItemClassName(u"TRegisterClassModel");
  EXPECT_EQ(root.GetItemClassName(), u"TRegisterClassModel");
  for (StringView other : {u"TEntity", u"TNoSuchClass"}) {
    root.SetItemClassName(String(other));
    EXPECT_EQ(root.GetItemClassName(), u"TInheritanceModel") << ToUtf8(other);
  }
  TInheritanceModel node;
  node.SetName(u"kept");
  node.SetClassName(u"TNoSuchClass");
  EXPECT_EQ(node.GetName() + u"|" + node.GetClassName(), u"kept|");
  EXPECT_TRUE(node.ItsMyClass(&kElement));
}

TEST(InheritanceModel, AListOfChildrenPutThereByALoaderIsFoundNotDuplicated) {
  TInheritanceModel node;
  auto* loaded = new TModelItems;
  node.AddElement(loaded);
  EXPECT_EQ(node.GetItems(), loaded);
  EXPECT_EQ(node.ElementsCount(), 1);
  EXPECT_EQ(loaded->GetName(), u"ITEMS");
}

// A node is never placed inside itself, whatever a script hands to NextItem.
TEST(InheritanceModel, InsertingANodeIntoItsOwnSubtreeChangesNothing) {
  TInheritanceModel root;
  root.SetEClass(&kElement);
  TInheritanceModel* child = NodeFor(kEntity);
  root.AddItem(child);
  child->SetNextItem(&root);
  child->SetNextItem(child);
  EXPECT_TRUE(child->GetNoItems());
  EXPECT_EQ(Children(root), std::vector<String>{u"TEntity"});
}

TEST(InheritanceModel, AHundredThousandNodesOfOneClassChainWithoutExhaustingTheStack) {
  auto root = std::make_unique<TInheritanceModelEntity>();
  constexpr int kDepth = 100'000;
  for (int i = 0; i < kDepth; ++i) root->SetNewClassName(u"TEntity");
  root->SetFindClassName(u"TOwnerEntity");
  TInheritanceModel* deepest = root->ActualItem();
  ASSERT_NE(deepest, nullptr);
  EXPECT_TRUE(deepest->GetNoItems());
  root.reset();
}

}  // namespace
}  // namespace veska
