// Drives a model or a technology with a script of property writes and reads, as files and
// scripts drive them: commands of the inheritance root (NewClassName, FindClassName,
// DeleteActualItem, ...), the element and tool models (NewPropertyName, NewSourceLink,
// NewToolName, ...), the system register and technologies (NewToolByModel, SelfModel, ...),
// with steps into the parts that object-valued properties hand out, writes of the reference
// numbers of objects seen on the way, so that links and nodes meet in any order, and runs of the
// tools reached.
//
// Each command is three bytes (what to do, which property, how many bytes of text follow) and
// the text.
#include <memory>
#include <vector>

#include "fuzz/acts_outside.h"
#include "fuzz/fuzz_input.h"
#include "kernel/elements/property_access.h"
#include "kernel/models/models_unit.h"
#include "kernel/platform/application.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/tools/technology.h"

namespace {

using namespace veska;

enum class Command { Write, WriteReference, ReadAll, StepInto, BackToRoot, SetUpAndRun, Count };

TElement* CreateRoot(fuzz::FuzzInput& input) {
  switch (input.Choose(6)) {
    case 0:
      return new TSystemRegister;
    case 1:
      return new TRegisterClassModels;
    case 2:
      return new TElementModel;
    case 3:
      return new TToolModel;
    case 4:
      return new TSeqTechnology;
    default:
      return new TSelectTechnology;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const MessageSink quiet = SetMessageSink([](const String&, MessageKind) {});
  fuzz::FuzzInput input(data, size);
  std::unique_ptr<TElement> root(CreateRoot(input));
  // The parts seen on the way.  The root is not among them: it is this function's to free, and a
  // script that makes it a member of its own parts would have it freed twice.
  std::vector<WeakRef<TObject>> seen;
  WeakRef<TObject> current = root.get();
  for (int step = 0; step < 64 && !input.Rest().empty(); ++step) {
    const auto command = static_cast<Command>(input.Choose(static_cast<std::size_t>(Command::Count)));
    TObject* target = current.Get();
    if (target == nullptr) target = root.get();
    const int count = GetPropCount(target);
    const String name = GetPropName(target, static_cast<int>(input.Choose(static_cast<std::size_t>(count))));
    const std::size_t length = input.Choose(24);
    const String text = input.TakeString(length);
    if (fuzz::ActsOutside(name)) continue;
    switch (command) {
      case Command::Write:
        SetPropStringByName(target, name, text);
        break;
      case Command::WriteReference:
        if (!seen.empty()) {
          TObject* referenced = seen[length % seen.size()].Get();
          SetPropStringByName(target, name, IntToStr(ObjectHandles::HandleOf(referenced)));
        }
        break;
      case Command::ReadAll:
        for (int i = 0; i < count; ++i) (void)GetPropString(target, i);
        break;
      case Command::StepInto:
        if (TObject* part = GetObjectPropByName(target, name)) {
          current = part;
          seen.emplace_back(part);
        }
        break;
      case Command::SetUpAndRun:
        if (auto* tool = ObjectAs<TTool>(target)) {
          tool->CreateSelfByModel();
          tool->DoIt();
          Application().ProcessMessages();
        }
        break;
      case Command::BackToRoot:
      case Command::Count:
        current = root.get();
        break;
    }
  }
  return 0;
}
