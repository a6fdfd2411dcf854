#include "kernel/tools/tool.h"

#include <exception>

#include "kernel/platform/application.h"
#include "kernel/platform/message_sink.h"

namespace veska {

void TProgressMessage::Publish(Publisher<TProgressMessage>& p) {
  p.Property(u"MaxProgress", &TProgressMessage::MaxProgress, &TProgressMessage::SetMaxProgress);
  p.Property(u"Progress", &TProgressMessage::Progress, &TProgressMessage::SetProgress);
  p.Property(u"MinProgress", &TProgressMessage::MinProgress, &TProgressMessage::SetMinProgress);
  p.Property(u"ProcessName", &TProgressMessage::ProcessName, &TProgressMessage::SetProcessName);
}

// --- TTool --------------------------------------------------------------------------------------

// A tool freed in the middle of its progress ends it first, so that the display is not left
// waiting for an end that never comes.
TTool::~TTool() {
  try {
    EndProgress();
  } catch (const std::exception& error) {
    ShowMessage(u"TTool.Destroy\r\n" + FromUtf8(error.what()), MessageKind::Error);
  }
}

void TTool::SetFlag(ToolState bit, bool on) {
  const auto mask = static_cast<uint16_t>(bit);
  state_ = on ? static_cast<uint16_t>(state_ | mask) : static_cast<uint16_t>(state_ & ~mask);
}

TParameters* TTool::GetParameters() { return CachedOrAddedPart(*this, parameters_); }

void TTool::SetParameters(TParameters* parameters) {
  if (TParameters* present = parameters_.Get(*this)) FreeElement(present);
  parameters_.Set(parameters);
  if (parameters != nullptr) AddElement(parameters);
}

bool TTool::GetNoParameters() { return PartIsEmpty(parameters_.Get(*this)); }

void TTool::AddParameter(TElement* element) { GetParameters()->AddElement(element); }
TElement* TTool::GetParameter(int index) { return GetParameters()->Get(index); }
void TTool::PutParameter(int index, TElement* element) { GetParameters()->Put(index, element); }
void TTool::FreeParameter(TElement* element) { GetParameters()->FreeElement(element); }
void TTool::FreeParameters() { GetParameters()->FreeAll(); }

TElement* TTool::GetNameParameter(const String& name) { return GetParameters()->GetElement(name); }

void TTool::SetNameParameter(const String& name, TElement* element) { GetParameters()->SetElement(name, element); }

void TTool::AddNamedParameter(TElement* element) {
  if (element != nullptr) SetNameParameter(element->GetName(), element);
}

String TTool::NumberToPropertyName(int32_t /*number*/) { return {}; }

String TTool::GetPropertyNumber(int32_t number) {
  const String name = NumberToPropertyName(number);
  return name.empty() ? String() : GetPropertyStringByName(name);
}

void TTool::SetPropertyNumber(int32_t number, const String& value) {
  const String name = NumberToPropertyName(number);
  if (!name.empty()) SetPropertyStringByName(name, value);
}

TToolModel* TTool::GetSelfModel() { return ObjectAs<TToolModel>(FindElementClass(TToolModel::StaticClassInfo())); }

void TTool::SetSelfModel(TToolModel* model) {
  if (TToolModel* present = GetSelfModel()) FreeElement(present);
  if (model != nullptr) AddElement(model);
}

void TTool::SetBreak(bool value) {
  if (value) {
    SetFlag(ToolState::BreakRequest, true);
  } else {
    SetFlag(ToolState::BreakRequest, false);
    SetFlag(ToolState::BreakSecondRequest, false);
  }
}

void TTool::SetHighActivity(bool value) {
  const bool ends = GetHighActivity() && !value;
  SetFlag(ToolState::HighActivity, value);
  if (ends && GetZeroActivity()) PostMsg(tm_HighActivityEnded, this, nullptr, false);
}

// Zero activity is asked for in any case; while high activity is on it waits, and the end of
// high activity announces that it may be entered now.
bool TTool::ReadyForZeroActivity() {
  SetFlag(ToolState::ZeroActivity, true);
  return !GetHighActivity();
}

void TTool::EndZeroActivity() { SetFlag(ToolState::ZeroActivity, false); }

void TTool::DoIt() { SetFlag(ToolState::Running, true); }

bool TTool::IsPossibleToQuit() { return true; }

void TTool::on_tm_QuitTask(TVeskaMessage* /*message*/) {
  if (!IsPossibleToQuit()) return;
  SetFlag(ToolState::Running, false);
  PostMsgToOwners(tm_EndTask, nullptr, false);
}

// Messages 0-3 of the task protocol go to their hooks, in the order of their numbers.
void TTool::HandleMessage(TVeskaMessage* message, bool& handled) {
  static constexpr void (TTool::*kTaskHooks[])(TVeskaMessage*) = {&TTool::on_tm_StartTask, &TTool::on_tm_EndTask,
                                                                  &TTool::on_tm_QuitTask, &TTool::on_tm_Done};
  handled = false;
  TOwnerEntity::HandleMessage(message, handled);
  if (handled || message == nullptr) return;
  const int32_t number = message->Message;
  if (number < tm_StartTask || number > tm_Done) return;
  const auto hook = kTaskHooks[number];
  (this->*hook)(message);
}

// The model's property values go into the tool's properties of their names (unless a property
// model only links), each property model's links run, and then the model's own.  The links of
// a property model are taken by the indices of the model's property list, deliberately: with
// fewer links than property models the first missing one raises EListError, and links beyond
// the count of property models do not run.
void TTool::CreateSelfByModel() {
  TToolModel* model = GetSelfModel();
  if (model == nullptr) {
    PostTextMsg(tm_Text, u"Tool: " + GetName() + u" class: " + ClassName() + u" Has no model!", nullptr);
    return;
  }
  DynamicTool = model->DynamicTool;
  const auto run = [](TElement* element) {
    if (auto* link = ObjectAs<TModelLink>(element)) link->Link();
  };
  if (!model->GetNoModelProperties()) {
    TModelProperties* properties = model->GetModelProperties();
    for (int i = 0; i < properties->ElementsCount(); ++i) {
      auto* property = ObjectAs<TPropertyModel>(properties->Get(i));
      if (property == nullptr) continue;
      if (!property->LinkOnly) SetPropertyStringByName(property->GetName(), property->Value);
      if (property->GetNoLinks()) continue;
      TOwnerEntity* links = property->GetLinks();
      for (int link = 0; link <= properties->GetLastIndex(); ++link) run(links->Get(link));
    }
  }
  if (!model->GetNoLinks()) {
    TOwnerEntity* links = model->GetLinks();
    for (int i = 0; i < links->ElementsCount(); ++i) run(links->Get(i));
  }
}

void TTool::UpdateModel() {
  TToolModel* model = GetSelfModel();
  if (model == nullptr || model->GetNoModelProperties()) return;
  TModelProperties* properties = model->GetModelProperties();
  for (int i = 0; i < properties->ElementsCount(); ++i) {
    if (auto* property = ObjectAs<TPropertyModel>(properties->Get(i))) {
      property->Value = GetPropertyStringByName(property->GetName());
    }
  }
}

void TTool::StartProgress(const String& name, int32_t min, int32_t max) {
  if (GetNoProgress() || !Application().IsMainThread()) return;
  auto* message = new TProgressMessage(tm_StartProgress, this, nullptr, nullptr, false);
  message->ProcessName = name;
  message->MinProgress = min;
  message->MaxProgress = max;
  message->Post();
  SetFlag(ToolState::InProgress, true);
  Application().ProcessMessages();
}

void TTool::PostProgress(int32_t message, void (TProgressMessage::*set)(int32_t), int32_t value) {
  if (!GetInProgress()) return;
  auto* progress = new TProgressMessage(message, this, nullptr, nullptr, false);
  (progress->*set)(value);
  progress->Post();
}

void TTool::SetProgress(int32_t progress) { PostProgress(tm_Progress, &TProgressMessage::SetProgress, progress); }

void TTool::SetMaxProgress(int32_t max) { PostProgress(tm_MaxProgress, &TProgressMessage::SetMaxProgress, max); }

void TTool::EndProgress() {
  if (!GetInProgress()) return;
  PostMsg(tm_EndProgress, nullptr, nullptr, false);
  SetFlag(ToolState::InProgress, false);
  Application().ProcessMessages();
}

void TTool::SetProgressText(const String& text) {
  if (GetInProgress()) PostTextMsg(tm_ProgressText, text, nullptr);
}

void TTool::Publish(Publisher<TTool>& p) {
  p.Property(u"Input", &TTool::GetInput, &TTool::SetInput).Stored(false);
  p.Property(u"Output", &TTool::GetOutput, &TTool::SetOutput).Stored(false);
  p.Property(u"Busy", &TTool::GetBusy, &TTool::SetBusy).Stored(false);
  p.Property(u"Idle", &TTool::GetIdle, &TTool::SetIdle).Stored(false);
  p.Property(u"ZeroActivity", &TTool::GetZeroActivity, &TTool::SetZeroActivity);
  p.Property(u"HighActivity", &TTool::GetHighActivity, &TTool::SetHighActivity);
  p.Property(u"InProgress", &TTool::GetInProgress, &TTool::SetInProgress).Stored(false);
  p.Property(u"BreakWork", &TTool::GetBreak, &TTool::SetBreak).Stored(false);
  p.Property(u"DynamicTool", &TTool::DynamicTool, &TTool::SetDynamicTool);
  p.Property(u"SelfModel", &TTool::GetSelfModel, &TTool::SetSelfModel).Stored(false);
  p.Field(u"Error", &TTool::Error).Stored(false);
  p.WriteOnly(u"NextParameter", &TTool::AddNamedParameter).Stored(false);
  p.Property(u"NoProgress", &TTool::GetNoProgress, &TTool::SetNoProgress);
  p.Property(u"Client", &TTool::Client, &TTool::SetClient);
  p.Property(u"MuteFileEvents", &TTool::MuteFileEvents, &TTool::SetMuteFileEvents).Stored(false);
}

void TResultTool::Publish(Publisher<TResultTool>& p) { p.Field(u"Result", &TResultTool::Result).Stored(false); }

void TBooleanTool::Publish(Publisher<TBooleanTool>& p) { p.Field(u"Result", &TBooleanTool::Result).Stored(false); }

}  // namespace veska
