#include "kernel/types/types_unit.h"

#include <gtest/gtest.h>

#include <memory>

#include "kernel/classes/registry.h"
#include "kernel/types/list_elements.h"
#include "kernel/types/type_elements.h"

namespace veska {
namespace {

TEST(StringElementIntegerList, ReadsTheWholeNumbersOfTheText) {
  TStringElement element(u"1 2, 3");
  std::unique_ptr<TIntegerListElement> list(element.CreateIntegerList());
  ASSERT_NE(list, nullptr);
  ASSERT_EQ(list->ElementsCount(), 3);
  EXPECT_EQ(list->GetInteger(0), 1);
  EXPECT_EQ(list->GetInteger(1), 2);
  EXPECT_EQ(list->GetInteger(2), 3);

  // Reading stops at the first item that is not a whole number.
  element.SetAsString(u"7;8 x 9");
  list.reset(element.CreateIntegerList());
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->ElementsCount(), 2);
}

TEST(StringElementIntegerList, TextWithoutANumberGivesNone) {
  for (StringView text : {u"", u"   ", u"abc", u"1.5"}) {
    TStringElement element{String(text)};
    EXPECT_EQ(element.CreateIntegerList(), nullptr) << ToUtf8(text);
  }
}

TEST(TypesUnit, RegistersEveryClassOfTheUnitOnce) {
  TVeskaClasses registry;
  registry.RegisterUnit(kTypesUnitClasses);
  registry.RegisterUnit(kTypesUnitClasses);
  EXPECT_EQ(registry.ElementsCount(), 14);
  for (StringView name :
       {u"TTypeTestElement", u"TTypeElement", u"TBooleanElement", u"TCharElement", u"TByteElement", u"TFloatElement",
        u"TDateTimeElement", u"TIntegerListElement", u"TStringElement", u"TIntegerElement", u"TPointerElement",
        u"TStringListElement", u"TPathElement", u"TPropertyList"}) {
    const ClassInfo* info = registry.GetClass(String(name));
    ASSERT_NE(info, nullptr) << ToUtf8(name);
    EXPECT_EQ(info->UnitName(), u"E_type");
  }
  // The last class registered is the current one.
  ASSERT_NE(registry.CurrentClass(), nullptr);
  EXPECT_EQ(registry.CurrentClass()->GetElementClassName(), u"TPropertyList");
}

}  // namespace
}  // namespace veska
