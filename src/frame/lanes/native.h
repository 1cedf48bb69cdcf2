// Native vectors: what the processor's registers of one level do, under one name at every level.
//
// Overloads for vectors that have an instruction come first, templates that go element by element behind them: these serve plain
// numbers (W = 1) and processors without vectors, and give the same bits.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#if defined(__SSE3__)
#include <immintrin.h>
#endif

namespace qorsr {

#if defined(__AVX512F__)
inline constexpr int kNativeBytes = 64;
#elif defined(__AVX2__)
inline constexpr int kNativeBytes = 32;
#else
inline constexpr int kNativeBytes = 16;
#endif

// As many as one native register holds.
template <class T>
inline constexpr int kNativeLanes = kNativeBytes / static_cast<int>(sizeof(T));

namespace native {

template <class T, int W>
struct VectorOf {
  typedef T type __attribute__((vector_size(W * sizeof(T))));
};
template <class T>
struct VectorOf<T, 1> {
  typedef T type;
};

// W numbers in one register; W = 1 is the number itself.
template <class T, int W>
using Vector = typename VectorOf<T, W>::type;

template <class V>
inline V load(const void* p) {
  V v;
  std::memcpy(&v, p, sizeof(V));
  return v;
}
// By value: stored from the register. GCC copies an element of an array from memory to memory, in pieces.
template <class V>
inline void store(void* p, V v) {
  std::memcpy(p, &v, sizeof(V));
}

// The lower or the upper half of the lanes.
template <bool Upper, class V>
inline auto half(V v) {
  return [=]<std::size_t... I>(std::index_sequence<I...>) {
    return __builtin_shufflevector(v, v, static_cast<int>(I + (Upper ? sizeof...(I) : 0))...);
  }
  (std::make_index_sequence<sizeof(V) / sizeof(v[0]) / 2>());
}

#if defined(__SSE3__)
inline Vector<float, 4> min(Vector<float, 4> a, Vector<float, 4> b) { return _mm_min_ps(a, b); }
inline Vector<float, 4> max(Vector<float, 4> a, Vector<float, 4> b) { return _mm_max_ps(a, b); }
inline Vector<double, 2> min(Vector<double, 2> a, Vector<double, 2> b) { return _mm_min_pd(a, b); }
inline Vector<double, 2> max(Vector<double, 2> a, Vector<double, 2> b) { return _mm_max_pd(a, b); }
inline Vector<float, 4> sqrt(Vector<float, 4> a) { return _mm_sqrt_ps(a); }
inline Vector<double, 2> sqrt(Vector<double, 2> a) { return _mm_sqrt_pd(a); }
inline Vector<int32_t, 4> nearest(Vector<float, 4> a) { return Vector<int32_t, 4>(_mm_cvtps_epi32(a)); }
inline Vector<int32_t, 4> truncated(Vector<float, 4> a) { return Vector<int32_t, 4>(_mm_cvttps_epi32(a)); }
#endif
#if defined(__AVX2__)
inline Vector<float, 8> min(Vector<float, 8> a, Vector<float, 8> b) { return _mm256_min_ps(a, b); }
inline Vector<float, 8> max(Vector<float, 8> a, Vector<float, 8> b) { return _mm256_max_ps(a, b); }
inline Vector<double, 4> min(Vector<double, 4> a, Vector<double, 4> b) { return _mm256_min_pd(a, b); }
inline Vector<double, 4> max(Vector<double, 4> a, Vector<double, 4> b) { return _mm256_max_pd(a, b); }
inline Vector<float, 8> sqrt(Vector<float, 8> a) { return _mm256_sqrt_ps(a); }
inline Vector<double, 4> sqrt(Vector<double, 4> a) { return _mm256_sqrt_pd(a); }
inline Vector<int32_t, 8> nearest(Vector<float, 8> a) { return Vector<int32_t, 8>(_mm256_cvtps_epi32(a)); }
inline Vector<int32_t, 8> truncated(Vector<float, 8> a) { return Vector<int32_t, 8>(_mm256_cvttps_epi32(a)); }
#endif
#if defined(__AVX512F__)
inline Vector<float, 16> min(Vector<float, 16> a, Vector<float, 16> b) { return _mm512_min_ps(a, b); }
inline Vector<float, 16> max(Vector<float, 16> a, Vector<float, 16> b) { return _mm512_max_ps(a, b); }
inline Vector<double, 8> min(Vector<double, 8> a, Vector<double, 8> b) { return _mm512_min_pd(a, b); }
inline Vector<double, 8> max(Vector<double, 8> a, Vector<double, 8> b) { return _mm512_max_pd(a, b); }
inline Vector<float, 16> sqrt(Vector<float, 16> a) { return _mm512_sqrt_ps(a); }
inline Vector<double, 8> sqrt(Vector<double, 8> a) { return _mm512_sqrt_pd(a); }
inline Vector<int32_t, 16> nearest(Vector<float, 16> a) { return Vector<int32_t, 16>(_mm512_cvtps_epi32(a)); }
inline Vector<int32_t, 16> truncated(Vector<float, 16> a) { return Vector<int32_t, 16>(_mm512_cvttps_epi32(a)); }
#endif

// Scalars, and vectors without an instruction of their own: element by element.
template <class V>
inline V min(V a, V b) {
  return a < b ? a : b;
}
template <class V>
inline V max(V a, V b) {
  return a > b ? a : b;
}
inline float sqrt(float a) { return __builtin_sqrtf(a); }
inline double sqrt(double a) { return __builtin_sqrt(a); }
template <class V>
inline V sqrt(V a) {
  for (std::size_t i = 0; i < sizeof(V) / sizeof(a[0]); ++i) a[i] = sqrt(a[i]);
  return a;
}

inline int32_t truncated(float a) { return a >= -2147483648.0F && a < 2147483648.0F ? static_cast<int32_t>(a) : INT32_MIN; }
template <class V>
inline auto truncated(V a) {
  Vector<int32_t, sizeof(V) / sizeof(float)> v;
  for (std::size_t i = 0; i < sizeof(V) / sizeof(float); ++i) v[i] = truncated(a[i]);
  return v;
}

// Lanes converted to another type of the same number of lanes. GCC 12 splits what __builtin_convertvector widens into two halves of
// half a register.
template <class To, class From>
inline To converted(From a) {
  constexpr bool kDouble [[maybe_unused]] = std::is_same_v<To, Vector<double, sizeof(To) / 8>>;
#if defined(__AVX512F__)
  if constexpr (std::is_same_v<From, Vector<float, 8>> && kDouble) return _mm512_cvtps_pd(a);
  if constexpr (std::is_same_v<From, Vector<int32_t, 8>> && kDouble) return _mm512_cvtepi32_pd(__m256i(a));
  if constexpr (std::is_same_v<From, Vector<int16_t, 16>>) return To(_mm512_cvtepi16_epi32(__m256i(a)));
#endif
#if defined(__AVX2__)
  if constexpr (std::is_same_v<From, Vector<float, 4>> && kDouble) return _mm256_cvtps_pd(a);
  if constexpr (std::is_same_v<From, Vector<int32_t, 4>> && kDouble) return _mm256_cvtepi32_pd(__m128i(a));
  if constexpr (std::is_same_v<From, Vector<int16_t, 8>>) return To(_mm256_cvtepi16_epi32(__m128i(a)));
#endif
  return __builtin_convertvector(a, To);
}

// int16 to 32-bit lanes: SSE3 has no widening load, so the low halves are interleaved and shifted down.
template <int W>
inline Vector<int32_t, W> widenInt16(const int16_t* p) {
  if constexpr (W == 1) {
    return *p;
#if defined(__SSE3__)
  } else if constexpr (W == 4) {
    const __m128i packed = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
#if defined(__SSE4_1__)
    return Vector<int32_t, 4>(_mm_cvtepi16_epi32(packed));
#else
    return Vector<int32_t, 4>(_mm_srai_epi32(_mm_unpacklo_epi16(packed, packed), 16));
#endif
#endif
  } else {
    return converted<Vector<int32_t, W>>(load<Vector<int16_t, W>>(p));
  }
}

// W float or int32 numbers at p as doubles, exact.
template <int W, class From>
inline Vector<double, W> widenToDouble(const From* p) {
  if constexpr (W == 1) {
    return *p;
#if defined(__SSE3__)
  } else if constexpr (W == 2 && std::is_same_v<From, float>) {
    return _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
  } else if constexpr (W == 2 && std::is_same_v<From, int32_t>) {
    return _mm_cvtepi32_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
#endif
  } else {
    return converted<Vector<double, W>>(load<Vector<From, W>>(p));
  }
}

// W int16 numbers at p as doubles, exact.
template <int W>
inline Vector<double, W> widenInt16ToDouble(const int16_t* p) {
#if defined(__SSE3__)
  if constexpr (W == 2) {
    int32_t pair;
    std::memcpy(&pair, p, sizeof(pair));
    const __m128i packed = _mm_cvtsi32_si128(pair);
    return _mm_cvtepi32_pd(_mm_srai_epi32(_mm_unpacklo_epi16(packed, packed), 16));
  }
#endif
  if constexpr (W == 1) return *p;
  return converted<Vector<double, W>>(widenInt16<W>(p));
}

// Whether x < y in every lane; a NaN is not below anything.
template <class V>
inline bool allLess(V x, V y) {
#if defined(__AVX512F__)
  if constexpr (std::is_same_v<V, Vector<float, 16>>) return _mm512_cmp_ps_mask(x, y, _CMP_LT_OQ) == 0xFFFF;
  if constexpr (std::is_same_v<V, Vector<double, 8>>) return _mm512_cmp_pd_mask(x, y, _CMP_LT_OQ) == 0xFF;
#endif
#if defined(__AVX2__)
  if constexpr (std::is_same_v<V, Vector<float, 8>>) return _mm256_movemask_ps(_mm256_cmp_ps(x, y, _CMP_LT_OQ)) == 0xFF;
  if constexpr (std::is_same_v<V, Vector<double, 4>>) return _mm256_movemask_pd(_mm256_cmp_pd(x, y, _CMP_LT_OQ)) == 0xF;
#endif
#if defined(__SSE3__)
  if constexpr (std::is_same_v<V, Vector<float, 4>>) return _mm_movemask_ps(_mm_cmplt_ps(x, y)) == 0xF;
  if constexpr (std::is_same_v<V, Vector<double, 2>>) return _mm_movemask_pd(_mm_cmplt_pd(x, y)) == 0x3;
#endif
  if constexpr (std::is_arithmetic_v<V>) {
    return x < y;
  } else {
    bool all = true;
    for (std::size_t i = 0; i < sizeof(V) / sizeof(x[0]); ++i) all &= x[i] < y[i];
    return all;
  }
}

// Whether any lane of a comparison's result holds.
template <class V>
inline bool anyHolds(V mask) {
#if defined(__SSE3__)
  if constexpr (sizeof(V) == 16) return _mm_movemask_epi8(std::bit_cast<__m128i>(mask)) != 0;
#endif
#if defined(__AVX2__)
  if constexpr (sizeof(V) == 32) return _mm256_movemask_epi8(std::bit_cast<__m256i>(mask)) != 0;
#endif
#if defined(__AVX512F__)
  if constexpr (sizeof(V) == 64) {
    const auto all = std::bit_cast<__m512i>(mask);
    return _mm512_test_epi64_mask(all, all) != 0;
  }
#endif
  if constexpr (std::is_integral_v<V>) {
    return mask != 0;
  } else {
    bool any = false;
    for (std::size_t i = 0; i < sizeof(V) / sizeof(mask[0]); ++i) any |= mask[i] != 0;
    return any;
  }
}

// The lower or the upper half of the lanes, converted to a wider type, exact.
template <class To, bool Upper, class V>
inline To widenedHalf(V v) {
#if defined(__SSE3__)
  if constexpr (std::is_same_v<V, Vector<float, 4>> && sizeof(To) == 16) {
    return _mm_cvtps_pd(Upper ? _mm_movehl_ps(v, v) : __m128(v));
  }
  if constexpr (std::is_same_v<V, Vector<int32_t, 4>> && std::is_same_v<To, Vector<double, 2>>) {
    return _mm_cvtepi32_pd(Upper ? _mm_unpackhi_epi64(__m128i(v), __m128i(v)) : __m128i(v));
  }
#if !defined(__SSE4_1__)
  if constexpr (std::is_same_v<V, Vector<int16_t, 8>> && sizeof(To) == 16) {
    const __m128i twice = Upper ? _mm_unpackhi_epi16(__m128i(v), __m128i(v)) : _mm_unpacklo_epi16(__m128i(v), __m128i(v));
    return To(_mm_srai_epi32(twice, 16));
  }
#endif
#endif
  if constexpr (std::is_arithmetic_v<To>) {
    return static_cast<To>(v[Upper]);
  } else {
    return converted<To>(half<Upper>(v));
  }
}

template <class To, std::size_t... I, class V>
inline To concatenate(V a, V b, std::index_sequence<I...>) {
  return __builtin_shufflevector(a, b, static_cast<int>(I)...);
}

// Two vectors of doubles, each rounded to float, in one.
template <int W>
inline Vector<float, 2 * W> narrowPair(Vector<double, W> a, Vector<double, W> b) {
#if defined(__SSE3__)
  if constexpr (W == 2) return _mm_movelh_ps(_mm_cvtpd_ps(a), _mm_cvtpd_ps(b));
#endif
  if constexpr (W == 1) {
    return Vector<float, 2>{static_cast<float>(a), static_cast<float>(b)};
  } else {
    using Half = Vector<float, W>;
    return concatenate<Vector<float, 2 * W>>(__builtin_convertvector(a, Half), __builtin_convertvector(b, Half),
                                             std::make_index_sequence<2 * static_cast<std::size_t>(W)>());
  }
}

#if defined(__SSE3__)
// The first n < 4 of four numbers at p, zeros behind them.
[[gnu::always_inline]] inline Vector<float, 4> firstFloats(const float* p, int n) {
  if (n < 2) return n < 1 ? _mm_setzero_ps() : _mm_load_ss(p);
  const __m128 lower = _mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
  return n == 2 ? lower : _mm_movelh_ps(lower, _mm_load_ss(p + 2));
}
#endif

// The first n < W of W numbers at p, zeros behind them.
template <int W>
inline Vector<int16_t, W> firstShorts(const int16_t* p, int n) {
#if defined(__AVX512BW__) && defined(__AVX512VL__)
  const uint32_t mask = (1u << n) - 1u;
  if constexpr (W == 8) return Vector<int16_t, 8>(_mm_maskz_loadu_epi16(static_cast<__mmask8>(mask), p));
  if constexpr (W == 16) return Vector<int16_t, 16>(_mm256_maskz_loadu_epi16(static_cast<__mmask16>(mask), p));
  if constexpr (W == 32) return Vector<int16_t, 32>(_mm512_maskz_loadu_epi16(mask, p));
#elif defined(__SSE3__)
  if constexpr (W == 8) {  // overlapping loads of a half, shifted: no loop over elements
    uint64_t lower = 0, upper = 0;
    if (n >= 4) {
      std::memcpy(&lower, p, 8);
      if (n > 4) std::memcpy(&upper, p + n - 4, 8), upper >>= 16 * (8 - n);
    } else if (n >= 2) {
      uint32_t first, last;
      std::memcpy(&first, p, 4);
      std::memcpy(&last, p + n - 2, 4);
      lower = first | uint64_t{last} >> (16 * (4 - n)) << 32;
    } else if (n == 1) {
      lower = static_cast<uint16_t>(*p);
    }
    return Vector<int16_t, 8>(Vector<uint64_t, 2>{lower, upper});
  } else if constexpr (W == 16) {
    const auto lower = n >= 8 ? load<Vector<int16_t, 8>>(p) : firstShorts<8>(p, n);
    const auto upper = n > 8 ? firstShorts<8>(p + 8, n - 8) : Vector<int16_t, 8>{};
    return __builtin_shufflevector(lower, upper, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  }
#endif
  Vector<int16_t, W> v{};
  for (int i = 0; i < n; ++i) v[i] = p[i];
  return v;
}

}  // namespace native

}  // namespace qorsr
