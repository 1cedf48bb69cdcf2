// Lanes times powers of two.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

// Whether the level multiplies by 2^n in one instruction, rounding once.
template <class V>
inline constexpr bool kScales = kNativeBytes == 64 && sizeof(V) == 64;
template <class V>
inline V scaled(V a, V n) {
#if defined(__AVX512F__)
  if constexpr (std::is_same_v<V, Vector<float, 16>>) return _mm512_scalef_ps(a, n);
  if constexpr (std::is_same_v<V, Vector<double, 8>>) return _mm512_scalef_pd(a, n);
#endif
  return a * n;
}

}  // namespace native

// a * 2^n, rounded once: a near 1, n whole, -2 kBias to kBias + 2. `biased` holds n + 2 kBias in its low bits: half of that, and the other
// half, are the exponents of two factors, since 2^n itself need not be a normal number.
template <class T, int N, class Bits>
inline Lanes<T, N> scaled(const Lanes<T, N>& a, const Lanes<T, N>& n, const Lanes<Bits, N>& biased) {
  static_assert(sizeof(Bits) == sizeof(T) && std::is_unsigned_v<Bits>);
  using Part = typename Lanes<T, N>::Part;
  constexpr auto kMantissaBits = static_cast<Bits>(sizeof(T) == 8 ? 52 : 23);
  Lanes<T, N> v;
  for (int i = 0; i < v.kParts; ++i) {
    if constexpr (native::kScales<Part>) {
      v.part[i] = native::scaled(a.part[i], n.part[i]);
    } else {
      const auto both = biased.part[i];
      const decltype(both) half = both >> Bits{1}, first = half << kMantissaBits, second = (both - half) << kMantissaBits;
      v.part[i] = a.part[i] * std::bit_cast<Part>(first) * std::bit_cast<Part>(second);
    }
  }
  return v;
}

}  // namespace qorsr
