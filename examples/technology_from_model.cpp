// A pipeline described entirely by a tool model, as a model file or a script describes it: the
// model names the tools by class and gives their settings, every piece written as a property by
// name, and a sequence technology creates the tools from it and runs them, each on the output
// of the one before, under a world that shows what the tools report.
//
// Build and run: examples/veska_example_technology_from_model
#include <veska/veska.h>

#include <cstdio>
#include <memory>

namespace report {

// Makes a text element of its Text.
class TReadText : public veska::TTool {
  VESKA_CLASS(TReadText, veska::TTool, u"Report")
 public:
  veska::String Text;
  void SetText(const veska::String& text) { Text = text; }
  void DoIt() override {
    TTool::DoIt();
    auto* value = new veska::TStringElement(Text);
    AddElement(value);  // the tool's to free
    SetOutput(value);
  }
  static void Publish(veska::Publisher<TReadText>& p) { p.Property(u"Text", &TReadText::Text, &TReadText::SetText); }
};

// Repeats the text of its input Times times; reports an input without text.
class TRepeatText : public veska::TTool {
  VESKA_CLASS(TRepeatText, veska::TTool, u"Report")
 public:
  int32_t Times = 1;
  void SetTimes(int32_t times) { Times = times; }
  void DoIt() override {
    TTool::DoIt();
    auto* input = veska::ObjectAs<veska::TTypeElement>(GetInput());
    if (input == nullptr) {
      PostTextMsg(veska::tm_Text, u"RepeatText: no text to repeat", nullptr);
      return;
    }
    veska::String repeated;
    for (int32_t i = 0; i < Times; ++i) repeated += (i > 0 ? u" " : u"") + input->GetAsString();
    auto* value = new veska::TStringElement(repeated);
    AddElement(value);
    SetOutput(value);
  }
  static void Publish(veska::Publisher<TRepeatText>& p) {
    p.Property(u"Times", &TRepeatText::Times, &TRepeatText::SetTimes);
  }
};

}  // namespace report

namespace {

// PATH.NAME=VALUE as a script writes it: the property NAME of what the path command PATH reaches.
void Write(veska::TElement& element, const veska::String& path_and_name, const veska::String& value) {
  const std::size_t dot = path_and_name.rfind(u'.');
  auto* target = veska::ObjectAs<veska::TElement>(element.ExecuteCommandLineToElement(path_and_name.substr(0, dot)));
  if (target == nullptr || !target->SetPropertyStringByName(path_and_name.substr(dot + 1), value)) {
    std::fprintf(stderr, "cannot write %s\n", veska::ToUtf8(path_and_name).c_str());
  }
}

}  // namespace

int main() {
  // The application's classes join the registry, so that models can name them.
  veska::RegisterVeskaClass<report::TReadText>();
  veska::RegisterVeskaClass<report::TRepeatText>();

  // The world delivers what tools post; its host technology shows their texts (on stderr here).
  veska::TWorld world;
  world.SetMainTool(new veska::THostTechnology);

  veska::TSeqTechnology pipeline;
  pipeline.AddElement(new veska::TToolModel);  // the technology's self model, still empty
  Write(pipeline, u"SelfModel.NewToolName", u"read");
  Write(pipeline, u"SelfModel.LastTool.ElementClassName", u"TReadText");
  Write(pipeline, u"SelfModel.LastTool.NewPropertyName", u"Text");
  Write(pipeline, u"SelfModel.LastTool.ModelProperties.Text", u"ahoj");
  Write(pipeline, u"SelfModel.NewToolName", u"repeat");
  Write(pipeline, u"SelfModel.LastTool.ElementClassName", u"TRepeatText");
  Write(pipeline, u"SelfModel.LastTool.NewPropertyName", u"Times");
  Write(pipeline, u"SelfModel.LastTool.ModelProperties.Times", u"3");

  pipeline.CreateSelfByModel();  // creates "read" and "repeat", each set up from its model
  pipeline.DoIt();
  veska::Application().ProcessMessages();

  auto* result = veska::ObjectAs<veska::TTypeElement>(pipeline.GetOutput());
  std::printf("%d tools, result: %s\n", pipeline.ToolCount(),
              result != nullptr ? veska::ToUtf8(result->GetAsString()).c_str() : "none");
  return result != nullptr && result->GetAsString() == u"ahoj ahoj ahoj" ? 0 : 1;
}
