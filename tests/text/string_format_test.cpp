#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "kernel/platform/format_settings.h"
#include "kernel/text/string_utils.h"

namespace veska {
namespace {

using namespace std::string_literals;

TEST(BezVnejsichMezer, RemovesOuterSpacesAndCodeZeroOnly) {
  EXPECT_EQ(BezVnejsichMezer(u"\0 a \0b \0 "s), u"a \0b"s);
  EXPECT_EQ(BezVnejsichMezer(u"  \0  "s), u"");
  EXPECT_EQ(BezVnejsichMezer(u"\tx\n"), u"\tx\n");
  EXPECT_EQ(RemoveAllSpaces(u" a b\0c "s), u"abc");
}

TEST(TakeFromApos, StripsEnclosingApostrophesOnly) {
  EXPECT_EQ(TakeFromApos(u"'abc'"), u"abc");
  EXPECT_EQ(TakeFromApos(u"'"), u"");
  EXPECT_EQ(TakeFromApos(u"'abc"), u"'abc");
  EXPECT_EQ(TakeFromApos(u" 'abc'"), u" 'abc'");
}

TEST(ChangeCharInString, ReplacesFirstOrAllAndReportsIt) {
  String s = u"a.b.c";
  EXPECT_TRUE(ChangeCharInString(s, u'.', u',', false));
  EXPECT_EQ(s, u"a,b.c");
  EXPECT_TRUE(ChangeCharInString(s, u'.', u',', true));
  EXPECT_EQ(s, u"a,b,c");
  EXPECT_FALSE(ChangeCharInString(s, u'.', u',', true));
  String with_zero = u"a\0b"s;
  EXPECT_FALSE(ChangeCharInString(with_zero, u'\0', u'x', true));
  EXPECT_EQ(with_zero, u"a\0b"s);

  String swapped = u"a/b\\c/";
  SwapChars(swapped, u'/', u'\\');
  EXPECT_EQ(swapped, u"a\\b/c\\");
}

TEST(StrToStrSp, PadsOrCutsToExactlyN) {
  EXPECT_EQ(StrToStrSp(u"ab", 5), u"ab   ");
  EXPECT_EQ(StrToStrSp(u"abcdef", 3), u"abc");
  EXPECT_EQ(StrToStrSp(u"abc", 0), u"");
  EXPECT_EQ(StrToStrSp(u"abc", -4), u"");
}

TEST(IntToStrZ, FollowsCWidthAndPrecisionRules) {
  EXPECT_EQ(IntToStrZ(5, 3, false), u"  5");
  EXPECT_EQ(IntToStrZ(5, 3, true), u"005");
  EXPECT_EQ(IntToStrZ(12345, 3, true), u"12345");
  // "%*.*d": the precision counts digits only, so the sign makes the text one longer.
  EXPECT_EQ(IntToStrZ(-5, 4, true), u"-0005");
  EXPECT_EQ(IntToStrZ(-5, 4, false), u"  -5");
  EXPECT_EQ(IntToStrZ(-5, -4, false), u"-5  ");
  EXPECT_EQ(IntToStrZ(0, 0, true), u"");  // C writes no digit for 0 at precision 0
  EXPECT_EQ(IntToStrZ(std::numeric_limits<int32_t>::min(), 0, false), u"-2147483648");
}

TEST(IntToPrezStr, GroupsDigitsByThreeWithSpaces) {
  EXPECT_EQ(IntToPrezStr(1000), u"1 000");
  EXPECT_EQ(IntToPrezStr(999), u"999");
  EXPECT_EQ(IntToPrezStr(1200005), u"1 200 005");
  EXPECT_EQ(IntToPrezStr(-1000), u"-1 000");
  EXPECT_EQ(IntToPrezStr(std::numeric_limits<int64_t>::min()), u"-9 223 372 036 854 775 808");
}

TEST(DoubleToStr, MatchesCFixedFormatWithADotWhateverTheSeparatorSetting) {
  struct Case {
    double value;
    int32_t width;
    int32_t decimals;
  };
  const Case cases[] = {{3.14159, 8, 2}, {-2.5, 0, 0}, {2.5, 1, 0}, {0.125, 0, 2}, {1e20, 3, 1},
                        {-0.0, 5, 1},    {1.5, -6, 1}, {7, 0, -1},  {1e-7, 12, 9}, {123.456, 2, 3}};
  for (const Case& c : cases) {
    char expected[128];
    std::snprintf(expected, sizeof expected, "%*.*f", c.width, c.decimals, c.value);  // "C" locale
    EXPECT_EQ(ToUtf8(DoubleToStr(c.value, c.width, c.decimals)), expected)
        << c.value << " " << c.width << " " << c.decimals;
  }
  EXPECT_EQ(DoubleToStr(3.14159, 8, 2), u"    3.14");

  // The text is the same whatever the decimal separator setting.
  const char16_t saved = FormatSettings.DecimalSeparator;
  FormatSettings.DecimalSeparator = u',';
  const String text = DoubleToStr(1.25, 0, 2);
  FormatSettings.DecimalSeparator = saved;
  EXPECT_EQ(text, u"1.25");
}

}  // namespace
}  // namespace veska
