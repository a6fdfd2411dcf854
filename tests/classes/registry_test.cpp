#include "kernel/classes/registry.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "kernel/elements/elements_unit.h"
#include "kernel/elements/message.h"
#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/platform/publisher.h"

namespace veska {
namespace {

// A class record built by hand, named freely, for an element class of the test's choosing.
TVeskaClass* Record(const String& name, const ClassInfo& element_class = TNameElement::StaticClassInfo()) {
  auto* record = new TVeskaClass;
  record->SetElementClass(&element_class);
  record->SetName(name);
  return record;
}

std::vector<String> Names(TVeskaClasses& registry) {
  std::vector<String> names;
  for (int i = 0; i < registry.ElementsCount(); ++i) names.push_back(registry.Get(i)->GetName());
  return names;
}

TEST(ClassRegistry, ClassesAreNumberedInRegistrationOrderAndShowTheirProperties) {
  TVeskaClasses registry;
  registry.AddClass(TOwnerElement::StaticClassInfo());
  registry.AddClass(TElement::StaticClassInfo());
  EXPECT_EQ(registry.CurrentClass()->ID, 1);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TOwnerElement")->ID, 0);
  EXPECT_EQ(registry.CurrentClass()->ElementsCount(), 0) << "without ShowProperties no children";
  registry.ShowProperties = true;
  registry.AddClass(TNameElement::StaticClassInfo());
  TVeskaClass* shown = registry.CurrentClass();
  ASSERT_EQ(shown->ElementsCount(), shown->PropCount);
  EXPECT_EQ(shown->Get(1)->GetName(), u"Name");
}

TEST(ClassRegistry, NamesAreSortedIgnoringCaseWhateverSortByNameSays) {
  TVeskaClasses registry;
  registry.SetSortByName(false);
  EXPECT_TRUE(registry.SortByName);
  for (const char16_t* name : {u"B", u"a", u"C"}) registry.AddVeskaClass(Record(name));
  EXPECT_EQ(Names(registry), (std::vector<String>{u"a", u"B", u"C"}));
  EXPECT_EQ(registry.GetVeskaClassByName(u"b")->ID, 0);
  EXPECT_EQ(registry.GetVeskaClassByName(u"d"), nullptr);
  EXPECT_EQ(registry.CurrentClass()->GetName(), u"B") << "a miss keeps the current class";

  // Many names in any order come out sorted, whichever path of the search places them.
  TVeskaClasses many;
  for (const char16_t* name : {u"m", u"D", u"x", u"b", u"Q", u"a", u"z", u"k", u"E", u"c", u"y", u"n"}) {
    many.AddVeskaClass(Record(name));
  }
  const std::vector<String> names = Names(many);
  for (std::size_t i = 1; i < names.size(); ++i) EXPECT_LT(CompareText(names[i - 1], names[i]), 0) << i;
}

TEST(ClassRegistry, DuplicateNameIsKeptBehindTheFirstAndLookupsFindTheFirst) {
  TVeskaClasses registry;
  registry.AddVeskaClass(Record(u"Dup", TNameElement::StaticClassInfo()));
  registry.AddVeskaClass(Record(u"DUP", TOwnerElement::StaticClassInfo()));  // equal to the last
  registry.AddVeskaClass(Record(u"Zed"));
  registry.AddVeskaClass(Record(u"dup", TElement::StaticClassInfo()));  // equal to the first
  EXPECT_EQ(Names(registry), (std::vector<String>{u"Dup", u"dup", u"DUP", u"Zed"}));
  EXPECT_EQ(registry.GetClass(u"dUp"), &TNameElement::StaticClassInfo());
  EXPECT_EQ(registry.CurrentClass()->ID, 0);
}

TEST(ClassRegistry, FindIndexReportsPositionAndInsertPlace) {
  TVeskaClasses registry;
  int insert = 99;
  EXPECT_EQ(registry.FindIndex(u"x", insert), -1);
  EXPECT_EQ(insert, -1);
  for (const char16_t* name : {u"b", u"d", u"f", u"h"}) registry.AddVeskaClass(Record(name));
  struct Case {
    StringView name;
    int index;
    int insert;
  };
  static constexpr Case kCases[] = {{u"z", -1, -1}, {u"H", 3, -1}, {u"a", -1, 0},
                                    {u"B", 0, 1},   {u"e", -1, 2}, {u"d", 1, 2}};
  for (const Case& c : kCases) {
    SCOPED_TRACE(ToUtf8(c.name));
    EXPECT_EQ(registry.FindIndex(String(c.name), insert), c.index);
    EXPECT_EQ(insert, c.insert);
  }
}

TEST(ClassRegistry, UnknownNameGivesNoneOrRaisesWithItsName) {
  EXPECT_EQ(GetVeskaClass(u"xyz"), nullptr);
  try {
    FindVeskaClass(u"xyz");
    ADD_FAILURE() << "FindVeskaClass did not raise";
  } catch (const EClassNotFound& error) {
    EXPECT_EQ(error.Message(), u"Veska nenašel třídu xyz");
  }
  EXPECT_EQ(FindVeskaClass(u"telement"), &TElement::StaticClassInfo());
}

TEST(ClassRegistry, LibraryClassesAreRegisteredInUnitOrder) {
  constexpr std::array<std::u16string_view, 14> kOrder{
      u"TVeskaClass",   u"TVeskaClasses", u"TVeskaClassProperty", u"TElement",        u"TNameElement",
      u"TOwnerElement", u"TEntity",       u"TNameEntity",         u"TOwnerEntity",    u"TEnvelopeEntity",
      u"TQuickEntity",  u"TVeskaMessage", u"TStringEntity",       u"TYouShallNotPass"};
  TVeskaClasses& registry = VeskaClasses();
  EXPECT_TRUE(registry.ShowProperties);
  for (std::size_t id = 0; id < kOrder.size(); ++id) {
    TVeskaClass* record = registry.GetVeskaClassByName(String(kOrder[id]));
    ASSERT_NE(record, nullptr) << ToUtf8(String(kOrder[id]));
    EXPECT_EQ(record->ID, static_cast<int32_t>(id)) << ToUtf8(String(kOrder[id]));
    EXPECT_EQ(record->ElementsCount(), record->PropCount);
  }
  TVeskaClass* named = registry.GetVeskaClassByName(u"TNameElement");
  EXPECT_EQ(named->GetUnit_Name() + u"|" + named->GetAncestorClassName(), u"Elements|TElement");
  EXPECT_EQ(GetVeskaClass(u"TVeskaInstance"), nullptr);  // not registered
}

TEST(ClassRegistry, AUnitRegistersOnceHoweverOftenStartUpRuns) {
  TVeskaClasses& registry = VeskaClasses();
  const int count = registry.ElementsCount();
  registry.RegisterUnit(kElementsUnitClasses);
  registry.RegisterUnit(kRegistryUnitClasses);
  EXPECT_EQ(registry.ElementsCount(), count);
  EXPECT_EQ(registry.GetVeskaClassByName(u"TElement")->ID, 3);
}

class TTwiceNamed : public TNameElement {
  VESKA_CLASS(TTwiceNamed, TNameElement, u"registry_test")
 public:
  int32_t Other = 0;
  static void Publish(Publisher<TTwiceNamed>& p) {
    p.Field(u"other", &TTwiceNamed::Other).Stored(false);
    p.Field(u"OTHER", &TTwiceNamed::Other);
  }
};

TEST(ClassRecord, PropertyTableAndItsQuestions) {
  TVeskaClass record;
  // No table: everything counts as stored, read-only and write-only.
  EXPECT_TRUE(record.GetPropertyStored(0) && record.GetPropertyIsReadOnly(0) && record.GetPropertyIsWriteOnly(0) &&
              record.GetPropertyIsReadOrWriteOnly(0));

  record.SetElementClass(&TTwiceNamed::StaticClassInfo());
  EXPECT_TRUE(record.IsClassName(u"ttwicenamed"));
  const int count = TTwiceNamed::StaticClassInfo().PropCount();
  ASSERT_EQ(record.PropCount, count);
  EXPECT_EQ(record.PropertyIndex(u"id"), 0);             // ancestors' properties first
  EXPECT_EQ(record.PropertyIndex(u"Other"), count - 2);  // the first of two equal names
  EXPECT_EQ(record.PropertyIndex(u"missing"), -1);
  EXPECT_TRUE(!record.GetPropertyStored(count - 2) && record.GetPropertyStored(count - 1));
  EXPECT_EQ(record.GetPropertyTypeKind(count - 1), TTypeKind::tkInteger);
  const int owners = record.PropertyIndex(u"OwnersCount");
  EXPECT_TRUE(record.GetPropertyIsReadOnly(owners) && !record.GetPropertyIsWriteOnly(owners) &&
              record.GetPropertyIsReadOrWriteOnly(owners));
  EXPECT_FALSE(record.GetPropertyIsReadOrWriteOnly(0));

  record.SetElementClass(nullptr);
  EXPECT_FALSE(record.HasPropertyTable());
  EXPECT_EQ(record.PropCount, count);  // kept as it was
}

// The element whose copy is tested: one property of each kind that copying treats apart.
class TCopySource : public TNameElement {
  VESKA_CLASS(TCopySource, TNameElement, u"registry_test")
 public:
  TNameElement* Partner = nullptr;
  AnsiString Ansi;
  WideString Wide;
  String Uni;
  int32_t Hidden = 0;
  static void Publish(Publisher<TCopySource>& p) {
    p.Field(u"Partner", &TCopySource::Partner);
    p.Field(u"Ansi", &TCopySource::Ansi);
    p.Field(u"Wide", &TCopySource::Wide);
    p.Field(u"Uni", &TCopySource::Uni);
    p.Field(u"Hidden", &TCopySource::Hidden).Stored(false);
  }
};

TEST(ClassInstance, CopyIsShallowAndSkipsEightBitAndWideStrings) {
  TNameElement partner;
  TCopySource source;
  source.SetName(u"original");
  source.Partner = &partner;
  source.Ansi = {"ansi"};
  source.Wide = {u"wide"};
  source.Uni = u"unicode";
  source.Hidden = 5;
  std::unique_ptr<TElement> copied(CreateElementCopy(&source));
  auto* copy = dynamic_cast<TCopySource*>(copied.get());
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->GetName() + u"|" + copy->Uni + u"|" + copy->Wide.Text, u"original|unicode|");
  EXPECT_EQ(copy->Partner, &partner);
  EXPECT_EQ(copy->Ansi.Bytes, "");
  EXPECT_EQ(copy->Hidden, 0);  // not stored, not copied
}

TEST(ClassInstance, ReadsEveryKindButNeverWritesEightBitOrWideStrings) {
  TCopySource element;
  element.Ansi = {"a"};
  element.Wide = {u"w"};
  TVeskaInstance instance;
  EXPECT_FALSE(instance.GetPropertyStored(0));  // no table, no instance
  instance.SetElementClass(&TCopySource::StaticClassInfo());
  EXPECT_FALSE(instance.GetPropertyStored(0));  // a table but no instance
  instance.SetInstance(&element);
  EXPECT_FALSE(instance.GetPropertyStored(instance.PropertyIndex(u"Hidden")));
  for (const char16_t* name : {u"Ansi", u"Wide", u"Uni"}) {
    const int index = instance.PropertyIndex(name);
    TPropertyBuffer buffer;
    instance.GetPropertyValue(index, buffer);
    ASSERT_TRUE(std::holds_alternative<String>(buffer)) << ToUtf8(name);
    instance.SetPropertyValue(index, TPropertyBuffer{String(u"changed")});
  }
  EXPECT_EQ(element.Ansi.Bytes, "a");
  EXPECT_EQ(element.Wide.Text + u"|" + element.Uni, u"w|changed");

  TNameElement partner;
  const int partner_index = instance.PropertyIndex(u"Partner");
  instance.SetPropertyValue(partner_index, TPropertyBuffer{ObjectHandles::HandleOf(&partner)});
  EXPECT_EQ(element.Partner, &partner);
  TPropertyBuffer read;
  instance.GetPropertyValue(partner_index, read);
  EXPECT_EQ(std::get<int32_t>(read), ObjectHandles::HandleOf(&partner));
}

// A persistent class that is not an element, referenced by a stored property of an element.
class TNotAnElement : public TPersistent {
  VESKA_CLASS(TNotAnElement, TPersistent, u"registry_test")
};

class TBadReference : public TNameElement {
  VESKA_CLASS(TBadReference, TNameElement, u"registry_test")
 public:
  TNotAnElement* Foreign = nullptr;
  TNotAnElement* Unsaved = nullptr;
  TNameElement* Fine = nullptr;
  static void Publish(Publisher<TBadReference>& p) {
    p.Field(u"Foreign", &TBadReference::Foreign);
    p.Field(u"Unsaved", &TBadReference::Unsaved).Stored(false);
    p.Field(u"Fine", &TBadReference::Fine);
  }
};

TEST(ClassRecord, SelfCheckPostsOneTextPerStoredNonElementReference) {
  std::vector<String> posted;  // level-8 texts without a sender
  Application().ClearMessages();
  const TWindowProc previous = Application().SetWindowProc([&](TWindowMessage& message) {
    auto* text =
        dynamic_cast<TVeskaTextMessage*>(TVeskaMessage::FromWindowMessage(message.Msg, message.WParam, message.LParam));
    if (text != nullptr && text->Message == tm_Text && text->Sender == nullptr) {
      posted.push_back(text->GetMessageText());
    }
    return false;  // not taken: the queue frees the message
  });
  TVeskaClass record;
  record.SetElementClass(&TBadReference::StaticClassInfo());
  EXPECT_EQ(record.GetPropertyClass(record.PropertyIndex(u"Foreign")), &TNotAnElement::StaticClassInfo());
  record.SelfCHeck();
  EXPECT_EQ(Application().PendingMessageCount(), 1U);
  Application().ProcessMessages();
  Application().SetWindowProc(previous);
  EXPECT_EQ(posted, std::vector<String>{u"TBadReference property \"Foreign\" is not Element"});

  // The library's own classes are all sound.
  CHeckVeskaClasses();
  EXPECT_EQ(Application().PendingMessageCount(), 0U);
}

}  // namespace
}  // namespace veska
