#include "kernel/models/element_model.h"

#include <gtest/gtest.h>

#include "kernel/models/tool_model.h"
#include "kernel/platform/object_handles.h"
#include "kernel/text/string_numbers.h"

namespace veska {
namespace {

// A property model of a kind of its own, which a link takes for neither kind of end.
class TTestPropertyModel : public TPropertyModel {
  VESKA_CLASS(TTestPropertyModel, TPropertyModel, u"element_model_test")
};

// Instances and their models under one root, attached as the system attaches them: a model is
// a member of the element it describes and carries its name and class name.
class ModelledElements : public ::testing::Test {
 protected:
  template <class Instance = TStringEntity>
  Instance* Add(const String& name, const String& model_class_name, TElementModel** model = nullptr) {
    auto* instance = new Instance;
    instance->SetName(name);
    auto* made = new TElementModel;
    made->SetName(name);
    made->ElementClassName = model_class_name;
    instance->AddElement(made);
    root_.AddElement(instance);
    if (model != nullptr) *model = made;
    return instance;
  }
  static TPropertyModel* PropertyModelOf(TElementModel& model, const String& property) {
    model.SetNewPropertyName(property);
    return model.GetLastPropertyModel();
  }

  TOwnerEntity root_;
};

TEST_F(ModelledElements, TheInstanceIsTheFirstOwnerOfTheModelsNameAndClass) {
  TElementModel* model = nullptr;
  TStringEntity* right = Add(u"Čerpadlo", u"tstringentity", &model);
  auto* wrong_class = new TOwnerEntity;
  wrong_class->SetName(u"Čerpadlo");
  wrong_class->AddElement(model);
  root_.AddElement(wrong_class);
  EXPECT_EQ(model->GetInstance(), right);
  model->SetName(u"čERPADLO");  // names compare ignoring case beyond ASCII, too
  EXPECT_EQ(model->GetInstance(), right);
  model->ElementClassName = u"TOwnerEntity";
  EXPECT_EQ(model->GetInstance(), wrong_class);
  model->ElementClassName = u"TNameEntity";
  EXPECT_EQ(model->GetInstance(), nullptr);
  EXPECT_EQ(PropertyModelOf(*model, u"Value")->GetInstance(), nullptr);
}

TEST_F(ModelledElements, APropertyLinkCopiesTheValueAndAnElementLinkAddsTheInstanceOnce) {
  TElementModel *source_model = nullptr, *destination_model = nullptr;
  TStringEntity* source = Add(u"a", u"TStringEntity", &source_model);
  TStringEntity* destination = Add(u"b", u"TStringEntity", &destination_model);
  source->Value = u"42";
  TPropertyModel* source_value = PropertyModelOf(*source_model, u"Value");
  source_value->SetNewDestinationLink(PropertyModelOf(*destination_model, u"Value"));
  auto* link = ObjectAs<TModelLink>(source_value->GetLinks()->Get(0));
  ASSERT_NE(link, nullptr);
  EXPECT_EQ(link->GetSource(), source_value);
  link->Link();
  EXPECT_EQ(destination->Value, u"42");

  source->Value = u"43";
  auto* special = new TTestPropertyModel;
  special->SetName(u"Value");
  source_model->GetModelProperties()->AddElement(special);
  destination_model->GetLastPropertyModel()->SetNewSourceLink(special);
  ObjectAs<TModelLink>(destination_model->GetLastPropertyModel()->GetLinks()->Get(0))->Link();
  EXPECT_EQ(destination->Value, u"42");

  // From an element model into an entity: the source instance joins its members, once.
  destination_model->SetNewSourceLink(source_model);
  auto* element_link = ObjectAs<TModelLink>(destination_model->GetLinks()->Get(0));
  ASSERT_NE(element_link, nullptr);
  EXPECT_EQ(element_link->GetDestination(), destination_model);
  element_link->Link();
  element_link->Link();
  EXPECT_EQ(destination->ElementsCount(), 2);  // its model and the source
  EXPECT_EQ(destination->IndexOf(source), 1);
}

TEST_F(ModelledElements, AnElementEndGivesItsInstanceAsAReferenceThatObjectPropertiesTakeBack) {
  TElementModel *element_model = nullptr, *entity_model = nullptr;
  TStringEntity* element = Add(u"element", u"TStringEntity", &element_model);
  TStringEntity* entity = Add(u"entity", u"TStringEntity", &entity_model);
  PropertyModelOf(*entity_model, u"NextElement")->SetNewSourceLink(element_model);
  TPropertyModel* next_element = entity_model->GetLastPropertyModel();
  ObjectAs<TModelLink>(next_element->GetLinks()->Get(0))->Link();
  EXPECT_GE(entity->IndexOf(element), 0);

  // A link in no property model's links has no destination; the base link has no ends at all.
  TSourceModelLink orphan;
  orphan.LinkTo(next_element);
  EXPECT_EQ(orphan.GetDestination(), nullptr);
  orphan.Link();
  TModelLink base;
  base.LinkTo(element_model);
  EXPECT_EQ(base.GetSource(), nullptr);
}

TEST(ModelLink, LinkingAgainReplacesTheTarget) {
  TDestinationModelLink link;
  link.LinkTo(new TNameElement);
  auto* second = new TNameElement;
  link.LinkTo(second);
  EXPECT_EQ(link.ElementsCount(), 1);
  EXPECT_EQ(link.GetDestination(), second);
  link.LinkTo(nullptr);
  EXPECT_EQ(link.GetDestination(), nullptr);
}

// Reading a name from the property models gives the model of that name as a reference number,
// making the model when it is missing, deliberately; writing a name sets that model's Value.
TEST(ModelProperties, ByNameAccessGoesToThePropertyModelOfThatName) {
  TElementModel model;
  EXPECT_TRUE(model.GetNoModelProperties());
  TModelProperties* properties = model.GetModelProperties();
  const String reference = properties->GetPropertyStringByName(u"Speed");
  EXPECT_EQ(properties->GetPropertyStringByName(u"speed"), reference);
  auto* speed = ObjectAs<TPropertyModel>(ObjectHandles::ObjectOf(TryStrToInt64(reference).value_or(0)));
  ASSERT_NE(speed, nullptr);
  EXPECT_EQ(speed->GetName(), u"Speed");
  EXPECT_TRUE(properties->SetPropertyStringByName(u"Speed", u"1450"));
  EXPECT_TRUE(properties->SetPropertyStringByName(u"Size", u"3"));
  EXPECT_EQ(speed->Value, u"1450");
  EXPECT_EQ(model.GetLastPropertyModel()->GetName(), u"Size");
  EXPECT_EQ(properties->ElementsCount(), 2);
}

TEST(ElementModel, PartsAreFoundOrMadeByNameAndTheQuestionsNeverMakeThem) {
  TElementModel model;
  EXPECT_TRUE(model.GetNoImages() && model.GetNoModelElements() && model.GetNoLinks());
  EXPECT_EQ(model.GetLastPropertyModel(), nullptr);
  EXPECT_EQ(model.ElementsCount(), 0);

  model.SetNewImage(u"pump.bmp");
  model.SetNewImage(u"valve.bmp");
  EXPECT_EQ(model.GetImages()->GetNameAtIndex(1), u"valve.bmp");
  model.SetNewElementName(u"inner");
  EXPECT_EQ(model.GetModelElements()->Get(0)->ClassName(), u"TElementModel");
  EXPECT_EQ(model.GetPropertyStringByName(u"Properties"), model.GetPropertyStringByName(u"ModelProperties"));
  EXPECT_EQ(model.ElementsCount(), 3);

  // A part of the right name but of another class is not taken for the part.
  TPropertyModel property_model;
  property_model.AddElement(new TNameElement);
  property_model.Get(0)->SetName(u"links");
  EXPECT_EQ(property_model.GetLinks(), nullptr);
  property_model.SetNewSourceLink(&model);
  EXPECT_EQ(property_model.ElementsCount(), 1);
}

TEST(ToolModel, ToolsAreToolModelsMadeByNameInTheirPart) {
  TToolModel model;
  EXPECT_TRUE(model.GetNoModelTools());
  EXPECT_EQ(model.GetLastToolModel(), nullptr);
  EXPECT_EQ(model.ElementsCount(), 0);
  model.SetPropertyStringByName(u"NewToolName", u"first");
  model.SetPropertyStringByName(u"NewToolName", u"second");
  EXPECT_FALSE(model.GetNoModelTools());
  EXPECT_EQ(model.GetLastToolModel()->GetName(), u"second");
  EXPECT_EQ(model.GetModelTools()->GetName(), u"TOOLS");
}

}  // namespace
}  // namespace veska
