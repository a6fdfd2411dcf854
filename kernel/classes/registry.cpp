#include "kernel/classes/registry.h"

#include <algorithm>
#include <atomic>

#include "kernel/elements/message.h"
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

void TVeskaClass::SetElementClass(const ClassInfo* element_class) {
  element_class_ = element_class;
  table_.clear();
  has_table_ = false;
  if (element_class_ == nullptr) return;  // PropCount keeps its old value
  SetName(element_class_->Name());
  const auto properties = element_class_->Properties();
  PropCount = static_cast<int32_t>(properties.size());
  if (PropCount > 0) {
    table_.assign(properties.begin(), properties.end());
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

int TVeskaClass::PropertyIndex(const String& name) const {
  for (std::size_t i = 0; i < table_.size(); ++i) {
    if (SameText(table_[i]->Name(), name)) return static_cast<int>(i);
  }
  return -1;
}

String TVeskaClass::GetPropertyName(int index) const { return GetPropInfo(index)->Name(); }
TTypeKind TVeskaClass::GetPropertyTypeKind(int index) const { return GetPropInfo(index)->Kind(); }

const PropInfo* TVeskaClass::GetPropInfo(int index) const {
  if (index < 0 || static_cast<std::size_t>(index) >= table_.size()) {
    throw ERangeError(u"Property index out of range (" + IntToStr(index) + u")");
  }
  return table_[static_cast<std::size_t>(index)];
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

bool TVeskaClass::IsClassName(const String& name) const { return SameText(GetName(), name); }

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

namespace {

// Compares a name with a member's name.  Class records are compared with their stored name in
// place: the search runs on every creation by class name, and copying names dominated it.
int CompareWithName(const String& name, const TElement* member) {
  if (member->ClassType().InheritsFrom(TVeskaClass::StaticClassInfo())) {
    if (const String* stored = static_cast<const TVeskaClass*>(member)->StoredName()) return CompareText(name, *stored);
  }
  return CompareText(name, member->GetName());
}

}  // namespace

// A binary search that tests the last record first and the first record second, so that
// names registered in ascending order cost one comparison each.  An equal name found at the
// end is appended behind it; a duplicate is thereby kept behind the record found first.
int TVeskaClasses::FindIndex(const String& name, int& insert_index) {
  insert_index = -1;
  if (NoElements()) return -1;
  int lo = 0;
  int hi = ElementsCount() - 1;
  const auto compare = [&](int index) { return CompareWithName(name, Get(index)); };
  int order = compare(hi);
  if (order > 0) return -1;
  if (order == 0) return hi;
  if (hi <= lo) {
    insert_index = lo;
    return -1;
  }
  order = compare(lo);
  if (order < 0) {
    insert_index = lo;
    return -1;
  }
  if (order == 0) {
    insert_index = lo + 1;
    return lo;
  }
  while (true) {
    insert_index = hi;
    if (hi - lo < 2) return -1;
    const int mid = lo + (hi - lo) / 2;
    order = compare(mid);
    if (order < 0) {
      hi = mid;
    } else if (order > 0) {
      lo = mid;
    } else {
      insert_index = mid + 1;
      return mid;
    }
    if (lo >= hi) return -1;
  }
}

void TVeskaClasses::InsertByName(TVeskaClass* record) {
  int insert_index = -1;
  FindIndex(record->GetName(), insert_index);
  if (insert_index < 0) {
    AddElement(record);
  } else {
    InsertElement(insert_index, record);
  }
  current_.store(record, std::memory_order_relaxed);
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

TVeskaClass* TVeskaClasses::RecordNamed(const String& name) {
  int insert_index = -1;
  int index = FindIndex(name, insert_index);
  if (index < 0) return nullptr;
  // The search may land on any of several records of one name; the one registered first,
  // which stands in front of the others, is the one that answers.
  while (index > 0 && CompareWithName(name, Get(index - 1)) == 0) --index;
  return ObjectAs<TVeskaClass>(Get(index));
}

TVeskaClass* TVeskaClasses::GetVeskaClassByName(const String& name) {
  TVeskaClass* record = RecordNamed(name);
  if (record != nullptr) current_.store(record, std::memory_order_relaxed);
  return record;
}

const ClassInfo* TVeskaClasses::GetClass(const String& name) {
  TVeskaClass* record = GetVeskaClassByName(name);
  return record != nullptr ? record->ElementClass() : nullptr;
}

const ClassInfo* TVeskaClasses::ClassNamed(const String& name) {
  const TVeskaClass* record = RecordNamed(name);
  return record != nullptr ? record->ElementClass() : nullptr;
}

namespace {

const ClassInfo& FoundOrRaise(const ClassInfo* found, const String& name) {
  if (found == nullptr) throw EClassNotFound(u"Veska nenašel třídu " + name);
  return *found;
}

}  // namespace

const ClassInfo* TVeskaClasses::FindClass(const String& name) { return &FoundOrRaise(GetClass(name), name); }

// --- free functions -------------------------------------------------------------------------

namespace {

std::atomic<StartUpSequence> installed_start_up{nullptr};
std::atomic<bool> registry_created{false};

}  // namespace

void TVeskaClasses::RegisterUnit(const UnitClasses& unit) {
  if (std::find(registered_units_.begin(), registered_units_.end(), unit.unit_name) != registered_units_.end()) return;
  registered_units_.emplace_back(unit.unit_name);
  for (const ClassInfoSource class_info : unit.classes) AddClass(class_info());
}

TVeskaClasses& VeskaClasses() {
  // Created once, filled by the installed start-up sequence; never freed.
  static TVeskaClasses* const registry = [] {
    auto* created = new TVeskaClasses;
    created->ShowProperties = true;
    if (const StartUpSequence start_up = installed_start_up.load()) start_up(*created);
    registry_created = true;
    return created;
  }();
  return *registry;
}

void InstallStartUpSequence(StartUpSequence sequence) {
  installed_start_up = sequence;
  // A registry created before the installation (from another unit's start-up code) is filled
  // now; its units' guards keep a second run from registering anything twice.
  if (registry_created && sequence != nullptr) sequence(VeskaClasses());
}

void RegisterVeskaClass(const ClassInfo& element_class) { VeskaClasses().AddClass(element_class); }

const ClassInfo* GetVeskaClass(const String& name) { return VeskaClasses().ClassNamed(name); }

const ClassInfo* FindVeskaClass(const String& name) { return &FoundOrRaise(GetVeskaClass(name), name); }

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

const ClassInfo* ClassForCreationByName(const String& name) {
  const ClassInfo* cls = GetVeskaClass(name);
  return cls != nullptr ? cls : GetVeskaClass(u"T" + name);
}

TElement* CreateElementByName(const String& name) {
  if (const ClassInfo* cls = ClassForCreationByName(name)) {
    if (auto* element = CreateObjectAs<TElement>(*cls)) return element;
  }
  ShowMessage(u"Neregistrovaný element: " + name, MessageKind::Error);
  return nullptr;
}

}  // namespace veska
