// The tool model: the element model of a tool, which also names the tools that a technology
// creates from it ("TOOLS"), the tool's keyboard short cut and whether it is made dynamically.
#pragma once

#include "kernel/models/element_model.h"

namespace veska {

inline constexpr std::u16string_view kToolModelUnit = u"E_toolmodel";

class TToolModel : public TElementModel {
  VESKA_CLASS(TToolModel, TElementModel, kToolModelUnit)
 public:
  bool DynamicTool = false;
  String ShortCut;

  void SetDynamicTool(bool dynamic) { DynamicTool = dynamic; }
  void SetShortCut(const String& short_cut) { ShortCut = short_cut; }

  // The "TOOLS" part, created on first use; NoModelTools never creates it.
  TOwnerEntity* GetModelTools();
  bool GetNoModelTools();
  // Makes a tool model of that name among the model's tools.
  void SetNewToolName(const String& name);
  // The last of the model's tools; none when there are none.
  TToolModel* GetLastToolModel();

  static void Publish(Publisher<TToolModel>& p);
};

}  // namespace veska
