#include "kernel/text/string_numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>
#include <utility>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/float_text.h"
#include "kernel/platform/format_settings.h"
#include "kernel/text/string_globals.h"

namespace veska {
namespace {

// The most integer digits the fixed form writes, as the platform's general float format did.
constexpr int kGeneralPrecision = 15;
// Below this magnitude the general form switches to scientific notation.
constexpr int kSmallestFixedExponent = -5;

constexpr bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

StringView TrimBlanks(StringView S) {
  while (!S.empty() && S.front() <= u' ') S.remove_prefix(1);
  while (!S.empty() && S.back() <= u' ') S.remove_suffix(1);
  return S;
}

String QuotedMessage(StringView S, StringView what) {
  return u"'" + String(S) + u"' is not a valid " + String(what) + u" value";
}

// The float S denotes, or none when S is not a valid number or too large for a double.
std::optional<double> ParseFloat(StringView S) {
  const char16_t separators[] = {FormatSettings.DecimalSeparator, u'.', u','};
  return ReadDecimalFloat(S, FloatBlanks::ControlsAndSpace, StringView(separators, DotDecimalSeparator ? 3 : 1));
}

constexpr std::array<std::pair<int32_t, StringView>, 13> kRomanDigits{{
    {1000, u"M"},
    {900, u"CM"},
    {500, u"D"},
    {400, u"CD"},
    {100, u"C"},
    {90, u"XC"},
    {50, u"L"},
    {40, u"XL"},
    {10, u"X"},
    {9, u"IX"},
    {5, u"V"},
    {4, u"IV"},
    {1, u"I"},
}};
// "MMMDCCCLXXXVIII" (3888) is the longest standard numeral.
constexpr size_t kLongestRomanNumeral = 15;

}  // namespace

String ExtendedToStr(double X) {
  if (std::isnan(X)) return u"NAN";
  if (std::isinf(X)) return X < 0 ? u"-INF" : u"INF";
  if (X == 0) return u"0";

  // The shortest round-trip digits, as "d.ddde±xx" without precision.
  std::array<char, 32> buffer{};
  const auto [end, error] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), X, std::chars_format::scientific);
  if (error != std::errc()) throw ERangeError(u"Float formatting failed");
  const std::string_view scientific(buffer.data(), size_t(end - buffer.data()));
  const size_t e = scientific.find('e');
  std::string digits;
  for (char c : scientific.substr(0, e)) {
    if (c >= '0' && c <= '9') digits += c;
  }
  const int exponent = std::atoi(std::string(scientific.substr(e + 1)).c_str());

  const char16_t separator = FormatSettings.DecimalSeparator;
  String result = X < 0 ? u"-" : u"";
  const auto append_ascii = [&result](std::string_view ascii) { result.append(ascii.begin(), ascii.end()); };
  if (exponent >= kSmallestFixedExponent && exponent < kGeneralPrecision) {
    if (exponent < 0) {
      result += u'0';
      result += separator;
      result.append(size_t(-exponent - 1), u'0');
      append_ascii(digits);
    } else {
      const size_t integer_digits = size_t(exponent) + 1;
      if (digits.size() < integer_digits) digits.append(integer_digits - digits.size(), '0');
      append_ascii(std::string_view(digits).substr(0, integer_digits));
      if (digits.size() > integer_digits) {
        result += separator;
        append_ascii(std::string_view(digits).substr(integer_digits));
      }
    }
  } else {
    result += char16_t(digits[0]);
    if (digits.size() > 1) {
      result += separator;
      append_ascii(std::string_view(digits).substr(1));
    }
    result += u'E';
    result += IntToStr(exponent);
  }
  return result;
}

double StrToExtended(StringView S) {
  if (auto value = ParseFloat(S)) return *value;
  throw EConvertError(QuotedMessage(S, u"floating point"));
}

bool StringIsFloat(StringView S) { return ParseFloat(S).has_value(); }

std::optional<int64_t> TryStrToInt64(StringView S) {
  StringView text = TrimBlanks(S);
  const bool negative = !text.empty() && text.front() == u'-';
  if (!text.empty() && (text.front() == u'+' || negative)) text.remove_prefix(1);
  if (text.empty()) return std::nullopt;
  // Accumulated as a magnitude with the overflow test before each step, so that the most
  // negative number reads and nothing beyond the range wraps.
  const uint64_t limit = negative ? uint64_t{1} << 63 : (uint64_t{1} << 63) - 1;
  uint64_t magnitude = 0;
  for (char16_t c : text) {
    if (!IsDigit(c)) return std::nullopt;
    const auto digit = static_cast<uint64_t>(c - u'0');
    if (magnitude > (limit - digit) / 10) return std::nullopt;
    magnitude = magnitude * 10 + digit;
  }
  return negative ? static_cast<int64_t>(0 - magnitude) : static_cast<int64_t>(magnitude);
}

std::optional<int32_t> TryStrToLongInt(StringView S) {
  const auto value = TryStrToInt64(S);
  if (!value || !std::in_range<int32_t>(*value)) return std::nullopt;
  return static_cast<int32_t>(*value);
}

int32_t StrToLongInt(StringView S) {
  if (auto value = TryStrToLongInt(S)) return *value;
  throw EConvertError(QuotedMessage(S, u"integer"));
}

int32_t StringToInteger(StringView S) { return TryStrToLongInt(S).value_or(0); }

int32_t StringIntSum(StringView S) {
  uint32_t sum = 0;
  for (char16_t c : S) sum += c;
  return int32_t(sum);
}

String BoolToStr(bool B) { return B ? u"True" : u"False"; }

bool StrToBool(StringView S) {
  const StringView text = TrimBlanks(S);
  if (SameText(text, u"true")) return true;
  if (SameText(text, u"false")) return false;
  if (auto value = ParseFloat(text)) return *value != 0;
  throw EConvertError(QuotedMessage(S, u"boolean"));
}

String IntegerToRome(int32_t N) {
  if (N < 1 || N > 3999) return String();
  String result;
  for (const auto& [value, numeral] : kRomanDigits) {
    for (; N >= value; N -= value) result += numeral;
  }
  return result;
}

int32_t RomeToInteger(StringView S) {
  const String text = AsciiUpperCase(TrimBlanks(S));
  if (text.empty() || text.size() > kLongestRomanNumeral) return 0;
  int32_t total = 0;
  StringView rest = text;
  for (const auto& [value, numeral] : kRomanDigits) {
    for (; rest.starts_with(numeral); rest.remove_prefix(numeral.size())) total += value;
  }
  // Only the standard form counts: reading "IIII" or "IM" is not writing them back.
  if (!rest.empty() || IntegerToRome(total) != text) return 0;
  return total;
}

}  // namespace veska
