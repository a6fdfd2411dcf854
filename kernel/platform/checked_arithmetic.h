// Range- and overflow-checked integer arithmetic.  Some of the kernel's loops rely on range and
// overflow errors (a 16-bit counter that must not wrap, say); these helpers raise them where the
// library needs that behaviour.
#pragma once

#include <concepts>
#include <limits>
#include <utility>

#include "kernel/platform/exceptions.h"

namespace veska {

// The value converted to Target; ERangeError when it does not fit.
template <std::integral Target, std::integral Source>
constexpr Target CheckedRange(Source value) {
  if (!std::in_range<Target>(value)) throw ERangeError(u"Range check error");
  return static_cast<Target>(value);
}

// a + b, a - b and a * b; EIntOverflow when the result does not fit in T.
template <std::integral T>
constexpr T CheckedAdd(T a, T b) {
  T result{};
  if (__builtin_add_overflow(a, b, &result)) throw EIntOverflow(u"Integer overflow");
  return result;
}

template <std::integral T>
constexpr T CheckedSub(T a, T b) {
  T result{};
  if (__builtin_sub_overflow(a, b, &result)) throw EIntOverflow(u"Integer overflow");
  return result;
}

template <std::integral T>
constexpr T CheckedMul(T a, T b) {
  T result{};
  if (__builtin_mul_overflow(a, b, &result)) throw EIntOverflow(u"Integer overflow");
  return result;
}

}  // namespace veska
