// Declaring an element class of your own application, registering it, and creating it by name.
//
// Loaders and the veska program create elements from class names they read; a class of yours
// joins them once it is registered.  Build and run: examples/veska_example_own_class
#include <veska/veska.h>

#include <cstdio>
#include <memory>

namespace pumps {

// The class: derive from an element class and name the class, its parent and its unit with
// VESKA_CLASS.  A default constructor makes it creatable by name.  TOwnerElement gives it a name
// and keeps track of the entities that hold it.
class TPump : public veska::TOwnerElement {
  VESKA_CLASS(TPump, veska::TOwnerElement, u"Pumps")

 public:
  int32_t Speed = 0;    // published as an integer (type kind 1)
  double Pressure = 0;  // published as a float (type kind 4)

  // A property behind a getter and a setter (a Unicode string, kind 18), saved only when set.
  veska::String GetLabel() const { return label_; }
  void SetLabel(const veska::String& label) { label_ = label; }
  bool StoreLabel() const { return !label_.empty(); }

  // The published properties, in the order they follow the inherited ones.  The builder
  // deduces each property's type kind from the member's C++ type.
  static void Publish(veska::Publisher<TPump>& p) {
    p.Field(u"Speed", &TPump::Speed);
    p.Field(u"Pressure", &TPump::Pressure);
    p.Property(u"Label", &TPump::GetLabel, &TPump::SetLabel).Stored(&TPump::StoreLabel);
  }

 private:
  veska::String label_;
};

}  // namespace pumps

int main() {
  // Register once, at start-up, before anything looks the name up.
  veska::RegisterVeskaClass<pumps::TPump>();

  // Create by name; "Pump" finds "TPump" too.  The caller owns what it gets (none when the
  // name is unknown, which the library reports through the message sink).
  const std::unique_ptr<veska::TElement> element(veska::CreateElementByName(u"Pump"));
  auto* pump = veska::ObjectAs<pumps::TPump>(element.get());
  if (pump == nullptr) return 1;

  pump->SetName(u"P1");
  pump->SetPropertyStringByName(u"Speed", u"1450");
  pump->SetPropertyStringByName(u"Label", u"Čerpadlo 1");
  std::printf("%s is a %s with Speed %d and Label %s\n", veska::ToUtf8(pump->GetName()).c_str(),
              veska::ToUtf8(pump->ClassName()).c_str(), pump->Speed, veska::ToUtf8(pump->GetLabel()).c_str());

  // The registry describes the class as it does the library's own: unit, ancestor, properties.
  const veska::TVeskaClass* record = veska::VeskaClasses().GetVeskaClassByName(u"TPump");
  std::printf("unit %s, ancestor %s, %d published properties, the last three:\n",
              veska::ToUtf8(record->GetUnit_Name()).c_str(), veska::ToUtf8(record->GetAncestorClassName()).c_str(),
              record->PropCount);
  for (int i = record->PropCount - 3; i < record->PropCount; ++i) {
    std::printf("  %s (type kind %d)\n", veska::ToUtf8(record->GetPropertyName(i)).c_str(),
                static_cast<int>(record->GetPropertyTypeKind(i)));
  }
  return 0;
}
