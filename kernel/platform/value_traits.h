// How each C++ value type of a published property maps onto a type kind, and how its values
// convert to and from the platform's typed access families (ordinal, float, string, object,
// method, variant).  The property builder deduces everything from these traits.
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>

#include "kernel/platform/type_info.h"

namespace veska {

// The typed-access family through which a kind is read and written.
enum class ValueFamily : uint8_t { Ordinal, Float, Text, Object, Method, VariantValue };

template <class V>
struct ValueTraits;  // defined below for every publishable value type

template <class V>
concept Publishable = requires {
  ValueTraits<V>::Family;
};

template <class V>
const TypeInfo& TypeInfoOf() {
  static const TypeInfo info = ValueTraits<V>::MakeTypeInfo();
  return info;
}

namespace detail {

template <class Int>
constexpr TOrdType OrdTypeOf() {
  if constexpr (sizeof(Int) == 1) return std::is_signed_v<Int> ? TOrdType::otSByte : TOrdType::otUByte;
  if constexpr (sizeof(Int) == 2) return std::is_signed_v<Int> ? TOrdType::otSWord : TOrdType::otUWord;
  return std::is_signed_v<Int> ? TOrdType::otSLong : TOrdType::otULong;
}

inline TypeInfo PlainTypeInfo(TTypeKind kind, StringView name) {
  TypeInfo info;
  info.Kind = kind;
  info.Name = String(name);
  return info;
}

template <class Int>
TypeInfo OrdinalTypeInfo(TTypeKind kind, StringView name) {
  TypeInfo info;
  info.Kind = kind;
  info.Name = String(name);
  info.OrdType = OrdTypeOf<Int>();
  info.MinValue = static_cast<int64_t>(std::numeric_limits<Int>::min());
  info.MaxValue = static_cast<int64_t>(std::numeric_limits<Int>::max());
  return info;
}

template <class Int>
constexpr StringView IntegerTypeName() {
  if constexpr (std::is_same_v<Int, int8_t>) return u"ShortInt";
  if constexpr (std::is_same_v<Int, uint8_t>) return u"Byte";
  if constexpr (std::is_same_v<Int, int16_t>) return u"SmallInt";
  if constexpr (std::is_same_v<Int, uint16_t>) return u"Word";
  if constexpr (std::is_same_v<Int, uint32_t>) return u"Cardinal";
  return u"Integer";
}

}  // namespace detail

// Integers of up to 32 bits: kind 1.  Writing keeps the low bytes, as the platform did.
template <class Int>
requires(std::is_integral_v<Int> && sizeof(Int) <= 4 && !std::is_same_v<Int, bool> && !std::is_same_v<Int, char> &&
         !std::is_same_v<Int, char16_t>) struct ValueTraits<Int> {
  static constexpr ValueFamily Family = ValueFamily::Ordinal;
  static TypeInfo MakeTypeInfo() {
    return detail::OrdinalTypeInfo<Int>(TTypeKind::tkInteger, detail::IntegerTypeName<Int>());
  }
  static int64_t ToOrd(Int v) { return v; }
  static Int FromOrd(int64_t v) { return static_cast<Int>(v); }
};

// 64-bit integers: kind 16.
template <>
struct ValueTraits<int64_t> {
  static constexpr ValueFamily Family = ValueFamily::Ordinal;
  static TypeInfo MakeTypeInfo() { return detail::OrdinalTypeInfo<int64_t>(TTypeKind::tkInt64, u"Int64"); }
  static int64_t ToOrd(int64_t v) { return v; }
  static int64_t FromOrd(int64_t v) { return v; }
};

// Boolean: an enumeration (kind 3) with the value names "False" and "True".
template <>
struct ValueTraits<bool> {
  static constexpr ValueFamily Family = ValueFamily::Ordinal;
  static TypeInfo MakeTypeInfo() {
    TypeInfo info = detail::OrdinalTypeInfo<uint8_t>(TTypeKind::tkEnumeration, u"Boolean");
    info.MinValue = 0;
    info.MaxValue = 1;
    info.EnumValueNames = {u"False", u"True"};
    return info;
  }
  static int64_t ToOrd(bool v) { return v ? 1 : 0; }
  static bool FromOrd(int64_t v) { return (v & 0xFF) != 0; }
};

// 8-bit character (a Windows-1250 byte): kind 2.
template <>
struct ValueTraits<char> {
  static constexpr ValueFamily Family = ValueFamily::Ordinal;
  static TypeInfo MakeTypeInfo() { return detail::OrdinalTypeInfo<uint8_t>(TTypeKind::tkChar, u"AnsiChar"); }
  static int64_t ToOrd(char v) { return static_cast<unsigned char>(v); }
  static char FromOrd(int64_t v) { return static_cast<char>(v & 0xFF); }
};

// Wide character: kind 9.
template <>
struct ValueTraits<char16_t> {
  static constexpr ValueFamily Family = ValueFamily::Ordinal;
  static TypeInfo MakeTypeInfo() { return detail::OrdinalTypeInfo<uint16_t>(TTypeKind::tkWChar, u"WideChar"); }
  static int64_t ToOrd(char16_t v) { return v; }
  static char16_t FromOrd(int64_t v) { return static_cast<char16_t>(v & 0xFFFF); }
};

// Enumerations with published value names: kind 3.
template <PublishedEnum Enum>
struct ValueTraits<Enum> {
  static constexpr ValueFamily Family = ValueFamily::Ordinal;
  static_assert(NamesFollowEnumerators(EnumNames<Enum>::Names),
                "EnumNames must name the enumerators 0, 1, 2, ... in order, each beside its own");
  static TypeInfo MakeTypeInfo() {
    TypeInfo info = detail::OrdinalTypeInfo<uint8_t>(TTypeKind::tkEnumeration, EnumNames<Enum>::TypeName);
    info.MinValue = 0;
    info.MaxValue = static_cast<int64_t>(EnumNames<Enum>::Names.size()) - 1;
    for (const auto& entry : EnumNames<Enum>::Names) info.EnumValueNames.emplace_back(entry.Name);
    return info;
  }
  static int64_t ToOrd(Enum v) { return static_cast<int64_t>(v); }
  static Enum FromOrd(int64_t v) { return static_cast<Enum>(v & 0xFF); }
};

// Sets of published enumerations: kind 6, the value is the bit mask.
template <PublishedEnum Enum>
struct ValueTraits<TSet<Enum>> {
  static constexpr ValueFamily Family = ValueFamily::Ordinal;
  static TypeInfo MakeTypeInfo() {
    TypeInfo info =
        detail::OrdinalTypeInfo<uint32_t>(TTypeKind::tkSet, String(u"set of ") + String(EnumNames<Enum>::TypeName));
    info.CompType = &TypeInfoOf<Enum>();
    return info;
  }
  static int64_t ToOrd(TSet<Enum> v) { return v.Mask(); }
  static TSet<Enum> FromOrd(int64_t v) { return TSet<Enum>::FromMask(static_cast<uint32_t>(v)); }
};

// Floating point: kind 4.
template <>
struct ValueTraits<double> {
  static constexpr ValueFamily Family = ValueFamily::Float;
  static TypeInfo MakeTypeInfo() { return detail::PlainTypeInfo(TTypeKind::tkFloat, u"Double"); }
  static double ToFloat(double v) { return v; }
  static double FromFloat(double v) { return v; }
};

// Strings: kinds 18 (String), 5 (ShortString), 10 (AnsiString) and 11 (WideString).  The 8-bit
// kinds hold Windows-1250 bytes; a short string keeps at most 255 of them.
template <>
struct ValueTraits<String> {
  static constexpr ValueFamily Family = ValueFamily::Text;
  static TypeInfo MakeTypeInfo() { return detail::PlainTypeInfo(TTypeKind::tkUString, u"UnicodeString"); }
  static String ToStr(String v) { return v; }  // by value: a getter's result is moved, not copied
  static String FromStr(const String& v) { return v; }
};

template <>
struct ValueTraits<ShortString> {
  static constexpr ValueFamily Family = ValueFamily::Text;
  static TypeInfo MakeTypeInfo() { return detail::PlainTypeInfo(TTypeKind::tkString, u"ShortString"); }
  static String ToStr(const ShortString& v) { return FromWin1250(v.Bytes); }
  static ShortString FromStr(const String& v) {
    std::string bytes = ToWin1250(v);
    if (bytes.size() > 255) bytes.resize(255);
    return {std::move(bytes)};
  }
};

template <>
struct ValueTraits<AnsiString> {
  static constexpr ValueFamily Family = ValueFamily::Text;
  static TypeInfo MakeTypeInfo() { return detail::PlainTypeInfo(TTypeKind::tkLString, u"AnsiString"); }
  static String ToStr(const AnsiString& v) { return FromWin1250(v.Bytes); }
  static AnsiString FromStr(const String& v) { return {ToWin1250(v)}; }
};

template <>
struct ValueTraits<WideString> {
  static constexpr ValueFamily Family = ValueFamily::Text;
  static TypeInfo MakeTypeInfo() { return detail::PlainTypeInfo(TTypeKind::tkWString, u"WideString"); }
  static String ToStr(const WideString& v) { return v.Text; }
  static WideString FromStr(const String& v) { return {v}; }
};

// Method references: kind 8.
template <>
struct ValueTraits<TMethod> {
  static constexpr ValueFamily Family = ValueFamily::Method;
  static TypeInfo MakeTypeInfo() { return detail::PlainTypeInfo(TTypeKind::tkMethod, u"TMethod"); }
};

// Variants: kind 12.
template <>
struct ValueTraits<Variant> {
  static constexpr ValueFamily Family = ValueFamily::VariantValue;
  static TypeInfo MakeTypeInfo() { return detail::PlainTypeInfo(TTypeKind::tkVariant, u"Variant"); }
};

// References to objects of a class with type information: kind 7.  Writing an object of
// another class gives none, so a property never holds an object of the wrong class.
template <class Object>
requires requires { Object::StaticClassName; }
struct ValueTraits<Object*> {
  static constexpr ValueFamily Family = ValueFamily::Object;
  static TypeInfo MakeTypeInfo() {
    TypeInfo info = detail::PlainTypeInfo(TTypeKind::tkClass, Object::StaticClassName);
    info.ClassType = [] { return &Object::StaticClassInfo(); };
    return info;
  }
  static TObject* ToObj(Object* v) { return v; }
  static Object* FromObj(TObject* v) { return ObjectAs<Object>(v); }
};

}  // namespace veska
