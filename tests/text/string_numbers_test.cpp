#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "kernel/platform/format_settings.h"
#include "kernel/text/string_utils.h"

namespace veska {
namespace {

// Restores the separator settings that a test changes.
class SeparatorSettings {
 public:
  SeparatorSettings(char16_t decimal, bool dot) {
    FormatSettings.DecimalSeparator = decimal;
    DotDecimalSeparator = dot;
  }
  ~SeparatorSettings() {
    FormatSettings.DecimalSeparator = saved_decimal_;
    DotDecimalSeparator = saved_dot_;
  }
  SeparatorSettings(const SeparatorSettings&) = delete;
  SeparatorSettings& operator=(const SeparatorSettings&) = delete;

 private:
  char16_t saved_decimal_ = FormatSettings.DecimalSeparator;
  bool saved_dot_ = DotDecimalSeparator;
};

template <typename Convert>
String ConvertErrorText(StringView text, Convert convert) {
  try {
    convert(text);
  } catch (const EConvertError& error) {
    return error.Message();
  }
  return u"(no error)";
}

TEST(ExtendedToStr, WritesTheShortestGeneralFormThatReadsBack) {
  const std::pair<double, const char16_t*> cases[] = {{0, u"0"},
                                                      {-0.0, u"0"},
                                                      {-2.25, u"-2.25"},
                                                      {0.1, u"0.1"},
                                                      {1e15, u"1E15"},
                                                      {123456789012345.0, u"123456789012345"},
                                                      {-1.25e100, u"-1.25E100"},
                                                      {0.00001, u"0.00001"},
                                                      {1.5e-7, u"1.5E-7"},
                                                      {0.1 + 0.2, u"0.30000000000000004"},
                                                      {std::numeric_limits<double>::quiet_NaN(), u"NAN"},
                                                      {-std::numeric_limits<double>::infinity(), u"-INF"},
                                                      {std::numeric_limits<double>::denorm_min(), u"5E-324"}};
  for (const auto& [value, expected] : cases) EXPECT_EQ(ExtendedToStr(value), expected);

  const SeparatorSettings comma(u',', true);
  EXPECT_EQ(ExtendedToStr(2.5e-9), u"2,5E-9");
  EXPECT_EQ(StrToExtended(ExtendedToStr(1.5)), 1.5);
}

TEST(StrToExtended, ReadsBackEveryDoubleExactly) {
  std::mt19937_64 random(77);
  for (int i = 0; i < 15000; ++i) {
    const double x = std::bit_cast<double>(random());
    if (!std::isfinite(x)) continue;
    ASSERT_EQ(StrToExtended(ExtendedToStr(x)), x) << ToUtf8(ExtendedToStr(x));
  }
  EXPECT_TRUE(std::isnan(StrToExtended(ExtendedToStr(std::nan("")))));
  EXPECT_EQ(StrToExtended(ExtendedToStr(HUGE_VAL)), HUGE_VAL);
  EXPECT_EQ(StrToExtended(u"-inf"), -HUGE_VAL);
}

// StrToExtended reads with the one float grammar that StrToFloat's tests cover; these are its
// own rules: both separators, every control character as a blank, and its error text.
TEST(StrToExtended, TakesBothSeparatorsAndControlBlanksAndRaisesConvertError) {
  const std::pair<const char16_t*, double> cases[] = {
      {u"1,5", 1.5}, {u"\t-1e3\r\n", -1000}, {u"2,5e-1", 0.25}, {u"0.000001e-330", 0}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(StrToExtended(text), expected) << ToUtf8(text);
  EXPECT_EQ(ConvertErrorText(u" 1e ", StrToExtended), u"' 1e ' is not a valid floating point value");
  for (const char16_t* bad : {u"1,5.2", u"1 000", u"1e400", u"nan1"}) {
    EXPECT_THROW(StrToExtended(bad), EConvertError) << ToUtf8(bad);
    EXPECT_FALSE(StringIsFloat(bad)) << ToUtf8(bad);
  }
  EXPECT_TRUE(StringIsFloat(u" -3,25E2 "));
}

TEST(StrToExtended, DotDecimalSeparatorOffTakesOnlyTheSetSeparator) {
  for (const char16_t separator : {u'.', u','}) {
    const SeparatorSettings only(separator, false);
    const String number = String(u"1") + separator + u"5";
    const String other = String(u"1") + (separator == u'.' ? u',' : u'.') + u"5";
    EXPECT_EQ(StrToExtended(number), 1.5) << ToUtf8(number);
    EXPECT_FALSE(StringIsFloat(other)) << ToUtf8(other);
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
  EXPECT_EQ(ConvertErrorText(u"12a", StrToLongInt), u"'12a' is not a valid integer value");
  EXPECT_EQ(StringToInteger(u" -15"), -15);
}

TEST(StringIntSum, SumsCharacterCodesModulo2To32) {
  EXPECT_EQ(StringIntSum(u""), 0);
  EXPECT_EQ(StringIntSum(u"Ač"), 65 + 0x10D);
  EXPECT_EQ(StringIntSum(String(65536, u'\xFFFF')), -65536);  // 65536 * 65535 wraps
}

TEST(StrToBool, ReadsWordsAndNumbers) {
  EXPECT_EQ(BoolToStr(true) + BoolToStr(false), u"TrueFalse");
  const std::pair<const char16_t*, bool> cases[] = {{u"TRUE", true}, {u" tRuE ", true}, {u"False", false},
                                                    {u"0", false},   {u"0.0", false},   {u"-1", true},
                                                    {u"2,5", true}};
  for (const auto& [text, expected] : cases) EXPECT_EQ(StrToBool(text), expected) << ToUtf8(text);
  EXPECT_EQ(ConvertErrorText(u"yes", StrToBool), u"'yes' is not a valid boolean value");
  EXPECT_THROW(StrToBool(u""), EConvertError);
}

TEST(RomanNumerals, WriteAndReadStandardFormsAndNothingElse) {
  EXPECT_EQ(IntegerToRome(1994), u"MCMXCIV");
  EXPECT_EQ(IntegerToRome(3888), u"MMMDCCCLXXXVIII");
  for (int32_t out_of_range : {0, 4000, -5}) EXPECT_EQ(IntegerToRome(out_of_range), u"");
  for (int32_t n = 1; n <= 3999; ++n) ASSERT_EQ(RomeToInteger(IntegerToRome(n)), n) << n;
  EXPECT_EQ(RomeToInteger(u" mcmxciv "), 1994);
  EXPECT_EQ(RomeToInteger(u"xIv"), 14);
  for (const char16_t* bad :
       {u"", u"IIII", u"IC", u"IM", u"VV", u"MMMM", u"XIVX", u"ABC", u"X I", u"MMMDCCCLXXXVIIII"}) {
    EXPECT_EQ(RomeToInteger(bad), 0) << ToUtf8(bad);
  }
  EXPECT_EQ(RomeToInteger(String(100000, u'M')), 0);
}

}  // namespace
}  // namespace veska
