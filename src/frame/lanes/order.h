// Lanes in another order, within one register: for kernels that work on numbers lying in turn, and for transforms.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "frame/lanes.h"

namespace qorsr {

namespace native {

template <class V, std::size_t... I>
inline V clearLane0(V a, std::index_sequence<I...>) {
  return __builtin_shufflevector(V{}, a, static_cast<int>(I == 0 ? 0 : sizeof...(I) + I)...);
}

}  // namespace native

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
