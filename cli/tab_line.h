// The line format of the veska program's tables: fields separated by tabs, one UTF-8 line.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>

#include "kernel/platform/string.h"

namespace veska::cli {

inline void WriteTabLine(std::FILE* out, std::initializer_list<String> fields) {
  std::string line;
  const char* separator = "";
  for (const String& field : fields) {
    line += separator;
    line += ToUtf8(field);
    separator = "\t";
  }
  line += '\n';
  std::fputs(line.c_str(), out);
}

}  // namespace veska::cli
