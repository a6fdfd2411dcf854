#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <tuple>

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
  bool Visible = false;
  String Caption;
  TShade Shade = TShade::shLight;
  TSet<TShade> Shades;
  double Ratio = 0;
  int64_t Big = 0;
  char16_t Letter = u'x';
  char Byte = 'b';
  AnsiString Legacy;
  WideString Wide;
  TMethod OnChange;
  Variant Any;
  TSample* Next = nullptr;
  int commands = 0;

  String GetCaption() const { return Caption; }
  void SetCaption(const String& value) { Caption = value; }
  void Command(int32_t value) { commands += value; }
  bool StoreCaption() const { return !Caption.empty(); }

  static void Publish(Publisher<TSample>& p) {
    p.Field(u"Count", &TSample::Count).Default(7);
    p.Field(u"Visible", &TSample::Visible);
    p.Property(u"Caption", &TSample::GetCaption, &TSample::SetCaption).Stored(&TSample::StoreCaption);
    p.Field(u"Shade", &TSample::Shade);
    p.Field(u"Shades", &TSample::Shades);
    p.Field(u"Ratio", &TSample::Ratio).Stored(false);
    p.Field(u"Big", &TSample::Big);
    p.Field(u"Letter", &TSample::Letter);
    p.Field(u"Byte", &TSample::Byte);
    p.Field(u"Legacy", &TSample::Legacy);
    p.Field(u"Wide", &TSample::Wide);
    p.Field(u"OnChange", &TSample::OnChange);
    p.Field(u"Any", &TSample::Any);
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

TEST(ObjectModel, DeclarationsGiveKindsDeducedFromTheCppTypesStoredAccessAndDefaults) {
  const ClassInfo& info = TSample::StaticClassInfo();
  const std::vector<std::pair<StringView, TTypeKind>> expected = {
      {u"Count", TTypeKind::tkInteger},     {u"Visible", TTypeKind::tkEnumeration}, {u"Caption", TTypeKind::tkUString},
      {u"Shade", TTypeKind::tkEnumeration}, {u"Shades", TTypeKind::tkSet},          {u"Ratio", TTypeKind::tkFloat},
      {u"Big", TTypeKind::tkInt64},         {u"Letter", TTypeKind::tkWChar},        {u"Byte", TTypeKind::tkChar},
      {u"Legacy", TTypeKind::tkLString},    {u"Wide", TTypeKind::tkWString},        {u"OnChange", TTypeKind::tkMethod},
      {u"Any", TTypeKind::tkVariant},       {u"Next", TTypeKind::tkClass},          {u"Command", TTypeKind::tkInteger},
      {u"Stored", TTypeKind::tkEnumeration}};
  ASSERT_EQ(info.PropCount(), static_cast<int>(expected.size()));
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(info.Properties()[i]->Name(), expected[i].first);
    EXPECT_EQ(info.Properties()[i]->Kind(), expected[i].second) << ToUtf8(expected[i].first);
    EXPECT_EQ(info.Properties()[i]->NameIndex(), static_cast<int>(i));
  }
  EXPECT_EQ(info.FindProperty(u"Visible")->PropType().EnumValueNames, (std::vector<String>{u"False", u"True"}));
  EXPECT_EQ(GetEnumName(info.FindProperty(u"shade")->PropType(), 2), u"shBlack");
  EXPECT_EQ(GetEnumValue(info.FindProperty(u"SHADE")->PropType(), u"SHDARK"), 1);
  EXPECT_EQ(info.FindProperty(u"Shades")->PropType().CompType, &TypeInfoOf<TShade>());
  EXPECT_EQ(info.FindProperty(u"Next")->PropType().ClassType(), &TSample::StaticClassInfo());

  EXPECT_EQ(info.FindProperty(u"Count")->Default(), 7);
  EXPECT_FALSE(info.FindProperty(u"Caption")->Default().has_value());
  EXPECT_TRUE(info.FindProperty(u"Ratio")->Stored().IsConstantFalse());
  TSample sample;
  EXPECT_TRUE(info.FindProperty(u"Count")->IsStored(sample));
  EXPECT_FALSE(info.FindProperty(u"Caption")->IsStored(sample));  // evaluated on the object
  sample.Caption = u"x";
  EXPECT_TRUE(info.FindProperty(u"Caption")->IsStored(sample));
}

TEST(ObjectModel, DescendantsShareTheirAncestorsRecordsAndCreateTheirOwnClass) {
  const ClassInfo& base = TSample::StaticClassInfo();
  const ClassInfo& derived = TDerivedSample::StaticClassInfo();
  const ClassInfo& silent = TSilentSample::StaticClassInfo();
  ASSERT_EQ(derived.PropCount(), base.PropCount() + 1);
  EXPECT_EQ(derived.Properties()[0], base.Properties()[0]);
  EXPECT_EQ(derived.Properties().back()->Name(), u"Extra");
  EXPECT_EQ(silent.PropCount(), derived.PropCount());
  EXPECT_TRUE(silent.InheritsFrom(TPersistent::StaticClassInfo()) && !base.InheritsFrom(derived));
  EXPECT_EQ(silent.Parent(), &derived);
  TObject* created = derived.Create();
  ASSERT_NE(created, nullptr);
  EXPECT_EQ(created->ClassName(), u"TDerivedSample");
  created->Free();
  EXPECT_FALSE(TPersistent::StaticClassInfo().CanCreate());
}

TEST(ObjectModel, TypedAccessGoesThroughFieldsAndMethodsAndIsRefusedAgainstKindDirectionOrClass) {
  TSample sample;
  const auto prop = [&](StringView name) { return sample.ClassType().FindProperty(name); };
  prop(u"Count")->SetOrd(sample, 42);
  prop(u"Caption")->SetStr(sample, u"Ahoj");
  prop(u"Shades")->SetOrd(sample, 5);
  prop(u"Legacy")->SetStr(sample, u"žluť");
  prop(u"Command")->SetOrd(sample, 3);
  prop(u"Command")->SetOrd(sample, 4);
  prop(u"OnChange")->SetMethod(sample, {12, 34});
  prop(u"Next")->SetObj(sample, &sample);
  prop(u"Byte")->SetOrd(sample, 0x1C1);  // only the low byte is kept
  EXPECT_EQ(std::tuple(sample.Count, sample.Caption, sample.commands), std::tuple(42, u"Ahoj", 7));
  EXPECT_TRUE(sample.Shades.Contains(TShade::shLight) && sample.Shades.Contains(TShade::shBlack));
  EXPECT_EQ(sample.Legacy.Bytes, "\x9Elu\x9D");
  EXPECT_EQ(prop(u"OnChange")->GetMethod(sample), (TMethod{12, 34}));
  EXPECT_EQ(prop(u"Next")->GetObj(sample), &sample);
  EXPECT_EQ(prop(u"Byte")->GetOrd(sample), 0xC1);
  EXPECT_EQ(prop(u"Legacy")->GetStr(sample), u"žluť");

  EXPECT_THROW(prop(u"Count")->GetStr(sample), EPropertyError);
  EXPECT_THROW(prop(u"Command")->GetOrd(sample), EPropertyError);
  EXPECT_THROW(prop(u"Stored")->SetOrd(sample, 1), EPropertyError);
  EXPECT_FALSE(prop(u"Command")->CanRead());
  TPersistent other;
  prop(u"Next")->SetObj(sample, &other);  // not a TSample: none is stored
  EXPECT_EQ(sample.Next, nullptr);
  EXPECT_THAT([&] { other.Assign(&sample); },
              testing::ThrowsMessage<EConvertError>("Cannot assign a TSample to a TPersistent"));
}

TEST(ObjectHandles, NumbersResolveOnlyToLiveObjectsAndAreNeverReused) {
  auto* first = new TSample;
  const int32_t handle = ObjectHandles::HandleOf(first);
  EXPECT_GT(handle, 0);
  EXPECT_EQ(ObjectHandles::ObjectOf(ObjectHandles::HandleOf(first)), first);
  delete first;
  EXPECT_EQ(ObjectHandles::ObjectOf(handle), nullptr);
  TSample second;
  EXPECT_NE(ObjectHandles::HandleOf(&second), handle);
  for (int64_t unknown : {int64_t{0}, int64_t{-5}, int64_t{1} << 40})
    EXPECT_EQ(ObjectHandles::ObjectOf(unknown), nullptr);
  EXPECT_EQ(ObjectHandles::HandleOf(nullptr), 0);
}

}  // namespace
}  // namespace veska
