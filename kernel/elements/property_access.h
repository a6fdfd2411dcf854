// Reading and writing any published property of any object by name or by position, through
// text.  These functions keep nothing: each call looks at the object's class afresh.
#pragma once

#include <cstdint>

#include "kernel/platform/object.h"

namespace veska {

// The object's total published-property count.
int GetPropCount(const TObject* object);
// The name of the property at the index; empty when the index is not below the count.
String GetPropName(const TObject* object, int index);
// The kind of the property at the index; tkUnknown when the class has no published properties.
TTypeKind GetPropType(const TObject* object, int index);
// The position of the first property of that name (letters a-z folded); -1 when none.
int GetPropIndex(const TObject* object, StringView name);

// The property's value as text; empty for none, no read access or kinds without a text form.
// Failed ordinal reads give "Err Ord Value", other failed reads "Err Value"; nothing raises.
String FillWithData(const TObject* object, const PropInfo* property);
String GetPropString(const TObject* object, int index);
String GetPropStringByName(const TObject* object, StringView name);

// Writes the text into the property.  Errors are shown through the message sink as
// "Error filling property <name> by string <text>" and swallowed.
void SetPropByString(TObject* object, const PropInfo* property, const String& text);
void SetPropString(TObject* object, int index, const String& text);
// True when the property exists (even when it could not be written).
bool SetPropStringByName(TObject* object, StringView name, const String& text);

// Object-valued (kind 7) properties.
TObject* GetObjectPropByName(const TObject* object, StringView name);
bool SetObjectPropByName(TObject* object, StringView name, TObject* value);

}  // namespace veska
