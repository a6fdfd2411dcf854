#include "kernel/text/code_page.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <string>
#include <tuple>

namespace veska {
namespace {

using namespace std::string_literals;

const std::string kWindowsSentence = ToWin1250(u"Příliš žluťoučký kůň úpěl ďábelské ódy");

// Only bytes above 128 count: byte 128 is plain, and an empty text passes every test.
TEST(CodePageTests, EachTestAcceptsItsOwnColumnAndGetCodePageDecidesAtTheFirstSingleCandidate) {
  for (auto test : {cp_IsIBM, cp_IsWin, cp_Is852, cp_IsKam}) EXPECT_TRUE(test("") && test("plain\x80\x7F"s + '\0'));
  EXPECT_FALSE(cp_IsIBM("\x81"));
  EXPECT_TRUE(cp_IsWin(kWindowsSentence) && cp_Is852(WinTo852(kWindowsSentence)) &&
              cp_IsKam(WinToKAM(kWindowsSentence)));
  EXPECT_FALSE(cp_Is852(kWindowsSentence) || cp_IsKam(kWindowsSentence));  // ř (F8) is in neither column
  EXPECT_FALSE(cp_IsWin(WinTo852(kWindowsSentence)));

  // The decision is taken at the first byte after which one candidate alone is open, even when
  // later bytes fit no column or only another one.  C8 is Č in Windows-1250 only; A0 and A1 (á, í)
  // are in both CP852 and Kamenický, until B5 (Á of CP852) decides; FF is in no column, and once
  // no candidate is left none comes back.
  EXPECT_EQ(cp_GetCodePage(kWindowsSentence), 1250);
  EXPECT_EQ(cp_GetCodePage(WinTo852(kWindowsSentence)), 852);
  EXPECT_EQ(cp_GetCodePage(WinToKAM(kWindowsSentence)), 1);
  const std::pair<std::string, int> cases[] = {
      {"", 2},     {"no diacritics\x80", 2}, {"\xC8", 1250},     {"\xA0\xA1", 3},     {"\xA0\xB5", 852},
      {"\xFF", 3}, {"\xFF\xC8", 3},          {"\xC8\xFF", 1250}, {"\x8F\xC8\xFF", 1}, {"\xB5\xC8", 852}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(cp_GetCodePage(text), expected) << testing::PrintToString(text);
}

TEST(CodePageConversion, DuplicateBytesAreFoundAtTheirFirstRow) {
  EXPECT_EQ(_8859_2ToWin("\xBE"), "\x9E");  // row 37 ž, not row 38 ľ
  EXPECT_EQ(_8859_2ToWin("\xBC"), "\xBC");  // Ľ keeps its Windows-1250 byte
  EXPECT_EQ(WinTo_8859_2("\xBC\xBE"), "\xBC\xBE");
  EXPECT_EQ(cp852ToWin("\xE2"), "\xD6");            // row 22 Ö, not row 39 Ô
  EXPECT_EQ(cp852ToWin("\x99"), "\x99");            // the published CP852 Ö is unknown
  EXPECT_EQ(WinTo852("\xD6\xD4"), "\xE2\xE2");      // Ö and Ô both become E2 ...
  EXPECT_EQ(cp852ToWin(WinTo852("\xD4")), "\xD6");  // ... so Ô comes back as Ö
  EXPECT_EQ(WinToKAM("\xC5"), "L");                 // Ĺ
}

TEST(CodePageConversion, LettersAreConvertedAndOtherBytesKept) {
  EXPECT_EQ(WinToIBM(kWindowsSentence), "Prilis zlutoucky kun upel dabelske ody");
  EXPECT_EQ(WinTo_8859_2("\x8A\x9A\x8D\x9D\x8E\x9E"), "\xA9\xB9\xAB\xBB\xAE\xBE");  // Š š Ť ť Ž ž
  EXPECT_EQ(_8859_2ToWin(WinTo_8859_2(kWindowsSentence)), kWindowsSentence);
  EXPECT_EQ(cp852ToWin(WinTo852(kWindowsSentence)), kWindowsSentence);
  const std::string others = "\x00\x7F\x80\xFF\xA5 text;"s;
  for (auto convert : {WinTo_8859_2, _8859_2ToWin, WinTo852, cp852ToWin, WinToKAM, WinToIBM})
    EXPECT_EQ(convert(others) + convert(""), others);
}

// The UTF-8 bytes of the text, each shown as the Windows-1250 character of that byte.
TEST(CodePageConversion, WinToUtf8ShowsTheUtf8BytesAsWindows1250Characters) {
  EXPECT_EQ(WinTo_UTF8(u"kůň"), u"kĹŻĹ\u0088");  // 6B C5 AF C5 88; 88 is undefined and stays
  for (StringView text : {u"Příliš žluťoučký kůň úpěl ďábelské ódy – „€“", u"日本 \U0001F600", u""})
    EXPECT_EQ(ToWin1250(WinTo_UTF8(text)), ToUtf8(text)) << ToUtf8(text);
}

// The letters of the table as glibc's iconv writes them in a published code page; shorter on failure.
std::string Published(const char* code_page) {
  std::string letters;
  for (const CzechLetter& row : CzechLetters) letters += ToUtf8(String(1, row.Letter));
  std::string bytes(CzechLetters.size(), '\0');
  const iconv_t handle = iconv_open(code_page, "UTF-8");
  if (handle == reinterpret_cast<iconv_t>(-1)) return "";
  char* in = letters.data();
  char* out = bytes.data();
  std::size_t in_left = letters.size();
  std::size_t out_left = bytes.size();
  iconv(handle, &in, &in_left, &out, &out_left);
  iconv_close(handle);
  return bytes.substr(0, bytes.size() - out_left);
}

// Rows 20 and 38 of ISO 8859-2 keep the Windows-1250 bytes of Ľ and ľ; row 22 of CP852 holds
// E2, the byte of Ô, for Ö.
TEST(CodePageTable, ColumnsAgreeWithGlibcIconvExceptTheDeliberateCells) {
  using enum CzechColumn;
  const std::tuple<CzechColumn, std::size_t, char, char> deviations[] = {
      {Iso8859_2, 20, '\xA5', '\xBC'}, {Iso8859_2, 38, '\xB5', '\xBE'}, {Cp852, 22, '\x99', '\xE2'}};
  for (const auto& [column, code_page] :
       {std::pair(Windows1250, "WINDOWS-1250"), {Iso8859_2, "ISO-8859-2"}, {Cp852, "CP852"}}) {
    std::string expected = Published(code_page);
    ASSERT_EQ(expected.size(), CzechLetters.size()) << "glibc iconv cannot write every letter in " << code_page;
    for (const auto& [deviating, row, published, kept] : deviations)
      if (deviating == column && expected[row - 1] == published) expected[row - 1] = kept;
    for (std::size_t row = 1; row <= CzechLetters.size(); ++row)
      EXPECT_EQ(CzechLetters[row - 1].In(column), static_cast<unsigned char>(expected[row - 1]))
          << code_page << ", row " << row;
  }
}

}  // namespace
}  // namespace veska
