#include "kernel/platform/application.h"

#include <atomic>
#include <deque>
#include <exception>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"

namespace veska {
namespace {

// The platform's hint colour: the system colour "info background" (clInfoBk).
constexpr std::int32_t kInfoBackgroundColor = static_cast<std::int32_t>(0x80000018u);

std::atomic<TApplication*> installed_host{nullptr};
std::atomic<std::uintptr_t> last_main_form_handle{0};

String RunningExecutable() {
  std::error_code error;
  const std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
  return error ? String() : FromUtf8(path.string());
}

String FileStem(const String& path) { return FromUtf8(std::filesystem::path(ToUtf8(path)).stem().string()); }

}  // namespace

struct TApplication::Shared {
  const std::thread::id main_thread_id = std::this_thread::get_id();
  mutable std::mutex mutex;  // guards the three members below
  std::deque<TWindowMessage> queue;
  // Shared so that a window procedure may replace itself while it runs.
  std::shared_ptr<const TWindowProc> window_proc;
  TExceptionHandler on_exception;
};

TApplication::TApplication()
    : hint_color_(kInfoBackgroundColor),
      exe_name_(RunningExecutable()),
      main_form_handle_(++last_main_form_handle),
      shared_(std::make_unique<Shared>()) {
  title_ = FileStem(exe_name_);
}

TApplication::~TApplication() {
  TApplication* self = this;
  installed_host.compare_exchange_strong(self, nullptr);
  ClearMessages();
}

bool TApplication::IsMainThread() const noexcept { return std::this_thread::get_id() == shared_->main_thread_id; }

void TApplication::SetCursor(TCursor cursor) {
  if (cursor == cursor_) return;
  cursor_ = cursor;
  CursorChanged(cursor);
}

void TApplication::StartProgress(const String& caption, std::int32_t min, std::int32_t max) {
  progress_ = TProgressState{true, caption, String(), min, max, min};
  ChangeProgress(TProgressEvent::Start);
}

void TApplication::SetProgress(std::int32_t position) {
  if (!progress_.Active) return;
  progress_.Position = position;
  ChangeProgress(TProgressEvent::Position);
}

void TApplication::SetMaxProgress(std::int32_t max) {
  if (!progress_.Active) return;
  progress_.Max = max;
  ChangeProgress(TProgressEvent::Maximum);
}

void TApplication::SetProgressText(const String& text) {
  if (!progress_.Active) return;
  progress_.Text = text;
  ChangeProgress(TProgressEvent::Text);
}

void TApplication::EndProgress() {
  if (!progress_.Active) return;
  progress_.Active = false;
  ChangeProgress(TProgressEvent::End);
}

void TApplication::ChangeProgress(TProgressEvent event) { ProgressChanged(event, progress_); }

void TApplication::CursorChanged(TCursor /*cursor*/) {}

void TApplication::ProgressChanged(TProgressEvent /*event*/, const TProgressState& /*state*/) {}

TWindowProc TApplication::SetWindowProc(TWindowProc window_proc) {
  auto replacement = window_proc ? std::make_shared<const TWindowProc>(std::move(window_proc)) : nullptr;
  std::shared_ptr<const TWindowProc> previous;
  {
    std::lock_guard lock(shared_->mutex);
    previous = std::exchange(shared_->window_proc, std::move(replacement));
  }
  return previous ? *previous : TWindowProc();
}

TExceptionHandler TApplication::SetOnException(TExceptionHandler handler) {
  std::lock_guard lock(shared_->mutex);
  return std::exchange(shared_->on_exception, std::move(handler));
}

void TApplication::PostMessage(std::uint32_t msg, std::uintptr_t wparam, std::intptr_t lparam,
                               std::function<void()> discard) {
  TWindowMessage message{msg, wparam, lparam, std::move(discard)};
  std::lock_guard lock(shared_->mutex);
  shared_->queue.push_back(std::move(message));
}

bool TApplication::SendMessage(std::uint32_t msg, std::uintptr_t wparam, std::intptr_t lparam,
                               std::function<void()> discard) {
  TWindowMessage message{msg, wparam, lparam, std::move(discard)};
  return Dispatch(message);
}

void TApplication::ProcessMessages() {
  for (;;) {
    TWindowMessage message;
    {
      std::lock_guard lock(shared_->mutex);
      if (shared_->queue.empty()) return;
      message = std::move(shared_->queue.front());
      shared_->queue.pop_front();
    }
    Dispatch(message);
  }
}

void TApplication::ClearMessages() {
  // A discard may post again; what it posts is discarded too.
  for (;;) {
    std::deque<TWindowMessage> pending;
    {
      std::lock_guard lock(shared_->mutex);
      pending.swap(shared_->queue);
    }
    if (pending.empty()) return;
    for (TWindowMessage& message : pending) Discard(message);
  }
}

std::size_t TApplication::PendingMessageCount() const {
  std::lock_guard lock(shared_->mutex);
  return shared_->queue.size();
}

bool TApplication::Dispatch(TWindowMessage& message) {
  std::shared_ptr<const TWindowProc> window_proc;
  {
    std::lock_guard lock(shared_->mutex);
    window_proc = shared_->window_proc;
  }
  bool taken = false;
  if (window_proc) Guarded([&] { taken = (*window_proc)(message); });
  if (!taken) Discard(message);
  return taken;
}

void TApplication::Discard(TWindowMessage& message) {
  // Moved out first so that the payload is freed at most once, whatever the discard does.
  std::function<void()> discard = std::exchange(message.Discard, nullptr);
  if (discard) Guarded(discard);
}

template <typename Action>
void TApplication::Guarded(Action&& action) noexcept {
  try {
    action();
  } catch (const Exception& error) {
    ReportException(error.Message());
  } catch (const std::exception& error) {
    ReportException(FromUtf8(error.what()));
  } catch (...) {
    ReportException(u"Unknown exception");
  }
}

void TApplication::ReportException(const String& text) noexcept {
  try {
    TExceptionHandler handler;
    {
      std::lock_guard lock(shared_->mutex);
      handler = shared_->on_exception;
    }
    if (handler) {
      handler(text);
      return;
    }
  } catch (...) {
    // A failing handler falls back to the message sink below.
  }
  ShowMessage(text, MessageKind::Error);
}

TApplication& Application() {
  if (TApplication* host = installed_host.load()) return *host;
  // Never destroyed: messages may still be posted while static objects are torn down.
  static TApplication* const default_host = new TApplication;
  return *default_host;
}

TApplication* SetApplication(TApplication* host) noexcept { return installed_host.exchange(host); }

}  // namespace veska
