// A variable set for the length of a scope and given back its value when the scope ends, on
// every way out, an exception included.
#pragma once

#include <utility>

namespace veska {

template <class T>
class ScopedValue {
 public:
  ScopedValue(T& variable, T value) : variable_(variable), saved_(std::exchange(variable, std::move(value))) {}
  ~ScopedValue() { variable_ = std::move(saved_); }
  ScopedValue(const ScopedValue&) = delete;
  ScopedValue& operator=(const ScopedValue&) = delete;

 private:
  T& variable_;
  T saved_;
};

}  // namespace veska
