#include "cli/tool_runner.h"

#include <memory>

#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/tools/tool.h"

namespace veska::cli {

void RunTool(const ShellScript& script, std::FILE* out) {
  const std::unique_ptr<TElement> element = CreateShellElement(script.class_name);
  auto* tool = ObjectAs<TTool>(element.get());
  if (tool == nullptr) throw Exception(u"Class: " + element->ClassName() + u" is not a Tool");
  for (const ShellStep& step : script.steps) {
    if (!step.Reads()) RunShellStep(*tool, step, out);
  }
  // A tool without a model is simply run: set-up would only report that it has none.
  if (tool->GetSelfModel() != nullptr) tool->CreateSelfByModel();
  tool->DoIt();
  Application().ProcessMessages();
  const TElement* output = tool->GetOutput();
  const String described = output != nullptr ? output->ClassName() + u":" + output->GetName() : String();
  std::fprintf(out, "Output=%s\nError=%d\n", ToUtf8(described).c_str(), static_cast<int>(tool->Error));
  for (const ShellStep& step : script.steps) {
    if (step.Reads()) RunShellStep(*tool, step, out);
  }
}

}  // namespace veska::cli
