// The commands of the veska program that read and write model files.
#pragma once

#include <cstdio>
#include <string_view>

namespace veska::cli {

// "veska info FILE": the file's header as TLoadVSKInfo reads it, one line of fields separated by
// tabs: module, version, comment, error code and error text ("OK", or why there is no header:
// codes 1-4).  A code other than 0 makes the command fail (ReportedFailure) after the line.
void ShowModelInfo(std::string_view file_name, std::FILE* out);

// "veska tree [--json] FILE": loads a model file (VSK0 or TPF0) with TLoad under the program's
// world and prints the result's tree (model_tree.h) or one JSON document (model_json.h).  The
// loader's texts go to stderr, or into the document.  A file that fails to load fails the
// command, after the document in JSON.
void ShowModelTree(std::string_view file_name, bool json, std::FILE* out);

// "veska convert IN OUT": loads IN and writes its result's model with TStreamSaver to OUT, with
// IN's header.  Elements of IN that the result does not reach are not written, and are counted
// on stderr.
void ConvertModel(std::string_view in, std::string_view out);

}  // namespace veska::cli
