#include "kernel/platform/pointer_list.h"

#include <algorithm>
#include <utility>

#include "kernel/platform/exceptions.h"

namespace veska {

void ListIndexError(int index) { throw EListError(u"List index out of bounds (" + IntToStr(index) + u")"); }

void TList::CheckIndex(int index) const {
  if (index < 0 || index >= Count()) ListIndexError(index);
}

void TList::SetCapacity(int capacity) {
  if (capacity < Count()) {
    throw EListError(u"List capacity out of bounds (" + IntToStr(capacity) + u")");
  }
  const auto wanted = static_cast<std::size_t>(capacity);
  if (wanted > items_.capacity()) {
    items_.reserve(wanted);
  } else if (wanted < items_.capacity()) {
    // A vector cannot shrink to an exact size in place; a copy with the wanted room can.
    std::vector<void*> smaller;
    smaller.reserve(wanted);
    smaller.assign(items_.begin(), items_.end());
    items_.swap(smaller);
  }
}

void* TList::Get(int index) const {
  CheckIndex(index);
  return items_[static_cast<std::size_t>(index)];
}

void TList::Put(int index, void* item) {
  CheckIndex(index);
  items_[static_cast<std::size_t>(index)] = item;
  ++changes_;
}

int TList::Add(void* item) {
  items_.push_back(item);
  ++changes_;
  return Count() - 1;
}

void TList::Insert(int index, void* item) {
  if (index < 0 || index > Count()) ListIndexError(index);
  items_.insert(items_.begin() + index, item);
  ++changes_;
}

void TList::Delete(int index) {
  CheckIndex(index);
  items_.erase(items_.begin() + index);
  ++changes_;
}

int TList::Remove(void* item) {
  const int index = IndexOf(item);
  if (index >= 0) Delete(index);
  return index;
}

int TList::IndexOf(const void* item) const noexcept {
  const auto found = std::find(items_.begin(), items_.end(), item);
  return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

void TList::Exchange(int index1, int index2) {
  CheckIndex(index1);
  CheckIndex(index2);
  std::swap(items_[static_cast<std::size_t>(index1)], items_[static_cast<std::size_t>(index2)]);
  ++changes_;
}

}  // namespace veska
