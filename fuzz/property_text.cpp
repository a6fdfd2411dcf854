// Writes arbitrary text into any published property of any registered class by name, then
// reads every property back as text.
#include <memory>

#include "fuzz/fuzz_input.h"
#include "kernel/classes/registry.h"
#include "kernel/elements/message.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/message_sink.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace veska;
  static const MessageSink quiet = SetMessageSink([](const String&, MessageKind) {});
  fuzz::FuzzInput input(data, size);
  TVeskaClasses& registry = VeskaClasses();
  auto* record = ObjectAs<TVeskaClass>(registry.Get(static_cast<int>(input.Choose(registry.ElementsCount()))));
  if (record == nullptr || record->ElementClass() == nullptr) return 0;
  std::unique_ptr<TElement> element(CreateObjectAs<TElement>(*record->ElementClass()));
  if (!element) return 0;
  const int count = GetPropCount(element.get());
  const int index = static_cast<int>(input.Choose(static_cast<std::size_t>(count)));
  const String name = GetPropName(element.get(), index);
  // Writing SendIt or PostIt hands a message to the host, which then owns it: that message
  // must not also be freed here.
  if (element->Is<TVeskaMessage>() && (SameText(name, u"SendIt") || SameText(name, u"PostIt"))) return 0;
  // LoadFromFile and SaveToFile take their text as a file name: they would read and write
  // files anywhere, which is what they are for and no parsing of text.
  if (SameText(name, u"LoadFromFile") || SameText(name, u"SaveToFile")) return 0;
  SetPropStringByName(element.get(), name, input.RestAsString());
  for (int i = 0; i < count; ++i) (void)GetPropString(element.get(), i);
  return 0;
}
