// Entities: elements that hold an ordered list of member elements.  TEntity keeps the owner
// bookkeeping of its members; TQuickEntity is the variant without it; TEnvelopeEntity is the
// envelope that answers for the entity it wraps.
#pragma once

#include <functional>
#include <memory>
#include <span>

#include "kernel/elements/element.h"

namespace veska {

class TEntity : public TElement {
  VESKA_CLASS(TEntity, TElement, kElementsUnit)
 public:
  TEntity() = default;
  ~TEntity() override;

  virtual int32_t ElementsCount();
  virtual int32_t GetLastIndex();
  virtual TElement* Get(int index);
  virtual void Put(int index, TElement* element);
  virtual int IndexOf(const TElement* element) const;
  virtual void FreeAll();
  virtual TElement* CreateElement(const String& class_name, const String& name);
  virtual void AddElement(TElement* element);
  virtual void InsertElement(int index, TElement* element);
  virtual void RemoveElement(TElement* element);
  virtual void RemoveElementIndex(int index);
  virtual void FreeElement(TElement* element);
  virtual void FreeElementIndex(int index);
  virtual TElement* FindElementClass(const ClassInfo& cls);
  virtual TElement* FindElementName(const String& name);
  virtual TElement* FindElementByProperty(const String& property_name, const String& value);
  virtual TElement* FindElementByProperty(const String& value);
  // Whether this entity lets another holder free a member it shares; never, unless a
  // descendant says so.
  virtual bool CanFreeElement(TElement* element);
  // Whether the stream loader must add a member only when it is not yet in the entity.
  virtual bool CheckLoadDuplicity();

  int32_t GetWholeSizes() override;
  void Load(TReader& reader, TEntity* table) override;
  void Save(TWriter& writer) override;
  bool NoElements() const override;
  TElement* CreateEnvelope() override;
  void HandleMessage(TVeskaMessage* message, bool& handled) override;
  void OnTimer() override;
  void ResetIDs() override;

  // The three ways of letting members go; see the implementation for how they differ.
  void HardFreeAll();
  void FastFreeAll();
  // Empties the list; nothing is freed and no member is told.
  void Clear();

  void ExchangeElements(TElement* a, TElement* b);
  void ExchangeElementsIndex(int i, int j);
  // The write-only commands that act on every member of another entity, in list order (the
  // reversed add in reverse order).
  void PAddAllFrom(TElement* source);
  void RAddAllFrom(TElement* source);
  void SetRemoveAllFrom(TElement* source);
  void SetFreeAllFrom(TElement* source);
  void SetElementToFree(TElement* element) { FreeElement(element); }
  TElement* FindOrCreateElementName(const ClassInfo& cls, const String& name);
  // Replaces the member held in a field of a descendant.
  void ExchangeFieldElement(TElement*& field, TElement* element);
  void GetElements(TEntity* source, int from, int to);
  int32_t GetClassCount(const ClassInfo& cls);
  int32_t GetWholeCount();
  int32_t GetWholeCounts();

  // Members by name, through the entity's alias table first.
  TElement* GetElement(const String& name);
  void SetElement(const String& name, TElement* element);

  static void Publish(Publisher<TEntity>& p);

 protected:
  TSuperList& Elements();  // the member list, created on first use
  bool HasList() const { return elements_ != nullptr; }
  // The change count of the member list (TList::Changes); 0 while there is no list.
  uint64_t ListChanges() const { return elements_ ? elements_->Changes() : 0; }
  // Frees or only releases a member that has left the list, as FreeElement does.
  void FreeOrRelease(TElement* element);
  // Adds the member to the list, telling it of its new owner when track_owner is set.
  void AddToList(TElement* element, bool track_owner);
  void InsertIntoList(int index, TElement* element, bool track_owner);

 private:
  friend class TSuperList;  // its fast free walks the member lists of a whole tree

  // The walk of FreeAll (ask_first) and HardFreeAll.
  void ReleaseMembers(bool ask_first);
  void ForAllFrom(TElement* source, bool last_first, void (TEntity::*action)(TElement*));
  // The member list of an entity; none for an element that is not one or has no list yet.
  static TSuperList* MemberList(TElement* element);
  // Walks the members reachable from this entity depth first, in list order, passing over
  // those that carry the current mark (BaseID).  visit(member) returns whether the walk goes
  // on into that member's own members.  The walk keeps its path on the heap, not the stack.
  void WalkUnmarkedMembers(const std::function<bool(TElement&)>& visit);

  std::unique_ptr<TSuperList> elements_;
};

class TQuickEntity : public TEntity {
  VESKA_CLASS(TQuickEntity, TEntity, kElementsUnit)
 public:
  void AddElement(TElement* element) override;
  void InsertElement(int index, TElement* element) override;
  // Writing true empties the list; false does nothing.
  void SetClearIt(bool value);

  static void Publish(Publisher<TQuickEntity>& p);
};

class TEnvelopeEntity : public TEntity {
  VESKA_CLASS(TEnvelopeEntity, TEntity, kElementsUnit)
 public:
  TEntity* Owner() const { return owner_; }
  void SetOwner(TEntity* owner) { owner_ = owner; }

  void AddOwner(TEntity* entity) override { SetOwner(entity); }
  void HandleMessage(TVeskaMessage* message, bool& handled) override;
  // The owner walks (FindClassInOwners and the two with an owner) climb from an envelope to
  // the entity it wraps; the element's walks know envelopes.
  TEntity* FindOwnerClass(const ClassInfo& cls) const override;

 private:
  TEntity* owner_ = nullptr;  // the wrapped entity; not owned
};

// Frees a set of elements that may list one another, such as everything a loader made, each
// element once in the set: the elements that no entity of the set lists are freed, and their
// members go with them; elements that list one another round a cycle, out of their reach, let
// their members go and are freed one by one.  An element listed by two entities of the set is
// freed once only if it keeps its owners.
void FreeElementSet(std::span<TElement* const> elements);
// The same for the members of a list that does not own them (a loader's container), which is
// left empty.
void FreeElementSet(TEntity& list);

}  // namespace veska
