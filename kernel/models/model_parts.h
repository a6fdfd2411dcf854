// The named parts of models: entities that a model keeps among its own elements under fixed
// upper-case names ("LINKS", "PROPERTIES", ...), found by name and created on first use, so that
// a model loaded from a file and one built by a program meet in the same place.
#pragma once

#include "kernel/elements/entity.h"

namespace veska {

// A part that its holder remembers once found or made.  It is taken while it is still one of
// the holder's members: a part freed or taken away since reads as none, and a member is alive,
// so its class can be asked.
template <class Part>
class CachedPart {
 public:
  Part* Get(const TEntity& holder) const {
    return part_ != nullptr && holder.IndexOf(part_) >= 0 ? ObjectAs<Part>(part_) : nullptr;
  }
  void Set(Part* part) { part_ = part; }

 private:
  TElement* part_ = nullptr;
};

// Adds a new Member of that name to the part and returns it; nothing when there is no part.
template <class Member>
Member* AddNewMember(TEntity* part, StringView name) {
  if (part == nullptr) return nullptr;
  auto* member = new Member;
  member->SetName(String(name));
  part->AddElement(member);
  return member;
}

// The cached part, or a new Part added to the holder's elements under that name and cached.
// Unlike FindOrCreatePart it does not look for a part already there.
template <class Part>
Part* CachedOrAddedPart(TEntity& holder, CachedPart<Part>& cache, StringView name = {}) {
  if (Part* part = cache.Get(holder)) return part;
  Part* part = AddNewMember<Part>(&holder, name);
  cache.Set(part);
  return part;
}

// The part of that name, created as a Part and added when there is none.  None when an element
// of that name is there but is not a Part: a file may hold anything under any name.
template <class Part>
Part* FindOrCreatePart(TEntity& holder, StringView name) {
  return ObjectAs<Part>(holder.FindOrCreateElementName(Part::StaticClassInfo(), String(name)));
}

// The part of that name when it is there and is an entity; never created.
inline TEntity* ExistingPart(TEntity& holder, StringView name) {
  return ObjectAs<TEntity>(holder.FindElementName(String(name)));
}

// Whether the part is missing or holds nothing.
inline bool PartIsEmpty(TEntity* part) { return part == nullptr || part->ElementsCount() == 0; }
// The same for the part of that name; asking does not create it.
inline bool PartIsEmpty(TEntity& holder, StringView name) { return PartIsEmpty(ExistingPart(holder, name)); }

// The last member of the part, when it is a Member; none when the part is missing or empty.
template <class Member>
Member* LastMemberOfPart(TEntity& holder, StringView name) {
  TEntity* part = ExistingPart(holder, name);
  if (PartIsEmpty(part)) return nullptr;
  return ObjectAs<Member>(part->Get(part->GetLastIndex()));
}

}  // namespace veska
