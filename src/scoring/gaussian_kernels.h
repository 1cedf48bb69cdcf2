// Quadratic sums of float and double Gaussians: Q = sum over c of (x[c] - m[c])^2 * v[c].
//
// The difference comes first, then its square, then the product, each rounded on its own; so features far from the origin lose
// nothing, as they would in the expanded square. Element 16k + j joins lane j (doubles: 8k + j), and lanes are joined by halves:
// lane j with lane j + 8, then + 4, + 2, + 1. One grouping for every member, number of rows and alignment.
//
// Several rows go at a time: what they share is loaded once, their chains of additions overlap, and they are joined together.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "frame/lanes.h"
#include "scoring/gaussian_rows.h"

namespace qorsr {

template <class Acc>
struct RealSums {
  using Sum = Acc;
  static constexpr int N = 64 / static_cast<int>(sizeof(Acc));
  // Frames and their lanes fill the widest registers. Rows of Gaussians stream through the cache instead, mostly across the lines
  // of it, and loads of half that width cross fewer: the lanes are held in two halves. The sums are the same.
  template <class M>
  static constexpr int kHeld = kIsShared<M> ? N : N / 2;
  // Rows that go together: as many as the registers hold the lanes of. Of Gaussians in double only two: four would be more streams
  // than the processor fetches ahead.
  template <class M>
  static constexpr int kTogether = kNativeBytes == 16 || (sizeof(Acc) == 8 && !kIsShared<M>) ? 2 : 4;

  // (x - m)^2 * v of lanes, or of one register of them.
  template <class P>
  [[gnu::always_inline]] static P term(P x, P m, P v) {
    const P d = x - m;
    return d * d * v;
  }
  template <class P>
  [[gnu::always_inline]] static P term(P x, P m, UnitRow) {
    const P d = x - m;
    return d * d;
  }
  template <class P>
  struct Divisor {
    P value;
  };
  template <class P>
  [[gnu::always_inline]] static P term(P x, P m, Divisor<P> v) {
    const P d = x - m;
    return d * d / v.value;
  }

  // Behind the end of a row the difference is 0, and a divisor 1.
  template <class Part, class T>
  [[gnu::always_inline]] static auto loadPart(Part part, const T* p) {
    return part.load(p);
  }
  template <class Part>
  [[gnu::always_inline]] static UnitRow loadPart(Part, UnitRow) {
    return {};
  }
  template <class Part, class T>
  [[gnu::always_inline]] static auto loadPart(Part part, DivisorRow<T> p) {
    return Divisor<decltype(part.load(p.row))>{part.load(p.row, Acc(1))};
  }

  // The lanes of rows r to r + R - 1, in one set or two halves, then those joined to H lanes.
  template <int H, int R, class X, class M, class V>
  [[gnu::always_inline]] static void accumulate(Lanes<Acc, H> (&sums)[R], const X& xs, const M& ms, const V& vs, int32_t r,
                                                int32_t width) {
    const auto x = takeRows<R>(xs, r);
    const auto m = takeRows<R>(ms, r);
    const auto v = takeRows<R>(vs, r);
    Lanes<Acc, H> lower[R], upper[R];
    for (int i = 0; i < R; ++i) lower[i] = upper[i] = Lanes<Acc, H>(Acc(0));
    const int32_t whole = width / N * N;
    const Tail<Acc, H> lowerEnd(std::min(width - whole, H)), upperEnd(width - whole - H);
    int32_t c = 0;
    const auto addTo = [&](Lanes<Acc, H>(&set)[R], int offset) __attribute__((always_inline)) {
      return [&set, &x, &m, &v, at = c + offset ](auto part) __attribute__((always_inline)) {
        for (int i = 0; i < R; ++i) {
          auto& sum = set[i].part[part.kIndex];
          sum = sum + term(loadPart(part, x[i] + at), loadPart(part, m[i] + at), loadPart(part, v[i] + at));
        }
      };
    };
    for (; c < whole; c += N) {
      forWholeParts<Acc, H>(addTo(lower, 0));
      if constexpr (H < N) forWholeParts<Acc, H>(addTo(upper, H));
    }
    lowerEnd.forParts(addTo(lower, 0));
    if constexpr (H < N) upperEnd.forParts(addTo(upper, H));
    for (int i = 0; i < R; ++i) sums[i] = H < N ? lower[i] + upper[i] : lower[i];
  }

  // R is 4 or 1.
  template <int R, class X, class M, class V>
  [[gnu::always_inline]] static void tile(const X& x, const M& m, const V& v, int32_t r, int32_t width, Acc* result) {
    constexpr int H = kHeld<M>;
    if constexpr (R == 1) {
      Lanes<Acc, H> sums[1];
      accumulate(sums, x, m, v, r, width);
      *result = joinHalves(sums[0]);
    } else if constexpr (kTogether<M> == 2) {
      Lanes<Acc, H> first[2], second[2];
      accumulate(first, x, m, v, r, width);
      const auto a = joinedTo<4>(first[0]), b = joinedTo<4>(first[1]);
      accumulate(second, x, m, v, r + 2, width);
      joinHalves(a, b, joinedTo<4>(second[0]), joinedTo<4>(second[1])).store(result);
    } else {
      Lanes<Acc, H> sums[4];
      accumulate(sums, x, m, v, r, width);
      joinHalves(sums[0], sums[1], sums[2], sums[3]).store(result);
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
