// TStringElement::CreateIntegerList lives beside the list elements it creates.
#include "kernel/types/list_elements.h"
#include "kernel/types/value_elements.h"

namespace veska {

TIntegerListElement* TStringElement::CreateIntegerList() const {
  return CreateIntegerListElementFromString(GetAsString());
}

}  // namespace veska
