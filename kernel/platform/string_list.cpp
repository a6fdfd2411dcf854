#include "kernel/platform/string_list.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/file_bytes.h"
#include "kernel/platform/pointer_list.h"

namespace veska {
namespace {

constexpr StringView kLineBreak = u"\r\n";
constexpr std::string_view kUtf8Bom = "\xEF\xBB\xBF";
constexpr std::string_view kUtf16LeBom = "\xFF\xFE";
constexpr std::string_view kUtf16BeBom = "\xFE\xFF";

// The platform scanned text as NUL-terminated character arrays; a NUL ends the text.
StringView UpToNul(StringView text) { return text.substr(0, text.find(u'\0')); }

bool IsBlank(char16_t c) { return c >= 1 && c <= u' '; }

// Reads one quoted part starting at the opening quote; a doubled quote stands for one quote
// character.  A part without its closing quote runs to the end of the text.
String ExtractQuoted(StringView text, std::size_t& position, char16_t quote) {
  String part;
  ++position;
  while (position < text.size()) {
    const char16_t c = text[position++];
    if (c != quote) {
      part += c;
    } else if (position < text.size() && text[position] == quote) {
      part += quote;
      ++position;
    } else {
      break;
    }
  }
  return part;
}

String DecodeUtf16(std::string_view bytes, bool big_endian) {
  String text;
  text.reserve(bytes.size() / 2);
  // An odd last byte is not a character and is dropped.
  for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    text += big_endian ? char16_t(first << 8 | second) : char16_t(second << 8 | first);
  }
  return text;
}

String DecodeTextFile(std::string_view bytes) {
  if (bytes.starts_with(kUtf8Bom)) return FromUtf8(bytes.substr(kUtf8Bom.size()));
  if (bytes.starts_with(kUtf16LeBom)) return DecodeUtf16(bytes.substr(kUtf16LeBom.size()), false);
  if (bytes.starts_with(kUtf16BeBom)) return DecodeUtf16(bytes.substr(kUtf16BeBom.size()), true);
  return FromWin1250(bytes);
}

}  // namespace

TStringList::TStringList(TStringList&& other) noexcept
    : TPersistent(),
      items_(std::move(other.items_)),
      sorted_(other.sorted_),
      case_sensitive_(other.case_sensitive_),
      duplicates_(other.duplicates_),
      delimiter_(other.delimiter_),
      quote_char_(other.quote_char_),
      strict_delimiter_(other.strict_delimiter_) {}

TStringList& TStringList::operator=(TStringList&& other) noexcept {
  if (this == &other) return *this;
  items_ = std::move(other.items_);
  sorted_ = other.sorted_;
  case_sensitive_ = other.case_sensitive_;
  duplicates_ = other.duplicates_;
  delimiter_ = other.delimiter_;
  quote_char_ = other.quote_char_;
  strict_delimiter_ = other.strict_delimiter_;
  return *this;
}

void TStringList::CheckIndex(int index) const {
  if (index < 0 || index >= Count()) ListIndexError(index);
}

void TStringList::CheckNotSorted() const {
  if (sorted_) throw EListError(u"Operation not allowed on sorted list");
}

int TStringList::CompareStrings(StringView a, StringView b) const {
  if (!case_sensitive_) return CompareText(a, b);
  const int order = a.compare(b);
  return (order > 0) - (order < 0);
}

const String& TStringList::Get(int index) const {
  CheckIndex(index);
  return items_[static_cast<std::size_t>(index)].Line;
}

void TStringList::Put(int index, const String& line) {
  CheckNotSorted();
  CheckIndex(index);
  items_[static_cast<std::size_t>(index)].Line = line;
}

void* TStringList::Objects(int index) const {
  CheckIndex(index);
  return items_[static_cast<std::size_t>(index)].Object;
}

void TStringList::PutObject(int index, void* object) {
  CheckIndex(index);
  items_[static_cast<std::size_t>(index)].Object = object;
}

int TStringList::AddObject(const String& line, void* object) {
  int index = Count();
  if (sorted_ && Find(line, index)) {
    if (duplicates_ == TDuplicates::Ignore) return index;
    if (duplicates_ == TDuplicates::Error) throw EListError(u"String list does not allow duplicates");
  }
  items_.insert(items_.begin() + index, Item{line, object});
  return index;
}

void TStringList::InsertObject(int index, const String& line, void* object) {
  CheckNotSorted();
  if (index < 0 || index > Count()) ListIndexError(index);
  items_.insert(items_.begin() + index, Item{line, object});
}

void TStringList::Delete(int index) {
  CheckIndex(index);
  items_.erase(items_.begin() + index);
}

void TStringList::Exchange(int index1, int index2) {
  CheckIndex(index1);
  CheckIndex(index2);
  std::swap(items_[static_cast<std::size_t>(index1)], items_[static_cast<std::size_t>(index2)]);
}

int TStringList::IndexOf(StringView line) const {
  if (sorted_) {
    int index = -1;
    return Find(line, index) ? index : -1;
  }
  for (int i = 0; i < Count(); ++i) {
    if (CompareStrings(items_[static_cast<std::size_t>(i)].Line, line) == 0) return i;
  }
  return -1;
}

bool TStringList::Find(StringView line, int& index) const {
  bool found = false;
  int low = 0;
  int high = Count() - 1;
  while (low <= high) {
    const int middle = low + (high - low) / 2;
    const int order = CompareStrings(items_[static_cast<std::size_t>(middle)].Line, line);
    if (order < 0) {
      low = middle + 1;
    } else {
      high = middle - 1;
      if (order == 0) {
        found = true;
        // Without accepted duplicates any equal line will do; with them, go on to the first.
        if (duplicates_ != TDuplicates::Accept) low = middle;
      }
    }
  }
  index = low;
  return found;
}

void TStringList::Sort() {
  if (sorted_) return;
  std::stable_sort(items_.begin(), items_.end(),
                   [this](const Item& a, const Item& b) { return CompareStrings(a.Line, b.Line) < 0; });
}

void TStringList::SetSorted(bool sorted) {
  if (sorted == sorted_) return;
  if (sorted) Sort();
  sorted_ = sorted;
}

void TStringList::SetCaseSensitive(bool case_sensitive) {
  if (case_sensitive == case_sensitive_) return;
  case_sensitive_ = case_sensitive;
  if (sorted_) {
    sorted_ = false;
    SetSorted(true);
  }
}

String TStringList::Names(int index) const {
  const String& line = Get(index);
  const std::size_t separator = line.find(u'=');
  return separator == String::npos ? String() : line.substr(0, separator);
}

int TStringList::IndexOfName(StringView name) const {
  for (int i = 0; i < Count(); ++i) {
    const StringView line = items_[static_cast<std::size_t>(i)].Line;
    const std::size_t separator = line.find(u'=');
    if (separator != StringView::npos && CompareStrings(line.substr(0, separator), name) == 0) return i;
  }
  return -1;
}

String TStringList::ValueFromIndex(int index) const {
  if (index < 0) return String();
  const String& line = Get(index);
  const std::size_t separator = line.find(u'=');
  return separator == String::npos ? String() : line.substr(separator + 1);
}

String TStringList::Values(StringView name) const { return ValueFromIndex(IndexOfName(name)); }

void TStringList::SetValue(StringView name, StringView value) {
  int index = IndexOfName(name);
  if (value.empty()) {
    if (index >= 0) Delete(index);
    return;
  }
  if (index < 0) index = Add(String());
  Put(index, String(name) + u"=" + String(value));
}

String TStringList::Text() const {
  String text;
  for (const Item& item : items_) {
    text += item.Line;
    text += kLineBreak;
  }
  return text;
}

void TStringList::SetText(StringView text) {
  Clear();
  text = UpToNul(text);
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t end = std::min(text.find_first_of(u"\r\n", position), text.size());
    Add(String(text.substr(position, end - position)));
    position = end;
    if (position < text.size() && text[position] == u'\r') ++position;
    if (position < text.size() && text[position] == u'\n') ++position;
  }
}

String TStringList::JoinDelimited(char16_t delimiter, char16_t quote, bool strict) const {
  if (items_.size() == 1 && items_.front().Line.empty()) return String{quote, quote};
  const auto needs_quotes = [&](char16_t c) { return c == delimiter || c == quote || (!strict && c <= u' '); };
  String text;
  bool first = true;
  for (const Item& item : items_) {
    if (!first) text += delimiter;
    first = false;
    if (std::none_of(item.Line.begin(), item.Line.end(), needs_quotes)) {
      text += item.Line;
      continue;
    }
    text += quote;
    for (const char16_t c : item.Line) {
      if (c == quote) text += quote;
      text += c;
    }
    text += quote;
  }
  return text;
}

void TStringList::SplitDelimited(StringView text, char16_t delimiter, char16_t quote, bool strict) {
  Clear();
  text = UpToNul(text);
  std::size_t position = 0;
  const auto skip_blanks = [&] {
    while (!strict && position < text.size() && IsBlank(text[position])) ++position;
  };
  skip_blanks();
  while (position < text.size()) {
    if (text[position] == quote) {
      Add(ExtractQuoted(text, position, quote));
    } else {
      const std::size_t start = position;
      while (position < text.size() && text[position] != delimiter && (strict || !IsBlank(text[position]))) {
        ++position;
      }
      Add(String(text.substr(start, position - start)));
    }
    skip_blanks();
    if (position < text.size() && text[position] == delimiter) {
      if (position + 1 == text.size()) Add(String());
      ++position;
      skip_blanks();
    }
  }
}

String TStringList::DelimitedText() const { return JoinDelimited(delimiter_, quote_char_, strict_delimiter_); }

void TStringList::SetDelimitedText(StringView text) {
  SplitDelimited(text, delimiter_, quote_char_, strict_delimiter_);
}

String TStringList::CommaText() const { return JoinDelimited(u',', u'"', false); }

void TStringList::SetCommaText(StringView text) { SplitDelimited(text, u',', u'"', false); }

void TStringList::LoadFromFile(const String& file_name) { SetText(DecodeTextFile(ReadFileBytes(file_name))); }

void TStringList::SaveToFile(const String& file_name, TTextEncoding encoding) const {
  const String text = Text();
  WriteFileBytes(file_name, encoding == TTextEncoding::Utf8 ? std::string(kUtf8Bom) + ToUtf8(text) : ToWin1250(text));
}

}  // namespace veska
