// Sorting, each beside the plain code it stands on, in the same run:
//  - TSortElementsByInteger and TSortElementsByString sort 10,000, 100,000 and 1,000,000
//    elements by a published integer (ID) and a published string (Value), beside std::stable_sort
//    of the same elements with the same by-name key reads in its comparison;
//  - a TSortedEntity filled with 100,000 elements one at a time, beside TSortElementsByString
//    sorting the same names once;
//  - a recursor that counts the elements of a 1,000,000-element tree, beside a hand-written loop
//    over the same tree.
// Each reports the time per element.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

#include "kernel/tools/recursor.h"
#include "kernel/tools/sort_elements.h"
#include "kernel/tools/sorted_entity.h"

namespace veska {
namespace {

void PerElement(benchmark::State& state, std::int64_t elements) {
  state.counters["per_element"] = benchmark::Counter(
      static_cast<double>(elements), benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

// n string entities with random IDs and values, in random order.
std::vector<TElement*> RandomElements(std::size_t n) {
  std::mt19937 random(2026);
  std::vector<TElement*> elements;
  for (std::size_t i = 0; i < n; ++i) {
    auto* element = new TStringEntity;
    element->ID = static_cast<int32_t>(random() % n);
    element->Value = u"value " + IntToStr(static_cast<int32_t>(random() % n));
    element->SetName(element->Value);
    elements.push_back(element);
  }
  return elements;
}

// The elements back in the entity in their first order, so that every run sorts the same input.
void Refill(TEntity& entity, const std::vector<TElement*>& elements) {
  for (std::size_t i = 0; i < elements.size(); ++i) entity.Put(static_cast<int>(i), elements[i]);
}

template <class Sorter>
void BM_Sort(benchmark::State& state, StringView property) {
  const std::vector<TElement*> elements = RandomElements(static_cast<std::size_t>(state.range(0)));
  TEntity entity;
  for (TElement* element : elements) entity.AddElement(element);
  Sorter sorter;
  sorter.SetPropertyName(String(property));
  sorter.SetInput(&entity);
  for (auto _ : state) {
    state.PauseTiming();
    Refill(entity, elements);
    state.ResumeTiming();
    sorter.DoIt();
  }
  PerElement(state, state.range(0));
}

template <class Less>
void BM_StableSort(benchmark::State& state, Less less) {
  const std::vector<TElement*> elements = RandomElements(static_cast<std::size_t>(state.range(0)));
  std::vector<TElement*> sorted;
  for (auto _ : state) {
    state.PauseTiming();
    sorted = elements;
    state.ResumeTiming();
    std::stable_sort(sorted.begin(), sorted.end(), less);
  }
  for (TElement* element : elements) delete element;
  PerElement(state, state.range(0));
}

void BM_SortByInteger(benchmark::State& state) { BM_Sort<TSortElementsByInteger>(state, u"ID"); }
void BM_StableSortByInteger(benchmark::State& state) {
  BM_StableSort(state, [](const TElement* a, const TElement* b) {
    return a->GetPropertyLongIntByName(u"ID") < b->GetPropertyLongIntByName(u"ID");
  });
}
void BM_SortByString(benchmark::State& state) { BM_Sort<TSortElementsByString>(state, u"Value"); }
void BM_StableSortByString(benchmark::State& state) {
  BM_StableSort(state, [](const TElement* a, const TElement* b) {
    return CompareText(a->GetPropertyStringByName(u"Value"), b->GetPropertyStringByName(u"Value")) < 0;
  });
}

constexpr int kSmall = 10'000;
constexpr int kLarge = 1'000'000;
BENCHMARK(BM_SortByInteger)->RangeMultiplier(10)->Range(kSmall, kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StableSortByInteger)->RangeMultiplier(10)->Range(kSmall, kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SortByString)->RangeMultiplier(10)->Range(kSmall, kLarge)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_StableSortByString)->RangeMultiplier(10)->Range(kSmall, kLarge)->Unit(benchmark::kMillisecond);

constexpr int kFill = 100'000;

void BM_SortedEntityFilledOneByOne(benchmark::State& state) {
  const std::vector<TElement*> elements = RandomElements(kFill);
  for (auto _ : state) {
    TSortedEntity entity;
    for (TElement* element : elements) entity.AddElement(element);
    state.PauseTiming();
    while (entity.ElementsCount() > 0) entity.RemoveElementIndex(entity.GetLastIndex());
    state.ResumeTiming();
  }
  for (TElement* element : elements) delete element;
  PerElement(state, kFill);
}
BENCHMARK(BM_SortedEntityFilledOneByOne)->Unit(benchmark::kMillisecond);

void BM_SameNamesSortedOnce(benchmark::State& state) { BM_Sort<TSortElementsByString>(state, u"Name"); }
BENCHMARK(BM_SameNamesSortedOnce)->Arg(kFill)->Unit(benchmark::kMillisecond);

constexpr int kBranches = 1'000;  // a root, 1,000 branches of 999 leaves: 1,000,000 elements

std::unique_ptr<TEntity> Tree() {
  auto root = std::make_unique<TEntity>();
  for (int b = 0; b < kBranches; ++b) {
    auto* branch = new TEntity;
    root->AddElement(branch);
    for (int leaf = 1; leaf < kBranches; ++leaf) branch->AddElement(new TOwnerElement);
  }
  return root;
}

class TCountingRecursor : public TRecursor {
  VESKA_CLASS(TCountingRecursor, TRecursor, u"bench")
 public:
  std::int64_t count = 0;
  bool QProcessBefore(TElement* /*element*/) override { return true; }
  void Process(TElement* /*element*/) override { ++count; }
};

void BM_RecursorWalk(benchmark::State& state) {
  const std::unique_ptr<TEntity> tree = Tree();
  TCountingRecursor recursor;
  recursor.SetInput(tree.get());
  for (auto _ : state) {
    recursor.count = 0;
    recursor.DoIt();
  }
  if (recursor.count != std::int64_t{kBranches} * kBranches + 1) state.SkipWithError("the walk missed elements");
  PerElement(state, std::int64_t{kBranches} * kBranches);
}
BENCHMARK(BM_RecursorWalk)->Unit(benchmark::kMillisecond);

// Depth first with a stack of entities and positions, as one writes it by hand.
void BM_HandWrittenWalk(benchmark::State& state) {
  const std::unique_ptr<TEntity> tree = Tree();
  std::int64_t count = 0;
  for (auto _ : state) {
    count = 1;
    std::vector<std::pair<TEntity*, int>> stack{{tree.get(), 0}};
    while (!stack.empty()) {
      auto& [entity, next] = stack.back();
      if (next == entity->ElementsCount()) {
        stack.pop_back();
        continue;
      }
      TElement* member = entity->Get(next++);
      ++count;
      if (auto* inner = ObjectAs<TEntity>(member)) stack.emplace_back(inner, 0);
    }
  }
  if (count != std::int64_t{kBranches} * kBranches + 1) state.SkipWithError("the walk missed elements");
  PerElement(state, std::int64_t{kBranches} * kBranches);
}
BENCHMARK(BM_HandWrittenWalk)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veska
