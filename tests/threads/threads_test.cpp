// What is safe from any thread once start-up is over: looking up classes by name, creating
// elements by class name, property access by name on elements only that thread touches,
// object references written as numbers, and posting messages, which the main thread delivers.
// Built with ThreadSanitizer as well (scripts/test-threads.sh), which turns any race into a
// failure.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <thread>
#include <vector>

#include "kernel/classes/registry.h"
#include "kernel/elements/message.h"
#include "kernel/elements/named.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/application.h"
#include "kernel/platform/object_handles.h"

namespace veska {
namespace {

constexpr int kThreads = 4;
constexpr int kRounds = 2000;

template <class Work>
void RunOnThreads(Work work) {
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) threads.emplace_back(work, t);
  for (std::thread& thread : threads) thread.join();
}

TEST(Threads, LookupsCreationAndPropertiesByNameRunSideBySide) {
  (void)VeskaClasses();  // start-up happens before the threads
  std::vector<int> failures(kThreads, 0);
  RunOnThreads([&](int t) {
    for (int round = 0; round < kRounds; ++round) {
      if (GetVeskaClass(u"TStringEntity") != &TStringEntity::StaticClassInfo()) ++failures[t];
      if (GetVeskaClass(u"TNoSuchClass") != nullptr) ++failures[t];
      const std::unique_ptr<TElement> element(CreateElementByName(u"StringEntity"));
      if (!element || !SetPropStringByName(element.get(), u"Value", IntToStr(round))) {
        ++failures[t];
        continue;
      }
      if (GetPropStringByName(element.get(), u"value") != IntToStr(round)) ++failures[t];
      const int32_t handle = ObjectHandles::HandleOf(element.get());
      if (ObjectHandles::ObjectOf(handle) != element.get()) ++failures[t];
    }
  });
  EXPECT_EQ(failures, std::vector<int>(kThreads, 0));
}

TEST(Threads, MessagesPostedFromWorkersArriveOnTheMainThreadOnceInOrder) {
  TApplication host;
  TApplication* const previous = SetApplication(&host);
  std::map<int, std::vector<int32_t>> arrived;  // by sending thread, in order of arrival
  host.SetWindowProc([&](TWindowMessage& window_message) {
    auto* message = ObjectAs<TVeskaMessage>(ObjectHandles::ObjectOf(window_message.LParam));
    if (message == nullptr) return false;
    arrived[message->Message / kRounds].push_back(message->Message % kRounds);
    delete message;
    return true;
  });
  RunOnThreads([](int t) {
    for (int round = 0; round < kRounds; ++round) {
      (new TVeskaMessage(t * kRounds + round, nullptr, nullptr, nullptr, false))->Post();
    }
  });
  host.ProcessMessages();
  std::vector<int32_t> in_order(kRounds);
  for (int round = 0; round < kRounds; ++round) in_order[round] = round;
  ASSERT_EQ(arrived.size(), static_cast<std::size_t>(kThreads));
  for (const auto& [thread, messages] : arrived) EXPECT_EQ(messages, in_order) << "thread " << thread;
  SetApplication(previous);
}

}  // namespace
}  // namespace veska
