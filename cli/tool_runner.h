// "veska run CLASS [ARG]...": a tool created by class name, set up, run under the world's
// message loop, and its results printed.
#pragma once

#include <cstdio>

#include "cli/element_shell.h"

namespace veska::cli {

// Creates the tool and runs, in this order: the script's writes (NAME=VALUE, PATH.NAME=VALUE,
// --add), the tool's set-up from its self model when it has one, DoIt, the world's pending
// messages until none is left, and then prints
//   Output=CLASS:NAME   (the output element's class and name; "Output=" for none)
//   Error=N
// followed by what the script's reads (--get, --path, --list) print, in their order.  A class
// that is not a tool raises Exception ("Class: CLASS is not a Tool"); an unknown class raises
// ReportedFailure, as for "new".
void RunTool(const ShellScript& script, std::FILE* out);

}  // namespace veska::cli
