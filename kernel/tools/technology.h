// Technologies: tools that hold and run other tools.  A technology's tools are created from the
// tool models of its own tool model (ModelTools), each tool taking its model as its self model,
// so that links between the models connect the tools' properties.  TSeqTechnology runs every
// tool in order, each working on the previous one's output; TSelectTechnology runs the tool at
// SelIndex, or its ElseTool; TIterateTechnology is the frame for repeated runs.
#pragma once

#include <cstdint>

#include "kernel/tools/tool.h"

namespace veska {

// The list of a technology's tools: an envelope, so that it answers for the technology.
class TTools : public TEnvelopeEntity {
  VESKA_CLASS(TTools, TEnvelopeEntity, kToolsUnit)
};

class TTechnology : public TTool {
  VESKA_CLASS(TTechnology, TTool, kToolsUnit)
 public:
  // The tool at the active index; none when there is no such tool.
  virtual TTool* GetActiveTool();
  virtual int32_t GetActiveToolIndex() { return active_tool_index_; }
  virtual void SetActiveTool(TTool* tool);
  // An index outside the list sets -1.
  virtual void SetActiveToolIndex(int32_t index);
  virtual void AddToolProc(TTool* tool) { AddTool(tool); }
  virtual void AddTool(TTool* tool);
  // The tool its model describes, added to the technology and set up from the model; none, with
  // a text message for an unknown class or one that is not a tool, when it cannot be made.
  virtual TTool* CreateToolByModel(TToolModel* model);
  virtual TElement* CreateTool(const String& class_name, const String& name);
  virtual void InsertTool(int index, TTool* tool);
  virtual void RemoveTool(TTool* tool);
  virtual void FreeTool(TTool* tool);

  // All tools are asked; the first that may not quit answers.
  bool IsPossibleToQuit() override;
  // Every tool is asked, so that each enters the state; true only when all of them may.
  bool ReadyForZeroActivity() override;
  void EndZeroActivity() override;
  // The tool's own set-up, then the tools of the model unless the technology is dynamic.
  void CreateSelfByModel() override;
  void CreateDynamicPart() override;
  // Writes the values back into the models, then frees the tools.
  void DestroyDynamicPart() override;
  void UpdateModel() override;
  // A tool that ended its task is freed.
  void on_tm_EndTask(TVeskaMessage* message) override;

  TTools* GetTools();
  bool GetNoTools();
  int32_t ToolCount() { return GetNoTools() ? 0 : GetTools()->ElementsCount(); }
  TElement* GetTool(int index) { return GetTools()->Get(index); }
  void PutTool(int index, TTool* tool) { GetTools()->Put(index, tool); }
  TElement* GetToolByName(const String& name) { return GetTools()->FindElementName(name); }
  void SetNewToolByModel(TToolModel* model) { CreateToolByModel(model); }
  void SetToolToFree(TTool* tool) { FreeTool(tool); }
  // Keeps a tool in a field of a descendant: the tool there before is freed, and the new one
  // joins the list (tested for membership only when the field was empty).
  void ExchangeFieldTool(TTool*& field, TTool* tool);

  static void Publish(Publisher<TTechnology>& p);

 protected:
  // Each tool of the list, in index order, that is a tool.
  template <class Action>
  void ForEachTool(Action action);

 private:
  CachedPart<TTools> tools_;
  int32_t active_tool_index_ = -1;
};

// Runs every tool in order; each takes the technology's parameters and works on the output of
// the one before.  Nothing stops the sequence: neither BreakWork nor a tool's Error is asked.
class TSeqTechnology : public TTechnology {
  VESKA_CLASS(TSeqTechnology, TTechnology, kToolsUnit)
 public:
  void DoIt() override;
};

// Runs the tool at SelIndex, or ElseTool when there is none.  It sets no running bit,
// deliberately.
class TSelectTechnology : public TTechnology {
  VESKA_CLASS(TSelectTechnology, TTechnology, kToolsUnit)
 public:
  int32_t SelIndex = 0;

  TTool* GetElseTool() const { return else_tool_.Get(); }
  // Stores the tool and adds it to the technology's elements; none changes nothing.
  void SetElseTool(TTool* tool);
  void SetSelIndex(int32_t index) { SelIndex = index; }
  void DoIt() override;

  static void Publish(Publisher<TSelectTechnology>& p);

 private:
  WeakRef<TTool> else_tool_;
};

// Runs, then asks TestIterace whether another pass is due; a descendant decides there, and
// does the pass in Iterate.  Here both do nothing.
class TIterateTechnology : public TTechnology {
  VESKA_CLASS(TIterateTechnology, TTechnology, kToolsUnit)
 public:
  void DoIt() override;
  virtual void TestIterace(bool& /*again*/) {}
  virtual void Iterate() {}
};

// Creates the element of that class, gives it the input, runs it and frees it; false when no
// tool was made (an unknown class, or one that is not a tool, which is freed unrun).
bool CreateAndExecuteTool(StringView class_name, TElement* input);

}  // namespace veska
