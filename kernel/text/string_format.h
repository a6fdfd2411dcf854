// Trimming, cleaning, padding and number formatting of strings (part of the unit U_string).
//
// Positions and lengths are UTF-16 code units; N and widths are counts of them.
#pragma once

#include <cstdint>

#include "kernel/platform/string.h"

namespace veska {

// S without leading and trailing characters of the set {code 0, space}; an all-blank S gives
// the empty string.
String BezVnejsichMezer(StringView S);

// S with every code 0 and every space removed.
String RemoveAllSpaces(StringView S);

// The text between the apostrophes when S begins and ends with one; otherwise S unchanged.
// A string of one apostrophe counts as both and gives the empty string.
String TakeFromApos(StringView S);

// Replaces the first occurrence of Old in S by New, or every occurrence when All is true.
// True when anything was replaced.  An empty S or Old = code 0 changes nothing.
bool ChangeCharInString(String& S, char16_t Old, char16_t New, bool All);

// Exchanges the characters A and B throughout S (every A becomes B and every B becomes A).
void SwapChars(String& S, char16_t A, char16_t B);

// S padded with spaces on the right to length N, or its first N characters when it is not
// shorter than N.  N <= 0 gives the empty string.
String StrToStrSp(StringView S, int32_t N);

// Value right-aligned in Width characters, as the C format "%*d" (Zeros false: padded with
// spaces) or "%*.*d" with both widths equal to Width (Zeros true: padded with zeros; the sign
// comes before the zeros and adds to the width).  A negative Width aligns to the left as in C.
String IntToStrZ(int32_t Value, int32_t Width, bool Zeros);

// Value in groups of three digits separated by one space, the most significant group
// unpadded: 1200005 gives "1 200 005", -1000 gives "-1 000".
String IntToPrezStr(int64_t Value);

// Value as the C format "%*.*f" with Width and Decimals, always with '.' as the decimal point
// whatever the C locale says.  A negative Decimals means the C default of 6 decimals; a
// negative Width aligns to the left.
String DoubleToStr(double Value, int32_t Width, int32_t Decimals);

}  // namespace veska
