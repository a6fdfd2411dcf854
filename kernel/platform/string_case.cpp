// Case mapping and case-insensitive comparison through ICU, in the root locale so that the
// results never depend on the machine's locale settings.
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>

#include "kernel/platform/string.h"

namespace veska {
namespace {

icu::UnicodeString ToIcu(StringView text) { return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size())); }

String FromIcu(const icu::UnicodeString& text) { return String(text.getBuffer(), text.getBuffer() + text.length()); }

}  // namespace

String UpperCase(StringView text) { return FromIcu(ToIcu(text).toUpper(icu::Locale::getRoot())); }

String LowerCase(StringView text) { return FromIcu(ToIcu(text).toLower(icu::Locale::getRoot())); }

namespace {

constexpr char16_t AsciiLowerChar(char16_t c) { return (c >= u'A' && c <= u'Z') ? char16_t(c + 32) : c; }

}  // namespace

// Names are nearly always ASCII, where case folding is the folding of A-Z; only text with other
// characters needs ICU.  Both paths order by the folded code points, so they agree.
int CompareText(StringView a, StringView b) {
  const std::size_t common = std::min(a.size(), b.size());
  for (std::size_t i = 0; i < common; ++i) {
    if (a[i] >= 0x80 || b[i] >= 0x80) return ToIcu(a).caseCompare(ToIcu(b), U_FOLD_CASE_DEFAULT);
    const char16_t x = AsciiLowerChar(a[i]);
    const char16_t y = AsciiLowerChar(b[i]);
    if (x != y) return x < y ? -1 : 1;
  }
  const StringView rest = a.size() > common ? a.substr(common) : b.substr(common);
  for (char16_t c : rest) {
    if (c >= 0x80) return ToIcu(a).caseCompare(ToIcu(b), U_FOLD_CASE_DEFAULT);
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

bool SameText(StringView a, StringView b) { return CompareText(a, b) == 0; }

// CompareText meets only ASCII characters in such texts and compares them lower-cased, a text
// before its extensions: the lower-cased bytes in their plain order.
std::optional<std::string> CompareTextKey(StringView text) {
  std::string key(text.size(), '\0');
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= 0x80) return std::nullopt;
    key[i] = static_cast<char>(AsciiLowerChar(text[i]));
  }
  return key;
}

String AsciiUpperCase(StringView text) {
  String out(text);
  for (char16_t& c : out) c = AsciiUpperChar(c);
  return out;
}

}  // namespace veska
