// The property builder: a class describes its published properties from member pointers
// (fields, getter and setter methods) and the kind of each is deduced from its C++ type.
//
//   static void Publish(Publisher<TElement>& p) {
//     p.Field(u"ID", &TElement::ID).Default(-1);                       // a read-write field
//     p.Property(u"Name", &TElement::GetName, &TElement::SetName).Stored(&TElement::StoreName);
//     p.Property(u"Size", &TElement::GetInstanceSize).Stored(false);   // read-only
//     p.WriteOnly(u"NextElement", &TEntity::AddElement);                // write-only
//   }
#pragma once

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "kernel/platform/object.h"

namespace veska {

namespace detail {

// The value type a getter gives or a setter takes, and how it reaches the member.
template <class Member>
struct MemberTraits;

template <class V, class Base>
struct MemberTraits<V Base::*> {  // a field: read and written directly
  using Value = std::remove_cv_t<V>;
  static constexpr TAccessKind Access = TAccessKind::Field;
};

template <class R, class Base>
struct MemberTraits<R (Base::*)() const> {  // a getter
  using Value = std::remove_cvref_t<R>;
  static constexpr TAccessKind Access = TAccessKind::Method;
};

template <class R, class Base>
struct MemberTraits<R (Base::*)()> {  // a getter not marked const
  using Value = std::remove_cvref_t<R>;
  static constexpr TAccessKind Access = TAccessKind::Method;
};

template <class R, class Base, class P>
struct MemberTraits<R (Base::*)(P)> {  // a setter
  using Value = std::remove_cvref_t<P>;
  static constexpr TAccessKind Access = TAccessKind::Method;
};

template <class M>
constexpr bool IsField = std::is_member_object_pointer_v<M>;

template <class Owner, class V, class Getter, class Setter>
class MemberAccessor final : public PropertyAccessor {
 public:
  using Traits = ValueTraits<V>;

  MemberAccessor(Getter getter, Setter setter) : getter_(getter), setter_(setter) {}

  int64_t GetOrd(const TObject& o) const override {
    if constexpr (Traits::Family == ValueFamily::Ordinal)
      return Traits::ToOrd(Get(o));
    else
      return 0;
  }
  void SetOrd(TObject& o, int64_t v) const override {
    if constexpr (Traits::Family == ValueFamily::Ordinal) Set(o, Traits::FromOrd(v));
  }
  double GetFloat(const TObject& o) const override {
    if constexpr (Traits::Family == ValueFamily::Float)
      return Traits::ToFloat(Get(o));
    else
      return 0;
  }
  void SetFloat(TObject& o, double v) const override {
    if constexpr (Traits::Family == ValueFamily::Float) Set(o, Traits::FromFloat(v));
  }
  String GetStr(const TObject& o) const override {
    if constexpr (Traits::Family == ValueFamily::Text)
      return Traits::ToStr(Get(o));
    else
      return {};
  }
  void SetStr(TObject& o, const String& v) const override {
    if constexpr (std::is_same_v<V, String>)
      Set(o, v);  // passed on as it is: the field or the setter makes the one copy
    else if constexpr (Traits::Family == ValueFamily::Text)
      Set(o, Traits::FromStr(v));
  }
  TObject* GetObj(const TObject& o) const override {
    if constexpr (Traits::Family == ValueFamily::Object)
      return Traits::ToObj(Get(o));
    else
      return nullptr;
  }
  void SetObj(TObject& o, TObject* v) const override {
    if constexpr (Traits::Family == ValueFamily::Object) Set(o, Traits::FromObj(v));
  }
  TMethod GetMethod(const TObject& o) const override {
    if constexpr (Traits::Family == ValueFamily::Method)
      return Get(o);
    else
      return {};
  }
  void SetMethod(TObject& o, const TMethod& v) const override {
    if constexpr (Traits::Family == ValueFamily::Method) Set(o, v);
  }
  Variant GetVariant(const TObject& o) const override {
    if constexpr (Traits::Family == ValueFamily::VariantValue)
      return Get(o);
    else
      return {};
  }
  void SetVariant(TObject& o, const Variant& v) const override {
    if constexpr (Traits::Family == ValueFamily::VariantValue) Set(o, v);
  }

 private:
  // PropInfo has checked access and family; the object is of the declaring class because the
  // property was found in its own ClassInfo.
  V Get(const TObject& o) const {
    if constexpr (std::is_same_v<Getter, std::nullptr_t>) {
      return V{};
    } else {
      auto& owner = const_cast<Owner&>(static_cast<const Owner&>(o));
      return std::invoke(getter_, owner);
    }
  }
  template <class Value>
  void Set(TObject& o, Value&& value) const {
    if constexpr (!std::is_same_v<Setter, std::nullptr_t>) {
      auto& owner = static_cast<Owner&>(o);
      if constexpr (IsField<Setter>)
        std::invoke(setter_, owner) = std::forward<Value>(value);
      else
        std::invoke(setter_, owner, std::forward<Value>(value));
    }
  }

  Getter getter_;
  Setter setter_;
};

}  // namespace detail

// Refines the property just declared.
class PropertyBuilder {
 public:
  explicit PropertyBuilder(PropInfo& property) : property_(property) {}

  PropertyBuilder& Stored(bool stored) {
    property_.stored_ = {stored, {}};
    return *this;
  }
  // Stored when the object's flag field or predicate method says so.
  template <class Member>
  requires std::is_member_pointer_v<Member> PropertyBuilder& Stored(Member predicate) {
    property_.stored_ = {true, [predicate](const TObject& o) {
                           using Owner = typename ClassOfMember<Member>::Type;
                           return static_cast<bool>(std::invoke(predicate, static_cast<const Owner&>(o)));
                         }};
    return *this;
  }
  PropertyBuilder& Default(int64_t value) {
    property_.default_ = value;
    return *this;
  }

 private:
  template <class M>
  struct ClassOfMember;
  template <class V, class C>
  struct ClassOfMember<V C::*> {
    using Type = C;
  };

  PropInfo& property_;
};

template <class Owner>
class Publisher {
 public:
  explicit Publisher(ClassInfo& info) : info_(info) {}

  // A property read and written through getter and setter (fields or methods).
  template <class Getter, class Setter>
  PropertyBuilder Property(StringView name, Getter getter, Setter setter) {
    using V = typename detail::MemberTraits<Getter>::Value;
    static_assert(std::is_same_v<V, typename detail::MemberTraits<Setter>::Value>,
                  "getter and setter of a property must agree on its type");
    return Add<V>(name, getter, setter, detail::MemberTraits<Getter>::Access, detail::MemberTraits<Setter>::Access);
  }

  // A field read and written directly.
  template <class V, class Base>
  PropertyBuilder Field(StringView name, V Base::*field) {
    return Property(name, field, field);
  }

  // A read-only property.
  template <class Getter>
  PropertyBuilder Property(StringView name, Getter getter) {
    using V = typename detail::MemberTraits<Getter>::Value;
    return Add<V>(name, getter, nullptr, detail::MemberTraits<Getter>::Access, TAccessKind::None);
  }

  // A write-only property: a command that acts when a value is written to it.
  template <class Setter>
  PropertyBuilder WriteOnly(StringView name, Setter setter) {
    using V = typename detail::MemberTraits<Setter>::Value;
    return Add<V>(name, nullptr, setter, TAccessKind::None, detail::MemberTraits<Setter>::Access);
  }

 private:
  template <class V, class Getter, class Setter>
  PropertyBuilder Add(StringView name, Getter getter, Setter setter, TAccessKind read, TAccessKind write) {
    static_assert(Publishable<V>, "this C++ type has no published type kind");
    auto accessor = std::make_unique<detail::MemberAccessor<Owner, V, Getter, Setter>>(getter, setter);
    PropInfo& added = info_.AddProperty(
        PropInfo(String(name), TypeInfoOf<V>(), ValueTraits<V>::Family, read, write, std::move(accessor)));
    return PropertyBuilder(added);
  }

  ClassInfo& info_;
};

namespace detail {

template <class T>
concept DeclaresOwnPublish = requires {
  static_cast<void (*)(Publisher<T>&)>(&T::Publish);
};

template <class T>
void PublishClass(ClassInfo& info) {
  if constexpr (DeclaresOwnPublish<T>) {
    Publisher<T> publisher(info);
    T::Publish(publisher);
  }
}

// The virtual constructor of T; none for a class that cannot be made without arguments.
template <class T>
constexpr ClassInfo::Factory FactoryOf() {
  if constexpr (std::is_abstract_v<T> || !std::is_default_constructible_v<T>) {
    return nullptr;
  } else {
    return []() -> TObject* { return new T(); };
  }
}

}  // namespace detail

// The ClassInfo of T, built on first use.  T must declare its own class, and the parent it
// names must be a base of it and the nearest declared one (see RunTimeClass).
template <class T>
const ClassInfo& ClassInfoOf() {
  static_assert(std::is_base_of_v<typename T::inherited, T>,
                "the parent named in VESKA_CLASS is not a base of the class");
  using NearestDeclaredBase = std::remove_pointer_t<decltype(VeskaNearestDeclaredBase(
      static_cast<T*>(nullptr), NearestDeclaredBaseProbe<T>{}))>;
  static_assert(std::is_same_v<NearestDeclaredBase, typename T::inherited::VeskaDeclaredClass>,
                "the parent named in VESKA_CLASS skips a nearer declared class");
  static const ClassInfo info(T::StaticClassName, &T::inherited::StaticClassInfo(), T::StaticUnitName, sizeof(T),
                              detail::FactoryOf<T>(), &detail::PublishClass<T>);
  return info;
}

// Declares the run-time class of a TObject descendant: its name, its parent (the base class it
// derives from; a helper base between the two declared classes is named as it stands) and its
// unit.  The one macro of the object model, because the class name must be both a type and a
// text.  It leaves the access at private, as a class body starts.
#define VESKA_CLASS(Class, Parent, Unit)                                                       \
 public:                                                                                       \
  using inherited = Parent;                                                                    \
  using VeskaDeclaredClass = Class;                                                            \
  template <class Probed>                                                                      \
    requires(!std::is_same_v<Probed, Class>)                                                   \
  friend Class* VeskaNearestDeclaredBase(Class*, ::veska::NearestDeclaredBaseProbe<Probed>) {  \
    return nullptr;                                                                            \
  }                                                                                            \
  static constexpr std::u16string_view StaticClassName = u## #Class;                           \
  static constexpr std::u16string_view StaticUnitName = Unit;                                  \
  static const ::veska::ClassInfo& StaticClassInfo() { return ::veska::ClassInfoOf<Class>(); } \
  const ::veska::ClassInfo& ClassType() const override { return StaticClassInfo(); }           \
                                                                                               \
 private:

}  // namespace veska
