#include "kernel/elements/property_access.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "kernel/classes/registry.h"
#include "kernel/elements/named.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/platform/publisher.h"

namespace veska {

enum class TTestMode : uint8_t { pmOff, pmSlow, pmFast };
template <>
struct EnumNames<TTestMode> {
  static constexpr std::u16string_view TypeName = u"TTestMode";
  static constexpr std::array Names{EnumName{TTestMode::pmOff, u"pmOff"}, EnumName{TTestMode::pmSlow, u"pmSlow"},
                                    EnumName{TTestMode::pmFast, u"pmFast"}};
};

namespace {

// One published property of every kind the text forms know, plus a read-only one and getters
// that fail.
class TAllKinds : public TPersistent {
  VESKA_CLASS(TAllKinds, TPersistent, u"property_access_test")
 public:
  int32_t Int = 0;
  char Ch = 0;
  char16_t WCh = 0;
  TTestMode Mode = TTestMode::pmOff;
  TSet<TTestMode> Modes;
  double Flt = 0;
  ShortString Short;
  AnsiString Ansi;
  String Uni;
  WideString Wide;
  Variant Var;
  TNameElement* Obj = nullptr;
  TMethod Meth;
  int64_t Big = 0;
  bool Flag = false;

  int32_t GetFixed() const { return 7; }
  int32_t FailingOrdinal() const { throw ERangeError(u"ordinal read fails"); }
  void SetFailing(int32_t) {}
  double FailingFloat() const { throw EConvertError(u"float read fails"); }
  void SetFailingFloat(double) {}
  TMethod FailingMethod() const { throw EConvertError(u"method read fails"); }
  void SetFailingMethod(TMethod) {}

  static void Publish(Publisher<TAllKinds>& p) {
    p.Field(u"Int", &TAllKinds::Int);
    p.Field(u"Ch", &TAllKinds::Ch);
    p.Field(u"WCh", &TAllKinds::WCh);
    p.Field(u"Mode", &TAllKinds::Mode);
    p.Field(u"Modes", &TAllKinds::Modes);
    p.Field(u"Flt", &TAllKinds::Flt);
    p.Field(u"Short", &TAllKinds::Short);
    p.Field(u"Ansi", &TAllKinds::Ansi);
    p.Field(u"Uni", &TAllKinds::Uni);
    p.Field(u"Wide", &TAllKinds::Wide);
    p.Field(u"Var", &TAllKinds::Var);
    p.Field(u"Obj", &TAllKinds::Obj);
    p.Field(u"Meth", &TAllKinds::Meth);
    p.Field(u"Big", &TAllKinds::Big);
    p.Field(u"Flag", &TAllKinds::Flag);
    p.Property(u"Fixed", &TAllKinds::GetFixed);
    p.Property(u"BadOrd", &TAllKinds::FailingOrdinal, &TAllKinds::SetFailing);
    p.Property(u"BadFlt", &TAllKinds::FailingFloat, &TAllKinds::SetFailingFloat);
    p.Property(u"BadMeth", &TAllKinds::FailingMethod, &TAllKinds::SetFailingMethod);
  }
};

TEST(PropertyAccess, TableIsDeclarationOrderWithKinds) {
  TAllKinds o;
  ASSERT_EQ(GetPropCount(&o), 19);
  EXPECT_EQ(GetPropName(&o, 18), u"BadMeth");
  EXPECT_EQ(GetPropName(&o, 19), u"");
  constexpr std::array<int, 15> kKinds{1, 2, 9, 3, 6, 4, 5, 10, 18, 11, 12, 7, 8, 16, 3};
  for (std::size_t i = 0; i < kKinds.size(); ++i) {
    EXPECT_EQ(static_cast<int>(GetPropType(&o, static_cast<int>(i))), kKinds[i]) << i;
  }
  TObject plain;
  EXPECT_EQ(GetPropType(&plain, 0), TTypeKind::tkUnknown);
  EXPECT_EQ(GetPropString(&plain, 0), u"");
  EXPECT_EQ(GetPropString(nullptr, 0), u"");
}

TEST(PropertyAccess, NamesMatchIgnoringCaseAndUnknownOrReadOnlyNamesWriteNothing) {
  TAllKinds o;
  o.Uni = u"x";
  EXPECT_EQ(GetPropIndex(&o, u"uni"), 8);
  EXPECT_EQ(GetPropIndex(&o, u"UNI"), 8);
  EXPECT_EQ(GetPropIndex(&o, u""), -1);
  EXPECT_EQ(GetPropStringByName(&o, u""), u"");
  EXPECT_EQ(GetPropStringByName(&o, u"nothing"), u"");
  EXPECT_FALSE(SetPropStringByName(&o, u"nothing", u"1"));
  EXPECT_TRUE(SetPropStringByName(&o, u"Fixed", u"99")) << "a read-only property is found";
  EXPECT_EQ(GetPropStringByName(&o, u"Fixed"), u"7");
  TNameElement named;  // inherited properties come first
  EXPECT_EQ(GetPropIndex(&named, u"name"), 1);
}

TEST(PropertyAccess, EveryKindReadsAndWritesItsTextForm) {
  struct Case {
    StringView name;
    StringView text;
    StringView expected;
  };
  static constexpr Case kCases[] = {
      {u"Int", u"-42", u"-42"},
      {u"Int", u"abc", u"0"},
      {u"Int", u"-2147483648", u"-2147483648"},
      {u"Int", u"-922337203685477580805", u"0"},  // huge numbers never wrap into small ones
      {u"Int", u"4294967297", u"0"},              // nor does anything beyond 32 bits
      {u"Ch", u"řx", u"Y"},                       // U+0159 cut to 8 bits is 0x59
      {u"Ch", u"", StringView(u"\0", 1)},
      {u"WCh", u"€", u"€"},
      {u"WCh", u"", StringView(u"\0", 1)},
      {u"Mode", u"2", u"pmFast"},
      {u"Mode", u"pmslow", u"pmSlow"},
      {u"Modes", u"5", u"5"},
      {u"Flt", u"2.5", u"2.5"},
      {u"Flt", u"", u"0"},
      {u"Short", u"krátký", u"krátký"},
      {u"Ansi", u"dlouhý", u"dlouhý"},
      {u"Uni", u"Unicode ✓", u"Unicode ✓"},
      {u"Big", u"-9000000000", u"-9000000000"},
      {u"Big", u"12x", u"0"},
      {u"Big", u"-9223372036854775808", u"-9223372036854775808"},
      {u"Big", u"9223372036854775808", u"0"},
      {u"Big", u"-92233720368547758085", u"0"},
      {u"Flag", u"1", u"True"},
      {u"Flag", u"false", u"False"},
      {u"Meth", u"12;34", u"12;34"},
      {u"Meth", u"56", u"0;56"},  // without ";" the whole text is the data part
      {u"Meth", u";", u"0;0"},    // an empty part is 0
      {u"Wide", u"new", u""},     // wide strings and variants read empty and are never written
      {u"Var", u"4", u""},
  };
  TAllKinds o;
  EXPECT_EQ(GetPropStringByName(&o, u"Meth"), u"0;0");
  o.Wide.Text = u"kept";
  o.Var = int64_t{3};
  for (const Case& c : kCases) {
    SCOPED_TRACE(ToUtf8(c.name) + " " + ToUtf8(c.text));
    EXPECT_TRUE(SetPropStringByName(&o, c.name, String(c.text)));
    EXPECT_EQ(GetPropStringByName(&o, c.name), c.expected);
  }
  EXPECT_EQ(o.Wide.Text, u"kept");
  EXPECT_EQ(std::get<int64_t>(o.Var), 3);
}

TEST(PropertyAccess, ObjectReferencesTravelAsHandleNumbers) {
  TAllKinds o;
  TNameElement target;
  EXPECT_EQ(GetPropStringByName(&o, u"Obj"), u"0");
  o.Obj = &target;
  const String number = GetPropStringByName(&o, u"Obj");
  o.Obj = nullptr;
  ASSERT_TRUE(SetPropStringByName(&o, u"obj", number));
  EXPECT_EQ(GetObjectPropByName(&o, u"OBJ"), &target);
  // A number that names no object, junk, or an object of the wrong class gives none.
  TAllKinds other;
  for (const String& text : {String(u"2000000000"), String(u"junk"), IntToStr(ObjectHandles::HandleOf(&other))}) {
    o.Obj = &target;
    SetPropStringByName(&o, u"Obj", text);
    EXPECT_EQ(o.Obj, nullptr) << ToUtf8(text);
  }
  EXPECT_TRUE(SetObjectPropByName(&o, u"Obj", &target));
  EXPECT_EQ(o.Obj, &target);
  EXPECT_FALSE(SetObjectPropByName(&o, u"Int", &target));
  EXPECT_FALSE(SetObjectPropByName(&o, u"none", &target));
  EXPECT_EQ(GetObjectPropByName(&o, u"Int"), nullptr);
}

TEST(PropertyAccess, FailingReadsGiveErrorTextsAndFailingWritesAreReported) {
  TAllKinds o;
  EXPECT_EQ(GetPropStringByName(&o, u"BadOrd"), u"Err Ord Value");
  EXPECT_EQ(GetPropStringByName(&o, u"BadFlt"), u"Err Value");
  EXPECT_EQ(GetPropStringByName(&o, u"BadMeth"), u"");  // a failed method read leaves the text empty

  CapturedMessages captured;
  o.Flt = 1.5;
  SetPropStringByName(&o, u"Flt", u"abc");
  EXPECT_EQ(o.Flt, 1.5);
  SetPropStringByName(&o, u"Mode", u"pmNone");
  // A method pair is no integer: a malformed part is an error, and the pair stays as it was.
  SetPropStringByName(&o, u"Meth", u"7;8");
  SetPropStringByName(&o, u"Meth", u"12;abc");
  SetPropStringByName(&o, u"Meth", u"x;5");
  EXPECT_EQ(GetPropStringByName(&o, u"Meth"), u"7;8");
  ASSERT_EQ(captured.Texts().size(), 4U);
  EXPECT_EQ(captured.Texts()[0], u"Error filling property Flt by string abc");
  EXPECT_EQ(captured.Texts()[1], u"Error filling property Mode by string pmNone");
  EXPECT_EQ(captured.Texts()[2], u"Error filling property Meth by string 12;abc");
  EXPECT_EQ(captured.Entries()[0].Kind, MessageKind::Error);
}

}  // namespace
}  // namespace veska
