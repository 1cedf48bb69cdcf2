// Tails: the first n of N lanes. And lanes taken register by register.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "frame/lanes/values.h"

namespace qorsr {

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

  // Calls f(part) for each native register that holds one of the n elements; part.load(p) puts zeros (or `fill`) behind the end.
  // Registers beyond the end cost nothing, and whole ones do not pay for what the last one needs.
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
