#include "kernel/tools/sort_elements.h"

#include <span>

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
  const std::vector<TElement*> order = BinaryInsertionOrder(
      std::span<TElement* const>(members), [this](TElement* a, TElement* b) { return CompareElements(a, b); });
  const int last = static_cast<int>(order.size()) - 1;
  for (int i = 0; i <= last; ++i) input->Put(Down ? last - i : i, order[static_cast<std::size_t>(i)]);
  work_list->Clear();
}

void TSortElements::Publish(Publisher<TSortElements>& p) {
  p.Property(u"PropertyName", &TSortElements::PropertyName, &TSortElements::SetPropertyName);
  p.Property(u"PropertyName1", &TSortElements::PropertyName1, &TSortElements::SetPropertyName1);
  p.Property(u"Down", &TSortElements::Down, &TSortElements::SetDown);
}

int TSortElementsByString::CompareElements(TElement* a, TElement* b) {
  return CompareText(TextKey(a, PropertyName), TextKey(b, PropertyName));
}

int TSortElementsByInteger::CompareElements(TElement* a, TElement* b) {
  return CompareValues(IntegerKey(a, PropertyName), IntegerKey(b, PropertyName));
}

int TSortElementsBy2Integers::CompareElements(TElement* a, TElement* b) {
  const int first = CompareValues(IntegerKey(a, PropertyName), IntegerKey(b, PropertyName));
  return first != 0 ? first : CompareValues(IntegerKey(a, PropertyName1), IntegerKey(b, PropertyName1));
}

int TSortElementsByFloat::CompareElements(TElement* a, TElement* b) {
  return CompareValues(FloatKey(a, PropertyName), FloatKey(b, PropertyName));
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
