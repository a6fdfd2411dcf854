#include "kernel/text/code_page.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace veska {
namespace {

using namespace std::string_literals;

const std::string kWindowsSentence = ToWin1250(u"Příliš žluťoučký kůň úpěl ďábelské ódy");

TEST(CodePageTests, OnlyBytesAbove128Count) {
  EXPECT_TRUE(cp_IsIBM("plain text\x80"));  // 128 itself is plain
  EXPECT_FALSE(cp_IsIBM("\x81"));
  EXPECT_TRUE(cp_IsWin("\x80\x7F"s + '\0'));
  EXPECT_TRUE(cp_Is852("\x80"));
  EXPECT_TRUE(cp_IsKam("\x80"));
  for (auto test : {cp_IsIBM, cp_IsWin, cp_Is852, cp_IsKam}) EXPECT_TRUE(test(""));
}

TEST(CodePageTests, EachTestAcceptsOnlyItsOwnColumn) {
  EXPECT_TRUE(cp_IsWin(kWindowsSentence));
  EXPECT_FALSE(cp_IsIBM(kWindowsSentence));
  EXPECT_TRUE(cp_Is852(WinTo852(kWindowsSentence)));
  EXPECT_TRUE(cp_IsKam(WinToKAM(kWindowsSentence)));
  EXPECT_FALSE(cp_Is852(kWindowsSentence));  // ř (F8) is no CP852 letter
  EXPECT_FALSE(cp_IsKam(kWindowsSentence));
  EXPECT_FALSE(cp_IsWin(WinTo852(kWindowsSentence)));
  EXPECT_FALSE(cp_IsWin("\xFF"));  // a byte outside every column
}

// The decision is taken at the first byte after which one candidate alone is open, even when
// later bytes fit no column or only another one.
TEST(CodePageTests, GetCodePageDecidesAtTheFirstSingleCandidate) {
  const std::pair<std::string, int> cases[] = {{"", 2},
                                               {"no diacritics\x80", 2},
                                               {kWindowsSentence, 1250},
                                               {WinTo852(kWindowsSentence), 852},
                                               {WinToKAM(kWindowsSentence), 1},
                                               {"\xC8", 1250},     // Č in Windows-1250, in no other column
                                               {"\xA0\xA1", 3},    // á í of both CP852 and Kamenický ...
                                               {"\xA0\xB5", 852},  // ... until Á of CP852 decides
                                               {"\xFF", 3},
                                               {"\xFF\xC8", 3},  // no candidate left, and none comes back
                                               {"\xC8\xFF", 1250},
                                               {"x\xC8 \x8F\x8F", 1250},
                                               {"\x8F\xC8\xFF", 1},
                                               {"\xB5\xC8", 852}};
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
  EXPECT_EQ(WinToIBM(ToWin1250(u"Příliš")), "Prilis");
  EXPECT_EQ(WinToIBM(kWindowsSentence), "Prilis zlutoucky kun upel dabelske ody");
  EXPECT_EQ(WinTo_8859_2("\x8A\x9A\x8D\x9D\x8E\x9E"), "\xA9\xB9\xAB\xBB\xAE\xBE");  // Š š Ť ť Ž ž
  EXPECT_EQ(_8859_2ToWin(WinTo_8859_2(kWindowsSentence)), kWindowsSentence);
  EXPECT_EQ(cp852ToWin(WinTo852(kWindowsSentence)), kWindowsSentence);
  const std::string others = "\x00\x7F\x80\xFF\xA5 text;"s;
  for (auto convert : {WinTo_8859_2, _8859_2ToWin, WinTo852, cp852ToWin, WinToKAM, WinToIBM}) {
    EXPECT_EQ(convert(others), others);
    EXPECT_EQ(convert(""), "");
  }
}

// The UTF-8 bytes of the text, each shown as the Windows-1250 character of that byte.
TEST(CodePageConversion, WinToUtf8ShowsTheUtf8BytesAsWindows1250Characters) {
  EXPECT_EQ(WinTo_UTF8(u"kůň"), u"kĹŻĹ\u0088");  // 6B C5 AF C5 88; 88 is undefined and stays
  for (StringView text : {u"Příliš žluťoučký kůň úpěl ďábelské ódy – „€“", u"日本 \U0001F600", u""}) {
    EXPECT_EQ(ToWin1250(WinTo_UTF8(text)), ToUtf8(text)) << ToUtf8(text);
  }
}

// The bytes of one letter in a published code page, converted by glibc's iconv; nothing when
// iconv does not know the code page.
std::optional<std::string> PublishedBytes(const char* code_page, char16_t letter) {
  const iconv_t handle = iconv_open(code_page, "UTF-8");
  if (handle == reinterpret_cast<iconv_t>(-1)) return std::nullopt;
  std::string input = ToUtf8(String(1, letter));
  std::string output(8, '\0');
  char* in = input.data();
  char* out = output.data();
  std::size_t in_left = input.size();
  std::size_t out_left = output.size();
  if (iconv(handle, &in, &in_left, &out, &out_left) == static_cast<std::size_t>(-1)) out_left = output.size();
  iconv_close(handle);
  output.resize(output.size() - out_left);
  return output;
}

TEST(CodePageTable, ColumnsAgreeWithGlibcIconvExceptTheDeliberateCells) {
  struct Deviation {
    CzechColumn column;
    std::size_t row;               // 1-based, as the table is documented
    unsigned char published_byte;  // what the published code page has there
  };
  const Deviation deviations[] = {
      {CzechColumn::Iso8859_2, 20, 0xA5},  // Ľ keeps the Windows-1250 byte BC
      {CzechColumn::Iso8859_2, 38, 0xB5},  // ľ keeps the Windows-1250 byte BE
      {CzechColumn::Cp852, 22, 0x99},      // Ö holds E2, the byte of Ô
  };
  const struct {
    CzechColumn column;
    const char* iconv_name;
  } columns[] = {{CzechColumn::Windows1250, "WINDOWS-1250"},
                 {CzechColumn::Iso8859_2, "ISO-8859-2"},
                 {CzechColumn::Cp852, "CP852"}};

  for (const auto& checked : columns) {
    const CzechColumn column = checked.column;
    const char* const iconv_name = checked.iconv_name;
    for (std::size_t row = 1; row <= CzechLetters.size(); ++row) {
      const CzechLetter& letter = CzechLetters[row - 1];
      const std::optional<std::string> published = PublishedBytes(iconv_name, letter.Letter);
      ASSERT_TRUE(published.has_value()) << "glibc iconv does not know the code page " << iconv_name
                                         << "; the gconv modules of the C library are missing";
      ASSERT_EQ(published->size(), 1u) << iconv_name << " cannot encode the letter of row " << row;
      const auto published_byte = static_cast<unsigned char>((*published)[0]);
      const auto deviation =
          std::ranges::find_if(deviations, [&](const Deviation& d) { return d.column == column && d.row == row; });
      if (deviation == std::end(deviations)) {
        EXPECT_EQ(letter.In(column), published_byte) << iconv_name << ", row " << row;
      } else {
        EXPECT_EQ(deviation->published_byte, published_byte) << iconv_name << ", row " << row;
        EXPECT_NE(letter.In(column), published_byte) << iconv_name << ", row " << row << " must deviate";
      }
    }
  }
}

}  // namespace
}  // namespace veska
