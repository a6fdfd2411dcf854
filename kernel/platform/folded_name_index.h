// A hash index of names with the letters a-z folded, for the lookups by name that run on every
// property access and every creation by class name.  The index keeps views of the names, not
// copies: the owner of the index keeps the names alive and unchanged, or builds it afresh.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "kernel/platform/string.h"

namespace veska {

// Four characters from the position, as one number.
inline uint64_t FourChars(const char16_t* at) {
  uint64_t chars;
  std::memcpy(&chars, at, sizeof chars);
  return chars;
}

// Whether two names of one length are the same, character for character: four characters at
// a time, the last four overlapping the others.
inline bool SameChars(const char16_t* a, const char16_t* b, std::size_t size) {
  if (size < 4) {
    for (std::size_t i = 0; i < size; ++i) {
      if (a[i] != b[i]) return false;
    }
    return true;
  }
  bool same = FourChars(a + size - 4) == FourChars(b + size - 4);
  for (std::size_t i = 0; same && i + 4 < size; i += 4) same = FourChars(a + i) == FourChars(b + i);
  return same;
}

// Whether two names are equal with the letters a-z folded; other characters must match exactly.
bool SameFoldedName(StringView a, StringView b);

// A hash on which names equal with a-z folded agree.  Clearing bit 5 of every character folds
// a-z onto A-Z (and merges a few other pairs, which only costs a comparison).  Every character
// counts, so that names of one length and one prefix and suffix ("TModelAElement",
// "TModelBElement") do not share a slot; the characters go in four at a time (the last four
// overlapping the others) by a rotation and an exclusive or, and one multiplication mixes the
// whole at the end.
inline uint32_t FoldedNameHash(StringView name) {
  constexpr uint64_t kFold = ~uint64_t{0x0020'0020'0020'0020};
  constexpr uint64_t kMix = 0x9E37'79B9'7F4A'7C15;
  const std::size_t size = name.size();
  uint64_t hash = size;
  if (size < 4) {
    for (const char16_t c : name) hash = (hash << 16) | c;
    hash &= kFold;
  } else {
    for (std::size_t i = 0; i + 4 < size; i += 4) hash = std::rotl(hash, 23) ^ (FourChars(name.data() + i) & kFold);
    hash = std::rotl(hash, 23) ^ (FourChars(name.data() + size - 4) & kFold);
  }
  return static_cast<uint32_t>((hash * kMix) >> 32);
}

// Open addressing with linear probing over a power-of-two table at most half full.  Value is a
// small copyable handle (an index or a pointer).  Each slot holds the view of its name, so a
// probe reads the slot and the name's characters and nothing else.
template <class Value>
class FoldedNameIndex {
 public:
  FoldedNameIndex() { Clear(); }

  void Clear() {
    // Never without slots, so that a lookup need not ask.
    slots_.assign(kLeastSize, Slot{});
    mask_ = kLeastSize - 1;
    used_ = 0;
  }

  // Adds the value under the name unless the name is there already: the first value added
  // under a name is the one found.
  void AddIfAbsent(StringView name, Value value) {
    if (2 * (used_ + 1) > slots_.size()) Grow();
    const uint32_t hash = FoldedNameHash(name);
    for (std::size_t i = hash & mask_;; i = (i + 1) & mask_) {
      Slot& slot = slots_[i];
      if (!slot.Used()) {
        slot = Slot{hash, name, value};
        ++used_;
        return;
      }
      if (slot.hash == hash && SameFoldedName(slot.name, name)) return;
    }
  }

  // The value of the name, or none.  Names are mostly looked up as they were declared: the
  // probe compares exactly, and only a name that differs from a candidate in case alone takes
  // the folded probe, out of line.
  [[gnu::always_inline]] const Value* Find(StringView name) const {
    const uint32_t hash = FoldedNameHash(name);
    bool differs_in_case = false;
    for (std::size_t i = hash & mask_;; i = (i + 1) & mask_) {
      const Slot& slot = slots_[i];
      if (!slot.Used()) return differs_in_case ? FindFolded(name, hash) : nullptr;
      if (slot.hash == hash && slot.name.size() == name.size()) {
        if (SameChars(slot.name.data(), name.data(), name.size())) return &slot.value;
        differs_in_case = true;
      }
    }
  }

 private:
  static constexpr std::size_t kLeastSize = 8;

  struct Slot {
    uint32_t hash = 0;
    StringView name{nullptr, 0};  // a name's characters are never at no address
    Value value{};
    bool Used() const { return name.data() != nullptr; }
  };

  // The probe of Find with folded comparisons.  One name at most is equal to any other with
  // a-z folded, as AddIfAbsent keeps a second one out.
  [[gnu::noinline]] const Value* FindFolded(StringView name, uint32_t hash) const {
    for (std::size_t i = hash & mask_;; i = (i + 1) & mask_) {
      const Slot& slot = slots_[i];
      if (!slot.Used()) return nullptr;
      if (slot.hash == hash && SameFoldedName(slot.name, name)) return &slot.value;
    }
  }

  void Grow() {
    std::vector<Slot> old = std::move(slots_);
    // Called only when more than half of at least kLeastSize slots would be in use, so the new
    // table is at least four times kLeastSize.
    slots_.assign(std::bit_ceil(4 * (used_ + 1)), Slot{});
    mask_ = slots_.size() - 1;
    used_ = 0;
    for (const Slot& slot : old) {
      if (slot.Used()) AddIfAbsent(slot.name, slot.value);
    }
  }

  std::vector<Slot> slots_;
  std::size_t mask_ = 0;  // the table's size less one
  std::size_t used_ = 0;
};

}  // namespace veska
