#include "kernel/persistence/stream_loader.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>

#include "kernel/persistence/persistence_unit.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/streams.h"
#include "kernel/tools/technology.h"
#include "tests/support/recording_host.h"
#include "tests/support/temp_folder.h"

namespace veska {
namespace {

using Texts = std::vector<String>;

// A VSK0 file written record by record, as a writer of model files writes one.
class ModelWriter {
 public:
  ModelWriter() : writer_(std::make_unique<TWriter>(stream_)) {
    writer_->WriteSignature("VSK0");
    for (StringView text : {u"Sklad", u"1.0", u""}) writer_->WriteString(text);
    writer_->WriteListBegin();
  }
  TWriter& operator*() { return *writer_; }
  // A class declaration: the name and its properties with their declared kinds.
  void Class(StringView name, std::initializer_list<std::pair<StringView, int>> properties) {
    writer_->WriteInteger(-1);
    writer_->WriteString(name);
    writer_->WriteInteger(0);
    writer_->WriteListBegin();
    for (const auto& [property, kind] : properties) {
      writer_->WriteString(property);
      writer_->WriteInteger(kind);
    }
    writer_->WriteListEnd();
  }
  // An element record; `values` writes the property numbers and values.
  void Element(int class_number, int element_number, const std::function<void(TWriter&)>& values,
               std::initializer_list<int> members = {}) {
    writer_->WriteInteger(class_number);
    writer_->WriteInteger(element_number);
    writer_->WriteListBegin();
    values(*writer_);
    writer_->WriteListEnd();
    writer_->WriteInteger(members.size() > 0 ? 1 : 0);
    if (members.size() == 0) return;
    writer_->WriteListBegin();
    for (int member : members) writer_->WriteInteger(member);
    writer_->WriteListEnd();
  }
  std::string Bytes() {
    writer_->WriteListEnd();
    writer_.reset();
    const std::span<const std::byte> bytes = std::as_const(stream_).Memory();
    return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  }

 private:
  TMemoryStream stream_;
  std::unique_ptr<TWriter> writer_;
};

// Loads the file into a container that owns what it loads, and notes the texts it posts.
struct Loaded {
  explicit Loaded(const String& file_name) {
    TLoad load;
    load.SetFileName(file_name);
    load.SetContainerEntity(&container);
    load.DoIt();
    host.ProcessMessages();
    result = load.GetOutput();
    for (const String& text : host.delivered) {
      if (text.starts_with(u"8 ")) texts.push_back(text.substr(text.find(u"- - ") + 4));
    }
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
  file.Element(0, 0, [](TWriter& w) {
    w.WriteInteger(0), w.WriteInteger(-2), w.WriteListBegin();
    w.WriteInteger(-1), w.WriteString(u"TTool"), w.WriteInteger(0), w.WriteListBegin();
    w.WriteString(u"Name"), w.WriteInteger(18), w.WriteListEnd();
    w.WriteInteger(1), w.WriteInteger(1), w.WriteListBegin(), w.WriteInteger(0), w.WriteString(u"jinak");
    w.WriteListEnd(), w.WriteInteger(0), w.WriteListEnd();
    w.WriteInteger(1), w.WriteString(u"výběr");
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
  std::function<void(TWriter&, int)> nest = [&](TWriter& w, int level) {
    w.WriteInteger(0), w.WriteInteger(level), w.WriteListBegin(), w.WriteInteger(0);
    if (level == 300) {
      w.WriteInteger(-1);
    } else {
      w.WriteInteger(-2), w.WriteListBegin(), nest(w, level + 1), w.WriteListEnd();
    }
    w.WriteListEnd(), w.WriteInteger(0);
  };
  nest(*file, 0);
  Loaded loaded(folder.Write("deep.vsk", file.Bytes()));
  ASSERT_FALSE(loaded.texts.empty());
  EXPECT_EQ(loaded.texts.front(), u"Loader Error: element lists nested deeper than 256 levels");
  EXPECT_EQ(loaded.texts, Texts(loaded.texts.size(), loaded.texts.front()));  // nothing else
  EXPECT_EQ(loaded.container.ElementsCount(), 301);  // the records beyond are read where they stand
}

// "TPF0": what the element saves of itself (its class name first), or a class name alone.
std::string OlderFile(StringView class_name, TElement* element) {
  TMemoryStream stream;
  {
    TWriter writer(stream);
    writer.WriteSignature("TPF0");
    writer.WriteListBegin();
    if (element != nullptr) {
      element->Save(writer);
    } else {
      writer.WriteString(class_name);
    }
    writer.WriteListEnd();
  }
  const std::span<const std::byte> bytes = std::as_const(stream).Memory();
  return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

TEST(StreamLoader, OpensModelFilesOnlyAndHandsOlderOnesToTheOlderLoader) {
  test::TempFolder folder;
  TLoad load;
  const auto failure = [&](const String& file_name) {
    load.SetFileName(file_name);
    try {
      load.DoIt();
    } catch (const Exception& error) {
      return error.Message();
    }
    return String(u"no failure");
  };
  EXPECT_EQ(failure(u""), u"Chybné jméno souboru :  !");
  EXPECT_EQ(failure(folder.Path("missing.vsk")), u"Soubor " + folder.Path("missing.vsk") + u" neexistuje!");
  EXPECT_EQ(failure(folder.Write("other.vsk", "PK\3\4")), folder.Path("other.vsk") + u" ... neznámý typ souboru");

  TStringEntity saved;
  saved.SetName(u"staré");
  load.SetFileName(folder.Write("old.vsk", OlderFile(u"TStringEntity", &saved)));
  load.DoIt();
  std::unique_ptr<TElement> loaded(load.GetOutput());
  ASSERT_NE(loaded, nullptr);
  EXPECT_EQ(loaded->ClassName() + u" " + loaded->GetName(), u"TStringEntity staré");

  CapturedMessages shown;
  load.SetOutput(nullptr);
  load.SetFileName(folder.Write("unknown.vsk", OlderFile(u"TNothing", nullptr)));
  load.DoIt();
  EXPECT_EQ(load.GetOutput(), nullptr);
  EXPECT_EQ(shown.Texts(), Texts{u"Neregistrovaný element: TNothing"});
}

TEST(LoaderUnit, RegistersItsClassesInOrderAfterTheSortingTools) {
  int32_t expected_id = VeskaClasses().GetVeskaClassByName(u"TSortElementsEx")->ID;
  for (const ClassInfoSource class_info : kLoaderUnitClasses.classes) {
    const TVeskaClass* record = VeskaClasses().GetVeskaClassByName(class_info().Name());
    EXPECT_EQ(record != nullptr ? record->ID : -1, ++expected_id) << ToUtf8(class_info().Name());
  }
}

}  // namespace
}  // namespace veska
