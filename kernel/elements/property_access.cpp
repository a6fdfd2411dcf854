#include "kernel/elements/property_access.h"

#include "kernel/platform/exceptions.h"
#include "kernel/platform/message_sink.h"
#include "kernel/platform/object_handles.h"
#include "kernel/text/string_numbers.h"

namespace veska {
namespace {

// Text that is not a whole number gives 0: for kinds 1, 7 and 16 that is no error.
int64_t DecimalOrZero(StringView text) { return TryStrToInt64(text).value_or(0); }

// One part of a method pair: empty is 0, anything else must be a whole number, so that a
// malformed pair is reported and the property keeps its value.
int64_t MethodPart(StringView text) {
  if (text.empty()) return 0;
  if (const auto number = TryStrToInt64(text)) return *number;
  throw EConvertError(u"'" + String(text) + u"' is not a valid integer value");
}

// An enumeration or set value from text: a decimal number as it stands, else a value name.
int64_t OrdinalFromText(const TypeInfo& type, const String& text) {
  if (const auto number = TryStrToInt64(text)) return *number;
  const TypeInfo& names = type.CompType != nullptr ? *type.CompType : type;
  const int ordinal = GetEnumValue(names, text);
  if (ordinal < 0) throw EConvertError(u"'" + text + u"' is not a value of " + type.Name);
  return type.Kind == TTypeKind::tkSet ? int64_t{1} << ordinal : ordinal;
}

String OrdinalText(const TObject& object, const PropInfo& property) {
  const int64_t value = property.GetOrd(object);
  switch (property.Kind()) {
    case TTypeKind::tkChar:
      return String(1, Win1250ToChar(static_cast<unsigned char>(value)));
    case TTypeKind::tkWChar:
      return String(1, static_cast<char16_t>(value));
    case TTypeKind::tkEnumeration:
      return GetEnumName(property.PropType(), value);
    case TTypeKind::tkSet:
      return IntToStr(static_cast<uint32_t>(value));
    default:
      return IntToStr(value);
  }
}

const PropInfo* PropertyAt(const TObject* object, int index) {
  if (object == nullptr || index < 0 || index >= object->ClassType().PropCount()) return nullptr;
  return object->ClassType().Properties()[static_cast<std::size_t>(index)];
}

const PropInfo* PropertyNamed(const TObject* object, StringView name) {
  if (object == nullptr || name.empty()) return nullptr;
  return object->ClassType().FindProperty(name);
}

void WriteFromText(TObject& object, const PropInfo& property, const String& text) {
  switch (property.Kind()) {
    case TTypeKind::tkInteger:  // only numbers that fit 32 bits; any other text gives 0
      property.SetOrd(object, StringToInteger(text));
      break;
    case TTypeKind::tkChar:
      property.SetOrd(object, text.empty() ? 0 : text[0] & 0xFF);
      break;
    case TTypeKind::tkWChar:
      property.SetOrd(object, text.empty() ? 0 : text[0]);
      break;
    case TTypeKind::tkEnumeration:
    case TTypeKind::tkSet:
      property.SetOrd(object, OrdinalFromText(property.PropType(), text));
      break;
    case TTypeKind::tkFloat:
      property.SetFloat(object, text.empty() ? 0.0 : StrToExtended(text));
      break;
    case TTypeKind::tkString:
    case TTypeKind::tkLString:
    case TTypeKind::tkUString:
      property.SetStr(object, text);
      break;
    case TTypeKind::tkClass: {
      const auto number = TryStrToInt64(text);
      property.SetObj(object, number ? ObjectHandles::ObjectOf(*number) : nullptr);
      break;
    }
    case TTypeKind::tkMethod: {
      const std::size_t separator = text.find(u';');
      TMethod method;
      if (separator == String::npos) {
        method.Data = MethodPart(text);
      } else {
        method.Code = MethodPart(StringView(text).substr(0, separator));
        method.Data = MethodPart(StringView(text).substr(separator + 1, 255));
      }
      property.SetMethod(object, method);
      break;
    }
    case TTypeKind::tkInt64:
      property.SetOrd(object, DecimalOrZero(text));
      break;
    default:  // wide strings, variants and the kinds without a text form are not written
      break;
  }
}

}  // namespace

int GetPropCount(const TObject* object) { return object != nullptr ? object->ClassType().PropCount() : 0; }

String GetPropName(const TObject* object, int index) {
  const PropInfo* property = PropertyAt(object, index);
  return property != nullptr ? property->Name() : String();
}

TTypeKind GetPropType(const TObject* object, int index) {
  const PropInfo* property = PropertyAt(object, index);
  return property != nullptr ? property->Kind() : TTypeKind::tkUnknown;
}

int GetPropIndex(const TObject* object, StringView name) {
  const PropInfo* property = PropertyNamed(object, name);
  return property != nullptr ? property->NameIndex() : -1;
}

String FillWithData(const TObject* object, const PropInfo* property) {
  if (object == nullptr || property == nullptr || !property->CanRead()) return {};
  const TTypeKind kind = property->Kind();
  if (IsOrdinalKind(kind)) {
    try {
      return OrdinalText(*object, *property);
    } catch (...) {
      return u"Err Ord Value";
    }
  }
  try {
    switch (kind) {
      case TTypeKind::tkFloat:
        return ExtendedToStr(property->GetFloat(*object));
      case TTypeKind::tkString:
      case TTypeKind::tkLString:
      case TTypeKind::tkUString:
        return property->GetStr(*object);
      case TTypeKind::tkClass:
        try {
          return IntToStr(ObjectHandles::HandleOf(property->GetObj(*object)));
        } catch (...) {
          return {};
        }
      case TTypeKind::tkMethod:
        try {
          const TMethod method = property->GetMethod(*object);
          return IntToStr(method.Code) + u";" + IntToStr(method.Data);
        } catch (...) {
          return {};  // a failed method read leaves the cleared result
        }
      case TTypeKind::tkInt64:
        return IntToStr(property->GetOrd(*object));
      default:
        return {};
    }
  } catch (...) {
    return u"Err Value";
  }
}

String GetPropString(const TObject* object, int index) { return FillWithData(object, PropertyAt(object, index)); }

String GetPropStringByName(const TObject* object, StringView name) {
  return FillWithData(object, PropertyNamed(object, name));
}

void SetPropByString(TObject* object, const PropInfo* property, const String& text) {
  if (object == nullptr || property == nullptr || !property->CanWrite()) return;
  try {
    WriteFromText(*object, *property, text);
  } catch (...) {
    ShowMessage(u"Error filling property " + property->Name() + u" by string " + text, MessageKind::Error);
  }
}

void SetPropString(TObject* object, int index, const String& text) {
  SetPropByString(object, PropertyAt(object, index), text);
}

bool SetPropStringByName(TObject* object, StringView name, const String& text) {
  const PropInfo* property = PropertyNamed(object, name);
  if (property == nullptr) return false;
  SetPropByString(object, property, text);
  return true;
}

TObject* GetObjectPropByName(const TObject* object, StringView name) {
  const PropInfo* property = PropertyNamed(object, name);
  if (property == nullptr || !property->CanRead() || property->Kind() != TTypeKind::tkClass) return nullptr;
  return property->GetObj(*object);
}

bool SetObjectPropByName(TObject* object, StringView name, TObject* value) {
  const PropInfo* property = PropertyNamed(object, name);
  if (property == nullptr || !property->CanWrite() || property->Kind() != TTypeKind::tkClass) return false;
  property->SetObj(*object, value);
  return true;
}

}  // namespace veska
