// The inheritance model: a tree of nodes that mirrors the inheritance of registered element
// classes, so that a setting given for a class covers its descendants unless a more specific
// node overrides it.
//
// Each node (TInheritanceModel) stands for one class and keeps its children in an "ITEMS" list
// (TModelItems).  The root (TInheritanceModelEntity) is driven by writing its command
// properties: NewClassName inserts a node, FindClassName selects the most specific node for a
// class, ActualClassName and DeleteActualItem replace or remove the selected node, and Error
// tells how the last command went.
//
// None of these classes is registered; the system register's class models descend from them.
#pragma once

#include <cstdint>

#include "kernel/elements/named.h"
#include "kernel/models/model_parts.h"
#include "kernel/platform/object_handles.h"

namespace veska {

inline constexpr std::u16string_view kInheritanceModelUnit = u"E_inhmdl";

// The children of a node.  Its name is always "ITEMS", so that it is found among the node's
// elements and shows under that name in saved files.
class TModelItems : public TEnvelopeEntity {
  VESKA_CLASS(TModelItems, TEnvelopeEntity, kInheritanceModelUnit)
 public:
  String GetName() const override { return u"ITEMS"; }
};

class TInheritanceModel : public TOwnerEntity {
  VESKA_CLASS(TInheritanceModel, TOwnerEntity, kInheritanceModelUnit)
 public:
  // The children, created on first use; a list that a loader put among the node's elements is
  // found and kept instead.
  virtual TModelItems* GetItems();
  // Whether the node has no children (the list is created to answer).
  virtual bool GetNoItems();
  // Inserts a node below this one, where its class belongs; see the implementation.
  virtual void SetNextItem(TInheritanceModel* item);
  // Sets the class, and names the node after it unless it is none.
  virtual void SetEClass(const ClassInfo* cls);
  // Looks the class up by name; an unknown name sets none and leaves the node's name.
  virtual void SetClassName(const String& name);
  // The most specific node below (or at) this one that covers the class: the first child that
  // covers it is followed, without going back to later siblings.  None when no node with a
  // class covers it.
  virtual TInheritanceModel* GetItemForClass(const ClassInfo* cls);
  virtual TInheritanceModel* GetItemForClassName(const String& name);
  // Whether this node covers the class: it has no class, or the class is its class or descends
  // from it.
  virtual bool ItsMyClass(const ClassInfo* cls) const;

  void AddItem(TInheritanceModel* item);
  // The child at the index (from 0); a bad index raises EListError.
  TElement* GetItem(int index);
  String GetClassName() const;
  const ClassInfo* ElementClass() const { return class_; }

  static void Publish(Publisher<TInheritanceModel>& p);

 private:
  const ClassInfo* class_ = nullptr;
  CachedPart<TModelItems> items_;
};

// The root of an inheritance model with its command interface.  Error codes, fixed because
// scripts and files compare against them:
//   0 success, 1 the class is known but no node covers it, 2 no registered class has the name,
//   3 there is no actual item.
class TInheritanceModelEntity : public TInheritanceModel {
  VESKA_CLASS(TInheritanceModelEntity, TInheritanceModel, kInheritanceModelUnit)
 public:
  static constexpr int32_t kErrorNone = 0;
  static constexpr int32_t kErrorNotCovered = 1;
  static constexpr int32_t kErrorUnknownClass = 2;
  static constexpr int32_t kErrorNoActualItem = 3;

  int32_t Error = kErrorNone;

  // The class name of the actual item; "NIL", with Error 3, when there is none.
  virtual String GetActualClassName();
  virtual bool GetIsError() const { return Error > 0; }
  virtual void SetNewClassName(const String& name);
  // Frees the actual item and inserts a node for the named class in its place.
  virtual void SetActualClassName(const String& name);
  virtual void SetFindClassName(const String& name);
  // Frees the actual item.  Error is then 3, as there is no actual item any more.
  virtual void SetDeleteAI(bool value);
  // The class of which new nodes are made; descendants name their own kind of node.
  virtual const ClassInfo& GetItemClass() const;

  TInheritanceModel* ActualItem() const { return actual_item_.Get(); }
  String GetItemClassName();
  // Any name that is not of a registered descendant of TInheritanceModel sets
  // TInheritanceModel.
  void SetItemClassName(const String& name);

  static void Publish(Publisher<TInheritanceModelEntity>& p);

 private:
  // The class of new nodes: the one last set, else the one this kind of root makes.
  const ClassInfo& ItemClass();
  void FreeActualItem();

  const ClassInfo* item_class_ = nullptr;
  WeakRef<TInheritanceModel> actual_item_;  // a node of the tree, owned by its parent's list
};

}  // namespace veska
