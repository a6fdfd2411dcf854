// The host's message queue and a technology's run, each beside the plain code it stands on.
//
// Queue: 1,000,000 window messages posted and then delivered to a window procedure that takes
// them, beside a std::deque of the same records pushed and popped under one mutex.  Both report
// the time per message.
//
// Technology: a TSeqTechnology of three tools run 100,000 times, beside the same three tools'
// DoIt called directly through the base class, as a technology's caller would otherwise call
// them.  Both report the time per run of three tools.
#include <benchmark/benchmark.h>

#include <deque>
#include <mutex>

#include "kernel/platform/application.h"
#include "kernel/tools/technology.h"

namespace veska {
namespace {

constexpr int kMessages = 1'000'000;
constexpr int kRuns = 100'000;

// Seconds per message or per run, shown with an SI prefix ("31.7n" is 31.7 ns).
void PerItem(benchmark::State& state, int items) {
  state.counters["per_item"] =
      benchmark::Counter(items, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void BM_QueuePostAndDeliver(benchmark::State& state) {
  TApplication host;
  std::int64_t delivered = 0;
  host.SetWindowProc([&](TWindowMessage& message) {
    delivered += message.WParam;
    return true;
  });
  for (auto _ : state) {
    for (int i = 0; i < kMessages; ++i) host.PostMessage(32868, 1, i);
    host.ProcessMessages();
  }
  benchmark::DoNotOptimize(delivered);
  PerItem(state, kMessages);
}
BENCHMARK(BM_QueuePostAndDeliver)->Unit(benchmark::kMillisecond);

void BM_DequeUnderMutex(benchmark::State& state) {
  std::mutex mutex;
  std::deque<TWindowMessage> queue;
  std::int64_t delivered = 0;
  for (auto _ : state) {
    for (int i = 0; i < kMessages; ++i) {
      TWindowMessage message{32868, 1, i, {}};
      std::lock_guard lock(mutex);
      queue.push_back(std::move(message));
    }
    for (;;) {
      TWindowMessage message;
      {
        std::lock_guard lock(mutex);
        if (queue.empty()) break;
        message = std::move(queue.front());
        queue.pop_front();
      }
      delivered += message.WParam;
    }
  }
  benchmark::DoNotOptimize(delivered);
  PerItem(state, kMessages);
}
BENCHMARK(BM_DequeUnderMutex)->Unit(benchmark::kMillisecond);

// A tool that passes its input on as its output, as a step of a pipeline does.
class TPassOn : public TTool {
  VESKA_CLASS(TPassOn, TTool, u"bench")
 public:
  void DoIt() override {
    TTool::DoIt();
    SetOutput(GetInput());
  }
};

void BM_SeqTechnologyOfThreeTools(benchmark::State& state) {
  TSeqTechnology technology;
  for (int i = 0; i < 3; ++i) technology.AddTool(new TPassOn);
  TOwnerElement input;
  for (auto _ : state) {
    for (int run = 0; run < kRuns; ++run) {
      technology.SetInput(&input);
      technology.DoIt();
    }
  }
  if (technology.GetOutput() != &input) state.SkipWithError("the pipeline lost its input");
  PerItem(state, kRuns);
}
BENCHMARK(BM_SeqTechnologyOfThreeTools)->Unit(benchmark::kMillisecond);

void BM_ThreeDirectVirtualCalls(benchmark::State& state) {
  TPassOn first, second, third;
  TTool* const tools[] = {&first, &second, &third};
  TOwnerElement input;
  for (auto _ : state) {
    for (int run = 0; run < kRuns; ++run) {
      TElement* data = &input;
      for (TTool* tool : tools) {
        tool->SetInput(data);
        tool->DoIt();
        data = tool->GetOutput();
      }
      benchmark::DoNotOptimize(data);
    }
  }
  PerItem(state, kRuns);
}
BENCHMARK(BM_ThreeDirectVirtualCalls)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace veska
