// Counts of sign changes between neighbours x[n] and x[n + 1].
//
//   product   pairs with x[n] * x[n + 1] < 0: a zero counts for nothing, and neither does a product that underflows
//   steps     sum of |sgn x[n + 1] - sgn x[n]|, halved: a step from or to zero counts half
//   xor       pairs whose sign bits differ: minus zero is negative
//
// Counts are whole numbers, exact in any order.
#pragma once

#include <bit>
#include <cstdint>
#include <type_traits>

#include "features/whole_sums.h"
#include "frame/checks.h"
#include "frame/lanes.h"

namespace qorsr {

// ---- What pairs count: -1 where a comparison holds, as lanes say it ----

// Comparisons of T, lane by lane.
template <class T>
using CountOf = std::conditional_t<std::is_same_v<T, float>, int32_t, int16_t>;

template <class T, int N, class F>
inline Lanes<CountOf<T>, N> counted(const Lanes<T, N>& a, const Lanes<T, N>& b, F f) {
  Lanes<CountOf<T>, N> v;
  for (int i = 0; i < v.kParts; ++i) v.part[i] = f(a.part[i], b.part[i]);
  return v;
}

struct NegativeProducts {
  template <int N>
  Lanes<int32_t, N> operator()(const Lanes<float, N>& a, const Lanes<float, N>& b) const {
    return counted(a, b, [](auto x, auto y) { return x * y < 0.0F; });
  }
  template <int N>
  Lanes<int16_t, N> operator()(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& b) const {
    return upperProducts(a, b) >> 15;
  }
  static int one(float x, float y) { return -static_cast<int>(x * y < 0.0F); }
  static int one(int16_t x, int16_t y) { return -static_cast<int>(x * y < 0); }
};

struct SignSteps {
  template <class T, int N>
  Lanes<CountOf<T>, N> operator()(const Lanes<T, N>& a, const Lanes<T, N>& b) const {
    return counted(a, b, [](auto x, auto y) { return ((x > 0) ^ (y > 0)) + ((x < 0) ^ (y < 0)); });
  }
  template <class T>
  static int one(T x, T y) {
    return -static_cast<int>((x > 0) != (y > 0)) - static_cast<int>((x < 0) != (y < 0));
  }
};

struct DifferentSigns {
  template <int N>
  Lanes<int32_t, N> operator()(const Lanes<float, N>& a, const Lanes<float, N>& b) const {
    using Bits = typename Lanes<int32_t, N>::Part;
    return counted(a, b, [](auto x, auto y) { return (std::bit_cast<Bits>(x) ^ std::bit_cast<Bits>(y)) >> 31; });
  }
  static int one(float x, float y) { return (std::bit_cast<int32_t>(x) ^ std::bit_cast<int32_t>(y)) >> 31; }
};

template <class T, class Count>
inline int64_t countPairs(const T* x, int32_t length, Count count) {
  return -wholeSum<2 * kNativeLanes<T>>(length - 1, [=]<int N>(int32_t i, LaneCount<N>) {
    if constexpr (N == 1) {
      return count.one(x[i], x[i + 1]);
    } else {
      return count(Lanes<T, N>::load(x + i), Lanes<T, N>::load(x + i + 1));
    }
  });
}

// ---- Family body ----

template <class T, class Result, class Count, class Finish>
QorStatus countSignChanges(const T* source, int32_t length, Result* result, Count count, Finish finish) {
  if (QorStatus bad = Checks().null(result, source).size(length)) return bad;
  *result = finish(countPairs(source, length, count));
  return qorStatusOk;
}

}  // namespace qorsr
