// The main technology of an application whose host shows what tools report.  Tools post their
// progress and their text reports without a receiver, so the world hands them to its main tool;
// this one passes them on to the host application: the progress messages drive the host's
// progress display (Application().StartProgress and the rest, whose ProgressChanged hook a host
// overrides to draw it), and text reports go to the message sink in the order they were posted.
// Every other message is a technology's as usual.
#pragma once

#include "kernel/tools/technology.h"

namespace veska {

class THostTechnology : public TTechnology {
  VESKA_CLASS(THostTechnology, TTechnology, kToolsUnit)
 public:
  void HandleMessage(TVeskaMessage* message, bool& handled) override;
};

}  // namespace veska
