// Case mapping and case-insensitive comparison through ICU, in the root locale so that the
// results never depend on the machine's locale settings.
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/locid.h>

#include "kernel/platform/string.h"

namespace veska {
namespace {

icu::UnicodeString ToIcu(StringView text) {
  return icu::UnicodeString(text.data(), static_cast<int32_t>(text.size()));
}

String FromIcu(const icu::UnicodeString& text) {
  return String(text.getBuffer(), text.getBuffer() + text.length());
}

}  // namespace

String UpperCase(StringView text) { return FromIcu(ToIcu(text).toUpper(icu::Locale::getRoot())); }

String LowerCase(StringView text) { return FromIcu(ToIcu(text).toLower(icu::Locale::getRoot())); }

int CompareText(StringView a, StringView b) {
  const int8_t order = ToIcu(a).caseCompare(ToIcu(b), U_FOLD_CASE_DEFAULT);
  return order;
}

bool SameText(StringView a, StringView b) { return CompareText(a, b) == 0; }

String AsciiUpperCase(StringView text) {
  String out(text);
  for (char16_t& c : out) c = AsciiUpperChar(c);
  return out;
}

}  // namespace veska
