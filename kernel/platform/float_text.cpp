#include "kernel/platform/float_text.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

#include "kernel/platform/exceptions.h"

namespace veska {
namespace {

constexpr int kSignificantDigits = 15;
// Exponents are only compared with the range of a double; beyond this they need no more digits.
constexpr long long kExponentLimit = 1'000'000'000'000LL;

// The value rounded to 15 significant digits, split into its digits without trailing zeros and
// its decimal exponent (value = d.ddd x 10^exponent).  Finite values only.
struct DecimalDigits {
  std::string digits;
  int exponent = 0;
};

DecimalDigits RoundToSignificantDigits(double magnitude) {
  char buffer[64];
  const auto written =
      std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific, kSignificantDigits - 1);
  const std::string_view text(buffer, std::size_t(written.ptr - buffer));  // d.dddde[+-]xx
  const std::size_t e = text.find('e');
  DecimalDigits result;
  for (char c : text.substr(0, e)) {
    if (c != '.') result.digits += c;
  }
  while (result.digits.size() > 1 && result.digits.back() == '0') result.digits.pop_back();
  std::from_chars(text.data() + e + (text[e + 1] == '+' ? 2 : 1), text.data() + text.size(), result.exponent);
  return result;
}

String Ascii(std::string_view text) { return String(text.begin(), text.end()); }

// The words for the values that have no digits; none for finite values.
std::string_view NonFiniteWord(double value) {
  if (std::isnan(value)) return "NAN";
  if (std::isinf(value)) return value < 0 ? "-INF" : "INF";
  return {};
}

}  // namespace

String FloatToStr(double value, const TFormatSettings& settings) {
  if (const auto word = NonFiniteWord(value); !word.empty()) return Ascii(word);
  if (value == 0) return u"0";
  const DecimalDigits decimal = RoundToSignificantDigits(std::fabs(value));
  const std::string& digits = decimal.digits;
  String text = value < 0 ? u"-" : u"";
  if (decimal.exponent <= -5 || decimal.exponent >= kSignificantDigits) {
    text += char16_t(digits[0]);
    if (digits.size() > 1) {
      text += settings.DecimalSeparator;
      text += Ascii(std::string_view(digits).substr(1));
    }
    text += u'E';
    text += IntToStr(decimal.exponent);
  } else if (decimal.exponent < 0) {
    text += u'0';
    text += settings.DecimalSeparator;
    text.append(std::size_t(-decimal.exponent - 1), u'0');
    text += Ascii(digits);
  } else {
    const std::size_t integer_digits = std::size_t(decimal.exponent) + 1;
    const std::string_view all(digits);
    text += Ascii(all.substr(0, integer_digits));
    if (digits.size() < integer_digits) text.append(integer_digits - digits.size(), u'0');
    if (digits.size() > integer_digits) {
      text += settings.DecimalSeparator;
      text += Ascii(all.substr(integer_digits));
    }
  }
  return text;
}

String FloatToStrUnformatted(double value) {
  if (const auto word = NonFiniteWord(value); !word.empty()) return Ascii(word);
  char buffer[64];
  const auto written =
      std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::scientific, kSignificantDigits - 1);
  const std::string_view text(buffer, std::size_t(written.ptr - buffer));  // [-]d.dddde[+-]xx[x]
  const std::size_t e = text.find('e');
  int exponent = 0;
  std::from_chars(text.data() + e + (text[e + 1] == '+' ? 2 : 1), text.data() + text.size(), exponent);
  const String exponent_digits = IntToStr(std::abs(exponent));
  String result = std::signbit(value) ? u"" : u" ";
  result += Ascii(text.substr(0, e));
  result += exponent < 0 ? u"E-" : u"E+";
  result.append(4 - exponent_digits.size(), u'0');
  result += exponent_digits;
  return result;
}

std::optional<double> ReadDecimalFloat(StringView text, FloatBlanks blanks, StringView separators) {
  const auto is_blank = [blanks](char16_t c) {
    return blanks == FloatBlanks::ControlsAndSpace ? c <= u' ' : c == u' ' || c == u'\t';
  };
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);

  bool negative = false;
  StringView body = text;
  if (!body.empty() && (body.front() == u'+' || body.front() == u'-')) {
    negative = body.front() == u'-';
    body.remove_prefix(1);
  }
  const String word = AsciiUpperCase(body);
  if (word == u"INF")
    return negative ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
  if (word == u"NAN" && body.size() == text.size()) return std::numeric_limits<double>::quiet_NaN();

  // Check the grammar and copy the number in the form from_chars reads: ASCII, dot as separator.
  // On the way note the decimal order of the value (the number of digits before the point once
  // leading zeros are gone, exponent included) to tell an overflow from an underflow.
  std::string number;
  number.reserve(body.size());
  std::size_t pos = 0;
  long long digits_before_point = 0;
  long long leading_zeros = 0;
  bool non_zero_seen = false;
  bool separator_seen = false;
  for (; pos < body.size(); ++pos) {
    const char16_t c = body[pos];
    if (c >= u'0' && c <= u'9') {
      number += char(c);
      if (!separator_seen) ++digits_before_point;
      non_zero_seen = non_zero_seen || c != u'0';
      if (!non_zero_seen) ++leading_zeros;
    } else if (!separator_seen && separators.find(c) != StringView::npos) {
      number += '.';
      separator_seen = true;
    } else {
      break;
    }
  }
  if (number.empty() || number == ".") return std::nullopt;
  long long exponent = 0;
  if (pos < body.size()) {
    if (body[pos] != u'e' && body[pos] != u'E') return std::nullopt;
    number += 'e';
    ++pos;
    const bool negative_exponent = pos < body.size() && body[pos] == u'-';
    if (pos < body.size() && (body[pos] == u'+' || body[pos] == u'-')) number += char(body[pos++]);
    const std::size_t exponent_start = pos;
    for (; pos < body.size() && body[pos] >= u'0' && body[pos] <= u'9'; ++pos) {
      number += char(body[pos]);
      if (exponent < kExponentLimit) exponent = exponent * 10 + (body[pos] - u'0');
    }
    if (pos == exponent_start || pos < body.size()) return std::nullopt;
    if (negative_exponent) exponent = -exponent;
  }

  double magnitude = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), magnitude);
  if (end != number.data() + number.size()) return std::nullopt;
  if (error == std::errc::result_out_of_range) {
    const long long order = digits_before_point - leading_zeros + exponent;
    if (non_zero_seen && order > 0) return std::nullopt;  // too large
    magnitude = 0;                                        // too small: reads as zero
  } else if (error != std::errc()) {
    return std::nullopt;
  }
  return negative ? -magnitude : magnitude;
}

bool TryStrToFloat(StringView text, double& value, const TFormatSettings& settings) {
  const auto read = ReadDecimalFloat(text, FloatBlanks::SpacesAndTabs, StringView(&settings.DecimalSeparator, 1));
  if (read) value = *read;
  return read.has_value();
}

double StrToFloat(StringView text, const TFormatSettings& settings) {
  double value = 0;
  if (!TryStrToFloat(text, value, settings)) {
    throw EConvertError(u"'" + String(text) + u"' is not a valid floating point value");
  }
  return value;
}

}  // namespace veska
