// Reading a fuzzer's bytes: a few leading choices, then the rest as data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "kernel/platform/string.h"

namespace veska::fuzz {

class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) : bytes_(data, size) {}

  // The next byte as a choice among `count` (0 when the input is used up or count is 0).
  std::size_t Choose(std::size_t count) {
    if (bytes_.empty() || count == 0) return 0;
    const std::size_t choice = bytes_.front() % count;
    bytes_ = bytes_.subspan(1);
    return choice;
  }
  // The next `count` bytes (fewer where the input ends), read as UTF-8.
  String TakeString(std::size_t count) {
    const std::span<const std::uint8_t> taken = bytes_.first(count < bytes_.size() ? count : bytes_.size());
    bytes_ = bytes_.subspan(taken.size());
    return FromUtf8({reinterpret_cast<const char*>(taken.data()), taken.size()});
  }
  // The rest of the input.
  std::span<const std::uint8_t> Rest() const { return bytes_; }
  std::string_view RestAsText() const { return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()}; }
  // The rest, read as UTF-8 (ill-formed sequences become U+FFFD).
  String RestAsString() const { return FromUtf8(RestAsText()); }

 private:
  std::span<const std::uint8_t> bytes_;
};

}  // namespace veska::fuzz
