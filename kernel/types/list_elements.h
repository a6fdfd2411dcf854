// The list elements of the unit E_type: TStringListElement (named string entries read and
// written one by one, by name, or as one text joined by a separator, a platform string list or
// a text file), TPropertyList (entries that name properties of another element and receive
// their values) and TIntegerListElement (whole numbers, optionally kept sorted).
//
// Entries are the list's members.  An entry's name is its element Name, so an entry added
// without a name reports its class name ("TStringElement") in the whole-list texts and files and
// is found under it.  The lists create only string elements (integer elements for
// TIntegerListElement), but the generic entity operations can put any element in: a member
// that is not a typed value element reads as empty text or 0 and ignores writes, and the
// by-name operations only see string elements.
//
// Splitting uses StringAsTwoParams, which raises ERangeError when a separator stands beyond
// position 255 of the text still to split; the parts before it are already added.
#pragma once

#include <cstdint>
#include <memory>

#include "kernel/elements/named.h"
#include "kernel/platform/string_list.h"
#include "kernel/types/type_elements.h"

namespace veska {

class TStringListElement : public TOwnerEntity {
  VESKA_CLASS(TStringListElement, TOwnerEntity, kTypesUnit)
 public:
  // A plain list of lines, kept in the entries' names (IntoFile writes the names alone).
  bool Simple = false;
  // Joins and splits the whole-list texts.  0 means "not yet set": every operation that joins
  // or splits by it sets it to ',' first.
  char16_t Separator = 0;

  TStringListElement() = default;
  // A list holding the lines of the string list, as AddStringList adds them; none adds nothing.
  explicit TStringListElement(const TStringList* Strings);

  void SetSimple(bool Value) { Simple = Value; }
  void SetSeparator(char16_t Value) { Separator = Value; }

  // By index, 0..GetLastIndex; a bad index raises EListError as the entity's Get does.
  TStringElement* GetSElems(int Index);  // none when the member is not a string element
  void PutSElems(int Index, TStringElement* Element);
  String GetString(int Index);
  void PutString(int Index, const String& Value);
  String GetNameAtIndex(int Index);
  void PutName(int Index, const String& Value);
  String GetUpperName(int Index);

  // By name: the upper-cased name is compared with each entry's upper-cased name from index 0
  // upward; the first match wins.
  TStringElement* GetStringElementByName(const String& Name);
  TStringElement* GetStringElementByName(const String& Name, int& Index);  // Index -1 for none
  String GetStringByName(const String& Name);                              // empty for none
  int32_t GetIntegerByName(const String& Name);                            // 0 for none
  bool GetBooleanByName(const String& Name);                               // false for none
  double GetDoubleByName(const String& Name);                              // 0 for none
  // These append an entry with that name when there is none, then set its value.
  void SetStringByName(const String& Name, const String& Value);
  void SetIntegerByName(const String& Name, int32_t Value);
  void SetDoubleByName(const String& Name, double Value);

  // Adding entries.
  void AddString(const String& Value);  // an entry with an empty name
  TStringElement* AddNameString(const String& Name, const String& Value);
  void AddName(const String& Name);  // an entry with an empty value
  // Text with "=" becomes an entry as SetNameIsValue splits it; text without "=" is ignored.
  void AddNameIsValue(const String& Text);
  // Each non-empty line in order: with "=" through AddNameIsValue, without through AddName.
  // (A pointer to a mutable list, as the published NextStringList passes it.)
  void AddStringList(TStringList* Strings);
  // The lines of the file (Windows-1250 unless it starts with a byte-order mark) through
  // AddStringList; a missing file adds nothing.  Read errors raise to the caller.
  void AddFile(const String& FileName);

  // The entries' names, values, or name=value texts joined by the separator, in index order.
  String GetNamesString();
  String GetValuesString();
  String GetNameIsValueString();
  // Split the text at the separator (StringAsTwoParams) and append one entry per part
  // (AddName / AddNameIsValue); the list is never cleared.
  void SetNamesString(const String& Text);
  void SetNameIsValueString(const String& Text);
  // Part k of the text becomes the value of entry k, or a new entry when the list is shorter;
  // entries beyond the last part keep their values.
  void SetValuesString(const String& Text);

  // One line per entry, name=value (only the name for a Simple list), saved in Windows-1250.
  // Write errors raise to the caller.
  void IntoFile(const String& FileName);
  // The entries' values in index order (names are left out).
  std::unique_ptr<TStringList> CreateStringList();
  // A new TStringListElement (whatever this list's class) with this list's Name and a copy of
  // each entry made by CreateElementCopy; Simple, Separator and the owners are not copied.
  // The caller owns it.
  TStringListElement* MakeSelfCopy();
  // An entry whose value is "name=value" takes the two parts as its name and value.
  void ParamToNames();

  // The published property of that name; when that reads empty, the entry of that name.
  String GetPropertyStringByName(StringView Name) const override;
  // The published property of that name when the class has one; otherwise the entry of that
  // name, which is created when missing.  Always true.
  bool SetPropertyStringByName(StringView Name, const String& Value) override;

  static void Publish(Publisher<TStringListElement>& p);

 private:
  // Separator, set to ',' first when it is still 0.
  char16_t ActualSeparator();
  // The entry of that name, appended with an empty value when there is none.
  TStringElement* EntryForName(const String& Name);
  void AddLines(const TStringList& Strings);
};

// A string list whose entries name properties of another element; assigning the element gives
// every entry that property's value as text.  An entry named "-Name" is negated: it receives
// the value with its sign turned over.
class TPropertyList : public TStringListElement {
  VESKA_CLASS(TPropertyList, TStringListElement, kTypesUnit)
 public:
  // Put between the values by GetCatenation.
  String Delimiter;

  // Fills the entries from the element's properties (none does nothing).  An entry whose name
  // reads empty (an element without a name of its own reads its class name, so only a member
  // that is none or says so), or a negated entry whose property reads empty, raises ERangeError
  // "Range check error"; the entries before it are already filled.
  void SetByElement(TElement* Element);
  // The values joined by Delimiter; empty for an empty list.
  String GetCatenation();

  static void Publish(Publisher<TPropertyList>& p);
};

// Whole numbers kept as TIntegerElement members.
class TIntegerListElement : public TOwnerEntity {
  VESKA_CLASS(TIntegerListElement, TOwnerEntity, kTypesUnit)
 public:
  // Set by the list's user; the list itself never changes them.  With Sorted, AddInteger keeps
  // the values in ascending order, and without Duplicates it adds no value twice.
  bool Sorted = false;
  bool Duplicates = false;

  int32_t GetInteger(int Index);  // a bad index raises EListError
  void PutInteger(int Index, int32_t Value);
  bool ValueExists(int32_t Value);
  // Appends; with Sorted, inserts after the values not greater than Value.
  void AddInteger(int32_t Value);
  // Adds each comma-separated part (whatever any separator elsewhere) that is a whole number
  // (StrToLongInt); the other parts are skipped.
  void SetValuesString(const String& Text);

  static void Publish(Publisher<TIntegerListElement>& p);
};

// The whole numbers of the text, as the line reader reads them one by one until it fails, in a
// new list; none when the text starts with no number.  The caller owns the list.
TIntegerListElement* CreateIntegerListElementFromString(const String& Text);

}  // namespace veska
