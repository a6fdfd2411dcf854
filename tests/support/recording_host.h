// A host application that records every message of this library that reaches it, as a line of
// text, and frees it, as the world's dispatcher does.  It is the current host while it lives.
#pragma once

#include <memory>
#include <vector>

#include "kernel/elements/message.h"
#include "kernel/platform/application.h"

namespace veska::test {

// A message as "number sender>receiver data text", with the elements' names and "-" for none.
inline String Summary(const TVeskaMessage& message) {
  const auto name = [](const TElement* element) { return element != nullptr ? element->GetName() : String(u"-"); };
  return IntToStr(message.Message) + u" " + name(message.Sender) + u">" + name(message.Receiver) + u" " +
         name(message.Data) + u" " + message.GetPropertyStringByName(u"Text");
}

struct RecordingHost : TApplication {
  // Each message goes through `summary`, which may add what a test wants to see of it.
  explicit RecordingHost(String (*summary)(const TVeskaMessage&) = &Summary) {
    SetApplication(this);
    SetWindowProc([this, summary](TWindowMessage& message) {
      std::unique_ptr<TVeskaMessage> taken(
          TVeskaMessage::FromWindowMessage(message.Msg, message.WParam, message.LParam));
      if (taken != nullptr) delivered.push_back(summary(*taken));
      return taken != nullptr;
    });
  }
  // The texts of the level-8 text messages delivered so far, after delivering what is posted.
  std::vector<String> TextMessages() {
    ProcessMessages();
    std::vector<String> texts;
    for (const String& line : delivered) {
      if (line.starts_with(u"8 ")) texts.push_back(line.substr(line.find(u"- - ") + 4));
    }
    return texts;
  }
  std::vector<String> delivered;
};

}  // namespace veska::test
