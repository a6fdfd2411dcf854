#include "cli/make_elements.h"

#include "kernel/classes/registry.h"
#include "kernel/platform/application.h"

namespace veska::cli {

void TMakeElements::DoIt() {
  TTool::DoIt();
  Error = 0;
  auto* made = new TOwnerEntity;
  made->SetName(u"elements");
  AddElement(made);  // the tool's to free, like everything it made
  SetOutput(made);
  StartProgress(u"Making " + IntToStr(Amount) + u" " + ElementClass, 0, Amount);
  // A step of the progress is a hundredth of the work, so the messages stay few at any count.
  const int32_t step = Amount / 100 + 1;
  for (int32_t made_count = 0; made_count < Amount && !GetBreak(); ++made_count) {
    TElement* element = CreateElementByName(ElementClass);
    if (element == nullptr) {
      Error = 1;
      break;
    }
    element->SetName(IntToStr(made_count + 1));
    made->AddElement(element);
    if ((made_count + 1) % step == 0) {
      SetProgress(made_count + 1);
      Application().ProcessMessages();  // the host shows the progress while the work goes on
    }
  }
  SetProgress(made->ElementsCount());
  EndProgress();
}

void TMakeElements::Publish(Publisher<TMakeElements>& p) {
  p.Property(u"ElementClass", &TMakeElements::ElementClass, &TMakeElements::SetElementClass);
  p.Property(u"Amount", &TMakeElements::Amount, &TMakeElements::SetAmount);
}

}  // namespace veska::cli
