#include "kernel/platform/float_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "kernel/platform/exceptions.h"
#include "tests/support/comma_locale.h"

namespace veska {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kDenormMin = std::numeric_limits<double>::denorm_min();
constexpr double kMax = std::numeric_limits<double>::max();

TEST(FloatToStr, PlainNotationBetweenTheExponentsMinusFiveAndFifteenScientificOutside) {
  // 15 digits hide the binary noise of 0.1 + 0.2; rounding to 15 digits may raise the exponent.
  const std::pair<double, StringView> cases[] = {
      {0.0, u"0"},
      {-0.0, u"0"},
      {100.0, u"100"},
      {0.0001, u"0.0001"},
      {-0.00012345, u"-0.00012345"},
      {123456789012345.0, u"123456789012345"},
      {2.0 / 3, u"0.666666666666667"},
      {0.1 + 0.2, u"0.3"},
      {1234567.8901234567, u"1234567.89012346"},
      {0.00001, u"1E-5"},
      {-1.5e-7, u"-1.5E-7"},
      {1e15, u"1E15"},
      {-2.5e20, u"-2.5E20"},
      {999999999999999.9, u"1E15"},
      {kMax, u"1.79769313486232E308"},
      {kDenormMin, u"4.94065645841247E-324"},
      {kNaN, u"NAN"},
      {kInfinity, u"INF"},
      {-kInfinity, u"-INF"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(FloatToStr(value), text) << value;
}

TEST(FloatToStrUnformatted, FifteenDigitsAndAFourDigitExponentThatReadBack) {
  const std::pair<double, StringView> cases[] = {
      {1.5, u" 1.50000000000000E+0000"},
      {-2.5e-7, u"-2.50000000000000E-0007"},
      {0.0, u" 0.00000000000000E+0000"},
      {1e300, u" 1.00000000000000E+0300"},
      {123456789.123456789, u" 1.23456789123457E+0008"},
      {kDenormMin, u" 4.94065645841247E-0324"},
      {-kInfinity, u"-INF"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(FloatToStrUnformatted(value), text) << value;
    EXPECT_EQ(FloatToStrUnformatted(StrToFloat(text)), text) << value;
  }
  EXPECT_EQ(FloatToStrUnformatted(kNaN), u"NAN");
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
  const std::pair<String, double> cases[] = {
      {u" -1.5 ", -1.5},    {u"+2", 2},
      {u".5", 0.5},         {u"5.", 5},
      {u"1E+3", 1000},      {u"-1.5e-7", -1.5e-7},
      {u"\t007\t", 7},      {u"0e999999999999", 0},
      {u"1e-400", 0},       {u"-1e-99999999999999999999", -0.0},
      {u"inf", kInfinity},  {u" -INF ", -kInfinity},
      {u"+Inf", kInfinity}, {u"0." + String(371, u'0') + u"1", 0},
  };
  for (const auto& [text, expected] : cases) {
    double value = 42;
    EXPECT_TRUE(TryStrToFloat(text, value) && value == expected) << ToUtf8(text) << " read as " << value;
  }
  double value = 0;
  EXPECT_TRUE(TryStrToFloat(u"NaN", value) && std::isnan(value));
}

TEST(StrToFloat, RejectsMalformedAndOverflowingText) {
  const auto rejected = [](StringView text) {
    double value = 42;
    return !TryStrToFloat(text, value) && value == 42;
  };
  for (StringView text :
       {u"",       u" ",      u".",    u"-",    u"+.",  u"1.5.2", u"1,5",      u"1e",    u"1e+",
        u"e5",     u"1 5",    u"0x10", u"1.5x", u"--1", u"-NAN",  u"infinity", u"1e309", u"-1e99999999999999999999",
        u"1e-2.5", u"\u0661", u"１"}) {
    EXPECT_TRUE(rejected(text)) << ToUtf8(String(text));
  }
  EXPECT_TRUE(rejected(u"1" + String(400, u'0')) && rejected(u"0.0001e313"));  // 1e309 written other ways
  EXPECT_THAT([] { StrToFloat(u"abc"); },
              testing::ThrowsMessage<EConvertError>("'abc' is not a valid floating point value"));
}

TEST(FloatText, DecimalSeparatorComesFromTheSettingsAndNeverFromTheProcessLocale) {
  TFormatSettings comma;
  comma.DecimalSeparator = u',';
  EXPECT_EQ(FloatToStr(1.5e-7, comma) + u" " + FloatToStr(0.001, comma), u"1,5E-7 0,001");
  EXPECT_EQ(StrToFloat(u"-1,5E-7", comma), -1.5e-7);
  double value = 42;
  EXPECT_FALSE(TryStrToFloat(u"1.5", value, comma));

  const TFormatSettings saved = FormatSettings;
  FormatSettings.DecimalSeparator = u',';
  const String general = FloatToStr(-0.5), unformatted = FloatToStrUnformatted(1.5);
  const bool read = TryStrToFloat(u"2,25", value);
  FormatSettings = saved;
  EXPECT_EQ(general + u"|" + unformatted, u"-0,5| 1.50000000000000E+0000");  // the unformatted dot is fixed
  EXPECT_TRUE(read && value == 2.25);

  const test::CommaLocale comma_locale;
  EXPECT_EQ(FloatToStr(1234567.5) + u"|" + FloatToStrUnformatted(-1234567.5), u"1234567.5|-1.23456750000000E+0006");
  EXPECT_TRUE(TryStrToFloat(u"1234567.5", value) && value == 1234567.5);
}

}  // namespace
}  // namespace veska
