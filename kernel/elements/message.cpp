#include "kernel/elements/message.h"

#include "kernel/platform/application.h"
#include "kernel/platform/object_handles.h"

namespace veska {
namespace {

// The window message's long parameter is the message's handle, never its address; a message
// that nobody takes is freed through the same handle.
void Deliver(TVeskaMessage* message, bool post) {
  const int32_t handle = ObjectHandles::HandleOf(message);
  auto discard = [handle] { delete ObjectHandles::ObjectOf(handle); };
  if (post) {
    Application().PostMessage(kVeskaWindowMessage, kVeskaMessageWParam, handle, discard);
  } else {
    Application().SendMessage(kVeskaWindowMessage, kVeskaMessageWParam, handle, discard);
  }
}

}  // namespace

void TVeskaMessage::Publish(Publisher<TVeskaMessage>& p) {
  p.Field(u"Sender", &TVeskaMessage::Sender);
  p.Field(u"Receiver", &TVeskaMessage::Receiver);
  p.Field(u"Message", &TVeskaMessage::Message);
  p.Field(u"Data", &TVeskaMessage::Data);
  p.Field(u"KillData", &TVeskaMessage::KillData).Default(0);
  p.Field(u"Time", &TVeskaMessage::Time);
  p.WriteOnly(u"PostIt", &TVeskaMessage::DoPostIt);
  p.WriteOnly(u"SendIt", &TVeskaMessage::DoSendIt);
}

TVeskaMessage::TVeskaMessage() : Time(Now()) {}

TVeskaMessage::TVeskaMessage(int32_t message, TElement* sender, TElement* receiver, TElement* data, bool /*kill_data*/)
    : Sender(sender), Receiver(receiver), Message(message), Data(data), Time(Now()) {}

TVeskaMessage::~TVeskaMessage() {
  if (!KillData) return;
  try {
    delete Data;
  } catch (...) {
    // Freeing the data must not stop the message from going.
  }
}

void TVeskaMessage::Send() { Deliver(this, false); }
void TVeskaMessage::Post() { Deliver(this, true); }

void TVeskaMessage::DoPostIt(int32_t message) {
  if (message != 0) Message = message;
  Post();
}

void TVeskaMessage::DoSendIt(int32_t message) {
  if (message != 0) Message = message;
  Send();
}

TVeskaMessage* TVeskaMessage::FromWindowMessage(uint32_t msg, uintptr_t wparam, intptr_t lparam) {
  if (msg != kVeskaWindowMessage || wparam != kVeskaMessageWParam) return nullptr;
  return ObjectAs<TVeskaMessage>(ObjectHandles::ObjectOf(lparam));
}

TVeskaTextMessage::~TVeskaTextMessage() = default;

}  // namespace veska
