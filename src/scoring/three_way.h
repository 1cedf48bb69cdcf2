// One of three numbers in each lane, by the range in which x lies: for functions that are approximated on three ranges.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

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

}  // namespace native

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

}  // namespace qorsr
