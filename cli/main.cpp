// The veska command-line program: a small dispatcher over the commands of cli/.
#include <cstdio>
#include <exception>
#include <span>
#include <string_view>

#include "cli/class_commands.h"
#include "cli/element_shell.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/string.h"

namespace {

constexpr std::string_view kUsage =
    "usage: veska COMMAND [ARGUMENTS]\n"
    "\n"
    "commands:\n"
    "  version     print the library version\n"
    "  classes     list the registered classes: ID, name, ancestor, property count, unit\n"
    "  class NAME  list the properties of a class: index, name, type kind, access, stored\n"
    "  new CLASS [ARG]...\n"
    "              create an element and work on it, argument by argument:\n"
    "                NAME=VALUE        write a property as text\n"
    "                --get NAME        print NAME=<the property as text>\n"
    "                --add CLASS:NAME  add a new named element of CLASS to it\n"
    "                --path CMD        print the result of a path command\n"
    "                --list CMD        print the lines of a path command's list\n"
    "  help        print this text\n";

int Usage(std::FILE* out, int exit_code) {
  std::fputs(kUsage.data(), out);
  return exit_code;
}

int Run(int argc, char** argv) {
  const std::string_view command = argc > 1 ? argv[1] : "help";
  if (command == "version" || command == "--version") {
    std::printf("veska %s\n", VESKA_VERSION_TEXT);
    return 0;
  }
  if (command == "classes" && argc == 2) return veska::cli::ListClasses(stdout);
  if (command == "class" && argc == 3) return veska::cli::ShowClass(argv[2], stdout, stderr);
  if (command == "new") return veska::cli::RunElementShell(std::span<char* const>(argv + 2, argc - 2), stdout);
  if (command == "help" || command == "--help") return Usage(stdout, 0);
  return Usage(stderr, 1);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const veska::Exception& error) {
    std::fprintf(stderr, "error: %s\n", veska::ToUtf8(error.Message()).c_str());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "error: %s\n", error.what());
  }
  return 1;
}
