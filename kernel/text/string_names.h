// Element names with a number at the end, class names and file names (part of the unit
// U_string).
//
// Generated element names are a base name followed by a decimal number ("Element12"); these
// functions take such names apart.
#pragma once

#include <cstdint>

#include "kernel/platform/string.h"

namespace veska {

// S without its trailing decimal digits ("Element12" gives "Element"); S unchanged when it has
// none.  An all-digit S gives the empty string.
String GetNameWithoutNumber(StringView S);

// The value of S's trailing decimal digits ("Element12" gives 12); 0 when there are none or S
// is all digits.  At most 255 digits are taken: the first 255 after the name.  A number beyond
// the 32-bit range saturates at 2147483647, so a huge number still counts as the largest.
int32_t GetNameEndNumber(StringView S);

// Brings a class name to the form of the system's classes: outer blanks removed and a "T"
// put in front when the name does not begin with "T" or "t" ("Element" becomes "TElement").
// An empty or all-blank name becomes empty.
void CheckClassName(String& S);

// S made usable as a file name on any host: every control character (code below 32) and every
// character of \ / : * ? " < > | becomes '_'.  Nothing else changes; an empty S stays empty.
String GetValidFileName(StringView S);

}  // namespace veska
