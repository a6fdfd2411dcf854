#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <vector>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/object_handles.h"
#include "kernel/platform/publisher.h"

namespace veska {

enum class TShade : uint8_t { shLight, shDark, shBlack };
template <>
struct EnumNames<TShade> {
  static constexpr std::u16string_view TypeName = u"TShade";
  static constexpr std::array Names{EnumName{TShade::shLight, u"shLight"}, EnumName{TShade::shDark, u"shDark"},
                                    EnumName{TShade::shBlack, u"shBlack"}};
};

namespace {

class TSample : public TPersistent {
  VESKA_CLASS(TSample, TPersistent, u"SampleUnit")
 public:
  int32_t Count = 7;
  String Caption;
  TShade Shade = TShade::shLight;
  TSet<TShade> Shades;
  double Ratio = 0;
  char Byte = 'b';
  AnsiString Legacy;
  TMethod OnChange;
  TSample* Next = nullptr;
  int commands = 0;

  String GetCaption() const { return Caption; }
  void SetCaption(const String& value) { Caption = value; }
  void Command(int32_t value) { commands += value; }
  bool StoreCaption() const { return !Caption.empty(); }

  static void Publish(Publisher<TSample>& p) {
    p.Field(u"Count", &TSample::Count).Default(7);
    p.Property(u"Caption", &TSample::GetCaption, &TSample::SetCaption).Stored(&TSample::StoreCaption);
    p.Field(u"Shade", &TSample::Shade);
    p.Field(u"Shades", &TSample::Shades);
    p.Field(u"Ratio", &TSample::Ratio).Stored(false);
    p.Field(u"Byte", &TSample::Byte);
    p.Field(u"Legacy", &TSample::Legacy);
    p.Field(u"OnChange", &TSample::OnChange);
    p.Field(u"Next", &TSample::Next);
    p.WriteOnly(u"Command", &TSample::Command);
    p.Property(u"Stored", &TSample::StoreCaption);
  }
};

class TDerivedSample : public TSample {
  VESKA_CLASS(TDerivedSample, TSample, u"SampleUnit")
 public:
  String Extra;
  static void Publish(Publisher<TDerivedSample>& p) { p.Field(u"Extra", &TDerivedSample::Extra); }
};

class TSilentSample : public TDerivedSample {
  VESKA_CLASS(TSilentSample, TDerivedSample, u"OtherUnit")
};

TEST(ObjectModel, DeclarationsGiveEnumerationNamesStoredAccessAndDefaultsAndDescendantsShareTheirAncestorsRecords) {
  const ClassInfo& info = TSample::StaticClassInfo();
  const auto prop = [&](StringView name) { return info.FindProperty(name); };
  ASSERT_EQ(info.PropCount(), 11);
  EXPECT_EQ(std::tuple(info.Properties()[10]->Name(), info.Properties()[10]->NameIndex()), std::tuple(u"Stored", 10));
  EXPECT_EQ(std::pair(GetEnumName(prop(u"shade")->PropType(), 2), GetEnumValue(prop(u"SHADE")->PropType(), u"SHDARK")),
            std::pair(String(u"shBlack"), 1));
  EXPECT_TRUE(prop(u"Shades")->PropType().CompType == &TypeInfoOf<TShade>() &&
              prop(u"Next")->PropType().ClassType() == &info);
  EXPECT_TRUE(prop(u"Count")->Default() == 7 && !prop(u"Caption")->Default().has_value() &&
              prop(u"Ratio")->Stored().IsConstantFalse());
  TSample sample;
  EXPECT_TRUE(prop(u"Count")->IsStored(sample));
  EXPECT_FALSE(prop(u"Caption")->IsStored(sample));  // evaluated on the object
  sample.Caption = u"x";
  EXPECT_TRUE(prop(u"Caption")->IsStored(sample));

  const ClassInfo& derived = TDerivedSample::StaticClassInfo();
  const ClassInfo& silent = TSilentSample::StaticClassInfo();
  ASSERT_EQ(std::tuple(derived.PropCount(), silent.PropCount()), std::tuple(12, 12));
  EXPECT_TRUE(derived.Properties()[0] == info.Properties()[0] && derived.Properties()[11]->Name() == u"Extra");
  EXPECT_TRUE(silent.Parent() == &derived && silent.InheritsFrom(TPersistent::StaticClassInfo()) &&
              !info.InheritsFrom(derived));
  TObject* created = derived.Create();
  ASSERT_NE(created, nullptr);
  EXPECT_EQ(created->ClassName(), u"TDerivedSample");
  created->Free();
  EXPECT_FALSE(TPersistent::StaticClassInfo().CanCreate());
}

TEST(ObjectModel, TypedAccessIsRefusedAgainstKindDirectionOrClassAndHandlesResolveOnlyToLiveObjectsNeverReused) {
  TSample sample;
  const auto prop = [&](StringView name) { return sample.ClassType().FindProperty(name); };
  prop(u"Count")->SetOrd(sample, 42);
  prop(u"Caption")->SetStr(sample, u"Ahoj");
  prop(u"Shades")->SetOrd(sample, 5);
  prop(u"Legacy")->SetStr(sample, u"žluť");
  prop(u"Command")->SetOrd(sample, 7);
  prop(u"OnChange")->SetMethod(sample, {12, 34});
  prop(u"Next")->SetObj(sample, &sample);
  prop(u"Byte")->SetOrd(sample, 0x1C1);  // only the low byte is kept
  EXPECT_EQ(std::tuple(sample.Count, sample.Caption, sample.commands), std::tuple(42, u"Ahoj", 7));
  EXPECT_TRUE(sample.Shades.Contains(TShade::shLight) && sample.Shades.Contains(TShade::shBlack));
  EXPECT_EQ(sample.Legacy.Bytes, "\x9Elu\x9D");
  EXPECT_EQ(std::tuple(prop(u"OnChange")->GetMethod(sample), prop(u"Next")->GetObj(sample),
                       prop(u"Byte")->GetOrd(sample), prop(u"Legacy")->GetStr(sample)),
            std::tuple(TMethod{12, 34}, &sample, 0xC1, u"žluť"));

  EXPECT_THROW(prop(u"Count")->GetStr(sample), EPropertyError);
  EXPECT_THROW(prop(u"Command")->GetOrd(sample), EPropertyError);
  EXPECT_THROW(prop(u"Stored")->SetOrd(sample, 1), EPropertyError);
  TPersistent other;
  prop(u"Next")->SetObj(sample, &other);  // not a TSample: none is stored
  EXPECT_EQ(sample.Next, nullptr);
  EXPECT_THAT([&] { other.Assign(&sample); },
              testing::ThrowsMessage<EConvertError>("Cannot assign a TSample to a TPersistent"));

  auto* first = new TSample;
  const int32_t handle = ObjectHandles::HandleOf(first);
  EXPECT_TRUE(handle > 0 && ObjectHandles::ObjectOf(handle) == first);
  delete first;
  TSample second;
  const int64_t live = ObjectHandles::HandleOf(&second);
  EXPECT_NE(live, handle);
  // A number beyond 32 bits never names the handle in its low bits.
  for (int64_t none : {int64_t{handle}, int64_t{0}, (int64_t{1} << 32) + live})
    EXPECT_EQ(ObjectHandles::ObjectOf(none), nullptr) << none;
  EXPECT_EQ(ObjectHandles::HandleOf(nullptr), 0);
}

TEST(ObjectModel, HandlesResolveAcrossTheTablesPagesWhileOthersAroundThemGo) {
  // Enough objects to fill several pages of the table; every third one outlives the others, so
  // pages empty partly, and the pages of the ones that go entirely are let go.
  std::vector<std::unique_ptr<TPersistent>> objects(5000);
  std::vector<int32_t> handles;
  for (auto& object : objects) {
    object = std::make_unique<TPersistent>();
    handles.push_back(ObjectHandles::HandleOf(object.get()));
  }
  for (std::size_t i = 0; i < objects.size(); ++i) {
    if (i % 3 != 0 || i > 3000) objects[i].reset();
  }
  TPersistent later;
  const int32_t later_handle = ObjectHandles::HandleOf(&later);
  for (std::size_t i = 0; i < objects.size(); ++i) {
    ASSERT_EQ(ObjectHandles::ObjectOf(handles[i]), objects[i].get()) << i;
  }
  EXPECT_TRUE(later_handle > handles.back() && ObjectHandles::ObjectOf(later_handle) == &later);
}

}  // namespace
}  // namespace veska
