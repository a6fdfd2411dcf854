// "veska new CLASS [ARG]...": a shell for trying the element model from the command line.
#pragma once

#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace veska {
class TElement;
}

namespace veska::cli {

// One argument after the class name:
//   NAME=VALUE          writes VALUE into property NAME (SetPropertyStringByName)
//   PATH.NAME=VALUE     the same on the object that the path command PATH reaches
//   --get NAME          prints "NAME=" and the property's text
//   --add CLASS:NAME    creates an element of CLASS named NAME and adds it to the element
//   --path CMD          prints the result of ExecuteCommandLine(CMD)
//   --list CMD          prints each line of ExecuteCommandLineToList(CMD)
struct ShellStep {
  enum class Action { Set, Get, Add, Path, List } action;
  std::string operand;  // [PATH.]NAME=VALUE, NAME, CLASS:NAME or CMD

  // Whether the step prints rather than changes the element.
  bool Reads() const { return action == Action::Get || action == Action::Path || action == Action::List; }
};

struct ShellScript {
  std::string class_name;
  std::vector<ShellStep> steps;
};

// Reads the arguments of "new" completely before anything runs, so that a mistake in the
// command line (a missing operand, an unknown option, --add without a colon) is a UsageError.
ShellScript ParseShellArguments(std::span<char* const> arguments);

// The element of that class name, created as CreateElementByName creates it; an unknown name,
// which the library reports itself through the message sink, raises ReportedFailure.
std::unique_ptr<TElement> CreateShellElement(const std::string& class_name);

// Runs one step on the element.  A property that does not exist, for reading or writing, raises
// Exception.
void RunShellStep(TElement& element, const ShellStep& step, std::FILE* out);

// Creates the element and runs the steps in order.  A property that does not exist, for reading
// or writing, raises Exception; an unknown class name, which the library reports itself through
// the message sink, raises ReportedFailure.
void RunElementShell(const ShellScript& script, std::FILE* out);

}  // namespace veska::cli
