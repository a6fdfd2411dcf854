// Conversions between text and numbers, Booleans and Roman numerals (part of the unit U_string).
//
// These are the library's float <-> text conversions: property access by name, the typed value
// elements and the schema checks all use them, so a float written by ExtendedToStr always reads
// back by StrToExtended to the same double.  None of them depends on the C locale.
#pragma once

#include <cstdint>
#include <optional>

#include "kernel/platform/string.h"

namespace veska {

// The text form of a float: the shortest decimal text that reads back to the same double
// (15 significant digits or fewer for most values, never more than 17), in the general form:
// fixed notation unless the number has more than 15 integer digits or is below 0.00001 in
// magnitude, then scientific with a bare exponent ("1E20", "1.5E-7", "-2.5E-10").  The decimal
// separator is FormatSettings.DecimalSeparator.  Zero (either sign) is "0"; the special values
// are "NAN", "INF" and "-INF".
String ExtendedToStr(double X);

// The float that S denotes; EConvertError "'S' is not a valid floating point value" otherwise.
// Accepted: blanks (codes up to 32) around the number, an optional sign, digits with at most
// one decimal separator and at least one digit, an optional exponent (E or e, optional sign,
// digits).  The decimal separator is FormatSettings.DecimalSeparator and, while
// DotDecimalSeparator is true (its start-up value), also '.' and ',', so text written under
// either convention reads.  "NAN", "INF" and "-INF" (any case) read as the special values.  A
// number too large for a double raises; one too small for it reads as 0.
double StrToExtended(StringView S);

// Whether StrToExtended would succeed on S.
bool StringIsFloat(StringView S);

// The whole number that S denotes (blanks around it, an optional sign, decimal digits), or
// none for any other text or a number beyond the type's range.
std::optional<int64_t> TryStrToInt64(StringView S);
std::optional<int32_t> TryStrToLongInt(StringView S);

// The 32-bit integer that S denotes: blanks around it, an optional sign and decimal digits.
// EConvertError "'S' is not a valid integer value" for any other text or a number outside the
// 32-bit range.
int32_t StrToLongInt(StringView S);

// StrToLongInt, but 0 instead of an error: the lenient reading used where text that is not a
// number counts as 0.
int32_t StringToInteger(StringView S);

// A simple checksum: the sum of the character codes of S, modulo 2^32, as a signed 32-bit
// number.  Equal strings give equal sums; it is not a hash of any quality.
int32_t StringIntSum(StringView S);

// "True" or "False".
String BoolToStr(bool B);

// True for "true" and false for "false" in any case, with blanks around them allowed; a number
// (StrToExtended) is true when not zero.  EConvertError "'S' is not a valid boolean value"
// for any other text.
bool StrToBool(StringView S);

// N as an upper-case Roman numeral ("MCMXCIV"); the empty string when N is outside 1..3999,
// which Roman numerals cannot write.
String IntegerToRome(int32_t N);

// The value of a Roman numeral in its standard form, in either case with blanks around it
// ("mcmxciv" gives 1994).  Text that is not a standard numeral of 1..3999 ("IIII", "IC",
// "ABC", the empty string) gives 0.
int32_t RomeToInteger(StringView S);

}  // namespace veska
