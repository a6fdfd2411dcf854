#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <tuple>
#include <vector>

#include "kernel/classes/registry.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/object_handles.h"
#include "kernel/types/type_elements.h"
#include "kernel/types/types_unit.h"

namespace veska {
namespace {

// Each row takes a new element of the class, which holds nothing, gives it the first text through
// AsString, writes the text into the view (if any) and reads a view of the element and its copy.
// Views a class does not support read 0, false or empty and ignore writes.  Text that does not
// parse is ignored, but a date-time takes it as 0.  A Boolean element takes "true" and "false" in
// any case and reads lower case; a string element takes a number other than 0, "true" and "ano"
// (Czech yes) in any case as true and writes upper case.  A byte element wraps text to the low
// byte but ignores integers and floats out of range.
TEST(ValueElements, EachViewConvertsAsItsClassSaysAndCopiesCarryTheValue) {
  static constexpr std::tuple<StringView, StringView, StringView, StringView, StringView, StringView> kRows[] = {
      {u"TBooleanElement", u"", u"AsString", u"True", u"AsBoolean", u"True"},
      {u"TBooleanElement", u"true", u"AsString", u"fAlSe", u"AsString", u"false"},
      {u"TBooleanElement", u"true", u"AsString", u"yes", u"AsString", u"true"},
      {u"TBooleanElement", u"true", u"AsByte", u"0", u"AsBoolean", u"False"},
      {u"TBooleanElement", u"", u"AsByte", u"9", u"AsByte", u"1"},
      {u"TBooleanElement", u"true", u"AsInteger", u"0", u"AsString", u"true"},
      {u"TCharElement", u"z", u"AsInteger", u"0", u"AsString", u"z"},
      {u"TCharElement", u"z", u"AsInteger", u"256", u"AsString", u"z"},
      {u"TCharElement", u"z", u"AsNativeInt", u"-65", u"AsString", u"z"},
      {u"TCharElement", u"z", u"AsString", u"", u"AsString", u"z"},
      {u"TCharElement", u"z", u"AsInteger", u"65", u"AsString", u"A"},
      {u"TCharElement", u"", u"AsString", u"čau", u"AsChar", u"č"},
      {u"TCharElement", u"", u"AsChar", u"\uFFFF", u"AsInteger", u"65535"},
      {u"TCharElement", u"", u"AsByte", u"255", u"AsByte", u"255"},
      {u"TByteElement", u"", u"AsString", u"300", u"AsByte", u"44"},
      {u"TByteElement", u"", u"AsString", u"-1", u"AsByte", u"255"},
      {u"TByteElement", u"5", u"AsInteger", u"-1", u"AsInteger", u"5"},
      {u"TByteElement", u"5", u"AsNativeInt", u"256", u"AsInteger", u"5"},
      {u"TByteElement", u"5", u"AsFloat", u"-0.5", u"AsString", u"0"},
      {u"TByteElement", u"5", u"AsFloat", u"255.9", u"AsFloat", u"255"},
      {u"TByteElement", u"5", u"AsFloat", u"256", u"AsString", u"5"},
      {u"TByteElement", u"5", u"AsFloat", u"-1", u"AsString", u"5"},
      {u"TByteElement", u"5", u"AsString", u"12abc", u"AsString", u"5"},
      {u"TByteElement", u"", u"AsChar", u"é", u"AsChar", u"é"},
      {u"TByteElement", u"", u"AsBoolean", u"True", u"AsByte", u"1"},
      {u"TByteElement", u"0", u"", u"", u"AsBoolean", u"False"},
      {u"TFloatElement", u"", u"AsFloat", u"1.5", u"AsString", u" 1.50000000000000E+0000"},
      {u"TFloatElement", u"", u"AsString", u"-2.5E-7", u"AsString", u"-2.50000000000000E-0007"},
      {u"TFloatElement", u" 1.50000000000000E+0000", u"", u"", u"AsFloat", u"1.5"},
      {u"TFloatElement", u"2.5", u"AsString", u"12abc", u"AsFloat", u"2.5"},
      {u"TFloatElement", u"", u"AsFloat", u"-2.7", u"AsInteger", u"-2"},
      {u"TFloatElement", u"", u"AsFloat", u"2.7", u"AsNativeInt", u"2"},
      {u"TFloatElement", u"", u"AsFloat", u"3e9", u"AsInteger", u"0"},
      {u"TFloatElement", u"", u"AsFloat", u"123.25", u"AsDateTime", u"123.25"},
      {u"TStringElement", u" 42 ", u"", u"", u"AsInteger", u"42"},
      {u"TStringElement", u"12abc", u"", u"", u"AsInteger", u"0"},
      {u"TStringElement", u"12abc", u"", u"", u"AsFloat", u"0"},
      {u"TStringElement", u"99999999999", u"", u"", u"AsNativeInt", u"0"},
      {u"TStringElement", u"", u"AsInteger", u"-7", u"AsString", u"-7"},
      {u"TStringElement", u"", u"AsFloat", u"1e20", u"AsString", u"1E20"},
      {u"TStringElement", u"", u"AsBoolean", u"True", u"AsString", u"TRUE"},
      {u"TStringElement", u"x", u"AsBoolean", u"False", u"AsString", u"FALSE"},
      {u"TStringElement", u"0.0", u"", u"", u"AsBoolean", u"False"},
      {u"TStringElement", u"2", u"", u"", u"AsBoolean", u"True"},
      {u"TStringElement", u"-0.5", u"", u"", u"AsBoolean", u"True"},
      {u"TStringElement", u"ano", u"", u"", u"AsBoolean", u"True"},
      {u"TStringElement", u"true", u"", u"", u"AsBoolean", u"True"},
      {u"TStringElement", u"x", u"", u"", u"AsBoolean", u"False"},
      {u"TStringElement", u"yes", u"", u"", u"AsBoolean", u"False"},
      {u"TStringElement", u"v", u"NameIsValue", u" a = b ", u"NameIsValue", u"a=b"},
      {u"TIntegerElement", u"300", u"", u"", u"AsByte", u"0"},
      {u"TIntegerElement", u"", u"AsByte", u"200", u"AsByte", u"200"},
      {u"TIntegerElement", u"", u"AsFloat", u"-2.9", u"AsString", u"-2"},
      {u"TIntegerElement", u"5", u"AsFloat", u"3e9", u"AsString", u"5"},
      {u"TIntegerElement", u"", u"AsString", u"2147483647", u"AsFloat", u"2147483647"},
      {u"TIntegerElement", u"5", u"AsString", u"2147483648", u"AsFloat", u"5"},
      {u"TIntegerElement", u"", u"AsBoolean", u"True", u"AsInteger", u"1"},
      {u"TIntegerElement", u"-3", u"", u"", u"AsBoolean", u"True"},
      {u"TIntegerElement", u"", u"AsISOString", u"42", u"Text", u"42"},
      {u"TDateTimeElement", u"", u"AsFloat", u"-1.75", u"AsInteger", u"-1"},
      {u"TDateTimeElement", u"", u"AsFloat", u"45000.99", u"AsNativeInt", u"45000"},
      {u"TDateTimeElement", u"", u"AsString", u"2.1.2021 8:30:00", u"AsISOString", u"2021-01-02T08:30:00.000Z"},
      {u"TDateTimeElement", u"2.1.2021 8:30:00", u"AsISOString", u"2.1.2021", u"AsString", u"2.1.2021 8:30:00"},
      {u"TDateTimeElement", u"", u"AsISOString", u"1999-12-31T23:00:00-01:00", u"AsString", u"1.1.2000"},
      {u"TDateTimeElement", u"", u"AsString", u"2020-03-01T12:00:00+02:00", u"AsString", u"1.3.2020 10:00:00"},
      {u"TDateTimeElement", u"2.1.2021 8:30:00", u"AsString", u"abc", u"AsDateTime", u"0"}};
  for (const auto& [class_name, first, view, text, read_view, expected] : kRows) {
    SCOPED_TRACE(ToUtf8(class_name) + " " + ToUtf8(first) + " " + ToUtf8(view) + " " + ToUtf8(text));
    const std::unique_ptr<TTypeElement> element(ObjectAs<TTypeElement>(CreateElementByName(class_name)));
    EXPECT_TRUE(!element->GetAsBoolean() && element->GetAsInteger() == 0);
    const String kind(class_name.substr(1, class_name.size() - 8));  // TByteElement: Byte
    EXPECT_EQ(element->GetPropertyStringByName(u"Typ") + u"|" + element->GetTypeAsString(),
              u"_" + kind + u"|" + LowerCase(kind));
    if (!first.empty()) element->SetAsString(String(first));
    if (!view.empty()) element->SetPropertyStringByName(view, String(text));
    EXPECT_EQ(element->GetPropertyStringByName(read_view), expected);
    const std::unique_ptr<TTypeElement> copy(element->SelfCopy());
    EXPECT_EQ(copy->ClassName() + u"|" + copy->GetName() + u"|" + copy->GetPropertyStringByName(read_view),
              element->ClassName() + u"|" + element->GetName() + u"|" + String(expected));
  }
}

// Out-of-range byte and date-time views raise, and floats that are no number are ignored.
TEST(ValueElements, RangeErrorsRaiseAndFloatsThatAreNoNumberAreIgnored) {
  EXPECT_THROW(TCharElement(u'\x0100').GetAsByte(), ERangeError);
  TByteElement byte(7);
  EXPECT_THROW(byte.SetAsChar(u'\x0100'), ERangeError);
  EXPECT_THROW(TDateTimeElement(1e12).GetAsInteger(), ERangeError);
  for (double ignored : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
    byte.SetAsFloat(ignored);
  }
  EXPECT_EQ(byte.GetAsByte(), 7) << "unchanged";
  EXPECT_EQ(TFloatElement(std::numeric_limits<double>::quiet_NaN()).GetAsInteger(), 0);
}

// A text without a value part sets only the value; an empty text or name part, or a separator
// beyond position 255, changes nothing.
TEST(StringElement, NameIsValueSetsNameAndValueOrOnlyTheValue) {
  TStringElement element(NameIsValueText{}, u"key=value");
  EXPECT_EQ(element.GetName() + u"|" + element.GetAsString(), u"key|value");
  element.SetNameIsValue(u"c=");
  for (const char16_t* ignored : {u"", u"=x"}) element.SetNameIsValue(ignored);
  EXPECT_THROW(element.SetNameIsValue(String(300, u'n') + u"=v"), ERangeError);
  EXPECT_EQ(element.GetNameIsValue(), u"key=c");
}

// The typed readers tell whether the whole text converted.
TEST(StringElement, TypedReadersReportWhetherTheTextConverted) {
  bool long_ok = false;
  bool double_ok = false;
  EXPECT_EQ(TStringElement(u"123").GetLongInt(long_ok) + TStringElement(u"2.25").GetDouble(double_ok), 125.25);
  EXPECT_TRUE(long_ok && double_ok);
  EXPECT_EQ(TStringElement(u"12x").GetLongInt(long_ok) + TStringElement(u"abc").GetDouble(double_ok), 0);
  EXPECT_FALSE(long_ok || double_ok);
}

// References travel as handle numbers: a number that names no live object reads as none.  A
// copy keeps the reference but not the class name beside it.
TEST(PointerElement, ReferencesTravelAsHandlesAndDeadOnesReadAsNone) {
  auto target = std::make_unique<TStringElement>(u"t", u"v");
  TIntegerElement number;
  number.SetAsPointer(target.get());
  TPointerElement element(u"p", target.get());
  element.aClassName = u"TStringElement";
  EXPECT_EQ(element.GetAsString(), IntToStr(ObjectHandles::HandleOf(target.get())));
  EXPECT_EQ(number.GetAsInteger(), element.GetAsInteger());
  const std::unique_ptr<TTypeElement> copy(element.SelfCopy());
  EXPECT_EQ(copy->GetName() + u"|" + copy->GetPropertyStringByName(u"aClassName"), u"p|");
  TPointerElement other;
  EXPECT_TRUE(other.SetPropertyStringByName(u"_Element", copy->GetAsString()));
  EXPECT_EQ(other.Get_Element(), target.get());
  target.reset();
  EXPECT_EQ(number.GetAsPointer(), nullptr);
  EXPECT_EQ(element.GetAsString(), u"0");
  element.SetAsString(u"2000000000");
  EXPECT_EQ(element.GetAsPointer(), nullptr);
  TPersistent plain;
  element.SetAsPointer(&plain);
  element.SetAsString(u"12abc");  // no number: ignored
  EXPECT_EQ(element.GetAsPointer(), &plain);
  EXPECT_EQ(element.Get_Element(), nullptr);  // not an element
  EXPECT_EQ(element.GetPropertyStringByName(u"Typ") + u"|" + element.GetTypeAsString(), u"_Pointer|pointer");
  EXPECT_EQ(TPointerElement::StaticClassInfo().FindProperty(u"Value"), nullptr);
}

// A copy of a path element is a plain string element.
TEST(PathElement, CopyIsAPlainStringElement) {
  TPathElement path(u"home", u"C:\\data\\model.vsk");
  const std::unique_ptr<TTypeElement> copy(path.SelfCopy());
  EXPECT_EQ(copy->ClassName() + u"|" + copy->GetName() + u"|" + copy->GetAsString(),
            u"TStringElement|home|C:\\data\\model.vsk");
  EXPECT_EQ(path.GetPropertyStringByName(u"Typ") + u"|" + path.GetTypeAsString(), u"_String|string");
}

// The base class holds no value: it publishes thirteen views, none of them stored, that read
// 0, false or empty and ignore writes.
TEST(TypeElement, BaseHasThirteenUnstoredViewsThatReadNothingAndIgnoreWrites) {
  TTypeElement element;
  element.SetName(u"probe");
  String names;
  String texts;
  for (int i = TOwnerElement::StaticClassInfo().PropCount(); i < GetPropCount(&element); ++i) {
    const String name = GetPropName(&element, i);
    EXPECT_FALSE(element.ClassType().Properties()[static_cast<std::size_t>(i)]->IsStored(element)) << ToUtf8(name);
    element.SetPropertyStringByName(name, u"1");
    names += name + u",";
    texts += element.GetPropertyStringByName(name) + u",";
  }
  EXPECT_EQ(names,
            u"Typ,TypeAsString,AsByte,AsInteger,AsNativeInt,AsChar,AsString,AsISOString,AsFloat,AsBoolean,"
            u"AsDateTime,Text,UpperName,");
  EXPECT_EQ(texts, u"_Other,,0,0,0," + String(1, u'\0') + u",,,0,False,0,,PROBE,");
  EXPECT_EQ(element.ClassType().FindProperty(u"AsChar")->Kind(), TTypeKind::tkWChar);
  element.SetAsPointer(&element);
  EXPECT_EQ(element.GetAsPointer(), nullptr);
  EXPECT_EQ(element.SelfCopy(), nullptr);
}

// The test element's three stored views of one type tag go through the by-name machinery; a
// number written as text is an ordinal.
TEST(TypeTestElement, EnumerationViewsGoThroughTheByNameMachinery) {
  TTypeTestElement element;
  element.SetTyps(u"_Float");
  EXPECT_EQ(element.GetTypi(), 3);
  element.SetTypi(7);
  EXPECT_EQ(element.GetTyps(), u"_DateTime");
  EXPECT_TRUE(element.SetPropertyStringByName(u"Typs", u"2"));
  EXPECT_EQ(element.GetPropertyStringByName(u"Typ") + element.GetPropertyStringByName(u"Typi"), u"_Byte2");
  for (const PropInfo* view : element.ClassType().Properties().last(3)) {
    EXPECT_TRUE(view->IsStored(element)) << ToUtf8(view->Name());
  }
}

TEST(TypesUnit, RegistersItsClassesOnceInUnitOrder) {
  TVeskaClasses registry;
  registry.RegisterUnit(kTypesUnitClasses);
  registry.RegisterUnit(kTypesUnitClasses);  // start-up run again registers nothing twice
  std::vector<String> by_id(static_cast<std::size_t>(registry.ElementsCount()));
  for (int i = 0; i < registry.ElementsCount(); ++i) {
    const auto* record = ObjectAs<TVeskaClass>(registry.Get(i));
    by_id.at(static_cast<std::size_t>(record->ID)) = record->GetName();
    EXPECT_EQ(record->GetUnit_Name(), u"E_type");
  }
  EXPECT_EQ(by_id, (std::vector<String>{u"TTypeTestElement", u"TTypeElement", u"TBooleanElement", u"TCharElement",
                                        u"TByteElement", u"TFloatElement", u"TDateTimeElement", u"TIntegerListElement",
                                        u"TStringElement", u"TIntegerElement", u"TPointerElement",
                                        u"TStringListElement", u"TPathElement", u"TPropertyList"}));
}

}  // namespace
}  // namespace veska
