// The text type of the library and its conversions.
//
// Text is UTF-16 in memory, as the system's files and texts expect: lengths, positions and
// "characters" are UTF-16 code units.  8-bit text (Windows-1250 bytes) is std::string.  UTF-8
// appears only at the edges (files, the command line, logs).
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace veska {

using String = std::u16string;
using StringView = std::u16string_view;

// UTF-8 <-> UTF-16.  Malformed input (bad UTF-8 sequences, unpaired surrogates) becomes
// U+FFFD in the result; neither direction ever fails.
std::string ToUtf8(StringView text);
String FromUtf8(std::string_view utf8);

// Windows-1250 <-> UTF-16 with the complete code-page table.  The five bytes that Windows-1250
// leaves undefined (81, 83, 88, 90, 98) map to the code points of the same number, as the
// original platform's conversion did, so every byte string survives a round trip.  Characters
// that the code page cannot represent become '?', the platform's default character.
std::string ToWin1250(StringView text);
// The text in Windows-1250 when the code page has every one of its characters; none otherwise.
std::optional<std::string> ToWin1250Exactly(StringView text);
String FromWin1250(std::string_view bytes);
// The UTF-16 character of one Windows-1250 byte.
char16_t Win1250ToChar(unsigned char byte);

// Unicode (locale-independent, root-locale) upper-casing and case-insensitive comparison.
String UpperCase(StringView text);
String LowerCase(StringView text);
int CompareText(StringView a, StringView b);  // <0, 0, >0 ignoring case
bool SameText(StringView a, StringView b);
// For a text of ASCII characters only: bytes whose plain order (std::string's compare) is
// CompareText's order among such texts; none for any other text.  A sort that compares many
// texts compares these instead.
std::optional<std::string> CompareTextKey(StringView text);

// Upper-casing of the letters a to z only, every other character unchanged.  Used where names
// are plain identifiers and must compare the same on every machine.
String AsciiUpperCase(StringView text);
constexpr char16_t AsciiUpperChar(char16_t c) { return (c >= u'a' && c <= u'z') ? char16_t(c - 32) : c; }

// Decimal text of an integer.
String IntToStr(long long value);

}  // namespace veska
