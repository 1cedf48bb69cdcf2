// Verbs of lanes of 16-bit integers: squares in two halves, conversions to float, 32-bit sums that wrap.
//
// Like lanes.h this file knows the instruction level. All results are exact or wrap: the same at every level.
#pragma once

#include <bit>
#include <cstdint>
#include <utility>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

#if defined(__SSE3__)
inline Vector<int16_t, 8> squareUpper(Vector<int16_t, 8> a) { return Vector<int16_t, 8>(_mm_mulhi_epi16(__m128i(a), __m128i(a))); }
#endif
#if defined(__AVX2__)
inline Vector<int16_t, 16> squareUpper(Vector<int16_t, 16> a) {
  return Vector<int16_t, 16>(_mm256_mulhi_epi16(__m256i(a), __m256i(a)));
}
#endif
#if defined(__AVX512BW__)
inline Vector<int16_t, 32> squareUpper(Vector<int16_t, 32> a) {
  return Vector<int16_t, 32>(_mm512_mulhi_epi16(__m512i(a), __m512i(a)));
}
#endif

// Vectors without an instruction of their own: element by element.
template <class V>
inline V squareUpper(V a) {
  V v{};
  for (std::size_t i = 0; i < sizeof(V) / 2; ++i) v[i] = static_cast<int16_t>(static_cast<int32_t>(a[i]) * a[i] >> 16);
  return v;
}
// The Index-th W lanes of v as floats.
template <int W, int Index, class V>
inline Vector<float, W> shortsToFloats(V v) {
  constexpr int kLanes = static_cast<int>(sizeof(V) / 2);
#if defined(__SSE3__) && !defined(__AVX2__)
  if constexpr (kLanes == 8 && W == 4) {
    const __m128i twice = Index == 0 ? _mm_unpacklo_epi16(__m128i(v), __m128i(v)) : _mm_unpackhi_epi16(__m128i(v), __m128i(v));
    return _mm_cvtepi32_ps(_mm_srai_epi32(twice, 16));
  }
#endif
  if constexpr (kLanes == W) {
    return __builtin_convertvector(__builtin_convertvector(v, Vector<int32_t, W>), Vector<float, W>);
  } else if constexpr (Index == 0) {
    return shortsToFloats<W, 0>(pick<Vector<int16_t, kLanes / 2>>(v, std::make_index_sequence<kLanes / 2>()));
  } else {
    return shortsToFloats<W, 0>(Vector<int16_t, kLanes / 2>(upper(v, std::make_index_sequence<kLanes / 2>())));
  }
}

}  // namespace native

// The square of a 16-bit number in two halves: its upper 16 bits, and its lower 16 bits shifted right by one.
template <int N>
struct SplitSquare {
  Lanes<int16_t, N> upper, halvedLower;
};
template <int N>
inline SplitSquare<N> splitSquare(const Lanes<int16_t, N>& a) {
  using L = Lanes<int16_t, N>;
  using Part = typename L::Part;
  using Unsigned = native::Vector<uint16_t, L::kPart>;
  return {L::each(a, [](Part x) { return native::squareUpper(x); }), L::each(a, [](Part x) {
            const auto u = std::bit_cast<Unsigned>(x);
            return std::bit_cast<Part>(Unsigned(u * u) >> 1);
          })};
}

// Exact, or for 32-bit integers rounded, in the caller's mode.
template <int N>
inline Lanes<float, N> toFloat(const Lanes<int16_t, N>& a) {
  using L = Lanes<float, N>;
  L v;
  constexpr int kRatio = Lanes<int16_t, N>::kPart / L::kPart;
  for (int i = 0; i < Lanes<int16_t, N>::kParts; ++i) {
    v.part[kRatio * i] = native::shortsToFloats<L::kPart, 0>(a.part[i]);
    if constexpr (kRatio == 2) v.part[2 * i + 1] = native::shortsToFloats<L::kPart, 1>(a.part[i]);
  }
  return v;
}
template <int N>
inline Lanes<float, N> toFloat(const Lanes<int32_t, N>& a) {
  Lanes<float, N> v;
  for (int i = 0; i < v.kParts; ++i) v.part[i] = __builtin_convertvector(a.part[i], typename Lanes<float, N>::Part);
  return v;
}

// Lanes of sums that wrap are unsigned: signed overflow is undefined.
template <int N>
inline Lanes<uint32_t, N> asUnsigned(const Lanes<int32_t, N>& a) {
  return std::bit_cast<Lanes<uint32_t, N>>(a);
}
template <int N>
inline Lanes<int32_t, N> asSigned(const Lanes<uint32_t, N>& a) {
  return std::bit_cast<Lanes<int32_t, N>>(a);
}

}  // namespace qorsr
