#include "kernel/classes/startup.h"

#include <array>

#include "kernel/classes/registry.h"
#include "kernel/elements/message.h"
#include "kernel/types/types_unit.h"

namespace veska {

namespace {

template <class... Classes>
void RegisterInOrder(TVeskaClasses& registry) {
  (registry.AddClass(Classes::StaticClassInfo()), ...);
}

}  // namespace

void RegisterRegistryUnit(TVeskaClasses& registry) {
  RegisterInOrder<TVeskaClass, TVeskaClasses, TVeskaClassProperty>(registry);
}

void RegisterElementsUnit(TVeskaClasses& registry) {
  RegisterInOrder<TElement, TNameElement, TOwnerElement, TEntity, TNameEntity, TOwnerEntity, TEnvelopeEntity,
                  TQuickEntity, TVeskaMessage, TStringEntity, TYouShallNotPass>(registry);
}

void RegisterLibraryUnits(TVeskaClasses& registry) {
  constexpr std::array kUnits = {&RegisterRegistryUnit, &RegisterElementsUnit, &RegisterTypesUnit};
  for (auto* register_unit : kUnits) register_unit(registry);
}

}  // namespace veska
