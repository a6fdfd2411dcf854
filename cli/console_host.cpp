#include "cli/console_host.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

namespace veska::cli {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kBarCells = 30;
constexpr std::size_t kDefaultColumns = 80;
// A redraw that does not move the percentage waits this long, so that a tool reporting every
// few bytes does not spend its time on the terminal.
constexpr auto kRedrawPause = std::chrono::milliseconds(100);

int Percent(const TProgressState& state) {
  const std::int64_t span = std::int64_t{state.Max} - state.Min;
  if (span <= 0) return 0;
  const std::int64_t done = std::clamp<std::int64_t>(std::int64_t{state.Position} - state.Min, 0, span);
  return static_cast<int>(done * 100 / span);
}

// 950/s, 12.3k/s, 4.5M/s.
std::string Rate(double per_second) {
  constexpr const char* kSuffixes[] = {"", "k", "M", "G"};
  std::size_t suffix = 0;
  while (per_second >= 1000 && suffix + 1 < std::size(kSuffixes)) {
    per_second /= 1000;
    ++suffix;
  }
  char text[32];
  std::snprintf(text, sizeof text, suffix == 0 ? "%.0f%s/s" : "%.1f%s/s", per_second, kSuffixes[suffix]);
  return text;
}

std::size_t TerminalColumns(std::FILE* stream) {
  winsize size{};
  if (ioctl(fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
  return kDefaultColumns;
}

// The first `columns` characters of UTF-8 text, never cutting a character in two.
std::string FirstColumns(const std::string& text, std::size_t columns) {
  std::size_t end = 0;
  for (std::size_t taken = 0; end < text.size() && taken < columns; ++taken) {
    do {
      ++end;
    } while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80);
  }
  return text.substr(0, end);
}

std::string ProgressLine(const TProgressState& state, double seconds, std::size_t bar_width, std::size_t width) {
  const int percent = Percent(state);
  const std::size_t filled = bar_width * static_cast<std::size_t>(percent) / 100;
  std::string line = ToUtf8(state.Text.empty() ? state.Caption : state.Text);
  line += " [" + std::string(filled, '#') + std::string(bar_width - filled, '-') + "] ";
  char figure[8];
  std::snprintf(figure, sizeof figure, "%3d%%", percent);
  line += figure;
  if (seconds > 0) line += "  " + Rate((std::int64_t{state.Position} - state.Min) / seconds);
  return FirstColumns(line, width);
}

}  // namespace

ConsoleHost::ConsoleHost(std::FILE* err, bool show_progress) : err_(err), show_progress_(show_progress) {}

ConsoleHost::~ConsoleHost() { Clear(); }

void ConsoleHost::ShowLine(const String& text) {
  const bool redraw = bar_shown_;
  Clear();
  std::fprintf(err_, "veska: %s\n", ToUtf8(text).c_str());
  if (redraw) Draw(Progress());
}

void ConsoleHost::ProgressChanged(TProgressEvent event, const TProgressState& state) {
  if (!show_progress_) return;
  const Clock::time_point now = Clock::now();
  switch (event) {
    case TProgressEvent::Start:
      started_ = now;
      Draw(state);
      break;
    case TProgressEvent::End:
      Clear();
      break;
    default:
      if (Percent(state) != last_percent_ || now - drawn_ >= kRedrawPause) Draw(state);
  }
}

void ConsoleHost::Draw(const TProgressState& state) {
  drawn_ = Clock::now();
  last_percent_ = Percent(state);
  const double seconds = std::chrono::duration<double>(drawn_ - started_).count();
  // One column stays free: a line that fills the terminal would wrap at its end.
  const std::string line = ProgressLine(state, seconds, kBarCells, TerminalColumns(err_) - 1);
  std::fprintf(err_, "\r%s\x1b[K", line.c_str());
  std::fflush(err_);
  bar_shown_ = true;
}

void ConsoleHost::Clear() {
  if (!bar_shown_) return;
  std::fputs("\r\x1b[K", err_);
  std::fflush(err_);
  bar_shown_ = false;
}

}  // namespace veska::cli
