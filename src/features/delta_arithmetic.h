// What features and derivatives are computed in, and what they are multiplied by.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "frame/bits.h"
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
  static Lanes<float, N> windowed(const Lanes<float, N>& x) {
    return x;
  }
  template <int N>
  static Lanes<float, N> scaled(const Lanes<float, N>& value, const Lanes<float, N>& factor) {
    return value * factor;
  }

  // Sum over k from 1 to `window` of k * (ahead(k) - behind(k)), in that order, from 0; times the factor.
  template <int N, class Ahead, class Behind>
  static Lanes<float, N> regression(int32_t window, const Ahead& ahead, const Behind& behind, const Lanes<float, N>& factor) {
    Lanes<float, N> sum(0.0F);
    for (int32_t k = 1; k <= window; ++k) sum += Lanes<float, N>(static_cast<float>(k)) * (ahead(k) - behind(k));
    return sum * factor;
  }
};

// 16 bits: differences wrap, the product with the factor has 32 bits, is shifted by the scale factor, then limited. Windows see
// unsigned lanes, which may wrap.
struct FixedArithmetic {
  using Element = int16_t;
  ScaleShift shift;

  template <int N>
  static Lanes<uint16_t, N> windowed(const Lanes<int16_t, N>& x) {
    return std::bit_cast<Lanes<uint16_t, N>>(x);
  }
  template <int N>
  [[gnu::always_inline]] Lanes<int16_t, N> scaled(const Lanes<uint16_t, N>& value, const Lanes<int16_t, N>& factor) const {
    return scaled(std::bit_cast<Lanes<int16_t, N>>(value), factor);
  }
  template <int N>
  [[gnu::always_inline]] Lanes<int16_t, N> scaled(const Lanes<int16_t, N>& value, const Lanes<int16_t, N>& factor) const {
    if constexpr (N == 1) {
      return limited(Lanes<int32_t, 1>(int32_t{value.part[0]} * factor.part[0]));
    } else {
      const Lanes<int16_t, N> zero(0);  // a pair's second product
      return limited(pairDots(interleaved(value, zero).first, interleaved(factor, zero).first),
                     pairDots(interleaved(value, zero).second, interleaved(factor, zero).second));
    }
  }

  // The same sum, modulo 2^32, of differences modulo 2^16. Without a product: with s(k) = d(W) + ... + d(k), it is s(W) + ... +
  // s(1).
  template <int N, class Ahead, class Behind>
  Lanes<int16_t, N> regression(int32_t window, const Ahead& ahead, const Behind& behind, const Lanes<int16_t, N>& factor) const {
    const auto difference = [&](int32_t k) { return std::bit_cast<Lanes<int16_t, N>>(ahead(k) - behind(k)); };
    if constexpr (N == 1) {
      uint32_t tail = 0, sum = 0;
      for (int32_t k = window; k >= 1; --k) sum += tail += static_cast<uint32_t>(difference(k).part[0]);
      return limited(Lanes<int32_t, 1>(wrapMul(static_cast<int32_t>(sum), int32_t{factor.part[0]})));
    } else {
      using Half = Lanes<uint32_t, N / 2>;
      Half tail0(0), tail1(0), sum0(0), sum1(0);
      for (int32_t k = window; k >= 1; --k) {
        const Lanes<int16_t, N> d = difference(k);
        sum0 += tail0 += std::bit_cast<Half>(lowerHalf(as<int32_t>(d)));
        sum1 += tail1 += std::bit_cast<Half>(upperHalf(as<int32_t>(d)));
      }
      using Signed = Lanes<int32_t, N / 2>;
      return limited(std::bit_cast<Signed>(sum0 * std::bit_cast<Half>(lowerHalf(as<int32_t>(factor)))),
                     std::bit_cast<Signed>(sum1 * std::bit_cast<Half>(upperHalf(as<int32_t>(factor)))));
    }
  }

  // A 32-bit product, shifted and limited.
  [[gnu::always_inline]] Lanes<int16_t, 1> limited(const Lanes<int32_t, 1>& product) const {
    return Lanes<int16_t, 1>(saturate<int16_t>(shift(product).part[0]));
  }
  template <int N>
  [[gnu::always_inline]] Lanes<int16_t, 2 * N> limited(const Lanes<int32_t, N>& lower, const Lanes<int32_t, N>& upper) const {
    return saturated(shift(lower), shift(upper));
  }
};

}  // namespace qorsr
