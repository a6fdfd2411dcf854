#include "kernel/types/list_elements.h"

#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <vector>

#include "kernel/elements/property_access.h"
#include "kernel/platform/exceptions.h"
#include "tests/support/temp_folder.h"

namespace veska {
namespace {

std::vector<int32_t> Numbers(TIntegerListElement& list) {
  std::vector<int32_t> numbers;
  for (int i = 0; i < list.ElementsCount(); ++i) numbers.push_back(list.GetInteger(i));
  return numbers;
}

// Each row writes up to two texts by name into a new list, into its published properties or, for
// other names, its entries, and reads one name.  Texts split at the separator into trimmed parts;
// splitting appends, and values overwrite the leading entries.  An entry without a name reports
// its class name.  A published property hides an entry of its name unless it reads empty.
TEST(StringListElement, ByNameWritesAndReadsReachPublishedPropertiesAndEntries) {
  static constexpr std::tuple<StringView, StringView, StringView, StringView, StringView, StringView> kRows[] = {
      {u"Separator", u";", u"NameIsValueString", u"a=1;b=2", u"NamesString", u"a;b"},
      {u"NamesString", u" a , b,", u"NamesString", u" a , b,", u"NamesString", u"a,b,a,b"},
      {u"ValuesString", u"x, ,y", u"ValuesString", u"p,q,r,  ", u"ValuesString", u"p,q,r"},
      {u"NameIsValueString", u"Width=10,plain,Height = 20", u"", u"", u"NameIsValueString", u"Width=10,Height=20"},
      {u"NameIsValueString", u"a=1,b=2,c=3", u"ValuesString", u"x,y", u"NameIsValueString", u"a=x,b=y,c=3"},
      {u"NameIsValueString", u"a=1", u"ValuesString", u"p,q", u"NameIsValueString", u"a=p,TStringElement=q"},
      {u"NextNameIsValue", u"no equals sign", u"NextNameIsValue", u"Key = Value", u"NameIsValueString", u"Key=Value"},
      {u"NextValue", u"v", u"NextName", u"n", u"NameIsValueString", u"TStringElement=v,n="},
      {u"NextNameIsValue", u"Barva=modrá", u"NextName", u"Prázdný", u"ValuesString", u"modrá,"},
      {u"NextValue", u"bezejmenný", u"", u"", u"tstringelement", u"bezejmenný"},
      {u"Timeout", u"30", u"TIMEOUT", u"60", u"NameIsValueString", u"Timeout=60"},
      {u"NextNameIsValue", u"Žluť=first", u"NextNameIsValue", u"ŽLUŤ=second", u"žluť", u"first"},
      {u"NextNameIsValue", u"Simple=entry", u"", u"", u"Simple", u"False"},
      {u"NextNameIsValue", u"NextValue=entry", u"", u"", u"NextValue", u"entry"}};
  for (const auto& [name, text, second_name, second_text, read, expected] : kRows) {
    TStringListElement list;
    EXPECT_TRUE(list.SetPropertyStringByName(name, String(text)));
    if (!second_name.empty()) list.SetPropertyStringByName(second_name, String(second_text));
    EXPECT_EQ(list.GetPropertyStringByName(read), expected) << ToUtf8(name) << " " << ToUtf8(text);
  }
}

// The separator becomes a comma on the first join.  One beyond position 255 of the rest of a
// text to split raises, and the parts before it stay added.
TEST(StringListElement, StringListsInAndOutAndTheSeparatorOnceJoined) {
  TStringList lines;
  for (const char16_t* line : {u"alone", u"", u"jméno=hodnota"}) lines.Add(line);
  TStringListElement list(&lines);
  EXPECT_TRUE(SetObjectPropByName(&list, u"NextStringList", &lines));
  list.AddStringList(nullptr);
  EXPECT_EQ(list.Separator, 0);
  EXPECT_EQ(list.GetNameIsValueString(), u"alone=,jméno=hodnota,alone=,jméno=hodnota");
  EXPECT_EQ(list.Separator, u',');
  EXPECT_THROW(list.SetNamesString(u"c," + String(300, u'x') + u",d"), ERangeError);
  const std::unique_ptr<TStringList> values = list.CreateStringList();
  EXPECT_EQ(values->Text(), u"\r\nhodnota\r\n\r\nhodnota\r\n\r\n");  // values only
  EXPECT_EQ(list.GetNameAtIndex(4), u"c");
  EXPECT_TRUE(TStringListElement::StaticClassInfo().FindProperty(u"NameIsValueString")->Stored().IsConstantFalse());
  EXPECT_FALSE(TStringListElement::StaticClassInfo().FindProperty(u"Separator")->Stored().IsConstantFalse());
}

// Lookups by name ignore case and take the first match; the typed setters change the entry found
// so, or append one.
TEST(StringListElement, EntriesByIndexAndByNameIgnoringCaseFirstMatchWins) {
  TStringListElement list;
  list.SetNameIsValueString(u"Žluť=first,ŽLUŤ=second,Count=42,Flag=ano,Ratio=2.5");
  list.PutName(0, u"čas");
  EXPECT_EQ(list.GetUpperName(0), u"ČAS");
  int index = 99;
  EXPECT_EQ(list.GetStringElementByName(u"žluť", index), list.GetSElems(1));
  EXPECT_EQ(index, 1);
  EXPECT_EQ(list.GetStringElementByName(u"missing", index), nullptr);
  EXPECT_EQ(index, -1);
  EXPECT_EQ(std::tuple(list.GetIntegerByName(u"count"), list.GetBooleanByName(u"FLAG"), list.GetDoubleByName(u"ratio")),
            std::tuple(42, true, 2.5));
  EXPECT_EQ(std::tuple(list.GetIntegerByName(u"x"), list.GetBooleanByName(u"x"), list.GetDoubleByName(u"x"),
                       list.GetStringByName(u"x")),
            std::tuple(0, false, 0.0, String()));
  list.SetIntegerByName(u"COUNT", -3);
  list.SetDoubleByName(u"Width", 0.25);
  EXPECT_EQ(list.GetNameIsValueString(), u"čas=first,ŽLUŤ=second,Count=-3,Flag=ano,Ratio=2.5,Width=0.25");
}

TEST(StringListElement, ParamToNamesAndSelfCopy) {
  TPropertyList source;
  source.SetName(u"Zdroj");
  source.Simple = true;
  source.SetSeparator(u';');
  source.AddNameString(u"old", u"width = 10");
  source.AddNameString(u"keep", u"no pair");
  source.ParamToNames();
  EXPECT_EQ(source.GetNameIsValueString(), u"width=10;keep=no pair");
  // The copy is a plain string list with copies of the entries and default settings.
  const std::unique_ptr<TStringListElement> copy(source.MakeSelfCopy());
  EXPECT_EQ(copy->ClassName() + u"|" + copy->GetName(), u"TStringListElement|Zdroj");
  EXPECT_EQ(std::tuple(copy->Simple, copy->Separator), std::tuple(false, char16_t{0}));
  EXPECT_EQ(copy->GetNameIsValueString(), u"width=10,keep=no pair");
  copy->PutString(0, u"changed");
  EXPECT_EQ(source.GetString(0), u"10");
}

// Files hold one Windows-1250 line per entry: name=value, or in a simple list the name alone.
// Read back, empty lines are skipped; a line ending in "=" is the value of an unnamed entry.
TEST(StringListElement, FilesHoldOneLinePerEntry) {
  test::TempFolder folder;
  TStringListElement list;
  list.AddNameString(u"Příliš", u"žluťoučký kůň");
  list.AddName(u"úpěl");
  list.IntoFile(folder.Path("pairs.txt"));
  EXPECT_EQ(folder.Read("pairs.txt"), ToWin1250(u"Příliš=žluťoučký kůň\r\núpěl=\r\n"));
  list.SetSimple(true);
  SetPropStringByName(&list, u"SaveToFile", folder.Path("simple.txt"));
  EXPECT_EQ(folder.Read("simple.txt"), ToWin1250(u"Příliš\r\núpěl\r\n"));
  EXPECT_THROW(list.IntoFile(folder.Path("no/such/folder.txt")), EFOpenError);
  const String input = folder.Write("input.txt", ToWin1250(u"čeština\r\n\r\núpěl=\r\nklíč=hodnota\r\n"));
  TStringListElement loaded;
  EXPECT_TRUE(SetPropStringByName(&loaded, u"LoadFromFile", input));
  for (const String& absent : {folder.Path("missing.txt"), folder.Path(), String()}) loaded.AddFile(absent);
  EXPECT_EQ(loaded.GetNameIsValueString(), u"čeština=,TStringElement=úpěl,klíč=hodnota");
}

// Elements report their class name when they have none of their own; this one reports nothing.
class TNamelessEntry : public TStringElement {
  VESKA_CLASS(TNamelessEntry, TStringElement, u"Tests")
 public:
  String GetName() const override { return {}; }
};

// Entries name properties of an element, and those named with a leading "-" take the text with
// its sign turned over.  An empty name, or an empty text to turn over, is a range error.
TEST(PropertyList, EntriesTakeThePropertiesOfAnElement) {
  TIntegerElement source(u"Zdroj", 5);
  TPropertyList list;
  list.SetNamesString(u"-AsInteger,AsString,Name");
  list.AddNameString(u"NoSuchProperty", u"old");  // reads empty
  list.SetByElement(&source);
  EXPECT_EQ(list.GetValuesString(), u"-5,5,Zdroj,");
  source.SetAsInteger(-5);
  EXPECT_TRUE(SetObjectPropByName(&list, u"Element", &source));
  list.Delimiter = u" | ";
  EXPECT_EQ(GetPropStringByName(&list, u"Catenation"), u"5 | -5 | Zdroj | ");
  list.SetByElement(nullptr);
  EXPECT_EQ(list.GetString(0), u"5") << "no element, no change";
  list.AddElement(new TNamelessEntry());
  source.SetAsInteger(7);
  EXPECT_THROW(list.SetByElement(&source), ERangeError);
  EXPECT_EQ(list.GetValuesString(), u"-7,7,Zdroj,,") << "entries before the bad one are filled";
  TPropertyList negated_empty;
  negated_empty.AddName(u"-AsString");
  TStringElement empty;
  EXPECT_THROW(negated_empty.SetByElement(&empty), ERangeError);
}

TEST(IntegerListElement, AddIntegerKeepsOrderUnlessSortedAndHonoursTheDuplicatesFlag) {
  TIntegerListElement list;
  for (const int32_t value : {3, 1, 3, -2}) list.AddInteger(value);
  EXPECT_EQ(Numbers(list), (std::vector<int32_t>{3, 1, 3, -2}));
  EXPECT_TRUE(list.ValueExists(-2) && !list.ValueExists(2));
  EXPECT_THROW(list.GetInteger(4), EListError);
  TIntegerListElement unique;
  unique.Sorted = true;
  for (const int32_t value : {5, 1, 5, 3, 9, 1}) unique.AddInteger(value);
  EXPECT_EQ(Numbers(unique), (std::vector<int32_t>{1, 3, 5, 9}));
  TIntegerListElement repeated;
  repeated.Sorted = true;
  repeated.Duplicates = true;
  repeated.AddInteger(5);
  TElement* first_five = repeated.Get(0);
  for (const int32_t value : {1, 5, 7}) repeated.AddInteger(value);
  EXPECT_EQ(Numbers(repeated), (std::vector<int32_t>{1, 5, 5, 7}));
  EXPECT_EQ(repeated.Get(1), first_five);  // equal values stay in insertion order
}

// Values split at commas whatever the separator; parts that are no 32-bit integer are skipped.
// Read from text, whole numbers count up to the first text that is none; no number gives no list.
TEST(IntegerListElement, ValuesAndTextsSkipOrStopAtWhatIsNoInteger) {
  TIntegerListElement list;
  list.SetValuesString(u"4, x, 2,99999999999,-1 ,");
  EXPECT_TRUE(SetPropStringByName(&list, u"ValuesString", u"1;2"));
  EXPECT_EQ(Numbers(list), (std::vector<int32_t>{4, 2, -1}));
  for (const auto& [text, numbers] :
       {std::pair<StringView, std::vector<int32_t>>{u"1 2, 3;-4", {1, 2, 3, -4}}, {u"7;8 x 9", {7, 8}}}) {
    const std::unique_ptr<TIntegerListElement> created(TStringElement(String(text)).CreateIntegerList());
    ASSERT_NE(created, nullptr);
    EXPECT_EQ(Numbers(*created), numbers);
  }
  for (StringView text : {u"", u"   ", u"abc", u"1.5"}) {
    EXPECT_EQ(CreateIntegerListElementFromString(String(text)), nullptr) << ToUtf8(text);
  }
}

}  // namespace
}  // namespace veska
