#include "kernel/models/tool_model.h"

#include "kernel/models/model_parts.h"

namespace veska {

namespace {
constexpr StringView kToolsPart = u"TOOLS";
}  // namespace

TOwnerEntity* TToolModel::GetModelTools() { return FindOrCreatePart<TOwnerEntity>(*this, kToolsPart); }

bool TToolModel::GetNoModelTools() { return PartIsEmpty(*this, kToolsPart); }

void TToolModel::SetNewToolName(const String& name) { AddNewMember<TToolModel>(GetModelTools(), name); }

TToolModel* TToolModel::GetLastToolModel() { return LastMemberOfPart<TToolModel>(*this, kToolsPart); }

void TToolModel::Publish(Publisher<TToolModel>& p) {
  p.Property(u"DynamicTool", &TToolModel::DynamicTool, &TToolModel::SetDynamicTool);
  p.Property(u"ModelTools", &TToolModel::GetModelTools).Stored(false);
  p.Property(u"NoModelTools", &TToolModel::GetNoModelTools).Stored(false);
  p.WriteOnly(u"NewToolName", &TToolModel::SetNewToolName).Stored(false);
  p.Property(u"LastTool", &TToolModel::GetLastToolModel).Stored(false);
  p.Property(u"ShortCut", &TToolModel::ShortCut, &TToolModel::SetShortCut);
}

}  // namespace veska
