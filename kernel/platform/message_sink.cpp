#include "kernel/platform/message_sink.h"

#include <cstdio>
#include <mutex>
#include <utility>

namespace veska {
namespace {

void WriteToStderr(const String& text, MessageKind /*kind*/) {
  const std::string utf8 = ToUtf8(text);
  std::fprintf(stderr, "%s\n", utf8.c_str());
}

std::mutex sink_mutex;
MessageSink current_sink = WriteToStderr;

}  // namespace

MessageSink SetMessageSink(MessageSink sink) {
  std::lock_guard lock(sink_mutex);
  MessageSink previous = std::move(current_sink);
  current_sink = sink ? std::move(sink) : MessageSink(WriteToStderr);
  return previous;
}

void ShowMessage(const String& text, MessageKind kind) noexcept {
  MessageSink sink;
  {
    std::lock_guard lock(sink_mutex);
    sink = current_sink;
  }
  try {
    sink(text, kind);
  } catch (...) {
    // A sink that fails must not take its caller down; the text is lost.
  }
}

CapturedMessages::CapturedMessages()
    : previous_(SetMessageSink([this](const String& text, MessageKind kind) {
        entries_.push_back({text, kind});
      })) {}

CapturedMessages::~CapturedMessages() { SetMessageSink(std::move(previous_)); }

std::vector<String> CapturedMessages::Texts() const {
  std::vector<String> texts;
  texts.reserve(entries_.size());
  for (const Entry& entry : entries_) texts.push_back(entry.Text);
  return texts;
}

}  // namespace veska
