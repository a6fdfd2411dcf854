#include "kernel/tools/sorted_entity.h"

#include "kernel/elements/sorted_search.h"

namespace veska {
namespace {

// A member's key; an empty slot has the empty key.
String NameOf(const TElement* element) { return element != nullptr ? element->GetName() : String(); }

// Inserts at the place the search gave; -1 appends with the entity's plain add.
void AddAt(TEntity& entity, int insert_index, TElement* element) {
  if (insert_index < 0) {
    entity.TEntity::AddElement(element);
  } else {
    entity.InsertElement(insert_index, element);
  }
}

}  // namespace

void TSortedEntity::AddElement(TElement* element) {
  if (element == nullptr) return;
  if (NoDuplicates && IndexOf(element) >= 0) return;
  int insert_index = -1;
  FindIndex(element->GetName(), insert_index);
  AddAt(*this, insert_index, element);
  element->ID = Counter++;
}

int TSortedEntity::FindIndex(const String& name, int& insert_index) {
  return FindSortedIndex(
      ElementsCount(), [&](int index) { return CompareText(name, NameOf(Get(index))); }, insert_index);
}

TElement* TSortedEntity::FindElementName(const String& name) {
  int insert_index = -1;
  const int index = FindIndex(name, insert_index);
  return index >= 0 ? Get(index) : nullptr;
}

void TSortedEntity::Publish(Publisher<TSortedEntity>& p) {
  p.Property(u"NoDuplicates", &TSortedEntity::NoDuplicates, &TSortedEntity::SetNoDuplicates);
}

int TCustomSortedEntity::FindIndex(const String& key, int& insert_index) {
  return FindSortedIndex(
      ElementsCount(), [&](int index) { return Compare(key, Get(index)); }, insert_index);
}

int TCustomSortedEntity::Compare(const String& key, TElement* element) { return CompareText(key, NameOf(element)); }

int TSortedByPropertyEntity::Compare(const String& key, TElement* element) {
  return CompareText(key, element != nullptr ? element->GetPropertyStringByName(PropertyName) : String());
}

void TSortedByPropertyEntity::AddElement(TElement* element) {
  if (element == nullptr) return;
  int insert_index = -1;
  FindIndex(element->GetPropertyStringByName(PropertyName), insert_index);
  AddAt(*this, insert_index, element);
}

TElement* TSortedByPropertyEntity::FindElementByProperty(const String& key) {
  int insert_index = -1;
  const int index = FindIndex(key, insert_index);
  return index >= 0 ? Get(index) : nullptr;
}

void TSortedByPropertyEntity::Publish(Publisher<TSortedByPropertyEntity>& p) {
  p.Property(u"PropertyName", &TSortedByPropertyEntity::PropertyName, &TSortedByPropertyEntity::SetPropertyName);
}

}  // namespace veska
