// Tools: elements that do one piece of work when told to.  A tool is set up from its tool model
// (CreateSelfByModel), receives input and output elements and named parameters, runs through
// DoIt, reports progress as posted messages, and tells its owners when it has finished.
//
// Everything here runs on the thread that calls it; progress is reported only when it was
// started on the main thread, so that a tool run by a worker stays silent.
#pragma once

#include <cstdint>

#include "kernel/elements/message.h"
#include "kernel/elements/named.h"
#include "kernel/models/model_parts.h"
#include "kernel/models/tool_model.h"
#include "kernel/platform/object_handles.h"

namespace veska {

inline constexpr std::u16string_view kToolsUnit = u"Tools";

// Message numbers of progress and activity, posted by tools.
inline constexpr int32_t tm_StartProgress = 10;
inline constexpr int32_t tm_Progress = 11;
inline constexpr int32_t tm_MaxProgress = 12;
inline constexpr int32_t tm_EndProgress = 13;
inline constexpr int32_t tm_ProgressText = 14;
inline constexpr int32_t tm_HighActivityEnded = 30;

// The named parameters of a tool.
class TParameters : public TOwnerEntity {
  VESKA_CLASS(TParameters, TOwnerEntity, kToolsUnit)
};

// A plain owned element for tool settings.
class TToolProperties : public TOwnerElement {
  VESKA_CLASS(TToolProperties, TOwnerElement, kToolsUnit)
};

class TProgressMessage : public TVeskaMessage {
  VESKA_CLASS(TProgressMessage, TVeskaMessage, kToolsUnit)
 public:
  using TVeskaMessage::TVeskaMessage;

  int32_t MaxProgress = 0;
  int32_t Progress = 0;
  int32_t MinProgress = 0;
  String ProcessName;

  void SetMaxProgress(int32_t value) { MaxProgress = value; }
  void SetProgress(int32_t value) { Progress = value; }
  void SetMinProgress(int32_t value) { MinProgress = value; }
  void SetProcessName(const String& value) { ProcessName = value; }

  static void Publish(Publisher<TProgressMessage>& p);
};

// The bits of a tool's state word; the values are fixed.
enum class ToolState : uint16_t {
  Running = 1,
  Busy = 2,
  BreakRequest = 4,
  BreakSecondRequest = 8,
  InProgress = 32,
  NoProgress = 64,
  Idle = 128,
  ZeroActivity = 256,
  HighActivity = 512,
};

class TTool : public TOwnerEntity {
  VESKA_CLASS(TTool, TOwnerEntity, kToolsUnit)
 public:
  int32_t Error = 0;  // the result of the last run, 0 for success; the values are each tool's own
  bool DynamicTool = false;
  bool Client = false;
  int32_t MuteFileEvents = 0;

  ~TTool() override;

  virtual void SetInput(TElement* input) { input_ = input; }
  virtual void SetOutput(TElement* output) { output_ = output; }
  // The parameter list, made and added to the tool's elements on first use.
  virtual TParameters* GetParameters();
  // Frees the present list and takes this one.
  virtual void SetParameters(TParameters* parameters);
  virtual TElement* GetNameParameter(const String& name);
  virtual void SetNameParameter(const String& name, TElement* element);
  // True asks the tool to stop; false withdraws both requests.
  virtual void SetBreak(bool value);
  // Sets the running bit; descendants work, then call this or post the end of their task.
  virtual void DoIt();
  virtual bool IsPossibleToQuit();
  // Asks for the zero-activity state, which is entered at once unless high activity is on.
  virtual bool ReadyForZeroActivity();
  virtual void EndZeroActivity();
  // Sets the tool up from its self model; see the implementation.
  virtual void CreateSelfByModel();
  virtual void CreateDynamicPart() {}
  virtual void DestroyDynamicPart() {}
  // Writes the tool's present property values back into its model's property models.
  virtual void UpdateModel();
  virtual void on_tm_StartTask(TVeskaMessage* /*message*/) {}
  // Clears the running bit and tells the owners that the task ended, when the tool may quit.
  virtual void on_tm_QuitTask(TVeskaMessage* message);
  virtual void on_tm_EndTask(TVeskaMessage* /*message*/) {}
  virtual void on_tm_Done(TVeskaMessage* /*message*/) {}
  // The property that number n stands for; none in a plain tool.
  virtual String NumberToPropertyName(int32_t number);

  void HandleMessage(TVeskaMessage* message, bool& handled) override;

  TElement* GetInput() const { return input_.Get(); }
  TElement* GetOutput() const { return output_.Get(); }

  bool GetNoParameters();
  void AddParameter(TElement* element);
  TElement* GetParameter(int index);
  void PutParameter(int index, TElement* element);
  void FreeParameter(TElement* element);
  void FreeParameters();
  // Sets the element as the parameter of its own name, replacing one of that name.
  void AddNamedParameter(TElement* element);

  String GetPropertyNumber(int32_t number);
  void SetPropertyNumber(int32_t number, const String& value);

  TToolModel* GetSelfModel();
  void SetSelfModel(TToolModel* model);

  bool GetBusy() const { return HasFlag(ToolState::Busy); }
  void SetBusy(bool value) { SetFlag(ToolState::Busy, value); }
  bool GetIdle() const { return HasFlag(ToolState::Idle); }
  void SetIdle(bool value) { SetFlag(ToolState::Idle, value); }
  bool GetZeroActivity() const { return HasFlag(ToolState::ZeroActivity); }
  void SetZeroActivity(bool value) { SetFlag(ToolState::ZeroActivity, value); }
  bool GetHighActivity() const { return HasFlag(ToolState::HighActivity); }
  // Ending high activity while zero activity waits posts message 30 to the tool itself.
  void SetHighActivity(bool value);
  bool GetInProgress() const { return HasFlag(ToolState::InProgress); }
  void SetInProgress(bool value) { SetFlag(ToolState::InProgress, value); }
  bool GetBreak() const { return HasFlag(ToolState::BreakRequest) || HasFlag(ToolState::BreakSecondRequest); }
  bool GetNoProgress() const { return HasFlag(ToolState::NoProgress); }
  void SetNoProgress(bool value) { SetFlag(ToolState::NoProgress, value); }
  bool IsRunning() const { return HasFlag(ToolState::Running); }
  uint16_t State() const { return state_; }
  void SetDynamicTool(bool value) { DynamicTool = value; }
  void SetClient(bool value) { Client = value; }
  void SetMuteFileEvents(int32_t value) { MuteFileEvents = value; }

  // Progress, posted as messages 10-14.  Only a start on the main thread with NoProgress off
  // starts it; the other calls do nothing while it is not started.
  void StartProgress(const String& name, int32_t min, int32_t max);
  void SetProgress(int32_t progress);
  void SetMaxProgress(int32_t max);
  void EndProgress();
  void SetProgressText(const String& text);

  static void Publish(Publisher<TTool>& p);

 protected:
  bool HasFlag(ToolState bit) const { return (state_ & static_cast<uint16_t>(bit)) != 0; }
  void SetFlag(ToolState bit, bool on);

 private:
  void PostProgress(int32_t message, void (TProgressMessage::*set)(int32_t), int32_t value);

  uint16_t state_ = 0;
  CachedPart<TParameters> parameters_;
  WeakRef<TElement> input_;   // not owned
  WeakRef<TElement> output_;  // not owned
};

class TResultTool : public TTool {
  VESKA_CLASS(TResultTool, TTool, kToolsUnit)
 public:
  String Result;
  static void Publish(Publisher<TResultTool>& p);
};

class TBooleanTool : public TTool {
  VESKA_CLASS(TBooleanTool, TTool, kToolsUnit)
 public:
  bool Result = false;
  static void Publish(Publisher<TBooleanTool>& p);
};

// A tool whose result is a number, set by the tool itself; not published.
class TOrdinalTool : public TTool {
  VESKA_CLASS(TOrdinalTool, TTool, kToolsUnit)
 public:
  int32_t Result = 0;
  void SetResult(int32_t value) { Result = value; }
};

}  // namespace veska
