// The string-utility unit U_string: free functions on text shared by the whole library and the
// unit's global variables.  Including this header gives all of it.
//
//   string_tokens.h   reading tokens up to delimiters, splitting "name=value" lines
//   string_format.h   trimming, cleaning, padding and number formatting
//   string_numbers.h  text <-> float, integer, Boolean and Roman numeral
//   string_names.h    names with a trailing number, class names, file names
//   string_paths.h    paths and directories
//   string_globals.h  RootDirectory, Directory_Store, AppString, DotDecimalSeparator,
//                     DBTransLiterate, _USR
//   char_set.h        TCharSet, the 8-bit character sets the functions take
#pragma once

#include "kernel/text/char_set.h"
#include "kernel/text/string_format.h"
#include "kernel/text/string_globals.h"
#include "kernel/text/string_names.h"
#include "kernel/text/string_numbers.h"
#include "kernel/text/string_paths.h"
#include "kernel/text/string_tokens.h"
