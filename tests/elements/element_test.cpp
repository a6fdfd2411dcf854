#include "kernel/elements/element.h"

#include <gtest/gtest.h>

#include <set>

#include "kernel/classes/registry.h"
#include "kernel/elements/entity.h"
#include "kernel/elements/named.h"
#include "kernel/platform/date_time.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/publisher.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska {
namespace {

// An owned element that keeps a life-cycle period of its own.
class TPeriodElement : public TOwnerElement {
  VESKA_CLASS(TPeriodElement, TOwnerElement, u"ElementTests")
 public:
  bool Life_Cycle_Is_Implemented() const override { return true; }
  TDateTime GetLife_Cycle_Start() const override { return start_; }
  TDateTime GetLife_Cycle_End() const override { return end_; }
  void SetLife_Cycle_Start(TDateTime value) override { start_ = value; }
  void SetLife_Cycle_End(TDateTime value) override { end_ = value; }

 private:
  TDateTime start_ = 0;
  TDateTime end_ = 0;
};

// Turns the life-cycle watch on for one test and off again, whatever the test does.
class WatchOn {
 public:
  explicit WatchOn(TDateTime time) {
    Life_Cycle_Watch = true;
    Life_Cycle_WatchTime = time;
  }
  ~WatchOn() {
    Life_Cycle_Watch = false;
    Life_Cycle_WatchTime = 0;
  }
  WatchOn(const WatchOn&) = delete;
  WatchOn& operator=(const WatchOn&) = delete;
};

TEST(ElementTest, NewElementHasNoIdItsClassNameNoOwnersAndIsAlive) {
  TElement element;
  element.SetName(u"Jméno");  // a plain element has no name of its own
  element.SetPropertyStringByName(u"Name", u"Jméno");
  // Read through the published properties the loaders use.
  EXPECT_EQ(element.GetPropertyIntByName(u"ID"), -1);
  EXPECT_EQ(element.GetPropertyStringByName(u"Name"), u"TElement");
  EXPECT_EQ(element.GetPropertyIntByName(u"OwnersCount"), 0);
  EXPECT_TRUE(element.GetPropertyBooleanByName(u"Life_Cycle_Alive"));
  EXPECT_EQ(element.GetPropertyStringByName(u"_ClassName"), u"TElement");
  EXPECT_FALSE(element.StoreName());
}

TEST(ElementTest, ResetBaseIdAlwaysGivesANewMarkThatIsNeverPositive) {
  for (int i = 0; i < 1000; ++i) {
    const int32_t previous = BaseID;
    ResetBaseID();
    EXPECT_NE(BaseID, previous);
    EXPECT_LE(BaseID, 0);
    EXPECT_GE(BaseID, -31999);
  }
}

TEST(ElementTest, WholeSizeAndCountVisitAnElementReachableTwiceOnceAndStampEveryId) {
  TEntity root;
  auto* shared = new TElement;
  auto* left = new TEntity;
  auto* right = new TEntity;
  left->AddElement(shared);
  right->AddElement(shared);
  root.AddElement(left);
  root.AddElement(right);
  const int32_t whole_size = 3 * root.GetInstanceSize() + shared->GetInstanceSize();

  EXPECT_EQ(root.GetWholeSize(), whole_size);
  EXPECT_EQ(right->ID, BaseID);
  left->AddElement(&root);  // a cycle ends the walks too
  EXPECT_EQ(root.GetWholeSize(), whole_size);
  EXPECT_EQ(root.GetWholeCount(), 5) << "member slots of the three distinct entities";
  root.ResetID();
  EXPECT_EQ(left->ID, BaseID);
  EXPECT_EQ(shared->ID, BaseID);
  left->Clear();  // the root is not the left entity's to free, nor the shared element twice
  right->RemoveElement(shared);
  delete shared;
}

TEST(ElementTest, LifeCycleWatchJudgesThePeriodWithInclusiveBounds) {
  const TDateTime watch_time = EncodeDate(2020, 6, 15);
  struct Case {
    TDateTime start;
    TDateTime end;
    bool alive;
    const char* why;
  };
  const Case cases[] = {{0, 0, true, "no period set"},
                        {watch_time + 1, 0, false, "starts after the watch time, open end"},
                        {watch_time, 0, true, "starts at the watch time"},
                        {0, watch_time, true, "ends at the watch time"},
                        {0, watch_time - 1, false, "ended before the watch time"}};
  TPeriodElement element;
  WatchOn watch(watch_time);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    element.SetLife_Cycle_Start(c.start);
    element.SetLife_Cycle_End(c.end);
    EXPECT_EQ(element.Life_Cycle_Is_Alive(), c.alive);
  }
  TElement without_period;
  EXPECT_TRUE(without_period.Life_Cycle_Is_Alive()) << "an element without a period is always alive";
  Life_Cycle_WatchTime = 0;
  EXPECT_TRUE(element.Life_Cycle_Is_Alive()) << "no watch time set";
  Life_Cycle_Watch = false;
  Life_Cycle_WatchTime = watch_time;
  EXPECT_TRUE(element.Life_Cycle_Is_Alive()) << "the watch is off";
}

TEST(ElementTest, LifeCycleYearAndMonthAccessors) {
  TPeriodElement element;
  EXPECT_EQ(element.GetLife_Cycle_Start_Year(), 0);
  EXPECT_ANY_THROW(element.SetLife_Cycle_Start_Month(5)) << "year 0 is no date";
  element.SetLife_Cycle_Start_Year(2001);
  element.SetLife_Cycle_Start_Month(3);
  EXPECT_EQ(element.GetLife_Cycle_Start(), EncodeDate(2001, 3, 1));
  element.SetLife_Cycle_End_Year(2002);
  element.SetLife_Cycle_End_Month(2);
  EXPECT_EQ(element.GetLife_Cycle_End(), EndOfAMonth(2002, 2));
  EXPECT_EQ(element.GetLife_Cycle_End_Month(), 2);

  TElement plain;
  plain.SetLife_Cycle_Start_Year(2001);
  EXPECT_EQ(plain.GetLife_Cycle_Start_Year(), 0);
}

TEST(ElementTest, CreateElementByNameFindsClassesWithOrWithoutThePrefix) {
  CapturedMessages captured;
  std::unique_ptr<TElement> created(CreateElementByName(u"Element"));
  EXPECT_EQ(created->ClassType().Name(), u"TElement");
  EXPECT_TRUE(captured.Texts().empty());
  EXPECT_EQ(CreateElementByName(u"xyz"), nullptr);
  ASSERT_EQ(captured.Entries().size(), 1u);
  EXPECT_EQ(captured.Entries()[0].Text, u"Neregistrovaný element: xyz");
  EXPECT_EQ(captured.Entries()[0].Kind, MessageKind::Error);
}

TEST(ElementTest, SearchThroughOwnersClimbsTheOwnerChain) {
  TOwnerEntity top;
  auto* middle = new TOwnerEntity;
  auto* leaf = new TOwnerElement;
  top.AddElement(middle);
  middle->AddElement(leaf);

  EXPECT_EQ(leaf->FindClassInOwners(TOwnerElement::StaticClassInfo()), leaf);
  EXPECT_EQ(leaf->FindClassInOwners(TOwnerEntity::StaticClassInfo()), middle);
  // The first element of the class is the answer, whether or not the entity owns it.
  EXPECT_EQ(leaf->FindFirstClassWithOwnerInOwners(TOwnerEntity::StaticClassInfo(), &top), middle);
  EXPECT_EQ(leaf->FindFirstClassWithOwnerInOwners(TOwnerEntity::StaticClassInfo(), middle), nullptr);
  EXPECT_EQ(leaf->FindClassWithOwnerInOwners(TOwnerEntity::StaticClassInfo(), middle), nullptr)
      << "top has no owner either";
}

TEST(ElementTest, SaveAndLoadOfAReferenceGoThroughTheLoadersTable) {
  TQuickEntity table;
  table.AddElement(new TElement);
  auto* second = new TElement;
  table.AddElement(second);
  second->ID = 1;
  TMemoryStream stream;
  {
    TWriter writer(stream);
    TElement::SaveElement(second, writer);
    TElement::SaveElement(nullptr, writer);
  }
  stream.Seek(0, TSeekOrigin::soBeginning);
  TReader reader(stream);
  EXPECT_EQ(TElement::LoadElement(reader, &table), second);
  EXPECT_EQ(TElement::LoadElement(reader, &table), nullptr);
  table.FastFreeAll();
}

TEST(SuperListTest, FreeAllFreesOnlyWhatMayBeFreedAndKeepsTheSlots) {
  TEntity first;
  TEntity second;
  auto* shared = new TOwnerElement;
  first.AddElement(shared);
  second.AddElement(shared);
  TSuperList list;
  list.Add(shared);
  list.Add(new TOwnerElement);
  list.Add(nullptr);
  list.FreeAll();  // frees `alone`; `shared` refuses, as its two holders do not agree
  EXPECT_EQ(list.Count(), 3);
  EXPECT_EQ(first.IndexOf(shared), 0);
  list.Clear();
}

}  // namespace
}  // namespace veska
