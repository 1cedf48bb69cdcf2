// Products of 32-bit lanes taken as unsigned, in 64 bits.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/lanes.h"

namespace qorsr {

namespace native {
// Products of the lower 32 bits of 64-bit lanes, unsigned.
template <class V>
inline V unsignedProducts(V a, V b) {
#if defined(__AVX512F__)
  if constexpr (sizeof(V) == 64) return V(_mm512_mul_epu32(__m512i(a), __m512i(b)));
#endif
#if defined(__AVX2__)
  if constexpr (sizeof(V) == 32) return V(_mm256_mul_epu32(__m256i(a), __m256i(b)));
#endif
#if defined(__SSE3__)
  if constexpr (sizeof(V) == 16) return V(_mm_mul_epu32(__m128i(a), __m128i(b)));
#endif
  return (a & 0xFFFFFFFF) * (b & 0xFFFFFFFF);
}
}  // namespace native

// Products of the even lanes, or of the odd ones, exact.
template <bool Odd, int N>
inline Lanes<uint64_t, N / 2> unsignedProducts(const Lanes<int32_t, N>& a, const Lanes<int32_t, N>& b) {
  Lanes<uint64_t, N / 2> v;
  using Part = typename Lanes<uint64_t, N / 2>::Part;
  for (int i = 0; i < v.kParts; ++i) {
    const auto x = std::bit_cast<Part>(a.part[i]), y = std::bit_cast<Part>(b.part[i]);
    v.part[i] = Odd ? native::unsignedProducts<Part>(x >> 32, y >> 32) : native::unsignedProducts<Part>(x, y);
  }
  return v;
}

}  // namespace qorsr
