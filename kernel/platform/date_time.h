// Date and time values of the platform: the day-count double, its calendar arithmetic, the clock,
// ISO 8601 text and the "locale" text forms.
//
// A TDateTime counts days since 30 December 1899; its fraction is the time of day.  Values before
// that day keep the platform's rule: the integral part is the day and the absolute value of the
// fractional part is the time, so -1.25 is 29 December 1899, 06:00 (not 18:00).  Arithmetic that
// crosses days (IncMilliSecond, ISO 8601 offsets, date plus time) honours that rule.
//
// The calendar is the proleptic Gregorian one.  Decoding covers 1 January 0001 to 31 December 9999;
// outside that range (and for NaN or infinities) the decoded year, month and day are 0, as the
// platform gave.  Decoding rounds the value to the nearest millisecond first, so the date and the
// time of one value always agree (23:59:59.9996 decodes as 00:00:00.000 of the next day).
//
// Invalid arguments to the encoding functions raise EConvertError; the Try... variants return
// false instead and leave their result alone.
#pragma once

#include <cstdint>

#include "kernel/platform/format_settings.h"
#include "kernel/platform/string.h"

namespace veska {

using TDateTime = double;

inline constexpr int HoursPerDay = 24;
inline constexpr int MinsPerHour = 60;
inline constexpr int SecsPerMin = 60;
inline constexpr int MSecsPerSec = 1000;
inline constexpr int SecsPerDay = HoursPerDay * MinsPerHour * SecsPerMin;
inline constexpr std::int64_t MSecsPerDay = std::int64_t{SecsPerDay} * MSecsPerSec;
// Days from 30 December 1899 to the Unix epoch, 1 January 1970.
inline constexpr TDateTime UnixDateDelta = 25569.0;
// The last millisecond of 31 December 9999, the greatest date-time the calendar functions decode.
inline constexpr TDateTime MaxDateTime = 2958465.0 + double(MSecsPerDay - 1) / double(MSecsPerDay);

// ---- Calendar ------------------------------------------------------------------------------

bool IsLeapYear(int year);
// Days in the month of the year; 0 for a month outside 1..12.
int DaysInAMonth(int year, int month);

// Year 1..9999, month 1..12, day 1..DaysInAMonth.  Raises "Invalid argument to date encode".
TDateTime EncodeDate(int year, int month, int day);
bool TryEncodeDate(int year, int month, int day, TDateTime& date);
// Hour 0..23, minute and second 0..59, millisecond 0..999.  Raises "Invalid argument to time encode".
TDateTime EncodeTime(int hour, int min, int sec, int msec);
bool TryEncodeTime(int hour, int min, int sec, int msec, TDateTime& time);
// Date and time together; before 30 December 1899 the time is subtracted (the platform's rule).
TDateTime EncodeDateTime(int year, int month, int day, int hour, int min, int sec, int msec);
bool TryEncodeDateTime(int year, int month, int day, int hour, int min, int sec, int msec, TDateTime& value);

void DecodeDate(TDateTime value, int& year, int& month, int& day);
void DecodeTime(TDateTime value, int& hour, int& min, int& sec, int& msec);
void DecodeDateTime(TDateTime value, int& year, int& month, int& day, int& hour, int& min, int& sec, int& msec);

// 1 = Sunday ... 7 = Saturday, as the platform counted; 0 outside the calendar range.
int DayOfWeek(TDateTime value);
int YearOf(TDateTime value);
int MonthOf(TDateTime value);
int DayOf(TDateTime value);

// The day without its time (the integral part) and the time of day without its day (the
// absolute value of the fractional part, so never negative).
TDateTime DateOf(TDateTime value);
TDateTime TimeOf(TDateTime value);

// First moment (00:00:00.000) and last millisecond (23:59:59.999) of the day, month or year that
// holds the value, or of the month or year given by number.  A value outside the calendar range,
// or a year or month that is not valid, raises EConvertError.
TDateTime StartOfTheDay(TDateTime value);
TDateTime EndOfTheDay(TDateTime value);
TDateTime StartOfTheMonth(TDateTime value);
TDateTime EndOfTheMonth(TDateTime value);
TDateTime StartOfTheYear(TDateTime value);
TDateTime EndOfTheYear(TDateTime value);
TDateTime StartOfAMonth(int year, int month);
TDateTime EndOfAMonth(int year, int month);
TDateTime StartOfAYear(int year);
TDateTime EndOfAYear(int year);

// The value moved by a number of milliseconds along the time line (negative values moving
// backwards), the result rounded to a whole millisecond.  NaN and values beyond about a billion
// days are returned unchanged.
TDateTime IncMilliSecond(TDateTime value, std::int64_t milliseconds);

// ---- Clock ---------------------------------------------------------------------------------

// The current local date and time (the machine's time zone), its day and its time of day.
TDateTime Now();
TDateTime Date();
TDateTime Time();
// The current date and time in UTC.
TDateTime NowUTC();

// Seconds since 1970-01-01 00:00 UTC, the value taken as UTC (rounded to the nearest second; 0 for
// NaN and infinities).
std::int64_t DateTimeToUnix(TDateTime value);
TDateTime UnixToDateTime(std::int64_t seconds);

// ---- ISO 8601 ------------------------------------------------------------------------------

// "YYYY-MM-DDThh:nn:ss.zzzZ".  When input_is_utc is false the value is a local time of an unknown
// zone and the text carries no zone designator.  Nothing reads the machine's time zone.  A value
// outside the calendar range writes its date as 0000-00-00, like every decoding.
String DateToISO8601(TDateTime value, bool input_is_utc = true);

// Reads a date ("2031-05-01", "20310501") optionally followed by "T" (or "t" or a space) and a time
// ("hh:mm", "hh:mm:ss", "hhmm", "hhmmss", seconds with a fraction of any length after "." or ",",
// rounded to the millisecond) and a zone ("Z", "+01:00", "+0100", "-05").  Blanks around the text
// are allowed.  With return_utc true the result is converted to UTC with the zone's offset; with
// return_utc false the offset is ignored and the result is the wall-clock time as written (the local
// time of the writer).  A time without a zone is taken as written in both cases.  Hour 24, second
// 60, other out-of-range fields and results outside the calendar range fail.
bool TryISO8601ToDate(StringView text, TDateTime& value, bool return_utc = true);
// As above; raises EConvertError "'<text>' is not a valid ISO 8601 date and time".
TDateTime ISO8601ToDate(StringView text, bool return_utc = true);

// ---- Locale forms --------------------------------------------------------------------------
// Every function below takes its separators, patterns and names from a TFormatSettings record,
// by default the global FormatSettings; nothing reads the machine's locale.

// Pattern letters (case does not matter):
//   c        short date, then a blank and the long time unless the time is exactly 00:00:00.000
//   d dd     day without / with a leading zero;  ddd dddd  short / long day name;
//   ddddd    (or more d) the short date format
//   m mm     month (minute right after an h or hh);  mmm mmmm  short / long month name
//   yy yyyy  two-digit / full year (one or two y give two digits, three or more the full year)
//   h hh     hour (12-hour clock when an am/pm, a/p or ampm follows somewhere in the pattern)
//   n nn     minute;  s ss  second;  z zzz  millisecond without / with leading zeros
//   t tt     short / long time format
//   am/pm a/p  the word as written in the pattern (its case kept);  ampm  TimeAMString/TimePMString
//   /  :     DateSeparator and TimeSeparator
//   'x' "x"  literal text; every other character stands for itself
String FormatDateTime(StringView pattern, TDateTime value, const TFormatSettings& settings = FormatSettings);
// ShortDateFormat; LongTimeFormat; and "c": the short date followed by the long time, where the
// time is left out when it is exactly midnight (the platform did so, and DateTimeToStr of a pure
// date thus gives the same text as DateToStr).
String DateToStr(TDateTime value, const TFormatSettings& settings = FormatSettings);
String TimeToStr(TDateTime value, const TFormatSettings& settings = FormatSettings);
String DateTimeToStr(TDateTime value, const TFormatSettings& settings = FormatSettings);

// Readers of the locale forms.  A date is two or three numbers divided by DateSeparator, in the
// order of day, month and year that ShortDateFormat uses, with an optional DateSeparator after the
// last; two numbers take the current year; a year written with one or two digits is placed in the
// hundred years that start TwoDigitYearCenturyWindow years before the current year.  A time is
// hour and minute with an optional second, divided by TimeSeparator, the second with an optional
// fraction after DecimalSeparator (rounded to the millisecond).  A date-time is a date, optionally
// followed by blanks and a time, or a time alone (on day 0).  Blanks may stand around every number.
// The raising forms throw EConvertError "'<text>' is not a valid date" (time, date and time).
bool TryStrToDate(StringView text, TDateTime& value, const TFormatSettings& settings = FormatSettings);
bool TryStrToTime(StringView text, TDateTime& value, const TFormatSettings& settings = FormatSettings);
bool TryStrToDateTime(StringView text, TDateTime& value, const TFormatSettings& settings = FormatSettings);
TDateTime StrToDate(StringView text, const TFormatSettings& settings = FormatSettings);
TDateTime StrToTime(StringView text, const TFormatSettings& settings = FormatSettings);
TDateTime StrToDateTime(StringView text, const TFormatSettings& settings = FormatSettings);

namespace date_time_detail {
// Milliseconds of the decimal fraction of a second given by its digits (the part after the
// separator), rounded half up: "9995" gives 1000.  The digits must all be 0..9.
int FractionDigitsToMilliseconds(StringView digits);
// The milliseconds since midnight of a valid clock time; false for an invalid one.  The
// milliseconds may be 1000 after rounding, which carries into the next second.
bool TryTimeOfDayMilliseconds(int hour, int min, int sec, int msec, std::int64_t& milliseconds);
}  // namespace date_time_detail

}  // namespace veska
