#include "kernel/text/line_reader.h"

#include <charconv>
#include <string>
#include <system_error>
#include <type_traits>

namespace veska {
namespace {

constexpr bool IsBlank(char16_t c) { return c == u' ' || c == u'\t'; }
constexpr bool IsSeparator(char16_t c) { return c == u',' || c == u';'; }
constexpr bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
constexpr bool IsSign(char16_t c) { return c == u'+' || c == u'-'; }

// The number text of an item as from_chars wants it: ASCII, '.' as the decimal mark, no '+'.
// Items reach here only after NumberItem accepted them, so every character is ASCII.
std::string NumberText(StringView item) {
  if (!item.empty() && item.front() == u'+') item.remove_prefix(1);
  std::string text;
  text.reserve(item.size());
  for (char16_t c : item) text += (c == u',') ? '.' : static_cast<char>(c);
  return text;
}

template <typename Number>
std::optional<Number> ParseNumber(StringView item) {
  const std::string text = NumberText(item);
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

}  // namespace

template <typename Value>
Value TCtiRadekClass::Fail(Value neutral) {
  error_ = true;
  return neutral;
}

template <typename Number>
Number TCtiRadekClass::ReadNumber() {
  const std::optional<Item> item = NumberItem(std::is_floating_point_v<Number>);
  if (!item) return Fail(Number{0});
  const std::optional<Number> value = ParseNumber<Number>(ItemText(*item));
  if (!value) return Fail(Number{0});
  FinishItem(item->end);
  return *value;
}

void TCtiRadekClass::NovyString(StringView line) {
  line_.assign(line);
  position_ = 1;
  error_ = false;
}

void TCtiRadekClass::JdiNa(std::size_t position) {
  if (position >= 1 && position <= line_.size() + 1) {
    position_ = position;
  } else {
    error_ = true;
  }
}

void TCtiRadekClass::PreskocMezery() { position_ = FirstNonBlank() + 1; }

void TCtiRadekClass::PreskocMnozinu(StringView characters) {
  while (!KonecRadku() && characters.find(line_[position_ - 1]) != StringView::npos) ++position_;
}

char16_t TCtiRadekClass::DejChar() {
  const std::size_t index = FirstNonBlank();
  if (index >= line_.size()) return Fail(u'\0');
  position_ = index + 2;
  return line_[index];
}

String TCtiRadekClass::DejString() {
  const std::optional<Item> item = WordItem();
  if (!item) return Fail(String());
  FinishItem(item->end);
  return String(ItemText(*item));
}

String TCtiRadekClass::DejStringMeziApostrofy() {
  const std::size_t open = FirstNonBlank();
  if (open >= line_.size() || line_[open] != u'\'') return Fail(String());
  String text;
  for (std::size_t index = open + 1; index < line_.size(); ++index) {
    if (line_[index] != u'\'') {
      text += line_[index];
    } else if (index + 1 < line_.size() && line_[index + 1] == u'\'') {
      text += u'\'';
      ++index;
    } else {
      if (!IsItemEnd(index + 1)) break;
      FinishItem(index + 1);
      return text;
    }
  }
  return Fail(String());  // never closed, or closed in the middle of a word
}

std::int32_t TCtiRadekClass::DejInteger() { return DejLongInt(); }

std::int32_t TCtiRadekClass::DejLongInt() { return ReadNumber<std::int32_t>(); }

double TCtiRadekClass::DejReal() { return ReadNumber<double>(); }

long double TCtiRadekClass::DejExtended() { return ReadNumber<long double>(); }

bool TCtiRadekClass::DejBoolean() {
  const std::optional<Item> item = WordItem();
  if (!item) return Fail(false);
  const String word = AsciiUpperCase(ItemText(*item));
  bool value = false;
  if (word == u"TRUE" || word == u"ANO" || word == u"1") {
    value = true;
  } else if (word != u"FALSE" && word != u"NE" && word != u"0") {
    return Fail(false);
  }
  FinishItem(item->end);
  return value;
}

StringView TCtiRadekClass::ItemText(Item item) const {
  return StringView(line_).substr(item.begin, item.end - item.begin);
}

std::size_t TCtiRadekClass::FirstNonBlank() const {
  std::size_t index = position_ - 1;
  while (index < line_.size() && IsBlank(line_[index])) ++index;
  return index;
}

bool TCtiRadekClass::IsItemEnd(std::size_t index) const {
  return index >= line_.size() || IsBlank(line_[index]) || IsSeparator(line_[index]);
}

std::optional<TCtiRadekClass::Item> TCtiRadekClass::WordItem() const {
  const std::size_t begin = FirstNonBlank();
  std::size_t end = begin;
  while (!IsItemEnd(end)) ++end;
  if (end == begin) return std::nullopt;
  return Item{begin, end};
}

std::optional<TCtiRadekClass::Item> TCtiRadekClass::NumberItem(bool with_fraction) const {
  const std::size_t begin = FirstNonBlank();
  const std::size_t size = line_.size();
  auto digit_at = [&](std::size_t index) { return index < size && IsDigit(line_[index]); };
  auto skip_digits = [&](std::size_t index) {
    while (digit_at(index)) ++index;
    return index;
  };

  std::size_t end = begin;
  if (end < size && IsSign(line_[end])) ++end;
  const std::size_t digits_begin = end;
  end = skip_digits(end);
  const bool mark = end < size && (line_[end] == u'.' || (line_[end] == u',' && end > digits_begin));
  if (with_fraction && mark && digit_at(end + 1)) {
    end = skip_digits(end + 1);
  }
  if (end == digits_begin) return std::nullopt;  // no digit at all
  if (with_fraction && end < size && (line_[end] == u'e' || line_[end] == u'E')) {
    std::size_t exponent = end + 1;
    if (exponent < size && IsSign(line_[exponent])) ++exponent;
    if (digit_at(exponent)) end = skip_digits(exponent);
  }
  if (!IsItemEnd(end)) return std::nullopt;
  return Item{begin, end};
}

void TCtiRadekClass::FinishItem(std::size_t end) {
  position_ = end + 1;
  PreskocMezery();
  if (!KonecRadku() && IsSeparator(line_[position_ - 1])) {
    ++position_;
    PreskocMezery();
  }
}

}  // namespace veska
