// Quadratic sums of 16-bit Gaussians: four arithmetics over d = x - m, in that order, since saturation is not symmetric.
//
//   ShortSums         float sums in eight lanes, as of floats: d saturated to 16 bits, then (float(d)^2 * v) in float. What is left
//                     behind groups of eight is not saturated. Blocks of frames, and many Gaussians.
//   GroupedShortSums  the same terms. The two halves of a group added lane by lane, (l0 + l2) + (l1 + l3), and that joins one total;
//                     what is left, element by element. One frame against one Gaussian, and mixtures (required).
//   ShortIntegerSums  32-bit integers that wrap. d^2 = 65536 upper + lower; with H = -sum of upper * v, L = -sum of (lower / 2) *
//                     v the result is H shifted left by 15 - sf plus L shifted right by sf, which is -Q / 2^(sf + 1) but for the
//                     truncation of the shifts. Four lanes, each of neighbouring pairs, shifted once behind all groups of eight;
//                     each pair of the remainder, and a last element, is shifted by itself.
//   ShortPairSums     sums of d^2, neighbouring pairs as 32-bit integers that wrap, then four float lanes.
//
// required: saturation in groups of eight and not behind them; where the shifts truncate; the last odd element without saturation
// in the two integer forms with identity variance.
#pragma once

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "frame/bits.h"
#include "frame/lanes.h"
#include "scoring/gaussian_kernels.h"

namespace qorsr {

namespace native {
// Every eight numbers moved down by one, with a zero at the end. A constant order does not give this instruction at SSE3.
template <class V>
inline V dropFirst(V a) {
#if defined(__AVX512BW__)
  if constexpr (sizeof(V) == 64) return V(_mm512_bsrli_epi128(__m512i(a), 2));
#endif
#if defined(__AVX2__)
  if constexpr (sizeof(V) == 32) return V(_mm256_bsrli_epi128(__m256i(a), 2));
#endif
#if defined(__SSE3__)
  if constexpr (sizeof(V) == 16) return V(_mm_srli_si128(__m128i(a), 2));
#endif
  V v{};
  for (std::size_t i = 0; i < sizeof(V) / sizeof(int16_t); ++i) v[i] = i % 8 < 7 ? a[i + 1] : int16_t{0};
  return v;
}
}  // namespace native

// Every eight int16 lanes moved down by one, with a zero at their end.
template <int N>
inline Lanes<int16_t, N> dropFirst(const Lanes<int16_t, N>& a) {
  return Lanes<int16_t, N>::each(a, [](auto x) { return native::dropFirst(x); });
}

namespace shorts {

// Groups of rows k and k + 2 in one register, or of the only row.
template <int R, class Load>
inline auto loadPair(const RowPointers<const int16_t*, R>& rows, int k, const Load& load) {
  if constexpr (R == 1) {
    return load(rows[k]);
  } else {
    return concatenated(load(rows[k]), load(rows[k + 2]));
  }
}
template <int R, class Load>
inline UnitRow loadPair(const RowPointers<UnitRow, R>&, int, const Load&) {
  return {};
}

// The square of a 16-bit number in two halves: its upper 16 bits, and its lower 16 bits shifted right by one.
template <int N>
struct SplitSquare {
  Lanes<int16_t, N> upper, halvedLower;
};
template <int N>
inline SplitSquare<N> splitSquare(const Lanes<int16_t, N>& a) {
  const auto u = as<uint16_t>(a);
  return {upperProducts(a, a), as<int16_t>((u * u) >> 1)};
}

inline UnitRow dropFirst(UnitRow row) { return row; }
using qorsr::dropFirst;

// Sums of neighbouring products a * v.
template <int N>
inline Lanes<uint32_t, N / 2> pairs(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& v) {
  return as<uint32_t>(pairDots(a, v));
}
template <int N>
inline Lanes<uint32_t, N / 2> pairs(const Lanes<int16_t, N>& a, UnitRow) {
  return as<uint32_t>(pairDots(a, Lanes<int16_t, N>(1)));
}

inline int32_t difference(const int16_t* x, const int16_t* m) { return static_cast<int32_t>(*x) - *m; }

// total + p[0] + p[1] + ... + p[7], one after the other: of one row, and of four.
inline Lanes<float, 1> addInOrder(Lanes<float, 1> total, const Lanes<float, 8> (&rows)[1]) {
  float all[8];
  rows[0].store(all);
  for (const float term : all) total += Lanes<float, 1>(term);
  return total;
}
inline Lanes<float, 4> addInOrder(Lanes<float, 4> total, const Lanes<float, 8> (&p)[4]) {
  for (const auto& term : transposed(lowerHalf(p[0]), lowerHalf(p[1]), lowerHalf(p[2]), lowerHalf(p[3])).lane) total += term;
  for (const auto& term : transposed(upperHalf(p[0]), upperHalf(p[1]), upperHalf(p[2]), upperHalf(p[3])).lane) total += term;
  return total;
}

}  // namespace shorts

// d^2 * v, saturated in groups and not behind them.
struct ShortTerms {
  using Sum = float;
  static constexpr bool kSaturatesGroups = true;

  template <class V>
  static Lanes<float, 8> group(const Lanes<int16_t, 8>& x, const Lanes<int16_t, 8>& m, const V& v) {
    const auto d = as<float>(subtractSaturated(x, m));
    return weighted(d * d, v);
  }
  template <class V>
  static Lanes<float, 8> rest(const Lanes<int16_t, 8>& x, const Lanes<int16_t, 8>& m, const V& v) {
    const auto d = as<float>(x) - as<float>(m);
    return weighted(d * d, v);
  }
};
using ShortSums = LaneSums<ShortTerms>;

struct GroupedShortSums {
  using Sum = float;

  // R is 4 or 1.
  template <int R, class X, class M, class V>
  static void tile(const X& xs, const M& ms, const V& vs, int32_t r, int32_t width, float* sums) {
    const auto x = takeRows<R>(xs, r), m = takeRows<R>(ms, r);
    const auto v = takeRows<R>(vs, r);
    Lanes<float, R> total(0.0F);
    Lanes<float, 8> p[R];
    for (int32_t c = 0; c <= width - 8; c += 8) {
      for (int i = 0; i < R; ++i) p[i] = ShortTerms::group(loadLanes<8>(x[i] + c), loadLanes<8>(m[i] + c), loadLanes<8>(v[i] + c));
      total += sumsOfRows(p);
    }
    const RowEnd<8> end(width);
    if (end.count() > 0 && end.overlaps()) {
      for (int i = 0; i < R; ++i)
        p[i] = end.kept(ShortTerms::rest(end.load<true>(x[i]), end.load<true>(m[i]), end.load<true>(v[i])));
      total = shorts::addInOrder(total, p);
    } else if (end.count() > 0) {
      for (int i = 0; i < R; ++i) p[i] = ShortTerms::rest(end.load<false>(x[i]), end.load<false>(m[i]), end.load<false>(v[i]));
      total = shorts::addInOrder(total, p);
    }
    total.store(sums);
  }
};

struct ShortIntegerSums {
  using Sum = int32_t;

  // A negative scale factor shifts left (identity variance alone). required: the lower halves shift right by 15 at most.
  explicit ShortIntegerSums(int32_t scaleFactor)
      : scaleFactor_(scaleFactor), upper_(int64_t{scaleFactor} - 15), lower_(std::min(scaleFactor, 15)) {}

  // R is 4 or 1.
  template <int R, class X, class M, class V>
  void tile(const X& xs, const M& ms, const V& vs, int32_t r, int32_t width, int32_t* sums) const {
    const auto x = takeRows<R>(xs, r), m = takeRows<R>(ms, r);
    const auto v = takeRows<R>(vs, r);
    constexpr bool kUnit = std::is_same_v<decltype(v[0]), UnitRow>;
    Halves<kWide / 2> rows[R];
    int32_t c = 0;
    for (; c <= width - kWide; c += kWide) {
      for (int i = 0; i < R; ++i) {
        rows[i].add(subtractSaturated(loadLanes<kWide>(x[i] + c), loadLanes<kWide>(m[i] + c)), loadLanes<kWide>(v[i] + c));
      }
    }
    // What is left of rows k and k + 2: a group, which joins the others before the shift, and the rest. With identity variance a
    // last odd element comes by itself.
    const bool group = kWide > 8 && width - c >= 8;
    const RowEnd<8> end(kUnit ? width / 2 * 2 : width);
    const auto total = [&](int k) {
      auto sum = folded(rows, k);
      if (group) {
        const auto load = [c](const int16_t* row) { return Lanes<int16_t, 8>::load(row + c); };
        sum.add(subtractSaturated(shorts::loadPair(x, k, load), shorts::loadPair(m, k, load)), shorts::loadPair(v, k, load));
      }
      if (end.count() == 0) return shifted(sum);
      return shifted(sum, end.overlaps() ? endOf<true>(x, m, v, k, end) : endOf<false>(x, m, v, k, end));
    };
    if constexpr (R == 4) as<int32_t>(sumsOfFour(total(0), total(1))).store(sums);
    if constexpr (R == 1) *sums = static_cast<int32_t>(joinHalves(total(0)));
    if (kUnit && width % 2 != 0) {
      for (int i = 0; i < R; ++i) sums[i] = wrapAdd(sums[i], lastOfUnit(x[i] + width - 1, m[i] + width - 1));
    }
  }

 private:
  // Where a register holds one group, 16 numbers would take two, and the sums of four rows all there are.
  static constexpr int kWide = kNativeLanes<int16_t> < 16 ? 8 : 16;

  // The two sums, without their sign.
  template <int N>
  struct Halves {
    Lanes<uint32_t, N> upper{0}, lower{0};

    template <class V>
    void add(const Lanes<int16_t, 2 * N>& d, const V& v) {
      const auto square = shorts::splitSquare(d);
      upper += shorts::pairs(square.upper, v);
      lower += shorts::pairs(square.halvedLower, v);
    }
  };

  // Four lanes of the only row, or those of rows k and k + 2.
  using Wide = Halves<kWide / 2>;
  static Halves<4> folded(const Wide (&rows)[1], int) { return {joinedTo<4>(rows[0].upper), joinedTo<4>(rows[0].lower)}; }
  static Halves<8> folded(const Wide (&rows)[4], int k) {
    const auto pair = [](const auto& a, const auto& c) {
      if constexpr (kWide == 8) {
        return concatenated(a, c);
      } else {
        return foldedPair(a, c);
      }
    };
    return {pair(rows[k].upper, rows[k + 2].upper), pair(rows[k].lower, rows[k + 2].lower)};
  }

  // Pairs must stay pairs: an odd number of elements that end the lanes is moved down by one.
  template <bool Overlaps, int R, class V>
  static auto endOf(const RowPointers<const int16_t*, R>& x, const RowPointers<const int16_t*, R>& m, const RowPointers<V, R>& v,
                    int k, const RowEnd<8>& end) {
    const auto load = [&](const int16_t* row) { return end.load<Overlaps>(row); };
    const auto d = end.kept(subtractSaturated(shorts::loadPair(x, k, load), shorts::loadPair(m, k, load)));
    const auto weights = shorts::loadPair(v, k, load);
    Halves<R == 1 ? 4 : 8> sum;
    if (Overlaps && end.count() % 2 != 0) {
      sum.add(shorts::dropFirst(d), shorts::dropFirst(weights));
    } else {
      sum.add(d, weights);
    }
    return sum;
  }

  // The shifted lanes with the negative sign, of one set of sums or of two that are shifted each by itself. In the usual range of
  // scale factors the upper halves move left, which loses nothing by coming last.
  template <int N>
  Lanes<uint32_t, N> shifted(const Halves<N>& a) const {
    const Lanes<uint32_t, N> zero(0);
    return as<uint32_t>(upper_(as<int32_t>(zero - a.upper))) + as<uint32_t>(lower_(as<int32_t>(zero - a.lower)));
  }
  template <int N>
  Lanes<uint32_t, N> shifted(const Halves<N>& a, const Halves<N>& b) const {
    if (scaleFactor_ < 0 || scaleFactor_ > 15) return shifted(a) + shifted(b);
    const Lanes<uint32_t, N> zero(0);
    const auto right = [&](const Lanes<uint32_t, N>& l) { return as<uint32_t>(shiftRight(as<int32_t>(l), scaleFactor_)); };
    return shiftLeft(zero - (a.upper + b.upper), 15 - scaleFactor_) + (right(zero - a.lower) + right(zero - b.lower));
  }

  // The last odd element with identity variance: a plain difference, whose square fits 32 unsigned bits.
  int32_t lastOfUnit(const int16_t* x, const int16_t* m) const {
    const auto d = static_cast<uint32_t>(shorts::difference(x, m)), square = d * d;
    Halves<4> one;
    one.upper = Lanes<uint32_t, 4>::of(square >> 16, 0, 0, 0);
    one.lower = Lanes<uint32_t, 4>::of((square & 0xFFFF) >> 1, 0, 0, 0);
    return static_cast<int32_t>(joinHalves(shifted(one)));
  }

  int32_t scaleFactor_;
  ScaleShift upper_, lower_;
};

// Identity variance only.
struct ShortPairSums {
  using Sum = float;

  template <int R, class X, class M>
  void tile(const X& xs, const M& ms, UnitRows, int32_t r, int32_t width, float* sums) const {
    Lanes<float, 4> total[R];
    for (int i = 0; i < R; ++i) total[i] = rowLanes(xs[r + i], ms[r + i], width);
    if constexpr (R == 4) {
      joinHalves(total[0], total[1], total[2], total[3]).store(sums);
    } else {
      *sums = joinHalves(total[0]);
    }
    if (width % 2 == 0) return;
    for (int i = 0; i < R; ++i) {
      const int32_t d = shorts::difference(xs[r + i] + width - 1, ms[r + i] + width - 1);
      sums[i] += static_cast<float>(wrapMul(d, d));  // required: the square of the last element wraps
    }
  }

 private:
  static Lanes<float, 4> rowLanes(const int16_t* x, const int16_t* m, int32_t width) {
    Lanes<float, 4> total(0.0F);
    int32_t c = 0;
    const auto add = [&](const Lanes<int16_t, 8>& a, const Lanes<int16_t, 8>& b) {
      const Lanes<int16_t, 8> d = subtractSaturated(a, b);
      total += as<float>(pairDots(d, d));
    };
    for (; c <= width - 8; c += 8) add(loadLanes<8>(x + c), loadLanes<8>(m + c));
    if (const int32_t rest = (width - c) / 2 * 2; rest > 0) {
      const Tail<int16_t, 8> tail(rest);
      add(tail.load(x + c), tail.load(m + c));
    }
    return total;
  }
};

}  // namespace qorsr
