#include "cli/element_shell.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include "cli/usage_error.h"
#include "kernel/classes/registry.h"
#include "kernel/elements/entity.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/string_list.h"

namespace veska::cli {
namespace {

void WriteLine(std::FILE* out, const String& text) {
  const std::string line = ToUtf8(text) + '\n';
  std::fputs(line.c_str(), out);
}

String NoSuchProperty(const TObject& object, const String& name) {
  return object.ClassName() + u" has no property " + name;
}

// An element may answer names beyond its published properties (a string list answers the names
// of its entries); a name that is neither gives no text.
String PropertyText(const TElement& element, const String& name) {
  String text = element.GetPropertyStringByName(name);
  if (text.empty() && GetPropIndex(&element, name) < 0) throw Exception(NoSuchProperty(element, name));
  return text;
}

// NAME=VALUE writes a property of the element; PATH.NAME=VALUE one of the object that the path
// command PATH reaches from it, such as a part of a model.  Elements take the write through
// their own (overridable) by-name write, as reads go through their own by-name read.
void SetProperty(TElement& element, const String& assignment) {
  const std::size_t equals = assignment.find(u'=');
  const String target_and_name = assignment.substr(0, equals);
  const String value = assignment.substr(equals + 1);
  const std::size_t dot = target_and_name.rfind(u'.');
  TObject* target = &element;
  if (dot != String::npos) {
    const String path = target_and_name.substr(0, dot);
    target = element.ExecuteCommandLineToElement(path);
    if (target == nullptr) throw Exception(path + u" leads to no object");
  }
  const String name = target_and_name.substr(dot == String::npos ? 0 : dot + 1);
  auto* target_element = ObjectAs<TElement>(target);
  const bool written = target_element != nullptr ? target_element->SetPropertyStringByName(name, value)
                                                 : SetPropStringByName(target, name, value);
  if (!written) throw Exception(NoSuchProperty(*target, name));
}

void AddMember(TElement& element, const String& class_and_name) {
  auto* entity = ObjectAs<TEntity>(&element);
  if (entity == nullptr) throw Exception(element.ClassName() + u" is not an entity and holds no elements");
  const std::size_t colon = class_and_name.find(u':');
  std::unique_ptr<TElement> member = CreateShellElement(ToUtf8(class_and_name.substr(0, colon)));
  member->SetName(class_and_name.substr(colon + 1));
  entity->AddElement(member.release());
}

}  // namespace

std::unique_ptr<TElement> CreateShellElement(const std::string& class_name) {
  std::unique_ptr<TElement> element(CreateElementByName(FromUtf8(class_name)));
  if (!element) throw ReportedFailure();
  return element;
}

void RunShellStep(TElement& element, const ShellStep& step, std::FILE* out) {
  const String operand = FromUtf8(step.operand);
  switch (step.action) {
    case ShellStep::Action::Set:
      SetProperty(element, operand);
      break;
    case ShellStep::Action::Get:
      WriteLine(out, operand + u"=" + PropertyText(element, operand));
      break;
    case ShellStep::Action::Add:
      AddMember(element, operand);
      break;
    case ShellStep::Action::Path:
      WriteLine(out, element.ExecuteCommandLine(operand));
      break;
    case ShellStep::Action::List: {
      const std::unique_ptr<TStringList> lines(element.ExecuteCommandLineToList(operand));
      for (int i = 0; i < lines->Count(); ++i) WriteLine(out, lines->Get(i));
      break;
    }
  }
}

ShellScript ParseShellArguments(std::span<char* const> arguments) {
  if (arguments.empty()) throw UsageError("missing CLASS");
  ShellScript script{arguments[0], {}};
  constexpr std::pair<std::string_view, ShellStep::Action> kOptions[] = {{"--get", ShellStep::Action::Get},
                                                                         {"--add", ShellStep::Action::Add},
                                                                         {"--path", ShellStep::Action::Path},
                                                                         {"--list", ShellStep::Action::List}};
  for (std::size_t index = 1; index < arguments.size(); ++index) {
    const std::string_view argument = arguments[index];
    const auto* option = std::find_if(std::begin(kOptions), std::end(kOptions),
                                      [&](const auto& entry) { return entry.first == argument; });
    if (option == std::end(kOptions)) {
      if (argument.starts_with('-') || argument.find('=') == std::string_view::npos) {
        throw UsageError("unknown argument '" + std::string(argument) + "'");
      }
      script.steps.push_back({ShellStep::Action::Set, std::string(argument)});
      continue;
    }
    if (++index == arguments.size()) throw UsageError(std::string(argument) + " needs an argument");
    const std::string_view operand = arguments[index];
    if (option->second == ShellStep::Action::Add && operand.find(':') == std::string_view::npos) {
      throw UsageError("--add takes CLASS:NAME, not '" + std::string(operand) + "'");
    }
    script.steps.push_back({option->second, std::string(operand)});
  }
  return script;
}

void RunElementShell(const ShellScript& script, std::FILE* out) {
  const std::unique_ptr<TElement> element = CreateShellElement(script.class_name);
  for (const ShellStep& step : script.steps) RunShellStep(*element, step, out);
}

}  // namespace veska::cli
