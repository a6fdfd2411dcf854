// "veska new CLASS [ARG]...": a shell for trying the element model from the command line.
#pragma once

#include <cstdio>
#include <span>

namespace veska::cli {

// Creates an element of CLASS and applies the arguments in order:
//   NAME=VALUE          writes VALUE into property NAME (SetPropertyStringByName)
//   --get NAME          prints "NAME=" and the property's text
//   --add CLASS:NAME    creates an element of CLASS named NAME and adds it to the element
//   --path CMD          prints the result of ExecuteCommandLine(CMD)
//   --list CMD          prints each line of ExecuteCommandLineToList(CMD)
// Gives 0, or 1 when the class is unknown or an argument fails (an exception's message is
// printed as "error: <message>" by the caller).
int RunElementShell(std::span<char* const> arguments, std::FILE* out);

}  // namespace veska::cli
