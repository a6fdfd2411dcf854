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

class TNameElement : public TElement {
  VESKA_CLASS(TNameElement, TElement, u"Elements")
 public:
  String GetName() const override;
  void SetName(const String& name) override;
  bool StoreName() const override;
  int32_t GetInstanceSize() const override;
  void Load(TReader& reader, TEntity* table) override;
  void Save(TWriter& writer) override;

 protected:
  String FName;
};

class TOwnerElement : public TNameElement {
  VESKA_CLASS(TOwnerElement, TNameElement, u"Elements")
 public:
  ~TOwnerElement() override;

  TEntity* GetOwnerEntity(int index) const override;
  void PutOwner(int index, TEntity* entity) override;
  int32_t GetOwnersCount() const override;
  void AddOwner(TEntity* entity) override;
  void RemoveOwner(TEntity* entity) override;
  bool IsMyOwner(const TEntity* entity) const override;
  bool NoOwners() const override;
  TEntity* FindOwnerClass(const ClassInfo& cls) const override;
  TEntity* FindOwnerName(const String& name) const override;
  bool KeepsOwners() const override { return true; }

 private:
  OwnerList owners_;
};

class TNameEntity : public TEntity {
  VESKA_CLASS(TNameEntity, TEntity, u"Elements")
 public:
  String GetName() const override;
  void SetName(const String& name) override;
  bool StoreName() const override;
  int32_t GetInstanceSize() const override;
  void Load(TReader& reader, TEntity* table) override;
  void Save(TWriter& writer) override;

 protected:
  String FName;
};

class TOwnerEntity : public TNameEntity {
  VESKA_CLASS(TOwnerEntity, TNameEntity, u"Elements")
 public:
  ~TOwnerEntity() override;

  TEntity* GetOwnerEntity(int index) const override;
  void PutOwner(int index, TEntity* entity) override;
  int32_t GetOwnersCount() const override;
  void AddOwner(TEntity* entity) override;
  void RemoveOwner(TEntity* entity) override;
  bool IsMyOwner(const TEntity* entity) const override;
  bool NoOwners() const override;
  TEntity* FindOwnerClass(const ClassInfo& cls) const override;
  TEntity* FindOwnerName(const String& name) const override;
  bool KeepsOwners() const override { return true; }

  // The member of that name (case ignored), or a new element of the class inserted in name
  // order; an empty name stands for "no name".
  TElement* CreateSubEntity(const ClassInfo& cls, const String& name);
  // Inserts the element among the members kept in name order (ordinal comparison).
  void InsertNameSortedEntity(TElement* element);

 private:
  OwnerList owners_;
};

class TAliasElement : public TOwnerElement {
  VESKA_CLASS(TAliasElement, TOwnerElement, u"Elements")
 public:
  TElement* Target() const { return target_; }
  void SetTarget(TElement* target) { target_ = target; }

 private:
  TElement* target_ = nullptr;  // not owned
};

// An entity of alias elements: names that stand for other elements.
class TAliases : public TEntity {
  VESKA_CLASS(TAliases, TEntity, u"Elements")
 public:
  TElement* GetAlias(const String& name);
  void SetAlias(const String& name, TElement* element);
};

class TStringEntity : public TOwnerEntity {
  VESKA_CLASS(TStringEntity, TOwnerEntity, u"Elements")
 public:
  String Value;
  void SetValue(const String& value) { Value = value; }

  static void Publish(Publisher<TStringEntity>& p) {
    p.Property(u"Value", &TStringEntity::Value, &TStringEntity::SetValue);
  }
};

}  // namespace veska
