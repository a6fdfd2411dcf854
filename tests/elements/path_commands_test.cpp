#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "kernel/classes/registry.h"
#include "kernel/elements/named.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/string_list.h"

namespace veska {
namespace {

// An object with published properties that is not an element.
class TPathNote : public TPersistent {
  VESKA_CLASS(TPathNote, TPersistent, u"PathTests")
 public:
  String Title;
  TPathNote* Next = nullptr;
  TElement* Target = nullptr;

  static void Publish(Publisher<TPathNote>& p) {
    p.Field(u"Title", &TPathNote::Title);
    p.Field(u"Next", &TPathNote::Next);
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

template <class T>
T* AddNamed(TEntity& owner, const String& name) {
  auto* element = new T;
  element->SetName(name);
  owner.AddElement(element);
  return element;
}

// Root holds ABC (a named element) and Sub (an entity that holds Leaf). Root's Link is Sub; its
// Note is the note "first", whose Next is "second", whose Target is Leaf.
struct PathTree {
  std::unique_ptr<TPathEntity> root = std::make_unique<TPathEntity>();
  TNameElement* abc;
  TPathEntity* sub;
  TNameElement* leaf;
  TPathNote first;
  TPathNote second;

  PathTree() {
    root->SetName(u"Root");
    abc = AddNamed<TNameElement>(*root, u"ABC");
    sub = AddNamed<TPathEntity>(*root, u"Sub");
    leaf = AddNamed<TNameElement>(*sub, u"Leaf");
    first.Title = u"first";
    second.Title = u"second";
    first.Next = &second;
    second.Target = leaf;
    root->Link = sub;
    root->Note = &first;
  }
};

enum class Operation { Text, List, Element };

// The message of the Exception that the operation raises; a failure when it returns.
String ErrorOf(TElement& start, Operation operation, const String& command) {
  try {
    switch (operation) {
      case Operation::Text:
        start.ExecuteCommandLine(command);
        break;
      case Operation::List:
        delete start.ExecuteCommandLineToList(command);
        break;
      case Operation::Element:
        start.ExecuteCommandLineToElement(command);
        break;
    }
  } catch (const Exception& error) {
    return error.Message();
  }
  ADD_FAILURE() << "no exception";
  return String();
}

std::vector<String> Lines(TElement& start, const String& command) {
  std::unique_ptr<TStringList> list(start.ExecuteCommandLineToList(command));
  std::vector<String> lines;
  for (int i = 0; i < list->Count(); ++i) lines.push_back(list->Get(i));
  return lines;
}

TEST(PathCommands, TextCommandReadsTheLastPropertyOfTheObjectReached) {
  static constexpr std::pair<StringView, StringView> kCases[] = {
      {u"Name", u"Root"},
      {u"NoSuchProperty", u""},  // read as by-name access reads it
      {u"FINDELEMENTBYNAME(abc).Name", u"ABC"},
      {u"findelementbyname(abc).Name", u"ABC"},
      {u" FindElementByName ( abc ) . Name ", u"ABC"},
      {u"FINDELEMENTBYNAME(Sub).FINDELEMENTBYNAME(leaf).Name", u"Leaf"},
      {u"FINDELEMENTBYCLASS(TEntity).Name", u"Sub"},
      {u"findElementByClass(TElement).Name", u"ABC"},     // a descendant of the class
      {u"FINDELEMENTBYNAME(ABC) ignored .Name", u"ABC"},  // text between ")" and "." is ignored
      // Object-valued properties are followed into any object, element or not.
      {u"Link.FINDELEMENTBYNAME(Leaf).Name", u"Leaf"},
      {u"Note.Next.Target.Name", u"Leaf"},
      // A stray ")" is skipped; a token in front of it that another token follows is dropped.
      {u"Link).Name", u"Sub"},
      {u")Name", u"Root"},
      {u"Link)Name", u"Root"},
      {u"FINDELEMENTBYNAME)(ABC).Name", u"ABC"},
  };
  PathTree tree;
  for (const auto& [command, expected] : kCases) {
    SCOPED_TRACE(ToUtf8(command));
    EXPECT_EQ(tree.root->ExecuteCommandLine(String(command)), expected);
  }
}

TEST(PathCommands, ElementCommandReturnsTheObjectReachedOrNone) {
  PathTree tree;
  const std::pair<StringView, const TObject*> cases[] = {
      {u"FINDELEMENTBYNAME(ABC)", tree.abc},
      {u"FINDELEMENTBYNAME(ABC)Name", tree.abc},  // the text behind ")" is read and ignored
      {u"FINDELEMENTBYNAME(nobody)", nullptr},    // a final search may find nothing
      {u"LOOKUP(ABC)", nullptr},
      {u"Note", &tree.first},  // a final property: its object, of any class
      {u"Note.Next.Target", tree.leaf},
      {u"Link)", tree.sub},
      {u"Note.Target", nullptr},  // empty
      {u"Name", nullptr},         // not an object
  };
  for (const auto& [command, expected] : cases) {
    SCOPED_TRACE(ToUtf8(command));
    EXPECT_EQ(tree.root->ExecuteCommandLineToElement(String(command)), expected);
  }
}

TEST(PathCommands, ListGivesOneLinePerMemberOrTheLastProperty) {
  PathTree tree;
  AddNamed<TNameElement>(*tree.root, u"Third");
  const std::vector<String> members{u"ABC", u"Sub", u"Third"};
  const std::pair<StringView, std::vector<String>> cases[] = {
      {u"ELEMENT.Name", members}, {u" element . Name ", members}, {u"FINDELEMENTBYNAME(Sub).ELEMENT.Name", {u"Leaf"}},
      {u"Name", {u"Root"}},       {u"Note.Title", {u"first"}},
  };
  for (const auto& [command, expected] : cases) {
    SCOPED_TRACE(ToUtf8(command));
    EXPECT_EQ(Lines(*tree.root, String(command)), expected);
  }
  TPathEntity empty;
  EXPECT_TRUE(Lines(empty, u"ELEMENT.Name").empty());
}

TEST(PathCommands, NoObjectReportsTheWholeCommand) {
  PathTree tree;
  for (const String command : {u"FINDELEMENTBYNAME(nobody).Name", u"FINDELEMENTBYCLASS(TNoSuchClass).Name",
                               u"LOOKUP(ABC).Name", u"Note.Target.Name", u"Name.Name", u".Name"}) {
    for (Operation operation : {Operation::Text, Operation::List, Operation::Element}) {
      EXPECT_EQ(ErrorOf(*tree.root, operation, command), u"Chyba ... nenalezl jsem objekt " + command);
    }
  }
}

TEST(PathCommands, SyntaxAndEntityErrorsGiveTheirTextAndPosition) {
  using enum Operation;
  struct Case {
    Operation operation;
    bool from_abc;  // start at the plain element ABC instead of the root entity
    StringView command;
    StringView expected;
  };
  static constexpr StringView kDot22 = u"Chyba syntaxe. .. na pozici 22 očekávám \".\"";
  static constexpr StringView kNoEntityList = u"Poslední objekt není Entita - nelze vytvořit seznam !";
  static constexpr Case kCases[] = {
      // A search needs an entity; the position is that of the character before "(".
      {Text, true, u"FINDELEMENTBYNAME(x).Name", u"Objekt na pozici 17 není Entita ... nelze prohledávat"},
      {Element, true, u"FINDELEMENTBYNAME (x)", u"Objekt na pozici 18 není Entita ... nelze prohledávat"},
      {Text, true, u"(x).Name", u"Objekt na pozici 0 není Entita ... nelze prohledávat"},  // before the word
      // The argument must end with ")"; position 20 is just past the end of the command.
      {Text, false, u"FINDELEMENTBYNAME(x", u"Chyba syntaxe. .. na pozici 20 očekávám \")\""},
      {Element, false, u"FINDELEMENTBYNAME(ABC.Name", u"Chyba syntaxe. .. na pozici 22 očekávám \")\""},
      {Text, false, u"LOOKUP(x", u"Chyba syntaxe. .. na pozici 9 očekávám \")\""},  // before the missing object
      // After ")" a "." must follow, except where an element command ends.
      {Text, false, u"FINDELEMENTBYNAME(x)Name", u"Chyba syntaxe. .. na pozici 20 očekávám \".\""},
      {Text, false, u"FINDELEMENTBYNAME(ABC)", kDot22},
      {Element, false, u"FINDELEMENTBYNAME(ABC))", kDot22},
      // Only the list operation knows the word ELEMENT: elsewhere it is a property name.
      {Text, false, u"ELEMENT.Name", u"Chyba ... nenalezl jsem objekt ELEMENT.Name"},
      // A list of members needs an entity (tested before the rest is read) and ends the command.
      {List, true, u"ELEMENT.Name", kNoEntityList},
      {List, false, u"Note.ELEMENT.Name", u"Poslední objekt není ani Element, natož Entita !"},
      {List, true, u"ELEMENT.Name.x", kNoEntityList},
      {List, false, u"ELEMENT.Name.x", u"Chybné zakončení příkazu: ."},
      {List, false, u"ELEMENT.Name)", u"Chybné zakončení příkazu: )"},
      {List, false, u"ELEMENT.FINDELEMENTBYNAME(ABC)", u"Chybné zakončení příkazu: ("},
  };
  PathTree tree;
  for (const Case& c : kCases) {
    SCOPED_TRACE(ToUtf8(c.command));
    TElement& start = c.from_abc ? static_cast<TElement&>(*tree.abc) : *tree.root;
    EXPECT_EQ(ErrorOf(start, c.operation, String(c.command)), c.expected);
  }
}

}  // namespace
}  // namespace veska
