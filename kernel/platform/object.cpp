#include "kernel/platform/object.h"

#include <utility>

#include "kernel/platform/exceptions.h"
#include "kernel/platform/object_handles.h"

namespace veska {

TObject::~TObject() {
  if (handle_.load(std::memory_order_relaxed) != 0) ObjectHandles::Forget(*this);
}

const ClassInfo& TObject::StaticClassInfo() {
  static const ClassInfo info(StaticClassName, nullptr, StaticUnitName, sizeof(TObject), nullptr, nullptr);
  return info;
}

String TObject::ClassName() const { return ClassType().Name(); }

bool TObject::InheritsFrom(const ClassInfo& ancestor) const { return ClassType().InheritsFrom(ancestor); }

const ClassInfo& TPersistent::StaticClassInfo() {
  static const ClassInfo info(StaticClassName, &TObject::StaticClassInfo(), StaticUnitName, sizeof(TPersistent),
                              nullptr, nullptr);
  return info;
}

void TPersistent::Assign(const TPersistent* source) {
  if (source != nullptr) {
    source->AssignTo(this);
    return;
  }
  AssignTo(nullptr);
}

void TPersistent::AssignTo(TPersistent* destination) const {
  const String target = destination != nullptr ? destination->ClassName() : String(u"nil");
  throw EConvertError(u"Cannot assign a " + ClassName() + u" to a " + target);
}

ClassInfo::ClassInfo(StringView name, const ClassInfo* parent, StringView unit_name, std::size_t instance_size,
                     Factory factory, PublishFunction publish)
    : name_(name), parent_(parent), unit_name_(unit_name), instance_size_(instance_size), factory_(factory) {
  if (parent_ != nullptr) all_properties_ = parent_->all_properties_;
  if (publish != nullptr) publish(*this);
  for (const PropInfo* property : all_properties_) property_index_.AddIfAbsent(property->Name(), property);
}

bool ClassInfo::InheritsFrom(const ClassInfo& ancestor) const {
  for (const ClassInfo* c = this; c != nullptr; c = c->parent_) {
    if (c == &ancestor) return true;
  }
  return false;
}

PropInfo& ClassInfo::AddProperty(PropInfo property) {
  property.name_index_ = static_cast<int>(all_properties_.size());
  PropInfo& added = own_properties_.emplace_back(std::move(property));
  all_properties_.push_back(&added);
  return added;
}

}  // namespace veska
