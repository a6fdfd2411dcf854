#include "kernel/models/inheritance_model.h"

#include <unordered_set>
#include <vector>

#include "kernel/classes/registry.h"

namespace veska {

namespace {

// Whether the class is the ancestor class or descends from it.  A node without a class takes
// part in no such relation: it is neither moved under a new node nor followed by one.
bool ClassInherits(const ClassInfo* cls, const ClassInfo* ancestor) {
  return cls != nullptr && ancestor != nullptr && cls->InheritsFrom(*ancestor);
}

}  // namespace

// --- TInheritanceModel ------------------------------------------------------------------------

TModelItems* TInheritanceModel::GetItems() {
  if (TModelItems* items = items_.Get(*this)) return items;
  auto* items = ObjectAs<TModelItems>(FindElementClass(TModelItems::StaticClassInfo()));
  if (items == nullptr) {
    items = new TModelItems;
    AddElement(items);
  }
  items_.Set(items);
  return items;
}

bool TInheritanceModel::GetNoItems() { return GetItems()->ElementsCount() == 0; }

void TInheritanceModel::AddItem(TInheritanceModel* item) { GetItems()->AddElement(item); }

TElement* TInheritanceModel::GetItem(int index) { return GetItems()->Get(index); }

// The walk goes from the last child down to the first, so that removing a child keeps the
// indices still to come.  A child of the new node's class or of a descendant class moves under
// the new node; a child whose class the new node's class descends from takes the new node into
// its own subtree, and the walk still goes on with the lower siblings, any of which may move
// under the new node wherever it ended up.  A node placed nowhere below joins this node's
// children.  The descent keeps its path on the heap, as a loaded tree may be deep, and enters
// each node once, as a loaded tree may hold a cycle.
void TInheritanceModel::SetNextItem(TInheritanceModel* item) {
  if (item == nullptr || IsInOwners(item)) return;
  struct Level {
    TInheritanceModel* node;
    int next_index;
  };
  std::vector<Level> path{{this, GetItems()->ElementsCount() - 1}};
  std::unordered_set<const TInheritanceModel*> entered{this};
  while (!path.empty()) {
    Level& level = path.back();
    if (level.next_index < 0) {
      if (item->NoOwners()) level.node->AddItem(item);
      path.pop_back();
      continue;
    }
    TModelItems* items = level.node->GetItems();
    auto* child = ObjectAs<TInheritanceModel>(items->Get(level.next_index--));
    if (child == nullptr) continue;
    if (ClassInherits(child->class_, item->class_)) {
      if (item->IsInOwners(child)) continue;
      items->RemoveElement(child);
      item->AddItem(child);
    } else if (ClassInherits(item->class_, child->class_) && entered.insert(child).second) {
      path.push_back({child, child->GetItems()->ElementsCount() - 1});
    }
  }
}

void TInheritanceModel::SetEClass(const ClassInfo* cls) {
  class_ = cls;
  if (cls != nullptr) SetName(cls->Name());
}

void TInheritanceModel::SetClassName(const String& name) { SetEClass(GetVeskaClass(name)); }

String TInheritanceModel::GetClassName() const { return class_ != nullptr ? class_->Name() : String(); }

bool TInheritanceModel::ItsMyClass(const ClassInfo* cls) const {
  return class_ == nullptr || ClassInherits(cls, class_);
}

// Each step follows the first child that covers the class and answers with what that child
// answers, so the loop is the descent without the call stack.  Past a depth that no class
// hierarchy reaches, the nodes seen are remembered, so that a loaded tree with a cycle in it
// ends the descent where the cycle closes.
TInheritanceModel* TInheritanceModel::GetItemForClass(const ClassInfo* cls) {
  constexpr int kDepthWithoutCycles = 256;
  std::unordered_set<const TInheritanceModel*> seen_deep;
  TInheritanceModel* node = this;
  for (int depth = 0;; ++depth) {
    TInheritanceModel* provisional = node->class_ != nullptr ? node : nullptr;
    if (node->class_ == cls) return provisional;
    TModelItems* items = node->GetItems();
    const int count = items->ElementsCount();
    if (count == 0 || (depth > kDepthWithoutCycles && !seen_deep.insert(node).second)) return provisional;
    TInheritanceModel* covering = nullptr;
    for (int i = 0; i < count && covering == nullptr; ++i) {
      auto* child = ObjectAs<TInheritanceModel>(items->Get(i));
      if (child != nullptr && child->ItsMyClass(cls)) covering = child;
    }
    if (covering == nullptr) return provisional;
    node = covering;
  }
}

TInheritanceModel* TInheritanceModel::GetItemForClassName(const String& name) {
  return GetItemForClass(GetVeskaClass(name));
}

void TInheritanceModel::Publish(Publisher<TInheritanceModel>& p) {
  p.Property(u"Items", &TInheritanceModel::GetItems).Stored(false);
  p.Property(u"NoItems", &TInheritanceModel::GetNoItems).Stored(false);
  p.WriteOnly(u"NextItem", &TInheritanceModel::SetNextItem).Stored(false);
  p.Property(u"ElementClassName", &TInheritanceModel::GetClassName, &TInheritanceModel::SetClassName);
}

// --- TInheritanceModelEntity ------------------------------------------------------------------

const ClassInfo& TInheritanceModelEntity::GetItemClass() const { return TInheritanceModel::StaticClassInfo(); }

const ClassInfo& TInheritanceModelEntity::ItemClass() {
  if (item_class_ == nullptr) item_class_ = &GetItemClass();
  return *item_class_;
}

String TInheritanceModelEntity::GetItemClassName() { return ItemClass().Name(); }

void TInheritanceModelEntity::SetItemClassName(const String& name) {
  const ClassInfo* cls = GetVeskaClass(name);
  const bool makes_nodes = cls != nullptr && cls->InheritsFrom(TInheritanceModel::StaticClassInfo());
  item_class_ = makes_nodes ? cls : &TInheritanceModel::StaticClassInfo();
}

void TInheritanceModelEntity::SetNewClassName(const String& name) {
  actual_item_ = nullptr;
  Error = kErrorNone;
  if (name.empty()) return;
  const ClassInfo* cls = GetVeskaClass(name);
  if (cls == nullptr) {
    Error = kErrorUnknownClass;
    return;
  }
  TInheritanceModel* item = CreateObjectAs<TInheritanceModel>(ItemClass());
  if (item == nullptr) return;
  item->SetEClass(cls);
  actual_item_ = item;
  SetNextItem(item);
}

void TInheritanceModelEntity::SetFindClassName(const String& name) {
  Error = kErrorNone;
  const ClassInfo* cls = GetVeskaClass(name);
  if (cls == nullptr) {
    Error = kErrorUnknownClass;
    actual_item_ = nullptr;
    return;
  }
  TInheritanceModel* found = GetItemForClass(cls);
  actual_item_ = found;
  if (found == nullptr) Error = kErrorNotCovered;
}

String TInheritanceModelEntity::GetActualClassName() {
  if (TInheritanceModel* actual = ActualItem()) return actual->GetClassName();
  Error = kErrorNoActualItem;
  return u"NIL";
}

void TInheritanceModelEntity::SetActualClassName(const String& name) {
  Error = kErrorNone;
  if (ActualItem() == nullptr) {
    Error = kErrorNoActualItem;
    return;
  }
  FreeActualItem();
  SetNewClassName(name);
}

void TInheritanceModelEntity::SetDeleteAI(bool /*value*/) {
  if (ActualItem() == nullptr) return;
  FreeActualItem();
  Error = kErrorNoActualItem;
}

// The root selects itself when it has a class of its own; it is never freed by its own
// command, only deselected.
void TInheritanceModelEntity::FreeActualItem() {
  TInheritanceModel* actual = ActualItem();
  actual_item_ = nullptr;
  if (actual != this) actual->Free();
}

void TInheritanceModelEntity::Publish(Publisher<TInheritanceModelEntity>& p) {
  using Self = TInheritanceModelEntity;
  p.Property(u"ItemClassName", &Self::GetItemClassName, &Self::SetItemClassName);
  p.Property(u"ActualItem", &Self::ActualItem).Stored(false);
  p.WriteOnly(u"NewClassName", &Self::SetNewClassName).Stored(false);
  p.WriteOnly(u"FindClassName", &Self::SetFindClassName).Stored(false);
  p.Property(u"ActualClassName", &Self::GetActualClassName, &Self::SetActualClassName).Stored(false);
  p.WriteOnly(u"DeleteActualItem", &Self::SetDeleteAI).Stored(false);
  p.Property(u"IsError", &Self::GetIsError).Stored(false);
  p.Field(u"Error", &Self::Error).Stored(false);
}

}  // namespace veska
