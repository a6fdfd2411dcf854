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
  if (blocks_) return;  // blocks take room as they grow
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
  return ItemAt(static_cast<std::size_t>(index));
}

void TList::Put(int index, void* item) {
  CheckIndex(index);
  ItemAt(static_cast<std::size_t>(index)) = item;
  ++changes_;
}

int TList::Add(void* item) {
  if (blocks_) {
    blocks_->Insert(blocks_->size(), item);
  } else {
    items_.push_back(item);
  }
  ++changes_;
  return Count() - 1;
}

void TList::Insert(int index, void* item) {
  if (index < 0 || index > Count()) ListIndexError(index);
  if (!blocks_ && Count() - index > kBlocksFrom) {
    blocks_ = std::make_unique<BlockList<void*>>(items_);
    std::vector<void*>().swap(items_);
  }
  if (blocks_) {
    blocks_->Insert(static_cast<std::size_t>(index), item);
  } else {
    items_.insert(items_.begin() + index, item);
  }
  ++changes_;
}

void TList::Delete(int index) {
  CheckIndex(index);
  if (!blocks_) {
    items_.erase(items_.begin() + index);
  } else {
    blocks_->Erase(static_cast<std::size_t>(index));
    if (Count() < kVectorBelow) {
      items_ = blocks_->ToVector();
      blocks_.reset();
    }
  }
  ++changes_;
}

int TList::Remove(void* item) {
  const int index = IndexOf(item);
  if (index >= 0) Delete(index);
  return index;
}

int TList::IndexOf(const void* item) const noexcept {
  if (blocks_) {
    const std::size_t found = blocks_->IndexOf(const_cast<void*>(item));
    return found == blocks_->size() ? -1 : static_cast<int>(found);
  }
  const auto found = std::find(items_.begin(), items_.end(), item);
  return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

void TList::Exchange(int index1, int index2) {
  CheckIndex(index1);
  CheckIndex(index2);
  std::swap(ItemAt(static_cast<std::size_t>(index1)), ItemAt(static_cast<std::size_t>(index2)));
  ++changes_;
}

}  // namespace veska
