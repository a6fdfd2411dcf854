// The veska command-line program.
#include <cstdio>
#include <string_view>

namespace {

constexpr std::string_view kUsage =
    "usage: veska COMMAND [ARGUMENTS]\n"
    "\n"
    "commands:\n"
    "  version     print the library version\n"
    "  help        print this text\n";

}  // namespace

int main(int argc, char** argv) {
  const std::string_view command = argc > 1 ? argv[1] : "help";
  if (command == "version" || command == "--version") {
    std::printf("veska %s\n", VESKA_VERSION_TEXT);
    return 0;
  }
  std::fputs(kUsage.data(), command == "help" || command == "--help" ? stdout : stderr);
  return command == "help" || command == "--help" ? 0 : 1;
}
