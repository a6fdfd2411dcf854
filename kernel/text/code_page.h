// Recognition and conversion of the 8-bit encodings in which Czech and Slovak texts are met
// (module "Cpconvrt"): Windows-1250 (the library's own), ISO 8859-2, CP852, the Kamenický
// encoding, and plain 7-bit text without diacritics.
//
// No full code-page tables are used.  The functions know exactly the 42 accented letters of
// CzechLetters, in five parallel columns, and convert a text byte by byte through them; every
// other byte passes through unchanged.  A byte that occurs twice in a column is always found at
// its first row, so the order of the rows is part of the behaviour.
//
// Three cells differ from the published code pages on purpose and must stay so, because texts
// converted by earlier versions of the system depend on them:
//   - rows 20 and 38 (Ľ, ľ) of the ISO 8859-2 column hold the Windows-1250 bytes BC and BE
//     (the published code page has A5 and B5), so _8859_2ToWin reads BE as ž (row 37);
//   - row 22 (Ö) of the CP852 column holds E2, the byte of Ô (row 39), instead of 99, so
//     cp852ToWin reads E2 as Ö and leaves 99 unchanged.
// The Kamenický column writes a plain L for Ĺ (row 4).
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "kernel/platform/string.h"

namespace veska {

// The columns of the letter table, in table order.
enum class CzechColumn : std::size_t { Windows1250, Iso8859_2, Kamenicky, Cp852, Plain };

struct CzechLetter {
  char16_t Letter;                     // the letter itself, for readers and tests
  std::array<unsigned char, 5> Bytes;  // its byte in each column, indexed by CzechColumn

  constexpr unsigned char In(CzechColumn column) const { return Bytes[static_cast<std::size_t>(column)]; }
};

// The letter table, numbered from 1 in the comments.
//                                       Win1250 8859-2 Kamen. CP852  Plain
inline constexpr std::array<CzechLetter, 42> CzechLetters{{
    {u'Á', {0xC1, 0xC1, 0x8F, 0xB5, 'A'}},  //  1
    {u'É', {0xC9, 0xC9, 0x90, 0x90, 'E'}},  //  2
    {u'Í', {0xCD, 0xCD, 0x8B, 0xD6, 'I'}},  //  3
    {u'Ĺ', {0xC5, 0xC5, 0x4C, 0x91, 'L'}},  //  4  Kamenický has no Ĺ: plain L
    {u'Ó', {0xD3, 0xD3, 0x95, 0xE0, 'O'}},  //  5
    {u'Ŕ', {0xC0, 0xC0, 0xAB, 0xE8, 'R'}},  //  6
    {u'Ú', {0xDA, 0xDA, 0x97, 0xE9, 'U'}},  //  7
    {u'Ý', {0xDD, 0xDD, 0x9D, 0xED, 'Y'}},  //  8
    {u'á', {0xE1, 0xE1, 0xA0, 0xA0, 'a'}},  //  9
    {u'é', {0xE9, 0xE9, 0x82, 0x82, 'e'}},  // 10
    {u'í', {0xED, 0xED, 0xA1, 0xA1, 'i'}},  // 11
    {u'ĺ', {0xE5, 0xE5, 0x8D, 0x92, 'l'}},  // 12
    {u'ó', {0xF3, 0xF3, 0xA2, 0xA2, 'o'}},  // 13
    {u'ŕ', {0xE0, 0xE0, 0xAA, 0xEA, 'r'}},  // 14
    {u'ú', {0xFA, 0xFA, 0xA3, 0xA3, 'u'}},  // 15
    {u'ý', {0xFD, 0xFD, 0x98, 0xEC, 'y'}},  // 16
    {u'Č', {0xC8, 0xC8, 0x80, 0xAC, 'C'}},  // 17
    {u'Ď', {0xCF, 0xCF, 0x85, 0xD2, 'D'}},  // 18
    {u'Ě', {0xCC, 0xCC, 0x89, 0xB7, 'E'}},  // 19
    {u'Ľ', {0xBC, 0xBC, 0x9C, 0x95, 'L'}},  // 20  ISO 8859-2 keeps the Windows-1250 byte
    {u'Ň', {0xD2, 0xD2, 0xA5, 0xD5, 'N'}},  // 21
    {u'Ö', {0xD6, 0xD6, 0xA7, 0xE2, 'O'}},  // 22  CP852 holds the byte of row 39
    {u'Ř', {0xD8, 0xD8, 0x9E, 0xFC, 'R'}},  // 23
    {u'Š', {0x8A, 0xA9, 0x9B, 0xE6, 'S'}},  // 24
    {u'Ť', {0x8D, 0xAB, 0x86, 0x9B, 'T'}},  // 25
    {u'Ů', {0xD9, 0xD9, 0xA6, 0xDE, 'U'}},  // 26
    {u'Ž', {0x8E, 0xAE, 0x92, 0xA6, 'Z'}},  // 27
    {u'č', {0xE8, 0xE8, 0x87, 0x9F, 'c'}},  // 28
    {u'ď', {0xEF, 0xEF, 0x83, 0xD4, 'd'}},  // 29
    {u'ě', {0xEC, 0xEC, 0x88, 0xD8, 'e'}},  // 30
    {u'ň', {0xF2, 0xF2, 0xA4, 0xE5, 'n'}},  // 31
    {u'ö', {0xF6, 0xF6, 0x94, 0x94, 'o'}},  // 32
    {u'ř', {0xF8, 0xF8, 0xA9, 0xFD, 'r'}},  // 33
    {u'š', {0x9A, 0xB9, 0xA8, 0xE7, 's'}},  // 34
    {u'ť', {0x9D, 0xBB, 0x9F, 0x9C, 't'}},  // 35
    {u'ů', {0xF9, 0xF9, 0x96, 0x85, 'u'}},  // 36
    {u'ž', {0x9E, 0xBE, 0x91, 0xA7, 'z'}},  // 37
    {u'ľ', {0xBE, 0xBE, 0x8C, 0x96, 'l'}},  // 38  ISO 8859-2 keeps the Windows-1250 byte
    {u'Ô', {0xD4, 0xD4, 0xA7, 0xE2, 'O'}},  // 39
    {u'ô', {0xF4, 0xF4, 0x93, 0x93, 'o'}},  // 40
    {u'Ä', {0xC4, 0xC4, 0x8E, 0x8E, 'A'}},  // 41
    {u'ä', {0xE4, 0xE4, 0x84, 0x84, 'a'}},  // 42
}};

// Tests.  Only bytes above 128 count; byte 128 itself is taken as plain.
bool cp_IsIBM(std::string_view text);  // no byte above 128 (true for the empty text)
bool cp_IsWin(std::string_view text);  // every byte above 128 is in the Windows-1250 column
bool cp_Is852(std::string_view text);  // every byte above 128 is in the CP852 column
bool cp_IsKam(std::string_view text);  // every byte above 128 is in the Kamenický column

// Guesses the encoding of a text.  Windows-1250, CP852 and Kamenický start as candidates; each
// byte above 128, in text order, closes the candidates whose column lacks it.  The answer is
// taken at the first byte after which a single candidate is left, even when later bytes would
// not fit it: 1250 (Windows-1250), 852 (CP852) or 1 (Kamenický).  Otherwise the result is 2 for
// a text without bytes above 128 (the empty text too) and 3 when several candidates, or none,
// stayed open.
int cp_GetCodePage(std::string_view text);

// Byte-wise conversions through the letter table (first row wins where a column repeats a byte).
std::string WinTo_8859_2(std::string_view text);
std::string _8859_2ToWin(std::string_view text);
std::string WinTo852(std::string_view text);
std::string cp852ToWin(std::string_view text);
std::string WinToKAM(std::string_view text);
std::string WinToIBM(std::string_view text);  // diacritics removed: Příliš gives Prilis

// UTF-8 of an 8-bit Windows-1250 text held in a String.  Each character of the argument stands
// for one Windows-1250 byte, its low byte (so a text read byte by byte into a String can be
// passed as it is; a character above FF contributes only its low byte).  Each character of the
// result is one byte of the UTF-8 form, with the byte's value as its code: the Windows-1250
// bytes of "kůň" (6B F9 F2) give the six characters 6B C5 AF C5 88.
String WinTo_UTF8(StringView text);

}  // namespace veska
