#include "kernel/platform/string.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace veska {
namespace {

TEST(Text, ConversionsRoundTripReplaceIllFormedUtf8AndKeepEveryWin1250ByteAndCaseMappingAgreesWithTheAsciiFastPath) {
  const String text = u"Příliš žluťoučký kůň \U0001F600 \u00A0end";
  EXPECT_EQ(FromUtf8(ToUtf8(text)), text);
  // A stray continuation byte, a sequence cut short, C0 (never a lead byte), an encoded surrogate, a code
  // point beyond U+10FFFF, and a sequence that the end of the text cuts short.
  EXPECT_EQ(FromUtf8("a\x80z|\xE2\x82z|\xC0\xAF|\xED\xA0\x80|\xF4\x90\x80\x80|a\xC4"),
            u"a\uFFFDz|\uFFFDz|\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD|\uFFFD\uFFFD\uFFFD\uFFFD|a\uFFFD");
  // Lone surrogates, high and low.
  EXPECT_EQ(ToUtf8(String(1, char16_t(0xD800)) + u"x" + char16_t(0xDC00)), "\xEF\xBF\xBDx\xEF\xBF\xBD");

  // Windows-1250: Czech letters round-trip and the bytes it leaves undefined map to themselves.
  EXPECT_EQ(FromWin1250("\x8A\x9A\xC8\xE8\xD8\xF8\x8E\x9E\x80\x81\x83\x88\x90\x98"), u"ŠšČčŘřŽž€\x81\x83\x88\x90\x98");
  std::string every_byte;
  for (int b = 0; b < 256; ++b) every_byte += char(b);
  EXPECT_EQ(ToWin1250(FromWin1250(every_byte)), every_byte);
  EXPECT_EQ(ToWin1250(u"中"), "?");
  // Exactly, or not at all: a question mark of the text is no missing character.
  EXPECT_EQ(ToWin1250Exactly(u"Žák?\x81"), std::optional<std::string>("\x8E\xE1k?\x81"));
  EXPECT_EQ(ToWin1250Exactly(u"a中"), std::nullopt);

  EXPECT_EQ(UpperCase(u"příliš žluťoučký"), u"PŘÍLIŠ ŽLUŤOUČKÝ");
  EXPECT_EQ(AsciiUpperCase(u"name_č{z}"), u"NAME_č{Z}");  // Latin letters only
  EXPECT_TRUE(SameText(u"Čtyři", u"čTYŘI") && CompareText(u"tnameelement", u"TNameElement") == 0 &&
              CompareText(u"ŽLUŤ", u"žluť") == 0);
  // The ASCII fast path and ICU's folding order the same way, also across the boundary; '_' sorts
  // below the folded letters.
  for (const auto& [less, greater] : {std::pair<StringView, StringView>{u"abc", u"ABD"},
                                      {u"abc", u"abcd"},
                                      {u"ABC", u"abcč"},
                                      {u"Z", u"č"},
                                      {u"_", u"a"}}) {
    EXPECT_LT(CompareText(less, greater), 0) << ToUtf8(String(less));
    EXPECT_GT(CompareText(greater, less), 0) << ToUtf8(String(less));
  }
}

}  // namespace
}  // namespace veska
