// Lanes<T, N>: N numbers that an algorithm works on at once, the same N at every instruction level.
//
// The number of lanes belongs to the algorithm, because it fixes the grouping of a float sum: the same source gives the same bits
// in registers of 128, 256 and 512 bits. Lanes<T, N> is an array of the widest native vectors that fit; N is a power of two, and N
// = 1 is a plain scalar, so that one kernel serves blocks of columns and a last column alone.
//
// What the operations promise at every level and with both compilers:
//   min(a, b) is a < b ? a : b, max(a, b) is a > b ? a : b, lane by lane: a NaN on either side gives b.
//   Joins add in the order that their names say. Nothing is contracted, nothing reassociated.
//   A Tail reads and writes its first n elements only; lanes beyond hold the fill value.
//
// This file, short_lanes.h and word_lanes.h (verbs of 16 and 32-bit lanes) are the only ones that know the instruction level.
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

template <class To, class V, std::size_t... I>
inline To pick(V v, std::index_sequence<I...>) {
  return __builtin_shufflevector(v, v, static_cast<int>(I)...);
}
template <class V, std::size_t... I>
inline auto upper(V v, std::index_sequence<I...>) {
  return __builtin_shufflevector(v, v, static_cast<int>(I + sizeof...(I))...);
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

// Lanes converted to a wider type, exact. GCC 12 splits what __builtin_convertvector widens into two halves of half a register.
template <class To, class From>
inline To widened(From a) {
#if defined(__AVX512F__)
  if constexpr (std::is_same_v<From, Vector<float, 8>>) return _mm512_cvtps_pd(a);
  if constexpr (std::is_same_v<From, Vector<int32_t, 8>>) return _mm512_cvtepi32_pd(__m256i(a));
  if constexpr (std::is_same_v<From, Vector<int16_t, 16>>) return To(_mm512_cvtepi16_epi32(__m256i(a)));
#endif
#if defined(__AVX2__)
  if constexpr (std::is_same_v<From, Vector<float, 4>>) return _mm256_cvtps_pd(a);
  if constexpr (std::is_same_v<From, Vector<int32_t, 4>>) return _mm256_cvtepi32_pd(__m128i(a));
  if constexpr (std::is_same_v<From, Vector<int16_t, 8>>) return To(_mm256_cvtepi16_epi32(__m128i(a)));
#endif
  return __builtin_convertvector(a, To);
}

// int16 to 32-bit lanes: SSE3 has no widening load, so the low halves are interleaved and shifted down.
template <int W>
inline Vector<int32_t, W> widenInt16(const int16_t* p) {
  if constexpr (W == 1) {
    return *p;
#if defined(__SSE3__) && !defined(__SSE4_1__)
  } else if constexpr (W == 4) {
    const __m128i packed = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p));
    return Vector<int32_t, 4>(_mm_srai_epi32(_mm_unpacklo_epi16(packed, packed), 16));
#endif
  } else {
    return widened<Vector<int32_t, W>>(load<Vector<int16_t, W>>(p));
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
    return widened<Vector<double, W>>(load<Vector<From, W>>(p));
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
  return widened<Vector<double, W>>(widenInt16<W>(p));
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

// Lanes 0 to W - 1 of v (or, Upper, lanes W to 2W - 1) as doubles, exact.
template <int W, bool Upper, class V>
inline Vector<double, W> widenHalf(V v) {
#if defined(__SSE3__)
  if constexpr (W == 2) return _mm_cvtps_pd(Upper ? _mm_movehl_ps(v, v) : __m128(v));
#endif
  if constexpr (W == 1) {
    if constexpr (Upper) return static_cast<double>(v[1]);
    if constexpr (!Upper) return static_cast<double>(v[0]);
  } else if constexpr (Upper) {
    return widened<Vector<double, W>>(Vector<float, W>(upper(v, std::make_index_sequence<W>())));
  } else {
    return widened<Vector<double, W>>(pick<Vector<float, W>>(v, std::make_index_sequence<W>()));
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

// One of three numbers a lane: the first where x > high, else the second where x > low, else the third (a NaN too). Made once, then
// used for any number of triples; where the level has a lookup of four entries the lane's index is kept, elsewhere two masks.
template <class T, int W>
class ThreeWay {
 public:
  using V = Vector<T, W>;
  using Bits = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
  using I = Vector<Bits, W>;

  ThreeWay() = default;
  ThreeWay(V x, T high, T low) {
    if constexpr (W == 1) {
      index_ = (x > high) + (x > low);
    } else if constexpr (kLookup) {
      index_ = indexOf(I(x > V{} + high) + I(x > V{} + low));  // 0, -1, -2: of their low bits, 0, 3, 2
    } else {
      index_ = I(x > V{} + low);
      high_ = I(x > V{} + high);
    }
  }

  V pick(T first, T second, T third) const {
    if constexpr (W == 1) {
      return index_ == 2 ? first : index_ == 1 ? second : third;
    } else if constexpr (kLookup) {
      return lookup(third, first, second);
    } else {
      const auto bits = [](T value) { return std::bit_cast<Bits>(value); };
      const I flip = (index_ & (bits(third) ^ bits(second))) ^ (high_ & (bits(second) ^ bits(first)));
      return std::bit_cast<V>((I{} + bits(third)) ^ flip);
    }
  }

 private:
#if defined(__AVX2__)
  static constexpr bool kLookup = W > 1 && W * sizeof(T) >= 16 && !(W == 2 && sizeof(T) == 8);
#else
  static constexpr bool kLookup = false;
#endif

#if defined(__AVX2__)
  static I indexOf(I index) {
    if constexpr (W == 4 && sizeof(T) == 8) {  // looked up as pairs of 32-bit halves
      const __m256i halves = _mm256_slli_epi32(__m256i(index), 1);
      return I(_mm256_add_epi32(_mm256_shuffle_epi32(halves, 0xA0), _mm256_set1_epi64x(int64_t{1} << 32)));
    }
    return index;
  }
  V lookup(T entry0, T entry2, T entry3) const {
    if constexpr (W == 4 && sizeof(T) == 4) {
      return _mm_permutevar_ps(_mm_setr_ps(entry0, entry0, entry2, entry3), __m128i(index_));
    } else if constexpr (W == 8 && sizeof(T) == 4) {
      return _mm256_permutevar_ps(_mm256_setr_ps(entry0, entry0, entry2, entry3, entry0, entry0, entry2, entry3), __m256i(index_));
    } else if constexpr (W == 4) {
      const __m256d table = _mm256_setr_pd(entry0, entry0, entry2, entry3);
      return _mm256_castps_pd(_mm256_permutevar8x32_ps(_mm256_castpd_ps(table), __m256i(index_)));
    }
#if defined(__AVX512F__)
    if constexpr (W == 16) {
      return _mm512_permutevar_ps(_mm512_broadcast_f32x4(_mm_setr_ps(entry0, entry0, entry2, entry3)), __m512i(index_));
    } else if constexpr (W == 8 && sizeof(T) == 8) {
      return _mm512_permutexvar_pd(__m512i(index_), _mm512_broadcast_f64x4(_mm256_setr_pd(entry0, entry0, entry2, entry3)));
    }
#endif
  }
#else
  static I indexOf(I index) { return index; }
  V lookup(T, T, T) const { return V{}; }
#endif

  I index_, high_;
};

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

template <class T, int N>
struct Lanes {
  static_assert(N > 0 && (N & (N - 1)) == 0, "the number of lanes is a power of two");
  static constexpr int kPart = N * static_cast<int>(sizeof(T)) <= kNativeBytes ? N : kNativeBytes / static_cast<int>(sizeof(T));
  static constexpr int kParts = N / kPart;
  using Element = T;
  using Part = native::Vector<T, kPart>;

  Part part[kParts];

  Lanes() = default;
  explicit Lanes(T value) {
    for (Part& p : part) p = value - Part{};  // minus: keeps the sign of a zero
  }

  // Four lanes from four numbers, without a detour through memory.
  static Lanes of(T l0, T l1, T l2, T l3) requires(N == 4) {
    Lanes v;
    if constexpr (kParts == 1) {
      v.part[0] = Part{l0, l1, l2, l3};
    } else {
      v.part[0] = Part{l0, l1};
      v.part[1] = Part{l2, l3};
    }
    return v;
  }
  static Lanes load(const T* p) {
    Lanes v;
    for (int i = 0; i < kParts; ++i) v.part[i] = native::load<Part>(p + i * kPart);
    return v;
  }
  void store(T* p) const {
    for (int i = 0; i < kParts; ++i) native::store(p + i * kPart, part[i]);
  }

  // Applies `f` to each native part of `a` (and of `b`).
  template <class F>
  static Lanes each(const Lanes& a, F f) {
    Lanes v;
    for (int i = 0; i < kParts; ++i) v.part[i] = f(a.part[i]);
    return v;
  }
  template <class F>
  static Lanes each(const Lanes& a, const Lanes& b, F f) {
    Lanes v;
    for (int i = 0; i < kParts; ++i) v.part[i] = f(a.part[i], b.part[i]);
    return v;
  }

  friend Lanes operator+(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return x + y; });
  }
  friend Lanes operator-(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return x - y; });
  }
  friend Lanes operator*(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return x * y; });
  }
  friend Lanes operator/(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return x / y; });
  }
  Lanes& operator+=(const Lanes& b) { return *this = *this + b; }
  Lanes& operator-=(const Lanes& b) { return *this = *this - b; }
  Lanes& operator*=(const Lanes& b) { return *this = *this * b; }

  friend Lanes min(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return Part(native::min(x, y)); });
  }
  friend Lanes max(const Lanes& a, const Lanes& b) {
    return each(a, b, [](Part x, Part y) { return Part(native::max(x, y)); });
  }
  // Without the sign, also of a NaN.
  friend Lanes abs(const Lanes& a) {
    using Bits = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
    return each(a, [](Part x) {
      return std::bit_cast<Part>(std::bit_cast<native::Vector<Bits, kPart>>(x) & std::numeric_limits<Bits>::max());
    });
  }
  // -|a|; a NaN stays a NaN.
  friend Lanes minusAbs(const Lanes& a) {
    using Bits = std::conditional_t<sizeof(T) == 8, int64_t, int32_t>;
    return each(a, [](Part x) {
      return std::bit_cast<Part>(std::bit_cast<native::Vector<Bits, kPart>>(x) | std::numeric_limits<Bits>::min());
    });
  }
  friend Lanes sqrt(const Lanes& a) {
    return each(a, [](Part x) { return Part(native::sqrt(x)); });
  }
  // Arithmetic for signed lanes; `count` from 0 to the width - 1.
  friend Lanes operator>>(const Lanes& a, int count) {
    return each(a, [=](Part x) { return Part(x >> static_cast<T>(count)); });
  }

  // x < y ? a : b, lane by lane: a NaN in x or y gives b.
  friend Lanes selectLess(const Lanes& x, const Lanes& y, const Lanes& a, const Lanes& b) {
    Lanes v;
    for (int i = 0; i < kParts; ++i) v.part[i] = x.part[i] < y.part[i] ? a.part[i] : b.part[i];
    return v;
  }
  friend bool anyLess(const Lanes& x, const Lanes& y) {
    auto any = x.part[0] < y.part[0];
    for (int i = 1; i < kParts; ++i) any |= x.part[i] < y.part[i];
    return native::anyHolds(any);
  }
  friend bool allLess(const Lanes& x, const Lanes& y) {
    bool all = true;
    for (int i = 0; i < kParts; ++i) all &= native::allLess(x.part[i], y.part[i]);
    return all;
  }
};

// ---- Loads that widen ----

// N numbers of type `From` at p, as lanes of type T. int16 to float, double or int32, and float to double, are exact.
template <class T, int N, class From>
inline Lanes<T, N> loadAs(const From* p) {
  using L = Lanes<T, N>;
  if constexpr (std::is_same_v<T, From>) {
    return L::load(p);
  } else if constexpr (N == 1) {
    return L(static_cast<T>(*p));
  } else {
    L v;
    for (int i = 0; i < L::kParts; ++i) {
      const From* source = p + i * L::kPart;
      if constexpr (std::is_same_v<From, int16_t> && std::is_same_v<T, double>) {
        v.part[i] = native::widenInt16ToDouble<L::kPart>(source);
      } else if constexpr (std::is_same_v<From, int16_t> && std::is_same_v<T, int32_t>) {
        v.part[i] = native::widenInt16<L::kPart>(source);
      } else if constexpr (std::is_same_v<From, int16_t>) {
        v.part[i] = __builtin_convertvector(native::widenInt16<L::kPart>(source), typename L::Part);
      } else if constexpr (std::is_same_v<T, double>) {
        v.part[i] = native::widenToDouble<L::kPart>(source);
      } else {
        v.part[i] = __builtin_convertvector(native::load<native::Vector<From, L::kPart>>(source), typename L::Part);
      }
    }
    return v;
  }
}

// ---- Conversions between registers ----

// Floats as doubles, exact.
template <int N>
inline Lanes<double, N> widen(const Lanes<float, N>& a) {
  using L = Lanes<double, N>;
  constexpr int kRatio = Lanes<float, N>::kPart / L::kPart;
  L v;
  for (int i = 0; i < L::kParts; ++i) {
    if constexpr (N == 1) {
      v.part[i] = static_cast<double>(a.part[i]);
    } else if constexpr (kRatio == 1) {
      v.part[i] = native::widened<typename L::Part>(a.part[i]);
    } else {
      const auto half = a.part[i / 2];
      v.part[i] = i % 2 == 0 ? native::widenHalf<L::kPart, false>(half) : native::widenHalf<L::kPart, true>(half);
    }
  }
  return v;
}

// Doubles rounded to float.
template <int N>
inline Lanes<float, N> narrow(const Lanes<double, N>& a) {
  using L = Lanes<float, N>;
  L v;
  for (int i = 0; i < L::kParts; ++i) {
    if constexpr (N == 1) {
      v.part[i] = static_cast<float>(a.part[i]);
    } else if constexpr (L::kPart == Lanes<double, N>::kPart) {
      v.part[i] = __builtin_convertvector(a.part[i], typename L::Part);
    } else {
      v.part[i] = native::narrowPair<L::kPart / 2>(a.part[2 * i], a.part[2 * i + 1]);
    }
  }
  return v;
}

// Floats to integers, toward zero; a NaN or a value out of range gives the most negative one.
template <int N>
inline Lanes<int32_t, N> truncated(const Lanes<float, N>& a) {
  Lanes<int32_t, N> v;
  for (int i = 0; i < v.kParts; ++i) v.part[i] = native::truncated(a.part[i]);
  return v;
}

// ---- Three ways ----

// Picks one of three numbers in each lane: the first where x > high, else the second where x > low, else the third (a NaN in x
// too). For functions that are approximated on three ranges: made once, then asked for each coefficient.
template <class T, int N>
class ThreeWay {
 public:
  ThreeWay(const Lanes<T, N>& x, T high, T low) {
    for (int i = 0; i < L::kParts; ++i) part_[i] = native::ThreeWay<T, L::kPart>(x.part[i], high, low);
  }
  Lanes<T, N> pick(T first, T second, T third) const {
    L v;
    for (int i = 0; i < L::kParts; ++i) v.part[i] = part_[i].pick(first, second, third);
    return v;
  }

 private:
  using L = Lanes<T, N>;
  native::ThreeWay<T, L::kPart> part_[L::kParts];
};

// ---- Halves and joins ----

// Lanes 0 to N/2 - 1, and N/2 to N - 1.
template <class T, int N>
inline Lanes<T, N / 2> lowerHalf(const Lanes<T, N>& a) {
  Lanes<T, N / 2> v;
  if constexpr (Lanes<T, N>::kParts > 1) {
    for (int i = 0; i < v.kParts; ++i) v.part[i] = a.part[i];
  } else if constexpr (N == 2) {
    v.part[0] = a.part[0][0];
  } else {
    v.part[0] = native::pick<typename Lanes<T, N / 2>::Part>(a.part[0], std::make_index_sequence<N / 2>());
  }
  return v;
}
template <class T, int N>
inline Lanes<T, N / 2> upperHalf(const Lanes<T, N>& a) {
  Lanes<T, N / 2> v;
  if constexpr (Lanes<T, N>::kParts > 1) {
    for (int i = 0; i < v.kParts; ++i) v.part[i] = a.part[v.kParts + i];
  } else if constexpr (N == 2) {
    v.part[0] = a.part[0][1];
  } else {
    v.part[0] = native::upper(a.part[0], std::make_index_sequence<N / 2>());
  }
  return v;
}

// Sum of all lanes, lane i with lane i + N/2 at every step: for 8 lanes ((l0+l4)+(l2+l6)) + ((l1+l5)+(l3+l7)).
template <class T, int N>
inline T joinHalves(const Lanes<T, N>& a) {
  if constexpr (N == 1) {
    return a.part[0];
  } else {
    return joinHalves(lowerHalf(a) + upperHalf(a));
  }
}

// The lanes joined by halves until M are left.
template <int M, class T, int N>
inline Lanes<T, M> joinedTo(const Lanes<T, N>& a) {
  if constexpr (N == M) {
    return a;
  } else {
    return joinedTo<M>(lowerHalf(a) + upperHalf(a));
  }
}

// Sum of four lanes, neighbours first: (l0+l1) + (l2+l3).
template <class T>
inline T joinNeighbours(const Lanes<T, 4>& a) {
  T l[4];
  a.store(l);
  return (l[0] + l[1]) + (l[2] + l[3]);
}

// Four lane sets turned: lane i of `lane[j]` is lane j of set i. What is then added lane by lane is the join of each set.
struct Turned {
  Lanes<float, 4> lane[4];
};
inline Turned turn4(const Lanes<float, 4>& a, const Lanes<float, 4>& b, const Lanes<float, 4>& c, const Lanes<float, 4>& d) {
  using V = native::Vector<float, 4>;
  const V ab01 = __builtin_shufflevector(a.part[0], b.part[0], 0, 4, 1, 5);  // a0 b0 a1 b1
  const V ab23 = __builtin_shufflevector(a.part[0], b.part[0], 2, 6, 3, 7);  // a2 b2 a3 b3
  const V cd01 = __builtin_shufflevector(c.part[0], d.part[0], 0, 4, 1, 5);
  const V cd23 = __builtin_shufflevector(c.part[0], d.part[0], 2, 6, 3, 7);
  Turned t;
  t.lane[0].part[0] = __builtin_shufflevector(ab01, cd01, 0, 1, 4, 5);
  t.lane[1].part[0] = __builtin_shufflevector(ab01, cd01, 2, 3, 6, 7);
  t.lane[2].part[0] = __builtin_shufflevector(ab23, cd23, 0, 1, 4, 5);
  t.lane[3].part[0] = __builtin_shufflevector(ab23, cd23, 2, 3, 6, 7);
  return t;
}

// Four sets of four lanes, one behind the other.
template <class T>
inline Lanes<T, 16> chainFours(const Lanes<T, 4>& a, const Lanes<T, 4>& b, const Lanes<T, 4>& c, const Lanes<T, 4>& d) {
  Lanes<T, 16> v;
  if constexpr (v.kParts == 4) {
    v.part[0] = a.part[0], v.part[1] = b.part[0], v.part[2] = c.part[0], v.part[3] = d.part[0];
  } else if constexpr (v.kParts == 2) {
    v.part[0] = __builtin_shufflevector(a.part[0], b.part[0], 0, 1, 2, 3, 4, 5, 6, 7);
    v.part[1] = __builtin_shufflevector(c.part[0], d.part[0], 0, 1, 2, 3, 4, 5, 6, 7);
  } else {
    const auto ab = __builtin_shufflevector(a.part[0], b.part[0], 0, 1, 2, 3, 4, 5, 6, 7);
    const auto cd = __builtin_shufflevector(c.part[0], d.part[0], 0, 1, 2, 3, 4, 5, 6, 7);
    v.part[0] = __builtin_shufflevector(ab, cd, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
  }
  return v;
}

// Four lane sets folded by halves to four lanes each, one behind the other: lanes 4i to 4i + 3 are joinedTo<4> of set i.
template <class T, int N>
inline Lanes<T, 16> foldToFours(const Lanes<T, N>& a, const Lanes<T, N>& b, const Lanes<T, N>& c, const Lanes<T, N>& d) {
  static_assert(sizeof(T) == 4);
  constexpr int kNative = kNativeBytes / 4;
  if constexpr (N == 4) {
    return chainFours(a, b, c, d);
  } else if constexpr (N == 8 && kNative == 8) {  // two sets share a register
    const auto fold = [](auto x, auto y) {
      return __builtin_shufflevector(x, y, 0, 1, 2, 3, 8, 9, 10, 11) + __builtin_shufflevector(x, y, 4, 5, 6, 7, 12, 13, 14, 15);
    };
    Lanes<T, 16> v;
    v.part[0] = fold(a.part[0], b.part[0]);
    v.part[1] = fold(c.part[0], d.part[0]);
    return v;
  } else if constexpr (N == 8 && kNative == 16) {
    const auto pair = [](auto x, auto y) {
      return __builtin_shufflevector(x, y, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    };
    const auto ab = pair(a.part[0], b.part[0]), cd = pair(c.part[0], d.part[0]);
    Lanes<T, 16> v;
    v.part[0] = __builtin_shufflevector(ab, cd, 0, 1, 2, 3, 8, 9, 10, 11, 16, 17, 18, 19, 24, 25, 26, 27) +
                __builtin_shufflevector(ab, cd, 4, 5, 6, 7, 12, 13, 14, 15, 20, 21, 22, 23, 28, 29, 30, 31);
    return v;
  } else if constexpr (N == 16 && kNative == 16) {
    const auto halves = [](auto x, auto y) {
      return __builtin_shufflevector(x, y, 0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 18, 19, 20, 21, 22, 23) +
             __builtin_shufflevector(x, y, 8, 9, 10, 11, 12, 13, 14, 15, 24, 25, 26, 27, 28, 29, 30, 31);
    };
    const auto ab = halves(a.part[0], b.part[0]), cd = halves(c.part[0], d.part[0]);
    Lanes<T, 16> v;
    v.part[0] = __builtin_shufflevector(ab, cd, 0, 1, 2, 3, 8, 9, 10, 11, 16, 17, 18, 19, 24, 25, 26, 27) +
                __builtin_shufflevector(ab, cd, 4, 5, 6, 7, 12, 13, 14, 15, 20, 21, 22, 23, 28, 29, 30, 31);
    return v;
  } else {
    return foldToFours(lowerHalf(a) + upperHalf(a), lowerHalf(b) + upperHalf(b), lowerHalf(c) + upperHalf(c),
                       lowerHalf(d) + upperHalf(d));
  }
}

// Four lanes a set, one behind the other: lane i of the result is joinHalves of lanes 4i to 4i + 3.
template <class T>
inline Lanes<T, 4> joinFours(const Lanes<T, 16>& sets) {
  Lanes<T, 4> v;
  constexpr int kParts = Lanes<T, 16>::kParts;
  if constexpr (kParts == 1) {
    const auto z = sets.part[0];
    const auto twos = z + __builtin_shufflevector(z, z, 2, 3, 0, 1, 6, 7, 4, 5, 10, 11, 8, 9, 14, 15, 12, 13);
    const auto ones = twos + __builtin_shufflevector(twos, twos, 1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14);
    v.part[0] = __builtin_shufflevector(ones, ones, 0, 4, 8, 12);
  } else if constexpr (kParts == 2) {
    const auto ab = sets.part[0], cd = sets.part[1];
    const auto twos =
        __builtin_shufflevector(ab, cd, 0, 1, 8, 9, 4, 5, 12, 13) + __builtin_shufflevector(ab, cd, 2, 3, 10, 11, 6, 7, 14, 15);
    const auto ones = twos + __builtin_shufflevector(twos, twos, 1, 0, 3, 2, 5, 4, 7, 6);  // a a c c, b b d d
    const auto ac = __builtin_shufflevector(ones, ones, 0, 1, 2, 3), bd = __builtin_shufflevector(ones, ones, 4, 5, 6, 7);
    v.part[0] = __builtin_shufflevector(ac, bd, 0, 5, 2, 7);
  } else {
    const auto first = [](auto x, auto y) { return __builtin_shufflevector(x, y, 0, 4, 1, 5); };   // x0 y0 x1 y1
    const auto second = [](auto x, auto y) { return __builtin_shufflevector(x, y, 2, 6, 3, 7); };  // x2 y2 x3 y3
    const auto ab = first(sets.part[0], sets.part[1]) + second(sets.part[0], sets.part[1]);
    const auto cd = first(sets.part[2], sets.part[3]) + second(sets.part[2], sets.part[3]);
    v.part[0] = __builtin_shufflevector(ab, cd, 0, 1, 4, 5) + __builtin_shufflevector(ab, cd, 2, 3, 6, 7);
  }
  return v;
}

// The halves-join of four lane sets at once: lane i of the result is joinHalves of set i.
template <class T, int N>
inline Lanes<T, 4> joinHalves4(const Lanes<T, N>& a, const Lanes<T, N>& b, const Lanes<T, N>& c, const Lanes<T, N>& d) {
  if constexpr (sizeof(T) == 4) {
    return joinFours(foldToFours(a, b, c, d));
  } else {
    return Lanes<T, 4>::of(joinHalves(a), joinHalves(b), joinHalves(c), joinHalves(d));
  }
}

// The neighbours-join of four lane sets at once.
inline Lanes<float, 4> joinNeighbours4(const Lanes<float, 4>& a, const Lanes<float, 4>& b, const Lanes<float, 4>& c,
                                       const Lanes<float, 4>& d) {
  const Turned t = turn4(a, b, c, d);
  return (t.lane[0] + t.lane[1]) + (t.lane[2] + t.lane[3]);
}

// ---- Whole numbers: shifts and saturation ----

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

// ---- Whole numbers in one native register ----

// As many as one native register holds.
template <class T>
inline constexpr int kNativeLanes = kNativeBytes / static_cast<int>(sizeof(T));

namespace native {
template <int K, class V, std::size_t... I>
inline V shiftIn(V a, V b, std::index_sequence<I...>) {
  constexpr int kCount = sizeof...(I);
  return __builtin_shufflevector(a, b, (kCount - K + static_cast<int>(I))...);
}
}  // namespace native

// The last K lanes of a, then the first N - K of b: lane i is element i - K where a and b are loaded side by side.
template <int K, class T, int N>
inline Lanes<T, N> shiftIn(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  static_assert(Lanes<T, N>::kParts == 1 && K <= N);
  Lanes<T, N> v;
  v.part[0] = native::shiftIn<K>(a.part[0], b.part[0], std::make_index_sequence<static_cast<std::size_t>(N)>());
  return v;
}

namespace native {
template <class V, std::size_t... I>
inline V interleaveLower(V a, V b, std::index_sequence<I...>) {
  constexpr int kCount = sizeof...(I);
  return __builtin_shufflevector(a, b, (I % 2 == 0 ? static_cast<int>(I / 2) : kCount + static_cast<int>(I / 2))...);
}
template <class V, std::size_t... I>
inline V interleaveUpper(V a, V b, std::index_sequence<I...>) {
  constexpr int kCount = sizeof...(I), kHalf = kCount / 2;
  return __builtin_shufflevector(a, b,
                                 (I % 2 == 0 ? kHalf + static_cast<int>(I / 2) : kCount + kHalf + static_cast<int>(I / 2))...);
}
}  // namespace native

// a0 b0 a1 b1 ... of the lower halves, and of the upper halves.
template <class T, int N>
inline Lanes<T, N> interleaveLower(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  static_assert(Lanes<T, N>::kParts == 1);
  Lanes<T, N> v;
  v.part[0] = native::interleaveLower(a.part[0], b.part[0], std::make_index_sequence<N>());
  return v;
}
template <class T, int N>
inline Lanes<T, N> interleaveUpper(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  static_assert(Lanes<T, N>::kParts == 1);
  Lanes<T, N> v;
  v.part[0] = native::interleaveUpper(a.part[0], b.part[0], std::make_index_sequence<N>());
  return v;
}

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

// int16 lanes widened: the lower half of them, and the upper half.
template <int N>
inline Lanes<int32_t, N / 2> lowerWidened(const Lanes<int16_t, N>& a) {
  return std::bit_cast<Lanes<int32_t, N / 2>>(interleaveLower(Lanes<int16_t, N>(0), a)) >> 16;
}
template <int N>
inline Lanes<int32_t, N / 2> upperWidened(const Lanes<int16_t, N>& a) {
  return std::bit_cast<Lanes<int32_t, N / 2>>(interleaveUpper(Lanes<int16_t, N>(0), a)) >> 16;
}

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
inline Lanes<int16_t, N> narrowSaturated(const Lanes<int32_t, N>& a) {
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

// Lanes taken as unsigned and widened: the lower half of them, and the upper half.
template <int N>
inline Lanes<int64_t, N / 2> lowerUnsigned(const Lanes<int32_t, N>& a) {
  return std::bit_cast<Lanes<int64_t, N / 2>>(interleaveLower(a, Lanes<int32_t, N>(0)));
}
template <int N>
inline Lanes<int64_t, N / 2> upperUnsigned(const Lanes<int32_t, N>& a) {
  return std::bit_cast<Lanes<int64_t, N / 2>>(interleaveUpper(a, Lanes<int32_t, N>(0)));
}

namespace native {
// Lane o of a fold of two vectors that hold groups of G lanes: where its first term stands. The second stands G / 2 lanes behind
// it.
constexpr int foldSource(int o, int lanes, int group) {
  const int half = lanes / 2, within = o % half;
  return (o < half ? 0 : lanes) + within / (group / 2) * group + within % (group / 2);
}
// Each group of G lanes of a, then of b, folded to G / 2: its lower half and its upper half, added.
template <int G, class V, std::size_t... I>
inline V foldGroups(V a, V b, std::index_sequence<I...>) {
  constexpr int kLanes = sizeof...(I);
  return __builtin_shufflevector(a, b, foldSource(static_cast<int>(I), kLanes, G)...) +
         __builtin_shufflevector(a, b, (foldSource(static_cast<int>(I), kLanes, G) + G / 2)...);
}
template <int G, int Count, int N, class V>
inline void foldAll(V* part) {
  if constexpr (G > 1 && Count > 1) {
    for (int k = 0; k < Count / 2; ++k) {
      part[k] = foldGroups<G>(part[2 * k], part[2 * k + 1], std::make_index_sequence<static_cast<std::size_t>(N)>());
    }
    foldAll<G / 2, Count / 2, N>(part);
  }
}
template <class To, class V, std::size_t... I>
inline To addNeighbours(V a, std::index_sequence<I...>) {
  return __builtin_shufflevector(a, a, static_cast<int>(2 * I)...) + __builtin_shufflevector(a, a, static_cast<int>(2 * I + 1)...);
}
}  // namespace native

// The halves-joins of K lane sets of one native register each: lane i of the result is joinHalves of set i. N is at most 2 K.
template <int K, class T, int N>
inline Lanes<T, K> joinHalvesOfSets(const Lanes<T, N> (&sets)[K]) {
  static_assert(Lanes<T, N>::kParts == 1 && N <= 2 * K);
  typename Lanes<T, N>::Part part[K];
  for (int k = 0; k < K; ++k) part[k] = sets[k].part[0];
  native::foldAll<N, K, N>(part);
  Lanes<T, K> v;
  if constexpr (N == 2 * K) {
    v.part[0] = native::addNeighbours<typename Lanes<T, K>::Part>(part[0], std::make_index_sequence<K>());
  } else {
    std::memcpy(&v, part, sizeof(v));
  }
  return v;
}

// The least of all lanes. Lanes that hold a NaN do not decide unless the last one does.
template <class T, int N>
inline T leastLane(const Lanes<T, N>& a) {
  if constexpr (N == 1) {
    return a.part[0];
  } else {
    return leastLane(min(lowerHalf(a), upperHalf(a)));
  }
}

// ---- Tails: the first n of N lanes ----

// One native register of Lanes<T, N>: `kIndex` says which of Lanes::part it is, and load(p) loads what belongs in it.
template <class T, int N, int Index>
struct WholePart {
  static constexpr int kIndex = Index;

  template <class From>
  [[gnu::always_inline]] typename Lanes<T, N>::Part load(const From* p, T = T(0)) const {
    constexpr int kPart = Lanes<T, N>::kPart;
    return loadAs<T, kPart>(p + Index * kPart).part[0];
  }
};

// Calls f(part) for every native register of Lanes<T, N>. Kernels that keep many lanes work register by register, so that what they
// load need not wait in registers of its own.
template <class T, int N, int Index = 0, class F>
[[gnu::always_inline]] inline void forWholeParts(const F& f) {
  if constexpr (Index < Lanes<T, N>::kParts) {
    f(WholePart<T, N, Index>());
    forWholeParts<T, N, Index + 1>(f);
  }
}

// Made once a call, used once a row. Reads and writes nothing beyond element n - 1.
template <class T, int N>
class Tail {
 public:
  explicit Tail(int n) : n_(n) {}

  int size() const { return n_; }

  // Elements 0 to n - 1 at p; lanes beyond hold `fill`.
  Lanes<T, N> load(const T* p, T fill = T(0)) const {
    using L = Lanes<T, N>;
    L v;
    for (int i = 0; i < L::kParts; ++i) v.part[i] = loadPart(p + i * L::kPart, n_ - i * L::kPart, fill);
    return v;
  }

  // Calls f(part), as forWholeParts does, for each native register that holds one of the n elements; part.load(p) puts zeros (or
  // `fill`) behind the end. Registers beyond the end cost nothing, and whole ones do not pay for what the last one needs.
  template <class F>
  [[gnu::always_inline]] void forParts(F f) const {
    forPartsFrom<0>(f);
  }

  void store(const Lanes<T, N>& v, T* p) const {
    T all[N];
    v.store(all);
    std::memcpy(p, all, static_cast<std::size_t>(n_) * sizeof(T));
  }

 private:
  using Part = typename Lanes<T, N>::Part;
  static constexpr int kPart = Lanes<T, N>::kPart;
  // Without masked loads each number of elements has a branch of its own, taken once for all that is loaded.
  static constexpr bool kMasked = kNativeBytes > 16;

  template <int Index>
  struct PartOfTail {
    static constexpr int kIndex = Index;
    int n;  // of this register's elements

    [[gnu::always_inline]] Part load(const T* p, T fill = T(0)) const { return loadPart(p + Index * kPart, n, fill); }
    // Numbers of another type, widened.
    template <class From>
    Part load(const From* p, T fill = T(0)) const {
      T all[kPart];
      for (int i = 0; i < kPart; ++i) all[i] = i < n ? static_cast<T>(p[Index * kPart + i]) : fill;
      return native::load<Part>(all);
    }
  };

  template <int Index, class F>
  [[gnu::always_inline]] void forPartsFrom(F& f) const {
    if constexpr (Index < Lanes<T, N>::kParts) {
      const int n = n_ - Index * kPart;
      if (n >= kPart) {
        f(WholePart<T, N, Index>());
        forPartsFrom<Index + 1>(f);
      } else if constexpr (kMasked) {
        if (n > 0) f(PartOfTail<Index>{n});
      } else {
        static_assert(kPart <= 4);
        if (n == 3) f(PartOfTail<Index>{3});
        if (n == 2) f(PartOfTail<Index>{2});
        if (n == 1) f(PartOfTail<Index>{1});
      }
    }
  }

  // Plus zero, of which loads that clear lanes need not be told.
  static bool isClear(T fill) {
    if constexpr (sizeof(T) == 8) return std::bit_cast<uint64_t>(fill) == 0;
    if constexpr (sizeof(T) == 4) return std::bit_cast<uint32_t>(fill) == 0;
    return false;
  }

  [[gnu::always_inline]] static Part loadPart(const T* p, int n, T fill) {
    if (n >= kPart) return native::load<Part>(p);
    if constexpr (std::is_same_v<T, int16_t> && kPart >= 8) {
      if (fill == 0) return native::firstShorts<kPart>(p, n < 0 ? 0 : n);
    }
#if defined(__AVX512VL__)
    if constexpr (std::is_same_v<T, float> && kPart == 16) {
      return _mm512_mask_loadu_ps(fill - Part{}, static_cast<__mmask16>((1u << (n > 0 ? n : 0)) - 1u), p);
    } else if constexpr (std::is_same_v<T, float> && kPart == 8) {
      return _mm256_mask_loadu_ps(fill - Part{}, static_cast<__mmask8>((1u << (n > 0 ? n : 0)) - 1u), p);
    } else if constexpr (std::is_same_v<T, float> && kPart == 4) {
      return _mm_mask_loadu_ps(fill - Part{}, static_cast<__mmask8>((1u << (n > 0 ? n : 0)) - 1u), p);
    } else if constexpr (std::is_same_v<T, double> && kPart == 8) {
      return _mm512_mask_loadu_pd(fill - Part{}, static_cast<__mmask8>((1u << (n > 0 ? n : 0)) - 1u), p);
    } else if constexpr (std::is_same_v<T, double> && kPart == 4) {
      return _mm256_mask_loadu_pd(fill - Part{}, static_cast<__mmask8>((1u << (n > 0 ? n : 0)) - 1u), p);
    }
#elif defined(__AVX2__)
    if constexpr (std::is_same_v<T, float> && kPart == 8) {
      const auto index = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
      const auto mask = _mm256_cmpgt_epi32(_mm256_set1_epi32(n), index);
      if (isClear(fill)) return _mm256_maskload_ps(p, mask);
      return _mm256_blendv_ps(_mm256_set1_ps(fill), _mm256_maskload_ps(p, mask), _mm256_castsi256_ps(mask));
    } else if constexpr (std::is_same_v<T, double> && kPart == 4) {
      const auto index = _mm256_setr_epi64x(0, 1, 2, 3);
      const auto mask = _mm256_cmpgt_epi64(_mm256_set1_epi64x(n), index);
      if (isClear(fill)) return _mm256_maskload_pd(p, mask);
      return _mm256_blendv_pd(_mm256_set1_pd(fill), _mm256_maskload_pd(p, mask), _mm256_castsi256_pd(mask));
    }
#endif
    Part v = fill - Part{};
#if defined(__SSE3__)
    if constexpr (std::is_same_v<T, float> && kPart == 4) {
      if (isClear(fill)) return native::firstFloats(p, n);
    }
#endif
    if constexpr (kPart == 4) {  // the usual case at SSE3: no loop, one branch a count
      if (n == 3) return Part{p[0], p[1], p[2], fill};
      if (n == 2) return Part{p[0], p[1], fill, fill};
      if (n == 1) return Part{p[0], fill, fill, fill};
    } else if constexpr (kPart == 2) {
      if (n == 1) return Part{p[0], fill};
    } else if constexpr (kPart > 1) {
      for (int i = 0; i < n; ++i) v[i] = p[i];
    }
    return v;
  }

  int n_;
};

}  // namespace qorsr
