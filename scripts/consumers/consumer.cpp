// A program that uses an installed veska: it creates an element by class name, which only works
// when the library's start-up table came along into the link, and writes a property by name.
#include <veska/veska.h>

#include <cstdio>
#include <memory>

int main() {
  const std::unique_ptr<veska::TElement> element(veska::CreateElementByName(u"StringEntity"));
  if (!element || !element->SetPropertyStringByName(u"Value", u"ahoj")) return 1;
  std::printf("veska %s: %s.Value=%s\n", VESKA_VERSION_STRING, veska::ToUtf8(element->ClassName()).c_str(),
              veska::ToUtf8(element->GetPropertyStringByName(u"Value")).c_str());
  return 0;
}
