#include "kernel/platform/type_info.h"

#include <array>

namespace veska {
namespace {

constexpr std::array<StringView, kTypeKindCount> kTypeKindNames = {
    u"tkUnknown", u"tkInteger", u"tkChar",      u"tkEnumeration", u"tkFloat",    u"tkString",
    u"tkSet",     u"tkClass",   u"tkMethod",    u"tkWChar",       u"tkLString",  u"tkWString",
    u"tkVariant", u"tkArray",   u"tkRecord",    u"tkInterface",   u"tkInt64",    u"tkDynArray",
    u"tkUString", u"tkClassRef", u"tkPointer",  u"tkProcedure",
};

}  // namespace

StringView TypeKindName(TTypeKind kind) {
  const auto index = static_cast<std::size_t>(kind);
  return index < kTypeKindNames.size() ? kTypeKindNames[index] : kTypeKindNames[0];
}

String GetEnumName(const TypeInfo& type, int64_t ordinal) {
  if (ordinal < 0 || ordinal >= static_cast<int64_t>(type.EnumValueNames.size())) return {};
  return type.EnumValueNames[static_cast<std::size_t>(ordinal)];
}

int GetEnumValue(const TypeInfo& type, StringView name) {
  const String wanted = AsciiUpperCase(name);
  for (std::size_t i = 0; i < type.EnumValueNames.size(); ++i) {
    if (AsciiUpperCase(type.EnumValueNames[i]) == wanted) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace veska
