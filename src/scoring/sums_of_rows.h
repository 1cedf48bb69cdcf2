// Lanes of rows joined, four rows together: lane i of what is returned is joinHalves of row i.
//
// Registers of 128 bits at SSE3 and of 256 at the other levels, also where wider ones exist: no lane leaves its 128 bits before the
// last step, and nothing else that runs at 256 bits is slowed.
#pragma once

#include "frame/lanes.h"

namespace qorsr {

// Of every N/2 lanes of ac and of bd the sum by halves: those of a, b, c and d.
template <class T, int N>
inline Lanes<T, 4> sumsOfFour(const Lanes<T, N>& ac, const Lanes<T, N>& bd) {
  static_assert(N == 8 || N == 4);
  if constexpr (N == 8) {
    const Lanes<T, 8> pairs = permuted<order::inTurnOfEach<4, 2, 0>>(ac, bd) + permuted<order::inTurnOfEach<4, 2, 2>>(ac, bd);
    return permuted<order::everySecond<0>, 4>(pairs + permuted<order::neighboursSwapped>(pairs));
  } else {
    return permuted<order::inTurnOfEach<2, 1, 0>>(ac, bd) + permuted<order::inTurnOfEach<2, 1, 1>>(ac, bd);
  }
}
// The lower half of a and of c, plus the upper ones.
template <class T, int N>
inline Lanes<T, N> foldedPair(const Lanes<T, N>& a, const Lanes<T, N>& c) {
  return permuted<order::halfOfEach<N, 0>>(a, c) + permuted<order::halfOfEach<N, N / 2>>(a, c);
}

template <class T, int N>
inline Lanes<T, 4> sumsOfRows(const Lanes<T, N> (&rows)[4]) {
  return sumsOfFour(foldedPair(rows[0], rows[2]), foldedPair(rows[1], rows[3]));
}
template <class T, int N>
inline Lanes<T, 1> sumsOfRows(const Lanes<T, N> (&rows)[1]) {
  return Lanes<T, 1>(joinHalves(rows[0]));
}

}  // namespace qorsr
