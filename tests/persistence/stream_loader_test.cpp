#include "kernel/persistence/stream_loader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "kernel/persistence/persistence_unit.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/tools/technology.h"
#include "tests/support/model_writer.h"
#include "tests/support/recording_host.h"
#include "tests/support/temp_folder.h"

namespace veska {
namespace {

using test::ModelWriter;
using ::testing::ThrowsMessage;
using Texts = std::vector<String>;

// Loads the file into a container that owns what it loads, and notes the texts it posts.
struct Loaded {
  explicit Loaded(const String& file_name) {
    TLoad load;
    load.SetFileName(file_name);
    load.SetContainerEntity(&container);
    load.DoIt();
    result = load.GetOutput();
    texts = host.TextMessages();
  }
  test::RecordingHost host;
  TOwnerEntity container;
  TElement* result = nullptr;
  Texts texts;
};

TEST(StreamLoader, LoadsDeclaredClassesAndConvertsOrDropsWhatChanged) {
  test::TempFolder folder;
  ModelWriter file;
  file.Class(u"TStringEntity", {{u"Name", 18}, {u"Gone", 1}, {u"ID", 4}, {u"Value", 2}});
  file.Element(0, 0, [](TWriter& w) {
    w.WriteInteger(0), w.WriteString(u"kolo"), w.WriteInteger(1), w.WriteInteger(5), w.WriteInteger(2),
        w.WriteFloat(2.5), w.WriteInteger(3), w.WriteChar(u'x');
  });
  file.Class(u"TNoSuchThing", {{u"Name", 18}});
  file.Element(
      1, 1, [](TWriter& w) { w.WriteInteger(0), w.WriteString(u"vůz"), w.WriteInteger(0), w.WriteString(u"!"); }, {0});
  file.Class(u"TYouShallNotPass", {});
  file.Element(2, 2, [](TWriter&) {});
  Loaded loaded(folder.Write("model.vsk", file.Bytes()));
  EXPECT_EQ(
      loaded.texts,
      (Texts{u"TStringEntity lost property: Gone", u"TStringEntity property \"ID\" type conv.: tkFloat to tkInteger",
             u"TStringEntity property \"Value\" type conv.: tkWChar to tkUString", u"TNoSuchThing - Unknown class !"}));
  ASSERT_NE(loaded.result, nullptr);  // the element before the closing marker, which is freed
  EXPECT_EQ(loaded.result->ClassName() + u" " + loaded.result->GetName(), u"TOwnerEntity !");
  ASSERT_EQ(loaded.container.ElementsCount(), 2);
  auto* wheel = static_cast<TStringEntity*>(loaded.container.Get(0));
  EXPECT_EQ(wheel->GetName() + u" " + IntToStr(wheel->ID) + u" " + wheel->Value, u"kolo 2 x");  // 2.5: ties to even
  EXPECT_EQ(static_cast<TEntity*>(loaded.result)->Get(0), wheel);
}

// A reference of -2 holds an element list inline; the outer element goes on after it.
TEST(StreamLoader, ReadsInlineElementsAndReportsBadReferences) {
  test::TempFolder folder;
  ModelWriter file;
  file.Class(u"TSelectTechnology", {{u"ElseTool", 7}, {u"Name", 18}});
  file.Element(0, 0, [&](TWriter& w) {
    w.WriteInteger(0), w.WriteInteger(-2), w.WriteListBegin();
    file.Class(u"TTool", {{u"Name", 18}});
    file.Element(1, 1, [](TWriter& inner) { inner.WriteInteger(0), inner.WriteString(u"jinak"); });
    w.WriteListEnd(), w.WriteInteger(1), w.WriteString(u"výběr");
  });
  file.Element(0, 2, [](TWriter& w) { w.WriteInteger(0), w.WriteInteger(99); });
  // An inline list that makes no element refers to the element that the record before reported.
  file.Element(0, 3, [](TWriter& w) {
    w.WriteInteger(0), w.WriteInteger(-2), w.WriteListBegin(), w.WriteListEnd(), w.WriteInteger(1);
    w.WriteString(u"prázdný");
  });
  Loaded loaded(folder.Write("model.vsk", file.Bytes()));
  EXPECT_EQ(loaded.texts, Texts{u"Loader Error: TSelectTechnology ClassProperty ElseTool"});
  auto* selection = static_cast<TSelectTechnology*>(loaded.container.Get(0));
  ASSERT_NE(selection->GetElseTool(), nullptr);
  EXPECT_EQ(
      selection->GetName() + u" " + selection->GetElseTool()->GetName() + u" " + IntToStr(selection->GetElseTool()->ID),
      u"výběr jinak -1");
  auto* empty = static_cast<TSelectTechnology*>(loaded.result);
  EXPECT_EQ(loaded.container.ElementsCount(), 4);
  EXPECT_EQ(empty->GetName(), u"prázdný");
  EXPECT_EQ(empty->GetElseTool(), loaded.container.Get(2));
}

// Inline lists nested past the bound are reported and passed over as a failing record is.
TEST(StreamLoader, RefusesInlineListsNestedTooDeep) {
  test::TempFolder folder;
  ModelWriter file;
  file.Class(u"TSelectTechnology", {{u"ElseTool", 7}});
  std::function<void(int)> nest = [&](int level) {
    file.Element(0, level, [&](TWriter& w) {
      w.WriteInteger(0), w.WriteInteger(level == 300 ? -1 : -2);
      if (level < 300) w.WriteListBegin(), nest(level + 1), w.WriteListEnd();
    });
  };
  nest(0);
  Loaded loaded(folder.Write("deep.vsk", file.Bytes()));
  ASSERT_FALSE(loaded.texts.empty());  // and nothing else
  EXPECT_EQ(loaded.texts, Texts(loaded.texts.size(), u"Loader Error: element lists nested deeper than 256 levels"));
  EXPECT_EQ(loaded.container.ElementsCount(), 301);  // the records beyond are read where they stand
}

// A class of every kind that the rules treat apart.
class TProbe : public TOwnerElement {
  VESKA_CLASS(TProbe, TOwnerElement, u"loader_test")
 public:
  char Ch = 'a';
  int64_t Big = 0;
  double Ratio = 0;
  int32_t Count = 5;
  static void Publish(Publisher<TProbe>& p) {
    p.Field(u"Ch", &TProbe::Ch), p.Field(u"Big", &TProbe::Big), p.Field(u"Ratio", &TProbe::Ratio),
        p.Field(u"Count", &TProbe::Count);
  }
};

// "-" for an empty text into a character, 0 for no number; a 1-for-16 value dropped; no text for a float.
TEST(StreamLoader, ConvertsTextsAndDropsWhatItMayNotWrite) {
  RegisterVeskaClass<TProbe>();
  test::TempFolder folder;
  ModelWriter file;
  file.Class(u"TProbe", {{u"Ch", 5}, {u"Big", 1}, {u"Ratio", 18}, {u"Count", 10}});
  file.Element(0, 0, [](TWriter& w) {
    w.WriteInteger(0), w.WriteString(u""), w.WriteInteger(1), w.WriteInteger(7), w.WriteInteger(2);
    w.WriteString(u"2.5"), w.WriteInteger(3), w.WriteString(u"x");
  });
  Loaded loaded(folder.Write("model.vsk", file.Bytes()));
  EXPECT_EQ(loaded.texts, (Texts{u"TProbe property \"Ch\" type conv.: tkString to tkChar",
                                 u"TProbe property \"Ratio\" type error: 18",
                                 u"TProbe property \"Count\" type conv.: tkLString to tkInteger"}));
  const auto* probe = static_cast<TProbe*>(loaded.result);
  EXPECT_EQ(std::string(1, probe->Ch) + " " + std::to_string(probe->Big) + " " + std::to_string(probe->Count), "- 0 0");
}

// Progress moves at stream positions divisible by 200 only; a record that fails (a float beyond
// 32 bits for an integer) is passed over where it failed.
TEST(StreamLoader, ShowsProgressAt200ByteStepsAndPassesOverAFailingRecord) {
  test::TempFolder folder;
  const auto model = [](std::size_t padding, bool second) {
    ModelWriter file;
    file.Class(u"TStringEntity", {{u"Name", 18}, {u"ID", 4}});
    file.Element(0, 0, [&](TWriter& w) { w.WriteInteger(0), w.WriteString(String(padding, u'x')); });
    if (second) file.Element(0, 1, [](TWriter& w) { w.WriteInteger(1), w.WriteFloat(3e9); });
    return file.Bytes();
  };
  const std::size_t padding = 200 - (model(0, false).size() - 1);  // the first record ends at 200
  const std::string bytes = model(padding, true);
  Loaded loaded(folder.Write("model.vsk", bytes));
  EXPECT_EQ(loaded.host.delivered[0], u"10 TLoad>- - ");
  EXPECT_EQ(loaded.host.delivered[2] + loaded.host.delivered[3],
            u"11 TLoad>- - 14 TLoad>- - 200 bytů z celkových " + IntToStr(int(bytes.size())));
  ASSERT_EQ(loaded.container.ElementsCount(), 2);
  EXPECT_EQ(loaded.container.Get(1)->GetName() + IntToStr(loaded.container.Get(1)->ID),
            u"TStringEntity-1");  // no name, no ID
}

// "TPF0": the elements, each as it saves itself (its class name first).
std::string OlderFile(const std::function<void(TWriter&)>& elements) {
  ModelWriter file("TPF0", {});
  elements(file.Writer());
  return file.Bytes();
}

TEST(StreamLoader, OpensModelFilesOnlyAndHandsOlderOnesToTheOlderLoader) {
  test::TempFolder folder;
  TLoad load;
  const auto opening = [&](const String& file_name) {
    return [&load, file_name] { load.SetFileName(file_name), load.DoIt(); };
  };
  EXPECT_THAT(opening(u""), ThrowsMessage<EBadStreamName>("Chybné jméno souboru :  !"));
  EXPECT_THAT(opening(folder.Path("missing.vsk")),
              ThrowsMessage<EBadStream>("Soubor " + ToUtf8(folder.Path("missing.vsk")) + " neexistuje!"));
  EXPECT_THAT(opening(folder.Write("other.vsk", "PK\3\4")),
              ThrowsMessage<EBadStream>(ToUtf8(folder.Path("other.vsk")) + " ... neznámý typ souboru"));

  TStringEntity saved;
  saved.SetName(u"staré");
  load.SetFileName(folder.Write("old.vsk", OlderFile([&](TWriter& w) { saved.Save(w); })));
  load.DoIt();
  std::unique_ptr<TElement> loaded(load.GetOutput());
  ASSERT_NE(loaded, nullptr);
  EXPECT_EQ(loaded->ClassName() + u" " + loaded->GetName(), u"TStringEntity staré");

  CapturedMessages shown;
  load.SetOutput(nullptr);
  load.SetFileName(folder.Write("unknown.vsk", OlderFile([](TWriter& w) { w.WriteString(u"TNothing"); })));
  load.DoIt();
  EXPECT_EQ(load.GetOutput(), nullptr);
  EXPECT_EQ(shown.Texts(), Texts{u"Neregistrovaný element: TNothing"});
}

TEST(LoaderUnit, RegistersItsClassesInOrderAfterTheSortingTools) {
  int32_t id = VeskaClasses().GetVeskaClassByName(u"TSortElementsEx")->ID;
  for (const ClassInfoSource class_info : kLoaderUnitClasses.classes) {
    EXPECT_EQ(VeskaClasses().GetVeskaClassByName(class_info().Name())->ID, ++id) << ToUtf8(class_info().Name());
  }
}

}  // namespace
}  // namespace veska
