// A tool of the veska program: makes Amount elements of the class ElementClass, named "1" to
// Amount, in a new entity that becomes its output, and shows its progress as it goes.  With it
// `veska run` builds a tree of any size, and shows the host at work:
//   veska run TMakeElements Amount=1000000 ElementClass=TStringEntity
// The program registers it after every class of the library, so no library class changes its
// registration number.
#pragma once

#include "kernel/tools/tool.h"

namespace veska::cli {

inline constexpr std::u16string_view kProgramUnit = u"veska";

class TMakeElements : public TTool {
  VESKA_CLASS(TMakeElements, TTool, kProgramUnit)
 public:
  String ElementClass = u"TOwnerElement";
  int32_t Amount = 0;

  void SetElementClass(const String& name) { ElementClass = name; }
  void SetAmount(int32_t amount) { Amount = amount; }
  // Error 1: the class is not registered (the library reports it); the entity keeps what was made.
  void DoIt() override;

  static void Publish(Publisher<TMakeElements>& p);
};

}  // namespace veska::cli
