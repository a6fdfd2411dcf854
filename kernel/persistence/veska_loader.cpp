#include "kernel/persistence/veska_loader.h"

#include <exception>

#include "kernel/elements/entity.h"
#include "kernel/elements/message.h"
#include "kernel/platform/application.h"

namespace veska {
namespace {

constexpr int32_t kLastTypeKind = static_cast<int32_t>(TTypeKind::tkProcedure);

// A declared kind as a type kind; a number that names none is the unknown kind, which carries
// no value.
TTypeKind KindOf(int32_t declared) {
  return declared >= 0 && declared <= kLastTypeKind ? static_cast<TTypeKind>(declared) : TTypeKind::tkUnknown;
}

bool IsShortOrLongString(int32_t kind) { return kind == 5 || kind == 10; }
bool IsStringKind(int32_t kind) { return IsShortOrLongString(kind) || kind == 18; }
bool IsPair(int32_t a, int32_t b, int32_t x, int32_t y) { return (a == x && b == y) || (a == y && b == x); }

}  // namespace

TVeskaLoader::~TVeskaLoader() { delete loaded_; }

String TVeskaLoader::NumberToPropertyName(int32_t number) { return number == 0 ? u"FileName" : u"ContainerEntity"; }

void TVeskaLoader::DoIt() {
  StartGauge();
  try {
    Prepare();
    LoadInfo();
    LoadClasses();
    LoadAll();
  } catch (...) {
    Finish();
    EndGauge();
    throw;
  }
  TElement* result = loaded_->NoElements() ? nullptr : loaded_->Get(loaded_->GetLastIndex());
  if (auto* marker = ObjectAs<TYouShallNotPass>(result)) {
    loaded_->RemoveElementIndex(loaded_->GetLastIndex());
    result = loaded_->NoElements() ? nullptr : loaded_->Get(loaded_->GetLastIndex());
    // The closing marker is freed unless the file made it a member of an element it loaded.
    bool held = false;
    for (int i = 0; i < loaded_->ElementsCount() && !held; ++i) {
      if (auto* entity = ObjectAs<TEntity>(loaded_->Get(i))) held = entity->IndexOf(marker) >= 0;
    }
    if (!held) delete marker;
  }
  SetOutput(result);
  Finish();
  EndGauge();
}

void TVeskaLoader::StartGauge() {
  Application().SetCursor(TCursor::HourGlass);
  StartProgress(u"Načítání modelu ze souboru " + FileName, 0, GetGaugeMax());
  Application().ProcessMessages();
}

void TVeskaLoader::EndGauge() {
  Application().SetCursor(TCursor::Default);
  EndProgress();
}

void TVeskaLoader::Prepare() {
  delete loaded_;
  loaded_ = new TQuickEntity;
  if (instance_ != nullptr) FreeElement(instance_);
  instance_ = new TVeskaInstance;
  AddElement(instance_);
  PrepareClasses();
}

void TVeskaLoader::PrepareClasses() { SetClasses(new TVeskaClasses); }

void TVeskaLoader::SetClasses(TVeskaClasses* classes) {
  declared_.clear();
  actual_declarations_ = {};
  if (classes_ != nullptr) FreeElement(classes_);
  classes_ = classes;
  if (classes != nullptr) AddElement(classes);
}

void TVeskaLoader::Finish() {
  if (loaded_ == nullptr) return;
  if (TEntity* container = GetContainerEntity()) container->PAddAllFrom(loaded_);
  loaded_->Clear();
  delete loaded_;
  loaded_ = nullptr;
}

void TVeskaLoader::AddClass(const String& name) {
  auto* declaration = new TVeskaClass;
  actual_class_ = declaration;
  classes_->AddElement(declaration);
  declared_.emplace_back(declaration, std::vector<TVeskaClassProperty*>{});
  actual_declarations_ = {declaration, &declared_.back().second};
  if (const ClassInfo* registered = GetVeskaClass(name)) {
    declaration->SetElementClass(registered);
    return;
  }
  Report(name + u" - Unknown class !");
  declaration->SetElementClass(&TOwnerEntity::StaticClassInfo());
  declaration->SetName(name + u" ?");
}

void TVeskaLoader::AddClassProperty(const String& name, int32_t declared_kind) {
  auto* declaration = new TVeskaClassProperty;
  declaration->SetName(name);
  actual_class_->AddElement(declaration);
  if (!declared_.empty() && declared_.back().first == actual_class_) declared_.back().second.push_back(declaration);
  const int index = actual_class_->PropertyIndex(name);
  declaration->PropIndex = index;
  declaration->SetLostTypeKind(KindOf(declared_kind));
  const String class_name = actual_class_->GetName();
  if (index < 0) {
    declaration->SetLostProperty(true);
    Report(class_name + u" lost property: " + name);
    return;
  }
  declaration->SetPropInfo(actual_class_->GetPropInfo(index));
  if (!IsCompatible(*declaration, actual_class_->GetPropertyTypeKind(index), declared_kind)) {
    declaration->PropIndex = -1;
    Report(class_name + u" property \"" + name + u"\" type error: " + IntToStr(declared_kind));
    return;
  }
  if (actual_class_->GetPropertyStored(index)) {
    const ClassInfo* property_class = actual_class_->GetPropertyClass(index);
    if (declared_kind == 7 && property_class != nullptr && !property_class->InheritsFrom(TElement::StaticClassInfo())) {
      Report(class_name + u" property \"" + name + u"\" is not Element!");
    }
    if (actual_class_->GetPropertyIsReadOrWriteOnly(index)) {
      Report(class_name + u" property \"" + name + u"\" is Read or Write Only!");
    }
  }
}

// The compatibility rule, step by step; a conversion is reported and marked on the declaration.
bool TVeskaLoader::IsCompatible(TVeskaClassProperty& declaration, TTypeKind current_kind, int32_t declared) {
  const auto current = static_cast<int32_t>(current_kind);
  const auto converted = [&] {
    Report(actual_class_->GetName() + u" property \"" + declaration.GetName() + u"\" type conv.: " +
           declaration.GetPropertyStringByName(u"LostTypeKind") + u" to " +
           declaration.GetPropertyStringByName(u"TypeKind"));
    declaration.SetTypeMishmash(true);
    return true;
  };
  if (current == declared) return true;
  if (IsPair(current, declared, 1, 16) || IsPair(current, declared, 2, 9)) return true;
  if (IsStringKind(current)) {
    if (IsShortOrLongString(declared)) return true;
    if (declared != 7) return converted();
  }
  if (IsShortOrLongString(declared) && current != 7) return converted();
  if (declared != 4) return false;
  if (current == 1 || current == 16) return converted();
  return false;
}

void TVeskaLoader::NewElement(int32_t class_number) {
  TVeskaClass* declaration = nullptr;
  if (class_number >= 0 && class_number < classes_->ElementsCount()) {
    declaration = ObjectAs<TVeskaClass>(classes_->Get(class_number));
  }
  member_list_target_ = {};
  if (declaration == nullptr) {
    instance_->SetInstance(nullptr);
    return;
  }
  actual_class_ = declaration;
  if (static_cast<std::size_t>(class_number) < declared_.size() && declared_[class_number].first == declaration) {
    actual_declarations_ = {declaration, &declared_[class_number].second};
  }
  if (declaration->ElementClass() == nullptr) return;
  TElement* element = declaration->NewElement();
  if (element == nullptr) return;
  instance_->SetInstance(element);
  actual_element_ = element;
  loaded_->AddElement(element);
}

TVeskaClassProperty* TVeskaLoader::SearchDeclaration(int32_t number) const {
  if (actual_class_ == nullptr || number < 0 || number >= actual_class_->ElementsCount()) return nullptr;
  return ObjectAs<TVeskaClassProperty>(actual_class_->Get(number));
}

void TVeskaLoader::SetProperty(int32_t number, TTypeKind kind, const TPropertyBuffer& value) {
  if (actual_class_ == nullptr || actual_class_->ElementClass() == nullptr || instance_->Instance() == nullptr) return;
  const TVeskaClassProperty* declaration = Declaration(number);
  if (declaration == nullptr || declaration->PropIndex < 0) return;
  const int index = declaration->PropIndex;
  if (instance_->GetPropertyTypeKind(index) != kind || instance_->GetPropertyIsReadOrWriteOnly(index)) return;
  try {
    instance_->SetPropertyValue(index, value);
  } catch (const std::exception&) {
    Report(u"Loader Property Set Error: " + actual_class_->GetName() + u" " + declaration->GetName());
  }
}

void TVeskaLoader::AddNextElement(int32_t element_number) {
  TElement* element = loaded_->Get(element_number);
  if (actual_element_ == nullptr || element == nullptr) return;
  if (member_list_target_.element != actual_element_) {
    member_list_target_ = {actual_element_, ObjectAs<TEntity>(actual_element_),
                           ObjectAs<TEnvelopeEntity>(actual_element_) != nullptr};
  }
  TEntity* entity = member_list_target_.entity;
  if (entity == nullptr) return;
  // A file may name an element as a member of itself or of its own members; such a member would
  // hold its holder, and is left out.  Only an element with owners, or an envelope, which
  // wraps an entity, has owners to climb: a file lists an entity's members before the entity
  // joins an owner of its own, so the climb (and the allocations of its walk) is mostly passed
  // over.
  const bool climbs = member_list_target_.envelope || actual_element_->GetOwnersCount() > 0;
  if (element == actual_element_ || (climbs && actual_element_->IsInOwners(element))) {
    Report(u"Loader Error: " + actual_class_->GetName() + u" Element " + IntToStr(element_number));
    return;
  }
  if (entity->CheckLoadDuplicity() && entity->IndexOf(element) >= 0) return;
  entity->AddElement(element);
}

void TVeskaLoader::Publish(Publisher<TVeskaLoader>& p) {
  p.Property(u"FileName", &TVeskaLoader::FileName, &TVeskaLoader::SetFileName);
  p.Property(u"_Container", &TVeskaLoader::GetContainer).Stored(false);
  p.Property(u"ContainerEntity", &TVeskaLoader::GetContainerEntity, &TVeskaLoader::SetContainerEntity);
}

}  // namespace veska
