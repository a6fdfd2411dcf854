// The "locale" text forms of date-times: formatting by pattern and the readers of the short date
// and long time forms.  Every separator, pattern and name comes from a TFormatSettings record.
#include <cstddef>
#include <utility>

#include "kernel/platform/date_time.h"
#include "kernel/platform/exceptions.h"

namespace veska {
namespace {

// Patterns may name other patterns (c, ddddd, t, tt); this bounds the nesting so that settings
// whose patterns name themselves cannot recurse without end.
constexpr int kMaxPatternNesting = 2;

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }
bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
bool IsAsciiLetter(char16_t c) { return AsciiUpperChar(c) >= u'A' && AsciiUpperChar(c) <= u'Z'; }

bool StartsWithIgnoringCase(StringView text, std::size_t pos, StringView word) {
  if (text.size() - pos < word.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (AsciiUpperChar(text[pos + i]) != AsciiUpperChar(word[i])) return false;
  }
  return true;
}

// The am/pm markers of the pattern language, longest first so that "ampm" is not taken for "am".
constexpr StringView kAmPmMarkers[] = {u"am/pm", u"ampm", u"a/p"};

StringView AmPmMarkerAt(StringView pattern, std::size_t pos) {
  for (StringView marker : kAmPmMarkers) {
    if (StartsWithIgnoringCase(pattern, pos, marker)) return pattern.substr(pos, marker.size());
  }
  return {};
}

// Quoted text of a pattern: the text between the quote at `pos` and its closing quote (or the end
// of the pattern when the quote is never closed), and where the pattern goes on after it.
struct QuotedText {
  StringView text;
  std::size_t end;
};

QuotedText QuotedTextAt(StringView pattern, std::size_t pos) {
  const std::size_t close = pattern.find(pattern[pos], pos + 1);
  if (close == StringView::npos) return {pattern.substr(pos + 1), pattern.size()};
  return {pattern.substr(pos + 1, close - pos - 1), close + 1};
}

bool IsQuote(char16_t c) { return c == u'\'' || c == u'"'; }

// An hour uses the 12-hour clock when an am/pm marker follows it in the pattern.
bool AmPmFollows(StringView pattern, std::size_t pos) {
  while (pos < pattern.size()) {
    if (IsQuote(pattern[pos])) {
      pos = QuotedTextAt(pattern, pos).end;
    } else if (!AmPmMarkerAt(pattern, pos).empty()) {
      return true;
    } else {
      ++pos;
    }
  }
  return false;
}

class DateTimeFormatter {
 public:
  DateTimeFormatter(TDateTime value, const TFormatSettings& settings) : settings_(settings) {
    DecodeDateTime(value, year_, month_, day_, hour_, min_, sec_, msec_);
    day_of_week_ = DayOfWeek(value);
  }

  void Append(StringView pattern, int nesting) {
    if (nesting > kMaxPatternNesting) return;
    char16_t last_letter = 0;
    std::size_t pos = 0;
    while (pos < pattern.size()) {
      const char16_t c = pattern[pos];
      if (IsQuote(c)) {
        const QuotedText quoted = QuotedTextAt(pattern, pos);
        result_.append(quoted.text);
        pos = quoted.end;
        continue;
      }
      if (const StringView marker = AmPmMarkerAt(pattern, pos); !marker.empty()) {
        AppendAmPm(marker);
        pos += marker.size();
        continue;
      }
      if (!IsAsciiLetter(c)) {
        result_ += c == u'/' ? settings_.DateSeparator : c == u':' ? settings_.TimeSeparator : c;
        ++pos;
        continue;
      }
      char16_t letter = AsciiUpperChar(c);
      std::size_t count = 1;
      while (pos + count < pattern.size() && AsciiUpperChar(pattern[pos + count]) == letter) ++count;
      if (letter == u'M' && last_letter == u'H') letter = u'N';  // "h:mm" means minutes
      AppendField(letter, count, pattern, pos, nesting);
      last_letter = letter;
      pos += count;
    }
  }

  String Result() && { return std::move(result_); }

 private:
  void AppendNumber(int value, std::size_t width) {
    const String digits = IntToStr(value);
    if (digits.size() < width) result_.append(width - digits.size(), u'0');
    result_ += digits;
  }

  template <std::size_t N>
  void AppendName(const std::array<String, N>& names, int one_based_index) {
    if (one_based_index >= 1 && std::size_t(one_based_index) <= N) result_ += names[std::size_t(one_based_index - 1)];
  }

  bool HasTime() const { return hour_ != 0 || min_ != 0 || sec_ != 0 || msec_ != 0; }

  void AppendAmPm(StringView marker) {
    const bool pm = hour_ >= 12;
    if (marker.size() == 4) {  // ampm: the words of the settings
      result_ += pm ? settings_.TimePMString : settings_.TimeAMString;
      return;
    }
    const std::size_t slash = marker.find(u'/');
    result_.append(pm ? marker.substr(slash + 1) : marker.substr(0, slash));
  }

  void AppendField(char16_t letter, std::size_t count, StringView pattern, std::size_t pos, int nesting) {
    switch (letter) {
      case u'C':
        Append(settings_.ShortDateFormat, nesting + 1);
        if (HasTime()) {
          result_ += u' ';
          Append(settings_.LongTimeFormat, nesting + 1);
        }
        break;
      case u'D':
        if (count <= 2)
          AppendNumber(day_, count);
        else if (count == 3)
          AppendName(settings_.ShortDayNames, day_of_week_);
        else if (count == 4)
          AppendName(settings_.LongDayNames, day_of_week_);
        else
          Append(settings_.ShortDateFormat, nesting + 1);
        break;
      case u'M':
        if (count <= 2)
          AppendNumber(month_, count);
        else if (count == 3)
          AppendName(settings_.ShortMonthNames, month_);
        else
          AppendName(settings_.LongMonthNames, month_);
        break;
      case u'Y':
        if (count <= 2)
          AppendNumber(year_ % 100, 2);
        else
          AppendNumber(year_, 4);
        break;
      case u'H': {
        int hour = hour_;
        if (AmPmFollows(pattern, pos + count)) hour = hour % 12 == 0 ? 12 : hour % 12;
        AppendNumber(hour, count >= 2 ? 2 : 1);
        break;
      }
      case u'N':
        AppendNumber(min_, count >= 2 ? 2 : 1);
        break;
      case u'S':
        AppendNumber(sec_, count >= 2 ? 2 : 1);
        break;
      case u'Z':
        AppendNumber(msec_, count >= 3 ? 3 : 1);
        break;
      case u'T':
        Append(count == 1 ? settings_.ShortTimeFormat : settings_.LongTimeFormat, nesting + 1);
        break;
      default:
        result_.append(pattern.substr(pos, count));
        break;
    }
  }

  const TFormatSettings& settings_;
  String result_;
  int year_ = 0, month_ = 0, day_ = 0, hour_ = 0, min_ = 0, sec_ = 0, msec_ = 0, day_of_week_ = 0;
};

enum class DateOrder { DMY, MDY, YMD };

DateOrder DateOrderOf(StringView short_date_format) {
  std::size_t pos = 0;
  while (pos < short_date_format.size()) {
    if (IsQuote(short_date_format[pos])) {
      pos = QuotedTextAt(short_date_format, pos).end;
      continue;
    }
    switch (AsciiUpperChar(short_date_format[pos])) {
      case u'D':
        return DateOrder::DMY;
      case u'M':
        return DateOrder::MDY;
      case u'Y':
        return DateOrder::YMD;
      default:
        ++pos;
        break;
    }
  }
  return DateOrder::DMY;
}

// A cursor over date and time text in the locale forms: numbers of any width, separators, blanks.
class LocaleReader {
 public:
  explicit LocaleReader(StringView text) : text_(text) {}

  bool AtEnd() {
    SkipBlanks();
    return pos_ >= text_.size();
  }

  bool NextIsDigit() {
    SkipBlanks();
    return pos_ < text_.size() && IsDigit(text_[pos_]);
  }

  bool Accept(char16_t c) {
    SkipBlanks();
    if (pos_ >= text_.size() || text_[pos_] != c) return false;
    ++pos_;
    return true;
  }

  // A whole number of at most nine digits; `digit_count` tells how many were written.
  bool Number(int& value, std::size_t& digit_count) {
    SkipBlanks();
    const StringView digits = TakeDigits();
    if (digits.empty() || digits.size() > 9) return false;
    value = 0;
    for (char16_t digit : digits) value = value * 10 + (digit - u'0');
    digit_count = digits.size();
    return true;
  }

  bool Number(int& value) {
    std::size_t unused = 0;
    return Number(value, unused);
  }

  // The digits that follow at once (no blanks skipped).
  StringView TakeDigits() {
    std::size_t end = pos_;
    while (end < text_.size() && IsDigit(text_[end])) ++end;
    const StringView digits = text_.substr(pos_, end - pos_);
    pos_ = end;
    return digits;
  }

 private:
  void SkipBlanks() {
    while (pos_ < text_.size() && IsBlank(text_[pos_])) ++pos_;
  }

  StringView text_;
  std::size_t pos_ = 0;
};

int ExpandTwoDigitYear(int year, const TFormatSettings& settings) {
  const int century_start = YearOf(Now()) - settings.TwoDigitYearCenturyWindow;
  year += century_start / 100 * 100;
  if (settings.TwoDigitYearCenturyWindow > 0 && year < century_start) year += 100;
  return year;
}

bool ReadDate(LocaleReader& reader, const TFormatSettings& settings, TDateTime& date) {
  int first = 0, second = 0, third = 0;
  std::size_t year_digits = 0;
  if (!reader.Number(first, year_digits) || !reader.Accept(settings.DateSeparator) || !reader.Number(second)) {
    return false;
  }
  const DateOrder order = DateOrderOf(settings.ShortDateFormat);
  int year = 0, month = 0, day = 0;
  const bool three_numbers = reader.Accept(settings.DateSeparator) && reader.NextIsDigit();
  if (three_numbers) {
    std::size_t third_digits = 0;
    if (!reader.Number(third, third_digits)) return false;
    reader.Accept(settings.DateSeparator);
    if (order == DateOrder::YMD) {
      year = first;
      month = second;
      day = third;
    } else {
      day = order == DateOrder::DMY ? first : second;
      month = order == DateOrder::DMY ? second : first;
      year = third;
      year_digits = third_digits;
    }
    if (year_digits <= 2) year = ExpandTwoDigitYear(year, settings);
  } else {
    // Two numbers are day and month (month first unless the day leads the short date format).
    year = YearOf(Now());
    day = order == DateOrder::DMY ? first : second;
    month = order == DateOrder::DMY ? second : first;
  }
  return TryEncodeDate(year, month, day, date);
}

bool ReadTime(LocaleReader& reader, const TFormatSettings& settings, std::int64_t& milliseconds) {
  int hour = 0, min = 0, sec = 0, msec = 0;
  if (!reader.Number(hour) || !reader.Accept(settings.TimeSeparator) || !reader.Number(min)) return false;
  if (reader.Accept(settings.TimeSeparator)) {
    if (!reader.Number(sec)) return false;
    if (reader.Accept(settings.DecimalSeparator)) {
      const StringView fraction = reader.TakeDigits();
      if (fraction.empty()) return false;
      msec = date_time_detail::FractionDigitsToMilliseconds(fraction);
    }
  }
  return date_time_detail::TryTimeOfDayMilliseconds(hour, min, sec, msec, milliseconds);
}

[[noreturn]] void RaiseNotValid(StringView text, StringView what) {
  throw EConvertError(u"'" + String(text) + u"' is not a valid " + String(what));
}

}  // namespace

String FormatDateTime(StringView pattern, TDateTime value, const TFormatSettings& settings) {
  DateTimeFormatter formatter(value, settings);
  formatter.Append(pattern, 0);
  return std::move(formatter).Result();
}

String DateToStr(TDateTime value, const TFormatSettings& settings) {
  return FormatDateTime(settings.ShortDateFormat, value, settings);
}

String TimeToStr(TDateTime value, const TFormatSettings& settings) {
  return FormatDateTime(settings.LongTimeFormat, value, settings);
}

String DateTimeToStr(TDateTime value, const TFormatSettings& settings) { return FormatDateTime(u"c", value, settings); }

bool TryStrToDate(StringView text, TDateTime& value, const TFormatSettings& settings) {
  LocaleReader reader(text);
  TDateTime date = 0;
  if (!ReadDate(reader, settings, date) || !reader.AtEnd()) return false;
  value = date;
  return true;
}

bool TryStrToTime(StringView text, TDateTime& value, const TFormatSettings& settings) {
  LocaleReader reader(text);
  std::int64_t milliseconds = 0;
  if (!ReadTime(reader, settings, milliseconds) || !reader.AtEnd()) return false;
  value = IncMilliSecond(0, milliseconds);
  return true;
}

bool TryStrToDateTime(StringView text, TDateTime& value, const TFormatSettings& settings) {
  LocaleReader reader(text);
  TDateTime date = 0;
  std::int64_t milliseconds = 0;
  if (ReadDate(reader, settings, date) &&
      (reader.AtEnd() || (ReadTime(reader, settings, milliseconds) && reader.AtEnd()))) {
    value = IncMilliSecond(date, milliseconds);
    return true;
  }
  return TryStrToTime(text, value, settings);
}

TDateTime StrToDate(StringView text, const TFormatSettings& settings) {
  TDateTime value = 0;
  if (!TryStrToDate(text, value, settings)) RaiseNotValid(text, u"date");
  return value;
}

TDateTime StrToTime(StringView text, const TFormatSettings& settings) {
  TDateTime value = 0;
  if (!TryStrToTime(text, value, settings)) RaiseNotValid(text, u"time");
  return value;
}

TDateTime StrToDateTime(StringView text, const TFormatSettings& settings) {
  TDateTime value = 0;
  if (!TryStrToDateTime(text, value, settings)) RaiseNotValid(text, u"date and time");
  return value;
}

}  // namespace veska
