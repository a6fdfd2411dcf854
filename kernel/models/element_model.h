// Element and property models: how an element (most often a tool) is to be set up.
//
// An element model (TElementModel) names the class of the element it describes and holds a
// property model (TPropertyModel) per property value to set, models of sub-elements, and image
// names.  A model is attached to the element it describes by being one of that element's
// members; the element finds its model among its members, and the model finds its instance
// among its owners.  Links (TModelLink) carry values between the instances of two models when
// they are executed: a property value to a property, or an element into an entity.
//
// Models are built by files and scripts through their published properties: the write-only
// ones (NewPropertyName, NewSourceLink, ...) are commands, and LastPropertyModel hands back what
// the last command made.  Nothing here raises or reports: a missing end, instance or part makes
// an operation do nothing.
#pragma once

#include <cstdint>

#include "kernel/elements/named.h"
#include "kernel/types/list_elements.h"

namespace veska {

inline constexpr std::u16string_view kElementModelUnit = u"E_elementmodel";

// A link holds at most one element, the one it links to (its target), and knows which of its
// two ends that target is.  The base class has neither end.
class TModelLink : public TOwnerEntity {
  VESKA_CLASS(TModelLink, TOwnerEntity, kElementModelUnit)
 public:
  virtual TElement* GetDestination();
  virtual TElement* GetSource();

  // Frees what the link held and makes the element its one target.
  void LinkTo(TElement* element);
  // Carries the value from the source's instance to the destination's; see the implementation.
  void Link();

  static void Publish(Publisher<TModelLink>& p);

 protected:
  TElement* Target();  // the linked element; none while the link is empty
  // The property model the link is placed in (through its "LINKS" part).
  TElement* HoldingPropertyModel();
};

// Placed in the links of the destination property model, it points back to the source.
class TSourceModelLink : public TModelLink {
  VESKA_CLASS(TSourceModelLink, TModelLink, kElementModelUnit)
 public:
  TElement* GetDestination() override { return HoldingPropertyModel(); }
  TElement* GetSource() override { return Target(); }
};

// Placed in the links of the source property model, it points to the destination.
class TDestinationModelLink : public TModelLink {
  VESKA_CLASS(TDestinationModelLink, TModelLink, kElementModelUnit)
 public:
  TElement* GetDestination() override { return Target(); }
  TElement* GetSource() override { return HoldingPropertyModel(); }
};

// The model of one property value.  Its element name is the name of the property it sets.
class TPropertyModel : public TOwnerEntity {
  VESKA_CLASS(TPropertyModel, TOwnerEntity, kElementModelUnit)
 public:
  bool LinkOnly = false;
  String Alias;
  String Value;

  // The element whose property this models: the instance of the element model that holds it.
  virtual TElement* GetInstance();

  void SetAlias(const String& alias) { Alias = alias; }
  // The "LINKS" part, created on first use.
  TOwnerEntity* GetLinks();
  bool GetNoLinks();
  // Each makes a link of its kind to the element and adds it to the links; none does nothing.
  void SetNewSourceLink(TElement* element);
  void SetNewDestinationLink(TElement* element);

  static void Publish(Publisher<TPropertyModel>& p);

 private:
  template <class Link>
  void AddLink(TElement* element);
};

// The property models of an element model.  Reading or writing any name by text goes to the
// property model of that name, which is created when it is missing: writing sets its Value, and
// reading gives the model itself as a reference number, so that a path can go on into it.
class TModelProperties : public TOwnerEntity {
  VESKA_CLASS(TModelProperties, TOwnerEntity, kElementModelUnit)
 public:
  TPropertyModel* PropertyModel(const String& name);

  String GetPropertyStringByName(StringView name) const override;
  bool SetPropertyStringByName(StringView name, const String& value) override;
};

class TElementModel : public TPropertyModel {
  VESKA_CLASS(TElementModel, TPropertyModel, kElementModelUnit)
 public:
  int32_t ImageIndex = 0;
  String ElementClassName;
  String Comment;
  String AttachToPropertyName;

  // The first owner with the model's name (case ignored, as the locale compares) and of the
  // class the model names (ASCII case ignored); none when no owner is both.
  TElement* GetInstance() override;

  void SetElementClassName(const String& name) { ElementClassName = name; }
  void SetAttachToPropertyName(const String& name) { AttachToPropertyName = name; }
  void SetComment(const String& comment) { Comment = comment; }
  void SetImageIndex(int32_t index) { ImageIndex = index; }

  // The parts "PROPERTIES", "ELEMENTS" and "IMAGES", created on first use; the No... questions
  // never create them.
  TModelProperties* GetModelProperties();
  TOwnerEntity* GetModelElements();
  TStringListElement* GetImages();
  bool GetNoModelProperties();
  bool GetNoModelElements();
  bool GetNoImages();

  void SetNewPropertyName(const String& name);
  // The property model the last NewPropertyName made (the last of the property models).
  TPropertyModel* GetLastPropertyModel();
  void SetNewElementName(const String& name);
  // Appends the text as a line of the image list (an entry named by it).
  void SetNewImage(const String& text);

  static void Publish(Publisher<TElementModel>& p);
};

}  // namespace veska
