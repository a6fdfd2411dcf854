// Paths and directories (part of the unit U_string).
//
// The host separator is '/'; every function also takes the backslash '\' as a separator, so
// that paths written on the system the models came from still work.  Paths made by these
// functions use '/'.  A path is absolute when it begins with a separator or with a drive
// ("C:"); everything else is relative.
#pragma once

#include "kernel/platform/string.h"

namespace veska {

// The directory of the running program, ending with '/'.  When the host cannot tell where the
// program is, the current directory.
String ExecPath();

// True when S is a relative path (including the empty path): it neither begins with '/' or '\'
// nor with a drive letter and ':'.
bool IsRelativePath(StringView S);

// S as an absolute path, relative paths taken from the current directory (one argument) or
// from Base (two arguments; a relative Base is first taken from the current directory).
// The result uses '/', has "." and ".." resolved and repeated separators merged; ".." never goes
// above the root.  A trailing separator of S (of Base when S is empty) is kept.  Nothing is
// looked up on disk.
String GetAbsolutePath(StringView S);
String GetAbsolutePath(StringView S, StringView Base);

// The host's system directory, the place of system-wide files: the value
// of the environment variable WINDIR when it is set and not empty, otherwise "/usr".  No
// trailing separator.
String WinDirStr();

// Turns every '\' of S into the host separator '/'.
void CheckBackSlash(String& S);

// Appends '/' to S unless S is empty or already ends with a separator ('/' or '\').
void AddBackSlash(String& S);

// Removes the trailing separators ('/' or '\') of S, but keeps a root ("/", "C:/") whole.
void RemoveBackSlash(String& S);

}  // namespace veska
