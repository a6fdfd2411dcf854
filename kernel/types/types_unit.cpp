#include "kernel/types/types_unit.h"

#include "kernel/classes/registry.h"
#include "kernel/types/list_elements.h"
#include "kernel/types/type_elements.h"

namespace veska {

void RegisterTypesUnit(TVeskaClasses& registry) {
  for (const ClassInfo* info :
       {&TTypeTestElement::StaticClassInfo(), &TTypeElement::StaticClassInfo(), &TBooleanElement::StaticClassInfo(),
        &TCharElement::StaticClassInfo(), &TByteElement::StaticClassInfo(), &TFloatElement::StaticClassInfo(),
        &TDateTimeElement::StaticClassInfo(), &TIntegerListElement::StaticClassInfo(),
        &TStringElement::StaticClassInfo(), &TIntegerElement::StaticClassInfo(), &TPointerElement::StaticClassInfo(),
        &TStringListElement::StaticClassInfo(), &TPathElement::StaticClassInfo(), &TPropertyList::StaticClassInfo()})
    registry.AddClass(*info);
}

}  // namespace veska
