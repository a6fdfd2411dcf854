#include <gtest/gtest.h>

#include <memory>

#include "kernel/classes/registry.h"
#include "kernel/models/models_unit.h"
#include "tests/support/elements_members.h"

namespace veska {
namespace {

// The tree below a node as text: each node's name, then its children in brackets.
String Tree(TInheritanceModel& node) {
  String text = node.GetName();
  for (int i = 0; i < node.GetItems()->ElementsCount(); ++i) {
    text += (i == 0 ? u"[" : u" ") + Tree(*ObjectAs<TInheritanceModel>(node.GetItem(i)));
  }
  return node.GetNoItems() ? text : text + u"]";
}

// TElement > TEntity > TNameEntity > TOwnerEntity, and TElement > TNameElement.
template <class Class>
TInheritanceModel* NodeFor() {
  auto* node = new TInheritanceModel;
  node->SetEClass(&Class::StaticClassInfo());
  return node;
}

TEST(InheritanceModel, NodesSinkUnderTheirAncestorsAndTakeTheirDescendants) {
  TInheritanceModelEntity root;
  for (StringView name : {u"TElement", u"TNameEntity", u"TEntity"}) root.SetNewClassName(String(name));
  EXPECT_EQ(Tree(root), u"TInheritanceModelEntity[TElement[TEntity[TNameEntity]]]");
  // A second node for a class already there takes the existing one, subtree and all.
  root.SetNewClassName(u"TEntity");
  EXPECT_EQ(Tree(root), u"TInheritanceModelEntity[TElement[TEntity[TEntity[TNameEntity]]]]");

  // A node that sinks into one subtree still collects the lower siblings that descend from it.
  TInheritanceModel flat;
  flat.AddItem(NodeFor<TOwnerEntity>());
  flat.AddItem(NodeFor<TNameElement>());
  flat.AddItem(NodeFor<TEntity>());
  flat.SetNextItem(NodeFor<TNameEntity>());
  flat.SetNextItem(new TInheritanceModel);  // no class: it neither sinks nor takes children
  EXPECT_EQ(Tree(flat), u"TInheritanceModel[TNameElement TEntity[TNameEntity[TOwnerEntity]] TInheritanceModel]");

  // A list of children that a loader put there is found, not doubled; an unknown class name
  // leaves the node's name.
  TInheritanceModel loaded;
  loaded.AddElement(new TModelItems);
  loaded.SetClassName(u"TNoSuchClass");
  EXPECT_EQ(loaded.GetItems(), loaded.Get(0));
  EXPECT_EQ(loaded.GetItems()->GetName(), u"ITEMS");
  EXPECT_EQ(Tree(loaded), u"TInheritanceModel");
}

TEST(InheritanceModel, TheFirstCoveringChildIsFollowedWithoutGoingBack) {
  TInheritanceModelEntity root;
  TInheritanceModel* first = NodeFor<TEntity>();
  root.AddItem(first);
  TInheritanceModel* later = NodeFor<TEntity>();
  later->AddItem(NodeFor<TNameEntity>());
  root.AddItem(later);
  root.SetFindClassName(u"TOwnerEntity");
  EXPECT_EQ(root.ActualItem(), first);
  // A class outside every node's line: the class-less root does not answer for itself.
  root.SetFindClassName(u"TNameElement");
  EXPECT_EQ(root.ActualItem(), nullptr);
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorNotCovered);
}

TEST(InheritanceModel, CommandsOnTheActualItemSetTheirFixedErrorCodes) {
  TInheritanceModelEntity root;
  root.SetPropertyStringByName(u"NewClassName", u"TNoSuchClass");
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorUnknownClass);
  EXPECT_EQ(root.GetPropertyStringByName(u"IsError"), u"True");
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
  EXPECT_EQ(Tree(root), u"TInheritanceModelEntity[TNameEntity]");
  // Deleting leaves no actual item, which Error 3 says, deliberately.
  root.SetPropertyStringByName(u"DeleteActualItem", u"True");
  EXPECT_EQ(root.Error, TInheritanceModelEntity::kErrorNoActualItem);
  EXPECT_TRUE(root.GetNoItems());

  // New nodes are of the item class, which only a registered node class can be.
  EXPECT_EQ(root.GetItemClassName(), u"TInheritanceModel");
  root.SetItemClassName(u"TRegisterClassModel");
  EXPECT_EQ(root.GetItemClassName(), u"TRegisterClassModel");
  root.SetItemClassName(u"TEntity");
  EXPECT_EQ(root.GetItemClassName(), u"TInheritanceModel");
}

// A node is never placed inside its own subtree, whatever a script hands to NextItem, and a
// chain as deep as a file may make is walked without the call stack.
TEST(InheritanceModel, NoNodeEndsInsideItselfAndDeepModelsAreWalkedAndFreedOnTheHeap) {
  TInheritanceModel top;
  top.SetEClass(&TElement::StaticClassInfo());
  TInheritanceModel* child = NodeFor<TEntity>();
  top.AddItem(child);
  child->SetNextItem(&top);
  child->SetNextItem(child);
  EXPECT_EQ(Tree(top), u"TElement[TEntity]");

  auto root = std::make_unique<TInheritanceModelEntity>();
  for (int i = 0; i < 100'000; ++i) root->SetNewClassName(u"TEntity");
  root->SetFindClassName(u"TOwnerEntity");
  ASSERT_NE(root->ActualItem(), nullptr);
  EXPECT_TRUE(root->ActualItem()->GetNoItems());

  auto tool = std::make_unique<TToolModel>();
  TElementModel* model = tool.get();
  for (int i = 0; i < 100'000; ++i) {
    model->SetNewElementName(u"inner");
    model = ObjectAs<TElementModel>(model->GetModelElements()->Get(0));
  }
  model->SetNewPropertyName(u"Value");
  EXPECT_EQ(model->GetLastPropertyModel()->FindClassInOwners(TToolModel::StaticClassInfo()), tool.get());
}

TEST(SystemRegister, PartsAreFoundByNameOrMadeOnceButAClassModelMakesItsOwn) {
  TSystemRegister system_register;
  auto* loaded = test::Named<TRegisterClassModels>(u"CLASS MODELS", {&system_register});
  EXPECT_EQ(system_register.GetClassModels(), loaded);
  EXPECT_EQ(system_register.GetImages(), system_register.GetImages());
  EXPECT_EQ(system_register.ElementsCount(), 2);

  // Class models are made by NewClassName and found for every class they cover.
  loaded->SetNewClassName(u"TTypeElement");
  loaded->GetActualClassModel()->ImageIndex = 4;
  loaded->SetNewClassName(u"TElement");
  loaded->SetPropertyStringByName(u"FindClassName", u"TStringElement");
  TRegisterClassModel* model = loaded->GetActualClassModel();
  EXPECT_EQ(model->ImageIndex, 4);

  // Unlike every other part of the models, a class model's "PROPERTY MODELS" and "SHELL" are
  // made without a search by name, deliberately: one already there is not taken.
  auto* loaded_part = test::Named<TOwnerEntity>(u"PROPERTY MODELS", {model});
  TOwnerEntity* property_models = model->GetPropertyModels();
  EXPECT_NE(property_models, loaded_part);
  EXPECT_EQ(model->GetPropertyModels(), property_models);
  EXPECT_EQ(model->GetShell()->GetName(), u"SHELL");
  EXPECT_EQ(model->ElementsCount(), 4);  // its children, the loaded part and its own two
}

TEST(ModelsUnits, RegisterTheirClassesInTheirOrderAfterTheTypedValues) {
  int32_t expected_id = VeskaClasses().GetVeskaClassByName(u"TPropertyList")->ID;
  for (const UnitClasses& unit : {kSystemRegisterUnitClasses, kElementModelUnitClasses, kToolModelUnitClasses}) {
    for (const ClassInfoSource class_info : unit.classes) {
      const TVeskaClass* record = VeskaClasses().GetVeskaClassByName(class_info().Name());
      EXPECT_EQ(record != nullptr ? record->ID : -1, ++expected_id) << ToUtf8(class_info().Name());
    }
  }
  EXPECT_EQ(GetVeskaClass(u"TInheritanceModel"), nullptr);
}

}  // namespace
}  // namespace veska
