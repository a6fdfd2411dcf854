// The program of the comparison with RTTR: Google Benchmark runs both halves (veska_side.cpp,
// rttr_side.cpp) in one process, and at the end one table gives each operation's time in both
// libraries (the median when repetitions are asked for), the ratio veska / other and the goal
// of that row.
//   taskset -c 1 veska_bench_versus_rttr --benchmark_repetitions=5
//       --benchmark_enable_random_interleaving=true
#include <benchmark/benchmark.h>

#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace veska_bench {

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
