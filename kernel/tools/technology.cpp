#include "kernel/tools/technology.h"

#include <memory>

#include "kernel/classes/registry.h"
#include "kernel/platform/object_handles.h"

namespace veska {

// --- TTechnology --------------------------------------------------------------------------------

TTools* TTechnology::GetTools() { return CachedOrAddedPart(*this, tools_); }

bool TTechnology::GetNoTools() { return PartIsEmpty(tools_.Get(*this)); }

template <class Action>
void TTechnology::ForEachTool(Action action) {
  for (int i = 0; i < ToolCount(); ++i) {
    if (auto* tool = ObjectAs<TTool>(GetTool(i))) action(*tool);
  }
}

TTool* TTechnology::GetActiveTool() {
  if (tools_.Get(*this) == nullptr || active_tool_index_ < 0 || active_tool_index_ >= ToolCount()) return nullptr;
  return ObjectAs<TTool>(GetTool(active_tool_index_));
}

void TTechnology::SetActiveTool(TTool* tool) { SetActiveToolIndex(GetTools()->IndexOf(tool)); }

void TTechnology::SetActiveToolIndex(int32_t index) {
  active_tool_index_ = index >= 0 && index < ToolCount() ? index : -1;
}

void TTechnology::AddTool(TTool* tool) { GetTools()->AddElement(tool); }

TElement* TTechnology::CreateTool(const String& class_name, const String& name) {
  return GetTools()->CreateElement(class_name, name);
}

void TTechnology::InsertTool(int index, TTool* tool) { GetTools()->InsertElement(index, tool); }
void TTechnology::RemoveTool(TTool* tool) { GetTools()->RemoveElement(tool); }
void TTechnology::FreeTool(TTool* tool) { GetTools()->FreeElement(tool); }

void TTechnology::ExchangeFieldTool(TTool*& field, TTool* tool) {
  TElement* held = field;
  GetTools()->ExchangeFieldElement(held, tool);
  field = tool;
}

// The tool is named after its model and takes the model as its self model, which makes it the
// model's instance (an owner of the model's name and class).  A model may name a property of
// the technology that is to hold the tool; the tool goes there as its reference number.
TTool* TTechnology::CreateToolByModel(TToolModel* model) {
  if (model == nullptr || model->ElementClassName.empty()) return nullptr;
  const String& class_name = model->ElementClassName;
  const ClassInfo* cls = GetVeskaClass(class_name);
  if (cls == nullptr) {
    PostTextMsg(tm_Text, u"Unknown class: " + class_name, nullptr);
    return nullptr;
  }
  TTool* tool = cls->InheritsFrom(TTool::StaticClassInfo()) ? CreateObjectAs<TTool>(*cls) : nullptr;
  if (tool == nullptr) {
    PostTextMsg(tm_Text, u"Class: " + class_name + u" is not a Tool", nullptr);
    return nullptr;
  }
  tool->SetName(model->GetName());
  AddTool(tool);
  if (!model->AttachToPropertyName.empty()) {
    SetPropertyIntByName(model->AttachToPropertyName, ObjectHandles::HandleOf(tool));
  }
  tool->SetSelfModel(model);
  tool->CreateSelfByModel();
  return tool;
}

bool TTechnology::IsPossibleToQuit() {
  for (int i = 0; i < ToolCount(); ++i) {
    auto* tool = ObjectAs<TTool>(GetTool(i));
    if (tool != nullptr && !tool->IsPossibleToQuit()) return false;
  }
  return true;
}

bool TTechnology::ReadyForZeroActivity() {
  bool ready = TTool::ReadyForZeroActivity();
  ForEachTool([&ready](TTool& tool) { ready = tool.ReadyForZeroActivity() && ready; });
  return ready;
}

void TTechnology::EndZeroActivity() {
  TTool::EndZeroActivity();
  ForEachTool([](TTool& tool) { tool.EndZeroActivity(); });
}

void TTechnology::CreateSelfByModel() {
  TTool::CreateSelfByModel();
  if (!DynamicTool) CreateDynamicPart();
}

void TTechnology::CreateDynamicPart() {
  TToolModel* model = GetSelfModel();
  if (model == nullptr || model->GetNoModelTools()) return;
  TOwnerEntity* tool_models = model->GetModelTools();
  for (int i = 0; i < tool_models->ElementsCount(); ++i) {
    if (auto* tool_model = ObjectAs<TToolModel>(tool_models->Get(i))) CreateToolByModel(tool_model);
  }
}

void TTechnology::DestroyDynamicPart() {
  UpdateModel();
  if (TTools* tools = tools_.Get(*this)) tools->FreeAll();
}

void TTechnology::UpdateModel() {
  TTool::UpdateModel();
  ForEachTool([](TTool& tool) { tool.UpdateModel(); });
}

// Only a tool of this technology is freed: a message may name any element as its sender.
void TTechnology::on_tm_EndTask(TVeskaMessage* message) {
  auto* tool = ObjectAs<TTool>(message->Sender);
  if (tool != nullptr && GetTools()->IndexOf(tool) >= 0) FreeTool(tool);
}

void TTechnology::Publish(Publisher<TTechnology>& p) {
  p.Property(u"ActiveTool", &TTechnology::GetActiveTool, &TTechnology::SetActiveTool).Stored(false);
  p.WriteOnly(u"ToolToAdd", &TTechnology::AddToolProc).Stored(false);
  p.WriteOnly(u"NewToolByModel", &TTechnology::SetNewToolByModel).Stored(false);
  p.WriteOnly(u"ToolToFree", &TTechnology::SetToolToFree).Stored(false);
  p.WriteOnly(u"ToolToRemove", &TTechnology::RemoveTool).Stored(false);
}

// --- Sequence, selection, iteration -------------------------------------------------------------

void TSeqTechnology::DoIt() {
  TTool::DoIt();
  if (NoElements()) return;
  for (int i = 0; i < ToolCount(); ++i) {
    SetActiveToolIndex(i);
    auto* tool = ObjectAs<TTool>(GetTool(i));
    if (tool == nullptr) continue;
    tool->SetParameters(GetParameters());
    tool->SetInput(GetInput());
    tool->DoIt();
    SetOutput(tool->GetOutput());
    SetInput(GetOutput());
  }
}

void TSelectTechnology::SetElseTool(TTool* tool) {
  if (tool == nullptr) return;
  else_tool_ = tool;
  AddElement(tool);
}

void TSelectTechnology::DoIt() {
  TTool* tool = nullptr;
  if (SelIndex >= 0 && SelIndex < ToolCount()) tool = ObjectAs<TTool>(GetTool(SelIndex));
  if (tool == nullptr) tool = GetElseTool();
  if (tool == nullptr) return;
  tool->SetInput(GetInput());
  tool->DoIt();
  SetOutput(tool->GetOutput());
}

void TSelectTechnology::Publish(Publisher<TSelectTechnology>& p) {
  p.Property(u"ElseTool", &TSelectTechnology::GetElseTool, &TSelectTechnology::SetElseTool);
  p.Property(u"SelIndex", &TSelectTechnology::SelIndex, &TSelectTechnology::SetSelIndex);
}

void TIterateTechnology::DoIt() {
  TTool::DoIt();
  bool again = false;
  TestIterace(again);
}

bool CreateAndExecuteTool(StringView class_name, TElement* input) {
  std::unique_ptr<TElement> created(CreateElementByName(class_name));
  if (created == nullptr) return false;
  auto* tool = ObjectAs<TTool>(created.get());
  if (tool == nullptr) return false;
  tool->SetInput(input);
  tool->DoIt();
  return true;
}

}  // namespace veska
