#include "kernel/platform/float_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "kernel/platform/exceptions.h"
#include "tests/support/comma_locale.h"

namespace veska {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kDenormMin = std::numeric_limits<double>::denorm_min();

TEST(FloatToStr, PlainBetweenTheExponentsMinusFiveAndFifteenOrUnformattedWithFifteenDigitsAndAFourDigitExponent) {
  // 15 digits hide the binary noise of 0.1 + 0.2; rounding to 15 digits may raise the exponent.
  String texts;
  for (double value : {-0.0, 0.0001, -0.00012345, 123456789012345.0, 0.1 + 0.2, 1234567.8901234567, 0.00001, 1e15,
                       999999999999999.9, std::numeric_limits<double>::max(), kDenormMin, kNaN, -kInfinity})
    texts += FloatToStr(value) + u" ";
  EXPECT_EQ(texts,
            u"0 0.0001 -0.00012345 123456789012345 0.3 1234567.89012346 1E-5 1E15 1E15 1.79769313486232E308 "
            u"4.94065645841247E-324 NAN -INF ");

  String unformatted;  // and each reads back
  for (double value : {1.5, -2.5e-7, 0.0, 123456789.123456789, kDenormMin, -kInfinity, kNaN}) {
    const String text = FloatToStrUnformatted(value);
    unformatted += text + u"|";
    EXPECT_EQ(FloatToStrUnformatted(StrToFloat(text)), text);
  }
  EXPECT_EQ(unformatted,
            u" 1.50000000000000E+0000|-2.50000000000000E-0007| 0.00000000000000E+0000| 1.23456789123457E+0008|"
            u" 4.94065645841247E-0324|-INF|NAN|");
}

TEST(StrToFloat, AcceptsSignsBlanksFractionsExponentsRejectsMalformedTextAndTheSeparatorComesFromTheSettingsOnly) {
  std::vector<double> read;
  const String tiny = u"0." + String(371, u'0') + u"1";
  for (StringView text :
       std::initializer_list<StringView>{u" -1.5 ", u"+2", u".5", u"5.", u"1E+3", u"\t007\t", u"0e999999999999",
                                         u"-1e-99999999999999999999", u"+Inf", u" -INF ", tiny}) {
    double value = 42;
    EXPECT_TRUE(TryStrToFloat(text, value)) << ToUtf8(String(text));
    read.push_back(value);
  }
  EXPECT_EQ(read, (std::vector<double>{-1.5, 2, 0.5, 5, 1000, 7, 0, -0.0, kInfinity, -kInfinity, 0}));
  EXPECT_TRUE(std::isnan(StrToFloat(u"NaN")));

  const auto rejected = [](StringView text) {
    double kept = 42;
    return !TryStrToFloat(text, kept) && kept == 42;
  };
  for (StringView text :
       {u"",       u" ",      u".",    u"-",    u"+.",  u"1.5.2", u"1,5",      u"1e",    u"1e+",
        u"e5",     u"1 5",    u"0x10", u"1.5x", u"--1", u"-NAN",  u"infinity", u"1e309", u"-1e99999999999999999999",
        u"1e-2.5", u"\u0661", u"１"})
    EXPECT_TRUE(rejected(text)) << ToUtf8(String(text));
  EXPECT_TRUE(rejected(u"1" + String(400, u'0')) && rejected(u"0.0001e313"));  // 1e309 written other ways
  EXPECT_THAT([] { StrToFloat(u"abc"); },
              testing::ThrowsMessage<EConvertError>("'abc' is not a valid floating point value"));

  const TFormatSettings saved = FormatSettings;
  FormatSettings.DecimalSeparator = u',';
  const String texts = FloatToStr(-0.5) + u"|" + FloatToStr(1.5e-7) + u"|" + FloatToStrUnformatted(1.5);
  double comma = 0, dot = 42;
  const bool comma_read = TryStrToFloat(u"2,25", comma) && !TryStrToFloat(u"1.5", dot);
  FormatSettings = saved;
  EXPECT_EQ(texts, u"-0,5|1,5E-7| 1.50000000000000E+0000");  // the unformatted dot is fixed
  EXPECT_TRUE(comma_read && comma == 2.25);

  const test::CommaLocale comma_locale;
  EXPECT_EQ(FloatToStr(1234567.5) + u"|" + FloatToStrUnformatted(-1234567.5), u"1234567.5|-1.23456750000000E+0006");
  EXPECT_TRUE(TryStrToFloat(u"1234567.5", dot) && dot == 1234567.5);
}

}  // namespace
}  // namespace veska
