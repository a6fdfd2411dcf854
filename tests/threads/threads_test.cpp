// What is safe from any thread once start-up is over: looking up classes by name, creating
// elements by class name, property access by name on elements only that thread touches,
// object references written as numbers, and posting messages, which the world delivers on the
// main thread.
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
#include "kernel/tools/world.h"

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

// A message that counts its own end, so that none can leak unnoticed.
class TCountedMessage : public TVeskaMessage {
  VESKA_CLASS(TCountedMessage, TVeskaMessage, u"threads_test")
 public:
  using TVeskaMessage::TVeskaMessage;
  ~TCountedMessage() override { ++freed; }
  static inline int freed = 0;  // only the main thread frees messages
};

// The world's main tool, which takes every message posted without a receiver.
class TArrivals : public TTechnology {
  VESKA_CLASS(TArrivals, TTechnology, u"threads_test")
 public:
  void HandleMessage(TVeskaMessage* message, bool& /*handled*/) override {
    arrived[message->Message / kPosts].push_back(message->Message % kPosts);
  }
  static constexpr int kPosts = 100'000;
  std::map<int, std::vector<int32_t>> arrived;  // by posting thread, in order of arrival
};

TEST(Threads, MessagesPostedFromWorkersReachTheWorldOnTheMainThreadOnceInOrder) {
  TApplication host;
  TApplication* const previous = SetApplication(&host);
  {
    TWorld world;
    auto* arrivals = new TArrivals;
    world.SetMainTool(arrivals);
    RunOnThreads([](int t) {
      for (int post = 0; post < TArrivals::kPosts; ++post) {
        (new TCountedMessage(t * TArrivals::kPosts + post, nullptr, nullptr, nullptr, false))->Post();
      }
    });
    host.ProcessMessages();
    std::vector<int32_t> in_order(TArrivals::kPosts);
    for (int post = 0; post < TArrivals::kPosts; ++post) in_order[post] = post;
    ASSERT_EQ(arrivals->arrived.size(), static_cast<std::size_t>(kThreads));
    for (const auto& [thread, messages] : arrivals->arrived) EXPECT_TRUE(messages == in_order) << "thread " << thread;
  }
  EXPECT_EQ(TCountedMessage::freed, kThreads * TArrivals::kPosts);
  SetApplication(previous);
}

}  // namespace
}  // namespace veska
