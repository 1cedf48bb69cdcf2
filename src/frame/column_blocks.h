// Walks the columns of a matrix in blocks of lanes.
//
// Columns are independent of each other, so the width of a block never shows in a result: each lane keeps the scalar order of its
// column, and one kernel serves blocks of any width and a last column alone.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/lanes.h"

namespace qorsr {

template <int N>
using LaneCount = std::integral_constant<int, N>;

// Four native registers: enough independent sums to hide the latency of an addition.
template <class T>
inline constexpr int kWidestBlock = 4 * kNativeBytes / static_cast<int>(sizeof(T));

namespace detail {

// The next narrower block: below 128 bits, single columns.
template <class T, int N>
inline constexpr int kNarrower = (N / 2) * static_cast<int>(sizeof(T)) < 16 ? 1 : N / 2;

template <class T, int N, bool MayOverlap, class Body>
inline void coverFrom(int32_t column, int32_t width, const Body& body) {
  for (; width - column >= N; column += N) body(column, LaneCount<N>());
  if constexpr (N > 1) {
    if (column == width) return;
    if (MayOverlap && width >= N && width - column > kNarrower<T, N>) {
      body(width - N, LaneCount<N>());
    } else {
      coverFrom<T, kNarrower<T, N>, MayOverlap>(column, width, body);
    }
  }
}

}  // namespace detail

// Calls body(column, LaneCount<N>) for blocks that cover columns 0 to width - 1. The last block may overlap the one before it, so
// the body must not read what it writes.
template <class T, class Body>
inline void coverColumns(int32_t width, const Body& body) {
  detail::coverFrom<T, kWidestBlock<T>, true>(0, width, body);
}

// The same for a body that works in place: no column is visited twice.
template <class T, class Body>
inline void coverColumnsOnce(int32_t width, const Body& body) {
  detail::coverFrom<T, kWidestBlock<T>, false>(0, width, body);
}

}  // namespace qorsr
