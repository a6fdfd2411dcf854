// The classes the typed value unit registers at start-up, in registration order: the scalar
// type elements and the list elements.
#pragma once

#include "kernel/platform/unit_classes.h"
#include "kernel/types/list_elements.h"
#include "kernel/types/type_elements.h"

namespace veska {

inline constexpr UnitClasses kTypesUnitClasses{
    kTypesUnit, ClassListOf<TTypeTestElement, TTypeElement, TBooleanElement, TCharElement, TByteElement, TFloatElement,
                            TDateTimeElement, TIntegerListElement, TStringElement, TIntegerElement, TPointerElement,
                            TStringListElement, TPathElement, TPropertyList>};

}  // namespace veska
