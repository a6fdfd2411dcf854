// Path commands: a short text that names an object reachable from an element, such as
// "FINDELEMENTBYNAME(Model).Items.FINDELEMENTBYCLASS(TNameElement).Name".
//
// A command is read token by token, the tokens separated by "(", ")" and "." and trimmed of
// their outer blanks.  A token before "." is an object-valued property that the walk follows;
// a token before "(" is a search word, FINDELEMENTBYNAME or FINDELEMENTBYCLASS (any letter
// case), whose argument runs to ")"; a stray ")" is skipped.  The last token is what the
// operation reads: a property as text, an object, or a list.  The three operations share one
// walk; only its end differs.

#include <memory>
#include <utility>

#include "kernel/elements/class_lookup.h"
#include "kernel/elements/element.h"
#include "kernel/elements/entity.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/string_list.h"
#include "kernel/text/string_tokens.h"

namespace veska {
namespace {

constexpr TCharSet kPathDelimiters{u'(', u')', u'.'};
constexpr char16_t kEndOfCommand = u'\0';  // the delimiter the token reader gives at the end

// Which operation walks; it decides how a walk may end.
enum class PathOperation { Text, List, Element };

// Where a walk stopped and what the operation reads there.
struct PathEnd {
  enum class Kind {
    Property,      // `property` of `object` (never none)
    SearchResult,  // `object` itself: a search that closed the command (possibly none)
    MemberList,    // `property` of every member of `object`, which is an entity
  };
  Kind kind;
  TObject* object;
  String property;
};

class PathWalk {
 public:
  PathWalk(TElement* start, StringView command, PathOperation operation)
      : current_(start), command_(command), operation_(operation) {}

  PathEnd Run() {
    String before_stray_parenthesis;
    for (;;) {
      if (current_ == nullptr) throw Exception(u"Chyba ... nenalezl jsem objekt " + String(command_));
      char16_t delimiter = kEndOfCommand;
      String token = ReadToken(delimiter);
      // A stray ")" is skipped: the token in front of it is dropped when another token
      // follows, and stands in for an empty one, so "A).B" reads as "A.B" and "x)B" as "B".
      if (token.empty()) token = std::move(before_stray_parenthesis);
      before_stray_parenthesis.clear();
      switch (delimiter) {
        case kEndOfCommand:
          return {PathEnd::Kind::Property, current_, std::move(token)};
        case u'.':
          if (operation_ == PathOperation::List && AsciiUpperCase(token) == u"ELEMENT") return ListStep();
          current_ = GetObjectPropByName(current_, token);
          break;
        case u'(':
          if (SearchStep(token)) return {PathEnd::Kind::SearchResult, current_, {}};
          break;
        default:  // ")": tolerated, the walk goes on from the same object
          before_stray_parenthesis = std::move(token);
          break;
      }
    }
  }

 private:
  // The next token; pos_ moves just past its delimiter (Length + 2 at the end of the command).
  String ReadToken(char16_t& delimiter) {
    return ReadToDelimiterWithoutWS(command_, kPathDelimiters, pos_, delimiter, pos_);
  }

  static Exception SyntaxError(int32_t position, StringView expected) {
    return Exception(u"Chyba syntaxe. .. na pozici " + IntToStr(position) + u" očekávám \"" + String(expected) + u"\"");
  }

  // Word "(" Argument ")" [ignored text] "." — or, for the element operation, the end of the
  // command.  Moves to the search result; true when the search ends the walk.
  bool SearchStep(const String& word) {
    auto* entity = ObjectAs<TEntity>(current_);
    if (entity == nullptr) {
      // pos_ is just past "(", so pos_ - 2 is the character before it.
      throw Exception(u"Objekt na pozici " + IntToStr(pos_ - 2) + u" není Entita ... nelze prohledávat");
    }
    char16_t delimiter = kEndOfCommand;
    const String argument = ReadToken(delimiter);
    if (delimiter != u')') throw SyntaxError(pos_ - 1, u")");
    const int32_t closing_position = pos_ - 1;
    ReadToken(delimiter);  // whatever stands between ")" and the next delimiter is ignored
    const bool ends_walk = delimiter == kEndOfCommand && operation_ == PathOperation::Element;
    if (delimiter != u'.' && !ends_walk) throw SyntaxError(closing_position, u".");
    current_ = Search(*entity, word, argument);
    return ends_walk;
  }

  // An unknown search word finds nothing; the next step of the walk reports it.
  static TElement* Search(TEntity& entity, const String& word, const String& argument) {
    const String keyword = AsciiUpperCase(word);
    if (keyword == u"FINDELEMENTBYNAME") return entity.FindElementName(argument);
    if (keyword == u"FINDELEMENTBYCLASS") {
      const ClassInfo* cls = LookUpClass(argument);
      return cls != nullptr ? entity.FindElementClass(*cls) : nullptr;
    }
    return nullptr;
  }

  // "ELEMENT" "." Property, which must close the command: that property of every member.
  PathEnd ListStep() {
    if (ObjectAs<TEntity>(current_) == nullptr) {
      throw Exception(ObjectAs<TElement>(current_) != nullptr ? u"Poslední objekt není Entita - nelze vytvořit seznam !"
                                                              : u"Poslední objekt není ani Element, natož Entita !");
    }
    char16_t delimiter = kEndOfCommand;
    String property = ReadToken(delimiter);
    if (delimiter != kEndOfCommand) throw Exception(u"Chybné zakončení příkazu: " + String(1, delimiter));
    return {PathEnd::Kind::MemberList, current_, std::move(property)};
  }

  TObject* current_;
  StringView command_;
  PathOperation operation_;
  int32_t pos_ = 1;
};

// A property as text: an element answers through its own (overridable) by-name read.
String PropertyText(const TObject& object, const String& name) {
  if (object.Is<TElement>()) return static_cast<const TElement&>(object).GetPropertyStringByName(name);
  return GetPropStringByName(&object, name);
}

}  // namespace

String TElement::ExecuteCommandLine(const String& Command) {
  const PathEnd end = PathWalk(this, Command, PathOperation::Text).Run();
  return PropertyText(*end.object, end.property);
}

TStringList* TElement::ExecuteCommandLineToList(const String& Command) {
  auto list = std::make_unique<TStringList>();  // freed by any failure below
  const PathEnd end = PathWalk(this, Command, PathOperation::List).Run();
  if (end.kind == PathEnd::Kind::MemberList) {
    auto& entity = static_cast<TEntity&>(*end.object);  // the list step admits entities only
    const int32_t count = entity.ElementsCount();
    for (int32_t i = 0; i < count; ++i) {
      const TElement* member = entity.Get(i);
      list->Add(member != nullptr ? member->GetPropertyStringByName(end.property) : String());
    }
  } else {
    list->Add(PropertyText(*end.object, end.property));
  }
  return list.release();
}

TObject* TElement::ExecuteCommandLineToElement(const String& Command) {
  const PathEnd end = PathWalk(this, Command, PathOperation::Element).Run();
  if (end.kind == PathEnd::Kind::SearchResult) return end.object;
  return GetObjectPropByName(end.object, end.property);
}

}  // namespace veska
