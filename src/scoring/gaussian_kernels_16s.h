// Quadratic sums of 16-bit Gaussians: three arithmetics over d = x - m, in that order, since saturation is not symmetric.
//
//   ShortSums         float sums. Groups of eight: d saturated to 16 bits, (float(d)^2 * v) in float, the two halves of a group
//                     added lane by lane, (l0 + l2) + (l1 + l3), and that joins one total. The remainder element by element,
//                     without saturation.
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
#include "frame/lanes/shorts.h"
#include "scoring/gaussian_rows.h"

namespace qorsr {

namespace shorts {

// Of a row that holds no variances nothing is loaded.
template <int N>
inline Lanes<int16_t, N> load(const int16_t* p) {
  return Lanes<int16_t, N>::load(p);
}
template <int N>
inline UnitRow load(UnitRow) {
  return {};
}
template <int N>
inline Lanes<int16_t, N> loadFirst(const int16_t* p, const Tail<int16_t, N>& tail) {
  return tail.load(p);
}
template <int N>
inline UnitRow loadFirst(UnitRow, const Tail<int16_t, N>&) {
  return {};
}
// The weights of a row's end, zeros where it does not reach; without variances ones.
template <bool Overlaps>
inline Lanes<float, 8> endWeights(const int16_t* row, const RowEnd& end) {
  return as<float>(end.keep<1>(end.load<Overlaps>(row)));
}
template <bool Overlaps>
inline Lanes<float, 8> endWeights(UnitRow, const RowEnd& end) {
  return as<float>(end.keep<1>(Lanes<int16_t, 8>(1)));
}
// A group of each of R rows, one behind the other.
template <int R>
inline Lanes<int16_t, 8 * R> loadGroups(const RowPointers<const int16_t*, R>& rows, int32_t column) {
  Lanes<int16_t, 8> groups[R];
  for (int i = 0; i < R; ++i) groups[i] = Lanes<int16_t, 8>::load(rows[i] + column);
  return chainGroups(groups);
}
template <int R>
inline UnitRow loadGroups(const RowPointers<UnitRow, R>&, int32_t) {
  return {};
}
// The ends of R rows, one behind the other.
template <bool Overlaps, int R>
inline Lanes<int16_t, 8 * R> loadEnds(const RowPointers<const int16_t*, R>& rows, const RowEnd& end) {
  Lanes<int16_t, 8> groups[R];
  for (int i = 0; i < R; ++i) groups[i] = end.load<Overlaps>(rows[i]);
  return chainGroups(groups);
}
template <bool Overlaps, int R>
inline UnitRow loadEnds(const RowPointers<UnitRow, R>&, const RowEnd&) {
  return {};
}
inline UnitRow dropFirst(UnitRow row) { return row; }
using qorsr::dropFirst;

// d^2 * v of float lanes.
template <int N>
inline Lanes<float, N> weighted(const Lanes<float, N>& d, const Lanes<int16_t, N>& v) {
  return d * d * as<float>(v);
}
template <int N>
inline Lanes<float, N> weighted(const Lanes<float, N>& d, UnitRow) {
  return d * d;
}

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

// total + p[0] + p[1] + ... + p[7], one after the other.
inline float addInOrder(float total, const Lanes<float, 8>& p) {
  float all[8];
  p.store(all);
  for (const float term : all) total += term;
  return total;
}

// The total of one row.
class GroupTotal {
 public:
  static constexpr int kProducts = 8;
  void add(const Lanes<float, 8> (&p)[1]) { sum_ += joinHalves(p[0]); }
  float totals() const { return sum_; }

 private:
  float sum_ = 0.0F;
};

}  // namespace shorts

struct ShortSums {
  using Sum = float;

  // R is 4 or 1.
  template <int R, class X, class M, class V>
  [[gnu::always_inline]] void tile(const X& xs, const M& ms, const V& vs, int32_t r, int32_t width, float* sums) const {
    const auto x = takeRows<R>(xs, r), m = takeRows<R>(ms, r);
    const auto v = takeRows<R>(vs, r);
    using Totals = std::conditional_t<R == 1, shorts::GroupTotal, GroupTotals>;
    constexpr int K = Totals::kProducts;
    Totals groups;
    Lanes<float, K> p[R];
    int32_t c = 0;
    for (; c <= width - K; c += K) {
      for (int i = 0; i < R; ++i) {
        const auto d = subtractSaturated(shorts::load<K>(x[i] + c), shorts::load<K>(m[i] + c));
        p[i] = shorts::weighted(as<float>(d), shorts::load<K>(v[i] + c));
      }
      groups.add(p);
    }
    if (K > 8 && c <= width - 8) {  // one group more, beside one of zeros
      const Tail<int16_t, K> group(8);
      for (int i = 0; i < R; ++i) {
        const auto d = subtractSaturated(group.load(x[i] + c), group.load(m[i] + c));
        p[i] = shorts::weighted(as<float>(d), shorts::loadFirst(v[i] + c, group));
      }
      groups.add(p);
    }
    auto total = groups.totals();
    if (width % 8 != 0) {
      const RowEnd end(width);
      if (end.overlaps()) total = addEnds<true>(total, x, m, v, end);
      if (!end.overlaps()) total = addEnds<false>(total, x, m, v, end);
    }
    if constexpr (R == 1) *sums = total;
    if constexpr (R == 4) total.store(sums);
  }

 private:
  // The remainders, without saturation, element by element.
  template <bool Overlaps, class Totals, int R, class V>
  [[gnu::always_inline]] static Totals addEnds(Totals total, const RowPointers<const int16_t*, R>& x,
                                               const RowPointers<const int16_t*, R>& m, const RowPointers<V, R>& v,
                                               const RowEnd& end) {
    Lanes<float, 8> p[R];
    for (int i = 0; i < R; ++i) {
      const auto d = as<float>(end.load<Overlaps>(x[i])) - as<float>(end.load<Overlaps>(m[i]));
      p[i] = d * d * shorts::endWeights<Overlaps>(v[i], end);
    }
    if constexpr (R == 1) {
      return shorts::addInOrder(total, p[0]);
    } else {
      if (Overlaps && end.count() <= 4) return addInOrder<true>(total, p);
      return addInOrder<false>(total, p);
    }
  }
};

struct ShortIntegerSums {
  using Sum = int32_t;

  // A negative scale factor shifts left (identity variance alone). required: the lower halves shift right by 15 at most.
  explicit ShortIntegerSums(int32_t scaleFactor)
      : scaleFactor_(scaleFactor), upper_(int64_t{scaleFactor} - 15), lower_(std::min(scaleFactor, 15)) {}

  // R is 4 or 1.
  template <int R, class X, class M, class V>
  [[gnu::always_inline]] void tile(const X& xs, const M& ms, const V& vs, int32_t r, int32_t width, int32_t* sums) const {
    const auto x = takeRows<R>(xs, r), m = takeRows<R>(ms, r);
    const auto v = takeRows<R>(vs, r);
    constexpr bool kUnit = std::is_same_v<decltype(v[0]), UnitRow>;
    Halves<kWide / 2> rows[R];
    const int32_t whole = width / 8 * 8;
    int32_t c = 0;
    for (; c <= whole - kWide; c += kWide) {
      for (int i = 0; i < R; ++i) {
        rows[i].add(subtractSaturated(shorts::load<kWide>(x[i] + c), shorts::load<kWide>(m[i] + c)), shorts::load<kWide>(v[i] + c));
      }
    }
    Halves<4 * R> groups = folded(rows);
    for (; c < whole; c += 8) {  // single groups, those of all rows together
      groups.add(subtractSaturated(shorts::loadGroups(x, c), shorts::loadGroups(m, c)), shorts::loadGroups(v, c));
    }
    // With identity variance a last odd element comes by itself.
    const int32_t even = kUnit ? width / 2 * 2 : width;
    Lanes<uint32_t, 4 * R> total;
    if (even == whole) {
      total = shifted(groups);
    } else {
      Halves<4 * R> ends;
      const RowEnd end(even);
      if (end.overlaps()) ends.template addEnds<true>(x, m, v, end);
      if (!end.overlaps()) ends.template addEnds<false>(x, m, v, end);
      total = shifted(groups, ends);
    }
    if constexpr (R == 4) as<int32_t>(joinFours(total)).store(sums);
    if constexpr (R == 1) *sums = static_cast<int32_t>(joinHalves(total));
    if (kUnit && width % 2 != 0) {
      for (int i = 0; i < R; ++i) sums[i] = wrapAdd(sums[i], lastOfUnit(x[i] + width - 1, m[i] + width - 1));
    }
  }

 private:
  static constexpr int kWide = kNativeLanes<int16_t>;

  // The two sums, without their sign.
  template <int N>
  struct Halves {
    Lanes<uint32_t, N> upper{0}, lower{0};

    template <class V>
    [[gnu::always_inline]] void add(const Lanes<int16_t, 2 * N>& d, const V& v) {
      const SplitSquare<2 * N> square = splitSquare(d);
      upper += shorts::pairs(square.upper, v);
      lower += shorts::pairs(square.halvedLower, v);
    }
    // Pairs must stay pairs: an odd number of elements that end the lanes is moved down by one.
    template <bool Overlaps, int R, class V>
    [[gnu::always_inline]] void addEnds(const RowPointers<const int16_t*, R>& x, const RowPointers<const int16_t*, R>& m,
                                        const RowPointers<V, R>& v, const RowEnd& end) {
      const auto d = end.keep<R>(subtractSaturated(shorts::loadEnds<Overlaps>(x, end), shorts::loadEnds<Overlaps>(m, end)));
      const auto weights = shorts::loadEnds<Overlaps>(v, end);
      if (Overlaps && end.count() % 2 != 0) {
        add(shorts::dropFirst(d), shorts::dropFirst(weights));
      } else {
        add(d, weights);
      }
    }
  };

  static Halves<4> folded(const Halves<kWide / 2> (&rows)[1]) {
    Halves<4> h;
    h.upper = joinedTo<4>(rows[0].upper);
    h.lower = joinedTo<4>(rows[0].lower);
    return h;
  }
  static Halves<16> folded(const Halves<kWide / 2> (&rows)[4]) {
    Halves<16> h;
    h.upper = foldToFours(rows[0].upper, rows[1].upper, rows[2].upper, rows[3].upper);
    h.lower = foldToFours(rows[0].lower, rows[1].lower, rows[2].lower, rows[3].lower);
    return h;
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
  [[gnu::always_inline]] void tile(const X& xs, const M& ms, UnitRows, int32_t r, int32_t width, float* sums) const {
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
  [[gnu::always_inline]] static Lanes<float, 4> rowLanes(const int16_t* x, const int16_t* m, int32_t width) {
    Lanes<float, 4> total(0.0F);
    int32_t c = 0;
    const auto add = [&](const Lanes<int16_t, 8>& a, const Lanes<int16_t, 8>& b) {
      const Lanes<int16_t, 8> d = subtractSaturated(a, b);
      total += as<float>(pairDots(d, d));
    };
    for (; c <= width - 8; c += 8) add(shorts::load<8>(x + c), shorts::load<8>(m + c));
    if (const int32_t rest = (width - c) / 2 * 2; rest > 0) {
      const Tail<int16_t, 8> tail(rest);
      add(tail.load(x + c), tail.load(m + c));
    }
    return total;
  }
};

}  // namespace qorsr
