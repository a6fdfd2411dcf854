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

const PropertyAccessor& PropInfo::Reader(ValueFamily family) const {
  if (family != family_) throw EPropertyError(u"Invalid property type: " + name_);
  if (!CanRead()) throw EPropertyError(u"Property " + name_ + u" is write-only");
  return *accessor_;
}

const PropertyAccessor& PropInfo::Writer(ValueFamily family) const {
  if (family != family_) throw EPropertyError(u"Invalid property type: " + name_);
  if (!CanWrite()) throw EPropertyError(u"Property " + name_ + u" is read-only");
  return *accessor_;
}

int64_t PropInfo::GetOrd(const TObject& object) const { return Reader(ValueFamily::Ordinal).GetOrd(object); }
void PropInfo::SetOrd(TObject& object, int64_t value) const { Writer(ValueFamily::Ordinal).SetOrd(object, value); }
double PropInfo::GetFloat(const TObject& object) const { return Reader(ValueFamily::Float).GetFloat(object); }
void PropInfo::SetFloat(TObject& object, double value) const { Writer(ValueFamily::Float).SetFloat(object, value); }
String PropInfo::GetStr(const TObject& object) const { return Reader(ValueFamily::Text).GetStr(object); }
void PropInfo::SetStr(TObject& object, const String& value) const { Writer(ValueFamily::Text).SetStr(object, value); }
TObject* PropInfo::GetObj(const TObject& object) const { return Reader(ValueFamily::Object).GetObj(object); }
void PropInfo::SetObj(TObject& object, TObject* value) const { Writer(ValueFamily::Object).SetObj(object, value); }
TMethod PropInfo::GetMethod(const TObject& object) const { return Reader(ValueFamily::Method).GetMethod(object); }
void PropInfo::SetMethod(TObject& object, const TMethod& value) const {
  Writer(ValueFamily::Method).SetMethod(object, value);
}
Variant PropInfo::GetVariant(const TObject& object) const {
  return Reader(ValueFamily::VariantValue).GetVariant(object);
}
void PropInfo::SetVariant(TObject& object, const Variant& value) const {
  Writer(ValueFamily::VariantValue).SetVariant(object, value);
}

}  // namespace veska
