// Loads an element of any registered class from arbitrary bytes, with and without a table of
// elements to resolve references in, and reads the bytes as a stream of typed values.
#include <memory>

#include "fuzz/fuzz_input.h"
#include "kernel/classes/registry.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/streams.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska {
namespace {

TMemoryStream StreamOf(std::span<const std::uint8_t> bytes) { return TMemoryStream(std::as_bytes(bytes)); }

void LoadElement(fuzz::FuzzInput input) {
  TVeskaClasses& registry = VeskaClasses();
  auto* record = ObjectAs<TVeskaClass>(registry.Get(static_cast<int>(input.Choose(registry.ElementsCount()))));
  const bool with_table = input.Choose(2) == 1;
  if (record == nullptr || record->ElementClass() == nullptr) return;
  std::unique_ptr<TElement> element(CreateObjectAs<TElement>(*record->ElementClass()));
  if (!element) return;
  TOwnerEntity table;
  if (with_table) {
    for (int i = 0; i < 3; ++i) table.AddElement(new TStringEntity);
  }
  TMemoryStream stream = StreamOf(input.Rest());
  TReader reader(stream);
  try {
    element->Load(reader, with_table ? &table : nullptr);
  } catch (const Exception&) {
  }
  // A quick entity does not tell its members of itself, so freeing it would free the table's
  // members under the table: as with any quick entity, its holder lets them go first.
  if (auto* quick = ObjectAs<TQuickEntity>(element.get())) quick->Clear();
}

void ReadValues(fuzz::FuzzInput input) {
  TMemoryStream stream = StreamOf(input.Rest());
  TReader reader(stream);
  try {
    while (true) reader.SkipValue();
  } catch (const Exception&) {
  }
}

}  // namespace
}  // namespace veska

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const veska::MessageSink quiet = veska::SetMessageSink([](const veska::String&, veska::MessageKind) {});
  veska::fuzz::FuzzInput input(data, size);
  if (input.Choose(2) == 0) {
    veska::LoadElement(input);
  } else {
    veska::ReadValues(input);
  }
  return 0;
}
