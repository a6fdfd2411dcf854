// The commands of the veska program that read model files.
#pragma once

#include <cstdio>
#include <string_view>

namespace veska::cli {

// "veska info FILE": the file's header as TLoadVSKInfo reads it, one line of fields separated by
// tabs: module, version, comment, error code and error text ("OK", or why there is no header:
// codes 1-4).  A code other than 0 makes the command fail (ReportedFailure) after the line.
void ShowModelInfo(std::string_view file_name, std::FILE* out);

}  // namespace veska::cli
