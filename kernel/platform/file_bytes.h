// Whole files as bytes: the one reader and writer behind string lists, memory streams and the
// parameter reader.
#pragma once

#include <string>
#include <string_view>

#include "kernel/platform/string.h"

namespace veska {

// Whether a file (anything but a directory) of that name exists.
bool FileExists(const String& file_name);

// The file's bytes.  EFOpenError "Cannot open file "<name>". <reason>" when it cannot be opened
// or read (a directory, say).
std::string ReadFileBytes(const String& file_name);

// Replaces the file's content with the bytes.  EFOpenError "Cannot create file ..." when it
// cannot be created; EWriteError "Stream write error" when the bytes do not all reach it.
void WriteFileBytes(const String& file_name, std::string_view bytes);

}  // namespace veska
