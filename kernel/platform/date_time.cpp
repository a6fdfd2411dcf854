// Calendar arithmetic and the clock.
//
// Internally a date-time is turned into a signed count of milliseconds along the time line
// (0 = 30 December 1899, 00:00), which makes rounding, carrying into the next day and crossing the
// platform's negative-value rule a matter of integer arithmetic.
#include "kernel/platform/date_time.h"

#include <chrono>
#include <cmath>
#include <ctime>
#include <optional>

#include "kernel/platform/exceptions.h"

namespace veska {
namespace {

constexpr int kMinYear = 1;
constexpr int kMaxYear = 9999;
// Days from 1 January 0001 and to 31 December 9999, counted from 30 December 1899.
constexpr std::int64_t kFirstDay = -693593;
constexpr std::int64_t kLastDay = 2958465;
// Beyond this many days the millisecond count would come near the 64-bit limit.
constexpr double kLinearLimitDays = 1e9;

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {
  std::int64_t q = a / b;
  if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
  return q;
}

std::int64_t FloorMod(std::int64_t a, std::int64_t b) { return a - FloorDiv(a, b) * b; }

// Days since 1970-01-01 of a proleptic Gregorian date (H. Hinnant's days_from_civil).
constexpr std::int64_t DaysFromCivil(std::int64_t y, int m, int d) {
  y -= m <= 2;
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const std::int64_t yoe = y - era * 400;
  const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

struct CivilDate {
  int year, month, day;
};

constexpr CivilDate CivilFromDays(std::int64_t z) {
  z += 719468;
  const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const std::int64_t doe = z - era * 146097;
  const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const std::int64_t mp = (5 * doy + 2) / 153;
  const int d = int(doy - (153 * mp + 2) / 5 + 1);
  const int m = int(mp < 10 ? mp + 3 : mp - 9);
  return {int(yoe + era * 400 + (m <= 2)), m, d};
}

constexpr std::int64_t kEpochShift = -DaysFromCivil(1899, 12, 30);  // 25569
static_assert(kEpochShift == std::int64_t(UnixDateDelta));
static_assert(DaysFromCivil(1, 1, 1) + kEpochShift == kFirstDay);
static_assert(DaysFromCivil(9999, 12, 31) + kEpochShift == kLastDay);

// The value as milliseconds along the time line, rounded to the nearest millisecond; none for
// NaN, infinities and values too far out to count.
std::optional<std::int64_t> ToLinearMilliseconds(TDateTime value) {
  if (!(std::fabs(value) < kLinearLimitDays)) return std::nullopt;
  const double day = std::trunc(value);
  const auto time = std::llround(std::fabs(value - day) * double(MSecsPerDay));
  return std::int64_t(day) * MSecsPerDay + time;
}

TDateTime FromLinearMilliseconds(std::int64_t milliseconds) {
  const std::int64_t day = FloorDiv(milliseconds, MSecsPerDay);
  const double time = double(FloorMod(milliseconds, MSecsPerDay)) / double(MSecsPerDay);
  return day >= 0 ? double(day) + time : double(day) - time;
}

struct TimeStamp {
  std::int64_t day;  // since 30 December 1899
  int msOfDay;
};

std::optional<TimeStamp> ToTimeStamp(TDateTime value) {
  const auto linear = ToLinearMilliseconds(value);
  if (!linear) return std::nullopt;
  const std::int64_t day = FloorDiv(*linear, MSecsPerDay);
  return TimeStamp{day, int(FloorMod(*linear, MSecsPerDay))};
}

// The time stamp of a value that lies in the calendar range.
std::optional<TimeStamp> ToCalendarTimeStamp(TDateTime value) {
  auto stamp = ToTimeStamp(value);
  if (stamp && (stamp->day < kFirstDay || stamp->day > kLastDay)) stamp.reset();
  return stamp;
}

[[noreturn]] void RaiseDateEncodeError() { throw EConvertError(u"Invalid argument to date encode"); }
[[noreturn]] void RaiseTimeEncodeError() { throw EConvertError(u"Invalid argument to time encode"); }

TDateTime CombineDateAndTime(TDateTime date, TDateTime time) { return date >= 0 ? date + time : date - time; }

TDateTime LastMillisecondOf(TDateTime day) { return CombineDateAndTime(day, EncodeTime(23, 59, 59, 999)); }

using std::chrono::system_clock;

std::int64_t MillisecondsSinceUnixEpoch(system_clock::time_point point) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(point.time_since_epoch()).count();
}

}  // namespace

bool IsLeapYear(int year) { return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0); }

int DaysInAMonth(int year, int month) {
  static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  return kDays[month - 1] + ((month == 2 && IsLeapYear(year)) ? 1 : 0);
}

bool TryEncodeDate(int year, int month, int day, TDateTime& date) {
  if (year < kMinYear || year > kMaxYear || day < 1 || day > DaysInAMonth(year, month)) return false;
  date = double(DaysFromCivil(year, month, day) + kEpochShift);
  return true;
}

TDateTime EncodeDate(int year, int month, int day) {
  TDateTime date = 0;
  if (!TryEncodeDate(year, month, day, date)) RaiseDateEncodeError();
  return date;
}

bool TryEncodeTime(int hour, int min, int sec, int msec, TDateTime& time) {
  if (hour < 0 || hour >= HoursPerDay || min < 0 || min >= MinsPerHour || sec < 0 || sec >= SecsPerMin || msec < 0 ||
      msec >= MSecsPerSec) {
    return false;
  }
  const std::int64_t total = ((std::int64_t{hour} * MinsPerHour + min) * SecsPerMin + sec) * MSecsPerSec + msec;
  time = double(total) / double(MSecsPerDay);
  return true;
}

TDateTime EncodeTime(int hour, int min, int sec, int msec) {
  TDateTime time = 0;
  if (!TryEncodeTime(hour, min, sec, msec, time)) RaiseTimeEncodeError();
  return time;
}

bool TryEncodeDateTime(int year, int month, int day, int hour, int min, int sec, int msec, TDateTime& value) {
  TDateTime date = 0;
  TDateTime time = 0;
  if (!TryEncodeDate(year, month, day, date) || !TryEncodeTime(hour, min, sec, msec, time)) return false;
  value = CombineDateAndTime(date, time);
  return true;
}

TDateTime EncodeDateTime(int year, int month, int day, int hour, int min, int sec, int msec) {
  const TDateTime date = EncodeDate(year, month, day);
  return CombineDateAndTime(date, EncodeTime(hour, min, sec, msec));
}

void DecodeDate(TDateTime value, int& year, int& month, int& day) {
  const auto stamp = ToCalendarTimeStamp(value);
  if (!stamp) {
    year = month = day = 0;
    return;
  }
  const CivilDate civil = CivilFromDays(stamp->day - kEpochShift);
  year = civil.year;
  month = civil.month;
  day = civil.day;
}

void DecodeTime(TDateTime value, int& hour, int& min, int& sec, int& msec) {
  const auto stamp = ToTimeStamp(value);
  int ms = stamp ? stamp->msOfDay : 0;
  msec = ms % MSecsPerSec;
  ms /= MSecsPerSec;
  sec = ms % SecsPerMin;
  ms /= SecsPerMin;
  min = ms % MinsPerHour;
  hour = ms / MinsPerHour;
}

void DecodeDateTime(TDateTime value, int& year, int& month, int& day, int& hour, int& min, int& sec, int& msec) {
  DecodeDate(value, year, month, day);
  DecodeTime(value, hour, min, sec, msec);
}

int DayOfWeek(TDateTime value) {
  const auto stamp = ToCalendarTimeStamp(value);
  // Day 1, 31 December 1899, was a Sunday.
  return stamp ? int(FloorMod(stamp->day - 1, 7)) + 1 : 0;
}

int YearOf(TDateTime value) {
  int year = 0, month = 0, day = 0;
  DecodeDate(value, year, month, day);
  return year;
}

int MonthOf(TDateTime value) {
  int year = 0, month = 0, day = 0;
  DecodeDate(value, year, month, day);
  return month;
}

int DayOf(TDateTime value) {
  int year = 0, month = 0, day = 0;
  DecodeDate(value, year, month, day);
  return day;
}

TDateTime DateOf(TDateTime value) { return std::trunc(value); }
TDateTime TimeOf(TDateTime value) { return std::fabs(value - std::trunc(value)); }

TDateTime StartOfTheDay(TDateTime value) { return DateOf(value); }
TDateTime EndOfTheDay(TDateTime value) { return LastMillisecondOf(DateOf(value)); }

TDateTime StartOfTheMonth(TDateTime value) {
  int year = 0, month = 0, day = 0;
  DecodeDate(value, year, month, day);
  return StartOfAMonth(year, month);
}

TDateTime EndOfTheMonth(TDateTime value) {
  int year = 0, month = 0, day = 0;
  DecodeDate(value, year, month, day);
  return EndOfAMonth(year, month);
}

TDateTime StartOfTheYear(TDateTime value) { return StartOfAYear(YearOf(value)); }
TDateTime EndOfTheYear(TDateTime value) { return EndOfAYear(YearOf(value)); }

TDateTime StartOfAMonth(int year, int month) { return EncodeDate(year, month, 1); }
TDateTime EndOfAMonth(int year, int month) {
  return LastMillisecondOf(EncodeDate(year, month, DaysInAMonth(year, month)));
}
TDateTime StartOfAYear(int year) { return EncodeDate(year, 1, 1); }
TDateTime EndOfAYear(int year) { return LastMillisecondOf(EncodeDate(year, 12, 31)); }

TDateTime IncMilliSecond(TDateTime value, std::int64_t milliseconds) {
  const auto linear = ToLinearMilliseconds(value);
  if (!linear || std::fabs(double(milliseconds)) >= kLinearLimitDays * double(MSecsPerDay)) return value;
  return FromLinearMilliseconds(*linear + milliseconds);
}

TDateTime Now() {
  const auto now = system_clock::now();
  const std::int64_t epoch_ms = MillisecondsSinceUnixEpoch(now);
  const std::time_t seconds = std::time_t(FloorDiv(epoch_ms, MSecsPerSec));
  const int msec = int(FloorMod(epoch_ms, MSecsPerSec));
  std::tm local{};
  localtime_r(&seconds, &local);
  // A leap second, which some systems report as second 60, is shown as the second before it.
  const int sec = local.tm_sec < SecsPerMin ? local.tm_sec : SecsPerMin - 1;
  return EncodeDateTime(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, sec, msec);
}

TDateTime Date() { return DateOf(Now()); }
TDateTime Time() { return TimeOf(Now()); }

TDateTime NowUTC() {
  return FromLinearMilliseconds(kEpochShift * MSecsPerDay + MillisecondsSinceUnixEpoch(system_clock::now()));
}

std::int64_t DateTimeToUnix(TDateTime value) {
  const auto linear = ToLinearMilliseconds(value);
  if (!linear) return 0;
  const std::int64_t since_epoch = *linear - kEpochShift * MSecsPerDay;
  return FloorDiv(since_epoch + MSecsPerSec / 2, MSecsPerSec);
}

TDateTime UnixToDateTime(std::int64_t seconds) {
  if (std::fabs(double(seconds)) >= kLinearLimitDays * SecsPerDay) return UnixDateDelta + double(seconds) / SecsPerDay;
  return IncMilliSecond(UnixDateDelta, seconds * MSecsPerSec);
}

namespace date_time_detail {

int FractionDigitsToMilliseconds(StringView digits) {
  int milliseconds = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    milliseconds = milliseconds * 10 + (i < digits.size() ? digits[i] - u'0' : 0);
  }
  if (digits.size() > 3 && digits[3] >= u'5') ++milliseconds;
  return milliseconds;
}

bool TryTimeOfDayMilliseconds(int hour, int min, int sec, int msec, std::int64_t& milliseconds) {
  TDateTime unused = 0;
  if (!TryEncodeTime(hour, min, sec, 0, unused)) return false;
  milliseconds = ((std::int64_t{hour} * MinsPerHour + min) * SecsPerMin + sec) * MSecsPerSec + msec;
  return true;
}

}  // namespace date_time_detail

}  // namespace veska
