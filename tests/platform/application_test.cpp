#include "kernel/platform/application.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <vector>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"

namespace veska {
namespace {

// A host that records what a real user interface would show.
class RecordingHost : public TApplication {
 public:
  std::vector<TCursor> cursors;
  std::vector<TProgressEvent> events;
  TProgressState shown;  // as the last change showed it

 protected:
  void CursorChanged(TCursor cursor) override { cursors.push_back(cursor); }
  void ProgressChanged(TProgressEvent event, const TProgressState& state) override {
    events.push_back(event);
    shown = state;
  }
};

// Discards that count how often each message's payload was freed.
struct Discards {
  std::vector<int> counts = std::vector<int>(6, 0);
  std::function<void()> For(std::size_t i) {
    return [this, i] { ++counts[i]; };
  }
};

TEST(Application, PlatformDefaultsOneCurrentHostAndHooksThatObserveCursorAndProgress) {
  RecordingHost host;
  EXPECT_NE(host.MainFormHandle(), TApplication().MainFormHandle());
  // This test program is the running executable; the title is its name without extension.
  EXPECT_EQ(std::filesystem::path(ToUtf8(host.ExeName())).filename().string(), "veska_platform_tests");
  EXPECT_EQ(host.Title(), u"veska_platform_tests");
  bool on_main_thread = true;
  std::thread([&] { on_main_thread = host.IsMainThread(); }).join();
  EXPECT_TRUE(host.IsMainThread() && !on_main_thread);

  TApplication& default_host = Application();
  {
    TApplication first;
    RecordingHost second;
    EXPECT_TRUE(SetApplication(&first) == nullptr && SetApplication(&second) == &first && &Application() == &second);
  }
  EXPECT_EQ(&Application(), &default_host);

  for (TCursor cursor : {TCursor::HourGlass, TCursor::HourGlass, TCursor::Default}) host.SetCursor(cursor);
  EXPECT_EQ(host.cursors, (std::vector<TCursor>{TCursor::HourGlass, TCursor::Default}));  // no change, no call

  host.SetProgress(5);  // nothing runs yet: ignored
  host.StartProgress(u"Načítání", 10, 400);
  EXPECT_EQ(std::pair(host.shown.Active, host.shown.Position), std::pair(true, 10));
  host.SetProgress(200);
  host.SetMaxProgress(600);
  host.SetProgressText(u"200 bytů z celkových 600");
  for (int i = 0; i < 2; ++i) host.EndProgress();  // the second finds none running
  EXPECT_EQ(host.events,
            (std::vector<TProgressEvent>{TProgressEvent::Start, TProgressEvent::Position, TProgressEvent::Maximum,
                                         TProgressEvent::Text, TProgressEvent::End}));
  EXPECT_EQ(std::tuple(host.shown.Caption, host.shown.Text, host.shown.Active, host.shown.Min, host.shown.Max,
                       host.shown.Position),
            std::tuple(u"Načítání", u"200 bytů z celkových 600", false, 10, 600, 200));
}

TEST(WindowMessages, UntakenMessagesAreDiscardedOnceTakenOnesNeverAndAThrowingProcedureIsReported) {
  Discards discards;
  std::vector<std::uintptr_t> seen;
  {
    TApplication host;
    host.SetWindowProc([&](TWindowMessage& message) {
      if (message.WParam == 0) host.SetWindowProc(nullptr);
      seen.push_back(message.WParam);  // the removed procedure still runs to its end
      return message.WParam == 123;
    });
    host.PostMessage(WM_APP + 100, 123, 0, discards.For(0));  // taken
    host.PostMessage(WM_APP + 100, 7, 0, discards.For(1));    // refused
    EXPECT_FALSE(host.SendMessage(WM_APP + 100, 7, 0, discards.For(2)));
    host.ProcessMessages();
    host.PostMessage(WM_USER, 0, 0);                     // nothing to discard
    host.PostMessage(WM_USER, 123, 0, discards.For(3));  // nobody left to take it
    host.ProcessMessages();
    EXPECT_EQ(seen, (std::vector<std::uintptr_t>{7, 123, 7, 0}));

    host.PostMessage(WM_USER, 0, 0, discards.For(4));
    host.ClearMessages();
    host.PostMessage(WM_USER, 0, 0, discards.For(5));
  }  // the host's end discards what is still pending
  EXPECT_EQ(discards.counts, (std::vector<int>{0, 1, 1, 1, 1, 1}));

  // A procedure that throws: the failure is reported and its message discarded; the next goes on.
  TApplication host;
  Discards thrown;
  host.SetWindowProc([&](TWindowMessage& message) -> bool {
    if (message.Msg == 1) throw EListError(u"List index out of bounds (3)");
    if (message.Msg == 2) throw std::runtime_error("plain failure");
    return true;
  });
  const CapturedMessages captured;
  for (std::uint32_t message : {1, 2, 3}) host.PostMessage(message, 0, 0, thrown.For(message - 1));
  host.ProcessMessages();
  EXPECT_EQ(thrown.counts, (std::vector<int>{1, 1, 0, 0, 0, 0}));
  EXPECT_EQ(captured.Texts(), (std::vector<String>{u"List index out of bounds (3)", u"plain failure"}));

  // An exception handler of the host's own takes the reports instead of the sink.
  std::vector<String> handled;
  host.SetOnException([&](const String& text) { handled.push_back(u"World Level Error :" + text); });
  EXPECT_FALSE(host.SendMessage(1, 0, 0));
  EXPECT_EQ(handled, (std::vector<String>{u"World Level Error :List index out of bounds (3)"}));
  EXPECT_EQ(captured.Entries().size(), 2u);
}

}  // namespace
}  // namespace veska
