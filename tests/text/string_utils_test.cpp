#include "kernel/text/string_utils.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <utility>

#include "kernel/platform/format_settings.h"

namespace veska {
namespace {

using namespace std::string_literals;
using testing::StrEq;
using testing::ThrowsMessage;

TEST(CharSet, HoldsOnlyEightBitCodes) {
  // č is U+010D: its low byte is the code of CR, yet it is never a member, nor can it be made one.
  EXPECT_FALSE(TCharSet::Range(0, 255).Contains(u'\u010D'));
  EXPECT_THROW(TCharSet{u'\u010D'}, ERangeError);
  EXPECT_EQ((TCharSet::Range(u'0', u'9') * TCharSet{u'1', u'3', u'a'} + TCharSet{u'0'} - TCharSet{u'1'}),
            (TCharSet{u'0', u'3'}));
  EXPECT_TRUE(TCharSet::Range(u'9', u'0').IsEmpty());
}

// Pos ends just after the delimiter; at the end of the text Delim is code 0 and Pos is
// Length + 2.  In the block reader only the first block of a token is protected, a block closes
// only at the character that opened it, and an unclosed block runs to the end.
TEST(ReadToDelimiter, TokenDelimiterAndNextPositionAtEveryPlace) {
  using Reader = String (*)(StringView, const TCharSet&, int32_t, char16_t&, int32_t&);
  const Reader Plain = ReadToDelimiter, Trimmed = ReadToDelimiterWithoutWS;
  const Reader Block = [](StringView s, const TCharSet& delims, int32_t start, char16_t& delim, int32_t& pos) {
    return ReadToDelimiterWithoutWSIgnoreBlock(s, delims, {u'\'', u'"'}, start, delim, pos);  // quotes of both kinds
  };
  const std::tuple<Reader, const char16_t*, int32_t, const char16_t*, char16_t, int32_t> cases[] = {
      {Trimmed, u"  ab  ,c", 1, u"ab", u',', 8},
      {Plain, u"  ab  ,c", 1, u"  ab  ", u',', 8},
      {Trimmed, u"  ab  ,c", 8, u"c", u'\0', 10},
      {Plain, u"a,", 3, u"", u'\0', 4},
      {Plain, u"abc", 50, u"", u'\0', 5},
      {Plain, u"ab,c", 0, u"ab", u',', 4},
      {Plain, u",x", 1, u"", u',', 2},
      {Block, u"", 7, u"", u'\0', 7},                   // an empty text returns at once
      {Plain, u"x\u012Cy,z", 1, u"x\u012Cy", u',', 5},  // U+012C has the low byte of ','
      {Block, u" 'a=b' = c", 1, u"'a=b'", u'=', 9},
      {Block, u"\"it's=1\"", 1, u"\"it's=1\"", u'\0', 10},
      {Block, u"'a;b'cd;e", 1, u"'a;b'cd", u';', 9},
      {Block, u"a='b=c'", 1, u"a", u'=', 3},
      {Block, u"'x'\"y=z\"=w", 1, u"'x'\"y", u'=', 7},
      {Block, u"'a=b", 1, u"'a=b", u'\0', 6},
  };
  for (const auto& [read, s, start, text, delim, pos] : cases) {
    char16_t found = u'?';
    int32_t next = -1;
    EXPECT_EQ(read(s, {u',', u';', u'='}, start, found, next), text) << ToUtf8(s) << " from " << start;
    EXPECT_EQ(std::pair(found, next), std::pair(delim, pos)) << ToUtf8(s) << " from " << start;
  }
}

bool IgnoreBlock(StringView s, String& a, String& b) { return StringAsParameterIgnoreBlock(s, a, b, {u'\''}); }
bool Two(StringView s, String& a, String& b) { return StringAsTwoParams(s, u';', a, b); }
bool TwoWS(StringView s, String& a, String& b) { return StringAsTwoParamsWS(s, u';', a, b); }

// Without a separator the parameter splitters clear the value, the two-part splitters keep the
// second part, which they also keep when nothing follows the separator.
TEST(StringAsParameter, SplitsAtTheFirstSeparatorTrimmingOrNot) {
  const std::tuple<bool (*)(StringView, String&, String&), const char16_t*, bool, const char16_t*> cases[] = {
      {StringAsParameter, u" a = b ", true, u"a|b"},
      {StringAsParameter, u"x=1=2", true, u"x|1=2"},
      {StringAsParameter, u" abc ", false, u"abc|"},
      {StringAsParameterWS, u" a = b ", true, u" a | b "},
      {StringAsParameterWS, u" abc ", false, u" abc |"},
      {IgnoreBlock, u" 'a=b' =  c = d ", true, u"'a=b'|c = d"},
      {IgnoreBlock, u" abc ", false, u"abc|"},
      {IgnoreBlock, u"", false, u"|"},
      {Two, u" a ; b c ", true, u"a|b c"},
      {Two, u"a;", true, u"a|old"},
      {Two, u" b ", false, u"b|old"},
      {Two, u"a; ", true, u"a|"},  // a blank is text
      {TwoWS, u" a ; b ", true, u" a | b "},
      {TwoWS, u" c ", false, u" c |old"},
  };
  for (const auto& [split, text, found, parts] : cases) {
    String first = u"old", second = u"old";
    EXPECT_EQ(split(text, first, second), found) << ToUtf8(text) << " to " << ToUtf8(parts);
    EXPECT_EQ(first + u"|" + second, parts) << ToUtf8(text);
  }
}

TEST(StringAsParameter, SeparatorBeyondPosition255RaisesRangeError) {
  String first, second;
  for (const auto& [split, sep] :
       {std::pair(&StringAsParameter, u'='), {StringAsParameterWS, u'='}, {Two, u';'}, {TwoWS, u';'}}) {
    const String value = sep + String(u"v");
    EXPECT_TRUE(split(String(254, u'x') + value, first, second) && second == u"v") << char(sep);  // "=" at 255
    EXPECT_THROW(split(String(255, u'x') + value, first, second), ERangeError) << char(sep);
    EXPECT_FALSE(split(String(1000, u'x'), first, second)) << char(sep);  // no separator: no limit
  }
  // The block variant reads with the token reader and has no such limit.
  EXPECT_TRUE(IgnoreBlock(String(300, u'x') + u"=v", first, second) && second == u"v");
}

TEST(BezVnejsichMezer, RemovesOuterSpacesAndCodeZeroOnlyAndTakeFromAposEnclosingApostrophes) {
  EXPECT_EQ(BezVnejsichMezer(u"\0 a \0b \0 "s), u"a \0b"s);
  EXPECT_EQ(BezVnejsichMezer(u"  \0  "s), u"");
  EXPECT_EQ(BezVnejsichMezer(u"\tx\n"), u"\tx\n");
  EXPECT_EQ(RemoveAllSpaces(u" a b\0c "s), u"abc");
  EXPECT_EQ(TakeFromApos(u"'abc'"), u"abc");
  EXPECT_EQ(TakeFromApos(u"'"), u"");  // one apostrophe both opens and closes
  for (StringView kept : {u"'abc", u" 'abc'", u"abc'", u""}) EXPECT_EQ(TakeFromApos(kept), kept);
}

TEST(ChangeCharInString, ReplacesFirstOrAllAndReportsIt) {
  String s = u"a.b.c";
  EXPECT_TRUE(ChangeCharInString(s, u'.', u',', false));
  EXPECT_EQ(s, u"a,b.c");
  EXPECT_TRUE(ChangeCharInString(s, u'.', u',', true));
  EXPECT_EQ(s, u"a,b,c");
  EXPECT_FALSE(ChangeCharInString(s, u'.', u',', true));
  s = u"a\0b"s;
  EXPECT_FALSE(ChangeCharInString(s, u'\0', u'x', true));  // code 0 is never replaced
  EXPECT_EQ(s, u"a\0b"s);
  s = u"a/b\\c/";
  SwapChars(s, u'/', u'\\');
  EXPECT_EQ(s, u"a\\b/c\\");
}

TEST(FixedWidthText, StrToStrSpPadsOrCutsIntToStrZFollowsCAndIntToPrezStrGroupsByThree) {
  EXPECT_EQ(StrToStrSp(u"ab", 5), u"ab   ");
  EXPECT_EQ(StrToStrSp(u"abcdef", 3), u"abc");
  EXPECT_EQ(StrToStrSp(u"abc", -4), u"");
  EXPECT_EQ(IntToStrZ(5, 3, false), u"  5");
  EXPECT_EQ(IntToStrZ(5, 3, true), u"005");
  EXPECT_EQ(IntToStrZ(12345, 3, true), u"12345");
  // "%*.*d": the precision counts digits only, so the sign makes the text one longer.
  EXPECT_EQ(IntToStrZ(-5, 4, true), u"-0005");
  EXPECT_EQ(IntToStrZ(-5, -4, false), u"-5  ");
  EXPECT_EQ(IntToStrZ(0, 0, true), u"");  // C writes no digit for 0 at precision 0
  EXPECT_EQ(IntToStrZ(std::numeric_limits<int32_t>::min(), 0, false), u"-2147483648");
  EXPECT_EQ(IntToPrezStr(999) + u"|" + IntToPrezStr(1000) + u"|" + IntToPrezStr(1200005), u"999|1 000|1 200 005");
  EXPECT_EQ(IntToPrezStr(std::numeric_limits<int64_t>::min()), u"-9 223 372 036 854 775 808");
}

// Sets the decimal separator and DotDecimalSeparator for one test and puts the old ones back.
struct Separators {
  Separators(char16_t decimal, bool dot)
      : saved(std::exchange(FormatSettings.DecimalSeparator, decimal), std::exchange(DotDecimalSeparator, dot)) {}
  ~Separators() { std::tie(FormatSettings.DecimalSeparator, DotDecimalSeparator) = saved; }
  std::pair<char16_t, bool> saved;
};

TEST(DoubleToStr, MatchesCFixedFormatWithADotWhateverTheSeparatorSetting) {
  const Separators comma(u',', true);
  const std::tuple<double, int32_t, int32_t> cases[] = {{3.14159, 8, 2}, {-2.5, 0, 0},   {2.5, 1, 0},  {0.125, 0, 2},
                                                        {1e20, 3, 1},    {-0.0, 5, 1},   {1.5, -6, 1}, {7, 0, -1},
                                                        {1e-7, 12, 9},   {123.456, 2, 3}};
  for (const auto& [value, width, decimals] : cases) {
    char expected[128];
    std::snprintf(expected, sizeof expected, "%*.*f", width, decimals, value);  // the "C" locale
    EXPECT_EQ(ToUtf8(DoubleToStr(value, width, decimals)), expected) << value << " " << width << " " << decimals;
  }
}

TEST(ExtendedToStr, WritesTheShortestGeneralFormThatReadsBack) {
  String written;
  for (double x : {0.0, -0.0, -2.25, 0.1, 1e14, 1e15, -1.25e100, 0.00001, 1.5e-7, std::nan(""), -HUGE_VAL, 5e-324})
    written += ExtendedToStr(x) + u" ";
  EXPECT_EQ(written, u"0 0 -2.25 0.1 100000000000000 1E15 -1.25E100 0.00001 1.5E-7 NAN -INF 5E-324 ");

  std::mt19937_64 random(77);
  for (int i = 0; i < 15000; ++i) {
    const double x = std::bit_cast<double>(random());
    if (!std::isfinite(x)) continue;
    ASSERT_EQ(StrToExtended(ExtendedToStr(x)), x) << ToUtf8(ExtendedToStr(x));
  }
  EXPECT_EQ(StrToExtended(u"-inf"), -HUGE_VAL);

  const Separators comma(u',', true);
  EXPECT_EQ(ExtendedToStr(2.5e-9), u"2,5E-9");
}

// Both separators while DotDecimalSeparator is set, else the set one only; every control
// character is a blank.
TEST(StrToExtended, TakesTheDecimalSeparatorsAndControlBlanksAndRaisesConvertError) {
  const std::pair<const char16_t*, double> cases[] = {
      {u"1,5", 1.5}, {u"\t-1e3\r\n", -1000}, {u"2,5e-1", 0.25}, {u"0.000001e-330", 0}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(StrToExtended(text), expected) << ToUtf8(text);
  EXPECT_THAT([] { StrToExtended(u" 1e "); },
              ThrowsMessage<EConvertError>(StrEq("' 1e ' is not a valid floating point value")));
  for (const char16_t* bad : {u"1,5.2", u"1 000", u"1e400", u"nan1"}) {
    EXPECT_THROW(StrToExtended(bad), EConvertError) << ToUtf8(bad);
    EXPECT_FALSE(StringIsFloat(bad)) << ToUtf8(bad);
  }

  for (const auto& [separator, other] : {std::pair(u'.', u','), {u',', u'.'}}) {
    const Separators only(separator, false);
    EXPECT_EQ(StrToExtended(u"1" + String(1, separator) + u"5"), 1.5) << char(separator);
    EXPECT_FALSE(StringIsFloat(u"1" + String(1, other) + u"5")) << char(separator);
  }
}

TEST(StrToLongInt, ReadsWhole32BitDecimalsOrRaises) {
  EXPECT_EQ(StrToLongInt(u" 42 "), 42);
  EXPECT_EQ(StrToLongInt(u"+7"), 7);
  EXPECT_EQ(StrToLongInt(u"-2147483648"), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(StrToLongInt(u"2147483647"), std::numeric_limits<int32_t>::max());
  for (const char16_t* bad : {u"", u"-", u"2147483648", u"1.5", u"12a", u"1 2", u"$10", u"0x10"}) {
    EXPECT_THROW(StrToLongInt(bad), EConvertError) << ToUtf8(bad);
    EXPECT_EQ(StringToInteger(bad), 0) << ToUtf8(bad);
  }
  EXPECT_THAT([] { StrToLongInt(u"12a"); }, ThrowsMessage<EConvertError>(StrEq("'12a' is not a valid integer value")));
  EXPECT_EQ(StringToInteger(u" -15"), -15);
}

TEST(StringIntSum, SumsCharacterCodesModulo2To32) {
  EXPECT_EQ(StringIntSum(String(65536, u'\xFFFF')), -65536);  // 65536 * 65535 wraps
}

TEST(StrToBool, ReadsWordsAndNumbers) {
  EXPECT_EQ(BoolToStr(true) + BoolToStr(false), u"TrueFalse");
  const std::pair<const char16_t*, bool> cases[] = {{u"TRUE", true}, {u" tRuE ", true}, {u"False", false},
                                                    {u"0", false},   {u"0.0", false},   {u"-1", true},
                                                    {u"2,5", true}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(StrToBool(text), expected) << ToUtf8(text);
  EXPECT_THAT([] { StrToBool(u"yes"); }, ThrowsMessage<EConvertError>(StrEq("'yes' is not a valid boolean value")));
}

TEST(RomanNumerals, WriteAndReadStandardFormsAndNothingElse) {
  EXPECT_EQ(IntegerToRome(1994) + u" " + IntegerToRome(3888), u"MCMXCIV MMMDCCCLXXXVIII");
  for (int32_t out_of_range : {0, 4000, -5}) EXPECT_EQ(IntegerToRome(out_of_range), u"");
  for (int32_t n = 1; n <= 3999; ++n) ASSERT_EQ(RomeToInteger(IntegerToRome(n)), n) << n;
  EXPECT_EQ(RomeToInteger(u" mcmXciv "), 1994);
  for (StringView bad : {u"", u"IIII", u"IC", u"IM", u"VV", u"MMMM", u"XIVX", u"ABC", u"X I", u"MMMDCCCLXXXVIIII"})
    EXPECT_EQ(RomeToInteger(bad), 0) << ToUtf8(bad);
}

// Only the digits 0 to 9 count as a trailing number; at most 255 of them are read, and the number
// saturates at the largest 32-bit value.  A class name gets a T unless it has one.
TEST(Names, TrailingNumbersClassNamesAndFileNames) {
  const std::tuple<const char16_t*, const char16_t*, int32_t> cases[] = {
      {u"Element12", u"Element", 12}, {u"Element", u"Element", 0}, {u"a1b", u"a1b", 0}, {u"123", u"", 0}, {u"", u"", 0},
      {u"x\u0661", u"x\u0661", 0}};
  for (const auto& [text, name, number] : cases) {
    EXPECT_EQ(GetNameWithoutNumber(text), name) << ToUtf8(text);
    EXPECT_EQ(GetNameEndNumber(text), number) << ToUtf8(text);
  }
  EXPECT_EQ(GetNameEndNumber(u"x2147483648"), 2147483647);
  EXPECT_EQ(GetNameEndNumber(u"x" + String(254, u'0') + u"5"), 5);
  EXPECT_EQ(GetNameEndNumber(u"x" + String(255, u'0') + u"5"), 0);  // the 256th digit is not read

  const std::pair<const char16_t*, const char16_t*> class_names[] = {
      {u"Element", u"TElement"}, {u" TElement ", u"TElement"}, {u"tElement", u"tElement"}, {u"  ", u""}};
  for (const auto& [given, expected] : class_names) {
    String name = given;
    CheckClassName(name);
    EXPECT_EQ(name, expected) << ToUtf8(given);
  }
  EXPECT_EQ(GetValidFileName(u"a/b\\c:d*e?f\"g<h>i|j\tk.txt"), u"a_b_c_d_e_f_g_h_i_j_k.txt");
}

TEST(Paths, ResolvedAgainstTheBaseAndTrailingSeparators) {
  for (StringView relative : {u"", u"a/b", u"..\\a", u"1:x"}) EXPECT_TRUE(IsRelativePath(relative)) << ToUtf8(relative);
  for (StringView path : {u"/a", u"\\a", u"C:\\x", u"c:"}) EXPECT_FALSE(IsRelativePath(path)) << ToUtf8(path);

  EXPECT_EQ(GetAbsolutePath(u"b/../c/./d", u"/a"), u"/a/c/d");
  EXPECT_EQ(GetAbsolutePath(u"..\\..\\..\\x", u"/a\\"), u"/x");
  EXPECT_EQ(GetAbsolutePath(u"/q//r/", u"/a"), u"/q/r/");
  EXPECT_EQ(GetAbsolutePath(u"", u"/a/b"), u"/a/b");
  EXPECT_EQ(GetAbsolutePath(u"..", u"/"), u"/");
  EXPECT_EQ(GetAbsolutePath(u"C:\\a\\..\\b", u"/x"), u"C:/b");
  EXPECT_EQ(GetAbsolutePath(u"d", u"C:\\models"), u"C:/models/d");
  const String current = FromUtf8(std::filesystem::current_path().string());
  EXPECT_EQ(GetAbsolutePath(u"x/y"), GetAbsolutePath(u"x/y", current));
  EXPECT_EQ(GetAbsolutePath(u"x", u"base"), GetAbsolutePath(u"base/x", current));

  String path = u"a\\b\\";
  CheckBackSlash(path);
  EXPECT_EQ(path, u"a/b/");
  const std::tuple<const char16_t*, const char16_t*, const char16_t*> cases[] = {
      {u"a", u"a/", u"a"}, {u"a\\", u"a\\", u"a"},      {u"a//", u"a//", u"a"}, {u"", u"", u""},
      {u"/", u"/", u"/"},  {u"C:\\", u"C:\\", u"C:\\"}, {u"C:", u"C:/", u"C:"}};
  for (const auto& [given, added, removed] : cases) {
    String with = given, without = given;
    AddBackSlash(with);
    RemoveBackSlash(without);
    EXPECT_EQ(with + u" " + without, String(added) + u" " + removed) << ToUtf8(given);
  }
}

TEST(ProgramEnvironment, GlobalsDescribeTheRunningProgramAndWinDirStrFollowsWindir) {
  EXPECT_EQ(ToUtf8(ExecPath()), std::filesystem::canonical("/proc/self/exe").parent_path().string() + "/");
  EXPECT_EQ(RootDirectory, ExecPath());
  EXPECT_EQ(Directory_Store, RootDirectory);
  EXPECT_EQ(AppString, u"veska_text_tests");
  EXPECT_TRUE(DotDecimalSeparator && !DBTransLiterate);
  const char* const user = std::getenv("USER");
  EXPECT_TRUE(user == nullptr || *user == '\0' || _USR == FromUtf8(user)) << ToUtf8(_USR);

  // WinDirStr comes from WINDIR or is /usr; WINDIR is left unset, as every host but Windows has it.
  setenv("WINDIR", "/opt/system", 1);
  EXPECT_EQ(WinDirStr(), u"/opt/system");
  setenv("WINDIR", "", 1);
  EXPECT_EQ(WinDirStr(), u"/usr");
  unsetenv("WINDIR");
  EXPECT_EQ(WinDirStr(), u"/usr");
}

}  // namespace
}  // namespace veska
