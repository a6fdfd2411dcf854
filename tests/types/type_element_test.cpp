#include <gtest/gtest.h>

#include <memory>

#include "kernel/types/type_elements.h"

namespace veska {
namespace {

TEST(TypeElement, BaseHasNoValueAndIgnoresWrites) {
  TTypeElement element;
  element.SetName(u"probe");
  element.SetAsInteger(5);
  element.SetAsString(u"text");
  element.SetAsFloat(2.5);
  element.SetAsBoolean(true);
  element.SetAsChar(u'x');
  element.SetAsByte(7);
  element.SetAsDateTime(100);
  element.SetAsISOString(u"2020-01-01");
  element.SetAsPointer(&element);

  EXPECT_EQ(element.GetType(), TType::_Other);
  EXPECT_EQ(element.GetPropertyStringByName(u"Typ"), u"_Other");
  EXPECT_EQ(element.GetTypeAsString(), u"");
  EXPECT_EQ(element.GetAsInteger(), 0);
  EXPECT_EQ(element.GetAsNativeInt(), 0);
  EXPECT_EQ(element.GetAsString(), u"");
  EXPECT_EQ(element.GetAsISOString(), u"");
  EXPECT_EQ(element.GetAsFloat(), 0.0);
  EXPECT_FALSE(element.GetAsBoolean());
  EXPECT_EQ(element.GetAsChar(), u'\0');
  EXPECT_EQ(element.GetAsByte(), 0);
  EXPECT_EQ(element.GetAsDateTime(), 0.0);
  EXPECT_EQ(element.GetAsPointer(), nullptr);
  EXPECT_EQ(element.GetUpperName(), u"PROBE");
  EXPECT_EQ(element.SelfCopy(), nullptr);
}

TEST(TypeElement, PublishesThirteenViewsNoneOfThemStored) {
  const ClassInfo& base = TOwnerElement::StaticClassInfo();
  const ClassInfo& info = TTypeElement::StaticClassInfo();
  const std::vector<String> expected = {u"Typ",        u"TypeAsString", u"AsByte",      u"AsInteger", u"AsNativeInt",
                                        u"AsChar",     u"AsString",     u"AsISOString", u"AsFloat",   u"AsBoolean",
                                        u"AsDateTime", u"Text",         u"UpperName"};
  ASSERT_EQ(info.PropCount(), base.PropCount() + static_cast<int>(expected.size()));
  TTypeElement element;
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const PropInfo* property = info.Properties()[static_cast<std::size_t>(base.PropCount()) + i];
    EXPECT_EQ(property->Name(), expected[i]);
    EXPECT_FALSE(property->IsStored(element)) << ToUtf8(property->Name());
  }
  EXPECT_EQ(info.FindProperty(u"AsChar")->Kind(), TTypeKind::tkWChar);
  EXPECT_FALSE(info.FindProperty(u"UpperName")->CanWrite());
}

TEST(TypeElement, TextAndIsoStringViewsReachTheValueByName) {
  TIntegerElement number(u"n", 3);
  EXPECT_TRUE(number.SetPropertyStringByName(u"Text", u"41"));
  EXPECT_EQ(number.GetAsInteger(), 41);
  EXPECT_TRUE(number.SetPropertyStringByName(u"AsISOString", u"42"));
  EXPECT_EQ(number.GetPropertyStringByName(u"AsISOString"), u"42");
  EXPECT_EQ(number.GetPropertyStringByName(u"TypeAsString"), u"integer");
  EXPECT_EQ(number.GetPropertyStringByName(u"Typ"), u"_Integer");
}

TEST(TypeTestElement, EnumerationViewsGoThroughTheByNameMachinery) {
  TTypeTestElement element;
  EXPECT_EQ(element.Typ, TType::_Boolean);

  element.SetTyps(u"_Float");
  EXPECT_EQ(element.Typ, TType::_Float);
  EXPECT_EQ(element.GetTypi(), 3);

  element.SetTypi(7);
  EXPECT_EQ(element.GetTyps(), u"_DateTime");
  // A number written as text is an ordinal.
  element.SetTyps(u"2");
  EXPECT_EQ(element.Typ, TType::_Byte);

  // The same, one level further out: the published Typs and Typi by name.
  EXPECT_TRUE(element.SetPropertyStringByName(u"Typs", u"_Pointer"));
  EXPECT_EQ(element.GetPropertyStringByName(u"Typi"), u"6");
  EXPECT_TRUE(element.SetPropertyStringByName(u"Typi", u"8"));
  EXPECT_EQ(element.GetPropertyStringByName(u"Typs"), u"_Other");

  for (StringView name : {u"Typ", u"Typi", u"Typs"}) {
    const PropInfo* property = TTypeTestElement::StaticClassInfo().FindProperty(name);
    ASSERT_NE(property, nullptr);
    EXPECT_TRUE(property->IsStored(element));
  }
}

}  // namespace
}  // namespace veska
