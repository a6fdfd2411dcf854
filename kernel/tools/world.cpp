#include "kernel/tools/world.h"

#include <memory>

#include "kernel/classes/registry.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/date_time.h"
#include "kernel/platform/message_sink.h"

namespace veska {

TWorld::TWorld() : object_classes_(&VeskaClasses()), host_(&Application()) {
  object_classes_->SetName(u"ObjectClasses");
  previous_window_proc_ = host_->SetWindowProc([this](TWindowMessage& message) {
    if (message.Msg != kVeskaWindowMessage || message.WParam != kVeskaMessageWParam) return false;
    bool handled = false;
    HandleWinMessage(message, handled);
    return true;
  });
  previous_exception_handler_ = host_->SetOnException([this](const String& message) { HandleException(message); });
  if (World == nullptr) World = this;
}

TWorld::~TWorld() {
  host_->SetWindowProc(std::move(previous_window_proc_));
  host_->SetOnException(std::move(previous_exception_handler_));
  if (World == this) World = nullptr;
}

// The message is freed in every case, handled or not, and whatever its receiver does.
void TWorld::HandleWinMessage(TWindowMessage& message, bool& handled) {
  std::unique_ptr<TVeskaMessage> element_message(
      TVeskaMessage::FromWindowMessage(message.Msg, message.WParam, message.LParam));
  if (element_message == nullptr) return;
  if (element_message->Receiver == nullptr) element_message->Receiver = main_tool_.Get(*this);
  if (element_message->Receiver != nullptr) element_message->Receiver->HandleMessage(element_message.get(), handled);
}

void TWorld::HandleException(const String& message) {
  ShowMessage(u"World Level Error :" + message, MessageKind::Error);
}

TTechnology* TWorld::GetMainTool() {
  TTechnology* tool = main_tool_.Get(*this);
  if (tool == nullptr) Error();
  return tool;
}

TSystemRegister* TWorld::GetSysReg() { return CachedOrAddedPart(*this, system_register_, u"System register"); }
TWorkPlace* TWorld::GetWorkPlace() { return CachedOrAddedPart(*this, work_place_, u"Work place"); }
TObjectModel* TWorld::GetObjectModel() { return CachedOrAddedPart(*this, object_model_, u"Object model"); }

template <class Part>
void TWorld::ReplacePart(CachedPart<Part>& cache, Part* part) {
  if (Part* present = cache.Get(*this)) FreeElement(present);
  cache.Set(part);
  if (part != nullptr) AddElement(part);
}

void TWorld::SetMainTool(TTechnology* tool) { ReplacePart(main_tool_, tool); }
void TWorld::SetSysReg(TSystemRegister* part) { ReplacePart(system_register_, part); }
void TWorld::SetWorkPlace(TWorkPlace* part) { ReplacePart(work_place_, part); }
void TWorld::SetObjectModel(TObjectModel* part) { ReplacePart(object_model_, part); }

void TWorld::SetTestElement(TEntity* element) { TestedElement = element; }

// The directory part of the executable's name, with its separator.
String TWorld::GetApplicDir() const {
  const String exe_name = GetExeName();
  const std::size_t separator = exe_name.find_last_of(u"/\\");
  return separator == String::npos ? String() : exe_name.substr(0, separator + 1);
}

uint16_t TWorld::GetLifeCycleWatchTimeYear() const {
  return Life_Cycle_WatchTime == 0 ? 0 : static_cast<uint16_t>(YearOf(Life_Cycle_WatchTime));
}

void TWorld::SetLifeCycleWatchTimeYear(uint16_t year) {
  Life_Cycle_WatchTime = year == 0 ? 0 : EncodeDate(year, 12, 14);
}

uint16_t TWorld::GetLifeCycleWatchTimeMonth() const {
  return Life_Cycle_WatchTime == 0 ? 0 : static_cast<uint16_t>(MonthOf(Life_Cycle_WatchTime));
}

void TWorld::SetLifeCycleWatchTimeMonth(uint16_t month) {
  if (month < 1 || month > 12 || Life_Cycle_WatchTime == 0) return;
  Life_Cycle_WatchTime = EncodeDate(YearOf(Life_Cycle_WatchTime), month, 14);
}

String TWorld::GetLifeCycleWatchTimeString() const { return DateTimeToStr(Life_Cycle_WatchTime); }

void TWorld::SetLifeCycleWatchTimeString(const String& text) {
  TDateTime value = 0;
  if (!TryISO8601ToDate(text, value, true) && !TryStrToDateTime(text, value)) value = 0;
  Life_Cycle_WatchTime = value;
}

void TWorld::Publish(Publisher<TWorld>& p) {
  p.Property(u"ApplicExeName", &TWorld::GetExeName);
  p.Property(u"ApplicDir", &TWorld::GetApplicDir);
  p.Property(u"ApplicHelpFile", &TWorld::GetHelpFile, &TWorld::SetHelpFile);
  p.Property(u"ApplicHint", &TWorld::GetHint, &TWorld::SetHint);
  p.Property(u"ApplicShowHint", &TWorld::GetShowHint, &TWorld::SetShowHint);
  p.Property(u"ApplicHintColor", &TWorld::GetHintColor, &TWorld::SetHintColor);
  p.Property(u"ApplicHintPause", &TWorld::GetHintPause, &TWorld::SetHintPause);
  p.Property(u"ApplicTitle", &TWorld::GetTitle, &TWorld::SetTitle);
  p.WriteOnly(u"TestElement", &TWorld::SetTestElement);
  p.Property(u"MainTool", &TWorld::GetMainTool, &TWorld::SetMainTool);
  p.Property(u"SystemRegister", &TWorld::GetSysReg, &TWorld::SetSysReg);
  p.Property(u"ObjectClasses", &TWorld::GetObjectClasses, &TWorld::SetObjectClasses);
  p.Property(u"WorkPlace", &TWorld::GetWorkPlace, &TWorld::SetWorkPlace);
  p.Property(u"ObjectModel", &TWorld::GetObjectModel, &TWorld::SetObjectModel);
  p.Property(u"UID", &TWorld::UID, &TWorld::SetUID);
  p.Property(u"LifeCycleWatch", &TWorld::GetLifeCycleWatch, &TWorld::SetLifeCycleWatch);
  p.Property(u"LifeCycleWatchTime", &TWorld::GetLifeCycleWatchTime, &TWorld::SetLifeCycleWatchTime);
  p.Property(u"LifeCycleWatchTimeYear", &TWorld::GetLifeCycleWatchTimeYear, &TWorld::SetLifeCycleWatchTimeYear);
  p.Property(u"LifeCycleWatchTimeMonth", &TWorld::GetLifeCycleWatchTimeMonth, &TWorld::SetLifeCycleWatchTimeMonth);
  p.Property(u"LifeCycleWatchTimeString", &TWorld::GetLifeCycleWatchTimeString, &TWorld::SetLifeCycleWatchTimeString);
}

String MainToolPropString(StringView name) {
  if (World == nullptr) return {};
  TTechnology* tool = World->GetMainTool();
  return tool != nullptr ? GetPropStringByName(tool, name) : String();
}

}  // namespace veska
