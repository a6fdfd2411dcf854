#include "kernel/platform/prop_info.h"

#include <utility>

#include "kernel/platform/exceptions.h"

namespace veska {

PropInfo::PropInfo(String name, const TypeInfo& type, ValueFamily family, TAccessKind read, TAccessKind write,
                   std::unique_ptr<PropertyAccessor> accessor)
    : name_(std::move(name)),
      type_(&type),
      family_(family),
      read_(read),
      write_(write),
      accessor_(std::move(accessor)) {}

bool PropInfo::IsStored(const TObject& object) const {
  return stored_.Predicate ? stored_.Predicate(object) : stored_.Constant;
}

void PropInfo::RaiseAccessError(ValueFamily family, bool writing) const {
  if (family != family_) throw EPropertyError(u"Invalid property type: " + name_);
  throw EPropertyError(u"Property " + name_ + (writing ? u" is read-only" : u" is write-only"));
}

}  // namespace veska
