#include "kernel/platform/float_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <locale>
#include <random>
#include <string>

#include "kernel/platform/exceptions.h"
#include "tests/support/comma_locale.h"

namespace veska {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(FloatToStr, PlainNotationBetweenTheExponentsMinusFiveAndFifteenScientificOutside) {
  const struct {
    double value;
    StringView text;
  } cases[] = {
      {0.0, u"0"},
      {-0.0, u"0"},
      {1.5, u"1.5"},
      {100.0, u"100"},
      {0.0001, u"0.0001"},
      {-0.00012345, u"-0.00012345"},
      {123456789012345.0, u"123456789012345"},
      {1.0 / 3, u"0.333333333333333"},
      {2.0 / 3, u"0.666666666666667"},
      {0.1 + 0.2, u"0.3"},  // 15 digits hide the binary noise
      {1234567.8901234567, u"1234567.89012346"},
      {0.00001, u"1E-5"},
      {-1.5e-7, u"-1.5E-7"},
      {1e15, u"1E15"},
      {-2.5e20, u"-2.5E20"},
      {999999999999999.9, u"1E15"},  // rounding to 15 digits raises the exponent
      {std::numeric_limits<double>::max(), u"1.79769313486232E308"},
      {std::numeric_limits<double>::denorm_min(), u"4.94065645841247E-324"},
      {kNaN, u"NAN"},
      {kInfinity, u"INF"},
      {-kInfinity, u"-INF"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(FloatToStr(value), text) << value;
  TFormatSettings comma;
  comma.DecimalSeparator = u',';
  EXPECT_EQ(FloatToStr(1.5e-7, comma), u"1,5E-7");
  EXPECT_EQ(FloatToStr(0.001, comma), u"0,001");
  const TFormatSettings saved = FormatSettings;
  FormatSettings.DecimalSeparator = u',';
  EXPECT_EQ(FloatToStr(-0.5), u"-0,5");
  FormatSettings = saved;
}

TEST(FloatToStrUnformatted, FifteenDigitsAndAFourDigitExponent) {
  EXPECT_EQ(FloatToStrUnformatted(1.5), u" 1.50000000000000E+0000");
  EXPECT_EQ(FloatToStrUnformatted(-2.5e-7), u"-2.50000000000000E-0007");
  EXPECT_EQ(FloatToStrUnformatted(0.0), u" 0.00000000000000E+0000");
  EXPECT_EQ(FloatToStrUnformatted(1e300), u" 1.00000000000000E+0300");
  EXPECT_EQ(FloatToStrUnformatted(123456789.123456789), u" 1.23456789123457E+0008");
  EXPECT_EQ(FloatToStrUnformatted(std::numeric_limits<double>::denorm_min()), u" 4.94065645841247E-0324");
  EXPECT_EQ(FloatToStrUnformatted(kNaN), u"NAN");
  EXPECT_EQ(FloatToStrUnformatted(-kInfinity), u"-INF");
  // The dot is fixed, whatever the settings say.
  const TFormatSettings saved = FormatSettings;
  FormatSettings.DecimalSeparator = u',';
  EXPECT_EQ(FloatToStrUnformatted(1.5), u" 1.50000000000000E+0000");
  FormatSettings = saved;
}

TEST(FloatToStrUnformatted, ReadsBackWithTheDefaultSettings) {
  for (double value : {1.5, -2.5e-7, 0.0, 1e300, -1e-300, 123456789.123456, kInfinity, -kInfinity}) {
    EXPECT_EQ(StrToFloat(FloatToStrUnformatted(value)), value) << ToUtf8(FloatToStrUnformatted(value));
  }
  EXPECT_TRUE(std::isnan(StrToFloat(FloatToStrUnformatted(kNaN))));
  std::mt19937_64 random(20310501);
  std::uniform_real_distribution<double> mantissa(-10.0, 10.0);
  std::uniform_int_distribution<int> exponent(-300, 300);
  for (int i = 0; i < 1000; ++i) {
    const double value = std::ldexp(mantissa(random), exponent(random));
    const double read = StrToFloat(FloatToStrUnformatted(value));
    ASSERT_LE(std::fabs(read - value), std::fabs(value) * 1e-14) << ToUtf8(FloatToStrUnformatted(value));
    ASSERT_EQ(FloatToStrUnformatted(read), FloatToStrUnformatted(value));
  }
}

TEST(StrToFloat, AcceptsSignsBlanksFractionsAndExponents) {
  const struct {
    StringView text;
    double value;
  } cases[] = {{u"1.5", 1.5},
               {u" -1.5 ", -1.5},
               {u"+2", 2},
               {u".5", 0.5},
               {u"5.", 5},
               {u"1e3", 1000},
               {u"1E+3", 1000},
               {u"-1.5e-7", -1.5e-7},
               {u"\t007\t", 7},
               {u"0e999999999999", 0},
               {u"1e-400", 0},
               {u"-1e-99999999999999999999", -0.0},
               {u"inf", kInfinity},
               {u" -INF ", -kInfinity},
               {u"+Inf", kInfinity},
               {u"0.000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
                u"000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
                u"000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000"
                u"000000000000000000000000000000000000000000000000000000000000000000000000000000000000000000001",
                0}};
  for (const auto& [text, expected] : cases) {
    double value = 42;
    ASSERT_TRUE(TryStrToFloat(text, value)) << ToUtf8(text);
    EXPECT_EQ(value, expected) << ToUtf8(text);
  }
  double value = 0;
  EXPECT_TRUE(TryStrToFloat(u"NaN", value));
  EXPECT_TRUE(std::isnan(value));
}

TEST(StrToFloat, RejectsMalformedAndOverflowingText) {
  for (StringView text :
       {u"",       u" ",      u".",    u"-",    u"+.",  u"1.5.2", u"1,5",      u"1e",    u"1e+",
        u"e5",     u"1 5",    u"0x10", u"1.5x", u"--1", u"-NAN",  u"infinity", u"1e309", u"-1e99999999999999999999",
        u"1e-2.5", u"\u0661", u"１"}) {
    double value = 42;
    EXPECT_FALSE(TryStrToFloat(text, value)) << ToUtf8(text);
    EXPECT_EQ(value, 42) << ToUtf8(text);
  }
  double value = 42;
  EXPECT_FALSE(TryStrToFloat(u"1" + String(400, u'0'), value));
  EXPECT_FALSE(TryStrToFloat(u"0.0001e313", value));  // 1e309 written another way
  EXPECT_EQ(value, 42);
  try {
    StrToFloat(u"abc");
    ADD_FAILURE() << "no EConvertError";
  } catch (const EConvertError& error) {
    EXPECT_EQ(error.Message(), u"'abc' is not a valid floating point value");
  }
}

TEST(StrToFloat, UsesTheDecimalSeparatorOfTheSettings) {
  TFormatSettings comma;
  comma.DecimalSeparator = u',';
  EXPECT_EQ(StrToFloat(u"1,5", comma), 1.5);
  EXPECT_EQ(StrToFloat(u"-1,5E-7", comma), -1.5e-7);
  double value = 42;
  EXPECT_FALSE(TryStrToFloat(u"1.5", value, comma));
  const TFormatSettings saved = FormatSettings;
  FormatSettings.DecimalSeparator = u',';
  const bool readWithGlobal = TryStrToFloat(u"2,25", value);
  FormatSettings = saved;
  EXPECT_TRUE(readWithGlobal);
  EXPECT_EQ(value, 2.25);
}

TEST(FloatText, GeneralFormReadsBackToFifteenDigits) {
  for (double value : {1.5, -0.00012345, 123456789012345.0, 1e15, 1.5e-7, 6.02214076e23, 1.0 / 3}) {
    const double read = StrToFloat(FloatToStr(value));
    EXPECT_NEAR(read, value, std::fabs(value) * 1e-14) << ToUtf8(FloatToStr(value));
    EXPECT_EQ(FloatToStr(read), FloatToStr(value));
  }
}

TEST(FloatText, ResultsDoNotDependOnTheProcessLocale) {
  const test::CommaLocale comma_locale;
  const String general = FloatToStr(1234567.5);
  const String unformatted = FloatToStrUnformatted(-1234567.5);
  double read = 0;
  const bool readOk = TryStrToFloat(u"1234567.5", read);
  EXPECT_EQ(general, u"1234567.5");
  EXPECT_EQ(unformatted, u"-1.23456750000000E+0006");
  EXPECT_TRUE(readOk);
  EXPECT_EQ(read, 1234567.5);
}

}  // namespace
}  // namespace veska
