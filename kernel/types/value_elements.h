// The typed value elements: one value of one simple type each, readable and writable through
// the views of TTypeElement.  Each class overrides the views it supports; the conversions are
// part of the behaviour other code relies on (a Boolean written to a string element reads
// "TRUE", a Boolean element reads "true"; a byte given the text 300 holds 44, given the
// integer 300 it is unchanged).  Text that does not convert is ignored by the setters.
#pragma once

#include "kernel/types/type_element.h"

namespace veska {

class TIntegerListElement;

class TBooleanElement : public TTypeElement {
  VESKA_CLASS(TBooleanElement, TTypeElement, kTypesUnit)
 public:
  TBooleanElement() = default;
  explicit TBooleanElement(bool value);
  TBooleanElement(const String& name, bool value);

  TType GetType() const override;
  String GetTypeAsString() const override;
  uint8_t GetAsByte() const override;
  void SetAsByte(uint8_t value) override;
  // "true" or "false"; the text "TRUE" or "FALSE" in any letter case sets the value.
  String GetAsString() const override;
  void SetAsString(const String& value) override;
  bool GetAsBoolean() const override;
  void SetAsBoolean(bool value) override;
  TTypeElement* SelfCopy() const override;

  static void Publish(Publisher<TBooleanElement>& p);

 private:
  bool value_ = false;
};

class TCharElement : public TTypeElement {
  VESKA_CLASS(TCharElement, TTypeElement, kTypesUnit)
 public:
  TCharElement() = default;
  explicit TCharElement(char16_t value);
  TCharElement(const String& name, char16_t value);

  TType GetType() const override;
  String GetTypeAsString() const override;
  // The character code; ERangeError for a code of 256 or more.
  uint8_t GetAsByte() const override;
  void SetAsByte(uint8_t value) override;
  // Codes 1 to 255 set the character; any other number is ignored.
  int32_t GetAsInteger() const override;
  void SetAsInteger(int32_t value) override;
  char16_t GetAsChar() const override;
  void SetAsChar(char16_t value) override;
  // The first character of the text; an empty text changes nothing.
  String GetAsString() const override;
  void SetAsString(const String& value) override;
  TTypeElement* SelfCopy() const override;

  static void Publish(Publisher<TCharElement>& p);

 private:
  char16_t value_ = 0;
};

class TByteElement : public TTypeElement {
  VESKA_CLASS(TByteElement, TTypeElement, kTypesUnit)
 public:
  TByteElement() = default;
  explicit TByteElement(uint8_t value);
  TByteElement(const String& name, uint8_t value);

  TType GetType() const override;
  String GetTypeAsString() const override;
  uint8_t GetAsByte() const override;
  void SetAsByte(uint8_t value) override;
  // Numbers outside 0..255 are ignored.
  int32_t GetAsInteger() const override;
  void SetAsInteger(int32_t value) override;
  // A code above 255 raises ERangeError.
  char16_t GetAsChar() const override;
  void SetAsChar(char16_t value) override;
  // A whole number keeps its low 8 bits (300 stores 44); other text is ignored.
  String GetAsString() const override;
  void SetAsString(const String& value) override;
  // Truncated toward zero; a result outside 0..255 is ignored.
  double GetAsFloat() const override;
  void SetAsFloat(double value) override;
  bool GetAsBoolean() const override;
  void SetAsBoolean(bool value) override;
  TTypeElement* SelfCopy() const override;

  static void Publish(Publisher<TByteElement>& p);

 private:
  uint8_t value_ = 0;
};

class TFloatElement : public TTypeElement {
  VESKA_CLASS(TFloatElement, TTypeElement, kTypesUnit)
 public:
  TFloatElement() = default;
  explicit TFloatElement(double value);
  TFloatElement(const String& name, double value);

  TType GetType() const override;
  String GetTypeAsString() const override;
  TDateTime GetAsDateTime() const override;
  void SetAsDateTime(TDateTime value) override;
  // Truncated toward zero; 0 when that does not fit in 32 bits.
  int32_t GetAsInteger() const override;
  void SetAsInteger(int32_t value) override;
  // The unformatted scientific form (FloatToStrUnformatted); read back by StrToExtended.
  String GetAsString() const override;
  void SetAsString(const String& value) override;
  double GetAsFloat() const override;
  void SetAsFloat(double value) override;
  TTypeElement* SelfCopy() const override;

  static void Publish(Publisher<TFloatElement>& p);

 private:
  double value_ = 0;
};

// Tag of the TStringElement constructor that splits a "name=value" text.
struct NameIsValueText {
  explicit NameIsValueText() = default;
};

class TStringElement : public TTypeElement {
  VESKA_CLASS(TStringElement, TTypeElement, kTypesUnit)
 public:
  TStringElement() = default;
  explicit TStringElement(const String& value);
  TStringElement(const String& name, const String& value);
  // The element that SetNameIsValue(text) makes of an empty one.
  TStringElement(NameIsValueText, const String& text);

  TType GetType() const override;
  String GetTypeAsString() const override;
  // The text as a whole decimal number, 0 when it is not one; written as decimal text.
  int32_t GetAsInteger() const override;
  void SetAsInteger(int32_t value) override;
  String GetAsString() const override;
  void SetAsString(const String& value) override;
  // StrToExtended of the text, 0 when it is not a number; written in the general float form.
  double GetAsFloat() const override;
  void SetAsFloat(double value) override;
  // A number is true when not 0; otherwise "TRUE" and "ANO" in any case are true.  Written
  // as "TRUE" or "FALSE".
  bool GetAsBoolean() const override;
  void SetAsBoolean(bool value) override;
  TTypeElement* SelfCopy() const override;

  // Name + "=" + value.
  String GetNameIsValue() const;
  // Splits the text with StringAsParameter: "a=b" sets Name a and value b; a text without a
  // value part sets only the value; an empty text or an empty name part changes nothing.
  void SetNameIsValue(const String& text);

  // The value as a decimal 32-bit number; ok tells whether the whole text was one.
  int32_t GetLongInt(bool& ok) const;
  void SetLongInt(int32_t value);
  // The value read by the locale-aware float conversion; ok false (and 0) when it fails.
  double GetDouble(bool& ok) const;
  void SetDouble(double value);
  // AsBoolean; ok is always true.
  bool GetBoolean(bool& ok) const;
  // The whole numbers of the text (as the line reader reads them) in a new list; none when the
  // text holds no number.  The caller owns the list.
  TIntegerListElement* CreateIntegerList() const;

  static void Publish(Publisher<TStringElement>& p);

 private:
  String value_;
};

// A string element whose text is a file-system path.  It inherits SelfCopy on purpose: a copy
// of a path element is a plain TStringElement.
class TPathElement : public TStringElement {
  VESKA_CLASS(TPathElement, TStringElement, kTypesUnit)
 public:
  TPathElement() = default;
  explicit TPathElement(const String& value) : TStringElement(value) {}
  TPathElement(const String& name, const String& value) : TStringElement(name, value) {}
};

class TIntegerElement : public TTypeElement {
  VESKA_CLASS(TIntegerElement, TTypeElement, kTypesUnit)
 public:
  TIntegerElement() = default;
  explicit TIntegerElement(int32_t value);
  TIntegerElement(const String& name, int32_t value);

  TType GetType() const override;
  String GetTypeAsString() const override;
  // The value when it lies in 0..255, else 0.
  uint8_t GetAsByte() const override;
  void SetAsByte(uint8_t value) override;
  int32_t GetAsInteger() const override;
  void SetAsInteger(int32_t value) override;
  // A whole decimal number; other text is ignored.
  String GetAsString() const override;
  void SetAsString(const String& value) override;
  // Truncated toward zero; a result beyond 32 bits is ignored.
  double GetAsFloat() const override;
  void SetAsFloat(double value) override;
  bool GetAsBoolean() const override;
  void SetAsBoolean(bool value) override;
  // The value as an object's handle, and back.
  TObject* GetAsPointer() const override;
  void SetAsPointer(TObject* value) override;
  TTypeElement* SelfCopy() const override;

  static void Publish(Publisher<TIntegerElement>& p);

 private:
  int32_t value_ = 0;
};

// A reference to an object that the element does not own, with a class name beside it.  The
// reference is kept as the object's handle, so it reads as none once the object is gone, and
// a number that names no live object sets none.
class TPointerElement : public TTypeElement {
  VESKA_CLASS(TPointerElement, TTypeElement, kTypesUnit)
 public:
  TPointerElement() = default;
  explicit TPointerElement(TObject* value);
  TPointerElement(const String& name, TObject* value);

  String aClassName;

  TType GetType() const override;
  String GetTypeAsString() const override;
  // The reference as its handle number.
  int32_t GetAsInteger() const override;
  void SetAsInteger(int32_t value) override;
  // The handle as signed decimal text; text that is not a number sets none.
  String GetAsString() const override;
  void SetAsString(const String& value) override;
  TObject* GetAsPointer() const override;
  void SetAsPointer(TObject* value) override;
  // Copies the reference, not aClassName.
  TTypeElement* SelfCopy() const override;

  // The reference seen as an element; none when it refers to an object that is not one.
  TElement* Get_Element() const;
  void Set_Element(TElement* value);

  static void Publish(Publisher<TPointerElement>& p);

 private:
  int32_t handle_ = 0;
};

class TDateTimeElement : public TTypeElement {
  VESKA_CLASS(TDateTimeElement, TTypeElement, kTypesUnit)
 public:
  TDateTimeElement() = default;
  explicit TDateTimeElement(TDateTime value);
  TDateTimeElement(const String& name, TDateTime value);

  TType GetType() const override;
  String GetTypeAsString() const override;
  // ISO 8601 text of the value taken as UTC; text that does not parse changes nothing.
  String GetAsISOString() const override;
  void SetAsISOString(const String& value) override;
  TDateTime GetAsDateTime() const override;
  void SetAsDateTime(TDateTime value) override;
  // Truncated toward zero; ERangeError when the day count does not fit in 32 bits.
  int32_t GetAsInteger() const override;
  void SetAsInteger(int32_t value) override;
  // The locale date-and-time text.  Written: ISO 8601 (kept as UTC), else the locale form,
  // else the value becomes 0.
  String GetAsString() const override;
  void SetAsString(const String& value) override;
  double GetAsFloat() const override;
  void SetAsFloat(double value) override;
  TTypeElement* SelfCopy() const override;

  static void Publish(Publisher<TDateTimeElement>& p);

 private:
  TDateTime value_ = 0;
};

}  // namespace veska
