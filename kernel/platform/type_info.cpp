#include "kernel/platform/type_info.h"

#include <array>

namespace veska {
StringView TypeKindName(TTypeKind kind) {
  constexpr auto& names = EnumNames<TTypeKind>::Names;
  const auto index = static_cast<std::size_t>(kind);
  return index < names.size() ? names[index].Name : names[0].Name;
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
