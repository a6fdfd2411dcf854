#include "kernel/text/string_format.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <system_error>

#include "kernel/text/char_set.h"

namespace veska {
namespace {

constexpr TCharSet kBlanks{u'\0', u' '};

String AsciiToString(std::string_view ascii) { return String(ascii.begin(), ascii.end()); }

// Text aligned in a field of |width| characters as printf does it: right-aligned by spaces,
// left-aligned when width is negative; text longer than the field is never cut.
String AlignInField(std::string_view text, int32_t width) {
  const int64_t field = std::abs(int64_t{width});
  const size_t padding = field > int64_t(text.size()) ? size_t(field) - text.size() : 0;
  String result = AsciiToString(text);
  result.insert(width < 0 ? result.size() : 0, padding, u' ');
  return result;
}

}  // namespace

String BezVnejsichMezer(StringView S) {
  size_t first = 0;
  size_t end = S.size();
  while (first < end && kBlanks.Contains(S[first])) ++first;
  while (end > first && kBlanks.Contains(S[end - 1])) --end;
  return String(S.substr(first, end - first));
}

String RemoveAllSpaces(StringView S) {
  String result;
  result.reserve(S.size());
  std::copy_if(S.begin(), S.end(), std::back_inserter(result), [](char16_t c) { return !kBlanks.Contains(c); });
  return result;
}

String TakeFromApos(StringView S) {
  if (S.empty() || S.front() != u'\'' || S.back() != u'\'') return String(S);
  // A lone apostrophe is both the opening and the closing one.
  return S.size() == 1 ? String() : String(S.substr(1, S.size() - 2));
}

bool ChangeCharInString(String& S, char16_t Old, char16_t New, bool All) {
  if (S.empty() || Old == u'\0') return false;
  bool changed = false;
  for (char16_t& c : S) {
    if (c != Old) continue;
    c = New;
    changed = true;
    if (!All) break;
  }
  return changed;
}

void SwapChars(String& S, char16_t A, char16_t B) {
  for (char16_t& c : S) {
    if (c == A) {
      c = B;
    } else if (c == B) {
      c = A;
    }
  }
}

String StrToStrSp(StringView S, int32_t N) {
  if (N <= 0) return String();
  const size_t width = size_t(N);
  if (S.size() >= width) return String(S.substr(0, width));
  String result(S);
  result.resize(width, u' ');
  return result;
}

String IntToStrZ(int32_t Value, int32_t Width, bool Zeros) {
  // The C formatting itself, so that every corner of "%*d" and "%*.*d" (negative widths, the
  // sign before the zeros, no digits for 0 with precision 0) is exactly C's.  %d does not
  // depend on the C locale.
  const auto print = [&](char* buffer, size_t size) {
    return Zeros ? std::snprintf(buffer, size, "%*.*d", Width, Width, Value)
                 : std::snprintf(buffer, size, "%*d", Width, Value);
  };
  const int length = print(nullptr, 0);
  if (length < 0) throw ERangeError(u"Field width out of range");
  std::string text(size_t(length) + 1, '\0');
  print(text.data(), text.size());
  text.resize(size_t(length));
  return AsciiToString(text);
}

String IntToPrezStr(int64_t Value) {
  const uint64_t magnitude = Value < 0 ? 0 - uint64_t(Value) : uint64_t(Value);
  const std::string digits = std::to_string(magnitude);
  String result = Value < 0 ? u"-" : u"";
  for (size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) result += u' ';
    result += char16_t(digits[i]);
  }
  return result;
}

String DoubleToStr(double Value, int32_t Width, int32_t Decimals) {
  const int precision = Decimals < 0 ? 6 : Decimals;
  // Fixed notation of a double needs at most 309 integer digits, a sign and a point.
  std::string text(size_t(precision) + 320, '\0');
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), Value, std::chars_format::fixed, precision);
  if (error != std::errc()) throw ERangeError(u"Number too long to format");
  text.resize(size_t(end - text.data()));
  return AlignInField(text, Width);
}

}  // namespace veska
