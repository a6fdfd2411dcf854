// The class registry: every element class of the process by name, with its published
// properties, so that elements can be created from class names and walked property by property.
#pragma once

#include <atomic>
#include <variant>
#include <vector>

#include "kernel/elements/named.h"
#include "kernel/platform/unit_classes.h"

namespace veska {

// The unit of the class registry's own classes.
inline constexpr std::u16string_view kRegistryUnit = u"E_class";

// One published property of a class, as the registry shows it and as the stream loader relates
// a property declared in a file to the property of the class as it is now.
class TVeskaClassProperty : public TNameElement {
  VESKA_CLASS(TVeskaClassProperty, TNameElement, kRegistryUnit)
 public:
  const PropInfo* GetPropInfo() const { return prop_info_; }
  // Stores the property record and takes its name.
  void SetPropInfo(const PropInfo* prop_info);

  int32_t PropIndex = 0;
  // The position of the matching property in the owning class's table; -1 when none.
  int32_t ClassIndex = -1;
  bool LostProperty = false;
  TTypeKind LostTypeKind = TTypeKind::tkUnknown;
  bool TypeMishmash = false;

  void SetLostProperty(bool value) { LostProperty = value; }
  void SetLostTypeKind(TTypeKind value) { LostTypeKind = value; }
  void SetTypeMishmash(bool value) { TypeMishmash = value; }
  // The declared kind for a lost property, else the kind of the property's type, else unknown.
  TTypeKind GetTypeKind() const;

  static void Publish(Publisher<TVeskaClassProperty>& p);

 private:
  const PropInfo* prop_info_ = nullptr;
};

// One registered class: the element class and its property table.
class TVeskaClass : public TOwnerEntity {
  VESKA_CLASS(TVeskaClass, TOwnerEntity, kRegistryUnit)
 public:
  virtual bool GetPropertyStored(int index) const;
  // Rebuilds the children: one TVeskaClassProperty per published property.
  virtual void ShowProperties();
  // The first property of that name, case ignored; -1 when none.
  virtual int PropertyIndex(const String& name) const;

  const ClassInfo* ElementClass() const { return element_class_; }
  void SetElementClass(const ClassInfo* element_class);
  bool HasPropertyTable() const { return has_table_; }

  // Valid indexes only (0..PropCount-1); none of these test for a missing table.
  String GetPropertyName(int index) const;
  TTypeKind GetPropertyTypeKind(int index) const;
  const PropInfo* GetPropInfo(int index) const;
  const ClassInfo* GetPropertyClass(int index) const;

  bool GetPropertyIsReadOnly(int index) const;
  bool GetPropertyIsWriteOnly(int index) const;
  bool GetPropertyIsReadOrWriteOnly(int index) const;
  bool IsClassName(const String& name) const;

  // The record's own name, or none when it has none and GetName gives the class name.
  const String* StoredName() const { return FName.empty() ? nullptr : &FName; }

  String GetElementClassName() const;
  String GetAncestorClassName() const;
  String GetUnit_Name() const;
  // Reports stored class-kind properties whose class is not an element.
  void SelfCHeck();

  int32_t PropCount = 0;

  static void Publish(Publisher<TVeskaClass>& p);

 protected:
  std::span<const PropInfo* const> Table() const { return table_; }

 private:
  const ClassInfo* element_class_ = nullptr;
  std::vector<const PropInfo*> table_;
  bool has_table_ = false;
};

// The value of one property in the form GetPropertyValue and SetPropertyValue exchange it:
// a 32-bit integer for the ordinal kinds and for object references (as handles), a float, a
// string, a method pair, a variant or a 64-bit integer.
using TPropertyBuffer = std::variant<std::monostate, int32_t, double, String, TMethod, Variant, int64_t>;

// A class record bound to one element, through which that element's properties are read and
// written by index.  It does not own the element.
class TVeskaInstance : public TVeskaClass {
  VESKA_CLASS(TVeskaInstance, TVeskaClass, kRegistryUnit)
 public:
  TElement* Instance() const { return instance_; }
  void SetInstance(TElement* element);

  bool GetPropertyStored(int index) const override;
  void GetPropertyValue(int index, TPropertyBuffer& buffer) const;
  // Kinds 10 and 11 are read but, deliberately, never written.
  void SetPropertyValue(int index, const TPropertyBuffer& buffer);
  // A shallow copy: a new element of the same class with every stored property copied.
  TElement* CreateInstanceCopy() const;

 private:
  TElement* instance_ = nullptr;
};

// The registry: class records kept sorted by name (case ignored).
class TVeskaClasses : public TOwnerEntity {
  VESKA_CLASS(TVeskaClasses, TOwnerEntity, kRegistryUnit)
 public:
  virtual void AddVeskaClass(TVeskaClass* record);
  virtual void AddClass(const ClassInfo& element_class);
  // Both make the record found the current class.
  virtual TVeskaClass* GetVeskaClassByName(const String& name);
  virtual const ClassInfo* GetClass(const String& name);
  // GetClass, raising EClassNotFound "Veska nenašel třídu " + name when unknown.
  virtual const ClassInfo* FindClass(const String& name);

  // The position of a record of that name, or -1; insert_index tells where a new record of
  // that name belongs, -1 meaning the end.
  int FindIndex(const String& name, int& insert_index);

  // The element class of the record of that name, as GetClass finds it, leaving the current
  // class as it is: the lookup behind GetVeskaClass and creation by class name, which must be
  // safe from any thread once start-up is over.
  const ClassInfo* ClassNamed(const String& name);

  TVeskaClass* CurrentClass() const { return current_.load(std::memory_order_relaxed); }
  bool ShowProperties = false;
  bool SortByName = true;
  // Accepted and ignored: the list stays sorted by name whatever is written.
  void SetSortByName(bool value);

  // Registers the unit's classes in their order, once: a unit registered before adds nothing,
  // however often start-up runs.
  void RegisterUnit(const UnitClasses& unit);

  static void Publish(Publisher<TVeskaClasses>& p);

 private:
  // Inserts the record at its place by name and makes it the current class.
  void InsertByName(TVeskaClass* record);
  // The first record of that name; none when there is none.
  TVeskaClass* RecordNamed(const String& name);

  // Written by registration (start-up) and by the documented lookups of the registry itself;
  // atomic so that those lookups, too, may run beside each other.
  std::atomic<TVeskaClass*> current_{nullptr};
  int32_t registration_counter_ = 0;
  std::vector<String> registered_units_;
};

// The classes the registry unit registers at start-up, in registration order.
inline constexpr UnitClasses kRegistryUnitClasses{kRegistryUnit,
                                                  ClassListOf<TVeskaClass, TVeskaClasses, TVeskaClassProperty>};

// The start-up sequence: what registers the library's units in the new registry.  The start-up
// table above every unit installs it while the program starts; the registry runs it on its
// first use (or at once, if the registry is already in use).
using StartUpSequence = void (*)(TVeskaClasses& registry);
void InstallStartUpSequence(StartUpSequence sequence);

// The registry of the process.  The first use runs the installed start-up sequence.
//
// Threads: registration belongs to start-up (or to the main thread afterwards).  Once it is
// over, GetVeskaClass, FindVeskaClass and CreateElementByName are safe from any thread: they
// only read the registry.
TVeskaClasses& VeskaClasses();

void RegisterVeskaClass(const ClassInfo& element_class);
template <RunTimeClass T>
void RegisterVeskaClass() {
  RegisterVeskaClass(T::StaticClassInfo());
}
const ClassInfo* GetVeskaClass(const String& name);
const ClassInfo* FindVeskaClass(const String& name);
TElement* CreateElementCopy(TElement* element);
// The class that creation by name takes: the one registered under the name, else the one
// registered under "T" + name; none when neither is.
const ClassInfo* ClassForCreationByName(const String& name);
// A new element of the class registered under the name (or under "T" + name); none, with the
// message "Neregistrovaný element: " + name, when no such class is registered.
TElement* CreateElementByName(const String& name);
void CHeckVeskaClasses();

}  // namespace veska
