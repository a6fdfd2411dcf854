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

String ConvertErrorText(StringView text, double (*convert)(StringView)) {
  try {
    convert(text);
  } catch (const EConvertError& error) {
    return error.Message();
  }
  return u"(no error)";
}

TEST(ExtendedToStr, WritesTheGeneralForm) {
  EXPECT_EQ(ExtendedToStr(0), u"0");
  EXPECT_EQ(ExtendedToStr(-0.0), u"0");
  EXPECT_EQ(ExtendedToStr(1), u"1");
  EXPECT_EQ(ExtendedToStr(-2.25), u"-2.25");
  EXPECT_EQ(ExtendedToStr(0.1), u"0.1");
  EXPECT_EQ(ExtendedToStr(100), u"100");
  EXPECT_EQ(ExtendedToStr(123456789012345.0), u"123456789012345");
  EXPECT_EQ(ExtendedToStr(1e15), u"1E15");
  EXPECT_EQ(ExtendedToStr(1e20), u"1E20");
  EXPECT_EQ(ExtendedToStr(-1.25e100), u"-1.25E100");
  EXPECT_EQ(ExtendedToStr(0.00001), u"0.00001");
  EXPECT_EQ(ExtendedToStr(0.0000125), u"0.0000125");
  EXPECT_EQ(ExtendedToStr(1.5e-7), u"1.5E-7");
  EXPECT_EQ(ExtendedToStr(0.1 + 0.2), u"0.30000000000000004");  // 15 digits would not read back
  EXPECT_EQ(ExtendedToStr(std::numeric_limits<double>::quiet_NaN()), u"NAN");
  EXPECT_EQ(ExtendedToStr(-std::numeric_limits<double>::infinity()), u"-INF");
  EXPECT_EQ(ExtendedToStr(std::numeric_limits<double>::denorm_min()), u"5E-324");
}

TEST(ExtendedToStr, UsesTheDecimalSeparatorSetting) {
  const SeparatorSettings comma(u',', true);
  EXPECT_EQ(ExtendedToStr(1.5), u"1,5");
  EXPECT_EQ(ExtendedToStr(2.5e-9), u"2,5E-9");
  EXPECT_EQ(StrToExtended(ExtendedToStr(1.5)), 1.5);
}

TEST(StrToExtended, ReadsBackEveryDoubleExactly) {
  std::mt19937_64 random(77);
  for (int i = 0; i < 20000; ++i) {
    const double x = std::bit_cast<double>(random());
    if (!std::isfinite(x)) continue;
    ASSERT_EQ(StrToExtended(ExtendedToStr(x)), x) << ToUtf8(ExtendedToStr(x));
  }
  EXPECT_TRUE(std::isnan(StrToExtended(ExtendedToStr(std::nan("")))));
  EXPECT_EQ(StrToExtended(ExtendedToStr(HUGE_VAL)), HUGE_VAL);
  EXPECT_EQ(StrToExtended(u"-inf"), -HUGE_VAL);
}

TEST(StrToExtended, AcceptsBothSeparatorsBlanksSignsAndExponents) {
  EXPECT_EQ(StrToExtended(u" 1.5 "), 1.5);
  EXPECT_EQ(StrToExtended(u"1,5"), 1.5);
  EXPECT_EQ(StrToExtended(u"\t-1e3\r\n"), -1000);
  EXPECT_EQ(StrToExtended(u"+2"), 2);
  EXPECT_EQ(StrToExtended(u".5"), 0.5);
  EXPECT_EQ(StrToExtended(u"5."), 5);
  EXPECT_EQ(StrToExtended(u"1E+2"), 100);
  EXPECT_EQ(StrToExtended(u"2,5e-1"), 0.25);
  EXPECT_EQ(StrToExtended(u"0012"), 12);
  EXPECT_EQ(StrToExtended(u"1e-400"), 0);
  EXPECT_EQ(StrToExtended(u"0.000001e-330"), 0);
  EXPECT_EQ(StrToExtended(u"0e99999999999999999999"), 0);
}

TEST(StrToExtended, RaisesConvertErrorOnBadText) {
  EXPECT_EQ(ConvertErrorText(u"abc", StrToExtended), u"'abc' is not a valid floating point value");
  EXPECT_EQ(ConvertErrorText(u" 1e ", StrToExtended), u"' 1e ' is not a valid floating point value");
  for (const char16_t* bad : {u"", u" ", u".", u"-", u"e5", u"1e", u"1e+", u"1.2.3", u"1,5.2", u"1 000",
                              u"0x10", u"1.5x", u"--1", u"1e400", u"-1e99999999999", u"\u0661", u"nan1"}) {
    EXPECT_THROW(StrToExtended(bad), EConvertError) << ToUtf8(bad);
    EXPECT_FALSE(StringIsFloat(bad)) << ToUtf8(bad);
  }
  EXPECT_TRUE(StringIsFloat(u" -3,25E2 "));
}

TEST(StrToExtended, DotDecimalSeparatorOffTakesOnlyTheSetSeparator) {
  {
    const SeparatorSettings dot_only(u'.', false);
    EXPECT_EQ(StrToExtended(u"1.5"), 1.5);
    EXPECT_FALSE(StringIsFloat(u"1,5"));
  }
  {
    const SeparatorSettings comma_only(u',', false);
    EXPECT_EQ(StrToExtended(u"1,5"), 1.5);
    EXPECT_FALSE(StringIsFloat(u"1.5"));
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
  try {
    StrToLongInt(u"12a");
    ADD_FAILURE() << "no error";
  } catch (const EConvertError& error) {
    EXPECT_EQ(error.Message(), u"'12a' is not a valid integer value");
  }
  EXPECT_EQ(StringToInteger(u" -15"), -15);
}

TEST(StringIntSum, SumsCharacterCodesModulo2To32) {
  EXPECT_EQ(StringIntSum(u""), 0);
  EXPECT_EQ(StringIntSum(u"AB"), 131);
  EXPECT_EQ(StringIntSum(u"č"), 0x10D);
  EXPECT_EQ(StringIntSum(String(65536, u'\xFFFF')), -65536);  // 65536 * 65535 wraps
}

TEST(StrToBool, ReadsWordsAndNumbers) {
  EXPECT_EQ(BoolToStr(true), u"True");
  EXPECT_EQ(BoolToStr(false), u"False");
  EXPECT_TRUE(StrToBool(u"TRUE"));
  EXPECT_TRUE(StrToBool(u" tRuE "));
  EXPECT_FALSE(StrToBool(u"False"));
  EXPECT_FALSE(StrToBool(u"0"));
  EXPECT_FALSE(StrToBool(u"0.0"));
  EXPECT_TRUE(StrToBool(u"-1"));
  EXPECT_TRUE(StrToBool(u"2,5"));
  try {
    StrToBool(u"yes");
    ADD_FAILURE() << "no error";
  } catch (const EConvertError& error) {
    EXPECT_EQ(error.Message(), u"'yes' is not a valid boolean value");
  }
  EXPECT_THROW(StrToBool(u""), EConvertError);
}

TEST(RomanNumerals, WriteAndReadStandardForms) {
  EXPECT_EQ(IntegerToRome(1994), u"MCMXCIV");
  EXPECT_EQ(IntegerToRome(3888), u"MMMDCCCLXXXVIII");
  EXPECT_EQ(IntegerToRome(4), u"IV");
  EXPECT_EQ(IntegerToRome(0), u"");
  EXPECT_EQ(IntegerToRome(4000), u"");
  EXPECT_EQ(IntegerToRome(-5), u"");
  for (int32_t n = 1; n <= 3999; ++n) ASSERT_EQ(RomeToInteger(IntegerToRome(n)), n) << n;
  EXPECT_EQ(RomeToInteger(u" mcmxciv "), 1994);
  EXPECT_EQ(RomeToInteger(u"xIv"), 14);
}

TEST(RomanNumerals, NonStandardOrForeignTextReadsAsZero) {
  for (const char16_t* bad : {u"", u"IIII", u"IC", u"IM", u"VV", u"MMMM", u"XIVX", u"ABC", u"X I",
                              u"MMMDCCCLXXXVIIII"}) {
    EXPECT_EQ(RomeToInteger(bad), 0) << ToUtf8(bad);
  }
  EXPECT_EQ(RomeToInteger(String(100000, u'M')), 0);
}

}  // namespace
}  // namespace veska
