#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "kernel/classes/property_access.h"
#include "kernel/platform/exceptions.h"
#include "kernel/types/list_elements.h"

namespace veska {
namespace {

std::vector<String> Names(TStringListElement& list) {
  std::vector<String> names;
  for (int i = 0; i < list.ElementsCount(); ++i) names.push_back(list.GetNameAtIndex(i));
  return names;
}

std::vector<String> Values(TStringListElement& list) {
  std::vector<String> values;
  for (int i = 0; i < list.ElementsCount(); ++i) values.push_back(list.GetString(i));
  return values;
}

std::vector<int32_t> Integers(TIntegerListElement& list) {
  std::vector<int32_t> values;
  for (int i = 0; i < list.ElementsCount(); ++i) values.push_back(list.GetInteger(i));
  return values;
}

// A folder of its own under the system's temporary folder, removed with everything in it.
class TempFolder {
 public:
  TempFolder() {
    path_ = std::filesystem::temp_directory_path() / ("veska_list_elements_" + std::to_string(std::random_device()()));
    std::filesystem::create_directories(path_);
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  String File(const std::string& name) const { return FromUtf8((path_ / name).string()); }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

std::string FileBytes(const String& file_name) {
  std::ifstream file(ToUtf8(file_name), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteBytes(const String& file_name, const std::string& bytes) {
  std::ofstream(ToUtf8(file_name), std::ios::binary) << bytes;
}

TEST(StringListElement, SeparatorBecomesCommaOnFirstJoinOrSplit) {
  TStringListElement list;
  for (const char16_t* value : {u"a", u"b", u"c"}) list.AddString(value);
  EXPECT_EQ(list.Separator, 0);
  EXPECT_EQ(list.GetValuesString(), u"a,b,c");
  EXPECT_EQ(list.Separator, u',');

  TStringListElement split;
  split.SetNamesString(u"x,y");
  EXPECT_EQ(split.Separator, u',');
  EXPECT_EQ(Names(split), (std::vector<String>{u"x", u"y"}));

  TStringListElement empty;
  EXPECT_EQ(empty.GetNamesString(), u"");
  EXPECT_EQ(empty.Separator, u',');

  TStringListElement semicolons;
  semicolons.SetSeparator(u';');
  semicolons.SetNameIsValueString(u"a=1;b=2");
  EXPECT_EQ(semicolons.GetNamesString(), u"a;b");
  EXPECT_EQ(semicolons.GetNameIsValueString(), u"a=1;b=2");
  EXPECT_EQ(semicolons.Separator, u';');
}

// An entry added without a name reports its class name as its name, as every element does, so
// the class name shows in the names and can be looked up.
TEST(StringListElement, WholeListTextsJoinNamesValuesAndPairsInIndexOrder) {
  TStringListElement list;
  list.AddNameString(u"Barva", u"modrá");
  list.AddName(u"Prázdný");
  list.AddString(u"bezejmenný");
  EXPECT_EQ(list.GetNamesString(), u"Barva,Prázdný,TStringElement");
  EXPECT_EQ(list.GetValuesString(), u"modrá,,bezejmenný");
  EXPECT_EQ(list.GetNameIsValueString(), u"Barva=modrá,Prázdný=,TStringElement=bezejmenný");
  EXPECT_EQ(list.GetStringByName(u"tstringelement"), u"bezejmenný");
}

TEST(StringListElement, SplittingAppendsTrimmedPartsAndNeverClears) {
  TStringListElement list;
  list.SetNamesString(u" a , b,");
  list.SetNamesString(u" a , b,");
  EXPECT_EQ(Names(list), (std::vector<String>{u"a", u"b", u"a", u"b"}));
  list.SetNamesString(u"");
  EXPECT_EQ(list.ElementsCount(), 4);
  // A separator beyond position 255 of the rest raises; the parts before it stay added.
  EXPECT_THROW(list.SetNamesString(u"c," + String(300, u'x') + u",d"), ERangeError);
  EXPECT_EQ(list.ElementsCount(), 5);
  EXPECT_EQ(list.GetNameAtIndex(4), u"c");

  TStringListElement blanks;
  blanks.SetValuesString(u"x, ,y");
  blanks.SetValuesString(u"p,q,r,  ");
  EXPECT_EQ(Values(blanks), (std::vector<String>{u"p", u"q", u"r"}));

  TStringListElement pairs;
  pairs.SetNameIsValueString(u"Width=10,plain,Height = 20");
  EXPECT_EQ(Names(pairs), (std::vector<String>{u"Width", u"Height"}));
  EXPECT_EQ(Values(pairs), (std::vector<String>{u"10", u"20"}));
}

TEST(StringListElement, SetValuesStringOverwritesLeadingValuesAndAppendsTheRest) {
  TStringListElement list;
  list.AddNameString(u"a", u"1");
  list.AddNameString(u"b", u"2");
  list.AddNameString(u"c", u"3");
  list.SetValuesString(u"x,y");
  EXPECT_EQ(Values(list), (std::vector<String>{u"x", u"y", u"3"}));
  EXPECT_EQ(Names(list), (std::vector<String>{u"a", u"b", u"c"}));

  list.SetValuesString(u"p,q,r,s");
  EXPECT_EQ(Values(list), (std::vector<String>{u"p", u"q", u"r", u"s"}));
  EXPECT_EQ(list.GetNameAtIndex(3), u"TStringElement");
}

TEST(StringListElement, AddingFromTextsAndStringLists) {
  TStringListElement list;
  list.AddNameIsValue(u"no equals sign");
  EXPECT_EQ(list.ElementsCount(), 0);
  list.AddNameIsValue(u"Key = Value");
  EXPECT_EQ(list.GetNameAtIndex(0), u"Key");
  EXPECT_EQ(list.GetString(0), u"Value");

  TStringList lines;
  for (const char16_t* line : {u"alone", u"", u"jméno=hodnota"}) lines.Add(line);
  list.AddStringList(&lines);
  list.AddStringList(nullptr);
  EXPECT_EQ(Names(list), (std::vector<String>{u"Key", u"alone", u"jméno"}));
  EXPECT_EQ(Values(list), (std::vector<String>{u"Value", u"", u"hodnota"}));

  TStringListElement constructed(&lines);
  EXPECT_EQ(Names(constructed), (std::vector<String>{u"alone", u"jméno"}));
  EXPECT_EQ(TStringListElement(nullptr).ElementsCount(), 0);

  const std::unique_ptr<TStringList> values = constructed.CreateStringList();
  ASSERT_EQ(values->Count(), 2);
  EXPECT_EQ(values->Get(0), u"");
  EXPECT_EQ(values->Get(1), u"hodnota");
}

TEST(StringListElement, ByIndexAccessReadsAndWritesTheEntries) {
  TStringListElement list;
  list.AddNameString(u"čas", u"1");
  list.PutString(0, u"2");
  list.PutName(0, u"Čas2");
  EXPECT_EQ(list.GetString(0), u"2");
  EXPECT_EQ(list.GetUpperName(0), u"ČAS2");
  EXPECT_EQ(list.GetSElems(0)->GetName(), u"Čas2");
  EXPECT_THROW(list.GetString(1), EListError);
  EXPECT_THROW(list.GetString(-1), EListError);
}

TEST(StringListElement, NameLookupIgnoresCaseAndTakesTheFirstMatch) {
  TStringListElement list;
  list.AddNameString(u"Žluť", u"first");
  list.AddNameString(u"ŽLUŤ", u"second");
  list.AddNameString(u"Count", u"42");
  list.AddNameString(u"Flag", u"ano");
  list.AddNameString(u"Ratio", u"2.5");
  int index = 99;
  EXPECT_EQ(list.GetStringElementByName(u"žluť", index), list.GetSElems(0));
  EXPECT_EQ(index, 0);
  EXPECT_EQ(list.GetStringElementByName(u"missing", index), nullptr);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(list.GetStringByName(u"žLUŤ"), u"first");
  EXPECT_EQ(list.GetIntegerByName(u"count"), 42);
  EXPECT_TRUE(list.GetBooleanByName(u"FLAG"));
  EXPECT_DOUBLE_EQ(list.GetDoubleByName(u"ratio"), 2.5);

  EXPECT_EQ(list.GetStringByName(u"missing"), u"");
  EXPECT_EQ(list.GetIntegerByName(u"missing"), 0);
  EXPECT_FALSE(list.GetBooleanByName(u"missing"));
  EXPECT_EQ(list.GetDoubleByName(u"missing"), 0);
}

TEST(StringListElement, SettersByNameCreateMissingEntriesOnce) {
  TStringListElement list;
  list.SetStringByName(u"Mode", u"fast");
  list.SetStringByName(u"MODE", u"slow");
  list.SetIntegerByName(u"Count", 7);
  list.SetIntegerByName(u"count", -3);
  list.SetDoubleByName(u"Ratio", 0.25);
  EXPECT_EQ(Names(list), (std::vector<String>{u"Mode", u"Count", u"Ratio"}));
  EXPECT_EQ(Values(list)[0], u"slow");
  EXPECT_EQ(list.GetIntegerByName(u"Count"), -3);
  EXPECT_DOUBLE_EQ(list.GetDoubleByName(u"Ratio"), 0.25);
}

TEST(StringListElement, ByNamePropertyAccessFallsBackToEntries) {
  TStringListElement list;
  EXPECT_TRUE(list.SetPropertyStringByName(u"Separator", u";"));
  EXPECT_EQ(list.Separator, u';');
  EXPECT_EQ(list.ElementsCount(), 0);

  EXPECT_TRUE(list.SetPropertyStringByName(u"Timeout", u"30"));
  EXPECT_TRUE(list.SetPropertyStringByName(u"TIMEOUT", u"60"));
  ASSERT_EQ(list.ElementsCount(), 1);
  EXPECT_EQ(list.GetNameAtIndex(0), u"Timeout");
  EXPECT_EQ(list.GetPropertyStringByName(u"timeout"), u"60");

  // A published property that reads a text shadows an entry of the same name.
  list.AddNameString(u"Simple", u"entry");
  EXPECT_EQ(list.GetPropertyStringByName(u"Simple"), u"False");
  // Write-only properties read empty, so an entry of their name is found.
  list.AddNameString(u"NextValue", u"entry value");
  EXPECT_EQ(list.GetPropertyStringByName(u"NextValue"), u"entry value");
  EXPECT_EQ(list.GetPropertyStringByName(u"Unknown"), u"");
}

TEST(StringListElement, PublishesItsCommandsAndSettings) {
  const ClassInfo& info = TStringListElement::StaticClassInfo();
  const std::vector<String> expected = {u"NextValue",  u"NextName",          u"NextNameIsValue", u"NextStringList",
                                        u"NamesString", u"ValuesString",     u"NameIsValueString", u"LoadFromFile",
                                        u"SaveToFile", u"Simple",            u"Separator"};
  const int first = info.PropCount() - static_cast<int>(expected.size());
  ASSERT_GE(first, 0);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const PropInfo* property = info.Properties()[static_cast<std::size_t>(first) + i];
    EXPECT_EQ(property->Name(), expected[i]);
    EXPECT_EQ(property->Stored().IsConstantFalse(), i < 9) << ToUtf8(expected[i]);
  }
  const PropInfo* next_list = info.FindProperty(u"NextStringList");
  EXPECT_EQ(next_list->Kind(), TTypeKind::tkClass);
  EXPECT_EQ(next_list->PropType().ClassType(), &TStringList::StaticClassInfo());
  EXPECT_EQ(TStringList::StaticClassInfo().UnitName(), u"Classes");
  EXPECT_TRUE(TStringList::StaticClassInfo().InheritsFrom(TPersistent::StaticClassInfo()));
  EXPECT_EQ(info.FindProperty(u"Separator")->Kind(), TTypeKind::tkWChar);

  // Assignments alone build the list, as a loader does.
  TStringListElement list;
  SetPropStringByName(&list, u"NextValue", u"v");
  SetPropStringByName(&list, u"NextName", u"n");
  SetPropStringByName(&list, u"NextNameIsValue", u"k=w");
  TStringList lines;
  lines.Add(u"from=list");
  EXPECT_TRUE(SetObjectPropByName(&list, u"NextStringList", &lines));
  EXPECT_EQ(Names(list), (std::vector<String>{u"TStringElement", u"n", u"k", u"from"}));
  EXPECT_EQ(Values(list), (std::vector<String>{u"v", u"", u"w", u"list"}));
}

TEST(StringListElement, ParamToNamesSplitsValuesHoldingNameValuePairs) {
  TStringListElement list;
  list.AddNameString(u"old", u"width = 10");
  list.AddNameString(u"keep", u"no pair");
  list.ParamToNames();
  EXPECT_EQ(Names(list), (std::vector<String>{u"width", u"keep"}));
  EXPECT_EQ(Values(list), (std::vector<String>{u"10", u"no pair"}));
}

TEST(StringListElement, SelfCopyIsAPlainStringListWithCopiedEntries) {
  TPropertyList original;
  original.SetName(u"Originál");
  original.Simple = true;
  original.SetSeparator(u';');
  original.Delimiter = u"-";
  original.AddNameString(u"a", u"1");
  original.AddName(u"b");

  TStringListElement* copy = original.MakeSelfCopy();
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->ClassName(), u"TStringListElement");
  EXPECT_EQ(copy->GetName(), u"Originál");
  EXPECT_FALSE(copy->Simple);
  EXPECT_EQ(copy->Separator, 0);
  EXPECT_EQ(Names(*copy), (std::vector<String>{u"a", u"b"}));
  EXPECT_EQ(Values(*copy), (std::vector<String>{u"1", u""}));
  EXPECT_NE(copy->Get(0), original.Get(0));
  copy->PutString(0, u"changed");
  EXPECT_EQ(original.GetString(0), u"1");
  copy->Free();
}

class StringListElementFiles : public ::testing::Test {
 protected:
  TempFolder folder_;
};

TEST_F(StringListElementFiles, IntoFileWritesPairsInWindows1250) {
  TStringListElement list;
  list.AddNameString(u"Příliš", u"žluťoučký kůň");
  list.AddName(u"úpěl");
  const String file = folder_.File("pairs.txt");
  list.IntoFile(file);
  EXPECT_EQ(FileBytes(file), ToWin1250(u"Příliš=žluťoučký kůň\r\núpěl=\r\n"));
  EXPECT_EQ(FileBytes(file).substr(0, 3), "P\xF8\xED");

  // Read back, a line with nothing after "=" keeps its text as the value of an unnamed entry.
  TStringListElement back;
  back.AddFile(file);
  EXPECT_EQ(Names(back), (std::vector<String>{u"Příliš", u"TStringElement"}));
  EXPECT_EQ(Values(back), (std::vector<String>{u"žluťoučký kůň", u"úpěl"}));
}

TEST_F(StringListElementFiles, SimpleListWritesNamesAlone) {
  TStringListElement list;
  list.SetSimple(true);
  list.AddNameString(u"ďábelské", u"ódy");
  list.AddNameString(u"řádek", u"hodnota");
  const String file = folder_.File("simple.txt");
  list.IntoFile(file);
  EXPECT_EQ(FileBytes(file), ToWin1250(u"ďábelské\r\nřádek\r\n"));
}

TEST_F(StringListElementFiles, AddFileReadsLinesAndIgnoresMissingFiles) {
  const String file = folder_.File("input.txt");
  WriteBytes(file, ToWin1250(u"čeština\r\n\r\nklíč=hodnota\r\n"));
  TStringListElement list;
  EXPECT_TRUE(SetPropStringByName(&list, u"LoadFromFile", file));
  EXPECT_EQ(Names(list), (std::vector<String>{u"čeština", u"klíč"}));
  EXPECT_EQ(Values(list), (std::vector<String>{u"", u"hodnota"}));

  list.AddFile(folder_.File("missing.txt"));
  list.AddFile(FromUtf8(folder_.Path().string()));
  list.AddFile(u"");
  EXPECT_EQ(list.ElementsCount(), 2);

  EXPECT_THROW(list.IntoFile(folder_.File("no/such/folder.txt")), EFOpenError);
  SetPropStringByName(&list, u"SaveToFile", folder_.File("saved.txt"));
  EXPECT_EQ(FileBytes(folder_.File("saved.txt")), ToWin1250(u"čeština=\r\nklíč=hodnota\r\n"));
}

TEST(PropertyList, NegatedEntriesTurnTheSignOver) {
  TIntegerElement source(u"Zdroj", 5);
  TPropertyList list;
  list.AddName(u"-AsInteger");
  list.AddName(u"AsString");
  list.AddName(u"Name");
  list.SetByElement(&source);
  EXPECT_EQ(Values(list), (std::vector<String>{u"-5", u"5", u"Zdroj"}));

  source.SetAsInteger(-5);
  EXPECT_TRUE(SetObjectPropByName(&list, u"Element", &source));
  EXPECT_EQ(Values(list), (std::vector<String>{u"5", u"-5", u"Zdroj"}));

  list.Delimiter = u" | ";
  EXPECT_EQ(list.GetCatenation(), u"5 | -5 | Zdroj");
  EXPECT_EQ(GetPropStringByName(&list, u"Catenation"), u"5 | -5 | Zdroj");
  EXPECT_EQ(TPropertyList().GetCatenation(), u"");

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

  // A negated entry reads the rest of its name; a property that is not there reads empty.
  TPropertyList unknown;
  unknown.AddName(u"NoSuchProperty");
  unknown.SetByElement(&source);
  EXPECT_EQ(unknown.GetString(0), u"");
}

TEST(IntegerListElement, UnsortedListKeepsInsertionOrderAndDuplicates) {
  TIntegerListElement list;
  for (const int32_t value : {3, 1, 3, -2}) list.AddInteger(value);
  EXPECT_EQ(Integers(list), (std::vector<int32_t>{3, 1, 3, -2}));
  EXPECT_TRUE(list.ValueExists(-2));
  EXPECT_FALSE(list.ValueExists(2));
  list.PutInteger(1, 9);
  EXPECT_EQ(list.GetInteger(1), 9);
  EXPECT_THROW(list.GetInteger(4), EListError);
}

TEST(IntegerListElement, SortedListInsertsInOrderAndHonoursTheDuplicatesFlag) {
  TIntegerListElement unique;
  unique.Sorted = true;
  for (const int32_t value : {5, 1, 5, 3, 9, 1}) unique.AddInteger(value);
  EXPECT_EQ(Integers(unique), (std::vector<int32_t>{1, 3, 5, 9}));

  TIntegerListElement repeated;
  repeated.Sorted = true;
  repeated.Duplicates = true;
  repeated.AddInteger(5);
  TElement* first_five = repeated.Get(0);
  for (const int32_t value : {1, 5, 7}) repeated.AddInteger(value);
  EXPECT_EQ(Integers(repeated), (std::vector<int32_t>{1, 5, 5, 7}));
  EXPECT_EQ(repeated.Get(1), first_five);  // equal values stay in insertion order
}

TEST(IntegerListElement, ValuesStringSkipsPartsThatAreNotIntegers) {
  TIntegerListElement list;
  list.SetValuesString(u"4, x, 2,99999999999,-1 ,");
  EXPECT_EQ(Integers(list), (std::vector<int32_t>{4, 2, -1}));

  TIntegerListElement sorted;
  sorted.Sorted = true;
  EXPECT_TRUE(SetPropStringByName(&sorted, u"ValuesString", u"3,1,2"));
  EXPECT_EQ(Integers(sorted), (std::vector<int32_t>{1, 2, 3}));

  // A long text is split part by part without copying its rest each time.
  TIntegerListElement many;
  many.Sorted = true;
  String long_text;
  for (int i = 0; i < 200000; ++i) long_text += i % 2 == 0 ? u"1," : u" 2 ,";
  many.SetValuesString(long_text);
  EXPECT_EQ(Integers(many), (std::vector<int32_t>{1, 2}));

  // The integer list splits at commas whatever separator a string list uses.
  TIntegerListElement semicolons;
  semicolons.SetValuesString(u"1;2");
  EXPECT_EQ(semicolons.ElementsCount(), 0);
}

TEST(IntegerListElement, CreatedFromTextReadsNumbersUntilTheFirstFailure) {
  const std::unique_ptr<TIntegerListElement> list(CreateIntegerListElementFromString(u"1 2, 3;-4"));
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(Integers(*list), (std::vector<int32_t>{1, 2, 3, -4}));

  const std::unique_ptr<TIntegerListElement> cut(CreateIntegerListElementFromString(u"7 x 8"));
  ASSERT_NE(cut, nullptr);
  EXPECT_EQ(Integers(*cut), (std::vector<int32_t>{7}));

  EXPECT_EQ(CreateIntegerListElementFromString(u"no numbers"), nullptr);
  EXPECT_EQ(CreateIntegerListElementFromString(u""), nullptr);
}

TEST(ListElements, VirtualConstructorsMakeEmptyLists) {
  for (const ClassInfo* cls : {&TStringListElement::StaticClassInfo(), &TPropertyList::StaticClassInfo(),
                               &TIntegerListElement::StaticClassInfo()}) {
    std::unique_ptr<TObject> created(cls->Create());
    ASSERT_NE(created, nullptr) << ToUtf8(cls->Name());
    EXPECT_EQ(&created->ClassType(), cls);
    EXPECT_EQ(cls->UnitName(), u"E_type");
  }
}

}  // namespace
}  // namespace veska
