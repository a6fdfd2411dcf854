// How to declare an element class of your own application, register it, create it by name and
// read and write its properties by name.  Copy this file as the starting point of a new class.
#include <gtest/gtest.h>

#include <array>
#include <memory>

#include "kernel/classes/registry.h"
#include "kernel/elements/named.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/publisher.h"

namespace veska {

// 1. An enumeration is published with the names of its values, each beside its enumerator, in
//    ordinal order (a table out of order does not compile).  The specialisation lives in
//    namespace veska, next to the enumeration.
enum class TPumpState : uint8_t { psStopped, psRunning, psFailed };
template <>
struct EnumNames<TPumpState> {
  static constexpr std::u16string_view TypeName = u"TPumpState";
  static constexpr std::array Names{EnumName{TPumpState::psStopped, u"psStopped"},
                                    EnumName{TPumpState::psRunning, u"psRunning"},
                                    EnumName{TPumpState::psFailed, u"psFailed"}};
};

namespace {

// 2. The class: derive from an element class and name it, its parent (the class it derives
//    from) and its unit with VESKA_CLASS, which leaves the access private.  A class without
//    VESKA_CLASS, or one that names a parent it does not derive from, does not compile where it
//    is used as a run-time class.  A default constructor makes it creatable by name.
class TPump : public TOwnerElement {
  VESKA_CLASS(TPump, TOwnerElement, u"Pumps")

 public:
  int32_t Speed = 0;                         // a field read and written directly (kind 1)
  double Pressure = 0;                       // a float field (kind 4)
  TPumpState State = TPumpState::psStopped;  // a published enumeration (kind 3)
  TPump* Feeds = nullptr;                    // a reference to another element (kind 7), not owned

  // A property behind a getter and a setter (kind 18), saved only when it holds something.
  String GetLabel() const { return label_; }
  void SetLabel(const String& label) { label_ = label; }
  bool StoreLabel() const { return !label_.empty(); }

  // 3. The published properties, in the order they follow the inherited ones.
  static void Publish(Publisher<TPump>& p) {
    p.Field(u"Speed", &TPump::Speed);
    p.Property(u"Label", &TPump::GetLabel, &TPump::SetLabel).Stored(&TPump::StoreLabel);
    p.Field(u"Pressure", &TPump::Pressure);
    p.Field(u"State", &TPump::State);
    p.Field(u"Feeds", &TPump::Feeds);
  }

 private:
  String label_;
};

TEST(DeclaringClasses, AnApplicationClassIsRegisteredCreatedAndUsedByName) {
  // 4. Register the class once, at start-up of the application.
  RegisterVeskaClass<TPump>();
  ASSERT_EQ(GetVeskaClass(u"tpump"), &TPump::StaticClassInfo());

  // 5. Create elements from the class name, as loaders do with names read from files.
  std::unique_ptr<TElement> first(CreateElementByName(u"TPump"));
  std::unique_ptr<TElement> second(CreateElementByName(u"Pump"));  // "T" is added when missing
  auto* pump = ObjectAs<TPump>(first.get());
  ASSERT_NE(pump, nullptr);
  ASSERT_NE(ObjectAs<TPump>(second.get()), nullptr);

  // 6. Write and read every property by name, through text.
  EXPECT_TRUE(pump->SetPropertyStringByName(u"Speed", u"1450"));
  EXPECT_TRUE(pump->SetPropertyStringByName(u"label", u"Čerpadlo 1"));
  EXPECT_TRUE(pump->SetPropertyStringByName(u"Pressure", u"2.75"));
  EXPECT_TRUE(pump->SetPropertyStringByName(u"State", u"psRunning"));
  EXPECT_TRUE(SetObjectPropByName(pump, u"Feeds", second.get()));
  EXPECT_FALSE(pump->SetPropertyStringByName(u"Colour", u"red"));  // no such property

  EXPECT_EQ(pump->Speed, 1450);
  EXPECT_EQ(pump->GetPropertyStringByName(u"Label"), u"Čerpadlo 1");
  EXPECT_EQ(pump->GetPropertyStringByName(u"Pressure"), u"2.75");
  EXPECT_EQ(pump->GetPropertyStringByName(u"State"), u"psRunning");
  EXPECT_EQ(GetObjectPropByName(pump, u"Feeds"), second.get());

  // 7. The registry describes the class: its properties follow the inherited ones, and the
  //    stored predicate decides for each element whether Label is saved.
  const TVeskaClass* record = VeskaClasses().GetVeskaClassByName(u"TPump");
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->GetUnit_Name(), u"Pumps");
  EXPECT_EQ(record->GetAncestorClassName(), u"TOwnerElement");
  EXPECT_EQ(record->GetPropertyName(record->PropCount - 5), u"Speed");
  EXPECT_EQ(record->GetPropertyTypeKind(record->PropertyIndex(u"Feeds")), TTypeKind::tkClass);
  TVeskaInstance instance;
  instance.SetInstance(second.get());
  EXPECT_FALSE(instance.GetPropertyStored(instance.PropertyIndex(u"Label")));  // empty label
}

}  // namespace
}  // namespace veska
