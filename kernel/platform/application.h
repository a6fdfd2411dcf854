// The host application: the object a desktop program gave the library, reduced to what the
// library uses.  It keeps the host's settings (title, hint, help file, hint timing), names the
// executable and the main thread, holds the busy cursor and the progress display that tools
// drive, and owns the queue of window messages through which posted element messages travel.
//
// There is always one current host, reached through Application().  A program with a real user
// interface derives from TApplication, overrides the hooks and installs its host with
// SetApplication; everything else gets a default host that keeps the state and shows nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include "kernel/platform/string.h"

namespace veska {

// The first private window-message numbers of a window class and of an application.
inline constexpr std::uint32_t WM_USER = 0x0400;
inline constexpr std::uint32_t WM_APP = 0x8000;

// One window message.  WParam and LParam are plain numbers; when LParam carries a payload (an
// object posted by the element system), Discard frees it should nobody take the message.
struct TWindowMessage {
  std::uint32_t Msg = 0;
  std::uintptr_t WParam = 0;
  std::intptr_t LParam = 0;
  std::function<void()> Discard;
};

// The window procedure: returns true when it took the message, and with it the payload.
using TWindowProc = std::function<bool(TWindowMessage&)>;

// Receives the text of an exception that escaped a window procedure or a discard.
using TExceptionHandler = std::function<void(const String& message)>;

// The screen cursor, with the platform's cursor numbers (they are what files store).
enum class TCursor : std::int32_t {
  Default = 0,
  None = -1,
  Arrow = -2,
  Cross = -3,
  IBeam = -4,
  SizeNESW = -6,
  SizeNS = -7,
  SizeNWSE = -8,
  SizeWE = -9,
  UpArrow = -10,
  HourGlass = -11,
  Drag = -12,
  NoDrop = -13,
  HSplit = -14,
  VSplit = -15,
  MultiDrag = -16,
  SQLWait = -17,
  No = -18,
  AppStart = -19,
  Help = -20,
  HandPoint = -21,
  SizeAll = -22,
};

// The state of the progress display.  Caption is the text given at the start, Text the text
// set while it runs.
struct TProgressState {
  bool Active = false;
  String Caption;
  String Text;
  std::int32_t Min = 0;
  std::int32_t Max = 0;
  std::int32_t Position = 0;
};

// What changed in the progress display.
enum class TProgressEvent { Start, Position, Maximum, Text, End };

class TApplication {
 public:
  // The thread that creates the host becomes its main thread.
  TApplication();
  // Discards every pending message; a host that is current is uninstalled first.
  virtual ~TApplication();
  TApplication(const TApplication&) = delete;
  TApplication& operator=(const TApplication&) = delete;

  // Settings of the host.  The title starts as the executable's name without its extension.
  const String& Title() const noexcept { return title_; }
  void SetTitle(const String& title) { title_ = title; }
  const String& Hint() const noexcept { return hint_; }
  void SetHint(const String& hint) { hint_ = hint; }
  const String& HelpFile() const noexcept { return help_file_; }
  void SetHelpFile(const String& help_file) { help_file_ = help_file; }
  bool ShowHint() const noexcept { return show_hint_; }
  void SetShowHint(bool show_hint) noexcept { show_hint_ = show_hint; }
  std::int32_t HintColor() const noexcept { return hint_color_; }
  void SetHintColor(std::int32_t color) noexcept { hint_color_ = color; }
  int HintPause() const noexcept { return hint_pause_; }  // ms
  void SetHintPause(int pause) noexcept { hint_pause_ = pause; }
  int HintHidePause() const noexcept { return hint_hide_pause_; }  // ms
  void SetHintHidePause(int pause) noexcept { hint_hide_pause_ = pause; }

  // The full path of the running executable; empty where the system does not tell it.
  const String& ExeName() const noexcept { return exe_name_; }
  // A stand-in for the main window's handle: non-zero and different for every host.
  std::uintptr_t MainFormHandle() const noexcept { return main_form_handle_; }
  // Whether the calling thread is the one that created the host.
  bool IsMainThread() const noexcept;

  // The busy cursor.  CursorChanged runs when the value changes.
  TCursor Cursor() const noexcept { return cursor_; }
  void SetCursor(TCursor cursor);

  // The progress display.  Starting replaces a display that runs; the other calls change a
  // running display and are ignored when none runs.  ProgressChanged runs after each change.
  void StartProgress(const String& caption, std::int32_t min, std::int32_t max);
  void SetProgress(std::int32_t position);
  void SetMaxProgress(std::int32_t max);
  void SetProgressText(const String& text);
  void EndProgress();
  const TProgressState& Progress() const noexcept { return progress_; }

  // The window-message queue.  Posting is safe from any thread; everything else belongs to
  // the thread that pumps the queue (the main thread).  No lock is held while a window
  // procedure, a discard or the exception handler runs, so each may post, send and process
  // messages itself.
  //
  // Installs the window procedure (an empty one removes it) and returns the one it replaces.
  TWindowProc SetWindowProc(TWindowProc window_proc);
  // Installs the handler of exceptions that escape a window procedure or a discard; by default
  // (or when empty) the exception's message goes to ShowMessage as an error.
  TExceptionHandler SetOnException(TExceptionHandler handler);
  // Appends a message to the queue and returns at once.
  void PostMessage(std::uint32_t msg, std::uintptr_t wparam, std::intptr_t lparam, std::function<void()> discard = {});
  // Calls the window procedure at once on the calling thread; true when it took the message.
  // A message it does not take is discarded.
  bool SendMessage(std::uint32_t msg, std::uintptr_t wparam, std::intptr_t lparam, std::function<void()> discard = {});
  // Hands pending messages to the window procedure in the order they were posted until the
  // queue is empty, including messages posted meanwhile.  Messages not taken, or all of them
  // when no window procedure is installed, are discarded.  A window procedure that throws has
  // its exception reported and its message discarded, so it must not free the payload before
  // throwing.
  void ProcessMessages();
  // Discards every pending message without offering it to the window procedure.
  void ClearMessages();
  std::size_t PendingMessageCount() const;

 protected:
  // Hooks for a host that shows the cursor and the progress; the default host shows nothing.
  virtual void CursorChanged(TCursor cursor);
  virtual void ProgressChanged(TProgressEvent event, const TProgressState& state);

 private:
  bool Dispatch(TWindowMessage& message);
  void Discard(TWindowMessage& message);
  template <typename Action>
  void Guarded(Action&& action) noexcept;
  void ReportException(const String& text) noexcept;
  void ChangeProgress(TProgressEvent event);

  String title_;
  String hint_;
  String help_file_;
  bool show_hint_ = true;
  std::int32_t hint_color_;
  int hint_pause_ = 500;
  int hint_hide_pause_ = 2500;
  String exe_name_;
  std::uintptr_t main_form_handle_;
  TCursor cursor_ = TCursor::Default;
  TProgressState progress_;

  // What other threads reach: the main thread's id, the queue and the handlers with their lock.
  // Defined in the source file, so that users of this header do not compile <thread> and <mutex>.
  struct Shared;
  const std::unique_ptr<Shared> shared_;
};

// The current host: the one installed with SetApplication, else the default host, which is
// created on first use (call Application() first on the main thread so that it becomes the
// default host's main thread) and lives until the process ends.
TApplication& Application();
// Makes `host` the current host (nullptr returns to the default host) and returns the host
// installed before (nullptr for the default).  The caller keeps ownership of `host`; a host
// that is destroyed while current uninstalls itself.
TApplication* SetApplication(TApplication* host) noexcept;

}  // namespace veska
