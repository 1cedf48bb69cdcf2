// Lanes in another order, within one register: for kernels that work on numbers lying in turn, and for transforms.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

template <class V, std::size_t... I>
inline V reversed(V v, std::index_sequence<I...>) {
  return __builtin_shufflevector(v, v, static_cast<int>(sizeof...(I) - 1 - I)...);
}
// Groups of G lanes in turn from a and b: from their lower halves, or their upper ones.
template <std::size_t G, bool Upper, class V, std::size_t... I>
inline V zip(V a, V b, std::index_sequence<I...>) {
  constexpr std::size_t W = sizeof...(I), kFrom = Upper ? W / 2 : 0;
  return __builtin_shufflevector(a, b, static_cast<int>(I / G % 2 * W + kFrom + I / G / 2 * G + I % G)...);
}
// Every second lane of a and then b, from lane `Odd` on.
template <std::size_t Odd, class V, std::size_t... I>
inline V unzip(V a, V b, std::index_sequence<I...>) {
  return __builtin_shufflevector(a, b, static_cast<int>(2 * I + Odd)...);
}

template <class V, std::size_t... I>
inline V clearLane0(V a, std::index_sequence<I...>) {
  return __builtin_shufflevector(V{}, a, static_cast<int>(I == 0 ? 0 : sizeof...(I) + I)...);
}

}  // namespace native

template <class T, int N>
inline Lanes<T, N> reversed(const Lanes<T, N>& a) {
  static_assert(Lanes<T, N>::kParts == 1);
  Lanes<T, N> v = a;
  if constexpr (N > 1) v.part[0] = native::reversed(a.part[0], std::make_index_sequence<N>());
  return v;
}

// 2N lanes, `first` and then `second`.
template <class T, int N>
struct LanesPair {
  Lanes<T, N> first, second;
};

// a and b in turn, G lanes at a time: a0 b0 a1 b1 ... for G = 1.
template <int G, class T, int N>
inline LanesPair<T, N> zip(const Lanes<T, N>& a, const Lanes<T, N>& b) {
  static_assert(Lanes<T, N>::kParts == 1 && G < N);
  LanesPair<T, N> v;
  v.first.part[0] = native::zip<G, false>(a.part[0], b.part[0], std::make_index_sequence<N>());
  v.second.part[0] = native::zip<G, true>(a.part[0], b.part[0], std::make_index_sequence<N>());
  return v;
}
// The reverse of zip<1>: the even and the odd ones of 2N lanes.
template <class T, int N>
inline LanesPair<T, N> unzip(const Lanes<T, N>& first, const Lanes<T, N>& second) {
  static_assert(Lanes<T, N>::kParts == 1 && N > 1);
  LanesPair<T, N> v;
  v.first.part[0] = native::unzip<0>(first.part[0], second.part[0], std::make_index_sequence<N>());
  v.second.part[0] = native::unzip<1>(first.part[0], second.part[0], std::make_index_sequence<N>());
  return v;
}

// Lane 0 from memory, zeros elsewhere.
template <int N, class T>
inline Lanes<T, N> loadLane0(const T* p) {
  Lanes<T, N> v(T(0));
  v.part[0] = typename Lanes<T, N>::Part{*p};
  return v;
}

// a, with 0 in lane 0.
template <class T, int N>
inline Lanes<T, N> clearLane0(const Lanes<T, N>& a) {
  Lanes<T, N> v = a;
  v.part[0] = native::clearLane0(a.part[0], std::make_index_sequence<Lanes<T, N>::kPart>());
  return v;
}

// Lanes a3 b0 b1 b2.
inline Lanes<float, 4> shiftIn(const Lanes<float, 4>& a, const Lanes<float, 4>& b) {
  const auto ends = __builtin_shufflevector(a.part[0], b.part[0], 3, 3, 4, 4);  // GCC 12 makes more than two steps of one shuffle
  Lanes<float, 4> v;
  v.part[0] = __builtin_shufflevector(ends, b.part[0], 0, 2, 5, 6);
  return v;
}

// Stores the first n < 4 lanes.
inline void storeFirst(const Lanes<float, 4>& a, float* p, int32_t n) {
  if (n >= 2) {
    lowerHalf(a).store(p);
    if (n == 3) p[2] = a.part[0][2];
  } else if (n == 1) {
    p[0] = a.part[0][0];
  }
}

}  // namespace qorsr
