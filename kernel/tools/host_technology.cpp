#include "kernel/tools/host_technology.h"

#include "kernel/platform/application.h"
#include "kernel/platform/message_sink.h"

namespace veska {

void THostTechnology::HandleMessage(TVeskaMessage* message, bool& handled) {
  TApplication& host = Application();
  handled = true;
  const auto* progress = ObjectAs<TProgressMessage>(message);
  const auto* text = ObjectAs<TVeskaTextMessage>(message);
  switch (message != nullptr ? message->Message : -1) {
    case tm_Text:
      if (text != nullptr) ShowMessage(text->GetMessageText());
      return;
    case tm_StartProgress:
      if (progress != nullptr) host.StartProgress(progress->ProcessName, progress->MinProgress, progress->MaxProgress);
      return;
    case tm_Progress:
      if (progress != nullptr) host.SetProgress(progress->Progress);
      return;
    case tm_MaxProgress:
      if (progress != nullptr) host.SetMaxProgress(progress->MaxProgress);
      return;
    case tm_EndProgress:
      host.EndProgress();
      return;
    case tm_ProgressText:
      if (text != nullptr) host.SetProgressText(text->GetMessageText());
      return;
    default:
      TTechnology::HandleMessage(message, handled);
  }
}

}  // namespace veska
