#include "kernel/elements/entity.h"

#include <functional>
#include <unordered_set>
#include <vector>

#include "kernel/elements/class_lookup.h"
#include "kernel/elements/message.h"
#include "kernel/elements/named.h"
#include "kernel/platform/checked_arithmetic.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska {

namespace {

// Freeing a member entity frees its own members from its destructor, so a deep tree would be
// freed through as many nested destructor calls as it has levels.  Up to this depth members are
// deleted where they are released; deeper ones are queued, and the outermost freeing deletes
// the queue.  The same members are freed, every one once; only the deepest go a little later.
constexpr int kMaxNestedFreeing = 256;

class FreeingLevel {
 public:
  FreeingLevel() { ++depth_; }
  ~FreeingLevel() {
    if (--depth_ > 0 || draining_) return;
    draining_ = true;
    while (!queued_.empty()) {
      TElement* member = queued_.back();
      queued_.pop_back();
      delete member;
    }
    draining_ = false;
  }
  FreeingLevel(const FreeingLevel&) = delete;
  FreeingLevel& operator=(const FreeingLevel&) = delete;

  static void Delete(TElement* member) {
    if (depth_ < kMaxNestedFreeing) {
      delete member;
    } else {
      queued_.push_back(member);
    }
  }

 private:
  static thread_local int depth_;
  static thread_local bool draining_;
  static thread_local std::vector<TElement*> queued_;
};

thread_local int FreeingLevel::depth_ = 0;
thread_local bool FreeingLevel::draining_ = false;
thread_local std::vector<TElement*> FreeingLevel::queued_;

}  // namespace

void TEntity::Publish(Publisher<TEntity>& p) {
  p.WriteOnly(u"NextElement", &TEntity::AddElement);
  p.WriteOnly(u"ElementToFree", &TEntity::SetElementToFree);
  p.WriteOnly(u"ElementToRemove", &TEntity::RemoveElement);
  p.WriteOnly(u"AddAllFrom", &TEntity::PAddAllFrom);
  p.WriteOnly(u"AddAllFromRev", &TEntity::RAddAllFrom);
  p.WriteOnly(u"RemoveAllFrom", &TEntity::SetRemoveAllFrom);
  p.WriteOnly(u"FreeAllFrom", &TEntity::SetFreeAllFrom);
  p.Property(u"WholeCount", &TEntity::GetWholeCount);
  p.Property(u"Count", &TEntity::ElementsCount);
  p.Property(u"LastIndex", &TEntity::GetLastIndex);
}

TEntity::~TEntity() { FreeAll(); }

TSuperList& TEntity::Elements() {
  if (!elements_) elements_ = std::make_unique<TSuperList>();
  return *elements_;
}

int32_t TEntity::ElementsCount() { return Elements().Count(); }

int32_t TEntity::GetLastIndex() { return ElementsCount() - 1; }

TElement* TEntity::Get(int index) {
  if (!elements_) {
    Elements();
    return nullptr;
  }
  return elements_->Item(index);
}

void TEntity::Put(int index, TElement* element) {
  TSuperList& list = Elements();
  if (list.Count() == 0 && index == 0) {
    list.Add(element);
  } else {
    list.Put(index, element);
  }
}

int TEntity::IndexOf(const TElement* element) const { return elements_ ? elements_->IndexOf(element) : -1; }

bool TEntity::NoElements() const { return !elements_ || elements_->Count() == 0; }

void TEntity::AddToList(TElement* element, bool track_owner) {
  if (element == nullptr) return;
  TSuperList& list = Elements();
  if (track_owner) element->AddOwner(this);
  list.Add(element);
}

void TEntity::InsertIntoList(int index, TElement* element, bool track_owner) {
  if (element == nullptr) return;
  if (!elements_) {
    if (index != 0) return;  // an entity that never held anything takes only index 0
    Elements().Add(element);
  } else {
    elements_->Insert(index, element);
  }
  if (track_owner) element->AddOwner(this);
}

void TEntity::AddElement(TElement* element) { AddToList(element, true); }

void TEntity::InsertElement(int index, TElement* element) { InsertIntoList(index, element, true); }

void TEntity::RemoveElement(TElement* element) {
  if (element == nullptr || !elements_) return;
  element->RemoveOwner(this);
  elements_->Remove(element);
}

void TEntity::RemoveElementIndex(int index) {
  if (!elements_ || index < 0 || index >= elements_->Count()) return;
  if (TElement* member = elements_->Item(index)) member->RemoveOwner(this);
  elements_->Delete(index);
}

void TEntity::FreeOrRelease(TElement* element) {
  if (!element->IsPossibleToFree()) {
    element->RemoveOwner(this);
    return;
  }
  // A member that keeps its owners leaves every slot of this entity when it is destroyed; a
  // plain one listed again must be taken out here, or its other slots would outlive it.
  if (!element->KeepsOwners()) {
    while (elements_->Remove(element) >= 0) {
    }
  }
  delete element;
}

void TEntity::FreeElement(TElement* element) {
  if (element == nullptr || !elements_) return;
  try {
    elements_->Remove(element);
    FreeOrRelease(element);
  } catch (const std::exception& error) {
    ShowMessage(u"TEntity.FreeElement\r\n" + FromUtf8(error.what()), MessageKind::Error);
  }
}

void TEntity::FreeElementIndex(int index) {
  if (!elements_ || index < 0 || index >= elements_->Count()) return;
  try {
    TElement* member = elements_->Item(index);
    elements_->Delete(index);
    if (member != nullptr) FreeOrRelease(member);
  } catch (const std::exception& error) {
    ShowMessage(u"TEntity.FreeElement\r\n" + FromUtf8(error.what()), MessageKind::Error);
  }
}

// Lets every member go, from the last to the first: each is asked first whether it may be freed
// (unless the walk frees regardless), then released from this entity, then freed when it may
// be.  Members that other holders keep survive.  A member listed in several slots is freed
// once: before it goes, this entity drops all its owner entries in it, so its destructor does
// not reach back into the list being walked, and it is remembered so that its earlier slots are
// skipped.  Only members listed again are remembered, and plain members cannot tell.
void TEntity::ReleaseMembers(bool ask_first) {
  const FreeingLevel level;
  std::unordered_set<const TElement*> freed;
  for (int i = elements_->Count() - 1; i >= 0; --i) {
    if (i >= elements_->Count()) continue;  // a freed member took other members with it
    TElement* member = elements_->Item(i);
    if (member == nullptr || (!freed.empty() && freed.contains(member))) continue;
    const bool may_free = !ask_first || member->IsPossibleToFree();
    member->RemoveOwner(this);
    if (!may_free) continue;
    if (!member->KeepsOwners() || member->IsMyOwner(this)) {
      freed.insert(member);
      while (member->IsMyOwner(this)) member->RemoveOwner(this);
    }
    FreeingLevel::Delete(member);
  }
  elements_->Clear();
}

void TEntity::FreeAll() {
  if (NoElements()) return;
  try {
    ReleaseMembers(true);
  } catch (const std::exception& error) {
    ShowMessage(GetName() + u" TEntity.FreeAll\r\n" + FromUtf8(error.what()), MessageKind::Error);
  }
}

// Frees every member whatever its other holders say.
void TEntity::HardFreeAll() {
  if (NoElements()) return;
  try {
    ReleaseMembers(false);
  } catch (const std::exception& error) {
    ShowMessage(u"TEntity.HardFreeAll\r\n" + FromUtf8(error.what()), MessageKind::Error);
  }
}

// Tears down a whole tree that nobody else holds: no owner bookkeeping, no questions.
void TEntity::FastFreeAll() {
  if (elements_) elements_->FastFreeAll();
}

TSuperList* TEntity::MemberList(TElement* element) {
  auto* entity = ObjectAs<TEntity>(element);
  return entity != nullptr ? entity->elements_.get() : nullptr;
}

void TEntity::WalkUnmarkedMembers(const std::function<bool(TElement&)>& visit) {
  struct Level {
    TSuperList* list;
    int next;
  };
  std::vector<Level> levels;
  if (elements_) levels.push_back({elements_.get(), 0});
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next >= level.list->Count()) {
      levels.pop_back();
      continue;
    }
    TElement* member = level.list->Item(level.next++);
    if (member == nullptr || member->ID == BaseID || !visit(*member)) continue;
    if (TSuperList* members = MemberList(member)) levels.push_back({members, 0});
  }
}

void TEntity::Clear() {
  if (elements_) elements_->Clear();
}

TElement* TEntity::CreateElement(const String& class_name, const String& name) {
  const ClassInfo* cls = LookUpClass(class_name);
  if (cls == nullptr) return nullptr;
  auto* element = CreateObjectAs<TElement>(*cls);
  if (element == nullptr) return nullptr;
  element->SetName(name);
  AddElement(element);
  return element;
}

void TEntity::ExchangeElements(TElement* a, TElement* b) { ExchangeElementsIndex(IndexOf(a), IndexOf(b)); }

void TEntity::ExchangeElementsIndex(int i, int j) {
  if (elements_) elements_->Exchange(i, j);
}

void TEntity::ForAllFrom(TElement* source, bool last_first, void (TEntity::*action)(TElement*)) {
  auto* entity = ObjectAs<TEntity>(source);
  if (entity == nullptr) return;
  const int last = entity->GetLastIndex();
  for (int step = 0; step <= last; ++step) (this->*action)(entity->Get(last_first ? last - step : step));
}

void TEntity::PAddAllFrom(TElement* source) { ForAllFrom(source, false, &TEntity::AddElement); }
void TEntity::RAddAllFrom(TElement* source) { ForAllFrom(source, true, &TEntity::AddElement); }
void TEntity::SetRemoveAllFrom(TElement* source) { ForAllFrom(source, false, &TEntity::RemoveElement); }
void TEntity::SetFreeAllFrom(TElement* source) { ForAllFrom(source, false, &TEntity::FreeElement); }

TElement* TEntity::FindOrCreateElementName(const ClassInfo& cls, const String& name) {
  if (TElement* found = FindElementName(name)) return found;
  auto* element = CreateObjectAs<TElement>(cls);
  if (element == nullptr) return nullptr;
  element->SetName(name);
  AddElement(element);
  return element;
}

void TEntity::ExchangeFieldElement(TElement*& field, TElement* element) {
  if (field != nullptr) {
    FreeElement(field);
    AddElement(element);
  } else if (IndexOf(element) < 0) {
    AddElement(element);
  }
  field = element;
}

void TEntity::GetElements(TEntity* source, int from, int to) {
  if (source == nullptr) return;
  for (int i = from; i <= to; ++i) AddElement(source->Get(i));
}

TElement* TEntity::FindElementClass(const ClassInfo& cls) {
  if (!elements_) return nullptr;
  for (void* item : *elements_) {
    auto* member = static_cast<TElement*>(item);
    if (member != nullptr && member->InheritsFrom(cls)) return member;
  }
  return nullptr;
}

TElement* TEntity::FindElementName(const String& name) {
  if (!elements_) return nullptr;
  const String wanted = UpperCase(name);
  for (void* item : *elements_) {
    auto* member = static_cast<TElement*>(item);
    if (member != nullptr && UpperCase(member->GetName()) == wanted) return member;
  }
  return nullptr;
}

TElement* TEntity::FindElementByProperty(const String& property_name, const String& value) {
  if (!elements_) return nullptr;
  for (void* item : *elements_) {
    auto* member = static_cast<TElement*>(item);
    if (member != nullptr && SameText(member->GetPropertyStringByName(property_name), value)) return member;
  }
  return nullptr;
}

TElement* TEntity::FindElementByProperty(const String& value) { return FindElementName(value); }

int32_t TEntity::GetClassCount(const ClassInfo& cls) {
  int32_t count = 0;
  if (!elements_) return 0;
  for (void* item : *elements_) {
    auto* member = static_cast<TElement*>(item);
    if (member != nullptr && member->InheritsFrom(cls)) ++count;
  }
  return count;
}

bool TEntity::CanFreeElement(TElement* /*element*/) { return false; }
bool TEntity::CheckLoadDuplicity() { return false; }

// The walks below visit what is reachable once, stamping each element with the current mark
// (BaseID), so that an element reachable along several paths, or through a cycle, counts once.
// Member entities are walked in place rather than asked through their own override, so that
// the depth of a tree costs no stack.

int32_t TEntity::GetWholeSizes() {
  ID = BaseID;
  int32_t size = GetInstanceSize();
  WalkUnmarkedMembers([&](TElement& member) {
    if (!member.Is<TEntity>()) {
      size = CheckedAdd(size, member.GetWholeSizes());
      return false;
    }
    member.ID = BaseID;
    size = CheckedAdd(size, member.GetInstanceSize());
    return true;
  });
  return size;
}

int32_t TEntity::GetWholeCount() {
  ResetBaseID();
  return GetWholeCounts();
}

int32_t TEntity::GetWholeCounts() {
  ID = BaseID;
  int32_t count = ElementsCount();
  WalkUnmarkedMembers([&](TElement& member) {
    member.ID = BaseID;
    auto* entity = ObjectAs<TEntity>(&member);
    if (entity != nullptr) count = CheckedAdd(count, entity->ElementsCount());
    return entity != nullptr;
  });
  return count;
}

void TEntity::ResetIDs() {
  TElement::ResetIDs();
  WalkUnmarkedMembers([](TElement& member) {
    if (!member.Is<TEntity>()) {
      member.ResetIDs();
      return false;
    }
    member.ID = BaseID;
    return true;
  });
}

void TEntity::Save(TWriter& writer) {
  TElement::Save(writer);
  writer.WriteListBegin();
  if (elements_) {
    for (void* item : *elements_) {
      auto* member = static_cast<TElement*>(item);
      writer.WriteInteger(member != nullptr ? member->ID : -1);
    }
  }
  writer.WriteListEnd();
}

void TEntity::Load(TReader& reader, TEntity* table) {
  TElement::Load(reader, table);
  reader.ReadListBegin();
  while (!reader.EndOfList()) {
    // An empty slot was written as -1 (see Save): it reads back as none, which is not added.
    const int32_t number = reader.ReadInteger();
    AddElement(number >= 0 && table != nullptr ? table->Get(number) : nullptr);
  }
  reader.ReadListEnd();
}

namespace {

// Envelopes of members without owners nest as deep as the tree; a tree with a cycle of such
// members would nest for ever.  Beyond this depth a member gets no envelope.
constexpr int kMaxEnvelopeDepth = 1000;
thread_local int envelope_depth = 0;

struct EnvelopeLevel {
  EnvelopeLevel() { ++envelope_depth; }
  ~EnvelopeLevel() { --envelope_depth; }
  EnvelopeLevel(const EnvelopeLevel&) = delete;
  EnvelopeLevel& operator=(const EnvelopeLevel&) = delete;
};

}  // namespace

TElement* TEntity::CreateEnvelope() {
  if (envelope_depth >= kMaxEnvelopeDepth) return nullptr;
  auto* envelope = CreateObjectAs<TEntity>(ClassType());
  if (envelope == nullptr) return nullptr;
  envelope->SetName(u"Obálka: " + GetName());
  if (elements_) {
    const EnvelopeLevel level;
    for (void* item : *elements_) {
      auto* member = static_cast<TElement*>(item);
      if (member == nullptr) continue;
      envelope->AddElement(member->NoOwners() ? member->CreateEnvelope() : member);
    }
  }
  return envelope;
}

// Deliberately, an entity does not pass messages down to its members.
void TEntity::HandleMessage(TVeskaMessage* /*message*/, bool& /*handled*/) {}

// The timer walk counts with a 16-bit unsigned counter under range checking, as it always
// did: an entity without members (or with more than 65536) raises the range error, and one
// whose list was never created fails on the missing list.
void TEntity::OnTimer() {
  if (!elements_) throw Exception(u"Access violation: " + GetName() + u" has no member list");
  const auto last = CheckedRange<uint16_t>(elements_->Count() - 1);
  for (uint32_t i = 0; i <= last; ++i) {
    if (TElement* member = elements_->Item(static_cast<int>(i))) member->OnTimer();
  }
}

TElement* TEntity::GetElement(const String& name) {
  if (auto* aliases = ObjectAs<TAliases>(FindElementClass(TAliases::StaticClassInfo()))) {
    if (TElement* target = aliases->GetAlias(name)) return target;
  }
  return FindElementName(name);
}

void TEntity::SetElement(const String& name, TElement* element) {
  auto* aliases = ObjectAs<TAliases>(FindElementClass(TAliases::StaticClassInfo()));
  if (aliases == nullptr) {
    aliases = new TAliases;
    AddElement(aliases);
  }
  if (TElement* previous = aliases->GetAlias(name)) FreeElement(previous);
  aliases->SetAlias(name, element);
  AddElement(element);
}

void TQuickEntity::Publish(Publisher<TQuickEntity>& p) { p.WriteOnly(u"ClearIt", &TQuickEntity::SetClearIt); }

void TQuickEntity::AddElement(TElement* element) { AddToList(element, false); }

void TQuickEntity::InsertElement(int index, TElement* element) { InsertIntoList(index, element, false); }

void TQuickEntity::SetClearIt(bool value) {
  if (value) Clear();
}

void TEnvelopeEntity::HandleMessage(TVeskaMessage* message, bool& handled) {
  if (owner_ == nullptr || message == nullptr) return;
  message->Receiver = owner_;
  owner_->HandleMessage(message, handled);
}

TEntity* TEnvelopeEntity::FindOwnerClass(const ClassInfo& cls) const {
  if (InheritsFrom(cls)) return const_cast<TEnvelopeEntity*>(this);
  if (owner_ != nullptr && owner_->InheritsFrom(cls)) return owner_;
  return nullptr;
}

void FreeElementSet(std::span<TElement* const> elements) {
  std::unordered_set<const TElement*> listed;
  for (TElement* element : elements) {
    if (auto* entity = ObjectAs<TEntity>(element)) {
      for (int i = 0; i < entity->ElementsCount(); ++i) listed.insert(entity->Get(i));
    }
  }
  // What the unlisted elements reach through members goes with them.  The rest lists itself
  // round a cycle: each lets its members go (telling them) before it is freed alone.
  std::vector<TElement*> roots;
  for (TElement* element : elements) {
    if (!listed.contains(element)) roots.push_back(element);
  }
  std::unordered_set<const TElement*> reached;
  std::vector<TElement*> pending = roots;
  while (!pending.empty()) {
    auto* entity = ObjectAs<TEntity>(pending.back());
    pending.pop_back();
    for (int i = 0; entity != nullptr && i < entity->ElementsCount(); ++i) {
      if (TElement* member = entity->Get(i); member != nullptr && reached.insert(member).second) pending.push_back(member);
    }
  }
  std::vector<TElement*> cycles;
  for (TElement* element : elements) {
    if (listed.contains(element) && !reached.contains(element)) cycles.push_back(element);
  }
  for (TElement* element : cycles) {
    if (auto* entity = ObjectAs<TEntity>(element)) {
      for (int i = entity->ElementsCount() - 1; i >= 0; --i) entity->RemoveElementIndex(i);
    }
  }
  for (TElement* element : roots) delete element;
  for (TElement* element : cycles) delete element;
}

void FreeElementSet(TEntity& list) {
  std::vector<TElement*> elements;
  for (int i = 0; i < list.ElementsCount(); ++i) elements.push_back(list.Get(i));
  list.Clear();
  FreeElementSet(elements);
}

}  // namespace veska
