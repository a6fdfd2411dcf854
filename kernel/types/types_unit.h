// Start-up registration of the unit E_type: the scalar type elements and the list elements.
#pragma once

namespace veska {

class TVeskaClasses;

// Registers the unit's classes in the unit's order: TTypeTestElement, TTypeElement,
// TBooleanElement, TCharElement, TByteElement, TFloatElement, TDateTimeElement,
// TIntegerListElement, TStringElement, TIntegerElement, TPointerElement, TStringListElement,
// TPathElement, TPropertyList.
void RegisterTypesUnit(TVeskaClasses& registry);

}  // namespace veska
