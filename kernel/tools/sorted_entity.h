// Sorted entities: entities that keep their members in ascending order of a text key, so that a
// lookup by key is a binary search.  TSortedEntity sorts by name, numbers its members in order
// of addition and can refuse to hold one element twice; TCustomSortedEntity sorts by a key that
// its virtual Compare reads; TSortedByPropertyEntity by a named property read as text.  Keys
// compare as CompareText compares them, ignoring case.
//
// The order holds while members join through AddElement and their keys do not change: a member
// whose name or key property changes while held keeps its place, and the searches may then miss
// it.  Equal keys follow the search (FindSortedIndex): a new member goes directly after the
// equal member the search met, which keeps equal keys in order of addition only when the last
// member is the one met.
#pragma once

#include <cstdint>

#include "kernel/elements/named.h"

namespace veska {

inline constexpr std::u16string_view kSortedEntitiesUnit = u"SortedEntities";

class TSortedEntity : public TOwnerEntity {
  VESKA_CLASS(TSortedEntity, TOwnerEntity, kSortedEntitiesUnit)
 public:
  int32_t Counter = 0;  // the ID the next member gets
  bool NoDuplicates = false;

  void SetNoDuplicates(bool value) { NoDuplicates = value; }
  // Inserts the element at its place by name and gives it the next ID; with NoDuplicates, an
  // element held already (this very element, whatever its name) is left alone.
  void AddElement(TElement* element) override;
  // The index of a member of that name, or -1; `insert_index` as FindSortedIndex gives it.
  int FindIndex(const String& name, int& insert_index);
  TElement* FindElementName(const String& name) override;

  static void Publish(Publisher<TSortedEntity>& p);
};

class TCustomSortedEntity : public TOwnerEntity {
  VESKA_CLASS(TCustomSortedEntity, TOwnerEntity, kSortedEntitiesUnit)
 public:
  virtual int FindIndex(const String& key, int& insert_index);
  // The key against the member's key: negative when the key sorts before it.  Here the
  // member's key is its name.
  virtual int Compare(const String& key, TElement* element);
};

class TSortedByPropertyEntity : public TCustomSortedEntity {
  VESKA_CLASS(TSortedByPropertyEntity, TCustomSortedEntity, kSortedEntitiesUnit)
 public:
  String PropertyName;

  void SetPropertyName(const String& name) { PropertyName = name; }
  // The member's key is its property PropertyName as text; a member without it has the empty key.
  int Compare(const String& key, TElement* element) override;
  // Inserts the element at the place of its key; no duplicate check and no numbering.
  void AddElement(TElement* element) override;
  // A member whose key is `key`, or none.
  TElement* FindElementByProperty(const String& key) override;
  using TCustomSortedEntity::FindElementByProperty;

  static void Publish(Publisher<TSortedByPropertyEntity>& p);
};

}  // namespace veska
