#include "kernel/text/string_names.h"

#include <algorithm>
#include <limits>

#include "kernel/text/char_set.h"
#include "kernel/text/string_format.h"

namespace veska {
namespace {

constexpr TCharSet kDigits = TCharSet::Range(u'0', u'9');
constexpr size_t kMaxNumberDigits = 255;
// Characters that some host refuses in file names.
constexpr TCharSet kInvalidInFileNames =
    TCharSet::Range(u'\0', u'\x1F') + TCharSet{u'\\', u'/', u':', u'*', u'?', u'"', u'<', u'>', u'|'};

// The 0-based index where the trailing digits of S begin (S.size() when there are none).
size_t TrailingDigitsStart(StringView S) {
  size_t start = S.size();
  while (start > 0 && kDigits.Contains(S[start - 1])) --start;
  return start;
}

}  // namespace

String GetNameWithoutNumber(StringView S) { return String(S.substr(0, TrailingDigitsStart(S))); }

int32_t GetNameEndNumber(StringView S) {
  const size_t start = TrailingDigitsStart(S);
  if (start == 0) return 0;  // no name before the number, or no number at all
  constexpr int64_t kMax = std::numeric_limits<int32_t>::max();
  int64_t value = 0;
  for (char16_t digit : S.substr(start, kMaxNumberDigits)) {
    value = std::min(kMax, value * 10 + (digit - u'0'));
  }
  return int32_t(value);
}

void CheckClassName(String& S) {
  S = BezVnejsichMezer(S);
  if (!S.empty() && AsciiUpperChar(S.front()) != u'T') S.insert(0, 1, u'T');
}

String GetValidFileName(StringView S) {
  String result(S);
  std::replace_if(
      result.begin(), result.end(), [](char16_t c) { return kInvalidInFileNames.Contains(c); }, u'_');
  return result;
}

}  // namespace veska
