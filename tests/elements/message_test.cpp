#include "kernel/elements/message.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "tests/support/elements_members.h"
#include "tests/support/recording_host.h"

namespace veska {
namespace {

using test::Named;
using test::RecordingHost;
using Texts = std::vector<String>;

// Notes its name in `heard` when a message is offered to it; one named "fails" then fails and
// one named "handles" handles it.
class TListeningEntity : public TOwnerEntity {
  VESKA_CLASS(TListeningEntity, TOwnerEntity, u"ElementTests")
 public:
  inline static Texts heard;

  void HandleMessage(TVeskaMessage* /*message*/, bool& handled) override {
    heard.push_back(GetName());
    if (GetName() == u"fails") throw Exception(u"selhání");
    handled = handled || GetName() == u"handles";
  }
};

// Deliberately the constructor leaves KillData false; only writing the property frees the data.
TEST(MessageTest, OnlyAWrittenKillDataFreesTheDataAlsoOfAMessageNobodyTakes) {
  TApplication deaf;  // no window procedure: it takes nothing
  SetApplication(&deaf);
  auto* data = new TElement;
  TElement().SendMsg(tm_Done, nullptr, data, true);  // the message goes, not its data
  delete data;  // freed twice, as the sanitizer build shows, if the message had freed it
  for (const bool post : {true, false}) {
    auto* message = new TVeskaMessage(tm_Done, nullptr, nullptr, new TElement, false);
    const int32_t freed = ObjectHandles::HandleOf(message->Data);
    EXPECT_NE(message->Time, 0);
    EXPECT_TRUE(message->SetPropertyBooleanByName(u"KillData", true));
    post ? message->Post() : message->Send();
    deaf.ProcessMessages();
    EXPECT_EQ(ObjectHandles::ObjectOf(freed), nullptr) << (post ? "posted" : "sent");
  }
}

TEST(MessageTest, WritingPostItOrSendItDeliversWithTheCurrentOrTheWrittenNumber) {
  RecordingHost host;
  TElement sender;
  for (const int32_t written : {0, 5})
    EXPECT_TRUE(
        (new TVeskaMessage(tm_EndTask, &sender, nullptr, nullptr, false))->SetPropertyIntByName(u"PostIt", written));
  EXPECT_TRUE(host.delivered.empty()) << "posting returns before delivery";
  host.ProcessMessages();
  EXPECT_TRUE((new TVeskaMessage(tm_StartTask, &sender, nullptr, nullptr, false))->SetPropertyIntByName(u"SendIt", 7));
  EXPECT_EQ(host.delivered, (Texts{u"1 TElement>- - ", u"5 TElement>- - ", u"7 TElement>- - "}))
      << "sending returns after delivery";
}

TEST(MessageTest, OnlyThisLibrarysWindowMessageCarriesAMessage) {
  TVeskaMessage message;
  const intptr_t handle = ObjectHandles::HandleOf(&message);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(32868, 123, handle), &message);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(32869, 123, handle), nullptr);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(32868, 124, handle), nullptr);
  EXPECT_EQ(TVeskaMessage::FromWindowMessage(32868, 123, 0), nullptr);
}

TEST(MessageTest, MessagesToOwnersGoToEachOwnerWithTheSameData) {
  RecordingHost host;
  TOwnerEntity first;
  TNameEntity second;  // unnamed, each is known by its class
  TElement* element = Named(u"e", {&first, &second});
  element->SendMsgToOwners(tm_StartTask, element, false);  // itself as the data
  EXPECT_EQ(host.delivered.size(), 2u) << "sent at once";
  element->PostMsgToOwners(tm_Done, element, false);
  element->PostTextMsgToOwners(tm_Text, u"zpráva");
  element->PostMsg(tm_QuitTask, &first, nullptr, false);
  host.ProcessMessages();
  EXPECT_EQ(host.delivered,
            (Texts{u"0 e>TOwnerEntity e ", u"0 e>TNameEntity e ", u"3 e>TOwnerEntity e ", u"3 e>TNameEntity e ",
                   u"8 e>TOwnerEntity - zpráva", u"8 e>TNameEntity - zpráva", u"2 e>TOwnerEntity - "}));
}

// Once offered to the owners, a message counts as handled whatever they did.
TEST(MessageTest, OwnersHandleMessageReportsAFailingOwnerAndStopsAtTheOneThatHandles) {
  TVeskaMessage message(42, nullptr, nullptr, nullptr, false);
  bool handled = false;
  TOwnerElement().OwnersHandleMessage(&message, handled);
  EXPECT_TRUE(handled) << "without owners a message counts as handled";
  CapturedMessages captured;
  TListeningEntity::heard.clear();
  TListeningEntity owners[3];
  TElement* element = Named(u"", {&owners[0], &owners[1], &owners[2]});
  for (const StringView second : {u"handles", u"ignores"}) {
    owners[0].SetName(u"fails");
    owners[1].SetName(String(second));
    owners[2].SetName(u"last");
    handled = false;
    element->OwnersHandleMessage(&message, handled);
    EXPECT_TRUE(handled);
  }
  EXPECT_EQ(captured.Texts(), (Texts{u"42", u"42"}));
  EXPECT_EQ(TListeningEntity::heard, (Texts{u"fails", u"handles", u"fails", u"ignores", u"last"}));
}

// Deliberately a plain entity does not pass a message down to its members.
TEST(MessageTest, EnvelopeAnswersForTheEntityItWrapsButAnEntityNotForItsMembers) {
  TListeningEntity wrapped;
  wrapped.SetName(u"handles");
  TEnvelopeEntity envelope;
  envelope.AddOwner(&wrapped);
  EXPECT_EQ(envelope.FindOwnerClass(TEnvelopeEntity::StaticClassInfo()), &envelope);
  EXPECT_EQ(envelope.FindOwnerClass(TOwnerEntity::StaticClassInfo()), &wrapped);
  EXPECT_EQ(Named<TOwnerEntity>(u"", {&envelope})->FindOwnerName(u"handles"), &wrapped) << "found through the envelope";
  TVeskaMessage message(tm_EndTask, nullptr, &envelope, nullptr, false);
  bool handled = false, passed_down = false;
  envelope.HandleMessage(&message, handled);
  EXPECT_EQ(std::pair(handled, message.Receiver), std::pair(true, static_cast<TElement*>(&wrapped)));
  TEntity holder;
  Named<TListeningEntity>(u"handles", {&holder});
  holder.HandleMessage(&message, passed_down);
  EXPECT_FALSE(passed_down);
}

}  // namespace
}  // namespace veska
