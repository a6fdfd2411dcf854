#include "cli/model_file_commands.h"

#include <exception>
#include <memory>

#include "cli/model_json.h"
#include "cli/model_tree.h"
#include "cli/tab_line.h"
#include "cli/usage_error.h"
#include "kernel/elements/entity.h"
#include "kernel/persistence/stream_loader.h"
#include "kernel/persistence/stream_saver.h"
#include "kernel/persistence/vsk_info.h"
#include "kernel/platform/application.h"
#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"

namespace veska::cli {
namespace {

// A model file loaded with TLoad under the program's world, and everything the loader made,
// freed with it.  What the loader says is collected, not shown: texts as diagnostics, a failure
// (an exception, or a message box of the older loader) as the error.
class LoadedModel {
 public:
  explicit LoadedModel(std::string_view file_name) {
    report_.file = FromUtf8(file_name);
    MessageSink previous = SetMessageSink([this](const String& text, MessageKind kind) {
      if (kind == MessageKind::Error) {
        report_.error = text;
      } else {
        report_.diagnostics.push_back(text);
      }
    });
    TLoad load;
    load.SetFileName(report_.file);
    load.SetContainerEntity(&loaded_);
    try {
      load.DoIt();
      report_.result = load.GetOutput();
    } catch (const Exception& error) {
      report_.error = error.Message();
    }
    Application().ProcessMessages();
    SetMessageSink(std::move(previous));
  }
  ~LoadedModel() { FreeElementSet(loaded_); }
  LoadedModel(const LoadedModel&) = delete;
  LoadedModel& operator=(const LoadedModel&) = delete;

  const LoadReport& Report() const { return report_; }
  TQuickEntity& Elements() { return loaded_; }

  // Shows the texts on stderr, and fails with the error when there is one.
  void ShowTextsOrFail() const {
    for (const String& text : report_.diagnostics) ShowMessage(text);
    if (report_.error) throw Exception(*report_.error);
  }

 private:
  LoadReport report_;
  TQuickEntity loaded_;  // lists, and does not own
};

}  // namespace

void ShowModelInfo(std::string_view file_name, std::FILE* out) {
  TLoadVSKInfo info;
  info.SetFileName(FromUtf8(file_name));
  info.DoIt();
  WriteTabLine(out, {info.Modul, info.Version, info.Comment, IntToStr(info.Error), info.ErrorText});
  if (info.Error != 0) throw ReportedFailure();
}

void ShowModelTree(std::string_view file_name, bool json, std::FILE* out) {
  LoadedModel model(file_name);
  const LoadReport& report = model.Report();
  const std::unique_ptr<ModelTree> tree = report.result != nullptr ? std::make_unique<ModelTree>(*report.result) : nullptr;
  if (tree != nullptr && tree->Truncated()) {
    ShowMessage(u"members deeper than " + IntToStr(ModelTree::kMaxDepth) + u" levels are not shown");
  }
  if (json) {
    const std::string document = ModelJson(report, tree.get()).dump(2, ' ', false, nlohmann::json::error_handler_t::replace);
    std::fprintf(out, "%s\n", document.c_str());
    if (report.error) throw ReportedFailure();
    return;
  }
  model.ShowTextsOrFail();
  if (tree != nullptr) WriteTreeText(*tree, out);
}

void ConvertModel(std::string_view in, std::string_view out) {
  LoadedModel model(in);
  model.ShowTextsOrFail();
  TElement* root = model.Report().result;
  if (root == nullptr) throw Exception(FromUtf8(in) + u": the file holds no element to write");
  const ModelTree reached(*root);
  int left_behind = 0;
  for (int i = 0; i < model.Elements().ElementsCount(); ++i) left_behind += reached.Holds(*model.Elements().Get(i)) ? 0 : 1;
  if (left_behind > 0) {
    ShowMessage(IntToStr(left_behind) + u" elements of " + FromUtf8(in) + u" are not reached from its result and are not written");
  }
  TLoadVSKInfo header;
  header.SetFileName(FromUtf8(in));
  header.DoIt();
  TStreamSaver saver;
  saver.SetFileName(FromUtf8(out));
  saver.SetModul(header.Modul);
  saver.SetVersion(header.Version);
  saver.SetComment(header.Comment);
  saver.SetInput(root);
  saver.DoIt();
  Application().ProcessMessages();
}

}  // namespace veska::cli
