// Reading and writing properties by name, as text and typed, and listing them.
//
// Every published property of every element can be read and written by its name (letter case
// ignored) without knowing the element's C++ type.  Build and run:
// examples/veska_example_properties_by_name
#include <veska/veska.h>

#include <cstdio>
#include <memory>
#include <vector>

int main() {
  // Texts the library shows to a user (here: a text that is no date) go to the message sink;
  // by default they are written to stderr.  This program collects them instead.
  std::vector<veska::String> shown;
  veska::SetMessageSink([&shown](const veska::String& text, veska::MessageKind) { shown.push_back(text); });

  const std::unique_ptr<veska::TElement> byte(veska::CreateElementByName(u"TByteElement"));
  if (!byte) return 1;

  // As text: a byte given the text 300 wraps to 44 ...
  byte->SetPropertyStringByName(u"AsString", u"300");
  std::printf("AsString=300    -> Value=%s\n", veska::ToUtf8(byte->GetPropertyStringByName(u"Value")).c_str());
  // ... while the integer 300 does not fit a byte and is refused.
  byte->SetPropertyIntByName(u"AsInteger", 300);
  std::printf("AsInteger=300   -> Value=%d\n", byte->GetPropertyIntByName(u"value"));

  // A name the class does not publish: the write says so by returning false.
  const bool written = byte->SetPropertyStringByName(u"Colour", u"red");
  std::printf("Colour=red      -> %s\n", written ? "written" : "no such property");
  // A text the property cannot take is reported through the sink and leaves the value alone.
  byte->SetPropertyStringByName(u"Life_Cycle_Start", u"tomorrow");
  std::printf("Life_Cycle_Start=tomorrow -> Life_Cycle_Start=%g\n", byte->GetPropertyFloatByName(u"Life_Cycle_Start"));

  // Every published property with its type kind (18 = Unicode string, 1 = integer, ...).
  std::printf("%d published properties of %s, the first four:\n", veska::GetPropCount(byte.get()),
              veska::ToUtf8(byte->ClassName()).c_str());
  for (int i = 0; i < 4; ++i) {
    std::printf("  %-12s kind %2d  %s\n", veska::ToUtf8(veska::GetPropName(byte.get(), i)).c_str(),
                static_cast<int>(veska::GetPropType(byte.get(), i)),
                veska::ToUtf8(veska::GetPropString(byte.get(), i)).c_str());
  }

  for (const veska::String& text : shown) std::printf("the library said: %s\n", veska::ToUtf8(text).c_str());
  veska::SetMessageSink({});  // back to stderr
  return 0;
}
