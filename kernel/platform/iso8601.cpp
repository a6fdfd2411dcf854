// ISO 8601 text of date-times.
#include <cstddef>

#include "kernel/platform/date_time.h"
#include "kernel/platform/exceptions.h"

namespace veska {
namespace {

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }
bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

StringView TrimBlanks(StringView text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

// A cursor over the text that reads the fixed-width fields of ISO 8601.
class IsoReader {
 public:
  explicit IsoReader(StringView text) : text_(text) {}

  bool AtEnd() const { return pos_ >= text_.size(); }

  bool Accept(char16_t c) {
    if (AtEnd() || text_[pos_] != c) return false;
    ++pos_;
    return true;
  }

  bool AcceptAnyOf(StringView choices) {
    if (AtEnd() || choices.find(text_[pos_]) == StringView::npos) return false;
    ++pos_;
    return true;
  }

  std::size_t DigitsAhead() const {
    std::size_t end = pos_;
    while (end < text_.size() && IsDigit(text_[end])) ++end;
    return end - pos_;
  }

  // Exactly `count` digits as a number.
  bool Number(std::size_t count, int& value) {
    if (DigitsAhead() < count) return false;
    value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value * 10 + (text_[pos_++] - u'0');
    return true;
  }

  StringView TakeDigits() {
    const StringView digits = text_.substr(pos_, DigitsAhead());
    pos_ += digits.size();
    return digits;
  }

 private:
  StringView text_;
  std::size_t pos_ = 0;
};

bool ReadDate(IsoReader& reader, TDateTime& date) {
  int year = 0, month = 0, day = 0;
  const bool basic = reader.DigitsAhead() == 8;
  const bool read = basic ? reader.Number(4, year) && reader.Number(2, month) && reader.Number(2, day)
                          : reader.Number(4, year) && reader.Accept(u'-') && reader.Number(2, month) &&
                                reader.Accept(u'-') && reader.Number(2, day);
  return read && TryEncodeDate(year, month, day, date);
}

// hh:mm[:ss[.f...]] or hhmm[ss[.f...]]; the result in milliseconds (a fraction that rounds up
// to a full second may carry into the next day).
bool ReadTime(IsoReader& reader, std::int64_t& milliseconds) {
  int hour = 0, min = 0, sec = 0, msec = 0;
  if (!reader.Number(2, hour)) return false;
  const bool extended = reader.Accept(u':');
  if (!reader.Number(2, min)) return false;
  const bool has_seconds = extended ? reader.Accept(u':') : reader.DigitsAhead() >= 2;
  if (has_seconds) {
    if (!reader.Number(2, sec)) return false;
    if (reader.AcceptAnyOf(u".,")) {
      const StringView fraction = reader.TakeDigits();
      if (fraction.empty()) return false;
      msec = date_time_detail::FractionDigitsToMilliseconds(fraction);
    }
  }
  return date_time_detail::TryTimeOfDayMilliseconds(hour, min, sec, msec, milliseconds);
}

// Z, or +hh, +hh:mm, +hhmm (and the same with -); the offset east of UTC in milliseconds.
bool ReadZone(IsoReader& reader, std::int64_t& offset) {
  offset = 0;
  if (reader.AcceptAnyOf(u"Zz")) return true;
  const bool west = reader.Accept(u'-');
  if (!west && !reader.Accept(u'+')) return false;
  int hours = 0, minutes = 0;
  if (!reader.Number(2, hours)) return false;
  const bool extended = reader.Accept(u':');
  if ((extended || !reader.AtEnd()) && !reader.Number(2, minutes)) return false;
  if (hours >= HoursPerDay || minutes >= MinsPerHour) return false;
  offset = (std::int64_t{hours} * MinsPerHour + minutes) * SecsPerMin * MSecsPerSec;
  if (west) offset = -offset;
  return true;
}

}  // namespace

String DateToISO8601(TDateTime value, bool input_is_utc) {
  // The pattern's ':' is the time separator of the settings: the default record gives the colon.
  static const TFormatSettings kIsoSettings;
  String text = FormatDateTime(u"yyyy-mm-dd'T'hh:nn:ss.zzz", value, kIsoSettings);
  if (input_is_utc) text += u'Z';
  return text;
}

bool TryISO8601ToDate(StringView text, TDateTime& value, bool return_utc) {
  IsoReader reader(TrimBlanks(text));
  TDateTime date = 0;
  if (!ReadDate(reader, date)) return false;
  std::int64_t time_of_day = 0;
  std::int64_t offset = 0;
  if (!reader.AtEnd()) {
    if (!reader.AcceptAnyOf(u"Tt ") || !ReadTime(reader, time_of_day)) return false;
    if (!reader.AtEnd() && !ReadZone(reader, offset)) return false;
    if (!reader.AtEnd()) return false;
  }
  const TDateTime result = IncMilliSecond(date, time_of_day - (return_utc ? offset : 0));
  if (YearOf(result) == 0) return false;
  value = result;
  return true;
}

TDateTime ISO8601ToDate(StringView text, bool return_utc) {
  TDateTime value = 0;
  if (!TryISO8601ToDate(text, value, return_utc)) {
    throw EConvertError(u"'" + String(text) + u"' is not a valid ISO 8601 date and time");
  }
  return value;
}

}  // namespace veska
