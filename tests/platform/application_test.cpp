#include "kernel/platform/application.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <vector>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"

namespace veska {
namespace {

// Counts how often the discard of each message runs.
class DiscardCounter {
 public:
  explicit DiscardCounter(std::size_t messages) : counts_(messages, 0) {}
  std::function<void()> For(std::size_t message) {
    return [this, message] { ++counts_[message]; };
  }
  const std::vector<int>& Counts() const { return counts_; }

 private:
  std::vector<int> counts_;
};

// A host that records what a real user interface would show.
class RecordingHost : public TApplication {
 public:
  std::vector<TCursor> cursors;
  std::vector<TProgressEvent> events;
  std::vector<TProgressState> states;

 protected:
  void CursorChanged(TCursor cursor) override { cursors.push_back(cursor); }
  void ProgressChanged(TProgressEvent event, const TProgressState& state) override {
    events.push_back(event);
    states.push_back(state);
  }
};

TEST(Application, StartsWithThePlatformDefaultsOnTheCreatingThread) {
  const TApplication host;
  EXPECT_NE(host.MainFormHandle(), TApplication().MainFormHandle());
  // This test program is the running executable; the title is its name without extension.
  EXPECT_EQ(std::filesystem::path(ToUtf8(host.ExeName())).filename().string(), "veska_platform_tests");
  EXPECT_EQ(host.Title(), u"veska_platform_tests");
  EXPECT_TRUE(host.IsMainThread());
  bool on_main_thread = true;
  std::thread([&] { on_main_thread = host.IsMainThread(); }).join();
  EXPECT_FALSE(on_main_thread);
}

TEST(Application, OneCurrentHostInstalledAndUninstalled) {
  TApplication& default_host = Application();
  EXPECT_EQ(&Application(), &default_host);  // created once
  {
    TApplication first;
    RecordingHost second;
    EXPECT_EQ(SetApplication(&first), nullptr);
    EXPECT_EQ(SetApplication(&second), &first);
    EXPECT_EQ(&Application(), &second);
  }  // the current host goes away and uninstalls itself
  EXPECT_EQ(&Application(), &default_host);
}

TEST(Application, HooksObserveCursorChangesAndProgress) {
  RecordingHost host;
  host.SetCursor(TCursor::HourGlass);
  host.SetCursor(TCursor::HourGlass);  // no change, no call
  host.SetCursor(TCursor::Default);
  EXPECT_EQ(host.cursors, (std::vector<TCursor>{TCursor::HourGlass, TCursor::Default}));

  host.SetProgress(5);  // nothing runs yet: ignored
  host.StartProgress(u"Načítání", 0, 400);
  host.SetProgress(200);
  host.SetMaxProgress(600);
  host.SetProgressText(u"200 bytů z celkových 600");
  host.EndProgress();
  host.EndProgress();
  EXPECT_EQ(host.events,
            (std::vector<TProgressEvent>{TProgressEvent::Start, TProgressEvent::Position, TProgressEvent::Maximum,
                                         TProgressEvent::Text, TProgressEvent::End}));
  EXPECT_EQ(std::pair(host.states.front().Active, host.states.front().Position), std::pair(true, 0));
  const TProgressState& last = host.states.back();
  EXPECT_EQ(last.Caption + u"|" + last.Text, u"Načítání|200 bytů z celkových 600");
  EXPECT_EQ(std::tuple(last.Active, last.Min, last.Max, last.Position), std::tuple(false, 0, 600, 200));
}

TEST(WindowMessages, ProcessedInPostingOrderIncludingMessagesPostedMeanwhile) {
  TApplication host;
  std::vector<std::uint32_t> seen;
  host.SetWindowProc([&](TWindowMessage& message) {
    seen.push_back(message.Msg);
    if (message.Msg == 1) host.PostMessage(10, 0, 0);  // goes behind 2 and 3
    if (message.Msg == 2) {
      host.PostMessage(20, 0, 0);
      host.ProcessMessages();  // nested: drains 3, 10 and 20 first
    }
    return true;
  });
  for (std::uint32_t message : {1, 2, 3}) host.PostMessage(message, 0, 0);
  EXPECT_EQ(host.PendingMessageCount(), 3u);
  host.ProcessMessages();
  EXPECT_EQ(seen, (std::vector<std::uint32_t>{1, 2, 3, 10, 20}));
  EXPECT_EQ(host.PendingMessageCount(), 0u);
}

TEST(WindowMessages, UntakenMessagesAreDiscardedOnceAndTakenOnesNever) {
  DiscardCounter discards(6);
  {
    TApplication host;
    host.SetWindowProc([](TWindowMessage& message) { return message.WParam == 123; });
    host.PostMessage(WM_APP + 100, 123, 0, discards.For(0));  // taken
    host.PostMessage(WM_APP + 100, 7, 0, discards.For(1));    // refused
    host.ProcessMessages();
    host.ProcessMessages();

    host.SetWindowProc(nullptr);
    host.PostMessage(WM_USER, 123, 0, discards.For(2));  // nobody to take it
    host.PostMessage(WM_USER, 0, 0);                     // nothing to discard
    host.ProcessMessages();

    host.PostMessage(WM_USER, 0, 0, discards.For(3));
    host.ClearMessages();
    EXPECT_EQ(host.PendingMessageCount(), 0u);
    host.PostMessage(WM_USER, 0, 0, discards.For(4));
    host.PostMessage(WM_USER, 0, 0, discards.For(5));
  }  // the host's end discards what is still pending
  EXPECT_EQ(discards.Counts(), (std::vector<int>{0, 1, 1, 1, 1, 1}));
}

TEST(WindowMessages, SendCallsTheWindowProcedureAtOnce) {
  TApplication host;
  DiscardCounter discards(2);
  std::vector<std::uint32_t> seen;
  host.SetWindowProc([&](TWindowMessage& message) {
    seen.push_back(message.Msg);
    EXPECT_EQ(message.LParam, -5);
    return message.Msg == 1;
  });
  host.PostMessage(9, 0, -5);
  EXPECT_TRUE(host.SendMessage(1, 0, -5, discards.For(0)));
  EXPECT_EQ(seen, (std::vector<std::uint32_t>{1}));  // before the posted message
  EXPECT_FALSE(host.SendMessage(2, 0, -5, discards.For(1)));
  EXPECT_EQ(discards.Counts(), (std::vector<int>{0, 1}));
  EXPECT_EQ(host.PendingMessageCount(), 1u);
}

TEST(WindowMessages, ThrowingWindowProcedureIsReportedAndItsMessageDiscarded) {
  TApplication host;
  DiscardCounter discards(3);
  std::vector<std::uint32_t> seen;
  host.SetWindowProc([&](TWindowMessage& message) -> bool {
    seen.push_back(message.Msg);
    if (message.Msg == 1) throw EListError(u"List index out of bounds (3)");
    if (message.Msg == 2) throw std::runtime_error("plain failure");
    return true;
  });
  const CapturedMessages captured;
  for (std::uint32_t message : {1, 2, 3}) host.PostMessage(message, 0, 0, discards.For(message - 1));
  host.ProcessMessages();
  EXPECT_EQ(seen, (std::vector<std::uint32_t>{1, 2, 3}));  // went on after the failures
  EXPECT_EQ(discards.Counts(), (std::vector<int>{1, 1, 0}));
  EXPECT_EQ(captured.Texts(), (std::vector<String>{u"List index out of bounds (3)", u"plain failure"}));

  // An exception handler of the host's own takes the reports instead of the sink.
  std::vector<String> handled;
  host.SetOnException([&](const String& text) { handled.push_back(u"World Level Error :" + text); });
  EXPECT_FALSE(host.SendMessage(1, 0, 0));
  EXPECT_EQ(handled, (std::vector<String>{u"World Level Error :List index out of bounds (3)"}));
  EXPECT_EQ(captured.Entries().size(), 2u);
}

TEST(WindowMessages, WindowProcedureMayReplaceItselfWhileRunning) {
  TApplication host;
  std::vector<int> calls;
  host.SetWindowProc([&](TWindowMessage&) {
    host.SetWindowProc([&](TWindowMessage&) {
      calls.push_back(2);
      return true;
    });
    calls.push_back(1);  // the replaced procedure still runs to its end
    return true;
  });
  host.PostMessage(WM_USER, 0, 0);
  host.PostMessage(WM_USER, 0, 0);
  host.ProcessMessages();
  EXPECT_EQ(calls, (std::vector<int>{1, 2}));
}

}  // namespace
}  // namespace veska
