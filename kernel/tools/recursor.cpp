#include "kernel/tools/recursor.h"

#include <utility>

#include "kernel/platform/scoped_value.h"

namespace veska {

void TRecursor::DoIt() {
  Level = 1;
  TElement* input = GetInput();
  if (input == nullptr) return;
  PrepareOutPut();
  Walk(Enter(input));
}

bool TRecursor::QGoInside(TElement* element) { return ObjectAs<TEntity>(element) != nullptr; }

void TRecursor::GoInside(TElement* element) {
  auto* entity = ObjectAs<TEntity>(element);
  if (NotInside || entity == nullptr) return;
  ++Level;
  if (walking_) {
    opened_ = entity;
    return;
  }
  Walk(Visit{nullptr, entity, 0, entity->ElementsCount()});
}

TRecursor::Visit TRecursor::Enter(TElement* element) {
  if (QProcessBefore(element)) Process(element);
  opened_ = nullptr;
  {
    const ScopedValue walking(walking_, true);
    if (QGoInside(element)) GoInside(element);
  }
  TEntity* members = std::exchange(opened_, nullptr);
  return Visit{element, members, 0, members != nullptr ? members->ElementsCount() : 0};
}

void TRecursor::Walk(Visit start) {
  std::vector<Visit> visits{start};
  while (!visits.empty()) {
    Visit& visit = visits.back();
    if (visit.members != nullptr && visit.next < visit.count) {
      TElement* member = visit.members->Get(visit.next++);
      if (member != nullptr) visits.push_back(Enter(member));
      continue;
    }
    const Visit done = visit;
    visits.pop_back();
    if (done.members != nullptr) --Level;
    if (done.element != nullptr && QProcessAfter(done.element)) Process(done.element);
  }
}

void TRecursor::Publish(Publisher<TRecursor>& p) {
  p.Property(u"NotInside", &TRecursor::NotInside, &TRecursor::SetNotInside);
  p.Property(u"Level", &TRecursor::Level, &TRecursor::SetLevel);
}

namespace {

// Runs the tool, when there is one, on the element.
bool RunOn(TTool* tool, TElement* element) {
  if (tool == nullptr) return false;
  tool->SetInput(element);
  tool->DoIt();
  return true;
}

}  // namespace

bool TRecursorWithTools::QProcessBefore(TElement* element) {
  RunOn(GetBeforeTool(), element);
  return false;
}

bool TRecursorWithTools::QProcessAfter(TElement* element) {
  RunOn(GetAfterTool(), element);
  return false;
}

bool TRecursorWithTools::QGoInside(TElement* element) {
  if (ObjectAs<TEntity>(element) == nullptr) return true;
  TTool* tool = GetQGoInsideTool();
  if (!RunOn(tool, element)) return true;
  return tool->GetOutput() != nullptr;
}

void TRecursorWithTools::Publish(Publisher<TRecursorWithTools>& p) {
  p.Property(u"BeforeTool", &TRecursorWithTools::GetBeforeTool, &TRecursorWithTools::SetBeforeTool);
  p.Property(u"AfterTool", &TRecursorWithTools::GetAfterTool, &TRecursorWithTools::SetAfterTool);
  p.Property(u"QGoInsideTool", &TRecursorWithTools::GetQGoInsideTool, &TRecursorWithTools::SetQGoInsideTool);
}

}  // namespace veska
