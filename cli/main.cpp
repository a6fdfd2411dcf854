// The veska command-line program: a small dispatcher over the commands of cli/.
//
// Exit status: 0 on success, 1 when a command fails (the reason is on stderr), 2 for a mistake
// in the command line.  Everything the program itself says on stderr begins with "veska: ";
// texts of the library follow that prefix unchanged.
//
// The program is the host application of its own world: the world's main tool hands it what
// tools report, so their progress shows as a bar on stderr (when it is a terminal and --quiet is
// not given) and their text reports as lines there.
#include <unistd.h>
#include <veska/version.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/class_commands.h"
#include "cli/console_host.h"
#include "cli/element_shell.h"
#include "cli/make_elements.h"
#include "cli/model_file_commands.h"
#include "cli/tool_runner.h"
#include "cli/usage_error.h"
#include "kernel/classes/registry.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/tools/host_technology.h"
#include "kernel/tools/world.h"

namespace {

constexpr std::string_view kUsage =
    "usage: veska [-q] COMMAND [ARGUMENTS]\n"
    "\n"
    "commands:\n"
    "  version     print the library version\n"
    "  classes     list the registered classes, sorted by name: ID, name, ancestor, property\n"
    "              count, unit\n"
    "  class NAME  list the properties of a class: index, name, type kind, access, stored\n"
    "  info FILE   print a model file's header: module, version, comment, error code, error text\n"
    "  tree [--json] FILE\n"
    "              load a model file and print its tree: one line per element (class, name,\n"
    "              stored properties), or one JSON document\n"
    "  convert IN OUT\n"
    "              load the model file IN and write its model to OUT\n"
    "  new CLASS [ARG]...\n"
    "              create an element and work on it, argument by argument:\n"
    "                NAME=VALUE        write a property as text\n"
    "                PATH.NAME=VALUE   write a property of the object a path command reaches\n"
    "                --get NAME        print NAME=<the property as text>\n"
    "                --add CLASS:NAME  add a new named element of CLASS to it\n"
    "                --path CMD        print the result of a path command\n"
    "                --list CMD        print the lines of a path command's list\n"
    "  run CLASS [ARG]...\n"
    "              create a tool, make the writes of the arguments above, run it, print\n"
    "              Output=CLASS:NAME and Error=N, then make the reads\n"
    "  help        print this text\n"
    "\n"
    "options:\n"
    "  -h, --help     print this text\n"
    "  -V, --version  print the library version\n"
    "  -q, --quiet    show no progress (it shows only when stderr is a terminal)\n"
    "\n"
    "Exit status: 0 on success, 1 when a command fails, 2 for a mistake in the command line.\n";

using Operands = std::span<char* const>;

// A command with the number of operands it takes; checked here, for every command alike.
struct Command {
  std::string_view name;
  std::string_view operands;  // as the usage names them, for the message when they are missing
  std::size_t min_operands;
  std::size_t max_operands;
  void (*run)(Operands operands);
};

constexpr std::size_t kAny = std::numeric_limits<std::size_t>::max();

// "tree [--json] FILE", the option before or after the file.
void RunTree(Operands operands) {
  bool json = false;
  std::vector<std::string_view> files;
  for (std::string_view operand : operands) {
    if (operand == "--json") {
      json = true;
    } else if (operand.starts_with('-') && operand.size() > 1) {
      throw veska::cli::UsageError("unknown option '" + std::string(operand) + "'");
    } else {
      files.push_back(operand);
    }
  }
  if (files.empty()) throw veska::cli::UsageError("missing FILE");
  if (files.size() > 1) throw veska::cli::UsageError("unexpected argument '" + std::string(files[1]) + "'");
  veska::cli::ShowModelTree(files[0], json, stdout);
}

constexpr Command kCommands[] = {
    {"version", "", 0, 0, [](Operands) { std::printf("veska %s\n", VESKA_VERSION_STRING); }},
    {"help", "", 0, 0, [](Operands) { std::fputs(kUsage.data(), stdout); }},
    {"classes", "", 0, 0, [](Operands) { veska::cli::ListClasses(stdout); }},
    {"class", "NAME", 1, 1, [](Operands operands) { veska::cli::ShowClass(operands[0], stdout); }},
    {"info", "FILE", 1, 1, [](Operands operands) { veska::cli::ShowModelInfo(operands[0], stdout); }},
    {"tree", "FILE", 1, 2, [](Operands operands) { RunTree(operands); }},
    {"convert", "IN OUT", 2, 2, [](Operands operands) { veska::cli::ConvertModel(operands[0], operands[1]); }},
    // "new" checks its own arguments before it creates anything: they are a small language.
    {"new", "CLASS", 1, kAny,
     [](Operands operands) { veska::cli::RunElementShell(veska::cli::ParseShellArguments(operands), stdout); }},
    {"run", "CLASS", 1, kAny,
     [](Operands operands) { veska::cli::RunTool(veska::cli::ParseShellArguments(operands), stdout); }},
};

// The command an argument names; the options -h and -V are the commands help and version.
const Command& FindCommand(std::string_view argument) {
  if (argument == "-h" || argument == "--help") argument = "help";
  if (argument == "-V" || argument == "--version") argument = "version";
  for (const Command& command : kCommands) {
    if (command.name == argument) return command;
  }
  const char* what = argument.starts_with('-') ? "unknown option '" : "unknown command '";
  throw veska::cli::UsageError(what + std::string(argument) + "'");
}

void Run(Operands arguments) {
  if (arguments.empty()) throw veska::cli::UsageError("missing command");
  const Command& command = FindCommand(arguments[0]);
  const Operands operands = arguments.subspan(1);
  try {
    if (operands.size() < command.min_operands)
      throw veska::cli::UsageError("missing " + std::string(command.operands));
    if (operands.size() > command.max_operands) {
      throw veska::cli::UsageError("unexpected argument '" + std::string(operands[command.max_operands]) + "'");
    }
    command.run(operands);
  } catch (const veska::cli::UsageError& error) {
    throw veska::cli::UsageError(std::string(command.name) + ": " + error.what());
  }
}

void PrintError(const std::string& text) { std::fprintf(stderr, "veska: %s\n", text.c_str()); }

// Output that did not reach its file (a full disk, a closed pipe) is a failure of the command.
int CheckedOutput(int status) {
  errno = 0;
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
  const int error = errno;
  PrintError(error != 0 ? std::string("cannot write the output: ") + std::strerror(error) : "cannot write the output");
  return 1;
}

// The program's host application and world, with the program's own tool registered after the
// library's classes; texts of the library go to the host while it lives.
class ProgramWorld {
 public:
  explicit ProgramWorld(bool show_progress) : host_(stderr, show_progress) {
    veska::SetApplication(&host_);
    previous_sink_ =
        veska::SetMessageSink([this](const veska::String& text, veska::MessageKind) { host_.ShowLine(text); });
    veska::RegisterVeskaClass<veska::cli::TMakeElements>();
    world_ = std::make_unique<veska::TWorld>();
    world_->SetMainTool(new veska::THostTechnology);
  }
  ~ProgramWorld() {
    world_.reset();
    veska::SetMessageSink(std::move(previous_sink_));
    veska::SetApplication(nullptr);
  }
  ProgramWorld(const ProgramWorld&) = delete;
  ProgramWorld& operator=(const ProgramWorld&) = delete;

 private:
  veska::cli::ConsoleHost host_;
  veska::MessageSink previous_sink_;
  std::unique_ptr<veska::TWorld> world_;
};

}  // namespace

int main(int argc, char** argv) {
  Operands arguments(argv + 1, static_cast<std::size_t>(argc > 0 ? argc - 1 : 0));
  const bool quiet =
      !arguments.empty() && (arguments[0] == std::string_view("-q") || arguments[0] == std::string_view("--quiet"));
  if (quiet) arguments = arguments.subspan(1);
  ProgramWorld program(!quiet && isatty(fileno(stderr)) == 1);
  try {
    Run(arguments);
    return CheckedOutput(0);
  } catch (const veska::cli::UsageError& error) {
    PrintError(std::string(error.what()) + ". Try 'veska help'.");
    return 2;
  } catch (const veska::cli::ReportedFailure&) {
  } catch (const veska::Exception& error) {
    PrintError(veska::ToUtf8(error.Message()));
  } catch (const std::exception& error) {
    PrintError(error.what());
  }
  return CheckedOutput(1);
}
