// Reading tokens up to a delimiter and splitting "name=value" lines (part of the unit U_string).
//
// Positions are 1-based (1..Length of the string).  Delimiter and block sets are TCharSet: a
// character above 255 is never a delimiter.
#pragma once

#include <cstdint>

#include "kernel/platform/string.h"
#include "kernel/text/char_set.h"

namespace veska {

// The token from Start up to, not including, the first character at or after Start that is in
// Delims.  Delim receives that delimiter, or code 0 when the text ended first; Pos receives
// the position just after the delimiter, which is Length + 2 at the end of the text, so that
// repeated calls walk a line.  An empty S returns at once with Pos = Start and Delim = 0.
// A Start below 1 reads from 1, a Start beyond the end reads at the end.
String ReadToDelimiter(StringView S, const TCharSet& Delims, int32_t Start, char16_t& Delim, int32_t& Pos);

// ReadToDelimiter with the token's outer blanks removed (BezVnejsichMezer).
String ReadToDelimiterWithoutWS(StringView S, const TCharSet& Delims, int32_t Start, char16_t& Delim, int32_t& Pos);

// ReadToDelimiterWithoutWS where a character of Blocks opens a block that runs to the next
// occurrence of the same character; delimiters inside the block do not count.  Only the first
// block of a token is protected; an unclosed block runs to the end of the text.  A character
// in both sets acts as a block character.
String ReadToDelimiterWithoutWSIgnoreBlock(StringView S, const TCharSet& Delims, const TCharSet& Blocks, int32_t Start,
                                           char16_t& Delim, int32_t& Pos);

// Splits S at its first "=": Name and Value are the trimmed parts, true.  Without "=": Name is
// the trimmed S, Value empty, false.  The separator's position is held as an 8-bit number under
// range checking, so an "=" at position 256 or beyond raises ERangeError.
bool StringAsParameter(StringView S, String& Name, String& Value);

// As StringAsParameter, but nothing is trimmed; without "=", Name is S unchanged and Value
// empty.  The same 255-position limit applies.
bool StringAsParameterWS(StringView S, String& Name, String& Value);

// Splits S at its first "=" outside a block (see ReadToDelimiterWithoutWSIgnoreBlock); both
// parts trimmed.  Without "=": Name is the trimmed text, Value empty, false.  No position limit.
bool StringAsParameterIgnoreBlock(StringView S, String& Name, String& Value, const TCharSet& Blocks);

// Splits S at its first Sep character: First and Second are the trimmed parts, true.  Second is
// assigned only when some text follows the separator and otherwise keeps its value.  Without
// Sep: First is the trimmed S, false.  The same 255-position limit as StringAsParameter.
bool StringAsTwoParams(StringView S, char16_t Sep, String& First, String& Second);

// As StringAsTwoParams without trimming; without Sep, First is S unchanged.
bool StringAsTwoParamsWS(StringView S, char16_t Sep, String& First, String& Second);

}  // namespace veska
