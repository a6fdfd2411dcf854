#include "kernel/models/element_model.h"

#include <gtest/gtest.h>

#include "kernel/models/tool_model.h"
#include "kernel/platform/object_handles.h"
#include "kernel/text/string_numbers.h"
#include "tests/support/elements_members.h"

namespace veska {
namespace {

// A property model of a kind of its own, which a link takes for neither kind of end.
class TTestPropertyModel : public TPropertyModel {
  VESKA_CLASS(TTestPropertyModel, TPropertyModel, u"element_model_test")
};

// An instance and its model, attached as the system attaches them (the model is its member).
struct Modelled {
  TStringEntity* instance;
  TElementModel* model;
};

class ModelledElements : public ::testing::Test {
 protected:
  Modelled Add(const String& name, const String& model_class_name = u"TStringEntity") {
    Modelled added{new TStringEntity, new TElementModel};
    added.instance->SetName(name);
    added.model->SetName(name);
    added.model->ElementClassName = model_class_name;
    added.instance->AddElement(added.model);
    root_.AddElement(added.instance);
    return added;
  }
  static void LinkFirstOf(TPropertyModel& model) { static_cast<TModelLink*>(model.GetLinks()->Get(0))->Link(); }

  TOwnerEntity root_;
};

TEST_F(ModelledElements, TheInstanceIsTheFirstOwnerOfTheModelsNameAndClass) {
  const Modelled right = Add(u"Čerpadlo", u"tstringentity");
  auto* wrong_class = test::Named<TOwnerEntity>(u"Čerpadlo", {&root_});
  wrong_class->AddElement(right.model);
  right.model->SetName(u"čERPADLO");  // names compare ignoring case beyond ASCII too
  EXPECT_EQ(right.model->GetInstance(), right.instance);
  right.model->ElementClassName = u"TOwnerEntity";
  EXPECT_EQ(right.model->GetInstance(), wrong_class);
  right.model->ElementClassName = u"TNameEntity";
  EXPECT_EQ(right.model->GetInstance(), nullptr);
}

TEST_F(ModelledElements, LinksCarryPropertyValuesAndInstancesBetweenInstances) {
  const Modelled source = Add(u"a"), destination = Add(u"b"), entity = Add(u"c");
  source.instance->Value = u"42";
  TPropertyModel* source_value = source.model->GetModelProperties()->PropertyModel(u"Value");
  TPropertyModel* destination_value = destination.model->GetModelProperties()->PropertyModel(u"Value");
  source_value->SetNewDestinationLink(destination_value);
  LinkFirstOf(*source_value);
  EXPECT_EQ(destination.instance->Value, u"42");
  source_value->SetNewSourceLink(source_value);  // a link never takes what holds it
  EXPECT_EQ(source_value->GetLinks()->ElementsCount(), 1);

  // A property model of another class is no end at all.
  source.instance->Value = u"43";
  auto* special = test::Named<TTestPropertyModel>(u"Value", {source.model->GetModelProperties()});
  destination_value->SetNewSourceLink(special);
  LinkFirstOf(*destination_value);
  EXPECT_EQ(destination.instance->Value, u"42");

  // An element end gives its instance as a reference, which an object property takes back.
  TPropertyModel* next_element = entity.model->GetModelProperties()->PropertyModel(u"NextElement");
  next_element->SetNewSourceLink(source.model);
  LinkFirstOf(*next_element);
  EXPECT_EQ(entity.instance->IndexOf(source.instance), 1);
  // Between element models the source instance joins the destination's members, once.
  destination.model->SetNewSourceLink(source.model);
  LinkFirstOf(*destination.model);
  LinkFirstOf(*destination.model);
  EXPECT_EQ(destination.instance->ElementsCount(), 2);

  // Relinking frees the old target; a link in no property model's links has no destination.
  TSourceModelLink orphan;
  orphan.LinkTo(new TNameElement);
  orphan.LinkTo(next_element);
  EXPECT_EQ(orphan.ElementsCount(), 1);
  EXPECT_EQ(orphan.GetDestination(), nullptr);
}

// Reading a name from the property models gives the model of that name as a reference number,
// making the model when it is missing, deliberately; writing a name sets that model's Value.
TEST(ModelProperties, ByNameAccessGoesToThePropertyModelOfThatName) {
  TElementModel model;
  TModelProperties* properties = model.GetModelProperties();
  const String reference = properties->GetPropertyStringByName(u"Speed");
  EXPECT_EQ(properties->GetPropertyStringByName(u"speed"), reference);
  auto* speed = ObjectAs<TPropertyModel>(ObjectHandles::ObjectOf(TryStrToInt64(reference).value_or(0)));
  ASSERT_NE(speed, nullptr);
  EXPECT_TRUE(properties->SetPropertyStringByName(u"Speed", u"1450"));
  EXPECT_EQ(speed->GetName() + u"=" + speed->Value, u"Speed=1450");
}

TEST(ElementModel, PartsAreFoundOrMadeByNameAndTheQuestionsNeverMakeThem) {
  TToolModel model;
  EXPECT_TRUE(model.GetNoImages() && model.GetNoModelElements() && model.GetNoLinks() && model.GetNoModelTools());
  EXPECT_EQ(model.GetLastToolModel(), nullptr);
  EXPECT_EQ(model.ElementsCount(), 0);
  model.SetNewImage(u"pump.bmp");
  model.SetPropertyStringByName(u"NewToolName", u"second");
  EXPECT_EQ(model.GetImages()->GetNameAtIndex(0), u"pump.bmp");
  EXPECT_EQ(model.GetLastToolModel()->GetName(), u"second");
  EXPECT_EQ(model.GetPropertyStringByName(u"Properties"), model.GetPropertyStringByName(u"ModelProperties"));
  EXPECT_EQ(model.ElementsCount(), 3);

  // An element of a part's name but of another class is not taken for the part.
  TPropertyModel property_model;
  property_model.AddElement(new TNameElement);
  property_model.Get(0)->SetName(u"links");
  property_model.SetNewSourceLink(&model);
  EXPECT_EQ(property_model.ElementsCount(), 1);
}

}  // namespace
}  // namespace veska
