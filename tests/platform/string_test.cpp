#include "kernel/platform/string.h"

#include <gtest/gtest.h>

namespace veska {
namespace {

TEST(Utf8Conversion, RoundTripsEveryPlane) {
  const String text = u"Příliš žluťoučký kůň \U0001F600 \u00A0end";
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
  EXPECT_EQ(ToUtf8(u"č"), "\xC4\x8D");
}

// Every maximal ill-formed subpart becomes one U+FFFD, as the Unicode standard recommends.
TEST(Utf8Conversion, MalformedInputBecomesOneReplacementPerMaximalSubpart) {
  struct Case {
    std::string_view utf8;
    StringView expected;
  };
  static constexpr Case kCases[] = {
      {"a\x80z", u"a\uFFFDz"},                            // stray continuation byte
      {"a\xC4", u"a\uFFFD"},                              // truncated at the end
      {"\xE2\x82z", u"\uFFFDz"},                          // short sequence, next byte kept
      {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // C0 never leads: overlong '/'
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // an encoded surrogate
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond U+10FFFF
      {"\xF0\x9F\x98", u"\uFFFD"},                        // an emoji cut short
  };
  for (const Case& c : kCases) EXPECT_EQ(FromUtf8(c.utf8), c.expected) << testing::PrintToString(c.utf8);
  EXPECT_EQ(ToUtf8(String(1, char16_t(0xD800)) + u"x"), "\xEF\xBF\xBDx");  // lone surrogate
  EXPECT_EQ(ToUtf8(String(1, char16_t(0xDC00))), "\xEF\xBF\xBD");
}

TEST(Win1250Conversion, CzechLettersAndPunctuation) {
  EXPECT_EQ(FromWin1250("\x8A\x9A\xC8\xE8\xD8\xF8\x8E\x9E\x80"), u"ŠšČčŘřŽž€");
  EXPECT_EQ(ToWin1250(u"Příliš žluťoučký kůň"), "P\xF8\xED\x6Ci\x9A \x9Elu\x9Dou\xE8k\xFD k\xF9\xF2");
}

TEST(Win1250Conversion, UndefinedBytesMapToThemselvesAndRoundTrip) {
  for (unsigned char byte : {0x81, 0x83, 0x88, 0x90, 0x98}) {
    EXPECT_EQ(Win1250ToChar(byte), char16_t(byte));
  }
  std::string every_byte;
  for (int b = 0; b < 256; ++b) every_byte += char(b);
  EXPECT_EQ(ToWin1250(FromWin1250(every_byte)), every_byte);
  EXPECT_EQ(ToWin1250(u"中"), "?");
}

TEST(CaseMapping, UnicodeUpperCaseAndComparison) {
  EXPECT_EQ(UpperCase(u"příliš žluťoučký"), u"PŘÍLIŠ ŽLUŤOUČKÝ");
  EXPECT_TRUE(SameText(u"Čtyři", u"čTYŘI"));
  EXPECT_LT(CompareText(u"abc", u"ABD"), 0);
  EXPECT_GT(CompareText(u"b", u"A"), 0);
}

TEST(CaseMapping, AsciiAndUnicodeComparisonsAgreeOnOrder) {
  // The ASCII fast path and ICU's folding must order the same way, also across the boundary.
  EXPECT_LT(CompareText(u"TElement", u"TEntity"), 0);
  EXPECT_EQ(CompareText(u"tnameelement", u"TNameElement"), 0);
  EXPECT_LT(CompareText(u"abc", u"abcd"), 0);
  EXPECT_GT(CompareText(u"abcč", u"ABC"), 0);
  EXPECT_LT(CompareText(u"Z", u"č"), 0);
  EXPECT_LT(CompareText(u"_", u"a"), 0);  // '_' sorts below the folded letters
  EXPECT_EQ(CompareText(u"ŽLUŤ", u"žluť"), 0);
}

TEST(CaseMapping, AsciiUpperCaseFoldsOnlyLatinLetters) { EXPECT_EQ(AsciiUpperCase(u"name_č{z}"), u"NAME_č{Z}"); }

}  // namespace
}  // namespace veska
