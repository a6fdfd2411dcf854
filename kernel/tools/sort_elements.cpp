#include "kernel/tools/sort_elements.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "kernel/elements/sorted_search.h"
#include "kernel/text/string_numbers.h"

namespace veska {
namespace {

String TextKey(const TElement* element, StringView name) {
  return element != nullptr ? element->GetPropertyStringByName(name) : String();
}

int64_t IntegerKey(const TElement* element, StringView name) {
  if (element == nullptr) return 0;
  const PropInfo* property = element->ClassType().FindProperty(name);
  if (property != nullptr && property->CanRead() && property->Family() == ValueFamily::Ordinal) {
    return property->GetOrd(*element);
  }
  return TryStrToInt64(element->GetPropertyStringByName(name)).value_or(0);
}

double FloatKey(const TElement* element, StringView name) {
  const String text = TextKey(element, name);
  return StringIsFloat(text) ? StrToExtended(text) : 0;
}

template <class Value>
int CompareValues(const Value& a, const Value& b) {
  return (b < a) - (a < b);
}

int CompareKeys(int64_t a, int64_t b) { return CompareValues(a, b); }
int CompareKeys(double a, double b) { return CompareValues(a, b); }
int CompareKeys(const std::pair<int64_t, int64_t>& a, const std::pair<int64_t, int64_t>& b) {
  const int first = CompareValues(a.first, b.first);
  return first != 0 ? first : CompareValues(a.second, b.second);
}

// A key and the position of its member, sorted side by side so that the sort reads memory in
// order.  A text stands in by its CompareTextKey, which a short text keeps within the entry;
// texts without one are compared by CompareText itself.
template <class Key>
struct Entry {
  Key key;
  uint32_t position;
  int Compare(const Entry& other, const std::vector<Key>& /*keys*/) const { return CompareKeys(key, other.key); }
};

template <>
struct Entry<String> {
  std::optional<std::string> key;
  uint32_t position = 0;

  Entry(const String& text, uint32_t text_position) : key(CompareTextKey(text)), position(text_position) {}
  int Compare(const Entry& other, const std::vector<String>& keys) const {
    if (key && other.key) return key->compare(*other.key);
    return CompareText(keys[position], keys[other.position]);
  }
};

// The rank of each key among the keys: equal keys share one, a lower rank sorts first.
template <class Key>
std::vector<uint32_t> RanksOf(const std::vector<Key>& keys, uint32_t& rank_count) {
  std::vector<Entry<Key>> entries;
  entries.reserve(keys.size());
  for (uint32_t i = 0; i < keys.size(); ++i) entries.push_back(Entry<Key>{keys[i], i});
  // Stable, which stays within bounds whatever a comparison answers.
  std::stable_sort(entries.begin(), entries.end(),
                   [&](const Entry<Key>& a, const Entry<Key>& b) { return a.Compare(b, keys) < 0; });
  std::vector<uint32_t> ranks(keys.size());
  uint32_t rank = 0;
  for (std::size_t i = 0; i < entries.size(); ++i) {
    if (i > 0 && entries[i - 1].Compare(entries[i], keys) != 0) ++rank;
    ranks[entries[i].position] = rank;
  }
  rank_count = rank + 1;
  return ranks;
}

}  // namespace

int TSortElements::CompareElements(TElement* /*a*/, TElement* /*b*/) { return 1; }

String TSortElements::NumberToPropertyName(int32_t number) {
  if (number == DownPropertyNumber()) return u"Down";
  if (number == 0) return u"PropertyName";
  if (number == 1) return u"PropertyName1";
  return {};
}

void TSortElements::DoIt() {
  auto* input = ObjectAs<TEntity>(GetInput());
  if (input == nullptr || input->ElementsCount() == 0) return;
  TQuickEntity* work_list = CachedOrAddedPart(*this, work_list_);
  work_list->Clear();
  std::vector<TElement*> members(static_cast<std::size_t>(input->ElementsCount()));
  for (std::size_t i = 0; i < members.size(); ++i) members[i] = input->Get(static_cast<int>(i));
  const std::vector<TElement*> order = Order(members);
  const int last = static_cast<int>(order.size()) - 1;
  for (int i = 0; i <= last; ++i) input->Put(Down ? last - i : i, order[static_cast<std::size_t>(i)]);
  work_list->Clear();
}

std::vector<TElement*> TSortElements::Order(std::span<TElement* const> members) {
  return BinaryInsertionOrder(members, [this](TElement* a, TElement* b) { return CompareElements(a, b); });
}

template <class Sorter, class ReadKey>
std::vector<TElement*> TSortElements::OrderByKeys(std::span<TElement* const> members, ReadKey read_key) {
  // The dynamic type, not the registered class: a descendant that overrides CompareElements need
  // not declare a class of its own.
  if (typeid(*this) != typeid(Sorter)) return TSortElements::Order(members);
  using Key = decltype(read_key(members.front()));
  std::vector<Key> keys;
  keys.reserve(members.size());
  for (TElement* member : members) keys.push_back(read_key(member));
  if constexpr (std::is_floating_point_v<Key>) {
    // A NaN compares equal to every number, which no ranking expresses: ask at every comparison.
    if (std::any_of(keys.begin(), keys.end(), [](Key key) { return std::isnan(key); })) {
      return TSortElements::Order(members);
    }
  }
  uint32_t rank_count = 0;
  const std::vector<uint32_t> ranks = RanksOf(keys, rank_count);
  std::vector<TElement*> ordered;
  ordered.reserve(members.size());
  for (uint32_t position : BinaryInsertionOrderOfRanks(ranks, rank_count)) ordered.push_back(members[position]);
  return ordered;
}

void TSortElements::Publish(Publisher<TSortElements>& p) {
  p.Property(u"PropertyName", &TSortElements::PropertyName, &TSortElements::SetPropertyName);
  p.Property(u"PropertyName1", &TSortElements::PropertyName1, &TSortElements::SetPropertyName1);
  p.Property(u"Down", &TSortElements::Down, &TSortElements::SetDown);
}

int TSortElementsByString::CompareElements(TElement* a, TElement* b) {
  return CompareText(TextKey(a, PropertyName), TextKey(b, PropertyName));
}

std::vector<TElement*> TSortElementsByString::Order(std::span<TElement* const> members) {
  return OrderByKeys<TSortElementsByString>(members,
                                            [this](const TElement* member) { return TextKey(member, PropertyName); });
}

int TSortElementsByInteger::CompareElements(TElement* a, TElement* b) {
  return CompareValues(IntegerKey(a, PropertyName), IntegerKey(b, PropertyName));
}

std::vector<TElement*> TSortElementsByInteger::Order(std::span<TElement* const> members) {
  return OrderByKeys<TSortElementsByInteger>(
      members, [this](const TElement* member) { return IntegerKey(member, PropertyName); });
}

int TSortElementsBy2Integers::CompareElements(TElement* a, TElement* b) {
  const int first = CompareValues(IntegerKey(a, PropertyName), IntegerKey(b, PropertyName));
  return first != 0 ? first : CompareValues(IntegerKey(a, PropertyName1), IntegerKey(b, PropertyName1));
}

std::vector<TElement*> TSortElementsBy2Integers::Order(std::span<TElement* const> members) {
  return OrderByKeys<TSortElementsBy2Integers>(members, [this](const TElement* member) {
    return std::pair(IntegerKey(member, PropertyName), IntegerKey(member, PropertyName1));
  });
}

int TSortElementsByFloat::CompareElements(TElement* a, TElement* b) {
  return CompareValues(FloatKey(a, PropertyName), FloatKey(b, PropertyName));
}

std::vector<TElement*> TSortElementsByFloat::Order(std::span<TElement* const> members) {
  return OrderByKeys<TSortElementsByFloat>(members,
                                           [this](const TElement* member) { return FloatKey(member, PropertyName); });
}

std::vector<SortKey> ParseSortKeys(StringView text) {
  std::vector<SortKey> keys;
  if (text.empty()) return keys;
  for (;;) {
    const std::size_t comma = text.find(u',');
    const StringView piece = text.substr(0, comma);
    const std::size_t colon = piece.find(u':');
    SortKey key{String(piece.substr(0, colon)), SortKey::Kind::Text};
    const StringView kind = colon == StringView::npos ? StringView(u"s") : piece.substr(colon + 1);
    if (!kind.empty() && (kind[0] == u'f' || kind[0] == u'F')) key.KeyKind = SortKey::Kind::Float;
    if (!kind.empty() && (kind[0] == u'i' || kind[0] == u'I')) key.KeyKind = SortKey::Kind::Integer;
    keys.push_back(std::move(key));
    if (comma == StringView::npos) return keys;
    text.remove_prefix(comma + 1);
  }
}

void TSortElementsEx::SetPropertyName(const String& name) {
  PropertyName = name;
  key_sorters_.clear();
  for (const SortKey& key : ParseSortKeys(name)) {
    std::unique_ptr<TSortElements> sorter;
    switch (key.KeyKind) {
      case SortKey::Kind::Float:
        sorter = std::make_unique<TSortElementsByFloat>();
        break;
      case SortKey::Kind::Integer:
        sorter = std::make_unique<TSortElementsByInteger>();
        break;
      case SortKey::Kind::Text:
        sorter = std::make_unique<TSortElementsByString>();
        break;
    }
    sorter->SetPropertyName(key.Name);
    key_sorters_.push_back(std::move(sorter));
  }
}

int TSortElementsEx::CompareElements(TElement* a, TElement* b) {
  for (const std::unique_ptr<TSortElements>& sorter : key_sorters_) {
    if (const int order = sorter->CompareElements(a, b); order != 0) return order;
  }
  return 0;
}

}  // namespace veska
