#include "kernel/elements/element.h"

#include <algorithm>
#include <chrono>
#include <random>
#include <unordered_set>
#include <vector>

#include "kernel/elements/entity.h"
#include "kernel/elements/message.h"
#include "kernel/elements/property_access.h"
#include "kernel/platform/checked_arithmetic.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/platform/typed_value_stream.h"

namespace veska {

// The generator is used by ResetBaseID alone, on the main thread, like the mark it sets.
void ResetBaseID() {
  static std::minstd_rand generator(static_cast<unsigned>(std::chrono::steady_clock::now().time_since_epoch().count()));
  std::uniform_int_distribution<int32_t> mark(0, 31999);
  const int32_t old = BaseID;
  do {
    BaseID = -mark(generator);
  } while (BaseID == old);
}

void TElement::Publish(Publisher<TElement>& p) {
  p.Field(u"ID", &TElement::ID).Default(-1);
  p.Property(u"Name", &TElement::GetName, &TElement::SetName).Stored(&TElement::StoreName);
  p.Property(u"OwnersCount", &TElement::GetOwnersCount).Stored(false);
  p.Property(u"Size", &TElement::GetInstanceSize).Stored(false);
  p.Property(u"WholeSize", &TElement::GetWholeSize).Stored(false);
  p.Property(u"_ClassName", &TElement::Get_ClassName).Stored(false);
  p.Property(u"Life_Cycle_Start", &TElement::GetLife_Cycle_Start, &TElement::SetLife_Cycle_Start)
      .Stored(&TElement::Life_Cycle_Start_Store);
  p.Property(u"Life_Cycle_End", &TElement::GetLife_Cycle_End, &TElement::SetLife_Cycle_End)
      .Stored(&TElement::Life_Cycle_End_Store);
  p.Property(u"Life_Cycle_Start_Year", &TElement::GetLife_Cycle_Start_Year, &TElement::SetLife_Cycle_Start_Year)
      .Stored(false);
  p.Property(u"Life_Cycle_Start_Month", &TElement::GetLife_Cycle_Start_Month, &TElement::SetLife_Cycle_Start_Month)
      .Stored(false);
  p.Property(u"Life_Cycle_End_Year", &TElement::GetLife_Cycle_End_Year, &TElement::SetLife_Cycle_End_Year)
      .Stored(false);
  p.Property(u"Life_Cycle_End_Month", &TElement::GetLife_Cycle_End_Month, &TElement::SetLife_Cycle_End_Month)
      .Stored(false);
  p.Property(u"Life_Cycle_Alive", &TElement::Life_Cycle_Is_Alive).Stored(false);
  p.Property(u"Life_Cycle_Implemented", &TElement::Life_Cycle_Is_Implemented).Stored(false);
}

int32_t TElement::GetInstanceSize() const { return static_cast<int32_t>(ClassType().InstanceSize()); }

int32_t TElement::GetWholeSize() {
  ResetBaseID();
  return GetWholeSizes();
}

int32_t TElement::GetWholeSizes() {
  ID = BaseID;
  return GetInstanceSize();
}

String TElement::GetName() const { return ClassName(); }
void TElement::SetName(const String& /*name*/) {}

TEntity* TElement::GetOwnerEntity(int /*index*/) const { return nullptr; }
void TElement::PutOwner(int /*index*/, TEntity* /*entity*/) {}
int32_t TElement::GetOwnersCount() const { return 0; }

TDateTime TElement::GetLife_Cycle_End() const { return 0; }
TDateTime TElement::GetLife_Cycle_Start() const { return 0; }
void TElement::SetLife_Cycle_End(TDateTime /*value*/) {}
void TElement::SetLife_Cycle_Start(TDateTime /*value*/) {}

bool TElement::StoreName() const { return false; }

void TElement::Load(TReader& reader, TEntity* /*table*/) { ID = reader.ReadInteger(); }

void TElement::Save(TWriter& writer) {
  writer.WriteString(ClassName());
  writer.WriteInteger(ID);
}

bool TElement::NoElements() const { return true; }

// A plain element has no envelope.  Standing for itself would put it, untracked, into a second
// entity, and both holders would free it.
TElement* TElement::CreateEnvelope() { return nullptr; }

void TElement::HandleMessage(TVeskaMessage* /*message*/, bool& /*handled*/) {}

void TElement::OwnersHandleMessage(TVeskaMessage* message, bool& handled) {
  if (NoOwners()) {
    handled = true;
    return;
  }
  for (int i = 0; i < GetOwnersCount(); ++i) {
    TEntity* owner = GetOwnerEntity(i);
    if (owner == nullptr) continue;
    try {
      owner->HandleMessage(message, handled);
    } catch (...) {
      ShowMessage(IntToStr(message != nullptr ? message->Message : 0), MessageKind::Error);
    }
    if (handled) break;
  }
  handled = true;
}

void TElement::SendMsg(int32_t message, TElement* receiver, TElement* data, bool kill_data) {
  (new TVeskaMessage(message, this, receiver, data, kill_data))->Send();
}

void TElement::PostMsg(int32_t message, TElement* receiver, TElement* data, bool kill_data) {
  (new TVeskaMessage(message, this, receiver, data, kill_data))->Post();
}

void TElement::SendMsgToOwners(int32_t message, TElement* data, bool kill_data) {
  for (int i = 0; i < GetOwnersCount(); ++i) SendMsg(message, GetOwnerEntity(i), data, kill_data);
}

void TElement::PostMsgToOwners(int32_t message, TElement* data, bool kill_data) {
  for (int i = 0; i < GetOwnersCount(); ++i) PostMsg(message, GetOwnerEntity(i), data, kill_data);
}

void TElement::PostTextMsg(int32_t message, const String& text, TElement* receiver) {
  auto* text_message = new TVeskaTextMessage(message, this, receiver, nullptr, false);
  text_message->SetMessageText(text);
  text_message->Post();
}

void TElement::PostTextMsgToOwners(int32_t message, const String& text) {
  for (int i = 0; i < GetOwnersCount(); ++i) PostTextMsg(message, text, GetOwnerEntity(i));
}

void TElement::OnTimer() {}

void TElement::AddOwner(TEntity* /*entity*/) {}
void TElement::RemoveOwner(TEntity* /*entity*/) {}
bool TElement::IsMyOwner(const TEntity* /*entity*/) const { return false; }
bool TElement::NoOwners() const { return GetOwnersCount() < 1; }
TEntity* TElement::FindOwnerClass(const ClassInfo& /*cls*/) const { return nullptr; }
TEntity* TElement::FindOwnerName(const String& /*name*/) const { return nullptr; }

namespace {

// What an owner walk does at one element: the element is the answer, the walk passes it by
// without climbing further, or it climbs on to the element's owners.
enum class OwnerStep { Answer, PassBy, Climb };

// Elements an owner walk has seen: a short list while the walk is short, a hash set when it is
// long, so that neither a shallow walk pays for hashing nor a deep one for searching a list.
class SeenElements {
 public:
  // Whether the element is new to the walk; it is remembered from now on.
  bool Add(const TElement* element) {
    if (!many_.empty()) return many_.insert(element).second;
    if (std::find(few_.begin(), few_.end(), element) != few_.end()) return false;
    few_.push_back(element);
    if (few_.size() > kFew) many_.insert(few_.begin(), few_.end());
    return true;
  }

 private:
  static constexpr std::size_t kFew = 32;
  std::vector<const TElement*> few_;
  std::unordered_set<const TElement*> many_;
};

// The questions an owner walk can put to each element it reaches.
enum class OwnerQuestion { Class, ClassWithOwner, FirstClassWithOwner, Element };

struct OwnerWalk {
  OwnerQuestion question;
  const ClassInfo* cls = nullptr;     // the class questions
  const TEntity* entity = nullptr;    // the two with an owner
  const TElement* element = nullptr;  // the element question

  OwnerStep StepAt(const TElement& reached, OwnerQuestion asked) const {
    if (asked == OwnerQuestion::Element) return &reached == element ? OwnerStep::Answer : OwnerStep::Climb;
    const bool of_class = reached.InheritsFrom(*cls);
    switch (asked) {
      case OwnerQuestion::Class:
        return of_class ? OwnerStep::Answer : OwnerStep::Climb;
      case OwnerQuestion::ClassWithOwner:
        if (of_class && reached.IsMyOwner(entity)) return OwnerStep::Answer;
        // An envelope of the class answers for itself alone.
        return of_class && reached.Is<TEnvelopeEntity>() ? OwnerStep::PassBy : OwnerStep::Climb;
      case OwnerQuestion::FirstClassWithOwner:
        if (!of_class) return OwnerStep::Climb;
        return reached.IsMyOwner(entity) ? OwnerStep::Answer : OwnerStep::PassBy;
      case OwnerQuestion::Element:
        break;
    }
    return OwnerStep::PassBy;
  }
};

// Climbs from the element through its owners depth first, owners in index order (an envelope
// climbs to the entity it wraps, and puts the first-class question to it as the plain one), and
// answers the first element that answers.  The path is kept on the heap and every element is
// asked once, so neither a deep chain of owners nor a cycle of them can exhaust the stack or
// loop for ever.
TElement* ClimbOwners(TElement* start, const OwnerWalk& walk) {
  struct Pending {
    TElement* element;
    OwnerQuestion question;
  };
  std::vector<Pending> pending{{start, walk.question}};
  SeenElements seen;
  while (!pending.empty()) {
    const auto [element, question] = pending.back();
    pending.pop_back();
    if (!seen.Add(element)) continue;
    const OwnerStep step = walk.StepAt(*element, question);
    if (step == OwnerStep::Answer) return element;
    if (step == OwnerStep::PassBy) continue;
    if (auto* envelope = ObjectAs<TEnvelopeEntity>(element)) {
      const OwnerQuestion onward =
          question == OwnerQuestion::FirstClassWithOwner ? OwnerQuestion::ClassWithOwner : question;
      if (envelope->Owner() != nullptr) pending.push_back({envelope->Owner(), onward});
      continue;
    }
    for (int i = element->GetOwnersCount() - 1; i >= 0; --i) {
      if (TEntity* owner = element->GetOwnerEntity(i)) pending.push_back({owner, question});
    }
  }
  return nullptr;
}

}  // namespace

TElement* TElement::FindClassInOwners(const ClassInfo& cls) { return ClimbOwners(this, {OwnerQuestion::Class, &cls}); }

TElement* TElement::FindClassWithOwnerInOwners(const ClassInfo& cls, const TEntity* entity) {
  return ClimbOwners(this, {OwnerQuestion::ClassWithOwner, &cls, entity});
}

TElement* TElement::FindFirstClassWithOwnerInOwners(const ClassInfo& cls, const TEntity* entity) {
  return ClimbOwners(this, {OwnerQuestion::FirstClassWithOwner, &cls, entity});
}

bool TElement::IsInOwners(const TElement* element) {
  return element != nullptr && ClimbOwners(this, {OwnerQuestion::Element, nullptr, nullptr, element}) != nullptr;
}

bool TElement::IsPossibleToFree() {
  if (GetOwnersCount() < 2) return true;
  for (int i = 0; i < GetOwnersCount(); ++i) {
    TEntity* owner = GetOwnerEntity(i);
    if (owner == nullptr || !owner->CanFreeElement(this)) return false;
  }
  return true;
}

void TElement::ResetID() {
  ResetBaseID();
  ResetIDs();
}

void TElement::ResetIDs() { ID = BaseID; }

bool TElement::HasPropertyByName(StringView name) const { return GetPropIndex(this, name) >= 0; }

String TElement::GetPropertyStringByName(StringView name) const { return GetPropStringByName(this, name); }

bool TElement::SetPropertyStringByName(StringView name, const String& value) {
  return SetPropStringByName(this, name, value);
}

// The typed by-name accessors read and write through the property's own family; a property
// of another family, or none of that name, gives the neutral value and writes nothing.
double TElement::GetPropertyFloatByName(StringView name) const {
  const PropInfo* property = ClassType().FindProperty(name);
  if (property == nullptr || !property->CanRead()) return 0;
  if (property->Family() == ValueFamily::Float) return property->GetFloat(*this);
  if (property->Family() == ValueFamily::Ordinal) return static_cast<double>(property->GetOrd(*this));
  return 0;
}

bool TElement::SetPropertyFloatByName(StringView name, double value) {
  const PropInfo* property = ClassType().FindProperty(name);
  if (property == nullptr) return false;
  if (property->CanWrite() && property->Family() == ValueFamily::Float) property->SetFloat(*this, value);
  return true;
}

namespace {

// The ordinal accessors of every width share these; each accessor answers on its own, without
// a second virtual call.
int64_t ReadOrdinalByName(const TElement& element, StringView name) {
  const PropInfo* property = element.ClassType().FindProperty(name);
  if (property == nullptr || !property->CanRead() || property->Family() != ValueFamily::Ordinal) return 0;
  return property->GetOrd(element);
}

// An object-valued property takes the number as the object's reference number, as its text
// form does.
bool WriteOrdinalByName(TElement& element, StringView name, int64_t value) {
  const PropInfo* property = element.ClassType().FindProperty(name);
  if (property == nullptr) return false;
  if (!property->CanWrite()) return true;
  if (property->Family() == ValueFamily::Ordinal) {
    property->SetOrd(element, value);
  } else if (property->Family() == ValueFamily::Object) {
    property->SetObj(element, ObjectHandles::ObjectOf(value));
  }
  return true;
}

}  // namespace

int64_t TElement::GetPropertyLongIntByName(StringView name) const { return ReadOrdinalByName(*this, name); }

bool TElement::SetPropertyLongIntByName(StringView name, int64_t value) {
  return WriteOrdinalByName(*this, name, value);
}

int32_t TElement::GetPropertyIntByName(StringView name) const {
  return static_cast<int32_t>(ReadOrdinalByName(*this, name));
}

bool TElement::SetPropertyIntByName(StringView name, int32_t value) { return WriteOrdinalByName(*this, name, value); }

bool TElement::GetPropertyBooleanByName(StringView name) const { return ReadOrdinalByName(*this, name) != 0; }

bool TElement::SetPropertyBooleanByName(StringView name, bool value) {
  return WriteOrdinalByName(*this, name, value ? 1 : 0);
}

bool TElement::Life_Cycle_Is_Alive() const {
  if (!Life_Cycle_Watch || !Life_Cycle_Is_Implemented() || Life_Cycle_WatchTime == 0) return true;
  const TDateTime start = GetLife_Cycle_Start();
  TDateTime end = GetLife_Cycle_End();
  if (start == 0 && end == 0) return true;
  if (end == 0) end = MaxDateTime;
  return start <= Life_Cycle_WatchTime && end >= Life_Cycle_WatchTime;
}

bool TElement::Life_Cycle_Is_Implemented() const { return false; }
bool TElement::Life_Cycle_Start_Store() const { return false; }
bool TElement::Life_Cycle_End_Store() const { return false; }

int32_t TElement::GetLastPropertyIndex() const { return CheckedSub<int32_t>(GetPropCount(this), 1); }

namespace {

// The year or month of a life-cycle date, 0 when the element keeps no period or the date is 0.
uint16_t DatePart(const TElement& element, TDateTime date, int (*part)(TDateTime)) {
  if (!element.Life_Cycle_Is_Implemented() || date == 0) return 0;
  return static_cast<uint16_t>(part(date));
}

}  // namespace

uint16_t TElement::GetLife_Cycle_Start_Year() const { return DatePart(*this, GetLife_Cycle_Start(), YearOf); }
uint16_t TElement::GetLife_Cycle_Start_Month() const { return DatePart(*this, GetLife_Cycle_Start(), MonthOf); }
uint16_t TElement::GetLife_Cycle_End_Year() const { return DatePart(*this, GetLife_Cycle_End(), YearOf); }
uint16_t TElement::GetLife_Cycle_End_Month() const { return DatePart(*this, GetLife_Cycle_End(), MonthOf); }

void TElement::SetLife_Cycle_Start_Year(uint16_t year) {
  if (Life_Cycle_Is_Implemented()) SetLife_Cycle_Start(StartOfAYear(year));
}

// A month set while the start is still 0 asks for a date in year 0, which fails: the year is
// to be set first.
void TElement::SetLife_Cycle_Start_Month(uint16_t month) {
  if (Life_Cycle_Is_Implemented()) SetLife_Cycle_Start(StartOfAMonth(GetLife_Cycle_Start_Year(), month));
}

void TElement::SetLife_Cycle_End_Year(uint16_t year) {
  if (Life_Cycle_Is_Implemented()) SetLife_Cycle_End(EndOfAYear(year));
}

void TElement::SetLife_Cycle_End_Month(uint16_t month) {
  if (Life_Cycle_Is_Implemented()) SetLife_Cycle_End(EndOfAMonth(GetLife_Cycle_End_Year(), month));
}

void TElement::SaveElement(const TElement* element, TWriter& writer) {
  writer.WriteInteger(element != nullptr ? element->ID : -1);
}

TElement* TElement::LoadElement(TReader& reader, TEntity* table) {
  const int32_t number = reader.ReadInteger();
  if (number < 0 || table == nullptr) return nullptr;
  return table->Get(number);
}

void TSuperList::FreeItem(TElement*& item) {
  if (item != nullptr && item->IsPossibleToFree()) delete item;
}

void TSuperList::FreeAll() {
  for (int i = Count() - 1; i >= 0; --i) {
    TElement* item = Item(i);
    FreeItem(item);
  }
}

void TSuperList::FastFreeItem(TElement*& item) {
  if (item == nullptr) return;
  if (TSuperList* members = TEntity::MemberList(item)) members->FastFreeAll();
  delete item;
}

// Frees the whole tree below the list as FastFreeItem for each item would, last item first and
// each entity's members before the entity, but with the path on the heap: a tree may be deeper
// than the stack.
void TSuperList::FastFreeAll() {
  struct Level {
    TSuperList* list;
    int next;          // the item freed next, counting down
    TElement* holder;  // the entity whose list this is, freed when the list is done
  };
  std::vector<Level> levels{{this, Count() - 1, nullptr}};
  while (!levels.empty()) {
    Level& level = levels.back();
    if (level.next < 0) {
      level.list->Clear();
      TElement* holder = level.holder;
      levels.pop_back();
      delete holder;  // its list is empty: its destructor frees nothing more
      continue;
    }
    TElement* item = level.list->Item(level.next--);
    if (item == nullptr) continue;
    if (TSuperList* members = TEntity::MemberList(item)) {
      levels.push_back({members, members->Count() - 1, item});
    } else {
      delete item;
    }
  }
}

void CheckTestedElement() {
  if (TestedElement == nullptr || TestedElement->GetOwnersCount() < 1) return;
  try {
    if (TEntity* owner = TestedElement->GetOwnerEntity(0)) (void)owner->GetName();
  } catch (...) {
    ShowMessage(u"Test ... chyba !!!", MessageKind::Error);
  }
}

}  // namespace veska
