// Members for the element tests: a named element made and added to its holders in one call, and
// the members of an entity as a vector to compare whole.
#pragma once

#include <initializer_list>
#include <vector>

#include "kernel/elements/named.h"

namespace veska::test {

// A new element of class T under that name (ignored by classes without a name), added to each
// holder in turn.
template <class T = TOwnerElement>
T* Named(const String& name, std::initializer_list<TEntity*> holders = {}) {
  auto* element = new T;
  element->SetName(name);
  for (TEntity* holder : holders) holder->AddElement(element);
  return element;
}

// The members of an entity in index order.
inline std::vector<TElement*> Members(TEntity& entity) {
  std::vector<TElement*> members;
  for (int i = 0; i < entity.ElementsCount(); ++i) members.push_back(entity.Get(i));
  return members;
}

}  // namespace veska::test
