#include "kernel/text/parameter_reader.h"

#include <string>
#include <string_view>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/file_bytes.h"

namespace veska {
namespace {

constexpr bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }

StringView Trim(StringView text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::vector<String> SplitLines(StringView text) {
  std::vector<String> lines;
  std::size_t start = 0;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (text[index] != u'\r' && text[index] != u'\n') continue;
    lines.emplace_back(text.substr(start, index - start));
    if (text[index] == u'\r' && index + 1 < text.size() && text[index + 1] == u'\n') ++index;
    start = index + 1;
  }
  if (start < text.size()) lines.emplace_back(text.substr(start));
  return lines;
}

bool IsEmptyOrComment(StringView trimmed_line) {
  return trimmed_line.empty() || trimmed_line.front() == u';' || trimmed_line.starts_with(u"//");
}

// The name and the value of a "name = value" line; no name when the line has no '='.
struct ParameterLine {
  std::optional<StringView> name;
  StringView value;
};

ParameterLine SplitParameter(StringView trimmed_line) {
  const std::size_t equals = trimmed_line.find(u'=');
  if (equals == StringView::npos) return {std::nullopt, trimmed_line};
  return {Trim(trimmed_line.substr(0, equals)), Trim(trimmed_line.substr(equals + 1))};
}

String DecodeFileText(std::string_view bytes) {
  constexpr std::string_view kUtf8ByteOrderMark = "\xEF\xBB\xBF";
  if (bytes.starts_with(kUtf8ByteOrderMark)) return FromUtf8(bytes.substr(kUtf8ByteOrderMark.size()));
  // Valid UTF-8, and only valid UTF-8, survives the way there and back unchanged.  Czech text in
  // Windows-1250 is practically never valid UTF-8, and plain ASCII reads the same either way.
  String text = FromUtf8(bytes);
  if (ToUtf8(text) == bytes) return text;
  return FromWin1250(bytes);
}

}  // namespace

void TCteniParametru::NovyText(StringView text) {
  lines_ = SplitLines(text);
  next_line_ = 0;
  info_ = TCtiDefInfa{};
  error_ = false;
}

bool TCteniParametru::NactiSoubor(const String& file_name) {
  try {
    NovyText(DecodeFileText(ReadFileBytes(file_name)));
    return true;
  } catch (const EFOpenError&) {
    NovyText(u"");
    return false;
  }
}

bool TCteniParametru::DejRadek() {
  while (next_line_ < lines_.size()) {
    const StringView line = Trim(lines_[next_line_]);
    ++next_line_;
    if (IsEmptyOrComment(line)) continue;
    const ParameterLine parameter = SplitParameter(line);
    info_.CisloRadku = next_line_;
    info_.Radek.assign(line);
    info_.Jmeno.assign(parameter.name.value_or(StringView()));
    info_.Hodnota.NovyString(parameter.value);
    return true;
  }
  info_ = TCtiDefInfa{};
  return false;
}

std::int32_t TCteniParametru::DejLongIntParametr() { return FromCurrentLine(&TCtiRadekClass::DejLongInt); }
double TCteniParametru::DejRealParametr() { return FromCurrentLine(&TCtiRadekClass::DejReal); }
long double TCteniParametru::DejExtendedParametr() { return FromCurrentLine(&TCtiRadekClass::DejExtended); }
bool TCteniParametru::DejBooleanParametr() { return FromCurrentLine(&TCtiRadekClass::DejBoolean); }

std::int32_t TCteniParametru::DejLongIntParametr(StringView name) { return ByName(name, &TCtiRadekClass::DejLongInt); }
double TCteniParametru::DejRealParametr(StringView name) { return ByName(name, &TCtiRadekClass::DejReal); }
long double TCteniParametru::DejExtendedParametr(StringView name) { return ByName(name, &TCtiRadekClass::DejExtended); }
bool TCteniParametru::DejBooleanParametr(StringView name) { return ByName(name, &TCtiRadekClass::DejBoolean); }

template <typename Value>
Value TCteniParametru::FromCurrentLine(Value (TCtiRadekClass::*read)()) {
  // The line reader returns the neutral value itself when it fails.  Its flag also covers
  // reads that the caller made through DefInfo().Hodnota on this line.
  const Value value = (info_.Hodnota.*read)();
  if (info_.Hodnota.DosloKChybe()) error_ = true;
  return value;
}

template <typename Value>
Value TCteniParametru::ByName(StringView name, Value (TCtiRadekClass::*read)()) {
  const std::optional<StringView> text = FindValue(name);
  if (!text) {
    error_ = true;
    return Value{};
  }
  TCtiRadekClass reader(*text);
  const Value value = (reader.*read)();
  if (reader.DosloKChybe() || !reader.KonecRadku()) {
    error_ = true;
    return Value{};
  }
  return value;
}

std::optional<StringView> TCteniParametru::FindValue(StringView name) const {
  if (name.empty()) return std::nullopt;
  for (const String& line : lines_) {
    const StringView trimmed = Trim(line);
    if (IsEmptyOrComment(trimmed)) continue;
    const ParameterLine parameter = SplitParameter(trimmed);
    if (parameter.name && SameText(*parameter.name, name)) return parameter.value;
  }
  return std::nullopt;
}

}  // namespace veska
