// Walks the columns of a matrix in blocks of lanes.
//
// Columns are independent of each other, so the width of a block never shows in a result: each lane keeps the scalar order of its
// column, and one kernel serves blocks of any width and a last column alone.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/lanes.h"
#include "frame/tuning.h"

namespace qorsr {

template <int N>
using LaneCount = std::integral_constant<int, N>;

namespace detail {

// The next narrower block: below 128 bits, single columns.
template <class T, int N>
inline constexpr int kNarrower = (N / 2) * static_cast<int>(sizeof(T)) < 16 ? 1 : N / 2;

template <class T, int N, class Body>
inline void coverFrom(int32_t column, int32_t width, const Body& body) {
  for (; width - column >= N; column += N) body(column, LaneCount<N>());
  if constexpr (N > 1) {
    if (column == width) return;
    if (width >= N && width - column > kNarrower<T, N>) {
      body(width - N, LaneCount<N>());
    } else {
      coverFrom<T, kNarrower<T, N>>(column, width, body);
    }
  }
}

// So many columns at most, each alone.
template <class Body, int... I>
[[gnu::always_inline]] inline void coverSingles(int32_t column, int32_t width, const Body& body, std::integer_sequence<int, I...>) {
  (void)((column + I < width && (body(column + I, LaneCount<1>()), true)) && ...);
}

// Fewer than 2 N columns, none twice. Written out: a loop over the last columns would cost as much as all others.
template <class T, int N, class Body>
[[gnu::always_inline]] inline void coverRest(int32_t column, int32_t width, const Body& body) {
  if (width - column >= N) {
    body(column, LaneCount<N>());
    column += N;
  }
  if constexpr (1 < kNarrower<T, N>) {
    coverRest<T, kNarrower<T, N>>(column, width, body);
  } else {
    coverSingles(column, width, body, std::make_integer_sequence<int, N - 1>());
  }
}

}  // namespace detail

// Calls body(column, LaneCount<N>) for blocks that cover columns 0 to width - 1, of at most `Widest` lanes. The last block may
// overlap the one before it, so the body must not read what it writes.
template <class T, int Widest = kWidestBlock<T>, class Body>
inline void coverColumns(int32_t width, const Body& body) {
  detail::coverFrom<T, Widest>(0, width, body);
}

// The same for a body that works in place: no column is visited twice. Such bodies are short: where a call for each block would
// cost as much as the block, the body is to be always inlined.
template <class T, int Widest = kWidestBlock<T>, class Body>
[[gnu::always_inline]] inline void coverColumnsOnce(int32_t width, const Body& body) {
  int32_t column = 0;
  for (; width - column >= Widest; column += Widest) body(column, LaneCount<Widest>());
  if constexpr (1 < detail::kNarrower<T, Widest>) {
    detail::coverRest<T, detail::kNarrower<T, Widest>>(column, width, body);
  } else {
    detail::coverSingles(column, width, body, std::make_integer_sequence<int, Widest - 1>());
  }
}

// In place, in registers of N lanes where there are as many columns: `at(column, LaneCount)` computes, `store(column, value)` writes.
// The last register is computed first and stored last, so it may overlap the one before it, also when a result replaces an input.
template <class T, int N, class At, class Store>
[[gnu::always_inline]] inline void coverLastFirst(int32_t width, const At& at, const Store& store) {
  if (width < N) {
    coverColumnsOnce<T, N>(
        width, [&](int32_t c, auto n) __attribute__((always_inline)) { store(c, at(c, n)); });
    return;
  }
  const auto last = at(width - N, LaneCount<N>());
  for (int32_t c = 0; c < width - N; c += N) store(c, at(c, LaneCount<N>()));
  store(width - N, last);
}

// The same for a width that is known when compiling, in blocks of kLanes columns.
template <int kWidth, int kLanes, class Body>
[[gnu::always_inline]] inline void coverKnownColumns(const Body& body) {
  static_assert(kWidth >= kLanes);
  for (int32_t c = 0; c < kWidth - kLanes; c += kLanes) body(c, LaneCount<kLanes>());
  body(kWidth - kLanes, LaneCount<kLanes>());
}

// A column needs all rows, but a wide, tall matrix does not stay in the cache while each block of columns walks down it: it is
// taken in tiles of rows, and the running sums wait in the caller's result meanwhile.
//
// Calls body(column, LaneCount<N>, first, end) for rows first to end - 1 of every block. A body with first > 0 goes on from the
// running value that it left for its column; the grouping of a sum in pairs of rows is kept, since tiles have an even number of
// rows.
template <class T, class Body>
inline void coverColumnsInTiles(int32_t width, int32_t height, int64_t elementBytes, const Body& body) {
  const int64_t rowBytes = width * elementBytes;
  if (width <= kWidestBlock<T> || rowBytes * height <= kTiledBytes) {
    coverColumns<T>(width, [&](int32_t column, auto lanes) { body(column, lanes, 0, height); });
    return;
  }
  const auto tile = static_cast<int32_t>(rowBytes * 2 > kTileBytes ? 2 : kTileBytes / rowBytes / 2 * 2);
  for (int32_t first = 0; first < height;) {
    const int32_t end = height - first > tile ? first + tile : height;
    coverColumnsOnce<T>(width, [&](int32_t column, auto lanes) { body(column, lanes, first, end); });
    first = end;
  }
}

}  // namespace qorsr
