#include "kernel/tools/technology.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "kernel/classes/registry.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/exceptions.h"
#include "kernel/tools/tool.h"
#include "kernel/tools/tools_unit.h"
#include "tests/support/elements_members.h"
#include "tests/support/recording_host.h"

namespace veska {
namespace {

using test::Named;
using test::RecordingHost;
using Texts = std::vector<String>;

String ProgressSummary(const TVeskaMessage& message) {
  const auto* progress = ObjectAs<const TProgressMessage>(const_cast<TVeskaMessage*>(&message));
  if (progress == nullptr) return test::Summary(message);
  return IntToStr(progress->Message) + u" " + progress->ProcessName + u" " + IntToStr(progress->MinProgress) + u".." +
         IntToStr(progress->Progress) + u".." + IntToStr(progress->MaxProgress);
}

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

TEST(Tool, ProgressIsPostedOnlyOnceStartedOnTheMainThreadAndEndsWithTheTool) {
  RecordingHost host(&ProgressSummary);
  std::unique_ptr<TTool> tool(Named<TTool>(u"tool"));
  tool->SetProgress(1);  // not started: nothing
  std::thread([&] { tool->StartProgress(u"elsewhere", 0, 9); }).join();
  tool->SetNoProgress(true);
  tool->StartProgress(u"muted", 0, 9);
  tool->SetMaxProgress(5);
  EXPECT_TRUE(host.delivered.empty());

  tool->SetNoProgress(false);
  tool->StartProgress(u"Načítání", 1, 200);  // delivered at once: the host's queue is processed
  EXPECT_EQ(host.delivered, Texts{u"10 Načítání 1..0..200"});
  tool->SetProgress(50);
  tool->SetMaxProgress(300);
  tool->SetProgressText(u"půlka");
  tool.reset();
  EXPECT_EQ(host.delivered, (Texts{u"10 Načítání 1..0..200", u"11  0..50..0", u"12  0..0..300", u"14 tool>- - půlka",
                                   u"13 tool>- - "}));
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

  auto* model = new TToolModel;
  model->SetName(u"tool");
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

}  // namespace
}  // namespace veska
