// The recursor: a technology that walks an element tree depth first from its Input, asking
// hooks for each element whether to process it before descending, whether to descend and
// whether to process it after.  TRecursorWithTools answers the hooks with three tools, so that a
// walk is assembled from tools in a file without new code.
//
// The walk is iterative: however deep the tree, it takes no more of the call stack than a
// shallow one.  GoInside opens an entity (Level goes up, the count of its members is taken) and
// its members are visited right after GoInside returns, in index order, skipping empty slots;
// then Level goes down and the entity's after hook runs.  An override of GoInside that calls the
// inherited one therefore sees the members visited after it returns, not during the call.
// Called outside a walk, GoInside visits the members before it returns.
#pragma once

#include <cstdint>
#include <vector>

#include "kernel/tools/technology.h"

namespace veska {

inline constexpr std::u16string_view kRecursorUnit = u"Recursor";

class TRecursor : public TTechnology {
  VESKA_CLASS(TRecursor, TTechnology, kRecursorUnit)
 public:
  bool NotInside = false;  // never descend below the start element
  int32_t Level = 0;       // the current depth, 1 at the start element

  void SetNotInside(bool value) { NotInside = value; }
  void SetLevel(int32_t level) { Level = level; }

  // Opens the members of an entity for the walk; nothing with NotInside or for a non-entity.
  virtual void GoInside(TElement* element);
  // Here: whether the element is an entity.
  virtual bool QGoInside(TElement* element);
  virtual bool QProcessBefore(TElement* /*element*/) { return false; }
  virtual bool QProcessAfter(TElement* /*element*/) { return false; }
  virtual void Process(TElement* /*element*/) {}
  virtual void PrepareOutPut() {}
  // Level := 1, then PrepareOutPut and the walk from Input, when there is one.  It does not
  // run the inherited DoIt, deliberately: no tool of the technology runs.
  void DoIt() override;

  static void Publish(Publisher<TRecursor>& p);

 private:
  // An element being visited, with the members its GoInside opened.
  struct Visit {
    TElement* element;  // none for the members GoInside opens outside a walk
    TEntity* members = nullptr;
    int32_t next = 0;
    int32_t count = 0;
  };

  // Visits the start and everything it opens, until the walk is back at the start.
  void Walk(Visit start);
  // The before hook and the descent question of an element.
  Visit Enter(TElement* element);

  bool walking_ = false;
  TEntity* opened_ = nullptr;  // what GoInside opened during a walk, for the walk to take
};

class TRecursorWithTools : public TRecursor {
  VESKA_CLASS(TRecursorWithTools, TRecursor, kRecursorUnit)
 public:
  TTool* GetBeforeTool() const { return before_tool_.Get(); }
  void SetBeforeTool(TTool* tool) { before_tool_ = tool; }
  TTool* GetAfterTool() const { return after_tool_.Get(); }
  void SetAfterTool(TTool* tool) { after_tool_ = tool; }
  TTool* GetQGoInsideTool() const { return go_inside_tool_.Get(); }
  void SetQGoInsideTool(TTool* tool) { go_inside_tool_ = tool; }

  // The tool runs on the element and does the processing itself: the answer is always false.
  bool QProcessBefore(TElement* element) override;
  bool QProcessAfter(TElement* element) override;
  // True for an element that is not an entity, and without a QGoInsideTool; otherwise the tool
  // runs on the element and the answer is whether it left an Output.  Tools keep their Output
  // from one element to the next, so the tool must set or clear it on every run.
  bool QGoInside(TElement* element) override;

  static void Publish(Publisher<TRecursorWithTools>& p);

 private:
  WeakRef<TTool> before_tool_;
  WeakRef<TTool> after_tool_;
  WeakRef<TTool> go_inside_tool_;
};

}  // namespace veska
