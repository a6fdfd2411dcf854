#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>

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
    p.Property(u"Title", &TPathNote::Title, &TPathNote::Title);
    p.Property(u"Next", &TPathNote::Next, &TPathNote::Next);
    p.Property(u"Target", &TPathNote::Target, &TPathNote::Target);
  }
};

// An entity with object-valued properties to walk through (not owned).
class TPathEntity : public TOwnerEntity {
  VESKA_CLASS(TPathEntity, TOwnerEntity, u"PathTests")
 public:
  TElement* Link = nullptr;
  TPathNote* Note = nullptr;

  static void Publish(Publisher<TPathEntity>& p) {
    p.Property(u"Link", &TPathEntity::Link, &TPathEntity::Link);
    p.Property(u"Note", &TPathEntity::Note, &TPathEntity::Note);
  }
};

template <class T>
T* AddNamed(TEntity& owner, const String& name) {
  auto* element = new T;
  element->SetName(name);
  owner.AddElement(element);
  return element;
}

// Root holds ABC (a named element) and Sub (an entity that holds Leaf).
struct PathTree {
  std::unique_ptr<TPathEntity> root = std::make_unique<TPathEntity>();
  TNameElement* abc;
  TPathEntity* sub;
  TNameElement* leaf;

  PathTree() {
    root->SetName(u"Root");
    abc = AddNamed<TNameElement>(*root, u"ABC");
    sub = AddNamed<TPathEntity>(*root, u"Sub");
    leaf = AddNamed<TNameElement>(*sub, u"Leaf");
  }
};

// The message of the Exception that the call raises; a failure when it returns.
template <class Call>
String ErrorOf(Call&& call) {
  try {
    call();
  } catch (const Exception& error) {
    return error.Message();
  }
  ADD_FAILURE() << "no exception";
  return String();
}

String TextError(TElement& start, const String& command) {
  return ErrorOf([&] { start.ExecuteCommandLine(command); });
}
String ListError(TElement& start, const String& command) {
  return ErrorOf([&] { delete start.ExecuteCommandLineToList(command); });
}
String ElementError(TElement& start, const String& command) {
  return ErrorOf([&] { start.ExecuteCommandLineToElement(command); });
}

std::vector<String> Lines(TElement& start, const String& command) {
  std::unique_ptr<TStringList> list(start.ExecuteCommandLineToList(command));
  std::vector<String> lines;
  for (int i = 0; i < list->Count(); ++i) lines.push_back(list->Get(i));
  return lines;
}

TEST(PathCommands, LastPropertyIsReadAsText) {
  TNameElement named;
  named.SetName(u"Solo");
  EXPECT_EQ(named.ExecuteCommandLine(u"Name"), u"Solo");
  EXPECT_EQ(named.ExecuteCommandLine(u"  Name  "), u"Solo");
  EXPECT_EQ(named.ExecuteCommandLine(u"ID"), u"-1");
  TElement plain;
  EXPECT_EQ(plain.ExecuteCommandLine(u"Name"), u"TElement");
  // An unknown or empty property reads as empty text, as by-name access gives it.
  EXPECT_EQ(plain.ExecuteCommandLine(u"NoSuchProperty"), u"");
  EXPECT_EQ(plain.ExecuteCommandLine(u""), u"");
}

TEST(PathCommands, SearchWordsAcceptAnyLetterCase) {
  PathTree tree;
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"FINDELEMENTBYNAME(abc).Name"), u"ABC");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"findelementbyname(abc).Name"), u"ABC");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u" FindElementByName ( abc ) . Name "), u"ABC");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"FINDELEMENTBYNAME(Sub).FINDELEMENTBYNAME(leaf).Name"), u"Leaf");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"FINDELEMENTBYCLASS(TEntity).Name"), u"Sub");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"findElementByClass(tnameelement).Name"), u"ABC");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"FINDELEMENTBYCLASS(TElement).Name"), u"ABC");
}

TEST(PathCommands, ObjectPropertiesAreFollowedIntoAnyObject) {
  PathTree tree;
  TPathNote first;
  TPathNote second;
  first.Title = u"first";
  second.Title = u"second";
  first.Next = &second;
  second.Target = tree.leaf;
  tree.root->Link = tree.sub;
  tree.root->Note = &first;

  EXPECT_EQ(tree.root->ExecuteCommandLine(u"Link.Name"), u"Sub");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"Link.FINDELEMENTBYNAME(Leaf).Name"), u"Leaf");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"Note.Next.Title"), u"second");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"Note.Next.Target.Name"), u"Leaf");
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"Note.Next"), &second);
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"Note.Next.Target"), tree.leaf);
  EXPECT_EQ(Lines(*tree.root, u"Note.Title"), std::vector<String>{u"first"});
}

TEST(PathCommands, NoObjectReportsTheWholeCommand) {
  PathTree tree;
  for (const String command : {u"FINDELEMENTBYNAME(nobody).Name", u"FINDELEMENTBYCLASS(TNoSuchClass).Name",
                               u"LOOKUP(ABC).Name", u"Link.Name", u"Name.Name", u".Name"}) {
    const String expected = u"Chyba ... nenalezl jsem objekt " + command;
    EXPECT_EQ(TextError(*tree.root, command), expected);
    EXPECT_EQ(ListError(*tree.root, command), expected);
    EXPECT_EQ(ElementError(*tree.root, command), expected);
  }
}

TEST(PathCommands, SearchInNonEntityReportsThePositionBeforeTheParenthesis) {
  PathTree tree;
  TNameElement plain;
  EXPECT_EQ(TextError(plain, u"FINDELEMENTBYNAME(x).Name"), u"Objekt na pozici 17 není Entita ... nelze prohledávat");
  EXPECT_EQ(ListError(plain, u"FINDELEMENTBYCLASS(x).Name"), u"Objekt na pozici 18 není Entita ... nelze prohledávat");
  EXPECT_EQ(ElementError(plain, u"FINDELEMENTBYNAME (x)"), u"Objekt na pozici 18 není Entita ... nelze prohledávat");
  // The entity test comes before the search word is looked at.
  EXPECT_EQ(TextError(plain, u"(x).Name"), u"Objekt na pozici 0 není Entita ... nelze prohledávat");
  EXPECT_EQ(TextError(*tree.root, u"FINDELEMENTBYNAME(ABC).FINDELEMENTBYNAME(x).Name"),
            u"Objekt na pozici 40 není Entita ... nelze prohledávat");
}

TEST(PathCommands, SearchArgumentMustEndWithClosingParenthesis) {
  PathTree tree;
  // Position 20 is just past the end of the command.
  EXPECT_EQ(TextError(*tree.root, u"FINDELEMENTBYNAME(x"), u"Chyba syntaxe. .. na pozici 20 očekávám \")\"");
  EXPECT_EQ(ListError(*tree.root, u"FINDELEMENTBYNAME(x"), u"Chyba syntaxe. .. na pozici 20 očekávám \")\"");
  EXPECT_EQ(ElementError(*tree.root, u"FINDELEMENTBYNAME(x"), u"Chyba syntaxe. .. na pozici 20 očekávám \")\"");
  EXPECT_EQ(TextError(*tree.root, u"FINDELEMENTBYNAME(ABC.Name"), u"Chyba syntaxe. .. na pozici 22 očekávám \")\"");
  EXPECT_EQ(TextError(*tree.root, u"FINDELEMENTBYNAME(ABC(Name"), u"Chyba syntaxe. .. na pozici 22 očekávám \")\"");
  // An unknown word is a syntax error first and a missing object only afterwards.
  EXPECT_EQ(TextError(*tree.root, u"LOOKUP(x"), u"Chyba syntaxe. .. na pozici 9 očekávám \")\"");
}

TEST(PathCommands, SearchMustBeFollowedByDotExceptAtTheEndOfAnElementCommand) {
  PathTree tree;
  EXPECT_EQ(TextError(*tree.root, u"FINDELEMENTBYNAME(x)Name"), u"Chyba syntaxe. .. na pozici 20 očekávám \".\"");
  EXPECT_EQ(ListError(*tree.root, u"FINDELEMENTBYNAME(x)Name"), u"Chyba syntaxe. .. na pozici 20 očekávám \".\"");
  EXPECT_EQ(TextError(*tree.root, u"FINDELEMENTBYNAME(ABC)"), u"Chyba syntaxe. .. na pozici 22 očekávám \".\"");
  EXPECT_EQ(ListError(*tree.root, u"FINDELEMENTBYNAME(ABC)"), u"Chyba syntaxe. .. na pozici 22 očekávám \".\"");
  EXPECT_EQ(ElementError(*tree.root, u"FINDELEMENTBYNAME(ABC))"), u"Chyba syntaxe. .. na pozici 22 očekávám \".\"");
  EXPECT_EQ(ElementError(*tree.root, u"FINDELEMENTBYNAME(ABC) x (y)"),
            u"Chyba syntaxe. .. na pozici 22 očekávám \".\"");
  // Text between ")" and "." is ignored.
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"FINDELEMENTBYNAME(ABC) ignored .Name"), u"ABC");
}

TEST(PathCommands, ElementCommandReturnsTheObjectReached) {
  PathTree tree;
  TPathNote note;
  tree.root->Note = &note;
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"FINDELEMENTBYNAME(ABC)"), tree.abc);
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"FINDELEMENTBYNAME(Sub).FINDELEMENTBYNAME(Leaf)"), tree.leaf);
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"FINDELEMENTBYCLASS(TEntity)"), tree.sub);
  // The text behind the closing ")" is read and ignored when the command ends there.
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"FINDELEMENTBYNAME(ABC)Name"), tree.abc);
  // A search that closes the command may find nothing: none, not an error.
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"FINDELEMENTBYNAME(nobody)"), nullptr);
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"LOOKUP(ABC)"), nullptr);
  // A final property: its object, of any class, or none when it is empty or not an object.
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"Note"), &note);
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"Link"), nullptr);
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"Name"), nullptr);
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u""), nullptr);
}

TEST(PathCommands, StrayClosingParenthesisIsSkipped) {
  PathTree tree;
  tree.root->Link = tree.abc;
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"Link).Name"), u"ABC");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"Link ) ) .Name"), u"ABC");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"Name)"), u"Root");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u")Name"), u"Root");
  // A token in front of ")" that another token follows is dropped.
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"Link)Name"), u"Root");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"FINDELEMENTBYNAME(Sub).)FINDELEMENTBYNAME(Leaf).Name"), u"Leaf");
  EXPECT_EQ(tree.root->ExecuteCommandLine(u"FINDELEMENTBYNAME)(ABC).Name"), u"ABC");
  EXPECT_EQ(tree.root->ExecuteCommandLineToElement(u"Link)"), tree.abc);
  EXPECT_EQ(Lines(*tree.root, u"ELEMENT).Name"), (std::vector<String>{u"ABC", u"Sub"}));
}

TEST(PathCommands, ListGivesOneLinePerMemberOrTheLastProperty) {
  PathTree tree;
  AddNamed<TNameElement>(*tree.root, u"Third");
  EXPECT_EQ(Lines(*tree.root, u"ELEMENT.Name"), (std::vector<String>{u"ABC", u"Sub", u"Third"}));
  EXPECT_EQ(Lines(*tree.root, u" element . Name "), (std::vector<String>{u"ABC", u"Sub", u"Third"}));
  EXPECT_EQ(Lines(*tree.root, u"FINDELEMENTBYNAME(Sub).ELEMENT.Name"), std::vector<String>{u"Leaf"});
  EXPECT_EQ(Lines(*tree.root, u"FINDELEMENTBYNAME(Sub).ELEMENT._ClassName"), std::vector<String>{u"TNameElement"});
  EXPECT_EQ(Lines(*tree.root, u"Name"), std::vector<String>{u"Root"});
  EXPECT_EQ(Lines(*tree.sub, u"FINDELEMENTBYNAME(Leaf).Name"), std::vector<String>{u"Leaf"});
  TPathEntity empty;
  EXPECT_TRUE(Lines(empty, u"ELEMENT.Name").empty());
  // Only the list operation knows the word: elsewhere it is a property name like any other.
  EXPECT_EQ(TextError(*tree.root, u"ELEMENT.Name"), u"Chyba ... nenalezl jsem objekt ELEMENT.Name");
  EXPECT_EQ(ElementError(*tree.root, u"ELEMENT.Name"), u"Chyba ... nenalezl jsem objekt ELEMENT.Name");
}

TEST(PathCommands, ListOfMembersNeedsAnEntityAndMustEndTheCommand) {
  PathTree tree;
  TPathNote note;
  tree.root->Note = &note;
  EXPECT_EQ(ListError(*tree.abc, u"ELEMENT.Name"), u"Poslední objekt není Entita - nelze vytvořit seznam !");
  EXPECT_EQ(ListError(*tree.root, u"FINDELEMENTBYNAME(ABC).ELEMENT.Name"),
            u"Poslední objekt není Entita - nelze vytvořit seznam !");
  EXPECT_EQ(ListError(*tree.root, u"Note.ELEMENT.Name"), u"Poslední objekt není ani Element, natož Entita !");
  // The entity test comes before the rest of the command is read.
  EXPECT_EQ(ListError(*tree.abc, u"ELEMENT.Name.x"), u"Poslední objekt není Entita - nelze vytvořit seznam !");
  EXPECT_EQ(ListError(*tree.root, u"ELEMENT.Name.x"), u"Chybné zakončení příkazu: .");
  EXPECT_EQ(ListError(*tree.root, u"ELEMENT.Name)"), u"Chybné zakončení příkazu: )");
  EXPECT_EQ(ListError(*tree.root, u"ELEMENT.FINDELEMENTBYNAME(ABC)"), u"Chybné zakončení příkazu: (");
}

// Random commands built from the pieces of the grammar: every call of every operation either
// answers or raises Exception; the sanitizer build checks that nothing leaks or crashes.
TEST(PathCommands, RandomCommandsAnswerOrRaiseException) {
  PathTree tree;
  tree.root->Link = tree.sub;
  static constexpr std::array<StringView, 12> kPieces{
      u"(", u")", u".", u" ", u"FINDELEMENTBYNAME", u"findelementbyclass", u"FINDELEMENTBYCLASS",
      u"ELEMENT", u"Name", u"x", u"Sub", u"Link"};
  std::mt19937 random(20240611);
  std::uniform_int_distribution<size_t> piece(0, kPieces.size() - 1);
  std::uniform_int_distribution<int> length(0, 12);
  int answers = 0;
  int errors = 0;
  for (int round = 0; round < 4000; ++round) {
    String command;
    for (int n = length(random); n > 0; --n) command += kPieces[piece(random)];
    const auto attempt = [&](auto&& call) {
      try {
        call();
        ++answers;
      } catch (const Exception&) {
        ++errors;
      }
    };
    attempt([&] { tree.root->ExecuteCommandLine(command); });
    attempt([&] { std::unique_ptr<TStringList>(tree.root->ExecuteCommandLineToList(command)); });
    attempt([&] { tree.root->ExecuteCommandLineToElement(command); });
  }
  // Both outcomes occur, so the commands reach past the first token.
  EXPECT_GT(answers, 1000);
  EXPECT_GT(errors, 1000);
  EXPECT_EQ(tree.root->ElementsCount(), 2);
  EXPECT_EQ(tree.sub->ElementsCount(), 1);
}

}  // namespace
}  // namespace veska
