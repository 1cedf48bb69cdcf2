// Sums of all lanes: of one set, or of four sets together, which takes far fewer steps than four sums.
#pragma once

#include <cstdint>

#include "frame/lanes/permuted.h"

namespace qorsr {

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

// ---- Four sets ----

// Lane i of `lane[j]` is lane j of set i. What is then added lane by lane is the join of each set.
struct Transposed {
  Lanes<float, 4> lane[4];
};
inline Transposed transposed(const Lanes<float, 4>& a, const Lanes<float, 4>& b, const Lanes<float, 4>& c,
                             const Lanes<float, 4>& d) {
  const auto ab = interleaved(a, b), cd = interleaved(c, d);
  return {permuted<order::lowerHalves>(ab.first, cd.first), permuted<order::upperHalves>(ab.first, cd.first),
          permuted<order::lowerHalves>(ab.second, cd.second), permuted<order::upperHalves>(ab.second, cd.second)};
}

namespace order {
// Lanes From, From + 1, ..., From + G/2 - 1 of every G lanes.
template <int G, int From>
constexpr int halfOfEach(int i, int) {
  return i / (G / 2) * G + i % (G / 2) + From;
}
constexpr int neighboursSwapped(int i, int) { return i ^ 1; }
constexpr int everyFourth(int i, int) { return 4 * i; }
constexpr int pairsSwapped(int i, int) { return i ^ 2; }
constexpr int inTurnLaneByLane(int i, int n) { return i % 2 * n + i; }
}  // namespace order

// Sets of G lanes, one behind the other, joined by halves to sets of M lanes.
template <int G, int M, class T, int N>
inline Lanes<T, N / G * M> foldedSets(const Lanes<T, N>& sets) {
  if constexpr (G == M) {
    return sets;
  } else {
    return foldedSets<G / 2, M>(permuted<order::halfOfEach<G, 0>, N / 2>(sets) +
                                permuted<order::halfOfEach<G, G / 2>, N / 2>(sets));
  }
}

// Four sets of four lanes, one behind the other: lane i of the result is joinHalves of lanes 4i to 4i + 3. In registers of several
// sets no lane leaves its set before the last step: such shuffles are the cheap ones.
template <class T>
inline Lanes<T, 4> joinFours(const Lanes<T, 16>& sets) {
  constexpr int kParts = Lanes<T, 16>::kParts;
  if constexpr (kParts == 1) {
    const auto pairs = sets + permuted<order::pairsSwapped>(sets);
    return permuted<order::everyFourth, 4>(pairs + permuted<order::neighboursSwapped>(pairs));
  } else if constexpr (kParts == 4) {
    return foldedSets<4, 1>(sets);
  } else {
    const auto ab = lowerHalf(sets), cd = upperHalf(sets);
    const auto pairs = permuted<order::inTurnOfEach<4, 2, 0>>(ab, cd) + permuted<order::inTurnOfEach<4, 2, 2>>(ab, cd);
    const auto sums = pairs + permuted<order::neighboursSwapped>(pairs);  // a a c c, b b d d
    return permuted<order::inTurnLaneByLane>(lowerHalf(sums), upperHalf(sums));
  }
}

// Lane i of the result is joinHalves of set i.
template <class T, int N>
inline Lanes<T, 4> joinHalves(const Lanes<T, N>& a, const Lanes<T, N>& b, const Lanes<T, N>& c, const Lanes<T, N>& d) {
  const auto sets = concatenated(concatenated(a, b), concatenated(c, d));
  if constexpr (sizeof(T) == 4) {
    return joinFours(foldedSets<N, 4>(sets));
  } else {
    return foldedSets<N, 1>(sets);
  }
}

}  // namespace qorsr
