#include "kernel/elements/named.h"

#include "kernel/platform/message_sink.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska {

int32_t OwnerList::Count() const {
  if (std::holds_alternative<TEntity*>(owners_)) return 1;
  if (const auto* list = std::get_if<std::unique_ptr<TSuperList>>(&owners_)) return (*list)->Count();
  return 0;
}

TEntity* OwnerList::At(int index) const {
  if (const auto* single = std::get_if<TEntity*>(&owners_)) {
    if (index != 0) ListIndexError(index);
    return *single;
  }
  if (const auto* list = std::get_if<std::unique_ptr<TSuperList>>(&owners_)) {
    return static_cast<TEntity*>((*list)->Get(index));
  }
  ListIndexError(index);
}

// The first owner is held in place; a second one moves both into a list, which then stays.
TSuperList& OwnerList::MakeList() {
  if (auto* list = std::get_if<std::unique_ptr<TSuperList>>(&owners_)) return **list;
  auto list = std::make_unique<TSuperList>();
  if (auto* single = std::get_if<TEntity*>(&owners_)) list->Add(*single);
  TSuperList& made = *list;
  owners_ = std::move(list);
  return made;
}

void OwnerList::Add(TEntity* entity) {
  if (std::holds_alternative<std::monostate>(owners_)) {
    owners_ = entity;
  } else {
    MakeList().Add(entity);
  }
}

// Index 0 means the end of the list, not its front: deliberately, as it always did.
void OwnerList::Put(int index, TEntity* entity) {
  if (index == 0) {
    Add(entity);
  } else {
    MakeList().Insert(index, entity);
  }
}

void OwnerList::Remove(const TEntity* entity) {
  if (const auto* single = std::get_if<TEntity*>(&owners_)) {
    if (*single == entity) owners_ = std::monostate{};
  } else if (auto* list = std::get_if<std::unique_ptr<TSuperList>>(&owners_)) {
    (*list)->Remove(const_cast<TEntity*>(entity));
  }
}

bool OwnerList::Contains(const TEntity* entity) const {
  if (const auto* single = std::get_if<TEntity*>(&owners_)) return *single == entity;
  if (const auto* list = std::get_if<std::unique_ptr<TSuperList>>(&owners_)) return (*list)->IndexOf(entity) >= 0;
  return false;
}

// --- WithName -------------------------------------------------------------------------------

template <class Base>
void WithName<Base>::Load(TReader& reader, TEntity* table) {
  Base::Load(reader, table);
  SetName(reader.ReadString());
}

template <class Base>
void WithName<Base>::Save(TWriter& writer) {
  Base::Save(writer);
  writer.WriteString(GetName());
}

template class WithName<TElement>;
template class WithName<TEntity>;

// --- WithOwners -----------------------------------------------------------------------------

template <class Base>
template <class Test>
TEntity* WithOwners<Base>::FirstOwner(Test test, bool look_through_envelopes) const {
  for (int i = 0; i < owners_.Count(); ++i) {
    TEntity* owner = owners_.At(i);
    if (look_through_envelopes) {
      if (auto* envelope = ObjectAs<TEnvelopeEntity>(owner)) owner = envelope->Owner();
    }
    if (owner != nullptr && test(*owner)) return owner;
  }
  return nullptr;
}

// --- TNameElement ---------------------------------------------------------------------------

// The name's length always counts here, since the test for an empty name asks GetName, which
// is never empty; TNameEntity differs on purpose.
int32_t TNameElement::GetInstanceSize() const {
  return TElement::GetInstanceSize() + static_cast<int32_t>(FName.size()) + 1;
}

// --- TOwnerElement --------------------------------------------------------------------------

TOwnerElement::~TOwnerElement() {
  for (int i = owners_.Count() - 1; i >= 0; --i) {
    if (i >= owners_.Count()) continue;  // an owner may have taken several entries at once
    if (TEntity* owner = owners_.At(i)) owner->RemoveElement(this);
  }
}

TEntity* TOwnerElement::GetOwnerEntity(int index) const {
  if (index < 0 || index >= owners_.Count()) return nullptr;
  return owners_.At(index);
}

TEntity* TOwnerElement::FindOwnerClass(const ClassInfo& cls) const {
  return FirstOwner([&](const TEntity& owner) { return owner.InheritsFrom(cls); }, false);
}

// Case-sensitive, unlike the entity's search of its members.
TEntity* TOwnerElement::FindOwnerName(const String& name) const {
  return FirstOwner([&](const TEntity& owner) { return owner.GetName() == name; }, false);
}

// --- TNameEntity ----------------------------------------------------------------------------

int32_t TNameEntity::GetInstanceSize() const {
  const int32_t base = TEntity::GetInstanceSize();
  return FName.empty() ? base : base + static_cast<int32_t>(FName.size()) + 1;
}

// --- TOwnerEntity ---------------------------------------------------------------------------

// Leaves every owner, then lets its own members go.  Owner entries are typed entities, so an
// owner that is not an entity cannot occur; an empty entry is reported and passed over.
TOwnerEntity::~TOwnerEntity() {
  TEntity* current = nullptr;
  try {
    for (int i = owners_.Count() - 1; i >= 0; --i) {
      if (i >= owners_.Count()) continue;
      current = owners_.At(i);
      if (current == nullptr) {
        ShowMessage(u"TOwnerEntity.Destroy: Špatný vlastník", MessageKind::Error);
        continue;
      }
      if (!current->NoElements()) current->RemoveElement(this);
    }
  } catch (const std::exception&) {
    ShowMessage(u"TOwnerEntity.Destroy: chyba cyklu uvolňování , " +
                    (current != nullptr ? current->ClassName() + u" : " + current->GetName() : String(u" : ")),
                MessageKind::Error);
  }
  FName.clear();
  FreeAll();
}

TEntity* TOwnerEntity::GetOwnerEntity(int index) const {
  if (index < 0 || index >= owners_.Count()) return nullptr;
  TEntity* owner = owners_.At(index);
  if (owner == nullptr) {
    ShowMessage(u"TOwnerEntity(" + GetName() + u").GetOwner: Objekt vlastníka je prázdný", MessageKind::Error);
  }
  return owner;
}

// Owners are found through envelopes: the wrapped entity stands for its envelope.
TEntity* TOwnerEntity::FindOwnerClass(const ClassInfo& cls) const {
  return FirstOwner([&](const TEntity& owner) { return owner.InheritsFrom(cls); }, true);
}

TEntity* TOwnerEntity::FindOwnerName(const String& name) const {
  return FirstOwner([&](const TEntity& owner) { return owner.GetName() == name; }, true);
}

TElement* TOwnerEntity::CreateSubEntity(const ClassInfo& cls, const String& name) {
  const String wanted = name.empty() ? String(u"no name") : name;
  if (TElement* found = FindElementName(wanted)) return found;
  auto* element = CreateObjectAs<TElement>(cls);
  if (element == nullptr) return nullptr;
  element->SetName(wanted);
  InsertNameSortedEntity(element);
  return element;
}

void TOwnerEntity::InsertNameSortedEntity(TElement* element) {
  if (element == nullptr) return;
  const String name = element->GetName();
  const int count = ElementsCount();
  const TElement* last = count > 0 ? Get(count - 1) : nullptr;
  if (count == 0 || (last != nullptr && last->GetName() <= name)) {
    AddElement(element);
    return;
  }
  for (int i = 0; i < count; ++i) {
    TElement* member = Get(i);
    if (member != nullptr && member->GetName() > name) {
      InsertElement(i, element);
      return;
    }
  }
  AddElement(element);
}

// --- TAliases -------------------------------------------------------------------------------

TElement* TAliases::GetAlias(const String& name) {
  auto* alias = ObjectAs<TAliasElement>(FindElementName(name));
  return alias != nullptr ? alias->Target() : nullptr;
}

// The member found by name is taken as an alias element; a member of another class under that
// name is left alone rather than treated as an alias it is not.
void TAliases::SetAlias(const String& name, TElement* element) {
  if (element == nullptr) return;
  TElement* member = FindElementName(name);
  if (member == nullptr) {
    auto* created = new TAliasElement;
    created->SetName(name);
    AddElement(created);
    member = created;
  }
  if (auto* alias = ObjectAs<TAliasElement>(member)) alias->SetTarget(element);
}

}  // namespace veska
