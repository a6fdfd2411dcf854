// The object model: TObject, the root of every class with published properties, and
// ClassInfo, the run-time record of a class (name, parent, unit, size, factory, properties).
//
// A class joins the model with one line and one static function next to it (the macro and
// the builder are in publisher.h):
//
//   class TStringEntity : public TOwnerEntity {
//     VESKA_CLASS(TStringEntity, TOwnerEntity, kElementsUnit)
//    public:
//     String Value;
//     void SetValue(const String& v) { Value = v; }
//     static void Publish(Publisher<TStringEntity>& p) {
//       p.Property(u"Value", &TStringEntity::Value, &TStringEntity::SetValue);
//     }
//   };
//
// The ClassInfo of a class is built once, on first use, with its parent's first.  A class
// without a Publish of its own publishes nothing beyond its ancestors' properties.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "kernel/platform/folded_name_index.h"
#include "kernel/platform/prop_info.h"

namespace veska {

class ClassInfo;

// A class that declared its own run-time class (VESKA_CLASS).  A class that forgot would pass
// for its parent: every template that takes a class as a run-time class requires this.
template <class T>
concept RunTimeClass = std::is_same_v<typename T::VeskaDeclaredClass, std::remove_cv_t<T>>;

// The probe that finds a class's nearest declared ancestor.  Every declared class adds one
// candidate function for it, a hidden friend that takes a pointer to that class, so that a
// probe with a pointer to a class sees (by argument-dependent lookup) the candidates of the
// class and of all its bases; the probe's tag rules out the class's own, and of the rest
// overload resolution picks the nearest base, to which the pointer converts best.
template <class Probed>
struct NearestDeclaredBaseProbe {};

class TObject {
 public:
  using VeskaDeclaredClass = TObject;
  template <class Probed>
  requires(!std::is_same_v<Probed, TObject>) friend TObject* VeskaNearestDeclaredBase(
      TObject*, NearestDeclaredBaseProbe<Probed>) {
    return nullptr;
  }
  static constexpr std::u16string_view StaticClassName = u"TObject";
  static constexpr std::u16string_view StaticUnitName = u"System";
  static const ClassInfo& StaticClassInfo();

  TObject() = default;
  TObject(const TObject&) = delete;
  TObject& operator=(const TObject&) = delete;
  virtual ~TObject();

  virtual const ClassInfo& ClassType() const { return StaticClassInfo(); }
  String ClassName() const;
  bool InheritsFrom(const ClassInfo& ancestor) const;
  template <class T>
  bool Is() const;  // defined below ClassInfo
  // Destroys the object, as the platform's Free did.
  void Free() { delete this; }

 private:
  friend class ObjectHandles;
  // The object's number in the handle table; 0 until it needs one.  Given once under the
  // table's lock, and read without it once given.
  std::atomic<int32_t> handle_{0};
};

// The object as a T, or none when it is none or of another class.  A check of the run-time
// class followed by a static cast: cheaper than dynamic_cast where it runs per element.
template <class T>
T* ObjectAs(TObject* object) {
  return object != nullptr && object->Is<T>() ? static_cast<T*>(object) : nullptr;
}

// A new object of the class through its virtual constructor, as a T; none when the class
// cannot be created or is not a T (nothing is created then).
template <class T>
T* CreateObjectAs(const ClassInfo& cls);

// The persistent base of the platform: TObject with the assignment protocol.
class TPersistent : public TObject {
 public:
  using VeskaDeclaredClass = TPersistent;
  template <class Probed>
  requires(!std::is_same_v<Probed, TPersistent>) friend TPersistent* VeskaNearestDeclaredBase(
      TPersistent*, NearestDeclaredBaseProbe<Probed>) {
    return nullptr;
  }
  static constexpr std::u16string_view StaticClassName = u"TPersistent";
  static constexpr std::u16string_view StaticUnitName = u"Classes";
  static const ClassInfo& StaticClassInfo();
  const ClassInfo& ClassType() const override { return StaticClassInfo(); }
  using inherited = TObject;

  // Copies the state of source into this object; the base raises EConvertError
  // "Cannot assign a <source class> to a <this class>".
  virtual void Assign(const TPersistent* source);

 protected:
  virtual void AssignTo(TPersistent* destination) const;
};

class ClassInfo {
 public:
  using Factory = TObject* (*)();
  using PublishFunction = void (*)(ClassInfo&);

  ClassInfo(StringView name, const ClassInfo* parent, StringView unit_name, std::size_t instance_size, Factory factory,
            PublishFunction publish);
  ClassInfo(const ClassInfo&) = delete;
  ClassInfo& operator=(const ClassInfo&) = delete;

  const String& Name() const { return name_; }
  const ClassInfo* Parent() const { return parent_; }
  const String& UnitName() const { return unit_name_; }
  std::size_t InstanceSize() const { return instance_size_; }
  bool InheritsFrom(const ClassInfo& ancestor) const;

  // The virtual constructor: a new object of this class, or none for an abstract class.
  bool CanCreate() const { return factory_ != nullptr; }
  TObject* Create() const { return factory_ ? factory_() : nullptr; }
  Factory GetFactory() const { return factory_; }

  // All published properties, ancestors' first, in declaration order.
  std::span<const PropInfo* const> Properties() const { return all_properties_; }
  int PropCount() const { return static_cast<int>(all_properties_.size()); }
  // The first property whose name equals name with the letters a-z folded; none when absent.
  // Inline, as it runs on every access by name.
  const PropInfo* FindProperty(StringView name) const {
    const PropInfo* const* found = property_index_.Find(name);
    return found != nullptr ? *found : nullptr;
  }

  // Used by the property builder while the class is being described.
  PropInfo& AddProperty(PropInfo property);

 private:
  String name_;
  const ClassInfo* parent_;
  String unit_name_;
  std::size_t instance_size_;
  Factory factory_;
  std::deque<PropInfo> own_properties_;  // a deque keeps the records at fixed addresses
  std::vector<const PropInfo*> all_properties_;
  // Every property by name, built once the class is described.
  FoldedNameIndex<const PropInfo*> property_index_;
};

template <class T>
bool TObject::Is() const {
  static_assert(RunTimeClass<T>, "this class does not declare its run-time class with VESKA_CLASS");
  // Most checks ask for the object's own class, answered here without the walk.
  const ClassInfo& own = ClassType();
  return &own == &T::StaticClassInfo() || own.InheritsFrom(T::StaticClassInfo());
}

template <class T>
T* CreateObjectAs(const ClassInfo& cls) {
  static_assert(RunTimeClass<T>, "this class does not declare its run-time class with VESKA_CLASS");
  if (!cls.InheritsFrom(T::StaticClassInfo())) return nullptr;
  return static_cast<T*>(cls.Create());
}

}  // namespace veska
