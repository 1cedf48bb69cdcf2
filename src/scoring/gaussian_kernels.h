// Quadratic sums of float and double Gaussians, and of 16-bit ones with float sums in lanes: Q = sum over c of (x[c] - m[c])^2 * v[c].
//
// The difference comes first, then its square, then the product, each rounded on its own; so features far from the origin lose
// nothing, as they would in the expanded square. N = 8 float lanes, or 4 double ones. The last elements of a row come first: element
// n - N + j joins lane j, those that groups of N in front of them hold already excepted (a row that is shorter: element j, lane j).
// Then come the groups, element N k + j in lane j. The lanes are joined by halves: lane j with lane j + N/2, and so on. One grouping
// for every member, number of rows, level and alignment.
//
// Four rows go at a time: what they share is loaded once, their chains of additions overlap, and they are joined together.
#pragma once

#include <cstdint>

#include "frame/lanes.h"
#include "scoring/gaussian_rows.h"
#include "scoring/row_end.h"
#include "scoring/sums_of_rows.h"

namespace qorsr {

// square * v.
template <class Acc, class T, int N>
inline Lanes<Acc, N> weighted(const Lanes<Acc, N>& square, const Lanes<T, N>& v) {
  return square * as<Acc>(v);
}
template <class Acc, int N>
inline Lanes<Acc, N> weighted(const Lanes<Acc, N>& square, UnitRow) {
  return square;
}
template <class Acc, class T, int N>
inline Lanes<Acc, N> weighted(const Lanes<Acc, N>& square, const Divisors<T, N>& v) {
  return square / as<Acc>(v.value);
}

// Terms: group(x, m, v) of a whole group, rest(x, m, v) of what is left of a row; where these differ, kSaturatesGroups.
template <class Terms>
struct LaneSums {
  using Sum = typename Terms::Sum;
  static constexpr int N = 32 / static_cast<int>(sizeof(Sum));

  // R is 4 or 1.
  template <int R, class X, class M, class V>
  static void tile(const X& xs, const M& ms, const V& vs, int32_t r, int32_t width, Sum* sums) {
    const auto x = takeRows<R>(xs, r), m = takeRows<R>(ms, r);
    const auto v = takeRows<R>(vs, r);
    const RowEnd<N> end(width);
    Lanes<Sum, N> sum[R];
    if (Terms::kSaturatesGroups && end.count() == 0) {
      for (int i = 0; i < R; ++i)
        sum[i] = Terms::group(end.template load<true>(x[i]), end.template load<true>(m[i]), end.template load<true>(v[i]));
    } else if (end.overlaps()) {
      for (int i = 0; i < R; ++i)
        sum[i] = end.kept(Terms::rest(end.template load<true>(x[i]), end.template load<true>(m[i]), end.template load<true>(v[i])));
    } else {
      for (int i = 0; i < R; ++i)
        sum[i] = Terms::rest(end.template load<false>(x[i]), end.template load<false>(m[i]), end.template load<false>(v[i]));
    }
    for (int32_t c = 0; c < width - N; c += N) {
      for (int i = 0; i < R; ++i) sum[i] += Terms::group(loadLanes<N>(x[i] + c), loadLanes<N>(m[i] + c), loadLanes<N>(v[i] + c));
    }
    sumsOfRows(sum).store(sums);
  }
};

template <class Acc>
struct RealTerms {
  using Sum = Acc;
  static constexpr bool kSaturatesGroups = false;

  template <class T, class V, int N>
  static Lanes<Acc, N> group(const Lanes<T, N>& x, const Lanes<T, N>& m, const V& v) {
    const auto d = as<Acc>(x) - as<Acc>(m);
    return weighted(d * d, v);
  }
  template <class T, class V, int N>
  static Lanes<Acc, N> rest(const Lanes<T, N>& x, const Lanes<T, N>& m, const V& v) {
    return group(x, m, v);
  }
};
template <class Acc>
using RealSums = LaneSums<RealTerms<Acc>>;

// The sums of rows 0 to count - 1, four rows at a time. The last four may overlap those before them. Flattened: where the compiler
// calls an operation of lanes instead of inlining it, they go through memory (gaussian, Low 16s32s at SSE3: 1.9 times the time).
template <class Kernel, class X, class M, class V>
[[gnu::noinline, gnu::flatten]] void quadraticSums(Kernel kernel, X x, M m, V v, int32_t count, int32_t width,
                                                   typename Kernel::Sum* sums) {
  if (count < 4) {
    for (int32_t r = 0; r < count; ++r) kernel.template tile<1>(x, m, v, r, width, sums + r);
    return;
  }
  int32_t r = 0;
  for (; r <= count - 4; r += 4) kernel.template tile<4>(x, m, v, r, width, sums + r);
  if (r < count) kernel.template tile<4>(x, m, v, count - 4, width, sums + count - 4);
}

// The sum of one row.
template <class Kernel, class X, class M, class V>
[[gnu::noinline, gnu::flatten]] typename Kernel::Sum quadraticSum(Kernel kernel, X x, M m, V v, int32_t width) {
  typename Kernel::Sum sum;
  kernel.template tile<1>(x, m, v, 0, width, &sum);
  return sum;
}

}  // namespace qorsr
