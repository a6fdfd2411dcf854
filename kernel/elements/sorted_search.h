// The binary search of the lists kept in ascending order of a key (sorted entities, the class
// registry, the sorting tools' work list), and the order that inserting items one by one at the
// places it gives produces.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "kernel/platform/block_list.h"

namespace veska {

// Where a key stands among `count` items in ascending order.  `compare(i)` compares the key with
// item i: negative when the key sorts before it.  Returns the index of an item equal to the key,
// or -1; `insert_index` is where a new item with the key goes, -1 meaning after the last.
//
// The search tests the last item, then the first, then successive midpoints, and stops at the
// first equal item it meets: it does not look for the first or last of a run of equal keys.  A
// new item equal to one met is placed directly after it (after the last item when that was the
// one met, as -1 appends).  This is deliberate: the order is stable only for unique keys, and
// items added in ascending order cost one comparison each.
template <class CompareWithItem>
int FindSortedIndex(int count, CompareWithItem compare, int& insert_index) {
  insert_index = -1;
  if (count <= 0) return -1;
  int lo = 0;
  int hi = count - 1;
  int order = compare(hi);
  if (order > 0) return -1;
  if (order == 0) return hi;
  if (hi <= lo) {
    insert_index = lo;
    return -1;
  }
  order = compare(lo);
  if (order < 0) {
    insert_index = lo;
    return -1;
  }
  if (order == 0) {
    insert_index = lo + 1;
    return lo;
  }
  for (;;) {
    insert_index = hi;
    if (hi - lo < 2) return -1;
    const int mid = lo + (hi - lo) / 2;
    order = compare(mid);
    if (order < 0) {
      hi = mid;
    } else if (order > 0) {
      lo = mid;
    } else {
      insert_index = mid + 1;
      return mid;
    }
    if (lo >= hi) return -1;
  }
}

// The items in the order that inserting them one by one, in their order, into a list produces,
// each at the place FindSortedIndex gives for it with `compare(item, listed)` (negative when the
// item sorts before the listed one).  The comparisons are exactly those of that insertion, in
// the same order; the list is a block list, so the n insertions cost O(n log n) moves and
// lookups instead of the O(n^2) of a flat list.
template <class T, class Compare>
std::vector<T> BinaryInsertionOrder(std::span<const T> items, Compare compare) {
  BlockList<T> order;
  for (const T& item : items) {
    int insert_index = -1;
    FindSortedIndex(
        static_cast<int>(order.size()),
        [&](int index) { return compare(item, order[static_cast<std::size_t>(index)]); }, insert_index);
    order.Insert(insert_index < 0 ? order.size() : static_cast<std::size_t>(insert_index), item);
  }
  return order.ToVector();
}

// The order BinaryInsertionOrder gives for items compared by their ranks alone (equal ranks
// compare equal, a lower rank sorts first), computed from the ranks: how many items of lower and
// of equal rank the list holds decides where the search meets an equal item, so only the items
// of one rank move, and the items are returned as positions into `ranks`.  Every rank is below
// `rank_count`.
std::vector<uint32_t> BinaryInsertionOrderOfRanks(std::span<const uint32_t> ranks, uint32_t rank_count);

}  // namespace veska
