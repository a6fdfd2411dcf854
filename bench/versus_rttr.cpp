// By-name property access and creation by class name, veska beside RTTR in one program, with
// the plain C++ baselines in the same run.  Both libraries describe the same application class
// (an int, a double, a string and a bool property) and look every name up afresh on each call;
// the veska class derives from TElement, so that its lookups pass the inherited properties too.
//
// At the end the program prints one table: each operation's time in both libraries (the median
// when repetitions are asked for), the ratio veska / RTTR and the goal of that row.
//   taskset -c 1 build/<dir>/bench/veska_bench_versus_rttr --benchmark_repetitions=5
//       --benchmark_enable_random_interleaving=true
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <rttr/registration>
#include <string>

#include "kernel/classes/registry.h"
#include "kernel/elements/element.h"

namespace veska_bench {

using veska::String;

// --- The application class in veska ---------------------------------------------------------

class TPump : public veska::TElement {
  VESKA_CLASS(TPump, veska::TElement, u"Pumps")
 public:
  int32_t Pressure = 0;
  double Flow = 0;
  bool Running = false;

  const String& GetLabel() const { return label_; }
  void SetLabel(const String& label) { label_ = label; }

  static void Publish(veska::Publisher<TPump>& p) {
    p.Field(u"Pressure", &TPump::Pressure);
    p.Field(u"Flow", &TPump::Flow);
    p.Property(u"Label", &TPump::GetLabel, &TPump::SetLabel);
    p.Field(u"Running", &TPump::Running);
  }

 private:
  String label_;
};

// --- The same class in RTTR -----------------------------------------------------------------

struct RttrPump {
  int Pressure = 0;
  double Flow = 0;
  bool Running = false;

  const std::string& GetLabel() const { return label_; }
  void SetLabel(const std::string& label) { label_ = label; }

 private:
  std::string label_;
};

void RegisterBothLibraries() {
  static const bool registered = [] {
    veska::RegisterVeskaClass<TPump>();
    rttr::registration::class_<RttrPump>("TPump")
        .constructor<>()(rttr::policy::ctor::as_raw_ptr)
        .property("Pressure", &RttrPump::Pressure)
        .property("Flow", &RttrPump::Flow)
        .property("Label", &RttrPump::GetLabel, &RttrPump::SetLabel)
        .property("Running", &RttrPump::Running);
    return true;
  }();
  (void)registered;
}

// One instance of each, with the values the rows read.
struct Pumps {
  Pumps() {
    RegisterBothLibraries();
    veska.Pressure = rttr.Pressure = 42;
    veska.SetLabel(u"pump-0001");
    rttr.SetLabel("pump-0001");
  }
  TPump veska;
  RttrPump rttr;
};

// --- Typed read of an int by name -----------------------------------------------------------

void IntRead_veska(benchmark::State& state) {
  Pumps pumps;
  veska::TElement& element = pumps.veska;
  for (auto _ : state) benchmark::DoNotOptimize(element.GetPropertyIntByName(u"Pressure"));
}

void IntRead_rttr(benchmark::State& state) {
  Pumps pumps;
  for (auto _ : state) {
    const rttr::property property = rttr::type::get(pumps.rttr).get_property("Pressure");
    benchmark::DoNotOptimize(property.get_value(pumps.rttr).get_value<int>());
  }
}

void IntRead_direct(benchmark::State& state) {
  Pumps pumps;
  TPump* pump = &pumps.veska;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pump);
    benchmark::DoNotOptimize(pump->Pressure);
  }
}

// --- Typed write of an int by name ----------------------------------------------------------

void IntWrite_veska(benchmark::State& state) {
  Pumps pumps;
  veska::TElement& element = pumps.veska;
  int32_t value = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(element.SetPropertyIntByName(u"Pressure", ++value));
  }
  if (pumps.veska.Pressure != value) state.SkipWithError("the int was not written");
}

void IntWrite_rttr(benchmark::State& state) {
  Pumps pumps;
  int value = 0;
  for (auto _ : state) {
    const rttr::property property = rttr::type::get(pumps.rttr).get_property("Pressure");
    benchmark::DoNotOptimize(property.set_value(pumps.rttr, ++value));
  }
  if (pumps.rttr.Pressure != value) state.SkipWithError("the int was not written");
}

// --- Reading as text ------------------------------------------------------------------------

void IntAsText_veska(benchmark::State& state) {
  Pumps pumps;
  veska::TElement& element = pumps.veska;
  for (auto _ : state) benchmark::DoNotOptimize(element.GetPropertyStringByName(u"Pressure"));
}

void IntAsText_rttr(benchmark::State& state) {
  Pumps pumps;
  for (auto _ : state) {
    const rttr::property property = rttr::type::get(pumps.rttr).get_property("Pressure");
    benchmark::DoNotOptimize(property.get_value(pumps.rttr).to_string());
  }
}

void StringAsText_veska(benchmark::State& state) {
  Pumps pumps;
  veska::TElement& element = pumps.veska;
  for (auto _ : state) benchmark::DoNotOptimize(element.GetPropertyStringByName(u"Label"));
}

void StringAsText_rttr(benchmark::State& state) {
  Pumps pumps;
  for (auto _ : state) {
    const rttr::property property = rttr::type::get(pumps.rttr).get_property("Label");
    benchmark::DoNotOptimize(property.get_value(pumps.rttr).to_string());
  }
}

// --- Writing an int from text ---------------------------------------------------------------

void IntFromText_veska(benchmark::State& state) {
  Pumps pumps;
  veska::TElement& element = pumps.veska;
  const String text = u"123";
  for (auto _ : state) benchmark::DoNotOptimize(element.SetPropertyStringByName(u"Pressure", text));
  if (pumps.veska.Pressure != 123) state.SkipWithError("the text was not written");
}

// RTTR writes a property only from a value of the property's own type: the text is converted first.
void IntFromText_rttr(benchmark::State& state) {
  Pumps pumps;
  const std::string text = "123";
  for (auto _ : state) {
    const rttr::property property = rttr::type::get(pumps.rttr).get_property("Pressure");
    rttr::variant value = text;
    value.convert(property.get_type());
    benchmark::DoNotOptimize(property.set_value(pumps.rttr, value));
  }
  if (pumps.rttr.Pressure != 123) state.SkipWithError("the text was not written");
}

// --- Creation by class name -----------------------------------------------------------------

void Create_veska(benchmark::State& state) {
  RegisterBothLibraries();
  veska::VeskaClasses();  // the start-up registrations stay outside the timing
  for (auto _ : state) {
    veska::TElement* element = veska::CreateElementByName(u"TPump");
    benchmark::DoNotOptimize(element);
    delete element;
  }
}

void Create_rttr(benchmark::State& state) {
  RegisterBothLibraries();
  for (auto _ : state) {
    const rttr::type type = rttr::type::get_by_name("TPump");
    rttr::variant pump = type.create();
    benchmark::DoNotOptimize(pump);
    type.destroy(pump);
  }
}

void Create_new(benchmark::State& state) {
  for (auto _ : state) {
    auto* pump = new TPump;
    benchmark::DoNotOptimize(pump);
    delete pump;
  }
}

BENCHMARK(IntRead_veska);
BENCHMARK(IntRead_rttr);
BENCHMARK(IntRead_direct);
BENCHMARK(IntWrite_veska);
BENCHMARK(IntWrite_rttr);
BENCHMARK(IntAsText_veska);
BENCHMARK(IntAsText_rttr);
BENCHMARK(StringAsText_veska);
BENCHMARK(StringAsText_rttr);
BENCHMARK(IntFromText_veska);
BENCHMARK(IntFromText_rttr);
BENCHMARK(Create_veska);
BENCHMARK(Create_rttr);
BENCHMARK(Create_new);

// --- The table of ratios --------------------------------------------------------------------

// Passes every run on to the console and keeps one time per benchmark: the median of the
// repetitions, or the single run when there are none.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.error_occurred) continue;
      const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
      if (median || (run.run_type == Run::RT_Iteration && run.repetitions <= 1)) {
        nanoseconds_[run.run_name.function_name] = run.GetAdjustedCPUTime();
      }
    }
  }

  double Time(const std::string& name) const {
    const auto found = nanoseconds_.find(name);
    return found != nanoseconds_.end() ? found->second : 0;
  }

 private:
  std::map<std::string, double> nanoseconds_;
};

struct Row {
  const char* operation;
  const char* veska;
  const char* other;  // RTTR, or the plain C++ that the row compares with
  double goal;        // the highest ratio veska / other that meets the goal
};

constexpr Row kRows[] = {
    {"typed read of an int by name", "IntRead_veska", "IntRead_rttr", 0.5},
    {"typed write of an int by name", "IntWrite_veska", "IntWrite_rttr", 0.5},
    {"read an int as text", "IntAsText_veska", "IntAsText_rttr", 0.5},
    {"read a 9-character string as text", "StringAsText_veska", "StringAsText_rttr", 0.5},
    {"write an int from the text \"123\"", "IntFromText_veska", "IntFromText_rttr", 0.5},
    {"create by class name and destroy", "Create_veska", "Create_rttr", 0.5},
    {"create by class name against new+delete", "Create_veska", "Create_new", 1.5},
};

void PrintRatios(const RatioReporter& reporter) {
  std::printf("\n%-42s %10s %10s %7s %6s\n", "operation", "veska ns", "other ns", "ratio", "goal");
  for (const Row& row : kRows) {
    const double veska = reporter.Time(row.veska);
    const double other = reporter.Time(row.other);
    if (veska <= 0 || other <= 0) continue;  // filtered out of this run
    const double ratio = veska / other;
    std::printf("%-42s %10.1f %10.1f %7.2f %6.2f %s\n", row.operation, veska, other, ratio, row.goal,
                ratio <= row.goal ? "met" : "MISSED");
  }
}

}  // namespace veska_bench

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  veska_bench::RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  veska_bench::PrintRatios(reporter);
  benchmark::Shutdown();
  return 0;
}
