#include "kernel/text/string_tokens.h"

#include <algorithm>
#include <utility>  // std::in_range, which checked_arithmetic.h uses without including

#include "kernel/platform/checked_arithmetic.h"
#include "kernel/text/string_format.h"

namespace veska {
namespace {

String Part(StringView text, bool trim) { return trim ? BezVnejsichMezer(text) : String(text); }

// The one token walk behind the three readers.  Without blocks, pass an empty Blocks set: the
// walk then never stops at a block character.
String ReadToken(StringView S, const TCharSet& Delims, const TCharSet& Blocks, bool trim, int32_t Start,
                 char16_t& Delim, int32_t& Pos) {
  Delim = u'\0';
  Pos = Start;
  if (S.empty()) return String();
  // Pos ends at most at Length + 2, which must still be an int32_t.
  const int32_t length = CheckedRange<int32_t>(S.size() + 1) - 1;
  const size_t first = size_t(std::clamp(Start, int32_t{1}, length + 1) - 1);
  const size_t end = S.size();

  size_t i = first;
  while (i < end && !Delims.Contains(S[i]) && !Blocks.Contains(S[i])) ++i;
  if (i < end && Blocks.Contains(S[i])) {
    const char16_t quote = S[i];
    ++i;
    while (i < end && S[i] != quote) ++i;
    if (i < end) {
      // Past the closing quote the walk looks for delimiters only: a second block in the same
      // token is not protected.
      ++i;
      while (i < end && !Delims.Contains(S[i])) ++i;
    }
  }
  if (i < end) Delim = S[i];
  Pos = int32_t(i) + 2;  // the 1-based position of the delimiter, plus one
  return Part(S.substr(first, i - first), trim);
}

// The 0-based index of the first Sep in S, or npos.  The position is kept in an 8-bit number
// with range checking, as the line splitters always did: a separator at position 256 or beyond
// raises ERangeError.  Callers rely on that to reject over-long lines.
size_t FindSeparatorWithin255(StringView S, char16_t Sep) {
  const size_t index = S.find(Sep);
  if (index != StringView::npos) CheckedRange<uint8_t>(index + 1);
  return index;
}

enum class SecondWhenEmpty { Clear, Keep };

bool SplitAtSeparator(StringView S, char16_t Sep, bool trim, SecondWhenEmpty when_empty, String& First,
                      String& Second) {
  const size_t index = FindSeparatorWithin255(S, Sep);
  const bool found = index != StringView::npos;
  const StringView rest = found ? S.substr(index + 1) : StringView();
  First = Part(S.substr(0, index), trim);
  if (!rest.empty() || when_empty == SecondWhenEmpty::Clear) Second = Part(rest, trim);
  return found;
}

}  // namespace

String ReadToDelimiter(StringView S, const TCharSet& Delims, int32_t Start, char16_t& Delim, int32_t& Pos) {
  return ReadToken(S, Delims, TCharSet(), false, Start, Delim, Pos);
}

String ReadToDelimiterWithoutWS(StringView S, const TCharSet& Delims, int32_t Start, char16_t& Delim, int32_t& Pos) {
  return ReadToken(S, Delims, TCharSet(), true, Start, Delim, Pos);
}

String ReadToDelimiterWithoutWSIgnoreBlock(StringView S, const TCharSet& Delims, const TCharSet& Blocks, int32_t Start,
                                           char16_t& Delim, int32_t& Pos) {
  return ReadToken(S, Delims, Blocks, true, Start, Delim, Pos);
}

bool StringAsParameter(StringView S, String& Name, String& Value) {
  return SplitAtSeparator(S, u'=', true, SecondWhenEmpty::Clear, Name, Value);
}

bool StringAsParameterWS(StringView S, String& Name, String& Value) {
  return SplitAtSeparator(S, u'=', false, SecondWhenEmpty::Clear, Name, Value);
}

bool StringAsParameterIgnoreBlock(StringView S, String& Name, String& Value, const TCharSet& Blocks) {
  char16_t delim = u'\0';
  int32_t pos = 0;
  Name = ReadToDelimiterWithoutWSIgnoreBlock(S, TCharSet{u'='}, Blocks, 1, delim, pos);
  Value = size_t(pos) <= S.size() ? BezVnejsichMezer(S.substr(size_t(pos) - 1)) : String();
  return delim == u'=';
}

bool StringAsTwoParams(StringView S, char16_t Sep, String& First, String& Second) {
  return SplitAtSeparator(S, Sep, true, SecondWhenEmpty::Keep, First, Second);
}

bool StringAsTwoParamsWS(StringView S, char16_t Sep, String& First, String& Second) {
  return SplitAtSeparator(S, Sep, false, SecondWhenEmpty::Keep, First, Second);
}

}  // namespace veska
