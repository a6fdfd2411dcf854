// The message sink: where the library's message boxes and error dialogs go.
//
// The system's texts for the user were message boxes; a library has no user interface, so every such text
// is handed to one replaceable function.  The default writes the text as UTF-8 to stderr.
// Tests install a capturing sink and compare the exact texts.
#pragma once

#include <functional>
#include <vector>

#include "kernel/platform/string.h"

namespace veska {

enum class MessageKind { Information, Error };

using MessageSink = std::function<void(const String& text, MessageKind kind)>;

// Installs a sink and returns the one it replaces.  An empty function restores the default.
// Safe from any thread; the sink is called on the thread that shows the text, so a sink that
// texts from worker threads reach must guard its own state.
MessageSink SetMessageSink(MessageSink sink);

// Delivers one text to the current sink.  Never throws: a failing sink is ignored, since the
// callers are often destructors and error handlers.
void ShowMessage(const String& text, MessageKind kind = MessageKind::Information) noexcept;

// Collects every text shown while it lives and restores the previous sink when it goes.
class CapturedMessages {
 public:
  struct Entry {
    String Text;
    MessageKind Kind;
  };

  CapturedMessages();
  ~CapturedMessages();
  CapturedMessages(const CapturedMessages&) = delete;
  CapturedMessages& operator=(const CapturedMessages&) = delete;

  const std::vector<Entry>& Entries() const { return entries_; }
  std::vector<String> Texts() const;

 private:
  std::vector<Entry> entries_;
  MessageSink previous_;
};

}  // namespace veska
