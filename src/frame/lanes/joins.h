// Halves of lanes, and sums of all lanes: of one set, or of several together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

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

// Sum of four lanes, neighbours first: (l0+l1) + (l2+l3).
template <class T>
inline T joinNeighbours(const Lanes<T, 4>& a) {
  T l[4];
  a.store(l);
  return (l[0] + l[1]) + (l[2] + l[3]);
}

// Four lane sets transposed: lane i of `lane[j]` is lane j of set i. What is then added lane by lane is the join of each set.
struct Transposed {
  Lanes<float, 4> lane[4];
};
inline Transposed transposed(const Lanes<float, 4>& a, const Lanes<float, 4>& b, const Lanes<float, 4>& c,
                             const Lanes<float, 4>& d) {
  const auto ab = interleaved(a, b), cd = interleaved(c, d);
  return {permuted<order::lowerHalves>(ab.first, cd.first), permuted<order::upperHalves>(ab.first, cd.first),
          permuted<order::lowerHalves>(ab.second, cd.second), permuted<order::upperHalves>(ab.second, cd.second)};
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
inline Lanes<T, 4> joinHalves(const Lanes<T, N>& a, const Lanes<T, N>& b, const Lanes<T, N>& c, const Lanes<T, N>& d) {
  if constexpr (sizeof(T) == 4) {
    return joinFours(foldToFours(a, b, c, d));
  } else {
    return Lanes<T, 4>::of(joinHalves(a), joinHalves(b), joinHalves(c), joinHalves(d));
  }
}

// The neighbours-join of four lane sets at once.
inline Lanes<float, 4> joinNeighbours4(const Lanes<float, 4>& a, const Lanes<float, 4>& b, const Lanes<float, 4>& c,
                                       const Lanes<float, 4>& d) {
  const Transposed t = transposed(a, b, c, d);
  return (t.lane[0] + t.lane[1]) + (t.lane[2] + t.lane[3]);
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

}  // namespace qorsr
