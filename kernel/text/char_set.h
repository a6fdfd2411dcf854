// TCharSet: a set of 8-bit character codes.
//
// The text functions take their delimiters, blanks and quote characters as sets of the codes
// 0..255.  A UTF-16 character above 255 is never a member, so a Czech letter or any other
// character outside Latin-1 never acts as a delimiter, whatever the set holds.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>

#include "kernel/platform/exceptions.h"

namespace veska {

class TCharSet {
 public:
  static constexpr unsigned kCapacity = 256;

  constexpr TCharSet() = default;

  // The set of the listed characters.  A character above 255 cannot be a member and raises
  // ERangeError, like an out-of-range element of a set constant would.
  constexpr TCharSet(std::initializer_list<char16_t> chars) {
    for (char16_t c : chars) Include(c);
  }

  // The set of every code from first to last inclusive (empty when last < first).
  static constexpr TCharSet Range(char16_t first, char16_t last) {
    TCharSet result;
    for (unsigned c = first; c <= last; ++c) result.Include(char16_t(c));
    return result;
  }

  constexpr bool Contains(char16_t c) const { return c < kCapacity && (words_[c / 64] >> (c % 64) & 1u) != 0; }

  constexpr TCharSet& Include(char16_t c) {
    if (c >= kCapacity) throw ERangeError(u"Character set element out of range");
    words_[c / 64] |= std::uint64_t{1} << (c % 64);
    return *this;
  }

  constexpr TCharSet& Exclude(char16_t c) {
    if (c < kCapacity) words_[c / 64] &= ~(std::uint64_t{1} << (c % 64));
    return *this;
  }

  constexpr bool IsEmpty() const {
    for (std::uint64_t word : words_) {
      if (word != 0) return false;
    }
    return true;
  }

  // Union, difference and intersection, written + - * as the set operators are in the system's code.
  friend constexpr TCharSet operator+(TCharSet a, const TCharSet& b) {
    for (unsigned i = 0; i < a.words_.size(); ++i) a.words_[i] |= b.words_[i];
    return a;
  }
  friend constexpr TCharSet operator-(TCharSet a, const TCharSet& b) {
    for (unsigned i = 0; i < a.words_.size(); ++i) a.words_[i] &= ~b.words_[i];
    return a;
  }
  friend constexpr TCharSet operator*(TCharSet a, const TCharSet& b) {
    for (unsigned i = 0; i < a.words_.size(); ++i) a.words_[i] &= b.words_[i];
    return a;
  }
  friend constexpr bool operator==(const TCharSet&, const TCharSet&) = default;

 private:
  std::array<std::uint64_t, kCapacity / 64> words_{};
};

}  // namespace veska
