// The type tag TType, TTypeElement (the common base of the typed value elements, with its views
// of a value as byte, integer, character, text, float, Boolean, date-time and reference), and
// TTypeTestElement, which exercises the by-name property access on an enumeration.
#pragma once

#include <array>
#include <cstdint>

#include "kernel/elements/named.h"

namespace veska {

// The unit of the typed value and list elements.
inline constexpr std::u16string_view kTypesUnit = u"E_type";

// What kind of value a typed value element holds.
enum class TType : uint8_t { _Boolean, _Char, _Byte, _Float, _String, _Integer, _Pointer, _DateTime, _Other };

template <>
struct EnumNames<TType> {
  static constexpr std::u16string_view TypeName = u"TType";
  static constexpr std::array Names{EnumName{TType::_Boolean, u"_Boolean"}, EnumName{TType::_Char, u"_Char"},
                                    EnumName{TType::_Byte, u"_Byte"},       EnumName{TType::_Float, u"_Float"},
                                    EnumName{TType::_String, u"_String"},   EnumName{TType::_Integer, u"_Integer"},
                                    EnumName{TType::_Pointer, u"_Pointer"}, EnumName{TType::_DateTime, u"_DateTime"},
                                    EnumName{TType::_Other, u"_Other"}};
};

// The pointer-sized integer of the AsNativeInt view.  References travel as numbers through the
// handle table, whose numbers are 32-bit, so a reference as a number is 32 bits wide here, as
// pointers were on the platform the system was made for (the property is of kind 1).
using NativeInt = int32_t;

// A named, owned element that stands for one value.  It holds no value itself: every view reads
// 0, false, the character 0 or the empty text, and every write is ignored.  Each value class
// overrides the views it supports.
class TTypeElement : public TOwnerElement {
  VESKA_CLASS(TTypeElement, TOwnerElement, kTypesUnit)
 public:
  virtual TType GetType() const;
  virtual String GetTypeAsString() const;
  // Forward to GetAsString / SetAsString unless a class has an ISO 8601 form of its own.
  virtual String GetAsISOString() const;
  virtual void SetAsISOString(const String& value);
  virtual TDateTime GetAsDateTime() const;
  virtual void SetAsDateTime(TDateTime value);
  virtual uint8_t GetAsByte() const;
  virtual void SetAsByte(uint8_t value);
  virtual int32_t GetAsInteger() const;
  virtual void SetAsInteger(int32_t value);
  virtual NativeInt GetAsNativeInt() const;
  virtual void SetAsNativeInt(NativeInt value);
  virtual char16_t GetAsChar() const;
  virtual void SetAsChar(char16_t value);
  virtual String GetAsString() const;
  virtual void SetAsString(const String& value);
  virtual double GetAsFloat() const;
  virtual void SetAsFloat(double value);
  virtual bool GetAsBoolean() const;
  virtual void SetAsBoolean(bool value);
  // The value seen as a reference to an object; not owned.
  virtual TObject* GetAsPointer() const;
  virtual void SetAsPointer(TObject* value);
  virtual String GetUpperName() const;
  // A new element of the class that implements the copy, with the same value and Name and
  // nothing else; the caller owns it.  None for a class without a value.
  virtual TTypeElement* SelfCopy() const;

  static void Publish(Publisher<TTypeElement>& p);
};

// One TType field with three stored views of it: the enumeration itself, its ordinal and its
// name, the last through the element's own by-name property access.
class TTypeTestElement : public TOwnerElement {
  VESKA_CLASS(TTypeTestElement, TOwnerElement, kTypesUnit)
 public:
  TType Typ = TType::_Boolean;

  void SetTyp(TType value);
  int32_t GetTypi() const;
  void SetTypi(int32_t value);
  String GetTyps() const;
  void SetTyps(const String& value);

  static void Publish(Publisher<TTypeTestElement>& p);
};

}  // namespace veska
