// The platform's list of untyped pointers.
//
// Elements keep their members and owners in these lists, so the list is a thin layer over a
// vector: it adds the platform's 0-based, Integer-indexed interface and its index errors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace veska {

// Raises EListError with the platform's text "List index out of bounds (<index>)".  Shared by
// the lists of the platform so that every one reports a bad index the same way.
[[noreturn]] void ListIndexError(int index);

class TList {
 public:
  int Count() const noexcept { return static_cast<int>(items_.size()); }
  int Capacity() const noexcept { return static_cast<int>(items_.capacity()); }
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
    items_.clear();
    ++changes_;
  }
  // Counts every change of the items (not of the capacity), so that an index kept beside the
  // list can tell whether it still describes the list.
  uint64_t Changes() const noexcept { return changes_; }

  // Iteration over the items in order, without index checks.
  auto begin() const noexcept { return items_.begin(); }
  auto end() const noexcept { return items_.end(); }

 private:
  void CheckIndex(int index) const;

  std::vector<void*> items_;
  uint64_t changes_ = 0;
};

}  // namespace veska
