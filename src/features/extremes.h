// The least and the greatest of many numbers, in one pass.
//
// An element replaces what was found before only if it is less (greater), so a NaN never decides, and the order of the elements does
// not show, but for the sign of a zero.
#pragma once

#include <cstdint>

#include "frame/lanes.h"

namespace qorsr {

template <class T>
struct Extremes {
  T least, greatest;
};

namespace detail {

template <class T, int N>
struct ExtremesOfLanes {
  using L = Lanes<T, N>;
  L least, greatest;

  void take(const L& x) {
    least = min(x, least);
    greatest = max(x, greatest);
  }
  Extremes<T> joined() const {
    if constexpr (N == 1) {
      return {least.part[0], greatest.part[0]};
    } else {
      return ExtremesOfLanes<T, N / 2>{min(lowerHalf(least), upperHalf(least)), max(lowerHalf(greatest), upperHalf(greatest))}
          .joined();
    }
  }
};

}  // namespace detail

namespace detail {

// In blocks of the most lanes that n elements fill; the last block overlaps the one in front of it.
template <class T, int N>
inline Extremes<T> extremesInBlocks(const T* x, int32_t n, Extremes<T> before) {
  if constexpr (N > 1) {
    if (n < N) return extremesInBlocks<T, (N * static_cast<int>(sizeof(T)) > 16 ? N / 2 : 1)>(x, n, before);
  }
  using L = Lanes<T, N>;
  ExtremesOfLanes<T, N> found{L(before.least), L(before.greatest)};
  for (int32_t i = 0; i < n - N; i += N) found.take(L::load(x + i));
  found.take(L::load(x + n - N));
  return found.joined();
}

}  // namespace detail

// Of n elements at x and of what was found before.
template <class T>
inline Extremes<T> extremes(const T* x, int32_t n, Extremes<T> before) {
  if (n < 8) return detail::extremesInBlocks<T, 1>(x, n, before);
  return detail::extremesInBlocks<T, 2 * kNativeLanes<T>>(x, n, before);
}

}  // namespace qorsr
