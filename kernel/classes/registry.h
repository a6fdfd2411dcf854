// The class registry: every element class of the process by name, with its published
// properties, so that elements can be created from class names and walked property by property.
#pragma once

#include <atomic>
#include <cstddef>
#include <variant>
#include <vector>

#include "kernel/elements/named.h"
#include "kernel/platform/folded_name_index.h"
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
  // A record of the process's registry lives as long as the registry: whatever other entity a
  // script put it in only lets it go.
  bool IsPossibleToFree() override;
  // Rebuilds the children: one TVeskaClassProperty per published property.
  virtual void ShowProperties();
  // The first property of that name, case ignored; -1 when none.
  virtual int PropertyIndex(StringView name) const;
  // Renaming a record that a registry holds brings the registry's name index up to date.
  void SetName(const String& name) override;

  const ClassInfo* ElementClass() const { return element_class_; }
  // A new element of the element class; none when the class is not an element class or
  // cannot be created.
  TElement* NewElement() const { return element_factory_ ? static_cast<TElement*>(element_factory_()) : nullptr; }
  void SetElementClass(const ClassInfo* element_class);
  bool HasPropertyTable() const { return has_table_; }

  // Valid indexes only (0..PropCount-1); none of these test for a missing table.
  String GetPropertyName(int index) const;
  // Inline, as a loader asks them for every value it reads.
  TTypeKind GetPropertyTypeKind(int index) const { return GetPropInfo(index)->Kind(); }
  const PropInfo* GetPropInfo(int index) const {
    if (index < 0 || static_cast<std::size_t>(index) >= table_.size()) ThrowIndexOutOfRange(index);
    return table_[static_cast<std::size_t>(index)];
  }
  const ClassInfo* GetPropertyClass(int index) const;

  bool GetPropertyIsReadOnly(int index) const;
  bool GetPropertyIsWriteOnly(int index) const;
  bool GetPropertyIsReadOrWriteOnly(int index) const;
  bool IsClassName(StringView name) const;

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
  [[noreturn]] static void ThrowIndexOutOfRange(int index);

  const ClassInfo* element_class_ = nullptr;
  // The element class's factory, when the class creates elements; decided once, as creation by
  // class name asks every time.
  ClassInfo::Factory element_factory_ = nullptr;
  std::span<const PropInfo* const> table_;  // the class's own list, which lives as long
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
  // An instance follows the class of each element it is bound to, and no registry lists it by
  // that name: renaming it is only the name.
  void SetName(const String& name) override { TOwnerEntity::SetName(name); }

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
  virtual TVeskaClass* GetVeskaClassByName(StringView name);
  virtual const ClassInfo* GetClass(StringView name);
  // GetClass, raising EClassNotFound "Veska nenašel třídu " + name when unknown.
  virtual const ClassInfo* FindClass(StringView name);

  // The process's registry lives until the process ends: a holder that is asked to free it (a
  // world shows it as ObjectClasses, so a script can hand it to ElementToFree) only lets it go.
  // Other class tables (a loader's declarations) are freed as any entity is.
  bool IsPossibleToFree() override;

  // The position of a record of that name, or -1; insert_index tells where a new record of
  // that name belongs, -1 meaning the end.
  int FindIndex(StringView name, int& insert_index);

  // The element class of the record of that name, as GetClass finds it, leaving the current
  // class as it is: the lookup behind GetVeskaClass and creation by class name, which must be
  // safe from any thread once start-up is over.
  const ClassInfo* ClassNamed(StringView name);
  // The record behind ClassNamed: the first record of that name; none when there is none.
  // Inline, as every creation by class name asks it.
  [[gnu::always_inline]] TVeskaClass* RecordNamed(StringView name) {
    if (NameIndexHolds()) {
      if (TVeskaClass* const* found = name_index_.Find(name)) return *found;
    }
    return RecordNotIndexed(name);
  }

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
  // RecordNamed by the search of the sorted list, which the name index stands in for.
  TVeskaClass* SearchRecordNamed(StringView name);
  // Whether the name index answers for the list as it is now.
  bool NameIndexHolds() const { return name_index_list_state_ == ListChanges(); }
  // RecordNamed for a name the index does not hold.
  TVeskaClass* RecordNotIndexed(StringView name);
  // Builds the name index afresh from the list, or leaves it unused when it cannot answer.
  void RebuildNameIndex();

  // Written by registration (start-up) and by the documented lookups of the registry itself;
  // atomic so that those lookups, too, may run beside each other.
  std::atomic<TVeskaClass*> current_{nullptr};

  // The records by name, for the lookups by name; the sorted list stays the truth.  The index
  // answers exactly as the search of the list does, so it is used only while the list is in
  // order and every record has a stored name in ASCII (beyond ASCII the comparison folds case
  // by Unicode rules), and only for the list as it was when the index was built: a change of
  // the list made other than by registration leaves the lookups to the search until the next
  // registration rebuilds the index.  A renamed record rebuilds it at once.
  FoldedNameIndex<TVeskaClass*> name_index_;
  // The change count of the list the index describes; a count no list reaches while unused.
  static constexpr uint64_t kNameIndexUnused = UINT64_MAX;
  uint64_t name_index_list_state_ = kNameIndexUnused;
  friend class TVeskaClass;  // a renamed record rebuilds the index

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

namespace detail {
// The registry once it is created and filled; none before its first use.
inline std::atomic<TVeskaClasses*> process_registry{nullptr};
TVeskaClasses& CreateProcessRegistry();
}  // namespace detail

// The registry of the process.  The first use runs the installed start-up sequence.
//
// Threads: registration belongs to start-up (or to the main thread afterwards).  Once it is
// over, GetVeskaClass, FindVeskaClass and CreateElementByName are safe from any thread: they
// only read the registry.
[[gnu::always_inline]] inline TVeskaClasses& VeskaClasses() {
  if (TVeskaClasses* registry = detail::process_registry.load(std::memory_order_acquire)) return *registry;
  return detail::CreateProcessRegistry();
}

void RegisterVeskaClass(const ClassInfo& element_class);
template <RunTimeClass T>
void RegisterVeskaClass() {
  RegisterVeskaClass(T::StaticClassInfo());
}
const ClassInfo* GetVeskaClass(StringView name);
const ClassInfo* FindVeskaClass(StringView name);
TElement* CreateElementCopy(TElement* element);
// The class that creation by name takes: the one registered under the name, else the one
// registered under "T" + name; none when neither is.
const ClassInfo* ClassForCreationByName(StringView name);
// A new element of the class registered under the name (or under "T" + name); none, with the
// message "Neregistrovaný element: " + name, when no such class is registered.
TElement* CreateElementByName(StringView name);
void CHeckVeskaClasses();

}  // namespace veska
