// Quadratic sums of float and double Gaussians: Q = sum over c of (x[c] - m[c])^2 * v[c].
//
// The difference comes first, then its square, then the product, each rounded on its own; so features far from the origin lose
// nothing, as they would in the expanded square. Element 16k + j joins lane j (doubles: 8k + j), and lanes are joined by halves:
// lane j with lane j + 8, then + 4, + 2, + 1. One grouping for every member, number of rows and alignment.
//
// Several rows go at a time: what they share is loaded once, their chains of additions overlap, and they are joined together.
#pragma once

#include <cstdint>

#include "frame/lanes.h"
#include "scoring/gaussian_rows.h"

namespace qorsr {

// How many rows the registers hold the lanes of.
inline constexpr int kRowsAtOnce = kNativeBytes == 16 ? 2 : 4;

template <class Acc>
struct RealSums {
  using Sum = Acc;
  static constexpr int N = 64 / static_cast<int>(sizeof(Acc));
  using L = Lanes<Acc, N>;

  // (x - m)^2 * v of lanes, or of one register of them.
  template <class P>
  static P term(P x, P m, P v) {
    const P d = x - m;
    return d * d * v;
  }
  template <class P>
  static P term(P x, P m, UnitRow) {
    const P d = x - m;
    return d * d;
  }
  template <class P>
  struct Divisor {
    P value;
  };
  template <class P>
  static P term(P x, P m, Divisor<P> v) {
    const P d = x - m;
    return d * d / v.value;
  }

  template <class T>
  static L load(const T* p) {
    return loadAs<Acc, N>(p);
  }
  static UnitRow load(UnitRow) { return {}; }
  template <class T>
  static Divisor<L> load(DivisorRow<T> p) {
    return {load(p.row)};
  }

  // Behind the end of a row the difference is 0, and a divisor 1.
  template <class Part, class T>
  static auto loadPart(Part part, const T* p) {
    return part.load(p);
  }
  template <class Part>
  static UnitRow loadPart(Part, UnitRow) {
    return {};
  }
  template <class Part, class T>
  static auto loadPart(Part part, DivisorRow<T> p) {
    return Divisor<decltype(part.load(p.row))>{part.load(p.row, Acc(1))};
  }

  // The lanes of rows r to r + R - 1.
  template <int R, class X, class M, class V>
  [[gnu::always_inline]] static void accumulate(L (&acc)[R], const X& xs, const M& ms, const V& vs, int32_t r, int32_t width) {
    decltype(xs[0]) x[R];
    decltype(ms[0]) m[R];
    decltype(vs[0]) v[R];
    for (int i = 0; i < R; ++i) acc[i] = L(Acc(0)), x[i] = xs[r + i], m[i] = ms[r + i], v[i] = vs[r + i];
    int32_t c = 0;
    for (; c <= width - N; c += N) {
      for (int i = 0; i < R; ++i) acc[i] += term(load(x[i] + c), load(m[i] + c), load(v[i] + c));
    }
    Tail<Acc, N>(width - c).forParts([&](auto part) __attribute__((always_inline)) {
      for (int i = 0; i < R; ++i) {
        auto& sum = acc[i].part[part.kIndex];
        sum = sum + term(loadPart(part, x[i] + c), loadPart(part, m[i] + c), loadPart(part, v[i] + c));
      }
    });
  }

  // R is 4 or 1.
  template <int R, class X, class M, class V>
  [[gnu::always_inline]] static void tile(const X& x, const M& m, const V& v, int32_t r, int32_t width, Acc* sums) {
    if constexpr (R == 1) {
      L acc[1];
      accumulate(acc, x, m, v, r, width);
      *sums = joinHalves(acc[0]);
    } else if constexpr (kRowsAtOnce == 2) {
      Lanes<Acc, 4> quarter[4];
      for (int i = 0; i < 4; i += 2) {
        L acc[2];
        accumulate(acc, x, m, v, r + i, width);
        quarter[i] = joinedTo<4>(acc[0]);
        quarter[i + 1] = joinedTo<4>(acc[1]);
      }
      joinHalves4(quarter[0], quarter[1], quarter[2], quarter[3]).store(sums);
    } else {
      L acc[4];
      accumulate(acc, x, m, v, r, width);
      joinHalves4(acc[0], acc[1], acc[2], acc[3]).store(sums);
    }
  }
};

// The sums of rows 0 to count - 1, four rows at a time. The last four may overlap those before them.
template <class Kernel, class X, class M, class V>
[[gnu::noinline]] void quadraticSums(Kernel kernel, X x, M m, V v, int32_t count, int32_t width, typename Kernel::Sum* sums) {
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
[[gnu::noinline]] typename Kernel::Sum quadraticSum(Kernel kernel, X x, M m, V v, int32_t width) {
  typename Kernel::Sum sum;
  kernel.template tile<1>(x, m, v, 0, width, &sum);
  return sum;
}

}  // namespace qorsr
