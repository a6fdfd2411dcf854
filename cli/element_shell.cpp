#include "cli/element_shell.h"

#include <memory>
#include <string>
#include <string_view>

#include "kernel/classes/registry.h"
#include "kernel/elements/entity.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/string_list.h"

namespace veska::cli {
namespace {

void WriteLine(std::FILE* out, const String& text) {
  const std::string line = ToUtf8(text) + '\n';
  std::fputs(line.c_str(), out);
}

// The operand of an option; an option without one is a usage error.
String Operand(std::span<char* const> arguments, std::size_t& index) {
  if (index + 1 >= arguments.size()) {
    throw Exception(FromUtf8(arguments[index]) + u" needs an argument");
  }
  return FromUtf8(arguments[++index]);
}

void AddMember(TElement& element, const String& class_and_name) {
  const std::size_t colon = class_and_name.find(u':');
  if (colon == String::npos) throw Exception(u"--add takes CLASS:NAME, not " + class_and_name);
  auto* entity = ObjectAs<TEntity>(&element);
  if (entity == nullptr) throw Exception(element.ClassName() + u" is not an entity and holds no elements");
  std::unique_ptr<TElement> member(CreateElementByName(class_and_name.substr(0, colon)));
  if (!member) throw Exception(u"no element was created");
  member->SetName(class_and_name.substr(colon + 1));
  entity->AddElement(member.release());
}

void ApplyArgument(TElement& element, std::span<char* const> arguments, std::size_t& index, std::FILE* out) {
  const std::string_view argument = arguments[index];
  if (argument == "--get") {
    const String name = Operand(arguments, index);
    WriteLine(out, name + u"=" + element.GetPropertyStringByName(name));
  } else if (argument == "--add") {
    AddMember(element, Operand(arguments, index));
  } else if (argument == "--path") {
    WriteLine(out, element.ExecuteCommandLine(Operand(arguments, index)));
  } else if (argument == "--list") {
    const std::unique_ptr<TStringList> lines(element.ExecuteCommandLineToList(Operand(arguments, index)));
    for (int i = 0; i < lines->Count(); ++i) WriteLine(out, lines->Get(i));
  } else {
    const String assignment = FromUtf8(argument);
    const std::size_t equals = assignment.find(u'=');
    if (equals == String::npos) throw Exception(u"unknown argument " + assignment);
    const String name = assignment.substr(0, equals);
    if (!element.SetPropertyStringByName(name, assignment.substr(equals + 1))) {
      throw Exception(element.ClassName() + u" has no property " + name);
    }
  }
}

}  // namespace

int RunElementShell(std::span<char* const> arguments, std::FILE* out) {
  if (arguments.empty()) throw Exception(u"new needs a class name");
  // An unknown class is reported by the library itself, through the message sink.
  const std::unique_ptr<TElement> element(CreateElementByName(FromUtf8(arguments[0])));
  if (!element) return 1;
  for (std::size_t index = 1; index < arguments.size(); ++index) {
    ApplyArgument(*element, arguments, index, out);
  }
  return 0;
}

}  // namespace veska::cli
