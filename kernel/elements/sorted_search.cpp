#include "kernel/elements/sorted_search.h"

#include <algorithm>
#include <unordered_map>

namespace veska {
namespace {

// Counts of items by rank, with the count of all ranks below one in logarithmic steps.
class RankCounts {
 public:
  explicit RankCounts(uint32_t rank_count) : tree_(std::size_t{rank_count} + 1, 0) {}
  void Add(uint32_t rank) {
    for (std::size_t node = std::size_t{rank} + 1; node < tree_.size(); node += node & (~node + 1)) ++tree_[node];
  }
  uint32_t Below(uint32_t rank) const {
    uint32_t count = 0;
    for (std::size_t node = rank; node != 0; node &= node - 1) count += tree_[node];
    return count;
  }

 private:
  std::vector<uint32_t> tree_;  // 1-based Fenwick tree
};

// Where a new item goes among the `equal` items of its rank, in a list of `count` items of which
// `below` have a lower rank: after the equal item that the search meets, which the positions
// alone decide.
std::size_t PlaceInRun(uint32_t below, uint32_t equal, uint32_t count) {
  const auto compare = [&](int index) {
    const auto position = static_cast<uint32_t>(index);
    return position < below ? 1 : position >= below + equal ? -1 : 0;
  };
  int insert_index = -1;
  FindSortedIndex(static_cast<int>(count), compare, insert_index);
  return insert_index < 0 ? equal : static_cast<std::size_t>(insert_index) - below;
}

}  // namespace

std::vector<uint32_t> BinaryInsertionOrderOfRanks(std::span<const uint32_t> ranks, uint32_t rank_count) {
  // Each rank's items take a stretch of the result, ranks in order, as long as the rank has
  // items; an item placed among its equals shifts the ones after it within the stretch, or, in a
  // long stretch, goes into a block list of its own.
  constexpr uint32_t kLongRun = 1024;
  std::vector<uint32_t> run_start(std::size_t{rank_count} + 1, 0);
  for (uint32_t rank : ranks) ++run_start[std::size_t{rank} + 1];
  for (std::size_t rank = 0; rank < rank_count; ++rank) run_start[rank + 1] += run_start[rank];
  std::vector<uint32_t> order(ranks.size());
  std::vector<uint32_t> run_size(rank_count, 0);
  std::unordered_map<uint32_t, BlockList<uint32_t>> long_runs;
  RankCounts counts(rank_count);
  for (uint32_t item = 0; item < ranks.size(); ++item) {
    const uint32_t rank = ranks[item];
    const uint32_t equal = run_size[rank]++;
    const std::size_t place = equal == 0 ? 0 : PlaceInRun(counts.Below(rank), equal, item);
    counts.Add(rank);
    if (run_start[rank + 1] - run_start[rank] > kLongRun) {
      long_runs[rank].Insert(place, item);
      continue;
    }
    uint32_t* run = order.data() + run_start[rank];
    std::copy_backward(run + place, run + equal, run + equal + 1);
    run[place] = item;
  }
  for (auto& [rank, run] : long_runs) {
    const std::vector<uint32_t> items = run.ToVector();
    std::copy(items.begin(), items.end(), order.begin() + run_start[rank]);
  }
  return order;
}

}  // namespace veska
