#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>

#include "kernel/classes/registry.h"
#include "kernel/elements/sorted_search.h"
#include "kernel/tools/recursor.h"
#include "kernel/tools/sort_elements.h"
#include "kernel/tools/sorted_entity.h"
#include "kernel/tools/tools_unit.h"
#include "kernel/types/list_elements.h"
#include "tests/support/elements_members.h"

namespace veska {
namespace {

using test::Named;

String Names(TEntity& entity) {
  String names;
  for (TElement* member : test::Members(entity)) names += member->GetName() + u" ";
  return names;
}

TEST(SortedEntity, KeepsNamesInOrderIgnoringCaseAndNumbersItsMembers) {
  TSortedEntity entity;
  EXPECT_EQ(entity.FindElementName(u"a"), nullptr);
  for (StringView name : {u"b", u"a", u"c", u"B", u"c"}) Named<TStringEntity>(String(name), {&entity});
  EXPECT_EQ(Names(entity), u"a b B c c ");  // B right after b; c equal to the last appends
  EXPECT_EQ(entity.Get(1)->ID, 0);
  EXPECT_EQ(entity.Get(4)->ID, 4);
  EXPECT_EQ(entity.FindElementName(u"C"), entity.Get(4));  // the last, which the search meets first

  entity.SetPropertyStringByName(u"NoDuplicates", u"True");
  entity.AddElement(entity.Get(0));       // the same element: kept once
  Named<TStringEntity>(u"a", {&entity});  // another of the same name: kept
  EXPECT_EQ(Names(entity), u"a a b B c c ");
}

TEST(SortedEntity, ByPropertySortsByItsTextAndKeysOfElementsWithoutItAreEmpty) {
  TSortedByPropertyEntity entity;
  entity.SetPropertyStringByName(u"PropertyName", u"Value");
  for (StringView value : {u"m", u"K", u"z"}) {
    auto* member = Named<TStringEntity>(String(value));
    member->Value = String(value);
    entity.AddElement(member);
  }
  EXPECT_EQ(Names(entity), u"K m z ");
  EXPECT_EQ(entity.FindElementByProperty(u"k"), entity.Get(0));
  Named<TOwnerElement>(u"no value", {&entity});  // the empty key sorts first
  EXPECT_EQ(entity.Get(0)->GetName(), u"no value");
}

// An equal key met at a midpoint takes the new item directly after it, not after its run.
TEST(SortedSearch, StopsAtTheFirstEqualItemItMeets) {
  const std::vector<int> items{1, 2, 2, 2, 3};
  int insert_index = 0;
  const auto compare_with = [&](int key) { return [&items, key](int i) { return key - items[i]; }; };
  EXPECT_EQ(FindSortedIndex(5, compare_with(2), insert_index), 2);
  EXPECT_EQ(insert_index, 3);
  EXPECT_EQ(FindSortedIndex(5, compare_with(3), insert_index), 4);
  EXPECT_EQ(insert_index, -1);
  EXPECT_EQ(FindSortedIndex(5, compare_with(1), insert_index), 0);
  EXPECT_EQ(insert_index, 1);
  EXPECT_EQ(FindSortedIndex(0, compare_with(1), insert_index), -1);
  EXPECT_EQ(insert_index, -1);
}

// The fast insertion gives exactly the order of the literal insertion into a flat list.
TEST(SortedSearch, BinaryInsertionOrderEqualsTheLiteralInsertion) {
  std::mt19937 random(7);
  for (const int shape : {2, 10, 1000, 0, -1}) {  // keys of so many values; 0: ascending; -1: descending
    std::vector<std::pair<int, int>> items;       // key, identity
    for (int i = 0; i < 3000; ++i) {
      const int key = shape > 0 ? int(random() % unsigned(shape)) : shape == 0 ? i : -i;
      items.emplace_back(key, i);
    }
    const auto compare = [](const auto& a, const auto& b) { return a.first - b.first; };
    std::vector<std::pair<int, int>> literal;
    for (const auto& item : items) {
      int insert_index = -1;
      FindSortedIndex(
          int(literal.size()), [&](int i) { return compare(item, literal[i]); }, insert_index);
      literal.insert(insert_index < 0 ? literal.end() : literal.begin() + insert_index, item);
    }
    EXPECT_EQ(BinaryInsertionOrder(std::span<const std::pair<int, int>>(items), compare), literal) << shape;
    std::vector<uint32_t> ranks;  // the keys counted from the lowest
    for (const auto& item : items) ranks.push_back(static_cast<uint32_t>(item.first + 2999));
    std::vector<int> by_ranks;
    for (uint32_t position : BinaryInsertionOrderOfRanks(ranks, 6000)) by_ranks.push_back(items[position].second);
    std::vector<int> by_search;
    for (const auto& item : literal) by_search.push_back(item.second);
    EXPECT_EQ(by_ranks, by_search) << shape;
  }
}

// Members named 1..n with the given values of Value.
std::unique_ptr<TEntity> Values(std::initializer_list<StringView> values) {
  auto entity = std::make_unique<TEntity>();
  for (StringView value : values) {
    Named<TStringEntity>(IntToStr(entity->ElementsCount() + 1), {entity.get()})->Value = String(value);
  }
  return entity;
}

template <class Sorter>
String Sorted(TEntity& entity, StringView property_name, bool down = false) {
  Sorter sorter;
  sorter.SetPropertyName(String(property_name));
  sorter.Down = down;
  sorter.SetInput(&entity);
  sorter.DoIt();
  return Names(entity);
}

TEST(SortElements, SortByTheirKindOfValueAndDownReversesTheOrder) {
  auto entity = Values({u"3", u"1", u"2"});
  EXPECT_EQ(Sorted<TSortElements>(*entity, u"Value"), u"1 2 3 ");  // the frame keeps the order
  EXPECT_EQ(Sorted<TSortElementsByString>(*entity, u"Value"), u"2 3 1 ");
  EXPECT_EQ(Sorted<TSortElementsByString>(*entity, u"Value", true), u"1 3 2 ");
  auto mixed = Values({u"10", u"x", u"-1", u"9.5"});
  EXPECT_EQ(Sorted<TSortElementsByInteger>(*mixed, u"Value"), u"3 2 4 1 ");  // x and 9.5 count as 0
  EXPECT_EQ(Sorted<TSortElementsByFloat>(*mixed, u"Value"), u"3 2 4 1 ");
  // The sorters' own order (by ranks of keys read once) is the one that asking at every
  // comparison gives, for texts equal but for case too.
  struct Asking : TSortElementsByString {
    int CompareElements(TElement* a, TElement* b) override { return TSortElementsByString::CompareElements(a, b); }
  };
  std::mt19937 random(5);
  TEntity many;
  for (int i = 0; i < 3000; ++i) {
    auto* member = Named<TStringEntity>(IntToStr(i) + u" ", {&many});
    member->Value = String(1, char16_t(u"aAbBcž"[random() % 6])) + IntToStr(int(random() % 20));
  }
  const std::vector<TElement*> input = test::Members(many);
  const String asked = Sorted<Asking>(many, u"Value");
  for (int i = 0; i < 3000; ++i) many.Put(i, input[std::size_t(i)]);
  EXPECT_EQ(Sorted<TSortElementsByString>(many, u"Value"), asked);
  struct Descending : TSortElementsByInteger {  // asked at every comparison, as it compares otherwise
    int CompareElements(TElement* a, TElement* b) override { return TSortElementsByInteger::CompareElements(b, a); }
  };
  EXPECT_EQ(Sorted<Descending>(*mixed, u"Value"), u"1 2 4 3 ");
  EXPECT_EQ(Sorted<TSortElementsByString>(*Values({}), u"Value"), u"");
  // A NaN equals every number: such keys are compared one by one, as the search meets them.
  EXPECT_EQ(Sorted<TSortElementsByFloat>(*Values({u"NAN", u"1", u"x"}), u"Value"), u"1 3 2 ");
  auto pairs = Values({u"2", u"1", u"2", u"1"});
  for (int i = 0; i < 4; ++i) pairs->Get(i)->ID = std::array{5, 7, 3, 7}[std::size_t(i)];  // an ordinal key
  TSortElementsBy2Integers by_two;
  by_two.SetPropertyStringByName(u"PropertyName", u"Value");
  by_two.SetPropertyNumber(1, u"ID");
  by_two.SetInput(pairs.get());
  by_two.DoIt();
  EXPECT_EQ(Names(*pairs), u"2 4 3 1 ");
  TSortElementsByString not_an_entity;
  TStringEntity value;
  not_an_entity.SetInput(&value);
  not_an_entity.DoIt();
}

TEST(SortElements, ExSortsByAKeyListAndNumbersNameDownAsEachClassSays) {
  auto entity = Values({u"b", u"a", u"b", u"a"});
  for (int i = 0; i < 4; ++i) entity->Get(i)->SetName(String(i % 2 ? u"2" : u"10") + u"/" + IntToStr(i));
  // Names: 10/0 2/1 10/2 2/3; Size (Value as an integer) is 0 for all, so the names decide.
  EXPECT_EQ(Sorted<TSortElementsEx>(*entity, u"Value:i,Name"), u"10/0 10/2 2/1 2/3 ");
  EXPECT_EQ(Sorted<TSortElementsEx>(*entity, u"Value,Name:I"), u"2/1 2/3 10/0 10/2 ");
  const std::vector<SortKey> keys = ParseSortKeys(u"Size:i,,b:F");
  ASSERT_EQ(keys.size(), 3u);
  EXPECT_EQ(keys[0].KeyKind, SortKey::Kind::Integer);
  EXPECT_EQ(keys[1].Name + u"|" + keys[2].Name, u"|b");
  EXPECT_EQ(keys[2].KeyKind, SortKey::Kind::Float);
  EXPECT_TRUE(ParseSortKeys(u"").empty());

  TSortElements frame;
  TSortElementsBy2Integers two;
  EXPECT_EQ(frame.NumberToPropertyName(1) + u" " + two.NumberToPropertyName(1) + u" " + two.NumberToPropertyName(2),
            u"Down PropertyName1 Down");
}

// A tool that notes where it ran, and leaves an Output only for names without "x".
class TNoteTool : public TTool {
  VESKA_CLASS(TNoteTool, TTool, u"sorting_test")
 public:
  String* notes = nullptr;
  void DoIt() override {
    *notes += GetInput()->GetName();
    SetOutput(GetInput()->GetName().find(u'x') == String::npos ? GetInput() : nullptr);
  }
};

TEST(Recursor, WalksPreAndPostOrderWithToolsAndStopsWhereItsToolSays) {
  std::unique_ptr<TEntity> root(Named<TOwnerEntity>(u"r"));
  auto* a = Named<TOwnerEntity>(u"a", {root.get()});
  Named(u"b", {a});
  auto* x = Named<TOwnerEntity>(u"x", {root.get()});
  Named(u"y", {x});
  String before, after, asked;
  TNoteTool before_tool, after_tool, ask_tool;
  before_tool.notes = &before, after_tool.notes = &after, ask_tool.notes = &asked;
  TRecursorWithTools recursor;
  recursor.DoIt();
  EXPECT_EQ(recursor.Level, 1);  // no input: nothing else
  recursor.SetBeforeTool(&before_tool);
  recursor.SetAfterTool(&after_tool);
  recursor.SetQGoInsideTool(&ask_tool);
  recursor.SetInput(root.get());
  recursor.DoIt();
  EXPECT_EQ(before + u"|" + after + u"|" + asked + u"|" + IntToStr(recursor.Level), u"rabx|baxr|rax|1");
  before.clear();
  recursor.GoInside(root.get());  // outside a walk: the members are visited before it returns
  EXPECT_EQ(before + u"|" + IntToStr(recursor.Level), u"abx|1");
  before.clear();
  recursor.NotInside = true;
  recursor.DoIt();
  EXPECT_EQ(before, u"r");
}

TEST(Recursor, WalksAChainFarDeeperThanTheStackWouldHold) {
  struct Counting : TRecursor {
    int deepest = 0;
    bool QProcessAfter(TElement*) override { return deepest = std::max(deepest, Level), false; }
  } recursor;
  std::unique_ptr<TEntity> root(new TEntity);
  TEntity* tip = root.get();
  for (int level = 1; level < 100'000; ++level) {
    auto* below = new TEntity;
    tip->AddElement(below);
    tip = below;
  }
  recursor.SetInput(root.get());
  recursor.DoIt();
  EXPECT_EQ(recursor.deepest, 100'000);
  EXPECT_EQ(recursor.Level, 1);
}

TEST(SortingUnits, RegisterTheirClassesInOrderAfterTheWorld) {
  int32_t last_id = VeskaClasses().GetVeskaClassByName(u"TWorld")->ID;
  for (const UnitClasses& unit : {kSortedEntitiesUnitClasses, kRecursorUnitClasses, kSortingToolsUnitClasses}) {
    for (const ClassInfoSource class_info : unit.classes) {
      const TVeskaClass* record = VeskaClasses().GetVeskaClassByName(class_info().Name());
      ASSERT_NE(record, nullptr);
      EXPECT_GT(record->ID, last_id) << ToUtf8(class_info().Name());
      last_id = record->ID;
    }
  }
}

}  // namespace
}  // namespace veska
