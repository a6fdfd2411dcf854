#include "kernel/tools/technology.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "kernel/classes/registry.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/date_time.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/tools/host_technology.h"
#include "kernel/tools/tool.h"
#include "kernel/tools/tools_unit.h"
#include "kernel/tools/world.h"
#include "tests/support/elements_members.h"
#include "tests/support/recording_host.h"

namespace veska {
namespace {

using test::Named;
using test::RecordingHost;
using Texts = std::vector<String>;

// A tool that may refuse to quit and can set the second break bit.
class TTestTool : public TResultTool {
  VESKA_CLASS(TTestTool, TResultTool, u"tool_test")
 public:
  bool may_quit = true;
  bool IsPossibleToQuit() override { return may_quit; }
  void RequestBreakTwice() { SetFlag(ToolState::BreakSecondRequest, true); }
};

TEST(Tool, QuittingBreaksActivityAndParametersKeepTheirRules) {
  RecordingHost host;
  std::unique_ptr<TOwnerEntity> owner(Named<TOwnerEntity>(u"owner"));
  auto* tool = Named<TTestTool>(u"tool", {owner.get()});
  tool->DoIt();
  TVeskaMessage quit(tm_QuitTask, nullptr, tool, nullptr, false);
  bool handled = false;
  for (bool may_quit : {false, true}) {
    tool->may_quit = may_quit;
    tool->HandleMessage(&quit, handled);
    host.ProcessMessages();
    EXPECT_EQ(tool->IsRunning(), !may_quit);
  }
  EXPECT_EQ(host.delivered, Texts{u"1 tool>owner - "});  // from the second quit only

  // Either break bit reads as a break; withdrawing it clears both.
  tool->RequestBreakTwice();
  EXPECT_TRUE(tool->GetBreak());
  tool->SetPropertyStringByName(u"BreakWork", u"True");
  tool->SetPropertyStringByName(u"BreakWork", u"False");
  EXPECT_EQ(tool->State(), 0);

  // Zero activity waits while high activity is on, whose end is announced to the tool itself.
  tool->SetHighActivity(true);
  EXPECT_FALSE(tool->ReadyForZeroActivity());
  tool->SetHighActivity(false);
  host.ProcessMessages();
  EXPECT_EQ(host.delivered.back(), u"30 tool>tool - ");

  for (StringView value : {u"1", u"2"}) {
    auto* parameter = Named<TStringEntity>(u"Speed");
    parameter->Value = String(value);
    SetObjectPropByName(tool, u"NextParameter", parameter);
  }
  EXPECT_EQ(static_cast<TStringEntity*>(tool->GetNameParameter(u"Speed"))->Value, u"2");
}

struct ProgressHost : TApplication {
  ProgressHost() { SetApplication(this); }
  ~ProgressHost() override { SetApplication(nullptr); }
  void ProgressChanged(TProgressEvent event, const TProgressState& state) override {
    constexpr const char16_t* kEvents[] = {u"start ", u"position ", u"maximum ", u"text ", u"end "};
    changes.push_back(kEvents[static_cast<int>(event)] + state.Caption + u" " + IntToStr(state.Position) + u"/" +
                      IntToStr(state.Max) + u" " + state.Text);
  }
  Texts changes;
};

// Progress reaches the host through a world whose main tool is a host technology, as do texts.
TEST(Tool, ProgressReachesTheHostOnlyOnceStartedOnTheMainThreadAndEndsWithTheTool) {
  ProgressHost host;
  CapturedMessages shown;
  EXPECT_EQ(MainToolPropString(u"Name"), u"");  // no world yet
  TWorld world;
  world.SetMainTool(Named<THostTechnology>(u"main"));
  EXPECT_EQ(MainToolPropString(u"Name"), u"main");
  std::unique_ptr<TTool> tool(Named<TTool>(u"tool"));
  tool->SetProgress(1);  // not started: nothing
  std::thread([&] { tool->StartProgress(u"elsewhere", 0, 9); }).join();
  tool->SetNoProgress(true);
  tool->StartProgress(u"muted", 0, 9);
  tool->SetMaxProgress(5);
  host.ProcessMessages();
  EXPECT_TRUE(host.changes.empty());

  tool->SetNoProgress(false);
  tool->StartProgress(u"Načítání", 1, 200);  // shown at once: the host's queue is processed
  EXPECT_EQ(host.changes, Texts{u"start Načítání 1/200 "});
  tool->SetProgress(50);
  tool->SetMaxProgress(300);
  tool->SetProgressText(u"půlka");
  tool->PostTextMsg(tm_Text, u"pozor", nullptr);
  tool.reset();
  EXPECT_EQ(host.changes, (Texts{u"start Načítání 1/200 ", u"position Načítání 50/200 ", u"maximum Načítání 50/300 ",
                                 u"text Načítání 50/300 půlka", u"end Načítání 50/300 půlka"}));
  EXPECT_EQ(shown.Texts(), Texts{u"pozor"});

  // Other messages are the technology's: a tool of it that ended its task is freed.
  auto* main_tool = world.GetMainTool();
  main_tool->AddTool(Named<TTool>(u"done"));
  ObjectAs<TTool>(main_tool->GetTool(0))->PostMsgToOwners(tm_EndTask, nullptr, false);
  host.ProcessMessages();
  EXPECT_EQ(main_tool->ToolCount(), 0);
}

// Values go into the tool unless the property model only links; each property model's links are
// taken by the indices of the property list, so a missing one raises and extra ones never run.
TEST(Tool, ItsModelSetsItUpAndTakesItsValuesBack) {
  RecordingHost host;
  TTestTool tool;
  tool.SetName(u"tool");
  tool.CreateSelfByModel();
  host.ProcessMessages();
  EXPECT_EQ(host.delivered, Texts{u"8 tool>- - Tool: tool class: TTestTool Has no model!"});

  auto* model = Named<TToolModel>(u"tool");
  model->ElementClassName = u"TTestTool";
  model->DynamicTool = true;
  tool.SetSelfModel(model);
  model->GetModelProperties()->SetPropertyStringByName(u"Result", u"set");
  model->GetModelProperties()->SetPropertyStringByName(u"Error", u"7");
  model->GetLastPropertyModel()->LinkOnly = true;
  tool.CreateSelfByModel();
  EXPECT_EQ(tool.Result + u"|" + IntToStr(tool.Error) + u"|" + tool.GetPropertyStringByName(u"DynamicTool"),
            u"set|0|True");

  tool.Error = 9;
  tool.UpdateModel();
  EXPECT_EQ(model->GetLastPropertyModel()->Value, u"9");
  model->GetLastPropertyModel()->SetNewDestinationLink(model->GetModelProperties()->PropertyModel(u"Result"));
  EXPECT_THROW(tool.CreateSelfByModel(), EListError);
  EXPECT_EQ(tool.Result, u"9");  // the link of the link-only property model ran first
}

TEST(ToolsUnit, RegistersItsClassesInOrderAfterTheToolModel) {
  int32_t expected_id = VeskaClasses().GetVeskaClassByName(u"TToolModel")->ID;
  for (const ClassInfoSource class_info : kToolsUnitClasses.classes) {
    const TVeskaClass* record = VeskaClasses().GetVeskaClassByName(class_info().Name());
    EXPECT_EQ(record != nullptr ? record->ID : -1, ++expected_id) << ToUtf8(class_info().Name());
  }
}

// Remembers what it worked on, puts itself out as its result, and may ask for a break.
class TStepTool : public TTool {
  VESKA_CLASS(TStepTool, TTool, u"technology_test")
 public:
  TElement* worked_on = nullptr;
  void DoIt() override {
    TTool::DoIt();
    worked_on = GetInput();
    SetOutput(this);
    SetBreak(GetName() == u"breaks");
  }
};

// A technology of three step tools, made from its model as a file or script makes them.
template <class Technology>
std::unique_ptr<Technology> MadeFromModel(std::initializer_list<StringView> tool_classes, bool dynamic = false) {
  [[maybe_unused]] static const bool registered = (RegisterVeskaClass<TStepTool>(), true);
  std::unique_ptr<Technology> technology(Named<Technology>(u"technology"));
  auto* model = new TToolModel;
  model->SetPropertyStringByName(u"DynamicTool", dynamic ? u"True" : u"False");
  for (StringView tool_class : tool_classes) {
    model->SetPropertyStringByName(u"NewToolName", u"step" + IntToStr(model->GetModelTools()->ElementsCount()));
    model->GetLastToolModel()->SetPropertyStringByName(u"ElementClassName", String(tool_class));
  }
  technology->SetSelfModel(model);
  technology->CreateSelfByModel();
  return technology;
}

TEST(Technology, ASequenceRunsEveryToolOnThePreviousOnesOutput) {
  auto sequence = MadeFromModel<TSeqTechnology>({u"TStepTool", u"TStepTool", u"TStepTool"});
  ASSERT_EQ(sequence->ToolCount(), 3);
  sequence->GetTool(0)->SetName(u"breaks");  // asks for a break, which nothing in a sequence heeds
  TNameElement input;
  sequence->SetInput(&input);
  sequence->DoIt();
  const auto step = [&](int i) { return static_cast<TStepTool*>(sequence->GetTool(i)); };
  EXPECT_EQ(step(0)->worked_on, &input);
  EXPECT_EQ(step(2)->worked_on, step(1));
  EXPECT_EQ(sequence->GetOutput(), step(2));
  EXPECT_EQ(sequence->GetInput(), step(2));
  EXPECT_EQ(step(2)->GetParameters(), sequence->GetParameters());  // shared
  sequence->DoIt();  // again: each tool lets the shared list go and takes it anew
  EXPECT_EQ(step(0)->GetParameters(), sequence->GetParameters());
  sequence->SetActiveToolIndex(5);
  EXPECT_EQ(sequence->GetActiveToolIndex(), -1);
}

TEST(Technology, ModelsOfUnknownClassesOrOfNoToolsAreReportedAndSkipped) {
  test::RecordingHost host;
  auto technology = MadeFromModel<TTechnology>({u"TNoSuchTool", u"TEntity", u"TStepTool"});
  host.ProcessMessages();
  EXPECT_EQ(host.delivered,
            (Texts{u"8 technology>- - Unknown class: TNoSuchTool", u"8 technology>- - Class: TEntity is not a Tool"}));
  ASSERT_EQ(technology->ToolCount(), 1);
  EXPECT_EQ(MadeFromModel<TTechnology>({u"TStepTool"}, true)->ToolCount(), 0);  // dynamic: later

  // A tool that ended its task is freed.
  TVeskaMessage end(tm_EndTask, technology->GetTool(0), technology.get(), nullptr, false);
  bool handled = false;
  technology->HandleMessage(&end, handled);
  EXPECT_EQ(technology->ToolCount(), 0);
}

// Without a tool at SelIndex the else tool runs, which a model attaches by its property name.
TEST(Technology, ASelectionRunsTheToolAtItsIndexOrElseTheElseTool) {
  auto selection = MadeFromModel<TSelectTechnology>({u"TStepTool", u"TStepTool"});
  auto* else_model = Named<TToolModel>(u"else", {selection->GetSelfModel()->GetModelTools()});
  else_model->ElementClassName = u"TStepTool";
  else_model->AttachToPropertyName = u"ElseTool";
  selection->CreateToolByModel(else_model);
  ASSERT_NE(selection->GetElseTool(), nullptr);
  for (int32_t index : {1, 3, -1}) {
    selection->SelIndex = index;
    selection->DoIt();
    EXPECT_EQ(selection->GetOutput(), index == 1 ? selection->GetTool(1) : selection->GetElseTool()) << index;
  }
  EXPECT_FALSE(selection->IsRunning());
}

// Zero activity asks every tool, and ends for every tool.
TEST(Technology, QuestionsGoToItsTools) {
  auto technology = MadeFromModel<TTechnology>({u"TStepTool", u"TStepTool"});
  static_cast<TTool*>(technology->GetTool(0))->SetHighActivity(true);
  EXPECT_FALSE(technology->ReadyForZeroActivity());
  auto* second = static_cast<TTool*>(technology->GetTool(1));
  EXPECT_TRUE(second->GetZeroActivity());
  technology->EndZeroActivity();
  EXPECT_FALSE(second->GetZeroActivity());
  SetObjectPropByName(technology.get(), u"ActiveTool", second);
  EXPECT_EQ(GetObjectPropByName(technology.get(), u"ActiveTool"), second);
  technology->DestroyDynamicPart();  // values back into the models, then the tools go
  EXPECT_EQ(technology->ToolCount(), 0);
  EXPECT_TRUE(CreateAndExecuteTool(u"TStepTool", nullptr));
  EXPECT_FALSE(CreateAndExecuteTool(u"TEntity", nullptr));
}

// A main tool that notes the messages it is handed, and fails on message 7.
class TListeningTechnology : public TSeqTechnology {
  VESKA_CLASS(TListeningTechnology, TSeqTechnology, u"tools_test")
 public:
  Texts heard;
  void HandleMessage(TVeskaMessage* message, bool& handled) override {
    if (message->Message == 7) throw Exception(u"sedmička");
    heard.push_back(IntToStr(message->Message) + u">" + message->Receiver->GetName());
    TSeqTechnology::HandleMessage(message, handled);
  }
};

// Posted messages go to their receiver, else to the main tool, and are freed in every case;
// what a receiver throws is shown as the world's error.
TEST(World, DeliversPostedMessagesAndShowsTheErrorsThatReachIt) {
  TApplication host;
  SetApplication(&host);
  CapturedMessages shown;
  {
    TWorld world;
    ASSERT_EQ(World, &world);
    world.PostMsg(5, nullptr, nullptr, false);  // no receiver, no main tool: freed unread
    host.ProcessMessages();
    auto* main_tool = Named<TListeningTechnology>(u"main");
    world.SetMainTool(main_tool);
    for (int32_t message : {5, 7}) world.PostMsg(message, nullptr, nullptr, false);
    main_tool->PostMsg(6, main_tool, nullptr, false);
    host.ProcessMessages();
    EXPECT_EQ(main_tool->heard, (Texts{u"5>main", u"6>main"}));
    EXPECT_EQ(world.GetObjectClasses(), &VeskaClasses());
    EXPECT_EQ(world.GetObjectClasses()->GetName(), u"ObjectClasses");
  }
  EXPECT_EQ(World, nullptr);
  EXPECT_EQ(shown.Texts(), Texts{u"World Level Error :sedmička"});
  SetApplication(nullptr);
}

TEST(World, PartsAreMadeOnceAndReplacedOnesAreFreed) {
  TWorld world;
  TSystemRegister* system_register = world.GetSysReg();
  EXPECT_EQ(world.GetSysReg(), system_register);
  EXPECT_EQ(
      system_register->GetName() + u"|" + world.GetWorkPlace()->GetName() + u"|" + world.GetObjectModel()->GetName(),
      u"System register|Work place|Object model");
  EXPECT_EQ(world.GetMainTool(), nullptr);
  const WeakRef<TTechnology> first(new TTechnology);
  world.SetMainTool(first.Get());
  world.SetMainTool(new TTechnology);
  EXPECT_EQ(first.Get(), nullptr);
  EXPECT_EQ(world.ElementsCount(), 4);
}

// The year and month views set the 14th (of December for a year), deliberately.
TEST(World, TheWatchTimeViewsSetTheFourteenth) {
  TWorld world;
  const auto watch_time = [&] { return world.GetPropertyStringByName(u"LifeCycleWatchTimeString"); };
  world.SetPropertyStringByName(u"LifeCycleWatchTimeYear", u"2030");
  EXPECT_EQ(world.GetLifeCycleWatchTime(), EncodeDate(2030, 12, 14));
  for (StringView month : {u"3", u"13", u"0"}) world.SetPropertyStringByName(u"LifeCycleWatchTimeMonth", String(month));
  EXPECT_EQ(world.GetLifeCycleWatchTime(), EncodeDate(2030, 3, 14));
  world.SetPropertyStringByName(u"LifeCycleWatchTimeString", u"2031-05-01");
  EXPECT_EQ(world.GetLifeCycleWatchTime(), EncodeDate(2031, 5, 1)) << ToUtf8(watch_time());
  world.SetPropertyStringByName(u"LifeCycleWatchTimeString", u"nikdy");
  EXPECT_EQ(world.GetPropertyStringByName(u"LifeCycleWatchTimeYear"), u"0");
  world.SetLifeCycleWatchTimeMonth(4);  // no time: nothing to change
  EXPECT_EQ(world.GetLifeCycleWatchTime(), 0);
}

}  // namespace
}  // namespace veska
