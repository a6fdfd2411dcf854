#include "kernel/types/list_elements.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <utility>

#include "kernel/classes/registry.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/exceptions.h"
#include "kernel/text/line_reader.h"
#include "kernel/text/string_numbers.h"
#include "kernel/text/string_tokens.h"

namespace veska {

namespace {

// What the list reads from a member that is not a typed value element: nothing.
String NameOf(const TElement* member) { return member != nullptr ? member->GetName() : String(); }

String ValueOf(TElement* member) {
  const auto* typed = ObjectAs<TTypeElement>(member);
  return typed != nullptr ? typed->GetAsString() : String();
}

void SetValueOf(TElement* member, const String& value) {
  if (auto* typed = ObjectAs<TTypeElement>(member)) typed->SetAsString(value);
}

// Calls add with each part of the text as StringAsTwoParams splits it, again and again on its
// second part: the part before the first separator, trimmed, then the parts of the trimmed rest.
// An empty text has no part; blanks alone after a separator add none.  Each call sees only the
// text up to its separator, so that a long text costs no copy of its rest per part; the results
// and the range check of the separator's position are those of a call on the whole rest.
template <class AddPart>
void ForEachPart(StringView text, char16_t separator, AddPart add) {
  // The blanks that the trimming of StringAsTwoParams (BezVnejsichMezer) removes.
  constexpr StringView kBlanks(u"\0 ", 2);
  StringView rest = text;
  while (!rest.empty()) {
    const std::size_t end = rest.find(separator);
    String part;
    String unused;
    StringAsTwoParams(end == StringView::npos ? rest : rest.substr(0, end + 1), separator, part, unused);
    add(part);
    if (end == StringView::npos) break;
    rest.remove_prefix(end + 1);
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
  }
}

// The text of each member, in index order, joined by the separator.
template <class MemberText>
String JoinMembers(TEntity& entity, char16_t separator, MemberText text) {
  String joined;
  for (int i = 0; i < entity.ElementsCount(); ++i) {
    if (i > 0) joined += separator;
    joined += text(entity.Get(i));
  }
  return joined;
}

String NameIsValueOf(TElement* member) { return NameOf(member) + u"=" + ValueOf(member); }

// The platform's file test: true for a file, false for a directory or nothing.  Devices and
// pipes count as missing too, so that loading a list never waits on an endless source.
bool FileExists(const String& file_name) {
  if (file_name.empty() || file_name.find(u'\0') != String::npos) return false;
  std::error_code error;
  return std::filesystem::is_regular_file(std::filesystem::path(ToUtf8(file_name)), error);
}

[[noreturn]] void RaiseRangeError() { throw ERangeError(u"Range check error"); }

}  // namespace

// --- TStringListElement ----------------------------------------------------------------------

void TStringListElement::Publish(Publisher<TStringListElement>& p) {
  using T = TStringListElement;
  p.WriteOnly(u"NextValue", &T::AddString).Stored(false);
  p.WriteOnly(u"NextName", &T::AddName).Stored(false);
  p.WriteOnly(u"NextNameIsValue", &T::AddNameIsValue).Stored(false);
  p.WriteOnly(u"NextStringList", &T::AddStringList).Stored(false);
  p.Property(u"NamesString", &T::GetNamesString, &T::SetNamesString).Stored(false);
  p.Property(u"ValuesString", &T::GetValuesString, &T::SetValuesString).Stored(false);
  p.Property(u"NameIsValueString", &T::GetNameIsValueString, &T::SetNameIsValueString).Stored(false);
  p.WriteOnly(u"LoadFromFile", &T::AddFile).Stored(false);
  p.WriteOnly(u"SaveToFile", &T::IntoFile).Stored(false);
  p.Property(u"Simple", &T::Simple, &T::SetSimple);
  p.Property(u"Separator", &T::Separator, &T::SetSeparator);
}

TStringListElement::TStringListElement(const TStringList* Strings) {
  if (Strings != nullptr) AddLines(*Strings);
}

char16_t TStringListElement::ActualSeparator() {
  if (Separator == 0) Separator = u',';
  return Separator;
}

TStringElement* TStringListElement::GetSElems(int Index) { return ObjectAs<TStringElement>(Get(Index)); }

void TStringListElement::PutSElems(int Index, TStringElement* Element) { Put(Index, Element); }

String TStringListElement::GetString(int Index) { return ValueOf(Get(Index)); }

void TStringListElement::PutString(int Index, const String& Value) { SetValueOf(Get(Index), Value); }

String TStringListElement::GetNameAtIndex(int Index) { return NameOf(Get(Index)); }

void TStringListElement::PutName(int Index, const String& Value) {
  if (TElement* member = Get(Index)) member->SetName(Value);
}

String TStringListElement::GetUpperName(int Index) { return UpperCase(GetNameAtIndex(Index)); }

TStringElement* TStringListElement::GetStringElementByName(const String& Name) {
  int index = -1;
  return GetStringElementByName(Name, index);
}

TStringElement* TStringListElement::GetStringElementByName(const String& Name, int& Index) {
  const String wanted = UpperCase(Name);
  for (int i = 0; i < ElementsCount(); ++i) {
    auto* entry = ObjectAs<TStringElement>(Get(i));
    if (entry != nullptr && entry->GetUpperName() == wanted) {
      Index = i;
      return entry;
    }
  }
  Index = -1;
  return nullptr;
}

String TStringListElement::GetStringByName(const String& Name) {
  const TStringElement* entry = GetStringElementByName(Name);
  return entry != nullptr ? entry->GetAsString() : String();
}

int32_t TStringListElement::GetIntegerByName(const String& Name) {
  const TStringElement* entry = GetStringElementByName(Name);
  bool ok = false;
  return entry != nullptr ? entry->GetLongInt(ok) : 0;
}

bool TStringListElement::GetBooleanByName(const String& Name) {
  const TStringElement* entry = GetStringElementByName(Name);
  bool ok = false;
  return entry != nullptr && entry->GetBoolean(ok);
}

double TStringListElement::GetDoubleByName(const String& Name) {
  const TStringElement* entry = GetStringElementByName(Name);
  bool ok = false;
  return entry != nullptr ? entry->GetDouble(ok) : 0;
}

// The entry of that name, appended with an empty value when there is none.
TStringElement* TStringListElement::EntryForName(const String& Name) {
  TStringElement* entry = GetStringElementByName(Name);
  return entry != nullptr ? entry : AddNameString(Name, String());
}

void TStringListElement::SetStringByName(const String& Name, const String& Value) {
  EntryForName(Name)->SetAsString(Value);
}

void TStringListElement::SetIntegerByName(const String& Name, int32_t Value) { EntryForName(Name)->SetLongInt(Value); }

void TStringListElement::SetDoubleByName(const String& Name, double Value) { EntryForName(Name)->SetDouble(Value); }

void TStringListElement::AddString(const String& Value) { AddNameString(String(), Value); }

TStringElement* TStringListElement::AddNameString(const String& Name, const String& Value) {
  auto* entry = new TStringElement(Name, Value);
  AddElement(entry);
  return entry;
}

void TStringListElement::AddName(const String& Name) { AddNameString(Name, String()); }

void TStringListElement::AddNameIsValue(const String& Text) {
  if (Text.find(u'=') == String::npos) return;
  auto entry = std::make_unique<TStringElement>();
  entry->SetNameIsValue(Text);  // may raise (an "=" beyond position 255); nothing is added then
  AddElement(entry.release());
}

void TStringListElement::AddLines(const TStringList& Strings) {
  for (int i = 0; i < Strings.Count(); ++i) {
    const String& line = Strings.Get(i);
    if (line.empty()) continue;
    if (line.find(u'=') != String::npos) {
      AddNameIsValue(line);
    } else {
      AddName(line);
    }
  }
}

void TStringListElement::AddStringList(TStringList* Strings) {
  if (Strings != nullptr) AddLines(*Strings);
}

void TStringListElement::AddFile(const String& FileName) {
  if (!FileExists(FileName)) return;
  TStringList lines;
  lines.LoadFromFile(FileName);
  AddLines(lines);
}

String TStringListElement::GetNamesString() { return JoinMembers(*this, ActualSeparator(), NameOf); }

String TStringListElement::GetValuesString() { return JoinMembers(*this, ActualSeparator(), ValueOf); }

String TStringListElement::GetNameIsValueString() { return JoinMembers(*this, ActualSeparator(), NameIsValueOf); }

void TStringListElement::SetNamesString(const String& Text) {
  ForEachPart(Text, ActualSeparator(), [this](const String& part) { AddName(part); });
}

void TStringListElement::SetNameIsValueString(const String& Text) {
  ForEachPart(Text, ActualSeparator(), [this](const String& part) { AddNameIsValue(part); });
}

void TStringListElement::SetValuesString(const String& Text) {
  int index = 0;
  ForEachPart(Text, ActualSeparator(), [this, &index](const String& part) {
    if (index < ElementsCount()) {
      PutString(index, part);
    } else {
      AddString(part);
    }
    ++index;
  });
}

void TStringListElement::IntoFile(const String& FileName) {
  TStringList lines;
  for (int i = 0; i < ElementsCount(); ++i) {
    TElement* member = Get(i);
    lines.Add(Simple ? NameOf(member) : NameIsValueOf(member));
  }
  lines.SaveToFile(FileName);
}

std::unique_ptr<TStringList> TStringListElement::CreateStringList() {
  auto lines = std::make_unique<TStringList>();
  for (int i = 0; i < ElementsCount(); ++i) lines->Add(GetString(i));
  return lines;
}

TStringListElement* TStringListElement::MakeSelfCopy() {
  auto copy = std::make_unique<TStringListElement>();
  copy->SetName(GetName());
  for (int i = 0; i < ElementsCount(); ++i) {
    if (TElement* entry = CreateElementCopy(Get(i))) copy->AddElement(entry);
  }
  return copy.release();
}

void TStringListElement::ParamToNames() {
  for (int i = 0; i < ElementsCount(); ++i) {
    auto* entry = ObjectAs<TTypeElement>(Get(i));
    if (entry == nullptr) continue;
    String name;
    String value;
    if (StringAsParameter(entry->GetAsString(), name, value)) {
      entry->SetName(name);
      entry->SetAsString(value);
    }
  }
}

String TStringListElement::GetPropertyStringByName(StringView Name) const {
  String text = inherited::GetPropertyStringByName(Name);
  // The entity's member access is not const; looking an entry up changes nothing.
  if (text.empty()) text = const_cast<TStringListElement*>(this)->GetStringByName(String(Name));
  return text;
}

bool TStringListElement::SetPropertyStringByName(StringView Name, const String& Value) {
  const int index = GetPropIndex(this, Name);
  if (index >= 0) {
    SetPropString(this, index, Value);
  } else {
    SetStringByName(String(Name), Value);
  }
  return true;
}

// --- TPropertyList ---------------------------------------------------------------------------

void TPropertyList::Publish(Publisher<TPropertyList>& p) {
  p.WriteOnly(u"Element", &TPropertyList::SetByElement);
  p.Property(u"Catenation", &TPropertyList::GetCatenation);
  p.Field(u"Delimiter", &TPropertyList::Delimiter);
}

void TPropertyList::SetByElement(TElement* Element) {
  if (Element == nullptr) return;
  for (int i = 0; i < ElementsCount(); ++i) {
    TElement* entry = Get(i);
    const String name = NameOf(entry);
    if (name.empty()) RaiseRangeError();
    const bool negated = name.front() == u'-';
    String text = Element->GetPropertyStringByName(negated ? name.substr(1, 255) : name);
    if (negated) {
      if (text.empty()) RaiseRangeError();
      if (text.front() == u'-') {
        text.erase(0, 1);
      } else {
        text.insert(0, 1, u'-');
      }
    }
    SetValueOf(entry, text);
  }
}

String TPropertyList::GetCatenation() {
  String catenation;
  for (int i = 0; i < ElementsCount(); ++i) {
    if (i > 0) catenation += Delimiter;
    catenation += GetString(i);
  }
  return catenation;
}

// --- TIntegerListElement ---------------------------------------------------------------------

void TIntegerListElement::Publish(Publisher<TIntegerListElement>& p) {
  p.WriteOnly(u"ValuesString", &TIntegerListElement::SetValuesString).Stored(false);
}

int32_t TIntegerListElement::GetInteger(int Index) {
  const auto* typed = ObjectAs<TTypeElement>(Get(Index));
  return typed != nullptr ? typed->GetAsInteger() : 0;
}

void TIntegerListElement::PutInteger(int Index, int32_t Value) {
  if (auto* typed = ObjectAs<TTypeElement>(Get(Index))) typed->SetAsInteger(Value);
}

bool TIntegerListElement::ValueExists(int32_t Value) {
  for (int i = 0; i < ElementsCount(); ++i) {
    if (GetInteger(i) == Value) return true;
  }
  return false;
}

void TIntegerListElement::AddInteger(int32_t Value) {
  if (!Sorted) {
    AddElement(new TIntegerElement(Value));
    return;
  }
  if (!Duplicates && ValueExists(Value)) return;
  for (int i = 0; i < ElementsCount(); ++i) {
    if (GetInteger(i) > Value) {
      InsertElement(i, new TIntegerElement(Value));
      return;
    }
  }
  AddElement(new TIntegerElement(Value));
}

void TIntegerListElement::SetValuesString(const String& Text) {
  ForEachPart(Text, u',', [this](const String& part) {
    // A part that is not a whole number is skipped; the other parts still count.
    if (const auto value = TryStrToLongInt(part)) AddInteger(*value);
  });
}

TIntegerListElement* CreateIntegerListElementFromString(const String& Text) {
  auto list = std::make_unique<TIntegerListElement>();
  TCtiRadekClass reader(Text);
  while (!reader.DosloKChybe()) {
    const int32_t value = reader.DejLongInt();
    if (!reader.DosloKChybe()) list->AddInteger(value);
  }
  if (list->ElementsCount() == 0) return nullptr;
  return list.release();
}

}  // namespace veska
