// Runs tools as the veska program's "run" command does: a tool class of the registry created by
// name, its published properties written from arbitrary text in the order the input chooses,
// its set-up from its self model when it has one, and DoIt under a world whose main tool shows
// what tools report, until no message is left.  Object-valued properties take the numbers of
// the objects met on the way (the parts the tool hands out), or arbitrary text.  An exception of
// the library is a tool's failure, which the program reports.  The loaders and the saver, which
// read and write files anywhere on the machine, are left out: the model-file target drives the
// loaders, and the saver writes what the tests and the model-file seeds load.
//
// Each write is two bytes (which property, how many bytes of text follow) and the text.
#include <memory>
#include <vector>

#include "fuzz/acts_outside.h"
#include "fuzz/fuzz_input.h"
#include "kernel/classes/registry.h"
#include "kernel/elements/property_access.h"
#include "kernel/persistence/stream_saver.h"
#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/tools/host_technology.h"
#include "kernel/tools/world.h"

namespace {

using namespace veska;

// The registered classes that are tools, found once.
const std::vector<const ClassInfo*>& ToolClasses() {
  static const std::vector<const ClassInfo*> classes = [] {
    std::vector<const ClassInfo*> found;
    for (int i = 0; i < VeskaClasses().ElementsCount(); ++i) {
      const auto* record = ObjectAs<TVeskaClass>(VeskaClasses().Get(i));
      const ClassInfo* element_class = record != nullptr ? record->ElementClass() : nullptr;
      if (element_class != nullptr && element_class->InheritsFrom(TTool::StaticClassInfo()) &&
          element_class->UnitName() != kLoaderUnit && element_class->UnitName() != kSaverUnit) {
        found.push_back(element_class);
      }
    }
    return found;
  }();
  return classes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const MessageSink quiet = SetMessageSink([](const String&, MessageKind) {});
  fuzz::FuzzInput input(data, size);
  TWorld world;
  world.SetMainTool(new THostTechnology);
  const std::vector<const ClassInfo*>& classes = ToolClasses();
  std::unique_ptr<TElement> element(CreateElementByName(classes[input.Choose(classes.size())]->Name()));
  auto* tool = ObjectAs<TTool>(element.get());
  if (tool == nullptr) return 0;
  // The parts seen on the way.  The tool is not among them: it is this function's to free, and a
  // write that makes it a member of its own parts would have it freed twice.
  std::vector<WeakRef<TObject>> seen;
  const int count = GetPropCount(tool);
  for (int write = 0; write < 32 && !input.Rest().empty(); ++write) {
    const String name = GetPropName(tool, static_cast<int>(input.Choose(static_cast<std::size_t>(count))));
    const std::size_t length = input.Choose(24);
    String text = input.TakeString(length);
    if (fuzz::ActsOutside(name)) continue;
    const PropInfo* property = tool->ClassType().FindProperty(name);
    if (property != nullptr && property->Kind() == TTypeKind::tkClass) {
      if (property->CanRead()) {
        if (TObject* part = GetObjectPropByName(tool, name)) seen.emplace_back(part);
      }
      if (!seen.empty() && length % 2 == 0)
        text = IntToStr(ObjectHandles::HandleOf(seen[length / 2 % seen.size()].Get()));
    }
    SetPropStringByName(tool, name, text);
  }
  try {
    if (tool->GetSelfModel() != nullptr) tool->CreateSelfByModel();
    tool->DoIt();
  } catch (const Exception&) {
  }
  Application().ProcessMessages();
  // A tool still in progress ends it as it goes: that message too reaches this world.
  element.reset();
  Application().ProcessMessages();
  return 0;
}
