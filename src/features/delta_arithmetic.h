// What features and derivatives are computed in, and what they are multiplied by.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/lanes.h"

namespace qorsr {

// ---- Factors: of derivative 0 (the features), 1 and 2, at a column ----

// None: values are stored as they are.
template <class T>
struct NoFactors {
  static constexpr bool kOfFeatures = false, kOfDerivatives = false;
  static constexpr bool given() { return true; }
};

// One number for each derivative; features are stored as they are.
template <class T>
struct UniformFactors {
  static constexpr bool kOfFeatures = false, kOfDerivatives = true;
  T first, second;

  static constexpr bool given() { return true; }
  template <int N>
  Lanes<T, N> at(int derivative, std::ptrdiff_t) const {
    return Lanes<T, N>(derivative == 1 ? first : second);
  }
};

// A table with an entry for each element of a destination row.
template <class T>
struct TableFactors {
  static constexpr bool kOfFeatures = true, kOfDerivatives = true;
  const T* table;
  int32_t width;

  bool given() const { return table != nullptr; }
  template <int N>
  Lanes<T, N> at(int derivative, std::ptrdiff_t column) const {
    return Lanes<T, N>::load(table + std::ptrdiff_t{derivative} * width + column);
  }
};

// ---- Arithmetic ----

// 32-bit float: value times factor.
struct RealArithmetic {
  using Element = float;

  template <int N>
  static Lanes<float, N> load(const float* p) {
    return Lanes<float, N>::load(p);
  }
  template <int N>
  static Lanes<float, N> scaled(const Lanes<float, N>& value, const Lanes<float, N>& factor) {
    return value * factor;
  }

  // Sum over k from 1 to `window` of k * (ahead(k) - behind(k)), in that order, from 0.
  template <int N, class Ahead, class Behind>
  static Lanes<float, N> regression(int32_t window, const Ahead& ahead, const Behind& behind) {
    Lanes<float, N> sum(0.0F);
    for (int32_t k = 1; k <= window; ++k) sum += Lanes<float, N>(static_cast<float>(k)) * (ahead(k) - behind(k));
    return sum;
  }
  template <int N>
  static Lanes<float, N> scaledSum(const Lanes<float, N>& sum, const Lanes<float, N>& factor) {
    return sum * factor;
  }
};

}  // namespace qorsr
