// Walks the columns of a matrix, or the elements of a vector, in blocks of lanes; and what is left of a width.
//
// Columns are independent of each other, so the width of a block never shows in a result: each lane keeps the scalar order of its
// column, and one kernel serves blocks of any width and a last column alone. A kernel names its way:
//
//   way                    serves                                           the last columns
//   coverColumns           results that stand apart from all that is read   the last block overlaps the one before it
//   coverLastFirst         one result, which may replace an input           the last register is computed first and stored last
//   coverColumnsOnce       several results that are read and written        narrower and narrower blocks: each column once
//   coverColumnsInTiles    sums down a matrix that no cache holds           as coverColumns, in tiles as coverColumnsOnce
//   Tail (lanes/tail.h)    a sum along a row whose grouping is free         one partial load
//   a loop in the kernel   a sum along a row whose tail is defined          as defined, mostly element by element into lane 0
//   chunksOf (chunks.h)    more elements than scratch holds                 a shorter chunk
#pragma once

#include <cstdint>
#include <type_traits>

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

// At most `Most` columns, each alone. Written out, since compilers take such a loop for a long one: 1.2 at SSE3 (re_estimation,
// MeanVarAcc 32f, 39 elements).
template <int Most, class Body>
inline void coverSingles(int32_t column, int32_t width, const Body& body) {
  if constexpr (Most > 0) {
    if (column == width) return;
    body(column, LaneCount<1>());
    coverSingles<Most - 1>(column + 1, width, body);
  }
}

// Fewer than 2 N columns, none twice.
template <class T, int N, class Body>
inline void coverRestOnce(int32_t column, int32_t width, const Body& body) {
  if constexpr (N == 1) {
    coverSingles<16 / static_cast<int>(sizeof(T)) - 1>(column, width, body);
  } else {
    if (width - column >= N) {
      body(column, LaneCount<N>());
      column += N;
    }
    coverRestOnce<T, kNarrower<T, N>>(column, width, body);
  }
}

}  // namespace detail

// Calls body(column, LaneCount<N>) for blocks that cover columns 0 to width - 1, of at most `Widest` lanes. The body must not read
// what it writes.
template <class T, int Widest = kWidestBlock<T>, class Body>
inline void coverColumns(int32_t width, const Body& body) {
  detail::coverFrom<T, Widest>(0, width, body);
}

// The same for a body that reads what it writes: no column is visited twice.
template <class T, int Widest = kWidestBlock<T>, class Body>
inline void coverColumnsOnce(int32_t width, const Body& body) {
  int32_t column = 0;
  for (; width - column >= Widest; column += Widest) body(column, LaneCount<Widest>());
  detail::coverRestOnce<T, detail::kNarrower<T, Widest>>(column, width, body);
}

// Calls body(LaneCount<N>) with the widest N up to Widest that `width` elements fill; below 128 bits, 1.
template <class T, int Widest, class Body>
inline void withWidestBlock(int32_t width, const Body& body) {
  if constexpr (Widest == 1) {
    body(LaneCount<1>());
  } else {
    if (width >= Widest) return body(LaneCount<Widest>());
    withWidestBlock<T, detail::kNarrower<T, Widest>>(width, body);
  }
}

// at(column, LaneCount<N>) computes, store(column, value) writes; the width is at least N. What a store writes may be an input of the
// same column.
template <int N, class At, class Store>
inline void lastFirst(int32_t width, const At& at, const Store& store) {
  const auto last = at(width - N, LaneCount<N>());
  for (int32_t c = 0; c < width - N; c += N) store(c, at(c, LaneCount<N>()));
  store(width - N, last);
}

// The same in the widest blocks that the width fills, of at most `Widest` lanes.
template <class T, int Widest = kOneRegister<T>, class At, class Store>
inline void coverLastFirst(int32_t width, const At& at, const Store& store) {
  withWidestBlock<T, Widest>(width, [&](auto n) { lastFirst<n>(width, at, store); });
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
