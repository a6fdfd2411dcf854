// The global variables of the unit U_string, shared by the other subsystems.
//
// They are set when the library is loaded and may be changed by the application at start-up,
// before other threads run; afterwards they are read-only for every thread but the main one,
// which alone may change them.  Code that runs while static objects are being initialised must
// not read them.
#pragma once

#include "kernel/platform/string.h"

namespace veska {

// The directory the library treats as the program's home, ending with '/'.  Start-up value:
// ExecPath(), the directory of the running program.
extern String RootDirectory;

// The directory where applications keep their stored data, ending with '/'.  Start-up value:
// the same as RootDirectory.
extern String Directory_Store;

// The application's name, for titles and messages.  Start-up value: the file name of the
// running program without its directory and extension ("veska" for /usr/bin/veska).
extern String AppString;

// While true, StrToExtended takes both '.' and ',' as the decimal separator besides
// FormatSettings.DecimalSeparator, so numbers written under either convention read.  When
// false, only FormatSettings.DecimalSeparator is a decimal separator.  Start-up value: true.
extern bool DotDecimalSeparator;

// Whether text handed to databases is to be transliterated (Czech letters written without
// their accents).  A switch for the database layers of applications; nothing in the library
// reads it.  Start-up value: false.
extern bool DBTransLiterate;

// The name of the user running the program.  Start-up value: the environment variable USER,
// else LOGNAME, else USERNAME; empty when none is set.
extern String _USR;

}  // namespace veska
