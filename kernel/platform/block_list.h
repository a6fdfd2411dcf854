// A sequence that takes insertions anywhere cheaply: the items are kept in blocks of at most
// twice kBlockSize, so an insertion moves at most one block's items, and a Fenwick tree over the
// block sizes finds the block of an index in a logarithmic number of steps.  Reading an item by
// index is therefore logarithmic too, where a flat vector is constant and its insertion linear.
#pragma once

#include <bit>
#include <cstddef>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

namespace veska {

template <class T>
class BlockList {
 public:
  BlockList() = default;
  // The items in blocks of kBlockSize.
  explicit BlockList(const std::vector<T>& items) : size_(items.size()) {
    for (std::size_t first = 0; first < items.size(); first += kBlockSize) {
      const std::size_t last = first + kBlockSize < items.size() ? first + kBlockSize : items.size();
      blocks_.emplace_back(items.begin() + static_cast<std::ptrdiff_t>(first),
                           items.begin() + static_cast<std::ptrdiff_t>(last));
    }
    RebuildTree();
  }

  std::size_t size() const noexcept { return size_; }

  // index < size().
  const T& operator[](std::size_t index) const {
    const auto [block, offset] = Locate(index);
    return blocks_[block][offset];
  }

  T& operator[](std::size_t index) {
    const auto [block, offset] = Locate(index);
    return blocks_[block][offset];
  }

  // The items from `index` < size() to the end of its block: what can be read in one run.
  std::span<const T> Run(std::size_t index) const {
    const auto [block, offset] = Locate(index);
    return std::span<const T>(blocks_[block]).subspan(offset);
  }

  // The index of the first item equal to `item`, or size() when there is none.
  std::size_t IndexOf(const T& item) const {
    std::size_t before = 0;
    for (const std::vector<T>& items : blocks_) {
      for (std::size_t offset = 0; offset < items.size(); ++offset) {
        if (items[offset] == item) return before + offset;
      }
      before += items.size();
    }
    return size_;
  }

  // Takes out the item at `index` < size().
  void Erase(std::size_t index) {
    const auto [block, offset] = Locate(index);
    std::vector<T>& items = blocks_[block];
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(offset));
    --size_;
    if (!items.empty()) {
      AddToBlock(block, -1);
      return;
    }
    blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(block));
    RebuildTree();
  }

  // Puts the item before the one at `index`; an index at or past the end appends.
  void Insert(std::size_t index, T item) {
    if (blocks_.empty()) {
      blocks_.emplace_back();
      RebuildTree();
    }
    std::size_t block = blocks_.size() - 1;
    std::size_t offset = blocks_[block].size();
    if (index < size_) std::tie(block, offset) = Locate(index);
    std::vector<T>& items = blocks_[block];
    items.insert(items.begin() + static_cast<std::ptrdiff_t>(offset), std::move(item));
    ++size_;
    if (items.size() <= 2 * kBlockSize) {
      AddToBlock(block, 1);
      return;
    }
    std::vector<T> upper(std::make_move_iterator(items.begin() + kBlockSize), std::make_move_iterator(items.end()));
    items.resize(kBlockSize);
    blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(block) + 1, std::move(upper));
    RebuildTree();
  }

  std::vector<T> ToVector() const {
    std::vector<T> all;
    all.reserve(size_);
    for (const std::vector<T>& items : blocks_) all.insert(all.end(), items.begin(), items.end());
    return all;
  }

 private:
  static constexpr std::size_t kBlockSize = 512;

  // The block that holds the item at `index`, and the item's place in it: the Fenwick descent
  // to the last block whose preceding blocks hold no more than `index` items.
  std::pair<std::size_t, std::size_t> Locate(std::size_t index) const {
    std::size_t block = 0;
    for (std::size_t step = std::bit_floor(blocks_.size()); step != 0; step >>= 1) {
      const std::size_t next = block + step;
      if (next < tree_.size() && tree_[next] <= index) {
        block = next;
        index -= tree_[next];
      }
    }
    return {block, index};
  }

  // Counts an item more or fewer in the block.
  void AddToBlock(std::size_t block, int change) {
    for (std::size_t node = block + 1; node < tree_.size(); node += node & (~node + 1)) {
      tree_[node] = static_cast<std::size_t>(static_cast<std::ptrdiff_t>(tree_[node]) + change);
    }
  }

  void RebuildTree() {
    tree_.assign(blocks_.size() + 1, 0);
    for (std::size_t node = 1; node < tree_.size(); ++node) {
      tree_[node] += blocks_[node - 1].size();
      const std::size_t parent = node + (node & (~node + 1));
      if (parent < tree_.size()) tree_[parent] += tree_[node];
    }
  }

  std::vector<std::vector<T>> blocks_;
  std::vector<std::size_t> tree_;  // 1-based: node i covers the blocks (i - lowbit(i), i]
  std::size_t size_ = 0;
};

}  // namespace veska
