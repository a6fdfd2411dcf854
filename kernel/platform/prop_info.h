// PropInfo: the record of one published property — name, type, read/write/stored access,
// default — and typed get and set of its value on an object.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "kernel/platform/value_traits.h"

namespace veska {

class TObject;

// How a property is read or written: not at all, straight through a field, or by a method.
enum class TAccessKind : uint8_t { None, Field, Method };

// Typed get and set of one property, implemented for each declared property by the builder.
// PropInfo checks kind and access before it calls in, so an accessor is only ever asked for
// the family of its own value type.
class PropertyAccessor {
 public:
  virtual ~PropertyAccessor() = default;
  virtual int64_t GetOrd(const TObject& object) const = 0;
  virtual void SetOrd(TObject& object, int64_t value) const = 0;
  virtual double GetFloat(const TObject& object) const = 0;
  virtual void SetFloat(TObject& object, double value) const = 0;
  virtual String GetStr(const TObject& object) const = 0;
  virtual void SetStr(TObject& object, const String& value) const = 0;
  virtual TObject* GetObj(const TObject& object) const = 0;
  virtual void SetObj(TObject& object, TObject* value) const = 0;
  virtual TMethod GetMethod(const TObject& object) const = 0;
  virtual void SetMethod(TObject& object, const TMethod& value) const = 0;
  virtual Variant GetVariant(const TObject& object) const = 0;
  virtual void SetVariant(TObject& object, const Variant& value) const = 0;
};

// Whether a property's value is written when its object is saved: a constant, or a predicate
// evaluated on the object.
struct StoredAccess {
  bool Constant = true;                           // meaningful when Predicate is empty
  std::function<bool(const TObject&)> Predicate;  // a stored field or method
  bool IsConstantFalse() const { return !Predicate && !Constant; }
};

class PropInfo {
 public:
  PropInfo(String name, const TypeInfo& type, ValueFamily family, TAccessKind read, TAccessKind write,
           std::unique_ptr<PropertyAccessor> accessor);

  const String& Name() const { return name_; }
  const TypeInfo& PropType() const { return *type_; }
  TTypeKind Kind() const { return type_->Kind; }
  ValueFamily Family() const { return family_; }
  TAccessKind ReadAccess() const { return read_; }
  TAccessKind WriteAccess() const { return write_; }
  bool CanRead() const { return read_ != TAccessKind::None; }
  bool CanWrite() const { return write_ != TAccessKind::None; }
  const StoredAccess& Stored() const { return stored_; }
  bool IsStored(const TObject& object) const;
  // The default of an ordinal property; none means "nodefault".
  const std::optional<int64_t>& Default() const { return default_; }
  // Position in the property table of the declaring class and of all its descendants.
  int NameIndex() const { return name_index_; }

  // Typed access.  A read of a write-only property, a write of a read-only one, or access
  // through the wrong family raises EPropertyError naming the property.
  // Inline, as they run on every typed access by name.
  int64_t GetOrd(const TObject& object) const { return Reader(ValueFamily::Ordinal).GetOrd(object); }
  void SetOrd(TObject& object, int64_t value) const { Writer(ValueFamily::Ordinal).SetOrd(object, value); }
  double GetFloat(const TObject& object) const { return Reader(ValueFamily::Float).GetFloat(object); }
  void SetFloat(TObject& object, double value) const { Writer(ValueFamily::Float).SetFloat(object, value); }
  String GetStr(const TObject& object) const { return Reader(ValueFamily::Text).GetStr(object); }
  void SetStr(TObject& object, const String& value) const { Writer(ValueFamily::Text).SetStr(object, value); }
  TObject* GetObj(const TObject& object) const { return Reader(ValueFamily::Object).GetObj(object); }
  void SetObj(TObject& object, TObject* value) const { Writer(ValueFamily::Object).SetObj(object, value); }
  TMethod GetMethod(const TObject& object) const { return Reader(ValueFamily::Method).GetMethod(object); }
  void SetMethod(TObject& object, const TMethod& value) const { Writer(ValueFamily::Method).SetMethod(object, value); }
  Variant GetVariant(const TObject& object) const { return Reader(ValueFamily::VariantValue).GetVariant(object); }
  void SetVariant(TObject& object, const Variant& value) const {
    Writer(ValueFamily::VariantValue).SetVariant(object, value);
  }

 private:
  template <class Owner>
  friend class Publisher;
  friend class PropertyBuilder;
  friend class ClassInfo;

  const PropertyAccessor& Reader(ValueFamily family) const {
    if (family != family_ || !CanRead()) [[unlikely]]
      RaiseAccessError(family, false);
    return *accessor_;
  }
  const PropertyAccessor& Writer(ValueFamily family) const {
    if (family != family_ || !CanWrite()) [[unlikely]]
      RaiseAccessError(family, true);
    return *accessor_;
  }
  // EPropertyError: the wrong family first, else no read (or write) access.
  [[noreturn]] void RaiseAccessError(ValueFamily family, bool writing) const;

  String name_;
  const TypeInfo* type_;
  ValueFamily family_;
  TAccessKind read_;
  TAccessKind write_;
  std::unique_ptr<PropertyAccessor> accessor_;
  StoredAccess stored_;
  std::optional<int64_t> default_;
  int name_index_ = 0;
};

}  // namespace veska
