// The host application of the veska program: the world's progress display drawn as one line on
// stderr, and the texts of the library written there as lines.
//
// The bar shows the latest progress text (else the caption), a bar, the percentage and the rate
// in units of progress per second, cut to the terminal's width:
//   Making 100000 elements [###############---------------]  50%  1.2M/s
#pragma once

#include <chrono>
#include <cstdio>

#include "kernel/platform/application.h"

namespace veska::cli {

class ConsoleHost : public TApplication {
 public:
  // With `show_progress` false nothing but texts is written (stderr is no terminal, or --quiet).
  ConsoleHost(std::FILE* err, bool show_progress);
  ~ConsoleHost() override;

  // Writes "veska: " and the text as a line, above the bar while one shows.
  void ShowLine(const String& text);

 protected:
  void ProgressChanged(TProgressEvent event, const TProgressState& state) override;

 private:
  void Draw(const TProgressState& state);
  void Clear();

  std::FILE* err_;
  bool show_progress_;
  bool bar_shown_ = false;
  int last_percent_ = -1;
  std::chrono::steady_clock::time_point started_;
  std::chrono::steady_clock::time_point drawn_;
};

}  // namespace veska::cli
