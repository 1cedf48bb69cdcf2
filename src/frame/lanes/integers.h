// Lanes of whole numbers: shifts, saturation, shuffles within one register, products of pairs.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/lanes/permuted.h"

namespace qorsr {

// ---- Shifts and saturation ----

// Every lane shifted by one count below the width: right with copies of the sign, left modulo two to the width.
template <class T, int N>
inline Lanes<T, N> shiftRight(const Lanes<T, N>& a, int count) {
  return a >> count;
}
template <class T, int N>
inline Lanes<T, N> shiftLeft(const Lanes<T, N>& a, int count) {
  using U = native::Vector<std::make_unsigned_t<T>, Lanes<T, N>::kPart>;
  return Lanes<T, N>::each(a, [=](auto x) { return std::bit_cast<decltype(x)>(static_cast<U>(std::bit_cast<U>(x) << count)); });
}

namespace native {

// a - b, limited to -32768 to 32767.
template <class V>
inline V subtractSaturated(V a, V b) {
#if defined(__AVX512BW__)
  if constexpr (sizeof(V) == 64) return V(_mm512_subs_epi16(__m512i(a), __m512i(b)));
#endif
#if defined(__AVX2__)
  if constexpr (sizeof(V) == 32) return V(_mm256_subs_epi16(__m256i(a), __m256i(b)));
#endif
#if defined(__SSE3__)
  if constexpr (sizeof(V) == 16) return V(_mm_subs_epi16(__m128i(a), __m128i(b)));
#endif
  if constexpr (sizeof(V) == sizeof(int16_t)) {
    const int32_t d = static_cast<int32_t>(a) - b;
    return static_cast<int16_t>(d < -32768 ? -32768 : d > 32767 ? 32767 : d);
  } else {
    V v;
    for (std::size_t i = 0; i < sizeof(V) / sizeof(int16_t); ++i) v[i] = subtractSaturated<int16_t>(a[i], b[i]);
    return v;
  }
}

}  // namespace native

template <int N>
inline Lanes<int16_t, N> subtractSaturated(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& b) {
  return Lanes<int16_t, N>::each(a, b, [](auto x, auto y) { return native::subtractSaturated(x, y); });
}

namespace native {
// The upper 16 bits of the products.
template <class V>
inline V upperProducts(V a, V b) {
#if defined(__AVX512BW__)
  if constexpr (sizeof(V) == 64) return V(_mm512_mulhi_epi16(__m512i(a), __m512i(b)));
#endif
#if defined(__AVX2__)
  if constexpr (sizeof(V) == 32) return V(_mm256_mulhi_epi16(__m256i(a), __m256i(b)));
#endif
#if defined(__SSE3__)
  if constexpr (sizeof(V) == 16) return V(_mm_mulhi_epi16(__m128i(a), __m128i(b)));
#endif
  V v{};
  for (std::size_t i = 0; i < sizeof(V) / sizeof(int16_t); ++i)
    v[i] = static_cast<int16_t>(static_cast<int32_t>(a[i]) * b[i] >> 16);
  return v;
}
}  // namespace native

// Of int16 lanes the upper 16 bits of a * b.
template <int N>
inline Lanes<int16_t, N> upperProducts(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& b) {
  return Lanes<int16_t, N>::each(a, b, [](auto x, auto y) { return native::upperProducts(x, y); });
}

// ---- Products ----

namespace native {
template <int W>
inline Vector<int32_t, W / 2> pairDots(Vector<int16_t, W> a, Vector<int16_t, W> b) {
  using Sum = Vector<int32_t, W / 2>;
#if defined(__AVX512BW__)
  if constexpr (W == 32) return Sum(_mm512_madd_epi16(__m512i(a), __m512i(b)));
#endif
#if defined(__AVX2__)
  if constexpr (W == 16) return Sum(_mm256_madd_epi16(__m256i(a), __m256i(b)));
#endif
#if defined(__SSE3__)
  if constexpr (W == 8) return Sum(_mm_madd_epi16(__m128i(a), __m128i(b)));
#endif
  Sum v;
  for (int i = 0; i < W / 2; ++i) {
    const auto product = [&](int k) { return static_cast<uint32_t>(static_cast<int32_t>(a[k]) * b[k]); };
    v[i] = static_cast<int32_t>(product(2 * i) + product(2 * i + 1));
  }
  return v;
}
}  // namespace native

// Products of int16 lanes, neighbouring pairs added: lane i is a[2i] * b[2i] + a[2i+1] * b[2i+1], modulo 2^32.
template <int N>
inline Lanes<int32_t, N / 2> pairDots(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& b) {
  Lanes<int32_t, N / 2> v;
  for (int i = 0; i < v.kParts; ++i) v.part[i] = native::pairDots<Lanes<int16_t, N>::kPart>(a.part[i], b.part[i]);
  return v;
}

// Shifts by a scale factor, as shiftByScale() of bits.h does. Made once a call; each use is the same few operations, without a
// branch.
class ScaleShift {
 public:
  explicit ScaleShift(int64_t scaleFactor)
      : left_(scaleFactor >= 0    ? 0
              : scaleFactor < -31 ? 31
                                  : static_cast<int>(-scaleFactor)),
        right_(scaleFactor < 0    ? 0
               : scaleFactor > 31 ? 31
                                  : static_cast<int>(scaleFactor)),
        kept_(scaleFactor < -31 ? 0 : ~0U) {}

  template <int N>
  [[gnu::always_inline]] Lanes<int32_t, N> operator()(const Lanes<int32_t, N>& a) const {
    using Part = typename Lanes<int32_t, N>::Part;
    using Bits = typename Lanes<uint32_t, N>::Part;
    return Lanes<int32_t, N>::each(
        a, [this](Part x)
               __attribute__((always_inline)) { return Part(Part(Bits((std::bit_cast<Bits>(x) & kept_) << left_)) >> right_); });
  }

 private:
  int left_, right_;
  uint32_t kept_;
};

// Two halves in one, each lane limited to 16 bits.
template <int N>
inline Lanes<int16_t, 2 * N> saturated(const Lanes<int32_t, N>& lower, const Lanes<int32_t, N>& upper) {
  Lanes<int16_t, 2 * N> v;
  static_assert(v.kParts == 1);
  using Part [[maybe_unused]] = typename Lanes<int16_t, 2 * N>::Part;
#if defined(__AVX512BW__)
  if constexpr (N == 16) {
    const __m512i pairs = _mm512_packs_epi32(__m512i(lower.part[0]), __m512i(upper.part[0]));  // in order within 128 bits
    v.part[0] = Part(_mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), pairs));
    return v;
  }
#endif
#if defined(__AVX2__)
  if constexpr (N == 8) {
    const __m256i pairs = _mm256_packs_epi32(__m256i(lower.part[0]), __m256i(upper.part[0]));
    v.part[0] = Part(_mm256_permute4x64_epi64(pairs, 0xD8));
    return v;
  }
#endif
#if defined(__SSE3__)
  if constexpr (N == 4) {
    v.part[0] = Part(_mm_packs_epi32(__m128i(lower.part[0]), __m128i(upper.part[0])));
    return v;
  }
#endif
  for (int i = 0; i < 2 * N; ++i) {
    const int32_t x = i < N ? lower.part[0][i] : upper.part[0][i - N];
    v.part[0][i] = static_cast<int16_t>(x < INT16_MIN ? INT16_MIN : x > INT16_MAX ? INT16_MAX : x);
  }
  return v;
}

// Lanes limited to -32768 to 32767.
template <int N>
inline Lanes<int16_t, N> saturated(const Lanes<int32_t, N>& a) {
  using L = Lanes<int16_t, N>;
  L v;
  for (int i = 0; i < L::kParts; ++i) {
    if constexpr (N == 1) {
      v.part[i] = static_cast<int16_t>(a.part[i] < -32768 ? -32768 : a.part[i] > 32767 ? 32767 : a.part[i]);
    } else if constexpr (L::kPart == Lanes<int32_t, N>::kPart) {
      const auto limited = native::max(native::min(a.part[i], Lanes<int32_t, N>(32767).part[0]), Lanes<int32_t, N>(-32768).part[0]);
      v.part[i] = __builtin_convertvector(limited, typename L::Part);
    } else {
      using Half = Lanes<int32_t, L::kPart / 2>;
      v.part[i] = saturated(std::bit_cast<Half>(a.part[2 * i]), std::bit_cast<Half>(a.part[2 * i + 1])).part[0];
    }
  }
  return v;
}

}  // namespace qorsr
