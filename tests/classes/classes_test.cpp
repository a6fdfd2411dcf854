#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <vector>

#include "kernel/classes/registry.h"
#include "kernel/elements/message.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/platform/publisher.h"
#include "kernel/platform/string_list.h"

namespace veska {
namespace {

using ::testing::StrEq;
using ::testing::ThrowsMessage;

// A class record built by hand, named freely, for an element class of the test's choosing.
TVeskaClass* Record(const String& name, const ClassInfo& element_class = TNameElement::StaticClassInfo()) {
  auto* record = new TVeskaClass;
  record->SetElementClass(&element_class);
  record->SetName(name);
  return record;
}

void Register(TVeskaClasses& registry, std::initializer_list<const char16_t*> names) {
  for (const char16_t* name : names) registry.AddVeskaClass(Record(name));
}

std::vector<String> Names(TVeskaClasses& registry) {
  std::vector<String> names;
  for (int i = 0; i < registry.ElementsCount(); ++i) names.push_back(registry.Get(i)->GetName());
  return names;
}

TEST(ClassRegistry, RecordsAreNumberedInRegistrationOrderAndSortedIgnoringCaseWhateverSortByNameSays) {
  TVeskaClasses registry;
  registry.SetSortByName(false);  // accepted and ignored
  EXPECT_TRUE(registry.SortByName);
  registry.AddClass(TOwnerElement::StaticClassInfo());
  EXPECT_EQ(registry.CurrentClass()->ElementsCount(), 0) << "without ShowProperties no children";
  registry.ShowProperties = true;
  registry.AddClass(TNameElement::StaticClassInfo());
  ASSERT_EQ(registry.CurrentClass()->ElementsCount(), registry.CurrentClass()->PropCount);
  EXPECT_EQ(registry.CurrentClass()->Get(1)->GetName(), u"Name");
  Register(registry, {u"B", u"a", u"C", u"m", u"D", u"x", u"Q", u"z", u"k", u"E"});
  EXPECT_EQ(Names(registry), (std::vector<String>{u"a", u"B", u"C", u"D", u"E", u"k", u"m", u"Q", u"TNameElement",
                                                  u"TOwnerElement", u"x", u"z"}));
  EXPECT_EQ(registry.GetVeskaClassByName(u"b")->ID, 2);
  EXPECT_EQ(registry.GetVeskaClassByName(u"y"), nullptr);
  EXPECT_EQ(registry.CurrentClass()->GetName(), u"B") << "a miss keeps the current class";
}

// A second record of a name stands behind the first, and lookups in any case find the first,
// whether the name index answers (folding only a to z: "Z`d" is not "Z@d") or, once a name beyond
// ASCII is registered, the search of the list, which folds by Unicode rules (the Kelvin sign: k).
TEST(ClassRegistry, DuplicateNameIsKeptBehindTheFirstAndLookupsFindTheFirst) {
  TVeskaClasses registry;
  registry.AddVeskaClass(Record(u"Alpha"));
  registry.AddVeskaClass(Record(u"Dup", TNameElement::StaticClassInfo()));
  registry.AddVeskaClass(Record(u"DUP", TOwnerElement::StaticClassInfo()));  // equal to the last
  registry.AddVeskaClass(Record(u"Z@d"));
  registry.AddVeskaClass(Record(u"dup", TElement::StaticClassInfo()));  // equal to the first
  EXPECT_EQ(Names(registry), (std::vector<String>{u"Alpha", u"Dup", u"dup", u"DUP", u"Z@d"}));
  for (const char16_t* added : {u"TŽluťoučký", u"TKelvin"}) {
    for (const char16_t* name : {u"Dup", u"dUP", u"DUP"}) {
      EXPECT_EQ(registry.GetClass(name), &TNameElement::StaticClassInfo()) << ToUtf8(name);
    }
    for (const char16_t* name : {u"Du", u"Dups", u"", u"Z`d"}) {
      EXPECT_EQ(registry.GetClass(name), nullptr) << ToUtf8(name);
    }
    registry.AddVeskaClass(Record(added));
  }
  EXPECT_EQ(registry.GetVeskaClassByName(u"T\u212Aelvin"), registry.GetVeskaClassByName(u"tkelvin"));
  EXPECT_NE(registry.GetVeskaClassByName(u"TŽLUŤOUČKÝ"), nullptr);
}

TEST(ClassRegistry, FindIndexReportsPositionAndInsertPlace) {
  TVeskaClasses registry;
  int insert = 99;
  EXPECT_EQ(registry.FindIndex(u"x", insert), -1);
  EXPECT_EQ(insert, -1);
  Register(registry, {u"b", u"d", u"f", u"h"});
  static constexpr std::tuple<StringView, int, int> kCases[] = {{u"z", -1, -1}, {u"H", 3, -1}, {u"a", -1, 0},
                                                                {u"B", 0, 1},   {u"e", -1, 2}, {u"d", 1, 2}};
  for (const auto& [name, index, insert_index] : kCases) {
    EXPECT_EQ(registry.FindIndex(String(name), insert), index) << ToUtf8(name);
    EXPECT_EQ(insert, insert_index) << ToUtf8(name);
  }
}

// Lookups answer from a name index; removing, inserting or renaming records outside registration
// must leave the answers those of the sorted list.
TEST(ClassRegistry, LookupsFollowChangesOfTheListAndRenamedRecords) {
  TVeskaClasses registry;
  Register(registry, {u"TAlpha", u"TBeta", u"TGamma", u"TOmega"});
  TElement* beta = registry.GetVeskaClassByName(u"TBeta");
  registry.RemoveElement(beta);
  delete beta;
  EXPECT_EQ(registry.GetVeskaClassByName(u"TBeta"), nullptr);
  registry.InsertElement(0, Record(u"TAardvark"));
  EXPECT_NE(registry.GetVeskaClassByName(u"taardvark"), nullptr);
  registry.AddVeskaClass(Record(u"TZeta"));
  EXPECT_NE(registry.GetVeskaClassByName(u"TAardvark"), nullptr);

  registry.GetVeskaClassByName(u"TGamma")->SetName(u"TDelta");
  EXPECT_EQ(registry.GetVeskaClassByName(u"TGamma"), nullptr);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TDelta")->ID, 2);
  // Renamed out of order, the list is left to its search, which answers as it always has.
  registry.GetVeskaClassByName(u"TAardvark")->SetName(u"TZulu");
  int insert = -1;
  const int found = registry.FindIndex(u"TOmega", insert);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TOmega"), found >= 0 ? registry.Get(found) : nullptr);
}

// A world shows the registry to scripts, which may hand it to any entity's commands: the
// registry and its records only leave such an entity, even one whose members do not know it.
TEST(ClassRegistry, TheProcessRegistryAndItsRecordsOutliveTheEntitiesAScriptPutsThemIn) {
  TVeskaClasses& registry = VeskaClasses();
  const int32_t count = registry.ElementsCount();
  {
    TQuickEntity holder;
    holder.PAddAllFrom(&registry);
    holder.AddElement(&registry);
    holder.SetElementToFree(&registry);
  }
  EXPECT_EQ(registry.ElementsCount(), count);
}

TEST(ClassRegistry, LibraryClassesAreRegisteredInUnitOrder) {
  static constexpr StringView kOrder[] = {
      u"TVeskaClass",   u"TVeskaClasses", u"TVeskaClassProperty", u"TElement",        u"TNameElement",
      u"TOwnerElement", u"TEntity",       u"TNameEntity",         u"TOwnerEntity",    u"TEnvelopeEntity",
      u"TQuickEntity",  u"TVeskaMessage", u"TStringEntity",       u"TYouShallNotPass"};
  TVeskaClasses& registry = VeskaClasses();
  for (int id = 0; id < 14; ++id) {
    TVeskaClass* record = registry.GetVeskaClassByName(kOrder[id]);
    ASSERT_NE(record, nullptr) << ToUtf8(kOrder[id]);
    EXPECT_EQ(record->ID, id) << ToUtf8(kOrder[id]);
    EXPECT_EQ(record->ElementsCount(), record->PropCount) << "shown from the start";
  }
  EXPECT_EQ(GetVeskaClass(u"TVeskaInstance"), nullptr);  // not registered
}

// One published property of every kind the text forms know, getters that fail, a reference to a
// class that is no element, and names that only a folding of a to z tells apart.
class TAllKinds : public TNameElement {
  VESKA_CLASS(TAllKinds, TNameElement, u"classes_test")
 public:
  int32_t Int = 0;
  char Ch = 0;
  char16_t WCh = 0;
  TTypeKind Mode = TTypeKind::tkUnknown;
  TSet<TTypeKind> Modes;
  double Flt = 0;
  ShortString Short;
  AnsiString Ansi;
  String Uni;
  WideString Wide;
  Variant Var;
  TNameElement* Obj = nullptr;
  TMethod Meth;
  int64_t Big = 0;
  bool Flag = false;
  TStringList* Lines = nullptr;

  int32_t FailingOrdinal() const { throw ERangeError(u"ordinal read fails"); }
  double FailingFloat() const { throw EConvertError(u"float read fails"); }
  TMethod FailingMethod() const { throw EConvertError(u"method read fails"); }

  static void Publish(Publisher<TAllKinds>& p) {
    p.Field(u"Int", &TAllKinds::Int);
    p.Field(u"Ch", &TAllKinds::Ch).Stored(false);
    p.Field(u"WCh", &TAllKinds::WCh);
    p.Field(u"Mode", &TAllKinds::Mode);
    p.Field(u"Modes", &TAllKinds::Modes);
    p.Field(u"Flt", &TAllKinds::Flt);
    p.Field(u"Short", &TAllKinds::Short);
    p.Field(u"Ansi", &TAllKinds::Ansi);
    p.Field(u"Uni", &TAllKinds::Uni);
    p.Field(u"Wide", &TAllKinds::Wide);
    p.Field(u"Var", &TAllKinds::Var);
    p.Field(u"Obj", &TAllKinds::Obj);
    p.Field(u"Meth", &TAllKinds::Meth);
    p.Field(u"Big", &TAllKinds::Big);
    p.Field(u"Flag", &TAllKinds::Flag);
    p.Field(u"Lines", &TAllKinds::Lines);
    p.Property(u"BadOrd", &TAllKinds::FailingOrdinal).Stored(false);
    p.Property(u"BadFlt", &TAllKinds::FailingFloat).Stored(false);
    p.Property(u"BadMeth", &TAllKinds::FailingMethod).Stored(false);
    p.Field(u"int", &TAllKinds::Big);  // the first property of a name is the one found
    p.Field(u"Délka", &TAllKinds::Big);
  }
};

const int kFirst = TNameElement::StaticClassInfo().PropCount();  // the inherited properties come first

TEST(PropertyAccess, TableIsDeclarationOrderWithKindsAndNamesFoldOnlyAToZ) {
  TAllKinds o;
  ASSERT_EQ(GetPropCount(&o), kFirst + 21);
  EXPECT_EQ(GetPropName(&o, kFirst + 21), u"");
  constexpr int kKinds[] = {1, 2, 9, 3, 6, 4, 5, 10, 18, 11, 12, 7, 8, 16, 3, 7};
  for (int i = 0; i < 16; ++i) EXPECT_EQ(static_cast<int>(GetPropType(&o, kFirst + i)), kKinds[i]) << i;
  TObject plain;
  EXPECT_EQ(GetPropType(&plain, 0), TTypeKind::tkUnknown);
  EXPECT_EQ(GetPropString(&plain, 0) + GetPropString(nullptr, 0), u"");
  EXPECT_EQ(GetPropIndex(&o, u"NAME"), 1);
  const std::pair<StringView, int> indexes[] = {{u"uni", 8},    {u"UNI", 8},   {u"INT", 0}, {u"déLKA", 20},
                                                {u"DÉLKA", -1}, {u"Délk", -1}, {u"", -1},   {u"nothing", -1}};
  for (const auto& [name, index] : indexes) {
    const int found = GetPropIndex(&o, name);
    EXPECT_EQ(found < 0 ? found : found - kFirst, index) << ToUtf8(name);
  }
  EXPECT_EQ(GetPropStringByName(&o, u"") + GetPropStringByName(&o, u"nothing"), u"");
  EXPECT_FALSE(SetPropStringByName(&o, u"nothing", u"1"));
}

// Numbers beyond 32 bits (64 for Big) never wrap into small ones: they give 0.  Ch keeps the
// first character cut to 8 bits (U+0159 gives 0x59).  A method text without ";" is all data
// part, and an empty part is 0.  Wide strings and variants read empty and are never written.
// The last row of each property leaves a value other than its default, for the copy to carry.
TEST(PropertyAccess, EveryKindReadsAndWritesItsTextFormAndIsCopiedUnlessEightBitOrWide) {
  static constexpr std::tuple<StringView, StringView, StringView> kCases[] = {
      {u"Int", u"abc", u"0"},
      {u"Int", u"-922337203685477580805", u"0"},
      {u"Int", u"4294967297", u"0"},
      {u"Int", u"-2147483648", u"-2147483648"},
      {u"Ch", u"", StringView(u"\0", 1)},
      {u"Ch", u"řx", u"Y"},
      {u"WCh", u"", StringView(u"\0", 1)},
      {u"WCh", u"€", u"€"},
      {u"Mode", u"2", u"tkChar"},
      {u"Mode", u"tkfloat", u"tkFloat"},
      {u"Modes", u"5", u"5"},
      {u"Flt", u"", u"0"},
      {u"Flt", u"2.5", u"2.5"},
      {u"Short", u"krátký", u"krátký"},
      {u"Ansi", u"dlouhý", u"dlouhý"},
      {u"Uni", u"Unicode ✓", u"Unicode ✓"},
      {u"Big", u"12x", u"0"},
      {u"Big", u"9223372036854775808", u"0"},
      {u"Big", u"-92233720368547758085", u"0"},
      {u"Big", u"-9223372036854775808", u"-9223372036854775808"},
      {u"Flag", u"false", u"False"},
      {u"Flag", u"1", u"True"},
      {u"Meth", u"56", u"0;56"},
      {u"Meth", u";", u"0;0"},
      {u"Meth", u"12;34", u"12;34"},
      {u"Wide", u"new", u""},
      {u"Var", u"4", u""}};
  TAllKinds o;
  EXPECT_EQ(GetPropStringByName(&o, u"Meth"), u"0;0");
  o.Wide.Text = u"kept";
  o.Var = int64_t{3};
  for (const auto& [name, text, read] : kCases) {
    SetPropStringByName(&o, name, String(text));
    EXPECT_EQ(GetPropStringByName(&o, name), read) << ToUtf8(name) << " " << ToUtf8(text);
  }
  EXPECT_EQ(o.Wide.Text, u"kept");
  EXPECT_EQ(std::get<int64_t>(o.Var), 3);

  // A copy takes every stored property as it stands, references included, but 8-bit and wide
  // strings, which are read and never written.
  TStringList lines;
  o.SetName(u"copied");
  o.Lines = &lines;
  o.Ch = 'c';  // not stored
  std::unique_ptr<TElement> copied(CreateElementCopy(&o));
  auto* copy = dynamic_cast<TAllKinds*>(copied.get());
  ASSERT_NE(copy, nullptr);
  for (const PropInfo* property : TAllKinds::StaticClassInfo().Properties()) {
    if (property->Name() == u"Ch" || property->Name() == u"Ansi") continue;
    EXPECT_EQ(GetPropString(copy, property->NameIndex()), GetPropString(&o, property->NameIndex()))
        << ToUtf8(property->Name());
  }
  EXPECT_EQ(std::get<int64_t>(copy->Var), 3);
  EXPECT_EQ(copy->Lines, &lines);
  EXPECT_EQ(copy->Ch, 0);
  EXPECT_EQ(copy->Ansi.Bytes + ToUtf8(copy->Wide.Text), "");
}

// Object references travel through text as handle numbers, meaningful within the process only.
TEST(PropertyAccess, ObjectReferencesTravelAsHandleNumbers) {
  TAllKinds o;
  TNameElement target;
  EXPECT_EQ(GetPropStringByName(&o, u"Obj"), u"0");
  ASSERT_TRUE(SetPropStringByName(&o, u"obj", IntToStr(ObjectHandles::HandleOf(&target))));
  EXPECT_EQ(GetObjectPropByName(&o, u"OBJ"), &target);
  EXPECT_EQ(GetPropStringByName(&o, u"Obj"), IntToStr(ObjectHandles::HandleOf(&target)));
  // A number that names no object, junk, or an object of the wrong class gives none.
  TStringList lines;
  for (const String& text : {String(u"2000000000"), String(u"junk"), IntToStr(ObjectHandles::HandleOf(&lines))}) {
    o.Obj = &target;
    SetPropStringByName(&o, u"Obj", text);
    EXPECT_EQ(o.Obj, nullptr) << ToUtf8(text);
  }
  EXPECT_TRUE(SetObjectPropByName(&o, u"Obj", &target));
  EXPECT_EQ(o.Obj, &target);
  EXPECT_FALSE(SetObjectPropByName(&o, u"Int", &target) || SetObjectPropByName(&o, u"none", &target));
  EXPECT_EQ(GetObjectPropByName(&o, u"Int"), nullptr);
}

TEST(PropertyAccess, FailingReadsGiveErrorTextsAndFailingWritesAreReported) {
  TAllKinds o;
  EXPECT_EQ(GetPropStringByName(&o, u"BadOrd"), u"Err Ord Value");
  EXPECT_EQ(GetPropStringByName(&o, u"BadFlt"), u"Err Value");
  EXPECT_EQ(GetPropStringByName(&o, u"BadMeth"), u"");  // a failed method read leaves the text empty

  CapturedMessages captured;
  EXPECT_TRUE(SetPropStringByName(&o, u"OwnersCount", u"99")) << "a read-only property is found, and not written";
  EXPECT_EQ(o.GetOwnersCount(), 0);
  SetPropStringByName(&o, u"Flt", u"abc");
  SetPropStringByName(&o, u"Mode", u"tkNone");
  // A method pair is no integer: a malformed part is an error, and the pair stays as it was.
  SetPropStringByName(&o, u"Meth", u"7;8");
  SetPropStringByName(&o, u"Meth", u"12;abc");
  SetPropStringByName(&o, u"Meth", u"x;5");
  EXPECT_EQ(GetPropStringByName(&o, u"Meth"), u"7;8");
  EXPECT_EQ(captured.Texts(),
            (std::vector<String>{
                u"Error filling property Flt by string abc", u"Error filling property Mode by string tkNone",
                u"Error filling property Meth by string 12;abc", u"Error filling property Meth by string x;5"}));
  EXPECT_EQ(captured.Entries()[0].Kind, MessageKind::Error);
}

TEST(ClassRecord, AnswersFromItsPropertyTableAndAnInstanceAsksItsElement) {
  TVeskaClass record;
  TVeskaInstance instance;
  // No table: a record counts everything as stored, read-only and write-only, an instance nothing as stored.
  EXPECT_TRUE(record.GetPropertyStored(0) && record.GetPropertyIsReadOnly(0) && record.GetPropertyIsWriteOnly(0) &&
              record.GetPropertyIsReadOrWriteOnly(0));
  EXPECT_FALSE(instance.GetPropertyStored(0));
  record.SetElementClass(&TAllKinds::StaticClassInfo());
  instance.SetElementClass(&TAllKinds::StaticClassInfo());
  EXPECT_FALSE(instance.GetPropertyStored(0)) << "a table but no instance";
  EXPECT_TRUE(record.IsClassName(u"tallkinds"));
  ASSERT_EQ(record.PropCount, kFirst + 21);
  EXPECT_EQ(record.PropertyIndex(u"id"), 0);  // ancestors' properties first
  EXPECT_EQ(record.PropertyIndex(u"INT"), kFirst);
  EXPECT_EQ(record.PropertyIndex(u"missing"), -1);
  EXPECT_TRUE(record.GetPropertyStored(1) && !record.GetPropertyStored(kFirst + 1));  // a predicate counts as stored
  EXPECT_EQ(record.GetPropertyClass(kFirst + 15), &TStringList::StaticClassInfo());
  EXPECT_EQ(record.GetPropertyClass(kFirst), nullptr);
  const int owners = record.PropertyIndex(u"OwnersCount");
  EXPECT_TRUE(record.GetPropertyIsReadOnly(owners) && !record.GetPropertyIsWriteOnly(owners) &&
              record.GetPropertyIsReadOrWriteOnly(owners));
  EXPECT_FALSE(record.GetPropertyIsReadOrWriteOnly(kFirst));
  record.SetElementClass(nullptr);
  EXPECT_FALSE(record.HasPropertyTable());
  EXPECT_EQ(record.PropCount, kFirst + 21);  // kept as it was

  // An instance asks the stored predicate of its element, and reads 8-bit and wide strings,
  // which copying never writes.
  TAllKinds source;
  source.Ansi = {"a"};
  source.Wide = {u"w"};
  source.SetName(u"named");
  instance.SetInstance(&source);
  EXPECT_TRUE(instance.GetPropertyStored(1));
  source.SetName(u"");
  EXPECT_FALSE(instance.GetPropertyStored(1));
  TPropertyBuffer ansi, wide;
  instance.GetPropertyValue(instance.PropertyIndex(u"Ansi"), ansi);
  instance.GetPropertyValue(instance.PropertyIndex(u"Wide"), wide);
  EXPECT_EQ(std::get<String>(ansi) + std::get<String>(wide), u"aw");
}

// Registered as an application registers its own classes, the class is found and created by
// name, and the check of the registered classes reports its stored reference to a non-element
// (level 8, no sender) and nothing of the library's own classes.
TEST(ClassRegistry, AnApplicationClassIsCreatedByNameAndCheckedAndAnUnknownNameRaisesWithIt) {
  if (GetVeskaClass(u"TAllKinds") == nullptr) RegisterVeskaClass<TAllKinds>();
  EXPECT_EQ(FindVeskaClass(u"tallkinds"), &TAllKinds::StaticClassInfo());
  const TVeskaClass* record = VeskaClasses().GetVeskaClassByName(u"TAllKinds");
  EXPECT_EQ(record->GetUnit_Name() + u"|" + record->GetAncestorClassName(), u"classes_test|TNameElement");
  for (const char16_t* name : {u"TAllKinds", u"AllKinds"}) {  // "T" is added when missing
    const std::unique_ptr<TElement> created(CreateElementByName(name));
    EXPECT_NE(ObjectAs<TAllKinds>(created.get()), nullptr) << ToUtf8(name);
  }
  EXPECT_EQ(GetVeskaClass(u"xyz"), nullptr);
  EXPECT_THAT([] { FindVeskaClass(u"xyz"); }, ThrowsMessage<EClassNotFound>(StrEq("Veska nenašel třídu xyz")));

  std::vector<String> posted;
  const TWindowProc previous = Application().SetWindowProc([&](TWindowMessage& m) {
    auto* text = dynamic_cast<TVeskaTextMessage*>(TVeskaMessage::FromWindowMessage(m.Msg, m.WParam, m.LParam));
    if (text && text->Message == tm_Text && !text->Sender) posted.push_back(text->GetMessageText());
    return false;  // not taken: the queue frees the message
  });
  CHeckVeskaClasses();
  Application().ProcessMessages();
  Application().SetWindowProc(previous);
  EXPECT_EQ(posted, std::vector<String>{u"TAllKinds property \"Lines\" is not Element"});
}

}  // namespace
}  // namespace veska
