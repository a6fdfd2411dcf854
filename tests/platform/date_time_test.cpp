#include "kernel/platform/date_time.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>

#include "kernel/platform/exceptions.h"
#include "tests/support/comma_locale.h"

namespace veska {
namespace {

using ::testing::ThrowsMessage;

// The value as UTC ISO text: readable in failure output, and exact to the millisecond.
std::string Iso(TDateTime value) { return ToUtf8(DateToISO8601(value)); }

// Whether the reader refuses the text and leaves the value it was given alone.
template <class Reader>
bool Refuses(Reader read, const String& text) {
  TDateTime value = 42;
  return !read(text, value) && value == 42;
}

TFormatSettings Settings(char16_t date_separator, StringView short_date, char16_t time_separator = u':') {
  TFormatSettings settings;
  settings.DateSeparator = date_separator;
  settings.ShortDateFormat = String(short_date);
  settings.TimeSeparator = time_separator;
  return settings;
}

constexpr double kOneMillisecond = 1.0 / double(MSecsPerDay);
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(Calendar, GregorianDaysCountFromTheLastDaysOf1899ValuesOutsideDecodeAsZeroAndInvalidOnesRaiseConvertError) {
  EXPECT_TRUE(IsLeapYear(2000) && !IsLeapYear(1900));
  EXPECT_EQ(std::tuple(DaysInAMonth(1900, 2), DaysInAMonth(2023, 4), DaysInAMonth(2023, 13)), std::tuple(28, 30, 0));
  // No 29 February 1900; the calendar runs from 1 January 1 to 31 December 9999.
  EXPECT_EQ(std::tuple(EncodeDate(1900, 3, 1), EncodeDate(1970, 1, 1), EncodeDate(1, 1, 1), EncodeDate(9999, 12, 31)),
            std::tuple(61.0, UnixDateDelta, -693593.0, 2958465.0));
  // Weeks count from Sunday: 30 December 1899 was a Saturday, 1 January 2024 a Monday.
  EXPECT_EQ(std::pair(DayOfWeek(0), DayOfWeek(EncodeDateTime(2024, 1, 1, 23, 0, 0, 0))), std::pair(7, 2));
  for (TDateTime day = -693593; day <= 2958465; day += 211) {
    int y = 0, m = 0, d = 0;
    DecodeDate(day, y, m, d);
    ASSERT_EQ(EncodeDate(y, m, d), day) << y << "-" << m << "-" << d;
  }
  for (TDateTime value : {-693594.0, 2958466.0, -1e300, kNaN}) {
    int y = 1, m = 1, d = 1;
    DecodeDate(value, y, m, d);
    EXPECT_EQ(std::tuple(y, m, d, DayOfWeek(value)), std::tuple(0, 0, 0, 0)) << value;
  }
  EXPECT_THROW(StartOfTheYear(1e300), EConvertError);
  EXPECT_EQ(YearOf(MaxDateTime), 9999);

  EXPECT_THAT([] { EncodeDate(1900, 2, 29); }, ThrowsMessage<EConvertError>("Invalid argument to date encode"));
  EXPECT_THAT([] { EncodeTime(24, 0, 0, 0); }, ThrowsMessage<EConvertError>("Invalid argument to time encode"));
  for (const auto& [y, m, d] :
       {std::tuple{0, 1, 1}, {10000, 1, 1}, {2023, 0, 1}, {2023, 13, 1}, {2023, 1, 0}, {2023, 1, 32}, {2023, 4, 31}})
    EXPECT_THROW(EncodeDate(y, m, d), EConvertError) << y << "-" << m << "-" << d;
  for (const auto& [h, n, s, ms] : {std::tuple{0, 60, 0, 0}, {0, 0, 60, 0}, {0, 0, 0, 1000}, {-1, 0, 0, 0}})
    EXPECT_THROW(EncodeTime(h, n, s, ms), EConvertError) << h << ":" << n << ":" << s << "." << ms;
  // A month of year 0 (a start still unset) is not a date.
  EXPECT_THROW(StartOfAMonth(0, 5), EConvertError);
  EXPECT_THROW(EndOfAMonth(2030, 13), EConvertError);
  TDateTime kept = 42;
  EXPECT_TRUE(!TryEncodeDate(2023, 2, 29, kept) && !TryEncodeTime(23, 59, 59, 1000, kept) &&
              !TryEncodeDateTime(2023, 1, 1, 24, 0, 0, 0, kept) && kept == 42);
}

TEST(Calendar, DecodingRoundsToTheMillisecondAndBefore1899KeepsTheTimeAsTheAbsoluteFraction) {
  const TDateTime lastDay = EncodeDate(2023, 12, 31);
  EXPECT_EQ(Iso(lastDay + 1 - 0.4 * kOneMillisecond) + Iso(lastDay + 1 - 0.6 * kOneMillisecond) +
                Iso(EncodeTime(10, 20, 30, 0) + 0.9995 * kOneMillisecond),
            "2024-01-01T00:00:00.000Z2023-12-31T23:59:59.999Z1899-12-30T10:20:30.001Z");

  // -1.25 is 29 December 1899, 06:00: the day is the integral part, the time |fraction|.
  EXPECT_DOUBLE_EQ(EncodeDateTime(1899, 12, 29, 6, 0, 0, 0), -1.25);
  EXPECT_EQ(Iso(-1.25) + Iso(-0.5), "1899-12-29T06:00:00.000Z1899-12-30T12:00:00.000Z");
  EXPECT_EQ(std::tuple(DateOf(-1.25), TimeOf(-1.25), DayOf(-1.25)), std::tuple(-1.0, 0.25, 29));
  // The carry goes forward in time there too, to the next day.
  EXPECT_EQ(Iso(EncodeDate(1800, 1, 1) - 1 + 0.4 * kOneMillisecond), "1800-01-02T00:00:00.000Z");
  // Millisecond steps cross 30 December 1899 in both directions.
  EXPECT_DOUBLE_EQ(IncMilliSecond(0.25, -MSecsPerDay / 2), -1.75);  // 29 December, 18:00
  EXPECT_DOUBLE_EQ(IncMilliSecond(-1.25, MSecsPerDay), 0.25);
  EXPECT_TRUE(std::isnan(IncMilliSecond(kNaN, 1)));
}

TEST(Iso8601, WritesUtcWithMillisecondsReadsBasicAndExtendedFormsWithOffsetsAndRefusesMalformedText) {
  EXPECT_EQ(DateToISO8601(EncodeDateTime(2031, 5, 1, 13, 4, 5, 6), false), u"2031-05-01T13:04:05.006");
  const TFormatSettings saved = FormatSettings;
  FormatSettings = Settings(u'/', u"d/m/yyyy", u'.');
  EXPECT_EQ(DateToISO8601(EncodeDate(45, 3, 9)), u"0045-03-09T00:00:00.000Z");
  FormatSettings = saved;
  for (TDateTime value :
       {0.0, -1.25, EncodeDateTime(1, 1, 1, 0, 0, 0, 1), MaxDateTime, EncodeDateTime(1600, 2, 29, 23, 59, 59, 999)})
    EXPECT_DOUBLE_EQ(ISO8601ToDate(DateToISO8601(value)), value) << Iso(value);

  std::string read;
  for (StringView text :
       {u"2031-05-01", u" 20310501 ", u"2031-05-01T12:30", u"2031-05-01 12:30:15", u"20310501t123015Z",
        u"2031-05-01T12:30:15,25Z", u"2031-12-31T23:59:59.9995Z", u"2031-12-31T23:59:59.9994999Z",
        u"2031-05-01T00:30:00+01:00", u"2031-04-30T22:00-05", u"2031-01-01T01:15+0130"}) {
    TDateTime value = -1;
    EXPECT_TRUE(TryISO8601ToDate(text, value)) << ToUtf8(String(text));
    read += Iso(value) + " ";
  }
  EXPECT_EQ(read,
            "2031-05-01T00:00:00.000Z 2031-05-01T00:00:00.000Z 2031-05-01T12:30:00.000Z 2031-05-01T12:30:15.000Z "
            "2031-05-01T12:30:15.000Z 2031-05-01T12:30:15.250Z 2032-01-01T00:00:00.000Z 2031-12-31T23:59:59.999Z "
            "2031-04-30T23:30:00.000Z 2031-05-01T03:00:00.000Z 2030-12-31T23:45:00.000Z ");
  // Across 30 December 1899 the result keeps the platform's rule for earlier days: 29 December, 23:00.
  EXPECT_DOUBLE_EQ(ISO8601ToDate(u"1899-12-30T02:00+03:00"), -1.0 - 23.0 / 24);
  // Without UTC the offset is ignored: the wall-clock time as written.
  EXPECT_EQ(DateToISO8601(ISO8601ToDate(u"2031-05-01T00:30:00+01:00", false), false), u"2031-05-01T00:30:00.000");

  const auto iso = [](const String& text, TDateTime& value) { return TryISO8601ToDate(text, value); };
  for (StringView date : {u"", u"2031", u"2031-05", u"2031-05-01Z", u"2031-5-1", u"2031/05/01", u"2031-13-01",
                          u"2031-02-29", u"0000-01-01", u"10000-01-01", u"\u0662031-05-01"})
    EXPECT_TRUE(Refuses(iso, String(date))) << ToUtf8(String(date));
  for (StringView time :
       {u"T", u"T12", u"T24:00", u"T12:60", u"T12:30:60", u"T12:30:15.", u"T12:30.5", u"T12:30Z junk", u"T12:30+1",
        u"T12:30+24:00", u"T12:30+01:60", u"T12:30+01:", u"X12:30", u"  12:30", u"T12:30:15+01:00:00", u"T1230155"})
    EXPECT_TRUE(Refuses(iso, u"2031-05-01" + String(time))) << ToUtf8(String(time));
  // An offset that leaves the calendar.
  EXPECT_TRUE(Refuses(iso, u"0001-01-01T00:30+01:00") && Refuses(iso, u"9999-12-31T23:30-01:00"));
  EXPECT_THAT([] { ISO8601ToDate(u"1.5.2031"); },
              ThrowsMessage<EConvertError>("'1.5.2031' is not a valid ISO 8601 date and time"));
}

TEST(LocaleDateTime, DateTimeToStrLeavesOutAnExactMidnightWhateverTheProcessLocaleAndPatternLetters) {
  const test::CommaLocale comma_locale;
  const TDateTime may1 = EncodeDate(2031, 5, 1), old = EncodeDateTime(1800, 1, 1, 6, 0, 0, 0);
  // A time that rounds to the next midnight counts as midnight of the next day.
  EXPECT_EQ(DateTimeToStr(may1) + u"|" + DateTimeToStr(may1 + kOneMillisecond) + u"|" +
                DateTimeToStr(may1 + 1 - 0.4 * kOneMillisecond) + u"|" + DateTimeToStr(old),
            u"1.5.2031|1.5.2031 0:00:00|2.5.2031|1.1.1800 6:00:00");
  EXPECT_EQ(TimeToStr(EncodeDateTime(2031, 5, 1, 17, 5, 3, 0)), u"17:05:03");
  for (TDateTime value : {may1, old, EncodeDateTime(1, 1, 1, 23, 59, 59, 0)})
    EXPECT_DOUBLE_EQ(StrToDateTime(DateTimeToStr(value)), value) << Iso(value);
  const TDateTime value = EncodeDateTime(2031, 5, 1, 19, 5, 3, 6);  // a Thursday
  EXPECT_DOUBLE_EQ(ISO8601ToDate(u"2031-05-01T19:05:03.006Z"), value);
  EXPECT_DOUBLE_EQ(StrToDateTime(u"1.5.2031 19:05:03.006"), value);
  EXPECT_EQ(FormatDateTime(u"dd/mm/yyyy hh:nn:ss.zzz d/m/yy h:n:s.z", value),
            u"01.05.2031 19:05:03.006 1.5.31 19:5:3.6");
  EXPECT_EQ(FormatDateTime(u"h:mm, m", value), u"19:05, 5");  // m right after h is the minute
  EXPECT_EQ(FormatDateTime(u"ddd dddd mmm mmmm DD.MM.YYYY c", value),
            u"čt čtvrtek kvě květen 01.05.2031 1.5.2031 19:05:03");
  EXPECT_EQ(FormatDateTime(u"'d' \"m:\" d 'unclosed", value), u"d m: 1 unclosed");
  EXPECT_EQ(FormatDateTime(u"h:nn am/pm|AM/PM|a/p|ampm", value), u"7:05 pm|PM|p|odp.");
  EXPECT_EQ(FormatDateTime(u"hh a/p", EncodeTime(0, 30, 0, 0)), u"12 a");
  EXPECT_EQ(FormatDateTime(u"ddddd t tt", value), u"1.5.2031 19:05 19:05:03");
  EXPECT_EQ(FormatDateTime(u"yyyy-x#", EncodeDate(45, 1, 1)), u"0045-x#");

  TFormatSettings settings = Settings(u'/', u"yyyy/mm/dd", u'.');
  EXPECT_EQ(DateTimeToStr(value, settings), u"2031/05/01 19.05.03");
  // Patterns that name themselves stop after a few levels instead of recursing without end.
  settings.ShortDateFormat = u"c";
  settings.LongTimeFormat = u"tt";
  EXPECT_NO_THROW(DateTimeToStr(value, settings));
}

TEST(LocaleDateTime, ReadsDatesInTheOrderOfTheShortDateFormatAndTimesWithOptionalSecondsAndFraction) {
  const TDateTime may1 = EncodeDate(2031, 5, 1);
  for (StringView text : {u"1.5.2031", u"01.05.2031", u" 1. 5. 2031 ", u"1.5.2031."})
    EXPECT_EQ(StrToDate(text), may1) << ToUtf8(text);
  const int thisYear = YearOf(Now());
  EXPECT_EQ(StrToDate(u"1.5"), EncodeDate(thisYear, 5, 1));
  const int twoDigit = YearOf(StrToDate(u"1.5.31"));  // within 50 years of now
  EXPECT_TRUE(twoDigit % 100 == 31 && twoDigit >= thisYear - 50 && twoDigit < thisYear + 50) << twoDigit;
  EXPECT_EQ(StrToDate(u"1.5.0031"), EncodeDate(31, 5, 1));  // four digits are taken as written

  EXPECT_EQ(StrToDate(u"5/1/2031", Settings(u'/', u"m/d/yyyy")), may1);
  // The quoted d does not decide the order.
  EXPECT_EQ(StrToDate(u"2031-5-1", Settings(u'-', u"'day' yyyy-mm-dd")), may1);

  const auto date = [](const String& text, TDateTime& value) { return TryStrToDate(text, value); };
  for (StringView text : {u"", u"1", u"31.4.2031", u"29.2.2031", u"1.5.2031x", u"1-5-2031", u"1..2031", u"1.5.10000",
                          u"1234567890.1.2031", u"1.5.2031 7"})
    EXPECT_TRUE(Refuses(date, String(text))) << ToUtf8(text);
  EXPECT_THAT([] { StrToDate(u"31.4.2031"); }, ThrowsMessage<EConvertError>("'31.4.2031' is not a valid date"));

  EXPECT_EQ(std::tuple(StrToTime(u" 07:05:03 "), StrToTime(u"7:05:03.0005"), StrToTime(u"23:59:59.9995")),
            std::tuple(EncodeTime(7, 5, 3, 0), EncodeTime(7, 5, 3, 1), 1.0));
  const auto time = [](const String& text, TDateTime& value) { return TryStrToTime(text, value); };
  for (StringView text : {u"", u"7", u"24:00", u"7:60", u"7:05:60", u"7:05:03.", u"7:05:03,5", u"7:05 x", u"-7:05"})
    EXPECT_TRUE(Refuses(time, String(text))) << ToUtf8(text);
  EXPECT_THAT([] { StrToTime(u"25:00"); }, ThrowsMessage<EConvertError>("'25:00' is not a valid time"));

  EXPECT_DOUBLE_EQ(StrToDateTime(u"7:05"), EncodeTime(7, 5, 0, 0));
  EXPECT_EQ(Iso(StrToDateTime(u"31.12.2031 23:59:59.9999")), "2032-01-01T00:00:00.000Z");
  EXPECT_THAT([] { StrToDateTime(u"1.5.2031 soon"); },
              ThrowsMessage<EConvertError>("'1.5.2031 soon' is not a valid date and time"));
  TFormatSettings settings = Settings(u'/', u"yyyy/mm/dd", u'.');
  settings.DecimalSeparator = u',';
  EXPECT_DOUBLE_EQ(StrToDateTime(u"2031/05/01 7.05.03,25", settings), EncodeDateTime(2031, 5, 1, 7, 5, 3, 250));
}

}  // namespace
}  // namespace veska
