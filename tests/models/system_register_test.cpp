#include "kernel/models/system_register.h"

#include <gtest/gtest.h>

#include "kernel/classes/registry.h"
#include "kernel/models/models_unit.h"

namespace veska {
namespace {

TEST(SystemRegister, PartsAreMadeOnceAndThoseOfALoadedRegisterAreFound) {
  TSystemRegister fresh;
  TStringListElement* images = fresh.GetImages();
  EXPECT_EQ(fresh.GetImages(), images);
  EXPECT_NE(fresh.GetCursors(), images);
  EXPECT_EQ(fresh.ElementsCount(), 2);

  TSystemRegister loaded;
  auto* loaded_models = new TRegisterClassModels;
  loaded_models->SetName(u"CLASS MODELS");
  loaded.AddElement(loaded_models);
  EXPECT_EQ(loaded.GetClassModels(), loaded_models);
  EXPECT_EQ(loaded.ElementsCount(), 1);
}

// Unlike every other part of the models, a class model's "PROPERTY MODELS" and "SHELL" are
// made without a search by name, deliberately: one already there is not taken.
TEST(SystemRegister, AClassModelMakesItsOwnPropertyModelsAndShellEvenWhenOnesAreThere) {
  TRegisterClassModel model;
  auto* loaded = new TOwnerEntity;
  loaded->SetName(u"PROPERTY MODELS");
  model.AddElement(loaded);
  TOwnerEntity* property_models = model.GetPropertyModels();
  EXPECT_NE(property_models, loaded);
  EXPECT_EQ(property_models->GetName(), u"PROPERTY MODELS");
  EXPECT_EQ(model.GetPropertyModels(), property_models);
  EXPECT_EQ(model.GetShell()->GetName(), u"SHELL");
  EXPECT_EQ(model.ElementsCount(), 3);
}

TEST(SystemRegister, ClassModelsAreAnInheritanceModelOfClassModels) {
  TSystemRegister system_register;
  TRegisterClassModels* models = system_register.GetClassModels();
  models->SetNewClassName(u"TTypeElement");
  TRegisterClassModel* type_element = models->GetActualClassModel();
  ASSERT_NE(type_element, nullptr);
  type_element->ImageIndex = 4;
  models->SetNewClassName(u"TElement");
  models->SetPropertyStringByName(u"FindClassName", u"TStringElement");
  EXPECT_EQ(models->GetActualClassModel(), type_element);
  EXPECT_EQ(models->GetPropertyStringByName(u"ActualClassModel"), models->GetPropertyStringByName(u"ActualItem"));
  models->SetFindClassName(u"TEntity");
  EXPECT_EQ(models->GetActualClassName(), u"TElement");
}

TEST(ModelsUnits, RegisterTheirClassesInTheirOrderAfterTheTypedValues) {
  TVeskaClasses& registry = VeskaClasses();
  int32_t expected_id = registry.GetVeskaClassByName(u"TPropertyList")->ID;
  for (const UnitClasses& unit : {kSystemRegisterUnitClasses, kElementModelUnitClasses, kToolModelUnitClasses}) {
    for (const ClassInfoSource class_info : unit.classes) {
      const TVeskaClass* record = registry.GetVeskaClassByName(class_info().Name());
      ASSERT_NE(record, nullptr) << ToUtf8(class_info().Name());
      EXPECT_EQ(record->ID, ++expected_id) << ToUtf8(class_info().Name());
      EXPECT_EQ(class_info().UnitName(), unit.unit_name);
    }
  }
  EXPECT_EQ(registry.GetVeskaClassByName(u"TToolModel")->ID, expected_id);
  for (StringView unregistered : {u"TModelItems", u"TInheritanceModel", u"TInheritanceModelEntity"}) {
    EXPECT_EQ(GetVeskaClass(unregistered), nullptr) << ToUtf8(unregistered);
  }
}

}  // namespace
}  // namespace veska
