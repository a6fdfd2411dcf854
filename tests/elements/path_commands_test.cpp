#include <gtest/gtest.h>

#include <memory>

#include "kernel/elements/property_access.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/string_list.h"
#include "tests/support/elements_members.h"

namespace veska {
namespace {

using test::Named;

// An object with published properties that is not an element.
class TPathNote : public TPersistent {
  VESKA_CLASS(TPathNote, TPersistent, u"PathTests")
 public:
  String Name;
  TElement* Target = nullptr;

  static void Publish(Publisher<TPathNote>& p) {
    p.Field(u"Name", &TPathNote::Name);
    p.Field(u"Target", &TPathNote::Target);
  }
};

// An entity with object-valued properties to walk through (not owned).
class TPathEntity : public TOwnerEntity {
  VESKA_CLASS(TPathEntity, TOwnerEntity, u"PathTests")
 public:
  TElement* Link = nullptr;
  TPathNote* Note = nullptr;

  static void Publish(Publisher<TPathEntity>& p) {
    p.Field(u"Link", &TPathEntity::Link);
    p.Field(u"Note", &TPathEntity::Note);
  }
};

// Root holds ABC and Sub, which holds Leaf; Root links to Sub and notes "note", whose Target is Leaf.
struct PathTree {
  TPathEntity root;
  TPathNote note;
  TNameElement* abc = Named<TNameElement>(u"ABC", {&root});

  PathTree() {
    auto* sub = Named<TPathEntity>(u"Sub", {&root});
    root.SetName(u"Root");
    root.Link = sub;
    root.Note = &note;
    note.Name = u"note";
    note.Target = Named<TNameElement>(u"Leaf", {sub});
  }
};

enum class Operation { Text, List, Element };
using enum Operation;

struct Case {
  Operation operation;
  StringView command;
  StringView expected;
};

// The result as text (a list as its comma text, an object as its Name or "-"), or the error.
String Walk(TElement& start, Operation operation, const String& command) {
  try {
    if (operation == List) return std::unique_ptr<TStringList>(start.ExecuteCommandLineToList(command))->CommaText();
    if (operation == Text) return start.ExecuteCommandLine(command);
    const TObject* reached = start.ExecuteCommandLineToElement(command);
    return reached != nullptr ? GetPropStringByName(reached, u"Name") : String(u"-");
  } catch (const Exception& error) {
    return error.Message();
  }
}

TEST(PathCommands, EachOperationReadsWhatTheWalkReaches) {
  static constexpr Case kCases[] = {
      {Text, u"Name", u"Root"},
      {Text, u" FindElementByName ( abc ) . Name ", u"ABC"},
      {Text, u"findElementByClass(TEntity).Name", u"Sub"},      // a descendant of the class
      {Text, u"FINDELEMENTBYNAME(ABC) ignored .Name", u"ABC"},  // text between ")" and "." is ignored
      // Object-valued properties are followed into any object, element or not.
      {Text, u"Note.Target.Name", u"Leaf"},
      // A stray ")" is skipped; a token in front of it that another token follows is dropped.
      {Text, u"Link).Name", u"Sub"},
      {Text, u"Link)Name", u"Root"},
      {Element, u"FINDELEMENTBYNAME(ABC)", u"ABC"},
      {Element, u"FINDELEMENTBYNAME(nobody)", u"-"},  // a final search may find nothing
      {Element, u"Note", u"note"},
      {Element, u"Link)", u"Sub"},
      {Element, u"Link.Link", u"-"},  // empty
      // One line per member of the entity reached, in member order, or the last property.
      {List, u" element . Name ", u"ABC,Sub"},
      {List, u"Note.Name", u"note"},
  };
  PathTree tree;
  for (const auto& [operation, command, expected] : kCases) {
    EXPECT_EQ(Walk(tree.root, operation, String(command)), expected) << ToUtf8(command);
  }
  TPathEntity empty;
  EXPECT_EQ(Walk(empty, List, u"ELEMENT.Name"), u"") << "no lines";
}

// Where no object is reached, the message names the whole command.
TEST(PathCommands, ErrorsGiveTheirTextAndPosition) {
  static constexpr Case kCases[] = {
      // A search needs an entity; the position is that of the character before "(".
      {Element, u"FINDELEMENTBYNAME(ABC).FINDELEMENTBYNAME (x)",
       u"Objekt na pozici 41 není Entita ... nelze prohledávat"},
      // The argument must end with ")"; position 20 is just past the end of the command.
      {Text, u"FINDELEMENTBYNAME(x", u"Chyba syntaxe. .. na pozici 20 očekávám \")\""},
      {Text, u"LOOKUP(x", u"Chyba syntaxe. .. na pozici 9 očekávám \")\""},  // before the missing object
      // After ")" a "." must follow, except where an element command ends.
      {Text, u"FINDELEMENTBYNAME(x)Name", u"Chyba syntaxe. .. na pozici 20 očekávám \".\""},
      {Element, u"FINDELEMENTBYNAME(ABC))", u"Chyba syntaxe. .. na pozici 22 očekávám \".\""},
      // Only the list operation knows the word ELEMENT: elsewhere it is a property name.
      {Text, u"ELEMENT.Name", u"Chyba ... nenalezl jsem objekt ELEMENT.Name"},
      // A list of members needs an entity (tested before the rest is read) and ends the command.
      {List, u"Note.ELEMENT.Name", u"Poslední objekt není ani Element, natož Entita !"},
      {List, u"FINDELEMENTBYNAME(ABC).ELEMENT.Name.x", u"Poslední objekt není Entita - nelze vytvořit seznam !"},
      {List, u"ELEMENT.Name.x", u"Chybné zakončení příkazu: ."},
  };
  PathTree tree;
  for (const auto& [operation, command, expected] : kCases) {
    EXPECT_EQ(Walk(tree.root, operation, String(command)), expected) << ToUtf8(command);
  }
  for (const String command : {u"FINDELEMENTBYNAME(nobody).Name", u"FINDELEMENTBYCLASS(TNoSuchClass).Name",
                               u"LOOKUP(ABC).Name", u"Link.Link.Name", u"Name.Name", u".Name"}) {
    for (Operation operation : {Text, List, Element}) {
      EXPECT_EQ(Walk(tree.root, operation, command), u"Chyba ... nenalezl jsem objekt " + command);
    }
  }
  EXPECT_EQ(Walk(*tree.abc, Text, u"(x).Name"), u"Objekt na pozici 0 není Entita ... nelze prohledávat")
      << "the character before the first";
}

}  // namespace
}  // namespace veska
