#include "kernel/models/element_model.h"

#include "kernel/models/model_parts.h"
#include "kernel/platform/object_handles.h"

namespace veska {

namespace {

constexpr StringView kLinksPart = u"LINKS";
constexpr StringView kPropertiesPart = u"PROPERTIES";
constexpr StringView kElementsPart = u"ELEMENTS";
constexpr StringView kImagesPart = u"IMAGES";

// An element travels through text as its reference number, which the property writer turns
// back into the element for object-valued properties.
String ReferenceText(TElement* element) { return IntToStr(ObjectHandles::HandleOf(element)); }

// How one end of a link takes part: a plain property model stands for a property of its
// instance, an element model for the instance itself.  Anything else stops the link.
enum class LinkEnd { Property, Element, None };

LinkEnd EndKind(const TElement& end) {
  if (&end.ClassType() == &TPropertyModel::StaticClassInfo()) return LinkEnd::Property;
  return end.Is<TElementModel>() ? LinkEnd::Element : LinkEnd::None;
}

}  // namespace

// --- TModelLink ---------------------------------------------------------------------------------

TElement* TModelLink::GetDestination() { return nullptr; }
TElement* TModelLink::GetSource() { return nullptr; }

TElement* TModelLink::Target() { return ElementsCount() > 0 ? Get(0) : nullptr; }

TElement* TModelLink::HoldingPropertyModel() { return FindClassInOwners(TPropertyModel::StaticClassInfo()); }

// A target above the link (its own property model, say) is not taken: the link would hold its
// holder, and neither could ever be freed.
void TModelLink::LinkTo(TElement* element) {
  FreeAll();
  if (element != nullptr && !IsInOwners(element)) AddElement(element);
}

// A property end gives the value of the property that its model names, read from the source's
// instance, or receives it into the destination's instance; an element end gives its instance
// as a reference number, or takes the source's instance among its members (once) when its own
// instance is an entity.  An element end at the destination does not use the value.
void TModelLink::Link() {
  TElement* source = GetSource();
  TElement* destination = GetDestination();
  if (source == nullptr || destination == nullptr) return;
  const LinkEnd source_kind = EndKind(*source);
  const LinkEnd destination_kind = EndKind(*destination);
  if (source_kind == LinkEnd::None || destination_kind == LinkEnd::None) return;
  TElement* source_instance = static_cast<TPropertyModel*>(source)->GetInstance();
  if (source_instance == nullptr) return;
  TElement* destination_instance = static_cast<TPropertyModel*>(destination)->GetInstance();
  if (destination_instance == nullptr) return;

  const String value = source_kind == LinkEnd::Property ? source_instance->GetPropertyStringByName(source->GetName())
                                                        : ReferenceText(source_instance);
  if (destination_kind == LinkEnd::Property) {
    destination_instance->SetPropertyStringByName(destination->GetName(), value);
  } else if (auto* entity = ObjectAs<TEntity>(destination_instance)) {
    if (entity->IndexOf(source_instance) < 0 && !entity->IsInOwners(source_instance)) {
      entity->AddElement(source_instance);
    }
  }
}

void TModelLink::Publish(Publisher<TModelLink>& p) {
  p.Property(u"Source", &TModelLink::GetSource).Stored(false);
  p.Property(u"Destination", &TModelLink::GetDestination).Stored(false);
}

// --- TPropertyModel -----------------------------------------------------------------------------

TElement* TPropertyModel::GetInstance() {
  auto* model = ObjectAs<TPropertyModel>(FindClassInOwners(TElementModel::StaticClassInfo()));
  return model != nullptr ? model->GetInstance() : nullptr;
}

TOwnerEntity* TPropertyModel::GetLinks() { return FindOrCreatePart<TOwnerEntity>(*this, kLinksPart); }

bool TPropertyModel::GetNoLinks() { return PartIsEmpty(*this, kLinksPart); }

template <class Link>
void TPropertyModel::AddLink(TElement* element) {
  if (element == nullptr || IsInOwners(element)) return;
  TOwnerEntity* links = GetLinks();
  if (links == nullptr) return;
  auto* link = new Link;
  link->LinkTo(element);
  links->AddElement(link);
}

void TPropertyModel::SetNewSourceLink(TElement* element) { AddLink<TSourceModelLink>(element); }
void TPropertyModel::SetNewDestinationLink(TElement* element) { AddLink<TDestinationModelLink>(element); }

void TPropertyModel::Publish(Publisher<TPropertyModel>& p) {
  p.Property(u"Alias", &TPropertyModel::Alias, &TPropertyModel::SetAlias);
  p.Field(u"Value", &TPropertyModel::Value);
  p.Field(u"LinkOnly", &TPropertyModel::LinkOnly);
  p.Property(u"Links", &TPropertyModel::GetLinks).Stored(false);
  p.Property(u"NoLinks", &TPropertyModel::GetNoLinks).Stored(false);
  p.WriteOnly(u"NewSourceLink", &TPropertyModel::SetNewSourceLink).Stored(false);
  p.WriteOnly(u"NewDestinationLink", &TPropertyModel::SetNewDestinationLink).Stored(false);
}

// --- TModelProperties ---------------------------------------------------------------------------

TPropertyModel* TModelProperties::PropertyModel(const String& name) {
  return FindOrCreatePart<TPropertyModel>(*this, name);
}

// Reading creates the property model when it is missing, as writing does: the by-name read is
// the way into a property model, not a read of a value.
String TModelProperties::GetPropertyStringByName(StringView name) const {
  return ReferenceText(const_cast<TModelProperties*>(this)->PropertyModel(String(name)));
}

bool TModelProperties::SetPropertyStringByName(StringView name, const String& value) {
  TPropertyModel* model = PropertyModel(String(name));
  if (model == nullptr) return false;
  model->Value = value;
  return true;
}

// --- TElementModel ------------------------------------------------------------------------------

TElement* TElementModel::GetInstance() {
  const String name = GetName();
  const String class_name = AsciiUpperCase(ElementClassName);
  for (int i = 0; i < GetOwnersCount(); ++i) {
    TEntity* owner = GetOwnerEntity(i);
    if (owner != nullptr && SameText(owner->GetName(), name) && AsciiUpperCase(owner->ClassName()) == class_name) {
      return owner;
    }
  }
  return nullptr;
}

TModelProperties* TElementModel::GetModelProperties() {
  return FindOrCreatePart<TModelProperties>(*this, kPropertiesPart);
}
TOwnerEntity* TElementModel::GetModelElements() { return FindOrCreatePart<TOwnerEntity>(*this, kElementsPart); }
TStringListElement* TElementModel::GetImages() { return FindOrCreatePart<TStringListElement>(*this, kImagesPart); }
bool TElementModel::GetNoModelProperties() { return PartIsEmpty(*this, kPropertiesPart); }
bool TElementModel::GetNoModelElements() { return PartIsEmpty(*this, kElementsPart); }
bool TElementModel::GetNoImages() { return PartIsEmpty(*this, kImagesPart); }

void TElementModel::SetNewPropertyName(const String& name) { AddNewMember<TPropertyModel>(GetModelProperties(), name); }

TPropertyModel* TElementModel::GetLastPropertyModel() {
  return LastMemberOfPart<TPropertyModel>(*this, kPropertiesPart);
}

void TElementModel::SetNewElementName(const String& name) { AddNewMember<TElementModel>(GetModelElements(), name); }

void TElementModel::SetNewImage(const String& text) {
  if (TStringListElement* images = GetImages()) images->AddName(text);
}

void TElementModel::Publish(Publisher<TElementModel>& p) {
  using Self = TElementModel;
  p.Property(u"ElementClassName", &Self::ElementClassName, &Self::SetElementClassName);
  p.Property(u"AttachToPropertyName", &Self::AttachToPropertyName, &Self::SetAttachToPropertyName);
  p.Property(u"Comment", &Self::Comment, &Self::SetComment);
  p.Property(u"ModelProperties", &Self::GetModelProperties).Stored(false);
  p.Property(u"Properties", &Self::GetModelProperties).Stored(false);
  p.Property(u"ModelElements", &Self::GetModelElements).Stored(false);
  p.Property(u"Images", &Self::GetImages).Stored(false);
  p.Property(u"ImageIndex", &Self::ImageIndex, &Self::SetImageIndex);
  p.Property(u"NoModelProperties", &Self::GetNoModelProperties).Stored(false);
  p.Property(u"NoModelElements", &Self::GetNoModelElements).Stored(false);
  p.Property(u"NoImages", &Self::GetNoImages).Stored(false);
  p.WriteOnly(u"NewPropertyName", &Self::SetNewPropertyName).Stored(false);
  p.Property(u"LastPropertyModel", &Self::GetLastPropertyModel).Stored(false);
  p.WriteOnly(u"NewElementName", &Self::SetNewElementName).Stored(false);
  p.WriteOnly(u"NewImage", &Self::SetNewImage).Stored(false);
}

}  // namespace veska
