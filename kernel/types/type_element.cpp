#include "kernel/types/type_element.h"

namespace veska {

void TTypeElement::Publish(Publisher<TTypeElement>& p) {
  p.Property(u"Typ", &TTypeElement::GetType).Stored(false);
  p.Property(u"TypeAsString", &TTypeElement::GetTypeAsString).Stored(false);
  p.Property(u"AsByte", &TTypeElement::GetAsByte, &TTypeElement::SetAsByte).Stored(false);
  p.Property(u"AsInteger", &TTypeElement::GetAsInteger, &TTypeElement::SetAsInteger).Stored(false);
  p.Property(u"AsNativeInt", &TTypeElement::GetAsNativeInt, &TTypeElement::SetAsNativeInt).Stored(false);
  p.Property(u"AsChar", &TTypeElement::GetAsChar, &TTypeElement::SetAsChar).Stored(false);
  p.Property(u"AsString", &TTypeElement::GetAsString, &TTypeElement::SetAsString).Stored(false);
  p.Property(u"AsISOString", &TTypeElement::GetAsISOString, &TTypeElement::SetAsISOString).Stored(false);
  p.Property(u"AsFloat", &TTypeElement::GetAsFloat, &TTypeElement::SetAsFloat).Stored(false);
  p.Property(u"AsBoolean", &TTypeElement::GetAsBoolean, &TTypeElement::SetAsBoolean).Stored(false);
  p.Property(u"AsDateTime", &TTypeElement::GetAsDateTime, &TTypeElement::SetAsDateTime).Stored(false);
  p.Property(u"Text", &TTypeElement::GetAsString, &TTypeElement::SetAsString).Stored(false);
  p.Property(u"UpperName", &TTypeElement::GetUpperName).Stored(false);
}

TType TTypeElement::GetType() const { return TType::_Other; }
String TTypeElement::GetTypeAsString() const { return {}; }
String TTypeElement::GetAsISOString() const { return GetAsString(); }
void TTypeElement::SetAsISOString(const String& value) { SetAsString(value); }
TDateTime TTypeElement::GetAsDateTime() const { return 0; }
void TTypeElement::SetAsDateTime(TDateTime) {}
uint8_t TTypeElement::GetAsByte() const { return 0; }
void TTypeElement::SetAsByte(uint8_t) {}
int32_t TTypeElement::GetAsInteger() const { return 0; }
void TTypeElement::SetAsInteger(int32_t) {}
// The native view is the integer view widened: a class that converts to and from integers gets
// it with no code of its own.
NativeInt TTypeElement::GetAsNativeInt() const { return GetAsInteger(); }
void TTypeElement::SetAsNativeInt(NativeInt value) { SetAsInteger(value); }
char16_t TTypeElement::GetAsChar() const { return 0; }
void TTypeElement::SetAsChar(char16_t) {}
String TTypeElement::GetAsString() const { return {}; }
void TTypeElement::SetAsString(const String&) {}
double TTypeElement::GetAsFloat() const { return 0; }
void TTypeElement::SetAsFloat(double) {}
bool TTypeElement::GetAsBoolean() const { return false; }
void TTypeElement::SetAsBoolean(bool) {}
TObject* TTypeElement::GetAsPointer() const { return nullptr; }
void TTypeElement::SetAsPointer(TObject*) {}
String TTypeElement::GetUpperName() const { return UpperCase(GetName()); }
TTypeElement* TTypeElement::SelfCopy() const { return nullptr; }

void TTypeTestElement::Publish(Publisher<TTypeTestElement>& p) {
  p.Property(u"Typ", &TTypeTestElement::Typ, &TTypeTestElement::SetTyp);
  p.Property(u"Typi", &TTypeTestElement::GetTypi, &TTypeTestElement::SetTypi);
  p.Property(u"Typs", &TTypeTestElement::GetTyps, &TTypeTestElement::SetTyps);
}

void TTypeTestElement::SetTyp(TType value) { Typ = value; }

int32_t TTypeTestElement::GetTypi() const { return static_cast<int32_t>(Typ); }

// The ordinal is taken as it comes, as the enumeration's one-byte storage holds it.
void TTypeTestElement::SetTypi(int32_t value) { SetTyp(static_cast<TType>(static_cast<uint8_t>(value))); }

String TTypeTestElement::GetTyps() const { return GetPropertyStringByName(u"Typ"); }

void TTypeTestElement::SetTyps(const String& value) { SetPropertyStringByName(u"Typ", value); }

}  // namespace veska
