#include "kernel/elements/message.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

#include "kernel/elements/named.h"
#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"

namespace veska {
namespace {

// An element that tells when it is destroyed.
class TWatchedElement : public TElement {
  VESKA_CLASS(TWatchedElement, TElement, u"ElementTests")
 public:
  explicit TWatchedElement(bool* destroyed = nullptr) : destroyed_(destroyed) {}
  ~TWatchedElement() override {
    if (destroyed_ != nullptr) *destroyed_ = true;
  }

 private:
  bool* destroyed_;
};

// What a delivered message carried, copied before the message is freed.
struct Delivered {
  int32_t Message;
  TElement* Sender;
  TElement* Receiver;
  TElement* Data;
  String Text;
};

// Installs a window procedure that takes every message of this library, records it and frees
// it, as the world's dispatcher does; or, when it does not take them, one that takes nothing.
// The previous procedure comes back afterwards.
class RecordingWindow {
 public:
  explicit RecordingWindow(bool takes = true) {
    previous_ = Application().SetWindowProc([this, takes](TWindowMessage& message) {
      TVeskaMessage* taken = TVeskaMessage::FromWindowMessage(message.Msg, message.WParam, message.LParam);
      if (!takes || taken == nullptr) return false;
      auto* text = dynamic_cast<TVeskaTextMessage*>(taken);
      delivered.push_back({taken->Message, taken->Sender, taken->Receiver, taken->Data,
                           text != nullptr ? text->GetMessageText() : String()});
      delete taken;
      return true;
    });
  }
  ~RecordingWindow() {
    Application().ClearMessages();
    Application().SetWindowProc(previous_);
  }
  RecordingWindow(const RecordingWindow&) = delete;
  RecordingWindow& operator=(const RecordingWindow&) = delete;

  std::vector<Delivered> delivered;

 private:
  TWindowProc previous_;
};

// An owner that records the messages offered to it and may mark them handled or fail.
class TListeningEntity : public TOwnerEntity {
  VESKA_CLASS(TListeningEntity, TOwnerEntity, u"ElementTests")
 public:
  enum class Answer { Ignore, Handle, Fail };
  Answer answer = Answer::Ignore;
  std::vector<int32_t> heard;

  void HandleMessage(TVeskaMessage* message, bool& handled) override {
    heard.push_back(message->Message);
    if (answer == Answer::Fail) throw Exception(u"selhání");
    if (answer == Answer::Handle) handled = true;
  }
};

TEST(MessageTest, ConstructorIgnoresKillDataButTheKillDataPropertyFreesTheData) {
  bool destroyed = false;
  auto* data = new TWatchedElement(&destroyed);
  auto* message = new TVeskaMessage(tm_Done, nullptr, nullptr, data, true);
  EXPECT_FALSE(message->KillData);
  EXPECT_NE(message->Time, 0);
  delete message;
  EXPECT_FALSE(destroyed) << "the data still belongs to its creator";

  message = new TVeskaMessage(tm_Done, nullptr, nullptr, data, false);
  EXPECT_TRUE(message->SetPropertyBooleanByName(u"KillData", true));
  delete message;
  EXPECT_TRUE(destroyed);
}

TEST(MessageTest, WritingPostItPostsWithTheCurrentOrTheWrittenNumber) {
  RecordingWindow window;
  TElement sender;
  auto* first = new TVeskaMessage(tm_EndTask, &sender, nullptr, nullptr, false);
  EXPECT_TRUE(first->SetPropertyIntByName(u"PostIt", 0));
  auto* second = new TVeskaMessage(tm_EndTask, &sender, nullptr, nullptr, false);
  EXPECT_TRUE(second->SetPropertyIntByName(u"PostIt", 5));
  EXPECT_TRUE(window.delivered.empty()) << "posting returns before delivery";

  Application().ProcessMessages();
  ASSERT_EQ(window.delivered.size(), 2u);
  EXPECT_EQ(std::tuple(window.delivered[0].Message, window.delivered[0].Sender, window.delivered[1].Message),
            std::tuple(tm_EndTask, &sender, 5));

  auto* sent = new TVeskaMessage(tm_StartTask, &sender, nullptr, nullptr, false);
  EXPECT_TRUE(sent->SetPropertyIntByName(u"SendIt", 7));
  ASSERT_EQ(window.delivered.size(), 3u) << "sending returns after delivery";
  EXPECT_EQ(window.delivered[2].Message, 7);
}

TEST(MessageTest, AMessageNobodyTakesIsFreedWithItsData) {
  RecordingWindow deaf(false);
  for (const bool post : {true, false}) {
    bool destroyed = false;
    auto* message = new TVeskaMessage(tm_Done, nullptr, nullptr, new TWatchedElement(&destroyed), false);
    message->KillData = true;
    if (post) {
      message->Post();
      Application().ProcessMessages();
      EXPECT_EQ(Application().PendingMessageCount(), 0u);
    } else {
      message->Send();
    }
    EXPECT_TRUE(destroyed) << (post ? "posted" : "sent");
  }
}

TEST(MessageTest, OnlyThisLibrarysWindowMessageCarriesAMessage) {
  TVeskaMessage message;
  const intptr_t handle = ObjectHandles::HandleOf(&message);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(kVeskaWindowMessage, kVeskaMessageWParam, handle), &message);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(kVeskaWindowMessage + 1, kVeskaMessageWParam, handle), nullptr);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(kVeskaWindowMessage, 124, handle), nullptr);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(kVeskaWindowMessage, kVeskaMessageWParam, 0), nullptr);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(kVeskaWindowMessage, kVeskaMessageWParam, -5), nullptr);
}

TEST(MessageTest, MessagesToOwnersGoToEachOwnerWithTheSameData) {
  RecordingWindow window;
  TOwnerEntity first;
  TOwnerEntity second;
  auto* element = new TOwnerElement;
  first.AddElement(element);
  second.AddElement(element);
  TElement data;

  element->SendMsgToOwners(tm_StartTask, &data, false);
  ASSERT_EQ(window.delivered.size(), 2u);
  EXPECT_EQ(std::tuple(window.delivered[0].Receiver, window.delivered[1].Receiver, window.delivered[1].Data),
            std::tuple(&first, &second, &data));

  element->PostMsgToOwners(tm_Done, &data, false);
  element->PostTextMsgToOwners(tm_Text, u"zpráva");
  element->PostMsg(tm_QuitTask, &first, nullptr, false);
  Application().ProcessMessages();
  ASSERT_EQ(window.delivered.size(), 7u);
  EXPECT_EQ(std::tuple(window.delivered[3].Receiver, window.delivered[3].Data), std::tuple(&second, &data));
  EXPECT_EQ(window.delivered[5].Text, u"zpráva");
  EXPECT_EQ(window.delivered[6].Message, tm_QuitTask);
}

TEST(MessageTest, OwnersHandleMessageReportsAFailingOwnerAndStopsAtTheOneThatHandles) {
  TVeskaMessage message(42, nullptr, nullptr, nullptr, false);
  for (TElement* lonely : {static_cast<TElement*>(new TOwnerElement), new TElement}) {
    bool handled = false;
    lonely->OwnersHandleMessage(&message, handled);
    EXPECT_TRUE(handled) << "without owners a message counts as handled";
    delete lonely;
  }

  CapturedMessages captured;
  TListeningEntity failing;
  TListeningEntity handling;
  TListeningEntity last;
  failing.answer = TListeningEntity::Answer::Fail;
  handling.answer = TListeningEntity::Answer::Handle;
  auto* element = new TOwnerElement;
  failing.AddElement(element);
  handling.AddElement(element);
  last.AddElement(element);
  bool handled = false;
  element->OwnersHandleMessage(&message, handled);
  EXPECT_TRUE(handled);
  EXPECT_EQ(captured.Texts(), std::vector<String>{u"42"});
  EXPECT_EQ(handling.heard, std::vector<int32_t>{42});
  EXPECT_TRUE(last.heard.empty());

  // Nobody handles it: every owner hears it, and it counts as handled all the same.
  handling.answer = TListeningEntity::Answer::Ignore;
  failing.answer = TListeningEntity::Answer::Ignore;
  handled = false;
  element->OwnersHandleMessage(&message, handled);
  EXPECT_TRUE(handled);
  EXPECT_EQ(last.heard, std::vector<int32_t>{42});
}

TEST(MessageTest, EnvelopeHandsTheMessageToTheEntityItWraps) {
  TListeningEntity wrapped;
  wrapped.answer = TListeningEntity::Answer::Handle;
  TEnvelopeEntity envelope;
  envelope.AddOwner(&wrapped);
  TVeskaMessage message(tm_EndTask, nullptr, &envelope, nullptr, false);
  bool handled = false;
  envelope.HandleMessage(&message, handled);
  EXPECT_TRUE(handled);
  EXPECT_EQ(message.Receiver, &wrapped);

  // A plain entity does not pass messages down to its members.
  TEntity holder;
  holder.AddElement(&envelope);
  handled = false;
  holder.HandleMessage(&message, handled);
  EXPECT_FALSE(handled);
  holder.Clear();
}

}  // namespace
}  // namespace veska
