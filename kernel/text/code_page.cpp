#include "kernel/text/code_page.h"

#include <algorithm>

namespace veska {
namespace {

// Bytes up to 128 are plain text for every test and never change in a conversion.
constexpr bool IsHighByte(unsigned char byte) { return byte > 128; }

using ByteMap = std::array<unsigned char, 256>;
using ByteSet = std::array<bool, 256>;

// The translation of every byte from one column to another.  Rows are walked from the last to
// the first so that, where the source column repeats a byte, the first row has the last word.
constexpr ByteMap MakeTranslation(CzechColumn from, CzechColumn to) {
  ByteMap map{};
  for (std::size_t byte = 0; byte < map.size(); ++byte) map[byte] = static_cast<unsigned char>(byte);
  for (auto row = CzechLetters.rbegin(); row != CzechLetters.rend(); ++row) map[row->In(from)] = row->In(to);
  return map;
}

constexpr ByteSet MakeMembership(CzechColumn column) {
  ByteSet set{};
  for (const CzechLetter& row : CzechLetters) set[row.In(column)] = true;
  return set;
}

constexpr ByteSet kInWindows1250 = MakeMembership(CzechColumn::Windows1250);
constexpr ByteSet kInCp852 = MakeMembership(CzechColumn::Cp852);
constexpr ByteSet kInKamenicky = MakeMembership(CzechColumn::Kamenicky);

std::string Translate(std::string_view text, const ByteMap& map) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(map[static_cast<unsigned char>(c)]);
  return result;
}

bool HighBytesAllIn(std::string_view text, const ByteSet& column) {
  return std::ranges::all_of(text, [&column](char c) {
    const auto byte = static_cast<unsigned char>(c);
    return !IsHighByte(byte) || column[byte];
  });
}

}  // namespace

bool cp_IsIBM(std::string_view text) {
  return std::ranges::none_of(text, [](char c) { return IsHighByte(static_cast<unsigned char>(c)); });
}

bool cp_IsWin(std::string_view text) { return HighBytesAllIn(text, kInWindows1250); }
bool cp_Is852(std::string_view text) { return HighBytesAllIn(text, kInCp852); }
bool cp_IsKam(std::string_view text) { return HighBytesAllIn(text, kInKamenicky); }

int cp_GetCodePage(std::string_view text) {
  bool windows_open = true;
  bool cp852_open = true;
  bool kamenicky_open = true;
  int result = 2;
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (!IsHighByte(byte)) continue;
    windows_open = windows_open && kInWindows1250[byte];
    cp852_open = cp852_open && kInCp852[byte];
    kamenicky_open = kamenicky_open && kInKamenicky[byte];
    result = 3;
    // The first time a single candidate is left decides, whatever the rest of the text holds.
    if (windows_open && !cp852_open && !kamenicky_open) return 1250;
    if (kamenicky_open && !windows_open && !cp852_open) return 1;
    if (cp852_open && !windows_open && !kamenicky_open) return 852;
  }
  return result;
}

namespace {

// The conversion from one column of the letter table to another; the table of bytes is built
// at compile time, once per pair of columns.
template <CzechColumn From, CzechColumn To>
std::string TranslateColumns(std::string_view text) {
  static constexpr ByteMap map = MakeTranslation(From, To);
  return Translate(text, map);
}

}  // namespace

std::string WinTo_8859_2(std::string_view text) {
  return TranslateColumns<CzechColumn::Windows1250, CzechColumn::Iso8859_2>(text);
}
std::string _8859_2ToWin(std::string_view text) {
  return TranslateColumns<CzechColumn::Iso8859_2, CzechColumn::Windows1250>(text);
}
std::string WinTo852(std::string_view text) {
  return TranslateColumns<CzechColumn::Windows1250, CzechColumn::Cp852>(text);
}
std::string cp852ToWin(std::string_view text) {
  return TranslateColumns<CzechColumn::Cp852, CzechColumn::Windows1250>(text);
}
std::string WinToKAM(std::string_view text) {
  return TranslateColumns<CzechColumn::Windows1250, CzechColumn::Kamenicky>(text);
}
std::string WinToIBM(std::string_view text) {
  return TranslateColumns<CzechColumn::Windows1250, CzechColumn::Plain>(text);
}

// The UTF-8 bytes of the text, each shown as the Windows-1250 character of that byte: what a
// program of the system's code page sees when it reads UTF-8.  Every byte has a character, so
// ToWin1250 of the result gives the UTF-8 bytes back.
String WinTo_UTF8(StringView text) { return FromWin1250(ToUtf8(text)); }

}  // namespace veska
