#include <gtest/gtest.h>

#include <limits>
#include <memory>

#include "kernel/platform/date_time.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/object_handles.h"
#include "kernel/types/type_elements.h"

namespace veska {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

std::unique_ptr<TTypeElement> Copy(const TTypeElement& element) {
  return std::unique_ptr<TTypeElement>(element.SelfCopy());
}

TEST(BooleanElement, TextIsLowerCaseAndOnlyTrueOrFalseInAnyCaseIsTaken) {
  TBooleanElement element;
  EXPECT_EQ(element.GetAsString(), u"false");
  const std::pair<const char16_t*, bool> writes[] = {{u"True", true}, {u"yes", true}, {u"fAlSe", false}, {u"1", false}};
  for (const auto& [text, expected] : writes) {
    element.SetAsString(text);
    EXPECT_EQ(element.GetAsBoolean(), expected) << ToUtf8(text);
  }
  element.SetAsByte(0);
  EXPECT_FALSE(element.GetAsBoolean());
  element.SetAsByte(9);
  EXPECT_EQ(element.GetAsString(), u"true");
  EXPECT_EQ(element.GetAsByte(), 1);
  // Views the class does not support keep the base behaviour.
  EXPECT_EQ(element.GetAsInteger(), 0);
  element.SetAsInteger(0);
  EXPECT_TRUE(element.GetAsBoolean());
}

TEST(CharElement, IntegerWritesTakeOnlyCodesOneTo255AndByteReadsRaiseAbove255) {
  TCharElement element(u"c", u'z');
  element.SetAsInteger(0);
  element.SetAsInteger(256);
  element.SetAsNativeInt(-65);
  element.SetAsString(u"");
  EXPECT_EQ(element.GetAsChar(), u'z');
  element.SetAsInteger(65);
  EXPECT_EQ(element.GetAsString(), u"A");
  element.SetAsString(u"čau");
  EXPECT_EQ(element.GetAsChar(), u'č');

  element.SetAsChar(u'\xFFFF');
  EXPECT_EQ(element.GetAsInteger(), 65535);
  EXPECT_EQ(element.GetAsNativeInt(), 65535);
  EXPECT_THROW(element.GetAsByte(), ERangeError);
  element.SetAsByte(255);
  EXPECT_EQ(element.GetAsByte(), 255);
}

// Text wraps to the low byte while integer and float writes out of range are ignored.
TEST(ByteElement, TextWrapsWhileIntegerAndFloatIgnoreOutOfRange) {
  TByteElement element(5);
  element.SetAsString(u"300");
  EXPECT_EQ(element.GetAsByte(), 44);
  element.SetAsString(u"-1");
  EXPECT_EQ(element.GetAsByte(), 255);
  element.SetAsInteger(300);
  element.SetAsInteger(-1);
  element.SetAsNativeInt(256);
  EXPECT_EQ(element.GetAsInteger(), 255);

  element.SetAsFloat(-0.5);
  EXPECT_EQ(element.GetAsString(), u"0");
  element.SetAsFloat(7.99);
  for (double ignored : {256.0, -1.0, kNaN, std::numeric_limits<double>::infinity()}) element.SetAsFloat(ignored);
  EXPECT_EQ(element.GetAsFloat(), 7.0);

  element.SetAsChar(u'\x00E9');
  EXPECT_EQ(element.GetAsChar(), u'\x00E9');
  EXPECT_THROW(element.SetAsChar(u'\x0100'), ERangeError);
  EXPECT_EQ(element.GetAsByte(), 0xE9);
  element.SetAsBoolean(true);
  EXPECT_EQ(element.GetAsByte(), 1);
}

TEST(FloatElement, TextIsScientificAndIntegerTruncatesToZeroBeyond32Bits) {
  TFloatElement element(1.5);
  EXPECT_EQ(element.GetAsString(), u" 1.50000000000000E+0000");
  element.SetAsString(u"-2.5E-7");
  EXPECT_DOUBLE_EQ(element.GetAsFloat(), -2.5e-7);
  element.SetAsFloat(123.25);
  const String text = element.GetAsString();
  element.SetAsFloat(0);
  element.SetAsString(text);
  EXPECT_EQ(element.GetAsDateTime(), 123.25);

  const std::pair<double, int32_t> truncations[] = {{-2.7, -2}, {2.7, 2}, {3e9, 0}, {kNaN, 0}};
  for (const auto& [value, expected] : truncations) {
    element.SetAsFloat(value);
    EXPECT_EQ(element.GetAsInteger(), expected) << value;
    EXPECT_EQ(element.GetAsNativeInt(), expected) << value;
  }
}

TEST(StringElement, BooleanReadsNumbersTrueAndAnoAndWritesUpperCase) {
  TStringElement element;
  const std::pair<const char16_t*, bool> cases[] = {{u"0.0", false}, {u"2", true},    {u"-0.5", true},  {u"ano", true},
                                                    {u"Ano", true},  {u"TRUE", true}, {u"true", true},  {u"x", false},
                                                    {u"", false},    {u"yes", false}, {u"FALSE", false}};
  for (const auto& [text, expected] : cases) {
    element.SetAsString(text);
    EXPECT_EQ(element.GetAsBoolean(), expected) << ToUtf8(text);
  }
  // Written upper case, unlike the boolean element's "true".
  element.SetAsBoolean(true);
  EXPECT_EQ(element.GetAsString(), u"TRUE");
  element.SetAsBoolean(false);
  EXPECT_EQ(element.GetAsString(), u"FALSE");
}

TEST(StringElement, NumbersReadQuietlyAndWriteInTheGeneralForm) {
  TStringElement element(u" 42 ");
  EXPECT_EQ(element.GetAsInteger(), 42);
  element.SetAsString(u"12abc");
  EXPECT_EQ(element.GetAsInteger(), 0);
  EXPECT_EQ(element.GetAsFloat(), 0.0);
  element.SetAsString(u"99999999999");
  EXPECT_EQ(element.GetAsNativeInt(), 0);

  element.SetAsInteger(-7);
  EXPECT_EQ(element.GetAsString(), u"-7");
  element.SetAsFloat(1e20);
  EXPECT_EQ(element.GetAsString(), u"1E20");
}

TEST(StringElement, NameIsValueSplitsNameAndValue) {
  TStringElement element(u"old", u"v");
  element.SetNameIsValue(u" a = b ");
  EXPECT_EQ(element.GetNameIsValue(), u"a=b");

  // Without a value part only the value changes.
  element.SetNameIsValue(u"c=");
  EXPECT_EQ(element.GetNameIsValue(), u"a=c");

  // Empty text and an empty name part change nothing.
  element.SetNameIsValue(u"");
  element.SetNameIsValue(u"=x");
  EXPECT_EQ(element.GetNameIsValue(), u"a=c");

  // The splitter's limit holds: a separator beyond position 255 is a range error.
  EXPECT_THROW(element.SetNameIsValue(String(300, u'n') + u"=v"), ERangeError);
  EXPECT_EQ(element.GetNameIsValue(), u"a=c");

  TStringElement built(NameIsValueText{}, u"key=value");
  EXPECT_EQ(built.GetName() + u"|" + built.GetAsString(), u"key|value");
  EXPECT_TRUE(built.SetPropertyStringByName(u"NameIsValue", u"k2=v2"));
  EXPECT_EQ(built.GetPropertyStringByName(u"NameIsValue"), u"k2=v2");
}

TEST(StringElement, TypedReadersReportWhetherTheTextConverted) {
  TStringElement element(u"123");
  bool ok = false;
  EXPECT_EQ(element.GetLongInt(ok), 123);
  EXPECT_TRUE(ok);
  element.SetAsString(u"12x");
  EXPECT_EQ(element.GetLongInt(ok), 0);
  EXPECT_FALSE(ok);

  element.SetDouble(2.25);
  EXPECT_EQ(element.GetAsString(), u"2.25");
  element.SetAsString(u"abc");
  EXPECT_EQ(element.GetDouble(ok), 0.0);
  EXPECT_FALSE(ok);

  EXPECT_FALSE(element.GetBoolean(ok));
  EXPECT_TRUE(ok);
  element.SetLongInt(-5);
  EXPECT_TRUE(element.GetBoolean(ok));
}

TEST(PathElement, CopyIsAPlainStringElement) {
  TPathElement path(u"home", u"C:\\data\\model.vsk");
  std::unique_ptr<TTypeElement> copy = Copy(path);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->ClassType().Name(), u"TStringElement");
  EXPECT_EQ(copy->GetName(), u"home");
  EXPECT_EQ(copy->GetAsString(), u"C:\\data\\model.vsk");
}

TEST(IntegerElement, ConversionsIgnoreWhatDoesNotFit) {
  TIntegerElement element(300);
  EXPECT_EQ(element.GetAsByte(), 0);
  element.SetAsByte(200);
  EXPECT_EQ(element.GetAsByte(), 200);

  element.SetAsFloat(-2.9);
  element.SetAsFloat(3e9);
  element.SetAsFloat(kNaN);
  EXPECT_EQ(element.GetAsString(), u"-2");
  EXPECT_EQ(element.GetAsByte(), 0);
  element.SetAsString(u"2147483647");
  element.SetAsString(u"2147483648");
  EXPECT_EQ(element.GetAsFloat(), 2147483647.0);

  element.SetAsBoolean(true);
  EXPECT_EQ(element.GetAsInteger(), 1);
}

// References travel as handle numbers: a number that names no live object reads as none.
TEST(PointerViews, ReferencesTravelAsHandlesAndDeadOnesReadAsNone) {
  auto target = std::make_unique<TStringElement>(u"t", u"v");
  TIntegerElement number;
  number.SetAsPointer(target.get());
  EXPECT_EQ(number.GetAsPointer(), target.get());

  TPointerElement element(target.get());
  const String text = element.GetAsString();
  EXPECT_EQ(text, IntToStr(ObjectHandles::HandleOf(target.get())));
  EXPECT_EQ(number.GetAsInteger(), element.GetAsInteger());
  TPointerElement other;
  other.SetAsString(text);
  EXPECT_EQ(other.Get_Element(), target.get());
  EXPECT_TRUE(other.SetPropertyStringByName(u"_Element", text));

  target.reset();
  EXPECT_EQ(number.GetAsPointer(), nullptr);
  EXPECT_EQ(element.GetAsPointer(), nullptr);
  EXPECT_EQ(element.GetAsString(), u"0");
  element.SetAsInteger(2'000'000'000);
  EXPECT_EQ(element.GetAsPointer(), nullptr);

  TPersistent plain;
  element.SetAsPointer(&plain);
  EXPECT_EQ(element.GetAsPointer(), &plain);
  EXPECT_EQ(element.Get_Element(), nullptr);  // not an element
}

TEST(PointerElement, CopyKeepsTheReferenceButNotTheClassName) {
  TStringElement target;
  TPointerElement element(u"p", &target);
  element.aClassName = u"TStringElement";
  auto copy = Copy(element);
  auto* pointer = dynamic_cast<TPointerElement*>(copy.get());
  ASSERT_NE(pointer, nullptr);
  EXPECT_EQ(pointer->GetName(), u"p");
  EXPECT_EQ(pointer->GetAsPointer(), &target);
  EXPECT_EQ(pointer->aClassName, u"");
  EXPECT_EQ(TPointerElement::StaticClassInfo().FindProperty(u"Value"), nullptr);
}

TEST(DateTimeElement, TextParsesIsoThenLocaleElseZero) {
  TDateTimeElement element(45000.5);
  element.SetAsString(u"2020-03-01T12:00:00+02:00");
  EXPECT_EQ(element.GetAsDateTime(), EncodeDateTime(2020, 3, 1, 10, 0, 0, 0));
  element.SetAsString(u"2.1.2021 8:30:00");
  EXPECT_EQ(element.GetAsString(), u"2.1.2021 8:30:00");

  // The ISO view alone leaves the value unchanged on a text it cannot parse.
  EXPECT_EQ(element.GetAsISOString(), u"2021-01-02T08:30:00.000Z");
  element.SetAsISOString(u"2.1.2021");
  EXPECT_EQ(element.GetAsISOString(), u"2021-01-02T08:30:00.000Z");
  element.SetAsISOString(u"1999-12-31T23:00:00-01:00");
  EXPECT_EQ(element.GetAsDateTime(), EncodeDateTime(2000, 1, 1, 0, 0, 0, 0));
}

TEST(DateTimeElement, IntegerTruncatesAndRaisesBeyond32Bits) {
  TDateTimeElement element(-1.75);
  EXPECT_EQ(element.GetAsInteger(), -1);
  element.SetAsFloat(45000.99);
  EXPECT_EQ(element.GetAsNativeInt(), 45000);
  element.SetAsFloat(1e12);
  EXPECT_THROW(element.GetAsInteger(), ERangeError);
}

TEST(ValueElements, CopiesCarryValueAndNameAndVirtualConstructorsLeaveItEmpty) {
  const std::shared_ptr<TTypeElement> elements[] = {
      std::make_shared<TBooleanElement>(u"b", true),     std::make_shared<TCharElement>(u"c", u'x'),
      std::make_shared<TByteElement>(u"y", 200),         std::make_shared<TFloatElement>(u"f", 2.5),
      std::make_shared<TStringElement>(u"s", u"text"),   std::make_shared<TIntegerElement>(u"i", -9),
      std::make_shared<TDateTimeElement>(u"d", 44000.25)};
  for (const auto& element : elements) {
    const ClassInfo& info = element->ClassType();
    SCOPED_TRACE(ToUtf8(info.Name()));
    auto copy = Copy(*element);
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(&copy->ClassType(), &info);
    EXPECT_EQ(copy->GetName(), element->GetName());
    EXPECT_EQ(copy->GetPropertyStringByName(u"Value"), element->GetPropertyStringByName(u"Value"));

    std::unique_ptr<TObject> object(info.Create());
    auto* created = dynamic_cast<TTypeElement*>(object.get());
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(created->GetAsInteger(), 0);
    EXPECT_FALSE(created->GetAsBoolean());
    ASSERT_NE(info.FindProperty(u"Value"), nullptr);
  }
}

// Text that does not parse is ignored by every string setter; only the date-time element, by
// design, takes it as 0.
TEST(ValueElements, TextThatDoesNotParseLeavesTheValueExceptForTheDateTime) {
  TNameElement target;
  TPointerElement pointer;
  pointer.SetAsPointer(&target);
  TBooleanElement boolean(true);
  TCharElement character(u"c", u'q');
  TByteElement byte(7);
  TFloatElement floating(2.5);
  TIntegerElement integer(42);
  TTypeElement* const keeping[] = {&pointer, &boolean, &character, &byte, &floating, &integer};
  for (TTypeElement* element : keeping) {
    const String before = element->GetAsString();
    for (StringView junk : {u"abc", u"", u"12abc"}) {
      if (element == &character && !junk.empty()) continue;  // any first character is a character
      element->SetAsString(String(junk));
      EXPECT_EQ(element->GetAsString(), before) << ToUtf8(element->ClassName()) << " '" << ToUtf8(junk) << "'";
    }
  }
  EXPECT_EQ(pointer.GetAsPointer(), &target);
  TDateTimeElement date_time(45000.25);
  date_time.SetAsString(u"abc");
  EXPECT_EQ(date_time.GetAsDateTime(), 0);
}

}  // namespace
}  // namespace veska
