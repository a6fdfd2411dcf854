// Finding the settings of a class in the system register's class models: FindClassName over an
// inheritance model of every registered class plus 1,000 classes of an application, beside a
// linear scan of the same class models that keeps the deepest one covering the class.  Both
// answer the same model for every class, which the set-up checks.
#include <benchmark/benchmark.h>

#include <deque>
#include <random>
#include <vector>

#include "kernel/classes/registry.h"
#include "kernel/models/system_register.h"

namespace veska {
namespace {

constexpr int kApplicationClasses = 1'000;

// The application's classes: each descends from a registered element class or from one of the
// application's classes made before it, as an application's hierarchy grows on the library's.
const std::vector<const ClassInfo*>& ApplicationClasses() {
  static const std::vector<const ClassInfo*> classes = [] {
    static std::deque<ClassInfo> made;
    static std::deque<String> names;
    std::vector<const ClassInfo*> parents;
    for (int i = 0; i < VeskaClasses().ElementsCount(); ++i) {
      const auto* record = ObjectAs<TVeskaClass>(VeskaClasses().Get(i));
      if (record != nullptr && record->ElementClass() != nullptr) parents.push_back(record->ElementClass());
    }
    std::vector<const ClassInfo*> result;
    std::mt19937 random(2026);
    for (int i = 0; i < kApplicationClasses; ++i) {
      const ClassInfo* parent = parents[random() % parents.size()];
      names.push_back(u"TApplicationClass" + IntToStr(i));
      made.emplace_back(names.back(), parent, u"Application", parent->InstanceSize(), nullptr, nullptr);
      RegisterVeskaClass(made.back());
      parents.push_back(&made.back());
      result.push_back(&made.back());
    }
    return result;
  }();
  return classes;
}

// Every registered class, application classes included.
std::vector<const ClassInfo*> AllClasses() {
  ApplicationClasses();
  std::vector<const ClassInfo*> classes;
  for (int i = 0; i < VeskaClasses().ElementsCount(); ++i) {
    const auto* record = ObjectAs<TVeskaClass>(VeskaClasses().Get(i));
    if (record != nullptr && record->ElementClass() != nullptr) classes.push_back(record->ElementClass());
  }
  return classes;
}

// A class model for every class, made by NewClassName as a file or script makes them.
struct Models {
  Models() {
    for (const ClassInfo* cls : classes) root->SetNewClassName(cls->Name());
    for (int i = 0; i < static_cast<int>(classes.size()); ++i) {
      root->SetFindClassName(classes[i]->Name());
      flat.push_back(root->ActualItem());
    }
  }
  std::vector<const ClassInfo*> classes = AllClasses();
  std::unique_ptr<TRegisterClassModels> root = std::make_unique<TRegisterClassModels>();
  std::vector<TInheritanceModel*> flat;  // the same models in one list
};

// The model that covers the class most specifically, by looking at every model.
TInheritanceModel* ScanForClass(const std::vector<TInheritanceModel*>& models, const ClassInfo& cls) {
  TInheritanceModel* best = nullptr;
  int best_depth = -1;
  for (TInheritanceModel* model : models) {
    const ClassInfo* modelled = model->ElementClass();
    if (modelled == nullptr || !cls.InheritsFrom(*modelled)) continue;
    int depth = 0;
    for (const ClassInfo* c = modelled; c != nullptr; c = c->Parent()) ++depth;
    if (depth > best_depth) {
      best = model;
      best_depth = depth;
    }
  }
  return best;
}

void BM_FindClassName_InheritanceModel(benchmark::State& state) {
  Models models;
  std::size_t next = 0;
  for (auto _ : state) {
    models.root->SetFindClassName(models.classes[next]->Name());
    benchmark::DoNotOptimize(models.root->ActualItem());
    next = (next + 1) % models.classes.size();
  }
  state.counters["classes"] = static_cast<double>(models.classes.size());
}
BENCHMARK(BM_FindClassName_InheritanceModel);

void BM_FindClassName_LinearScan(benchmark::State& state) {
  Models models;
  for (std::size_t i = 0; i < models.classes.size(); ++i) {
    if (ScanForClass(models.flat, *models.classes[i]) != models.flat[i]) {
      state.SkipWithError("the scan and the inheritance model disagree");
      return;
    }
  }
  std::size_t next = 0;
  for (auto _ : state) {
    const ClassInfo* cls = GetVeskaClass(models.classes[next]->Name());
    benchmark::DoNotOptimize(ScanForClass(models.flat, *cls));
    next = (next + 1) % models.classes.size();
  }
  state.counters["classes"] = static_cast<double>(models.classes.size());
}
BENCHMARK(BM_FindClassName_LinearScan);

}  // namespace
}  // namespace veska
