#include "kernel/classes/startup.h"

#include <array>

#include "kernel/classes/registry.h"
#include "kernel/elements/message.h"

namespace veska {

void RegisterRegistryUnit(TVeskaClasses& registry) {
  registry.AddClass(TVeskaClass::StaticClassInfo());
  registry.AddClass(TVeskaClasses::StaticClassInfo());
  registry.AddClass(TVeskaClassProperty::StaticClassInfo());
}

void RegisterElementsUnit(TVeskaClasses& registry) {
  for (const ClassInfo* cls : {&TElement::StaticClassInfo(), &TNameElement::StaticClassInfo(),
                               &TOwnerElement::StaticClassInfo(), &TEntity::StaticClassInfo(),
                               &TNameEntity::StaticClassInfo(), &TOwnerEntity::StaticClassInfo(),
                               &TEnvelopeEntity::StaticClassInfo(), &TQuickEntity::StaticClassInfo(),
                               &TVeskaMessage::StaticClassInfo(), &TStringEntity::StaticClassInfo(),
                               &TYouShallNotPass::StaticClassInfo()}) {
    registry.AddClass(*cls);
  }
}

void RegisterLibraryUnits(TVeskaClasses& registry) {
  constexpr std::array kUnits = {&RegisterRegistryUnit, &RegisterElementsUnit};
  for (auto* register_unit : kUnits) register_unit(registry);
}

}  // namespace veska
