#include "kernel/classes/registry.h"

#include <algorithm>
#include <atomic>

#include "kernel/elements/message.h"
#include "kernel/elements/sorted_search.h"
#include "kernel/platform/checked_arithmetic.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"

namespace veska {

// --- TVeskaClassProperty --------------------------------------------------------------------

void TVeskaClassProperty::Publish(Publisher<TVeskaClassProperty>& p) {
  p.Field(u"PropIndex", &TVeskaClassProperty::PropIndex);
  p.Property(u"LostProperty", &TVeskaClassProperty::LostProperty, &TVeskaClassProperty::SetLostProperty);
  p.Property(u"LostTypeKind", &TVeskaClassProperty::LostTypeKind, &TVeskaClassProperty::SetLostTypeKind);
  p.Property(u"TypeMishmash", &TVeskaClassProperty::TypeMishmash, &TVeskaClassProperty::SetTypeMishmash);
  p.Property(u"TypeKind", &TVeskaClassProperty::GetTypeKind);
}

void TVeskaClassProperty::SetPropInfo(const PropInfo* prop_info) {
  prop_info_ = prop_info;
  if (prop_info_ != nullptr) SetName(prop_info_->Name());
}

TTypeKind TVeskaClassProperty::GetTypeKind() const {
  if (LostProperty) return LostTypeKind;
  return prop_info_ != nullptr ? prop_info_->Kind() : TTypeKind::tkUnknown;
}

// --- TVeskaClass ----------------------------------------------------------------------------

void TVeskaClass::Publish(Publisher<TVeskaClass>& p) {
  p.Property(u"ElementClassName", &TVeskaClass::GetElementClassName);
  p.Property(u"AncestorClassName", &TVeskaClass::GetAncestorClassName);
  p.Property(u"PropCount", &TVeskaClass::PropCount);
  p.Property(u"Unit_Name", &TVeskaClass::GetUnit_Name).Stored(false);
}

void TVeskaClass::SetName(const String& name) {
  inherited::SetName(name);
  // The registries that hold the record find it by name.
  for (int i = 0; i < GetOwnersCount(); ++i) {
    if (auto* registry = ObjectAs<TVeskaClasses>(GetOwnerEntity(i))) registry->RebuildNameIndex();
  }
}

void TVeskaClass::SetElementClass(const ClassInfo* element_class) {
  element_class_ = element_class;
  const bool creates_elements = element_class_ != nullptr && element_class_->InheritsFrom(TElement::StaticClassInfo());
  element_factory_ = creates_elements ? element_class_->GetFactory() : nullptr;
  table_ = {};
  has_table_ = false;
  if (element_class_ == nullptr) return;  // PropCount keeps its old value
  SetName(element_class_->Name());
  const auto properties = element_class_->Properties();
  PropCount = static_cast<int32_t>(properties.size());
  if (PropCount > 0) {
    table_ = properties;
    has_table_ = true;
  }
}

bool TVeskaClass::GetPropertyStored(int index) const {
  if (!has_table_) return true;
  return !table_[static_cast<std::size_t>(index)]->Stored().IsConstantFalse();
}

void TVeskaClass::ShowProperties() {
  FreeAll();
  for (int i = 0; has_table_ && i < PropCount; ++i) {
    auto* property = new TVeskaClassProperty;
    property->SetPropInfo(table_[static_cast<std::size_t>(i)]);
    AddElement(property);
  }
}

int TVeskaClass::PropertyIndex(StringView name) const {
  for (std::size_t i = 0; i < table_.size(); ++i) {
    if (SameText(table_[i]->Name(), name)) return static_cast<int>(i);
  }
  return -1;
}

String TVeskaClass::GetPropertyName(int index) const { return GetPropInfo(index)->Name(); }
void TVeskaClass::ThrowIndexOutOfRange(int index) {
  throw ERangeError(u"Property index out of range (" + IntToStr(index) + u")");
}

const ClassInfo* TVeskaClass::GetPropertyClass(int index) const {
  const PropInfo* property = GetPropInfo(index);
  if (property->Kind() != TTypeKind::tkClass || property->PropType().ClassType == nullptr) return nullptr;
  return property->PropType().ClassType();
}

bool TVeskaClass::GetPropertyIsReadOnly(int index) const { return !has_table_ || !GetPropInfo(index)->CanWrite(); }
bool TVeskaClass::GetPropertyIsWriteOnly(int index) const { return !has_table_ || !GetPropInfo(index)->CanRead(); }

bool TVeskaClass::GetPropertyIsReadOrWriteOnly(int index) const {
  if (!has_table_) return true;
  const PropInfo* property = GetPropInfo(index);
  return !(property->CanRead() && property->CanWrite());
}

bool TVeskaClass::IsClassName(StringView name) const { return SameText(GetName(), name); }

String TVeskaClass::GetElementClassName() const { return element_class_ ? element_class_->Name() : String(); }

String TVeskaClass::GetAncestorClassName() const {
  if (element_class_ == nullptr || element_class_->Parent() == nullptr) return {};
  return element_class_->Parent()->Name();
}

String TVeskaClass::GetUnit_Name() const { return element_class_ ? element_class_->UnitName() : String(); }

void TVeskaClass::SelfCHeck() {
  for (int i = 0; i < PropCount && has_table_; ++i) {
    if (!GetPropertyStored(i) || GetPropertyTypeKind(i) != TTypeKind::tkClass) continue;
    const ClassInfo* property_class = GetPropertyClass(i);
    if (property_class != nullptr && !property_class->InheritsFrom(TElement::StaticClassInfo())) {
      // The report has no sender: it speaks of the class, not of this record.
      auto* report = new TVeskaTextMessage(tm_Text, nullptr, nullptr, nullptr, false);
      report->SetMessageText(GetElementClassName() + u" property \"" + GetPropertyName(i) + u"\" is not Element");
      report->Post();
    }
  }
}

// --- TVeskaInstance -------------------------------------------------------------------------

void TVeskaInstance::SetInstance(TElement* element) {
  instance_ = element;
  // A loader binds every element it makes in turn, mostly of the class bound before: the record
  // of that class stands as it is.
  if (element != nullptr && ElementClass() == &element->ClassType()) return;
  SetElementClass(element != nullptr ? &element->ClassType() : nullptr);
}

bool TVeskaInstance::GetPropertyStored(int index) const {
  if (!HasPropertyTable() || instance_ == nullptr) return false;
  return GetPropInfo(index)->IsStored(*instance_);
}

void TVeskaInstance::GetPropertyValue(int index, TPropertyBuffer& buffer) const {
  const PropInfo* property = GetPropInfo(index);
  if (instance_ == nullptr || !property->CanRead()) return;
  const TElement& source = *instance_;
  if (IsOrdinalKind(property->Kind())) {
    buffer = static_cast<int32_t>(property->GetOrd(source));
    return;
  }
  switch (property->Kind()) {
    case TTypeKind::tkClass:
      buffer = ObjectHandles::HandleOf(property->GetObj(source));
      break;
    case TTypeKind::tkFloat:
      buffer = property->GetFloat(source);
      break;
    case TTypeKind::tkString:
    case TTypeKind::tkUString:
    case TTypeKind::tkLString:
    case TTypeKind::tkWString:
      buffer = property->GetStr(source);
      break;
    case TTypeKind::tkMethod:
      buffer = property->GetMethod(source);
      break;
    case TTypeKind::tkVariant:
      buffer = property->GetVariant(source);
      break;
    case TTypeKind::tkInt64:
      buffer = property->GetOrd(source);
      break;
    default:
      break;
  }
}

void TVeskaInstance::SetPropertyValue(int index, const TPropertyBuffer& buffer) {
  const PropInfo* property = GetPropInfo(index);
  if (instance_ == nullptr || !property->CanWrite()) return;
  TElement& target = *instance_;
  if (IsOrdinalKind(property->Kind())) {
    if (auto* value = std::get_if<int32_t>(&buffer)) property->SetOrd(target, *value);
    return;
  }
  switch (property->Kind()) {
    case TTypeKind::tkClass:
      if (auto* value = std::get_if<int32_t>(&buffer)) property->SetObj(target, ObjectHandles::ObjectOf(*value));
      break;
    case TTypeKind::tkFloat:
      if (auto* value = std::get_if<double>(&buffer)) property->SetFloat(target, *value);
      break;
    case TTypeKind::tkString:
    case TTypeKind::tkUString:
      if (auto* value = std::get_if<String>(&buffer)) property->SetStr(target, *value);
      break;
    case TTypeKind::tkMethod:
      if (auto* value = std::get_if<TMethod>(&buffer)) property->SetMethod(target, *value);
      break;
    case TTypeKind::tkVariant:
      if (auto* value = std::get_if<Variant>(&buffer)) property->SetVariant(target, *value);
      break;
    case TTypeKind::tkInt64:
      if (auto* value = std::get_if<int64_t>(&buffer)) property->SetOrd(target, *value);
      break;
    default:  // tkLString and tkWString are read but never written; the others have no buffer
      break;
  }
}

TElement* TVeskaInstance::CreateInstanceCopy() const {
  if (instance_ == nullptr || ElementClass() == nullptr) return nullptr;
  auto* copy = CreateObjectAs<TElement>(*ElementClass());
  if (copy == nullptr) return nullptr;
  TVeskaInstance writer;
  writer.SetInstance(copy);
  for (int i = 0; i < PropCount && HasPropertyTable(); ++i) {
    if (!GetPropertyStored(i)) continue;
    TPropertyBuffer buffer;
    GetPropertyValue(i, buffer);
    writer.SetPropertyValue(i, buffer);
  }
  return copy;
}

// --- TVeskaClasses --------------------------------------------------------------------------

void TVeskaClasses::Publish(Publisher<TVeskaClasses>& p) {
  p.Field(u"ShowProperties", &TVeskaClasses::ShowProperties);
  p.Property(u"SortByName", &TVeskaClasses::SortByName, &TVeskaClasses::SetSortByName);
}

void TVeskaClasses::SetSortByName(bool /*value*/) {}

bool TVeskaClasses::IsPossibleToFree() { return this != detail::process_registry.load(std::memory_order_acquire); }

namespace {

bool IsAscii(StringView name) {
  return std::all_of(name.begin(), name.end(), [](char16_t c) { return c < 0x80; });
}

// Whether the record's name is its own and in ASCII, where the case-folded comparison of the
// list and that of the name index agree.
bool IsAsciiName(const TVeskaClass* record) {
  return record->StoredName() != nullptr && IsAscii(*record->StoredName());
}

// Compares a name with a member's name.  Class records are compared with their stored name in
// place: the search runs on every creation by class name, and copying names dominated it.
int CompareWithName(StringView name, const TElement* member) {
  if (member->ClassType().InheritsFrom(TVeskaClass::StaticClassInfo())) {
    if (const String* stored = static_cast<const TVeskaClass*>(member)->StoredName()) return CompareText(name, *stored);
  }
  return CompareText(name, member->GetName());
}

}  // namespace

// Records registered in ascending order of name cost one comparison each: the search tests the
// last record first.  A duplicate name stays behind the record found first.
int TVeskaClasses::FindIndex(StringView name, int& insert_index) {
  return FindSortedIndex(
      ElementsCount(), [&](int index) { return CompareWithName(name, Get(index)); }, insert_index);
}

void TVeskaClasses::InsertByName(TVeskaClass* record) {
  const bool index_held = NameIndexHolds();
  int insert_index = -1;
  FindIndex(record->GetName(), insert_index);
  if (insert_index < 0) {
    AddElement(record);
  } else {
    InsertElement(insert_index, record);
  }
  current_.store(record, std::memory_order_relaxed);
  // A record inserted at its place keeps the list sorted, and it stands behind any record of
  // its name (the search puts an equal name behind the one it finds), so the index gains it
  // without changing the record it gives for that name.
  if (index_held && IsAsciiName(record)) {
    name_index_.AddIfAbsent(*record->StoredName(), record);
    name_index_list_state_ = ListChanges();
  } else {
    RebuildNameIndex();
  }
}

void TVeskaClasses::RebuildNameIndex() {
  name_index_.Clear();
  name_index_list_state_ = kNameIndexUnused;
  const TVeskaClass* previous = nullptr;
  for (void* item : Elements()) {
    auto* record = ObjectAs<TVeskaClass>(static_cast<TElement*>(item));
    if (record == nullptr || !IsAsciiName(record)) return;
    // A list out of order (records renamed in place) is left to the search, whose answers
    // the index could not reproduce.
    if (previous != nullptr && CompareText(*previous->StoredName(), *record->StoredName()) > 0) return;
    name_index_.AddIfAbsent(*record->StoredName(), record);
    previous = record;
  }
  name_index_list_state_ = ListChanges();
}

void TVeskaClasses::AddVeskaClass(TVeskaClass* record) {
  if (record == nullptr) return;
  InsertByName(record);
  record->ID = registration_counter_++;
}

void TVeskaClasses::AddClass(const ClassInfo& element_class) {
  auto* record = new TVeskaClass;
  record->SetElementClass(&element_class);
  record->SetName(element_class.Name());
  record->ID = registration_counter_++;
  if (ShowProperties) record->ShowProperties();
  InsertByName(record);
}

TVeskaClass* TVeskaClasses::RecordNotIndexed(StringView name) {
  // Every indexed name is in ASCII: a name beyond it is never found there, but the search,
  // which folds case by Unicode rules, may still find it equal to one.
  if (NameIndexHolds() && IsAscii(name)) return nullptr;
  return SearchRecordNamed(name);
}

TVeskaClass* TVeskaClasses::SearchRecordNamed(StringView name) {
  int insert_index = -1;
  int index = FindIndex(name, insert_index);
  if (index < 0) return nullptr;
  // The search may land on any of several records of one name; the one registered first,
  // which stands in front of the others, is the one that answers.
  while (index > 0 && CompareWithName(name, Get(index - 1)) == 0) --index;
  return ObjectAs<TVeskaClass>(Get(index));
}

TVeskaClass* TVeskaClasses::GetVeskaClassByName(StringView name) {
  TVeskaClass* record = RecordNamed(name);
  if (record != nullptr) current_.store(record, std::memory_order_relaxed);
  return record;
}

const ClassInfo* TVeskaClasses::GetClass(StringView name) {
  TVeskaClass* record = GetVeskaClassByName(name);
  return record != nullptr ? record->ElementClass() : nullptr;
}

const ClassInfo* TVeskaClasses::ClassNamed(StringView name) {
  const TVeskaClass* record = RecordNamed(name);
  return record != nullptr ? record->ElementClass() : nullptr;
}

namespace {

const ClassInfo& FoundOrRaise(const ClassInfo* found, StringView name) {
  if (found == nullptr) throw EClassNotFound(String(u"Veska nenašel třídu ").append(name));
  return *found;
}

}  // namespace

const ClassInfo* TVeskaClasses::FindClass(StringView name) { return &FoundOrRaise(GetClass(name), name); }

// --- free functions -------------------------------------------------------------------------

namespace {

std::atomic<StartUpSequence> installed_start_up{nullptr};

}  // namespace

void TVeskaClasses::RegisterUnit(const UnitClasses& unit) {
  if (std::find(registered_units_.begin(), registered_units_.end(), unit.unit_name) != registered_units_.end()) return;
  registered_units_.emplace_back(unit.unit_name);
  for (const ClassInfoSource class_info : unit.classes) AddClass(class_info());
}

TVeskaClasses& detail::CreateProcessRegistry() {
  // Created once, filled by the installed start-up sequence; never freed.
  static TVeskaClasses* const registry = [] {
    auto* created = new TVeskaClasses;
    created->ShowProperties = true;
    if (const StartUpSequence start_up = installed_start_up.load()) start_up(*created);
    process_registry.store(created, std::memory_order_release);
    return created;
  }();
  return *registry;
}

void InstallStartUpSequence(StartUpSequence sequence) {
  installed_start_up = sequence;
  // A registry created before the installation (from another unit's start-up code) is filled
  // now; its units' guards keep a second run from registering anything twice.
  if (detail::process_registry.load(std::memory_order_acquire) != nullptr && sequence != nullptr)
    sequence(VeskaClasses());
}

bool TVeskaClass::IsPossibleToFree() {
  const TVeskaClasses* process = detail::process_registry.load(std::memory_order_acquire);
  return (process == nullptr || !IsMyOwner(process)) && TOwnerEntity::IsPossibleToFree();
}

void RegisterVeskaClass(const ClassInfo& element_class) { VeskaClasses().AddClass(element_class); }

const ClassInfo* GetVeskaClass(StringView name) { return VeskaClasses().ClassNamed(name); }

const ClassInfo* FindVeskaClass(StringView name) { return &FoundOrRaise(GetVeskaClass(name), name); }

TElement* CreateElementCopy(TElement* element) {
  TVeskaInstance instance;
  instance.SetInstance(element);
  return instance.CreateInstanceCopy();
}

void CHeckVeskaClasses() {
  TVeskaClasses& registry = VeskaClasses();
  for (int i = 0; i <= registry.GetLastIndex(); ++i) {
    if (auto* record = ObjectAs<TVeskaClass>(registry.Get(i))) record->SelfCHeck();
  }
}

namespace {

// The record of the class that creation by name takes: the one registered under the name,
// else the one under "T" + name, each only with an element class; none when neither is.
const TVeskaClass* RecordForCreationByName(StringView name) {
  TVeskaClasses& registry = VeskaClasses();
  const auto class_record = [&registry](StringView class_name) -> const TVeskaClass* {
    const TVeskaClass* record = registry.RecordNamed(class_name);
    return record != nullptr && record->ElementClass() != nullptr ? record : nullptr;
  };
  const TVeskaClass* record = class_record(name);
  return record != nullptr ? record : class_record(String(u"T").append(name));
}

}  // namespace

const ClassInfo* ClassForCreationByName(StringView name) {
  const TVeskaClass* record = RecordForCreationByName(name);
  return record != nullptr ? record->ElementClass() : nullptr;
}

TElement* CreateElementByName(StringView name) {
  // The common case, kept short: the name is that of a class that creates elements.
  if (const TVeskaClass* record = VeskaClasses().RecordNamed(name)) {
    if (TElement* element = record->NewElement()) return element;
  }
  if (const TVeskaClass* record = RecordForCreationByName(name)) {
    if (TElement* element = record->NewElement()) return element;
  }
  ShowMessage(String(u"Neregistrovaný element: ").append(name), MessageKind::Error);
  return nullptr;
}

}  // namespace veska
