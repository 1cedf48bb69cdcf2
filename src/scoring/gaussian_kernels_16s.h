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

#include "frame/bits.h"
#include "frame/lanes.h"
#include "frame/short_lanes.h"
#include "scoring/gaussian_rows.h"

namespace qorsr {

namespace shorts {

using Group = Lanes<int16_t, 8>;

inline UnitRow load(UnitRow, const Tail<int16_t, 8>&) { return {}; }
inline Group load(const int16_t* p, const Tail<int16_t, 8>& tail) { return tail.load(p); }
inline UnitRow loadGroup(UnitRow) { return {}; }
inline Group loadGroup(const int16_t* p) { return Group::load(p); }

// d^2 * v of float lanes.
template <int N>
inline Lanes<float, N> weighted(const Lanes<float, N>& d, const Lanes<int16_t, N>& v) {
  return d * d * toFloat(v);
}
template <int N>
inline Lanes<float, N> weighted(const Lanes<float, N>& d, UnitRow) {
  return d * d;
}

// Sums of neighbouring products a * v.
template <int N>
inline Lanes<uint32_t, N / 2> pairs(const Lanes<int16_t, N>& a, const Lanes<int16_t, N>& v) {
  return asUnsigned(pairDots(a, v));
}
template <int N>
inline Lanes<uint32_t, N / 2> pairs(const Lanes<int16_t, N>& a, UnitRow) {
  return asUnsigned(pairDots(a, Lanes<int16_t, N>(1)));
}

inline int32_t difference(const int16_t* x, const int16_t* m) { return static_cast<int32_t>(*x) - *m; }

// total + p[0] + p[1] + ... + p[count - 1], one after the other; p beyond count is zero.
inline float addInOrder(float total, const Lanes<float, 8>& p, int count) {
  float all[8];
  p.store(all);
  for (int i = 0; i < count; ++i) total += all[i];
  return total;
}
inline Lanes<float, 4> addInOrder(Lanes<float, 4> total, const Lanes<float, 8> (&p)[4], int count) {
  const auto addFour = [&](const Turned& t) { total = total + t.lane[0] + t.lane[1] + t.lane[2] + t.lane[3]; };
  addFour(turn4(lowerHalf(p[0]), lowerHalf(p[1]), lowerHalf(p[2]), lowerHalf(p[3])));
  if (count > 4) addFour(turn4(upperHalf(p[0]), upperHalf(p[1]), upperHalf(p[2]), upperHalf(p[3])));
  return total;
}

inline float joinRows(const Lanes<float, 8> (&p)[1]) { return joinHalves(p[0]); }
inline Lanes<float, 4> joinRows(const Lanes<float, 8> (&p)[4]) { return joinHalves4(p[0], p[1], p[2], p[3]); }

}  // namespace shorts

struct ShortSums {
  using Sum = float;

  template <int R, class X, class M, class V>
  [[gnu::always_inline]] void tile(const X& xs, const M& ms, const V& vs, int32_t r, int32_t width, float* sums) const {
    const int16_t *x[R], *m[R];
    decltype(vs[0]) v[R];
    for (int i = 0; i < R; ++i) x[i] = xs[r + i], m[i] = ms[r + i], v[i] = vs[r + i];
    std::conditional_t<R == 1, float, Lanes<float, 4>> total(0.0F);
    Lanes<float, 8> p[R];
    int32_t c = 0;
    for (; c <= width - 8; c += 8) {
      for (int i = 0; i < R; ++i) {
        const auto d = subtractSaturated(shorts::loadGroup(x[i] + c), shorts::loadGroup(m[i] + c));
        p[i] = shorts::weighted(toFloat(d), shorts::loadGroup(v[i] + c));
      }
      total = total + shorts::joinRows(p);
    }
    if (c < width) {
      const Tail<int16_t, 8> tail(width - c);
      for (int i = 0; i < R; ++i) {
        const auto d = toFloat(tail.load(x[i] + c)) - toFloat(tail.load(m[i] + c));
        p[i] = shorts::weighted(d, shorts::load(v[i] + c, tail));
      }
      if constexpr (R == 1) total = shorts::addInOrder(total, p[0], tail.size());
      if constexpr (R == 4) total = shorts::addInOrder(total, p, tail.size());
    }
    if constexpr (R == 1) *sums = total;
    if constexpr (R == 4) total.store(sums);
  }
};

struct ShortIntegerSums {
  using Sum = int32_t;

  // A negative scale factor shifts left (identity variance alone).
  explicit ShortIntegerSums(int32_t scaleFactor) {
    const int64_t sf = scaleFactor;
    upper_ = Shift(15 - sf);
    lower_ = Shift(sf > 15 ? -15 : -sf);  // required: right by 15 at most
  }

  template <int R, class X, class M, class V>
  [[gnu::always_inline]] void tile(const X& xs, const M& ms, const V& vs, int32_t r, int32_t width, int32_t* sums) const {
    Lanes<uint32_t, 4> total[R];
    for (int i = 0; i < R; ++i) total[i] = rowLanes(xs[r + i], ms[r + i], vs[r + i], width);
    if constexpr (R == 4) {
      asSigned(joinHalves4(total[0], total[1], total[2], total[3])).store(sums);
    } else {
      *sums = static_cast<int32_t>(joinHalves(total[0]));
    }
    if constexpr (std::is_same_v<decltype(vs[0]), UnitRow>) {
      if (width % 2 == 0) return;
      for (int i = 0; i < R; ++i) sums[i] = wrapAdd(sums[i], lastOfUnit(xs[r + i] + width - 1, ms[r + i] + width - 1));
    }
  }

 private:
  static constexpr int kWide = kNativeLanes<int16_t>;

  template <int N>
  struct Halves {
    Lanes<uint32_t, N> upper, lower;

    template <class V>
    [[gnu::always_inline]] void add(const Lanes<int16_t, 2 * N>& d, const V& v) {
      const SplitSquare<2 * N> square = splitSquare(d);
      upper += shorts::pairs(square.upper, v);
      lower += shorts::pairs(square.halvedLower, v);
    }
  };

  template <int N>
  static Lanes<int16_t, N> loadWide(const int16_t* p) {
    return Lanes<int16_t, N>::load(p);
  }
  template <int N>
  static UnitRow loadWide(UnitRow) {
    return {};
  }
  template <int N>
  static Lanes<int16_t, N> loadTail(const int16_t* p, const Tail<int16_t, N>& tail) {
    return tail.load(p);
  }
  template <int N>
  static UnitRow loadTail(UnitRow, const Tail<int16_t, N>&) {
    return {};
  }

  // Shifted lanes of one row, with the negative sign.
  template <class V>
  [[gnu::always_inline]] Lanes<uint32_t, 4> rowLanes(const int16_t* x, const int16_t* m, V v, int32_t width) const {
    Halves<kWide / 2> groups{Lanes<uint32_t, kWide / 2>(0), Lanes<uint32_t, kWide / 2>(0)};
    const int32_t whole = width - width % 8;
    int32_t c = 0;
    for (; c <= whole - kWide; c += kWide) {
      groups.add(subtractSaturated(loadWide<kWide>(x + c), loadWide<kWide>(m + c)), loadWide<kWide>(v + c));
    }
    if (kWide > 8 && c < whole) {
      const Tail<int16_t, kWide> tail(whole - c);
      groups.add(subtractSaturated(tail.load(x + c), tail.load(m + c)), loadTail(v + c, tail));
    }
    Lanes<uint32_t, 4> total = shifted(joinedTo<4>(groups.upper), joinedTo<4>(groups.lower));
    constexpr bool kUnit = std::is_same_v<V, UnitRow>;
    const int32_t rest = kUnit ? width % 8 / 2 * 2 : width % 8;
    if (rest > 0) {
      const Tail<int16_t, 8> tail(rest);
      Halves<4> pairs{Lanes<uint32_t, 4>(0), Lanes<uint32_t, 4>(0)};
      pairs.add(subtractSaturated(tail.load(x + whole), tail.load(m + whole)), loadTail(v + whole, tail));
      total += shifted(pairs.upper, pairs.lower);
    }
    return total;
  }

  Lanes<uint32_t, 4> shifted(const Lanes<uint32_t, 4>& upper, const Lanes<uint32_t, 4>& lower) const {
    const Lanes<uint32_t, 4> zero(0);
    return upper_.of(zero - upper) + lower_.of(zero - lower);
  }

  // The last odd element with identity variance: a plain difference, whose square fits 32 unsigned bits.
  int32_t lastOfUnit(const int16_t* x, const int16_t* m) const {
    const auto d = static_cast<uint32_t>(shorts::difference(x, m)), square = d * d;
    const auto sum =
        shifted(Lanes<uint32_t, 4>::of(square >> 16, 0, 0, 0), Lanes<uint32_t, 4>::of((square & 0xFFFF) >> 1, 0, 0, 0));
    return static_cast<int32_t>(joinHalves(sum));
  }

  // An arithmetic shift of 32-bit lanes by any count, left if it is positive. A shift by 32 takes two steps.
  class Shift {
   public:
    Shift() = default;
    explicit Shift(int64_t left) {
      left_ = static_cast<int>(std::clamp<int64_t>(left, 0, 31));
      more_ = left > 31 ? 1 : 0;
      right_ = static_cast<int>(std::clamp<int64_t>(-left, 0, 31));
    }
    Lanes<uint32_t, 4> of(const Lanes<uint32_t, 4>& a) const {
      return asUnsigned(shiftRight(asSigned(shiftLeft(shiftLeft(a, left_), more_)), right_));
    }

   private:
    int left_ = 0, more_ = 0, right_ = 0;
  };

  Shift upper_, lower_;
};

// Identity variance only.
struct ShortPairSums {
  using Sum = float;

  template <int R, class X, class M>
  [[gnu::always_inline]] void tile(const X& xs, const M& ms, UnitRows, int32_t r, int32_t width, float* sums) const {
    Lanes<float, 4> total[R];
    for (int i = 0; i < R; ++i) total[i] = rowLanes(xs[r + i], ms[r + i], width);
    if constexpr (R == 4) {
      joinHalves4(total[0], total[1], total[2], total[3]).store(sums);
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
    const auto add = [&](const shorts::Group& a, const shorts::Group& b) {
      const shorts::Group d = subtractSaturated(a, b);
      total += toFloat(pairDots(d, d));
    };
    for (; c <= width - 8; c += 8) add(shorts::loadGroup(x + c), shorts::loadGroup(m + c));
    if (const int32_t rest = (width - c) / 2 * 2; rest > 0) {
      const Tail<int16_t, 8> tail(rest);
      add(tail.load(x + c), tail.load(m + c));
    }
    return total;
  }
};

}  // namespace qorsr
