// Exact sums of small whole numbers, for counts and sums of samples: any order gives the same.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "frame/column_blocks.h"
#include "frame/lanes.h"

namespace qorsr {

namespace detail {

template <int N>
inline int64_t sumOfLanes(const Lanes<int32_t, N>& sums) {
  return joinHalves(sums);
}
template <int N>
inline int64_t sumOfLanes(const Lanes<int16_t, N>& sums) {
  return joinHalves(pairDots(sums, Lanes<int16_t, N>(1)));
}

// Terms i to n - 1, N at a time; the sums are folded to half as many lanes, which take what is left of them, down to one register of
// 128 bits. The last terms are added one by one.
template <int N, class Sums, class Term>
inline int64_t sumInHalves(int32_t i, int32_t n, Sums sums, const Term& term) {
  for (; n - i >= N; i += N) sums += term(i, LaneCount<N>());
  if constexpr (sizeof(Sums) > 16) {
    return sumInHalves<N / 2>(i, n, lowerHalf(sums) + upperHalf(sums), term);
  } else {
    int64_t total = sumOfLanes(sums);
    for (; i < n; ++i) total += term(i, LaneCount<1>());
    return total;
  }
}

template <int N, class Term>
using SumsOf = decltype(std::declval<Term>()(0, LaneCount<N>()));

// From the widest block on that there is.
template <int N, class Term>
inline int64_t sumFrom(int32_t i, int32_t n, const Term& term) {
  using Sums = SumsOf<N, Term>;
  if constexpr (sizeof(Sums) > 16) {
    if (n - i < N) return sumFrom<N / 2>(i, n, term);
  }
  return sumInHalves<N>(i, n, Sums(0), term);
}

}  // namespace detail

// Apart, so that short sums need no set-up of wide registers.
template <int Widest, class Term>
[[gnu::noinline]] int64_t longWholeSum(int32_t n, Term term) {
  constexpr int32_t kChunk = Widest << 9;
  int64_t total = 0;
  int32_t i = 0;
  for (; n - i > kChunk; i += kChunk) total += detail::sumInHalves<Widest>(i, i + kChunk, detail::SumsOf<Widest, Term>(0), term);
  return total + detail::sumFrom<Widest>(i, n, term);
}

// The sum of term(i, LaneCount<N>) over blocks that cover 0 to n - 1 once, of at most `Widest` lanes of whole numbers; of a single term
// it is a number. What 2^9 terms of a lane and all folds of lanes add up to must fit a lane.
template <int Widest, class Term>
inline int64_t wholeSum(int32_t n, const Term& term) {
  if (n >= 8) return longWholeSum<Widest>(n, term);
  int64_t total = 0;
  for (int32_t i = 0; i < n; ++i) total += term(i, LaneCount<1>());
  return total;
}

}  // namespace qorsr
