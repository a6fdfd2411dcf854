// Type information of published properties: the type kinds with their fixed numbers, the
// value types that stand for the kinds the C++ language has no direct type for, and the
// TypeInfo record that each published property refers to.
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <span>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "kernel/platform/string.h"

namespace veska {

class ClassInfo;
class TObject;

// The one-byte classification of a property's type.  The numbers are written to model files
// and must never change.
enum class TTypeKind : uint8_t {
  tkUnknown = 0,
  tkInteger = 1,
  tkChar = 2,
  tkEnumeration = 3,
  tkFloat = 4,
  tkString = 5,
  tkSet = 6,
  tkClass = 7,
  tkMethod = 8,
  tkWChar = 9,
  tkLString = 10,
  tkWString = 11,
  tkVariant = 12,
  tkArray = 13,
  tkRecord = 14,
  tkInterface = 15,
  tkInt64 = 16,
  tkDynArray = 17,
  tkUString = 18,
  tkClassRef = 19,
  tkPointer = 20,
  tkProcedure = 21,
};
inline constexpr int kTypeKindCount = 22;

// The kinds whose values are 32-bit ordinals: integer, char, enumeration, set and wide char.
constexpr bool IsOrdinalKind(TTypeKind kind) {
  return kind == TTypeKind::tkInteger || kind == TTypeKind::tkChar || kind == TTypeKind::tkEnumeration ||
         kind == TTypeKind::tkSet || kind == TTypeKind::tkWChar;
}

// The name of a kind as the platform spelled it ("tkInteger", ...); "tkUnknown" out of range.
StringView TypeKindName(TTypeKind kind);

// Size and sign of an ordinal value.
enum class TOrdType : uint8_t { otSByte, otUByte, otSWord, otUWord, otSLong, otULong };

// Kind 5: a short 8-bit string of at most 255 Windows-1250 bytes.
struct ShortString {
  std::string Bytes;
  bool operator==(const ShortString&) const = default;
};
// Kind 10: a long 8-bit string of Windows-1250 bytes.
struct AnsiString {
  std::string Bytes;
  bool operator==(const AnsiString&) const = default;
};
// Kind 11: a wide string.  It holds UTF-16 like String but is a kind of its own, which some
// rules of the library treat differently.
struct WideString {
  String Text;
  bool operator==(const WideString&) const = default;
};

// Kind 8: a method reference as the pair of numbers (code and data) it travels as.  The
// numbers are only carried, never called.
struct TMethod {
  int64_t Code = 0;
  int64_t Data = 0;
  bool operator==(const TMethod&) const = default;
};

// Kind 12: a value of one of the basic kinds, or unassigned.
using Variant = std::variant<std::monostate, bool, int64_t, double, String>;

// A set of up to 32 values of an enumeration; kind 6.  Bit n stands for the value of ordinal n.
template <class Enum>
class TSet {
 public:
  constexpr TSet() = default;
  constexpr TSet(std::initializer_list<Enum> values) {
    for (Enum v : values) Include(v);
  }
  static constexpr TSet FromMask(uint32_t mask) {
    TSet s;
    s.mask_ = mask;
    return s;
  }
  constexpr uint32_t Mask() const { return mask_; }
  constexpr bool Contains(Enum v) const { return (mask_ >> Bit(v)) & 1u; }
  constexpr void Include(Enum v) { mask_ |= 1u << Bit(v); }
  constexpr void Exclude(Enum v) { mask_ &= ~(1u << Bit(v)); }
  constexpr bool operator==(const TSet&) const = default;

 private:
  static constexpr unsigned Bit(Enum v) { return static_cast<unsigned>(v) & 31u; }
  uint32_t mask_ = 0;
};

// One value of a published enumeration and its name.
template <class Enum>
struct EnumName {
  Enum Value;
  std::u16string_view Name;
};
template <class Enum>
EnumName(Enum, std::u16string_view) -> EnumName<Enum>;

// Whether the table names the enumerators 0, 1, 2, ... in order, each once.
template <class Enum, std::size_t N>
constexpr bool NamesFollowEnumerators(const std::array<EnumName<Enum>, N>& names) {
  for (std::size_t i = 0; i < N; ++i) {
    if (static_cast<std::size_t>(names[i].Value) != i) return false;
  }
  return true;
}

// The value names of a C++ enumeration published as kind 3.  Specialise it next to the enum,
// each name beside its enumerator, so that a name cannot drift from its value:
//   template <> struct EnumNames<TColorKind> {
//     static constexpr std::u16string_view TypeName = u"TColorKind";
//     static constexpr std::array Names{EnumName{TColorKind::ckRed, u"ckRed"},
//                                       EnumName{TColorKind::ckBlue, u"ckBlue"}};
//   };
// Publishing the enumeration checks, at compile time, that the table follows the enumerators
// 0, 1, 2, ... in order.
template <class Enum>
struct EnumNames;

template <class T>
concept PublishedEnum = std::is_enum_v<T> && requires {
  { EnumNames<T>::TypeName } -> std::convertible_to<std::u16string_view>;
  EnumNames<T>::Names.size();
};

// The type kind is itself published (as the kind of a declared property), with its names.
template <>
struct EnumNames<TTypeKind> {
  static constexpr std::u16string_view TypeName = u"TTypeKind";
  static constexpr std::array Names{
      EnumName{TTypeKind::tkUnknown, u"tkUnknown"}, EnumName{TTypeKind::tkInteger, u"tkInteger"},
      EnumName{TTypeKind::tkChar, u"tkChar"},       EnumName{TTypeKind::tkEnumeration, u"tkEnumeration"},
      EnumName{TTypeKind::tkFloat, u"tkFloat"},     EnumName{TTypeKind::tkString, u"tkString"},
      EnumName{TTypeKind::tkSet, u"tkSet"},         EnumName{TTypeKind::tkClass, u"tkClass"},
      EnumName{TTypeKind::tkMethod, u"tkMethod"},   EnumName{TTypeKind::tkWChar, u"tkWChar"},
      EnumName{TTypeKind::tkLString, u"tkLString"}, EnumName{TTypeKind::tkWString, u"tkWString"},
      EnumName{TTypeKind::tkVariant, u"tkVariant"}, EnumName{TTypeKind::tkArray, u"tkArray"},
      EnumName{TTypeKind::tkRecord, u"tkRecord"},   EnumName{TTypeKind::tkInterface, u"tkInterface"},
      EnumName{TTypeKind::tkInt64, u"tkInt64"},     EnumName{TTypeKind::tkDynArray, u"tkDynArray"},
      EnumName{TTypeKind::tkUString, u"tkUString"}, EnumName{TTypeKind::tkClassRef, u"tkClassRef"},
      EnumName{TTypeKind::tkPointer, u"tkPointer"}, EnumName{TTypeKind::tkProcedure, u"tkProcedure"}};
};
static_assert(NamesFollowEnumerators(EnumNames<TTypeKind>::Names) &&
              EnumNames<TTypeKind>::Names.size() == kTypeKindCount);

// What the platform knew of a type: kind, name, ordinal range, value names, referenced class.
struct TypeInfo {
  TTypeKind Kind = TTypeKind::tkUnknown;
  String Name;
  TOrdType OrdType = TOrdType::otSLong;  // ordinal kinds only
  int64_t MinValue = 0;                  // ordinal kinds only
  int64_t MaxValue = 0;
  std::vector<String> EnumValueNames;         // kind 3; for kind 6 see CompType
  const TypeInfo* CompType = nullptr;         // kind 6: the enumeration of the set's elements
  const ClassInfo* (*ClassType)() = nullptr;  // kind 7: the class of the referenced objects
};

// The name of an enumeration value, or an empty string when the ordinal is out of range.
String GetEnumName(const TypeInfo& type, int64_t ordinal);
// The ordinal of the value of that name (ASCII case ignored), or -1.
int GetEnumValue(const TypeInfo& type, StringView name);

}  // namespace veska
