// A hash index of names with the letters a-z folded, for the lookups by name that run on every
// property access and every creation by class name.  The index keeps views of the names, not
// copies: the owner of the index keeps the names alive and unchanged, or builds it afresh.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "kernel/platform/string.h"

namespace veska {

// Whether two names of one length are equal with the letters a-z folded; other characters
// must match exactly.
constexpr bool SameFoldedChars(const char16_t* a, const char16_t* b, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    if (AsciiUpperChar(a[i]) != AsciiUpperChar(b[i])) return false;
  }
  return true;
}

// Four characters from the position, as one number.
inline uint64_t FourChars(const char16_t* at) {
  uint64_t chars;
  std::memcpy(&chars, at, sizeof chars);
  return chars;
}

// SameFoldedChars for names of any length.  Names are mostly looked up as they were declared,
// so the exact match is tried first, four characters at a time (the last four overlapping the
// others), and the folded comparison only when it fails.
inline bool SameFoldedName(StringView a, StringView b) {
  const std::size_t size = a.size();
  if (size != b.size()) return false;
  if (size >= 4) {
    bool same = FourChars(a.data() + size - 4) == FourChars(b.data() + size - 4);
    for (std::size_t i = 0; same && i + 4 < size; i += 4) same = FourChars(a.data() + i) == FourChars(b.data() + i);
    if (same) return true;
  }
  return SameFoldedChars(a.data(), b.data(), size);
}

// A hash on which names equal with a-z folded agree, from the length and the first and last
// four characters: names are short, and a collision costs only a comparison.  Clearing bit 5
// of every character folds a-z onto A-Z (and merges a few other pairs, which again costs only
// a comparison).
inline uint32_t FoldedNameHash(StringView name) {
  constexpr uint64_t kFold = ~uint64_t{0x0020'0020'0020'0020};
  constexpr uint64_t kMix = 0x9E37'79B9'7F4A'7C15;
  uint64_t head = 0;
  uint64_t tail = 0;
  if (name.size() >= 4) {
    std::memcpy(&head, name.data(), sizeof head);
    std::memcpy(&tail, name.data() + name.size() - 4, sizeof tail);
  } else {
    for (const char16_t c : name) head = (head << 16) | c;
  }
  const uint64_t mixed = (head & kFold) ^ std::rotl(tail & kFold, 29) ^ name.size();
  return static_cast<uint32_t>((mixed * kMix) >> 32);
}

// Open addressing with linear probing over a power-of-two table at most half full.  Value is a
// small copyable handle (an index or a pointer).  Each slot holds the view of its name, so a
// probe reads the slot and the name's characters and nothing else.
template <class Value>
class FoldedNameIndex {
 public:
  void Clear() {
    slots_.clear();
    used_ = 0;
  }

  // Adds the value under the name unless the name is there already: the first value added
  // under a name is the one found.
  void AddIfAbsent(StringView name, Value value) {
    if (2 * (used_ + 1) > slots_.size()) Grow();
    const uint32_t hash = FoldedNameHash(name);
    for (std::size_t i = hash & Mask();; i = (i + 1) & Mask()) {
      Slot& slot = slots_[i];
      if (!slot.Used()) {
        slot = Slot{hash, name, value};
        ++used_;
        return;
      }
      if (slot.hash == hash && SameFoldedName(slot.name, name)) return;
    }
  }

  // The value of the name, or none.
  const Value* Find(StringView name) const {
    if (slots_.empty()) return nullptr;
    const uint32_t hash = FoldedNameHash(name);
    for (std::size_t i = hash & Mask();; i = (i + 1) & Mask()) {
      const Slot& slot = slots_[i];
      if (!slot.Used()) return nullptr;
      if (slot.hash == hash && SameFoldedName(slot.name, name)) return &slot.value;
    }
  }

 private:
  struct Slot {
    uint32_t hash = 0;
    StringView name{nullptr, 0};  // a name's characters are never at no address
    Value value{};
    bool Used() const { return name.data() != nullptr; }
  };

  std::size_t Mask() const { return slots_.size() - 1; }

  void Grow() {
    std::vector<Slot> old = std::move(slots_);
    slots_.assign(std::bit_ceil(std::max<std::size_t>(8, 4 * (used_ + 1))), Slot{});
    used_ = 0;
    for (const Slot& slot : old) {
      if (slot.Used()) AddIfAbsent(slot.name, slot.value);
    }
  }

  std::vector<Slot> slots_;
  std::size_t used_ = 0;
};

}  // namespace veska
