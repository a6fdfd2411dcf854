#include "kernel/types/list_elements.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "kernel/elements/property_access.h"
#include "kernel/platform/exceptions.h"

namespace veska {
namespace {

using Texts = std::vector<String>;
using Integers = std::vector<int32_t>;

template <typename List, typename Get>
auto Collect(List& list, Get get) {
  std::vector<decltype(get(list, 0))> items;
  for (int i = 0; i < list.ElementsCount(); ++i) items.push_back(get(list, i));
  return items;
}
Texts Names(TStringListElement& list) {
  return Collect(list, [](auto& l, int i) { return l.GetNameAtIndex(i); });
}
Texts Values(TStringListElement& list) {
  return Collect(list, [](auto& l, int i) { return l.GetString(i); });
}
Integers Numbers(TIntegerListElement& list) {
  return Collect(list, [](auto& l, int i) { return l.GetInteger(i); });
}

TEST(StringListElement, SeparatorBecomesCommaOnFirstJoinOrSplit) {
  TStringListElement list;
  for (const char16_t* value : {u"a", u"b", u"c"}) list.AddString(value);
  EXPECT_EQ(list.Separator, 0);
  EXPECT_EQ(list.GetValuesString(), u"a,b,c");
  EXPECT_EQ(list.Separator, u',');

  TStringListElement semicolons;
  semicolons.SetSeparator(u';');
  semicolons.SetNameIsValueString(u"a=1;b=2");
  EXPECT_EQ(semicolons.GetNamesString(), u"a;b");
  EXPECT_EQ(semicolons.GetNameIsValueString(), u"a=1;b=2");
}

// An entry added without a name reports its class name as its name, as every element does, so
// the class name shows in the names and can be looked up.
TEST(StringListElement, WholeListTextsJoinNamesValuesAndPairsInIndexOrder) {
  TStringListElement list;
  list.AddNameString(u"Barva", u"modrá");
  list.AddName(u"Prázdný");
  list.AddString(u"bezejmenný");
  EXPECT_EQ(list.GetValuesString(), u"modrá,,bezejmenný");
  EXPECT_EQ(list.GetNameIsValueString(), u"Barva=modrá,Prázdný=,TStringElement=bezejmenný");
  EXPECT_EQ(list.GetStringByName(u"tstringelement"), u"bezejmenný");
}

TEST(StringListElement, SplittingAppendsTrimmedPartsAndNeverClears) {
  TStringListElement list;
  list.SetNamesString(u" a , b,");
  list.SetNamesString(u" a , b,");
  EXPECT_EQ(Names(list), (Texts{u"a", u"b", u"a", u"b"}));
  // A separator beyond position 255 of the rest raises; the parts before it stay added.
  EXPECT_THROW(list.SetNamesString(u"c," + String(300, u'x') + u",d"), ERangeError);
  EXPECT_EQ(Names(list).back(), u"c");

  TStringListElement blanks;
  blanks.SetValuesString(u"x, ,y");
  blanks.SetValuesString(u"p,q,r,  ");
  EXPECT_EQ(Values(blanks), (Texts{u"p", u"q", u"r"}));

  TStringListElement pairs;
  pairs.SetNameIsValueString(u"Width=10,plain,Height = 20");
  EXPECT_EQ(Names(pairs), (Texts{u"Width", u"Height"}));
  EXPECT_EQ(Values(pairs), (Texts{u"10", u"20"}));
}

TEST(StringListElement, SetValuesStringOverwritesLeadingValuesAndAppendsTheRest) {
  TStringListElement list;
  list.SetNameIsValueString(u"a=1,b=2,c=3");
  list.SetValuesString(u"x,y");
  EXPECT_EQ(list.GetNameIsValueString(), u"a=x,b=y,c=3");
  list.SetValuesString(u"p,q,r,s");
  EXPECT_EQ(Values(list), (Texts{u"p", u"q", u"r", u"s"}));
  EXPECT_EQ(list.GetNameAtIndex(3), u"TStringElement");
}

TEST(StringListElement, AddingFromTextsAndStringLists) {
  TStringListElement list;
  list.AddNameIsValue(u"no equals sign");
  list.AddNameIsValue(u"Key = Value");

  TStringList lines;
  for (const char16_t* line : {u"alone", u"", u"jméno=hodnota"}) lines.Add(line);
  list.AddStringList(&lines);
  list.AddStringList(nullptr);
  EXPECT_EQ(Names(list), (Texts{u"Key", u"alone", u"jméno"}));
  EXPECT_EQ(Values(list), (Texts{u"Value", u"", u"hodnota"}));

  const std::unique_ptr<TStringList> values = TStringListElement(&lines).CreateStringList();
  ASSERT_EQ(values->Count(), 2);
  EXPECT_EQ(values->Get(0) + u"|" + values->Get(1), u"|hodnota");  // values only
}

TEST(StringListElement, EntriesByIndexAndByNameIgnoringCaseFirstMatchWins) {
  TStringListElement list;
  list.AddNameString(u"Žluť", u"first");
  list.AddNameString(u"ŽLUŤ", u"second");
  list.SetNameIsValueString(u"Count=42,Flag=ano,Ratio=2.5");
  list.PutName(0, u"čas");
  EXPECT_EQ(list.GetUpperName(0), u"ČAS");

  int index = 99;
  EXPECT_EQ(list.GetStringElementByName(u"žluť", index), list.GetSElems(1));
  EXPECT_EQ(index, 1);
  EXPECT_EQ(list.GetStringElementByName(u"missing", index), nullptr);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(std::tuple(list.GetIntegerByName(u"count"), list.GetBooleanByName(u"FLAG"), list.GetDoubleByName(u"ratio")),
            std::tuple(42, true, 2.5));
  EXPECT_EQ(list.GetStringByName(u"missing"), u"");

  // The setters create a missing entry once and then find it in any case.
  TStringListElement settings;
  settings.SetStringByName(u"Mode", u"fast");
  settings.SetStringByName(u"MODE", u"slow");
  settings.SetIntegerByName(u"count", -3);
  settings.SetDoubleByName(u"Ratio", 0.25);
  EXPECT_EQ(settings.GetNameIsValueString(), u"Mode=slow,count=-3,Ratio=0.25");
}

TEST(StringListElement, ByNamePropertyAccessFallsBackToEntries) {
  TStringListElement list;
  EXPECT_TRUE(list.SetPropertyStringByName(u"Separator", u";"));
  EXPECT_EQ(list.Separator, u';');

  EXPECT_TRUE(list.SetPropertyStringByName(u"Timeout", u"30"));
  EXPECT_TRUE(list.SetPropertyStringByName(u"TIMEOUT", u"60"));
  EXPECT_EQ(Names(list), (Texts{u"Timeout"}));
  EXPECT_EQ(list.GetPropertyStringByName(u"timeout"), u"60");

  // A published property that reads a text shadows an entry of the same name.
  list.AddNameString(u"Simple", u"entry");
  EXPECT_EQ(list.GetPropertyStringByName(u"Simple"), u"False");
  // Write-only properties read empty, so an entry of their name is found.
  list.AddNameString(u"NextValue", u"entry value");
  EXPECT_EQ(list.GetPropertyStringByName(u"NextValue"), u"entry value");
}

TEST(StringListElement, PublishedCommandsBuildTheListByAssignmentsAlone) {
  const ClassInfo& info = TStringListElement::StaticClassInfo();
  EXPECT_TRUE(info.FindProperty(u"NameIsValueString")->Stored().IsConstantFalse());
  EXPECT_FALSE(info.FindProperty(u"Separator")->Stored().IsConstantFalse());
  EXPECT_EQ(info.FindProperty(u"NextStringList")->PropType().ClassType(), &TStringList::StaticClassInfo());

  TStringListElement list;
  SetPropStringByName(&list, u"NextValue", u"v");
  SetPropStringByName(&list, u"NextName", u"n");
  SetPropStringByName(&list, u"NextNameIsValue", u"k=w");
  TStringList lines;
  lines.Add(u"from=list");
  EXPECT_TRUE(SetObjectPropByName(&list, u"NextStringList", &lines));
  EXPECT_EQ(list.GetNameIsValueString(), u"TStringElement=v,n=,k=w,from=list");
}

TEST(StringListElement, ParamToNamesAndSelfCopy) {
  TPropertyList original;
  original.SetName(u"Originál");
  original.Simple = true;
  original.SetSeparator(u';');
  original.AddNameString(u"old", u"width = 10");
  original.AddNameString(u"keep", u"no pair");
  original.ParamToNames();
  EXPECT_EQ(Names(original), (Texts{u"width", u"keep"}));
  EXPECT_EQ(Values(original), (Texts{u"10", u"no pair"}));

  // The copy is a plain string list with copies of the entries and default settings.
  const std::unique_ptr<TStringListElement> copy(original.MakeSelfCopy());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->ClassName() + u"|" + copy->GetName(), u"TStringListElement|Originál");
  EXPECT_EQ(std::tuple(copy->Simple, copy->Separator), std::tuple(false, char16_t{0}));
  EXPECT_EQ(Names(*copy), Names(original));
  copy->PutString(0, u"changed");
  EXPECT_EQ(original.GetString(0), u"10");
}

class StringListElementFiles : public ::testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  String File(const std::string& name) const { return FromUtf8((folder_ / name).string()); }
  static std::string Bytes(const String& file_name) {
    std::ifstream file(ToUtf8(file_name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  const std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("veska_list_elements_" + std::to_string(std::random_device()()));
};

TEST_F(StringListElementFiles, IntoFileWritesPairsOrInASimpleListNamesAlone) {
  TStringListElement list;
  list.AddNameString(u"Příliš", u"žluťoučký kůň");
  list.AddName(u"úpěl");
  list.IntoFile(File("pairs.txt"));
  EXPECT_EQ(Bytes(File("pairs.txt")), ToWin1250(u"Příliš=žluťoučký kůň\r\núpěl=\r\n"));

  // Read back, a line with nothing after "=" keeps its text as the value of an unnamed entry.
  TStringListElement back;
  back.AddFile(File("pairs.txt"));
  EXPECT_EQ(Names(back), (Texts{u"Příliš", u"TStringElement"}));
  EXPECT_EQ(Values(back), (Texts{u"žluťoučký kůň", u"úpěl"}));

  list.SetSimple(true);
  list.IntoFile(File("simple.txt"));
  EXPECT_EQ(Bytes(File("simple.txt")), ToWin1250(u"Příliš\r\núpěl\r\n"));
}

TEST_F(StringListElementFiles, AddFileReadsLinesAndIgnoresMissingFiles) {
  std::ofstream(ToUtf8(File("input.txt")), std::ios::binary) << ToWin1250(u"čeština\r\n\r\nklíč=hodnota\r\n");
  TStringListElement list;
  EXPECT_TRUE(SetPropStringByName(&list, u"LoadFromFile", File("input.txt")));
  EXPECT_EQ(list.GetNameIsValueString(), u"čeština=,klíč=hodnota");

  for (const String& absent : {File("missing.txt"), FromUtf8(folder_.string()), String()}) list.AddFile(absent);
  EXPECT_EQ(list.ElementsCount(), 2);

  EXPECT_THROW(list.IntoFile(File("no/such/folder.txt")), EFOpenError);
  SetPropStringByName(&list, u"SaveToFile", File("saved.txt"));
  EXPECT_EQ(Bytes(File("saved.txt")), ToWin1250(u"čeština=\r\nklíč=hodnota\r\n"));
}

TEST(PropertyList, NegatedEntriesTurnTheSignOver) {
  TIntegerElement source(u"Zdroj", 5);
  TPropertyList list;
  list.SetNamesString(u"-AsInteger,AsString,Name");
  list.SetByElement(&source);
  EXPECT_EQ(Values(list), (Texts{u"-5", u"5", u"Zdroj"}));

  source.SetAsInteger(-5);
  EXPECT_TRUE(SetObjectPropByName(&list, u"Element", &source));
  EXPECT_EQ(Values(list), (Texts{u"5", u"-5", u"Zdroj"}));

  list.Delimiter = u" | ";
  EXPECT_EQ(GetPropStringByName(&list, u"Catenation"), u"5 | -5 | Zdroj");
  list.SetByElement(nullptr);
  EXPECT_EQ(list.GetString(0), u"5");
}

// Elements report their class name when they have none of their own; this one reports nothing.
class TNamelessEntry : public TStringElement {
  VESKA_CLASS(TNamelessEntry, TStringElement, u"Tests")
 public:
  String GetName() const override { return {}; }
};

TEST(PropertyList, EmptyNamesAndEmptyNegatedValuesRaiseRangeError) {
  TStringElement source(u"Zdroj", u"");
  TPropertyList unnamed;
  unnamed.AddName(u"Name");
  unnamed.AddElement(new TNamelessEntry());
  EXPECT_THROW(unnamed.SetByElement(&source), ERangeError);
  EXPECT_EQ(unnamed.GetString(0), u"Zdroj");  // entries before the bad one are filled

  TPropertyList negated_empty;
  negated_empty.AddName(u"-AsString");
  EXPECT_THROW(negated_empty.SetByElement(&source), ERangeError);

  // A property that is not there reads empty.
  TPropertyList unknown;
  unknown.AddNameString(u"NoSuchProperty", u"old");
  unknown.SetByElement(&source);
  EXPECT_EQ(unknown.GetString(0), u"");
}

TEST(IntegerListElement, AddIntegerKeepsOrderUnlessSortedAndHonoursTheDuplicatesFlag) {
  TIntegerListElement list;
  for (const int32_t value : {3, 1, 3, -2}) list.AddInteger(value);
  EXPECT_EQ(Numbers(list), (Integers{3, 1, 3, -2}));
  EXPECT_TRUE(list.ValueExists(-2) && !list.ValueExists(2));
  EXPECT_THROW(list.GetInteger(4), EListError);

  TIntegerListElement unique;
  unique.Sorted = true;
  for (const int32_t value : {5, 1, 5, 3, 9, 1}) unique.AddInteger(value);
  EXPECT_EQ(Numbers(unique), (Integers{1, 3, 5, 9}));

  TIntegerListElement repeated;
  repeated.Sorted = true;
  repeated.Duplicates = true;
  repeated.AddInteger(5);
  TElement* first_five = repeated.Get(0);
  for (const int32_t value : {1, 5, 7}) repeated.AddInteger(value);
  EXPECT_EQ(Numbers(repeated), (Integers{1, 5, 5, 7}));
  EXPECT_EQ(repeated.Get(1), first_five);  // equal values stay in insertion order
}

TEST(IntegerListElement, ValuesStringSkipsPartsThatAreNotIntegers) {
  TIntegerListElement list;
  list.SetValuesString(u"4, x, 2,99999999999,-1 ,");
  list.SetValuesString(u"1;2");  // always split at commas
  EXPECT_EQ(Numbers(list), (Integers{4, 2, -1}));

  TIntegerListElement sorted;
  sorted.Sorted = true;
  EXPECT_TRUE(SetPropStringByName(&sorted, u"ValuesString", u"3,1,2"));
  EXPECT_EQ(Numbers(sorted), (Integers{1, 2, 3}));

  // A long text is split part by part without copying its rest each time.
  String long_text;
  for (int i = 0; i < 200000; ++i) long_text += i % 2 == 0 ? u"1," : u" 2 ,";
  sorted.SetValuesString(long_text);
  EXPECT_EQ(Numbers(sorted), (Integers{1, 2, 3}));
}

TEST(IntegerListElement, CreatedFromTextReadsNumbersUntilTheFirstFailure) {
  for (const auto& [text, numbers] : {std::pair<StringView, Integers>{u"1 2, 3;-4", {1, 2, 3, -4}}, {u"7 x 8", {7}}}) {
    const std::unique_ptr<TIntegerListElement> list(CreateIntegerListElementFromString(String(text)));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(Numbers(*list), numbers);
  }
  EXPECT_EQ(CreateIntegerListElementFromString(u"no numbers"), nullptr);
}

}  // namespace
}  // namespace veska
