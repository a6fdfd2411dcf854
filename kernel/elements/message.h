// Message elements and their transport through the host application's window-message queue.
#pragma once

#include "kernel/elements/element.h"

namespace veska {

// The window message that carries a message element, and its fixed word parameter.
inline constexpr uint32_t kVeskaWindowMessage = 32868;  // the private range base 32768 + 100
inline constexpr uintptr_t kVeskaMessageWParam = 123;

// Message numbers of the task protocol.
inline constexpr int32_t tm_StartTask = 0;
inline constexpr int32_t tm_EndTask = 1;
inline constexpr int32_t tm_QuitTask = 2;
inline constexpr int32_t tm_Done = 3;
inline constexpr int32_t tm_Text = 8;

class TVeskaMessage : public TElement {
  VESKA_CLASS(TVeskaMessage, TElement, kElementsUnit)
 public:
  TVeskaMessage();
  // Deliberately, kill_data is not stored: a new message never frees its data until the
  // KillData property is written.
  TVeskaMessage(int32_t message, TElement* sender, TElement* receiver, TElement* data, bool kill_data);
  ~TVeskaMessage() override;

  TElement* Sender = nullptr;    // not owned
  TElement* Receiver = nullptr;  // not owned; none means the world's main tool
  int32_t Message = 0;
  TElement* Data = nullptr;  // owned only when KillData is set
  bool KillData = false;
  TDateTime Time = 0;

  // Hands the message to the host's window procedure at once / queues it.  After Post the
  // sender must not touch the message: its dispatcher frees it.
  void Send();
  void Post();
  void DoPostIt(int32_t message);
  void DoSendIt(int32_t message);

  // The message element that a window message of this library carries; none for any other
  // window message or for a message that no longer exists.
  static TVeskaMessage* FromWindowMessage(uint32_t msg, uintptr_t wparam, intptr_t lparam);

  static void Publish(Publisher<TVeskaMessage>& p);
};

class TVeskaTextMessage : public TVeskaMessage {
  VESKA_CLASS(TVeskaTextMessage, TVeskaMessage, kElementsUnit)
 public:
  using TVeskaMessage::TVeskaMessage;
  ~TVeskaTextMessage() override;

  String GetMessageText() const { return text_; }
  void SetMessageText(const String& text) { text_ = text; }

  static void Publish(Publisher<TVeskaTextMessage>& p) {
    p.Property(u"Text", &TVeskaTextMessage::GetMessageText, &TVeskaTextMessage::SetMessageText);
  }

 private:
  String text_;
};

// The closing marker of a model stream.
class TYouShallNotPass : public TElement {
  VESKA_CLASS(TYouShallNotPass, TElement, kElementsUnit)
};

}  // namespace veska
