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

// SameFoldedChars for names of any length.  Names are mostly looked up as they were declared,
// so four characters at a time are compared exactly first, and folded only where they differ.
inline bool SameFoldedName(StringView a, StringView b) {
  if (a.size() != b.size()) return false;
  std::size_t i = 0;
  for (; i + 4 <= a.size(); i += 4) {
    uint64_t x;
    uint64_t y;
    std::memcpy(&x, a.data() + i, sizeof x);
    std::memcpy(&y, b.data() + i, sizeof y);
    if (x != y && !SameFoldedChars(a.data() + i, b.data() + i, 4)) return false;
  }
  return SameFoldedChars(a.data() + i, b.data() + i, a.size() - i);
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
  const uint64_t mixed = ((head & kFold) * kMix) ^ ((tail & kFold) + name.size());
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
