#include "kernel/types/value_elements.h"

#include <cmath>
#include <limits>
#include <optional>

#include "kernel/platform/checked_arithmetic.h"
#include "kernel/platform/float_text.h"
#include "kernel/platform/object_handles.h"
#include "kernel/text/string_numbers.h"
#include "kernel/text/string_tokens.h"

namespace veska {

namespace {

// The float truncated toward zero when the result fits in Int; nothing otherwise (NaN and the
// infinities included).
template <class Int>
std::optional<Int> TruncatedInto(double value) {
  const double whole = std::trunc(value);
  if (!(whole >= static_cast<double>(std::numeric_limits<Int>::min()) &&
        whole <= static_cast<double>(std::numeric_limits<Int>::max())))
    return std::nullopt;
  return static_cast<Int>(whole);
}

// The copy SelfCopy gives: a new element of the class with the value and the name.
template <class Element, class Value>
TTypeElement* NamedCopy(const TTypeElement& source, Value value) {
  return new Element(source.GetName(), value);
}

}  // namespace

// ---- TBooleanElement -----------------------------------------------------------------------

TBooleanElement::TBooleanElement(bool value) : value_(value) {}
TBooleanElement::TBooleanElement(const String& name, bool value) : TBooleanElement(value) { SetName(name); }

void TBooleanElement::Publish(Publisher<TBooleanElement>& p) {
  p.Property(u"Value", &TTypeElement::GetAsBoolean, &TTypeElement::SetAsBoolean);
}

TType TBooleanElement::GetType() const { return TType::_Boolean; }
String TBooleanElement::GetTypeAsString() const { return u"boolean"; }
uint8_t TBooleanElement::GetAsByte() const { return value_ ? 1 : 0; }
void TBooleanElement::SetAsByte(uint8_t value) { value_ = value != 0; }
String TBooleanElement::GetAsString() const { return value_ ? u"true" : u"false"; }

void TBooleanElement::SetAsString(const String& value) {
  const String upper = UpperCase(value);
  if (upper == u"TRUE")
    value_ = true;
  else if (upper == u"FALSE")
    value_ = false;
}

bool TBooleanElement::GetAsBoolean() const { return value_; }
void TBooleanElement::SetAsBoolean(bool value) { value_ = value; }
TTypeElement* TBooleanElement::SelfCopy() const { return NamedCopy<TBooleanElement>(*this, value_); }

// ---- TCharElement --------------------------------------------------------------------------

TCharElement::TCharElement(char16_t value) : value_(value) {}
TCharElement::TCharElement(const String& name, char16_t value) : TCharElement(value) { SetName(name); }

void TCharElement::Publish(Publisher<TCharElement>& p) {
  p.Property(u"Value", &TTypeElement::GetAsChar, &TTypeElement::SetAsChar);
}

TType TCharElement::GetType() const { return TType::_Char; }
String TCharElement::GetTypeAsString() const { return u"char"; }
uint8_t TCharElement::GetAsByte() const { return CheckedRange<uint8_t>(static_cast<int32_t>(value_)); }
void TCharElement::SetAsByte(uint8_t value) { value_ = value; }
int32_t TCharElement::GetAsInteger() const { return value_; }

void TCharElement::SetAsInteger(int32_t value) {
  if (value >= 1 && value <= 255) value_ = static_cast<char16_t>(value);
}

char16_t TCharElement::GetAsChar() const { return value_; }
void TCharElement::SetAsChar(char16_t value) { value_ = value; }
String TCharElement::GetAsString() const { return String(1, value_); }

void TCharElement::SetAsString(const String& value) {
  if (!value.empty()) value_ = value.front();
}

TTypeElement* TCharElement::SelfCopy() const { return NamedCopy<TCharElement>(*this, value_); }

// ---- TByteElement --------------------------------------------------------------------------

TByteElement::TByteElement(uint8_t value) : value_(value) {}
TByteElement::TByteElement(const String& name, uint8_t value) : TByteElement(value) { SetName(name); }

void TByteElement::Publish(Publisher<TByteElement>& p) {
  p.Property(u"Value", &TTypeElement::GetAsByte, &TTypeElement::SetAsByte);
}

TType TByteElement::GetType() const { return TType::_Byte; }
String TByteElement::GetTypeAsString() const { return u"byte"; }
uint8_t TByteElement::GetAsByte() const { return value_; }
void TByteElement::SetAsByte(uint8_t value) { value_ = value; }
int32_t TByteElement::GetAsInteger() const { return value_; }

void TByteElement::SetAsInteger(int32_t value) {
  if (std::in_range<uint8_t>(value)) value_ = static_cast<uint8_t>(value);
}

char16_t TByteElement::GetAsChar() const { return value_; }
void TByteElement::SetAsChar(char16_t value) { value_ = CheckedRange<uint8_t>(static_cast<int32_t>(value)); }
String TByteElement::GetAsString() const { return IntToStr(value_); }

// Unlike the integer view, the text view wraps: only the low 8 bits of the number are kept.
void TByteElement::SetAsString(const String& value) {
  if (auto number = TryStrToLongInt(value)) value_ = static_cast<uint8_t>(static_cast<uint32_t>(*number) & 0xFFu);
}

double TByteElement::GetAsFloat() const { return value_; }

void TByteElement::SetAsFloat(double value) {
  if (auto whole = TruncatedInto<uint8_t>(value)) value_ = *whole;
}

bool TByteElement::GetAsBoolean() const { return value_ != 0; }
void TByteElement::SetAsBoolean(bool value) { value_ = value ? 1 : 0; }
TTypeElement* TByteElement::SelfCopy() const { return NamedCopy<TByteElement>(*this, value_); }

// ---- TFloatElement -------------------------------------------------------------------------

TFloatElement::TFloatElement(double value) : value_(value) {}
TFloatElement::TFloatElement(const String& name, double value) : TFloatElement(value) { SetName(name); }

void TFloatElement::Publish(Publisher<TFloatElement>& p) {
  p.Property(u"Value", &TTypeElement::GetAsFloat, &TTypeElement::SetAsFloat);
}

TType TFloatElement::GetType() const { return TType::_Float; }
String TFloatElement::GetTypeAsString() const { return u"float"; }
TDateTime TFloatElement::GetAsDateTime() const { return value_; }
void TFloatElement::SetAsDateTime(TDateTime value) { value_ = value; }
int32_t TFloatElement::GetAsInteger() const { return TruncatedInto<int32_t>(value_).value_or(0); }
void TFloatElement::SetAsInteger(int32_t value) { value_ = value; }
String TFloatElement::GetAsString() const { return FloatToStrUnformatted(value_); }

void TFloatElement::SetAsString(const String& value) {
  if (StringIsFloat(value)) value_ = StrToExtended(value);
}

double TFloatElement::GetAsFloat() const { return value_; }
void TFloatElement::SetAsFloat(double value) { value_ = value; }
TTypeElement* TFloatElement::SelfCopy() const { return NamedCopy<TFloatElement>(*this, value_); }

// ---- TStringElement ------------------------------------------------------------------------

TStringElement::TStringElement(const String& value) : value_(value) {}
TStringElement::TStringElement(const String& name, const String& value) : TStringElement(value) { SetName(name); }
TStringElement::TStringElement(NameIsValueText, const String& text) { SetNameIsValue(text); }

void TStringElement::Publish(Publisher<TStringElement>& p) {
  p.Property(u"Value", &TTypeElement::GetAsString, &TTypeElement::SetAsString);
  p.Property(u"NameIsValue", &TStringElement::GetNameIsValue, &TStringElement::SetNameIsValue).Stored(false);
}

TType TStringElement::GetType() const { return TType::_String; }
String TStringElement::GetTypeAsString() const { return u"string"; }
int32_t TStringElement::GetAsInteger() const { return TryStrToLongInt(value_).value_or(0); }
void TStringElement::SetAsInteger(int32_t value) { value_ = IntToStr(value); }
String TStringElement::GetAsString() const { return value_; }
void TStringElement::SetAsString(const String& value) { value_ = value; }
double TStringElement::GetAsFloat() const { return StringIsFloat(value_) ? StrToExtended(value_) : 0.0; }
void TStringElement::SetAsFloat(double value) { value_ = FloatToStr(value); }

bool TStringElement::GetAsBoolean() const {
  if (StringIsFloat(value_)) return GetAsFloat() != 0;
  const String upper = UpperCase(value_);
  return upper == u"TRUE" || upper == u"ANO";
}

// Upper case on purpose: a Boolean element spells its values "true" and "false".
void TStringElement::SetAsBoolean(bool value) { value_ = value ? u"TRUE" : u"FALSE"; }

TTypeElement* TStringElement::SelfCopy() const { return NamedCopy<TStringElement>(*this, value_); }

String TStringElement::GetNameIsValue() const { return GetName() + u"=" + GetAsString(); }

void TStringElement::SetNameIsValue(const String& text) {
  if (text.empty()) return;
  String name;
  String value;
  StringAsParameter(text, name, value);
  if (name.empty()) return;
  if (value.empty()) {
    SetAsString(name);
  } else {
    SetName(name);
    SetAsString(value);
  }
}

int32_t TStringElement::GetLongInt(bool& ok) const {
  const std::optional<int32_t> number = TryStrToLongInt(value_);
  ok = number.has_value();
  return number.value_or(0);
}

void TStringElement::SetLongInt(int32_t value) { value_ = IntToStr(value); }

double TStringElement::GetDouble(bool& ok) const {
  double value = 0;
  ok = TryStrToFloat(value_, value);
  return ok ? value : 0.0;
}

void TStringElement::SetDouble(double value) { value_ = FloatToStr(value); }

bool TStringElement::GetBoolean(bool& ok) const {
  ok = true;
  return GetAsBoolean();
}

// ---- TIntegerElement -----------------------------------------------------------------------

TIntegerElement::TIntegerElement(int32_t value) : value_(value) {}
TIntegerElement::TIntegerElement(const String& name, int32_t value) : TIntegerElement(value) { SetName(name); }

void TIntegerElement::Publish(Publisher<TIntegerElement>& p) {
  p.Property(u"Value", &TTypeElement::GetAsInteger, &TTypeElement::SetAsInteger);
}

TType TIntegerElement::GetType() const { return TType::_Integer; }
String TIntegerElement::GetTypeAsString() const { return u"integer"; }
uint8_t TIntegerElement::GetAsByte() const { return std::in_range<uint8_t>(value_) ? static_cast<uint8_t>(value_) : 0; }
void TIntegerElement::SetAsByte(uint8_t value) { value_ = value; }
int32_t TIntegerElement::GetAsInteger() const { return value_; }
void TIntegerElement::SetAsInteger(int32_t value) { value_ = value; }
String TIntegerElement::GetAsString() const { return IntToStr(value_); }

void TIntegerElement::SetAsString(const String& value) {
  if (auto number = TryStrToLongInt(value)) value_ = *number;
}

double TIntegerElement::GetAsFloat() const { return value_; }

void TIntegerElement::SetAsFloat(double value) {
  if (auto whole = TruncatedInto<int32_t>(value)) value_ = *whole;
}

bool TIntegerElement::GetAsBoolean() const { return value_ != 0; }
void TIntegerElement::SetAsBoolean(bool value) { value_ = value ? 1 : 0; }
TObject* TIntegerElement::GetAsPointer() const { return ObjectHandles::ObjectOf(value_); }
void TIntegerElement::SetAsPointer(TObject* value) { value_ = ObjectHandles::HandleOf(value); }
TTypeElement* TIntegerElement::SelfCopy() const { return NamedCopy<TIntegerElement>(*this, value_); }

// ---- TPointerElement -----------------------------------------------------------------------

TPointerElement::TPointerElement(TObject* value) { SetAsPointer(value); }
TPointerElement::TPointerElement(const String& name, TObject* value) : TPointerElement(value) { SetName(name); }

void TPointerElement::Publish(Publisher<TPointerElement>& p) {
  p.Field(u"aClassName", &TPointerElement::aClassName);
  p.Property(u"_Element", &TPointerElement::Get_Element, &TPointerElement::Set_Element);
}

TType TPointerElement::GetType() const { return TType::_Pointer; }
String TPointerElement::GetTypeAsString() const { return u"pointer"; }
// Resolved afresh, so a reference to an object that has gone reads as 0.
int32_t TPointerElement::GetAsInteger() const { return ObjectHandles::HandleOf(GetAsPointer()); }
void TPointerElement::SetAsInteger(int32_t value) { SetAsPointer(ObjectHandles::ObjectOf(value)); }
String TPointerElement::GetAsString() const { return IntToStr(GetAsInteger()); }
void TPointerElement::SetAsString(const String& value) {
  if (auto number = TryStrToLongInt(value)) SetAsInteger(*number);
}
TObject* TPointerElement::GetAsPointer() const { return ObjectHandles::ObjectOf(handle_); }
void TPointerElement::SetAsPointer(TObject* value) { handle_ = ObjectHandles::HandleOf(value); }
TTypeElement* TPointerElement::SelfCopy() const { return NamedCopy<TPointerElement>(*this, GetAsPointer()); }
TElement* TPointerElement::Get_Element() const { return ObjectAs<TElement>(GetAsPointer()); }
void TPointerElement::Set_Element(TElement* value) { SetAsPointer(value); }

// ---- TDateTimeElement ----------------------------------------------------------------------

TDateTimeElement::TDateTimeElement(TDateTime value) : value_(value) {}
TDateTimeElement::TDateTimeElement(const String& name, TDateTime value) : TDateTimeElement(value) { SetName(name); }

void TDateTimeElement::Publish(Publisher<TDateTimeElement>& p) {
  p.Property(u"Value", &TTypeElement::GetAsDateTime, &TTypeElement::SetAsDateTime);
}

TType TDateTimeElement::GetType() const { return TType::_DateTime; }
String TDateTimeElement::GetTypeAsString() const { return u"datetime"; }
String TDateTimeElement::GetAsISOString() const { return DateToISO8601(value_, true); }

void TDateTimeElement::SetAsISOString(const String& value) {
  TDateTime parsed = 0;
  if (TryISO8601ToDate(value, parsed, true)) value_ = parsed;
}

TDateTime TDateTimeElement::GetAsDateTime() const { return value_; }
void TDateTimeElement::SetAsDateTime(TDateTime value) { value_ = value; }

int32_t TDateTimeElement::GetAsInteger() const {
  if (auto days = TruncatedInto<int32_t>(value_)) return *days;
  throw ERangeError(u"Range check error");
}

void TDateTimeElement::SetAsInteger(int32_t value) { value_ = value; }
String TDateTimeElement::GetAsString() const { return DateTimeToStr(value_); }

void TDateTimeElement::SetAsString(const String& value) {
  TDateTime parsed = 0;
  if (TryISO8601ToDate(value, parsed, true) || TryStrToDateTime(value, parsed))
    value_ = parsed;
  else
    value_ = 0;
}

double TDateTimeElement::GetAsFloat() const { return value_; }
void TDateTimeElement::SetAsFloat(double value) { value_ = value; }
TTypeElement* TDateTimeElement::SelfCopy() const { return NamedCopy<TDateTimeElement>(*this, value_); }

}  // namespace veska
