// Named and owned elements and entities, aliases, and the string entity.
#pragma once

#include <memory>
#include <variant>

#include "kernel/elements/entity.h"

namespace veska {

// The owner bookkeeping shared by TOwnerElement and TOwnerEntity: the owner entities in the
// order they were added, duplicates kept, one entry per add.  Most elements have exactly one
// owner, so that one is held in place and a list is made only for a second.
class OwnerList {
 public:
  int32_t Count() const;
  TEntity* At(int index) const;
  void Add(TEntity* entity);
  // Index 0 appends; any other index inserts before that position.
  void Put(int index, TEntity* entity);
  void Remove(const TEntity* entity);  // the first entry equal to entity
  bool Contains(const TEntity* entity) const;

 private:
  TSuperList& MakeList();

  std::variant<std::monostate, TEntity*, std::unique_ptr<TSuperList>> owners_;
};

// The name that TNameElement and TNameEntity add to their bases: stored, empty by default, the
// class name standing in for it while it is empty, streamed after the base's part.
template <class Base>
class WithName : public Base {
 public:
  String GetName() const override { return FName.empty() ? this->ClassName() : FName; }
  void SetName(const String& name) override { FName = name; }
  // Unnamed elements write no Name property.
  bool StoreName() const override { return !FName.empty(); }
  void Load(TReader& reader, TEntity* table) override;
  // Deliberately GetName: an unnamed element writes its class name and reads back with it.
  void Save(TWriter& writer) override;

 protected:
  String FName;
};

// The owner bookkeeping that TOwnerElement and TOwnerEntity add to their bases.
template <class Base>
class WithOwners : public Base {
 public:
  void PutOwner(int index, TEntity* entity) override { owners_.Put(index, entity); }
  int32_t GetOwnersCount() const override { return owners_.Count(); }
  void AddOwner(TEntity* entity) override { owners_.Add(entity); }
  void RemoveOwner(TEntity* entity) override { owners_.Remove(entity); }
  bool IsMyOwner(const TEntity* entity) const override { return owners_.Contains(entity); }
  bool NoOwners() const override { return owners_.Count() == 0; }
  bool KeepsOwners() const override { return true; }

 protected:
  // The first owner, in list order, that passes the test; with look_through_envelopes an
  // envelope is replaced by the entity it wraps, before the test and in the answer.
  template <class Test>
  TEntity* FirstOwner(Test test, bool look_through_envelopes) const;

  OwnerList owners_;
};

extern template class WithName<TElement>;
extern template class WithName<TEntity>;

class TNameElement : public WithName<TElement> {
  VESKA_CLASS(TNameElement, WithName<TElement>, kElementsUnit)
 public:
  int32_t GetInstanceSize() const override;
};

class TOwnerElement : public WithOwners<TNameElement> {
  VESKA_CLASS(TOwnerElement, WithOwners<TNameElement>, kElementsUnit)
 public:
  ~TOwnerElement() override;

  TEntity* GetOwnerEntity(int index) const override;
  TEntity* FindOwnerClass(const ClassInfo& cls) const override;
  TEntity* FindOwnerName(const String& name) const override;
};

class TNameEntity : public WithName<TEntity> {
  VESKA_CLASS(TNameEntity, WithName<TEntity>, kElementsUnit)
 public:
  int32_t GetInstanceSize() const override;
};

class TOwnerEntity : public WithOwners<TNameEntity> {
  VESKA_CLASS(TOwnerEntity, WithOwners<TNameEntity>, kElementsUnit)
 public:
  ~TOwnerEntity() override;

  TEntity* GetOwnerEntity(int index) const override;
  TEntity* FindOwnerClass(const ClassInfo& cls) const override;
  TEntity* FindOwnerName(const String& name) const override;

  // The member of that name (case ignored), or a new element of the class inserted in name
  // order; an empty name stands for "no name".
  TElement* CreateSubEntity(const ClassInfo& cls, const String& name);
  // Inserts the element among the members kept in name order (ordinal comparison).
  void InsertNameSortedEntity(TElement* element);
};

class TAliasElement : public TOwnerElement {
  VESKA_CLASS(TAliasElement, TOwnerElement, kElementsUnit)
 public:
  TElement* Target() const { return target_; }
  void SetTarget(TElement* target) { target_ = target; }

 private:
  TElement* target_ = nullptr;  // not owned
};

// An entity of alias elements: names that stand for other elements.
class TAliases : public TEntity {
  VESKA_CLASS(TAliases, TEntity, kElementsUnit)
 public:
  TElement* GetAlias(const String& name);
  void SetAlias(const String& name, TElement* element);
};

class TStringEntity : public TOwnerEntity {
  VESKA_CLASS(TStringEntity, TOwnerEntity, kElementsUnit)
 public:
  String Value;
  void SetValue(const String& value) { Value = value; }

  static void Publish(Publisher<TStringEntity>& p) {
    p.Property(u"Value", &TStringEntity::Value, &TStringEntity::SetValue);
  }
};

}  // namespace veska
