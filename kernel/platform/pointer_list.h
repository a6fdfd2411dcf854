// The platform's list of untyped pointers.
//
// Elements keep their members and owners in these lists, so the list is a thin layer over a
// vector: it adds the platform's 0-based, Integer-indexed interface and its index errors.  A
// long list that takes an insertion far from its end (as a sorted list filled in any order does)
// moves its items into a block list instead, where an insertion moves at most a block of items
// and reading by index takes a few steps; it returns to a vector when it is cleared or shrinks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <span>
#include <vector>

#include "kernel/platform/block_list.h"

namespace veska {

// Raises EListError with the platform's text "List index out of bounds (<index>)".  Shared by
// the lists of the platform so that every one reports a bad index the same way.
[[noreturn]] void ListIndexError(int index);

class TList {
 public:
  TList() = default;
  TList(const TList&) = delete;
  TList& operator=(const TList&) = delete;

  int Count() const noexcept { return static_cast<int>(blocks_ ? blocks_->size() : items_.size()); }
  int Capacity() const noexcept { return blocks_ ? Count() : static_cast<int>(items_.capacity()); }
  // Reserves room for the given number of items, or gives unused room back; a capacity below
  // Count raises EListError "List capacity out of bounds (<capacity>)".
  void SetCapacity(int capacity);

  // Every index must lie in 0..Count-1, else EListError.
  void* Get(int index) const;
  void Put(int index, void* item);
  void* operator[](int index) const { return Get(index); }
  void* First() const { return Get(0); }
  void* Last() const { return Get(Count() - 1); }

  int Add(void* item);                 // the index of the new item
  void Insert(int index, void* item);  // index 0..Count (Count appends)
  void Delete(int index);
  int Remove(void* item);                        // removes the first occurrence; its index, or -1
  int IndexOf(const void* item) const noexcept;  // the first occurrence, or -1
  void Exchange(int index1, int index2);
  void Clear() noexcept {
    blocks_.reset();
    items_.clear();
    ++changes_;
  }
  // Counts every change of the items (not of the capacity), so that an index kept beside the
  // list can tell whether it still describes the list.
  uint64_t Changes() const noexcept { return changes_; }

  // Iteration over the items in order, without index checks.  The end is fixed when it is
  // taken: a loop that changes the list must walk it by index.  The iterator reads a run of
  // adjacent items (the whole vector, or a block) at a time.
  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = void*;
    using difference_type = std::ptrdiff_t;
    using pointer = void* const*;
    using reference = void* const&;

    Iterator() = default;
    Iterator(const TList* list, std::size_t index) : list_(list), index_(index) {
      if (index_ < static_cast<std::size_t>(list_->Count())) run_ = list_->RunAt(index_);
    }
    reference operator*() const { return run_.front(); }
    Iterator& operator++() {
      ++index_;
      run_ = run_.subspan(1);
      if (run_.empty() && index_ < static_cast<std::size_t>(list_->Count())) run_ = list_->RunAt(index_);
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator& other) const { return index_ == other.index_; }

   private:
    const TList* list_ = nullptr;
    std::size_t index_ = 0;
    std::span<void* const> run_;  // the items from index_ on that lie side by side
  };
  Iterator begin() const { return Iterator(this, 0); }
  Iterator end() const { return Iterator(this, static_cast<std::size_t>(Count())); }

 private:
  // How many items an insertion would have to move before the list takes blocks, and below how
  // many a list in blocks returns to a vector.
  static constexpr int kBlocksFrom = 4096;
  static constexpr int kVectorBelow = kBlocksFrom / 4;

  void CheckIndex(int index) const;
  std::span<void* const> RunAt(std::size_t index) const {
    return blocks_ ? blocks_->Run(index) : std::span<void* const>(items_).subspan(index);
  }
  void* const& ItemAt(std::size_t index) const {
    return blocks_ ? static_cast<const BlockList<void*>&>(*blocks_)[index] : items_[index];
  }
  void*& ItemAt(std::size_t index) { return blocks_ ? (*blocks_)[index] : items_[index]; }

  std::vector<void*> items_;
  std::unique_ptr<BlockList<void*>> blocks_;  // the items, in place of items_, when set
  uint64_t changes_ = 0;
};

}  // namespace veska
