// Costs of the object model, each measured beside the plain C++ it stands in for, so that the
// ratio can be read off a single run: property access by name against the direct call, creation
// by class name against new, a million owned members against a vector of plain allocations.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "kernel/elements/property_access.h"
#include "kernel/classes/registry.h"
#include "kernel/elements/entity.h"
#include "kernel/elements/named.h"
#include "kernel/text/string_numbers.h"

namespace veska {
namespace {

constexpr int kMillion = 1'000'000;

std::unique_ptr<TNameElement> NamedElement() {
  auto element = std::make_unique<TNameElement>();
  element->SetName(u"Hlavni_vypinac_rozvodny");
  return element;
}

// --- Reading the name -----------------------------------------------------------------------

void BM_GetName_Direct(benchmark::State& state) {
  auto element = NamedElement();
  TElement* e = element.get();
  for (auto _ : state) {
    benchmark::DoNotOptimize(e);
    String name = e->GetName();
    benchmark::DoNotOptimize(name);
  }
}
BENCHMARK(BM_GetName_Direct);

void BM_GetName_ByName(benchmark::State& state) {
  auto element = NamedElement();
  TElement* e = element.get();
  for (auto _ : state) {
    benchmark::DoNotOptimize(e);
    String name = GetPropStringByName(e, u"Name");
    benchmark::DoNotOptimize(name);
  }
  if (GetPropStringByName(e, u"Name") != e->GetName()) state.SkipWithError("the name read by name differs");
}
BENCHMARK(BM_GetName_ByName);

// --- Writing the integer ID -----------------------------------------------------------------

void BM_SetID_Direct(benchmark::State& state) {
  auto element = NamedElement();
  TElement* e = element.get();
  int32_t value = 12345;
  for (auto _ : state) {
    benchmark::DoNotOptimize(value);
    e->ID = value;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_SetID_Direct);

// What the text form alone costs: the same text parsed, then the direct write.
void BM_SetID_ParseText(benchmark::State& state) {
  auto element = NamedElement();
  TElement* e = element.get();
  const String text = u"12345";
  for (auto _ : state) {
    benchmark::DoNotOptimize(text.data());
    e->ID = StrToLongInt(text);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_SetID_ParseText);

void BM_SetID_ByName(benchmark::State& state) {
  auto element = NamedElement();
  TElement* e = element.get();
  const String text = u"12345";
  for (auto _ : state) {
    benchmark::DoNotOptimize(text.data());
    bool found = SetPropStringByName(e, u"ID", text);
    benchmark::DoNotOptimize(found);
    benchmark::ClobberMemory();
  }
  if (e->ID != 12345) state.SkipWithError("the ID was not written by name");
}
BENCHMARK(BM_SetID_ByName);

// --- Creating one element -------------------------------------------------------------------

void BM_Create_New(benchmark::State& state) {
  for (auto _ : state) {
    TElement* element = new TNameElement;
    benchmark::DoNotOptimize(element);
    delete element;
  }
}
BENCHMARK(BM_Create_New);

void BM_Create_ByClassName(benchmark::State& state) {
  VeskaClasses();  // the start-up registrations stay outside the timing
  const String class_name = u"TNameElement";
  for (auto _ : state) {
    TElement* element = CreateElementByName(class_name);
    benchmark::DoNotOptimize(element);
    delete element;
  }
}
BENCHMARK(BM_Create_ByClassName);

// --- A million members ----------------------------------------------------------------------

void BM_Million_PlainVector(benchmark::State& state) {
  for (auto _ : state) {
    std::vector<TOwnerElement*> elements;
    for (int i = 0; i < kMillion; ++i) elements.push_back(new TOwnerElement);
    benchmark::DoNotOptimize(elements.data());
    // Last to first, the order in which an entity frees its members.
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) delete *element;
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kMillion);
}
BENCHMARK(BM_Million_PlainVector)->Unit(benchmark::kMillisecond);

// Adding tells each member of its owner; freeing the entity frees the members.
void BM_Million_OwnerEntity(benchmark::State& state) {
  for (auto _ : state) {
    auto* entity = new TOwnerEntity;
    for (int i = 0; i < kMillion; ++i) entity->AddElement(new TOwnerElement);
    benchmark::DoNotOptimize(entity);
    delete entity;
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * kMillion);
}
BENCHMARK(BM_Million_OwnerEntity)->Unit(benchmark::kMillisecond);

// The two halves of the line above, timed apart.
void BM_Million_OwnerEntity_AddOnly(benchmark::State& state) {
  for (auto _ : state) {
    auto* entity = new TOwnerEntity;
    for (int i = 0; i < kMillion; ++i) entity->AddElement(new TOwnerElement);
    benchmark::DoNotOptimize(entity);
    state.PauseTiming();
    delete entity;
    state.ResumeTiming();
  }
}
BENCHMARK(BM_Million_OwnerEntity_AddOnly)->Unit(benchmark::kMillisecond);

void BM_Million_OwnerEntity_FreeOnly(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    auto* entity = new TOwnerEntity;
    for (int i = 0; i < kMillion; ++i) entity->AddElement(new TOwnerElement);
    state.ResumeTiming();
    delete entity;
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_Million_OwnerEntity_FreeOnly)->Unit(benchmark::kMillisecond);

void BM_Million_WholeSize(benchmark::State& state) {
  TOwnerEntity entity;
  for (int i = 0; i < kMillion; ++i) entity.AddElement(new TOwnerElement);
  for (auto _ : state) {
    int32_t size = entity.GetWholeSize();
    benchmark::DoNotOptimize(size);
  }
  state.SetItemsProcessed(state.iterations() * kMillion);
}
BENCHMARK(BM_Million_WholeSize)->Unit(benchmark::kMillisecond);

// --- Sizes ----------------------------------------------------------------------------------

void BM_ObjectSizes(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(state.iterations());
  state.counters["sizeof_TElement"] = sizeof(TElement);
  state.counters["sizeof_TNameElement"] = sizeof(TNameElement);
  state.counters["sizeof_TOwnerElement"] = sizeof(TOwnerElement);
  state.counters["sizeof_TOwnerEntity"] = sizeof(TOwnerEntity);
}
BENCHMARK(BM_ObjectSizes)->Iterations(1);

}  // namespace
}  // namespace veska
