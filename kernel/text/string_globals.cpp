#include "kernel/text/string_globals.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "kernel/text/string_paths.h"

namespace veska {
namespace {

String ProgramName() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? String() : FromUtf8(program.stem().string());
}

String UserName() {
  for (const char* variable : {"USER", "LOGNAME", "USERNAME"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return FromUtf8(value);
  }
  return String();
}

}  // namespace

String RootDirectory = ExecPath();
String Directory_Store = RootDirectory;
String AppString = ProgramName();
bool DotDecimalSeparator = true;
bool DBTransLiterate = false;
String _USR = UserName();

}  // namespace veska
