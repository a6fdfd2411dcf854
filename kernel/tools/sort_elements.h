// Sorting tools: tools that reorder the members of their Input entity in place by the values of
// named published properties.  TSortElements is the frame; its descendants say how two elements
// compare.  The order is that of a binary insertion of the members, in their order, into a work
// list at the places FindSortedIndex gives, written back ascending, or reversed with Down:
//  - elements equal to the last one inserted stay in input order, but an element equal to a
//    member met in the middle of the search goes directly after that member;
//  - the frame's comparison always answers 1, so the frame alone keeps the input order.
// The insertion runs on a block list, so sorting n members costs O(n log n) comparisons and
// bounded moves per member, with exactly the comparisons of the literal insertion.  The sorters
// of this file read each member's key once, rank the keys and place the members by their ranks
// (BinaryInsertionOrderOfRanks), which gives the order of the insertion that reads the keys at
// every comparison; a descendant that overrides CompareElements is asked at every comparison, as
// are number keys when one of them is not a number (NaN).
//
// The integer sorters read an ordinal property (an integer, an enumeration, a Boolean) as its
// number, and any other value as the whole number its text denotes; a value that denotes none
// (text that is not a whole number, a property the element lacks, an empty slot) counts as 0,
// as a by-name integer read gives 0 for what has no number.  They compare 64-bit values, so no
// difference overflows.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "kernel/tools/tool.h"

namespace veska {

inline constexpr std::u16string_view kSortingToolsUnit = u"SortElements";

class TSortElements : public TTool {
  VESKA_CLASS(TSortElements, TTool, kSortingToolsUnit)
 public:
  String PropertyName;
  String PropertyName1;
  bool Down = false;

  virtual void SetPropertyName(const String& name) { PropertyName = name; }
  void SetPropertyName1(const String& name) { PropertyName1 = name; }
  void SetDown(bool down) { Down = down; }
  // Negative when a sorts before b.  Here always 1.
  virtual int CompareElements(TElement* a, TElement* b);
  // The number that names Down among the numbered properties: 1 here, so that number 1 is
  // Down and PropertyName1 has no number; numbers 0 and 1 otherwise name PropertyName and
  // PropertyName1.
  virtual int32_t DownPropertyNumber() { return 1; }
  String NumberToPropertyName(int32_t number) override;
  // Sorts the members of Input; nothing for an Input that is not an entity or is empty.
  void DoIt() override;

  static void Publish(Publisher<TSortElements>& p);

 protected:
  // The members in ascending order: the binary insertion, asking CompareElements.
  virtual std::vector<TElement*> Order(std::span<TElement* const> members);
  // For a sorter of exactly the type Sorter, the order of the binary insertion by the keys that
  // `read_key` reads, once a member; for a descendant, which may compare otherwise, Order above.
  template <class Sorter, class ReadKey>
  std::vector<TElement*> OrderByKeys(std::span<TElement* const> members, ReadKey read_key);

 private:
  CachedPart<TQuickEntity> work_list_;
};

class TSortElementsByString : public TSortElements {
  VESKA_CLASS(TSortElementsByString, TSortElements, kSortingToolsUnit)
 public:
  int CompareElements(TElement* a, TElement* b) override;

 protected:
  std::vector<TElement*> Order(std::span<TElement* const> members) override;
};

class TSortElementsByInteger : public TSortElements {
  VESKA_CLASS(TSortElementsByInteger, TSortElements, kSortingToolsUnit)
 public:
  int CompareElements(TElement* a, TElement* b) override;

 protected:
  std::vector<TElement*> Order(std::span<TElement* const> members) override;
};

// By PropertyName, then by PropertyName1; its numbers 0, 1 and 2 are the two keys and Down.
class TSortElementsBy2Integers : public TSortElements {
  VESKA_CLASS(TSortElementsBy2Integers, TSortElements, kSortingToolsUnit)
 public:
  int CompareElements(TElement* a, TElement* b) override;
  int32_t DownPropertyNumber() override { return 2; }

 protected:
  std::vector<TElement*> Order(std::span<TElement* const> members) override;
};

// The values as text read as numbers (StrToExtended); text that is not a number counts as 0.
class TSortElementsByFloat : public TSortElements {
  VESKA_CLASS(TSortElementsByFloat, TSortElements, kSortingToolsUnit)
 public:
  int CompareElements(TElement* a, TElement* b) override;

 protected:
  std::vector<TElement*> Order(std::span<TElement* const> members) override;
};

// One key of a key list: a property name and the kind of its comparison.
struct SortKey {
  enum class Kind { Text, Integer, Float };
  String Name;
  Kind KeyKind = Kind::Text;
};

// "Size:i,Name": keys separated by commas; each a property name, then a colon and a kind whose
// first letter, in any case, is "f" for numbers, "i" for integers and anything else (or none)
// for text.  Every text reads: empty pieces are keys with an empty name; an empty text has no keys.
std::vector<SortKey> ParseSortKeys(StringView text);

// Sorts by a key list (PropertyName): the first key whose values differ decides.
class TSortElementsEx : public TSortElements {
  VESKA_CLASS(TSortElementsEx, TSortElements, kSortingToolsUnit)
 public:
  void SetPropertyName(const String& name) override;
  int CompareElements(TElement* a, TElement* b) override;

 private:
  std::vector<std::unique_ptr<TSortElements>> key_sorters_;
};

}  // namespace veska
